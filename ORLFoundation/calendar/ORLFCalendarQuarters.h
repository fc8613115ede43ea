/// Quarters of the year, counted in months because calendars keep no quarters of their own.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>

namespace ORLFoundation {

/// `orlfMonthsPerQuarter`  3 in the Gregorian calendar; `NSNotFound` where there are no quarters.
[[nodiscard]] NSInteger orlfMonthsPerQuarter(const NSCalendar& calendar) noexcept;
/// `orlfQuartersForDateSince1970:`  Whole quarters from the first instant of 1970 in GMT, so that
/// they turn with the calendar's quarters in GMT and an offset later or earlier elsewhere;
/// truncated toward zero. `NSNotFound` where there are no quarters, 0 for a date that the calendar
/// cannot place.
[[nodiscard]] NSInteger orlfQuartersForDateSince1970(const NSCalendar& calendar,
                                                     NSDate date) noexcept;
/// `orlfQuarterForDate:`  1 to 4; `NSNotFound` where there are no quarters, and for a date that the
/// calendar cannot place.
[[nodiscard]] NSInteger orlfQuarterForDate(const NSCalendar& calendar, NSDate date) noexcept;

}  // namespace ORLFoundation
