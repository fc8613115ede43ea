/// The words of a decimal as they lie in memory, for loops over many decimals, which look at a
/// whole word where `exponent` and `isNegative` take it apart.
#pragma once

#include <ORLFoundation/platform/value/NSDecimal.h>
#include <ORLFoundation/platform/value/internal/PowersOfTen.h>

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace ORLFoundation::internal::value {

struct DecimalWords {
  std::uint64_t low;
  /// Other than zero for a mantissa of more than 64 bits and for not-a-number.
  std::uint64_t high;
  /// Twice the exponent, and one more below zero.
  std::uint64_t place;
};

/// The place is copied out of its value: compilers take more than a word of a cast by way of the
/// stack.
[[nodiscard]] inline DecimalWords wordsOf(const NSDecimal& value) noexcept {
  DecimalWords words{value.shortMantissa(), highWord(value.mantissa()), 0};
  const char* const place = reinterpret_cast<const char*>(&value) + 2 * sizeof words.place;
  std::memcpy(&words.place, place, sizeof words.place);
  return words;
}

static_assert(std::bit_cast<std::array<std::uint64_t, 3>>(NSDecimal(5, 3, true))[2] == 7);
static_assert(highWord(NSDecimal::notANumber().mantissa()) != 0);

}  // namespace ORLFoundation::internal::value
