
#include <ORLFoundation/platform/number/NSDecimalNumber.h>

#include <ORLFoundation/platform/value/NSException.h>
#include <unicode/dcfmtsym.h>

#include <string>

namespace ORLFoundation {
namespace {

using Optional = std::optional<NSDecimalNumber>;

/// The place where a calculation under a behaviour rounds and meets errors.
class Calculation {
 public:
  Calculation(std::string_view operation, const NSDecimalNumber& left, const Optional& right,
              const NSDecimalNumberBehaviors& behavior)
      : operation_(operation), left_(left), right_(right), behavior_(behavior) {}

  /// `operation` gives its result under a rounding mode.
  template <class Operation>
  [[nodiscard]] Optional settle(const Operation& operation) const {
    const NSRoundingMode mode = behavior_.roundingMode();
    const std::int16_t scale = behavior_.scale();
    const NSDecimalResult result = operation(mode);
    if (!stands(result.error)) return answer(result.error);
    const bool roundsTwice =
        result.error == NSCalculationLossOfPrecision && scale < -result.value.exponent();
    const NSDecimalResult scaled =
        NSDecimalRound(roundsTwice ? cutOff(operation) : result.value, scale, mode);
    if (!stands(scaled.error)) return answer(scaled.error);
    return NSDecimalNumber(scaled.value);
  }

 private:
  [[nodiscard]] bool stands(NSCalculationError error) const {
    return error == NSCalculationNoError ||
           (error == NSCalculationLossOfPrecision && behavior_.ignoresLossOfPrecision());
  }
  [[nodiscard]] Optional answer(NSCalculationError error) const {
    return behavior_.exceptionDuringOperation(operation_, error, left_, right_);
  }
  /// An inexact result cut off at 38 digits, so that it rounds to fewer ones as the exact result
  /// does: what lies below them makes a last digit of 0 or 5 neither nothing nor a tie, so such a
  /// digit moves away from zero.
  template <class Operation>
  [[nodiscard]] static NSDecimal cutOff(const Operation& operation) {
    const NSDecimal below = operation(NSRoundDown).value;
    const NSDecimal above = operation(NSRoundUp).value;
    const bool isNegative = below.isNegative();
    const NSDecimal& inner = isNegative ? above : below;
    return inner.mantissa() % 5 == 0 ? (isNegative ? below : above) : inner;
  }

  std::string_view operation_;
  const NSDecimalNumber& left_;
  const Optional& right_;
  const NSDecimalNumberBehaviors& behavior_;
};

std::string decimalMarkOfLocale(std::string_view identifier) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Locale locale(std::string(identifier).c_str());
  const icu::DecimalFormatSymbols symbols(locale, status);
  if (U_FAILURE(status)) return ".";
  std::string mark;
  symbols.getConstSymbol(icu::DecimalFormatSymbols::kDecimalSeparatorSymbol).toUTF8String(mark);
  return mark;
}

}  // namespace

void NSDecimalNumber::raise(NSCalculationError error) {
  if (error == NSCalculationDivideByZero)
    throw NSException(NSDecimalNumberDivideByZeroException, "A decimal was divided by zero.");
  if (error == NSCalculationOverflow)
    throw NSException(NSDecimalNumberOverflowException, "The result is too large for a decimal.");
  throw NSException(NSDecimalNumberUnderflowException, "The result is too small for a decimal.");
}

NSDecimalNumber NSDecimalNumber::decimalNumberWithMantissa(NSUInteger mantissa,
                                                           std::int16_t exponent,
                                                           bool isNegative) noexcept {
  const NSDecimal digits(mantissa, 0, isNegative);
  return NSDecimalNumber(NSDecimalMultiplyByPowerOf10(digits, exponent).value);
}

NSDecimalNumber NSDecimalNumber::decimalNumberWithString(std::string_view text,
                                                         std::string_view locale) {
  return NSDecimalNumber(NSDecimal::parse(text, decimalMarkOfLocale(locale)));
}

Optional NSDecimalNumber::decimalNumberByAdding(
    const NSDecimalNumber& other, const NSDecimalNumberBehaviors* withBehavior) const {
  if (withBehavior == nullptr) return decimalNumberByAdding(other);
  return Calculation("decimalNumberByAdding:", *this, other, *withBehavior)
      .settle([&](NSRoundingMode mode) { return NSDecimalAdd(value_, other.value_, mode); });
}

Optional NSDecimalNumber::decimalNumberBySubtracting(
    const NSDecimalNumber& other, const NSDecimalNumberBehaviors* withBehavior) const {
  if (withBehavior == nullptr) return decimalNumberBySubtracting(other);
  return Calculation("decimalNumberBySubtracting:", *this, other, *withBehavior)
      .settle([&](NSRoundingMode mode) { return NSDecimalSubtract(value_, other.value_, mode); });
}

Optional NSDecimalNumber::decimalNumberByMultiplyingBy(
    const NSDecimalNumber& factor, const NSDecimalNumberBehaviors* withBehavior) const {
  if (withBehavior == nullptr) return decimalNumberByMultiplyingBy(factor);
  return Calculation("decimalNumberByMultiplyingBy:", *this, factor, *withBehavior)
      .settle([&](NSRoundingMode mode) { return NSDecimalMultiply(value_, factor.value_, mode); });
}

Optional NSDecimalNumber::decimalNumberByDividingBy(
    const NSDecimalNumber& divisor, const NSDecimalNumberBehaviors* withBehavior) const {
  if (withBehavior == nullptr) return decimalNumberByDividingBy(divisor);
  return Calculation("decimalNumberByDividingBy:", *this, divisor, *withBehavior)
      .settle([&](NSRoundingMode mode) { return NSDecimalDivide(value_, divisor.value_, mode); });
}

Optional NSDecimalNumber::decimalNumberByRaisingToPower(
    NSInteger power, const NSDecimalNumberBehaviors* withBehavior) const {
  if (withBehavior == nullptr) return decimalNumberByRaisingToPower(power);
  return Calculation("decimalNumberByRaisingToPower:", *this, std::nullopt, *withBehavior)
      .settle([&](NSRoundingMode mode) { return NSDecimalPower(value_, power, mode); });
}

Optional NSDecimalNumber::decimalNumberByMultiplyingByPowerOf10(
    std::int16_t power, const NSDecimalNumberBehaviors* withBehavior) const {
  const auto moved = [&](NSRoundingMode mode) {
    return NSDecimalMultiplyByPowerOf10(value_, power, mode);
  };
  if (withBehavior == nullptr) return valueOrRaise(moved(NSRoundPlain));
  return Calculation("decimalNumberByMultiplyingByPowerOf10:", *this, std::nullopt, *withBehavior)
      .settle(moved);
}

Optional NSDecimalNumber::decimalNumberByRoundingAccordingToBehavior(
    const NSDecimalNumberBehaviors* behavior) const {
  if (behavior == nullptr) return *this;
  return Calculation("decimalNumberByRoundingAccordingToBehavior:", *this, std::nullopt, *behavior)
      .settle([&](NSRoundingMode) { return NSDecimalResult{value_}; });
}

NSComparisonResult NSDecimalNumber::compare(const NSNumber& other) const {
  return NSNumber(*this).compare(other);
}

bool NSDecimalNumber::isEqualToNumber(const std::optional<NSNumber>& other) const {
  return other && compare(*other) == NSOrderedSame;
}

NSUInteger NSDecimalNumber::hash() const { return NSNumber(*this).hash(); }

}  // namespace ORLFoundation
