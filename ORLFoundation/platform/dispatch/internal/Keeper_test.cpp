#include <ORLFoundation/platform/dispatch/internal/Keeper.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/dispatch/dispatch_semaphore_testing.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace ORLFoundation::internal::dispatch {
namespace {

using orlftest::becomes;
using orlftest::comes;
using std::chrono::milliseconds;

TEST(Keeper, EndsItsThreadWhenThereIsNothingToMind) {
  const auto ran = dispatch_semaphore_create(0);
  dispatch_after(dispatch_time(DISPATCH_TIME_NOW, 1'000'000),
                 dispatch_get_global_queue(QOS_CLASS_DEFAULT, 0),
                 [=] { dispatch_semaphore_signal(ran); });
  EXPECT_TRUE(Keeper::shared().isRunning());
  EXPECT_TRUE(comes(ran));
  EXPECT_TRUE(becomes([] { return !Keeper::shared().isRunning(); }));
}

/// How often the keeper's thread has gone to sleep; below 0 where it is not there.
std::int64_t sleepsOfKeeper() {
  for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
    std::string name;
    std::getline(std::ifstream(task.path() / "comm"), name);
    if (name != "orlf-keeper") continue;
    std::ifstream status(task.path() / "status");
    for (std::string line; std::getline(status, line);)
      if (line.starts_with("voluntary_ctxt_switches:")) return std::stoll(line.substr(24));
  }
  return -1;
}

TEST(Keeper, SleepsUntilADelayedItemIsDue) {
  orlftest::VirtualMainLoop loop;
  const auto ran = dispatch_semaphore_create(0);
  dispatch_after(dispatch_time(DISPATCH_TIME_NOW, 3600 * static_cast<std::int64_t>(NSEC_PER_SEC)),
                 dispatch_get_global_queue(QOS_CLASS_DEFAULT, 0),
                 [=] { dispatch_semaphore_signal(ran); });
  // One of some spans: its thread may begin late on a busy machine.
  bool sleeps = false;
  for (int spans = 0; spans < 10 && !sleeps; ++spans) {
    std::this_thread::sleep_for(milliseconds(20));
    const std::int64_t before = sleepsOfKeeper();
    std::this_thread::sleep_for(milliseconds(600));  // Longer than it stays with nothing to mind.
    sleeps = before >= 0 && sleepsOfKeeper() == before;
  }
  EXPECT_TRUE(sleeps);
  EXPECT_TRUE(Keeper::shared().isRunning());
  loop.clock().advance(3600);
  EXPECT_TRUE(comes(ran));
}

}  // namespace
}  // namespace ORLFoundation::internal::dispatch
