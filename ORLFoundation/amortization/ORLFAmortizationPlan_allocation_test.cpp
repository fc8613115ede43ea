// Counts allocations of balances through a replaced operator new.
#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<std::size_t> allocations{0};

void* tried(std::size_t size) noexcept {
  ++allocations;
  return std::malloc(size == 0 ? 1 : size);
}

void* counted(std::size_t size) {
  if (void* memory = tried(size)) return memory;
  throw std::bad_alloc();
}
}  // namespace

void* operator new(std::size_t size) { return counted(size); }
void* operator new[](std::size_t size) { return counted(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return tried(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return tried(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

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
  const std::size_t before = allocations;
  const auto balances = plan->plannedBalancesOnDates(dates, true, utcCalendar(), behavior);
  EXPECT_EQ(allocations - before, 1U);
  EXPECT_EQ(balances.size(), dates.size());
}

TEST(ORLFAmortizationPlanAllocation, SingleBalancesAllocateNothing) {
  const Plan plan = planOfAllKinds();
  const auto dates = everyTenDays();
  const NSDecimalNumberBehaviors* behavior = cents();
  std::size_t found = 0;
  const std::size_t before = allocations;
  for (const NSDate date : dates) {
    found += plan->plannedBalanceOnDate(date, true, utcCalendar(), behavior).has_value();
  }
  EXPECT_EQ(allocations - before, 0U);
  EXPECT_EQ(found, dates.size());
}

TEST(ORLFAmortizationPlanAllocation, TheSearchForPeriodsAllocatesNothing) {
  const Segment segment = makeSegment({.contribution = number("100"), .rate = number("0.05")});
  const NSDecimalNumber zero = NSDecimalNumber::zero();
  const NSDecimalNumber target = number("123456");
  const std::size_t before = allocations;
  const NSUInteger periods = segment->numberOfContributionPeriodsToReachBalance(
      ORLFAmortizationPlanSegment::SegmentPeriodsToReachBalance{
          .balance = target,
          .startingWithBalance = zero,
          .fristContributionDate = utc(2024, 1, 1),
          .usingCalendar = utcCalendar(),
          .roundingBehavior = nullptr});
  EXPECT_EQ(allocations - before, 0U);
  EXPECT_LT(periods, 1000U);
}

}  // namespace
}  // namespace orlftest
