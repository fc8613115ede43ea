
#include <ORLFoundation/platform/base/CivilDays.h>

#include <gtest/gtest.h>

#include <chrono>

namespace ORLFoundation::internal::base::civil {
namespace {

namespace chr = std::chrono;

void expectDay(std::int32_t day) {
  const chr::sys_days point{chr::days{day}};
  const chr::year_month_day expected{point};
  const Date date = dateFromDay(day);
  ASSERT_EQ(date.year, static_cast<int>(expected.year())) << day;
  ASSERT_EQ(static_cast<unsigned>(date.month), static_cast<unsigned>(expected.month())) << day;
  ASSERT_EQ(static_cast<unsigned>(date.day), static_cast<unsigned>(expected.day())) << day;
  ASSERT_EQ(dayFromDate(date.year, date.month, date.day), day);
  ASSERT_EQ(static_cast<unsigned>(weekdayOfDay(day)), chr::weekday{point}.c_encoding() + 1) << day;
}

TEST(CivilDays, AgreesWithTheStandardLibraryOnEveryDayOfFourCenturies) {
  for (std::int32_t day = -80'000; day <= -80'000 + kDaysPerCycle; ++day) expectDay(day);
}

TEST(CivilDays, AgreesWithTheStandardLibraryAtTheEndsOfItsYears) {
  for (std::int32_t day = 11'000'000 - 200'000; day <= 11'000'000; day += 7) {
    expectDay(day);
    expectDay(-day);
  }
}

TEST(CivilDays, RepeatsEveryFourCenturiesToTheEndsOfTheSupportedRange) {
  constexpr std::int32_t kCycle = static_cast<std::int32_t>(kDaysPerCycle);
  for (std::int32_t cycle = -3400; cycle <= 3400; cycle += 17) {
    const std::int32_t day = 19'782 + cycle * kCycle;  // 2024-02-29
    const Date date = dateFromDay(day);
    ASSERT_EQ(date.year, 2024 + cycle * 400);
    ASSERT_EQ(date.month, 2);
    ASSERT_EQ(date.day, 29);
    ASSERT_EQ(dayFromDate(date.year, 2, 29), day);
    ASSERT_EQ(weekdayOfDay(day), 5);
  }
}

TEST(CivilDays, LimitsOfDaysAndYearsInvert) {
  for (const std::int64_t limit : {-kMaxDay, kMaxDay}) {
    const auto day = static_cast<std::int32_t>(limit);
    const Date date = dateFromDay(day);
    EXPECT_EQ(dayFromDate(date.year, date.month, date.day), day);
    EXPECT_GT(std::abs(date.year), kMaxYear);
  }
}

TEST(CivilDays, MonthsHaveTheDaysUpToTheNextMonth) {
  for (std::int32_t year = -800; year <= 2800; ++year) {
    for (std::int32_t month = 1; month <= 12; ++month) {
      const YearMonth next = yearMonthFromNumber(monthNumber(year, month) + 1);
      ASSERT_EQ(dayFromDate(next.year, next.month, 1) - dayFromDate(year, month, 1),
                daysInMonth(year, month))
          << year << "-" << month;
    }
    ASSERT_EQ(dayFromDate(year + 1, 1, 1) - dayFromDate(year, 1, 1), daysInYear(year)) << year;
  }
}

TEST(CivilDays, SplitsSecondsTowardTheEarlierDay) {
  for (const std::int64_t second : {-86401, -86400, -1, 0, 1, 86399, 86400}) {
    const DayTime split = splitSeconds(second);
    EXPECT_EQ(split.day, floorDivide(second, 86400)) << second;
    EXPECT_EQ(split.second, floorModulo(second, 86400)) << second;
    EXPECT_EQ(joinSeconds(split.day, split.second), second);
  }
  for (const std::int64_t day : {-kMaxDay, kMaxDay}) {
    EXPECT_EQ(splitSeconds(day * 86400 + 5).day, day);
    EXPECT_EQ(splitSeconds(day * 86400 + 5).second, 5);
  }
}

TEST(CivilDays, DividesTowardMinusInfinity) {
  for (std::int64_t value = -30; value <= 30; ++value) {
    for (std::int64_t by = 1; by <= 12; ++by) {
      const std::int64_t rest = floorModulo(value, by);
      EXPECT_TRUE(rest >= 0 && rest < by);
      EXPECT_EQ(floorDivide(value, by) * by + rest, value);
    }
  }
}

}  // namespace
}  // namespace ORLFoundation::internal::base::civil
