/// The level that zlib is asked for.
#pragma once

#include <cmath>

namespace ORLFoundation::internal::primitives {

/// Nine times the argument, halves away from zero; -1 below zero. What is no number or far beyond
/// the range gives 10, a level that zlib refuses.
[[nodiscard]] inline int compressionLevel(float argument) {
  constexpr int kDefault = -1, kRefused = 10;
  if (argument < 0) return kDefault;
  const float level = std::round(argument * 9);
  return level < kRefused ? static_cast<int>(level) : kRefused;
}

}  // namespace ORLFoundation::internal::primitives
