
#include <ORLFoundation/platform/value/NSDecimalArithmetic.h>

#include <ORLFoundation/platform/value/internal/DecimalRounding.h>
#include <ORLFoundation/platform/value/internal/WideInteger.h>

#include <algorithm>
#include <cstdlib>

namespace ORLFoundation {

using namespace internal::value;

namespace {

/// No decimal stays one when its exponent moves this far.
constexpr NSInteger kFarthestPower = 1000;

constexpr NSDecimalResult kNotANumber{NSDecimal::notANumber(), NSCalculationNoError};

/// The sum or the difference of two magnitudes that do not fit 38 digits at the lower exponent. The
/// first has the larger exponent and, where the signs differ, so many digits that it is the larger.
ExactValue exactSum(const NSDecimal& upper, const NSDecimal& lower) noexcept {
  const int distance = upper.exponent() - lower.exponent();
  const int room = kMostWideDigits - digitCount(upper.mantissa());
  const int raised = std::min(distance, room);
  const WideInteger large = timesPowerOfTen(upper.mantissa(), raised);
  WideQuotient small{lower.mantissa(), Dropped::kNothing};
  if (raised < distance) small = dropDigits({small.quotient, 0}, distance - raised);
  ExactValue result{{}, upper.exponent() - raised, upper.isNegative(), small.dropped};
  if (upper.isNegative() == lower.isNegative()) {
    result.digits = sum(large, {small.quotient, 0});
  } else {
    // What was cut off the smaller one comes off the larger: one unit less, and something more. So
    // many digits are dropped then that its class does not count.
    const bool more = small.dropped != Dropped::kNothing;
    result.digits = difference(large, {small.quotient + (more ? 1 : 0), 0});
  }
  return result;
}

/// Whether the sum fits 38 digits without a look below it; then it is exact.
bool addWithinDigits(const NSDecimal& upper, const NSDecimal& lower, NSDecimal& sum) noexcept {
  const int distance = upper.exponent() - lower.exponent();
  Wide large = upper.mantissa();
  const Wide small = lower.mantissa();
  if (distance != 0) {
    if (distance + digitCount(large) > NSDecimal::kMostDigits) return false;
    large *= powerOfTen(distance);
  }
  const bool isSum = upper.isNegative() == lower.isNegative();
  if (isSum && large + small >= NSDecimal::kMantissaEnd) return false;
  const bool isLarger = isSum || large >= small;
  const Wide digits = isSum ? large + small : isLarger ? large - small : small - large;
  sum = NSDecimal(digits, lower.exponent(), isLarger ? upper.isNegative() : lower.isNegative());
  return true;
}

struct SignedSum {
  Wide digits;
  bool isNegative;
};

/// The sum of two magnitudes below 2^127 under their signs, without a branch.
constexpr SignedSum signedSum(Wide left, bool isLeftNegative, Wide right,
                              bool isRightNegative) noexcept {
  const bool areUnlike = isLeftNegative != isRightNegative;
  const Wide sum = left + withSign(right, areUnlike);
  const bool isTurned = areUnlike && (sum >> 127) != 0;
  return {withSign(sum, isTurned), isLeftNegative != isTurned};
}

/// Mantissas of 64 bits that are at most this many digits apart have an exact sum.
constexpr int kShortDistance = 18;

/// Both mantissas short, their exponents at most `kShortDistance` apart.
NSDecimal addShort(const NSDecimal& left, const NSDecimal& right, int distance) noexcept {
  const SignedSum sum = signedSum(
      Wide{left.shortMantissa()} * shortPowerOfTen(std::max(distance, 0)), left.isNegative(),
      Wide{right.shortMantissa()} * shortPowerOfTen(std::max(-distance, 0)), right.isNegative());
  return {sum.digits, std::min(left.exponent(), right.exponent()), sum.isNegative};
}

/// Drops at most 19 digits.
NSDecimal roundByWord(const NSDecimal& number, int drop, NSRoundingMode mode) noexcept {
  const std::uint64_t unit = shortPowerOfTen(drop);
  const WordDivision kept = divideWide(number.mantissa(), unit);
  const bool away = roundsAway(mode, number.isNegative(), (kept.quotient & 1) != 0,
                               classOfRemainder(kept.remainder, unit));
  return {kept.quotient + (away ? 1 : 0), number.exponent() + drop, number.isNegative()};
}

/// Rounds a quotient of 38 digits; one without a rest takes no more digits than it needs. None is
/// so near to 10^38 that rounding reaches it: a divisor of 38 digits keeps it one unit away.
NSDecimalResult roundedQuotient(const WideQuotient& quotient, int exponent, bool negative,
                                NSRoundingMode mode) noexcept {
  const bool isOdd = (quotient.quotient & 1) != 0;
  const bool away = roundsAway(mode, negative, isOdd, quotient.dropped);
  const Wide digits = quotient.quotient + (away ? 1 : 0);
  if (exponent < NSDecimal::kSmallestExponent || exponent > NSDecimal::kLargestExponent) {
    const NSDecimalResult result =
        rounded({{quotient.quotient, 0}, exponent, negative, quotient.dropped}, mode);
    if (result.error != NSCalculationNoError) return result;
    return {result.value.compacted()};
  }
  const NSDecimal value(digits, exponent, negative);
  if (quotient.dropped == Dropped::kNothing) return {value.compacted()};
  return {value, NSCalculationLossOfPrecision};
}

/// How far the dividend is raised for a quotient of 38 digits, when as many digits on both sides
/// have told whether its first digit is there or one further.
constexpr int raiseOfDividend(int distance, bool starts) noexcept {
  return NSDecimal::kMostDigits - (starts ? 1 : 0) + distance;
}

/// Divides numbers of 64 bits other than zero.
NSDecimalResult divideShort(const NSDecimal& left, const NSDecimal& right,
                            NSRoundingMode mode) noexcept {
  const std::uint64_t dividend = left.shortMantissa();
  const std::uint64_t divisor = right.shortMantissa();
  const int distance = shortDigitCount(divisor) - shortDigitCount(dividend);
  const bool starts = Wide{dividend} * shortPowerOfTen(std::max(distance, 0)) >=
                      Wide{divisor} * shortPowerOfTen(std::max(-distance, 0));
  const int raised = raiseOfDividend(distance, starts);
  return roundedQuotient(divideByWord(timesShort(widePowerOfTen(raised), dividend), divisor),
                         left.exponent() - right.exponent() - raised,
                         left.isNegative() != right.isNegative(), mode);
}

}  // namespace

namespace internal::value {

NSDecimalResult add(const NSDecimal& left, const NSDecimal& right, NSRoundingMode mode) noexcept {
  const int distance = left.exponent() - right.exponent();
  if (distance == 0 && !left.isNaN() && !right.isNaN()) {
    const SignedSum sum =
        signedSum(left.mantissa(), left.isNegative(), right.mantissa(), right.isNegative());
    if (sum.digits < NSDecimal::kMantissaEnd)
      return {NSDecimal(sum.digits, left.exponent(), sum.isNegative)};
  } else if (left.isShort() && right.isShort() && std::abs(distance) <= kShortDistance) {
    return {addShort(left, right, distance)};
  }
  return addLong(left, right, mode);
}

NSDecimalResult addLong(const NSDecimal& left, const NSDecimal& right,
                        NSRoundingMode mode) noexcept {
  if (left.isNaN() || right.isNaN()) return kNotANumber;
  if (left.isZero()) return {right};
  if (right.isZero()) return {left};
  const bool isLeftUpper = left.exponent() >= right.exponent();
  const NSDecimal& upper = isLeftUpper ? left : right;
  const NSDecimal& lower = isLeftUpper ? right : left;
  NSDecimal sum;
  if (addWithinDigits(upper, lower, sum)) return {sum};
  return rounded(exactSum(upper, lower), mode);
}

NSDecimalResult multiplyLong(const NSDecimal& left, const NSDecimal& right,
                             NSRoundingMode mode) noexcept {
  if (left.isNaN() || right.isNaN()) return kNotANumber;
  return rounded({product(left.mantissa(), right.mantissa()), left.exponent() + right.exponent(),
                  left.isNegative() != right.isNegative()},
                 mode);
}

NSDecimalResult divideLong(const NSDecimal& left, const NSDecimal& right,
                           NSRoundingMode mode) noexcept {
  if (left.isNaN() || right.isNaN()) return kNotANumber;
  if (right.isZero()) return {NSDecimal::notANumber(), NSCalculationDivideByZero};
  if (left.isZero()) return {};
  const Wide dividend = left.mantissa();
  const Wide divisor = right.mantissa();
  const int distance = digitCount(divisor) - digitCount(dividend);
  const bool starts =
      dividend * powerOfTen(std::max(distance, 0)) >= divisor * powerOfTen(std::max(-distance, 0));
  const int raised = raiseOfDividend(distance, starts);
  return roundedQuotient(divide(timesPowerOfTen(dividend, raised), divisor),
                         left.exponent() - right.exponent() - raised,
                         left.isNegative() != right.isNegative(), mode);
}

NSDecimalResult roundLong(const NSDecimal& number, NSInteger scale, NSRoundingMode mode) noexcept {
  if (number.isNaN() || scale >= -number.exponent()) return {number};
  const auto lowest = static_cast<int>(-std::max(scale, -kFarthestPower));
  const NSDecimalResult result =
      rounded({{number.mantissa(), 0}, number.exponent(), number.isNegative()}, mode, lowest);
  if (result.error == NSCalculationOverflow) return result;
  return {result.value};
}

}  // namespace internal::value

NSDecimalResult NSDecimalDivide(const NSDecimal& left, const NSDecimal& right,
                                NSRoundingMode mode) noexcept {
  if (left.isShort() && right.isShort() && !left.isZero() && !right.isZero())
    return divideShort(left, right, mode);
  return divideLong(left, right, mode);
}

NSDecimalResult NSDecimalMultiplyByPowerOf10(const NSDecimal& number, NSInteger power,
                                             NSRoundingMode mode) noexcept {
  if (number.isNaN()) return kNotANumber;
  const auto moved = static_cast<int>(std::clamp(power, -kFarthestPower, kFarthestPower));
  return rounded({{number.mantissa(), 0}, number.exponent() + moved, number.isNegative()}, mode);
}

NSDecimalResult NSDecimalRound(const NSDecimal& number, NSInteger scale,
                               NSRoundingMode mode) noexcept {
  if (number.isNaN() || scale >= -number.exponent()) return {number};
  const auto lowest = static_cast<int>(-std::max(scale, -kFarthestPower));
  const int drop = lowest - number.exponent();
  if (drop <= kMostShortDigits && lowest <= NSDecimal::kLargestExponent)
    return {roundByWord(number, drop, mode)};
  return roundLong(number, scale, mode);
}

}  // namespace ORLFoundation
