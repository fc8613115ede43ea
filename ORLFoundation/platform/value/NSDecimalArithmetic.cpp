#include <ORLFoundation/platform/value/NSDecimalArithmetic.h>
#include <ORLFoundation/platform/value/internal/DecimalRounding.h>
#include <ORLFoundation/platform/value/internal/WideInteger.h>

#include <algorithm>

namespace ORLFoundation {
namespace {

using internal::Dropped;
using internal::ExactValue;
using internal::Wide;
using internal::WideInteger;

/// No decimal stays one when its exponent moves this far.
constexpr NSInteger kFarthestPower = 1000;

constexpr NSDecimalResult kNotANumber{NSDecimal::notANumber(), NSCalculationNoError};

/// The sum or the difference of two magnitudes, the first of which has the larger exponent.
ExactValue exactSum(const NSDecimal& upper, const NSDecimal& lower) noexcept {
  const int distance = upper.exponent() - lower.exponent();
  const int room = internal::kMostWideDigits - internal::digitCount(upper.mantissa());
  const int raised = std::min(distance, room);
  const WideInteger large = internal::timesPowerOfTen(upper.mantissa(), raised);
  internal::WideQuotient small{lower.mantissa(), Dropped::kNothing};
  if (raised < distance) small = internal::dropDigits({small.quotient, 0}, distance - raised);
  const WideInteger other{small.quotient, 0};
  const bool more = small.dropped != Dropped::kNothing;
  ExactValue result{{}, upper.exponent() - raised, upper.isNegative(), small.dropped};
  if (upper.isNegative() == lower.isNegative()) {
    result.digits = internal::sum(large, other);
  } else if (large < other) {
    result.digits = internal::difference(other, large);
    result.negative = lower.isNegative();
  } else {
    // What was cut off the smaller one comes off the larger: one unit less, and something more.
    result.digits = internal::difference(large, internal::sum(other, {more ? Wide{1} : 0, 0}));
    result.below = more ? Dropped::kBelowHalf : Dropped::kNothing;
  }
  return result;
}

}  // namespace

namespace internal {

NSDecimalResult addLong(const NSDecimal& left, const NSDecimal& right,
                        NSRoundingMode mode) noexcept {
  if (left.isNaN() || right.isNaN()) return kNotANumber;
  if (left.isZero()) return {right};
  if (right.isZero()) return {left};
  if (left.exponent() < right.exponent()) return rounded(exactSum(right, left), mode);
  return rounded(exactSum(left, right), mode);
}

NSDecimalResult multiplyLong(const NSDecimal& left, const NSDecimal& right,
                             NSRoundingMode mode) noexcept {
  if (left.isNaN() || right.isNaN()) return kNotANumber;
  return rounded({product(left.mantissa(), right.mantissa()), left.exponent() + right.exponent(),
                  left.isNegative() != right.isNegative()},
                 mode);
}

}  // namespace internal

NSDecimalResult NSDecimalDivide(const NSDecimal& left, const NSDecimal& right,
                                NSRoundingMode mode) noexcept {
  if (left.isNaN() || right.isNaN()) return kNotANumber;
  if (right.isZero()) return {NSDecimal::notANumber(), NSCalculationDivideByZero};
  if (left.isZero()) return {};
  Wide dividend = left.mantissa();
  Wide divisor = right.mantissa();
  const int distance = internal::digitCount(divisor) - internal::digitCount(dividend);
  // As many digits on both sides tell whether the quotient's first digit is there or one further.
  const bool starts = distance < 0 ? dividend >= divisor * internal::powerOfTen(-distance)
                                   : dividend * internal::powerOfTen(distance) >= divisor;
  const int raised = NSDecimal::kMostDigits - (starts ? 1 : 0) + distance;
  const auto quotient = internal::divide(internal::timesPowerOfTen(dividend, raised), divisor);
  const NSDecimalResult result = internal::rounded({{quotient.quotient, 0},
                                                    left.exponent() - right.exponent() - raised,
                                                    left.isNegative() != right.isNegative(),
                                                    quotient.dropped},
                                                   mode);
  if (result.error != NSCalculationNoError) return result;
  return {result.value.compacted()};
}

NSDecimalResult NSDecimalMultiplyByPowerOf10(const NSDecimal& number, NSInteger power,
                                             NSRoundingMode mode) noexcept {
  if (number.isNaN()) return kNotANumber;
  const auto moved = static_cast<int>(std::clamp(power, -kFarthestPower, kFarthestPower));
  return internal::rounded({{number.mantissa(), 0}, number.exponent() + moved, number.isNegative()},
                           mode);
}

NSDecimalResult NSDecimalRound(const NSDecimal& number, NSInteger scale,
                               NSRoundingMode mode) noexcept {
  if (number.isNaN() || scale >= -number.exponent()) return {number};
  const auto lowest = static_cast<int>(-std::max(scale, -kFarthestPower));
  const NSDecimalResult result = internal::rounded(
      {{number.mantissa(), 0}, number.exponent(), number.isNegative()}, mode, lowest);
  if (result.error == NSCalculationOverflow) return result;
  return {result.value};
}

}  // namespace ORLFoundation
