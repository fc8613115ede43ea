/// Which of a date's three numbers can be its day, its month and its year, as bits: 1, 2 and 4 for
/// the first number, 8, 16 and 32 for the second, 64, 128 and 256 for the third.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <array>

namespace ORLFoundation::internal::inference {

inline constexpr NSInteger kAllRoles = 511;

/// An order of day, month and year: its number, the bits that it needs, and the place, from 0, at
/// which each stands.
struct DateOrder {
  NSInteger format;
  NSInteger bits;
  std::size_t day, month, year;
};

inline constexpr std::array<DateOrder, 6> kDateOrders{{
    {1, 273, 0, 1, 2},
    {2, 266, 1, 0, 2},
    {3, 84, 2, 1, 0},
    {4, 140, 1, 2, 0},
    {5, 98, 2, 0, 1},
    {6, 161, 0, 2, 1},
}};

/// The roles that three numbers can have, alone.
[[nodiscard]] NSInteger rolesOfNumbers(const std::array<NSInteger, 3>& numbers) noexcept;

/// What is left of the roles once a number with one role keeps it for itself, and a role with one
/// number takes it for itself. Bits beyond the nine are kept as they are.
[[nodiscard]] NSInteger narrowedRoles(NSInteger bits) noexcept;

}  // namespace ORLFoundation::internal::inference
