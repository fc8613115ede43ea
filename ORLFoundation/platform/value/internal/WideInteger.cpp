#include <ORLFoundation/platform/value/internal/TwoWordDivision.h>
#include <ORLFoundation/platform/value/internal/WideInteger.h>

#include <algorithm>

namespace ORLFoundation::internal {
namespace {

constexpr Wide kTenTo38 = NSDecimal::kMantissaEnd;

/// A power of ten below 2^64, moved up until its top bit is set, with the reciprocal that turns a
/// division by it into two multiplications (Möller and Granlund, 2011).
struct PreparedDivisor {
  std::uint64_t divisor;
  std::uint64_t reciprocal;
  int shift;
};

constexpr std::array<PreparedDivisor, kMostShortDigits + 1> kPreparedPowersOfTen = [] {
  std::array<PreparedDivisor, kMostShortDigits + 1> table{};
  for (std::size_t i = 0; i < table.size(); ++i) {
    const int shift = std::countl_zero(kShortPowersOfTen[i]);
    const std::uint64_t divisor = kShortPowersOfTen[i] << shift;
    table[i] = {divisor, lowWord(~Wide{0} / divisor), shift};
  }
  return table;
}();

/// Two words by a prepared divisor; the high word is below it.
ShortDivision dividePrepared(std::uint64_t high, std::uint64_t low,
                             const PreparedDivisor& by) noexcept {
  const Wide estimate = Wide{by.reciprocal} * high + ((Wide{high} << 64) | low);
  std::uint64_t quotient = highWord(estimate) + 1;
  std::uint64_t remainder = low - quotient * by.divisor;
  if (remainder > lowWord(estimate)) {
    --quotient;
    remainder += by.divisor;
  }
  if (remainder >= by.divisor) {
    ++quotient;
    remainder -= by.divisor;
  }
  return {quotient, remainder};
}

using Words = std::array<std::uint64_t, 4>;

constexpr Words wordsOf(const WideInteger& value) noexcept {
  return {lowWord(value.low), highWord(value.low), lowWord(value.high), highWord(value.high)};
}

/// Divides the words, lowest first, by 10^count in place; count is at most 19. Gives the remainder.
std::uint64_t divideWords(Words& words, int& length, int count) noexcept {
  const PreparedDivisor& by = kPreparedPowersOfTen[static_cast<std::size_t>(count)];
  const auto movedUp = [&](std::size_t i) {
    const std::uint64_t below = i == 0 ? 0 : words[i - 1];
    return by.shift == 0 ? words[i] : (words[i] << by.shift) | (below >> (64 - by.shift));
  };
  std::uint64_t remainder =
      by.shift == 0 ? 0 : words[static_cast<std::size_t>(length - 1)] >> (64 - by.shift);
  for (auto i = static_cast<std::size_t>(length); i-- > 0;) {
    const ShortDivision step = dividePrepared(remainder, movedUp(i), by);
    words[i] = step.quotient;
    remainder = step.remainder;
  }
  while (length > 1 && words[static_cast<std::size_t>(length - 1)] == 0) --length;
  return remainder >> by.shift;
}

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

}  // namespace

int digitCount(const WideInteger& value) noexcept {
  if (value.high == 0 && value.low < kTenTo38) return digitCount(value.low);
  const int width = value.high == 0 ? bitWidth(value.low) : 128 + bitWidth(value.high);
  const int estimate = std::max(NSDecimal::kMostDigits, (width * 1233) >> 12);
  if (estimate > kMostWideDigits) return estimate;
  const WideInteger power = timesPowerOfTen(1, estimate);
  return value < power ? estimate : estimate + 1;
}

WideQuotient dropDigits(const WideInteger& value, int count) noexcept {
  if (count > kMostWideDigits + 1)
    return {0, value.isZero() ? Dropped::kNothing : Dropped::kBelowHalf};
  Words words = wordsOf(value);
  int length = value.high == 0 ? 2 : 4;
  bool more = false;
  for (; count > kMostShortDigits; count -= kMostShortDigits)
    more |= divideWords(words, length, kMostShortDigits) != 0;
  const std::uint64_t remainder = divideWords(words, length, count);
  const Dropped dropped = classOfRemainder(remainder, shortPowerOfTen(count));
  return {(Wide{words[1]} << 64) | words[0], withMoreBelow(dropped, more)};
}

WideQuotient divide(const WideInteger& value, Wide divisor) noexcept {
  if (highWord(divisor) == 0) {
    const std::uint64_t by = lowWord(divisor);
    const auto upper = divideTwoWords(lowWord(value.high), highWord(value.low), by);
    const auto lower = divideTwoWords(upper.remainder, lowWord(value.low), by);
    return {(Wide{upper.quotient} << 64) | lower.quotient,
            classOfRemainder(lower.remainder, divisor)};
  }
  const int shift = 128 - bitWidth(divisor);
  const Wide by = divisor << shift;
  Wide remainder = shift == 0 ? value.high : (value.high << shift) | (value.low >> (128 - shift));
  const Wide low = value.low << shift;
  const std::uint64_t upper = quotientWord(remainder, highWord(low), by);
  const std::uint64_t lower = quotientWord(remainder, lowWord(low), by);
  return {(Wide{upper} << 64) | lower, classOfRemainder(remainder >> shift, divisor)};
}

}  // namespace ORLFoundation::internal
