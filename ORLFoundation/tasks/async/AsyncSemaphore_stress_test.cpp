// The semaphore with a hundred thousand tasks, and on many threads.
#include <ORLFoundation/tasks/async/AsyncSemaphore.h>

#include <ORLFoundation/tasks/async/AsyncSemaphore_testing.h>
#include <gtest/gtest.h>
#include <tests/support/Files.h>
#include <tests/support/ProcessorTime.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::SteppedExecutor;

constexpr int kScale = orlftest::kSlowdown > 1 ? 10 : 1;

std::size_t threadCount() { return orlftest::entryCount("/proc/self/task"); }

CooperativeTask<> pass(AsyncSemaphore& semaphore, std::atomic<int>& passed) {
  co_await semaphore.waitUnlessCancelled();
  ++passed;
}

TEST(AsyncSemaphore, AHundredThousandParkedTasksHoldNoThread) {
  constexpr int kTasks = 100'000 / kScale;
  AsyncSemaphore semaphore(0);
  std::atomic<int> passed{0};
  const auto executor = CooperativeExecutorOnGlobalQueue();
  std::vector<std::shared_ptr<CooperativeJob<>>> jobs;
  for (int i = 0; i < kTasks; ++i)
    jobs.push_back(CooperativeJob<>::start(pass(semaphore, passed), executor));
  while (semaphore.value() > -kTasks) std::this_thread::yield();
  const std::size_t idle = threadCount();
  EXPECT_LE(idle, 64U) << "parked tasks hold threads";
  int signals = 0;
  for (int i = 0; i < kTasks; ++i) {
    if (i % 10 == 0) {
      jobs[static_cast<std::size_t>(i)]->cancel();
    } else {
      semaphore.signal();
      ++signals;
    }
  }
  // A cancel that came after its task's signal had no effect, so that some may be left.
  for (; semaphore.value() < 0; ++signals) semaphore.signal();
  int cancelled = 0;
  for (const auto& job : jobs) {
    try {
      job->result();
    } catch (const CancellationError&) {
      ++cancelled;
    }
  }
  EXPECT_EQ(passed + cancelled, kTasks);
  EXPECT_GT(cancelled, 0);
  EXPECT_EQ(semaphore.value(), signals - passed);
}

/// How far apart the stack was at its steps. Locals do not tell: a sanitizer may keep them
/// elsewhere.
struct StackSpan {
  std::uintptr_t lowest = UINTPTR_MAX, highest = 0;
  void note() {
    const auto address = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    lowest = std::min(lowest, address);
    highest = std::max(highest, address);
  }
};

CooperativeTask<int> handOver(AsyncSemaphore& mine, AsyncSemaphore& others, int times,
                              StackSpan& stack) {
  for (int i = 0; i < times; ++i) {
    co_await mine.wait();
    stack.note();
    others.signal();
  }
  co_return times;
}

TEST(AsyncSemaphore, AMillionHandOversDoNotGrowTheStack) {
  constexpr int kTimes = 500'000 / kScale;
  AsyncSemaphore ping(1);
  AsyncSemaphore pong(0);
  StackSpan stack;
  const auto executor = std::make_shared<SteppedExecutor>();
  const auto first = CooperativeJob<int>::start(handOver(ping, pong, kTimes, stack), executor);
  const auto second = CooperativeJob<int>::start(handOver(pong, ping, kTimes, stack), executor);
  executor->runAll();
  EXPECT_EQ(first->result() + second->result(), 2 * kTimes);
  EXPECT_LT(stack.highest - stack.lowest, 1'000U);
}

CooperativeTask<int> passed(AsyncSemaphore& semaphore, StackSpan& stack) {
  co_await semaphore.wait();
  stack.note();
  co_return 1;
}

CooperativeTask<int> passManyTimes(AsyncSemaphore& semaphore, int times, StackSpan& stack) {
  int sum = 0;
  for (int i = 0; i < times; ++i) sum += co_await passed(semaphore, stack);
  co_return sum;
}

TEST(AsyncSemaphore, AMillionTasksInATaskThatNeverParkDoNotGrowTheStack) {
  constexpr int kTimes = 1'000'000 / kScale;
  AsyncSemaphore semaphore(kTimes);
  StackSpan stack;
  const auto executor = std::make_shared<SteppedExecutor>();
  const auto job = CooperativeJob<int>::start(passManyTimes(semaphore, kTimes, stack), executor);
  EXPECT_EQ(executor->runAll(), 1U);
  EXPECT_EQ(job->result(), kTimes);
  EXPECT_LT(stack.highest - stack.lowest, 1'000U);
}

TEST(AsyncSemaphore, HandOversBetweenThreadsLoseNothing) {
  constexpr int kTimes = 20'000 / kScale;
  AsyncSemaphore ping(1);
  AsyncSemaphore pong(0);
  StackSpan first;
  StackSpan second;
  const auto executor = CooperativeExecutorOnGlobalQueue();
  const auto one = CooperativeJob<int>::start(handOver(ping, pong, kTimes, first), executor);
  const auto other = CooperativeJob<int>::start(handOver(pong, ping, kTimes, second), executor);
  EXPECT_EQ(one->result() + other->result(), 2 * kTimes);
  EXPECT_EQ(ping.value() + pong.value(), 1);
}

struct Room {
  std::atomic<int> inside{0}, most{0}, entered{0}, cancelled{0};
};

CooperativeTask<> visit(AsyncSemaphore& door, Room& room, int times) {
  for (int i = 0; i < times; ++i) {
    try {
      co_await door.waitUnlessCancelled();
    } catch (const CancellationError&) {
      ++room.cancelled;
      continue;
    }
    const int now = ++room.inside;
    int before = room.most;
    while (now > before && !room.most.compare_exchange_weak(before, now)) continue;
    ++room.entered;
    --room.inside;
    door.signal();
  }
}

/// Signals and cancels race for the same waiters: each wait ends once, one way or the other, and
/// nothing is lost.
TEST(AsyncSemaphore, RacesOfSignalsAndCancelsLoseNothing) {
  constexpr int kVisitors = 40;
  constexpr int kTimes = 500 / kScale;
  constexpr int kPlaces = 3;
  AsyncSemaphore door(kPlaces);
  Room room;
  const auto executor = CooperativeExecutorOnGlobalQueue();
  std::vector<std::shared_ptr<CooperativeJob<>>> jobs;
  for (int i = 0; i < kVisitors; ++i)
    jobs.push_back(CooperativeJob<>::start(visit(door, room, kTimes), executor));
  std::thread canceller([&] {
    for (std::size_t i = 0; i < jobs.size(); i += 2) {
      jobs[i]->cancel();
      std::this_thread::yield();
    }
  });
  canceller.join();
  for (const auto& job : jobs) job->result();
  EXPECT_EQ(room.entered + room.cancelled, kVisitors * kTimes);
  EXPECT_LE(room.most, kPlaces);
  EXPECT_EQ(door.value(), kPlaces);
  EXPECT_TRUE(door.suspensions().empty());
}

}  // namespace
}  // namespace ORLFoundation
