
#include <ORLFoundation/platform/time/internal/CalendarRanges.h>

#include <ORLFoundation/platform/time/internal/CalendarFields.h>

namespace ORLFoundation::internal::time {
namespace {

DayRange monthsFrom(std::int32_t year, std::int32_t month, std::int32_t count) noexcept {
  const auto [endYear, endMonth] =
      civil::yearMonthFromNumber(civil::monthNumber(year, month) + count);
  return {civil::dayFromDate(year, month, 1), civil::dayFromDate(endYear, endMonth, 1)};
}

DayRange daysAround(const CalendarRules& rules, NSCalendarUnit unit, std::int32_t day) noexcept {
  switch (unit) {
    case NSCalendarUnitDay:
    case NSCalendarUnitWeekday:
    case NSCalendarUnitWeekdayOrdinal:
      return DayRange{day, day + 1};
    case NSCalendarUnitWeek:
    case NSCalendarUnitWeekOfYear:
    case NSCalendarUnitWeekOfMonth: {
      const std::int32_t first = day - dayOfWeek(rules, day);
      return DayRange{first, first + 7};
    }
    case NSCalendarUnitMonth: {
      const civil::Date date = civil::dateFromDay(day);
      const std::int32_t first = day - date.day + 1;
      return DayRange{first, first + civil::daysInMonth(date.year, date.month)};
    }
    case NSCalendarUnitQuarter: {
      const civil::Date date = civil::dateFromDay(day);
      return monthsFrom(date.year, (date.month - 1) / 3 * 3 + 1, 3);
    }
    case NSCalendarUnitYear:
      return monthsFrom(civil::dateFromDay(day).year, 1, 12);
    case NSCalendarUnitYearForWeekOfYear: {
      const std::int32_t year = weekOfYear(rules, day, civil::dateFromDay(day)).year;
      return DayRange{firstDayOfWeekYear(rules, year), firstDayOfWeekYear(rules, year + 1)};
    }
    default:
      return DayRange{0, 0};
  }
}

InstantRange clockRange(const CalendarRules& rules, std::int64_t size, Instant instant) noexcept {
  const std::int64_t local = localSeconds(rules, instant.seconds);
  return InstantRange{{instant.seconds - civil::floorModulo(local, size), 0},
                      static_cast<double>(size)};
}

InstantRange nanosecondRange(Instant instant) noexcept {
  const double whole = static_cast<double>(static_cast<std::int64_t>(instant.fraction * 1e9));
  return InstantRange{{instant.seconds, whole * 1e-9}, 1e-9};
}

}  // namespace

InstantRange rangeAroundInstant(const CalendarRules& rules, NSCalendarUnit unit,
                                Instant instant) noexcept {
  switch (unit) {
    case NSCalendarUnitHour:
      return clockRange(rules, 3600, instant);
    case NSCalendarUnitMinute:
      return clockRange(rules, 60, instant);
    case NSCalendarUnitSecond:
      return InstantRange{{instant.seconds, 0}, 1};
    case NSCalendarUnitNanosecond:
      return nanosecondRange(instant);
    default:
      break;
  }
  const DayRange days = daysAround(rules, unit, localDayTime(rules, instant.seconds).day);
  return instantRange(rules, days, instant);
}

InstantRange instantRange(const CalendarRules& rules, DayRange days, Instant instant) noexcept {
  if (!days.exists()) return InstantRange{Instant::none(), 0};
  const std::int64_t start = rules.zone->startInstantOfLocal(civil::joinSeconds(days.begin, 0));
  const std::int64_t nextLocal = civil::joinSeconds(days.end, 0);
  std::int64_t end = rules.zone->startInstantOfLocal(nextLocal);
  // Clocks that are put back past midnight show the unit's last hour again: it ends at the second
  // midnight (St John's, 29 October 2006, 00:01).
  if (end <= instant.seconds) end = rules.zone->lastInstantOfLocal(nextLocal);
  return InstantRange{{start, 0}, static_cast<double>(end - start)};
}

namespace {

// Weeks that hold a day of the range. The first counts as 0 where its number is that of a week of
// the year (month) before.
NSRange weeksWithin(const CalendarRules& rules, DayRange range) noexcept {
  const std::int32_t first = range.begin - dayOfWeek(rules, range.begin);
  const std::int32_t weeks = (range.end - 1 - first) / 7 + 1;
  return rangeFrom(firstWeekFrom(rules, range.begin) > range.begin ? 0 : 1, weeks);
}

NSRange dayNumbersWithin(NSCalendarUnit larger, DayRange range) noexcept {
  const std::int64_t length = range.end - range.begin;
  const bool counted = larger == NSCalendarUnitMonth || larger == NSCalendarUnitYear ||
                       larger == NSCalendarUnitQuarter || larger == NSCalendarUnitYearForWeekOfYear;
  return rangeFrom(counted ? 1 : civil::dateFromDay(range.begin).day, length);
}

NSRange weekdayPlacesWithin(NSCalendarUnit larger, DayRange range) noexcept {
  if (larger == NSCalendarUnitMonth || larger == NSCalendarUnitYear)
    return rangeFrom(1, (range.end - range.begin + 6) / 7);
  return kNoRange;
}

NSRange monthsWithin(NSCalendarUnit larger, DayRange range) noexcept {
  if (larger == NSCalendarUnitYear) return rangeFrom(1, 12);
  if (larger == NSCalendarUnitQuarter) return rangeFrom(civil::dateFromDay(range.begin).month, 3);
  return kNoRange;
}

NSRange datesWithin(const CalendarRules& rules, NSCalendarUnit unit, NSCalendarUnit larger,
                    DayRange range) noexcept {
  switch (unit) {
    case NSCalendarUnitDay:
      return dayNumbersWithin(larger, range);
    case NSCalendarUnitMonth:
      return monthsWithin(larger, range);
    case NSCalendarUnitQuarter:
      return larger == NSCalendarUnitYear ? rangeFrom(1, 4) : kNoRange;
    default:
      return daysWithin(rules, unit, larger, range);
  }
}

}  // namespace

int rungOfUnit(NSCalendarUnit unit) noexcept {
  switch (unit) {
    case NSCalendarUnitNanosecond:
      return 1;
    case NSCalendarUnitSecond:
      return 2;
    case NSCalendarUnitMinute:
      return 3;
    case NSCalendarUnitHour:
      return 4;
    case NSCalendarUnitDay:
    case NSCalendarUnitWeekday:
      return 5;
    case NSCalendarUnitWeek:
    case NSCalendarUnitWeekdayOrdinal:
    case NSCalendarUnitWeekOfMonth:
    case NSCalendarUnitWeekOfYear:
      return 6;
    case NSCalendarUnitMonth:
      return 7;
    case NSCalendarUnitQuarter:
      return 8;
    case NSCalendarUnitYear:
    case NSCalendarUnitYearForWeekOfYear:
      return 9;
    case NSCalendarUnitEra:
      return 10;
  }
  return 0;
}

NSRange daysWithin(const CalendarRules& rules, NSCalendarUnit unit, NSCalendarUnit larger,
                   DayRange range) noexcept {
  switch (unit) {
    case NSCalendarUnitWeekday:
      return rangeFrom(1, 7);
    case NSCalendarUnitWeekdayOrdinal:
      return weekdayPlacesWithin(larger, range);
    case NSCalendarUnitWeek:
    case NSCalendarUnitWeekOfYear:
    case NSCalendarUnitWeekOfMonth:
      return weeksWithin(rules, range);
    default:
      return kNoRange;
  }
}

NSRange rangeWithin(const CalendarRules& rules, NSCalendarUnit unit, NSCalendarUnit larger,
                    Instant instant) noexcept {
  const int rung = rungOfUnit(unit);
  if (rung == 0 || rung >= rungOfUnit(larger)) return kNoRange;
  if (larger == NSCalendarUnitEra || rung < rungOfUnit(NSCalendarUnitDay))
    return largestRange(rules, unit);
  const DayRange days = daysAround(rules, larger, localDayTime(rules, instant.seconds).day);
  return days.exists() ? datesWithin(rules, unit, larger, days) : kNoRange;
}

namespace {

struct UnitLimits {
  NSCalendarUnit unit;
  NSRange largest;
  NSRange smallest;
};
constexpr NSUInteger kYears = static_cast<NSUInteger>(civil::kMaxYear);
constexpr UnitLimits kUnitLimits[] = {
    {NSCalendarUnitEra, {0, 2}, {0, 2}},
    {NSCalendarUnitYear, {1, kYears}, {1, kYears}},
    {NSCalendarUnitMonth, {1, 12}, {1, 12}},
    {NSCalendarUnitDay, {1, 31}, {1, 28}},
    {NSCalendarUnitHour, {0, 24}, {0, 24}},
    {NSCalendarUnitMinute, {0, 60}, {0, 60}},
    {NSCalendarUnitSecond, {0, 60}, {0, 60}},
    {NSCalendarUnitWeek, {1, 53}, {1, 52}},
    {NSCalendarUnitWeekday, {1, 7}, {1, 7}},
    {NSCalendarUnitWeekdayOrdinal, {1, 5}, {1, 4}},
    {NSCalendarUnitQuarter, {1, 4}, {1, 4}},
    {NSCalendarUnitWeekOfMonth, {1, 6}, {1, 4}},
    {NSCalendarUnitWeekOfYear, {1, 53}, {1, 52}},
    {NSCalendarUnitYearForWeekOfYear, {1, kYears}, {1, kYears}},
    {NSCalendarUnitNanosecond, {0, 1'000'000'000}, {0, 1'000'000'000}},
};

const UnitLimits* limitsOfUnit(NSCalendarUnit unit) noexcept {
  for (const UnitLimits& limits : kUnitLimits) {
    if (limits.unit == unit) return &limits;
  }
  return nullptr;
}

NSRange weeksOfMonth(const CalendarRules& rules, NSUInteger daysOfMonth,
                     NSUInteger daysBefore) noexcept {
  // Where a month's first week needs more than a day, the days before it stand in week 0.
  const auto minimum = static_cast<NSUInteger>(rules.minimumDays);
  const NSUInteger last = (daysOfMonth + daysBefore + 7 - minimum) / 7;
  return minimum > 1 ? NSRange{0, last + 1} : NSRange{1, last};
}

}  // namespace

NSRange largestRange(const CalendarRules& rules, NSCalendarUnit unit) noexcept {
  const UnitLimits* limits = limitsOfUnit(unit);
  if (!limits) return kNoRange;
  return unit == NSCalendarUnitWeekOfMonth ? weeksOfMonth(rules, 31, 6) : limits->largest;
}

NSRange smallestRange(const CalendarRules& rules, NSCalendarUnit unit) noexcept {
  const UnitLimits* limits = limitsOfUnit(unit);
  if (!limits) return kNoRange;
  return unit == NSCalendarUnitWeekOfMonth ? weeksOfMonth(rules, 28, 0) : limits->smallest;
}

}  // namespace ORLFoundation::internal::time
