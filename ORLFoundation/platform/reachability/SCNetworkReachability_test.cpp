
#include <ORLFoundation/platform/reachability/SCNetworkReachability.h>

#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/platform/reachability/HostLookup.h>
#include <ORLFoundation/platform/reachability/RouteSocket_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <future>
#include <thread>

namespace ORLFoundation {
namespace {

using orlftest::addressOf;
using orlftest::ScriptedKernel;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t kRuns = IFF_UP | IFF_RUNNING;
constexpr double kLongest = 20;

SCNetworkReachabilityRef targetOf(const std::string& numbers) {
  const sockaddr_storage address = addressOf(numbers);
  return SCNetworkReachabilityCreateWithAddress(reinterpret_cast<const sockaddr*>(&address));
}

/// Runs the thread's loop until something holds.
template <class Condition>
bool runUntil(const Condition& condition, double seconds = kLongest) {
  const NSDate end = NSDate::date().dateByAddingTimeInterval(seconds);
  while (!condition() && NSDate::date().compare(end) == NSOrderedAscending)
    NSRunLoop::currentRunLoop()->runMode(NSDefaultRunLoopMode,
                                         NSDate::date().dateByAddingTimeInterval(0.05));
  return condition();
}

/// A target on the loop of this thread, and the flags that were told.
class Heard {
 public:
  explicit Heard(SCNetworkReachabilityRef target) : target_(std::move(target)) {
    SCNetworkReachabilitySetCallback(
        target_, [this](SCNetworkReachabilityFlags flags) { told.push_back(flags); });
    EXPECT_TRUE(SCNetworkReachabilityScheduleWithRunLoop(target_, NSRunLoop::currentRunLoop(),
                                                         NSDefaultRunLoopMode));
  }

  std::vector<SCNetworkReachabilityFlags> told;

 private:
  const SCNetworkReachabilityRef target_;
};

/// Resolvers that answer when the test lets them.
class ScriptedNames {
 public:
  ScriptedNames()
      : resolver_(internal::reachability::exchangeHostResolver,
                  [state = state_](const std::string& name) { return state->find(name); }) {}
  void set(const std::string& name, const std::vector<std::string>& numbers) {
    const std::lock_guard guard(state_->lock);
    state_->names[name].clear();
    for (const std::string& one : numbers) state_->names[name].push_back(addressOf(one));
    state_->changed.notify_all();
  }
  [[nodiscard]] int lookups() const {
    const std::lock_guard guard(state_->lock);
    return state_->lookups;
  }

 private:
  /// Held by look-ups that outlive the test.
  struct State {
    internal::reachability::Addresses find(const std::string& name) {
      std::unique_lock guard(lock);
      ++lookups;
      changed.wait_for(guard, std::chrono::seconds(20), [&] { return names.count(name) > 0; });
      return names[name];
    }
    std::mutex lock;
    std::condition_variable changed;
    std::map<std::string, internal::reachability::Addresses> names;
    int lookups = 0;
  };
  const std::shared_ptr<State> state_ = std::make_shared<State>();
  const Replaced<internal::reachability::HostResolver> resolver_;
};

TEST(SCNetworkReachability, IsMadeOfWhatCanBeReached) {
  EXPECT_EQ(SCNetworkReachabilityCreateWithName(""), nullptr);
  EXPECT_EQ(SCNetworkReachabilityCreateWithName(std::string("a\0b", 3)), nullptr);
  EXPECT_EQ(SCNetworkReachabilityCreateWithAddress(nullptr), nullptr);
  sockaddr other{};
  other.sa_family = AF_UNIX;
  EXPECT_EQ(SCNetworkReachabilityCreateWithAddress(&other), nullptr);
  EXPECT_NE(targetOf("::1"), nullptr);
  EXPECT_EQ(SCNetworkReachabilityGetFlags(nullptr), std::nullopt);
  EXPECT_FALSE(SCNetworkReachabilityScheduleWithRunLoop(nullptr, NSRunLoop::currentRunLoop(), ""));
  EXPECT_FALSE(SCNetworkReachabilityScheduleWithRunLoop(targetOf("::1"), nullptr, ""));
}

TEST(SCNetworkReachability, TakesNumbersWithoutALookUp) {
  ScriptedKernel kernel;
  const ScriptedNames names;
  kernel.setLink(1, kRuns);
  kernel.setRoutes("127.0.0.1", {{RTN_LOCAL, 32, false, 0, 1}});
  EXPECT_EQ(SCNetworkReachabilityGetFlags(SCNetworkReachabilityCreateWithName("127.0.0.1")),
            0x30002U);
  EXPECT_EQ(SCNetworkReachabilityGetFlags(SCNetworkReachabilityCreateWithName("::1")), 0U);
  EXPECT_EQ(names.lookups(), 0);
}

TEST(SCNetworkReachability, TellsOfAChangeOnce) {
  ScriptedKernel kernel;
  kernel.setLink(2, kRuns);
  const Heard heard(targetOf("192.0.2.7"));
  EXPECT_EQ(kernel.groups(), internal::reachability::groupsOfChanges());
  kernel.tellOfChange();
  EXPECT_FALSE(runUntil([&] { return !heard.told.empty(); }, 0.1));
  kernel.setRoutes("192.0.2.7", {{RTN_UNICAST, 32, true, 0, 2}});
  for (int i = 0; i < 10; ++i) kernel.tellOfChange();
  EXPECT_TRUE(runUntil([&] { return !heard.told.empty(); }));
  kernel.tellOfChange();
  EXPECT_FALSE(runUntil([&] { return heard.told.size() > 1; }, 0.1));
  kernel.setLink(2, IFF_UP);
  kernel.tellOfChange();
  EXPECT_TRUE(runUntil([&] { return heard.told.size() > 1; }));
  EXPECT_THAT(heard.told, ElementsAre(0x2, 0));
}

TEST(SCNetworkReachability, TellsNothingOfWhatItWasScheduledWith) {
  ScriptedKernel kernel;
  kernel.setLink(2, kRuns);
  kernel.setRoutes("192.0.2.7", {{RTN_UNICAST, 32, true, 0, 2}});
  const Heard heard(targetOf("192.0.2.7"));
  kernel.tellOfChange();
  EXPECT_FALSE(runUntil([&] { return !heard.told.empty(); }, 0.1));
}

TEST(SCNetworkReachability, IsScheduledOnceForALoopAndAMode) {
  ScriptedKernel kernel;
  kernel.setLink(2, kRuns);
  const auto target = targetOf("192.0.2.7");
  const auto loop = NSRunLoop::currentRunLoop();
  int calls = 0;
  SCNetworkReachabilitySetCallback(target, [&](SCNetworkReachabilityFlags) { ++calls; });
  EXPECT_TRUE(SCNetworkReachabilityScheduleWithRunLoop(target, loop, NSDefaultRunLoopMode));
  EXPECT_TRUE(SCNetworkReachabilityScheduleWithRunLoop(target, loop, NSDefaultRunLoopMode));
  EXPECT_FALSE(SCNetworkReachabilityUnscheduleFromRunLoop(target, loop, "other"));
  EXPECT_FALSE(SCNetworkReachabilityUnscheduleFromRunLoop(target, nullptr, NSDefaultRunLoopMode));
  EXPECT_TRUE(SCNetworkReachabilityUnscheduleFromRunLoop(target, loop, NSDefaultRunLoopMode));
  EXPECT_FALSE(SCNetworkReachabilityUnscheduleFromRunLoop(target, loop, NSDefaultRunLoopMode));
  kernel.setRoutes("192.0.2.7", {{RTN_UNICAST, 32, true, 0, 2}});
  kernel.tellOfChange();
  EXPECT_FALSE(runUntil([&] { return calls > 0; }, 0.1));
}

TEST(SCNetworkReachability, CannotBeScheduledWhereTheKernelIsSilent) {
  ScriptedKernel kernel;
  kernel.setOpen(false);
  EXPECT_FALSE(SCNetworkReachabilityScheduleWithRunLoop(
      targetOf("192.0.2.7"), NSRunLoop::currentRunLoop(), NSDefaultRunLoopMode));
}

TEST(SCNetworkReachability, WaitsForNoLookUp) {
  ScriptedKernel kernel;
  ScriptedNames names;
  kernel.setLink(2, kRuns);
  kernel.setRoutes("192.0.2.7", {{RTN_UNICAST, 32, true, 0, 2}});
  const auto target = SCNetworkReachabilityCreateWithName("bank.example");
  EXPECT_EQ(SCNetworkReachabilityGetFlags(target), std::nullopt);
  const Heard heard(target);
  EXPECT_FALSE(runUntil([&] { return !heard.told.empty(); }, 0.05));
  names.set("bank.example", {"192.0.2.99", "192.0.2.7"});
  EXPECT_TRUE(runUntil([&] { return !heard.told.empty(); }));
  EXPECT_THAT(heard.told, ElementsAre(0x2));
  EXPECT_EQ(SCNetworkReachabilityGetFlags(target), 0x2U);
}

TEST(SCNetworkReachability, LooksNamesUpAgainWhenTheNetworkHasChanged) {
  ScriptedKernel kernel;
  ScriptedNames names;
  kernel.setLink(2, kRuns);
  kernel.setRoutes("192.0.2.7", {{RTN_UNICAST, 32, true, 0, 2}});
  names.set("bank.example", {});
  const auto target = SCNetworkReachabilityCreateWithName("bank.example");
  const Heard heard(target);
  EXPECT_TRUE(runUntil([&] { return SCNetworkReachabilityGetFlags(target).has_value(); }));
  EXPECT_EQ(SCNetworkReachabilityGetFlags(target), 0U);
  names.set("bank.example", {"192.0.2.7"});
  kernel.tellOfChange();
  EXPECT_TRUE(runUntil([&] { return !heard.told.empty(); }));
  EXPECT_THAT(heard.told, ElementsAre(0x2));
  EXPECT_GE(names.lookups(), 2);
}

TEST(SCNetworkReachability, DiesWhileItsNameIsLookedUp) {
  ScriptedKernel kernel;
  ScriptedNames names;
  for (int i = 0; i < 10; ++i) {
    const Heard heard(SCNetworkReachabilityCreateWithName("gone" + std::to_string(i)));
    EXPECT_THAT(heard.told, IsEmpty());
  }
  for (int i = 0; i < 10; ++i) names.set("gone" + std::to_string(i), {"192.0.2.7"});
  EXPECT_TRUE(runUntil([&] { return names.lookups() == 10; }));
}

TEST(SCNetworkReachability, DiesInItsOwnCallback) {
  ScriptedKernel kernel;
  kernel.setLink(2, kRuns);
  auto target = targetOf("192.0.2.7");
  bool isCalled = false;
  SCNetworkReachabilitySetCallback(target, [&](SCNetworkReachabilityFlags) {
    isCalled = true;
    target = nullptr;
  });
  ASSERT_TRUE(SCNetworkReachabilityScheduleWithRunLoop(target, NSRunLoop::currentRunLoop(),
                                                       NSDefaultRunLoopMode));
  kernel.setRoutes("192.0.2.7", {{RTN_UNICAST, 32, true, 0, 2}});
  kernel.tellOfChange();
  EXPECT_TRUE(runUntil([&] { return isCalled; }));
  EXPECT_EQ(target, nullptr);
}

TEST(SCNetworkReachability, IsAskedAndScheduledByManyThreads) {
  ScriptedKernel kernel;
  kernel.setLink(2, kRuns);
  const auto target = targetOf("192.0.2.7");
  std::atomic<int> calls{0};
  SCNetworkReachabilitySetCallback(target, [&](SCNetworkReachabilityFlags) { ++calls; });
  std::promise<void> done;
  const std::shared_future<void> isDone = done.get_future().share();
  std::atomic<int> listening{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i)
    threads.emplace_back([&] {
      const auto loop = NSRunLoop::currentRunLoop();
      EXPECT_TRUE(SCNetworkReachabilityScheduleWithRunLoop(target, loop, NSDefaultRunLoopMode));
      ++listening;
      while (isDone.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
        loop->runMode(NSDefaultRunLoopMode, NSDate::date().dateByAddingTimeInterval(0.01));
        static_cast<void>(SCNetworkReachabilityGetFlags(target));
      }
      EXPECT_TRUE(SCNetworkReachabilityUnscheduleFromRunLoop(target, loop, NSDefaultRunLoopMode));
    });
  EXPECT_TRUE(runUntil([&] {
    std::this_thread::yield();
    return listening == 3;
  }));
  kernel.setRoutes("192.0.2.7", {{RTN_UNICAST, 32, true, 0, 2}});
  kernel.tellOfChange();
  EXPECT_TRUE(runUntil([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return calls > 0;
  }));
  done.set_value();
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace ORLFoundation
