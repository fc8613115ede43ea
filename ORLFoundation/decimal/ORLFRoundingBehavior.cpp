#include <ORLFoundation/decimal/ORLFRoundingBehavior.h>

namespace ORLFoundation {

ORLFRoundingBehavior::ORLFRoundingBehavior(NSRoundingMode roundingMode, std::int16_t scale,
                                           std::int32_t errorBehavior)
    : handler_({.roundingMode = roundingMode,
                .scale = scale,
                .exactnessBehavior = errorBehavior,
                .overflowBehavior = errorBehavior,
                .underflowBehavior = errorBehavior,
                .divideByZeroBehavior = errorBehavior}) {}

NSRoundingMode ORLFRoundingBehavior::roundingMode() const { return handler_.roundingMode(); }
std::int16_t ORLFRoundingBehavior::scale() const { return handler_.scale(); }

std::optional<NSDecimalNumber> ORLFRoundingBehavior::exceptionDuringOperation(
    std::string_view operation, NSCalculationError error,
    const std::optional<NSDecimalNumber>& leftOperand,
    const std::optional<NSDecimalNumber>& rightOperand) const {
  return handler_.exceptionDuringOperation(operation, error, leftOperand, rightOperand);
}

}  // namespace ORLFoundation
