/// The explicit form of a rule that repeats a date's own pattern.
#pragma once

#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <optional>

namespace ORLFoundation::internal::recurrence {

/// What the full initializer makes the exact rule from; nil when the rule is exact already.
[[nodiscard]] std::optional<ORLFDateRecurrenceRule::Recurrence> exactPattern(
    const ORLFDateRecurrenceRule& rule, NSDate referenceDate, const NSCalendar& calendar);

}  // namespace ORLFoundation::internal::recurrence
