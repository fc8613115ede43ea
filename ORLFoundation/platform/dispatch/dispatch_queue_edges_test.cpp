// Queues of wild urgencies, items that throw, descriptors and times that are none.
#include <ORLFoundation/platform/dispatch/dispatch_queue.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/platform/dispatch/QueueTurn.h>
#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>

namespace ORLFoundation {
namespace {

struct Urgency {
  std::int64_t qualityOfService;
  char place;
};
constexpr Urgency kUrgencies[] = {{QOS_CLASS_BACKGROUND, '5'},
                                  {QOS_CLASS_UTILITY, '4'},
                                  {0, '3'},
                                  {INT64_MIN, '3'},
                                  {-1, '3'},
                                  {26, '3'},
                                  {INT64_MAX, '3'},
                                  {DISPATCH_QUEUE_PRIORITY_HIGH, '3'},
                                  {QOS_CLASS_DEFAULT, '3'},
                                  {QOS_CLASS_USER_INITIATED, '2'},
                                  {QOS_CLASS_USER_INTERACTIVE, '1'}};

/// Runs an item on a queue of each urgency while one thread serves them all, and ends the process:
/// with 0 when the most urgent ones went first.
void serveAllUrgencies(dispatch_queue_attr_t kind) {
  // The threads of the pool, but for one that is let go on when all items are there, never rest.
  std::atomic<bool> goesOn = false;
  std::atomic<unsigned> busy = 0;
  const unsigned width = std::max(1U, std::thread::hardware_concurrency());
  const auto& urgent = dispatch_get_global_queue(QOS_CLASS_USER_INTERACTIVE, 0);
  for (unsigned i = 0; i < width; ++i)
    dispatch_async(urgent, [&, isLast = i == 0] {
      ++busy;
      while (!goesOn || !isLast) continue;
    });
  while (busy < width) std::this_thread::yield();
  std::mutex lock;
  std::string order;
  const auto done = dispatch_semaphore_create(0);
  for (const Urgency& each : kUrgencies) {
    const auto attributes = dispatch_queue_attr_make_with_qos_class(kind, each.qualityOfService);
    dispatch_async(dispatch_queue_create("urgency", attributes), [&, place = each.place] {
      const std::lock_guard guard(lock);
      order += place;
      dispatch_semaphore_signal(done);
    });
  }
  goesOn = true;
  for (std::size_t i = 0; i < std::size(kUrgencies); ++i)
    dispatch_semaphore_wait(done, DISPATCH_TIME_FOREVER);
  std::fprintf(stderr, "%s\n", order.c_str());
  std::_Exit(std::ranges::is_sorted(order) ? 0 : 1);
}

using dispatch_queueDeathTest = testing::Test;

TEST_F(dispatch_queueDeathTest, AnUrgencyThatIsNoneStandsForTheDefault) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_EXIT(serveAllUrgencies(DISPATCH_QUEUE_SERIAL), testing::ExitedWithCode(0), "12333333345");
  EXPECT_EXIT(serveAllUrgencies(DISPATCH_QUEUE_CONCURRENT), testing::ExitedWithCode(0),
              "12333333345");
}

TEST_F(dispatch_queueDeathTest, WhatAnItemThrowsEndsTheProcess) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const dispatch_block_t throwing = [] { throw std::runtime_error("refused"); };
  const auto wait = [] {
    const auto never = dispatch_semaphore_create(0);
    dispatch_semaphore_wait(never, dispatch_time(DISPATCH_TIME_NOW, 20'000'000'000));
  };
  const auto serial = dispatch_queue_create("serial", DISPATCH_QUEUE_SERIAL);
  EXPECT_DEATH((dispatch_async(serial, throwing), wait()), "refused");
  EXPECT_DEATH((dispatch_after(1, serial, throwing), wait()), "refused");
  EXPECT_DEATH((dispatch_async(dispatch_get_global_queue(0, 0), throwing), wait()), "refused");
  EXPECT_DEATH(internal::dispatch::QueueTurn::tryTake(serial)->run(throwing), "refused");
}

TEST(NSRunLoopDescriptor, NeedsABlockAndANumber) {
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe(ends.data()), 0);
  ASSERT_EQ(::write(ends[1], "a", 1), 1);
  const auto loop = NSRunLoop::mainRunLoop();
  {
    const auto silent =
        loop->addDescriptor(ends[0], NSRunLoopDescriptorRead, NSDefaultRunLoopMode, nullptr);
    EXPECT_TRUE(pumpMainQueue(0));
  }
  int calls = 0;
  const auto none = loop->addDescriptor(-1, NSRunLoopDescriptorRead, NSDefaultRunLoopMode,
                                        [&](short) { ++calls; });
  EXPECT_FALSE(pumpMainQueue(0));
  EXPECT_EQ(calls, 0);
  for (const int end : ends) ::close(end);
}

TEST(pumpMainQueue, DoesNotWaitForTimesThatAreNone) {
  while (pumpMainQueue(0)) continue;
  for (const double timeout : {-1.0, -std::numeric_limits<double>::infinity(),
                               std::numeric_limits<double>::quiet_NaN(), 5e-324})
    EXPECT_FALSE(pumpMainQueue(timeout)) << timeout;
  dispatch_async(dispatch_get_main_queue(), [] {});
  EXPECT_TRUE(pumpMainQueue(std::numeric_limits<double>::infinity()));
}

}  // namespace
}  // namespace ORLFoundation
