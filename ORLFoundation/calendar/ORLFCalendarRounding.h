/// Rounding of a date to the boundaries of a calendar unit.
///
///     orlfDateByRoundingDateDownToCalendarUnit(calendar, date, NSCalendarUnitMonth);
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>

#include <optional>

namespace ORLFoundation {

/// `orlfDateByRoundingDate:downToCalendarUnit:`  The first instant of the unit that holds the date.
/// nil for nil, and for a unit without a range.
[[nodiscard]] std::optional<NSDate> orlfDateByRoundingDateDownToCalendarUnit(
    const NSCalendar& calendar, std::optional<NSDate> date, NSCalendarUnit unit) noexcept;
/// `orlfDateByRoundingDate:upToCalendarUnit:`  The first instant of the next unit; a date that is
/// on a boundary already stays where it is. nil for nil, and for a unit without a range.
[[nodiscard]] std::optional<NSDate> orlfDateByRoundingDateUpToCalendarUnit(
    const NSCalendar& calendar, std::optional<NSDate> date, NSCalendarUnit unit) noexcept;

}  // namespace ORLFoundation
