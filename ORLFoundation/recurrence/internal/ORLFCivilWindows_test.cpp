// Which rules, dates and windows the fast path serves, and which it leaves to the general walk.
#include <ORLFoundation/recurrence/internal/ORLFCivilWindows.h>

#include <ORLFoundation/recurrence/ORLFDateRecurrenceChance_testing.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace ORLFoundation {
namespace {

using namespace orlftest;
using namespace orlftest::chance;

using internal::recurrence::ORLFCivilWindows;

TEST(ORLFCivilWindows, LeaveAFrequencyThatIsNoneToTheGeneralWalk) {
  const auto calendar = calendarIn("UTC");
  const NSDate start = at(*calendar, 2023, 1, 2, 9, 30);
  for (const NSInteger frequency : kOddFrequencies) {
    const auto rule =
        Rule::ruleWithFields({.frequency = static_cast<ORLFDateRecurrenceFrequency>(frequency),
                              .daysOfTheMonth = {{1, 15}}});
    EXPECT_FALSE(ORLFCivilWindows::forRule(*rule, {.calendar = *calendar, .startDate = start}))
        << frequency;
  }
}

struct ServedCase {
  const char* name;
  Rule::Recurrence fields;
  bool served;
};

TEST(ORLFCivilWindows, ServeWhatIsNamedByDaysOfTheMonthOrOfTheWeek) {
  const ServedCase cases[] = {
      {"DaysOfTheMonth", {.frequency = kMonthly, .daysOfTheMonth = {{1, 31}}}, true},
      {"FirstAndLastMonth", {.frequency = kYearly, .monthsOfTheYear = {{1, 12}}}, true},
      {"NoMonth", {.frequency = kYearly, .monthsOfTheYear = {{0, 12}}}, false},
      {"AMonthBeyondDecember", {.frequency = kYearly, .monthsOfTheYear = {{13}}}, false},
      {"DayOfAnyMonth", {.frequency = kMonthly, .daysOfTheWeek = weekdays({{-1, 28}})}, true},
      {"DayOfSomeMonths", {.frequency = kMonthly, .daysOfTheWeek = weekdays({{-1, 29}})}, false},
      {"FirstAndLastWeekday",
       {.frequency = kMonthly, .daysOfTheWeek = weekdays({{1, 1}, {7, -1}})},
       true},
      {"WeekendDay", {.frequency = kMonthly, .daysOfTheWeek = weekdays({{-3, 1}})}, false},
      {"NoWeekday", {.frequency = kMonthly, .daysOfTheWeek = weekdays({{8, 1}})}, false},
      {"EveryWeekday", {.frequency = kWeekly, .daysOfTheWeek = weekdays({{1, 0}, {7, 0}})}, true},
      {"WeekdaysWithANumber", {.frequency = kWeekly, .daysOfTheWeek = weekdays({{1, 1}})}, false},
      {"Daily", {.frequency = kDaily, .daysOfTheMonth = {{1}}}, true},
      {"Weeks", {.frequency = kYearly, .weeksOfTheYear = {{1}}}, false},
      {"Simple", {.frequency = kMonthly}, true},
      {"EmptyLists", {.frequency = kWeekly, .daysOfTheMonth = {{}}}, false},
      {"DaysOfTheYear", {.frequency = kYearly, .daysOfTheYear = {{1}}}, false},
      {"ADayLeftOpen", {.frequency = kMonthly, .daysOfTheMonth = {{NSIntegerMax}}}, false},
      {"AWeekdayWithoutItsNumber",
       {.frequency = kMonthly, .daysOfTheWeek = weekdays({{2, NSIntegerMax}})},
       false},
      {"NoWeekdayAtAll", {.frequency = kMonthly, .daysOfTheWeek = weekdays({{0, 1}})}, false},
      {"NoWeekdayOfTheWeek", {.frequency = kWeekly, .daysOfTheWeek = weekdays({{0, 0}})}, false},
      {"AnEighthWeekday", {.frequency = kWeekly, .daysOfTheWeek = weekdays({{8, 0}})}, false},
      {"WeekdayOfListedMonths",
       {.frequency = kYearly, .daysOfTheWeek = weekdays({{2, 1}}), .monthsOfTheYear = {{2}}},
       true},
      {"LastWeekdayOfListedMonths",
       {.frequency = kYearly, .daysOfTheWeek = weekdays({{2, 0}}), .monthsOfTheYear = {{2}}},
       false},
      {"WeekdaysOfListedMonthsByWeeks",
       {.frequency = kWeekly, .daysOfTheWeek = weekdays({{2, 0}}), .monthsOfTheYear = {{2}}},
       false},
      {"WeekdaysAndDaysOfTheMonth",
       {.frequency = kMonthly, .daysOfTheWeek = weekdays({{2, 1}}), .daysOfTheMonth = {{1}}},
       false},
      {"WeekdaysByDays", {.frequency = kDaily, .daysOfTheWeek = weekdays({{2, 1}})}, false},
      {"TheLongestStep", {.frequency = kDaily, .interval = 100'000'000}, true},
      {"ALongerStep", {.frequency = kDaily, .interval = 100'000'001}, false},
      {"TheLongestStepBack", {.frequency = kDaily, .interval = -100'000'000}, true},
      {"ALongerStepBack", {.frequency = kDaily, .interval = -100'000'001}, false},
  };
  const auto calendar = calendarIn("UTC");
  const NSDate start = at(*calendar, 2023, 1, 2, 9, 30);
  for (const ServedCase& row : cases)
    EXPECT_EQ(ORLFCivilWindows::forRule(*Rule::ruleWithFields(row.fields),
                                        {.calendar = *calendar, .startDate = start})
                  .has_value(),
              row.served)
        << row.name;
}

TEST(ORLFCivilWindows, LeaveOtherCalendarsToTheGeneralWalk) {
  for (const auto identifier : {NSCalendarIdentifierBuddhist, NSCalendarIdentifierISO8601}) {
    const auto calendar = calendarOf(identifier, "UTC");
    EXPECT_FALSE(ORLFCivilWindows::forRule(Rule(kMonthly, 1),
                                           {.calendar = *calendar, .startDate = NSDate()}))
        << identifier;
  }
}

/// Which windows are served: + for one that is, - for one that is not; nothing for a rule or a
/// start date that is not served. What stands between them is how many dates they hold.
std::string windowsServed(const Rule::Recurrence& fields, const NSCalendar& calendar, NSDate start,
                          bool backwards = false) {
  constexpr int kWindows = 4;
  const Rule rule(fields);
  auto windows = ORLFCivilWindows::forRule(
      rule, {.calendar = calendar, .startDate = start, .backwards = backwards});
  std::string signs;
  ORLFCivilWindows::Dates dates;
  for (int count = 0; windows && count < kWindows; ++count) {
    if (windows->collectNext(dates))
      signs += "+" + std::to_string(dates.size());
    else
      signs += "-";
  }
  return signs;
}

struct WindowsCase {
  const char* name;
  const char* zone;
  Start start;
  Rule::Recurrence fields;
  const char* served;
};

// New York leaves 02:00 to 03:00 out on 8 March 2020, 14 March 2021 and 13 March 2022, and doubles
// 01:00 to 02:00 on 7 November 2021. Dublin leaves 01:00 to 02:00 out on the last Sunday of March,
// which in 2019 was its last day. Apia skipped 30 December 2011.
TEST(ORLFCivilWindows, ServeWindowsWhereTheClockShowsTheTimeOnceAtTheirEndsAndOnNamedDays) {
  const char* const kNewYork = "America/New_York";
  const Start beforeGap{2021, 1, 14, 2, 30};
  const Start besideGap{2021, 1, 20, 2, 30};
  const Start yearsBefore{2019, 3, 14, 2, 30};
  const Start summers{2019, 6, 1, 2, 30};
  const WindowsCase cases[] = {
      {"ASimpleRule", kNewYork, beforeGap, {.frequency = kMonthly}, "+1--+1"},
      {"DaysOfTheMonth",
       kNewYork,
       beforeGap,
       {.frequency = kMonthly, .daysOfTheMonth = {{1, 15}}},
       "+2--+2"},
      {"DaysOfTheMonthWithoutAChange",
       kNewYork,
       besideGap,
       {.frequency = kMonthly, .daysOfTheMonth = {{1, 15}}},
       "+2+2+2+2"},
      {"ADayOfTheMonth",
       kNewYork,
       besideGap,
       {.frequency = kMonthly, .daysOfTheMonth = {{14}}},
       "+1-+1+1"},
      {"SecondSunday",
       kNewYork,
       besideGap,
       {.frequency = kMonthly, .daysOfTheWeek = weekdays({{1, 2}})},
       "+1-+1+1"},
      {"FirstSunday",
       kNewYork,
       {2021, 9, 20, 1, 30},
       {.frequency = kMonthly, .daysOfTheWeek = weekdays({{1, 1}})},
       "+1-+1+1"},
      // The general walk logs of such a day outside the window too.
      {"ADayThatEveryMonthHas",
       kNewYork,
       besideGap,
       {.frequency = kMonthly, .daysOfTheWeek = weekdays({{-1, 14}})},
       "+1--+1"},
      {"ADayThatEveryMonthHasWithoutAChange",
       kNewYork,
       besideGap,
       {.frequency = kMonthly, .daysOfTheWeek = weekdays({{-1, 15}})},
       "+1+1+1+1"},
      {"LastSunday",
       "Europe/Dublin",
       {2021, 1, 10, 1, 30},
       {.frequency = kMonthly, .daysOfTheWeek = weekdays({{1, -1}})},
       "+1--+1"},
      {"LastDay",
       "Europe/Dublin",
       {2019, 1, 10, 1, 30},
       {.frequency = kMonthly, .daysOfTheWeek = weekdays({{-1, 0}})},
       "+1--+1"},
      // The Sunday in February is of a week of which March has the date.
      {"WeekdaysByWeeks",
       kNewYork,
       {2021, 2, 24, 2, 30},
       {.frequency = kWeekly, .daysOfTheWeek = weekdays({{1, 0}, {4, 0}})},
       "+1+2-+2"},
      // An end whose time is left out serves where no listed month is near.
      {"AFarMonth",
       kNewYork,
       yearsBefore,
       {.frequency = kYearly, .daysOfTheMonth = {{1}}, .monthsOfTheYear = {{6}}},
       "+1+1+1+1"},
      {"TheMonthAfterTheNext",
       kNewYork,
       yearsBefore,
       {.frequency = kYearly, .daysOfTheMonth = {{1}}, .monthsOfTheYear = {{5}}},
       "+1+1+1+1"},
      {"TheNextMonth",
       kNewYork,
       yearsBefore,
       {.frequency = kYearly, .daysOfTheMonth = {{1}}, .monthsOfTheYear = {{4}}},
       "+1--+1"},
      {"TheEndsOwnMonth",
       kNewYork,
       yearsBefore,
       {.frequency = kYearly, .daysOfTheMonth = {{1}}, .monthsOfTheYear = {{3}}},
       "+1--+1"},
      {"TheMonthBefore",
       kNewYork,
       yearsBefore,
       {.frequency = kYearly, .daysOfTheMonth = {{1}}, .monthsOfTheYear = {{2}}},
       "+1+1+1+1"},
      {"AnEndInDecember",
       "Pacific/Apia",
       {2009, 12, 30, 9, 0},
       {.frequency = kYearly, .daysOfTheMonth = {{1}}, .monthsOfTheYear = {{6}}},
       "+1--+1"},
      {"TheDateInAFarMonth",
       kNewYork,
       yearsBefore,
       {.frequency = kYearly, .monthsOfTheYear = {{6}}},
       "+1--+1"},
      {"ADayOfAListedMonth",
       kNewYork,
       summers,
       {.frequency = kYearly, .daysOfTheMonth = {{14}}, .monthsOfTheYear = {{3}}},
       "+1-+1+1"},
      {"ADayOfAListedMonthThatEveryMonthHas",
       kNewYork,
       summers,
       {.frequency = kYearly, .daysOfTheWeek = weekdays({{-1, 14}}), .monthsOfTheYear = {{3}}},
       "+1--+1"},
      {"DaysOfListedMonthsThatEveryMonthHas",
       kNewYork,
       summers,
       {.frequency = kYearly,
        .daysOfTheWeek = weekdays({{-1, 2}, {-1, 15}}),
        .monthsOfTheYear = {{2, 3, 12}}},
       "+6+6+6+6"},
      {"SecondMondayOfAListedMonth",
       kNewYork,
       summers,
       {.frequency = kYearly, .daysOfTheWeek = weekdays({{2, 2}}), .monthsOfTheYear = {{3}}},
       "+1+1+1+1"},
      {"ARuleThatStandsStill",
       kNewYork,
       besideGap,
       {.frequency = kMonthly, .interval = 0, .daysOfTheMonth = {{1}}},
       "+0+0+0+0"},
      {"ARuleThatWalksAway",
       kNewYork,
       besideGap,
       {.frequency = kMonthly, .interval = -1, .daysOfTheMonth = {{1}}},
       "+0+0+0+0"},
  };
  for (const WindowsCase& row : cases) {
    const auto calendar = calendarIn(row.zone);
    const Start& start = row.start;
    EXPECT_EQ(
        windowsServed(row.fields, *calendar,
                      at(*calendar, start.year, start.month, start.day, start.hour, start.minute)),
        row.served)
        << row.name;
  }
}

TEST(ORLFCivilWindows, ServeTheYears1To30000) {
  const auto utc = calendarIn("UTC");
  const auto served = [&](ORLFDateRecurrenceFrequency frequency, NSDate start, bool backwards) {
    return windowsServed({.frequency = frequency}, *utc, start, backwards);
  };
  EXPECT_EQ(served(kMonthly, at(*utc, 30'000, 10, 31, 6), false), "+1+1--");
  EXPECT_EQ(served(kDaily, at(*utc, 30'000, 12, 29, 6), false), "+1+1--");
  EXPECT_EQ(served(kDaily, at(*utc, 30'000, 12, 31, 6), false), "----");
  EXPECT_EQ(served(kDaily, at(*utc, 30'001, 1, 1, 6), false), "");
  EXPECT_EQ(served(kMonthly, at(*utc, 1, 3, 31, 6), true), "+1+1--");
  EXPECT_EQ(served(kDaily, at(*utc, 1, 1, 3, 6), true), "+1+1--");
  const NSDate first = at(*utc, 1, 1, 1, 6);
  EXPECT_EQ(served(kDaily, first, true), "----");
  EXPECT_EQ(served(kDaily, first.dateByAddingTimeInterval(-86'400), true), "");
}

}  // namespace
}  // namespace ORLFoundation
