// The main enumeration at clock changes, in odd zones, in far years and past the calendar's ends.
#include <ORLFoundation/recurrence/ORLFDateRecurrence_testing.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace ORLFoundation {
namespace {

using namespace orlftest;

class EnumerationLimits : public orlftest::EnumerationTest {};

TEST_F(EnumerationLimits, PassesOverADateWhoseTimeAClockChangeLeavesOut) {
  // 02:30 does not exist on 10 March 2024.
  const Rule rule(Rule::Recurrence{.frequency = kMonthly, .daysOfTheMonth = {{10}}});
  EXPECT_EQ(days(rule, at(*calendar_, 2024, 2, 10, 2, 30), 3),
            (Days{20240210, 20240410, 20240510}));
  // A simple rule moves it on by the length of the gap.
  const auto simple =
      firstDates(Rule(kMonthly, 1), *calendar_, at(*calendar_, 2024, 2, 10, 2, 30), 3);
  EXPECT_EQ(simple[1], at(*calendar_, 2024, 3, 10, 3, 30));
  EXPECT_EQ(simple[2], at(*calendar_, 2024, 4, 10, 2, 30));
}

TEST_F(EnumerationLimits, TakesTheFirstPassOfADoubledTime) {
  const Rule rule(Rule::Recurrence{.frequency = kMonthly, .daysOfTheMonth = {{3}}});
  const auto dates = firstDates(rule, *calendar_, at(*calendar_, 2024, 10, 3, 1, 30), 2);
  const NSDate standard = at(*calendar_, 2024, 11, 3, 12).dateByAddingTimeInterval(-11.5 * 3600);
  EXPECT_EQ(dates[1], standard);
}

struct ZoneCase {
  const char* zone;
  int hour, minute;
};
constexpr ZoneCase kZoneCases[] = {{"Asia/Kathmandu", 5, 45},
                                   {"Australia/Lord_Howe", 2, 15},
                                   {"Pacific/Apia", 0, 0},
                                   {"America/New_York", 2, 30},
                                   {"UTC", 0, 0}};

TEST_F(EnumerationLimits, AgreesForwardAndBackwardInOddZones) {
  for (const ZoneCase& row : kZoneCases) {
    const auto calendar = calendarIn(row.zone);
    const Rule rule(Rule::Recurrence{.frequency = kMonthly, .daysOfTheMonth = {{7, 30}}});
    const NSDate start = at(*calendar, 2009, 12, 1, row.hour, row.minute);
    const auto forward = firstDates(rule, *calendar, start, 60);
    ASSERT_EQ(forward.size(), 60U);
    auto backward = firstDates(rule, *calendar, forward.back(), 60, {.backwards = true});
    std::reverse(backward.begin(), backward.end());
    EXPECT_EQ(forward, backward) << row.zone;
    for (std::size_t index = 1; index < forward.size(); ++index) {
      const auto restarted = firstDates(rule, *calendar, forward[index], 1);
      EXPECT_EQ(restarted.front(), forward[index]) << row.zone << index;
    }
  }
}

TEST_F(EnumerationLimits, PassesOverTheDayThatApiaSkipped) {
  const auto apia = calendarIn("Pacific/Apia");
  const Rule rule(Rule::Recurrence{.frequency = kMonthly, .daysOfTheMonth = {{30}}});
  EXPECT_EQ(daysOf(firstDates(rule, *apia, at(*apia, 2011, 11, 30, 9), 2), *apia),
            (Days{20111130, 20120130}));
}

TEST_F(EnumerationLimits, GivesTheInstantOfASkippedDayOnce) {
  const auto apia = calendarIn("Pacific/Apia");
  const Days forward{20111228, 20111229, 20111231, 20120101};
  const Days backward{20120101, 20111231, 20111229, 20111228};
  EXPECT_EQ(daysOf(firstDates(Rule(kDaily, 1), *apia, at(*apia, 2011, 12, 28, 9), 4), *apia),
            forward);
  EXPECT_EQ(
      daysOf(firstDates(Rule(kDaily, 1), *apia, at(*apia, 2012, 1, 1, 9), 4, {.backwards = true}),
             *apia),
      backward);
  const NSDate after = at(*apia, 2011, 12, 31, 9);
  EXPECT_EQ(daysOf(firstDates(Rule(kDaily, 1), *apia, after, 2), *apia),
            (Days{20111231, 20120101}));
  EXPECT_EQ(daysOf(firstDates(Rule(kDaily, 1), *apia, after, 2, {.backwards = true}), *apia),
            (Days{20111231, 20111229}));
}

TEST_F(EnumerationLimits, WalksFarYears) {
  const Rule rule(Rule::Recurrence{.frequency = kMonthly, .daysOfTheMonth = {{31}}});
  EXPECT_EQ(days(rule, morning(2199, 12, 31), 2), (Days{21991231, 22000131}));
  EXPECT_EQ(days(rule, morning(1799, 12, 31), 2, {.backwards = true}), (Days{17991231, 17991031}));
  EXPECT_EQ(firstDates(rule, *calendar_, at(*calendar_, 400000, 1, 31), 3).size(), 3U);
}

TEST_F(EnumerationLimits, EndsWhereTheCalendarEnds) {
  const NSDate start = morning(2023, 1, 1);
  for (const ORLFDateRecurrenceFrequency frequency :
       {kDaily, kWeekly, kMonthly, kQuarterly, kYearly}) {
    EXPECT_EQ(days(Rule(frequency, NSIntegerMax / 2), start, 5).size(), 1U);
    EXPECT_EQ(days(Rule(frequency, NSIntegerMin), start, 5).size(), 1U);
    EXPECT_EQ(days(Rule(frequency, NSIntegerMax / 2), start, 5, {.backwards = true}).size(), 1U);
  }
  const Rule rule(Rule::Recurrence{.frequency = kMonthly, .daysOfTheMonth = {{31}}});
  for (const double seconds :
       {std::numeric_limits<double>::quiet_NaN(), HUGE_VAL, -HUGE_VAL, 1e300}) {
    const NSDate never = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
    EXPECT_TRUE(firstDates(rule, *calendar_, never, 5).empty());
    EXPECT_EQ(firstDates(Rule(kMonthly, 1), *calendar_, never, 5).size(), 1U);
  }
}

TEST_F(EnumerationLimits, StandsStillWithAnIntervalOfZero) {
  EXPECT_EQ(days(Rule(kMonthly, 0), morning(2023, 1, 1), 3), (Days{20230101, 20230101, 20230101}));
  const Rule rule(Rule::Recurrence{.interval = 0, .daysOfTheMonth = {{1}}});
  EXPECT_EQ(periodsOf(rule, *calendar_, morning(2023, 1, 1)), 60U);
}

TEST_F(EnumerationLimits, LeavesAFieldOpenThatIsSetToTheMarkOfAnUnsetOne) {
  // A month without a day is its first day, a weekday without a number its first one.
  const Rule day(Rule::Recurrence{.frequency = kMonthly, .daysOfTheMonth = {{NSIntegerMax}}});
  EXPECT_EQ(days(day, morning(2023, 1, 2), 2), (Days{20230201, 20230301}));
  const Rule monday(
      Rule::Recurrence{.frequency = kMonthly, .daysOfTheWeek = weekdays({{2, NSIntegerMax}})});
  EXPECT_EQ(days(monday, morning(2023, 1, 1), 2), (Days{20230102, 20230206}));
}

TEST_F(EnumerationLimits, PassesOverADateThatTheStartLiesTheLeastBitBehind) {
  const auto utc = calendarIn("UTC");
  const Rule rule(Rule::Recurrence{.frequency = kMonthly, .daysOfTheMonth = {{1}}});
  const NSDate justAfter = NSDate::dateWithTimeIntervalSinceReferenceDate(0x1p-1074);
  EXPECT_EQ(daysOf(firstDates(rule, *utc, justAfter, 2), *utc), (Days{20010201, 20010301}));
  EXPECT_EQ(daysOf(firstDates(rule, *utc, NSDate(), 2), *utc), (Days{20010101, 20010201}));
}

struct UnitCase {
  NSCalendarUnit unit;
  Days dates;  // from 2023-01-02, days 1 and 15
};

TEST_F(EnumerationLimits, TakesAnOtherUnitForAFrequencyOfARuleWithLists) {
  const UnitCase cases[] = {
      {NSCalendarUnitWeek, {20230115, 20230201, 20230215}},
      {NSCalendarUnitWeekday, {20230115, 20230201, 20230215}},
      {NSCalendarUnitWeekdayOrdinal, {20230115, 20230201, 20230215}},
      {NSCalendarUnitWeekOfMonth, {20230115, 20230201, 20230215}},
      // Only the months of a window's two ends are looked into.
      {NSCalendarUnitYearForWeekOfYear, {20230115, 20240101, 20240115}},
  };
  for (const UnitCase& row : cases) {
    const Rule rule(
        Rule::Recurrence{.frequency = static_cast<ORLFDateRecurrenceFrequency>(row.unit),
                         .daysOfTheMonth = {{1, 15}}});
    EXPECT_EQ(days(rule, morning(2023, 1, 2), row.dates.size()), row.dates) << row.unit;
  }
}

TEST_F(EnumerationLimits, TakesAnOtherUnitForAFrequency) {
  const Rule hourly(kHourly, 6);
  const auto dates = firstDates(hourly, *calendar_, morning(2023, 1, 1), 3);
  EXPECT_EQ(dates[2], morning(2023, 1, 1).dateByAddingTimeInterval(12 * 3600));
}

}  // namespace
}  // namespace ORLFoundation
