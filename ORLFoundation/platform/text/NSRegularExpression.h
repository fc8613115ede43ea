/// A regular expression under ICU's rules, for replacing what fits it.
///
///     const auto digits = NSRegularExpression::initWithPattern(R"((\d)\d+)", 0);
///     digits->stringByReplacingMatchesInString("PIN 4711", "$1***");   // "PIN 4***"
///
/// Expressions never change and serve any thread. Broken bytes stand for U+FFFD.
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// Bits; others have no effect.
enum NSRegularExpressionOptions : NSUInteger {
  NSRegularExpressionCaseInsensitive = 1,
  NSRegularExpressionAllowCommentsAndWhitespace = 2,
  NSRegularExpressionIgnoreMetacharacters = 4,
  NSRegularExpressionDotMatchesLineSeparators = 8,
  NSRegularExpressionAnchorsMatchLines = 16,
  NSRegularExpressionUseUnixLineSeparators = 32,
  NSRegularExpressionUseUnicodeWordBoundaries = 64,
};

/// The codes of `NSCocoaErrorDomain` that expressions give.
enum NSRegularExpressionError : NSInteger {
  NSRegularExpressionPatternError = 2048,
  NSRegularExpressionLimitError = 2049,
};

class NSRegularExpression final : public NSObject {
 public:
  struct Compiled;

  /// `initWithPattern:options:error:`  null, and an error of code 2048, for a pattern that is no
  /// expression; the empty one is none.
  [[nodiscard]] static std::shared_ptr<NSRegularExpression> initWithPattern(
      std::string_view pattern, NSUInteger options, NSErrorSlot error = nullptr);
  /// Use the operation above.
  NSRegularExpression(std::string_view pattern, NSUInteger options,
                      std::unique_ptr<const Compiled> compiled);
  ~NSRegularExpression() override;

  [[nodiscard]] const std::string& pattern() const noexcept { return pattern_; }
  [[nodiscard]] NSUInteger options() const noexcept { return options_; }
  [[nodiscard]] NSUInteger numberOfCaptureGroups() const;

  /// `stringByReplacingMatchesInString:options:range:withTemplate:`  The whole text with each match
  /// replaced, under no matching options. In the template "$2" stands for what the second group
  /// matched, "$0" for the match, "${name}" for a named group. "$" takes as many digits as still
  /// name a group ("$10" is "$1" and "0" where there is one group); a group that took no part, and
  /// one that the pattern does not have, give nothing; "$" before anything else stands for itself.
  /// A backslash takes the next character for itself, but that \uhhhh and \Uhhhhhhhh name one.
  ///
  /// nil, and an error of code 2049, where it would take too long (a quarter of a second of the
  /// processor and another one for each megabyte), needs more than 8 MB to go back in, or where
  /// text or answer is half a gigabyte long.
  [[nodiscard]] std::optional<std::string> stringByReplacingMatchesInString(
      std::string_view string, std::string_view withTemplate, NSErrorSlot error = nullptr) const;

  /// `escapedPatternForString:`  The pattern that fits the text alone: a backslash before each of
  /// * ? + [ ( ) { } ^ $ | \ . /
  [[nodiscard]] static std::string escapedPatternForString(std::string_view string);
  /// `escapedTemplateForString:`  The template that gives the text: a backslash before $ and \.
  [[nodiscard]] static std::string escapedTemplateForString(std::string_view string);

  [[nodiscard]] std::string className() const override { return "NSRegularExpression"; }
  /// The same pattern and options.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;

 private:
  const std::string pattern_;
  const NSUInteger options_;
  const std::unique_ptr<const Compiled> compiled_;
};

}  // namespace ORLFoundation
