/// The count of quarters behind `orlfQuartersForDateSince1970`, which tells what it could not
/// count.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>

#include <optional>

namespace ORLFoundation::internal::calendar {

/// nil for a date that the calendar cannot place; `NSNotFound` where there are no quarters.
[[nodiscard]] std::optional<NSInteger> quartersSince1970(const NSCalendar& calendar,
                                                         NSDate date) noexcept;

}  // namespace ORLFoundation::internal::calendar
