
#include <ORLFoundation/calendar/ORLFCalendarArithmetic.h>

#include <ORLFoundation/calendar/ORLFCalendarQuarters.h>
#include <ORLFoundation/calendar/ORLFCalendarRounding.h>
#include <ORLFoundation/calendar/ORLFCompareCalendarUnits.h>
#include <ORLFoundation/calendar/internal/ORLFQuarterCount.h>
#include <ORLFoundation/platform/base/CheckedArithmetic.h>
#include <ORLFoundation/support/diagnostics/ORLFCondition.h>
#include <ORLFoundation/support/diagnostics/ORLFDebugLog.h>

#include <bit>

namespace ORLFoundation {
namespace {

constexpr NSUInteger kCountedUnits =
    NSCalendarUnitEra | NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay |
    NSCalendarUnitHour | NSCalendarUnitMinute | NSCalendarUnitSecond | NSCalendarUnitWeek |
    NSCalendarUnitWeekday | NSCalendarUnitWeekdayOrdinal | NSCalendarUnitWeekOfMonth |
    NSCalendarUnitWeekOfYear | NSCalendarUnitYearForWeekOfYear;

constexpr bool isOneOf(NSCalendarUnit unit, NSUInteger units) {
  const auto bits = static_cast<NSUInteger>(unit);
  return std::has_single_bit(bits) && (bits & units) != 0;
}

NSInteger secondsBetween(const NSCalendar& calendar, NSDate from, NSDate to) noexcept {
  const NSInteger seconds = calendar.components(NSCalendarUnitSecond, from, to, 0).second();
  return seconds == NSDateComponentUndefined ? 0 : seconds;
}

/// The whole seconds from one date to another over the length of the unit that holds `within`.
double fractionOfUnit(const NSCalendar& calendar, NSCalendarUnit unit, NSDate within, NSDate from,
                      NSDate to) noexcept {
  NSTimeInterval length = 0;
  if (!calendar.rangeOfUnit(unit, nullptr, &length, within)) {
    _ORLFDebugLog("Couldn't calculate range of unit for %@", within);
    return 0;
  }
  return static_cast<double>(secondsBetween(calendar, from, to)) / length;
}

NSInteger quartersBetween(const NSCalendar& calendar, NSDate from, NSDate to) noexcept {
  const std::optional<NSInteger> last = internal::calendar::quartersSince1970(calendar, to);
  const std::optional<NSInteger> first = internal::calendar::quartersSince1970(calendar, from);
  return first && last ? *last - *first : 0;
}

bool isWholeCount(const NSCalendar& calendar, NSCalendarUnit unit, NSInteger whole, NSDate from,
                  NSDate to) noexcept {
  const std::optional<NSDate> probe =
      whole == 0 ? from : calendar.dateByAddingUnit(unit, whole, from, 0);
  return probe && probe->compare(to) == NSOrderedSame;
}

}  // namespace

NSInteger orlfIntervalInCalendarUnit(const NSCalendar& calendar, NSCalendarUnit unit,
                                     NSDate fromDate, NSDate toDate) noexcept {
  if (unit == NSCalendarUnitQuarter) return quartersBetween(calendar, fromDate, toDate);
  if (!isOneOf(unit, kCountedUnits)) return 0;
  const NSCalendarUnit asked = unit == NSCalendarUnitWeek ? NSCalendarUnitWeekOfYear : unit;
  const NSInteger interval =
      calendar.components(asked, fromDate, toDate, 0).valueForComponent(asked);
  return interval == NSDateComponentUndefined ? 0 : interval;
}

double orlfCountOfCalendarUnit(const NSCalendar& calendar, NSCalendarUnit unit, NSDate fromDate,
                               NSDate toDate) {
  const NSInteger whole = orlfIntervalInCalendarUnit(calendar, unit, fromDate, toDate);
  if (isWholeCount(calendar, unit, whole, fromDate, toDate)) return static_cast<double>(whole);

  const auto up = orlfDateByRoundingDateUpToCalendarUnit(calendar, fromDate, unit);
  const auto down = orlfDateByRoundingDateDownToCalendarUnit(calendar, toDate, unit);
  double count = 0;
  if (up && down)
    count = static_cast<double>(orlfIntervalInCalendarUnit(calendar, unit, *up, *down));
  if (ORLFCompareCalendarUnits(unit, NSCalendarUnitDay) != NSOrderedDescending) {
    ORLFConditionAssert(unit == NSCalendarUnitDay, "unit == NSCalendarUnitDay",
                        "Units smaller than day are not supported");
    return count;
  }
  if (up && !up->isEqualToDate(fromDate))
    count += fractionOfUnit(calendar, unit, fromDate, fromDate, *up);
  if (down && !down->isEqualToDate(toDate))
    count += fractionOfUnit(calendar, unit, toDate, *down, toDate);
  return count;
}

std::optional<NSDate> orlfDateByAddingInterval(const NSCalendar& calendar, NSInteger interval,
                                               NSCalendarUnit inCalendarUnit,
                                               std::optional<NSDate> toDate) noexcept {
  if (!toDate) return std::nullopt;
  NSDateComponents components;
  if (inCalendarUnit == NSCalendarUnitQuarter) {
    const NSInteger monthsPerQuarter = orlfMonthsPerQuarter(calendar);
    if (monthsPerQuarter == NSNotFound) return std::nullopt;
    const auto months = internal::base::checkedProduct(interval, monthsPerQuarter);
    if (!months) return std::nullopt;
    components.setMonth(*months);
  } else {
    components.setValueForComponent(interval, inCalendarUnit);
  }
  return calendar.dateByAddingComponents(components, *toDate, 0);
}

NSComparisonResult orlfDateOnSameDayAsDate(const NSCalendar& calendar, std::optional<NSDate> date,
                                           std::optional<NSDate> onSameDayAsDate) noexcept {
  if (!date || !onSameDayAsDate) return NSOrderedAscending;
  constexpr NSUInteger kDate = NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay;
  const NSDateComponents day = calendar.components(kDate, *date);
  const bool same =
      day.day() != NSDateComponentUndefined && day == calendar.components(kDate, *onSameDayAsDate);
  return same ? NSOrderedSame : date->compare(*onSameDayAsDate);
}

}  // namespace ORLFoundation
