/// How often something recurs. The values are calendar units, so that a frequency can be given
/// straight to a calendar operation as a unit.
///
///     static_cast<NSCalendarUnit>(ORLFDateRecurrenceFrequencyMonthly) == NSCalendarUnitMonth
///
/// Other values may be stored and passed on; the operations below stop the process for them.
#pragma once

#include <ORLFoundation/platform/time/NSCalendarUnit.h>

#include <string_view>

namespace ORLFoundation {

enum ORLFDateRecurrenceFrequency : NSInteger {
  ORLFDateRecurrenceFrequencyYearly = 4,
  ORLFDateRecurrenceFrequencyMonthly = 8,
  ORLFDateRecurrenceFrequencyDaily = 16,
  ORLFDateRecurrenceFrequencyQuarterly = 2048,
  ORLFDateRecurrenceFrequencyWeekly = 8192,
};

/// `countInYear`  1, 12, 365, 4 or 52. Not the base of a period's `frequencyPerYear`, which counts
/// 26 weeks: the two differ, and both are required.
[[nodiscard]] NSInteger countInYear(ORLFDateRecurrenceFrequency frequency);
/// `description`  "yearly", "monthly", "daily", "quarterly" or "weekly".
[[nodiscard]] std::string_view description(ORLFDateRecurrenceFrequency frequency);

/// `<`  The more frequent one is the smaller: daily, weekly, monthly, quarterly, yearly.
[[nodiscard]] bool operator<(ORLFDateRecurrenceFrequency left, ORLFDateRecurrenceFrequency right);
[[nodiscard]] bool operator<=(ORLFDateRecurrenceFrequency left, ORLFDateRecurrenceFrequency right);
[[nodiscard]] bool operator>(ORLFDateRecurrenceFrequency left, ORLFDateRecurrenceFrequency right);
[[nodiscard]] bool operator>=(ORLFDateRecurrenceFrequency left, ORLFDateRecurrenceFrequency right);

}  // namespace ORLFoundation
