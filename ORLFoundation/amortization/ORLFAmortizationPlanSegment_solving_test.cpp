// What is searched and solved from a segment's terms: periods to a balance, payments, values.

#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <gtest/gtest.h>

#include <cmath>

namespace orlftest {
namespace {

using Class = ORLFAmortizationPlanSegment;

const double kGrowth = 1.01;

// ---- periods to reach a balance ----

NSUInteger periodsTo(const char* target, const Terms& terms) {
  return makeSegment(terms)->numberOfContributionPeriodsToReachBalance(
      Class::SegmentPeriodsToReachBalance{.balance = number(target),
                                          .startingWithBalance = terms.principal,
                                          .fristContributionDate = kJan24,
                                          .usingCalendar = utcCalendar(),
                                          .roundingBehavior = cents()});
}

struct ReachCase {
  const char* name;
  const char* target;
  Terms terms;
  NSUInteger expected;
};

const ReachCase kReachCases[] = {
    {"FindsARisingBalance", "5000", {.principal = number("0"), .contribution = number("100")}, 50},
    {"RoundsUpBetweenPeriods",
     "4950",
     {.principal = number("0"), .contribution = number("100")},
     50},
    {"DoublesBeyondAHundred",
     "34000",
     {.principal = number("0"), .contribution = number("100")},
     340},
    {"FindsAFallingBalance",
     "-5000",
     {.principal = number("0"), .contribution = number("-100")},
     50},
    // 49 periods give -4900 and 50 give -5000: the last point tried stands, and one is added only
    // when the target is above its balance, although these balances fall.
    {"StopsBeforeAFallingTarget",
     "-4950",
     {.principal = number("0"), .contribution = number("-100")},
     49},
    {"StepsPastAFallingTarget",
     "-5050",
     {.principal = number("0"), .contribution = number("-100")},
     52},
    {"StopsAtThePeriodThatPassesARisingTarget",
     "5050",
     {.principal = number("0"), .contribution = number("100")},
     51},
    {"RefusesWhatNeverMoves",
     "100",
     {.principal = number("0"), .contribution = number("0")},
     NSIntegerMax},
    {"RefusesTheWrongDirection",
     "-1",
     {.principal = number("0"), .contribution = number("1")},
     NSIntegerMax},
    {"RefusesTheBalanceAtHandOfAPlanThatMoves",
     "0",
     {.principal = number("0"), .contribution = number("1")},
     NSIntegerMax},
    {"AnswersTheMiddleForAFlatPlanAtItsTarget",
     "7",
     {.principal = number("7"), .contribution = number("0")},
     50},
    {"RefusesANilFrequency",
     "100",
     {.principal = number("0"), .contribution = number("1"), .frequency = noPeriod()},
     NSIntegerMax},
    {"RefusesANilPrincipal", "100", {.contribution = number("1")}, NSIntegerMax},
    {"GrowsTowardTheTarget", "1126.83", {.principal = number("1000"), .rate = number("0.12")}, 12},
};

class PeriodsToReach : public testing::TestWithParam<ReachCase> {};

TEST_P(PeriodsToReach, MatchesTable) {
  EXPECT_EQ(periodsTo(GetParam().target, GetParam().terms), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(ORLFAmortizationPlanSegment, PeriodsToReach,
                         testing::ValuesIn(kReachCases),
                         [](const auto& row) { return row.param.name; });

TEST(ORLFAmortizationPlanSegment, GivesUpWhereTheDatesLeaveTheCalendar) {
  EXPECT_EQ(periodsTo("1e30", {.principal = number("0"), .contribution = number("0.01")}),
            static_cast<NSUInteger>(NSIntegerMax));
  EXPECT_EQ(periodsTo("1e30", {.principal = number("0"),
                               .contribution = number("0.01"),
                               .frequency = every(1, 1)}),
            static_cast<NSUInteger>(NSIntegerMax));
}

TEST(ORLFAmortizationPlanSegment, GivesUpWhereThePeriodsLeaveTheCalendarThoughTheBalanceStays) {
  EXPECT_EQ(periodsTo("7", {.principal = number("7"),
                            .contribution = number("0"),
                            .frequency = monthly(NSIntegerMax)}),
            static_cast<NSUInteger>(NSIntegerMax));
}

// ---- payments, present and future value ----

TEST(ORLFAmortizationPlanSegment, FindsThePrincipalThatPaymentsPayOff) {
  const auto principal =
      Class::startingPrincipalForRecuringPayment({.payment = number("100"),
                                                  .paymentFrequncey = monthly(),
                                                  .numberOfPayments = 12,
                                                  .anualCompoundingRate = number("0.12"),
                                                  .usingCalendar = utcCalendar()});
  const double annuity = (std::pow(kGrowth, 12) - 1) / 0.01;
  EXPECT_EQ(textOf(principal), sixPlaces(-kGrowth * (100 * annuity) / std::pow(kGrowth, 12)));
  EXPECT_EQ(
      textOf(principalOn(
          kJan25, {.principal = principal, .contribution = number("100"), .rate = number("0.12")},
          cents())),
      "0");
}

TEST(ORLFAmortizationPlanSegment, RaisesPaymentsWithInflation) {
  const Class::RecuringPayment payment{.payment = number("100"),
                                       .paymentFrequncey = nullptr,
                                       .numberOfPayments = 12,
                                       .anualCompoundingRate = number("0.12"),
                                       .anualInflationRate = number("0.03"),
                                       .usingCalendar = utcCalendar()};
  const double q = (std::pow(kGrowth, 12) - std::pow(1 + 0.03 / 12, 12)) / (0.12 / 12 - 0.03 / 12);
  EXPECT_EQ(textOf(Class::startingPrincipalForRecuringPayment(payment)),
            sixPlaces(-kGrowth * (100 * q) / std::pow(kGrowth, 12)));
}

/// The principal that daily payments of 1 pay off at a rate of 36.6 % a year, in the year of a
/// date.
Decimal principalOfDailyPayments(NSDate today, NSUInteger count) {
  const Replaced clock(NSDate::setClock, [today] { return today; });
  auto principal = Class::startingPrincipalForRecuringPayment(
      {.payment = number("1"),
       .paymentFrequncey = every(1, ORLFDateRecurrenceFrequencyDaily),
       .numberOfPayments = count,
       .anualCompoundingRate = number("0.366"),
       .usingCalendar = utcCalendar()});
  return principal;
}

TEST(ORLFAmortizationPlanSegment, CountsPaymentDaysInTheCurrentYear) {
  // The first payment falls on the start and is worth itself; each later one is worth a day less.
  const auto worth = [](NSUInteger count, double daysInYear) {
    double sum = 0;
    for (NSUInteger day = 0; day < count; ++day)
      sum += std::pow(1 + 0.366 / daysInYear, -static_cast<double>(day));
    return sum;
  };
  for (const NSUInteger count : {1U, 2U, 30U, 500U}) {
    EXPECT_EQ(textOf(principalOfDailyPayments(utc(2024, 6, 1), count)),
              sixPlaces(-worth(count, 366)))
        << count;
    EXPECT_EQ(textOf(principalOfDailyPayments(utc(2023, 6, 1), count)),
              sixPlaces(-worth(count, 365)))
        << count;
  }
  EXPECT_NE(principalOfDailyPayments(utc(2024, 6, 1), 2),
            principalOfDailyPayments(utc(2023, 6, 1), 2));
}

TEST(ORLFAmortizationPlanSegment, FindsNoPrincipalWithoutGrowth) {
  for (const Decimal& rate : {Decimal(), Decimal(number("0")), Decimal(number("-0.1"))}) {
    EXPECT_EQ(Class::startingPrincipalForRecuringPayment({.payment = number("100"),
                                                          .paymentFrequncey = monthly(),
                                                          .numberOfPayments = 12,
                                                          .anualCompoundingRate = rate,
                                                          .usingCalendar = utcCalendar()}),
              std::nullopt);
  }
}

TEST(ORLFAmortizationPlanSegment, InflatesPresentValuesByTheYearAndDiscountsThemByThePeriod) {
  EXPECT_EQ(textOf(Class::presentValueForFurureValue({.furureValue = number("1000"),
                                                      .numberOfPeriods = 24,
                                                      .compoundingFrequncy = monthly(),
                                                      .anualCompoundingRate = number("0.12"),
                                                      .anualInflationRate = number("0.03"),
                                                      .usingCalendar = utcCalendar()})),
            sixPlaces(1000 * std::pow(1.03, 2) / std::pow(kGrowth, 24)));
}

TEST(ORLFAmortizationPlanSegment, InflatesFurureValuesByThePeriod) {
  EXPECT_EQ(textOf(Class::furureValueForPresentValue({.presentValue = number("1000"),
                                                      .numberOfPeriods = 24,
                                                      .compoundingFrequncy = monthly(),
                                                      .anualInflationRate = number("0.12"),
                                                      .usingCalendar = utcCalendar(),
                                                      .roundingBehavior = cents()})),
            number(sixPlaces(1000 * std::pow(kGrowth, 24)))
                .decimalNumberByRoundingAccordingToBehavior(cents())
                ->stringValue());
}

TEST(ORLFAmortizationPlanSegment, CountsNilRatesOfValuesAsZero) {
  EXPECT_EQ(textOf(Class::presentValueForFurureValue({.furureValue = number("1000"),
                                                      .numberOfPeriods = 24,
                                                      .compoundingFrequncy = monthly(),
                                                      .usingCalendar = utcCalendar()})),
            "1000");
  EXPECT_EQ(textOf(Class::furureValueForPresentValue({.presentValue = number("1000"),
                                                      .numberOfPeriods = 24,
                                                      .compoundingFrequncy = monthly(),
                                                      .usingCalendar = utcCalendar()})),
            "1000");
}

TEST(ORLFAmortizationPlanSegment, GivesNotANumberForValuesWithoutAFrequency) {
  const auto value = Class::presentValueForFurureValue({.furureValue = number("1000"),
                                                        .numberOfPeriods = 24,
                                                        .anualCompoundingRate = number("0.12"),
                                                        .anualInflationRate = number("0.03"),
                                                        .usingCalendar = utcCalendar()});
  ASSERT_TRUE(value);
  EXPECT_EQ(value->compare(NSDecimalNumber::notANumber()), NSOrderedSame);
  // Rates over no periods are infinite, and nil ones no number.
  for (const Decimal& inflation : {Decimal(number("0.12")), Decimal()}) {
    const auto later = Class::furureValueForPresentValue({.presentValue = number("1000"),
                                                          .numberOfPeriods = 24,
                                                          .anualInflationRate = inflation,
                                                          .usingCalendar = utcCalendar()});
    ASSERT_TRUE(later);
    EXPECT_EQ(later->compare(NSDecimalNumber::notANumber()), NSOrderedSame);
  }
}

}  // namespace
}  // namespace orlftest
