/// How the people of a locale's region count weeks, and when their weekend is.
#pragma once

#include <ORLFoundation/platform/base/CivilDays.h>

#include <array>
#include <cstdint>
#include <string>

namespace ORLFoundation::internal::time {

inline constexpr std::int32_t kWholeDay = base::civil::kSecondsPerDay;

struct LocaleWeek {
  std::int32_t firstWeekday = 1;  // 1 is Sunday
  std::int32_t minimumDays = 1;
  // By weekday from Sunday, the seconds of the day from and to which it belongs to the weekend.
  std::array<std::int32_t, 7> weekendFrom{0, 0, 0, 0, 0, 0, 0};
  std::array<std::int32_t, 7> weekendTo{kWholeDay, 0, 0, 0, 0, 0, kWholeDay};
};

/// The world's custom (weekend on Saturday and Sunday) for a locale without a known region.
[[nodiscard]] LocaleWeek weekOfLocale(const std::string& localeIdentifier);

}  // namespace ORLFoundation::internal::time
