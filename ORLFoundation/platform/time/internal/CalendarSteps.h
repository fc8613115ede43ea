/// The steps that sums and differences of calendar units are made of.
#pragma once

#include <ORLFoundation/platform/time/NSCalendarUnit.h>
#include <ORLFoundation/platform/time/internal/CalendarInstants.h>

#include <algorithm>

namespace ORLFoundation::internal::time {

// How a unit steps: by months or days of the zone's clock, or by seconds or nanoseconds of time.
enum class StepKind : std::uint8_t { kNone, kMonths, kDays, kSeconds, kNanoseconds };
struct Step {
  NSCalendarUnit unit;
  StepKind kind;
  std::int32_t size;
};
// From the largest to the smallest; the order in which sums and differences take them.
inline constexpr Step kSteps[] = {
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

/// The first instant of a local time that is met on the way.
[[nodiscard]] inline std::int64_t instantOfLocal(const CalendarRules& rules, std::int64_t local,
                                                 bool backward) noexcept {
  return backward ? rules.zone->lastInstantOfLocal(local) : rules.zone->firstInstantOfLocal(local);
}

/// The local time so many months later; the day is that of the date, or the month's last.
[[nodiscard]] inline std::int64_t localAfterMonths(civil::Date date, std::int32_t second,
                                                   std::int64_t months) noexcept {
  const auto [year, month] =
      civil::yearMonthFromNumber(civil::monthNumber(date.year, date.month) + months);
  const std::int32_t day =
      date.day <= 28 ? date.day : std::min(date.day, civil::daysInMonth(year, month));
  return civil::joinSeconds(civil::dayFromDate(year, month, day), second);
}

}  // namespace ORLFoundation::internal::time
