/// Small questions about the lists of a rule.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

namespace ORLFoundation::internal::recurrence {

/// Weekdays of an entry that mean more than one: any day, and the days of the weekend. Those
/// outside the weekend are -2.
inline constexpr NSInteger kAnyDay = -1;
inline constexpr NSInteger kWeekendDay = -3;

/// A list that is there and not empty.
template <class List>
[[nodiscard]] bool holdsEntries(const List& list) {
  return list && !list->empty();
}

}  // namespace ORLFoundation::internal::recurrence
