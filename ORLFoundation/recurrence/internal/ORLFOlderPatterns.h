/// The older expansion, apart from the main one on purpose: patterns without a date, a year or a
/// time, in which a quarterly rule's months are months of the quarter. Equal patterns stay apart.
#pragma once

#include <ORLFoundation/platform/time/NSDateComponents.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <optional>

namespace ORLFoundation::internal::recurrence {

/// nil when no list of the rule holds an entry.
[[nodiscard]] std::optional<ORLFDateRecurrenceRule::WorkingSet> olderPatterns(
    const ORLFDateRecurrenceRule& rule);

/// A copy of each pattern without its nanoseconds.
[[nodiscard]] ORLFDateRecurrenceRule::WorkingSet olderCopy(
    const ORLFDateRecurrenceRule::WorkingSet& patterns);

}  // namespace ORLFoundation::internal::recurrence
