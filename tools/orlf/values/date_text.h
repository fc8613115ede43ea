/// Dates as the tool reads and prints them: ISO 8601 dates and date-times.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <optional>
#include <string>
#include <string_view>

namespace orlftool {

/// What `readDate` takes, for messages.
inline constexpr std::string_view kDateForms =
    "an ISO 8601 date or date-time such as 2024-01-31 or 2024-01-31T09:30:00-05:00";

/// Reads "2024-01-31", "2024-01-31T09:30", "2024-01-31T09:30:00.5" and the same with "Z" or an
/// offset ("-05:00", "-0500", "-05"). Without an offset the text is local to the calendar: a time
/// that a clock change leaves out is moved on by the length of the gap, a doubled time is its first
/// occurrence. Years have four to six digits. nil for other text and for days that do not exist,
/// such as 30 February.
[[nodiscard]] std::optional<ORLFoundation::NSDate> readDate(
    std::string_view text, const ORLFoundation::NSCalendar& calendar);
/// The same for an option of the command line; throws UsageFailure that names the option.
[[nodiscard]] ORLFoundation::NSDate readDateOption(std::string_view option, std::string_view text,
                                                   const ORLFoundation::NSCalendar& calendar);

/// The first instant of the date's day.
[[nodiscard]] ORLFoundation::NSDate startOfDay(ORLFoundation::NSDate date,
                                               const ORLFoundation::NSCalendar& calendar);

/// "2024-01-31T09:30:00-05:00" in the calendar's zone; fractions of a second are shown to the
/// microsecond when there are any, seconds of an offset when it has them. `readDate` reads it back.
[[nodiscard]] std::string dateTimeText(ORLFoundation::NSDate date,
                                       const ORLFoundation::NSCalendar& calendar);
/// "2024-01-31" for the first instant of a day, else as `dateTimeText`.
[[nodiscard]] std::string shortDateText(ORLFoundation::NSDate date,
                                        const ORLFoundation::NSCalendar& calendar);

}  // namespace orlftool
