#include <ORLFoundation/tasks/async/ORLFThreading.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

constexpr std::int64_t kSecond = 1'000'000'000;

std::shared_ptr<NSMutableDictionary> requestsOf(const NSObject& object) {
  return object.attachedValue("delayedBlockRequests").as<NSMutableDictionary>();
}

class ORLFThreadingTest : public testing::Test {
 protected:
  orlftest::VirtualMainLoop loop_;
  const std::shared_ptr<NSObject> object_ = std::make_shared<NSObject>();
};

TEST_F(ORLFThreadingTest, ANilBlockAndANilReceiverScheduleNothing) {
  EXPECT_EQ(orlfPerformBlockOnMainThread(object_, nullptr, 1), 0);
  EXPECT_EQ(orlfPerformBlockOnMainThread(
                nullptr, [] { ADD_FAILURE(); }, 0),
            0);
  EXPECT_EQ(requestsOf(*object_), nullptr);
  orlfCancelPreviousPerformBlockRequestsWithTarget(nullptr);
  orlfCancelPreviousPerformBlockRequestsWithTarget(nullptr, 1);
  orlfPerformDelayedBlock_(nullptr, nullptr);
  orlfPerformDelayedBlock_(object_, nullptr);
  orlfReleaseOnMainThread(nullptr);
  orlfAddObjectToRelease(nullptr);
  loop_.advance(kSecond);
}

TEST_F(ORLFThreadingTest, ReceiptsIncreaseAcrossAllObjects) {
  const auto other = std::make_shared<NSObject>();
  const auto first = orlfPerformBlockOnMainThread(
      object_, [] {}, 1);
  EXPECT_EQ(orlfPerformBlockOnMainThread(
                other, [] {}, 1),
            first + 1);
  EXPECT_EQ(ORLFDelayedBlock::delayedBlock(nullptr)->receiptID(), first + 2);
  EXPECT_EQ(orlfPerformBlockOnMainThread(
                object_, [] {}, 1),
            first + 3);
  EXPECT_GT(first, 0);
  loop_.advance(kSecond);
}

TEST_F(ORLFThreadingTest, RunsAfterItsDelayAndFindsItsOwnEntry) {
  std::int64_t receipt = 0;
  bool hadEntry = false;
  int runs = 0;
  receipt = orlfPerformBlockOnMainThread(
      object_,
      [&] {
        hadEntry = !requestsOf(*object_)->objectForKey(receipt).isNil();
        ++runs;
      },
      0.5);
  loop_.advance(kSecond / 2 - 1);
  EXPECT_EQ(runs, 0);
  loop_.advance(1);
  EXPECT_EQ(runs, 1);
  EXPECT_TRUE(hadEntry);
  EXPECT_EQ(requestsOf(*object_)->count(), 0U) << "the dictionary stays";
  loop_.advance(kSecond);
  EXPECT_EQ(runs, 1);
}

TEST_F(ORLFThreadingTest, ACancelByReceiptPreventsTheBlockAndASecondDoesNothing) {
  std::string order;
  const auto first = orlfPerformBlockOnMainThread(
      object_, [&] { order += "1"; }, 0.1);
  orlfPerformBlockOnMainThread(
      object_, [&] { order += "2"; }, 0.2);
  for (int i = 0; i < 2; ++i) {
    orlfCancelPreviousPerformBlockRequestsWithTarget(object_, first);
    EXPECT_EQ(requestsOf(*object_)->count(), 1U);
  }
  orlfCancelPreviousPerformBlockRequestsWithTarget(object_, 12'345'678);
  loop_.advance(kSecond);
  EXPECT_EQ(order, "2");
}

TEST_F(ORLFThreadingTest, ACancelOfAllReachesOneTargetOnly) {
  const auto other = std::make_shared<NSObject>();
  std::string order;
  orlfPerformBlockOnMainThread(
      object_, [&] { order += "1"; }, 0.1);
  orlfPerformBlockOnMainThread(
      object_, [&] { order += "2"; }, 0.2);
  orlfPerformBlockOnMainThread(
      other, [&] { order += "3"; }, 0.3);
  orlfCancelPreviousPerformBlockRequestsWithTarget(object_);
  orlfCancelPreviousPerformBlockRequestsWithTarget(std::make_shared<NSObject>());
  EXPECT_EQ(requestsOf(*object_)->count(), 0U);
  loop_.advance(kSecond);
  EXPECT_EQ(order, "3");
}

TEST_F(ORLFThreadingTest, HoldsItsTargetUntilTheBlockHasRunOrWasCancelled) {
  for (const bool isCancelled : {false, true}) {
    auto target = std::make_shared<NSObject>();
    const std::weak_ptr<NSObject> weak = target;
    orlfPerformBlockOnMainThread(
        target, [] {}, 1);
    if (isCancelled) orlfCancelPreviousPerformBlockRequestsWithTarget(target);
    target = nullptr;
    EXPECT_EQ(weak.expired(), isCancelled);
    loop_.advance(kSecond);
    EXPECT_TRUE(weak.expired());
  }
}

TEST_F(ORLFThreadingTest, WithoutADictionaryItLogsAndGoesOn) {
  const LogCapture log;
  int runs = 0;
  orlfPerformDelayedBlock_(object_, ORLFDelayedBlock::delayedBlock([&] { ++runs; }));
  EXPECT_EQ(runs, 1);
  EXPECT_EQ(log.lines(),
            std::vector<std::string>{"Condition Failed: delayedBlockRequests != nil No "
                                     "delayed block requests dictionary!"});
}

TEST_F(ORLFThreadingTest, OffTheMainThreadACallWaitsUntilThatThreadHasTakenIt) {
  std::atomic<bool> isDone{false};
  std::int64_t receipt = -1;
  std::int64_t none = -1;
  bool ranOnMainThread = false;
  std::thread thread([&] {
    receipt = orlfPerformBlockOnMainThread(
        object_, [&] { ranOnMainThread = NSThread::isMainThread(); }, 0.1);
    none = orlfPerformBlockOnMainThread(object_, nullptr, 0.1);
    orlfPerformBlockOnMainThread(
        object_, [] { ADD_FAILURE(); }, 0.2);
    orlfCancelPreviousPerformBlockRequestsWithTarget(object_, receipt + 1);
    isDone = true;
  });
  while (!isDone) pumpMainQueue(0.01);
  thread.join();
  EXPECT_GT(receipt, 0);
  EXPECT_EQ(none, 0);
  loop_.advance(kSecond);
  EXPECT_TRUE(ranOnMainThread);
  std::thread cancelling([&] {
    orlfPerformBlockOnMainThread(
        object_, [] { ADD_FAILURE(); }, 0.1);
    orlfCancelPreviousPerformBlockRequestsWithTarget(object_);
    isDone = false;
  });
  while (isDone) pumpMainQueue(0.01);
  cancelling.join();
  loop_.advance(kSecond);
}

/// Tells on which thread it died.
class Mortal final : public NSObject {
 public:
  Mortal(std::atomic<int>& onMain, std::atomic<int>& elsewhere)
      : onMain_(onMain), elsewhere_(elsewhere) {}
  Mortal(const Mortal&) = delete;
  Mortal& operator=(const Mortal&) = delete;
  ~Mortal() override { ++(NSThread::isMainThread() ? onMain_ : elsewhere_); }

 private:
  std::atomic<int>& onMain_;
  std::atomic<int>& elsewhere_;
};

TEST_F(ORLFThreadingTest, ObjectsThatAreHandedOverDieOnTheMainThreadTogether) {
  std::atomic<int> onMain{0};
  std::atomic<int> elsewhere{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([&] {
      for (int j = 0; j < 100; ++j)
        orlfReleaseOnMainThread(std::make_shared<Mortal>(onMain, elsewhere));
    });
  for (std::thread& each : threads) each.join();
  EXPECT_EQ(onMain + elsewhere, 0);
  loop_.runReady();
  EXPECT_EQ(onMain, 400);
  EXPECT_EQ(elsewhere, 0);
  orlfAddObjectToRelease(std::make_shared<Mortal>(onMain, elsewhere));
  EXPECT_EQ(onMain, 400);
  loop_.runReady();
  EXPECT_EQ(onMain, 401) << "the next batch is scheduled anew";
}

TEST_F(ORLFThreadingTest, ReleasesBeforeWhatIsPerformedAfterIt) {
  struct Told final : NSObject {
    explicit Told(std::string& text) : order(text) {}
    Told(const Told&) = delete;
    Told& operator=(const Told&) = delete;
    ~Told() override { order += "released "; }
    std::string& order;
  };
  std::string order;
  const auto perform = [&](std::uint64_t place, const char* text) {
    NSRunLoop::mainRunLoop()->performSelector(
        {.selector = NSSelector("tell", [&order, text](const std::shared_ptr<NSObject>&,
                                                       const id&) { order += text; }),
         .target = object_,
         .argument = nullptr,
         .order = place,
         .modes = {NSDefaultRunLoopMode}});
  };
  perform(1, "last ");
  perform(0, "first ");
  orlfReleaseOnMainThread(std::make_shared<Told>(order));
  perform(0, "then ");
  loop_.runReady();
  EXPECT_EQ(order, "first released then last ");
}

/// Hands over another object when it dies.
class Heir final : public NSObject {
 public:
  explicit Heir(int& deaths, int left) : deaths_(deaths), left_(left) {}
  Heir(const Heir&) = delete;
  Heir& operator=(const Heir&) = delete;
  ~Heir() override {
    ++deaths_;
    if (left_ > 0) orlfReleaseOnMainThread(std::make_shared<Heir>(deaths_, left_ - 1));
  }

 private:
  int& deaths_;
  const int left_;
};

TEST_F(ORLFThreadingTest, ADyingObjectMayHandOverAnother) {
  int deaths = 0;
  orlfReleaseOnMainThread(std::make_shared<Heir>(deaths, 3));
  orlfReleaseObjects();
  EXPECT_EQ(deaths, 1);
  loop_.runReady();
  EXPECT_EQ(deaths, 4);
}

}  // namespace
}  // namespace ORLFoundation
