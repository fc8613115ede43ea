/// How many of one unit make another, for this room and those above it.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

namespace ORLFoundation::internal::calendar {

inline constexpr NSInteger kMonthsPerYear = 12;
inline constexpr NSInteger kMonthsPerQuarter = 3;
inline constexpr NSInteger kQuartersPerYear = 4;
inline constexpr NSInteger kDaysPerWeek = 7;

}  // namespace ORLFoundation::internal::calendar
