/// Powers of ten of 64 and 128 bits, and the count of decimal digits.
#pragma once

#include <ORLFoundation/platform/value/NSDecimal.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace ORLFoundation::internal::value {

using Wide = NSDecimal::Mantissa;

/// The largest power of ten that 64 bits hold is 10^19.
inline constexpr int kMostShortDigits = 19;

inline constexpr std::array<Wide, NSDecimal::kMostDigits + 1> kPowersOfTen = [] {
  std::array<Wide, NSDecimal::kMostDigits + 1> powers{};
  Wide power = 1;
  for (Wide& entry : powers) {
    entry = power;
    power *= 10;
  }
  return powers;
}();

inline constexpr std::array<std::uint64_t, kMostShortDigits + 1> kShortPowersOfTen = [] {
  std::array<std::uint64_t, kMostShortDigits + 1> powers{};
  for (std::size_t i = 0; i < powers.size(); ++i)
    powers[i] = static_cast<std::uint64_t>(kPowersOfTen[i]);
  return powers;
}();

[[nodiscard]] constexpr Wide powerOfTen(int exponent) noexcept {
  return kPowersOfTen[static_cast<std::size_t>(exponent)];
}
[[nodiscard]] constexpr std::uint64_t shortPowerOfTen(int exponent) noexcept {
  return kShortPowersOfTen[static_cast<std::size_t>(exponent)];
}

[[nodiscard]] constexpr std::uint64_t lowWord(Wide value) noexcept {
  return static_cast<std::uint64_t>(value);
}
[[nodiscard]] constexpr std::uint64_t highWord(Wide value) noexcept {
  return static_cast<std::uint64_t>(value >> 64);
}
[[nodiscard]] constexpr int bitWidth(Wide value) noexcept {
  const std::uint64_t high = highWord(value);
  return high != 0 ? 64 + static_cast<int>(std::bit_width(high))
                   : static_cast<int>(std::bit_width(lowWord(value)));
}

/// Decimal digits of a value below 10^38; none for zero.
[[nodiscard]] constexpr int digitCount(Wide value) noexcept {
  // log10(2) as a fraction; the estimate is right or one too small.
  const int estimate = (bitWidth(value) * 1233) >> 12;
  return estimate + (value >= powerOfTen(estimate) ? 1 : 0);
}
[[nodiscard]] constexpr int shortDigitCount(std::uint64_t value) noexcept {
  const int estimate = (static_cast<int>(std::bit_width(value)) * 1233) >> 12;
  return estimate + (value >= shortPowerOfTen(estimate) ? 1 : 0);
}

}  // namespace ORLFoundation::internal::value
