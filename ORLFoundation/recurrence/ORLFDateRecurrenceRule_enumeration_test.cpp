// The main enumeration: windows, ends, emptiness, exact matches, weekdays, conditions.
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrence_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using namespace orlftest;

class Enumeration : public orlftest::EnumerationTest {};

TEST_F(Enumeration, ClampsMonthEndFromStartDateNotFromPreviousDate) {
  const Rule rule(kMonthly, 1);
  EXPECT_EQ(days(rule, morning(2023, 1, 31), 5),
            (Days{20230131, 20230228, 20230331, 20230430, 20230531}));
}

TEST_F(Enumeration, SkipsShortMonthsWithAnExactPattern) {
  const Rule rule(kMonthly, 1);
  EXPECT_EQ(days(rule, morning(2023, 1, 31), 3, {.exact = true}),
            (Days{20230131, 20230331, 20230531}));
}

TEST_F(Enumeration, ClampsBackwardFromTheStartDate) {
  const Rule rule(kMonthly, 1);
  EXPECT_EQ(days(rule, morning(2023, 3, 31), 3, {.backwards = true}),
            (Days{20230331, 20230228, 20230131}));
}

TEST_F(Enumeration, IgnoresTheExactFlagOfARuleWithLists) {
  const Rule rule(Rule::Recurrence{.frequency = kMonthly, .daysOfTheMonth = {{5}}});
  EXPECT_EQ(days(rule, morning(2023, 1, 31), 2, {.exact = true}),
            days(rule, morning(2023, 1, 31), 2));
}

TEST_F(Enumeration, GivesTheStartDateFirstWithTheNumberOne) {
  const Rule rule(kMonthly, 1);
  std::vector<NSUInteger> counts;
  std::vector<NSDate> dates;
  rule.enumerateDatesForCalendarStartDate(
      {.calendar = *calendar_,
       .startDate = morning(2023, 1, 31),
       .end = ORLFDateRecurrenceEnd::initEndWithOccurrenceCount(1)},
      [&](NSDate date, NSUInteger count, bool&) {
        dates.push_back(date);
        counts.push_back(count);
      });
  EXPECT_EQ(dates, std::vector<NSDate>{morning(2023, 1, 31)});
  EXPECT_EQ(counts, std::vector<NSUInteger>{1});
}

TEST_F(Enumeration, EndsAfterACountInEitherDirection) {
  const Rule rule(kMonthly, 1);
  for (const bool backwards : {false, true})
    EXPECT_EQ(
        days(rule, morning(2023, 1, 15), 99,
             {.end = ORLFDateRecurrenceEnd::initEndWithOccurrenceCount(3), .backwards = backwards})
            .size(),
        3U);
  EXPECT_TRUE(days(rule, morning(2023, 1, 15), 99,
                   {.end = ORLFDateRecurrenceEnd::initEndWithOccurrenceCount(0)})
                  .empty());
}

TEST_F(Enumeration, EndsBeforeItsEndDate) {
  const Rule rule(kMonthly, 1);
  EXPECT_EQ(days(rule, morning(2023, 1, 15), 99,
                 {.end = ORLFDateRecurrenceEnd::initEndWithEndDate(morning(2023, 4, 15))})
                .size(),
            3U);
  EXPECT_EQ(days(rule, morning(2023, 1, 15), 99,
                 {.end = ORLFDateRecurrenceEnd::initEndWithEndDate(morning(2022, 10, 15)),
                  .backwards = true})
                .size(),
            3U);
}

TEST_F(Enumeration, CountsDatesAcrossWindowsForTheEnd) {
  const Rule rule(Rule::Recurrence{.frequency = kMonthly, .daysOfTheMonth = {{1, 10, 20}}});
  EXPECT_EQ(days(rule, morning(2023, 1, 5), 99,
                 {.end = ORLFDateRecurrenceEnd::initEndWithOccurrenceCount(4)}),
            (Days{20230110, 20230120, 20230201, 20230210}));
}

TEST_F(Enumeration, StopsInTheMiddleOfAWindow) {
  const Rule rule(Rule::Recurrence{.frequency = kMonthly, .daysOfTheMonth = {{1, 10, 20}}});
  EXPECT_EQ(days(rule, morning(2023, 1, 5), 2), (Days{20230110, 20230120}));
  // An end that is far off does not take the block's stop back.
  EXPECT_EQ(days(rule, morning(2023, 1, 5), 2,
                 {.end = ORLFDateRecurrenceEnd::initEndWithOccurrenceCount(99)}),
            (Days{20230110, 20230120}));
}

TEST_F(Enumeration, LosesAndDoublesNothingBetweenWindows) {
  const Rule rule(Rule::Recurrence{.frequency = kMonthly, .daysOfTheMonth = {{1, 15}}});
  EXPECT_EQ(days(rule, morning(2023, 1, 10), 4), (Days{20230115, 20230201, 20230215, 20230301}));
}

TEST_F(Enumeration, GoesOnThroughAnEmptyWindow) {
  const Rule rule(Rule::Recurrence{.frequency = kMonthly, .daysOfTheMonth = {{30}}});
  EXPECT_EQ(days(rule, morning(2023, 1, 1), 2), (Days{20230130, 20230330}));
}

TEST_F(Enumeration, EndsByItselfAfterSixtyEmptyPeriods) {
  const Rule never(
      Rule::Recurrence{.frequency = kYearly, .daysOfTheMonth = {{30}}, .monthsOfTheYear = {{2}}});
  EXPECT_EQ(periodsOf(never, *calendar_, morning(2023, 1, 1)), 60U);
}

TEST_F(Enumeration, BeginsToCountEmptyPeriodsAnewAfterADate) {
  // 47 empty windows lie between two leap days, again and again.
  const Rule rule(
      Rule::Recurrence{.frequency = kMonthly, .daysOfTheMonth = {{29}}, .monthsOfTheYear = {{2}}});
  EXPECT_EQ(days(rule, morning(2023, 1, 1), 3), (Days{20240229, 20280229, 20320229}));
  // After 1896 the next one lies eight years ahead: 60 empty windows follow the one with a date.
  std::size_t delivered = 0;
  EXPECT_EQ(internal::recurrence::ORLFDateWalk(
                rule, {.calendar = *calendar_, .startDate = morning(1896, 2, 1)},
                [&](NSDate, NSUInteger, bool&) { ++delivered; })
                .run(),
            61U);
  EXPECT_EQ(delivered, 1U);
}

TEST_F(Enumeration, FindsTheLeapDaysOfAnExactYearlyRule) {
  const Rule rule(kYearly, 1);
  EXPECT_EQ(days(rule, morning(2024, 2, 29), 4, {.exact = true}),
            (Days{20240229, 20280229, 20320229, 20360229}));
  EXPECT_EQ(days(rule, morning(2024, 2, 29), 3), (Days{20240229, 20250228, 20260228}));
}

struct WeekdayCase {
  const char* name;
  int day, number;
  Days dates;  // monthly from 2023-01-01
};

TEST_F(Enumeration, FindsWeekdaysOfTheMonth) {
  const WeekdayCase cases[] = {
      {"NumberZeroIsTheLastOne", 2, 0, {20230130, 20230227, 20230327, 20230424}},
      {"First", 2, 1, {20230102, 20230206, 20230306, 20230403}},
      {"Second", 3, 2, {20230110, 20230214, 20230314, 20230411}},
      {"FifthWhereThereIsOne", 3, 5, {20230131, 20230530, 20230829}},
      {"Last", 3, -1, {20230131, 20230228, 20230328}},
      {"MinusTwoIsTheLastToo", 3, -2, {20230131, 20230228, 20230328}},
      {"FirstDayOutsideTheWeekend", -2, 1, {20230102, 20230201, 20230301, 20230403}},
      {"LastDayOutsideTheWeekend", -2, -1, {20230131, 20230228, 20230331, 20230428}},
      {"TenthDayOutsideTheWeekend", -2, 10, {20230113, 20230214, 20230314}},
      {"FirstWeekendDay", -3, 1, {20230101, 20230204, 20230304, 20230401}},
      {"ThirdWeekendDay", -3, 3, {20230108, 20230211, 20230311}},
      {"LastWeekendDay", -3, 0, {20230129, 20230226, 20230326, 20230430}},
      {"FirstDay", -1, 1, {20230101, 20230201, 20230301}},
      {"ThirtiethDay", -1, 30, {20230130, 20230330, 20230430}},
      {"LastDay", -1, -1, {20230131, 20230228, 20230331}},
  };
  for (const WeekdayCase& row : cases) {
    const LogCapture quiet;
    const Rule rule(Rule::Recurrence{.frequency = kMonthly,
                                     .daysOfTheWeek = weekdays({{row.day, row.number}})});
    EXPECT_EQ(days(rule, morning(2023, 1, 1), row.dates.size()), row.dates) << row.name;
  }
}

TEST_F(Enumeration, PassesOverEntriesThatNameNoDay) {
  const Rule rule(Rule::Recurrence{.frequency = kMonthly,
                                   .daysOfTheWeek = weekdays({{0, 1}, {-4, 1}, {2, 1}})});
  EXPECT_EQ(days(rule, morning(2023, 1, 1), 2), (Days{20230102, 20230206}));
  const Rule none(Rule::Recurrence{.frequency = kMonthly, .daysOfTheWeek = weekdays({{0, 1}})});
  EXPECT_EQ(periodsOf(none, *calendar_, morning(2023, 1, 1)), 60U);
}

TEST_F(Enumeration, FindsNoWeekendDayBeyondTheMonthAndDoesNotHang) {
  const LogCapture log;
  const Rule rule(Rule::Recurrence{.frequency = kMonthly,
                                   .daysOfTheWeek = weekdays({{-3, 15}, {-2, 1'000'000'000}})});
  EXPECT_EQ(periodsOf(rule, *calendar_, morning(2023, 1, 1)), 60U);
  EXPECT_EQ(log.distinctLines(),
            std::vector<std::string>{"Condition Failed: [dateComponent isValidDateInCalendar:"
                                     "calendar] This should be valid... gulp"});
}

TEST_F(Enumeration, GivesFridayOfTheStartDatesWeek) {
  const Rule rule(
      Rule::Recurrence{.frequency = kWeekly, .daysOfTheWeek = weekdays({{2, 0}, {6, 0}})});
  // 1 March 2023 is a Wednesday.
  const Days dates = days(rule, morning(2023, 3, 1), 3);
  EXPECT_EQ(dates, (Days{20230303, 20230306, 20230310}));
  EXPECT_EQ(days(rule, morning(2023, 3, 3), 1), (Days{20230303}));
}

TEST_F(Enumeration, GivesTheSameWeekdayWithAnExactWeeklyPattern) {
  const Rule rule(kWeekly, 2);
  EXPECT_EQ(days(rule, morning(2023, 3, 1), 3, {.exact = true}),
            (Days{20230301, 20230315, 20230329}));
}

TEST_F(Enumeration, StepsAQuarterByThreeMonths) {
  EXPECT_EQ(days(Rule(kQuarterly, 1), morning(2023, 1, 31), 3),
            (Days{20230131, 20230430, 20230731}));
  EXPECT_EQ(days(Rule(kQuarterly, 2), morning(2023, 1, 31), 2), (Days{20230131, 20230731}));
  const Rule days31(Rule::Recurrence{.frequency = kQuarterly, .daysOfTheMonth = {{31}}});
  EXPECT_EQ(days(days31, morning(2023, 1, 31), 3), (Days{20230131, 20230731, 20231031}));
}

TEST_F(Enumeration, TakesAQuarterlyRulesMonthsForMonthsOfTheYear) {
  const Rule rule(Rule::Recurrence{
      .frequency = kQuarterly, .daysOfTheMonth = {{10}}, .monthsOfTheYear = {{2, 5}}});
  EXPECT_EQ(days(rule, morning(2023, 1, 1), 3), (Days{20230210, 20230510, 20240210}));
}

TEST_F(Enumeration, LeavesGapsBetweenWindowsOfSeveralMonths) {
  const Rule rule(
      Rule::Recurrence{.frequency = kMonthly, .interval = 2, .daysOfTheMonth = {{1, 15}}});
  // The months between the two ends of a window produce nothing.
  EXPECT_EQ(days(rule, morning(2023, 1, 10), 4), (Days{20230115, 20230301, 20230315, 20230501}));
}

TEST_F(Enumeration, ReducesMonthsBeyondDecember) {
  const Rule rule(
      Rule::Recurrence{.frequency = kYearly, .daysOfTheMonth = {{1}}, .monthsOfTheYear = {{14}}});
  EXPECT_EQ(days(rule, morning(2023, 1, 1), 2), (Days{20230201, 20240201}));
}

TEST_F(Enumeration, TakesDaysOfTheYearForDaysOfJanuaryOrOfTheMonthsNamed) {
  // Without a month a pattern of the year alone is a day of January.
  const Rule january(Rule::Recurrence{.frequency = kYearly, .daysOfTheYear = {{5, 32}}});
  EXPECT_EQ(days(january, morning(2023, 1, 1), 2), (Days{20230105, 20240105}));
  const Rule named(
      Rule::Recurrence{.frequency = kYearly, .monthsOfTheYear = {{3}}, .daysOfTheYear = {{5}}});
  EXPECT_EQ(days(named, morning(2023, 1, 1), 2), (Days{20230305, 20240305}));
}

TEST_F(Enumeration, DropsNegativeDaysOfTheMonth) {
  const Rule rule(Rule::Recurrence{.frequency = kMonthly, .daysOfTheMonth = {{-1, 0}}});
  EXPECT_EQ(periodsOf(rule, *calendar_, morning(2023, 1, 1)), 60U);
}

TEST_F(Enumeration, IsNotMovedBySetPositions) {
  const Rule::Recurrence fields{.frequency = kMonthly, .daysOfTheMonth = {{1, 15}}};
  Rule::Recurrence positioned = fields;
  positioned.setPositions = {{-1}};
  EXPECT_EQ(days(Rule(fields), morning(2023, 1, 1), 6),
            days(Rule(positioned), morning(2023, 1, 1), 6));
}

TEST_F(Enumeration, IsNotMovedByAnchorOrAbsolute) {
  const Rule::Recurrence fields{.frequency = kMonthly, .interval = 3, .daysOfTheMonth = {{1}}};
  Rule::Recurrence absolute = fields;
  absolute.absolute = true;
  absolute.anchorIndex = 2;
  EXPECT_EQ(days(Rule(fields), morning(2023, 1, 1), 6),
            days(Rule(absolute), morning(2023, 1, 1), 6));
}

TEST_F(Enumeration, KeepsTheTimeOfDayToTheNanosecond) {
  const Rule rule(Rule::Recurrence{.frequency = kMonthly, .daysOfTheMonth = {{15}}});
  const NSDate start = at(*calendar_, 2023, 1, 1, 9, 30, 15).dateByAddingTimeInterval(0.25);
  for (const NSDate date : firstDates(rule, *calendar_, start, 24)) {
    const auto fields = calendar_->components(
        NSCalendarUnitHour | NSCalendarUnitMinute | NSCalendarUnitSecond | NSCalendarUnitNanosecond,
        date);
    EXPECT_EQ(fields.hour(), 9);
    EXPECT_EQ(fields.minute(), 30);
    EXPECT_EQ(fields.second(), 15);
    EXPECT_EQ(fields.nanosecond(), 250'000'000);
  }
}

TEST_F(Enumeration, LogsAFailedConditionInEveryPeriod) {
  const Rule rule(
      Rule::Recurrence{.frequency = kMonthly, .daysOfTheMonth = {{3}}, .daysOfTheYear = {{5}}});
  const LogCapture log;
  EXPECT_EQ(days(rule, morning(2023, 1, 1), 1), (Days{20230103}));
  // One window, expanded at both of its ends: the later list wins.
  EXPECT_EQ(log.lines(), std::vector<std::string>(
                             2,
                             "Condition Failed: dateComponent.day == NSDateComponentUndefined "
                             "NSDateComponents day should not be defined yet"));
}

TEST_F(Enumeration, LogsTwoConstraintsAtOnce) {
  const Rule rule(
      Rule::Recurrence{.frequency = kYearly, .monthsOfTheYear = {{1}}, .weeksOfTheYear = {{2}}});
  const LogCapture log;
  EXPECT_TRUE(days(rule, morning(2023, 1, 1), 1).empty());
  EXPECT_EQ(log.distinctLines(),
            std::vector<std::string>{
                "Condition Failed: !needsDayOfMonthConstraint || !needsDayOfWeekConstraint We "
                "should not ever need both a day of month and a day of week"});
}

}  // namespace
}  // namespace ORLFoundation
