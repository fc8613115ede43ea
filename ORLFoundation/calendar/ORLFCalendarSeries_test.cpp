
#include <ORLFoundation/calendar/ORLFCalendarSeries.h>

#include <ORLFoundation/calendar/ORLFCalendarDays_testing.h>
#include <ORLFoundation/calendar/ORLFCalendarRatios.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

namespace ORLFoundation {
namespace {

using orlftest::day;
using orlftest::Json;
using orlftest::unitOf;
using orlftest::utcCalendar;

std::vector<std::string> texts(const std::vector<NSDate>& dates) {
  std::vector<std::string> list;
  for (const NSDate date : dates) list.push_back(orlftest::vectorFromDate(date).substr(0, 10));
  return list;
}
using Texts = std::vector<std::string>;

TEST(ORLFCalendarSeries, AgreesWithVectors) {
  const auto repeating = [](const Json& in, const Json& out) {
    const auto calendar = orlftest::calendarFromVector(in.at("calendar"));
    const LogCapture log;
    const auto dates = orlfDatesOfEventsRepeatingWithUnit(
        *calendar, {.unit = unitOf(in.at("unit")),
                    .multiplier = in.at("multiplier").get<NSInteger>(),
                    .anchoredOnEventDate = *orlftest::dateFromVector(in.at("anchor")),
                    .fromDate = orlftest::dateFromVector(in.at("from")),
                    .toDate = orlftest::dateFromVector(in.at("to")),
                    .inclusive = in.at("inclusive").get<bool>()});
    if (out.at("dates").is_null() != !dates) return std::string("expected and got differ in nil");
    if (log.lines() != out.at("log").get<Texts>()) return std::string("the log differs");
    return dates ? orlftest::disagreement(orlftest::datesFromVector(out.at("dates")), *dates)
                 : std::string();
  };
  const auto stepped = [](const Json& in, const Json& out) {
    const auto calendar = orlftest::calendarFromVector(in.at("calendar"));
    return orlftest::disagreement(
        orlftest::datesFromVector(out),
        orlfDatesAtInterval(*calendar, {.interval = in.at("interval").get<NSInteger>(),
                                        .inAligned = in.at("aligned").get<bool>(),
                                        .calendarUnit = unitOf(in.at("unit")),
                                        .firstDate = *orlftest::dateFromVector(in.at("first")),
                                        .secondDate = *orlftest::dateFromVector(in.at("second")),
                                        .startingWithFirst = in.at("startingWithFirst").get<bool>(),
                                        .sortAscending = in.at("ascending").get<bool>()}));
  };
  const auto ratio = [](auto operation) {
    return [operation](const Json& in, const Json& out) {
      const auto calendar = orlftest::calendarFromVector(in.at("calendar"));
      const double value = operation(*calendar, unitOf(in.at("unit")), unitOf(in.at("inUnit")),
                                     orlftest::dateFromVector(in.at("date")));
      return orlftest::realDisagreement(out.get<double>(), value, 1e-12);
    };
  };
  orlftest::runJsonVectors("planning_series",
                           {{"orlfDatesOfEventsRepeating", repeating},
                            {"orlfDatesAtInterval", stepped},
                            {"orlfMaximumValueOfUnit", ratio(orlfMaximumValueOfUnit)},
                            {"orlfRatioOfCalendarUnit", ratio(orlfRatioOfCalendarUnit)}});
}

// Months from an anchor in UTC; the rows below differ in anchor, range and end.
struct MonthlyCase {
  const char* name;
  const char *anchor, *from, *to;
  bool inclusive;
  Texts dates;
};
const MonthlyCase kMonthlyCases[] = {
    {"AnchorInRangeCountsFromTheAnchorNotFromTheDateBefore",
     "2024-01-31",
     "2023-11-30",
     "2024-04-30",
     false,
     {"2023-11-30", "2023-12-31", "2024-01-31", "2024-02-29", "2024-03-31"}},
    {"StartOfTheRangeIsAlwaysTaken",
     "2024-01-15",
     "2024-01-15",
     "2024-03-15",
     false,
     {"2024-01-15", "2024-02-15"}},
    {"InclusiveTakesTheEndToo",
     "2024-01-15",
     "2024-01-15",
     "2024-03-15",
     true,
     {"2024-01-15", "2024-02-15", "2024-03-15"}},
    {"AnchorBeforeTheRange",
     "2020-01-31",
     "2024-02-01",
     "2024-04-30",
     true,
     {"2024-02-29", "2024-03-31", "2024-04-30"}},
    {"AnchorBeforeTheRangeLeavesOutTheEnd",
     "2020-01-31",
     "2024-02-01",
     "2024-04-30",
     false,
     {"2024-02-29", "2024-03-31"}},
    {"AnchorAfterTheRange",
     "2025-01-31",
     "2024-02-29",
     "2024-04-30",
     true,
     {"2024-02-29", "2024-03-31", "2024-04-30"}},
    {"AnchorAfterTheRangeLeavesOutTheEnd",
     "2025-01-31",
     "2024-02-29",
     "2024-04-30",
     false,
     {"2024-02-29", "2024-03-31"}},
    {"AnchorOnAnInclusiveEndGivesNothing", "2024-04-30", "2024-01-01", "2024-04-30", true, {}},
    {"AnchorOnAnExclusiveEndGivesTheEarlierOnes",
     "2024-04-30",
     "2024-02-01",
     "2024-04-30",
     false,
     {"2024-02-29", "2024-03-30"}},
};

TEST(OrlfDatesOfEventsRepeating, MatchesTable) {
  for (const MonthlyCase& row : kMonthlyCases) {
    for (const NSInteger multiplier : {1, -1}) {
      const auto dates =
          orlfDatesOfEventsRepeatingWithUnit(utcCalendar(), {.unit = NSCalendarUnitMonth,
                                                             .multiplier = multiplier,
                                                             .anchoredOnEventDate = day(row.anchor),
                                                             .fromDate = day(row.from),
                                                             .toDate = day(row.to),
                                                             .inclusive = row.inclusive});
      ASSERT_TRUE(dates) << row.name;
      EXPECT_EQ(texts(*dates), row.dates) << row.name << ", multiplier " << multiplier;
    }
  }
}

TEST(OrlfDatesOfEventsRepeating, NilStartFailsItsConditionAndGivesNil) {
  const LogCapture log;
  EXPECT_FALSE(orlfDatesOfEventsRepeatingWithUnit(
      utcCalendar(), {.unit = NSCalendarUnitMonth, .anchoredOnEventDate = day("2024-01-01")}));
  EXPECT_EQ(log.lines(), Texts{"Condition Failed: fromDate != nil Can't pass nil for fromDate"});
}

TEST(OrlfDatesOfEventsRepeating, RangeThatRunsBackwardFailsItsConditionAndIsEmpty) {
  for (const char* anchor : {"2024-01-01", "2024-02-15", "2024-06-01"}) {
    const LogCapture log;
    const auto dates =
        orlfDatesOfEventsRepeatingWithUnit(utcCalendar(), {.unit = NSCalendarUnitMonth,
                                                           .anchoredOnEventDate = day(anchor),
                                                           .fromDate = day("2024-03-01"),
                                                           .toDate = day("2024-02-01"),
                                                           .inclusive = true});
    ASSERT_TRUE(dates);
    EXPECT_EQ(*dates, std::vector<NSDate>()) << anchor;
    EXPECT_EQ(log.lines(), Texts{"Condition Failed: [fromDate compare:toDate] != "
                                 "NSOrderedDescending fromDate must not be after toDate"});
  }
}

TEST(OrlfDatesOfEventsRepeating, NilEndIsTheCurrentInstant) {
  const Replaced clock(NSDate::setClock, [] { return day("2024-03-02"); });
  const auto dates =
      orlfDatesOfEventsRepeatingWithUnit(utcCalendar(), {.unit = NSCalendarUnitMonth,
                                                         .anchoredOnEventDate = day("2024-01-01"),
                                                         .fromDate = day("2024-01-01")});
  EXPECT_EQ(texts(*dates), (Texts{"2024-01-01", "2024-02-01", "2024-03-01"}));
}

TEST(OrlfDatesOfEventsRepeating, StepsThatDoNotMoveEnd) {
  const ORLFRepeatingEvents events{.unit = NSCalendarUnitMonth,
                                   .multiplier = 0,
                                   .anchoredOnEventDate = day("2024-01-15"),
                                   .fromDate = day("2024-01-01"),
                                   .toDate = day("2025-01-01")};
  EXPECT_EQ(texts(*orlfDatesOfEventsRepeatingWithUnit(utcCalendar(), events)), Texts{"2024-01-15"});
  ORLFRepeatingEvents noUnit = events;
  noUnit.multiplier = 1;
  noUnit.unit = NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay;
  EXPECT_EQ(texts(*orlfDatesOfEventsRepeatingWithUnit(utcCalendar(), noUnit)), Texts{"2024-01-15"});
  ORLFRepeatingEvents extreme = events;
  extreme.multiplier = NSIntegerMin;
  EXPECT_EQ(texts(*orlfDatesOfEventsRepeatingWithUnit(utcCalendar(), extreme)),
            Texts{"2024-01-15"});
}

TEST(OrlfDatesOfEventsRepeating, StepsThatDoNotMoveReachNoRange) {
  for (const char* anchor : {"2023-06-15", "2025-06-15"}) {
    ORLFRepeatingEvents events{.unit = NSCalendarUnitMonth,
                               .multiplier = 0,
                               .anchoredOnEventDate = day(anchor),
                               .fromDate = day("2024-01-01"),
                               .toDate = day("2025-01-01")};
    EXPECT_EQ(orlfDatesOfEventsRepeatingWithUnit(utcCalendar(), events), std::vector<NSDate>());
    events.multiplier = 1;
    events.unit = NSCalendarUnitYear | NSCalendarUnitMonth;
    EXPECT_EQ(orlfDatesOfEventsRepeatingWithUnit(utcCalendar(), events), std::vector<NSDate>());
  }
}

// Twice the step is no number any more.
TEST(OrlfDatesOfEventsRepeating, EndWhereStepsLeaveTheirType) {
  constexpr NSInteger kNanoseconds = 5'000'000'000'000'000'000;
  constexpr double kSeconds = 5e9;
  const NSDate anchor = day("2024-01-15");
  EXPECT_EQ(orlfDatesOfEventsRepeatingWithUnit(utcCalendar(), {.unit = NSCalendarUnitNanosecond,
                                                               .multiplier = kNanoseconds,
                                                               .anchoredOnEventDate = anchor,
                                                               .fromDate = day("1000-01-01"),
                                                               .toDate = day("3000-01-01")}),
            (std::vector<NSDate>{anchor.dateByAddingTimeInterval(-kSeconds), anchor,
                                 anchor.dateByAddingTimeInterval(kSeconds)}));
}

// Quarters turn with GMT's, in New York on 31 March and on 30 June at 19:00: two lie between dates
// that are one step apart.
TEST(OrlfDatesOfEventsRepeating, JumpShortOfQuartersThatCountTwice) {
  const auto calendar = orlftest::calendarIn("America/New_York");
  const NSDate march = orlftest::at(*calendar, 2010, 3, 30, 20);
  const NSDate june = orlftest::at(*calendar, 2010, 6, 30, 20);
  ORLFRepeatingEvents events{.unit = NSCalendarUnitQuarter,
                             .anchoredOnEventDate = march,
                             .fromDate = june.dateByAddingTimeInterval(-60),
                             .toDate = june,
                             .inclusive = true};
  EXPECT_EQ(orlfDatesOfEventsRepeatingWithUnit(*calendar, events), std::vector<NSDate>{june});
  events.anchoredOnEventDate = june;
  events.fromDate = march;
  events.toDate = march.dateByAddingTimeInterval(60);
  EXPECT_EQ(orlfDatesOfEventsRepeatingWithUnit(*calendar, events), std::vector<NSDate>{march});
}

struct SteppedCase {
  const char* name;
  ORLFSteppedDates dates;
  Texts expected;
};

TEST(OrlfDatesAtInterval, MatchesTable) {
  const NSCalendarUnit month = NSCalendarUnitMonth;
  const NSDate january = day("2024-01-15");
  const NSDate march = day("2024-03-10");
  const SteppedCase cases[] = {
      {"OverrunsTheLimitByOneStep",
       {1, false, month, january, march, true, true},
       {"2024-01-15", "2024-02-15", "2024-03-15"}},
      {"StepsBackFromTheSecondDate",
       {1, false, month, january, march, false, true},
       {"2024-01-10", "2024-02-10", "2024-03-10"}},
      {"SortsDescending",
       {1, false, month, january, march, true, false},
       {"2024-03-15", "2024-02-15", "2024-01-15"}},
      {"AlignsForwardAfterTheStep",
       {1, true, month, january, march, true, true},
       {"2024-01-15", "2024-02-01", "2024-03-01", "2024-04-01"}},
      {"AlignsBackwardBeforeItSteps",
       {1, true, month, january, march, false, true},
       {"2024-01-01", "2024-02-01", "2024-03-01", "2024-03-10"}},
      {"EqualDatesGiveTwo",
       {1, false, month, january, january, true, true},
       {"2024-01-15", "2024-02-15"}},
      {"IntervalOfZeroGivesTwoEqualDates",
       {0, false, month, january, march, true, true},
       {"2024-01-15", "2024-01-15"}},
      {"StepsThatLeadAwayEnd",
       {-1, false, month, january, march, true, true},
       {"2023-12-15", "2024-01-15"}},
  };
  for (const SteppedCase& row : cases)
    EXPECT_EQ(texts(orlfDatesAtInterval(utcCalendar(), row.dates)), row.expected) << row.name;
}

// A million years are within the calendar, two are not.
TEST(OrlfDatesAtInterval, EndBeforeAStepThatLeavesTheCalendar) {
  const NSDate first = day("2024-01-15");
  const NSDate far = orlftest::at(utcCalendar(), 1'002'024, 1, 15);
  ORLFSteppedDates dates{.interval = 1'000'000,
                         .calendarUnit = NSCalendarUnitYear,
                         .firstDate = first,
                         .secondDate = orlftest::at(utcCalendar(), 1'300'000, 1, 1)};
  EXPECT_EQ(orlfDatesAtInterval(utcCalendar(), dates), (std::vector<NSDate>{first, far}));
  dates.interval = 2'000'000;
  EXPECT_EQ(orlfDatesAtInterval(utcCalendar(), dates), std::vector<NSDate>{first});
}

}  // namespace
}  // namespace ORLFoundation
