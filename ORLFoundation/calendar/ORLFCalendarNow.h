/// The replaceable current date of a calendar object. Planning code asks here and not the clock,
/// so that a caller pins time on the calendar that it passes in, and on no other.
///
///     orlfSetNow(*calendar, date);
///     orlfToday(*calendar);  // the start of that date's day, in the calendar's zone
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>

#include <optional>
#include <string_view>

namespace ORLFoundation {

/// The key under which the override is attached to the calendar.
inline constexpr std::string_view ORLFDateNowKey = "ORLFDateNow";

/// `orlfSetNow:`  nil removes the override. Set and read atomically, on any thread.
void orlfSetNow(const NSCalendar& calendar, std::optional<NSDate> now);
/// `orlfNow`  The override, else the current instant.
[[nodiscard]] NSDate orlfNow(const NSCalendar& calendar);
/// `orlfToday`  `orlfNow` rounded down to its day; a date that the calendar cannot place stays as
/// it is.
[[nodiscard]] NSDate orlfToday(const NSCalendar& calendar);

}  // namespace ORLFoundation
