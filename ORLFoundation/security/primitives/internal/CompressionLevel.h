/// The level that zlib is asked for.
#pragma once

#include <cmath>

namespace ORLFoundation::internal::primitives {

/// Nine times the argument, halves away from zero; -1 below zero. zlib refuses what is above 9;
/// what is no number, or more than an `int` holds, gives such a level too.
[[nodiscard]] inline int compressionLevel(float argument) {
  constexpr int kDefault = -1, kRefused = 1 << 30;
  if (argument < 0) return kDefault;
  const float level = std::round(argument * 9);
  return level < float{kRefused} ? static_cast<int>(level) : kRefused;
}

}  // namespace ORLFoundation::internal::primitives
