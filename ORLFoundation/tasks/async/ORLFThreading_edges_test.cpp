// Modes, delays that are none, and blocks that throw.
#include <ORLFoundation/tasks/async/ORLFThreading.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

namespace ORLFoundation {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class ORLFThreadingEdges : public testing::Test {
 protected:
  [[nodiscard]] NSUInteger requestCount() const {
    return object_->attachedValue("delayedBlockRequests").as<NSMutableDictionary>()->count();
  }
  static void runMode(const std::string& mode) {
    NSRunLoop::mainRunLoop()->runMode(mode, NSDate::date());
  }

  orlftest::VirtualMainLoop loop_;
  const std::shared_ptr<NSObject> object_ = std::make_shared<NSObject>();
};

TEST_F(ORLFThreadingEdges, ABlockWaitsForTheDefaultMode) {
  NSRunLoop::mainRunLoop()->addCommonMode("modal panel");
  bool ran = false;
  orlfPerformBlockOnMainThread(
      object_, [&] { ran = true; }, 0);
  runMode("modal panel");
  EXPECT_FALSE(ran);
  runMode(NSDefaultRunLoopMode);
  EXPECT_TRUE(ran);
}

TEST_F(ORLFThreadingEdges, ObjectsAreReleasedInAnyOfTheCommonModes) {
  NSRunLoop::mainRunLoop()->addCommonMode("modal panel");
  for (const std::string& mode : {std::string("modal panel"), NSDefaultRunLoopMode}) {
    auto object = std::make_shared<NSObject>();
    const std::weak_ptr<NSObject> weak = object;
    orlfReleaseOnMainThread(std::move(object));
    runMode("private");
    EXPECT_FALSE(weak.expired());
    runMode(mode);
    EXPECT_TRUE(weak.expired()) << mode;
  }
}

TEST_F(ORLFThreadingEdges, TakesAnyDelay) {
  std::string order;
  for (const double delay : {0.0, -1.0, -kInfinity, kNaN, 5e-324})
    orlfPerformBlockOnMainThread(
        object_, [&] { order += "now "; }, delay);
  for (const double delay : {kInfinity, 1e300, 1e10})
    orlfPerformBlockOnMainThread(
        object_, [&] { order += "never "; }, delay);
  EXPECT_EQ(order, "");
  loop_.runReady();
  EXPECT_EQ(order, "now now now now now ");
  EXPECT_EQ(requestCount(), 3U);
  loop_.advance(1'000'000'000'000'000);
  EXPECT_EQ(requestCount(), 3U);
  const std::weak_ptr<NSObject> held = object_;
  orlfCancelPreviousPerformBlockRequestsWithTarget(object_);
  EXPECT_EQ(requestCount(), 0U);
  EXPECT_EQ(held.use_count(), 1);
}

TEST_F(ORLFThreadingEdges, ABlockThatThrowsKeepsItsEntryAndHoldsUpNoOther) {
  bool ran = false;
  const auto receipt = orlfPerformBlockOnMainThread(
      object_, [] { throw std::runtime_error("refused"); }, 0);
  orlfPerformBlockOnMainThread(
      object_, [&] { ran = true; }, 0);
  EXPECT_THROW(pumpMainQueue(0), std::runtime_error);
  EXPECT_EQ(requestCount(), 2U);
  EXPECT_FALSE(ran);
  loop_.runReady();
  EXPECT_TRUE(ran);
  EXPECT_EQ(requestCount(), 1U);
  orlfCancelPreviousPerformBlockRequestsWithTarget(object_, receipt);
  EXPECT_EQ(requestCount(), 0U);
}

TEST_F(ORLFThreadingEdges, OffTheMainThreadANilBlockWaitsForThatThreadToo) {
  std::atomic<std::int64_t> receipt{-1};
  std::thread other([&] { receipt = orlfPerformBlockOnMainThread(object_, nullptr, 0); });
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (loop_.waiting() == 0 && std::chrono::steady_clock::now() < end) std::this_thread::yield();
  EXPECT_EQ(loop_.waiting(), 1U);
  EXPECT_EQ(receipt, -1);
  loop_.runReady();
  other.join();
  EXPECT_EQ(receipt, 0);
}

}  // namespace
}  // namespace ORLFoundation
