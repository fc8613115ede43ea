// The fast path of the main enumeration gives what the general walk gives, over rules of every
// shape, zones with every kind of clock change, both directions and odd start dates.
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceChance_testing.h>
#include <ORLFoundation/recurrence/internal/ORLFCivilWindows.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

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

struct Walk {
  const NSCalendar& calendar;
  NSDate start;
  bool backwards = false;
  std::size_t most = 40;
};

Walked walked(const Rule& rule, const Walk& walk, ORLFDateWalk::Paths paths) {
  Walked walked;
  const LogCapture log;
  const auto take = [&](NSDate date, NSUInteger, bool& stop) {
    const double seconds = date.timeIntervalSinceReferenceDate();
    // Not-a-number equals nothing, and the day that it stands for must be told apart all the same.
    walked.dates.push_back(std::isnan(seconds) ? std::numeric_limits<double>::max() : seconds);
    stop = walked.dates.size() == walk.most;
  };
  walked.periods =
      ORLFDateWalk(
          rule, {.calendar = walk.calendar, .startDate = walk.start, .backwards = walk.backwards},
          take, paths)
          .run();
  walked.log = log.lines();
  return walked;
}

/// How many dates both paths give; they must be the same, as must what is logged be.
std::size_t agreedDates(const Rule& rule, const Walk& walk) {
  const Walked general = walked(rule, walk, ORLFDateWalk::Paths::kGeneralOnly);
  const Walked all = walked(rule, walk, ORLFDateWalk::Paths::kAll);
  const auto which = [&] {
    return textOf(rule) + " in " + walk.calendar.timeZone()->name() + " from " +
           walk.start.description() + (walk.backwards ? " backwards" : "");
  };
  EXPECT_EQ(general.dates, all.dates) << which();
  EXPECT_EQ(general.periods, all.periods) << which();
  EXPECT_EQ(general.log, all.log) << which();
  return all.dates.size();
}

TEST(ORLFCivilWindows, AgreeWithTheGeneralWalkOnRandomRules) {
  RandomWalks random;
  int served = 0;
  int odd = 0;
  std::size_t dates = 0;
  for (int round = 0; round < 8'000; ++round) {
    const auto calendar = random.calendar();
    const auto rule = Rule::ruleWithFields(random.rule());
    const NSDate start = random.start(*calendar);
    const bool backwards = round % 4 == 0;
    if (ORLFCivilWindows::forRule(*rule, {.calendar = *calendar, .startDate = start})) ++served;
    if (std::ranges::count(kFrequencies, rule->frequency()) == 0) ++odd;
    dates += agreedDates(*rule, {*calendar, start, backwards});
    ASSERT_FALSE(HasFailure());
  }
  // The sweep is worth something only while all kinds of rules are many.
  EXPECT_GT(odd, 500);
  EXPECT_GT(served, 2'000);
  EXPECT_LT(served, 7'000);
  EXPECT_GT(dates, 60'000U);
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

/// The days and times of day around a clock change, as the clock counts them before or after it:
/// where the times that it leaves out or doubles begin, their middle and their end.
std::vector<NSDateComponents> timesOfChange(const NSCalendar& calendar, NSDate change) {
  const NSTimeZone& zone = *calendar.timeZone();
  const NSInteger before = zone.secondsFromGMTForDate(change.dateByAddingTimeInterval(-1));
  const NSInteger after = zone.secondsFromGMTForDate(change);
  const auto utc = calendarIn("UTC");
  std::vector<NSDateComponents> times;
  for (const NSInteger offset :
       {std::min(before, after), (before + after) / 2, std::max(before, after)})
    times.push_back(utc->components(NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay |
                                        NSCalendarUnitHour | NSCalendarUnitMinute |
                                        NSCalendarUnitWeekday,
                                    change.dateByAddingTimeInterval(static_cast<double>(offset))));
  return times;
}

/// Rules that name a day in all ways that the fast path knows.
std::vector<Rule::Recurrence> rulesThatName(const NSDateComponents& day) {
  const NSInteger number = day.day();
  const NSInteger place = (number - 1) / 7 + 1;
  const auto ofMonths = [&](ORLFDateRecurrenceFrequency frequency, Rule::Integers months) {
    return std::vector<Rule::Recurrence>{
        {.frequency = frequency, .daysOfTheMonth = {{number}}, .monthsOfTheYear = months},
        {.frequency = frequency,
         .daysOfTheWeek = weekdays({{-1, std::min<NSInteger>(number, 28)}}),
         .monthsOfTheYear = months},
        {.frequency = frequency,
         .daysOfTheWeek = weekdays({{day.weekday(), place}}),
         .monthsOfTheYear = months},
        {.frequency = frequency, .daysOfTheWeek = weekdays({{-1, 0}}), .monthsOfTheYear = months}};
  };
  std::vector<Rule::Recurrence> rules = ofMonths(kMonthly, std::nullopt);
  for (auto& rule : ofMonths(kYearly, {{day.month()}})) rules.push_back(std::move(rule));
  rules.push_back({.frequency = kMonthly, .daysOfTheWeek = weekdays({{day.weekday(), -1}})});
  rules.push_back({.frequency = kMonthly, .daysOfTheWeek = weekdays({{day.weekday(), 0}})});
  rules.push_back({.frequency = kWeekly, .daysOfTheWeek = weekdays({{day.weekday(), 0}})});
  rules.push_back({.frequency = kYearly, .monthsOfTheYear = {{day.month()}}});
  rules.push_back({.frequency = kMonthly});
  return rules;
}

TEST(ORLFCivilWindows, AgreeWhereAClockChangeMeetsADayThatIsNamed) {
  constexpr int kChanges = 12;
  constexpr std::size_t kMost = 4;
  std::size_t dates = 0;
  for (const std::string_view zone : kZones) {
    const auto calendar = calendarIn(zone);
    // Apia and Kwajalein skipped a day, in 2011 and in 1993.
    auto change = std::optional(at(*calendar, zone == "Pacific/Apia" ? 2010 : 1993, 1, 1));
    for (int count = 0; count < kChanges; ++count) {
      change = calendar->timeZone()->nextDaylightSavingTimeTransitionAfterDate(*change);
      if (!change) break;
      for (const NSDateComponents& time : timesOfChange(*calendar, *change)) {
        const auto months = [&](int later, NSInteger day) {
          return at(*calendar, static_cast<int>(time.year()),
                    static_cast<int>(time.month()) + later, static_cast<int>(day),
                    static_cast<int>(time.hour()), static_cast<int>(time.minute()));
        };
        for (const auto& fields : rulesThatName(time)) {
          const Rule rule(fields);
          for (const NSInteger day : {time.day(), time.day() > 20 ? time.day() - 6 : 24}) {
            dates += agreedDates(rule, {*calendar, months(-2, day), false, kMost});
            dates += agreedDates(rule, {*calendar, months(2, day), true, kMost});
          }
          dates += agreedDates(rule, {*calendar, months(-24, time.day()), false, kMost});
          ASSERT_FALSE(HasFailure());
        }
      }
    }
  }
  EXPECT_GT(dates, 10'000U);
}

TEST(ORLFCivilWindows, AgreeWhereGreatClockChangesMoveTheEndsOfWindows) {
  constexpr std::size_t kMost = 100;
  const auto calendar = calendarIn("UTC");
  calendar->setTimeZone(zoneOfGreatChanges());
  std::vector<NSInteger> everyDay;
  for (NSInteger day = 1; day <= 31; ++day) everyDay.push_back(day);
  for (NSInteger month = 0; month <= 12; ++month) {
    for (const ORLFDateRecurrenceFrequency frequency : {kYearly, kMonthly, kDaily}) {
      for (const bool namesDays : {true, false}) {
        Rule::Recurrence fields{.frequency = frequency};
        if (namesDays) fields.daysOfTheMonth = everyDay;
        if (month != 0) fields.monthsOfTheYear = {{month}};
        const Rule rule(fields);
        // Two changes of the clock come within as many days.
        for (int day = 1; day <= 62; day += 2) {
          const NSDate start = at(*calendar, 2021, 5, day, day % 24, 30);
          agreedDates(rule, {*calendar, start, day % 4 == 3, kMost});
        }
        ASSERT_FALSE(HasFailure());
      }
    }
  }
}

TEST(ORLFCivilWindows, AgreeOverLongSteps) {
  const auto calendar = calendarIn("America/New_York");
  const NSDate start = at(*calendar, 1960, 6, 15, 9, 30);
  for (NSInteger months = 1; months <= 300; ++months)
    EXPECT_EQ(agreedDates(Rule(kMonthly, months), {*calendar, start, false, 4}), 4U);
  ASSERT_FALSE(HasFailure());
}

TEST(ORLFCivilWindows, AgreeWhereStepsOfDaysPassMonthsThatAreListed) {
  const auto calendar = calendarIn("UTC");
  const std::vector<NSInteger> lists[] = {{1, 2, 3, 11, 12}, {1}, {6, 12}};
  for (const auto& months : lists) {
    for (NSInteger days = 1; days <= 120; ++days) {
      const Rule rule(
          Rule::Recurrence{.frequency = kDaily, .interval = days, .monthsOfTheYear = months});
      EXPECT_GT(agreedDates(rule, {*calendar, at(*calendar, 2019, 11, 15, 9), false, 12}), 0U);
      EXPECT_GT(agreedDates(rule, {*calendar, at(*calendar, 2020, 1, 31, 9), true, 12}), 0U);
    }
    ASSERT_FALSE(HasFailure());
  }
}

TEST(ORLFCivilWindows, AgreeFromEachDayAroundTheFirstOfAllDayNumbers) {
  const auto calendar = calendarIn("Asia/Kathmandu");
  const Rule rules[] = {
      Rule(kYearly, 1),
      Rule(kMonthly, 1),
      Rule(kWeekly, 1),
      Rule(kDaily, 1),
      Rule({.frequency = kMonthly, .daysOfTheMonth = {{1, 15, 31}}}),
      Rule({.frequency = kYearly, .monthsOfTheYear = {{1, 3}}}),
      Rule({.frequency = kMonthly, .daysOfTheWeek = weekdays({{-1, -1}, {3, 2}})}),
      Rule({.frequency = kWeekly, .daysOfTheWeek = weekdays({{2, 0}, {6, 0}})})};
  for (const Rule& rule : rules) {
    for (int day = -10; day <= 70; ++day) {
      const NSDate start = at(*calendar, 1970, 1, day, 9);
      EXPECT_EQ(agreedDates(rule, {*calendar, start, false, 12}), 12U);
      EXPECT_EQ(agreedDates(rule, {*calendar, start, true, 12}), 12U);
    }
    ASSERT_FALSE(HasFailure());
  }
}

}  // namespace
}  // namespace ORLFoundation
