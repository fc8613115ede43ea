/// Whole-number arithmetic that answers for every operand.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

namespace ORLFoundation::internal::recurrence {

/// The remainder with the sign of the dividend; 0 by 0.
[[nodiscard]] constexpr NSInteger remainder(NSInteger value, NSInteger divisor) noexcept {
  return divisor == 0 || divisor == -1 ? 0 : value % divisor;
}

/// The sum, wrapped around where it does not fit.
[[nodiscard]] constexpr NSInteger wrappedSum(NSInteger left, NSInteger right) noexcept {
  return static_cast<NSInteger>(static_cast<NSUInteger>(left) + static_cast<NSUInteger>(right));
}

/// A place that counts from 1, brought into 1 to `places`; one below 1 keeps a sign that no place
/// has.
[[nodiscard]] constexpr NSInteger reducedPlace(NSInteger place, NSInteger places) noexcept {
  return remainder(wrappedSum(place, -1), places) + 1;
}

}  // namespace ORLFoundation::internal::recurrence
