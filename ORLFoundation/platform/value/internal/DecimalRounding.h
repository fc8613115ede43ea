/// The one place where an exact value becomes a decimal: drops digits that do not fit, rounds under
/// a mode, tells the error.
#pragma once

#include <ORLFoundation/platform/value/NSDecimalArithmetic.h>
#include <ORLFoundation/platform/value/internal/WideInteger.h>

#include <cstdint>

namespace ORLFoundation::internal::value {

/// Whether the last digit that stays moves away from zero.
[[nodiscard]] constexpr bool roundsAwayByRule(unsigned mode, bool negative, bool odd,
                                              Dropped dropped) noexcept {
  if (dropped == Dropped::kNothing) return false;
  if (mode == NSRoundDown) return negative;
  if (mode == NSRoundUp) return !negative;
  if (dropped != Dropped::kHalf) return dropped == Dropped::kAboveHalf;
  return mode != NSRoundBankers || odd;
}

/// The rule as a bit for each of its 64 cases, for a look-up without branches.
inline constexpr std::uint64_t kRoundsAwayBits = [] {
  std::uint64_t bits = 0;
  for (unsigned i = 0; i < 64; ++i) {
    const bool away = roundsAwayByRule(i >> 4, (i & 8) != 0, (i & 4) != 0, Dropped(i & 3));
    bits |= std::uint64_t{away} << i;
  }
  return bits;
}();

[[nodiscard]] constexpr bool roundsAway(NSRoundingMode mode, bool negative, bool odd,
                                        Dropped dropped) noexcept {
  const unsigned known = mode <= NSRoundBankers ? static_cast<unsigned>(mode) : 0U;
  const unsigned index =
      known << 4 | unsigned{negative} << 3 | unsigned{odd} << 2 | static_cast<unsigned>(dropped);
  return (kRoundsAwayBits >> index & 1) != 0;
}

/// An exact magnitude: the digits, and the class of what stands below them.
struct ExactValue {
  WideInteger digits;
  int exponent = 0;
  bool negative = false;
  Dropped below = Dropped::kNothing;
};

/// The nearest decimal under the mode, without digits below ten to the lowest exponent.
[[nodiscard]] NSDecimalResult rounded(const ExactValue& value, NSRoundingMode mode,
                                      int lowestExponent = NSDecimal::kSmallestExponent) noexcept;

}  // namespace ORLFoundation::internal::value
