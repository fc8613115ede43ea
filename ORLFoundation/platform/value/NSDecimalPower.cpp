#include <ORLFoundation/platform/value/NSDecimalArithmetic.h>
#include <ORLFoundation/platform/value/internal/DecimalRounding.h>

#include <bit>
#include <boost/multiprecision/cpp_int.hpp>
#include <cstdlib>

namespace ORLFoundation {
namespace {

using boost::multiprecision::cpp_int_backend;
using boost::multiprecision::unchecked;
using boost::multiprecision::unsigned_magnitude;
using internal::value::Dropped;
using internal::value::Wide;
using internal::value::WideInteger;

/// Holds the product of two working values; its memory is part of it.
using Product =
    boost::multiprecision::number<cpp_int_backend<512, 512, unsigned_magnitude, unchecked, void>>;

/// Powers are carried with twice the digits of a decimal, so that the last of its digits is right.
constexpr int kWorkingDigits = internal::value::kMostWideDigits;
/// Of a higher or, below zero, lower exponent a value is past every decimal, and so are its powers.
constexpr int kFarthestExponent = 1000;
/// 5^54, the last one of 38 digits; what divides it is a power of five.
constexpr std::uint64_t kItsRoot = 7450580596923828125;
constexpr Wide kLongestPowerOfFive = Wide{kItsRoot} * kItsRoot;

/// A magnitude above zero, cut off where it is not exact.
struct Working {
  Product digits;
  int exponent;
  bool exact = true;
};

Product powerOfTen(int power) { return pow(Product(10), static_cast<unsigned>(power)); }

/// As many digits as the value has, or one more.
int mostDigitsOf(const Product& value) { return (static_cast<int>(msb(value)) * 1233 >> 12) + 2; }

void cutOff(Working& value) {
  const int surplus = mostDigitsOf(value.digits) - kWorkingDigits;
  if (surplus <= 0) return;
  const Product unit = powerOfTen(surplus);
  const Product rest = value.digits % unit;
  value.digits /= unit;
  value.exponent += surplus;
  value.exact = value.exact && rest == 0;
}

/// The factor is exact, or the value itself.
void multiply(Working& value, const Working& factor) {
  value.digits *= factor.digits;
  value.exponent += factor.exponent;
  cutOff(value);
}

/// From the highest bit of the power down, so that nothing longer than the result is formed.
Working raised(const Working& base, std::uint64_t power) {
  Working value = base;
  for (int bit = static_cast<int>(std::bit_width(power)) - 2; bit >= 0; --bit) {
    const Working square = value;
    multiply(value, square);
    if ((power >> bit & 1) != 0) multiply(value, base);
    if (std::abs(value.exponent) > kFarthestExponent) break;
  }
  return value;
}

Working inverse(const Working& value) {
  const int raisedBy = mostDigitsOf(value.digits) + kWorkingDigits;
  const Product numerator = powerOfTen(raisedBy);
  const bool exact = value.exact && Product(numerator % value.digits) == 0;
  Working result{numerator / value.digits, -value.exponent - raisedBy, exact};
  cutOff(result);
  return result;
}

/// The power of the inverse where that is shorter: 1 / 5^120 has 37 digits, 5^120 has 84. That of
/// one over a power of two is the longer one.
Working raisedInverse(const Working& base, std::uint64_t power) {
  const bool isPowerOfFive = kLongestPowerOfFive % static_cast<Wide>(base.digits) == 0;
  return isPowerOfFive ? raised(inverse(base), power) : inverse(raised(base, power));
}

}  // namespace

NSDecimalResult NSDecimalPower(const NSDecimal& number, NSInteger power,
                               NSRoundingMode mode) noexcept {
  if (number.isNaN()) return {number};
  if (power == 0) return {NSDecimal::one()};
  const bool isInverse = power < 0;
  if (number.isZero() && isInverse) return {NSDecimal::notANumber(), NSCalculationDivideByZero};
  if (number.isZero()) return {};
  const auto bits = static_cast<std::uint64_t>(power);
  const NSDecimal base = number.compacted();
  const Working exact{Product(base.mantissa()), base.exponent()};
  const Working value = isInverse ? raisedInverse(exact, 0 - bits) : raised(exact, bits);
  const WideInteger digits{static_cast<Wide>(value.digits),
                           static_cast<Wide>(Product(value.digits >> 128))};
  return internal::value::rounded({digits, value.exponent, number.isNegative() && power % 2 != 0,
                                   value.exact ? Dropped::kNothing : Dropped::kBelowHalf},
                                  mode);
}

}  // namespace ORLFoundation
