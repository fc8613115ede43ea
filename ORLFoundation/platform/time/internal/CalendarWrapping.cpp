#include <ORLFoundation/platform/time/internal/CalendarArithmetic.h>
#include <ORLFoundation/platform/time/internal/CalendarFields.h>
#include <ORLFoundation/platform/time/internal/CalendarSteps.h>

namespace ORLFoundation::internal::time {
namespace {

Instant replaceLocal(const CalendarRules& rules, std::int64_t local, Instant to) noexcept {
  return Instant{rules.zone->firstInstantOfLocal(local), to.fraction};
}

// A value moved within `count` values that begin at `first`.
std::int64_t wrapped(std::int64_t value, std::int64_t by, std::int64_t first,
                     std::int64_t count) noexcept {
  return first + civil::floorModulo(value - first + by % count, count);
}

// Weeks keep their weekday and stay among the weeks of the year by number.
Instant addWeeksWrapping(const CalendarRules& rules, NSInteger value, civil::DayTime local,
                         Instant to) noexcept {
  const WeekOfYear week = weekOfYear(rules, local.day, civil::dateFromDay(local.day));
  const std::int64_t weeks =
      (firstDayOfWeekYear(rules, week.year + 1) - firstDayOfWeekYear(rules, week.year)) / 7;
  const std::int64_t moved = wrapped(week.week, value, 1, weeks) - week.week;
  return replaceLocal(rules, civil::joinSeconds(local.day + moved * 7, local.second), to);
}

// Places of a weekday in a month, and of a week in it, that keep the month.
Instant addPlacesWrapping(const CalendarRules& rules, NSInteger value, civil::DayTime local,
                          Instant to) noexcept {
  const civil::Date date = civil::dateFromDay(local.day);
  const std::int64_t first = (date.day - 1) % 7 + 1;
  const std::int64_t places = (civil::daysInMonth(date.year, date.month) - first) / 7 + 1;
  const std::int64_t place = wrapped((date.day - first) / 7, value, 0, places);
  const std::int64_t day = local.day - date.day + first + place * 7;
  return replaceLocal(rules, civil::joinSeconds(day, local.second), to);
}

Instant addMonthsWrapping(const CalendarRules& rules, std::int64_t value, std::int64_t size,
                          civil::DayTime local, Instant to) noexcept {
  const civil::Date date = civil::dateFromDay(local.day);
  const std::int64_t moved = wrapped(date.month, value % 12 * size, 1, 12) - date.month;
  return replaceLocal(rules, localAfterMonths(date, local.second, moved), to);
}

}  // namespace

Instant addUnitWrapping(const CalendarRules& rules, NSCalendarUnit unit, NSInteger value,
                        Instant to) noexcept {
  if (value == 0) return to;
  const civil::DayTime local = localDayTime(rules, to.seconds);
  const civil::Date date = civil::dateFromDay(local.day);
  const auto moveDay = [&](std::int64_t moved) {
    return replaceLocal(rules, civil::joinSeconds(local.day + moved, local.second), to);
  };
  const auto moveTime = [&](std::int64_t size, std::int64_t count) {
    const std::int64_t now = local.second / size % count;
    return Instant{to.seconds + (wrapped(now, value, 0, count) - now) * size, to.fraction};
  };
  switch (unit) {
    case NSCalendarUnitQuarter:
      return addMonthsWrapping(rules, value, 3, local, to);
    case NSCalendarUnitMonth:
      return addMonthsWrapping(rules, value, 1, local, to);
    case NSCalendarUnitDay:
      return moveDay(wrapped(date.day, value, 1, civil::daysInMonth(date.year, date.month)) -
                     date.day);
    case NSCalendarUnitWeekday: {
      const std::int64_t now = dayOfWeek(rules, local.day);
      return moveDay(wrapped(now, value, 0, 7) - now);
    }
    case NSCalendarUnitWeek:
    case NSCalendarUnitWeekOfYear:
      return addWeeksWrapping(rules, value, local, to);
    case NSCalendarUnitWeekOfMonth:
    case NSCalendarUnitWeekdayOrdinal:
      return addPlacesWrapping(rules, value, local, to);
    case NSCalendarUnitHour:
      return moveTime(3600, 24);
    case NSCalendarUnitMinute:
      return moveTime(60, 60);
    case NSCalendarUnitSecond:
      return moveTime(1, 60);
    default:
      return addUnit(rules, unit, value, to);
  }
}

}  // namespace ORLFoundation::internal::time
