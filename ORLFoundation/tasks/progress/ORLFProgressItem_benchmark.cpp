/// What an update costs: on a root that nobody shows, on one that is on show with its display
/// armed, and to eight workers that have 2 µs of work between updates, beside the same work without
/// any.
#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/dispatch/NSTimer.h>
#include <ORLFoundation/tasks/progress/ORLFProgressIndicator.h>
#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <memory>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using Item = std::shared_ptr<ORLFProgressItem>;

constexpr double kTotal = 1e12;

void serve() {
  while (pumpMainQueue(0)) {
  }
}

void updateOfALooseRoot(benchmark::State& state) {
  const auto root = std::make_shared<ORLFProgressItem>();
  root->updateValue(0, kTotal);
  for (auto _ : state) root->updateValueByIncrement(1);
  if (root->value() != static_cast<double>(state.iterations())) state.SkipWithError("lost updates");
}
BENCHMARK(updateOfALooseRoot)->Name("updateOfALooseRoot/ours");

void updateOnShow(benchmark::State& state) {
  const auto root = std::make_shared<ORLFProgressItem>();
  const auto indicator = std::make_shared<ORLFProgressIndicator>();
  root->updateValue(0, kTotal);
  indicator->displayProgressItem(root);
  if (!indicator->displayTimer()) state.SkipWithError("nothing is armed");
  for (auto _ : state) root->updateValueByIncrement(1);
  indicator->updateDisplayValues();
  if (indicator->currentValue() != static_cast<double>(state.iterations()))
    state.SkipWithError("the last value does not show");
  indicator->removeProgressItem(root);
  serve();
}
BENCHMARK(updateOnShow)->Name("updateOnShow/ours");

void updateOfAChildOnShow(benchmark::State& state) {
  const auto root = std::make_shared<ORLFProgressItem>();
  const auto indicator = std::make_shared<ORLFProgressIndicator>();
  indicator->displayProgressItem(root);
  const Item child = root->childProgressItemWithTotalCount(kTotal);
  child->addToIndicator();
  for (auto _ : state) child->updateValueByIncrement(1);
  if (root->currentValue() != static_cast<double>(state.iterations()))
    state.SkipWithError("lost updates");
  indicator->removeProgressItem(root);
  serve();
}
BENCHMARK(updateOfAChildOnShow)->Name("updateOfAChildOnShow/ours");

/// Counts displays.
struct Counter final : ORLFProgressIndicatorDelegate {
  void progressIndicatorDidChange(
      const std::shared_ptr<ORLFProgressIndicator>& indicator) override {
    ++displays;
    last = indicator->currentValue();
  }
  int displays = 0;
  double last = 0;
};

/// 2 µs of a processor's time, whatever else the machine does.
class Work {
 public:
  Work() {
    constexpr int kTrial = 2'000'000;
    const double start = processorSeconds();
    spin(kTrial);
    steps_ = static_cast<int>(2e-6 / (processorSeconds() - start) * kTrial);
  }
  void doIt() const { spin(steps_); }

 private:
  static double processorSeconds() {
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
  }
  static void spin(int steps) {
    std::uint64_t state = 1;
    for (int i = 0; i < steps; ++i) {
      state = state * 6364136223846793005U + 1442695040888963407U;
      benchmark::DoNotOptimize(state);
    }
  }
  int steps_ = 1;
};

void workOfEight(benchmark::State& state, bool isReported) {
  constexpr int kWorkers = 8;
  constexpr int kSteps = 20'000;
  static const Work work;
  for (auto _ : state) {
    const auto root = std::make_shared<ORLFProgressItem>();
    const auto indicator = std::make_shared<ORLFProgressIndicator>();
    const auto counter = std::make_shared<Counter>();
    indicator->setDelegate(counter);
    root->updateValue(0, kWorkers * kSteps);
    indicator->displayProgressItem(root);
    std::atomic<int> atWork{kWorkers};
    std::vector<std::thread> workers;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < kWorkers; ++i)
      workers.emplace_back([&] {
        for (int step = 0; step < kSteps; ++step) {
          work.doIt();
          if (isReported) root->updateValueByIncrement(1);
        }
        --atWork;
      });
    while (atWork > 0) pumpMainQueue(0.005);
    for (std::thread& worker : workers) worker.join();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    state.SetIterationTime(took.count());
    if (!isReported) root->updateValue(kWorkers * kSteps);
    if (counter->displays > took.count() * 100 + 1) state.SkipWithError("too many displays");
    while (indicator->displayTimer()) pumpMainQueue(0.1);
    if (counter->last != kWorkers * kSteps) state.SkipWithError("the last value does not show");
    state.counters["displays/s"] = counter->displays / took.count();
    indicator->removeProgressItem(root);
    serve();
  }
}
BENCHMARK_CAPTURE(workOfEight, alone, false)
    ->Name("workOfEight/alone")
    ->UseManualTime()
    ->Iterations(3);
BENCHMARK_CAPTURE(workOfEight, reported, true)
    ->Name("workOfEight/ours")
    ->UseManualTime()
    ->Iterations(3);

}  // namespace
}  // namespace ORLFoundation
