#include <ORLFoundation/platform/base/BriefLock.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

namespace ORLFoundation::internal::base {
namespace {

TEST(BriefLock, LetsOneInAtATime) {
  BriefLock<std::mutex> lock;
  int count = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < 3; ++t)
    threads.emplace_back([&] {
      for (int i = 0; i < 1000; ++i) {
        const std::lock_guard guard(lock);
        ++count;
      }
    });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(count, 3000);
}

TEST(BriefLock, WaitsForOneThatIsHeldForLong) {
  BriefLock<std::recursive_mutex> lock;
  std::atomic<bool> isFree{false};
  std::thread waiting;
  {
    const std::lock_guard guard(lock);
    const std::lock_guard again(lock);
    waiting = std::thread([&] {
      const std::lock_guard late(lock);
      EXPECT_TRUE(isFree);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    isFree = true;
  }
  waiting.join();
}

}  // namespace
}  // namespace ORLFoundation::internal::base
