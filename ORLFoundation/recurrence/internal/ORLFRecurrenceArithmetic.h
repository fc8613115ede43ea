/// Whole-number arithmetic that answers for every operand.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <optional>

namespace ORLFoundation::internal::recurrence {

/// The remainder with the sign of the dividend; 0 by 0.
[[nodiscard]] constexpr NSInteger remainder(NSInteger value, NSInteger divisor) noexcept {
  return divisor == 0 || divisor == -1 ? 0 : value % divisor;
}

/// The sum, wrapped around where it does not fit.
[[nodiscard]] constexpr NSInteger wrappedSum(NSInteger left, NSInteger right) noexcept {
  return static_cast<NSInteger>(static_cast<NSUInteger>(left) + static_cast<NSUInteger>(right));
}

/// The product; nil where it does not fit.
[[nodiscard]] constexpr std::optional<NSInteger> product(NSInteger left, NSInteger right) noexcept {
  NSInteger value = 0;
  if (__builtin_mul_overflow(left, right, &value)) return std::nullopt;
  return value;
}

}  // namespace ORLFoundation::internal::recurrence
