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

#include <cstdint>

namespace ORLFoundation {

struct NSDecimalResult {
  NSDecimal value = {};
  NSCalculationError error = NSCalculationNoError;
};

namespace internal::value {

/// Any two operands; these take shorter ways where there are some.
[[nodiscard]] NSDecimalResult add(const NSDecimal& left, const NSDecimal& right,
                                  NSRoundingMode mode) noexcept;

/// Any two operands, always the general way.
[[nodiscard]] NSDecimalResult addLong(const NSDecimal& left, const NSDecimal& right,
                                      NSRoundingMode mode) noexcept;
[[nodiscard]] NSDecimalResult multiplyLong(const NSDecimal& left, const NSDecimal& right,
                                           NSRoundingMode mode) noexcept;
[[nodiscard]] NSDecimalResult divideLong(const NSDecimal& left, const NSDecimal& right,
                                         NSRoundingMode mode) noexcept;
[[nodiscard]] NSDecimalResult roundLong(const NSDecimal& number, NSInteger scale,
                                        NSRoundingMode mode) noexcept;

/// Sums of money mostly have one exponent and mantissas below 2^62.
[[nodiscard]] constexpr bool areAlike(const NSDecimal& left, const NSDecimal& right) noexcept {
  return left.exponent() == right.exponent() && left.isShort() && right.isShort() &&
         (left.shortMantissa() | right.shortMantissa()) >> 62 == 0;
}
[[nodiscard]] constexpr NSDecimal addAlike(const NSDecimal& left, const NSDecimal& right) noexcept {
  const auto first = static_cast<std::int64_t>(left.shortMantissa());
  const auto second = static_cast<std::int64_t>(right.shortMantissa());
  const std::int64_t sum =
      (left.isNegative() ? -first : first) + (right.isNegative() ? -second : second);
  return {static_cast<std::uint64_t>(sum < 0 ? -sum : sum), left.exponent(), sum < 0};
}

}  // namespace internal::value

/// Short, so that it stands where it is called: a result that comes back by memory takes twice as
/// long.
[[nodiscard]] inline NSDecimalResult NSDecimalAdd(const NSDecimal& left, const NSDecimal& right,
                                                  NSRoundingMode mode = NSRoundPlain) noexcept {
  if (internal::value::areAlike(left, right)) return {internal::value::addAlike(left, right)};
  return internal::value::add(left, right, mode);
}

[[nodiscard]] inline NSDecimalResult NSDecimalSubtract(
    const NSDecimal& left, const NSDecimal& right, NSRoundingMode mode = NSRoundPlain) noexcept {
  return NSDecimalAdd(left, right.negated(), mode);
}

[[nodiscard]] inline NSDecimalResult NSDecimalMultiply(
    const NSDecimal& left, const NSDecimal& right, NSRoundingMode mode = NSRoundPlain) noexcept {
  if (left.isShort() && right.isShort()) {
    const NSDecimal::Mantissa product =
        NSDecimal::Mantissa{left.shortMantissa()} * right.shortMantissa();
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
