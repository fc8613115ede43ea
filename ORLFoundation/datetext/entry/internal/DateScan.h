/// Dates as people type them in haste: one to three whole numbers with "/", "." and "-" between.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/value/NSDate.h>
#include <ORLFoundation/platform/value/NSRange.h>

#include <optional>
#include <string_view>

namespace ORLFoundation::internal::entry {

/// Three numbers with the year first or last (1900 to 2299), two of today's year, one that is a day
/// of today's month or a year. Of day and month the one that cannot be a month is the day, whatever
/// comes first. Numbers may have a sign, and white space without line ends before them and before
/// marks; behind two or three numbers nothing is looked at. nil for anything else and for a day
/// that the month lacks. Takes a text of any length in one pass.
[[nodiscard]] std::optional<NSDate> scanDate(std::string_view text, bool monthFirst,
                                             const NSCalendar& calendar, NSDate today);

/// The days of a month; location `NSNotFound` where there is none.
[[nodiscard]] NSRange dayRange(NSInteger month, NSInteger year, const NSCalendar& calendar);

}  // namespace ORLFoundation::internal::entry
