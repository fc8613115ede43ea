/// What is known of each frequency, in one table, and the calendar units that frequencies stand
/// for. For the sources of this room and of those above it.
#pragma once

#include <ORLFoundation/calendar/ORLFCalendarCounts.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceFrequency.h>

#include <string_view>

namespace ORLFoundation::internal::recurrence {

using calendar::kDaysPerWeek;
using calendar::kMonthsPerQuarter;
using calendar::kMonthsPerYear;
using calendar::kQuartersPerYear;

struct ORLFFrequencyFacts {
  ORLFDateRecurrenceFrequency frequency;
  NSInteger countInYear;
  /// What a period's `frequencyPerYear` divides by its interval.
  double perYear;
  std::string_view description;
  std::string_view word;
};

inline constexpr ORLFFrequencyFacts kFrequencyFacts[] = {
    {ORLFDateRecurrenceFrequencyYearly, 1, 1.0, "yearly", "year"},
    {ORLFDateRecurrenceFrequencyMonthly, 12, 12.0, "monthly", "month"},
    {ORLFDateRecurrenceFrequencyDaily, 365, 365.0, "daily", "day"},
    {ORLFDateRecurrenceFrequencyQuarterly, 4, 4.0, "quarterly", "quarter"},
    // 26 is half of 52; both are required.
    {ORLFDateRecurrenceFrequencyWeekly, 52, 26.0, "weekly", "week"},
};

/// null for a value outside the enumeration.
[[nodiscard]] constexpr const ORLFFrequencyFacts* factsOf(
    ORLFDateRecurrenceFrequency frequency) noexcept {
  for (const ORLFFrequencyFacts& facts : kFrequencyFacts)
    if (facts.frequency == frequency) return &facts;
  return nullptr;
}

[[nodiscard]] constexpr bool isQuarterly(ORLFDateRecurrenceFrequency frequency) noexcept {
  return frequency == ORLFDateRecurrenceFrequencyQuarterly;
}

/// The frequency as a calendar takes it, whatever its value.
[[nodiscard]] constexpr NSCalendarUnit unitOf(ORLFDateRecurrenceFrequency frequency) noexcept {
  return static_cast<NSCalendarUnit>(frequency);
}
/// The unit that walks of a rule step by: quarters are stepped as months.
[[nodiscard]] constexpr NSCalendarUnit steppingUnitOf(
    ORLFDateRecurrenceFrequency frequency) noexcept {
  return isQuarterly(frequency) ? NSCalendarUnitMonth : unitOf(frequency);
}

}  // namespace ORLFoundation::internal::recurrence
