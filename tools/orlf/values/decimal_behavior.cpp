

#include "values/decimal_behavior.h"

#include <ORLFoundation/decimal/ORLFDecimalNumberHandler.h>

#include <array>
#include <string>

#include "cli/failure.h"
#include "cli/words.h"
#include "values/whole_number.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct OnErrorWord {
  std::string_view word;
  OnError onError;
  ORLFDecimalErrorBehavior code;
};

constexpr std::array kOnErrors{
    OnErrorWord{"raise", OnError::kRaise, ORLFDecimalErrorBehaviorRaise},
    OnErrorWord{"nil", OnError::kNil, ORLFDecimalErrorBehaviorReturnNil},
    OnErrorWord{"zero", OnError::kZero, ORLFDecimalErrorBehaviorReturnZero},
};

ORLFDecimalErrorBehavior codeOf(OnError onError) {
  for (const OnErrorWord& row : kOnErrors)
    if (row.onError == onError) return row.code;
  return ORLFDecimalErrorBehaviorRaise;
}

std::string_view nameOf(NSCalculationError error) {
  switch (error) {
    case NSCalculationUnderflow:
      return "the result is too small to hold";
    case NSCalculationOverflow:
      return "the result is too large to hold";
    case NSCalculationDivideByZero:
      return "division by zero";
    default:
      return "calculation error";
  }
}

/// Notes a loss of precision, and says the other errors in words where they raise.
class LossNotingBehavior : public NSDecimalNumberBehaviors {
 public:
  explicit LossNotingBehavior(const DecimalRules& rules)
      : raises_(rules.onError == OnError::kRaise), behavior_(makeBehavior(rules)) {}

  [[nodiscard]] bool hasLost() const { return hasLost_; }
  [[nodiscard]] NSRoundingMode roundingMode() const override { return behavior_->roundingMode(); }
  [[nodiscard]] std::int16_t scale() const override { return behavior_->scale(); }
  [[nodiscard]] std::optional<NSDecimalNumber> exceptionDuringOperation(
      std::string_view operation, NSCalculationError error,
      const std::optional<NSDecimalNumber>& leftOperand,
      const std::optional<NSDecimalNumber>& rightOperand) const override {
    hasLost_ = error == NSCalculationLossOfPrecision;
    if (hasLost_) return std::nullopt;
    if (raises_) throw JobFailure(std::string(nameOf(error)));
    return behavior_->exceptionDuringOperation(operation, error, leftOperand, rightOperand);
  }

 private:
  bool raises_;
  std::shared_ptr<NSDecimalNumberBehaviors> behavior_;
  mutable bool hasLost_ = false;
};

}  // namespace

std::optional<OnError> onErrorNamed(std::string_view word) {
  for (const OnErrorWord& row : kOnErrors)
    if (row.word == word) return row.onError;
  return std::nullopt;
}

DecimalRules readDecimalRules(const DecimalRuleWords& words) {
  const std::optional<NSRoundingMode> mode = roundingModeNamed(words.mode);
  if (!mode)
    throw UsageFailure("--mode: expected plain, down, up or bankers, got '" + words.mode + "'");
  const std::optional<OnError> onError = onErrorNamed(words.onError);
  if (!onError)
    throw UsageFailure("--on-error: expected raise, nil or zero, got '" + words.onError + "'");
  const std::int64_t scale =
      words.scale ? readWholeArgument("--scale", *words.scale, INT16_MIN, INT16_MAX)
                  : NSDecimalNoScale;
  return {static_cast<std::int16_t>(scale), *mode, *onError};
}

std::shared_ptr<NSDecimalNumberBehaviors> makeBehavior(const DecimalRules& rules) {
  const std::int32_t code = codeOf(rules.onError);
  return ORLFDecimalNumberHandler::decimalNumberHandlerWithRoundingMode(
      {.roundingMode = rules.mode,
       .scale = rules.scale,
       .exactnessBehavior = code,
       .overflowBehavior = code,
       .underflowBehavior = code,
       .divideByZeroBehavior = code});
}

std::optional<NSDecimalNumber> calculate(const DecimalRules& rules,
                                         const DecimalOperation& operation) {
  const LossNotingBehavior behavior(rules);
  std::optional<NSDecimalNumber> result = operation(&behavior);
  if (!behavior.hasLost()) return result;
  result = operation(nullptr);
  return result ? result->decimalNumberByRoundingAccordingToBehavior(&behavior) : result;
}

}  // namespace orlftool
