/// Fiscal years: components and rounding in a year that begins on any month and day.
///
///     // 15 March 2020 in a year from 1 July: year 2020, month 9, quarter 3
///     orlfComponents(calendar, NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitQuarter,
///                    date, 7, 1);
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>

#include <optional>

namespace ORLFoundation {

/// `orlfStartOfYear:startYearOnMonth:day:`  The first day of the shifted year that holds the date.
/// It is that day of the date's own year, or a year before it where that lies after the date. A day
/// that the month lacks is the one that follows it: in a year from 29 February, 2023 begins on 1
/// March, and so does the year that holds January of 2025. nil for a date that the calendar cannot
/// place.
[[nodiscard]] std::optional<NSDate> orlfStartOfYear(const NSCalendar& calendar, NSDate date,
                                                    NSInteger startYearOnMonth,
                                                    NSInteger day) noexcept;

/// `orlfComponents:fromDate:startYearOnMonth:day:`  The fields of a mask, with week of the year,
/// month and quarter counted from the start of the shifted year, and with the year in which that
/// one ends. A date exactly on the start keeps its plain year, which is the earlier one: required
/// as it is. Other fields are the calendar's. Weeks are counted in days that there were: a day that
/// the zone skipped counts neither before nor after the start. No field for a date that the
/// calendar cannot place.
[[nodiscard]] NSDateComponents orlfComponents(const NSCalendar& calendar, NSUInteger unitFlags,
                                              NSDate fromDate, NSInteger startYearOnMonth,
                                              NSInteger day) noexcept;

/// `orlfDateByRoundingDate:downToCalendarUnit:yearStartMonth:monthStartDay:`  The start of the
/// shifted year, quarter or month; other units round plainly. The month case takes the start day
/// in the date's own month, so that a later start day gives a date after the one given. nil for
/// nil, and for a date that the calendar cannot place.
[[nodiscard]] std::optional<NSDate> orlfDateByRoundingDateDownToCalendarUnit(
    const NSCalendar& calendar, std::optional<NSDate> date, NSCalendarUnit unit,
    NSInteger yearStartMonth, NSInteger monthStartDay) noexcept;
/// `orlfDateByRoundingDate:upToCalendarUnit:yearStartMonth:monthStartDay:`  The same from the
/// following month for years and months. Quarters round down here too: required as it is.
[[nodiscard]] std::optional<NSDate> orlfDateByRoundingDateUpToCalendarUnit(
    const NSCalendar& calendar, std::optional<NSDate> date, NSCalendarUnit unit,
    NSInteger yearStartMonth, NSInteger monthStartDay) noexcept;

}  // namespace ORLFoundation
