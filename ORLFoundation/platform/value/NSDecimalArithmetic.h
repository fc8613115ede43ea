/// Calculation with plain decimals. A result of more than 38 digits is rounded once, from its exact
/// value, under the given mode; that is loss of precision. A result too large to hold is overflow,
/// one that rounds to zero is underflow; the value is then not-a-number and zero. An operand that
/// is not-a-number gives not-a-number without an error. Unknown rounding modes round like
/// `NSRoundPlain`.
///
///     NSDecimalResult third = NSDecimalDivide(one, three);
///     third.value.stringValue();  // "0.33333333333333333333333333333333333333"
///     third.error;                // NSCalculationLossOfPrecision
#pragma once

#include <ORLFoundation/platform/value/NSDecimal.h>
#include <ORLFoundation/platform/value/internal/PowersOfTen.h>

namespace ORLFoundation {

struct NSDecimalResult {
  NSDecimal value = {};
  NSCalculationError error = NSCalculationNoError;
};

namespace internal::value {

/// Any two operands: what the calculations below come to where they see no shorter way.
[[nodiscard]] NSDecimalResult addLong(const NSDecimal& left, const NSDecimal& right,
                                      NSRoundingMode mode) noexcept;
[[nodiscard]] NSDecimalResult multiplyLong(const NSDecimal& left, const NSDecimal& right,
                                           NSRoundingMode mode) noexcept;
[[nodiscard]] NSDecimalResult divideLong(const NSDecimal& left, const NSDecimal& right,
                                         NSRoundingMode mode) noexcept;
[[nodiscard]] NSDecimalResult roundLong(const NSDecimal& number, NSInteger scale,
                                        NSRoundingMode mode) noexcept;

/// Mantissas of 64 bits that are at most this many digits apart have an exact sum.
inline constexpr int kShortDistance = 18;

/// The two's complement of a negative number, without a branch.
[[nodiscard]] constexpr Wide withSign(Wide value, bool isNegative) noexcept {
  return (value ^ (Wide{0} - Wide{isNegative})) + Wide{isNegative};
}

struct SignedSum {
  Wide digits;
  bool isNegative;
};

/// The sum of two magnitudes below 2^127 under their signs, without a branch.
[[nodiscard]] constexpr SignedSum signedSum(Wide left, bool isLeftNegative, Wide right,
                                            bool isRightNegative) noexcept {
  const bool areUnlike = isLeftNegative != isRightNegative;
  const Wide sum = left + withSign(right, areUnlike);
  const bool isTurned = areUnlike && (sum >> 127) != 0;
  return {withSign(sum, isTurned), isLeftNegative != isTurned};
}

/// Sums of money: both mantissas short, their exponents at most `kShortDistance` apart.
[[nodiscard]] constexpr NSDecimal addShort(const NSDecimal& left, const NSDecimal& right) noexcept {
  const int distance = left.exponent() - right.exponent();
  const SignedSum sum = signedSum(
      Wide{left.shortMantissa()} * shortPowerOfTen(distance > 0 ? distance : 0), left.isNegative(),
      Wide{right.shortMantissa()} * shortPowerOfTen(distance < 0 ? -distance : 0),
      right.isNegative());
  return {sum.digits, distance > 0 ? right.exponent() : left.exponent(), sum.isNegative};
}

}  // namespace internal::value

[[nodiscard]] inline NSDecimalResult NSDecimalAdd(const NSDecimal& left, const NSDecimal& right,
                                                  NSRoundingMode mode = NSRoundPlain) noexcept {
  const int distance = left.exponent() - right.exponent();
  if (distance == 0 && !left.isNaN() && !right.isNaN()) {
    const internal::value::SignedSum sum = internal::value::signedSum(
        left.mantissa(), left.isNegative(), right.mantissa(), right.isNegative());
    if (sum.digits < NSDecimal::kMantissaEnd)
      return {NSDecimal(sum.digits, left.exponent(), sum.isNegative)};
  } else if (left.isShort() && right.isShort() && distance >= -internal::value::kShortDistance &&
             distance <= internal::value::kShortDistance) {
    return {internal::value::addShort(left, right)};
  }
  return internal::value::addLong(left, right, mode);
}

[[nodiscard]] inline NSDecimalResult NSDecimalSubtract(
    const NSDecimal& left, const NSDecimal& right, NSRoundingMode mode = NSRoundPlain) noexcept {
  return NSDecimalAdd(left, right.negated(), mode);
}

[[nodiscard]] inline NSDecimalResult NSDecimalMultiply(
    const NSDecimal& left, const NSDecimal& right, NSRoundingMode mode = NSRoundPlain) noexcept {
  if (left.isShort() && right.isShort()) {
    const internal::value::Wide product =
        internal::value::Wide{left.shortMantissa()} * right.shortMantissa();
    const int exponent = left.exponent() + right.exponent();
    if (product < NSDecimal::kMantissaEnd && exponent >= NSDecimal::kSmallestExponent &&
        exponent <= NSDecimal::kLargestExponent)
      return {NSDecimal(product, exponent, left.isNegative() != right.isNegative())};
  }
  return internal::value::multiplyLong(left, right, mode);
}

/// Division by zero gives not-a-number and its error, for a dividend of zero too.
[[nodiscard]] NSDecimalResult NSDecimalDivide(const NSDecimal& left, const NSDecimal& right,
                                              NSRoundingMode mode = NSRoundPlain) noexcept;
/// Any number to the power 0 is 1. A negative power is one divided by the positive one, so that of
/// zero is a division by zero. Where the result is not exact its last digits may be off.
[[nodiscard]] NSDecimalResult NSDecimalPower(const NSDecimal& number, NSInteger power,
                                             NSRoundingMode mode = NSRoundPlain) noexcept;
/// The number times ten to the power.
[[nodiscard]] NSDecimalResult NSDecimalMultiplyByPowerOf10(
    const NSDecimal& number, NSInteger power, NSRoundingMode mode = NSRoundPlain) noexcept;
/// Keeps `scale` digits after the point; a negative scale rounds before it: 1250 at scale -2 is
/// 1300. `NSDecimalNoScale` keeps all. Dropped digits are no error; only overflow can happen.
[[nodiscard]] NSDecimalResult NSDecimalRound(const NSDecimal& number, NSInteger scale,
                                             NSRoundingMode mode = NSRoundPlain) noexcept;

}  // namespace ORLFoundation
