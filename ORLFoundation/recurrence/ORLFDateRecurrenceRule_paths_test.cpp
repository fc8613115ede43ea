// The fast path of the main enumeration gives what the general walk gives, over rules of every
// shape, zones with every kind of clock change, both directions and odd start dates.
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceChance_testing.h>
#include <ORLFoundation/recurrence/internal/ORLFCivilWindows.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

namespace ORLFoundation {
namespace {

using namespace orlftest;
using namespace orlftest::chance;

using internal::recurrence::ORLFCivilWindows;
using internal::recurrence::ORLFDateWalk;

struct Walked {
  std::vector<double> dates;
  NSUInteger periods = 0;
  std::vector<std::string> log;
  bool operator==(const Walked&) const = default;
};

Walked walk(const Rule& rule, const NSCalendar& calendar, NSDate start, bool backwards,
            ORLFDateWalk::Paths paths) {
  constexpr std::size_t kMost = 40;
  Walked walked;
  const LogCapture log;
  const auto take = [&](NSDate date, NSUInteger, bool& stop) {
    const double seconds = date.timeIntervalSinceReferenceDate();
    // Not-a-number equals nothing, and the day that it stands for must be told apart all the same.
    walked.dates.push_back(std::isnan(seconds) ? std::numeric_limits<double>::max() : seconds);
    stop = walked.dates.size() == kMost;
  };
  walked.periods =
      ORLFDateWalk(rule, {.calendar = calendar, .startDate = start, .backwards = backwards}, take,
                   paths)
          .run();
  walked.log = log.lines();
  return walked;
}

TEST(ORLFCivilWindows, AgreeWithTheGeneralWalkOnRandomRules) {
  RandomWalks random;
  int served = 0;
  int odd = 0;
  int dates = 0;
  for (int round = 0; round < 8'000; ++round) {
    const auto calendar = random.calendar();
    const auto rule = Rule::ruleWithFields(random.rule());
    const NSDate start = random.start(*calendar);
    const bool backwards = round % 4 == 0;
    if (ORLFCivilWindows::forRule(*rule, {.calendar = *calendar, .startDate = start})) ++served;
    if (std::ranges::count(kFrequencies, rule->frequency()) == 0) ++odd;
    const Walked general =
        walk(*rule, *calendar, start, backwards, ORLFDateWalk::Paths::kGeneralOnly);
    const Walked all = walk(*rule, *calendar, start, backwards, ORLFDateWalk::Paths::kAll);
    dates += static_cast<int>(all.dates.size());
    SCOPED_TRACE(testing::Message()
                 << textOf(*rule) << " in " << calendar->timeZone()->name() << " from "
                 << start.description() << (backwards ? " backwards" : ""));
    ASSERT_EQ(general.dates, all.dates);
    ASSERT_EQ(general.periods, all.periods);
    ASSERT_EQ(general.log, all.log);
  }
  // The sweep is worth something only while all kinds of rules are many.
  EXPECT_GT(odd, 500);
  EXPECT_GT(served, 2'000);
  EXPECT_LT(served, 7'000);
  EXPECT_GT(dates, 60'000);
}

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

TEST(ORLFCivilWindows, AgreeThroughCenturiesOfClockChanges) {
  const Rule rules[] = {
      Rule({.frequency = ORLFDateRecurrenceFrequencyDaily,
            .daysOfTheMonth = {{1, 8, 9, 10, 11, 14, 29, 30, 31}}}),
      Rule({.frequency = ORLFDateRecurrenceFrequencyMonthly, .daysOfTheMonth = {{9, 30, 31}}})};
  for (const std::string_view zone : kZones) {
    const auto calendar = calendarIn(zone);
    for (const Rule& rule : rules) {
      const NSDate start = at(*calendar, 1890, 1, 1, 2, 15);
      std::array<std::vector<double>, 2> dates;
      for (const auto paths : {ORLFDateWalk::Paths::kAll, ORLFDateWalk::Paths::kGeneralOnly}) {
        auto& into = dates[paths == ORLFDateWalk::Paths::kAll ? 0 : 1];
        ORLFDateWalk(
            rule, {.calendar = *calendar, .startDate = start},
            [&](NSDate date, NSUInteger count, bool& stop) {
              into.push_back(date.timeIntervalSinceReferenceDate());
              stop = count == 12'000;
            },
            paths)
            .run();
      }
      ASSERT_EQ(dates[0].size(), 12'000U);
      ASSERT_EQ(dates[0], dates[1]) << zone;
    }
  }
}

}  // namespace
}  // namespace ORLFoundation
