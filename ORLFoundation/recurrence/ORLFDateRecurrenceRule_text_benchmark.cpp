// How fast rule texts are read; 100,000 a second are promised.

#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <benchmark/benchmark.h>

namespace {

using ORLFoundation::ORLFDateRecurrenceRule;

void readRuleText(benchmark::State& state) {
  constexpr const char* kText =
      "RRULE:FREQ=MONTHLY;INTERVAL=2;BYDAY=1MO,-1FR;BYMONTH=1,4,7,10;COUNT=12";
  const auto rule = ORLFDateRecurrenceRule::dateRecurrenceRuleFromICalendarString(kText);
  if (!rule || rule->daysOfTheWeek()->size() != 2 || rule->monthsOfTheYear()->size() != 4) {
    state.SkipWithError("the text was not read");
    return;
  }
  for (auto _ : state) {
    benchmark::DoNotOptimize(ORLFDateRecurrenceRule::dateRecurrenceRuleFromICalendarString(kText));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(readRuleText)->Name("readRuleText/ours");

}  // namespace
