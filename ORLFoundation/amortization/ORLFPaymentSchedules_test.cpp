#include <ORLFoundation/amortization/ORLFPaymentSchedules.h>
#include <gtest/gtest.h>
#include <tests/support/RecurrenceCodec.h>

namespace ORLFoundation {
namespace {

using orlftest::Json;
using Number = std::optional<NSInteger>;

Number numberFrom(const Json& value) {
  return value.is_null() ? std::nullopt : Number(value.get<NSInteger>());
}

/// The fields that the rows name.
std::string scheduleDisagreement(const Json& out, const ORLFPaymentSchedule& schedule) {
  if (out.is_null() || !schedule)
    return out.is_null() == !schedule ? "" : "expected and got differ in nil";
  Json fields = orlftest::vectorFromRule(schedule.get());
  fields["numberOfPaymentPeriodsPerYear"] = numberOfPaymentPeriodsPerYear(*schedule);
  if (!fields.at("setPositions").is_null() || !fields.at("weeksOfTheYear").is_null())
    return "a list that no schedule has";
  fields.erase("setPositions");
  fields.erase("weeksOfTheYear");
  return orlftest::disagreement(out, fields);
}

template <class Schedule>
orlftest::JsonCheck fromNumbers(Schedule schedule) {
  return [schedule](const Json& in, const Json& out) {
    return scheduleDisagreement(out, schedule(in));
  };
}

template <class Schedule>
orlftest::JsonCheck fromDate(Schedule schedule) {
  return [schedule](const Json& in, const Json& out) {
    const auto calendar = orlftest::calendarFromVector(in.at("calendar"));
    return scheduleDisagreement(out,
                                schedule(*orlftest::dateFromVector(in.at("date")), in, *calendar));
  };
}

std::string periodsDisagreement(const Json& in, const Json& out) {
  const auto list = [&in](const char* name) { return in.contains(name) ? in.at(name) : Json(); };
  const auto rule = ORLFDateRecurrenceRule::ruleWithFields(
      {.frequency = static_cast<ORLFDateRecurrenceFrequency>(in.at("frequency").get<NSInteger>()),
       .interval = in.at("interval").get<NSInteger>(),
       .daysOfTheWeek = orlftest::daysOfTheWeekFromVector(list("daysOfTheWeek")),
       .daysOfTheMonth = orlftest::integersFromVector(list("daysOfTheMonth")),
       .monthsOfTheYear = orlftest::integersFromVector(list("monthsOfTheYear")),
       .weeksOfTheYear = orlftest::integersFromVector(list("weeksOfTheYear")),
       .daysOfTheYear = orlftest::integersFromVector(list("daysOfTheYear"))});
  return orlftest::disagreement(out.get<NSUInteger>(), numberOfPaymentPeriodsPerYear(*rule));
}

TEST(ORLFPaymentSchedules, AgreesWithVectors) {
  orlftest::runJsonVectors(
      "planning_schedules",
      {{"scheduleForWeeklyPayments:", fromNumbers([](const Json& in) {
          return scheduleForWeeklyPayments(numberFrom(in.at(0)));
        })},
       {"scheduleForBiweeklyPayments:", fromNumbers([](const Json& in) {
          return scheduleForBiweeklyPayments(numberFrom(in.at(0)));
        })},
       {"scheduleForSemiMonthlyPayments:secondPayment:", fromNumbers([](const Json& in) {
          return scheduleForSemiMonthlyPayments(numberFrom(in.at(0)), numberFrom(in.at(1)));
        })},
       {"scheduleForMonthlyPayments:", fromNumbers([](const Json& in) {
          return scheduleForMonthlyPayments(numberFrom(in.at(0)));
        })},
       {"scheduleForLastDayOfMonth",
        fromNumbers([](const Json& /*in*/) { return scheduleForLastDayOfMonth(); })},
       {"scheduleForQuarterlyPayments",
        fromNumbers([](const Json& /*in*/) { return scheduleForQuarterlyPayments(); })},
       {"scheduleForSemiAnnualPayments:secondPayment:", fromNumbers([](const Json& in) {
          return scheduleForSemiAnnualPayments(numberFrom(in.at(0)), numberFrom(in.at(1)));
        })},
       {"scheduleForSemiAnnualPayments:month1:month2:", fromNumbers([](const Json& in) {
          return scheduleForSemiAnnualPayments(numberFrom(in.at(0)), numberFrom(in.at(1)),
                                               numberFrom(in.at(2)));
        })},
       {"scheduleForAnnualPayments:day:", fromNumbers([](const Json& in) {
          return scheduleForAnnualPayments(numberFrom(in.at(0)), numberFrom(in.at(1)));
        })},
       {"absoluteScheduleForWeeklyPaymentsIncludingDate:inCalendar:",
        fromDate([](NSDate date, const Json&, const NSCalendar& calendar) {
          return absoluteScheduleForWeeklyPaymentsIncludingDate(date, calendar);
        })},
       {"absoluteScheduleForBiweeklyPaymentsIncludingDate:inCalendar:",
        fromDate([](NSDate date, const Json&, const NSCalendar& calendar) {
          return absoluteScheduleForBiweeklyPaymentsIncludingDate(date, calendar);
        })},
       {"absoluteScheduleForMonthlyPaymentsIncludingDate:inCalendar:",
        fromDate([](NSDate date, const Json&, const NSCalendar& calendar) {
          return absoluteScheduleForMonthlyPaymentsIncludingDate(date, calendar);
        })},
       {"absoluteScheduleForSemiMonthlyPaymentsIncludingDate:andDate:inCalendar:",
        fromDate([](NSDate date, const Json& in, const NSCalendar& calendar) {
          return absoluteScheduleForSemiMonthlyPaymentsIncludingDate(
              date, *orlftest::dateFromVector(in.at("second")), calendar);
        })},
       {"absoluteScheduleForQuarterlyPaymentsIncludingDate:inCalendar:",
        fromDate([](NSDate date, const Json&, const NSCalendar& calendar) {
          return absoluteScheduleForQuarterlyPaymentsIncludingDate(date, calendar);
        })},
       {"absoluteScheduleForSemiAnnualPaymentsIncludingDate:andDate:inCalendar:",
        fromDate([](NSDate date, const Json& in, const NSCalendar& calendar) {
          return absoluteScheduleForSemiAnnualPaymentsIncludingDate(
              date, orlftest::dateFromVector(in.at("second")), calendar);
        })},
       {"absoluteScheduleForAnnualPaymentsIncludingDate:inCalendar:",
        fromDate([](NSDate date, const Json&, const NSCalendar& calendar) {
          return absoluteScheduleForAnnualPaymentsIncludingDate(date, calendar);
        })},
       {"numberOfPaymentPeriodsPerYear", periodsDisagreement}});
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

}  // namespace
}  // namespace ORLFoundation
