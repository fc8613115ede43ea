
#include <ORLFoundation/support/strings/ORLFStringUtilities.h>

#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/object/NSString.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>
#include <ORLFoundation/platform/text/NSStringCase.h>
#include <ORLFoundation/platform/text/NSStringEncoding.h>
#include <ORLFoundation/platform/text/NSStringNumbers.h>
#include <ORLFoundation/platform/text/NSStringSearch.h>
#include <ORLFoundation/platform/value/NSUUID.h>

#include <algorithm>

namespace ORLFoundation {
namespace {

using internal::base::firstUTF8Character;
using internal::base::unitsInUTF16;
using internal::base::UTF8Character;

constexpr std::size_t kMostVersionParts = 3;

}  // namespace

std::string orlfGenerateUUIDString() { return NSUUID::UUID().UUIDString(); }

std::string orlfGenerateUniqueId() { return orlfGenerateUUIDString(); }

std::string orlfStringWithInteger(NSInteger integer) { return stringWithFormat("%ld", integer); }

std::string orlfStringWithUnsignedInteger(NSUInteger integer) {
  return stringWithFormat("%lu", integer);
}

std::string orlfStringWithLongLong(long long integer) { return stringWithFormat("%qi", integer); }

bool orlfContainsString(std::string_view text, std::string_view string) {
  return rangeOfString(text, string, NSCaseInsensitiveSearch).length > 0;
}

bool orlfContainsComponents(std::string_view text, const std::vector<std::string>& components) {
  if (components.empty()) return true;
  const NSStringSearch search(text, NSCaseInsensitiveSearch | NSDiacriticInsensitiveSearch);
  NSUInteger from = 0;
  return std::all_of(components.begin(), components.end(), [&](const std::string& component) {
    const NSRange range = search.rangeOfString(component, from);
    from = NSMaxRange(range);
    return range.length > 0;
  });
}

std::optional<std::string> orlfStringWithData(const NSData& data, NSUInteger encoding) {
  return stringWithData(data, encoding);
}

std::optional<std::string> orlfStringWithDataUsedEncoding(const NSData& data,
                                                          NSUInteger* usedEncoding, NSErrorSlot) {
  constexpr NSUInteger kEncodings[] = {NSUTF8StringEncoding, NSMacOSRomanStringEncoding,
                                       NSWindowsCP1252StringEncoding, NSASCIIStringEncoding};
  for (const NSUInteger encoding : kEncodings) {
    std::optional<std::string> text = stringWithData(data, encoding);
    if (!text) continue;
    if (usedEncoding != nullptr) *usedEncoding = encoding;
    return text;
  }
  if (usedEncoding != nullptr) *usedEncoding = 0;
  return std::nullopt;
}

std::string orlfStringByBackslashEscapingCharactersInString(std::string_view text,
                                                            std::string_view characters) {
  const auto set = NSCharacterSet::characterSetWithCharactersInString(characters);
  const std::string wellFormed = wellFormedString(text);
  std::string result;
  for (std::string_view rest = wellFormed; !rest.empty();) {
    const UTF8Character character = firstUTF8Character(rest);
    if (set->longCharacterIsMember(character.codePoint)) result += '\\';
    result += rest.substr(0, character.length);
    rest.remove_prefix(character.length);
  }
  return result;
}

std::string orlfCapitalizedStringPreservingCase(std::string_view text) {
  std::string wellFormed = wellFormedString(text);
  if (wellFormed.empty()) return wellFormed;
  const UTF8Character first = firstUTF8Character(wellFormed);
  if (unitsInUTF16(first.codePoint) > 1 || first.length == wellFormed.size()) return wellFormed;
  return wellFormed.replace(0, first.length, uppercaseString(wellFormed.substr(0, first.length)));
}

NSComparisonResult orlfCaseInsensitiveSortCompare(std::string_view text, std::string_view string) {
  const NSComparisonResult result = caseInsensitiveCompare(text, string);
  return result == NSOrderedSame ? compare(text, string) : result;
}

NSOperatingSystemVersion orlfOperatingSystemVersion(std::string_view text) {
  if (std::count(text.begin(), text.end(), '.') >= static_cast<std::ptrdiff_t>(kMostVersionParts))
    return {};
  NSInteger parts[kMostVersionParts] = {};
  for (NSInteger& part : parts) {
    const std::size_t point = std::min(text.find('.'), text.size());
    part = integerValue(text.substr(0, point));
    text.remove_prefix(std::min(point + 1, text.size()));
  }
  return {parts[0], parts[1], parts[2]};
}

}  // namespace ORLFoundation
