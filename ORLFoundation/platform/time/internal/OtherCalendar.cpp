#include <ORLFoundation/platform/time/internal/OtherCalendar.h>

#include <ORLFoundation/platform/time/internal/CalendarArithmetic.h>
#include <ORLFoundation/platform/time/internal/CalendarFields.h>
#include <ORLFoundation/platform/time/internal/CalendarSteps.h>
#include <ORLFoundation/platform/time/internal/OtherDays.h>

#include <algorithm>

namespace ORLFoundation::internal::time {
namespace {

constexpr OtherCalendar::Kind kKinds[] = {
    {"buddhist", true, 365.2425, 12}, {"chinese", false, 365.2422, 12.3683},
    {"coptic", false, 365.25, 13},    {"hebrew", false, 365.2468, 12.3684},
    {"indian", true, 365.2425, 12},   {"islamic-umalqura", true, 354.3667, 12},
    {"japanese", true, 365.2425, 12}, {"persian", true, 365.2422, 12},
    {"roc", true, 365.2425, 12},
};

constexpr NSUInteger kTimeUnits =
    NSCalendarUnitHour | NSCalendarUnitMinute | NSCalendarUnitSecond | NSCalendarUnitNanosecond;
/// What is the same in all calendars: the times of a day and the days of a week.
constexpr NSUInteger kCommonUnits = kTimeUnits | NSCalendarUnitWeekday;
constexpr NSUInteger kWeekAndPlaceUnits = NSCalendarUnitWeek | NSCalendarUnitWeekOfYear |
                                          NSCalendarUnitWeekOfMonth | NSCalendarUnitWeekdayOrdinal;
constexpr NSUInteger kDayUnits = NSCalendarUnitDay | NSCalendarUnitWeekday | kWeekAndPlaceUnits;
constexpr NSUInteger kKindsOfYear = NSCalendarUnitYear | NSCalendarUnitYearForWeekOfYear;
constexpr NSInteger kFarthestStep = 500'000;  // in months

/// The field by which ICU counts a unit; UCAL_FIELD_COUNT for none.
UCalendarDateFields fieldOfUnit(NSCalendarUnit unit) noexcept {
  switch (unit) {
    case NSCalendarUnitEra:
      return UCAL_ERA;
    case NSCalendarUnitYear:
      return UCAL_YEAR;
    case NSCalendarUnitMonth:
      return UCAL_MONTH;
    case NSCalendarUnitDay:
      return UCAL_DATE;
    case NSCalendarUnitWeekdayOrdinal:
      return UCAL_DAY_OF_WEEK_IN_MONTH;
    case NSCalendarUnitWeekOfMonth:
      return UCAL_WEEK_OF_MONTH;
    case NSCalendarUnitWeek:
    case NSCalendarUnitWeekOfYear:
      return UCAL_WEEK_OF_YEAR;
    case NSCalendarUnitYearForWeekOfYear:
      return UCAL_YEAR_WOY;
    default:
      return UCAL_FIELD_COUNT;
  }
}

}  // namespace

std::shared_ptr<const OtherCalendar> OtherCalendar::withIdentifier(std::string_view identifier) {
  for (const OtherCalendar::Kind& kind : kKinds) {
    if (identifier == kind.identifier) return std::make_shared<const OtherCalendar>(kind);
  }
  return nullptr;
}

NSDateComponents OtherCalendar::fieldsOfInstant(const CalendarRules& rules, NSUInteger mask,
                                                Instant instant) const {
  const std::int32_t day = localDayTime(rules, instant.seconds).day;
  if (!OtherDays::isInRange(day)) return {};
  NSDateComponents fields = time::fieldsOfInstant(rules, mask & kCommonUnits, instant);
  if ((mask & ~kCommonUnits) == 0) return fields;
  OtherDays days(*kind_, rules);
  days.goTo(day);
  if (days.isGood()) setOtherFields(*kind_, days, mask, fields);
  return fields;
}

Instant OtherCalendar::instantFromFields(const CalendarRules& rules,
                                         const NSDateComponents& fields) const {
  const auto day = dayOfFields(*kind_, rules, fields);
  return day ? instantFromDay(rules, *day, fields) : Instant::none();
}

bool OtherCalendar::matchesFields(const CalendarRules& rules, const NSDateComponents& fields,
                                  Instant instant) const {
  return fieldsOfInstant(rules, fields.setUnits(), instant) == fields;
}

bool OtherCalendar::areFieldsValid(const CalendarRules& rules,
                                   const NSDateComponents& fields) const {
  const Instant instant = instantFromFields(rules, fields);
  if (!instant.exists()) return false;
  NSDateComponents asked = fields;
  if (asked.nanosecond() != NSDateComponentUndefined) {
    if (asked.nanosecond() < 0 || asked.nanosecond() > 999'999'999) return false;
    asked.setNanosecond(NSDateComponentUndefined);
  }
  return matchesFields(rules, asked, instant);
}

Instant OtherCalendar::addUnit(const CalendarRules& rules, NSCalendarUnit unit, NSInteger value,
                               Instant to, bool wrap) const {
  if (value == 0) return to;
  const bool byDays = unit & (kDayUnits | kTimeUnits);
  if (byDays && (!wrap || (unit & kCommonUnits)))
    return wrap ? addUnitWrapping(rules, unit, value, to) : time::addUnit(rules, unit, value, to);
  const bool isQuarter = unit == NSCalendarUnitQuarter;
  const UCalendarDateFields field = isQuarter ? UCAL_MONTH : fieldOfUnit(unit);
  if (field == UCAL_FIELD_COUNT || field == UCAL_ERA || (isQuarter && !kind_->hasQuarters) ||
      value < -kFarthestStep || value > kFarthestStep)
    return Instant::none();
  const civil::DayTime local = localDayTime(rules, to.seconds);
  if (!OtherDays::isInRange(local.day)) return Instant::none();
  OtherDays days(*kind_, rules);
  days.goTo(local.day);
  const auto amount = static_cast<std::int32_t>(isQuarter ? value * 3 : value);
  std::int32_t reached = 0;
  if (unit == NSCalendarUnitYearForWeekOfYear && !wrap) {
    // The same day of the same week of another year.
    const std::int32_t year = days.get(UCAL_YEAR_WOY);
    reached = local.day + days.firstOfWeekYear(year + amount) - days.firstOfWeekYear(year);
  } else {
    wrap ? days.roll(field, amount) : days.add(field, amount);
    reached = days.day();
  }
  if (!days.isGood() || !OtherDays::isInRange(reached)) return Instant::none();
  const std::int64_t seconds = civil::joinSeconds(reached, local.second);
  return {instantOfLocal(rules, seconds, value < 0 && !wrap), to.fraction};
}

Instant OtherCalendar::addFields(const CalendarRules& rules, const NSDateComponents& fields,
                                 Instant to, bool wrap) const {
  if (fields.era() != NSDateComponentUndefined && fields.era() != 0) return Instant::none();
  Instant reached = to;
  for (const Step& step : kSteps) {
    const NSInteger value = fields.valueForComponent(step.unit);
    if (value == NSDateComponentUndefined || value == 0) continue;
    reached = addUnit(rules, step.unit, value, reached, wrap);
    if (!reached.exists()) return reached;
  }
  return reached;
}

// An estimate by the unit's mean length is right but for a few steps.
NSInteger OtherCalendar::countSteps(const CalendarRules& rules, NSCalendarUnit unit, Instant from,
                                    Instant to) const {
  const NSInteger onward = to < from ? -1 : 1;
  const auto passes = [&](NSInteger count) {
    const Instant reached = addUnit(rules, unit, count, from, false);
    return !reached.exists() || (onward < 0 ? reached < to : to < reached);
  };
  const double months = unit == NSCalendarUnitQuarter ? 3 : 1;
  const double length = unit == NSCalendarUnitYear
                            ? kind_->daysOfYear
                            : kind_->daysOfYear / kind_->monthsOfYear * months;
  const double days =
      static_cast<double>(to.seconds - from.seconds) / static_cast<double>(civil::kSecondsPerDay);
  auto count = static_cast<NSInteger>(days / length);
  while (count != 0 && passes(count)) count -= onward;
  while (!passes(count + onward)) count += onward;
  return count;
}

NSDateComponents OtherCalendar::differenceOfInstants(const CalendarRules& rules, NSUInteger mask,
                                                     Instant from, Instant to) const {
  NSDateComponents result;
  const NSDateComponents first = fieldsOfInstant(rules, NSCalendarUnitEra, from);
  const NSDateComponents last = fieldsOfInstant(rules, NSCalendarUnitEra, to);
  if (first.era() == NSDateComponentUndefined || last.era() == NSDateComponentUndefined)
    return result;
  if (mask & NSCalendarUnitEra) result.setEra(last.era() - first.era());
  for (const Step& step : kSteps) {
    if (step.kind != StepKind::kMonths || !(mask & step.unit)) continue;
    if (step.unit == NSCalendarUnitQuarter && !kind_->hasQuarters) continue;
    const NSCalendarUnit counted = (step.unit & kKindsOfYear) ? NSCalendarUnitYear : step.unit;
    const NSInteger count = countSteps(rules, counted, from, to);
    result.setValueForComponent(count, step.unit);
    from = addUnit(rules, counted, count, from, false);
  }
  const NSDateComponents rest =
      time::differenceOfInstants(rules, mask & (kDayUnits | kTimeUnits), from, to);
  for (const Step& step : kSteps) {
    if (step.kind != StepKind::kMonths && (rest.setUnits() & step.unit))
      result.setValueForComponent(rest.valueForComponent(step.unit), step.unit);
  }
  return result;
}

DayRange OtherCalendar::daysAround(OtherDays& days, NSCalendarUnit unit, std::int32_t day) const {
  days.goTo(day);
  switch (unit) {
    case NSCalendarUnitMonth: {
      const std::int32_t first = day - days.get(UCAL_DATE) + 1;
      return {first, first + days.monthFrom(first)};
    }
    case NSCalendarUnitQuarter: {
      if (!kind_->hasQuarters) return {0, 0};
      const std::int32_t year = days.get(UCAL_EXTENDED_YEAR);
      const std::int32_t month = days.get(UCAL_MONTH) / 3 * 3 + 1;
      const std::int32_t first = days.firstOfMonth(year, month);
      return {first, days.firstOfMonth(year, month + 3)};
    }
    case NSCalendarUnitYear: {
      const std::int32_t first = day - days.get(UCAL_DAY_OF_YEAR) + 1;
      return {first, first + days.actualMaximum(UCAL_DAY_OF_YEAR)};
    }
    case NSCalendarUnitYearForWeekOfYear: {
      const std::int32_t year = days.get(UCAL_YEAR_WOY);
      const std::int32_t first = days.firstOfWeekYear(year);
      return {first, days.firstOfWeekYear(year + 1)};
    }
    default:
      return {0, 0};
  }
}

InstantRange OtherCalendar::rangeAroundInstant(const CalendarRules& rules, NSCalendarUnit unit,
                                               Instant instant) const {
  if (unit & (kDayUnits | kTimeUnits)) return time::rangeAroundInstant(rules, unit, instant);
  const std::int32_t day = localDayTime(rules, instant.seconds).day;
  if (!OtherDays::isInRange(day)) return {Instant::none(), 0};
  OtherDays days(*kind_, rules);
  return instantRange(rules, daysAround(days, unit, day), instant);
}

NSRange OtherCalendar::rangeWithin(const CalendarRules& rules, NSCalendarUnit unit,
                                   NSCalendarUnit larger, Instant instant) const {
  constexpr NSUInteger kSpans = kKindsOfYear | NSCalendarUnitQuarter | NSCalendarUnitMonth;
  const int rung = rungOfUnit(unit);
  if (rung == 0 || rung >= rungOfUnit(larger)) return kNoRange;
  if (larger == NSCalendarUnitEra || rung < rungOfUnit(NSCalendarUnitDay))
    return largestRange(rules, unit);
  const std::int32_t day = localDayTime(rules, instant.seconds).day;
  if (!OtherDays::isInRange(day)) return kNoRange;
  OtherDays days(*kind_, rules);
  if (!(larger & kSpans)) {
    if (unit != NSCalendarUnitDay) return time::rangeWithin(rules, unit, larger, instant);
    days.goTo(day - dayOfWeek(rules, day));
    return rangeFrom(days.get(UCAL_DATE), 7);
  }
  const DayRange range = daysAround(days, larger, day);
  if (!range.exists()) return kNoRange;
  days.goTo(range.begin);
  switch (unit) {
    case NSCalendarUnitDay:
      return rangeFrom(1, range.end - range.begin);
    case NSCalendarUnitMonth:
      if (larger == NSCalendarUnitQuarter) return rangeFrom(days.get(UCAL_MONTH) + 1, 3);
      return larger == NSCalendarUnitYear ? rangeFrom(1, days.actualMaximum(UCAL_MONTH) + 1)
                                          : kNoRange;
    case NSCalendarUnitQuarter:
      return larger == NSCalendarUnitYear && kind_->hasQuarters ? rangeFrom(1, 4) : kNoRange;
    default:
      return daysWithin(rules, unit, larger, range);
  }
}

NSRange OtherCalendar::limits(const CalendarRules& rules, NSCalendarUnit unit, bool largest) const {
  if (unit == NSCalendarUnitQuarter) return kind_->hasQuarters ? NSRange{1, 4} : kNoRange;
  const UCalendarDateFields field = fieldOfUnit(unit);
  if (field == UCAL_FIELD_COUNT)
    return largest ? time::largestRange(rules, unit) : time::smallestRange(rules, unit);
  const OtherDays days(*kind_, rules);
  const std::int32_t shift = unit == NSCalendarUnitMonth ? 1 : 0;
  const std::int32_t least = std::max(days.limit(field, largest, false) + shift,
                                      unit & kKindsOfYear ? std::int32_t{1} : std::int32_t{0});
  const std::int32_t most = days.limit(field, largest, true) + shift;
  return rangeFrom(least, std::int64_t{most} - least + 1);
}

NSRange OtherCalendar::largestRange(const CalendarRules& rules, NSCalendarUnit unit) const {
  return limits(rules, unit, true);
}

NSRange OtherCalendar::smallestRange(const CalendarRules& rules, NSCalendarUnit unit) const {
  return limits(rules, unit, false);
}

}  // namespace ORLFoundation::internal::time
