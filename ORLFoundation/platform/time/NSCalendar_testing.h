/// What tests of dates share: a pinned Gregorian calendar in a zone, and dates by its clock.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <tests/support/VectorCodec.h>

#include <memory>
#include <string_view>

namespace orlftest {

inline std::shared_ptr<ORLFoundation::NSCalendar> calendarIn(
    std::string_view zone, ORLFoundation::NSInteger firstWeekday = 1,
    ORLFoundation::NSInteger minimumDays = 1) {
  using namespace ORLFoundation;
  const auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  calendar->setTimeZone(NSTimeZone::timeZoneWithName(zone));
  calendar->setFirstWeekday(firstWeekday);
  calendar->setMinimumDaysInFirstWeek(minimumDays);
  return calendar;
}

/// Year, month, day, hour, minute and second on the calendar's clock.
inline ORLFoundation::NSDate at(const ORLFoundation::NSCalendar& calendar, int year, int month,
                                int day, int hour = 0, int minute = 0, int second = 0) {
  ORLFoundation::NSDateComponents components;
  components.setYear(year);
  components.setMonth(month);
  components.setDay(day);
  components.setHour(hour);
  components.setMinute(minute);
  components.setSecond(second);
  return calendar.dateFromComponents(components).value();
}

}  // namespace orlftest
