/// Dates as ISO 8601 text to the second, with an offset: "2024-01-31T09:30:00-0500".
///
///     orlfDateFromISO8601String("2024-01-31T14:30:00Z");
///     orlfISO8601String(date);  // in the default time zone
///
/// One shared formatter serves all threads; each use locks it.
#pragma once

#include <ORLFoundation/platform/value/NSDate.h>

#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// `orlfDateFromISO8601String:`  A final "Z" reads as "-0000". nil for any text that is not just a
/// date of the form above: no spaces around it, no fraction, no field out of its range,
/// no year beyond 144683.
[[nodiscard]] std::optional<NSDate> orlfDateFromISO8601String(std::string_view string);
/// `orlfISO8601StringFromDate:`  In `NSTimeZone::defaultTimeZone`, fractions of a second cut off.
/// Years beyond 9999 take the digits that they need. An empty text for a date that is not finite or
/// beyond what the calendar can tell.
[[nodiscard]] std::string orlfISO8601StringFromDate(NSDate date);
/// `orlfISO8601String`  The same for the receiver.
[[nodiscard]] std::string orlfISO8601String(NSDate date);

}  // namespace ORLFoundation
