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

/// `orlfDateFromISO8601String:`  A final "Z" reads as "-0000". Other marks and widths are taken too
/// ("2024/1/31T9:30:00-05:00"), a month's name for its number, and white space at the end; the "T"
/// stands as it is, and nothing follows the offset. nil for any other text, for a fraction, for a
/// field out of its range (30 February, 24:00) and for a year beyond 144683.
[[nodiscard]] std::optional<NSDate> orlfDateFromISO8601String(std::string_view string);
/// `orlfISO8601StringFromDate:`  In `NSTimeZone::defaultTimeZone`, fractions of a second cut off.
/// Years beyond 9999 take the digits that they need, and years before 1 count on: 0000 is 1 BC,
/// -0001 the year before it, and read back so. An empty text for a date that is not finite or
/// beyond what the calendar can tell.
[[nodiscard]] std::string orlfISO8601StringFromDate(NSDate date);
/// `orlfISO8601String`  The same for the receiver.
[[nodiscard]] std::string orlfISO8601String(NSDate date);

}  // namespace ORLFoundation
