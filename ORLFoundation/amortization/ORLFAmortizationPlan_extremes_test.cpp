// Peaks and troughs, and the starting principal that leads to a balance.

#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>
#include <ORLFoundation/decimal/ORLFRoundingBehavior.h>
#include <gtest/gtest.h>

#include <cmath>

namespace orlftest {
namespace {

// ---- peak and trough ----

struct Extremes {
  Decimal peak;
  std::optional<NSDate> peakDate;
  Decimal trough;
  std::optional<NSDate> troughDate;
};

Extremes extremesOf(const Plan& plan, std::optional<NSDate> from = {},
                    std::optional<NSDate> to = {}) {
  Extremes found;
  found.peak = plan->plannedPeakBalanceBetweenStartDate({.startDate = from,
                                                         .endDate = to,
                                                         .usingCalendar = utcCalendar(),
                                                         .peakDate = &found.peakDate});
  found.trough = plan->plannedTroughBalanceBetweenStartDate({.startDate = from,
                                                             .endDate = to,
                                                             .usingCalendar = utcCalendar(),
                                                             .peakDate = &found.troughDate});
  return found;
}

TEST(ORLFAmortizationPlan, PeaksAtTheEndWhenItRises) {
  const Extremes found = extremesOf(twoYears());
  EXPECT_EQ(textOf(found.peak), "2800");
  EXPECT_EQ(found.peakDate, kJan26);
  EXPECT_EQ(textOf(found.trough), "1000");
  EXPECT_EQ(found.troughDate, kJan24);
}

TEST(ORLFAmortizationPlan, LooksAtBothSidesOfABoundary) {
  const Plan plan = makePlan({{kJan24, {.principal = number("0"), .contribution = number("100")}},
                              {kJan25, {.principal = number("-5"), .contribution = number("1")}}},
                             kJan26);
  const Extremes found = extremesOf(plan);
  EXPECT_EQ(textOf(found.peak), "1200");
  EXPECT_EQ(found.peakDate, kJan25);
  EXPECT_EQ(textOf(found.trough), "-5");
  EXPECT_EQ(found.troughDate, kJan25);
}

TEST(ORLFAmortizationPlan, KeepsTheEarlierDateOnATie) {
  const Plan plan = makePlan({{kJan24, {.principal = number("5")}}, {kJan25, {}}}, kJan26);
  const Extremes found = extremesOf(plan);
  EXPECT_EQ(found.peakDate, kJan24);
  EXPECT_EQ(found.troughDate, kJan24);
}

TEST(ORLFAmortizationPlan, SearchesARangeOnly) {
  const Extremes found = extremesOf(twoYears(), utc(2024, 7, 1), utc(2025, 3, 1));
  EXPECT_EQ(textOf(found.peak), "2300");
  EXPECT_EQ(found.peakDate, utc(2025, 3, 1));
  EXPECT_EQ(textOf(found.trough), "1600");
  EXPECT_EQ(found.troughDate, utc(2024, 7, 1));
}

TEST(ORLFAmortizationPlan, TakesTheStartOfAnOpenPlan) {
  const Plan plan =
      makePlan({{kJan24, {.principal = number("1000"), .contribution = number("100")}}}, kOpen);
  const Extremes found = extremesOf(plan);
  EXPECT_EQ(textOf(found.peak), "1000");
  EXPECT_EQ(found.peakDate, kJan24);
}

TEST(ORLFAmortizationPlan, HasNoPeakWhereAnOpenSegmentStartsBelowTheEndOfTheOneBefore) {
  // The end of the segment before is what the test without added years compares with.
  const Plan plan = makePlan({{kJan24, {.principal = number("0"), .contribution = number("100")}},
                              {kJan25, {.principal = number("7")}}},
                             kOpen);
  const Extremes found = extremesOf(plan);
  EXPECT_EQ(textOf(found.peak), "nil");
  EXPECT_EQ(found.peakDate, std::nullopt);
  EXPECT_EQ(textOf(found.trough), "0");
  EXPECT_EQ(found.troughDate, kJan24);
}

// ---- starting principal ----

TEST(ORLFAmortizationPlan, SolvesForTheStartingPrincipal) {
  const Plan plan = makePlan(
      {{kJan24, {.principal = number("1"), .contribution = number("100"), .rate = number("0.05")}}},
      kOpen);
  const Plan before = copyOf(plan);
  const NSDate target = utc(2034, 1, 1);
  const auto principal =
      ORLFAmortizationPlan::startingPrincipalOnDate({.startDate = kJan24,
                                                     .forAmortizationPlan = *plan,
                                                     .toMatchPlannedBalance = number("50000"),
                                                     .onDate = target,
                                                     .usingCalendar = utcCalendar(),
                                                     .roundingBehavior = cents()});
  ASSERT_TRUE(principal);
  EXPECT_TRUE(plan->isEqual(before.get()));
  const double growth = std::pow(1 + 0.05 / 12, 120);
  const double annuity = (growth - 1) / (0.05 / 12) * 100 * (1 + 0.05 / 12);
  EXPECT_NEAR(principal->doubleValue(), (50000 - annuity) / growth, 0.011);
}

TEST(ORLFAmortizationPlan, SolvesForADebt) {
  const Plan plan =
      makePlan({{kJan24, {.contribution = number("500"), .rate = number("0.04")}}}, kOpen);
  const auto principal =
      ORLFAmortizationPlan::startingPrincipalOnDate({.startDate = kJan24,
                                                     .forAmortizationPlan = *plan,
                                                     .toMatchPlannedBalance = number("0"),
                                                     .onDate = utc(2034, 1, 1),
                                                     .usingCalendar = utcCalendar(),
                                                     .roundingBehavior = cents()});
  ASSERT_TRUE(principal);
  const double growth = std::pow(1 + 0.04 / 12, 120);
  EXPECT_NEAR(principal->doubleValue(),
              -(growth - 1) / (0.04 / 12) * 500 * (1 + 0.04 / 12) / growth, 0.011);
}

struct Solution {
  NSDate from = kJan24;
  const char* target = "0";
  NSDate on = kJan25;
  const NSDecimalNumberBehaviors* behavior = nullptr;
};

std::string solved(const Plan& plan, const Solution& wanted) {
  const ORLFRoundingBehavior inCents(NSRoundPlain, 2);
  return textOf(ORLFAmortizationPlan::startingPrincipalOnDate(
      {.startDate = wanted.from,
       .forAmortizationPlan = *plan,
       .toMatchPlannedBalance = number(wanted.target),
       .onDate = wanted.on,
       .usingCalendar = utcCalendar(),
       .roundingBehavior = wanted.behavior ? wanted.behavior : &inCents}));
}

Plan hundredAMonth(std::optional<NSDate> end) {
  return makePlan({{kJan24, {.contribution = number("100")}}}, end);
}

TEST(ORLFAmortizationPlan, SolvesForTheBalanceOfTheSegmentThatStartsOnTheDate) {
  // A day before, the balance is still that of the first segment: eleven contributions.
  EXPECT_EQ(solved(twoYearsWithReset(), {.target = "2000", .on = utc(2024, 12, 31)}), "900");
  // On the boundary it is 7000, whatever the principal: the first one tried stands.
  EXPECT_EQ(solved(twoYearsWithReset(), {.target = "7000", .on = kJan25}), "0");
  EXPECT_EQ(solved(twoYearsWithReset(), {.target = "2200", .on = kJan25}), "nil");
  EXPECT_EQ(solved(twoYearsWithReset(), {.target = "9000", .on = kJan25}), "nil");
}

TEST(ORLFAmortizationPlan, SolvesOverTheRangeOfTheTwoDates) {
  const Plan plan = hundredAMonth(kJan25);
  EXPECT_EQ(solved(plan, {.from = kJan24, .target = "1500"}), "300");
  EXPECT_EQ(solved(plan, {.from = utc(2023, 1, 1), .target = "1500"}), "300");
  EXPECT_EQ(solved(plan, {.from = utc(2024, 7, 1), .target = "1500"}), "900");
  // Past the plan's end its last segment goes on, though the plan itself ends.
  EXPECT_EQ(solved(plan, {.target = "2000", .on = utc(2025, 7, 1)}), "200");
  EXPECT_EQ(textOf(plan->plannedBalanceOnDate(utc(2025, 7, 1), true, utcCalendar(), nullptr)),
            "1200");
  // Within a plan that has begun, a date before the start is a date of the plan.
  EXPECT_EQ(solved(plan, {.from = utc(2024, 7, 1), .target = "500", .on = utc(2024, 3, 1)}), "300");
}

TEST(ORLFAmortizationPlan, ComparesBalancesUnderTheBehaviourItSolvesWith) {
  const ORLFRoundingBehavior thousands(NSRoundPlain, -3);
  // 1000 is tried and lies 250 below, which is nothing in thousands.
  EXPECT_EQ(solved(hundredAMonth(kJan25), {.target = "2250", .behavior = &thousands}), "1000");
  const ORLFRoundingBehavior whole(NSRoundDown, 0);
  EXPECT_EQ(solved(hundredAMonth(kJan25), {.target = "1999.5", .behavior = &whole}), "800");
}

TEST(ORLFAmortizationPlan, TakesTheFirstPrincipalWhereThereIsNoBalance) {
  const Plan plan = hundredAMonth(kJan26);
  EXPECT_EQ(solved(plan, {.target = "5000", .on = utc(2023, 6, 1)}), "0");
  // Contributions of 38 digits are not multiplied without loss, which this behaviour answers with
  // nil.
  const Plan lossy = makePlan(
      {{kJan24, {.contribution = number("0.33333333333333333333333333333333333333")}}}, kJan26);
  const auto strict = rounding(NSRoundPlain, 2);
  EXPECT_EQ(solved(lossy, {.target = "5000", .behavior = strict.get()}), "0");
  EXPECT_EQ(solved(lossy, {.target = "5000"}), "4996");
}

TEST(ORLFAmortizationPlan, RoundsSumsThatAreNotExactWhereTheBehaviourLetsThemStand) {
  const Plan plan =
      makePlan({{kJan24,
                 {.principal = number("0.1"),
                  .contribution = number("0.33333333333333333333333333333333333333")}}},
               kJan25);
  const ORLFRoundingBehavior inCents(NSRoundBankers, 2);
  const std::vector<NSDate> dates{utc(2024, 8, 1), kJan25};
  EXPECT_EQ(textOf(plan->plannedBalanceOnDate(utc(2024, 8, 1), true, utcCalendar(), &inCents)),
            "2.43");
  EXPECT_EQ(textOf(plan->plannedBalancesOnDates(dates, true, utcCalendar(), &inCents)[1]), "4.1");
  EXPECT_EQ(textOf(plan->plannedContributionsFromStartDate({.startDate = kJan24,
                                                            .toEndDate = kJan25,
                                                            .usingCalendar = utcCalendar(),
                                                            .roundingBehavior = &inCents})),
            "4");
}

}  // namespace
}  // namespace orlftest
