// A million operations from one thread, made on the way, one by one and as a batch, beside the
// blocks of a thread pool: on the plain queue and on the one with barriers, groups and single
// instances. And what one more costs while none and while a million wait.
#include <ORLFoundation/tasks/operations/ORLFOperationQueue.h>

#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <benchmark/benchmark.h>
#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>

#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>
#include <utility>

namespace ORLFoundation {
namespace {

constexpr std::int64_t kMany = 1'000'000;

/// Has `kMany` blocks run in each round and checks that each ran once.
template <class RunAll>
void measure(benchmark::State& state, const RunAll& runAll) {
  for (auto _ : state) {
    std::atomic<std::int64_t> ran{0};
    runAll([&ran] { ran.fetch_add(1, std::memory_order_relaxed); });
    if (ran != kMany) state.SkipWithError("some did not run, or ran twice");
  }
  state.SetItemsProcessed(state.iterations() * kMany);
}

template <class Queue>
void oneByOne(benchmark::State& state) {
  measure(state, [](const auto& block) {
    const auto queue = std::make_shared<Queue>();
    for (std::int64_t i = 0; i < kMany; ++i)
      queue->addOperation(NSBlockOperation::blockOperationWithBlock(block));
    queue->waitUntilAllOperationsAreFinished();
  });
}

template <class Queue>
void batch(benchmark::State& state) {
  measure(state, [](const auto& block) {
    const auto queue = std::make_shared<Queue>();
    NSOperationQueue::Operations operations;
    for (std::int64_t i = 0; i < kMany; ++i)
      operations.push_back(NSBlockOperation::blockOperationWithBlock(block));
    queue->addOperations(std::move(operations), false);
    queue->waitUntilAllOperationsAreFinished();
  });
}

void asio(benchmark::State& state) {
  measure(state, [](const auto& block) {
    boost::asio::thread_pool pool(std::thread::hardware_concurrency());
    for (std::int64_t i = 0; i < kMany; ++i) boost::asio::post(pool, block);
    pool.join();
  });
}

/// `waiting` operations wait for a barrier already, and 10,000 more are added, each of which looks
/// for barriers.
template <std::int64_t waiting>
void addToWaiting(benchmark::State& state) {
  constexpr std::int64_t kMore = 10'000;
  for (auto _ : state) {
    state.PauseTiming();
    const auto queue = std::make_shared<ORLFOperationQueue>();
    const dispatch_semaphore_t gate = dispatch_semaphore_create(0);
    queue->pauseQueueWithBlock([gate] { dispatch_semaphore_wait(gate, DISPATCH_TIME_FOREVER); });
    for (std::int64_t i = 0; i < waiting; ++i) queue->addOperation(std::make_shared<NSOperation>());
    state.ResumeTiming();
    for (std::int64_t i = 0; i < kMore; ++i) queue->addOperation(std::make_shared<NSOperation>());
    state.PauseTiming();
    if (queue->operationCount() != waiting + kMore + 1) state.SkipWithError("some are missing");
    dispatch_semaphore_signal(gate);
    queue->waitUntilAllOperationsAreFinished();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * kMore);
}

#define ORLF_MILLION(function, name) \
  BENCHMARK(function)->Name(name)->Unit(benchmark::kMillisecond)->UseRealTime()

ORLF_MILLION(oneByOne<NSOperationQueue>, "plainQueueOneByOne/ours");
ORLF_MILLION(asio, "plainQueueOneByOne/asio");
ORLF_MILLION(batch<NSOperationQueue>, "plainQueueBatch/ours");
ORLF_MILLION(asio, "plainQueueBatch/asio");
ORLF_MILLION(oneByOne<ORLFOperationQueue>, "addOperation/ours");
ORLF_MILLION(asio, "addOperation/asio");
ORLF_MILLION(batch<ORLFOperationQueue>, "addOperations/ours");
ORLF_MILLION(asio, "addOperations/asio");
BENCHMARK(addToWaiting<0>)->Name("addOneWhileNoneWaits/ours")->Iterations(3);
BENCHMARK(addToWaiting<1'000'000>)->Name("addOneWhileAMillionWait/ours")->Iterations(3);

}  // namespace
}  // namespace ORLFoundation
