/// Small sums of plans: dates that may be missing, and whole-number steps that neither trap nor
/// overflow whatever the interval.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/value/NSDate.h>
#include <ORLFoundation/platform/value/NSTypes.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrencePeriod.h>

#include <optional>

namespace ORLFoundation::internal {

/// A missing date is neither before nor after another.
[[nodiscard]] constexpr bool isBefore(const std::optional<NSDate>& left,
                                      const std::optional<NSDate>& right) noexcept {
  return left && right && left->compare(*right) == NSOrderedAscending;
}
[[nodiscard]] constexpr bool isAfter(const std::optional<NSDate>& left,
                                     const std::optional<NSDate>& right) noexcept {
  return isBefore(right, left);
}

/// `count / interval` of signed and of unsigned numbers. Raise NSInvalidArgumentException for an
/// interval of 0.
[[nodiscard]] NSInteger dividedByInterval(NSInteger count, NSInteger interval);
[[nodiscard]] NSUInteger dividedByUnsignedInterval(NSUInteger count, NSInteger interval);

/// The unit of a period, ready for a calendar.
[[nodiscard]] NSCalendarUnit unitOf(const ORLFDateRecurrencePeriod& period) noexcept;

/// The date `periods` periods after the start; nil when their product or the date is out of range.
[[nodiscard]] std::optional<NSDate> dateAfterPeriods(NSInteger periods,
                                                     const ORLFDateRecurrencePeriod& period,
                                                     NSDate start, const NSCalendar& calendar);
[[nodiscard]] std::optional<NSDate> dateAfterPeriods(NSUInteger periods,
                                                     const ORLFDateRecurrencePeriod& period,
                                                     NSDate start, const NSCalendar& calendar);

}  // namespace ORLFoundation::internal
