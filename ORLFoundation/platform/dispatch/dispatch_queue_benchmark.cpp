// What an entry into an idle queue costs beside a mutex, and what items cost on their way through a
// queue beside Boost.Asio's thread pool and its strands.
#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <boost/asio/post.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/thread_pool.hpp>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>

namespace ORLFoundation {
namespace {

constexpr std::int64_t kItems = 20'000;

void enterIdleQueue(benchmark::State& state) {
  const auto queue = dispatch_queue_create("benchmark", DISPATCH_QUEUE_SERIAL);
  std::int64_t count = 0;
  for (auto _ : state) dispatch_sync(queue, [&] { benchmark::DoNotOptimize(++count); });
  if (count != static_cast<std::int64_t>(state.iterations())) state.SkipWithError("wrong count");
}
BENCHMARK(enterIdleQueue)->Name("enterIdleQueue/ours");

void lockMutex(benchmark::State& state) {
  std::mutex mutex;
  std::int64_t count = 0;
  for (auto _ : state) {
    const std::lock_guard guard(mutex);
    benchmark::DoNotOptimize(++count);
  }
  if (count != static_cast<std::int64_t>(state.iterations())) state.SkipWithError("wrong count");
}
BENCHMARK(lockMutex)->Name("enterIdleQueue/mutex");

/// Counts items; the last one ends the wait.
struct Count {
  void operator()() const {
    if (left->fetch_sub(1) == 1) dispatch_semaphore_signal(done);
  }
  std::shared_ptr<std::atomic<std::int64_t>> left =
      std::make_shared<std::atomic<std::int64_t>>(kItems);
  dispatch_semaphore_t done = dispatch_semaphore_create(0);
};

/// Hands all items over and waits for the last.
template <class Post>
void passItems(benchmark::State& state, const Post& post) {
  for (auto _ : state) {
    const Count count;
    const Count& item = count;
    for (std::int64_t i = 0; i < kItems; ++i) post([&item] { item(); });
    dispatch_semaphore_wait(count.done, DISPATCH_TIME_FOREVER);
    if (*count.left != 0) state.SkipWithError("items are left");
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * kItems);
}

void concurrentItems(benchmark::State& state) {
  const auto& queue = dispatch_get_global_queue(QOS_CLASS_DEFAULT, 0);
  passItems(state, [&](auto item) { dispatch_async(queue, item); });
}
BENCHMARK(concurrentItems)->Name("concurrentItems/ours")->UseRealTime();

void concurrentItemsOfAsio(benchmark::State& state) {
  boost::asio::thread_pool pool(std::max(1U, std::thread::hardware_concurrency()));
  passItems(state, [&](auto item) { boost::asio::post(pool, item); });
}
BENCHMARK(concurrentItemsOfAsio)->Name("concurrentItems/asio")->UseRealTime();

void serialItems(benchmark::State& state) {
  const auto queue = dispatch_queue_create("benchmark", DISPATCH_QUEUE_SERIAL);
  passItems(state, [&](auto item) { dispatch_async(queue, item); });
}
BENCHMARK(serialItems)->Name("serialItems/ours")->UseRealTime();

void serialItemsOfAsio(benchmark::State& state) {
  boost::asio::thread_pool pool(std::max(1U, std::thread::hardware_concurrency()));
  const auto strand = boost::asio::make_strand(pool);
  passItems(state, [&](auto item) { boost::asio::post(strand, item); });
}
BENCHMARK(serialItemsOfAsio)->Name("serialItems/asio")->UseRealTime();

}  // namespace
}  // namespace ORLFoundation
