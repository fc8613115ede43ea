
#include <ORLFoundation/amortization/ORLFPaymentSchedules.h>

#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceDayOfWeek.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>
#include <gtest/gtest.h>

#include <cmath>

namespace ORLFoundation {
namespace {

using orlftest::Json;
using Number = std::optional<NSInteger>;

// A schedule as one text: "8192/2 absolute anchor 2 week 6/0".
std::string listText(const char* name, const ORLFDateRecurrenceRule::Integers& values) {
  std::string text;
  if (!values) return text;
  for (const NSInteger value : *values)
    text += (text.empty() ? std::string(" ") + name + " " : ",") + std::to_string(value);
  return text;
}
std::string fieldsText(const ORLFPaymentSchedule& rule) {
  std::string text = std::to_string(rule->frequency()) + "/" + std::to_string(rule->interval()) +
                     (rule->absolute() ? " absolute" : "") + " anchor " +
                     std::to_string(rule->anchorIndex());
  if (rule->daysOfTheWeek()) {
    for (const auto& day : *rule->daysOfTheWeek())
      text +=
          " week " + std::to_string(day->dayOfTheWeek()) + "/" + std::to_string(day->weekNumber());
  }
  return text + listText("days", rule->daysOfTheMonth()) +
         listText("months", rule->monthsOfTheYear()) + listText("weeks", rule->weeksOfTheYear()) +
         listText("yeardays", rule->daysOfTheYear()) + listText("places", rule->setPositions());
}

struct ScheduleCase {
  const char* name;
  ORLFPaymentSchedule schedule;
  const char* fields;
  NSUInteger paymentsPerYear;
};

// An anchor of 0 is the last slot, the interval.
TEST(PaymentSchedules, FromDayNumbersMatchTable) {
  constexpr auto kNil = std::nullopt;
  const ScheduleCase cases[] = {
      {"Weekly", scheduleForWeeklyPayments(2), "8192/1 anchor 1 week 2/0", 52},
      {"WeeklyByDefault", scheduleForWeeklyPayments(kNil), "8192/1 anchor 1 week 6/0", 52},
      {"Biweekly", scheduleForBiweeklyPayments(1), "8192/2 absolute anchor 2 week 1/0", 26},
      {"BiweeklyByDefault", scheduleForBiweeklyPayments(kNil), "8192/2 absolute anchor 2 week 6/0",
       26},
      {"SemiMonthly", scheduleForSemiMonthlyPayments(5, 20), "8/1 anchor 1 days 5,20", 24},
      {"SemiMonthlyByDefault", scheduleForSemiMonthlyPayments(kNil, kNil), "8/1 anchor 1 days 1,15",
       24},
      {"SemiMonthlySecondAlone", scheduleForSemiMonthlyPayments(kNil, 3), "8/1 anchor 1 days 1,3",
       24},
      {"SemiMonthlyOutOfRange", scheduleForSemiMonthlyPayments(0, kNil), "8/1 anchor 1 days 0,-1",
       24},
      {"Monthly", scheduleForMonthlyPayments(31), "8/1 anchor 1 days 31", 12},
      {"MonthlyByDefault", scheduleForMonthlyPayments(kNil), "8/1 anchor 1 days 1", 12},
      {"MonthlyOutOfRange", scheduleForMonthlyPayments(40), "8/1 anchor 1 days 40", 12},
      {"LastDayOfMonth", scheduleForLastDayOfMonth(), "8/1 anchor 1 week -1/-1", 12},
      {"Quarterly", scheduleForQuarterlyPayments(), "2048/1 anchor 1", 4},
      {"SemiAnnualDays", scheduleForSemiAnnualPayments(10, 200), "4/1 anchor 1 yeardays 10,200", 2},
      {"SemiAnnualDaysByDefault", scheduleForSemiAnnualPayments(kNil, kNil),
       "4/1 anchor 1 yeardays 1,183", 2},
      {"SemiAnnualMonths", scheduleForSemiAnnualPayments(15, 2, 11),
       "4/1 anchor 1 days 15 months 2,11", 2},
      {"SemiAnnualMonthsByDefault", scheduleForSemiAnnualPayments(kNil, kNil, kNil),
       "4/1 anchor 1 days 1 months 1,7", 2},
      {"Annual", scheduleForAnnualPayments(4, 15), "4/1 anchor 1 days 15 months 4", 1},
      {"AnnualByDefault", scheduleForAnnualPayments(kNil, kNil), "4/1 anchor 1 days 1 months 1", 1},
  };
  for (const ScheduleCase& row : cases) {
    EXPECT_EQ(fieldsText(row.schedule), row.fields) << row.name;
    EXPECT_EQ(numberOfPaymentPeriodsPerYear(*row.schedule), row.paymentsPerYear) << row.name;
  }
}

TEST(PaymentSchedules, ThatIncludeADateMatchTable) {
  const auto calendar =
      orlftest::calendarFromVector(Json{{"zone", "UTC"}, {"first_weekday", 1}, {"min_days", 1}});
  const NSDate may = *orlftest::dateFromVector("2024-05-15T00:00:00Z");    // a Wednesday
  const NSDate later = *orlftest::dateFromVector("2024-05-22T00:00:00Z");  // a week on
  const NSDate december = *orlftest::dateFromVector("2024-12-30T00:00:00Z");
  const ScheduleCase cases[] = {
      {"Weekly", absoluteScheduleForWeeklyPaymentsIncludingDate(may, *calendar),
       "8192/1 absolute anchor 1 week 4/0", 52},
      {"Biweekly", absoluteScheduleForBiweeklyPaymentsIncludingDate(may, *calendar),
       "8192/2 absolute anchor 2 week 4/0", 26},
      {"BiweeklyInTheOtherSlot", absoluteScheduleForBiweeklyPaymentsIncludingDate(later, *calendar),
       "8192/2 absolute anchor 1 week 4/0", 26},
      {"Monthly", absoluteScheduleForMonthlyPaymentsIncludingDate(may, *calendar),
       "8/1 absolute anchor 1 days 15", 12},
      {"SemiMonthly", absoluteScheduleForSemiMonthlyPaymentsIncludingDate(may, december, *calendar),
       "8/1 anchor 1 days 15,30", 24},
      {"Quarterly", absoluteScheduleForQuarterlyPaymentsIncludingDate(may, *calendar),
       "2048/1 anchor 1 days 15 months 2", 4},
      {"QuarterlyInDecember",
       absoluteScheduleForQuarterlyPaymentsIncludingDate(december, *calendar),
       "2048/1 anchor 1 days 30 months 0", 4},
      {"SemiAnnual", absoluteScheduleForSemiAnnualPaymentsIncludingDate(december, may, *calendar),
       "4/1 anchor 1 days 30 months 12,5", 2},
      {"SemiAnnualAlone",
       absoluteScheduleForSemiAnnualPaymentsIncludingDate(may, std::nullopt, *calendar),
       "4/1 anchor 1 days 15 months 5,11", 2},
      {"SemiAnnualAloneInDecember",
       absoluteScheduleForSemiAnnualPaymentsIncludingDate(december, std::nullopt, *calendar),
       "4/1 anchor 1 days 30 months 12,6", 2},
      {"Annual", absoluteScheduleForAnnualPaymentsIncludingDate(december, *calendar),
       "4/1 anchor 1 days 30 months 12", 1},
  };
  for (const ScheduleCase& row : cases) {
    EXPECT_EQ(fieldsText(row.schedule), row.fields) << row.name;
    EXPECT_EQ(numberOfPaymentPeriodsPerYear(*row.schedule), row.paymentsPerYear) << row.name;
  }
}

std::vector<NSInteger> semiMonthly(Number first, Number second) {
  return *scheduleForSemiMonthlyPayments(first, second)->daysOfTheMonth();
}
std::vector<NSInteger> semiAnnualDays(Number first, Number second) {
  return *scheduleForSemiAnnualPayments(first, second)->daysOfTheYear();
}
std::vector<NSInteger> semiAnnualMonths(Number day, Number first, Number second) {
  return *scheduleForSemiAnnualPayments(day, first, second)->monthsOfTheYear();
}
using Values = std::vector<NSInteger>;

TEST(PaymentSchedules, WeekdaysOutsideTheWeekGiveNone) {
  EXPECT_EQ(scheduleForWeeklyPayments(std::nullopt)->daysOfTheWeek()->front()->dayOfTheWeek(), 6);
  for (const NSInteger day : {0, 8, -1}) {
    EXPECT_FALSE(scheduleForWeeklyPayments(day));
    EXPECT_FALSE(scheduleForBiweeklyPayments(day));
  }
}

TEST(PaymentSchedules, SecondPaymentsFollowTheFirst) {
  EXPECT_EQ(semiMonthly(1, std::nullopt), (Values{1, 15}));
  EXPECT_EQ(semiMonthly(15, std::nullopt), (Values{15, 29}));
  EXPECT_EQ(semiMonthly(17, std::nullopt), (Values{17, 31}));
  EXPECT_EQ(semiMonthly(18, std::nullopt), (Values{18, -1}));
  EXPECT_EQ(semiMonthly(std::nullopt, std::nullopt), (Values{1, 15}));
  EXPECT_EQ(semiMonthly(5, 20), (Values{5, 20}));
  EXPECT_EQ(semiAnnualDays(183, std::nullopt), (Values{183, 365}));
  EXPECT_EQ(semiAnnualDays(184, std::nullopt), (Values{184, -1}));
  EXPECT_EQ(semiAnnualMonths(15, 6, std::nullopt), (Values{6, 12}));
  EXPECT_EQ(semiAnnualMonths(15, 7, std::nullopt), (Values{7, 12}));
}

TEST(PaymentSchedules, OnlyThreeOfTheDatedOnesAreAbsolute) {
  const auto calendar =
      orlftest::calendarFromVector(Json{{"zone", "UTC"}, {"first_weekday", 1}, {"min_days", 1}});
  const NSDate may = *orlftest::dateFromVector("2024-05-15T00:00:00Z");
  EXPECT_TRUE(absoluteScheduleForWeeklyPaymentsIncludingDate(may, *calendar)->absolute());
  EXPECT_TRUE(absoluteScheduleForBiweeklyPaymentsIncludingDate(may, *calendar)->absolute());
  EXPECT_TRUE(absoluteScheduleForMonthlyPaymentsIncludingDate(may, *calendar)->absolute());
  EXPECT_FALSE(
      absoluteScheduleForSemiMonthlyPaymentsIncludingDate(may, may, *calendar)->absolute());
  EXPECT_FALSE(absoluteScheduleForQuarterlyPaymentsIncludingDate(may, *calendar)->absolute());
  EXPECT_FALSE(absoluteScheduleForSemiAnnualPaymentsIncludingDate(may, may, *calendar)->absolute());
  EXPECT_FALSE(absoluteScheduleForAnnualPaymentsIncludingDate(may, *calendar)->absolute());
}

TEST(PaymentSchedules, OfDatesThatTheCalendarCannotPlaceAreNone) {
  const auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  const NSDate may = NSDate::dateWithTimeIntervalSince1970(1715000000);
  for (const double seconds : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1e300, -5e13}) {
    const NSDate far = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
    EXPECT_FALSE(absoluteScheduleForWeeklyPaymentsIncludingDate(far, *calendar)) << seconds;
    EXPECT_FALSE(absoluteScheduleForBiweeklyPaymentsIncludingDate(far, *calendar)) << seconds;
    EXPECT_FALSE(absoluteScheduleForMonthlyPaymentsIncludingDate(far, *calendar)) << seconds;
    EXPECT_FALSE(absoluteScheduleForSemiMonthlyPaymentsIncludingDate(far, may, *calendar));
    EXPECT_FALSE(absoluteScheduleForSemiMonthlyPaymentsIncludingDate(may, far, *calendar));
    EXPECT_FALSE(absoluteScheduleForQuarterlyPaymentsIncludingDate(far, *calendar)) << seconds;
    EXPECT_FALSE(absoluteScheduleForSemiAnnualPaymentsIncludingDate(far, std::nullopt, *calendar));
    EXPECT_FALSE(absoluteScheduleForSemiAnnualPaymentsIncludingDate(may, far, *calendar));
    EXPECT_FALSE(absoluteScheduleForAnnualPaymentsIncludingDate(far, *calendar)) << seconds;
  }
}

TEST(PaymentSchedules, MonthsOfQuartersAndHalvesMayBeZero) {
  const auto calendar =
      orlftest::calendarFromVector(Json{{"zone", "UTC"}, {"first_weekday", 1}, {"min_days", 1}});
  const NSDate may = *orlftest::dateFromVector("2024-05-15T00:00:00Z");
  const NSDate june = *orlftest::dateFromVector("2024-06-03T00:00:00Z");
  const auto quarterly = absoluteScheduleForQuarterlyPaymentsIncludingDate(may, *calendar);
  EXPECT_EQ(*quarterly->daysOfTheMonth(), Values{15});
  EXPECT_EQ(*quarterly->monthsOfTheYear(), Values{2});
  EXPECT_EQ(*absoluteScheduleForSemiAnnualPaymentsIncludingDate(june, std::nullopt, *calendar)
                 ->monthsOfTheYear(),
            (Values{6, 0}));
}

TEST(NumberOfPaymentPeriodsPerYear, OfTheUsualSchedules) {
  EXPECT_EQ(numberOfPaymentPeriodsPerYear(*scheduleForSemiMonthlyPayments(1, 15)), 24U);
  EXPECT_EQ(numberOfPaymentPeriodsPerYear(*scheduleForWeeklyPayments(6)), 52U);
  EXPECT_EQ(numberOfPaymentPeriodsPerYear(*scheduleForBiweeklyPayments(6)), 26U);
  EXPECT_EQ(numberOfPaymentPeriodsPerYear(*scheduleForSemiAnnualPayments(1, 183)), 2U);
  EXPECT_EQ(numberOfPaymentPeriodsPerYear(*scheduleForQuarterlyPayments()), 4U);
  EXPECT_EQ(numberOfPaymentPeriodsPerYear(*scheduleForLastDayOfMonth()), 12U);
}

TEST(NumberOfPaymentPeriodsPerYear, IsZeroForWhatHasNone) {
  const auto count = [](NSInteger frequency, NSInteger interval) {
    return numberOfPaymentPeriodsPerYear(*std::make_shared<ORLFDateRecurrenceRule>(
        static_cast<ORLFDateRecurrenceFrequency>(frequency), interval));
  };
  EXPECT_EQ(count(ORLFDateRecurrenceFrequencyYearly, 2), 0U);
  EXPECT_EQ(count(32, 1), 0U);
  EXPECT_EQ(count(ORLFDateRecurrenceFrequencyDaily, 0), 0U);
  EXPECT_EQ(count(ORLFDateRecurrenceFrequencyDaily, -3), 0U);
  EXPECT_EQ(count(ORLFDateRecurrenceFrequencyDaily, 2), 182U);
}

struct PeriodsCase {
  const char* name;
  ORLFDateRecurrenceRule::Recurrence rule;
  NSUInteger periods;
};

TEST(NumberOfPaymentPeriodsPerYear, MatchesTable) {
  using Integers = ORLFDateRecurrenceRule::Integers;
  constexpr auto kYearly = ORLFDateRecurrenceFrequencyYearly;
  constexpr auto kMonthly = ORLFDateRecurrenceFrequencyMonthly;
  constexpr auto kWeekly = ORLFDateRecurrenceFrequencyWeekly;
  const auto weekdays = [](NSInteger count) {
    ORLFDateRecurrenceRule::DaysOfTheWeek days(std::in_place);
    for (NSInteger day = 1; day <= count; ++day)
      days->push_back(ORLFDateRecurrenceDayOfWeek::dayOfWeek(day));
    return days;
  };
  const Integers none = Values{};
  const Integers one = Values{1};
  const Integers two = Values{1, 2};
  const Integers three = Values{1, 2, 3};
  const PeriodsCase cases[] = {
      {"Yearly", {.frequency = kYearly}, 1},
      {"YearlyOfDays",
       {.frequency = kYearly,
        .monthsOfTheYear = one,
        .weeksOfTheYear = two,
        .daysOfTheYear = three},
       3},
      {"YearlyOfWeeks", {.frequency = kYearly, .monthsOfTheYear = one, .weeksOfTheYear = two}, 2},
      {"YearlyOfMonths",
       {.frequency = kYearly, .daysOfTheMonth = one, .monthsOfTheYear = three},
       3},
      {"YearlyPassesOverDaysOfTheMonth", {.frequency = kYearly, .daysOfTheMonth = three}, 1},
      {"YearlyPassesOverEmptyDays",
       {.frequency = kYearly,
        .monthsOfTheYear = three,
        .weeksOfTheYear = two,
        .daysOfTheYear = none},
       2},
      {"YearlyPassesOverEmptyDaysAndWeeks",
       {.frequency = kYearly,
        .monthsOfTheYear = three,
        .weeksOfTheYear = none,
        .daysOfTheYear = none},
       3},
      {"YearlyOfEmptyLists",
       {.frequency = kYearly,
        .monthsOfTheYear = none,
        .weeksOfTheYear = none,
        .daysOfTheYear = none},
       1},
      {"MonthlyPassesOverEmptyDays",
       {.frequency = kMonthly, .daysOfTheWeek = weekdays(3), .daysOfTheMonth = none},
       36},
      {"MonthlyOfEmptyLists",
       {.frequency = kMonthly, .daysOfTheWeek = weekdays(0), .daysOfTheMonth = none},
       12},
      {"WeeklyOfAnEmptyList", {.frequency = kWeekly, .daysOfTheWeek = weekdays(0)}, 52},
      {"EverySecondYear", {.frequency = kYearly, .interval = 2, .monthsOfTheYear = three}, 0},
      {"Monthly", {.frequency = kMonthly}, 12},
      {"MonthlyOfDays",
       {.frequency = kMonthly, .daysOfTheWeek = weekdays(3), .daysOfTheMonth = two},
       24},
      {"MonthlyOfWeekdays", {.frequency = kMonthly, .daysOfTheWeek = weekdays(3)}, 36},
      {"EveryFifthMonth", {.frequency = kMonthly, .interval = 5, .daysOfTheMonth = two}, 4},
      {"Weekly", {.frequency = kWeekly}, 52},
      {"WeeklyOfWeekdays", {.frequency = kWeekly, .daysOfTheWeek = weekdays(5)}, 260},
      {"EveryThirdWeek", {.frequency = kWeekly, .interval = 3, .daysOfTheWeek = weekdays(2)}, 34},
      {"Quarterly", {.frequency = ORLFDateRecurrenceFrequencyQuarterly, .daysOfTheMonth = two}, 4},
      {"EveryThirdQuarter", {.frequency = ORLFDateRecurrenceFrequencyQuarterly, .interval = 3}, 1},
      {"Daily", {.frequency = ORLFDateRecurrenceFrequencyDaily, .daysOfTheMonth = two}, 365},
      {"EveryHundredthDay", {.frequency = ORLFDateRecurrenceFrequencyDaily, .interval = 100}, 3},
      {"AnyOther", {.frequency = static_cast<ORLFDateRecurrenceFrequency>(64)}, 0},
  };
  for (const PeriodsCase& row : cases)
    EXPECT_EQ(numberOfPaymentPeriodsPerYear(*std::make_shared<ORLFDateRecurrenceRule>(row.rule)),
              row.periods)
        << row.name;
}

}  // namespace
}  // namespace ORLFoundation
