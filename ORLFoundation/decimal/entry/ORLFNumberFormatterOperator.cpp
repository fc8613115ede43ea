
#include <ORLFoundation/decimal/entry/ORLFNumberFormatterOperator.h>

#include <ORLFoundation/decimal/ORLFDecimalNumber.h>
#include <ORLFoundation/platform/format/NSFormattingError.h>
#include <ORLFoundation/platform/value/NSException.h>

namespace ORLFoundation {
namespace {

using Optional = std::optional<NSNumber>;

Optional boxed(const std::optional<NSDecimalNumber>& number) {
  return number ? Optional(*number) : std::nullopt;
}

Optional performOnDecimals(ORLFNumberFormatterOperatorType type, const NSDecimalNumber& left,
                           const NSDecimalNumber& right) {
  switch (type) {
    case ORLFNumberFormatterOperatorTypeAdd:
      return boxed(orlfDecimalNumberByAdding(left, right));
    case ORLFNumberFormatterOperatorTypeSubtract:
      return boxed(orlfDecimalNumberBySubtracting(left, right));
    case ORLFNumberFormatterOperatorTypeMultiply:
      return boxed(orlfDecimalNumberByMultiplyingBy(left, right));
    case ORLFNumberFormatterOperatorTypeDivide:
      if (orlfIsZero(right)) return std::nullopt;
      return boxed(orlfDecimalNumberByDividingBy(left, right));
    default:
      return std::nullopt;
  }
}

Optional performOnDoubles(ORLFNumberFormatterOperatorType type, double left, double right) {
  switch (type) {
    case ORLFNumberFormatterOperatorTypeAdd:
      return left + right;
    case ORLFNumberFormatterOperatorTypeSubtract:
      return left - right;
    case ORLFNumberFormatterOperatorTypeMultiply:
      return left * right;
    case ORLFNumberFormatterOperatorTypeDivide:
      return right == 0 ? Optional() : Optional(left / right);
    default:
      return std::nullopt;
  }
}

bool isDecimal(const NSNumber& number) { return number.kind() == NSNumber::Kind::Decimal; }

}  // namespace

NSUInteger ORLFNumberFormatterOperator::numberOfOpperands() const noexcept {
  return type_ == ORLFNumberFormatterOperatorTypeStartGroup ? 1 : 2;
}

std::optional<NSNumber> ORLFNumberFormatterOperator::defaultOpperand(bool decimals) const {
  switch (type_) {
    case ORLFNumberFormatterOperatorTypeAdd:
    case ORLFNumberFormatterOperatorTypeSubtract:
      return decimals ? NSNumber(NSDecimal::zero()) : NSNumber(0.0);
    case ORLFNumberFormatterOperatorTypeMultiply:
      return decimals ? NSNumber(NSDecimal::one()) : NSNumber(1.0);
    default:
      return std::nullopt;
  }
}

std::optional<NSNumber> ORLFNumberFormatterOperator::numberByPerformingOperation(
    const std::optional<NSNumber>& left, const std::optional<NSNumber>& right,
    NSErrorSlot error) const {
  if (type_ == ORLFNumberFormatterOperatorTypeStartGroup) return left ? left : right;
  if (!left || !right) return std::nullopt;
  try {
    if (isDecimal(*left) && isDecimal(*right))
      return performOnDecimals(type_, NSDecimalNumber(left->decimalValue()),
                               NSDecimalNumber(right->decimalValue()));
    return performOnDoubles(type_, left->doubleValue(), right->doubleValue());
  } catch (const NSException& exception) {
    NSFillErrorSlot(error, NSCocoaErrorDomain, NSFormattingError, exception.reason());
    return std::nullopt;
  }
}

}  // namespace ORLFoundation
