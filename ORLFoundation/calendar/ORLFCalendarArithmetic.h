/// Counting and stepping by calendar unit. Recurrence frequencies are calendar unit codes and may
/// be passed as units.
///
///     NSInteger months = orlfIntervalInCalendarUnit(calendar, NSCalendarUnitMonth, start, end);
///     double exact = orlfCountOfCalendarUnit(calendar, NSCalendarUnitMonth, start, end);
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>

#include <optional>

namespace ORLFoundation {

/// `orlfIntervalInCalendarUnit:fromDate:toDate:`  The signed whole number of units between two
/// dates, truncated toward zero. Quarters are the exception: they step at fixed boundaries, so that
/// 31 March to 1 April is one. 0 for a unit that is no single unit, and for dates that the calendar
/// cannot place.
[[nodiscard]] NSInteger orlfIntervalInCalendarUnit(const NSCalendar& calendar, NSCalendarUnit unit,
                                                   NSDate fromDate, NSDate toDate) noexcept;

/// `orlfCountOfCalendarUnit:fromDate:toDate:`  The number of units between two dates with its
/// fraction: the rest of the first unit over that unit's length, the whole units between, and the
/// begun last unit over its length. Two dates a whole number of units apart give exactly that
/// number. A day count has no fraction; units finer than a day fail the condition
/// "unit == NSCalendarUnitDay", which is logged, and count whole units too.
[[nodiscard]] double orlfCountOfCalendarUnit(const NSCalendar& calendar, NSCalendarUnit unit,
                                             NSDate fromDate, NSDate toDate);

/// `orlfDateByAddingInterval:inCalendarUnit:toDate:`  Month ends clamp; a quarter is three months;
/// a unit that is no single unit leaves the date as it is. nil for nil, beyond the calendar, and
/// for quarters of a calendar that has none.
[[nodiscard]] std::optional<NSDate> orlfDateByAddingInterval(const NSCalendar& calendar,
                                                             NSInteger interval,
                                                             NSCalendarUnit inCalendarUnit,
                                                             std::optional<NSDate> toDate) noexcept;

/// `orlfDate:onSameDayAsDate:`  Same when both fall on one day of the calendar, else as the
/// instants compare. Ascending when either is nil.
[[nodiscard]] NSComparisonResult orlfDateOnSameDayAsDate(
    const NSCalendar& calendar, std::optional<NSDate> date,
    std::optional<NSDate> onSameDayAsDate) noexcept;

}  // namespace ORLFoundation
