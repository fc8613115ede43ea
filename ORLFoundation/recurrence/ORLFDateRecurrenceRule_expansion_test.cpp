// The patterns of one period, the exact rule, and the older patterns.
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/time/NSDateComponents_testing.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrence_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using namespace orlftest;

using Texts = std::vector<std::string>;

Texts textsOf(const Rule::WorkingSet& patterns) {
  Texts texts;
  for (const NSDateComponents& pattern : patterns)
    texts.push_back(orlftest::vectorFromComponents(pattern));
  return texts;
}

class Expansion : public testing::Test {
 protected:
  const std::shared_ptr<NSCalendar> calendar_ = calendarIn("America/New_York");
  // The third Wednesday of May 2023, in its week 3.
  const NSDate date_ = at(*calendar_, 2023, 5, 17, 9, 30, 15);

  [[nodiscard]] Texts patterns(const Rule::Recurrence& fields) const {
    const auto rule = Rule::ruleWithFields(fields);
    const auto forward = rule->generateDateComponentsFromDate(date_, date_, calendar_.get(), false);
    const auto backward = rule->generateDateComponentsFromDate(date_, date_, calendar_.get(), true);
    EXPECT_EQ(forward, backward);
    return textsOf(forward);
  }
};

const std::string kTime = " hour=9 minute=30 second=15 nanosecond=0";

TEST_F(Expansion, TakesTheDayOrTheWeekdayOfTheDateWhereNoListNamesOne) {
  EXPECT_EQ(patterns({.frequency = kDaily, .setPositions = {{1}}}),
            Texts{"year=2023 month=5 day=17" + kTime});
  EXPECT_EQ(patterns({.frequency = kMonthly, .setPositions = {{1}}}),
            Texts{"year=2023 month=5 day=17" + kTime});
  EXPECT_EQ(patterns({.frequency = kWeekly, .setPositions = {{1}}}),
            Texts{"year=2023 month=5 weekday=4 weekdayOrdinal=3" + kTime});
}

TEST_F(Expansion, TakesDaysOfTheMonthInTheDatesMonth) {
  EXPECT_EQ(patterns({.frequency = kMonthly, .daysOfTheMonth = {{1, 31}}}),
            (Texts{"year=2023 month=5 day=1" + kTime, "year=2023 month=5 day=31" + kTime}));
}

TEST_F(Expansion, PlacesWeekdaysByTheirNumber) {
  EXPECT_EQ(patterns({.frequency = kMonthly, .daysOfTheWeek = weekdays({{3, 2}})}),
            Texts{"year=2023 month=5 weekday=3 weekdayOrdinal=2" + kTime});
}

TEST_F(Expansion, PlacesAWeeklyRulesWeekdaysInTheDatesWeek) {
  EXPECT_EQ(patterns({.frequency = kWeekly, .daysOfTheWeek = weekdays({{2, 0}})}),
            Texts{"year=2023 month=5 weekOfMonth=3 weekday=2" + kTime});
  EXPECT_EQ(patterns({.frequency = kWeekly, .daysOfTheWeek = weekdays({{2, -2}})}),
            Texts{"year=2023 month=5 weekday=2 weekdayOrdinal=-2" + kTime});
}

TEST_F(Expansion, KeepsTheWeekAsThePlaceOfAnEntrysLaterPatterns) {
  EXPECT_EQ(patterns({.frequency = kWeekly,
                      .daysOfTheWeek = weekdays({{2, 0}}),
                      .monthsOfTheYear = {{5, 6, 7}}}),
            (Texts{"year=2023 month=5 weekOfMonth=3 weekday=2" + kTime,
                   "year=2023 month=6 weekday=2 weekdayOrdinal=3" + kTime,
                   "year=2023 month=7 weekday=2 weekdayOrdinal=3" + kTime}));
}

TEST_F(Expansion, CombinesMonthsWithDaysInTheirOrder) {
  EXPECT_EQ(
      patterns({.frequency = kYearly, .daysOfTheMonth = {{15, 1}}, .monthsOfTheYear = {{3, 9}}}),
      (Texts{"year=2023 month=3 day=15" + kTime, "year=2023 month=9 day=15" + kTime,
             "year=2023 month=3 day=1" + kTime, "year=2023 month=9 day=1" + kTime}));
}

TEST_F(Expansion, TakesTheDatesDayInTheMonthsNamed) {
  EXPECT_EQ(patterns({.frequency = kYearly, .monthsOfTheYear = {{3}}}),
            Texts{"year=2023 month=3 day=17" + kTime});
}

TEST_F(Expansion, HoldsEqualPatternsOnce) {
  EXPECT_EQ(
      patterns({.frequency = kYearly, .daysOfTheMonth = {{1, 1}}, .monthsOfTheYear = {{3, 15}}}),
      Texts{"year=2023 month=3 day=1" + kTime});
}

TEST_F(Expansion, ConstrainsWeeksByTheDatesWeekday) {
  EXPECT_EQ(patterns({.frequency = kYearly, .weeksOfTheYear = {{20}}}),
            Texts{"year=2023 weekOfYear=20 weekday=4 weekdayOrdinal=3" + kTime});
}

TEST_F(Expansion, TakesBothTheDayAndTheWeekdayWhereBothAreNeeded) {
  const LogCapture log;
  EXPECT_EQ(patterns({.frequency = kYearly, .monthsOfTheYear = {{3}}, .weeksOfTheYear = {{10}}}),
            Texts{"year=2023 month=3 weekOfYear=10 weekday=4 weekdayOrdinal=3 day=17" + kTime});
  EXPECT_EQ(log.distinctLines(),
            Texts{"Condition Failed: !needsDayOfMonthConstraint || !needsDayOfWeekConstraint We "
                  "should not ever need both a day of month and a day of week"});
}

TEST_F(Expansion, LeavesTheMonthOpenToTheLastWeekday) {
  // The date's month is looked at for the number, and does not enter the pattern.
  const LogCapture quiet;
  EXPECT_EQ(
      patterns(
          {.frequency = kYearly, .daysOfTheWeek = weekdays({{2, 0}}), .weeksOfTheYear = {{20}}}),
      Texts{"year=2023 weekOfYear=20 weekday=2 weekdayOrdinal=4" + kTime});
}

TEST_F(Expansion, LeavesTheMonthOpenToDaysOfTheYear) {
  EXPECT_EQ(patterns({.frequency = kYearly, .daysOfTheYear = {{100}}}),
            Texts{"year=2023 day=100" + kTime});
}

TEST_F(Expansion, TakesMonthsOfTheQuarterWithoutAReferenceDateOrACalendar) {
  const auto rule = Rule::ruleWithFields(
      {.frequency = kQuarterly, .daysOfTheMonth = {{9}}, .monthsOfTheYear = {{2}}});
  EXPECT_EQ(
      textsOf(rule->generateDateComponentsFromDate(date_, std::nullopt, calendar_.get(), false)),
      (Texts{"year=2023 month=2 day=9", "year=2023 month=5 day=9", "year=2023 month=8 day=9",
             "year=2023 month=11 day=9"}));
  EXPECT_EQ(rule->generateDateComponentsFromDate(date_, date_, nullptr, false).size(), 4U);
  EXPECT_EQ(textsOf(rule->generateDateComponentsFromDate(date_, date_, calendar_.get(), false)),
            Texts{"year=2023 month=2 day=9" + kTime});
}

TEST_F(Expansion, AnswersWithoutACalendarForEveryKindOfEntry) {
  const LogCapture log;
  for (NSInteger day = -4; day <= 8; ++day) {
    for (NSInteger number = -2; number <= 2; ++number) {
      const auto rule =
          Rule::ruleWithFields({.frequency = kMonthly, .daysOfTheWeek = weekdays({{day, number}})});
      const auto set =
          rule->generateDateComponentsFromDate(std::nullopt, std::nullopt, nullptr, false);
      EXPECT_EQ(set.size(), day == 0 || day == -4 ? 0U : 1U);
    }
  }
  EXPECT_EQ(log.distinctLines().size(), 3U);
}

TEST_F(Expansion, CopiesPatternsWhole) {
  const Rule rule(kMonthly, 1);
  NSDateComponents pattern;
  for (NSUInteger unit = NSCalendarUnitEra; unit <= NSCalendarUnitNanosecond; unit <<= 1)
    pattern.setValueForComponent(static_cast<NSInteger>(unit), static_cast<NSCalendarUnit>(unit));
  EXPECT_EQ(rule.makeDateComponentsCopy({pattern}), Rule::WorkingSet{pattern});
  NSDateComponents older = pattern;
  older.setNanosecond(NSDateComponentUndefined);
  EXPECT_EQ(rule.makeDateComponentsCopyOld({pattern}), Rule::WorkingSet{older});
}

// ---------------------------------------------------------------- the exact rule

TEST_F(Expansion, MakesAMonthlyOrQuarterlyRuleExactByItsDay) {
  const NSDate date = at(*calendar_, 2023, 1, 31);
  for (const auto frequency : {kMonthly, kQuarterly}) {
    const auto rule = std::make_shared<Rule>(frequency, 3);
    const auto exact = rule->dateRecurrenceRuleForExactMatchToReferenceDate(date, *calendar_);
    EXPECT_EQ(exact->daysOfTheMonth(), (Rule::Integers{{31}}));
    EXPECT_EQ(exact->monthsOfTheYear(), std::nullopt);
    EXPECT_FALSE(exact->isSimpleRecurrence());
    EXPECT_EQ(exact->anchorIndex(), 3);
  }
}

TEST_F(Expansion, MakesAWeeklyRuleExactByItsWeekday) {
  const auto rule = std::make_shared<Rule>(kWeekly, 1);
  const auto exact = rule->dateRecurrenceRuleForExactMatchToReferenceDate(date_, *calendar_);
  ASSERT_EQ(exact->daysOfTheWeek()->size(), 1U);
  EXPECT_EQ(exact->daysOfTheWeek()->front()->dayOfTheWeek(), 4);
  EXPECT_EQ(exact->daysOfTheWeek()->front()->weekNumber(), 0);
}

TEST_F(Expansion, MakesAYearlyRuleExactByDayAndMonthWhateverMonthsItHas) {
  const NSDate leap = at(*calendar_, 2024, 2, 29);
  const auto simple = std::make_shared<Rule>(kYearly, 1);
  const auto exact = simple->dateRecurrenceRuleForExactMatchToReferenceDate(leap, *calendar_);
  EXPECT_EQ(exact->daysOfTheMonth(), (Rule::Integers{{29}}));
  EXPECT_EQ(exact->monthsOfTheYear(), (Rule::Integers{{2}}));
  const auto listed = std::make_shared<Rule>(
      Rule::Recurrence{.frequency = kYearly, .daysOfTheMonth = {{5}}, .monthsOfTheYear = {{7}}});
  const auto other = listed->dateRecurrenceRuleForExactMatchToReferenceDate(leap, *calendar_);
  EXPECT_EQ(other->daysOfTheMonth(), (Rule::Integers{{5}}));
  EXPECT_EQ(other->monthsOfTheYear(), (Rule::Integers{{2}}));
}

TEST_F(Expansion, LeavesADailyOrOtherRuleAndOneThatNamesDays) {
  const auto same = [&](const std::shared_ptr<Rule>& rule) {
    return rule->dateRecurrenceRuleForExactMatchToReferenceDate(date_, *calendar_) == rule;
  };
  EXPECT_TRUE(same(std::make_shared<Rule>(kDaily, 2)));
  EXPECT_TRUE(same(std::make_shared<Rule>(static_cast<ORLFDateRecurrenceFrequency>(32), 2)));
  EXPECT_TRUE(same(Rule::ruleWithFields({.frequency = kMonthly, .daysOfTheMonth = {{1}}})));
  EXPECT_TRUE(same(Rule::ruleWithFields({.frequency = kQuarterly, .daysOfTheMonth = {{1}}})));
  EXPECT_TRUE(
      same(Rule::ruleWithFields({.frequency = kWeekly, .daysOfTheWeek = weekdays({{1, 0}})})));
}

TEST_F(Expansion, AnswersAnEqualRuleForAnExactOneOnTheStack) {
  Rule daily(kDaily, 2);
  const auto exact = daily.dateRecurrenceRuleForExactMatchToReferenceDate(date_, *calendar_);
  EXPECT_NE(exact.get(), &daily);
  EXPECT_TRUE(exact->isEqual(&daily));
}

TEST_F(Expansion, DropsAnchorAndAbsoluteFromAnExactRule) {
  const auto rule = Rule::ruleWithFields(
      {.frequency = kMonthly, .interval = 4, .anchorIndex = 2, .absolute = true});
  const auto exact = rule->dateRecurrenceRuleForExactMatchToReferenceDate(date_, *calendar_);
  EXPECT_EQ(exact->anchorIndex(), 4);
  EXPECT_FALSE(exact->absolute());
}

// ---------------------------------------------------------------- the older patterns

std::optional<Texts> olderPatterns(const Rule::Recurrence& fields) {
  const auto patterns = Rule::ruleWithFields(fields)->matchingDateComponentsOld();
  if (!patterns) return std::nullopt;
  return textsOf(*patterns);
}

TEST(OlderExpansion, HasNoPatternsForASimpleRule) {
  EXPECT_EQ(olderPatterns({.frequency = kMonthly}), std::nullopt);
  EXPECT_EQ(olderPatterns({.frequency = kMonthly, .setPositions = {{1}}}), std::nullopt);
  EXPECT_EQ(olderPatterns({.daysOfTheMonth = Rule::Integers::value_type{}}), std::nullopt);
}

TEST(OlderExpansion, RepeatsAMonthInEachQuarter) {
  EXPECT_EQ(olderPatterns({.frequency = kQuarterly, .monthsOfTheYear = {{2}}}),
            (Texts{"month=2", "month=5", "month=8", "month=11"}));
  EXPECT_EQ(olderPatterns({.frequency = kYearly, .monthsOfTheYear = {{2, 14}}}),
            (Texts{"month=2", "month=2"}));
}

TEST(OlderExpansion, TakesTheWeekNumberOfAllButWeeklyRules) {
  EXPECT_EQ(olderPatterns({.frequency = kMonthly, .daysOfTheWeek = weekdays({{3, -1}})}),
            (Texts{"weekday=3 weekdayOrdinal=-1"}));
  EXPECT_EQ(olderPatterns({.frequency = kMonthly, .daysOfTheWeek = weekdays({{3, 0}})}),
            (Texts{"weekday=3"}));
  EXPECT_EQ(olderPatterns({.frequency = kWeekly, .daysOfTheWeek = weekdays({{3, 2}})}),
            (Texts{"weekday=3"}));
}

TEST(OlderExpansion, TakesWeekdaysAndNumbersThatNoMonthHas) {
  EXPECT_EQ(olderPatterns({.frequency = kMonthly, .daysOfTheWeek = weekdays({{0, 1}, {2, 6}})}),
            (Texts{"weekday=0 weekdayOrdinal=1", "weekday=2 weekdayOrdinal=6"}));
}

TEST(OlderExpansion, LogsADayThatIsWrittenTwice) {
  const LogCapture log;
  EXPECT_EQ(olderPatterns({.frequency = kYearly, .daysOfTheMonth = {{4}}, .daysOfTheYear = {{3}}}),
            (Texts{"day=4"}));
  EXPECT_EQ(log.lines(), Texts{"Condition Failed: dateComponenet.day == NSDateComponentUndefined "
                               "NSDateComponents day should not be defined yet"});
}

}  // namespace
}  // namespace ORLFoundation
