/// What formatters of dates need of ICU's calendars.
#pragma once

#include <ORLFoundation/platform/value/NSDate.h>
#include <unicode/calendar.h>

namespace ORLFoundation::internal::format {

[[nodiscard]] bool isGregorianCalendar(const icu::Calendar& calendar);
/// Makes a Gregorian calendar that of all time, as ours is; others stay as they are.
void extendToAllTime(icu::Calendar& calendar);

/// Seconds on either side of 1970 that ICU's calendars count safely: some five million years, and
/// 10,000 in calendars beyond the Gregorian.
inline constexpr double kGregorianReach = 1.8e14;
inline constexpr double kOtherReach = 3.1e11;
/// false for a date that is not finite.
[[nodiscard]] bool isInReach(NSDate date, bool isGregorian) noexcept;

/// Milliseconds since 1970, cut off. What a double lacks of a whole one, at most half a
/// microsecond, is not cut.
[[nodiscard]] UDate millisecondsOf(NSDate date) noexcept;

}  // namespace ORLFoundation::internal::format
