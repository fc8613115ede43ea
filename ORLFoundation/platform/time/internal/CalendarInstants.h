/// The small inline steps that every operation of a calendar begins and ends with: a date to an
/// instant of whole seconds and back, an instant to the time that the zone's clock shows, a day to
/// its place in its week.
#pragma once

#include <ORLFoundation/platform/base/CivilDays.h>
#include <ORLFoundation/platform/time/ZoneTable.h>
#include <ORLFoundation/platform/time/internal/CalendarRules.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

namespace ORLFoundation::internal::time {

namespace civil = base::civil;

/// How many days after the first day of its week a day lies, 0 to 6.
[[nodiscard]] inline std::int32_t dayOfWeek(const CalendarRules& rules, std::int32_t day) noexcept {
  const std::int32_t later = civil::weekdayOfDay(day) - rules.firstWeekday;
  return later < 0 ? later + 7 : later;
}
/// The first day of the first week that has `minimumDays` days on or after the given day.
[[nodiscard]] inline std::int32_t firstWeekFrom(const CalendarRules& rules,
                                                std::int32_t day) noexcept {
  const std::int32_t earliest = day - (7 - rules.minimumDays);
  const std::int32_t into = dayOfWeek(rules, earliest);
  return into == 0 ? earliest : earliest + 7 - into;
}
/// The first day of week 1 of a year counted in weeks.
[[nodiscard]] inline std::int32_t firstDayOfWeekYear(const CalendarRules& rules,
                                                     std::int32_t year) noexcept {
  return firstWeekFrom(rules, civil::dayFromDate(year, 1, 1));
}

/// An instant as whole seconds since 1970 and the fraction after them, 0 to below 1; or none.
/// Unlike an optional, it travels in two registers.
struct Instant {
  std::int64_t seconds;
  double fraction;

  [[nodiscard]] static constexpr Instant none() noexcept {
    return {std::numeric_limits<std::int64_t>::min(), 0};
  }
  [[nodiscard]] constexpr bool exists() const noexcept {
    return seconds != std::numeric_limits<std::int64_t>::min();
  }

  friend constexpr bool operator<(Instant left, Instant right) noexcept {
    return left.seconds != right.seconds ? left.seconds < right.seconds
                                         : left.fraction < right.fraction;
  }
};

inline constexpr std::int64_t kReferenceSeconds =
    static_cast<std::int64_t>(NSTimeIntervalSince1970);
inline constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
/// Instants beyond this many seconds on either side have no result.
inline constexpr double kMaxSeconds =
    static_cast<double>((civil::kMaxDay - 20'000) * civil::kSecondsPerDay);

/// False for a date that is not finite or too far away to count with.
[[nodiscard]] inline bool splitDate(NSDate date, Instant& instant) noexcept {
  const double seconds = date.timeIntervalSinceReferenceDate();
  if (!(std::abs(seconds) <= kMaxSeconds)) return false;
  auto whole = static_cast<std::int64_t>(seconds);
  whole -= seconds < static_cast<double>(whole) ? 1 : 0;
  instant = {whole + kReferenceSeconds, seconds - static_cast<double>(whole)};
  return true;
}

/// Not a number for none.
[[nodiscard]] inline NSDate dateFromInstant(Instant instant) noexcept {
  if (!instant.exists()) {
    return NSDate::dateWithTimeIntervalSinceReferenceDate(std::numeric_limits<double>::quiet_NaN());
  }
  return NSDate::dateWithTimeIntervalSinceReferenceDate(
      static_cast<double>(instant.seconds - kReferenceSeconds) + instant.fraction);
}

/// The seconds that the zone's own clock shows.
[[nodiscard]] inline std::int64_t localSeconds(const CalendarRules& rules,
                                               std::int64_t instant) noexcept {
  return instant + rules.zone->offsetAt(instant);
}

[[nodiscard]] inline civil::DayTime localDayTime(const CalendarRules& rules,
                                                 std::int64_t instant) noexcept {
  return civil::splitSeconds(localSeconds(rules, instant));
}

[[nodiscard]] inline bool isDayInRange(std::int64_t day) noexcept {
  return day >= -civil::kMaxDay && day <= civil::kMaxDay;
}

}  // namespace ORLFoundation::internal::time
