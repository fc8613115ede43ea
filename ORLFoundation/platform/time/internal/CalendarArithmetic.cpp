
#include <ORLFoundation/platform/time/internal/CalendarArithmetic.h>

#include <ORLFoundation/platform/time/internal/CalendarFields.h>
#include <ORLFoundation/platform/time/internal/CalendarSteps.h>

#include <cstdlib>

namespace ORLFoundation::internal::time {
namespace {

NSCalendarUnit currentName(NSCalendarUnit unit) noexcept {
  return unit == NSCalendarUnitWeek ? NSCalendarUnitWeekOfYear : unit;
}

Step stepOfUnit(NSCalendarUnit unit) noexcept {
  for (const Step& step : kSteps) {
    if (step.unit == currentName(unit)) return step;
  }
  return {unit, StepKind::kNone, 0};
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

}  // namespace ORLFoundation::internal::time
