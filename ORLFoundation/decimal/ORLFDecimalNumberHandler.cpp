
#include <ORLFoundation/decimal/ORLFDecimalNumberHandler.h>

#include <ORLFoundation/decimal/ORLFMutableDecimalNumberHandler.h>
#include <ORLFoundation/platform/value/NSException.h>

namespace ORLFoundation {
namespace {

constexpr const char* kCalculationException = "NSDecimalNumber calculation error";

std::string descriptionOf(const std::optional<NSDecimalNumber>& operand) {
  return operand ? operand->description() : "(null)";
}

}  // namespace

std::shared_ptr<ORLFDecimalNumberHandler>
ORLFDecimalNumberHandler::decimalNumberHandlerWithRoundingMode(const Fields& fields) {
  return std::make_shared<ORLFDecimalNumberHandler>(fields);
}

ORLFDecimalNumberHandler::ORLFDecimalNumberHandler(const Fields& fields) : fields_(fields) {}

NSRoundingMode ORLFDecimalNumberHandler::roundingMode() const { return fields_.roundingMode; }
std::int16_t ORLFDecimalNumberHandler::scale() const { return fields_.scale; }
std::int32_t ORLFDecimalNumberHandler::exactnessBehavior() const noexcept {
  return fields_.exactnessBehavior;
}
std::int32_t ORLFDecimalNumberHandler::overflowBehavior() const noexcept {
  return fields_.overflowBehavior;
}
std::int32_t ORLFDecimalNumberHandler::underflowBehavior() const noexcept {
  return fields_.underflowBehavior;
}
std::int32_t ORLFDecimalNumberHandler::divideByZeroBehavior() const noexcept {
  return fields_.divideByZeroBehavior;
}

std::int32_t ORLFDecimalNumberHandler::reactionTo(NSCalculationError error) const noexcept {
  switch (error) {
    case NSCalculationLossOfPrecision:
      return fields_.exactnessBehavior;
    case NSCalculationUnderflow:
      return fields_.underflowBehavior;
    case NSCalculationOverflow:
      return fields_.overflowBehavior;
    case NSCalculationDivideByZero:
      return fields_.divideByZeroBehavior;
    default:
      return ORLFDecimalErrorBehaviorRaise;
  }
}

std::optional<NSDecimalNumber> ORLFDecimalNumberHandler::exceptionDuringOperation(
    std::string_view /*operation*/, NSCalculationError error,
    const std::optional<NSDecimalNumber>& leftOperand,
    const std::optional<NSDecimalNumber>& rightOperand) const {
  const std::int32_t reaction = reactionTo(error);
  if (reaction == ORLFDecimalErrorBehaviorReturnNil) return std::nullopt;
  if (reaction == ORLFDecimalErrorBehaviorReturnZero) return NSDecimalNumber::zero();
  throw NSException(kCalculationException, "The error was " +
                                               std::to_string(static_cast<NSUInteger>(error)) +
                                               " for left=" + descriptionOf(leftOperand) +
                                               " and right=" + descriptionOf(rightOperand));
}

std::shared_ptr<NSObject> ORLFDecimalNumberHandler::copy() {
  return receiverOr([this] { return std::make_shared<ORLFDecimalNumberHandler>(fields_); });
}

std::shared_ptr<NSObject> ORLFDecimalNumberHandler::mutableCopy() {
  return std::make_shared<ORLFMutableDecimalNumberHandler>(fields_);
}

}  // namespace ORLFoundation
