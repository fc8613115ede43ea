
#include <ORLFoundation/platform/dispatch/NSMainQueuePollBridge.h>

#include <ORLFoundation/platform/dispatch/NSDelayedPerforming.h>
#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/dispatch/NSTimer.h>
#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <tests/support/IdleTime.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A loop that is not ours.
class HostLoop {
 public:
  explicit HostLoop(NSMainQueuePollBridge& bridge) : bridge_(bridge) {}

  /// Waits for the bridge and lets it work, until the condition holds or for 20 seconds. Answers
  /// whether it holds.
  bool runUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition() && std::chrono::steady_clock::now() < end) turn(100);
    return condition();
  }
  /// Waits for the bridge, for so many milliseconds, and answers whether there was work.
  bool turn(int timeout) {
    pollfd descriptor{bridge_.descriptor(), POLLIN, 0};
    if (::poll(&descriptor, 1, timeout) != 1) return false;
    ++turns;
    bridge_.dispatch();
    return true;
  }
  /// Lets it work until there is nothing to do.
  void settle() {
    while (turn(0)) {
    }
  }

  int turns = 0;

 private:
  NSMainQueuePollBridge& bridge_;
};

class NSMainQueuePollBridgeTest : public testing::Test {
 protected:
  NSMainQueuePollBridgeTest() {
    while (pumpMainQueue(0)) {
    }
    bridge_.emplace();
    host_.emplace(*bridge_);
    host_->settle();
    host_->turns = 0;
  }

  std::optional<NSMainQueuePollBridge> bridge_;
  std::optional<HostLoop> host_;
  const dispatch_queue_t& main_ = dispatch_get_main_queue();
};

TEST_F(NSMainQueuePollBridgeTest, WakesForItems) {
  std::vector<int> order;
  dispatch_async(main_, [&] { order.push_back(1); });
  EXPECT_THAT(order, IsEmpty());
  EXPECT_TRUE(host_->turn(0));
  EXPECT_THAT(order, ElementsAre(1));
  std::thread other([&] { dispatch_sync(main_, [&] { order.push_back(2); }); });
  EXPECT_TRUE(host_->runUntil([&] { return order.size() == 2; }));
  other.join();
}

TEST_F(NSMainQueuePollBridgeTest, WakesForTimersDelayedItemsAndPerforms) {
  int timers = 0;
  int items = 0;
  const std::int64_t begun = NSMonotonicClock::now();
  const auto timer =
      NSTimer::scheduledTimerWithTimeInterval(0.005, true, [&](NSTimer&) { ++timers; });
  dispatch_after(dispatch_time(DISPATCH_TIME_NOW, 20'000'000), main_, [&] { ++items; });
  EXPECT_TRUE(host_->runUntil([&] { return items == 1; }));
  EXPECT_GE(NSMonotonicClock::now() - begun, 20'000'000);
  EXPECT_GE(timers, 1);
  timer->invalidate();
  class Target : public NSObject {
   public:
    void call() { ++called; }
    int called = 0;
  };
  const auto target = std::make_shared<Target>();
  performSelector(target, NSSelectorOf<&Target::call>("call"), nullptr, 0.001);
  NSRunLoop::mainRunLoop()->performSelector({.selector = NSSelectorOf<&Target::call>("call"),
                                             .target = target,
                                             .modes = {NSRunLoopCommonModes}});
  EXPECT_TRUE(host_->runUntil([&] { return target->called == 2; }));
}

TEST_F(NSMainQueuePollBridgeTest, WakesForATimerOfAnotherThread) {
  bool fired = false;
  std::thread([&] {
    NSRunLoop::mainRunLoop()->addTimer(
        NSTimer::timerWithTimeInterval(0.001, false, [&](NSTimer&) { fired = true; }),
        NSRunLoopCommonModes);
  }).join();
  EXPECT_TRUE(host_->runUntil([&] { return fired; }));
}

TEST_F(NSMainQueuePollBridgeTest, WakesForDescriptorsOfTheRunLoop) {
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe(ends.data()), 0);
  int called = 0;
  auto descriptor = NSRunLoop::mainRunLoop()->addDescriptor(
      ends[0], NSRunLoopDescriptorRead, NSDefaultRunLoopMode, [&](short) {
        char byte = 0;
        EXPECT_EQ(::read(ends[0], &byte, 1), 1);
        ++called;
      });
  host_->settle();
  EXPECT_EQ(called, 0);
  EXPECT_EQ(::write(ends[1], "ab", 2), 2);
  EXPECT_TRUE(host_->runUntil([&] { return called == 2; }));
  descriptor = nullptr;
  host_->settle();
  EXPECT_EQ(::write(ends[1], "c", 1), 1);
  EXPECT_FALSE(host_->turn(20));
  ::close(ends[0]);
  ::close(ends[1]);
}

TEST_F(NSMainQueuePollBridgeTest, IsQuietWhileThereIsNothingToDo) {
  const auto timer = NSTimer::scheduledTimerWithTimeInterval(100, true, {});
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe(ends.data()), 0);
  const auto descriptor = NSRunLoop::mainRunLoop()->addDescriptor(
      ends[0], NSRunLoopDescriptorRead, NSDefaultRunLoopMode, [](short) {});
  dispatch_async(main_, [] {});
  host_->settle();
  EXPECT_FALSE(host_->turn(orlftest::idleMilliseconds()));
  timer->invalidate();
  ::close(ends[0]);
  ::close(ends[1]);
}

TEST_F(NSMainQueuePollBridgeTest, ABlockThatPostsItselfLeavesTheHostItsTurns) {
  int ran = 0;
  bool isOver = false;
  std::function<void()> again = [&] {
    ++ran;
    if (!isOver) dispatch_async(main_, again);
  };
  dispatch_async(main_, again);
  for (int turn = 1; turn <= 5; ++turn) {
    EXPECT_TRUE(host_->turn(0));
    EXPECT_EQ(ran, turn) << "one turn, one item";
  }
  isOver = true;
  host_->settle();
}

TEST_F(NSMainQueuePollBridgeTest, ALoopWithinAnItemServesTheRest) {
  std::vector<int> order;
  bool isOver = false;
  dispatch_async(main_, [&] {
    order.push_back(1);
    EXPECT_TRUE(host_->runUntil([&] { return isOver; }));
    order.push_back(3);
  });
  dispatch_async(main_, [&] {
    order.push_back(2);
    isOver = true;
  });
  EXPECT_TRUE(host_->turn(0));
  EXPECT_THAT(order, ElementsAre(1, 2, 3));
  isOver = false;
  const auto modal = NSTimer::scheduledTimerWithTimeInterval(
      0.001, false, [&](NSTimer&) { EXPECT_TRUE(host_->runUntil([&] { return isOver; })); });
  NSTimer::scheduledTimerWithTimeInterval(0.002, false, [&](NSTimer&) { isOver = true; });
  EXPECT_TRUE(host_->runUntil([&] { return !modal->isValid(); }));
}

TEST_F(NSMainQueuePollBridgeTest, NoExceptionReachesTheHost) {
  LogCapture log;
  bool ran = false;
  dispatch_async(main_, [] { throw std::runtime_error("no"); });
  dispatch_async(main_, [] { throw 5; });
  dispatch_async(main_, [&] { ran = true; });
  host_->settle();
  EXPECT_TRUE(ran);
  EXPECT_THAT(log.lines(),
              ElementsAre("The main thread goes on after an exception: no",
                          "The main thread goes on after an exception of an unknown kind."));
}

TEST_F(NSMainQueuePollBridgeTest, IsTheOnlyOne) {
  EXPECT_THROW(NSMainQueuePollBridge(), NSException);
  EXPECT_THROW(NSMainQueuePollBridge(), NSException) << "the refused one changed nothing";
  bridge_.reset();
  bridge_.emplace();
}

TEST_F(NSMainQueuePollBridgeTest, LeavesPendingWorkToTheNext) {
  bool fired = false;
  bool ran = false;
  NSTimer::scheduledTimerWithTimeInterval(0.001, false, [&](NSTimer&) { fired = true; });
  dispatch_async(main_, [&] { ran = true; });
  bridge_.reset();
  std::this_thread::sleep_for(std::chrono::milliseconds(2));
  EXPECT_FALSE(fired || ran);
  bridge_.emplace();
  HostLoop host(*bridge_);
  EXPECT_TRUE(host.runUntil([&] { return fired && ran; }));
}

TEST_F(NSMainQueuePollBridgeTest, LosesNothingToAPumpBesideIt) {
  bool fired = false;
  NSTimer::scheduledTimerWithTimeInterval(0.005, false, [&](NSTimer&) { fired = true; });
  pumpMainQueue(0);
  EXPECT_TRUE(host_->runUntil([&] { return fired; }));
}

TEST_F(NSMainQueuePollBridgeTest, FollowsAClockThatIsMovedByHand) {
  orlftest::VirtualMainLoop loop;
  bool fired = false;
  const auto timer =
      NSTimer::scheduledTimerWithTimeInterval(0.001, false, [&](NSTimer&) { fired = true; });
  host_->settle();
  EXPECT_FALSE(host_->turn(10)) << "the time has not come";
  loop.clock().advance(0.001);
  host_->settle();
  EXPECT_TRUE(fired);
}

TEST_F(NSMainQueuePollBridgeTest, TakesThePartOfTheMainThreadElsewhere) {
  bridge_.reset();
  bool ran = false;
  std::thread([&] {
    NSMainQueuePollBridge bridge;
    HostLoop host(bridge);
    EXPECT_TRUE(NSThread::isMainThread());
    dispatch_async(main_, [&] { ran = NSThread::isMainThread(); });
    EXPECT_TRUE(host.runUntil([&] { return ran; }));
  }).join();
  EXPECT_TRUE(ran);
  EXPECT_TRUE(NSThread::isMainThread());
  const NSMainQueueThread thread;
  EXPECT_THROW(NSMainQueuePollBridge(), NSException);
}

TEST_F(NSMainQueuePollBridgeTest, ServesAFileWhichIsReadyAtAnyTime) {
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::tmpfile(), &std::fclose);
  ASSERT_TRUE(file);
  int called = 0;
  auto descriptor =
      NSRunLoop::mainRunLoop()->addDescriptor(::fileno(file.get()), NSRunLoopDescriptorRead,
                                              NSDefaultRunLoopMode, [&](short) { ++called; });
  EXPECT_TRUE(host_->runUntil([&] { return called == 3; }));
  descriptor = nullptr;
  host_->settle();
  EXPECT_EQ(called, 3);
}

TEST_F(NSMainQueuePollBridgeTest, MayBeDestroyedInAnItem) {
  bool ran = false;
  dispatch_async(main_, [&] {
    bridge_.reset();
    bridge_.emplace();
    bridge_.reset();
  });
  dispatch_async(main_, [&] { ran = true; });
  EXPECT_TRUE(host_->turn(0));
  EXPECT_TRUE(ran) << "in the turn that had begun";
}

}  // namespace
}  // namespace ORLFoundation
