#include "values/decimal_behavior.h"

#include <ORLFoundation/decimal/ORLFRoundingBehavior.h>

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

/// Says in words what raises.
class SpokenBehavior : public ORLFRoundingBehavior {
 public:
  explicit SpokenBehavior(const DecimalRules& rules)
      : ORLFRoundingBehavior(rules.mode, rules.scale, codeOf(rules.onError)),
        raises_(rules.onError == OnError::kRaise) {}

  [[nodiscard]] std::optional<NSDecimalNumber> exceptionDuringOperation(
      std::string_view operation, NSCalculationError error,
      const std::optional<NSDecimalNumber>& leftOperand,
      const std::optional<NSDecimalNumber>& rightOperand) const override {
    if (raises_) throw JobFailure(std::string(nameOf(error)));
    return ORLFRoundingBehavior::exceptionDuringOperation(operation, error, leftOperand,
                                                          rightOperand);
  }

 private:
  bool raises_;
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
  const std::int64_t scale = words.scale
                                 ? readWholeArgument("--scale", *words.scale, INT16_MIN, INT16_MAX)
                                 : NSDecimalNoScale;
  return {static_cast<std::int16_t>(scale), *mode, *onError};
}

std::shared_ptr<NSDecimalNumberBehaviors> makeBehavior(const DecimalRules& rules) {
  return std::make_shared<ORLFRoundingBehavior>(rules.mode, rules.scale, codeOf(rules.onError));
}

std::optional<NSDecimalNumber> calculate(const DecimalRules& rules,
                                         const DecimalOperation& operation) {
  const SpokenBehavior behavior(rules);
  return operation(&behavior);
}

}  // namespace orlftool
