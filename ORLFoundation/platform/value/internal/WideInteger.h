/// Unsigned integers of 256 bits, for what stands between exact operands and a rounded result: 76
/// digits fit. Division is by powers of ten and by 128 bits only.
#pragma once

#include <ORLFoundation/platform/value/internal/PowersOfTen.h>
#include <ORLFoundation/platform/value/internal/TwoWordDivision.h>

namespace ORLFoundation::internal::value {

/// The most digits that 256 bits always hold, with room for one sum.
inline constexpr int kMostWideDigits = 76;

struct WideInteger {
  Wide low = 0;
  Wide high = 0;

  [[nodiscard]] constexpr bool isZero() const noexcept { return (low | high) == 0; }
  friend constexpr bool operator==(const WideInteger&, const WideInteger&) noexcept = default;
  friend constexpr bool operator<(const WideInteger& left, const WideInteger& right) noexcept {
    return left.high != right.high ? left.high < right.high : left.low < right.low;
  }
};

/// The two's complement of a negative number, without a branch.
[[nodiscard]] constexpr Wide withSign(Wide value, bool isNegative) noexcept {
  return (value ^ (Wide{0} - Wide{isNegative})) + Wide{isNegative};
}

[[nodiscard]] constexpr WideInteger sum(const WideInteger& left,
                                        const WideInteger& right) noexcept {
  WideInteger result{left.low + right.low, left.high + right.high};
  result.high += result.low < left.low ? 1 : 0;
  return result;
}

/// The left side is not below the right one.
[[nodiscard]] constexpr WideInteger difference(const WideInteger& left,
                                               const WideInteger& right) noexcept {
  const Wide borrow = left.low < right.low ? 1 : 0;
  return {left.low - right.low, left.high - right.high - borrow};
}

[[nodiscard]] constexpr WideInteger product(Wide left, Wide right) noexcept {
  const Wide left0 = lowWord(left), left1 = highWord(left);
  const Wide right0 = lowWord(right), right1 = highWord(right);
  const Wide low = left0 * right0;
  const Wide cross = left1 * right0 + highWord(low);
  const Wide middle = left0 * right1 + lowWord(cross);
  return {(middle << 64) | lowWord(low), left1 * right1 + highWord(cross) + highWord(middle)};
}

/// The value times ten to the power, which the caller knows to fit.
[[nodiscard]] constexpr WideInteger timesPowerOfTen(Wide value, int power) noexcept {
  if (power <= NSDecimal::kMostDigits) return product(value, powerOfTen(power));
  const WideInteger part = product(value, powerOfTen(NSDecimal::kMostDigits));
  const Wide factor = powerOfTen(power - NSDecimal::kMostDigits);
  WideInteger result = product(part.low, factor);
  result.high += part.high * factor;
  return result;
}

/// The product with one word, which the caller knows to fit.
[[nodiscard]] constexpr WideInteger timesShort(const WideInteger& value,
                                               std::uint64_t factor) noexcept {
  WideInteger result = product(value.low, factor);
  result.high += value.high * factor;
  return result;
}

inline constexpr std::array<WideInteger, kMostWideDigits + 1> kWidePowersOfTen = [] {
  std::array<WideInteger, kMostWideDigits + 1> powers{};
  for (std::size_t i = 0; i < powers.size(); ++i)
    powers[i] = timesPowerOfTen(1, static_cast<int>(i));
  return powers;
}();

[[nodiscard]] constexpr const WideInteger& widePowerOfTen(int exponent) noexcept {
  return kWidePowersOfTen[static_cast<std::size_t>(exponent)];
}

/// Decimal digits of a value below 2 * 10^76; none for zero.
[[nodiscard]] int digitCount(const WideInteger& value) noexcept;

/// How what is left out below a digit compares with half a unit of that digit.
enum class Dropped : unsigned { kNothing, kBelowHalf, kHalf, kAboveHalf };

/// The class of digits with more below them.
[[nodiscard]] constexpr Dropped withMoreBelow(Dropped digits, bool more) noexcept {
  if (!more) return digits;
  if (digits == Dropped::kNothing) return Dropped::kBelowHalf;
  return digits == Dropped::kHalf ? Dropped::kAboveHalf : digits;
}

/// The class of a remainder of a division, without a branch that would be guessed wrong half the
/// time.
template <class Word>
[[nodiscard]] constexpr Dropped classOfRemainder(Word remainder, Word divisor) noexcept {
  const Word rest = divisor - remainder;
  return static_cast<Dropped>(unsigned{remainder != 0} + unsigned{remainder >= rest} +
                              unsigned{remainder > rest});
}

struct WideQuotient {
  Wide quotient;
  Dropped dropped;
};

/// Drops that many digits, at least one, of a value below 2 * 10^76; what stays is below 10^38.
[[nodiscard]] WideQuotient dropDigits(const WideInteger& value, int count) noexcept;

/// Divides by one word, of which the value's high half is below.
[[nodiscard]] inline WideQuotient divideByWord(const WideInteger& value,
                                               std::uint64_t divisor) noexcept {
  const ShortDivision upper = divideTwoWords(lowWord(value.high), highWord(value.low), divisor);
  const ShortDivision lower = divideTwoWords(upper.remainder, lowWord(value.low), divisor);
  return {(Wide{upper.quotient} << 64) | lower.quotient,
          classOfRemainder(lower.remainder, divisor)};
}
/// Divides by more than one word.
[[nodiscard]] WideQuotient divideByTwoWords(const WideInteger& value, Wide divisor) noexcept;
/// Divides a value whose high half is below the divisor.
[[nodiscard]] inline WideQuotient divide(const WideInteger& value, Wide divisor) noexcept {
  return highWord(divisor) == 0 ? divideByWord(value, lowWord(divisor))
                                : divideByTwoWords(value, divisor);
}

}  // namespace ORLFoundation::internal::value
