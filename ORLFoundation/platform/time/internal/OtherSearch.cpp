// The search for matching dates in calendars beyond the Gregorian one: a walk by days that leaves
// out months which cannot match.
#include <ORLFoundation/platform/time/internal/CalendarFields.h>
#include <ORLFoundation/platform/time/internal/CalendarSearch.h>
#include <ORLFoundation/platform/time/internal/OtherCalendar.h>
#include <ORLFoundation/platform/time/internal/OtherDays.h>

#include <algorithm>
#include <cstdlib>

namespace ORLFoundation::internal::time {
namespace {

// A year's number comes again after 60 years at most where its cycle is not told.
constexpr int kMonthsToWalk = 61 * 13;
// 400 years: a year that is farther away is not gone to.
constexpr std::int32_t kDaysToSearch = 146'097;

constexpr NSUInteger kMonthGrains =
    NSCalendarUnitEra | NSCalendarUnitYear | NSCalendarUnitQuarter | NSCalendarUnitMonth;
constexpr NSUInteger kWeekGrains =
    NSCalendarUnitWeekOfYear | NSCalendarUnitWeekOfMonth | NSCalendarUnitYearForWeekOfYear;
constexpr NSUInteger kDayGrains = kMonthGrains | kWeekGrains | NSCalendarUnitDay |
                                  NSCalendarUnitWeekday | NSCalendarUnitWeekdayOrdinal;

// The wanted fields of days, against a calendar that stands at a day.
class OtherPattern {
 public:
  OtherPattern(const OtherCalendar::Kind& kind, const CalendarRules& rules,
               const NSDateComponents& fields)
      : kind_(kind), rules_(rules), fields_(fields), mask_(fields.setUnits()), days_(kind, rules) {}

  OtherDays& days() { return days_; }
  bool matches(std::int32_t day, NSUInteger units) {
    days_.goTo(day);
    NSDateComponents shown;
    setOtherFields(kind_, days_, mask_ & units, shown);
    if (mask_ & units & NSCalendarUnitWeekday) shown.setWeekday(civil::weekdayOfDay(day));
    return shown == only(units);
  }
  // Whether the smallest unit that is named begins on the day.
  bool begins(std::int32_t day) {
    if ((mask_ & ~(kMonthGrains | kWeekGrains)) != 0) return true;
    days_.goTo(day);
    if (mask_ & kWeekGrains) {
      return dayOfWeek(rules_, day) == 0 || !matches(day - 1, kDayGrains);
    }
    if (days_.get(UCAL_DATE) != 1) return false;
    if (mask_ & NSCalendarUnitMonth) return true;
    if (mask_ & NSCalendarUnitQuarter) return days_.get(UCAL_MONTH) % 3 == 0;
    return days_.get(UCAL_DAY_OF_YEAR) == 1;
  }

 private:
  NSDateComponents only(NSUInteger units) const {
    NSDateComponents kept;
    for (NSUInteger unit = NSCalendarUnitEra; unit <= NSCalendarUnitNanosecond; unit <<= 1) {
      const auto single = static_cast<NSCalendarUnit>(unit);
      if (mask_ & units & unit)
        kept.setValueForComponent(fields_.valueForComponent(single), single);
    }
    return kept;
  }

  const OtherCalendar::Kind& kind_;
  const CalendarRules& rules_;
  const NSDateComponents& fields_;
  NSUInteger mask_;
  OtherDays days_;
};

// Where the wanted year begins: the edge of it that a walk reaches first; the origin's day where no
// year is wanted and where the walk is in it already. A year without its era is that of the era
// that the calendar takes for a missing one.
std::int32_t edgeOfYear(OtherDays& days, const NSDateComponents& fields, std::int32_t origin,
                        bool backward) {
  constexpr std::int32_t kLongYear = 400;
  constexpr NSInteger kMaxYear = 20'000;
  const bool byWeeks = fields.year() == NSDateComponentUndefined;
  const NSInteger year = byWeeks ? fields.yearForWeekOfYear() : fields.year();
  if (year < -kMaxYear || year > kMaxYear) return origin;
  const std::int32_t first = byWeeks ? days.firstOfWeekYear(static_cast<std::int32_t>(year))
                                     : days.firstOfMonth(fields, 1);
  return backward ? std::min(origin, first + kLongYear) : std::max(origin, first - 1);
}

// A year without its era may be one of several, of which the walk is to meet the nearest.
bool isOfAnyEra(const NSDateComponents& fields) {
  return fields.year() != NSDateComponentUndefined && fields.era() == NSDateComponentUndefined;
}

}  // namespace

bool OtherCalendar::isPossible(const CalendarRules& rules, const NSDateComponents& fields) const {
  const NSUInteger mask = fields.setUnits();
  for (NSUInteger unit = NSCalendarUnitEra; unit <= NSCalendarUnitNanosecond; unit <<= 1) {
    if (!(mask & unit)) continue;
    const auto single = static_cast<NSCalendarUnit>(unit);
    const NSInteger value = fields.valueForComponent(single);
    const NSRange range = largestRange(rules, single);
    const auto first = static_cast<NSInteger>(range.location);
    if (value < first || value - first >= static_cast<NSInteger>(range.length)) return false;
  }
  return mask != 0;
}

Instant OtherCalendar::nearestMatch(const CalendarRules& rules, const NSDateComponents& fields,
                                    Instant from, bool backward, bool strict) const {
  if (!isPossible(rules, fields)) return Instant::none();
  OtherPattern pattern(*kind_, rules, fields);
  const std::int32_t onward = backward ? -1 : 1;
  // A clock change can show the next day before the origin's own, and the reverse.
  const std::int32_t origin = localDayTime(rules, from.seconds).day - onward;
  if (!OtherDays::isInRange(origin)) return Instant::none();
  const auto walkFrom = [&](std::int32_t day) {
    for (int months = 0; months < kMonthsToWalk && OtherDays::isInRange(day); ++months) {
      const DayRange month = daysAround(pattern.days(), NSCalendarUnitMonth, day);
      if (!pattern.days().isGood()) break;
      const bool monthMatches = pattern.matches(day, kMonthGrains);
      for (; monthMatches && day >= month.begin && day < month.end; day += onward) {
        if (!pattern.matches(day, kDayGrains) || !pattern.begins(day)) continue;
        const Instant found = nearestTimeOfDay(rules, fields, day, from, backward, strict);
        if (found.exists()) return found;
      }
      day = backward ? month.begin - 1 : month.end;
    }
    return Instant::none();
  };
  const std::int32_t edge = edgeOfYear(pattern.days(), fields, origin, backward);
  if (!isOfAnyEra(fields)) return walkFrom(edge);
  const Instant near = walkFrom(origin);
  const bool isFarther = edge != origin && std::abs(edge - origin) < kDaysToSearch;
  return near.exists() || !isFarther ? near : walkFrom(edge);
}

Instant OtherCalendar::instantBySettingUnit(const CalendarRules& rules, NSCalendarUnit unit,
                                            NSInteger value, Instant of, bool strict) const {
  NSDateComponents fields;
  fields.setValueForComponent(value, unit);
  if (!isPossible(rules, fields)) return Instant::none();
  if (matchesFields(rules, fields, of)) return of;
  if (unit != NSCalendarUnitDay || strict) return nearestMatch(rules, fields, of, false, strict);
  // The day after the month's end stands for a day that the month lacks.
  const std::int32_t today = localDayTime(rules, of.seconds).day;
  if (!OtherDays::isInRange(today)) return Instant::none();
  OtherDays days(*kind_, rules);
  DayRange month = daysAround(days, NSCalendarUnitMonth, today);
  if (value < today - month.begin + 1) month = daysAround(days, NSCalendarUnitMonth, month.end);
  const std::int32_t day = std::min(month.begin + static_cast<std::int32_t>(value) - 1, month.end);
  return {rules.zone->startInstantOfLocal(civil::joinSeconds(day, 0)), 0};
}

}  // namespace ORLFoundation::internal::time
