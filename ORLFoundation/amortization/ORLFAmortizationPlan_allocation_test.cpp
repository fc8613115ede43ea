// Counts allocations of balances through a replaced operator new.
#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>
#include <gtest/gtest.h>
#include <tests/support/AllocationCount.h>

namespace orlftest {
namespace {

/// With growth, without growth, with inflation, in weeks and in quarters.
Plan planOfAllKinds() {
  return makePlan(
      {{utc(2020, 1, 31),
        {.principal = number("-1000"), .contribution = number("12.5"), .rate = number("0.045")}},
       {utc(2022, 1, 1), {.contribution = number("12.5")}},
       {utc(2024, 1, 1),
        {.contribution = number("3"),
         .frequency = every(2, 8192),
         .rate = number("0.031"),
         .inflation = number("0.02")}},
       {utc(2026, 1, 1),
        {.contribution = number("3"), .frequency = every(1, 2048), .rate = number("0.05")}}},
      utc(2028, 1, 1));
}

std::vector<NSDate> everyTenDays() {
  std::vector<NSDate> dates;
  for (int day = 0; day < 3000; day += 10) {
    dates.push_back(utc(2020, 1, 31).dateByAddingTimeInterval(86400.0 * day));
  }
  return dates;
}

TEST(ORLFAmortizationPlanAllocation, ManyBalancesAllocateTheirListOnly) {
  const Plan plan = planOfAllKinds();
  const auto dates = everyTenDays();
  const NSDecimalNumberBehaviors* behavior = cents();
  const std::size_t before = orlftest::allocationCount();
  const auto balances = plan->plannedBalancesOnDates(dates, true, utcCalendar(), behavior);
  EXPECT_EQ(orlftest::allocationCount() - before, 1U);
  EXPECT_EQ(balances.size(), dates.size());
}

TEST(ORLFAmortizationPlanAllocation, SingleBalancesAllocateNothing) {
  const Plan plan = planOfAllKinds();
  const auto dates = everyTenDays();
  const NSDecimalNumberBehaviors* behavior = cents();
  std::size_t found = 0;
  const std::size_t before = orlftest::allocationCount();
  for (const NSDate date : dates) {
    found += plan->plannedBalanceOnDate(date, true, utcCalendar(), behavior).has_value();
  }
  EXPECT_EQ(orlftest::allocationCount() - before, 0U);
  EXPECT_EQ(found, dates.size());
}

TEST(ORLFAmortizationPlanAllocation, TheSearchForPeriodsAllocatesNothing) {
  const Segment segment = makeSegment({.contribution = number("100"), .rate = number("0.05")});
  const NSDecimalNumber zero = NSDecimalNumber::zero();
  const NSDecimalNumber target = number("123456");
  const std::size_t before = orlftest::allocationCount();
  const NSUInteger periods = segment->numberOfContributionPeriodsToReachBalance(
      ORLFAmortizationPlanSegment::SegmentPeriodsToReachBalance{
          .balance = target,
          .startingWithBalance = zero,
          .fristContributionDate = utc(2024, 1, 1),
          .usingCalendar = utcCalendar(),
          .roundingBehavior = nullptr});
  EXPECT_EQ(orlftest::allocationCount() - before, 0U);
  EXPECT_LT(periods, 1000U);
}

}  // namespace
}  // namespace orlftest
