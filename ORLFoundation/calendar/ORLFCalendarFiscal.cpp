
#include <ORLFoundation/calendar/ORLFCalendarFiscal.h>

#include <ORLFoundation/calendar/ORLFCalendarArithmetic.h>
#include <ORLFoundation/calendar/ORLFCalendarRounding.h>
#include <ORLFoundation/calendar/ORLFDateOrdering.h>

namespace ORLFoundation {
namespace {

using OptionalDate = std::optional<NSDate>;

constexpr NSInteger kMonthsInQuarter = 3;

OptionalDate added(const NSCalendar& calendar, NSInteger value, NSCalendarUnit unit,
                   OptionalDate date) noexcept {
  return orlfDateByAddingInterval(calendar, value, unit, date);
}

// The first day of the shifted year that holds the date.
OptionalDate startOfShiftedYear(const NSCalendar& calendar, NSDate date, NSInteger month,
                                NSInteger day) noexcept {
  NSDateComponents fields;
  fields.setYear(calendar.component(NSCalendarUnitYear, date));
  fields.setMonth(month);
  fields.setDay(day);
  const OptionalDate start = calendar.dateFromComponents(fields);
  return start && orlfIsBefore(date, *start) ? added(calendar, -1, NSCalendarUnitYear, start)
                                             : start;
}

NSInteger weeksBetween(const NSCalendar& calendar, NSDate from, NSDate to,
                       NSUInteger options) noexcept {
  return calendar.components(NSCalendarUnitWeekOfYear, from, to, options).weekOfYear();
}

// Weeks from the start of the calendar year that the shifted year begins in.
NSInteger shiftedWeek(const NSCalendar& calendar, NSDate yearStart, NSDate date) noexcept {
  const NSDate origin =
      orlfDateByRoundingDateDownToCalendarUnit(calendar, yearStart, NSCalendarUnitYear)
          .value_or(yearStart);
  const NSInteger first = calendar.component(NSCalendarUnitWeekOfYear, origin);
  return weeksBetween(calendar, origin, date, NSCalendarWrapComponents) -
         weeksBetween(calendar, origin, yearStart, 0) + first;
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

OptionalDate yearRounded(const NSCalendar& calendar, NSDate date, OptionalDate monthStart,
                         FiscalStart start) noexcept {
  const NSInteger month = calendar.component(NSCalendarUnitMonth, date);
  return movedStart(calendar, monthStart, start.monthStartDay, start.yearStartMonth - month,
                    month < start.yearStartMonth ? -1 : 0);
}

OptionalDate quarterRounded(const NSCalendar& calendar, NSDate date, FiscalStart start) noexcept {
  const NSInteger month = calendar.component(NSCalendarUnitMonth, date);
  const NSInteger quarter =
      orlfComponents(calendar, NSCalendarUnitQuarter, date, start.yearStartMonth, 1).quarter();
  const NSInteger months =
      quarter * kMonthsInQuarter + start.yearStartMonth - month - kMonthsInQuarter;
  return movedStart(calendar,
                    orlfDateByRoundingDateDownToCalendarUnit(calendar, date, NSCalendarUnitMonth),
                    start.monthStartDay, months, month < start.yearStartMonth ? -1 : 0);
}

using Rounding = OptionalDate (*)(const NSCalendar&, OptionalDate, NSCalendarUnit) noexcept;

OptionalDate rounded(const NSCalendar& calendar, OptionalDate date, NSCalendarUnit unit,
                     FiscalStart start, Rounding plain) noexcept {
  if (!date) return std::nullopt;
  switch (unit) {
    case NSCalendarUnitYear:
      return yearRounded(calendar, *date, plain(calendar, date, NSCalendarUnitMonth), start);
    case NSCalendarUnitQuarter:
      return quarterRounded(calendar, *date, start);
    case NSCalendarUnitMonth:
      return movedStart(calendar, plain(calendar, date, unit), start.monthStartDay, 0, 0);
    default:
      return plain(calendar, date, unit);
  }
}

}  // namespace

NSDateComponents orlfComponents(const NSCalendar& calendar, NSUInteger unitFlags, NSDate fromDate,
                                NSInteger startYearOnMonth, NSInteger day) noexcept {
  NSDateComponents fields = calendar.components(unitFlags, fromDate);
  const OptionalDate yearStart = startOfShiftedYear(calendar, fromDate, startYearOnMonth, day);
  if (!yearStart) return fields;
  const NSInteger months =
      calendar.components(NSCalendarUnitMonth, *yearStart, fromDate, 0).month();
  if ((unitFlags & NSCalendarUnitWeekOfYear) != 0)
    fields.setWeekOfYear(shiftedWeek(calendar, *yearStart, fromDate));
  if ((unitFlags & NSCalendarUnitMonth) != 0) fields.setMonth(months + 1);
  if ((unitFlags & NSCalendarUnitQuarter) != 0) fields.setQuarter(months / kMonthsInQuarter + 1);
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
