
#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

TEST(dispatch_semaphore, CountsWhatIsSignalled) {
  const auto semaphore = dispatch_semaphore_create(2);
  EXPECT_EQ(dispatch_semaphore_wait(semaphore, DISPATCH_TIME_NOW), 0);
  EXPECT_EQ(dispatch_semaphore_wait(semaphore, DISPATCH_TIME_FOREVER), 0);
  EXPECT_NE(dispatch_semaphore_wait(semaphore, DISPATCH_TIME_NOW), 0);
  EXPECT_EQ(dispatch_semaphore_signal(semaphore), 0);
  EXPECT_EQ(dispatch_semaphore_wait(semaphore, DISPATCH_TIME_NOW), 0);
}

TEST(dispatch_semaphore, HasNoCountBelowZero) {
  EXPECT_EQ(dispatch_semaphore_create(-1), nullptr);
  EXPECT_EQ(dispatch_semaphore_create(INT64_MIN), nullptr);
  EXPECT_NE(dispatch_semaphore_create(0), nullptr);
}

TEST(dispatch_semaphore, WakesAWaitingThreadAndTellsSo) {
  const auto semaphore = dispatch_semaphore_create(0);
  std::atomic<bool> isThrough = false;
  std::thread waiting([&] {
    EXPECT_EQ(dispatch_semaphore_wait(semaphore, DISPATCH_TIME_FOREVER), 0);
    isThrough = true;
  });
  // Until the thread waits, a signal wakes nobody and is taken back.
  while (dispatch_semaphore_signal(semaphore) == 0 && !isThrough)
    static_cast<void>(dispatch_semaphore_wait(semaphore, DISPATCH_TIME_NOW));
  waiting.join();
  EXPECT_TRUE(isThrough);
}

TEST(dispatch_semaphore, GivesUpAtTheTimeOfTheSystemsClock) {
  const auto semaphore = dispatch_semaphore_create(0);
  const std::int64_t begun = NSMonotonicClock::now();
  EXPECT_NE(dispatch_semaphore_wait(semaphore, dispatch_time(DISPATCH_TIME_NOW, 20'000'000)), 0);
  EXPECT_GE(NSMonotonicClock::now() - begun, 20'000'000);
  EXPECT_NE(dispatch_semaphore_wait(semaphore, 1), 0);  // Long past.
}

TEST(dispatch_semaphore, GivesUpAtTheTimeOfAVirtualClock) {
  const orlftest::VirtualMainLoop loop;
  const auto semaphore = dispatch_semaphore_create(0);
  const dispatch_time_t limit = dispatch_time(DISPATCH_TIME_NOW, 100);
  std::atomic<bool> isOver = false;
  std::thread waiting([&] {
    EXPECT_NE(dispatch_semaphore_wait(semaphore, limit), 0);
    isOver = true;
  });
  loop.clock().advanceTo(static_cast<std::int64_t>(limit) - 1);
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  EXPECT_FALSE(isOver);
  loop.clock().advanceTo(static_cast<std::int64_t>(limit));
  waiting.join();
}

TEST(dispatch_semaphore, LosesNoSignal) {
  const auto semaphore = dispatch_semaphore_create(0);
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 2000; ++i) dispatch_semaphore_signal(semaphore);
    });
    threads.emplace_back([&] {
      for (int i = 0; i < 2000; ++i)
        EXPECT_EQ(dispatch_semaphore_wait(semaphore, DISPATCH_TIME_FOREVER), 0);
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_NE(dispatch_semaphore_wait(semaphore, DISPATCH_TIME_NOW), 0);
}

TEST(dispatch_semaphoreDeathTest, NilIsFatal) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_DEATH(dispatch_semaphore_signal(nullptr), "a semaphore that is nil");
  EXPECT_DEATH(dispatch_semaphore_wait(nullptr, DISPATCH_TIME_NOW), "a semaphore that is nil");
}

TEST(dispatch_semaphoreDeathTest, ACountThatOverflowsIsFatal) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const auto full = dispatch_semaphore_create(INT64_MAX - 1);
  EXPECT_EQ(dispatch_semaphore_signal(full), 0);
  EXPECT_DEATH(dispatch_semaphore_signal(full), "the count of a semaphore overflows");
}

}  // namespace
}  // namespace ORLFoundation
