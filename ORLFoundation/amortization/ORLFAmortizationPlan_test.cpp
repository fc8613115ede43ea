#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>
#include <ORLFoundation/decimal/ORLFRoundingBehavior.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orlftest {
namespace {

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

TEST(ORLFAmortizationPlan, CountsItsStartFromTheFirstMoveOnInManyBalances) {
  // The second date is taken where the walk has come to: in the member of 2025.
  const Plan plan = makePlan(
      {{kJan24, {.principal = number("1000")}}, {kJan25, {.principal = number("7000")}}}, kJan26);
  for (const bool inclusive : {true, false}) {
    EXPECT_THAT(balancesOf(plan, {utc(2025, 7, 1), kJan24}, inclusive),
                ElementsAre("7000", "7000"));
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

TEST(ORLFAmortizationPlan, HasNoSumOfContributionsAfterASumThatIsAnError) {
  const Terms huge{.contribution = number("9e164")};
  const Plan plan = makePlan(
      {{kJan24, huge}, {utc(2024, 2, 1), huge}, {utc(2024, 3, 1), {.contribution = number("1")}}},
      utc(2024, 4, 1));
  const ORLFRoundingBehavior rounded(NSRoundPlain, 2, ORLFDecimalErrorBehaviorReturnNil);
  const auto sumUntil = [&](NSDate end) {
    return textOf(plan->plannedContributionsFromStartDate(
        {.toEndDate = end, .usingCalendar = utcCalendar(), .roundingBehavior = &rounded}));
  };
  EXPECT_EQ(sumUntil(utc(2024, 2, 1)), number("9e164").stringValue());
  EXPECT_EQ(sumUntil(utc(2024, 3, 1)), "nil");
  EXPECT_EQ(sumUntil(utc(2024, 4, 1)), "nil");
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

}  // namespace
}  // namespace orlftest
