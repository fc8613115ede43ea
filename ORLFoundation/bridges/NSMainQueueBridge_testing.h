/// What every bridge from the main queue to a host's loop is tested for, with the real loop. A host
/// is made before its bridge and dies after it:
///
///     struct Host {
///       using Bridge = ...;
///       class Modal {  // a loop within the loop
///         explicit Modal(Host&);
///         void run();
///         void quit();
///       };
///       void run();  // until quit
///       void quit();
///       void after(int milliseconds, std::function<void()> call);
///       int wakesWhileIdle(int milliseconds);  // but for its own
///       bool servesOnAThreadOfItsOwn();        // an item there, as on the main thread
///     };
#pragma once

#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/dispatch/NSMainQueuePollBridge.h>
#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/dispatch/NSTimer.h>
#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/IdleTime.h>

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

namespace ORLFoundation {

template <class Host>
class NSMainQueueBridge : public testing::Test {
 protected:
  using Bridge = typename Host::Bridge;

  NSMainQueueBridge() {
    while (pumpMainQueue(0)) {
    }
    host_.emplace();
    bridge_.emplace();
  }
  ~NSMainQueueBridge() override {
    bridge_.reset();
    while (pumpMainQueue(0)) {
    }
  }

  /// Runs the host until something quits it, for 20 seconds at most.
  void run() {
    const auto isLate = std::make_shared<bool>(false);
    host_->after(20'000, [this, weak = std::weak_ptr(isLate)] {
      if (const auto late = weak.lock()) {
        *late = true;
        host_->quit();
      }
    });
    host_->run();
    EXPECT_FALSE(*isLate);
  }
  [[nodiscard]] std::function<void()> quitting() {
    return [this] { host_->quit(); };
  }

  std::optional<Host> host_;
  std::optional<Bridge> bridge_;
  const dispatch_queue_t& main_ = dispatch_get_main_queue();
  std::vector<int> order_;
};

TYPED_TEST_SUITE_P(NSMainQueueBridge);

TYPED_TEST_P(NSMainQueueBridge, ServesItemsAndTimers) {
  NSTimer::scheduledTimerWithTimeInterval(0.005, false, [this](NSTimer&) {
    this->order_.push_back(2);
    this->host_->quit();
  });
  dispatch_async(this->main_, [this] { this->order_.push_back(1); });
  this->run();
  EXPECT_THAT(this->order_, testing::ElementsAre(1, 2));
  dispatch_async(dispatch_get_global_queue(QOS_CLASS_DEFAULT, 0), [this] {
    dispatch_sync(this->main_, [this] {
      EXPECT_TRUE(NSThread::isMainThread());
      this->host_->quit();
    });
  });
  this->run();
}

TYPED_TEST_P(NSMainQueueBridge, ServesOnAThreadOfItsOwn) {
  this->bridge_.reset();
  EXPECT_TRUE(this->host_->servesOnAThreadOfItsOwn());
  EXPECT_TRUE(NSThread::isMainThread());
}

TYPED_TEST_P(NSMainQueueBridge, ALoopWithinAnItemServesTheRest) {
  typename TypeParam::Modal modal(*this->host_);
  dispatch_async(this->main_, [&] {
    this->order_.push_back(1);
    modal.run();
    this->order_.push_back(4);
    this->host_->quit();
  });
  dispatch_async(this->main_, [&] {
    this->order_.push_back(2);
    NSTimer::scheduledTimerWithTimeInterval(0.002, false, [&](NSTimer&) {
      this->order_.push_back(3);
      modal.quit();
    });
  });
  this->run();
  EXPECT_THAT(this->order_, testing::ElementsAre(1, 2, 3, 4));
}

TYPED_TEST_P(NSMainQueueBridge, IsQuietWhileThereIsNothingToDo) {
  const auto timer = NSTimer::scheduledTimerWithTimeInterval(100, true, {});
  EXPECT_EQ(this->host_->wakesWhileIdle(orlftest::idleMilliseconds()), 0);
  timer->invalidate();
}

TYPED_TEST_P(NSMainQueueBridge, ABlockThatPostsItselfLeavesTheHostItsTurns) {
  bool isOver = false;
  std::function<void()> again = [&] {
    if (!isOver) dispatch_async(this->main_, again);
  };
  dispatch_async(this->main_, again);
  this->host_->after(5, [&] {
    isOver = true;
    this->host_->quit();
  });
  this->run();
  EXPECT_TRUE(isOver);
  while (pumpMainQueue(0)) {
  }
}

TYPED_TEST_P(NSMainQueueBridge, NoExceptionReachesTheHost) {
  LogCapture log;
  dispatch_async(this->main_, [] { throw std::runtime_error("no"); });
  dispatch_async(this->main_, this->quitting());
  this->run();
  EXPECT_THAT(log.lines(), testing::ElementsAre("The main thread goes on after an exception: no"));
}

TYPED_TEST_P(NSMainQueueBridge, IsTheOnlyOne) {
  EXPECT_THROW(typename TypeParam::Bridge(), NSException);
  EXPECT_THROW(NSMainQueuePollBridge(), NSException);
}

TYPED_TEST_P(NSMainQueueBridge, IsTakenAwayWithTimersPending) {
  bool fired = false;
  const auto timer =
      NSTimer::scheduledTimerWithTimeInterval(0.001, false, [&](NSTimer&) { fired = true; });
  this->bridge_.reset();
  this->host_->after(10, this->quitting());
  this->run();
  EXPECT_FALSE(fired);
  timer->invalidate();
}

TYPED_TEST_P(NSMainQueueBridge, MayBeDestroyedInAnItem) {
  dispatch_async(this->main_, [this] {
    this->bridge_.reset();
    this->host_->after(5, this->quitting());
  });
  this->run();
  EXPECT_FALSE(this->bridge_);
  dispatch_async(this->main_, [this] { this->order_.push_back(1); });
  this->host_->after(5, this->quitting());
  this->run();
  EXPECT_THAT(this->order_, testing::IsEmpty());
}

REGISTER_TYPED_TEST_SUITE_P(NSMainQueueBridge, ServesItemsAndTimers, ServesOnAThreadOfItsOwn,
                            ALoopWithinAnItemServesTheRest, IsQuietWhileThereIsNothingToDo,
                            ABlockThatPostsItselfLeavesTheHostItsTurns, NoExceptionReachesTheHost,
                            IsTheOnlyOne, IsTakenAwayWithTimersPending, MayBeDestroyedInAnItem);

}  // namespace ORLFoundation
