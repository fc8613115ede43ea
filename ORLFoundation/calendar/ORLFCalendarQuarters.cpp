#include <ORLFoundation/calendar/ORLFCalendarQuarters.h>

namespace ORLFoundation {

NSInteger orlfMonthsPerQuarter(const NSCalendar& calendar) noexcept {
  const NSUInteger quarters = calendar.maximumRangeOfUnit(NSCalendarUnitQuarter).length;
  if (quarters == 0) return NSNotFound;
  const NSUInteger months = calendar.maximumRangeOfUnit(NSCalendarUnitMonth).length;
  return static_cast<NSInteger>(months / quarters);
}

NSInteger orlfQuartersForDateSince1970(const NSCalendar& calendar, NSDate date) noexcept {
  const NSInteger monthsPerQuarter = orlfMonthsPerQuarter(calendar);
  if (monthsPerQuarter == NSNotFound || monthsPerQuarter == 0) return NSNotFound;
  const NSDate epoch = NSDate::dateWithTimeIntervalSince1970(0);
  const NSInteger months = calendar.components(NSCalendarUnitMonth, epoch, date, 0).month();
  return months == NSDateComponentUndefined ? 0 : months / monthsPerQuarter;
}

NSInteger orlfQuarterForDate(const NSCalendar& calendar, NSDate date) noexcept {
  const NSInteger monthsPerQuarter = orlfMonthsPerQuarter(calendar);
  if (monthsPerQuarter == NSNotFound || monthsPerQuarter == 0) return NSNotFound;
  return (calendar.component(NSCalendarUnitMonth, date) - 1) / monthsPerQuarter + 1;
}

}  // namespace ORLFoundation
