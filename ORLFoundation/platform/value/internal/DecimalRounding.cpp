

#include <ORLFoundation/platform/value/internal/DecimalRounding.h>

#include <algorithm>

namespace ORLFoundation::internal::value {
namespace {

constexpr NSDecimalResult kTooLarge{NSDecimal::notANumber(), NSCalculationOverflow};

/// Takes an exponent past the largest in by zeros at the end of the mantissa.
NSDecimalResult takenIn(Wide mantissa, int exponent, bool negative,
                        NSCalculationError error) noexcept {
  const int zeros = exponent - NSDecimal::kLargestExponent;
  if (zeros + digitCount(mantissa) > NSDecimal::kMostDigits) return kTooLarge;
  return {NSDecimal(mantissa * powerOfTen(zeros), NSDecimal::kLargestExponent, negative), error};
}

}  // namespace

NSDecimalResult rounded(const ExactValue& value, NSRoundingMode mode, int lowestExponent) noexcept {
  const int surplus =
      std::max(digitCount(value.digits) - NSDecimal::kMostDigits, lowestExponent - value.exponent);
  WideQuotient kept{value.digits.low, value.below};
  int exponent = value.exponent;
  if (surplus > 0) {
    kept = dropDigits(value.digits, surplus);
    kept.dropped = withMoreBelow(kept.dropped, value.below != Dropped::kNothing);
    exponent += surplus;
  }
  if (roundsAway(mode, value.negative, (kept.quotient & 1) != 0, kept.dropped)) {
    if (++kept.quotient == NSDecimal::kMantissaEnd) {
      kept.quotient = powerOfTen(NSDecimal::kMostDigits - 1);
      ++exponent;
    }
  }
  const bool exact = kept.dropped == Dropped::kNothing;
  const NSCalculationError error = exact ? NSCalculationNoError : NSCalculationLossOfPrecision;
  if (kept.quotient == 0) return {NSDecimal(), exact ? error : NSCalculationUnderflow};
  if (exponent > NSDecimal::kLargestExponent)
    return takenIn(kept.quotient, exponent, value.negative, error);
  return {NSDecimal(kept.quotient, exponent, value.negative), error};
}

}  // namespace ORLFoundation::internal::value
