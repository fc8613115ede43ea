

#include <ORLFoundation/platform/value/internal/WideInteger.h>

#include <array>

namespace ORLFoundation::internal::value {
namespace {

/// One step of a long division: three words by two, the divisor's top bit set and the first two
/// words below it. Leaves the remainder in the first two.
std::uint64_t quotientWord(Wide& remainder, std::uint64_t next, Wide divisor) noexcept {
  const std::uint64_t top = highWord(divisor);
  Wide estimate;
  Wide rest;
  if (highWord(remainder) == top) {
    estimate = ~std::uint64_t{0};
    rest = Wide{lowWord(remainder)} + top;
  } else {
    const ShortDivision step = divideTwoWords(highWord(remainder), lowWord(remainder), top);
    estimate = step.quotient;
    rest = step.remainder;
  }
  while (highWord(rest) == 0 && estimate * lowWord(divisor) > ((rest << 64) | next)) {
    --estimate;
    rest += top;
  }
  remainder = ((remainder << 64) | next) - estimate * divisor;
  return lowWord(estimate);
}

/// A power of ten as a divisor: its reciprocal, moved up to 128 bits, turns a division into two
/// multiplications (Barrett, 1986).
struct PreparedDivisor {
  Wide divisor;
  Wide reciprocal;
  /// The divisor's bits but one.
  int shift;
};

constexpr PreparedDivisor prepared(Wide divisor) noexcept {
  PreparedDivisor by{divisor, 0, bitWidth(divisor) - 1};
  Wide rest = Wide{1} << by.shift;
  for (int i = 0; i < 128; ++i) {
    rest <<= 1;
    const bool goes = rest >= divisor;
    by.reciprocal = (by.reciprocal << 1) | (goes ? 1U : 0U);
    if (goes) rest -= divisor;
  }
  return by;
}

constexpr std::array<PreparedDivisor, NSDecimal::kMostDigits + 1> kPreparedPowersOfTen = [] {
  std::array<PreparedDivisor, NSDecimal::kMostDigits + 1> table{};
  for (std::size_t i = 1; i < table.size(); ++i) table[i] = prepared(kPowersOfTen[i]);
  return table;
}();

/// Drops at most 38 digits.
WideQuotient dropSomeDigits(const WideInteger& value, int count) noexcept {
  const PreparedDivisor& by = kPreparedPowersOfTen[static_cast<std::size_t>(count)];
  const Wide upper = (value.high << (128 - by.shift)) | (value.low >> by.shift);
  // The estimate is right, or one or two too small.
  Wide quotient = product(upper, by.reciprocal).high;
  Wide remainder = value.low - quotient * by.divisor;
  for (int i = 0; i < 2; ++i) {
    const bool goes = remainder >= by.divisor;
    quotient += Wide{goes};
    remainder -= by.divisor & (Wide{0} - Wide{goes});
  }
  return {quotient, classOfRemainder(remainder, by.divisor)};
}

}  // namespace

int digitCount(const WideInteger& value) noexcept {
  const int width = value.high == 0 ? bitWidth(value.low) : 128 + bitWidth(value.high);
  const int estimate = (width * 1233) >> 12;
  return estimate + (value < widePowerOfTen(estimate) ? 0 : 1);
}

WideQuotient dropDigits(const WideInteger& value, int count) noexcept {
  constexpr int kStep = NSDecimal::kMostDigits;
  if (count <= kStep) return dropSomeDigits(value, count);
  if (count > kMostWideDigits) return {0, value.isZero() ? Dropped::kNothing : Dropped::kBelowHalf};
  const WideQuotient upper = dropSomeDigits(value, kStep);
  const WideQuotient kept = dropSomeDigits({upper.quotient, 0}, count - kStep);
  return {kept.quotient, withMoreBelow(kept.dropped, upper.dropped != Dropped::kNothing)};
}

WideQuotient divideByTwoWords(const WideInteger& value, Wide divisor) noexcept {
  const int shift = 128 - bitWidth(divisor);
  const Wide by = divisor << shift;
  Wide remainder = shift == 0 ? value.high : (value.high << shift) | (value.low >> (128 - shift));
  const Wide low = value.low << shift;
  const std::uint64_t upper = quotientWord(remainder, highWord(low), by);
  const std::uint64_t lower = quotientWord(remainder, lowWord(low), by);
  return {(Wide{upper} << 64) | lower, classOfRemainder(remainder >> shift, divisor)};
}

}  // namespace ORLFoundation::internal::value
