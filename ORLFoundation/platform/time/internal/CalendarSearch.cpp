
#include <ORLFoundation/platform/time/internal/CalendarSearch.h>

#include <ORLFoundation/platform/time/internal/CalendarFields.h>
#include <ORLFoundation/platform/time/internal/CalendarRanges.h>

#include <algorithm>

namespace ORLFoundation::internal::time {
namespace {

bool isUnsetOr(NSInteger field, NSInteger value) noexcept {
  return !isSet(field) || field == value;
}

// Days of one month as bits 0 to 30, for the days 1 to 31.
using DayMask = std::uint32_t;

constexpr DayMask kEverySeventhDay = 0x10204081;  // the 1st, 8th, 15th, 22nd and 29th
constexpr DayMask kSevenDays = 0x7f;

// The bits shifted up by a number of days that may be negative or beyond the month.
DayMask shifted(DayMask days, std::int64_t by) noexcept {
  if (by <= -32 || by >= 32) return 0;
  return by >= 0 ? days << by : days >> -by;
}

// A wish for fields, laid out for a walk by months.
class Pattern {
 public:
  Pattern(const CalendarRules& rules, const NSDateComponents& fields) noexcept
      : rules_(rules), fields_(fields), mask_(fields.setUnits()), grain_(grainOf(mask_)) {}

  // Whether any month at all can hold a match.
  [[nodiscard]] bool isPossible() const noexcept {
    for (NSUInteger unit = NSCalendarUnitEra; unit <= NSCalendarUnitNanosecond; unit <<= 1) {
      if ((mask_ & unit) && !isPossible(static_cast<NSCalendarUnit>(unit))) return false;
    }
    return mask_ != 0;
  }

  [[nodiscard]] bool matchesYear(std::int32_t year) const noexcept {
    const bool beforeChrist = year <= 0;
    return isUnsetOr(fields_.era(), beforeChrist ? 0 : 1) &&
           isUnsetOr(fields_.year(), beforeChrist ? 1 - year : year);
  }
  [[nodiscard]] bool matchesMonth(std::int32_t month) const noexcept {
    return isUnsetOr(fields_.month(), month) && isUnsetOr(fields_.quarter(), (month - 1) / 3 + 1);
  }

  // The days of the month that match and begin the smallest named unit.
  [[nodiscard]] DayMask daysOfMonth(std::int32_t year, std::int32_t month,
                                    std::int32_t first) const noexcept {
    const std::int32_t length = civil::daysInMonth(year, month);
    DayMask days = DayMask{0x7fffffff} >> (31 - length);
    if (isSet(fields_.day())) days &= shifted(1, fields_.day() - 1);
    if (isSet(fields_.weekday())) days &= daysOfWeekday(fields_.weekday(), first);
    if (isSet(fields_.weekdayOrdinal()))
      days &= shifted(kSevenDays, (fields_.weekdayOrdinal() - 1) * 7);
    if (isSet(fields_.weekOfMonth())) {
      const std::int64_t weekOne = firstWeekFrom(rules_, first) - first;
      days &= shifted(kSevenDays, weekOne + (fields_.weekOfMonth() - 1) * 7);
    }
    if (days != 0 && (mask_ & (NSCalendarUnitWeekOfYear | NSCalendarUnitYearForWeekOfYear)))
      days = daysOfWeekOfYear(days, year, month, first);
    return days & beginnings(year, month, first);
  }

 private:
  bool isPossible(NSCalendarUnit unit) const noexcept {
    const NSInteger value = fields_.valueForComponent(unit);
    const NSRange range = largestRange(rules_, unit);
    const auto first = static_cast<NSInteger>(range.location);
    const bool counted = unit == NSCalendarUnitYear || unit == NSCalendarUnitYearForWeekOfYear;
    if (counted) return value >= -civil::kMaxYear && value <= civil::kMaxYear;
    return value >= first && value < first + static_cast<NSInteger>(range.length);
  }

  static DayMask daysOfWeekday(NSInteger weekday, std::int32_t first) noexcept {
    return kEverySeventhDay << civil::floorModulo(weekday - civil::weekdayOfDay(first), 7);
  }

  DayMask daysOfWeekOfYear(DayMask days, std::int32_t year, std::int32_t month,
                           std::int32_t first) const noexcept {
    // A year counted in weeks, alone, begins with its week 1.
    const bool alone = mask_ == NSCalendarUnitYearForWeekOfYear;
    const NSInteger wantedWeek = alone ? 1 : fields_.weekOfYear();
    DayMask kept = 0;
    for (; days != 0; days &= days - 1) {
      const int bit = __builtin_ctz(days);
      const WeekOfYear week = weekOfYear(rules_, first + bit, {year, month, bit + 1});
      if (isUnsetOr(wantedWeek, week.week) && isUnsetOr(fields_.yearForWeekOfYear(), week.year))
        kept |= DayMask{1} << bit;
    }
    return kept;
  }

  // The days at which the smallest named unit begins.
  DayMask beginnings(std::int32_t year, std::int32_t month, std::int32_t first) const noexcept {
    switch (grain_) {
      case NSCalendarUnitYear:
        return month == 1 ? 1 : 0;
      case NSCalendarUnitQuarter:
        return month % 3 == 1 ? 1 : 0;
      case NSCalendarUnitMonth:
        return 1;
      case NSCalendarUnitWeek:
        break;
      default:
        return ~DayMask{0};
    }
    // A week that reaches back into a month that does not match begins with this one.
    const bool reachesBack = !isSet(fields_.weekOfMonth()) &&
                             matchesMonth(month == 1 ? 12 : month - 1) &&
                             matchesYear(month == 1 ? year - 1 : year);
    return daysOfWeekday(rules_.firstWeekday, first) | (reachesBack ? 0 : 1);
  }

  static NSCalendarUnit grainOf(NSUInteger mask) noexcept {
    constexpr NSUInteger kEraAndYear = NSCalendarUnitEra | NSCalendarUnitYear;
    constexpr NSUInteger kQuarters = kEraAndYear | NSCalendarUnitQuarter;
    constexpr NSUInteger kMonths = kQuarters | NSCalendarUnitMonth;
    constexpr NSUInteger kWeeks = kMonths | NSCalendarUnitWeekOfYear | NSCalendarUnitWeekOfMonth |
                                  NSCalendarUnitYearForWeekOfYear;
    if ((mask & ~kEraAndYear) == 0) return NSCalendarUnitYear;
    if ((mask & ~kQuarters) == 0) return NSCalendarUnitQuarter;
    if ((mask & ~kMonths) == 0) return NSCalendarUnitMonth;
    return (mask & ~kWeeks) == 0 ? NSCalendarUnitWeek : NSCalendarUnitDay;
  }

  const CalendarRules& rules_;
  const NSDateComponents& fields_;
  NSUInteger mask_;
  NSCalendarUnit grain_;
};

// The candidates of one search, of which the nearest on the right side of its origin is kept.
struct Nearest {
  const CalendarRules& rules;
  Instant from;
  bool backward;
  bool strict;
  Instant found = Instant::none();

  void offer(Instant candidate) noexcept {
    if (!(backward ? candidate < from : from < candidate)) return;
    if (!found.exists() || (backward ? found < candidate : candidate < found)) found = candidate;
  }
  // Both instants of a local time.
  void offerLocal(std::int64_t local, double fraction) noexcept {
    const std::int64_t first = rules.zone->firstInstantOfLocal(local);
    if (localSeconds(rules, first) != local) {
      if (!strict) offer({rules.zone->startInstantOfLocal(local), 0});
      return;
    }
    offer({first, fraction});
    offer({rules.zone->lastInstantOfLocal(local), fraction});
  }
};

// The values that one field of a time takes: the set one, else all, else only 0 when every smaller
// field is unset too.
struct TimeValues {
  std::int32_t begin;
  std::int32_t end;

  TimeValues(NSInteger value, std::int32_t count, bool smallerIsSet) noexcept
      : begin(isSet(value) ? static_cast<std::int32_t>(value) : 0),
        end(isSet(value)   ? begin + 1
            : smallerIsSet ? count
                           : 1) {}
};

void offerTimesOfDay(Nearest& nearest, const NSDateComponents& fields, std::int32_t day) noexcept {
  const bool hasNanosecond = isSet(fields.nanosecond());
  const bool hasSecond = isSet(fields.second()) || hasNanosecond;
  const bool hasMinute = isSet(fields.minute()) || hasSecond;
  const TimeValues hours(fields.hour(), 24, hasMinute);
  const TimeValues minutes(fields.minute(), 60, hasSecond);
  const TimeValues seconds(fields.second(), 60, hasNanosecond);
  const double fraction = hasNanosecond ? static_cast<double>(fields.nanosecond()) * 1e-9 : 0;
  for (std::int32_t hour = hours.begin; hour < hours.end; ++hour) {
    for (std::int32_t minute = minutes.begin; minute < minutes.end; ++minute) {
      for (std::int32_t second = seconds.begin; second < seconds.end; ++second)
        nearest.offerLocal(civil::joinSeconds(day, hour * 3600 + minute * 60 + second), fraction);
    }
  }
}

bool namesTime(const NSDateComponents& fields) noexcept {
  return (fields.setUnits() & (NSCalendarUnitHour | NSCalendarUnitMinute | NSCalendarUnitSecond |
                               NSCalendarUnitNanosecond)) != 0;
}

void offerDay(Nearest& nearest, const NSDateComponents& fields, std::int32_t day) noexcept {
  if (namesTime(fields)) return offerTimesOfDay(nearest, fields, day);
  const std::int64_t local = civil::joinSeconds(day, 0);
  const std::int64_t start = nearest.rules.zone->startInstantOfLocal(local);
  // A day that the zone skipped has no start of its own.
  if (localDayTime(nearest.rules, start).day == day) nearest.offer({start, 0});
}

// The month to begin with: that of the origin, or of the wanted year where that lies beyond it.
std::int64_t firstMonth(const NSDateComponents& fields, civil::Date origin,
                        bool backward) noexcept {
  const std::int64_t month = civil::monthNumber(origin.year, origin.month);
  const bool byWeeks = !isSet(fields.year());
  const NSInteger named = byWeeks ? fields.yearForWeekOfYear() : fields.year();
  if (!isSet(named)) return month;
  const NSInteger year = !byWeeks && fields.era() == 0 ? 1 - named : named;
  // Weeks reach a month into the years beside their own.
  return backward ? std::min(month, civil::monthNumber(year, 13))
                  : std::max(month, civil::monthNumber(year, 0));
}

constexpr std::int64_t kMonthsToSearch = civil::kYearsPerCycle * 12 + 1;

}  // namespace

Instant nearestTimeOfDay(const CalendarRules& rules, const NSDateComponents& fields,
                         std::int32_t day, Instant from, bool backward, bool strict) noexcept {
  Nearest nearest{rules, from, backward, strict};
  offerDay(nearest, fields, day);
  return nearest.found;
}

Instant nearestMatch(const CalendarRules& rules, const NSDateComponents& fields, Instant from,
                     bool backward, bool strict) noexcept {
  const Pattern pattern(rules, fields);
  if (!pattern.isPossible()) return Instant::none();
  Nearest nearest{rules, from, backward, strict};
  // A clock change can show the next day before the origin's own, and the reverse.
  const std::int32_t onward = backward ? -1 : 1;
  const std::int32_t originDay = localDayTime(rules, from.seconds).day - onward;
  std::int64_t month = firstMonth(fields, civil::dateFromDay(originDay), backward);
  for (std::int64_t walked = 0; walked < kMonthsToSearch; ++walked, month += onward) {
    const auto [year, monthOfYear] = civil::yearMonthFromNumber(month);
    if (std::abs(year) >= civil::kMaxYear) break;
    if (!pattern.matchesMonth(monthOfYear) || !pattern.matchesYear(year)) continue;
    const std::int32_t first = civil::dayFromDate(year, monthOfYear, 1);
    DayMask days = pattern.daysOfMonth(year, monthOfYear, first);
    const std::int64_t origin = std::int64_t{originDay} - first;
    if (backward) days &= ~shifted(~DayMask{0}, origin + 1);
    if (!backward && origin > 0) days &= shifted(~DayMask{0}, origin);
    while (days != 0) {
      const int bit = backward ? 31 - __builtin_clz(days) : __builtin_ctz(days);
      days &= ~(DayMask{1} << bit);
      offerDay(nearest, fields, first + bit);
      if (nearest.found.exists()) return nearest.found;
    }
  }
  return Instant::none();
}

namespace {

Instant instantBySettingDay(const CalendarRules& rules, NSInteger value, Instant of) noexcept {
  const civil::Date date = civil::dateFromDay(localDayTime(rules, of.seconds).day);
  const auto [year, month] = civil::yearMonthFromNumber(civil::monthNumber(date.year, date.month) +
                                                        (value < date.day ? 1 : 0));
  const auto wanted =
      std::min(static_cast<std::int32_t>(value), civil::daysInMonth(year, month) + 1);
  const std::int32_t day = civil::dayFromDate(year, month, wanted);
  return Instant{rules.zone->startInstantOfLocal(civil::joinSeconds(day, 0)), 0};
}

}  // namespace

Instant instantBySettingUnit(const CalendarRules& rules, NSCalendarUnit unit, NSInteger value,
                             Instant of, bool strict) noexcept {
  NSDateComponents fields;
  fields.setValueForComponent(value, unit);
  if (!Pattern(rules, fields).isPossible()) return Instant::none();
  if (matchesFields(rules, fields, of)) return of;
  if (unit == NSCalendarUnitDay && !strict) return instantBySettingDay(rules, value, of);
  return nearestMatch(rules, fields, of, false, strict);
}

}  // namespace ORLFoundation::internal::time
