#include <ORLFoundation/platform/time/internal/CalendarFields.h>

namespace ORLFoundation::internal::time {
namespace {

constexpr NSUInteger kTimeMask =
    NSCalendarUnitHour | NSCalendarUnitMinute | NSCalendarUnitSecond | NSCalendarUnitNanosecond;
constexpr NSUInteger kWeekOfYearMask =
    NSCalendarUnitWeek | NSCalendarUnitWeekOfYear | NSCalendarUnitYearForWeekOfYear;
constexpr NSUInteger kWeekMask =
    NSCalendarUnitWeekday | NSCalendarUnitWeekOfMonth | kWeekOfYearMask;
constexpr NSUInteger kDateMask = NSCalendarUnitEra | NSCalendarUnitYear | NSCalendarUnitMonth |
                                 NSCalendarUnitDay | NSCalendarUnitWeekdayOrdinal |
                                 NSCalendarUnitQuarter | NSCalendarUnitWeekOfMonth |
                                 kWeekOfYearMask;

constexpr NSUInteger kYearToSecondMask = NSCalendarUnitYear | NSCalendarUnitMonth |
                                         NSCalendarUnitDay | NSCalendarUnitHour |
                                         NSCalendarUnitMinute | NSCalendarUnitSecond;

NSInteger nanosecondsOf(double fraction) noexcept { return static_cast<NSInteger>(fraction * 1e9); }

inline void setTimeFields(NSDateComponents& fields, NSUInteger mask, std::int32_t secondOfDay,
                          double fraction) noexcept {
  const std::uint32_t second = static_cast<std::uint32_t>(secondOfDay);
  const std::uint32_t minute = second / 60;
  const std::uint32_t hour = minute / 60;
  if (mask & NSCalendarUnitHour) fields.setHour(hour);
  if (mask & NSCalendarUnitMinute) fields.setMinute(minute - hour * 60);
  if (mask & NSCalendarUnitSecond) fields.setSecond(second - minute * 60);
  if (mask & NSCalendarUnitNanosecond) fields.setNanosecond(nanosecondsOf(fraction));
}

inline void setDateFields(NSDateComponents& fields, NSUInteger mask,
                          const civil::Date& date) noexcept {
  const bool beforeChrist = date.year <= 0;
  if (mask & NSCalendarUnitEra) fields.setEra(beforeChrist ? 0 : 1);
  if (mask & NSCalendarUnitYear) fields.setYear(beforeChrist ? 1 - date.year : date.year);
  if (mask & NSCalendarUnitMonth) fields.setMonth(date.month);
  if (mask & NSCalendarUnitDay) fields.setDay(date.day);
  if (mask & NSCalendarUnitQuarter) fields.setQuarter((date.month - 1) / 3 + 1);
  if (mask & NSCalendarUnitWeekdayOrdinal) fields.setWeekdayOrdinal((date.day - 1) / 7 + 1);
}

void setWeekFields(NSDateComponents& fields, NSUInteger mask, const CalendarRules& rules,
                   std::int32_t day, const civil::Date& date) noexcept {
  if (mask & NSCalendarUnitWeekday) fields.setWeekday(civil::weekdayOfDay(day));
  if (mask & NSCalendarUnitWeekOfMonth) fields.setWeekOfMonth(weekOfMonth(rules, day, date));
  if (!(mask & kWeekOfYearMask)) return;
  const WeekOfYear week = weekOfYear(rules, day, date);
  if (mask & (NSCalendarUnitWeekOfYear | NSCalendarUnitWeek)) fields.setWeekOfYear(week.week);
  if (mask & NSCalendarUnitYearForWeekOfYear) fields.setYearForWeekOfYear(week.year);
}

NSInteger valueOr(NSInteger value, NSInteger smallest) noexcept {
  return isSet(value) ? value : smallest;
}

// In one comparison.
bool isWithin(NSInteger value, NSInteger least, NSInteger most) noexcept {
  return static_cast<NSUInteger>(value) - static_cast<NSUInteger>(least) <=
         static_cast<NSUInteger>(most - least);
}

// Fields beyond these sizes cannot lead back into the range of dates, except by cancelling out.
constexpr NSInteger kMaxField = 100'000'000'000'000;  // of days and of time
bool isSmall(NSInteger value) noexcept { return value >= -kMaxField && value <= kMaxField; }

// The year counted through the eras, with year 0 as 1 BC.
NSInteger astronomicalYear(const NSDateComponents& fields, NSInteger year) noexcept {
  return fields.era() == 0 ? 1 - year : year;
}

bool isYearInRange(NSInteger year) noexcept {
  return year >= -civil::kMaxYear && year <= civil::kMaxYear;
}

// Days from the first day of a week to a weekday of it; weekdays out of range count on.
NSInteger daysIntoWeek(const CalendarRules& rules, NSInteger weekday) noexcept {
  const NSInteger weeks = civil::floorDivide(weekday - 1, 7);
  return weeks * 7 + civil::floorModulo(weekday - weeks * 7 - rules.firstWeekday, 7);
}

std::optional<NSInteger> dayNamedByWeekOfYear(const CalendarRules& rules,
                                              const NSDateComponents& fields) noexcept {
  const NSInteger year =
      isSet(fields.yearForWeekOfYear()) ? fields.yearForWeekOfYear() : valueOr(fields.year(), 1);
  const NSInteger week = valueOr(fields.weekOfYear(), 1);
  const NSInteger weekday = valueOr(fields.weekday(), rules.firstWeekday);
  if (!isSmall(year) || !isSmall(week) || !isSmall(weekday)) return std::nullopt;
  const NSInteger counted = astronomicalYear(fields, year);
  if (!isYearInRange(counted)) return std::nullopt;
  const NSInteger first = firstDayOfWeekYear(rules, static_cast<std::int32_t>(counted));
  return first + (week - 1) * 7 + daysIntoWeek(rules, weekday);
}

// The weekday's nth place in a month, from the end for places below 0.
NSInteger dayOfOrdinal(civil::YearMonth month, NSInteger first, NSInteger weekday,
                       NSInteger ordinal) noexcept {
  const NSInteger firstPlace =
      first +
      civil::floorModulo(weekday - civil::weekdayOfDay(static_cast<std::int32_t>(first)), 7);
  if (ordinal >= 0) return firstPlace + (ordinal - 1) * 7;
  const NSInteger end = first + civil::daysInMonth(month.year, month.month);
  return firstPlace + (end - 1 - firstPlace) / 7 * 7 + (ordinal + 1) * 7;
}

std::optional<civil::YearMonth> monthOfFields(const NSDateComponents& fields) noexcept {
  const NSInteger year = valueOr(fields.year(), 1);
  const NSInteger quarter = valueOr(fields.quarter(), 1);
  if (!isSmall(quarter)) return std::nullopt;
  const NSInteger month = valueOr(fields.month(), quarter * 3 - 2);
  if (!isSmall(year) || !isSmall(month)) return std::nullopt;
  const NSInteger number = civil::monthNumber(astronomicalYear(fields, year), month);
  if (!isYearInRange(number / 12)) return std::nullopt;
  return civil::yearMonthFromNumber(number);
}

std::optional<NSInteger> dayNamedByMonth(const CalendarRules& rules,
                                         const NSDateComponents& fields) noexcept {
  const std::optional<civil::YearMonth> month = monthOfFields(fields);
  if (!month) return std::nullopt;
  const std::int32_t first = civil::dayFromDate(month->year, month->month, 1);
  if (isSet(fields.day())) {
    if (!isSmall(fields.day())) return std::nullopt;
    return first + fields.day() - 1;
  }
  const bool byWeek = isSet(fields.weekOfMonth()) && !isSet(fields.weekdayOrdinal());
  const NSInteger weekday =
      valueOr(fields.weekday(), byWeek ? rules.firstWeekday : civil::weekdayOfDay(first));
  const NSInteger place = byWeek ? fields.weekOfMonth() : valueOr(fields.weekdayOrdinal(), 1);
  if (!isSmall(weekday) || !isSmall(place)) return std::nullopt;
  if (byWeek) return firstWeekFrom(rules, first) + (place - 1) * 7 + daysIntoWeek(rules, weekday);
  return dayOfOrdinal(*month, first, weekday, place);
}

/// The fields from the year to the second, which are asked for most, without a test of each.
NSDateComponents fieldsFromYearToSecond(civil::DayTime local) noexcept {
  NSDateComponents fields;
  setTimeFields(fields, kTimeMask & ~NSUInteger{NSCalendarUnitNanosecond}, local.second, 0);
  setDateFields(fields, NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay,
                civil::dateFromDay(local.day));
  return fields;
}

}  // namespace

bool isNamedByWeekOfYear(const NSDateComponents& fields) noexcept {
  return !isSet(fields.month()) && !isSet(fields.day()) && !isSet(fields.quarter()) &&
         !isSet(fields.weekOfMonth()) &&
         (isSet(fields.weekOfYear()) || isSet(fields.yearForWeekOfYear()));
}

WeekOfYear weekOfYear(const CalendarRules& rules, std::int32_t day,
                      const civil::Date& date) noexcept {
  // A week belongs to the year that holds the last of its first 8 - minimumDays days.
  const std::int32_t dayOfYear = day - civil::dayFromDate(date.year, 1, 1);
  const std::int32_t deciding = dayOfYear - dayOfWeek(rules, day) + 7 - rules.minimumDays;
  if (deciding < 0) {
    return {date.year - 1, (deciding + civil::daysInYear(date.year - 1)) / 7 + 1};
  }
  if (deciding >= civil::daysInYear(date.year)) return {date.year + 1, 1};
  return {date.year, deciding / 7 + 1};
}

std::int32_t weekOfMonth(const CalendarRules& rules, std::int32_t day,
                         const civil::Date& date) noexcept {
  return (date.day - 1 - dayOfWeek(rules, day) + 14 - rules.minimumDays) / 7;
}

NSDateComponents fieldsOfInstant(const CalendarRules& rules, NSUInteger mask,
                                 Instant instant) noexcept {
  const civil::DayTime local = localDayTime(rules, instant.seconds);
  if (mask == kYearToSecondMask) return fieldsFromYearToSecond(local);
  NSDateComponents fields;
  if (mask & kTimeMask) setTimeFields(fields, mask, local.second, instant.fraction);
  civil::Date date{};
  if (mask & kDateMask) {
    date = civil::dateFromDay(local.day);
    setDateFields(fields, mask, date);
  }
  if (mask & kWeekMask) setWeekFields(fields, mask, rules, local.day, date);
  return fields;
}

NSInteger fieldOfInstant(const CalendarRules& rules, NSCalendarUnit unit,
                         Instant instant) noexcept {
  return fieldsOfInstant(rules, unit, instant).valueForComponent(unit);
}

Instant instantFromFields(const CalendarRules& rules, const NSDateComponents& fields) noexcept {
  const Instant plain = instantFromPlainFields(rules, fields);
  return plain.exists() ? plain : instantFromAnyFields(rules, fields);
}

Instant instantFromPlainFields(const CalendarRules& rules,
                               const NSDateComponents& fields) noexcept {
  constexpr NSInteger kUsual = 1'000'000;
  const NSInteger hour = valueOr(fields.hour(), 0);
  const NSInteger minute = valueOr(fields.minute(), 0);
  const NSInteger second = valueOr(fields.second(), 0);
  const NSInteger nanosecond = valueOr(fields.nanosecond(), 0);
  const bool isPlain =
      isWithin(fields.year(), -kUsual, kUsual) && isWithin(fields.month(), 1, 12) &&
      isWithin(fields.day(), -kUsual, kUsual) && isWithin(hour, -kUsual, kUsual) &&
      isWithin(minute, -kUsual, kUsual) && isWithin(second, -kUsual, kUsual) &&
      isWithin(nanosecond, 0, kNanosecondsPerSecond - 1) && (valueOr(fields.era(), 1) == 1);
  if (!isPlain) return Instant::none();
  const std::int32_t day = civil::dayFromDate(static_cast<std::int32_t>(fields.year()),
                                              static_cast<std::int32_t>(fields.month()),
                                              static_cast<std::int32_t>(fields.day()));
  const std::int64_t local = civil::joinSeconds(day, hour * 3600 + minute * 60 + second);
  return Instant{rules.zone->firstInstantOfLocal(local), static_cast<double>(nanosecond) * 1e-9};
}

Instant instantFromAnyFields(const CalendarRules& rules, const NSDateComponents& fields) noexcept {
  const std::optional<NSInteger> day = isNamedByWeekOfYear(fields)
                                           ? dayNamedByWeekOfYear(rules, fields)
                                           : dayNamedByMonth(rules, fields);
  return day ? instantFromDay(rules, *day, fields) : Instant::none();
}

Instant instantFromDay(const CalendarRules& rules, NSInteger day,
                       const NSDateComponents& fields) noexcept {
  const NSInteger hour = valueOr(fields.hour(), 0);
  const NSInteger minute = valueOr(fields.minute(), 0);
  const NSInteger second = valueOr(fields.second(), 0);
  const NSInteger nanosecond = valueOr(fields.nanosecond(), 0);
  if (!isSmall(day) || !isSmall(hour) || !isSmall(minute) || !isSmall(second)) {
    return Instant::none();
  }
  const NSInteger wholeSeconds = civil::floorDivide(nanosecond, kNanosecondsPerSecond);
  const NSInteger time = hour * 3600 + minute * 60 + second + wholeSeconds;
  const NSInteger days = civil::floorDivide(time, civil::kSecondsPerDay);
  if (!isDayInRange(day + days)) return Instant::none();
  const std::int64_t local = civil::joinSeconds(day, time);
  return Instant{rules.zone->firstInstantOfLocal(local),
                 static_cast<double>(civil::floorModulo(nanosecond, kNanosecondsPerSecond)) * 1e-9};
}

Instant instantIfValid(const CalendarRules& rules, const NSDateComponents& fields) noexcept {
  const Instant instant = instantFromFields(rules, fields);
  if (!instant.exists()) return Instant::none();
  NSDateComponents asked = fields;
  // Nanoseconds are finer than a date's own steps, so only their range is looked at.
  if (isSet(asked.nanosecond())) {
    if (!isWithin(asked.nanosecond(), 0, kNanosecondsPerSecond - 1)) return Instant::none();
    asked.setNanosecond(NSDateComponentUndefined);
  }
  // Beside a week of the year alone, the year is the one that the week is counted in; beside a
  // weekday too it is the calendar's, and week 1 may lack the day.
  if (isNamedByWeekOfYear(fields) && !isSet(fields.weekday()) &&
      !isSet(fields.yearForWeekOfYear())) {
    asked.setYearForWeekOfYear(astronomicalYear(fields, valueOr(fields.year(), 1)));
    asked.setYear(NSDateComponentUndefined);
    asked.setEra(NSDateComponentUndefined);
  }
  return matchesFields(rules, asked, instant) ? instant : Instant::none();
}

bool matchesFields(const CalendarRules& rules, const NSDateComponents& fields,
                   Instant instant) noexcept {
  return fieldsOfInstant(rules, fields.setUnits(), instant) == fields;
}

}  // namespace ORLFoundation::internal::time
