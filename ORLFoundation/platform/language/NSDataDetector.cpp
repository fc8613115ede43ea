
#include <ORLFoundation/platform/language/NSDataDetector.h>

#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/language/internal/LinkScanner.h>

#include <cstdint>
#include <string>

namespace ORLFoundation {
namespace {

namespace base = internal::base;
using internal::language::Link;
using internal::language::LinkScanner;

constexpr NSInteger kWrongTypes = 2048;  // NSFormattingError

/// Whether the byte at a place must be escaped in an address; `refused` are the signs that must.
bool mustBeEscaped(std::string_view text, std::size_t at, std::string_view refused) {
  const auto byte = static_cast<unsigned char>(text[at]);
  if (byte <= 0x20 || byte >= 0x7F || refused.find(text[at]) != refused.npos) return true;
  return text[at] == '%' && !base::hexByteAt(text, at + 1);
}

std::string escaped(std::string_view text, std::string_view refused) {
  std::string result;
  result.reserve(text.size() + 8);
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (mustBeEscaped(text, at, refused)) {
      result += '%';
      base::appendHexByte(result, static_cast<std::uint8_t>(text[at]), base::kUpperHexDigits);
    } else {
      result += text[at];
    }
  }
  return result;
}

/// nil where no address can be made of it: a port that is no number.
std::optional<NSURL> addressOf(const Link& link, std::string_view text) {
  constexpr std::string_view kRefused = " \"<>\\^`{|}";
  constexpr std::string_view kRefusedInMail = " \"<>\\^`{|}%?#/";
  switch (link.kind) {
    case Link::Kind::Mail:
      return NSURL::URLWithString("mailto:" + escaped(text, kRefusedInMail));
    case Link::Kind::Host:
      return NSURL::URLWithString("http://" + escaped(text, kRefused));
    case Link::Kind::Address:
      break;
  }
  return NSURL::URLWithString(escaped(text, kRefused));
}

NSUInteger unitsOf(std::string_view text) {
  NSUInteger units = 0;
  while (!text.empty()) {
    const base::UTF8Character character = base::firstUTF8Character(text);
    units += base::unitsInUTF16(character.codePoint);
    text.remove_prefix(character.length);
  }
  return units;
}

}  // namespace

std::shared_ptr<NSDataDetector> NSDataDetector::dataDetectorWithTypes(NSUInteger types,
                                                                      NSErrorSlot error) {
  if (types == NSTextCheckingTypeLink) return std::make_shared<NSDataDetector>();
  NSFillErrorSlot(error, NSCocoaErrorDomain, kWrongTypes, "Only links can be detected.");
  return nullptr;
}

void NSDataDetector::enumerateMatchesInString(std::string_view string,
                                              const NSMatchBlock& usingBlock) const {
  LinkScanner scanner(string);
  std::size_t counted = 0;
  NSUInteger units = 0;
  bool stop = false;
  for (std::optional<Link> link = scanner.next(); link && !stop; link = scanner.next()) {
    const std::string_view text = string.substr(link->begin, link->end - link->begin);
    const std::optional<NSURL> url = addressOf(*link, text);
    if (!url) continue;
    units += unitsOf(string.substr(counted, link->begin - counted));
    const NSRange range{units, unitsOf(text)};
    usingBlock(NSTextCheckingResult{NSTextCheckingTypeLink, range, *url}, stop);
    units += range.length;
    counted = link->end;
  }
}

std::vector<NSTextCheckingResult> NSDataDetector::matchesInString(std::string_view string) const {
  std::vector<NSTextCheckingResult> matches;
  enumerateMatchesInString(
      string, [&](const NSTextCheckingResult& match, bool&) { matches.push_back(match); });
  return matches;
}

}  // namespace ORLFoundation
