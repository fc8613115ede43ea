// The older enumeration, anchors and bounding dates.
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrence_testing.h>
#include <gtest/gtest.h>
#include <tests/support/ProcessorTime.h>

#include <limits>

namespace ORLFoundation {
namespace {

using namespace orlftest;

class OlderEnumeration : public testing::Test {
 protected:
  const std::shared_ptr<NSCalendar> calendar_ = calendarIn("America/New_York");

  [[nodiscard]] NSDate day(int year, int month, int dayOfMonth) const {
    return at(*calendar_, year, month, dayOfMonth, 9, 30);
  }
  [[nodiscard]] Days days(const Rule::Recurrence& fields, NSDate reference, std::size_t most,
                          bool backwards = false) const {
    std::vector<NSDate> dates;
    Rule::ruleWithFields(fields)->enumerateDatesForCalendarRefernceDate(
        {.calendar = *calendar_, .refernceDate = reference, .backwards = backwards},
        [&](NSDate date, NSUInteger, bool& stop) {
          dates.push_back(date);
          stop = dates.size() >= most;
        });
    return daysOf(dates, *calendar_);
  }
};

TEST_F(OlderEnumeration, BeginsOneIntervalAfterItsBaseForwardAndAtItBackward) {
  EXPECT_EQ(days({.frequency = kMonthly}, day(2023, 1, 31), 2), (Days{20230228, 20230331}));
  EXPECT_EQ(days({.frequency = kMonthly}, day(2023, 1, 31), 2, true), (Days{20230131, 20221231}));
}

TEST_F(OlderEnumeration, CountsFromZero) {
  std::vector<NSUInteger> counts;
  Rule(kMonthly, 1)
      .enumerateDatesForCalendarRefernceDate(
          {.calendar = *calendar_,
           .refernceDate = day(2023, 1, 1),
           .end = ORLFDateRecurrenceEnd::initEndWithOccurrenceCount(3)},
          [&](NSDate, NSUInteger count, bool&) { counts.push_back(count); });
  EXPECT_EQ(counts, (std::vector<NSUInteger>{0, 1, 2}));
}

TEST_F(OlderEnumeration, MovesItsBaseToTheAnchor) {
  // Slot 1 of 3: two months before the base.
  EXPECT_EQ(days({.frequency = kMonthly, .interval = 3, .anchorIndex = 1}, day(2023, 3, 15), 2),
            (Days{20230415, 20230715}));
  EXPECT_EQ(days({.frequency = kMonthly, .interval = 3, .anchorIndex = 3}, day(2023, 3, 15), 2),
            (Days{20230615, 20230915}));
  EXPECT_EQ(days({.frequency = kQuarterly, .interval = 2, .anchorIndex = 1}, day(2023, 3, 15), 1),
            (Days{20230615}));
}

TEST_F(OlderEnumeration, LeavesTheBaseWhereItIsWithAnIntervalThatHasNoSlots) {
  EXPECT_EQ(days({.frequency = kMonthly, .interval = 1, .anchorIndex = 3}, day(2023, 3, 15), 1),
            (Days{20230415}));
  EXPECT_EQ(days({.frequency = kMonthly, .interval = 0, .anchorIndex = 3}, day(2023, 3, 15), 1),
            (Days{20230315}));
  EXPECT_EQ(days({.frequency = kMonthly, .interval = -2, .anchorIndex = 3}, day(2023, 3, 15), 2),
            (Days{20230115, 20221115}));
}

TEST_F(OlderEnumeration, StandsStillWithAnIntervalOfZero) {
  EXPECT_EQ(days({.frequency = kDaily, .interval = 0}, day(2023, 3, 15), 3),
            (Days{20230315, 20230315, 20230315}));
}

TEST_F(OlderEnumeration, LooksBackFromEachStepForItsPatterns) {
  EXPECT_EQ(days({.frequency = kMonthly, .anchorIndex = 1, .daysOfTheMonth = {{15}}},
                 day(2023, 1, 20), 2),
            (Days{20230215, 20230315}));
}

TEST_F(OlderEnumeration, PicksDatesByPosition) {
  const auto last =
      days({.frequency = kMonthly, .daysOfTheMonth = {{5, 15}}, .setPositions = {{-1}}},
           day(2023, 1, 20), 3);
  EXPECT_EQ(last, (Days{20230215, 20230315, 20230415}));
  const auto first =
      days({.frequency = kMonthly, .daysOfTheMonth = {{5, 15}}, .setPositions = {{1}}},
           day(2023, 1, 20), 3);
  EXPECT_EQ(first, (Days{20230205, 20230305, 20230405}));
}

TEST_F(OlderEnumeration, PicksTheOneDateOfAPeriodWithoutPatterns) {
  for (const NSInteger position : {1, -1}) {
    EXPECT_EQ(days({.frequency = kMonthly, .setPositions = {{7, position}}}, day(2023, 1, 20), 2),
              (Days{20230220, 20230320}));
  }
}

TEST_F(OlderEnumeration, GivesThePeriodsLastDateFirstBackward) {
  EXPECT_EQ(days({.frequency = kMonthly, .daysOfTheMonth = {{5, 15}}}, day(2023, 1, 20), 4, true),
            (Days{20230115, 20230105, 20221215, 20221205}));
}

TEST_F(OlderEnumeration, CountsAnAbsoluteRuleFromItsCanonicalReferenceDate) {
  const Rule::Recurrence fields{
      .frequency = kMonthly, .interval = 3, .anchorIndex = 3, .absolute = true};
  const NSDate reference = day(2023, 5, 17);
  const auto canonical =
      Rule::ruleWithFields(fields)->canonicalReferenceDateForDate(reference, *calendar_);
  ASSERT_NE(canonical, reference);
  EXPECT_EQ(days(fields, reference, 1, true), daysOf({canonical.value()}, *calendar_));
}

TEST_F(OlderEnumeration, GivesEqualDatesOfSeveralPatternsTwice) {
  EXPECT_EQ(days({.frequency = kMonthly, .daysOfTheMonth = {{5, 5}}}, day(2023, 1, 20), 2),
            (Days{20230205, 20230205}));
}

TEST_F(OlderEnumeration, StepsAQuarterlyRuleWithPatternsByYears) {
  EXPECT_EQ(days({.frequency = kQuarterly, .monthsOfTheYear = {{1}}}, day(2023, 1, 20), 5),
            (Days{20230401, 20230701, 20231001, 20240120, 20240401}));
}

TEST_F(OlderEnumeration, StopsWithAPeriodWithoutADate) {
  EXPECT_TRUE(days({.frequency = kMonthly, .daysOfTheMonth = {{32}}}, day(2023, 1, 20), 5).empty());
}

TEST_F(OlderEnumeration, CallsTheBlockAgainAfterItsStopWhereAnEndAnswersOtherwise) {
  Days seen;
  Rule::ruleWithFields({.frequency = kMonthly, .daysOfTheMonth = {{5, 10, 15}}})
      ->enumerateDatesForCalendarRefernceDate(
          {.calendar = *calendar_,
           .refernceDate = day(2023, 1, 20),
           .end = ORLFDateRecurrenceEnd::initEndWithOccurrenceCount(99)},
          [&](NSDate date, NSUInteger, bool& stop) {
            seen.push_back(daysOf({date}, *calendar_).front());
            stop = true;
          });
  EXPECT_EQ(seen, (Days{20230205, 20230210, 20230215}));
  // Without an end the first stop holds.
  EXPECT_EQ(days({.frequency = kMonthly, .daysOfTheMonth = {{5, 10, 15}}}, day(2023, 1, 20), 1),
            (Days{20230205}));
}

struct PositionCase {
  const char* name;
  Rule::Recurrence fields;
};

TEST_F(OlderEnumeration, EndsAtOnceWhenNoPositionEverPicksADate) {
  const PositionCase cases[] = {
      {"BeyondTheOneDateOfAPeriod", {.frequency = kDaily, .setPositions = {{2}}}},
      {"FarBeyondIt", {.frequency = kMonthly, .setPositions = {{366, -366}}}},
      {"StandingStill", {.frequency = kMonthly, .interval = 0, .setPositions = {{9}}}},
      {"Zero", {.frequency = kMonthly, .daysOfTheMonth = {{1, 2}}, .setPositions = {{0}}}},
      {"BeyondTheEnds",
       {.frequency = kMonthly, .daysOfTheMonth = {{1, 2}}, .setPositions = {{3, -3}}}},
      {"OfPatternsThatNoYearMatches",
       {.frequency = kMonthly,
        .daysOfTheMonth = {{5, 32, 40}},
        .monthsOfTheYear = {{2}},
        .setPositions = {{2, -2}}}},
      {"TheSmallestAndTheLargest",
       {.frequency = kMonthly, .setPositions = {{NSIntegerMin, NSIntegerMax}}}},
  };
  for (const PositionCase& row : cases) {
    const double seconds = orlftest::processorSecondsOf([&] {
      EXPECT_TRUE(days(row.fields, day(2023, 1, 20), 5).empty()) << row.name;
      EXPECT_TRUE(days(row.fields, day(2023, 1, 20), 5, true).empty()) << row.name;
    });
    // Stepping through the calendar's cycle took 34 seconds.
    EXPECT_LT(seconds, 1) << row.name;
  }
}

TEST_F(OlderEnumeration, WalksWhereAPositionReachesTheDatesThatThereAre) {
  // The 32nd never comes, so that the two others are the first and the last.
  const Rule::Recurrence fields{.frequency = kMonthly, .daysOfTheMonth = {{5, 32, 10}}};
  const auto picked = [&](NSInteger position) {
    Rule::Recurrence positioned = fields;
    positioned.setPositions = {{position}};
    return days(positioned, day(2023, 1, 20), 2);
  };
  EXPECT_EQ(picked(1), (Days{20230205, 20230305}));
  EXPECT_EQ(picked(2), (Days{20230210, 20230310}));
  EXPECT_EQ(picked(-1), (Days{20230210, 20230310}));
  EXPECT_EQ(picked(-2), (Days{20230205, 20230305}));
  EXPECT_TRUE(picked(3).empty());
  // A day of the second month in eight years is found from wherever the walk begins.
  EXPECT_EQ(days({.frequency = kYearly,
                  .daysOfTheMonth = {{29}},
                  .monthsOfTheYear = {{2}},
                  .setPositions = {{1}}},
                 day(1900, 1, 20), 1),
            (Days{18960229}));
}

TEST_F(OlderEnumeration, EndsWhereItStandsStillBesideTheCalendarsBeginning) {
  // In the first January that searches reach, December lies ahead and never behind: the second of
  // two positions picks nothing, and the period never moves.
  const NSDate first =
      calendar_->dateByAddingUnit(NSCalendarUnitYear, -1'362'022, day(2023, 1, 15), 0).value();
  EXPECT_TRUE(days({.frequency = kMonthly,
                    .interval = 0,
                    .monthsOfTheYear = {{1, 12}},
                    .setPositions = {{2}}},
                   first, 5)
                  .empty());
}

TEST_F(OlderEnumeration, CountsPatternsThatAreMatchedOnOneSideOnly) {
  // There December lies ahead alone, and the January after it has one behind.
  const NSDate first =
      calendar_->dateByAddingUnit(NSCalendarUnitYear, -1'362'022, day(2023, 1, 15), 0).value();
  EXPECT_EQ(
      days({.frequency = kYearly, .monthsOfTheYear = {{1, 12}}, .setPositions = {{2}}}, first, 1)
          .size(),
      1U);
  // In the last December that searches reach, January lies behind alone.
  const NSDate last =
      calendar_->dateByAddingUnit(NSCalendarUnitYear, 1'357'976, day(2023, 12, 15), 0).value();
  EXPECT_EQ(
      days({.frequency = kYearly, .monthsOfTheYear = {{1}}, .setPositions = {{1}}}, last, 1, true)
          .size(),
      1U);
}

TEST_F(OlderEnumeration, PassesOverWeekdaysAndNumbersThatNoMonthHas) {
  EXPECT_EQ(days({.frequency = kMonthly, .daysOfTheWeek = weekdays({{0, 1}, {2, 6}, {2, 1}})},
                 day(2023, 1, 20), 2),
            (Days{20230206, 20230306}));
  EXPECT_TRUE(
      days({.frequency = kMonthly, .daysOfTheWeek = weekdays({{0, 1}})}, day(2023, 1, 20), 2)
          .empty());
  EXPECT_TRUE(
      days({.frequency = kMonthly, .daysOfTheWeek = weekdays({{2, 6}})}, day(2023, 1, 20), 2)
          .empty());
}

TEST_F(OlderEnumeration, EndsWhereTheCalendarEndsAndWithoutADate) {
  EXPECT_TRUE(
      days({.frequency = kYearly, .interval = NSIntegerMax, .anchorIndex = 1}, day(2023, 1, 20), 5)
          .empty());
  EXPECT_TRUE(
      days({.frequency = kMonthly, .interval = 5, .anchorIndex = NSIntegerMin}, day(2023, 1, 20), 5)
          .empty());
  // Its base is the reference date, and the months of its first step are more than a number holds.
  EXPECT_TRUE(days({.frequency = kQuarterly, .interval = NSIntegerMax, .anchorIndex = NSIntegerMax},
                   day(2023, 1, 20), 5)
                  .empty());
  const NSDate never =
      NSDate::dateWithTimeIntervalSinceReferenceDate(std::numeric_limits<double>::quiet_NaN());
  EXPECT_TRUE(days({.frequency = kMonthly}, never, 5).empty());
  bool called = false;
  Rule(kMonthly, 1)
      .enumerateDatesForCalendarRefernceDate(
          {.calendar = *calendar_, .refernceDate = std::nullopt},
          [&](NSDate, NSUInteger, bool& stop) { called = stop = true; });
  EXPECT_FALSE(called);
}

// ---------------------------------------------------------------- anchors

TEST_F(OlderEnumeration, CountsAbsolutePhasesFromTheFirstOfJanuary2012) {
  EXPECT_EQ(Rule::universalAnchorDateInCalendar(*calendar_), at(*calendar_, 2012, 1, 1));
}

struct SlotCase {
  const char* name;
  ORLFDateRecurrenceFrequency frequency;
  NSInteger interval;
  int year, month, day;
  NSInteger slot;
};
constexpr SlotCase kSlots[] = {
    {"FirstMonth", kMonthly, 2, 2012, 1, 1, 1},
    {"SecondMonth", kMonthly, 2, 2012, 2, 1, 2},
    {"ThirdMonthIsTheFirstSlotAgain", kMonthly, 2, 2012, 3, 1, 1},
    {"QuarterlySlotsAreMonths", kQuarterly, 1, 2012, 2, 1, 2},
    {"Days", kDaily, 7, 2012, 1, 9, 2},
    {"Weeks", kWeekly, 3, 2012, 1, 16, 3},
    {"Years", kYearly, 5, 2018, 6, 1, 2},
    {"WholeMonthsBeforeTheAnchor", kMonthly, 3, 2011, 12, 1, 2},
    {"DaysBeforeTheAnchorAreAMonthMore", kMonthly, 3, 2011, 11, 15, 3},
    {"AnyOtherFrequencyIsInTheFirst", static_cast<ORLFDateRecurrenceFrequency>(32), 3, 2015, 1, 2,
     1},
    {"IntervalZero", kMonthly, 0, 2015, 1, 1, 1},
};

TEST_F(OlderEnumeration, FindsTheSlotOfADate) {
  for (const SlotCase& row : kSlots)
    EXPECT_EQ(
        Rule::anchorIndexForAbsoluteRecurrenceWithFrequency(
            row.frequency, row.interval, at(*calendar_, row.year, row.month, row.day), *calendar_),
        row.slot)
        << row.name;
}

TEST_F(OlderEnumeration, TakesTheStartOfTheDayForTheReferenceOfARuleWithoutAPhase) {
  const NSDate date = day(2023, 5, 17);
  const NSDate start = at(*calendar_, 2023, 5, 17);
  EXPECT_EQ(Rule(kMonthly, 3).canonicalReferenceDateForDate(date, *calendar_), start);
  const auto every = Rule::ruleWithFields({.frequency = kMonthly, .absolute = true});
  EXPECT_EQ(every->canonicalReferenceDateForDate(date, *calendar_), start);
  const auto zero = Rule::ruleWithFields({.frequency = kMonthly, .interval = 0, .absolute = true});
  EXPECT_EQ(zero->canonicalReferenceDateForDate(date, *calendar_), start);
}

TEST_F(OlderEnumeration, TakesTheCurrentInstantForANilDate) {
  const NSDate now = day(2023, 5, 17);
  const Replaced clock(NSDate::setClock, [now] { return now; });
  EXPECT_EQ(Rule(kMonthly, 1).canonicalReferenceDateForDate(std::nullopt, *calendar_),
            at(*calendar_, 2023, 5, 17));
  EXPECT_EQ(Rule(kMonthly, 1).boundingDatesForReferenceDate(std::nullopt, *calendar_),
            (std::vector<NSDate>{now, day(2023, 6, 17)}));
}

TEST_F(OlderEnumeration, TakesTheSpansLastUnitForAnAbsoluteRuleWithoutPatterns) {
  const auto rule = Rule::ruleWithFields({.frequency = kMonthly, .interval = 3, .absolute = true});
  EXPECT_EQ(rule->canonicalReferenceDateForDate(day(2023, 5, 17), *calendar_),
            at(*calendar_, 2023, 7, 17));
}

TEST_F(OlderEnumeration, MovesAnAbsoluteRuleLessThanItsSpanOn) {
  for (const auto frequency : {kDaily, kWeekly, kMonthly, kQuarterly, kYearly}) {
    for (NSInteger interval = 2; interval < 7; ++interval) {
      const auto rule = Rule::ruleWithFields({.frequency = frequency,
                                              .interval = interval,
                                              .absolute = true,
                                              .daysOfTheMonth = {{10}}});
      const NSInteger units = frequency == kQuarterly ? 12 : 1;
      const auto unit =
          frequency == kQuarterly ? NSCalendarUnitMonth : static_cast<NSCalendarUnit>(frequency);
      for (int month = 1; month <= 12; ++month) {
        const NSDate start = at(*calendar_, 2023, month, 3);
        const auto moved = rule->canonicalReferenceDateForDate(start, *calendar_).value();
        EXPECT_GE(moved.timeIntervalSinceDate(start), 0);
        const NSInteger gone = calendar_->components(unit, start, moved, 0).valueForComponent(unit);
        EXPECT_LT(gone, interval * units);
      }
    }
  }
}

TEST_F(OlderEnumeration, BoundsADateByItselfAndTheNext) {
  const Rule rule(kMonthly, 1);
  EXPECT_EQ(rule.boundingDatesForReferenceDate(day(2023, 1, 31), *calendar_),
            (std::vector<NSDate>{day(2023, 1, 31), day(2023, 2, 28)}));
}

TEST_F(OlderEnumeration, BeginsAnAbsoluteQuarterlyRulesSpanByTwelveMonthsEach) {
  const auto rule = Rule::ruleWithFields(
      {.frequency = kQuarterly, .interval = 2, .absolute = true, .daysOfTheMonth = {{1}}});
  EXPECT_EQ(rule->canonicalReferenceDateForDate(day(2011, 3, 15), *calendar_),
            at(*calendar_, 2013, 2, 15));
}

TEST_F(OlderEnumeration, BoundsNothingWhereTheCalendarHasOneSideOnly) {
  // The date before is the date itself, the next one lies beyond the calendar.
  const Rule rule(kYearly, NSIntegerMax);
  EXPECT_EQ(days({.frequency = kYearly, .interval = NSIntegerMax, .anchorIndex = NSIntegerMax},
                 day(2023, 1, 31), 1, true),
            (Days{20230131}));
  EXPECT_TRUE(rule.boundingDatesForReferenceDate(day(2023, 1, 31), *calendar_).empty());
}

TEST_F(OlderEnumeration, BoundsNothingWhereBothSidesAreMissing) {
  const auto rule = Rule::ruleWithFields({.frequency = kMonthly, .daysOfTheMonth = {{32}}});
  EXPECT_TRUE(rule->boundingDatesForReferenceDate(day(2023, 1, 31), *calendar_).empty());
}

}  // namespace
}  // namespace ORLFoundation
