/// Arithmetic of the proleptic Gregorian calendar on plain integers: day numbers (0 is 1970-01-01)
/// and dates, seconds and the days that hold them. Nothing here knows a zone.
#pragma once

#include <cstdint>

namespace ORLFoundation::internal::base::civil {

inline constexpr std::int64_t kSecondsPerDay = 86400;
/// Day numbers beyond this many days on either side of 1970 (about 1.37 million years) are not
/// computed with: what would reach them has no result.
inline constexpr std::int64_t kMaxDay = 500'000'000;
inline constexpr std::int64_t kMaxYear = 1'360'000;
/// The Gregorian calendar repeats, weekdays included, after this many days.
inline constexpr std::int64_t kDaysPerCycle = 146097;
inline constexpr std::int64_t kYearsPerCycle = 400;

struct Date {
  std::int32_t year;  // 0 is 1 BC
  std::int32_t month;
  std::int32_t day;
};

namespace detail {
// Whole 400-year cycles that carry every supported day and year into unsigned numbers.
inline constexpr std::uint32_t kCycles = 3670;
inline constexpr std::uint32_t kDayShift = 719468 + 146097 * kCycles;
inline constexpr std::uint32_t kYearShift = 400 * kCycles;
}  // namespace detail

/// The date of a day number within `kMaxDay`. Euclidean affine functions after Neri and Schneider:
/// years begin on 1 March, so that the leap day is the last.
[[nodiscard]] constexpr Date dateFromDay(std::int32_t day) noexcept {
  const std::uint32_t shifted = static_cast<std::uint32_t>(day) + detail::kDayShift;
  const std::uint32_t quarterDays = 4 * shifted + 3;
  const std::uint32_t century = quarterDays / 146097;
  const std::uint32_t dayOfCentury = quarterDays % 146097 / 4;
  const std::uint64_t product = std::uint64_t{2939745} * (4 * dayOfCentury + 3);
  const std::uint32_t yearOfCentury = static_cast<std::uint32_t>(product >> 32);
  const std::uint32_t dayOfYear = static_cast<std::uint32_t>(product) / 2939745 / 4;
  const std::uint32_t monthAndDay = 2141 * dayOfYear + 197913;
  const std::uint32_t month = monthAndDay >> 16;
  const std::uint32_t nextYear = dayOfYear >= 306 ? 1 : 0;
  return {static_cast<std::int32_t>(100 * century + yearOfCentury + nextYear - detail::kYearShift),
          static_cast<std::int32_t>(month - 12 * nextYear),
          static_cast<std::int32_t>((monthAndDay & 0xffff) / 2141 + 1)};
}

/// The day number of a date; the month is 1 to 12, the year within `kMaxYear`. Any day of the month
/// within 32 bits of the result counts on from the first.
[[nodiscard]] constexpr std::int32_t dayFromDate(std::int32_t year, std::int32_t month,
                                                 std::int32_t day) noexcept {
  const std::uint32_t early = month <= 2 ? 1 : 0;
  const std::uint32_t marchYear = static_cast<std::uint32_t>(year) + detail::kYearShift - early;
  const std::uint32_t marchMonth = static_cast<std::uint32_t>(month) + 12 * early;
  const std::uint32_t century = marchYear / 100;
  const std::uint32_t days = 1461 * marchYear / 4 - century + century / 4 +
                             (979 * marchMonth - 2919) / 32 + static_cast<std::uint32_t>(day) - 1;
  return static_cast<std::int32_t>(days - detail::kDayShift);
}

[[nodiscard]] constexpr bool isLeapYear(std::int32_t year) noexcept {
  return (year & (year % 100 == 0 ? 15 : 3)) == 0;
}

[[nodiscard]] constexpr std::int32_t daysInYear(std::int32_t year) noexcept {
  return isLeapYear(year) ? 366 : 365;
}

[[nodiscard]] constexpr std::int32_t daysInMonth(std::int32_t year, std::int32_t month) noexcept {
  if (month == 2) return isLeapYear(year) ? 29 : 28;
  return 30 | ((month ^ (month >> 3)) & 1);
}

/// 1 is Sunday, 7 is Saturday.
[[nodiscard]] constexpr std::int32_t weekdayOfDay(std::int32_t day) noexcept {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(day + 700'000'004) % 7) + 1;
}

/// Quotient toward minus infinity, for a positive divisor.
[[nodiscard]] constexpr std::int64_t floorDivide(std::int64_t value, std::int64_t by) noexcept {
  return value / by - (value % by < 0 ? 1 : 0);
}

[[nodiscard]] constexpr std::int64_t floorModulo(std::int64_t value, std::int64_t by) noexcept {
  const std::int64_t rest = value % by;
  return rest < 0 ? rest + by : rest;
}

/// Months since January of year 0, and the year and month of such a number.
[[nodiscard]] constexpr std::int64_t monthNumber(std::int64_t year, std::int64_t month) noexcept {
  return year * 12 + month - 1;
}

struct YearMonth {
  std::int32_t year;
  std::int32_t month;
};

/// The month number is within `kMaxYear` years.
[[nodiscard]] constexpr YearMonth yearMonthFromNumber(std::int64_t number) noexcept {
  constexpr std::int64_t kShiftYears = 2'000'000;
  const std::uint32_t shifted = static_cast<std::uint32_t>(number + kShiftYears * 12);
  return {static_cast<std::int32_t>(shifted / 12) - static_cast<std::int32_t>(kShiftYears),
          static_cast<std::int32_t>(shifted % 12) + 1};
}

/// A local time as the day and the second of that day.
struct DayTime {
  std::int32_t day;
  std::int32_t second;
};

/// Splits seconds since 1970-01-01T00:00:00 of some clock, within `kMaxDay` days.
[[nodiscard]] constexpr DayTime splitSeconds(std::int64_t seconds) noexcept {
  constexpr std::int64_t kShiftDays = 2 * kMaxDay;
  const std::uint64_t shifted = static_cast<std::uint64_t>(seconds + kShiftDays * kSecondsPerDay);
  const std::uint64_t day = shifted / static_cast<std::uint64_t>(kSecondsPerDay);
  return {static_cast<std::int32_t>(static_cast<std::int64_t>(day) - kShiftDays),
          static_cast<std::int32_t>(shifted - day * static_cast<std::uint64_t>(kSecondsPerDay))};
}

[[nodiscard]] constexpr std::int64_t joinSeconds(std::int64_t day, std::int64_t second) noexcept {
  return day * kSecondsPerDay + second;
}

}  // namespace ORLFoundation::internal::base::civil
