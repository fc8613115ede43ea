/// Fiscal years: components and rounding in a year that begins on any month and day.
///
///     // 15 March 2020 in a year from 1 July: year 2020, month 9, quarter 3
///     orlfComponents(calendar, NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitQuarter,
///                    date, 7, 1);
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>

#include <optional>

namespace ORLFoundation {

/// `orlfComponents:fromDate:startYearOnMonth:day:`  The fields of a mask, with week of the year,
/// month and quarter counted from the start of the shifted year, and with the year in which that
/// one ends. A date exactly on the start keeps its plain year, which is the earlier one: required
/// as it is. Other fields are the calendar's.
[[nodiscard]] NSDateComponents orlfComponents(const NSCalendar& calendar, NSUInteger unitFlags,
                                              NSDate fromDate, NSInteger startYearOnMonth,
                                              NSInteger day) noexcept;

/// `orlfDateByRoundingDate:downToCalendarUnit:yearStartMonth:monthStartDay:`  The start of the
/// shifted year, quarter or month; other units round plainly. The month case takes the start day
/// in the date's own month, so that a later start day gives a date after the one given. nil for
/// nil.
[[nodiscard]] std::optional<NSDate> orlfDateByRoundingDateDownToCalendarUnit(
    const NSCalendar& calendar, std::optional<NSDate> date, NSCalendarUnit unit,
    NSInteger yearStartMonth, NSInteger monthStartDay) noexcept;
/// `orlfDateByRoundingDate:upToCalendarUnit:yearStartMonth:monthStartDay:`  The same from the
/// following month for years and months. Quarters round down here too: required as it is.
[[nodiscard]] std::optional<NSDate> orlfDateByRoundingDateUpToCalendarUnit(
    const NSCalendar& calendar, std::optional<NSDate> date, NSCalendarUnit unit,
    NSInteger yearStartMonth, NSInteger monthStartDay) noexcept;

}  // namespace ORLFoundation
