
#include <ORLFoundation/calendar/ORLFCalendarQuarters.h>

#include <ORLFoundation/calendar/internal/ORLFQuarterCount.h>

namespace ORLFoundation {

NSInteger orlfMonthsPerQuarter(const NSCalendar& calendar) noexcept {
  const NSUInteger quarters = calendar.maximumRangeOfUnit(NSCalendarUnitQuarter).length;
  if (quarters == 0) return NSNotFound;
  const NSUInteger months = calendar.maximumRangeOfUnit(NSCalendarUnitMonth).length;
  return static_cast<NSInteger>(months / quarters);
}

std::optional<NSInteger> internal::calendar::quartersSince1970(const NSCalendar& calendar,
                                                               NSDate date) noexcept {
  const NSInteger monthsPerQuarter = orlfMonthsPerQuarter(calendar);
  if (monthsPerQuarter == NSNotFound) return NSNotFound;
  const NSDate epoch = NSDate::dateWithTimeIntervalSince1970(0);
  const NSInteger months = calendar.components(NSCalendarUnitMonth, epoch, date, 0).month();
  if (months == NSDateComponentUndefined) return std::nullopt;
  return months / monthsPerQuarter;
}

NSInteger orlfQuartersForDateSince1970(const NSCalendar& calendar, NSDate date) noexcept {
  return internal::calendar::quartersSince1970(calendar, date).value_or(0);
}

NSInteger orlfQuarterForDate(const NSCalendar& calendar, NSDate date) noexcept {
  const NSInteger monthsPerQuarter = orlfMonthsPerQuarter(calendar);
  if (monthsPerQuarter == NSNotFound) return NSNotFound;
  const NSInteger month = calendar.component(NSCalendarUnitMonth, date);
  return month == NSDateComponentUndefined ? NSNotFound : (month - 1) / monthsPerQuarter + 1;
}

}  // namespace ORLFoundation
