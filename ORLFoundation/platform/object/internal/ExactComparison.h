/// Comparison of numbers of different kinds by their exact values: nothing is rounded on the way.
/// Not-a-number equals itself and comes before everything else.
#pragma once

#include <ORLFoundation/platform/value/NSDecimal.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstdint>

namespace ORLFoundation::internal::object {

[[nodiscard]] NSComparisonResult compareExactly(std::int64_t left, std::int64_t right) noexcept;
[[nodiscard]] NSComparisonResult compareExactly(std::int64_t left, std::uint64_t right) noexcept;
[[nodiscard]] NSComparisonResult compareExactly(std::uint64_t left, std::uint64_t right) noexcept;
[[nodiscard]] NSComparisonResult compareExactly(double left, double right) noexcept;
[[nodiscard]] NSComparisonResult compareExactly(std::int64_t left, double right) noexcept;
[[nodiscard]] NSComparisonResult compareExactly(std::uint64_t left, double right) noexcept;
[[nodiscard]] NSComparisonResult compareExactly(const NSDecimal& left, const NSDecimal& right);
[[nodiscard]] NSComparisonResult compareExactly(std::int64_t left, const NSDecimal& right);
[[nodiscard]] NSComparisonResult compareExactly(std::uint64_t left, const NSDecimal& right);
[[nodiscard]] NSComparisonResult compareExactly(double left, const NSDecimal& right);

[[nodiscard]] constexpr NSComparisonResult reversed(NSComparisonResult result) noexcept {
  return static_cast<NSComparisonResult>(-static_cast<NSInteger>(result));
}

/// The pairs that are not listed above: booleans count as integers, the rest is turned round.
template <class Left, class Right>
[[nodiscard]] NSComparisonResult compareExactly(const Left& left, const Right& right) {
  if constexpr (std::same_as<Left, bool>) {
    return compareExactly(static_cast<std::int64_t>(left), right);
  } else if constexpr (std::same_as<Right, bool>) {
    return compareExactly(left, static_cast<std::int64_t>(right));
  } else {
    return reversed(compareExactly(right, left));
  }
}

}  // namespace ORLFoundation::internal::object
