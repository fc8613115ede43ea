
#include <ORLFoundation/calendar/ORLFCalendarFiscal.h>

#include <ORLFoundation/calendar/ORLFCalendarArithmetic.h>
#include <ORLFoundation/calendar/ORLFCalendarCounts.h>
#include <ORLFoundation/calendar/ORLFCalendarRounding.h>
#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <ORLFoundation/platform/base/CheckedArithmetic.h>

namespace ORLFoundation {
namespace {

using internal::base::checkedDifference;
using internal::base::checkedSum;
using internal::calendar::kMonthsPerQuarter;
using OptionalDate = std::optional<NSDate>;

OptionalDate added(const NSCalendar& calendar, NSInteger value, NSCalendarUnit unit,
                   OptionalDate date) noexcept {
  return orlfDateByAddingInterval(calendar, value, unit, date);
}

// Days that the zone skipped count on no side.
NSInteger weeksBetween(const NSCalendar& calendar, NSDate from, NSDate to) noexcept {
  return calendar.components(NSCalendarUnitWeekOfYear, from, to, NSCalendarWrapComponents)
      .weekOfYear();
}

// Weeks from the start of the calendar year that the shifted year begins in.
NSInteger shiftedWeek(const NSCalendar& calendar, NSDate yearStart, NSDate date) noexcept {
  const NSDate origin =
      orlfDateByRoundingDateDownToCalendarUnit(calendar, yearStart, NSCalendarUnitYear)
          .value_or(yearStart);
  const NSInteger first = calendar.component(NSCalendarUnitWeekOfYear, origin);
  return weeksBetween(calendar, origin, date) - weeksBetween(calendar, origin, yearStart) + first;
}

// The calendar year in which the shifted year ends.
NSInteger shiftedYear(const NSCalendar& calendar, NSDate yearStart) noexcept {
  const OptionalDate last =
      added(calendar, -1, NSCalendarUnitDay, added(calendar, 1, NSCalendarUnitYear, yearStart));
  return last ? calendar.component(NSCalendarUnitYear, *last) : NSDateComponentUndefined;
}

// Rounding takes the month's start, moves it to its start day, and then by months and by a year.
OptionalDate movedStart(const NSCalendar& calendar, OptionalDate monthStart,
                        NSInteger monthStartDay, NSInteger months, NSInteger years) noexcept {
  if (!monthStart) return std::nullopt;
  const OptionalDate day = calendar.dateBySettingUnit(NSCalendarUnitDay, monthStartDay, *monthStart,
                                                      NSCalendarMatchNextTime);
  return added(calendar, years, NSCalendarUnitYear,
               added(calendar, months, NSCalendarUnitMonth, day));
}

struct FiscalStart {
  NSInteger yearStartMonth, monthStartDay;
};

// The month of a date that the calendar can place is 1 to 13; the year's start is any number. A
// count of months that leaves its type leads beyond the calendar, as the smallest one does.
OptionalDate yearRounded(const NSCalendar& calendar, NSInteger month, OptionalDate monthStart,
                         FiscalStart start) noexcept {
  const NSInteger months = checkedDifference(start.yearStartMonth, month).value_or(NSIntegerMin);
  return movedStart(calendar, monthStart, start.monthStartDay, months,
                    month < start.yearStartMonth ? -1 : 0);
}

OptionalDate quarterRounded(const NSCalendar& calendar, NSDate date, NSInteger month,
                            FiscalStart start) noexcept {
  const NSInteger quarter =
      orlfComponents(calendar, NSCalendarUnitQuarter, date, start.yearStartMonth, 1).quarter();
  if (quarter == NSDateComponentUndefined) return std::nullopt;
  const NSInteger months =
      checkedSum((quarter - 1) * kMonthsPerQuarter - month, start.yearStartMonth)
          .value_or(NSIntegerMin);
  return movedStart(calendar,
                    orlfDateByRoundingDateDownToCalendarUnit(calendar, date, NSCalendarUnitMonth),
                    start.monthStartDay, months, month < start.yearStartMonth ? -1 : 0);
}

using Rounding = OptionalDate (*)(const NSCalendar&, OptionalDate, NSCalendarUnit) noexcept;

OptionalDate rounded(const NSCalendar& calendar, OptionalDate date, NSCalendarUnit unit,
                     FiscalStart start, Rounding plain) noexcept {
  if (!date) return std::nullopt;
  const NSInteger month = calendar.component(NSCalendarUnitMonth, *date);
  if (month == NSDateComponentUndefined) return std::nullopt;
  switch (unit) {
    case NSCalendarUnitYear:
      return yearRounded(calendar, month, plain(calendar, date, NSCalendarUnitMonth), start);
    case NSCalendarUnitQuarter:
      return quarterRounded(calendar, *date, month, start);
    case NSCalendarUnitMonth:
      return movedStart(calendar, plain(calendar, date, unit), start.monthStartDay, 0, 0);
    default:
      return plain(calendar, date, unit);
  }
}

}  // namespace

OptionalDate orlfStartOfYear(const NSCalendar& calendar, NSDate date, NSInteger startYearOnMonth,
                             NSInteger day) noexcept {
  NSDateComponents fields = calendar.components(NSCalendarUnitEra | NSCalendarUnitYear, date);
  if (fields.year() == NSDateComponentUndefined) return std::nullopt;
  fields.setMonth(startYearOnMonth);
  fields.setDay(day);
  const OptionalDate start = calendar.dateFromComponents(fields);
  return start && orlfIsBefore(date, *start) ? added(calendar, -1, NSCalendarUnitYear, start)
                                             : start;
}

NSDateComponents orlfComponents(const NSCalendar& calendar, NSUInteger unitFlags, NSDate fromDate,
                                NSInteger startYearOnMonth, NSInteger day) noexcept {
  NSDateComponents fields = calendar.components(unitFlags, fromDate);
  const OptionalDate yearStart = orlfStartOfYear(calendar, fromDate, startYearOnMonth, day);
  if (!yearStart) return fields;
  const NSInteger months =
      calendar.components(NSCalendarUnitMonth, *yearStart, fromDate, 0).month();
  if (months == NSDateComponentUndefined) return fields;
  if ((unitFlags & NSCalendarUnitWeekOfYear) != 0)
    fields.setWeekOfYear(shiftedWeek(calendar, *yearStart, fromDate));
  if ((unitFlags & NSCalendarUnitMonth) != 0) fields.setMonth(months + 1);
  if ((unitFlags & NSCalendarUnitQuarter) != 0) fields.setQuarter(months / kMonthsPerQuarter + 1);
  if ((unitFlags & NSCalendarUnitYear) != 0 && orlfIsAfter(fromDate, *yearStart))
    fields.setYear(shiftedYear(calendar, *yearStart));
  return fields;
}

OptionalDate orlfDateByRoundingDateDownToCalendarUnit(const NSCalendar& calendar, OptionalDate date,
                                                      NSCalendarUnit unit, NSInteger yearStartMonth,
                                                      NSInteger monthStartDay) noexcept {
  return rounded(calendar, date, unit, {yearStartMonth, monthStartDay},
                 orlfDateByRoundingDateDownToCalendarUnit);
}

OptionalDate orlfDateByRoundingDateUpToCalendarUnit(const NSCalendar& calendar, OptionalDate date,
                                                    NSCalendarUnit unit, NSInteger yearStartMonth,
                                                    NSInteger monthStartDay) noexcept {
  return rounded(calendar, date, unit, {yearStartMonth, monthStartDay},
                 orlfDateByRoundingDateUpToCalendarUnit);
}

}  // namespace ORLFoundation
