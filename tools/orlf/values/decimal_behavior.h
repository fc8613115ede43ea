/// The behaviour of sums on the command line.
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/number/NSDecimalNumberBehaviors.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace orlftool {

/// What stands in for the result of a sum that overflows, underflows or divides by zero.
enum class OnError { kRaise, kNil, kZero };

/// "raise", "nil" and "zero"; nil for other words.
[[nodiscard]] std::optional<OnError> onErrorNamed(std::string_view word);

struct DecimalRules {
  std::int16_t scale;
  ORLFoundation::NSRoundingMode mode = ORLFoundation::NSRoundPlain;
  OnError onError = OnError::kRaise;
};

/// The options that say so, as they were typed.
struct DecimalRuleWords {
  std::optional<std::string> scale;  // all digits are kept where there is none
  std::string mode = "plain";
  std::string onError = "raise";

  [[nodiscard]] bool isGiven() const { return scale || mode != "plain" || onError != "raise"; }
};
inline constexpr const char* kRoundingModeHelp =
    "plain (a tie away from zero), down, up, bankers (a tie to the even digit)";
/// Throws UsageFailure for an unknown word and a scale that is out of range.
[[nodiscard]] DecimalRules readDecimalRules(const DecimalRuleWords& words);

/// A behaviour that raises, gives nil or gives zero on errors, of which loss of precision is none.
[[nodiscard]] std::shared_ptr<ORLFoundation::NSDecimalNumberBehaviors> makeBehavior(
    const DecimalRules& rules);

/// A sum under a behaviour.
using DecimalOperation = std::function<std::optional<ORLFoundation::NSDecimalNumber>(
    const ORLFoundation::NSDecimalNumberBehaviors*)>;

/// Does the sum by the rules. A result of more than 38 digits is no error here: it is rounded once,
/// from its exact value to the scale or to 38 digits. Throws JobFailure in words for errors that
/// raise.
[[nodiscard]] std::optional<ORLFoundation::NSDecimalNumber> calculate(
    const DecimalRules& rules, const DecimalOperation& operation);

}  // namespace orlftool
