/// Where units begin and end around an instant, and which values a unit takes within a larger one.
#pragma once

#include <ORLFoundation/platform/time/NSCalendarUnit.h>
#include <ORLFoundation/platform/time/internal/CalendarInstants.h>
#include <ORLFoundation/platform/value/NSRange.h>

namespace ORLFoundation::internal::time {

inline constexpr NSRange kNoRange{static_cast<NSUInteger>(NSNotFound), 0};

[[nodiscard]] constexpr NSRange rangeFrom(std::int64_t location, std::int64_t length) noexcept {
  return {static_cast<NSUInteger>(location), static_cast<NSUInteger>(length)};
}

/// Days by number, up to the one that is no longer among them.
struct DayRange {
  std::int32_t begin;
  std::int32_t end;

  [[nodiscard]] constexpr bool exists() const noexcept { return begin != end; }
};

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

/// A unit's place among all units by size; 0 for what has none.
[[nodiscard]] int rungOfUnit(NSCalendarUnit unit) noexcept;
/// From the first instant of the first day to that of the day after the last; none for no days. The
/// instant lies within the days.
[[nodiscard]] InstantRange instantRange(const CalendarRules& rules, DayRange days,
                                        Instant instant) noexcept;
/// Weeks, weekdays and their places among the days of a larger unit, in any calendar.
[[nodiscard]] NSRange daysWithin(const CalendarRules& rules, NSCalendarUnit unit,
                                 NSCalendarUnit larger, DayRange range) noexcept;

}  // namespace ORLFoundation::internal::time
