/// What the tests of calendars share: a Gregorian calendar in a zone, and dates from texts.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <tests/support/VectorCodec.h>

#include <memory>

namespace ORLFoundation {

inline std::shared_ptr<NSCalendar> calendarIn(const char* zone, NSInteger firstWeekday = 1,
                                              NSInteger minimumDays = 1) {
  const auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  calendar->setTimeZone(NSTimeZone::timeZoneWithName(zone));
  calendar->setFirstWeekday(firstWeekday);
  calendar->setMinimumDaysInFirstWeek(minimumDays);
  return calendar;
}

inline NSDate date(const char* text) { return orlftest::dateFromVector(text).value(); }

}  // namespace ORLFoundation
