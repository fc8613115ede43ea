// What two threads do beside one: balances of a plan, dates of a rule, products and sums of
// decimals. Both threads ask the same objects. "ours" is two threads at once, in wall time for all
// that they did together; the ratio of "oneThread" is then how many times the work of one thread
// two do. Processor time for each piece of work shows whether they wait for each other where other
// programs use the processors too.

#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

using namespace orlftest;

const NSCalendar& newYork() {
  static const auto calendar = calendarIn("America/New_York");
  return *calendar;
}

/// Each piece of work answers the same number each time, from objects that are made once.
double balances() {
  constexpr NSInteger kSegments = 12;
  static const std::vector<NSDate> dates = [] {
    std::vector<NSDate> monthly;
    for (NSInteger month = 0; month <= kSegments * 8; ++month)
      monthly.push_back(
          *newYork().dateByAddingUnit(NSCalendarUnitMonth, month, utc(2020, 1, 31), 0));
    return monthly;
  }();
  static const Plan plan = [] {
    std::vector<orlftest::Stretch> stretches;
    for (std::size_t i = 0; i < kSegments; ++i)
      stretches.push_back(
          {dates[i * 8],
           {.contribution = number("125.50"), .rate = number(i % 2 == 0 ? "0.045" : "0.07")}});
    return makePlan(stretches, dates.back());
  }();
  return plan->plannedBalancesOnDates(dates, true, newYork(), cents()).back()->doubleValue();
}

double dates() {
  static const auto rule =
      ORLFDateRecurrenceRule::dateRecurrenceRuleFromICalendarString("RRULE:FREQ=MONTHLY;BYDAY=2TU");
  static const NSDate start = utc(2020, 1, 31);
  constexpr NSUInteger kDates = 1000;
  double sum = 0;
  rule->enumerateDatesForCalendarStartDate({.calendar = newYork(), .startDate = start},
                                           [&sum](NSDate date, NSUInteger count, bool& stop) {
                                             sum += date.timeIntervalSince1970();
                                             stop = count == kDates;
                                           });
  return sum;
}

double decimals() {
  static const NSDecimalNumber rate = number("0.0475");
  static const NSDecimalNumber amount = number("1234.56");
  constexpr int kProducts = 100;
  NSDecimalNumber sum = NSDecimalNumber::zero();
  for (int i = 0; i < kProducts; ++i)
    sum = *sum.decimalNumberByAdding(*amount.decimalNumberByMultiplyingBy(rate, cents()), cents());
  return sum.doubleValue();
}

void run(benchmark::State& state, double (*work)()) {
  const double expected = work();
  bool agrees = true;
  for (auto _ : state) agrees = work() == expected && agrees;
  if (!agrees) state.SkipWithError("a thread came to another answer");
  state.SetItemsProcessed(state.iterations());
}

const bool kRegistered = [] {
  struct Work {
    std::string name;
    double (*answer)();
  };
  for (const Work& work : {Work{"balancesOnTwoThreads", balances}, Work{"datesOnTwoThreads", dates},
                           Work{"decimalsOnTwoThreads", decimals}}) {
    benchmark::RegisterBenchmark((work.name + "/ours").c_str(), run, work.answer)
        ->Threads(2)
        ->UseRealTime()
        ->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark((work.name + "/oneThread").c_str(), run, work.answer)
        ->UseRealTime()
        ->Unit(benchmark::kMicrosecond);
  }
  return true;
}();

}  // namespace
