/// Division of two words of 64 bits by one.
#pragma once

#include <ORLFoundation/platform/value/internal/PowersOfTen.h>

#include <cstdint>

namespace ORLFoundation::internal::value {

struct ShortDivision {
  std::uint64_t quotient;
  std::uint64_t remainder;
};

/// Two words by one. The high word is below the divisor, so that the quotient fits one word.
[[nodiscard]] inline ShortDivision divideTwoWords(std::uint64_t high, std::uint64_t low,
                                                  std::uint64_t divisor) noexcept {
#if defined(__x86_64__)
  // The compiler would call a general routine that handles quotients of any length.
  ShortDivision result{};
  __asm__("divq %4"
          : "=a"(result.quotient), "=d"(result.remainder)
          : "a"(low), "d"(high), "r"(divisor)
          : "cc");
  return result;
#else
  const Wide dividend = (Wide{high} << 64) | low;
  return {lowWord(dividend / divisor), lowWord(dividend % divisor)};
#endif
}

struct WordDivision {
  Wide quotient;
  std::uint64_t remainder;
};

/// Two words by one, whatever they are.
[[nodiscard]] inline WordDivision divideWide(Wide dividend, std::uint64_t divisor) noexcept {
  const std::uint64_t high = highWord(dividend);
  const ShortDivision lower = divideTwoWords(high % divisor, lowWord(dividend), divisor);
  return {(Wide{high / divisor} << 64) | lower.quotient, lower.remainder};
}

}  // namespace ORLFoundation::internal::value
