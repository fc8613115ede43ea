#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace orlftest {
namespace {

using Class = ORLFAmortizationPlanSegment;

const NSDate kStart = utc(2024, 1, 1);
const NSDate kYearLater = utc(2025, 1, 1);

Decimal principalOn(NSDate date, const Terms& terms,
                    const NSDecimalNumberBehaviors* behavior = nullptr, NSDate first = kStart) {
  return Class::plannedPrincipalOnDate({.date = date,
                                        .startingWithPrincipal = terms.principal,
                                        .fristContributionDate = first,
                                        .contribution = terms.contribution,
                                        .contributionFrequncy = terms.frequency,
                                        .anualCompoundingRate = terms.rate,
                                        .anualInflationRate = terms.inflation,
                                        .usingCalendar = utcCalendar(),
                                        .roundingBehavior = behavior});
}

/// The six decimals through which a double becomes a decimal.
std::string sixPlaces(double value) {
  char text[400];
  std::snprintf(text, sizeof text, "%.6f", value);
  return number(text).stringValue();
}

// ---- planned principal ----

struct PrincipalCase {
  const char* name;
  NSDate date;
  Terms terms;
  std::string expected;
};

const double g = 1.01;

const PrincipalCase kPrincipalCases[] = {
    {"StaysInDecimalsWithoutGrowth",
     kYearLater,
     {.principal = number("1000"), .contribution = number("100")},
     "2200"},
    {"TakesARateOfZeroAsNoGrowth",
     kYearLater,
     {.principal = number("1000"), .contribution = number("100"), .rate = number("0")},
     "2200"},
    {"TakesANegativeRateAsNoGrowth",
     kYearLater,
     {.principal = number("1000"), .contribution = number("100"), .rate = number("-0.05")},
     "2200"},
    {"IgnoresInflationWithoutGrowth",
     kYearLater,
     {.principal = number("1000"), .contribution = number("100"), .inflation = number("0.5")},
     "2200"},
    {"CountsNilPrincipalAndContributionAsZero", kYearLater, {}, "0"},
    {"CountsNilPrincipalAndContributionAsZeroWithGrowth",
     kYearLater,
     {.rate = number("0.12")},
     "0"},
    {"TakesANilFrequencyAsMonthly",
     kYearLater,
     {.contribution = number("100"), .frequency = noPeriod()},
     "1200"},
    {"TakesANilFrequencyAsMonthlyWithGrowth",
     kYearLater,
     {.principal = number("1000"),
      .contribution = number("0"),
      .frequency = noPeriod(),
      .rate = number("0.12")},
     "1126.82503"},
    {"CountsWholePeriodsOnly", utc(2024, 3, 31), {.contribution = number("100")}, "200"},
    {"DropsTheRemainderOfTheInterval",
     kYearLater,
     {.contribution = number("100"), .frequency = monthly(5)},
     "200"},
    {"GrowsByThePeriod",
     kYearLater,
     {.principal = number("1000"), .contribution = number("0"), .rate = number("0.12")},
     "1126.82503"},
    {"AddsContributionsAtTheStartOfPeriods",
     kYearLater,
     {.principal = number("0"), .contribution = number("100"), .rate = number("0.12")},
     sixPlaces((std::pow(g, 12) - 1) / 0.01 * 100 * g)},
    {"RaisesContributionsWithInflation",
     kYearLater,
     {.contribution = number("100"), .rate = number("0.12"), .inflation = number("0.03")},
     "1298.308853"},
    {"LeavesThePlainAnnuityWhenRatesAreTheSame",
     kYearLater,
     {.contribution = number("100"), .rate = number("0.12"), .inflation = number("0.12")},
     sixPlaces((std::pow(g, 12) - 1) / 0.01 * 100 * g)},
    {"DividesByALongerIntervalOnceMore",
     kYearLater,
     {.principal = number("1000"),
      .contribution = number("100"),
      .frequency = monthly(2),
      .rate = number("0.12")},
     // Six periods elapse, three count: 1.02 to the third.
     sixPlaces((std::pow(1.02, 3) - 1) / 0.02 * 100 * 1.02 + 1000 * std::pow(1.02, 3))},
    {"CountsTheYearAsOneUnitOfYearlyPeriods",
     utc(2026, 1, 1),
     {.principal = number("1000"),
      .frequency = every(1, ORLFDateRecurrenceFrequencyYearly),
      .rate = number("0.12")},
     sixPlaces(1000 * std::pow(1.12, 2))},
    {"TakesTheLengthOfTheLeapYear",
     utc(2024, 1, 11),
     {.principal = number("1000"),
      .frequency = every(1, ORLFDateRecurrenceFrequencyDaily),
      .rate = number("0.366")},
     sixPlaces(1000 * std::pow(1.001, 10))},
    {"RunsBackwardsBeforeTheFirstContribution",
     utc(2023, 11, 1),
     {.principal = number("1000"), .contribution = number("100"), .rate = number("0.12")},
     sixPlaces((std::pow(g, -2) - 1) / 0.01 * 100 * g + 1000 * std::pow(g, -2))},
};

class PlannedPrincipal : public testing::TestWithParam<PrincipalCase> {};

TEST_P(PlannedPrincipal, MatchesTable) {
  EXPECT_EQ(textOf(principalOn(GetParam().date, GetParam().terms)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(ORLFAmortizationPlanSegment, PlannedPrincipal,
                         testing::ValuesIn(kPrincipalCases),
                         [](const auto& row) { return row.param.name; });

TEST(ORLFAmortizationPlanSegment, RoundsEachStepWithoutGrowthAndOnlyTheEndWithGrowth) {
  const auto down = rounding(NSRoundDown, 0);
  EXPECT_EQ(
      textOf(principalOn(kYearLater, {.principal = number("0.9"), .contribution = number("0.3")},
                         down.get())),
      "3");  // 3.6 becomes 3, 3.9 becomes 3: 4.5 in one step would be 4
  EXPECT_EQ(textOf(principalOn(
                kYearLater,
                {.principal = number("1000"), .contribution = number("0"), .rate = number("0.12")},
                cents())),
            "1126.83");
}

TEST(ORLFAmortizationPlanSegment, RefusesAnIntervalOfZeroWithoutGrowth) {
  EXPECT_THROW((void)principalOn(kYearLater, {.frequency = monthly(0)}), NSException);
}

TEST(ORLFAmortizationPlanSegment, GivesNotANumberForTotalsThatAreNotFinite) {
  const auto balance = principalOn(
      kYearLater, {.principal = number("1"), .frequency = monthly(0), .rate = number("0.05")});
  ASSERT_TRUE(balance);
  EXPECT_EQ(balance->compare(NSDecimalNumber::notANumber()), NSOrderedSame);
  const auto huge = principalOn(utc(2924, 1, 1), {.principal = number("1"), .rate = number("9e9")});
  ASSERT_TRUE(huge);
  EXPECT_EQ(huge->compare(NSDecimalNumber::notANumber()), NSOrderedSame);
}

TEST(ORLFAmortizationPlanSegment, ProjectsWithItsOwnTerms) {
  const auto segment = makeSegment({.principal = number("77"),
                                    .contribution = number("100"),
                                    .rate = number("0.12"),
                                    .inflation = number("0.03")});
  EXPECT_EQ(textOf(segment->plannedPrincipalOnDate(kYearLater, number("0"), kStart, utcCalendar(),
                                                   nullptr)),
            "1298.308853");
}

// ---- contribution dates ----

TEST(ORLFAmortizationPlanSegment, CountsContributionDatesFromTheStart) {
  const NSDate start = utc(2024, 1, 31);
  EXPECT_EQ(Class::contributionDateAfterCount(1, start, monthly(), utcCalendar()),
            utc(2024, 2, 29));
  EXPECT_EQ(Class::contributionDateAfterCount(2, start, monthly(), utcCalendar()),
            utc(2024, 3, 31));
  EXPECT_EQ(Class::contributionDateAfterCount(3, start, monthly(5), utcCalendar()),
            utc(2025, 4, 30));
  EXPECT_EQ(Class::contributionDateAfterCount(0, start, monthly(), utcCalendar()), start);
}

TEST(ORLFAmortizationPlanSegment, GivesNoContributionDateBeyondTheCalendar) {
  EXPECT_EQ(Class::contributionDateAfterCount(NSUIntegerMax, kStart, monthly(3), utcCalendar()),
            std::nullopt);
  EXPECT_EQ(Class::contributionDateAfterCount(1, kStart, nullptr, utcCalendar()), std::nullopt);
}

TEST(ORLFAmortizationPlanSegment, StepsFromItsStartSoThatTheDayNeverDrifts) {
  const auto segment = makeSegment({});
  segment->setStartDate(utc(2024, 1, 31));
  NSDate date = utc(2024, 1, 31);
  for (const NSDate expected :
       {utc(2024, 2, 29), utc(2024, 3, 31), utc(2024, 4, 30), utc(2024, 5, 31), utc(2024, 6, 30)}) {
    date = *segment->contributionDateAfterDate(date, utcCalendar());
    EXPECT_EQ(date, expected);
  }
}

TEST(ORLFAmortizationPlanSegment, FindsTheContributionDateStrictlyAfterADate) {
  const auto segment = makeSegment({.frequency = monthly(2)});
  EXPECT_EQ(segment->contributionDateAfterDate(utc(2024, 5, 7), utcCalendar()), utc(2024, 7, 7));
  segment->setStartDate(utc(2024, 1, 10));
  EXPECT_EQ(segment->contributionDateAfterDate(utc(2023, 1, 1), utcCalendar()), utc(2024, 1, 10));
  EXPECT_EQ(segment->contributionDateAfterDate(utc(2024, 1, 10), utcCalendar()), utc(2024, 3, 10));
  EXPECT_EQ(segment->contributionDateAfterDate(utc(2024, 3, 9), utcCalendar()), utc(2024, 3, 10));
  EXPECT_EQ(segment->contributionDateAfterDate(utc(2024, 3, 10), utcCalendar()), utc(2024, 5, 10));
}

// ---- periods to reach a balance ----

NSUInteger periodsTo(const char* target, const Terms& terms) {
  return makeSegment(terms)->numberOfContributionPeriodsToReachBalance(
      Class::SegmentPeriodsToReachBalance{.balance = number(target),
                                          .startingWithBalance = terms.principal,
                                          .fristContributionDate = kStart,
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

// ---- payments, present and future value ----

TEST(ORLFAmortizationPlanSegment, FindsThePrincipalThatPaymentsPayOff) {
  const auto principal =
      Class::startingPrincipalForRecuringPayment({.payment = number("100"),
                                                  .paymentFrequncey = monthly(),
                                                  .numberOfPayments = 12,
                                                  .anualCompoundingRate = number("0.12"),
                                                  .usingCalendar = utcCalendar()});
  const double annuity = (std::pow(g, 12) - 1) / 0.01;
  EXPECT_EQ(textOf(principal), sixPlaces(-g * (100 * annuity) / std::pow(g, 12)));
  EXPECT_EQ(textOf(principalOn(
                kYearLater,
                {.principal = principal, .contribution = number("100"), .rate = number("0.12")},
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
  const double q = (std::pow(g, 12) - std::pow(1 + 0.03 / 12, 12)) / (0.12 / 12 - 0.03 / 12);
  EXPECT_EQ(textOf(Class::startingPrincipalForRecuringPayment(payment)),
            sixPlaces(-g * (100 * q) / std::pow(g, 12)));
}

TEST(ORLFAmortizationPlanSegment, CountsPaymentDaysInTheCurrentYear) {
  NSDate::setClock([] { return utc(2024, 6, 1); });
  const auto principal = Class::startingPrincipalForRecuringPayment(
      {.payment = number("1"),
       .paymentFrequncey = every(1, ORLFDateRecurrenceFrequencyDaily),
       .numberOfPayments = 1,
       .anualCompoundingRate = number("0.366"),
       .usingCalendar = utcCalendar()});
  NSDate::setClock({});
  EXPECT_EQ(textOf(principal), "-1");  // one payment at the start of its period pays off itself
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
            sixPlaces(1000 * std::pow(1.03, 2) / std::pow(g, 24)));
}

TEST(ORLFAmortizationPlanSegment, InflatesFurureValuesByThePeriod) {
  EXPECT_EQ(textOf(Class::furureValueForPresentValue({.presentValue = number("1000"),
                                                      .numberOfPeriods = 24,
                                                      .compoundingFrequncy = monthly(),
                                                      .anualInflationRate = number("0.12"),
                                                      .usingCalendar = utcCalendar(),
                                                      .roundingBehavior = cents()})),
            number(sixPlaces(1000 * std::pow(g, 24)).c_str())
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
}

// ---- contributions between dates ----

Decimal contributionsOf(const Segment& segment, NSDate from, NSDate to, bool continuous) {
  return segment->plannedContributionsFromStartDate({.startDate = from,
                                                     .toEndDate = to,
                                                     .usingCalendar = utcCalendar(),
                                                     .continuous = continuous});
}

TEST(ORLFAmortizationPlanSegment, SpreadsContinuousContributionsOverPartsOfPeriods) {
  const auto segment = makeSegment({.contribution = number("100")});
  segment->setStartDate(kStart);
  EXPECT_EQ(textOf(contributionsOf(segment, utc(2024, 1, 1), utc(2024, 4, 1), true)), "300");
  EXPECT_EQ(textOf(contributionsOf(segment, utc(2024, 1, 1), utc(2024, 4, 16), true)), "350");
  segment->setContributionFrequncy(monthly(2));
  EXPECT_EQ(textOf(contributionsOf(segment, utc(2024, 1, 1), utc(2024, 4, 1), true)), "150");
}

TEST(ORLFAmortizationPlanSegment, CountsWholeContributionDatesFromTheLastOneBefore) {
  const auto segment = makeSegment({.contribution = number("100")});
  segment->setStartDate(utc(2024, 1, 10));
  EXPECT_EQ(textOf(contributionsOf(segment, utc(2024, 2, 20), utc(2024, 4, 9), false)), "100");
  EXPECT_EQ(textOf(contributionsOf(segment, utc(2024, 2, 20), utc(2024, 4, 10), false)), "200");
  EXPECT_EQ(textOf(contributionsOf(segment, utc(2024, 2, 10), utc(2024, 2, 10), false)), "0");
}

TEST(ORLFAmortizationPlanSegment, CountsOneMoreWhenTheCountBeginsBeforeItsStart) {
  const auto segment = makeSegment({.contribution = number("100")});
  segment->setStartDate(utc(2024, 1, 10));
  // Ten days before the start the last contribution date is the start itself.
  EXPECT_EQ(textOf(contributionsOf(segment, utc(2023, 12, 31), utc(2024, 2, 10), false)), "200");
}

TEST(ORLFAmortizationPlanSegment, CountsWithoutAStartFromTheFirstDate) {
  const auto segment = makeSegment({.contribution = number("100")});
  EXPECT_EQ(textOf(contributionsOf(segment, utc(2024, 1, 5), utc(2024, 3, 5), false)), "200");
}

TEST(ORLFAmortizationPlanSegment, HasNoContributionsWithoutAContribution) {
  const auto segment = makeSegment({});
  segment->setStartDate(kStart);
  EXPECT_EQ(contributionsOf(segment, kStart, kYearLater, true), std::nullopt);
  EXPECT_EQ(contributionsOf(segment, kStart, kYearLater, false), std::nullopt);
}

TEST(ORLFAmortizationPlanSegment, ReadsANegativeCountAsUnsigned) {
  const auto segment = makeSegment({.contribution = number("1")});
  segment->setStartDate(kStart);
  EXPECT_EQ(textOf(contributionsOf(segment, kYearLater, utc(2024, 12, 1), false)),
            "18446744073709551615");
}

}  // namespace
}  // namespace orlftest
