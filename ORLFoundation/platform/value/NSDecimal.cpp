
#include <ORLFoundation/platform/value/NSDecimal.h>

#include <ORLFoundation/platform/value/internal/PowersOfTen.h>
#include <ORLFoundation/platform/value/internal/TwoWordDivision.h>

#include <array>
#include <charconv>
#include <cstdlib>

namespace ORLFoundation {

using namespace internal::value;

namespace {

constexpr std::uint64_t kExactDoubleEnd = std::uint64_t{1} << 53;
/// Powers of ten that a double holds exactly.
constexpr std::array kExactDoublePowers = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                           1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                           1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
/// Enough for each digit of any double.
constexpr int kMostDoubleDigits = 766;

/// Zeros are taken off in steps of these.
constexpr std::array kZeroSteps = {16, 16, 8, 4, 2, 1};

constexpr int signOf(const NSDecimal& value) noexcept {
  return value.isZero() ? 0 : value.isNegative() ? -1 : 1;
}

template <class Number>
constexpr NSComparisonResult order(Number left, Number right) noexcept {
  if (left == right) return NSOrderedSame;
  return left < right ? NSOrderedAscending : NSOrderedDescending;
}

/// Compares two numbers other than zero without their signs.
NSComparisonResult compareMagnitudes(const NSDecimal& left, const NSDecimal& right) noexcept {
  Wide ours = left.mantissa();
  Wide theirs = right.mantissa();
  const int ourDigits = digitCount(ours);
  const int theirDigits = digitCount(theirs);
  const NSComparisonResult places =
      order(ourDigits + left.exponent(), theirDigits + right.exponent());
  if (places != NSOrderedSame) return places;
  if (ourDigits < theirDigits) ours *= powerOfTen(theirDigits - ourDigits);
  if (theirDigits < ourDigits) theirs *= powerOfTen(ourDigits - theirDigits);
  return order(ours, theirs);
}

constexpr std::uint64_t mixed(std::uint64_t bits) noexcept {
  bits *= 0x9E3779B97F4A7C15U;
  return bits ^ (bits >> 32);
}

}  // namespace

NSDecimal NSDecimal::fromDouble(double value) noexcept {
  // Infinities and not-a-number have texts that are no numbers.
  char text[kMostDoubleDigits + 16];
  const auto written = std::to_chars(text, text + sizeof text, value, std::chars_format::scientific,
                                     kMostDoubleDigits);
  return parse({text, static_cast<std::size_t>(written.ptr - text)}).compacted();
}

NSDecimal NSDecimal::compacted() const noexcept {
  if (isZero()) return {};
  // Not-a-number stays: its digits are a power of two.
  Wide digits = mantissa();
  int exponent = this->exponent();
  for (const int step : kZeroSteps) {
    // A multiple of 10^n is one of 2^n.
    if ((digits & ((Wide{1} << step) - 1)) != 0 || exponent + step > kLargestExponent) continue;
    const WordDivision divided = divideWide(digits, shortPowerOfTen(step));
    if (divided.remainder != 0) continue;
    digits = divided.quotient;
    exponent += step;
  }
  return {digits, exponent, isNegative()};
}

NSComparisonResult NSDecimal::compareUnlike(const NSDecimal& other) const noexcept {
  if (isNaN() || other.isNaN()) return order(!isNaN(), !other.isNaN());
  const int sign = signOf(*this);
  const NSComparisonResult signs = order(sign, signOf(other));
  if (signs != NSOrderedSame || sign == 0) return signs;
  return sign > 0 ? compareMagnitudes(*this, other) : compareMagnitudes(other, *this);
}

NSUInteger NSDecimal::hash() const noexcept {
  const NSDecimal value = compacted();
  const auto place = static_cast<std::uint64_t>(value.place_);
  return mixed(value.low_ ^ mixed(value.high_ ^ mixed(place)));
}

double NSDecimal::doubleValue() const noexcept {
  const int place = exponent();
  if (isShort() && low_ <= kExactDoubleEnd && place >= -22 && place <= 22) {
    // Both numbers are exact, so that the one operation gives the nearest double.
    const auto magnitude = static_cast<double>(low_);
    const double power = kExactDoublePowers[static_cast<std::size_t>(std::abs(place))];
    const double value = place < 0 ? magnitude / power : magnitude * power;
    return isNegative() ? -value : value;
  }
  // The text of not-a-number gives not-a-number too.
  char text[kLongestText];
  const char* end = writeTo(text);
  double value = 0;
  std::from_chars(text, end, value);
  return value;
}

}  // namespace ORLFoundation
