/// The months of the Gregorian calendar from a table of one cycle of 400 years, after which lengths
/// and weekdays repeat.
#pragma once

#include <ORLFoundation/platform/base/CivilDays.h>

#include <array>

namespace ORLFoundation::internal::recurrence {

/// A month by where it lies and what it is like.
struct ORLFCivilMonth {
  /// Months that begin on the same weekday and are as long as each other are of one kind.
  static constexpr std::uint32_t kKinds = 28;

  std::int32_t before;  // the day before its first, since 1970-01-01
  std::uint32_t kind;

  [[nodiscard]] constexpr std::int32_t length() const noexcept {
    return 28 + static_cast<std::int32_t>(kind % 4);
  }
  /// 1 is Sunday.
  [[nodiscard]] constexpr std::int32_t weekdayOfFirst() const noexcept {
    return 1 + static_cast<std::int32_t>(kind / 4);
  }
};

namespace detail {

inline constexpr std::uint32_t kMonthsPerCycle = 12 * base::civil::kYearsPerCycle;
/// The day before the first of year 0.
inline constexpr std::int32_t kDayBeforeCycles = base::civil::dayFromDate(0, 1, 0);
/// Room for any kind.
inline constexpr std::uint32_t kKindBits = 5;

/// By month: the day before its first, counted from the cycle's beginning, above its kind.
inline constexpr auto kMonthsOfCycle = [] {
  std::array<std::uint32_t, kMonthsPerCycle> months{};
  for (std::uint32_t number = 0; number < kMonthsPerCycle; ++number) {
    const auto [year, month] = base::civil::yearMonthFromNumber(number);
    const std::int32_t before = base::civil::dayFromDate(year, month, 0);
    const std::int32_t weekdayOfFirst = base::civil::weekdayOfDay(before + 1);
    const std::int32_t kind = 4 * (weekdayOfFirst - 1) + base::civil::daysInMonth(year, month) - 28;
    months[number] = static_cast<std::uint32_t>(before - kDayBeforeCycles) << kKindBits |
                     static_cast<std::uint32_t>(kind);
  }
  return months;
}();

}  // namespace detail

/// A month by its number, counted from January of year 0, which is not below 0.
[[nodiscard]] inline ORLFCivilMonth civilMonth(std::int64_t number) noexcept {
  const auto unsignedNumber = static_cast<std::uint32_t>(number);
  const std::uint32_t cycle = unsignedNumber / detail::kMonthsPerCycle;
  const std::uint32_t entry =
      detail::kMonthsOfCycle[unsignedNumber - cycle * detail::kMonthsPerCycle];
  const auto cycles = static_cast<std::int32_t>(cycle * base::civil::kDaysPerCycle);
  return {detail::kDayBeforeCycles + cycles + static_cast<std::int32_t>(entry >> detail::kKindBits),
          entry & ((1U << detail::kKindBits) - 1)};
}

}  // namespace ORLFoundation::internal::recurrence
