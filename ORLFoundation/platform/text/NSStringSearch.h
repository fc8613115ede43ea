/// Comparison of texts and search in them. Canonically equal texts are equal: "é" is one whether it
/// is one character or a letter with a mark. The order is that of the code points after canonical
/// decomposition; it is no language's.
///
///     compare("Z", "a");                                            // NSOrderedAscending
///     rangeOfString("Résumé", "sum", NSCaseInsensitiveSearch);      // {2, 3}
///     // not found: é is another letter
///     rangeOfString("Résumé", "e");
///
/// Ranges count UTF-16 units. Broken bytes stand for U+FFFD.
#pragma once

#include <ORLFoundation/platform/value/NSRange.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// Bits; others have no effect.
enum NSStringCompareOptions : NSUInteger {
  /// By full case folding: "ß" equals "SS".
  NSCaseInsensitiveSearch = 1,
  /// Without canonical equivalence, character by character.
  NSLiteralSearch = 2,
  /// The last place instead of the first.
  NSBackwardsSearch = 4,
  /// Only at the beginning, or at the end when searching backwards.
  NSAnchoredSearch = 8,
  /// Marks on Latin, Greek and Cyrillic letters are passed over. Marks of other scripts, which are
  /// vowels or make another letter, are not.
  NSDiacriticInsensitiveSearch = 128,
};

/// `compare:options:`  The option bits for case, marks and literal comparison.
[[nodiscard]] NSComparisonResult compare(std::string_view text, std::string_view string,
                                         NSUInteger options = 0);
/// `caseInsensitiveCompare:`
[[nodiscard]] NSComparisonResult caseInsensitiveCompare(std::string_view text,
                                                        std::string_view string);
/// `stringByFoldingWithOptions:locale:`  The text without what the options pass over, in composed
/// form; by no language's own rules.
[[nodiscard]] std::string stringByFoldingWithOptions(std::string_view text, NSUInteger options);

/// The text with U+FFFD in place of each broken sequence of bytes.
[[nodiscard]] std::string wellFormedString(std::string_view text);
/// `length`  UTF-16 units.
[[nodiscard]] NSUInteger length(std::string_view text);

/// `rangeOfString:options:range:`  The first place of a text in a range of another, the whole of it
/// when no range is given; `NSNotFound` and 0 when it is absent, and for an empty text. A place
/// begins and ends between characters with all their marks, and never inside a character that
/// folds to several ("ß" holds no single "s"). Raises `NSRangeException` for a range beyond the
/// end. Time grows with the sum of both lengths.
[[nodiscard]] NSRange rangeOfString(std::string_view text, std::string_view searchString,
                                    NSUInteger options = 0,
                                    std::optional<NSRange> range = std::nullopt);

/// A text made ready for several searches with the same options; each then takes time only from
/// where it begins to the place that it finds.
class NSStringSearch {
 public:
  struct Folded;

  NSStringSearch(std::string_view text, NSUInteger options);
  ~NSStringSearch();
  NSStringSearch(const NSStringSearch&) = delete;
  NSStringSearch& operator=(const NSStringSearch&) = delete;

  /// The first place at or after a unit of the text, as `rangeOfString:options:range:` tells; the
  /// option bits for direction and anchors have no effect here.
  [[nodiscard]] NSRange rangeOfString(std::string_view searchString, NSUInteger from = 0) const;

 private:
  const NSUInteger options_;
  const std::unique_ptr<const Folded> folded_;
};

}  // namespace ORLFoundation
