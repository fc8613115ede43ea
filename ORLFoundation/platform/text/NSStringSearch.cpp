
#include <ORLFoundation/platform/text/NSStringSearch.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/text/UTF16.h>
#include <ORLFoundation/platform/text/internal/FoldedText.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <unicode/normalizer2.h>

#include <algorithm>

namespace ORLFoundation {
namespace {

using internal::text::FoldedText;
using internal::text::utf16Of;

constexpr NSRange kNotFound{static_cast<NSUInteger>(NSNotFound), 0};

std::u16string_view viewOf(const icu::UnicodeString& text) {
  return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

NSRange rangeOfUnits(const FoldedText& text, std::size_t begin, std::size_t length) {
  const auto first = static_cast<NSUInteger>(text.origins[begin]);
  return {first, static_cast<NSUInteger>(text.origins[begin + length]) - first};
}

/// The last place: the first one in the text read backwards, unit by unit.
std::size_t findLast(const FoldedText& text, std::u16string needle) {
  FoldedText reversed = text;
  std::reverse(reversed.units.begin(), reversed.units.end());
  std::reverse(reversed.origins.begin(), reversed.origins.end());
  std::reverse(needle.begin(), needle.end());
  const std::size_t place = internal::text::findAtBounds(reversed, needle, 0);
  return place == needle.npos ? place : text.units.size() - place - needle.size();
}

std::size_t findAnchored(const FoldedText& text, std::u16string_view needle, bool atEnd) {
  if (needle.empty() || needle.size() > text.units.size()) return std::u16string::npos;
  const std::size_t begin = atEnd ? text.units.size() - needle.size() : 0;
  const bool fits = std::u16string_view(text.units).substr(begin, needle.size()) == needle &&
                    text.origins[begin] >= 0 && text.origins[begin + needle.size()] >= 0;
  return fits ? begin : std::u16string::npos;
}

NSRange find(const icu::UnicodeString& text, std::string_view searchString, NSUInteger options) {
  const FoldedText folded(text, options);
  const icu::UnicodeString needle = internal::text::folded(utf16Of(searchString), options);
  const bool backwards = (options & NSBackwardsSearch) != 0;
  std::size_t place = 0;
  if ((options & NSAnchoredSearch) != 0) {
    place = findAnchored(folded, viewOf(needle), backwards);
  } else {
    place = backwards ? findLast(folded, std::u16string(viewOf(needle)))
                      : internal::text::findAtBounds(folded, viewOf(needle), 0);
  }
  if (place == std::u16string::npos) return kNotFound;
  return rangeOfUnits(folded, place, static_cast<std::size_t>(needle.length()));
}

NSComparisonResult resultOf(int order) {
  if (order == 0) return NSOrderedSame;
  return order < 0 ? NSOrderedAscending : NSOrderedDescending;
}

}  // namespace

struct NSStringSearch::Folded : FoldedText {
  using FoldedText::FoldedText;
};

NSComparisonResult compare(std::string_view text, std::string_view string, NSUInteger options) {
  if (text == string) return NSOrderedSame;
  const icu::UnicodeString left = internal::text::folded(utf16Of(text), options);
  return resultOf(left.compareCodePointOrder(internal::text::folded(utf16Of(string), options)));
}

NSComparisonResult caseInsensitiveCompare(std::string_view text, std::string_view string) {
  return compare(text, string, NSCaseInsensitiveSearch);
}

std::string stringByFoldingWithOptions(std::string_view text, NSUInteger options) {
  if (internal::base::isASCII(text) && (options & NSCaseInsensitiveSearch) == 0)
    return std::string(text);
  const icu::UnicodeString folded = internal::text::folded(utf16Of(text), options);
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* composer = icu::Normalizer2::getNFCInstance(status);
  const icu::UnicodeString composed =
      U_SUCCESS(status) ? composer->normalize(folded, status) : folded;
  if (U_FAILURE(status)) throw NSException(NSInvalidArgumentException, u_errorName(status));
  return internal::text::utf8Of(composed);
}

std::string wellFormedString(std::string_view text) {
  if (internal::base::isASCII(text)) return std::string(text);
  return internal::text::utf8Of(utf16Of(text));
}

NSUInteger length(std::string_view text) {
  return internal::base::isASCII(text) ? text.size()
                                       : static_cast<NSUInteger>(utf16Of(text).length());
}

NSRange rangeOfString(std::string_view text, std::string_view searchString, NSUInteger options,
                      std::optional<NSRange> range) {
  const icu::UnicodeString units = utf16Of(text);
  if (!range) return find(units, searchString, options);
  const auto size = static_cast<NSUInteger>(units.length());
  if (range->location > size || range->length > size - range->location)
    throw NSException(NSRangeException, "The range is beyond the end of the text.");
  const auto first = static_cast<std::int32_t>(range->location);
  const auto count = static_cast<std::int32_t>(range->length);
  NSRange found = find(units.tempSubString(first, count), searchString, options);
  if (found != kNotFound) found.location += range->location;
  return found;
}

NSStringSearch::NSStringSearch(std::string_view text, NSUInteger options)
    : options_(options), folded_(std::make_unique<const Folded>(utf16Of(text), options)) {}

NSStringSearch::~NSStringSearch() = default;

NSRange NSStringSearch::rangeOfString(std::string_view searchString, NSUInteger from) const {
  const icu::UnicodeString needle = internal::text::folded(utf16Of(searchString), options_);
  const std::size_t place = internal::text::findAtBounds(
      *folded_, viewOf(needle), internal::text::unitAtOrAfter(*folded_, from));
  if (place == std::u16string::npos) return kNotFound;
  return rangeOfUnits(*folded_, place, static_cast<std::size_t>(needle.length()));
}

}  // namespace ORLFoundation
