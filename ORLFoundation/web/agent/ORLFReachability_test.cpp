
#include <ORLFoundation/web/agent/ORLFReachability.h>

#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/platform/notification/NSNotificationCenter.h>
#include <ORLFoundation/platform/reachability/RouteSocket_testing.h>
#include <gtest/gtest.h>

#include <thread>

namespace ORLFoundation {
namespace {

using orlftest::ScriptedKernel;

constexpr std::uint32_t kRuns = IFF_UP | IFF_RUNNING;

/// Counts notifications about an object.
class Notified {
 public:
  explicit Notified(const std::shared_ptr<NSObject>& object)
      : token_(NSNotificationCenter::defaultCenter()->addObserverForName(
            "kNetworkReachabilityChangedNotification", object,
            [this](const NSNotification&) { ++count; })) {}
  int count = 0;

  /// Runs the thread's loop until there are so many, or for a while.
  bool comesTo(int expected, double seconds = 20) {
    const NSDate end = NSDate::date().dateByAddingTimeInterval(seconds);
    while (count < expected && NSDate::date().compare(end) == NSOrderedAscending) {
      const auto loop = NSRunLoop::currentRunLoop();
      if (!loop->runMode(NSDefaultRunLoopMode, NSDate::date().dateByAddingTimeInterval(0.05)))
        break;
    }
    return count == expected;
  }

 private:
  const std::shared_ptr<NSNotificationObserver> token_;
};

class Reach : public testing::Test {
 protected:
  Reach() {
    kernel_.setLink(2, kRuns);
    kernel_.setRoutes("192.0.2.7", {{RTN_UNICAST, 32, true, 0, 2}});
  }
  void setReachable(bool isReachable) {
    kernel_.setLink(2, isReachable ? kRuns : 0);
    kernel_.tellOfChange();
  }
  ScriptedKernel kernel_;
};

/// The rule, written as it is told.
std::int64_t statusByTheRule(std::uint32_t flags) {
  if ((flags & 0x2U) == 0) return 0;
  if ((flags & 0x4U) == 0) return 1;
  if ((flags & 0x10U) == 0 && ((flags & 0x8U) != 0 || (flags & 0x20U) != 0)) return 1;
  return 0;
}

TEST_F(Reach, TellsTheStatusOfFlags) {
  const auto reachability = ORLFReachability::reachabilityForInternetConnection();
  for (std::uint32_t low = 0; low < 256; ++low)
    for (const std::uint32_t high : {0x0U, 0x10000U, 0x20000U, 0xFFFFFF00U})
      EXPECT_EQ(reachability->networkStatusForFlags(low | high), statusByTheRule(low | high))
          << low;
  EXPECT_EQ(reachability->networkStatusForFlags(0x2), Reachable);
  EXPECT_EQ(reachability->networkStatusForFlags(0x6), NotReachable);
  EXPECT_EQ(reachability->networkStatusForFlags(0xE), Reachable);
  EXPECT_EQ(reachability->networkStatusForFlags(0x1E), NotReachable);
  EXPECT_EQ(reachability->networkStatusForFlags(0), NotReachable);
}

TEST_F(Reach, IsNoneWithoutAPlace) {
  EXPECT_EQ(ORLFReachability::reachabilityWithHostName(""), nullptr);
  EXPECT_EQ(ORLFReachability::reachabilityWithAddress(nullptr), nullptr);
  sockaddr other{};
  EXPECT_EQ(ORLFReachability::reachabilityWithAddress(&other), nullptr);
}

TEST_F(Reach, AsksForTheFlagsOfThisMoment) {
  const auto reachability = ORLFReachability::reachabilityWithHostName("192.0.2.7");
  EXPECT_EQ(reachability->currentReachabilityStatus(), Reachable);
  EXPECT_FALSE(reachability->connectionRequired());
  kernel_.setLink(2, IFF_UP | IFF_DORMANT);
  EXPECT_EQ(reachability->currentReachabilityStatus(), NotReachable);
  EXPECT_TRUE(reachability->connectionRequired());
  kernel_.setLink(2, IFF_UP | IFF_DORMANT | IFF_POINTOPOINT);
  EXPECT_EQ(reachability->currentReachabilityStatus(), Reachable);
  EXPECT_TRUE(reachability->connectionRequired());
  kernel_.refuse(EPERM);
  EXPECT_EQ(reachability->currentReachabilityStatus(), NotReachable);
  EXPECT_FALSE(reachability->connectionRequired());
}

TEST_F(Reach, AsksForTheWayToTheInternet) {
  const auto reachability = ORLFReachability::reachabilityForInternetConnection();
  EXPECT_EQ(reachability->currentReachabilityStatus(), NotReachable);
  kernel_.setRoutes("", {{RTN_UNICAST, 0, true, 0, 2}});
  EXPECT_EQ(reachability->currentReachabilityStatus(), Reachable);
}

TEST_F(Reach, PostsOneNotificationForAChange) {
  const auto reachability = ORLFReachability::reachabilityWithHostName("192.0.2.7");
  Notified notified(reachability);
  EXPECT_TRUE(reachability->startNotifier());
  setReachable(true);
  EXPECT_TRUE(notified.comesTo(0, 0.1));
  setReachable(false);
  EXPECT_TRUE(notified.comesTo(1));
  setReachable(true);
  EXPECT_TRUE(notified.comesTo(2));
  reachability->stopNotifier();
  setReachable(false);
  EXPECT_TRUE(notified.comesTo(2, 0.1));
  EXPECT_TRUE(reachability->startNotifier());
  setReachable(true);
  EXPECT_TRUE(notified.comesTo(3));
}

TEST_F(Reach, GoesOnWhereAnotherThreadStopsIt) {
  const auto reachability = ORLFReachability::reachabilityWithHostName("192.0.2.7");
  Notified notified(reachability);
  EXPECT_TRUE(reachability->startNotifier());
  std::thread([&] { reachability->stopNotifier(); }).join();
  setReachable(false);
  EXPECT_TRUE(notified.comesTo(1));
}

TEST_F(Reach, CannotStartWhereTheKernelIsSilent) {
  const auto reachability = ORLFReachability::reachabilityWithHostName("192.0.2.7");
  kernel_.setOpen(false);
  EXPECT_FALSE(reachability->startNotifier());
  reachability->stopNotifier();
}

TEST_F(Reach, MayBeLetGoOfByWhoIsTold) {
  auto reachability = ORLFReachability::reachabilityWithHostName("192.0.2.7");
  const std::weak_ptr<ORLFReachability> weak = reachability;
  Notified notified(nullptr);
  const auto token = NSNotificationCenter::defaultCenter()->addObserverForName(
      std::string(kReachabilityChangedNotification), nullptr, [&](const NSNotification& told) {
        EXPECT_EQ(told.object(), id(reachability));
        reachability = nullptr;
      });
  EXPECT_TRUE(reachability->startNotifier());
  setReachable(false);
  EXPECT_TRUE(notified.comesTo(1));
  EXPECT_TRUE(weak.expired());
  setReachable(true);
  EXPECT_TRUE(notified.comesTo(1, 0.1));
}

TEST_F(Reach, EndsWithItsObjectOnAnyThread) {
  auto reachability = ORLFReachability::reachabilityWithHostName("192.0.2.7");
  Notified notified(nullptr);
  EXPECT_TRUE(reachability->startNotifier());
  std::thread([last = std::move(reachability)]() mutable { last = nullptr; }).join();
  setReachable(false);
  EXPECT_TRUE(notified.comesTo(0, 0.1));
}

}  // namespace
}  // namespace ORLFoundation
