/// Where units begin and end around an instant, and which values a unit takes within a larger one.
#pragma once

#include <ORLFoundation/platform/time/NSCalendarUnit.h>
#include <ORLFoundation/platform/time/internal/CalendarInstants.h>
#include <ORLFoundation/platform/value/NSRange.h>

namespace ORLFoundation::internal::time {

struct InstantRange {
  Instant start;
  double length;  // seconds
};

/// The unit that holds the instant; a start that does not exist for a unit without a beginning and
/// an end (an era, a mask). Days and larger units begin at the first instant of their first day.
[[nodiscard]] InstantRange rangeAroundInstant(const CalendarRules& rules, NSCalendarUnit unit,
                                              Instant instant) noexcept;
/// Location `NSNotFound` and length 0 for a pair that has no range.
[[nodiscard]] NSRange rangeWithin(const CalendarRules& rules, NSCalendarUnit unit,
                                  NSCalendarUnit larger, Instant instant) noexcept;
[[nodiscard]] NSRange largestRange(const CalendarRules& rules, NSCalendarUnit unit) noexcept;
[[nodiscard]] NSRange smallestRange(const CalendarRules& rules, NSCalendarUnit unit) noexcept;

}  // namespace ORLFoundation::internal::time
