/// What stands in place of a match: text, and groups of the match.
#pragma once

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <cstdint>
#include <vector>

namespace ORLFoundation::internal::text {

class ReplacementTemplate {
 public:
  /// Reads a template as NSRegularExpression.h tells.
  ReplacementTemplate(const icu::UnicodeString& text, const icu::RegexPattern& pattern,
                      std::int32_t groupCount);

  /// Appends what stands in place of the match that the matcher has found in the text.
  void appendTo(icu::UnicodeString& answer, const icu::UnicodeString& text,
                const icu::RegexMatcher& matcher) const;

 private:
  /// A text, and behind it a group of the match; kNoGroup for none.
  struct Piece {
    icu::UnicodeString text;
    std::int32_t group;
  };
  static constexpr std::int32_t kNoGroup = -1;

  [[nodiscard]] std::int32_t readEscape(const icu::UnicodeString& text, std::int32_t at);
  [[nodiscard]] std::int32_t readGroup(const icu::UnicodeString& text, std::int32_t at,
                                       const icu::RegexPattern& pattern);
  [[nodiscard]] std::int32_t readNumber(const icu::UnicodeString& text, std::int32_t at);

  const std::int32_t groupCount_;
  std::vector<Piece> pieces_;
};

}  // namespace ORLFoundation::internal::text
