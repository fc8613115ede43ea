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

namespace ORLFoundation {

struct NSDecimalResult {
  NSDecimal value;
  NSCalculationError error = NSCalculationNoError;
};

[[nodiscard]] NSDecimalResult NSDecimalAdd(const NSDecimal& left, const NSDecimal& right,
                                           NSRoundingMode mode = NSRoundPlain) noexcept;
[[nodiscard]] NSDecimalResult NSDecimalSubtract(const NSDecimal& left, const NSDecimal& right,
                                                NSRoundingMode mode = NSRoundPlain) noexcept;
[[nodiscard]] NSDecimalResult NSDecimalMultiply(const NSDecimal& left, const NSDecimal& right,
                                                NSRoundingMode mode = NSRoundPlain) noexcept;
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
