/// Rounding under a mode to a scale, whatever digits a result has: loss of precision is no error.
/// An `ORLFDecimalNumberHandler` reports a third as one; this behaviour gives it, rounded once from
/// its exact value.
///
///     const ORLFRoundingBehavior down(NSRoundDown);
///     two.decimalNumberByDividingBy(three, &down);  // 0.66...6, 38 digits
///     const ORLFRoundingBehavior cents(NSRoundBankers, 2);
///     plan->plannedBalanceOnDate(date, true, *calendar, &cents);
///
/// It never changes and may be shared between threads.
#pragma once

#include <ORLFoundation/decimal/ORLFDecimalErrorBehavior.h>
#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/number/NSDecimalNumberBehaviors.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace ORLFoundation {

class ORLFRoundingBehavior : public NSDecimalNumberBehaviors {
 public:
  /// The scale counts digits after the point, `NSDecimalNoScale` keeps all 38 digits.
  /// `errorBehavior` answers overflow, underflow and division by zero, as in
  /// `ORLFDecimalErrorBehavior`.
  explicit ORLFRoundingBehavior(NSRoundingMode roundingMode, std::int16_t scale = NSDecimalNoScale,
                                std::int32_t errorBehavior = ORLFDecimalErrorBehaviorRaise);

  /// `roundingMode`
  [[nodiscard]] NSRoundingMode roundingMode() const override { return roundingMode_; }
  /// `scale`
  [[nodiscard]] std::int16_t scale() const override { return scale_; }
  [[nodiscard]] bool ignoresLossOfPrecision() const override { return true; }
  /// `exceptionDuringOperation:error:leftOperand:rightOperand:`  Nothing, zero or an exception, as
  /// a handler with this error behaviour in all its fields answers.
  [[nodiscard]] std::optional<NSDecimalNumber> exceptionDuringOperation(
      std::string_view operation, NSCalculationError error,
      const std::optional<NSDecimalNumber>& leftOperand,
      const std::optional<NSDecimalNumber>& rightOperand) const override;

 private:
  NSRoundingMode roundingMode_;
  std::int16_t scale_;
  std::int32_t errorBehavior_;
};

}  // namespace ORLFoundation
