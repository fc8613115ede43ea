/// The older family of calendar operations, on a small numbered set of intervals. Weeks begin on
/// Sunday here, whatever the calendar says.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>

#include <cstdint>
#include <optional>
#include <string>

namespace ORLFoundation {

/// Callers store these numbers; their order is not the order of size. Values outside the set may
/// be passed and have no meaning.
enum ORLFCalendarInterval : std::int32_t {
  ORLFCalendarIntervalWeek = 0,
  ORLFCalendarIntervalTwoWeeks = 1,
  ORLFCalendarIntervalMonth = 2,
  ORLFCalendarIntervalQuarter = 3,
  ORLFCalendarIntervalYear = 4,
  ORLFCalendarIntervalDay = 5,
};

/// `intervalCountInYear:`  52, 26, 12, 4, 1 or 365; 0 outside the set.
[[nodiscard]] NSInteger intervalCountInYear(const NSCalendar& calendar,
                                            ORLFCalendarInterval interval) noexcept;
/// `calendarUnitNameForIntervalType:capitalize:unitCount:`  The main bundle's word, plural above
/// a count of 1; "unknown" for a count below 1 and outside the set.
[[nodiscard]] std::string calendarUnitNameForIntervalType(const NSCalendar& calendar,
                                                          ORLFCalendarInterval intervalType,
                                                          bool capitalize, NSInteger unitCount);
/// `dateByRoundingDownDate:toInterval:`  Midnight of the interval's first day; two weeks begin
/// with the calendar's even week. nil outside the set, for a date that the calendar cannot place,
/// and for one whose week begins before its first date.
[[nodiscard]] std::optional<NSDate> dateByRoundingDownDate(
    const NSCalendar& calendar, NSDate date, ORLFCalendarInterval toInterval) noexcept;
/// `dateByAddingInterval:count:toDate:`  Outside the set the date comes back unchanged.
[[nodiscard]] std::optional<NSDate> dateByAddingInterval(const NSCalendar& calendar,
                                                         ORLFCalendarInterval interval,
                                                         NSInteger count, NSDate toDate) noexcept;
/// `numberOfIntervals:fromDate:toDate:`  Whole ones, truncated toward zero; 0 outside the set.
[[nodiscard]] NSInteger numberOfIntervals(const NSCalendar& calendar, ORLFCalendarInterval interval,
                                          NSDate fromDate, NSDate toDate) noexcept;
/// `date:onSameDayAsDate:`  False where the calendar cannot place a date.
[[nodiscard]] bool dateOnSameDayAsDate(const NSCalendar& calendar, NSDate date,
                                       NSDate onSameDayAsDate) noexcept;

}  // namespace ORLFoundation
