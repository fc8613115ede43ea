/// A processor that replaces what fits a regular expression, and a short form of it that masks a
/// field of JSON.
///
///     logger->addResponseBodyProcessor(
///         ORLFURLSessionLogReplacement::initWithJSONFieldName("password", "***"));
///     logger->addRequestURLProcessor(ORLFURLSessionLogReplacement::initWithMatchExpression(
///         "token=[^&]*", 0, "token=***"));
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSTypes.h>
#include <ORLFoundation/web/logging/ORLFURLSessionLogProcessor.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

class NSRegularExpression;

namespace internal::logging {
class JSONFieldMask;
}  // namespace internal::logging

/// Never changes; serves any thread.
class ORLFURLSessionLogReplacement final : public ORLFURLSessionLogProcessor {
 public:
  /// `initWithMatchExpression:options:replacement:error:`  null, with the error filled in, for a
  /// pattern that is no expression. Options and template are those of NSRegularExpression.h.
  [[nodiscard]] static std::shared_ptr<ORLFURLSessionLogReplacement> initWithMatchExpression(
      std::string_view matchExpression, NSUInteger options, std::string_view replacement,
      NSErrorSlot error = nullptr);
  /// `init`  The same with an empty pattern, which is no expression: null.
  [[nodiscard]] static std::shared_ptr<ORLFURLSessionLogReplacement> init();
  /// `initWithJSONFieldName:replacementValue:`  Puts the value, in double quotes and as it is, in
  /// place of what follows the field's name in quotes and a colon, at every depth. Numbers and
  /// `null` become text by it.
  ///
  /// What is masked ends before the next comma, closing bracket or closing brace, whatever it is
  /// part of: of a value with a comma in it ("a,b", or a list) the log shows what follows the
  /// comma. This is required so. Where values may hold one of the three, name them to the logger
  /// (ORLFURLSessionFileLogger.h, `addSecret`), or mask them by an expression of your own.
  ///
  /// The time that it takes grows with the length of the text alone.
  [[nodiscard]] static std::shared_ptr<ORLFURLSessionLogReplacement> initWithJSONFieldName(
      std::string_view fieldName, std::string_view replacementValue);

  /// Use one of the operations above.
  ORLFURLSessionLogReplacement(
      std::shared_ptr<NSRegularExpression> expression, std::string replacement,
      std::shared_ptr<const internal::logging::JSONFieldMask> mask = nullptr);
  ~ORLFURLSessionLogReplacement() override;

  [[nodiscard]] const std::shared_ptr<NSRegularExpression>& expression() const noexcept {
    return expression_;
  }
  /// The template.
  [[nodiscard]] const std::string& replacement() const noexcept { return replacement_; }

  /// `process:`  The text with every match replaced; nil for nil. Where the expression comes to a
  /// limit of time or memory the answer is nil too, and a line in the log says so: a text that
  /// could not be masked is not shown.
  [[nodiscard]] std::optional<std::string> process(std::optional<std::string> string) override;

  [[nodiscard]] std::string className() const override { return "ORLFURLSessionLogReplacement"; }

 private:
  const std::shared_ptr<NSRegularExpression> expression_;
  const std::string replacement_;
  const std::shared_ptr<const internal::logging::JSONFieldMask> mask_;
};

}  // namespace ORLFoundation
