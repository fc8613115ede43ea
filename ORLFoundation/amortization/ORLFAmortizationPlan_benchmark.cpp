// What a plan costs: 400 monthly balances over 50 segments in one pass, beside the same asked date
// by date; and the starting principal that reaches a balance after 30 years.

#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>
#include <benchmark/benchmark.h>

namespace {

using namespace orlftest;

constexpr int kSegments = 50;
constexpr int kDates = 400;

NSDate monthsOn(NSInteger months) {
  return *newYorkCalendar().dateByAddingUnit(
      NSCalendarUnitMonth, months, utc(2020, 1, 31).dateByAddingTimeInterval(5 * 3600), 0);
}

/// Eight months each, with terms that change from member to member.
Plan planOfFiftySegments() {
  const char* const rates[] = {"0.045", "0.031", "0.07"};
  std::vector<Stretch> stretches;
  for (int index = 0; index < kSegments; ++index) {
    Terms terms{.contribution = number("125.50"), .rate = number(rates[index % 3])};
    if (index == 0) terms.principal = number("-250000");
    if (index % 2 == 0) terms.inflation = number("0.02");
    stretches.push_back({monthsOn(index * 8), terms});
  }
  return makePlan(stretches, monthsOn(kSegments * 8));
}

std::vector<NSDate> monthlyDates() {
  std::vector<NSDate> dates;
  for (int month = 1; month <= kDates; ++month) dates.push_back(monthsOn(month));
  return dates;
}

std::vector<Decimal> oneByOne(const Plan& plan, const std::vector<NSDate>& dates) {
  std::vector<Decimal> balances;
  for (const NSDate date : dates) {
    balances.push_back(plan->plannedBalanceOnDate(date, true, newYorkCalendar(), cents()));
  }
  return balances;
}

void manyBalances(benchmark::State& state) {
  const Plan plan = planOfFiftySegments();
  const auto dates = monthlyDates();
  if (plan->plannedBalancesOnDates(dates, true, newYorkCalendar(), cents()) !=
      oneByOne(plan, dates)) {
    return state.SkipWithError("the two forms differ");
  }
  for (auto _ : state) {
    benchmark::DoNotOptimize(plan->plannedBalancesOnDates(dates, true, newYorkCalendar(), cents()));
  }
  state.SetItemsProcessed(state.iterations() * kDates);
}
BENCHMARK(manyBalances)->Name("manyBalances/ours")->Unit(benchmark::kMicrosecond);

void balancesOneByOne(benchmark::State& state) {
  const Plan plan = planOfFiftySegments();
  const auto dates = monthlyDates();
  for (auto _ : state) benchmark::DoNotOptimize(oneByOne(plan, dates));
  state.SetItemsProcessed(state.iterations() * kDates);
}
BENCHMARK(balancesOneByOne)->Name("balancesOneByOne/ours")->Unit(benchmark::kMicrosecond);

void startingPrincipal(benchmark::State& state) {
  const Plan plan = makePlan(
      {{monthsOn(0), {.contribution = number("1266.71"), .rate = number("0.045")}}}, std::nullopt);
  const ORLFAmortizationPlan::StartingPrincipal question{.startDate = monthsOn(0),
                                                         .forAmortizationPlan = *plan,
                                                         .toMatchPlannedBalance = number("0"),
                                                         .onDate = monthsOn(360),
                                                         .usingCalendar = newYorkCalendar(),
                                                         .roundingBehavior = cents()};
  const Decimal answer = ORLFAmortizationPlan::startingPrincipalOnDate(question);
  const auto check = plan->amortizationPlanWithStartDate(monthsOn(0), monthsOn(360));
  check->firstSegment()->setCurrentPrincipal(answer);
  const Decimal reached =
      check->plannedBalanceOnDate(monthsOn(360), true, newYorkCalendar(), cents());
  if (!answer || !reached || std::abs(reached->doubleValue()) > 0.05) {
    return state.SkipWithError("the principal does not reach the balance");
  }
  for (auto _ : state) {
    benchmark::DoNotOptimize(ORLFAmortizationPlan::startingPrincipalOnDate(question));
  }
}
BENCHMARK(startingPrincipal)->Name("startingPrincipal/ours")->Unit(benchmark::kMicrosecond);

}  // namespace
