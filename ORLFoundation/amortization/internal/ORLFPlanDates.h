/// The order of dates that a plan or a segment may lack.
#pragma once

#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <optional>

namespace ORLFoundation::internal::amortization {

/// A missing date is neither before nor after another.
[[nodiscard]] constexpr bool isBefore(const std::optional<NSDate>& left,
                                      const std::optional<NSDate>& right) noexcept {
  return left && right && orlfIsBefore(*left, *right);
}
[[nodiscard]] constexpr bool isAfter(const std::optional<NSDate>& left,
                                     const std::optional<NSDate>& right) noexcept {
  return isBefore(right, left);
}

}  // namespace ORLFoundation::internal::amortization
