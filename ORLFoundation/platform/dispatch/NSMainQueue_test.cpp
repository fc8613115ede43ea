
#include <ORLFoundation/platform/dispatch/NSMainQueue.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/dispatch/NSTimer.h>
#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <tests/support/ProcessorTime.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::ElementsAre;
using testing::IsEmpty;

const dispatch_queue_t& mainQueue() { return dispatch_get_main_queue(); }

void pumpAll() {
  while (pumpMainQueue(0)) {
  }
}

class NSMainQueue : public testing::Test {
 protected:
  NSMainQueue() { pumpAll(); }

  std::vector<int> order_;
  [[nodiscard]] dispatch_block_t note(int number) {
    return [this, number] { order_.push_back(number); };
  }
};

TEST_F(NSMainQueue, RunsItemsInOrderWhenItIsPumped) {
  dispatch_async(mainQueue(), note(1));
  dispatch_async(mainQueue(), note(2));
  NSPerformOnMainThread(note(3), false);
  EXPECT_THAT(order_, IsEmpty()) << "in place";
  EXPECT_TRUE(pumpMainQueue(0));
  EXPECT_THAT(order_, ElementsAre(1, 2, 3));
  EXPECT_FALSE(pumpMainQueue(0));
}

TEST_F(NSMainQueue, LeavesWhatItemsAddToTheNextTurn) {
  dispatch_async(mainQueue(), [&] {
    order_.push_back(1);
    dispatch_async(mainQueue(), note(3));
  });
  dispatch_async(mainQueue(), note(2));
  EXPECT_TRUE(pumpMainQueue(0));
  EXPECT_THAT(order_, ElementsAre(1, 2));
  EXPECT_TRUE(pumpMainQueue(0));
  EXPECT_THAT(order_, ElementsAre(1, 2, 3));
}

TEST_F(NSMainQueue, AnItemThatAddsItselfStarvesNoTimer) {
  std::function<void()> again = [&] { dispatch_async(mainQueue(), again); };
  again();
  bool fired = false;
  NSTimer::scheduledTimerWithTimeInterval(0.001, false, [&](NSTimer&) { fired = true; });
  const auto end = steady_clock::now() + std::chrono::seconds(10);
  while (!fired && steady_clock::now() < end) pumpMainQueue(0);
  EXPECT_TRUE(fired);
  again = [] {};
  pumpAll();
}

TEST_F(NSMainQueue, WaitsForTheFirstThingToRun) {
  std::thread other([&] {
    std::this_thread::sleep_for(milliseconds(10));
    dispatch_async(mainQueue(), note(1));
  });
  EXPECT_TRUE(pumpMainQueue(20));
  EXPECT_THAT(order_, ElementsAre(1));
  other.join();
  const auto begun = steady_clock::now();
  EXPECT_FALSE(pumpMainQueue(0.02));
  EXPECT_GE(steady_clock::now() - begun, milliseconds(20));
}

TEST_F(NSMainQueue, RunsDelayedItemsWhenTheyAreDue) {
  orlftest::VirtualMainLoop loop;
  dispatch_after(dispatch_time(DISPATCH_TIME_NOW, 250'000'000), mainQueue(), note(2));
  dispatch_after(dispatch_time(DISPATCH_TIME_NOW, 100), mainQueue(), [&] {
    order_.push_back(1);
    EXPECT_EQ(dispatch_queue_get_label(nullptr), dispatch_queue_get_label(mainQueue()));
  });
  EXPECT_THAT(loop.later(), ElementsAre(100, 250'000'000));
  loop.advance(249'999'999);
  EXPECT_THAT(order_, ElementsAre(1));
  loop.advance(1);
  EXPECT_THAT(order_, ElementsAre(1, 2));
  EXPECT_EQ(loop.now(), 250'000'000);
  EXPECT_THAT(loop.later(), IsEmpty());
}

TEST_F(NSMainQueue, ServesOtherThreadsThatWait) {
  std::thread other([&] {
    EXPECT_EQ(dispatch_sync(mainQueue(),
                            [&] {
                              EXPECT_TRUE(NSThread::isMainThread());
                              EXPECT_EQ(dispatch_queue_get_label(nullptr),
                                        dispatch_queue_get_label(mainQueue()));
                              return 5;
                            }),
              5);
    NSPerformOnMainThread([&] { EXPECT_TRUE(NSThread::isMainThread()); }, true);
    EXPECT_THROW(dispatch_sync(mainQueue(), [] { throw std::runtime_error("no"); }),
                 std::runtime_error);
    EXPECT_THROW(NSPerformOnMainThread([] { throw std::runtime_error("no"); }, true),
                 std::runtime_error);
    stopMainQueue();
  });
  runMainQueue();
  other.join();
}

TEST_F(NSMainQueue, RunsInPlaceWhatTheMainThreadItselfWaitsFor) {
  NSPerformOnMainThread(note(1), true);
  EXPECT_TRUE(NSTryOnMainThread(note(2)));
  EXPECT_THAT(order_, ElementsAre(1, 2));
  EXPECT_THROW(NSPerformOnMainThread([] { throw std::runtime_error("no"); }, true),
               std::runtime_error);
}

TEST_F(NSMainQueue, LetsOutWhatAnItemThrowsAndKeepsTheRest) {
  dispatch_async(mainQueue(), [] { throw std::runtime_error("first"); });
  dispatch_async(mainQueue(), note(1));
  EXPECT_THROW(pumpMainQueue(0), std::runtime_error);
  EXPECT_THAT(order_, IsEmpty());
  EXPECT_EQ(NSRunLoop::mainRunLoop()->currentMode(), std::nullopt);
  EXPECT_TRUE(pumpMainQueue(0));
  EXPECT_THAT(order_, ElementsAre(1));
}

TEST_F(NSMainQueue, RunsALoopWithinAnItem) {
  dispatch_async(mainQueue(), [&] {
    order_.push_back(1);
    dispatch_async(mainQueue(), [&] {
      order_.push_back(2);
      stopMainQueue();
    });
    runMainQueue();
    order_.push_back(3);
    dispatch_async(mainQueue(), [] { stopMainQueue(); });
  });
  runMainQueue();
  EXPECT_THAT(order_, ElementsAre(1, 2, 3));
}

TEST_F(NSMainQueue, RemembersAStopThatComesFirst) {
  stopMainQueue();
  runMainQueue();
  dispatch_async(mainQueue(), [] { stopMainQueue(); });
  runMainQueue();
}

TEST_F(NSMainQueue, IsServedByTheMainThreadAlone) {
  std::thread([] {
    EXPECT_THROW(pumpMainQueue(0), NSException);
    EXPECT_THROW(runMainQueue(), NSException);
  }).join();
}

TEST_F(NSMainQueue, IsNoPlaceForALoopOfItsOwnThreadToEnterItself) {
  // While the main thread is in another queue, its items still are the main queue's.
  const auto queue = dispatch_queue_create("serial", DISPATCH_QUEUE_SERIAL);
  const char* label = nullptr;
  dispatch_async(mainQueue(), [&] { label = dispatch_queue_get_label(nullptr); });
  dispatch_sync(queue, [&] { pumpMainQueue(0); });
  EXPECT_EQ(label, dispatch_queue_get_label(mainQueue()));
}

TEST_F(NSMainQueue, LogsOnceThatNobodyServesAWaitingThread) {
  LogCapture log;
  const orlftest::MainThreadPatience impatient(milliseconds(5));
  std::atomic<int> done = 0;
  std::thread other([&] {
    dispatch_sync(mainQueue(), [&] { ++done; });
    NSPerformOnMainThread([&] { ++done; }, true);
  });
  for (const std::size_t lines : {1U, 2U}) {
    while (log.lines().size() < lines) std::this_thread::sleep_for(milliseconds(1));
    std::this_thread::sleep_for(milliseconds(15));
    EXPECT_TRUE(pumpMainQueue(20));
  }
  other.join();
  EXPECT_EQ(done, 2);
  EXPECT_THAT(log.lines(), ElementsAre("A thread waits for the main thread, which nobody serves.",
                                       "A thread waits for the main thread, which nobody serves."));
}

TEST_F(NSMainQueue, LogsNothingWhileItIsAtOtherWork) {
  LogCapture log;
  const orlftest::MainThreadPatience impatient(milliseconds(2));
  std::thread other;
  dispatch_async(mainQueue(), [&] {
    other = std::thread([] { dispatch_sync(mainQueue(), [] { stopMainQueue(); }); });
    std::this_thread::sleep_for(milliseconds(20));
  });
  runMainQueue();
  other.join();
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(NSMainQueue, IsTriedOnlyWhereSomebodyServesIt) {
  const orlftest::MainThreadPatience impatient(milliseconds(20));
  std::this_thread::sleep_for(milliseconds(25));
  bool ran = false;
  const auto attempt = [&] { return NSTryOnMainThread([&] { ran = true; }); };
  const auto timeOfVain = [&] {
    steady_clock::duration time{};
    std::thread([&] {
      const auto begun = steady_clock::now();
      EXPECT_FALSE(attempt());
      time = steady_clock::now() - begun;
    }).join();
    return time;
  };
  // A busy machine may hold up any thread at any time: one of some attempts tells.
  constexpr int kAttempts = 50;
  bool isQuick = false;
  for (int i = 0; i < kAttempts && !isQuick; ++i) isQuick = timeOfVain() < milliseconds(15);
  EXPECT_TRUE(isQuick) << "it was tried";
  bool isSlow = false;
  for (int i = 0; i < kAttempts && !isSlow; ++i) {
    pumpMainQueue(0);
    isSlow = timeOfVain() >= milliseconds(5);
  }
  EXPECT_TRUE(isSlow) << "it was not tried";
  pumpAll();
  EXPECT_FALSE(ran) << "it was given up";
  std::thread other([&] {
    EXPECT_TRUE(attempt());
    EXPECT_THROW(static_cast<void>(NSTryOnMainThread([] { throw std::runtime_error("no"); })),
                 std::runtime_error);
    stopMainQueue();
  });
  runMainQueue();
  other.join();
  EXPECT_TRUE(ran);
}

TEST(NSMainQueueThread, IsTheMainThreadWhileItLives) {
  pumpAll();
  std::thread::id ranOn;
  const auto ran = dispatch_semaphore_create(0);
  dispatch_async(mainQueue(), [&] {
    ranOn = std::this_thread::get_id();
    EXPECT_TRUE(NSThread::isMainThread());
    EXPECT_EQ(NSRunLoop::currentRunLoop(), NSRunLoop::mainRunLoop());
    dispatch_semaphore_signal(ran);
  });
  {
    const NSMainQueueThread thread;
    EXPECT_FALSE(NSThread::isMainThread());
    EXPECT_NE(NSRunLoop::currentRunLoop(), NSRunLoop::mainRunLoop());
    dispatch_semaphore_wait(ran, DISPATCH_TIME_FOREVER);
    EXPECT_NE(ranOn, std::this_thread::get_id());
    EXPECT_THROW(pumpMainQueue(0), NSException);
    EXPECT_EQ(dispatch_sync(mainQueue(), [] { return std::this_thread::get_id(); }), ranOn);
    EXPECT_TRUE(NSTryOnMainThread([&] { EXPECT_EQ(std::this_thread::get_id(), ranOn); }));
    EXPECT_THROW(NSMainQueueThread(), NSException);
  }
  EXPECT_TRUE(NSThread::isMainThread());
  EXPECT_EQ(NSRunLoop::currentRunLoop(), NSRunLoop::mainRunLoop());
}

TEST(NSMainQueueThread, LeavesWhatItDidNotRun) {
  pumpAll();
  bool ran = false;
  {
    const auto begun = dispatch_semaphore_create(0);
    const auto gate = dispatch_semaphore_create(0);
    auto thread = std::make_unique<NSMainQueueThread>();
    dispatch_async(mainQueue(), [&] {
      dispatch_semaphore_signal(begun);
      dispatch_semaphore_wait(gate, DISPATCH_TIME_FOREVER);
      dispatch_async(mainQueue(), [&] { ran = true; });
    });
    dispatch_semaphore_wait(begun, DISPATCH_TIME_FOREVER);
    std::thread ending([&] { thread = nullptr; });
    std::this_thread::sleep_for(milliseconds(5));
    dispatch_semaphore_signal(gate);
    ending.join();
  }
  pumpAll();
  EXPECT_TRUE(ran);
}

TEST_F(NSMainQueue, WhatAnItemHeldMayPostWhenItGoes) {
  bool wasInside = false;
  std::shared_ptr<void> last(nullptr, [&](std::nullptr_t) {
    wasInside = dispatch_queue_get_label(nullptr) == dispatch_queue_get_label(mainQueue());
    dispatch_async(mainQueue(), note(1));
  });
  dispatch_async(mainQueue(), [last] {});
  last = nullptr;
  pumpAll();
  EXPECT_TRUE(wasInside);
  EXPECT_THAT(order_, ElementsAre(1));
}

TEST(Loop, LosesNoWakeAmongManyForNothing) {
  internal::dispatch::Loop loop;
  std::atomic<bool> hasWork{false};
  std::atomic<bool> isOver{false};
  std::thread waking([&] {
    while (!isOver) loop.wake();
  });
  std::thread adding([&] {
    while (!isOver) {
      hasWork = true;
      loop.wake();
      while (hasWork && !isOver) std::this_thread::yield();
    }
  });
  bool isLate = false;
  for (const auto end = steady_clock::now() + milliseconds(100); steady_clock::now() < end;) {
    loop.clearWake();
    if (hasWork.exchange(false)) continue;
    pollfd wake{loop.wakeDescriptor(), POLLIN, 0};
    isLate = ::poll(&wake, 1, 5000) == 0 || isLate;
  }
  EXPECT_FALSE(isLate);
  isOver = true;
  waking.join();
  adding.join();
}

TEST_F(NSMainQueue, LosesNoStopThatComesWhileItBegins) {
  bool isLate = false;
  const auto limit = NSTimer::scheduledTimerWithTimeInterval(15, true, [&](NSTimer&) {
    isLate = true;
    stopMainQueue();
  });
  std::atomic<int> round{0};
  std::atomic<bool> isOver{false};
  std::thread stopping([&] {
    for (int i = 1;; ++i) {
      while (round < i) {
        if (isOver) return;
        std::this_thread::yield();
      }
      for (int pause = i % 97; pause > 0; --pause) static_cast<void>(round.load());
      stopMainQueue();
    }
  });
  for (const auto end = steady_clock::now() + milliseconds(60); steady_clock::now() < end;) {
    ++round;
    runMainQueue();
  }
  isOver = true;
  stopping.join();
  EXPECT_FALSE(isLate);
  limit->invalidate();
}

TEST(NSMainQueueThread, LosesNoEndThatComesWhileItServes) {
  pumpAll();
  bool isLate = false;
  const auto limit =
      NSTimer::scheduledTimerWithTimeInterval(15, true, [&](NSTimer&) { isLate = true; });
  constexpr int kRounds = static_cast<int>(1000 / orlftest::kSlowdown);
  for (int i = 0; i < kRounds; ++i) {
    const NSMainQueueThread thread;
    dispatch_async(mainQueue(), [] {});
    const auto end = steady_clock::now() + std::chrono::nanoseconds(i % 250 * 100);
    while (steady_clock::now() < end) {
    }
  }
  EXPECT_FALSE(isLate);
  limit->invalidate();
}

}  // namespace
}  // namespace ORLFoundation
