/// What an entry of a rule's weekdays makes of a pattern: a weekday with its place in the month,
/// or, for the entries that mean any day, a weekend day or any other day, a day of the month.
#pragma once

#include <ORLFoundation/recurrence/ORLFDateRecurrenceFrequency.h>
#include <ORLFoundation/recurrence/internal/ORLFPatternConditions.h>
#include <ORLFoundation/recurrence/internal/ORLFPeriodContext.h>
#include <ORLFoundation/recurrence/internal/ORLFRuleLists.h>

namespace ORLFoundation::internal::recurrence {

/// An entry while it is applied. On a weekly rule the week number 0 becomes that of the date's week
/// with the first pattern and stays so for the entry's later ones, which then take it for the place
/// of the weekday in the month; this is required.
struct ORLFWeekdayEntry {
  NSInteger weekday;
  NSInteger number;

  /// Entries that name no day are passed over.
  [[nodiscard]] bool namesDays() const noexcept { return weekday != 0 && weekday >= kWeekendDay; }
};

void applyWeekdayEntry(ORLFWeekdayEntry& entry, NSDateComponents& pattern,
                       ORLFDateRecurrenceFrequency frequency, const ORLFPeriodContext& period,
                       ORLFPatternConditions& conditions);

}  // namespace ORLFoundation::internal::recurrence
