#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>
#include <ORLFoundation/decimal/ORLFRoundingBehavior.h>
#include <ORLFoundation/platform/value/NSException_testing.h>
#include <gtest/gtest.h>

#include <cmath>

namespace orlftest {
namespace {

using Class = ORLFAmortizationPlanSegment;

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
     kJan25,
     {.principal = number("1000"), .contribution = number("100")},
     "2200"},
    {"TakesARateOfZeroAsNoGrowth",
     kJan25,
     {.principal = number("1000"), .contribution = number("100"), .rate = number("0")},
     "2200"},
    {"TakesANegativeRateAsNoGrowth",
     kJan25,
     {.principal = number("1000"), .contribution = number("100"), .rate = number("-0.05")},
     "2200"},
    {"IgnoresInflationWithoutGrowth",
     kJan25,
     {.principal = number("1000"), .contribution = number("100"), .inflation = number("0.5")},
     "2200"},
    {"CountsNilPrincipalAndContributionAsZero", kJan25, {}, "0"},
    {"CountsNilPrincipalAndContributionAsZeroWithGrowth", kJan25, {.rate = number("0.12")}, "0"},
    {"TakesANilFrequencyAsMonthly",
     kJan25,
     {.contribution = number("100"), .frequency = noPeriod()},
     "1200"},
    {"TakesANilFrequencyAsMonthlyWithGrowth",
     kJan25,
     {.principal = number("1000"),
      .contribution = number("0"),
      .frequency = noPeriod(),
      .rate = number("0.12")},
     "1126.82503"},
    {"CountsWholePeriodsOnly", utc(2024, 3, 31), {.contribution = number("100")}, "200"},
    {"DropsTheRemainderOfTheInterval",
     kJan25,
     {.contribution = number("100"), .frequency = monthly(5)},
     "200"},
    {"GrowsByThePeriod",
     kJan25,
     {.principal = number("1000"), .contribution = number("0"), .rate = number("0.12")},
     "1126.82503"},
    {"AddsContributionsAtTheStartOfPeriods",
     kJan25,
     {.principal = number("0"), .contribution = number("100"), .rate = number("0.12")},
     sixPlaces((std::pow(g, 12) - 1) / 0.01 * 100 * g)},
    {"RaisesContributionsWithInflation",
     kJan25,
     {.contribution = number("100"), .rate = number("0.12"), .inflation = number("0.03")},
     "1298.308853"},
    {"RaisesContributionsThatDoubleEachPeriod",
     utc(2024, 4, 1),
     {.contribution = number("100"), .rate = number("0.12"), .inflation = number("12")},
     sixPlaces((std::pow(g, 3) - std::pow(2, 3)) / (0.01 - 1) * 100 * g)},
    {"LeavesThePlainAnnuityWhenRatesAreTheSame",
     kJan25,
     {.contribution = number("100"), .rate = number("0.12"), .inflation = number("0.12")},
     sixPlaces((std::pow(g, 12) - 1) / 0.01 * 100 * g)},
    {"DividesByALongerIntervalOnceMore",
     kJan25,
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
    // Without growth the periods are an unsigned number whose top bit is the sign.
    {"ReadsTheTopBitOfACountAsItsSign",
     utc(2023, 12, 1),
     {.contribution = number("1")},
     "-18446744073709551615"},
    {"ReadsACountWithoutTheTopBitAsPositive",
     utc(2023, 12, 1),
     {.contribution = number("1"), .frequency = monthly(2)},
     "9223372036854775807"},
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
  EXPECT_EQ(textOf(principalOn(kJan25, {.principal = number("0.9"), .contribution = number("0.3")},
                               down.get())),
            "3");  // 3.6 becomes 3, 3.9 becomes 3: 4.5 in one step would be 4
  EXPECT_EQ(textOf(principalOn(
                kJan25,
                {.principal = number("1000"), .contribution = number("0"), .rate = number("0.12")},
                cents())),
            "1126.83");
}

TEST(ORLFAmortizationPlanSegment, RefusesAnIntervalOfZeroWithoutGrowth) {
  EXPECT_EQ(nameOfException([] { (void)principalOn(kJan25, {.frequency = monthly(0)}); }),
            NSInvalidArgumentException);
}

TEST(ORLFAmortizationPlanSegment, HasNoPrincipalWhereTheContributionsAreAnError) {
  const ORLFRoundingBehavior rounded(NSRoundPlain, 2, ORLFDecimalErrorBehaviorReturnNil);
  const Terms huge{.principal = number("1"), .contribution = number("9e164")};
  EXPECT_EQ(principalOn(utc(2024, 2, 1), huge, &rounded), number("9e164"));
  for (const char* const principal : {"1", "0", "-9e164"}) {
    const Terms terms{.principal = number(principal), .contribution = number("9e164")};
    EXPECT_EQ(principalOn(kJan25, terms, &rounded), std::nullopt) << principal;
  }
}

TEST(ORLFAmortizationPlanSegment, GivesNotANumberForTotalsThatAreNotFinite) {
  const auto balance = principalOn(
      kJan25, {.principal = number("1"), .frequency = monthly(0), .rate = number("0.05")});
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
  EXPECT_EQ(
      textOf(segment->plannedPrincipalOnDate(kJan25, number("0"), kJan24, utcCalendar(), nullptr)),
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
  EXPECT_EQ(Class::contributionDateAfterCount(NSUIntegerMax, kJan24, monthly(3), utcCalendar()),
            std::nullopt);
  EXPECT_EQ(Class::contributionDateAfterCount(1, kJan24, nullptr, utcCalendar()), std::nullopt);
}

TEST(ORLFAmortizationPlanSegment, CountsContributionDatesUpToTheLargestInteger) {
  constexpr auto kLargest = static_cast<NSUInteger>(NSIntegerMax);
  EXPECT_EQ(Class::contributionDateAfterCount(kLargest, kJan24, monthly(0), utcCalendar()), kJan24);
  EXPECT_EQ(Class::contributionDateAfterCount(kLargest + 1, kJan24, monthly(0), utcCalendar()),
            std::nullopt);
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

TEST(ORLFAmortizationPlanSegment, StepsWithoutAStartIntoTheNextYear) {
  EXPECT_EQ(makeSegment({})->contributionDateAfterDate(utc(2024, 12, 15), utcCalendar()),
            utc(2025, 1, 15));
}

TEST(ORLFAmortizationPlanSegment, HasNoLaterContributionDateWithoutAFrequency) {
  const auto segment = makeSegment({.frequency = noPeriod()});
  EXPECT_EQ(segment->contributionDateAfterDate(kJan24, utcCalendar()), std::nullopt);
  segment->setStartDate(kJan24);
  EXPECT_EQ(segment->contributionDateAfterDate(utc(2023, 1, 1), utcCalendar()), kJan24);
  EXPECT_EQ(segment->contributionDateAfterDate(kJan25, utcCalendar()), std::nullopt);
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
  segment->setStartDate(kJan24);
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
  segment->setStartDate(kJan24);
  EXPECT_EQ(contributionsOf(segment, kJan24, kJan25, true), std::nullopt);
  EXPECT_EQ(contributionsOf(segment, kJan24, kJan25, false), std::nullopt);
}

TEST(ORLFAmortizationPlanSegment, HasNoContributionsFromADateBeyondTheCalendar) {
  const NSDate beyond = NSDate::dateWithTimeIntervalSinceReferenceDate(1e300);
  const auto segment = makeSegment({.contribution = number("100")});
  EXPECT_EQ(contributionsOf(segment, beyond, kJan25, false), std::nullopt);
}

TEST(ORLFAmortizationPlanSegment, ReadsANegativeCountAsUnsigned) {
  const auto segment = makeSegment({.contribution = number("1")});
  segment->setStartDate(kJan24);
  EXPECT_EQ(textOf(contributionsOf(segment, kJan25, utc(2024, 12, 1), false)),
            "18446744073709551615");
}

}  // namespace
}  // namespace orlftest
