
#include <ORLFoundation/platform/time/internal/CalendarArithmetic.h>

#include <ORLFoundation/platform/time/internal/CalendarFields.h>

#include <algorithm>
#include <cstdlib>

namespace ORLFoundation::internal::time {
namespace {

constexpr NSInteger kNanosecondsPerSecond = 1'000'000'000;

// How a unit steps: by months or days of the zone's clock, or by seconds or nanoseconds of time.
enum class StepKind : std::uint8_t { kNone, kMonths, kDays, kSeconds, kNanoseconds };
struct Step {
  NSCalendarUnit unit;
  StepKind kind;
  std::int32_t size;
};
// From the largest to the smallest; the order in which sums and differences take them.
constexpr Step kSteps[] = {
    {NSCalendarUnitYear, StepKind::kMonths, 12},
    {NSCalendarUnitYearForWeekOfYear, StepKind::kMonths, 12},
    {NSCalendarUnitQuarter, StepKind::kMonths, 3},
    {NSCalendarUnitMonth, StepKind::kMonths, 1},
    {NSCalendarUnitWeekOfYear, StepKind::kDays, 7},
    {NSCalendarUnitWeekOfMonth, StepKind::kDays, 7},
    {NSCalendarUnitWeekdayOrdinal, StepKind::kDays, 7},
    {NSCalendarUnitDay, StepKind::kDays, 1},
    {NSCalendarUnitWeekday, StepKind::kDays, 1},
    {NSCalendarUnitHour, StepKind::kSeconds, 3600},
    {NSCalendarUnitMinute, StepKind::kSeconds, 60},
    {NSCalendarUnitSecond, StepKind::kSeconds, 1},
    {NSCalendarUnitNanosecond, StepKind::kNanoseconds, 1},
};

NSCalendarUnit currentName(NSCalendarUnit unit) noexcept {
  return unit == NSCalendarUnitWeek ? NSCalendarUnitWeekOfYear : unit;
}

Step stepOfUnit(NSCalendarUnit unit) noexcept {
  for (const Step& step : kSteps) {
    if (step.unit == currentName(unit)) return step;
  }
  return {unit, StepKind::kNone, 0};
}

std::int64_t instantOfLocal(const CalendarRules& rules, std::int64_t local,
                            bool backward) noexcept {
  return backward ? rules.zone->lastInstantOfLocal(local) : rules.zone->firstInstantOfLocal(local);
}

std::int64_t localAfterMonths(civil::Date date, std::int32_t second, std::int64_t months) noexcept {
  const auto [year, month] =
      civil::yearMonthFromNumber(civil::monthNumber(date.year, date.month) + months);
  const std::int32_t day =
      date.day <= 28 ? date.day : std::min(date.day, civil::daysInMonth(year, month));
  return civil::joinSeconds(civil::dayFromDate(year, month, day), second);
}

Instant addMonths(const CalendarRules& rules, NSInteger value, std::int32_t size,
                  Instant to) noexcept {
  constexpr NSInteger kMaxMonths = civil::kMaxYear * 12;
  NSInteger months;
  if (__builtin_mul_overflow(value, NSInteger{size}, &months)) return Instant::none();
  const civil::DayTime local = localDayTime(rules, to.seconds);
  const civil::Date date = civil::dateFromDay(local.day);
  if (months < -2 * kMaxMonths || months > 2 * kMaxMonths ||
      std::abs(civil::monthNumber(date.year, date.month) + months) >= kMaxMonths) {
    return Instant::none();
  }
  return Instant{instantOfLocal(rules, localAfterMonths(date, local.second, months), value < 0),
                 to.fraction};
}

Instant addDays(const CalendarRules& rules, NSInteger value, std::int32_t size,
                Instant to) noexcept {
  if (value < -2 * civil::kMaxDay || value > 2 * civil::kMaxDay) return Instant::none();
  const std::int64_t local = localSeconds(rules, to.seconds) + value * size * civil::kSecondsPerDay;
  if (std::abs(local) > civil::kMaxDay * civil::kSecondsPerDay) return Instant::none();
  return Instant{instantOfLocal(rules, local, value < 0), to.fraction};
}

// The same day of the same week of another year counted in weeks. Week 53 of a year that has 52 is
// the week after its last.
Instant addWeekYears(const CalendarRules& rules, NSInteger value, Instant to) noexcept {
  const civil::DayTime local = localDayTime(rules, to.seconds);
  const std::int32_t from = weekOfYear(rules, local.day, civil::dateFromDay(local.day)).year;
  NSInteger year;
  if (__builtin_add_overflow(NSInteger{from}, value, &year) || year <= -civil::kMaxYear ||
      year >= civil::kMaxYear) {
    return Instant::none();
  }
  const std::int32_t days =
      firstDayOfWeekYear(rules, static_cast<std::int32_t>(year)) - firstDayOfWeekYear(rules, from);
  return addDays(rules, days, 1, to);
}

Instant addSeconds(NSInteger value, std::int32_t size, Instant to) noexcept {
  NSInteger seconds;
  if (__builtin_mul_overflow(value, NSInteger{size}, &seconds) ||
      __builtin_add_overflow(seconds, to.seconds, &seconds) ||
      std::abs(static_cast<double>(seconds)) > kMaxSeconds) {
    return Instant::none();
  }
  return Instant{seconds, to.fraction};
}

Instant addNanoseconds(NSInteger value, Instant to) noexcept {
  const NSInteger seconds = civil::floorDivide(value, kNanosecondsPerSecond);
  const double fraction =
      to.fraction + static_cast<double>(civil::floorModulo(value, kNanosecondsPerSecond)) * 1e-9;
  const NSInteger carry = fraction >= 1 ? 1 : 0;
  return addSeconds(seconds + carry, 1, {to.seconds, fraction - static_cast<double>(carry)});
}

Instant addStep(const CalendarRules& rules, const Step& step, NSInteger value,
                Instant to) noexcept {
  if (value == 0) return to;
  if (step.unit == NSCalendarUnitYearForWeekOfYear) return addWeekYears(rules, value, to);
  switch (step.kind) {
    case StepKind::kMonths:
      return addMonths(rules, value, step.size, to);
    case StepKind::kDays:
      return addDays(rules, value, step.size, to);
    case StepKind::kSeconds:
      return addSeconds(value, step.size, to);
    case StepKind::kNanoseconds:
      return addNanoseconds(value, to);
    case StepKind::kNone:
      break;
  }
  return Instant::none();
}

}  // namespace

Instant addUnit(const CalendarRules& rules, NSCalendarUnit unit, NSInteger value,
                Instant to) noexcept {
  return addStep(rules, stepOfUnit(unit), value, to);
}

Instant addFields(const CalendarRules& rules, const NSDateComponents& fields, Instant to,
                  bool wrap) noexcept {
  const NSInteger eras = fields.era();
  if (eras != NSDateComponentUndefined && eras != 0) return Instant::none();
  Instant reached = to;
  for (const Step& step : kSteps) {
    const NSInteger value = fields.valueForComponent(step.unit);
    if (value == NSDateComponentUndefined || value == 0) continue;
    reached = wrap ? addUnitWrapping(rules, step.unit, value, reached)
                   : addStep(rules, step, value, reached);
    if (!reached.exists()) return Instant::none();
  }
  return reached;
}

namespace {

// One stage of a difference: the steps of one kind from a starting point, and how far they reach.
struct Stage {
  const CalendarRules& rules;
  Instant from;
  Instant to;
  bool backward;
  civil::DayTime start;
  civil::Date startDate;

  Stage(const CalendarRules& r, Instant f, Instant t) noexcept
      : rules(r),
        from(f),
        to(t),
        backward(t < f),
        start(localDayTime(r, f.seconds)),
        startDate(civil::dateFromDay(start.day)) {}

  std::int64_t localAfter(const Step& step, std::int64_t count) const noexcept {
    if (step.kind == StepKind::kMonths)
      return localAfterMonths(startDate, start.second, count * step.size);
    return civil::joinSeconds(start.day + count * step.size, start.second);
  }
  Instant after(const Step& step, std::int64_t count) const noexcept {
    if (count == 0) return from;
    return {instantOfLocal(rules, localAfter(step, count), backward), from.fraction};
  }
  bool passes(Instant reached) const noexcept { return backward ? reached < to : to < reached; }
};

// How many steps lead from one local time to another, both on one unchanging clock.
std::int64_t countOnSteadyClock(const Stage& stage, const Step& step, Instant toLocal) noexcept {
  const civil::DayTime end = civil::splitSeconds(toLocal.seconds);
  std::int64_t count = end.day - stage.start.day;
  if (step.kind == StepKind::kMonths) {
    const civil::Date date = civil::dateFromDay(end.day);
    count = civil::monthNumber(date.year, date.month) -
            civil::monthNumber(stage.startDate.year, stage.startDate.month);
  }
  const Step single{step.unit, step.kind, 1};
  const Instant reached{stage.localAfter(single, count), stage.from.fraction};
  if (!stage.backward && toLocal < reached) --count;
  if (stage.backward && reached < toLocal) ++count;
  return count / step.size;
}

// Near a clock change the order of local times is not that of instants: the count on a steady
// clock is right but for a step or two.
std::int64_t countNearClockChange(const Stage& stage, const Step& step,
                                  std::int64_t count) noexcept {
  const std::int64_t onward = stage.backward ? -1 : 1;
  while (count != 0 && stage.passes(stage.after(step, count))) count -= onward;
  for (int more = 0; more < 3 && !stage.passes(stage.after(step, count + onward)); ++more)
    count += onward;
  return count;
}

// Clock changes move local times by less than this.
constexpr std::int64_t kClockMargin = 2 * civil::kSecondsPerDay;

std::int64_t countOnClock(const Stage& stage, const Step& step) noexcept {
  const Instant toLocal{localSeconds(stage.rules, stage.to.seconds), stage.to.fraction};
  const std::int64_t count = countOnSteadyClock(stage, step, toLocal);
  if (stage.rules.zone->isSteadyAround(stage.to.seconds, kClockMargin)) return count;
  return countNearClockChange(stage, step, count);
}

// Whole seconds from one instant to another, toward zero.
std::int64_t secondsBetween(Instant from, Instant to) noexcept {
  const std::int64_t seconds = to.seconds - from.seconds;
  if (seconds > 0 && to.fraction < from.fraction) return seconds - 1;
  if (seconds < 0 && from.fraction < to.fraction) return seconds + 1;
  return seconds;
}

std::int64_t nanosecondsBetween(Instant from, Instant to) noexcept {
  constexpr double kLimit = 9.2e18;
  const double count =
      static_cast<double>(to.seconds - from.seconds) * 1e9 + (to.fraction - from.fraction) * 1e9;
  return static_cast<std::int64_t>(std::clamp(count, -kLimit, kLimit));
}

std::int64_t countSteps(const CalendarRules& rules, const Step& step, Instant& from,
                        Instant to) noexcept {
  if (step.kind == StepKind::kNanoseconds) return nanosecondsBetween(from, to);
  if (step.kind == StepKind::kSeconds) {
    const std::int64_t count = secondsBetween(from, to) / step.size;
    from.seconds += count * step.size;
    return count;
  }
  const Stage stage(rules, from, to);
  const std::int64_t count = countOnClock(stage, step);
  from = stage.after(step, count);
  return count;
}

}  // namespace

NSDateComponents differenceOfInstants(const CalendarRules& rules, NSUInteger mask, Instant from,
                                      Instant to) noexcept {
  NSDateComponents result;
  if (mask & NSCalendarUnitWeek) mask |= NSCalendarUnitWeekOfYear;
  if (mask & NSCalendarUnitEra) {
    result.setEra(fieldOfInstant(rules, NSCalendarUnitEra, to) -
                  fieldOfInstant(rules, NSCalendarUnitEra, from));
  }
  for (const Step& step : kSteps) {
    if (mask & step.unit) result.setValueForComponent(countSteps(rules, step, from, to), step.unit);
  }
  return result;
}

NSDateComponents differenceInDaysThatWere(const CalendarRules& rules, NSUInteger mask, Instant from,
                                          Instant to) noexcept {
  const std::int64_t offset = rules.zone->offsetAt(from.seconds);
  const std::int64_t leftOut =
      (rules.zone->offsetAt(to.seconds) - offset) / civil::kSecondsPerDay * civil::kSecondsPerDay;
  if (leftOut == 0) return differenceOfInstants(rules, mask, from, to);
  // Both local times on one clock that leaves no day out.
  static const std::shared_ptr<const ZoneTable> steadyClock = ZoneTable::fixed(0);
  CalendarRules steady = rules;
  steady.zone = steadyClock.get();
  return differenceOfInstants(steady, mask, {from.seconds + offset, from.fraction},
                              {localSeconds(rules, to.seconds) - leftOut, to.fraction});
}

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
