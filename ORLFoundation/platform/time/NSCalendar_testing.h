/// What tests of dates share: a pinned calendar in a zone, dates by its clock, and
/// calendars in the forms that vector files write them.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <tests/support/VectorFile.h>
#include <tests/support/VectorText.h>

#include <memory>
#include <set>
#include <string>
#include <string_view>

namespace orlftest {

inline std::shared_ptr<ORLFoundation::NSCalendar> calendarOf(
    std::string_view identifier, std::string_view zone, ORLFoundation::NSInteger firstWeekday = 1,
    ORLFoundation::NSInteger minimumDays = 1) {
  using namespace ORLFoundation;
  const auto calendar = NSCalendar::initWithCalendarIdentifier(identifier);
  calendar->setTimeZone(NSTimeZone::timeZoneWithName(zone));
  calendar->setFirstWeekday(firstWeekday);
  calendar->setMinimumDaysInFirstWeek(minimumDays);
  return calendar;
}

inline std::shared_ptr<ORLFoundation::NSCalendar> calendarIn(
    std::string_view zone, ORLFoundation::NSInteger firstWeekday = 1,
    ORLFoundation::NSInteger minimumDays = 1) {
  return calendarOf(ORLFoundation::NSCalendarIdentifierGregorian, zone, firstWeekday, minimumDays);
}

/// Made once; nobody changes them.
inline const ORLFoundation::NSCalendar& utcCalendar() {
  static const auto calendar = calendarIn("UTC");
  return *calendar;
}
inline const ORLFoundation::NSCalendar& newYorkCalendar() {
  static const auto calendar = calendarIn("America/New_York");
  return *calendar;
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

namespace vectors {

/// `calendarIn` for a zone that may be none.
inline std::shared_ptr<ORLFoundation::NSCalendar> calendarOfVector(
    const std::string& zone, ORLFoundation::NSInteger firstWeekday,
    ORLFoundation::NSInteger minimumDays) {
  if (!ORLFoundation::NSTimeZone::timeZoneWithName(zone)) unreadable("calendar's zone", zone);
  return calendarIn(zone, firstWeekday, minimumDays);
}

}  // namespace vectors

/// A Gregorian calendar from `zone`, `first_weekday`, `min_days` and, where given, `locale`.
inline std::shared_ptr<ORLFoundation::NSCalendar> calendarFromVector(const Json& value) {
  static const std::set<std::string> kKeys = {"zone", "first_weekday", "min_days", "locale"};
  for (const auto& item : value.items())
    if (!kKeys.count(item.key())) vectors::unreadable("calendar's key", item.key());
  auto calendar =
      vectors::calendarOfVector(value.at("zone").get<std::string>(),
                                value.at("first_weekday").get<ORLFoundation::NSInteger>(),
                                value.at("min_days").get<ORLFoundation::NSInteger>());
  if (value.contains("locale")) calendar->setLocaleIdentifier(value["locale"].get<std::string>());
  return calendar;
}

inline std::shared_ptr<ORLFoundation::NSCalendar> calendarFromVector(const TsvRow& row) {
  auto calendar = vectors::calendarOfVector(row.text("zone"), row.integer("first_weekday"),
                                            row.integer("min_days"));
  if (row.hasColumn("locale")) calendar->setLocaleIdentifier(row.text("locale"));
  return calendar;
}

}  // namespace orlftest
