#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/VectorCodec.h>

#include <cmath>

namespace orlftest {
namespace {

const NSDate kJan24 = utc(2024, 1, 1);
const NSDate kJan25 = utc(2025, 1, 1);
const NSDate kJan26 = utc(2026, 1, 1);
const NSDate kOpen = NSDate::distantFuture();

/// "2024-01-01 2025-01-01 | 2026-01-01": starts of the members and end of the plan.
std::string shapeOf(const ORLFAmortizationPlan& plan) {
  const auto day = [](std::optional<NSDate> date) {
    return date == kOpen ? "open" : vectorFromDate(date).substr(0, 10);
  };
  std::string shape;
  for (const Segment& member : plan.segments()) shape += day(member->startDate()) + " ";
  return shape + "| " + day(plan.endDate());
}

/// 2024 with 100 a month from 1000, 2025 with 50 a month on top.
Plan twoYears() {
  return makePlan({{kJan24, {.principal = number("1000"), .contribution = number("100")}},
                   {kJan25, {.contribution = number("50")}}},
                  kJan26);
}

/// The same, but 2025 starts again from 7000.
Plan twoYearsWithReset() {
  return makePlan({{kJan24, {.principal = number("1000"), .contribution = number("100")}},
                   {kJan25, {.principal = number("7000"), .contribution = number("50")}}},
                  kJan26);
}

std::string balanceOf(const Plan& plan, NSDate date, bool inclusive) {
  return textOf(plan->plannedBalanceOnDate(date, inclusive, utcCalendar(), nullptr));
}

std::vector<std::string> balancesOf(const Plan& plan, const std::vector<NSDate>& dates,
                                    bool inclusive) {
  std::vector<std::string> texts;
  for (const Decimal& balance :
       plan->plannedBalancesOnDates(dates, inclusive, utcCalendar(), nullptr)) {
    texts.push_back(textOf(balance));
  }
  return texts;
}

using testing::ElementsAre;

// ---- one balance ----

TEST(ORLFAmortizationPlan, TellsTheBalanceOnItsStartOnlyInclusively) {
  const Plan plan = makePlan({{kJan24, {.principal = number("1000")}}}, kJan25);
  EXPECT_EQ(balanceOf(plan, kJan24, true), "1000");
  EXPECT_EQ(balanceOf(plan, kJan24, false), "nil");
}

TEST(ORLFAmortizationPlan, HasNoBalanceBeforeItsStart) {
  EXPECT_EQ(balanceOf(twoYears(), utc(2023, 12, 31), true), "nil");
}

TEST(ORLFAmortizationPlan, CarriesTheBalanceFromSegmentToSegment) {
  EXPECT_EQ(balanceOf(twoYears(), kJan25, true), "2200");
  EXPECT_EQ(balanceOf(twoYears(), utc(2025, 7, 1), true), "2500");
}

TEST(ORLFAmortizationPlan, KeepsTheBalanceOfItsEndForLaterDates) {
  EXPECT_EQ(balanceOf(twoYears(), utc(2030, 1, 1), true), "2800");
  EXPECT_EQ(balancesOf(twoYears(), {utc(2030, 1, 1), utc(2031, 1, 1)}, true),
            (std::vector<std::string>{"2800", "2800"}));
}

TEST(ORLFAmortizationPlan, DecidesOnABoundaryByTheFlag) {
  EXPECT_EQ(balanceOf(twoYearsWithReset(), kJan25, true), "7000");
  EXPECT_EQ(balanceOf(twoYearsWithReset(), kJan25, false), "2200");
  EXPECT_EQ(balanceOf(twoYearsWithReset(), utc(2025, 3, 1), false), "7100");
}

TEST(ORLFAmortizationPlan, StartsWithoutAPrincipalFromZero) {
  const Plan plan = makePlan({{kJan24, {.contribution = number("100")}}}, kJan25);
  EXPECT_EQ(balanceOf(plan, utc(2024, 3, 1), true), "200");
}

// ---- many balances ----

TEST(ORLFAmortizationPlan, GivesZeroBeforeItsStartInManyBalances) {
  const std::vector<NSDate> dates{utc(2023, 1, 1), kJan24, utc(2024, 2, 1)};
  EXPECT_THAT(balancesOf(twoYears(), dates, true), ElementsAre("0", "1000", "1100"));
  EXPECT_THAT(balancesOf(twoYears(), dates, false), ElementsAre("0", "0", "1100"));
}

TEST(ORLFAmortizationPlan, TakesTheNextSegmentOnABoundaryInManyBalances) {
  const std::vector<NSDate> dates{utc(2024, 2, 1), kJan25, kJan25,
                                  utc(2025, 2, 1), kJan26, utc(2027, 1, 1)};
  for (const bool inclusive : {true, false}) {
    EXPECT_THAT(balancesOf(twoYearsWithReset(), dates, inclusive),
                ElementsAre("1100", "7000", "7000", "7050", "7600", "7600"));
  }
}

TEST(ORLFAmortizationPlan, PassesOverSegmentsBetweenDatesInManyBalances) {
  const Plan plan = makePlan({{kJan24, {.principal = number("1000"), .contribution = number("1")}},
                              {utc(2024, 4, 1), {.contribution = number("10")}},
                              {utc(2024, 7, 1), {.contribution = number("100")}}},
                             kOpen);
  EXPECT_THAT(balancesOf(plan, {utc(2024, 9, 1)}, true), ElementsAre("1233"));
}

TEST(ORLFAmortizationPlan, TakesASegmentWithoutLengthOnItsBoundary) {
  const auto plan = std::make_shared<ORLFAmortizationPlan>();
  std::vector<Segment> members{
      makeSegment({.principal = number("1000"), .contribution = number("100")}),
      makeSegment({.principal = number("5"), .contribution = number("1")}),
      makeSegment({.contribution = number("10")})};
  members[0]->setStartDate(kJan24);
  members[1]->setStartDate(kJan25);
  members[2]->setStartDate(kJan25);
  plan->setSegments(members);
  plan->setEndDate(kJan26);
  // Its own principal is not taken, because it has no length.
  EXPECT_THAT(balancesOf(plan, {kJan25, kJan25, utc(2025, 2, 1)}, true),
              ElementsAre("2200", "2200", "2210"));
}

TEST(ORLFAmortizationPlan, AgreesWithTheSingleFormInsideItsRange) {
  const Plan plan = makePlan(
      {{utc(2020, 1, 31),
        {.principal = number("-250000"),
         .contribution = number("1267.5"),
         .rate = number("0.045")}},
       {utc(2023, 6, 15),
        {.contribution = number("-12.5"),
         .frequency = every(2, 8192),
         .rate = number("0.031"),
         .inflation = number("0.02")}},
       {utc(2026, 2, 28), {.principal = number("5000"), .contribution = number("100")}},
       {utc(2029, 12, 31),
        {.contribution = number("10"), .frequency = every(3, 2048), .rate = number("0.07")}}},
      utc(2033, 1, 1));
  std::vector<NSDate> dates;
  for (NSInteger day = 1; day < 5000; day += 7) {
    dates.push_back(utc(2020, 1, 31).dateByAddingTimeInterval(86400.0 * static_cast<double>(day)));
  }
  const auto many = plan->plannedBalancesOnDates(dates, true, utcCalendar(), cents());
  for (std::size_t index = 0; index < dates.size(); ++index) {
    EXPECT_EQ(textOf(many[index]),
              textOf(plan->plannedBalanceOnDate(dates[index], true, utcCalendar(), cents())))
        << dates[index].description();
  }
}

// ---- initialiser and derived values ----

TEST(ORLFAmortizationPlan, StartsWithACopyOfItsSegment) {
  const Segment segment = makeSegment({.principal = number("1")});
  const auto plan = ORLFAmortizationPlan::initWithStartDate(kJan24, segment, kJan25);
  ASSERT_EQ(plan->segments().size(), 1U);
  EXPECT_NE(plan->firstSegment(), segment);
  EXPECT_EQ(plan->firstSegment()->startDate(), kJan24);
  EXPECT_EQ(plan->firstSegment()->amortizationPlan(), plan);
  EXPECT_EQ(segment->startDate(), std::nullopt);
  EXPECT_EQ(plan->lastSegment(), plan->firstSegment());
}

TEST(ORLFAmortizationPlan, StartsNowAndStaysOpenByDefault) {
  NSDate::setClock([] { return utc(2024, 6, 1); });
  const auto plan = ORLFAmortizationPlan::initWithStartDate(std::nullopt, makeSegment({}), {});
  NSDate::setClock({});
  EXPECT_EQ(shapeOf(*plan), "2024-06-01 | open");
}

TEST(ORLFAmortizationPlan, TellsNoEndWhileItIsOpen) {
  const Plan plan = makePlan({{kJan24, {}}, {kJan25, {}}}, kOpen);
  EXPECT_EQ(plan->planEndDate(), std::nullopt);
  EXPECT_EQ(plan->lastIntrestingDate(), kJan25);
  plan->setEndDate(kJan26);
  EXPECT_EQ(plan->planEndDate(), kJan26);
  EXPECT_EQ(plan->lastIntrestingDate(), kJan26);
}

TEST(ORLFAmortizationPlan, AnswersWithoutSegments) {
  const auto plan = std::make_shared<ORLFAmortizationPlan>();
  EXPECT_EQ(plan->firstSegment(), nullptr);
  EXPECT_EQ(plan->lastSegment(), nullptr);
  EXPECT_EQ(plan->planStartDate(), std::nullopt);
  EXPECT_EQ(plan->planEndDate(), std::nullopt);
  EXPECT_EQ(plan->lastIntrestingDate(), std::nullopt);
  EXPECT_EQ(balanceOf(plan, kJan24, true), "nil");
  EXPECT_THAT(balancesOf(plan, {kJan24, kJan25}, true), ElementsAre("0", "0"));
  EXPECT_EQ(plan->plannedPeakBalanceBetweenStartDate({.usingCalendar = utcCalendar()}),
            std::nullopt);
  EXPECT_EQ(plan->contributionDateAfterDate(std::nullopt, utcCalendar()), std::nullopt);
  EXPECT_EQ(plan->contributionDateBeforeDate(kJan24, utcCalendar()), std::nullopt);
  plan->setPlanSegment(makeSegment({}), kJan24, kJan25, false);
  EXPECT_EQ(shapeOf(*plan), "2024-01-01 | 2025-01-01");
}

// ---- segment on a date ----

TEST(ORLFAmortizationPlan, EndsExclusively) {
  const Plan plan = twoYears();
  EXPECT_EQ(plan->planSegementNoCopyForDate({.date = kJan26, .usingCalendar = utcCalendar()}),
            nullptr);
  EXPECT_EQ(
      plan->planSegementNoCopyForDate({.date = utc(2025, 12, 31), .usingCalendar = utcCalendar()}),
      plan->lastSegment());
}

TEST(ORLFAmortizationPlan, TellsTheBoundsOfTheSegmentInForce) {
  const Plan plan = makePlan({{utc(2024, 1, 31), {.frequency = monthly(2)}}, {kJan25, {}}}, kJan26);
  std::optional<NSDate> start;
  std::optional<NSDate> end;
  std::optional<NSDate> last;
  const Segment segment = plan->planSegementNoCopyForDate({.date = std::nullopt,
                                                           .usingCalendar = utcCalendar(),
                                                           .startDate = &start,
                                                           .endDate = &end,
                                                           .lastContributionDate = &last});
  EXPECT_EQ(segment, plan->firstSegment());
  EXPECT_EQ(start, utc(2024, 1, 31));
  EXPECT_EQ(end, kJan25);
  EXPECT_EQ(last, utc(2024, 11, 30));
}

TEST(ORLFAmortizationPlan, LeavesTheOutputsAloneWhereNoSegmentIsInForce) {
  std::optional<NSDate> start = kOpen;
  const Plan plan = twoYears();
  for (const NSDate date : {utc(2023, 1, 1), kJan26}) {
    EXPECT_EQ(plan->planSegementNoCopyForDate(
                  {.date = date, .usingCalendar = utcCalendar(), .startDate = &start}),
              nullptr);
  }
  EXPECT_EQ(start, kOpen);
}

TEST(ORLFAmortizationPlan, HasNoLastContributionDateWhereASegmentNeverEnds) {
  std::optional<NSDate> last = kJan24;
  const Plan plan = makePlan({{kJan24, {}}}, kOpen);
  (void)plan->planSegementNoCopyForDate(
      {.date = kJan25, .usingCalendar = utcCalendar(), .lastContributionDate = &last});
  EXPECT_EQ(last, std::nullopt);
}

TEST(ORLFAmortizationPlan, HandsOutACopyOfTheSegmentInForce) {
  const Plan plan = twoYears();
  const Segment copy = plan->planSegementForDate({.date = kJan24, .usingCalendar = utcCalendar()});
  EXPECT_NE(copy, plan->firstSegment());
  EXPECT_TRUE(copy->isEqual(plan->firstSegment().get()));
  EXPECT_EQ(copy->amortizationPlan(), nullptr);
  EXPECT_EQ(plan->planSegementForDate({.date = kJan26, .usingCalendar = utcCalendar()}), nullptr);
}

// ---- contributions ----

std::string contributionsOf(const Plan& plan, std::optional<NSDate> from, NSDate to) {
  return textOf(plan->plannedContributionsFromStartDate(
      {.startDate = from, .toEndDate = to, .usingCalendar = utcCalendar()}));
}

TEST(ORLFAmortizationPlan, SumsContributionsOverItsSegments) {
  EXPECT_EQ(contributionsOf(twoYears(), std::nullopt, kJan26), "1800");
  EXPECT_EQ(contributionsOf(twoYears(), utc(2024, 10, 1), utc(2025, 3, 1)), "400");
  EXPECT_EQ(contributionsOf(twoYears(), std::nullopt, utc(2040, 1, 1)), "1800");
  EXPECT_EQ(contributionsOf(twoYears(), kJan26, utc(2040, 1, 1)), "0");
  EXPECT_EQ(contributionsOf(twoYears(), kJan25, kJan24), "0");
}

TEST(ORLFAmortizationPlan, PassesOverSegmentsWithoutContributions) {
  const Plan plan = makePlan({{kJan24, {}}, {kJan25, {.contribution = number("50")}}}, kJan26);
  EXPECT_EQ(contributionsOf(plan, std::nullopt, kJan26), "600");
}

TEST(ORLFAmortizationPlan, FindsTheNextContributionDate) {
  const Plan plan =
      makePlan({{utc(2024, 1, 31), {}}, {utc(2024, 5, 10), {.frequency = monthly(2)}}}, kJan25);
  EXPECT_EQ(plan->contributionDateAfterDate(std::nullopt, utcCalendar()), utc(2024, 1, 31));
  EXPECT_EQ(plan->contributionDateAfterDate(utc(2023, 1, 1), utcCalendar()), utc(2024, 1, 31));
  EXPECT_EQ(plan->contributionDateAfterDate(utc(2024, 1, 31), utcCalendar()), utc(2024, 2, 29));
  // The first segment's own date, beyond its end; the second is not looked at.
  EXPECT_EQ(plan->contributionDateAfterDate(utc(2024, 5, 1), utcCalendar()), utc(2024, 5, 31));
  EXPECT_EQ(plan->contributionDateAfterDate(utc(2024, 5, 10), utcCalendar()), utc(2024, 7, 10));
  EXPECT_EQ(plan->contributionDateAfterDate(kJan25, utcCalendar()), std::nullopt);
}

TEST(ORLFAmortizationPlan, FindsTheContributionDateBefore) {
  const Plan plan = makePlan({{utc(2024, 1, 31), {}}}, utc(2024, 6, 1));
  EXPECT_EQ(plan->contributionDateBeforeDate(utc(2024, 1, 31), utcCalendar()), std::nullopt);
  EXPECT_EQ(plan->contributionDateBeforeDate(utc(2024, 2, 1), utcCalendar()), utc(2024, 1, 31));
  EXPECT_EQ(plan->contributionDateBeforeDate(utc(2024, 3, 31), utcCalendar()), utc(2024, 2, 29));
  // The dates run out behind the plan's end.
  EXPECT_EQ(plan->contributionDateBeforeDate(utc(2040, 1, 1), utcCalendar()), utc(2024, 6, 30));
}

TEST(ORLFAmortizationPlan, EndsAWalkOverContributionDatesThatDoNotAdvance) {
  const Plan plan = makePlan({{kJan24, {.frequency = monthly(-1)}}}, kJan25);
  EXPECT_EQ(plan->contributionDateBeforeDate(utc(2024, 6, 1), utcCalendar()), kJan24);
}

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

// ---- the object ----

TEST(ORLFAmortizationPlan, CopiesShareNothing) {
  const Plan plan = twoYears();
  const Plan copy = copyOf(plan);
  EXPECT_TRUE(copy->isEqual(plan.get()));
  EXPECT_EQ(copy->hash(), plan->hash());
  for (std::size_t index = 0; index < 2; ++index) {
    EXPECT_NE(copy->segments()[index], plan->segments()[index]);
    EXPECT_EQ(copy->segments()[index]->amortizationPlan(), copy);
    EXPECT_EQ(plan->segments()[index]->amortizationPlan(), plan);
  }
  copy->firstSegment()->setContribution(number("1"));
  EXPECT_FALSE(copy->isEqual(plan.get()));
  EXPECT_EQ(textOf(plan->firstSegment()->contribution()), "100");
}

TEST(ORLFAmortizationPlan, EqualsByEndAndSegments) {
  const Plan plan = twoYears();
  EXPECT_TRUE(plan->isEqual(twoYears().get()));
  EXPECT_FALSE(plan->isEqual(twoYearsWithReset().get()));
  EXPECT_FALSE(plan->isEqual(nullptr));
  EXPECT_FALSE(plan->isEqual(plan->firstSegment().get()));
  const Plan open = twoYears();
  open->setEndDate(std::nullopt);
  EXPECT_FALSE(plan->isEqual(open.get()));
  EXPECT_FALSE(open->isEqual(plan.get()));
  const Plan other = twoYears();
  other->setEndDate(std::nullopt);
  EXPECT_TRUE(open->isEqual(other.get()));
  EXPECT_FALSE(plan->isEqual(makePlan({{kJan24, {.principal = number("1000")}}}, kJan26).get()));
}

TEST(ORLFAmortizationPlan, DescribesItsSegmentsAndItsEnd) {
  const Plan plan = makePlan({{kJan24, {.principal = number("1")}}}, kJan25);
  EXPECT_EQ(plan->description(),
            "(\n    \"2024-01-01 00:00:00 +0000, bal: 1, con: (null), frq: 1 month, comp: (null), "
            "comp freq: (null), inflat: (null)\"\n)\r2025-01-01 00:00:00 +0000");
}

}  // namespace
}  // namespace orlftest
