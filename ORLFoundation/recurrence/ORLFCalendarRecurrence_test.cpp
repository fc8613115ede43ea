// The queries of a calendar about a rule.

#include <ORLFoundation/recurrence/ORLFCalendarRecurrence.h>

#include <ORLFoundation/recurrence/ORLFDateRecurrence_testing.h>
#include <gtest/gtest.h>

#include <limits>

namespace ORLFoundation {
namespace {

using namespace orlftest;

class CalendarRecurrence : public testing::Test {
 protected:
  const std::shared_ptr<NSCalendar> calendar_ = calendarIn("America/New_York");
  const Rule monthly_{kMonthly, 1};

  [[nodiscard]] NSDate day(int year, int month, int dayOfMonth) const {
    return at(*calendar_, year, month, dayOfMonth, 9, 30);
  }
  [[nodiscard]] Days range(const Rule& rule, NSDate from, NSDate to,
                           std::optional<NSDate> reference, bool inclusive = false) const {
    return daysOf(datesForRecurrenceRule(*calendar_, {.recurrenceRule = rule,
                                                      .fromDate = from,
                                                      .toDate = to,
                                                      .referenceDate = reference,
                                                      .inclusive = inclusive}),
                  *calendar_);
  }
  [[nodiscard]] Days walk(const Rule& rule, NSDate start, bool backwards,
                          std::optional<NSDate> reference, std::size_t most,
                          NSUInteger* firstCount = nullptr) const {
    std::vector<NSDate> dates;
    enumerateDatesUsingRecurrenceRule(*calendar_,
                                      {.recurrenceRule = rule,
                                       .startDate = start,
                                       .backwards = backwards,
                                       .referenceDate = reference},
                                      [&](NSDate date, NSUInteger count, bool& stop) {
                                        if (dates.empty() && firstCount) *firstCount = count;
                                        dates.push_back(date);
                                        stop = dates.size() >= most;
                                      });
    return daysOf(dates, *calendar_);
  }
};

TEST_F(CalendarRecurrence, HasNoDatesInAnEmptyRange) {
  const NSDate date = day(2023, 1, 31);
  EXPECT_TRUE(range(monthly_, date, date, std::nullopt).empty());
  EXPECT_EQ(range(monthly_, date, date, std::nullopt, true), (Days{20230131}));
  EXPECT_TRUE(range(monthly_, day(2023, 2, 1), date, std::nullopt, true).empty());
}

TEST_F(CalendarRecurrence, IncludesTheFirstDateAndTheLastOnlyWhenInclusive) {
  EXPECT_EQ(range(monthly_, day(2023, 1, 15), day(2023, 3, 15), std::nullopt),
            (Days{20230115, 20230215}));
  EXPECT_EQ(range(monthly_, day(2023, 1, 15), day(2023, 3, 15), std::nullopt, true),
            (Days{20230115, 20230215, 20230315}));
}

TEST_F(CalendarRecurrence, ClampsMonthEndsFromAnEarlierReferenceDate) {
  EXPECT_EQ(
      range(monthly_, at(*calendar_, 2023, 4, 1), at(*calendar_, 2023, 7, 1), day(2023, 1, 31)),
      (Days{20230430, 20230531, 20230630}));
}

TEST_F(CalendarRecurrence, BeginsALaterReferencesSeriesInAMonthThatHoldsItsDay) {
  // From 31 March back by the exact pattern: 31 January is in the range, 31 December before it.
  EXPECT_EQ(
      range(monthly_, at(*calendar_, 2023, 1, 1), at(*calendar_, 2023, 5, 1), day(2023, 3, 31)),
      (Days{20230131, 20230228, 20230331, 20230430}));
  // Before February the pattern is met in January, from which the walk clamps.
  EXPECT_EQ(
      range(monthly_, at(*calendar_, 2023, 2, 1), at(*calendar_, 2023, 4, 1), day(2023, 3, 31)),
      (Days{20230228, 20230331}));
}

TEST_F(CalendarRecurrence, FindsTheDateBeforeADate) {
  const NSDate start = day(2023, 1, 15);
  const auto before = [&](NSDate date, NSUInteger count, std::optional<NSDate> reference) {
    return dateBeforeDate(*calendar_, date, monthly_, count, reference);
  };
  EXPECT_EQ(before(day(2023, 5, 15), 1, start), day(2023, 4, 15));
  EXPECT_EQ(before(day(2023, 5, 15), 0, start), day(2023, 4, 15));
  EXPECT_EQ(before(day(2023, 5, 16), 1, start), day(2023, 5, 15));
  EXPECT_EQ(before(day(2023, 5, 15), 3, start), day(2023, 2, 15));
  EXPECT_EQ(before(day(2023, 5, 15), 2, std::nullopt), day(2023, 3, 15));
  EXPECT_EQ(before(day(2023, 5, 20), 1, day(2023, 8, 15)), day(2023, 5, 15));
}

TEST_F(CalendarRecurrence, FindsTheDateAfterADate) {
  const NSDate start = day(2023, 1, 15);
  const auto after = [&](NSDate date, NSUInteger count, std::optional<NSDate> reference) {
    return dateAfterDate(*calendar_, date, monthly_, count, reference);
  };
  EXPECT_EQ(after(day(2023, 5, 15), 0, start), day(2023, 5, 15));
  EXPECT_EQ(after(day(2023, 5, 15), 1, start), day(2023, 6, 15));
  EXPECT_EQ(after(day(2023, 5, 16), 0, start), day(2023, 6, 15));
  EXPECT_EQ(after(day(2023, 5, 16), 3, start), day(2023, 8, 15));
  EXPECT_EQ(after(day(2022, 5, 16), 1, start), day(2022, 6, 15));
}

TEST_F(CalendarRecurrence, TakesTheExactFlagForTheMainWalkOnly) {
  const NSDate start = day(2023, 1, 31);
  const NSDate date = day(2023, 4, 1);
  EXPECT_EQ(dateAfterDate(*calendar_, {.date = date,
                                       .usingRecurrenceRule = monthly_,
                                       .referenceDate = start,
                                       .exactMatch = true}),
            day(2023, 5, 31));
  EXPECT_EQ(dateAfterDate(*calendar_,
                          {.date = date, .usingRecurrenceRule = monthly_, .referenceDate = start}),
            day(2023, 4, 30));
  EXPECT_EQ(dateBeforeDate(*calendar_, {.date = day(2023, 5, 1),
                                        .usingRecurrenceRule = monthly_,
                                        .referenceDate = start,
                                        .exactPatternMatch = true}),
            day(2023, 3, 31));
  EXPECT_EQ(dateBeforeDate(
                *calendar_,
                {.date = day(2023, 5, 1), .usingRecurrenceRule = monthly_, .referenceDate = start}),
            day(2023, 4, 30));
}

TEST_F(CalendarRecurrence, GivesTheLastDateOfASeriesThatEndsAndNilOfOneThatNeverBegins) {
  const Rule never(
      Rule::Recurrence{.frequency = kYearly, .daysOfTheMonth = {{30}}, .monthsOfTheYear = {{2}}});
  EXPECT_EQ(dateAfterDate(*calendar_, day(2023, 1, 1), never, 1, std::nullopt), std::nullopt);
  EXPECT_EQ(dateBeforeDate(*calendar_, day(2023, 1, 1), never, 1, std::nullopt), std::nullopt);
}

TEST_F(CalendarRecurrence, IncludesDatesToTheSecond) {
  const NSDate start = day(2023, 1, 15);
  const auto includes = [&](NSDate date, std::optional<NSDate> reference) {
    return recurrenceRuleIncludesDate(*calendar_, monthly_, date, reference);
  };
  EXPECT_TRUE(includes(day(2023, 6, 15), start));
  EXPECT_TRUE(includes(day(2022, 6, 15), start));
  EXPECT_FALSE(includes(day(2023, 6, 16), start));
  EXPECT_FALSE(includes(day(2023, 6, 15).dateByAddingTimeInterval(60), start));
  EXPECT_FALSE(includes(day(2023, 6, 15).dateByAddingTimeInterval(0x1p-20), start));
  EXPECT_TRUE(includes(day(2023, 6, 16), std::nullopt));
}

TEST_F(CalendarRecurrence, IncludesDatesThatClampFromTheReferenceDateInEitherDirection) {
  // Both walks clamp: by the exact pattern February would have no date.
  EXPECT_TRUE(recurrenceRuleIncludesDate(*calendar_, monthly_, day(2023, 2, 28), day(2023, 1, 31)));
  EXPECT_TRUE(recurrenceRuleIncludesDate(*calendar_, monthly_, day(2023, 2, 28), day(2023, 3, 31)));
  EXPECT_FALSE(
      recurrenceRuleIncludesDate(*calendar_, monthly_, day(2023, 2, 27), day(2023, 3, 31)));
}

TEST_F(CalendarRecurrence, AnswersARuleWithAnIntervalOfZeroByItsReferenceDateAlone) {
  const Rule still(kMonthly, 0);
  const NSDate date = day(2023, 1, 31);
  EXPECT_EQ(range(still, date, date, date, true), (Days{20230131}));
  EXPECT_TRUE(recurrenceRuleIncludesDate(*calendar_, still, date, date));
  EXPECT_EQ(dateAfterDate(*calendar_, date, still, 0, date), date);
  EXPECT_EQ(walk(still, date, false, date, 3), (Days{20230131, 20230131, 20230131}));
}

TEST_F(CalendarRecurrence, FindsNothingByARuleWithListsAndAnIntervalOfZero) {
  const Rule still(
      Rule::Recurrence{.frequency = kMonthly, .interval = 0, .daysOfTheMonth = {{31}}});
  const NSDate date = day(2023, 1, 31);
  EXPECT_TRUE(range(still, date, day(2024, 1, 1), date).empty());
  EXPECT_FALSE(recurrenceRuleIncludesDate(*calendar_, still, date, date));
  EXPECT_EQ(dateAfterDate(*calendar_, date, still, 1, date), std::nullopt);
  EXPECT_EQ(dateBeforeDate(*calendar_, date, still, 1, date), std::nullopt);
  EXPECT_TRUE(walk(still, date, false, date, 3).empty());
}

TEST_F(CalendarRecurrence, WalksFromTheStartWithoutAReferenceDate) {
  NSUInteger firstCount = 0;
  EXPECT_EQ(walk(monthly_, day(2023, 1, 31), false, std::nullopt, 2, &firstCount),
            (Days{20230131, 20230228}));
  EXPECT_EQ(firstCount, 1U);
}

TEST_F(CalendarRecurrence, WalksFromAReferenceDateBeforeTheStart) {
  EXPECT_EQ(walk(monthly_, day(2023, 4, 10), false, day(2023, 1, 15), 3),
            (Days{20230115, 20230215, 20230315}));
  EXPECT_EQ(walk(monthly_, day(2023, 4, 10), true, day(2023, 6, 15), 3),
            (Days{20230615, 20230515, 20230415}));
}

TEST_F(CalendarRecurrence, WalksFromTheDateJustBeforeTheStartWithALaterReferenceDate) {
  EXPECT_EQ(walk(monthly_, day(2023, 4, 10), false, day(2023, 6, 15), 3),
            (Days{20230315, 20230415, 20230515}));
  EXPECT_EQ(walk(monthly_, day(2023, 4, 10), true, day(2023, 1, 15), 3),
            (Days{20230415, 20230315, 20230215}));
}

TEST_F(CalendarRecurrence, FindsTheStartBesideALaterReferenceDateByTheExactPattern) {
  // Without the exact pattern these would begin at 30 April and at 30 April.
  EXPECT_EQ(walk(monthly_, day(2023, 5, 10), false, day(2023, 5, 31), 1), (Days{20230331}));
  EXPECT_EQ(walk(monthly_, day(2023, 4, 10), true, day(2023, 1, 31), 1), (Days{20230531}));
}

TEST_F(CalendarRecurrence, WalksNowhereWhereTheSeriesHasNoDate) {
  const Rule never(
      Rule::Recurrence{.frequency = kYearly, .daysOfTheMonth = {{30}}, .monthsOfTheYear = {{2}}});
  EXPECT_TRUE(walk(never, day(2023, 4, 10), false, day(2023, 6, 15), 3).empty());
}

TEST_F(CalendarRecurrence, AnswersForDatesThatNoCalendarPlaces) {
  const NSDate never =
      NSDate::dateWithTimeIntervalSinceReferenceDate(std::numeric_limits<double>::quiet_NaN());
  const NSDate now = day(2023, 4, 10);
  EXPECT_FALSE(recurrenceRuleIncludesDate(*calendar_, monthly_, never, now));
  EXPECT_LE(range(monthly_, never, now, now).size(), 1U);
  EXPECT_FALSE(recurrenceRuleIncludesDate(*calendar_, monthly_, now, never));
  EXPECT_EQ(dateAfterDate(*calendar_, now, Rule(kWeekly, NSIntegerMax), 2, std::nullopt), now);
}

// Every date of a range is a date of the rule, the next after the one before it, and the previous
// before the one after it.
TEST_F(CalendarRecurrence, AgreesWithItselfOverTenYears) {
  const std::vector<std::shared_ptr<ORLFDateRecurrenceDayOfWeek>> tuesday = {
      std::make_shared<ORLFDateRecurrenceDayOfWeek>(3, 2)};
  const Rule rules[] = {
      Rule(Rule::Recurrence{.frequency = kMonthly, .daysOfTheMonth = {{1, 31}}}),
      Rule(Rule::Recurrence{.frequency = kMonthly, .daysOfTheWeek = {tuesday}}),
      Rule(Rule::Recurrence{.frequency = kMonthly, .interval = 3, .daysOfTheMonth = {{15}}})};
  const NSDate reference = day(2018, 1, 1);
  for (const Rule& rule : rules) {
    const auto dates = datesForRecurrenceRule(*calendar_, {.recurrenceRule = rule,
                                                           .fromDate = reference,
                                                           .toDate = day(2028, 1, 1),
                                                           .referenceDate = reference});
    ASSERT_GT(dates.size(), 20U);
    for (std::size_t index = 1; index < dates.size(); index += 7) {
      const NSDate date = dates[index];
      EXPECT_TRUE(recurrenceRuleIncludesDate(*calendar_, rule, date, reference));
      EXPECT_EQ(dateAfterDate(*calendar_, dates[index - 1], rule, 1, reference), date);
      EXPECT_EQ(dateBeforeDate(*calendar_, date, rule, 1, reference), dates[index - 1]);
      EXPECT_EQ(dateAfterDate(*calendar_, date, rule, 0, reference), date);
    }
  }
}

}  // namespace
}  // namespace ORLFoundation
