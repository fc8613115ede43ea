
#include <ORLFoundation/platform/dispatch/NSMainThreadExecutor.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <gtest/gtest.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

namespace ORLFoundation {
namespace {

/// A main loop on a thread of its own.
class LoopExecutor final : public NSMainThreadExecutor {
 public:
  LoopExecutor() : thread_([this] { run(); }) {}
  ~LoopExecutor() override {
    {
      const std::lock_guard guard(lock_);
      ended_ = true;
    }
    changed_.notify_one();
    thread_.join();
  }
  [[nodiscard]] bool isMainThread() const override {
    return std::this_thread::get_id() == thread_.get_id();
  }
  void execute(std::function<void()> block) override {
    {
      const std::lock_guard guard(lock_);
      blocks_.push_back(std::move(block));
    }
    changed_.notify_one();
  }

 private:
  void run() {
    std::unique_lock guard(lock_);
    while (true) {
      changed_.wait(guard, [this] { return ended_ || !blocks_.empty(); });
      if (blocks_.empty()) return;
      const auto block = std::move(blocks_.front());
      blocks_.pop_front();
      guard.unlock();
      block();
      guard.lock();
    }
  }

  std::mutex lock_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> blocks_;
  bool ended_ = false;
  std::thread thread_;
};

class DroppingExecutor final : public NSMainThreadExecutor {
 public:
  [[nodiscard]] bool isMainThread() const override { return false; }
  void execute(std::function<void()>) override {}
};

TEST(NSHeadlessMainThreadExecutor, RunsABlockOnTheThreadThatGivesIt) {
  std::thread([] {
    EXPECT_FALSE(NSThread::isMainThread());
    for (const bool wait : {true, false}) {
      std::thread::id ranOn;
      bool wasMain = false;
      EXPECT_TRUE(NSPerformOnMainThread(
          [&] {
            ranOn = std::this_thread::get_id();
            wasMain = NSThread::isMainThread();
          },
          wait));
      EXPECT_EQ(ranOn, std::this_thread::get_id());
      EXPECT_TRUE(wasMain);
    }
    EXPECT_FALSE(NSThread::isMainThread());
  }).join();
}

TEST(NSHeadlessMainThreadExecutor, NestedCallsRunInPlace) {
  std::vector<int> order;
  const auto outer = [&] {
    order.push_back(1);
    NSPerformOnMainThread([&] { order.push_back(2); }, true);
    order.push_back(3);
  };
  NSPerformOnMainThread(outer, true);
  std::thread([&] { NSPerformOnMainThread(outer, true); }).join();
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3, 1, 2, 3}));
}

TEST(NSHeadlessMainThreadExecutor, NobodyWaitsForAnotherThread) {
  // Main work that waits for a thread which performs main work itself.
  int inner = 0;
  NSPerformOnMainThread(
      [&] { std::thread([&] { NSPerformOnMainThread([&] { ++inner; }, true); }).join(); }, true);
  EXPECT_EQ(inner, 1);
}

TEST(NSPerformOnMainThread, GoesThroughTheHostsExecutor) {
  const auto loop = std::make_shared<LoopExecutor>();
  const Replaced installed(NSSetMainThreadExecutor, loop);
  EXPECT_EQ(NSCurrentMainThreadExecutor(), loop);
  EXPECT_FALSE(NSThread::isMainThread());
  std::vector<int> order;
  NSPerformOnMainThread([&] { order.push_back(1); }, false);
  NSPerformOnMainThread(
      [&] {
        EXPECT_TRUE(NSThread::isMainThread());
        EXPECT_TRUE(NSPerformOnMainThread([&] { order.push_back(2); }, true));
        order.push_back(3);
      },
      true);
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST(NSPerformOnMainThread, ThrowsWhatTheBlockThrewToTheCallerThatWaits) {
  const auto fail = [] { throw std::runtime_error("no"); };
  EXPECT_THROW(NSPerformOnMainThread(fail, true), std::runtime_error);
  const Replaced installed(NSSetMainThreadExecutor, std::make_shared<LoopExecutor>());
  EXPECT_THROW(NSPerformOnMainThread(fail, true), std::runtime_error);
}

TEST(NSPerformOnMainThread, DoesNotWaitForABlockThatWasDropped) {
  const Replaced installed(NSSetMainThreadExecutor, std::make_shared<DroppingExecutor>());
  bool ran = false;
  EXPECT_FALSE(NSPerformOnMainThread([&] { ran = true; }, true));
  EXPECT_TRUE(NSPerformOnMainThread([&] { ran = true; }, false));
  EXPECT_FALSE(ran);
}

TEST(NSSetMainThreadExecutor, NullStandsForTheHeadlessOne) {
  const Replaced installed(NSSetMainThreadExecutor, std::make_shared<DroppingExecutor>());
  NSSetMainThreadExecutor(nullptr);
  bool ran = false;
  EXPECT_TRUE(NSPerformOnMainThread([&] { ran = true; }, false));
  EXPECT_TRUE(ran);
}

TEST(NSSetMainThreadExecutor, IsReplacedWhileOthersPerform) {
  std::vector<std::thread> threads;
  std::atomic<int> ran = 0;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&] {
      for (int i = 0; i < 200; ++i) NSPerformOnMainThread([&] { ++ran; }, true);
    });
  for (int i = 0; i < 100; ++i) NSSetMainThreadExecutor(nullptr);
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(ran, 800);
}

}  // namespace
}  // namespace ORLFoundation
