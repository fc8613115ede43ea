/// A text with that taken out which a comparison passes over, and the way back from each of its
/// units to the text that it was made from.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>
#include <unicode/unistr.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::text {

/// The text decomposed, unless it is compared literally, and folded under NSStringCompareOptions.
[[nodiscard]] icu::UnicodeString folded(const icu::UnicodeString& text, NSUInteger options);

struct FoldedText {
  FoldedText(const icu::UnicodeString& text, NSUInteger options);

  std::u16string units;
  /// For each unit, and for the end, the place in the original text of the character that begins
  /// here; inside what one character with its marks became, the complement of its place.
  std::vector<std::int32_t> origins;
};

/// The first unit of the first character that begins at or after a place of the original text.
[[nodiscard]] std::size_t unitAtOrAfter(const FoldedText& text, NSUInteger place);

/// Where `needle` stands in the folded text at or after `from`, at the bounds of characters; npos
/// when it is absent or empty. Linear in both lengths.
[[nodiscard]] std::size_t findAtBounds(const FoldedText& text, std::u16string_view needle,
                                       std::size_t from);

}  // namespace ORLFoundation::internal::text
