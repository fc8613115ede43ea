#include <ORLFoundation/decimal/ORLFRoundingBehavior.h>

#include <ORLFoundation/decimal/ORLFDecimalNumberHandler.h>

namespace ORLFoundation {

ORLFRoundingBehavior::ORLFRoundingBehavior(NSRoundingMode roundingMode, std::int16_t scale,
                                           std::int32_t errorBehavior)
    : roundingMode_(roundingMode), scale_(scale), errorBehavior_(errorBehavior) {}

std::optional<NSDecimalNumber> ORLFRoundingBehavior::exceptionDuringOperation(
    std::string_view operation, NSCalculationError error,
    const std::optional<NSDecimalNumber>& leftOperand,
    const std::optional<NSDecimalNumber>& rightOperand) const {
  const ORLFDecimalNumberHandler handler({.roundingMode = roundingMode_,
                                          .scale = scale_,
                                          .exactnessBehavior = errorBehavior_,
                                          .overflowBehavior = errorBehavior_,
                                          .underflowBehavior = errorBehavior_,
                                          .divideByZeroBehavior = errorBehavior_});
  return handler.exceptionDuringOperation(operation, error, leftOperand, rightOperand);
}

}  // namespace ORLFoundation
