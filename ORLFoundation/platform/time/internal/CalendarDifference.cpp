#include <ORLFoundation/platform/time/internal/CalendarArithmetic.h>
#include <ORLFoundation/platform/time/internal/CalendarFields.h>
#include <ORLFoundation/platform/time/internal/CalendarSteps.h>

#include <algorithm>
#include <memory>

namespace ORLFoundation::internal::time {
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

// Daylight saving time on one side alone makes the change of a skipped day 23 or 25 hours.
std::int64_t nearestWholeDays(std::int64_t seconds) noexcept {
  return civil::floorDivide(seconds + civil::kSecondsPerDay / 2, civil::kSecondsPerDay) *
         civil::kSecondsPerDay;
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
  const std::int64_t leftOut = nearestWholeDays(rules.zone->offsetAt(to.seconds) - offset);
  if (leftOut == 0) return differenceOfInstants(rules, mask, from, to);
  // Both local times on one clock that leaves no day out.
  static const std::shared_ptr<const ZoneTable> steadyClock = ZoneTable::fixed(0);
  CalendarRules steady = rules;
  steady.zone = steadyClock.get();
  return differenceOfInstants(steady, mask, {from.seconds + offset, from.fraction},
                              {localSeconds(rules, to.seconds) - leftOut, to.fraction});
}

}  // namespace ORLFoundation::internal::time
