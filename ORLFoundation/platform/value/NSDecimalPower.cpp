#include <ORLFoundation/platform/value/NSDecimalArithmetic.h>
#include <ORLFoundation/platform/value/internal/DecimalRounding.h>

#include <algorithm>
#include <bit>
#include <boost/multiprecision/cpp_int.hpp>

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
/// A value of a higher or, below zero, lower place is past every decimal, and so are its powers.
constexpr std::int64_t kFarthestPlace = 1000;

/// A magnitude, cut off where it is not exact.
struct Working {
  Product digits = 1;
  std::int64_t exponent = 0;
  bool exact = true;
};

Product powerOfTen(int power) { return pow(Product(10), static_cast<unsigned>(power)); }

int digitCount(const Product& value) {
  if (value == 0) return 0;
  const auto bits = static_cast<int>(msb(value)) + 1;
  const int estimate = (bits * 1233) >> 12;
  return estimate + (value >= powerOfTen(estimate) ? 1 : 0);
}

void cutOff(Working& value) {
  const int surplus = digitCount(value.digits) - kWorkingDigits;
  if (surplus <= 0) return;
  const Product unit = powerOfTen(surplus);
  const Product rest = value.digits % unit;
  value.digits /= unit;
  value.exponent += surplus;
  value.exact = value.exact && rest == 0;
}

std::int64_t place(const Working& value) { return value.exponent + digitCount(value.digits); }

void multiply(Working& value, const Working& factor) {
  value.exact = value.exact && factor.exact;
  value.digits *= factor.digits;
  value.exponent += factor.exponent;
  cutOff(value);
}

Product productOf(Wide value) {
  return (Product(internal::value::highWord(value)) << 64) | internal::value::lowWord(value);
}

Wide wideOf(const Product& value) {
  const Product mask = (Product(1) << 64) - 1;
  return Wide{static_cast<std::uint64_t>(Product(value >> 64) & mask)} << 64 |
         static_cast<std::uint64_t>(Product(value & mask));
}

/// From the highest bit of the power down, so that nothing longer than the result is formed.
Working raised(const Working& base, std::uint64_t power) {
  Working value = base;
  for (int bit = static_cast<int>(std::bit_width(power)) - 2; bit >= 0; --bit) {
    const Working square = value;
    multiply(value, square);
    if ((power >> bit & 1) != 0) multiply(value, base);
    if (std::abs(place(value)) > kFarthestPlace) break;
  }
  return value;
}

Working inverse(const Working& value) {
  const int raisedBy = digitCount(value.digits) + kWorkingDigits - 1;
  const Product numerator = powerOfTen(raisedBy);
  Working result{numerator / value.digits, -value.exponent - raisedBy, value.exact};
  result.exact = result.exact && Product(numerator % value.digits) == 0;
  cutOff(result);
  return result;
}

}  // namespace

NSDecimalResult NSDecimalPower(const NSDecimal& number, NSInteger power,
                               NSRoundingMode mode) noexcept {
  if (number.isNaN()) return {number};
  if (power == 0) return {NSDecimal::one()};
  if (number.isZero() && power < 0) return {NSDecimal::notANumber(), NSCalculationDivideByZero};
  if (number.isZero()) return {};
  const auto bits = static_cast<std::uint64_t>(power);
  const NSDecimal base = number.compacted();
  Working value =
      raised({productOf(base.mantissa()), base.exponent()}, power < 0 ? 0 - bits : bits);
  if (power < 0) value = inverse(value);
  const WideInteger digits{wideOf(value.digits), wideOf(value.digits >> 128)};
  const auto exponent = std::clamp(value.exponent, -4 * kFarthestPlace, 4 * kFarthestPlace);
  return internal::value::rounded(
      {digits, static_cast<int>(exponent), number.isNegative() && power % 2 != 0,
       value.exact ? Dropped::kNothing : Dropped::kBelowHalf},
      mode);
}

}  // namespace ORLFoundation
