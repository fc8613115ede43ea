
#include <ORLFoundation/platform/dispatch/dispatch_queue.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/dispatch/dispatch_semaphore_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::comes;
using testing::ElementsAre;

/// Returns when all that was given to a serial queue so far has run.
void waitFor(const dispatch_queue_t& queue) {
  dispatch_sync(queue, [] {});
}

TEST(dispatch_queue, RunsItemsOfASerialQueueOneAtATimeInOrder) {
  const auto queue = dispatch_queue_create("serial", DISPATCH_QUEUE_SERIAL);
  std::vector<int> order;  // No lock: the queue is one.
  std::atomic<int> inside = 0;
  for (int i = 0; i < 1000; ++i)
    dispatch_async(queue, [&, i] {
      EXPECT_EQ(++inside, 1);
      order.push_back(i);
      --inside;
    });
  dispatch_sync(queue, [&] { order.push_back(1000); });
  ASSERT_EQ(order.size(), 1001U);
  for (int i = 0; i <= 1000; ++i) EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
}

TEST(dispatch_queue, EntersAnIdleSerialQueueOnTheCallersThread) {
  const auto queue = dispatch_queue_create("serial", DISPATCH_QUEUE_SERIAL);
  EXPECT_EQ(dispatch_sync(queue, [] { return std::this_thread::get_id(); }),
            std::this_thread::get_id());
}

TEST(dispatch_queue, EntersABusySerialQueueOnTheCallersThreadWhenItsTurnComes) {
  const auto queue = dispatch_queue_create("serial", DISPATCH_QUEUE_SERIAL);
  const auto gate = dispatch_semaphore_create(0);
  bool hasRun = false;
  dispatch_async(queue, [&] {
    EXPECT_TRUE(comes(gate));
    hasRun = true;
  });
  std::thread([&] { dispatch_semaphore_signal(gate); }).detach();
  dispatch_sync(queue, [&] {
    EXPECT_TRUE(hasRun);
    EXPECT_TRUE(NSThread::isMainThread());
  });
}

TEST(dispatch_queue, KeepsTheOrderOfSynchronousAndAsynchronousItems) {
  const auto queue = dispatch_queue_create("serial", DISPATCH_QUEUE_SERIAL);
  std::vector<std::pair<int, int>> order;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&, t] {
      for (int i = 0; i < 300; ++i) {
        if ((i + t) % 3 == 0) {
          dispatch_sync(queue, [&] { order.emplace_back(t, i); });
        } else {
          dispatch_async(queue, [&order, t, i] { order.emplace_back(t, i); });
        }
      }
    });
  for (auto& thread : threads) thread.join();
  waitFor(queue);
  ASSERT_EQ(order.size(), 1200U);
  std::vector<int> next(4, 0);
  for (const auto& [thread, index] : order)
    EXPECT_EQ(index, next[static_cast<std::size_t>(thread)]++) << "of thread " << thread;
}

TEST(dispatch_queue, GivesBackWhatASynchronousBlockReturns) {
  const auto queue = dispatch_queue_create("serial", DISPATCH_QUEUE_SERIAL);
  const auto text = dispatch_sync(queue, [] { return std::make_unique<std::string>("answer"); });
  EXPECT_EQ(*text, "answer");
}

TEST(dispatch_queue, ThrowsWhatASynchronousBlockThrewAndGoesOn) {
  for (const auto attributes : {DISPATCH_QUEUE_SERIAL, DISPATCH_QUEUE_CONCURRENT}) {
    const auto queue = dispatch_queue_create("queue", attributes);
    EXPECT_THROW(dispatch_sync(queue, [] { throw std::runtime_error("no"); }), std::runtime_error);
    EXPECT_EQ(dispatch_sync(queue, [] { return 1; }), 1);
    EXPECT_EQ(dispatch_queue_get_label(DISPATCH_CURRENT_QUEUE_LABEL),
              dispatch_queue_get_label(dispatch_get_main_queue()));
  }
}

TEST(dispatch_queue, RunsItemsOfAConcurrentQueueSideBySide) {
  for (const auto& queue : {dispatch_queue_create("concurrent", DISPATCH_QUEUE_CONCURRENT),
                            dispatch_get_global_queue(QOS_CLASS_USER_INITIATED, 0)}) {
    const auto first = dispatch_semaphore_create(0);
    const auto second = dispatch_semaphore_create(0);
    const auto done = dispatch_semaphore_create(0);
    dispatch_async(queue, [=] {
      dispatch_semaphore_signal(first);
      EXPECT_TRUE(comes(second));
      dispatch_semaphore_signal(done);
    });
    dispatch_async(queue, [=] {
      EXPECT_TRUE(comes(first));
      dispatch_semaphore_signal(second);
      dispatch_semaphore_signal(done);
    });
    EXPECT_TRUE(comes(done));
    EXPECT_TRUE(comes(done));
  }
}

TEST(dispatch_queue, LivesUntilItsItemsHaveRun) {
  const auto done = dispatch_semaphore_create(0);
  for (const auto attributes : {DISPATCH_QUEUE_SERIAL, DISPATCH_QUEUE_CONCURRENT}) {
    auto queue = dispatch_queue_create("short", attributes);
    for (int i = 0; i < 20; ++i)
      dispatch_async(queue, [done] {
        EXPECT_STREQ(dispatch_queue_get_label(nullptr), "short");
        dispatch_semaphore_signal(done);
      });
    queue = nullptr;
    for (int i = 0; i < 20; ++i) EXPECT_TRUE(comes(done));
  }
}

TEST(dispatch_queue, LivesWhileItIsEntered) {
  for (const auto attributes : {DISPATCH_QUEUE_SERIAL, DISPATCH_QUEUE_CONCURRENT}) {
    auto queue = dispatch_queue_create("short", attributes);
    dispatch_sync(queue, [&] {
      queue = nullptr;
      EXPECT_STREQ(dispatch_queue_get_label(nullptr), "short");
    });
  }
}

/// The last handle goes while the queue is entered, served, handed on and left.
TEST(dispatch_queue, LivesUntilItsLastOwnerHasLeftIt) {
  constexpr int kRounds = 3000;
  const auto done = dispatch_semaphore_create(0);
  std::atomic<int> ran{0};
  for (int round = 0; round < kRounds; ++round) {
    auto queue = dispatch_queue_create("short", DISPATCH_QUEUE_SERIAL);
    dispatch_async(dispatch_get_global_queue(QOS_CLASS_DEFAULT, 0), [&, held = queue]() mutable {
      dispatch_async(held, [&, last = held] { ++ran; });
      dispatch_sync(held, [&] {
        held = nullptr;
        ++ran;
      });
      dispatch_semaphore_signal(done);
    });
    dispatch_sync(queue, [&] { ++ran; });
    dispatch_async(queue, [&] {
      ++ran;
      dispatch_semaphore_signal(done);
    });
    queue = nullptr;
    EXPECT_TRUE(comes(done));
    EXPECT_TRUE(comes(done));
  }
  while (ran < 4 * kRounds) std::this_thread::yield();
}

TEST(dispatch_queue, DropsABlockWhenItHasRun) {
  for (const auto attributes : {DISPATCH_QUEUE_SERIAL, DISPATCH_QUEUE_CONCURRENT}) {
    const auto queue = dispatch_queue_create("queue", attributes);
    const auto done = dispatch_semaphore_create(0);
    struct Dropped {
      ~Dropped() {
        EXPECT_STREQ(dispatch_queue_get_label(nullptr), "queue");
        dispatch_semaphore_signal(signal);
      }
      dispatch_semaphore_t signal;
    };
    auto held = std::make_shared<Dropped>();
    held->signal = done;
    dispatch_async(queue, [held = std::move(held)] {});
    EXPECT_TRUE(comes(done));
  }
}

struct LabelCase {
  const char* name;
  std::int64_t identifier;
  std::uint64_t flags;
  const char* label;
};

TEST(dispatch_get_global_queue, IsOneForEachUrgency) {
  const LabelCase rows[] = {
      {"Interactive", QOS_CLASS_USER_INTERACTIVE, 0, "global.user-interactive"},
      {"Initiated", QOS_CLASS_USER_INITIATED, 0, "global.user-initiated"},
      {"Default", QOS_CLASS_DEFAULT, 0, "global.default"},
      {"Utility", QOS_CLASS_UTILITY, 0, "global.utility"},
      {"Background", QOS_CLASS_BACKGROUND, 0, "global.background"},
      {"Unspecified", QOS_CLASS_UNSPECIFIED, 0, "global.default"},
      {"High", DISPATCH_QUEUE_PRIORITY_HIGH, 0, "global.user-initiated"},
      {"Low", DISPATCH_QUEUE_PRIORITY_LOW, 0, "global.utility"},
      {"OldBackground", DISPATCH_QUEUE_PRIORITY_BACKGROUND, 0, "global.background"},
      {"NoUrgency", 26, 0, nullptr},
      {"Negative", -1, 0, nullptr},
      {"Least", INT64_MIN, 0, nullptr},
      {"Most", INT64_MAX, 0, nullptr},
      {"Flags", QOS_CLASS_DEFAULT, 1, nullptr},
  };
  for (const LabelCase& row : rows) {
    const auto& queue = dispatch_get_global_queue(row.identifier, row.flags);
    if (row.label == nullptr) {
      EXPECT_EQ(queue, nullptr) << row.name;
    } else {
      EXPECT_STREQ(dispatch_queue_get_label(queue), row.label) << row.name;
      EXPECT_EQ(dispatch_get_global_queue(row.identifier, row.flags), queue) << row.name;
    }
  }
}

TEST(dispatch_queue_get_label, IsTheQueuesOwnCopy) {
  std::string text = "ledger";
  const auto queue = dispatch_queue_create(text.c_str(), DISPATCH_QUEUE_SERIAL);
  const auto same = dispatch_queue_create(text.c_str(), DISPATCH_QUEUE_SERIAL);
  text = "other.";
  EXPECT_STREQ(dispatch_queue_get_label(queue), "ledger");
  EXPECT_EQ(dispatch_queue_get_label(queue), dispatch_queue_get_label(queue));
  EXPECT_NE(dispatch_queue_get_label(queue), dispatch_queue_get_label(same));
  EXPECT_STREQ(dispatch_queue_get_label(dispatch_queue_create(nullptr, DISPATCH_QUEUE_SERIAL)), "");
}

TEST(dispatch_queue_get_label, TellsTheInnermostQueueOfTheCaller) {
  const auto current = [] { return dispatch_queue_get_label(DISPATCH_CURRENT_QUEUE_LABEL); };
  const auto outer = dispatch_queue_create("outer", DISPATCH_QUEUE_SERIAL);
  const auto inner = dispatch_queue_create("inner", DISPATCH_QUEUE_CONCURRENT);
  EXPECT_EQ(current(), dispatch_queue_get_label(dispatch_get_main_queue()));
  dispatch_sync(outer, [&] {
    EXPECT_EQ(current(), dispatch_queue_get_label(outer));
    dispatch_sync(inner, [&] { EXPECT_EQ(current(), dispatch_queue_get_label(inner)); });
    EXPECT_EQ(current(), dispatch_queue_get_label(outer));
  });
  std::thread([&] {
    EXPECT_EQ(current(), nullptr);
    dispatch_sync(outer, [&] { EXPECT_EQ(current(), dispatch_queue_get_label(outer)); });
    EXPECT_EQ(current(), nullptr);
  }).join();
}

using dispatch_queueDeathTest = testing::Test;

TEST_F(dispatch_queueDeathTest, EnteringAQueueFromItselfIsFatal) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const auto queue = dispatch_queue_create("serial", DISPATCH_QUEUE_SERIAL);
  const auto other = dispatch_queue_create("other", DISPATCH_QUEUE_SERIAL);
  const auto enterAgain = [&] {
    dispatch_sync(queue, [&] { dispatch_sync(other, [&] { dispatch_sync(queue, [] {}); }); });
  };
  EXPECT_DEATH(enterAgain(), "dispatch_sync called on a queue that the caller is in");
  EXPECT_DEATH(dispatch_sync(dispatch_get_main_queue(), [] {}),
               "dispatch_sync called on the main queue by the main thread");
}

TEST_F(dispatch_queueDeathTest, EnteringAQueueThatAWaitingThreadIsInIsFatal) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const auto enter = [] {
    const auto queue = dispatch_queue_create("serial", DISPATCH_QUEUE_SERIAL);
    dispatch_async(queue, [&] {
      dispatch_sync(dispatch_get_main_queue(), [&] { dispatch_sync(queue, [] {}); });
    });
    pumpMainQueue(20);
  };
  EXPECT_DEATH(enter(), "dispatch_sync called on a queue that the caller is in");
}

TEST_F(dispatch_queueDeathTest, EnteringAQueueThatTheMainThreadIsInForAnotherIsFatal) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const auto enter = [] {
    const auto queue = dispatch_queue_create("serial", DISPATCH_QUEUE_SERIAL);
    dispatch_async(dispatch_get_global_queue(QOS_CLASS_DEFAULT, 0), [&] {
      dispatch_sync(dispatch_get_main_queue(), [&] { dispatch_sync(queue, [] {}); });
    });
    dispatch_sync(queue, [] { pumpMainQueue(20); });
  };
  EXPECT_DEATH(enter(), "dispatch_sync called on a queue that the caller is in");
}

TEST_F(dispatch_queueDeathTest, NilIsFatal) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const dispatch_queue_t none;
  const auto queue = dispatch_queue_create("serial", DISPATCH_QUEUE_SERIAL);
  EXPECT_DEATH(dispatch_async(none, [] {}), "work for a queue that is nil");
  EXPECT_DEATH(dispatch_async(queue, nullptr), "work for a queue that is nil");
  EXPECT_DEATH(dispatch_sync(none, [] {}), "work for a queue that is nil");
  EXPECT_DEATH(dispatch_after(1, queue, nullptr), "work for a queue that is nil");
}

TEST(dispatch_sync, EntersAConcurrentQueueFromItself) {
  const auto queue = dispatch_queue_create("concurrent", DISPATCH_QUEUE_CONCURRENT);
  EXPECT_EQ(dispatch_sync(queue, [&] { return dispatch_sync(queue, [] { return 3; }); }), 3);
}

TEST(dispatch_after, WaitsForItsTime) {
  const orlftest::VirtualMainLoop loop;
  const auto ran = dispatch_semaphore_create(0);
  const auto queue = dispatch_queue_create("serial", DISPATCH_QUEUE_SERIAL);
  std::vector<std::string> order;
  const auto note = [&](const char* text) {
    return [&, text] {
      order.emplace_back(text);
      dispatch_semaphore_signal(ran);
    };
  };
  dispatch_after(dispatch_time(DISPATCH_TIME_NOW, 20), queue, note("twenty"));
  dispatch_after(dispatch_time(DISPATCH_TIME_NOW, 10), queue, note("ten"));
  dispatch_after(DISPATCH_TIME_FOREVER, queue, note("never"));
  dispatch_after(DISPATCH_TIME_NOW, queue, note("now"));
  EXPECT_TRUE(comes(ran));
  loop.clock().advanceTo(loop.clock().nanoseconds() + 10);
  EXPECT_TRUE(comes(ran));
  waitFor(queue);
  EXPECT_THAT(order, ElementsAre("now", "ten"));
  loop.clock().advance(100);
  EXPECT_TRUE(comes(ran));
  waitFor(queue);
  EXPECT_THAT(order, ElementsAre("now", "ten", "twenty"));
}

TEST(dispatch_after, TakesNoLessThanItsTimeOfTheSystemsClock) {
  const auto ran = dispatch_semaphore_create(0);
  const auto begun = std::chrono::steady_clock::now();
  const auto& queue = dispatch_get_global_queue(QOS_CLASS_DEFAULT, 0);
  dispatch_after(dispatch_time(DISPATCH_TIME_NOW, 30 * NSEC_PER_MSEC), queue,
                 [=] { dispatch_semaphore_signal(ran); });
  EXPECT_TRUE(comes(ran));
  EXPECT_GE(std::chrono::steady_clock::now() - begun, std::chrono::milliseconds(30));
}

TEST(dispatch_time, CountsFromTheClock) {
  const orlftest::VirtualMainLoop loop;
  const auto now = static_cast<dispatch_time_t>(loop.clock().nanoseconds());
  EXPECT_EQ(dispatch_time(DISPATCH_TIME_NOW, 5), now + 5);
  EXPECT_EQ(dispatch_time(DISPATCH_TIME_NOW, -5), now - 5);
  EXPECT_EQ(dispatch_time(7, 5), 12U);
  EXPECT_EQ(dispatch_time(7, -9), 1U);
  EXPECT_EQ(dispatch_time(7, INT64_MIN), 1U);
  EXPECT_EQ(dispatch_time(7, INT64_MAX), DISPATCH_TIME_FOREVER);
  EXPECT_EQ(dispatch_time(DISPATCH_TIME_FOREVER, -5), DISPATCH_TIME_FOREVER);
  EXPECT_EQ(dispatch_time(DISPATCH_TIME_FOREVER - 1, -5), DISPATCH_TIME_FOREVER);
}

}  // namespace
}  // namespace ORLFoundation
