// What two threads do beside one: balances of a plan, dates of a rule, products and sums of
// decimals. Both threads ask the same objects. Each thread stays on a processor of its own and
// counts what it does until one common end, so that processors of unlike speed do not wait for each
// other. "ours" is the time for a piece of work of two threads at once; "oneThread" is that of one
// thread alone, which takes turns on the same two processors. Their ratio is how many times the
// work of one thread two do: 2 where they share nothing.

#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>
#include <benchmark/benchmark.h>

#include <sched.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace orlftest;

/// Each piece of work answers the same number each time, from objects that are made once.
double balances() {
  constexpr NSInteger kSegments = 12;
  static const std::vector<NSDate> dates = [] {
    std::vector<NSDate> monthly;
    for (NSInteger month = 0; month <= kSegments * 8; ++month)
      monthly.push_back(
          *newYorkCalendar().dateByAddingUnit(NSCalendarUnitMonth, month, utc(2020, 1, 31), 0));
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
  return plan->plannedBalancesOnDates(dates, true, newYorkCalendar(), cents())
      .back()
      ->doubleValue();
}

double dates() {
  static const auto rule =
      ORLFDateRecurrenceRule::dateRecurrenceRuleFromICalendarString("RRULE:FREQ=MONTHLY;BYDAY=2TU");
  static const NSDate start = utc(2020, 1, 31);
  constexpr NSUInteger kDates = 1000;
  double sum = 0;
  rule->enumerateDatesForCalendarStartDate({.calendar = newYorkCalendar(), .startDate = start},
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

using Clock = std::chrono::steady_clock;
using Answer = double (*)();

constexpr std::chrono::milliseconds kSpan{20};
constexpr std::chrono::milliseconds kTimeToStart{1};

/// The first two that the process may use; one of them twice where there is but one.
std::vector<int> twoProcessors() {
  cpu_set_t allowed;
  CPU_ZERO(&allowed);
  sched_getaffinity(0, sizeof allowed, &allowed);
  std::vector<int> list;
  for (int processor = 0; processor < CPU_SETSIZE && list.size() < 2; ++processor)
    if (CPU_ISSET(processor, &allowed)) list.push_back(processor);
  list.resize(2, list.front());
  return list;
}

void stayOn(int processor) {
  cpu_set_t only;
  CPU_ZERO(&only);
  CPU_SET(processor, &only);
  sched_setaffinity(0, sizeof only, &only);
}

class Counter {
 public:
  explicit Counter(Answer work) : work_(work), expected_(work()) {}

  /// Adds what threads on these processors, one on each, do in one span.
  void count(const std::vector<int>& processors) {
    const Clock::time_point start = Clock::now() + kTimeToStart;
    std::vector<std::thread> threads;
    threads.reserve(processors.size());
    for (const int processor : processors)
      threads.emplace_back([this, processor, start] {
        stayOn(processor);
        std::this_thread::sleep_until(start);
        std::int64_t pieces = 0;
        for (; Clock::now() < start + kSpan; ++pieces)
          if (work_() != expected_) agrees_ = false;
        pieces_ += pieces;
      });
    for (std::thread& thread : threads) thread.join();
  }
  [[nodiscard]] std::int64_t pieces() const { return pieces_; }
  [[nodiscard]] bool agrees() const { return agrees_; }

 private:
  Answer work_;
  double expected_;
  std::atomic<std::int64_t> pieces_ = 0;
  std::atomic<bool> agrees_ = true;
};

/// Each turn takes one span, with threads on the processors of the turn.
void run(benchmark::State& state, Answer work, const std::vector<std::vector<int>>& turns) {
  Counter counter(work);
  for (auto _ : state) {
    for (const std::vector<int>& processors : turns) counter.count(processors);
    state.SetIterationTime(std::chrono::duration<double>(kSpan).count() *
                           static_cast<double>(turns.size()));
  }
  if (!counter.agrees()) state.SkipWithError("a thread came to another answer");
  state.SetItemsProcessed(counter.pieces());
}

const bool kRegistered = [] {
  struct Work {
    std::string name;
    Answer answer;
  };
  const std::vector<int> both = twoProcessors();
  for (const Work& work : {Work{"balancesOnTwoThreads", balances}, Work{"datesOnTwoThreads", dates},
                           Work{"decimalsOnTwoThreads", decimals}}) {
    const auto add = [&](const char* engine, std::vector<std::vector<int>> turns) {
      benchmark::RegisterBenchmark(
          (work.name + engine).c_str(),
          [answer = work.answer, turns](benchmark::State& state) { run(state, answer, turns); })
          ->UseManualTime()
          ->Unit(benchmark::kMicrosecond);
    };
    add("/ours", {both});
    add("/oneThread", {{both[0]}, {both[1]}});
  }
  return true;
}();

}  // namespace
