/// How measured progress becomes whole units.
#pragma once

#include <cstdint>
#include <limits>

namespace ORLFoundation::internal::progress {

/// The units in which an item counts what is done.
inline constexpr std::int64_t kProgressScale = 1000;

/// The whole part of a number; 0 for not-a-number, the nearest end of 64 bits for what is beyond
/// them, infinities included.
[[nodiscard]] inline std::int64_t wholeUnits(double value) noexcept {
  constexpr double kBeyond = 0x1p63;
  if (value >= kBeyond) return std::numeric_limits<std::int64_t>::max();
  if (value < -kBeyond) return std::numeric_limits<std::int64_t>::min();
  return value == value ? static_cast<std::int64_t>(value) : 0;
}

}  // namespace ORLFoundation::internal::progress
