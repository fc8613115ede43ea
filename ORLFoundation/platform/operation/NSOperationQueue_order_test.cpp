#include <ORLFoundation/platform/operation/NSOperationQueue.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/operation/NSOperation_testing.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <random>
#include <string>
#include <thread>

namespace ORLFoundation {
namespace {

using orlftest::blockOperation;
using orlftest::Gated;
using orlftest::Notes;

TEST(NSOperationQueue, ALimitOfOneKeepsTheOrderOfAddition) {
  const auto queue = std::make_shared<NSOperationQueue>();
  queue->setMaxConcurrentOperationCount(1);
  EXPECT_EQ(queue->maxConcurrentOperationCount(), 1);
  Notes notes;
  std::string expected;
  for (int i = 0; i < 500; ++i) {
    queue->addOperation(notes.operation(std::to_string(i) + " "));
    expected += std::to_string(i) + " ";
  }
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(notes.text(), expected);
}

TEST(NSOperationQueue, NeverRunsMoreThanItsLimitAtATime) {
  for (const NSInteger limit : {1, 2, 3}) {
    const auto queue = std::make_shared<NSOperationQueue>();
    queue->setMaxConcurrentOperationCount(limit);
    std::atomic<int> running{0};
    std::atomic<int> most{0};
    for (int i = 0; i < 200; ++i)
      queue->addOperationWithBlock([&] {
        const int now = ++running;
        int before = most;
        while (now > before && !most.compare_exchange_weak(before, now)) continue;
        std::this_thread::yield();
        --running;
      });
    queue->waitUntilAllOperationsAreFinished();
    EXPECT_LE(most, limit);
    EXPECT_GE(most, 1);
  }
}

TEST(NSOperationQueue, ALimitOfNoneAndALimitThatIsRaised) {
  const auto queue = std::make_shared<NSOperationQueue>();
  EXPECT_EQ(queue->maxConcurrentOperationCount(),
            NSOperationQueueDefaultMaxConcurrentOperationCount);
  queue->setMaxConcurrentOperationCount(0);
  const Gated first;
  const Gated second;
  queue->addOperations({first.operation, second.operation}, false);
  EXPECT_NE(dispatch_semaphore_wait(first.begun, DISPATCH_TIME_NOW), 0);
  queue->setMaxConcurrentOperationCount(1);
  first.waitUntilBegun();
  EXPECT_FALSE(second.operation->isExecuting());
  queue->setMaxConcurrentOperationCount(-7);
  EXPECT_EQ(queue->maxConcurrentOperationCount(), -1);
  second.waitUntilBegun();
  first.open();
  second.open();
  queue->waitUntilAllOperationsAreFinished();
}

TEST(NSOperationQueue, ASuspendedQueueTakesOperationsAndBeginsNone) {
  const auto queue = std::make_shared<NSOperationQueue>();
  const Gated running;
  queue->addOperation(running.operation);
  running.waitUntilBegun();
  queue->setSuspended(true);
  EXPECT_TRUE(queue->isSuspended());
  const Gated held;
  queue->addOperation(held.operation);
  running.open();
  running.operation->waitUntilFinished();
  EXPECT_EQ(queue->operations(), NSOperationQueue::Operations{held.operation});
  EXPECT_NE(dispatch_semaphore_wait(held.begun, DISPATCH_TIME_NOW), 0);
  queue->setSuspended(false);
  held.waitUntilBegun();
  held.open();
  queue->waitUntilAllOperationsAreFinished();
}

TEST(NSOperationQueue, TheMostUrgentOfThoseThatCouldBeginGoesFirst) {
  const std::pair<std::int64_t, const char*> levels[] = {
      {NSQualityOfServiceUserInteractive, "A"}, {NSQualityOfServiceUserInitiated, "B"},
      {NSQualityOfServiceDefault, "C"},         {12345, "C"},
      {NSQualityOfServiceUtility, "D"},         {NSQualityOfServiceBackground, "E"}};
  std::mt19937 random(7);
  for (int round = 0; round < 20; ++round) {
    const auto queue = std::make_shared<NSOperationQueue>();
    queue->setMaxConcurrentOperationCount(1);
    queue->setSuspended(true);
    Notes notes;
    for (int i = 0; i < 60; ++i) {
      const auto& [quality, name] = levels[random() % std::size(levels)];
      const auto operation = notes.operation(name);
      operation->setQualityOfService(static_cast<NSQualityOfService>(quality));
      queue->addOperation(operation);
    }
    queue->setSuspended(false);
    queue->waitUntilAllOperationsAreFinished();
    const std::string order = notes.text();
    EXPECT_EQ(order.size(), 60U);
    EXPECT_TRUE(std::ranges::is_sorted(order)) << order;
  }
}

TEST(NSOperationQueue, GivesItsQualityOfServiceToOperationsWithoutOne) {
  const auto queue = std::make_shared<NSOperationQueue>();
  EXPECT_EQ(queue->qualityOfService(), NSQualityOfServiceDefault);
  queue->setMaxConcurrentOperationCount(1);
  queue->setQualityOfService(NSQualityOfServiceBackground);
  EXPECT_EQ(queue->qualityOfService(), NSQualityOfServiceBackground);
  queue->setSuspended(true);
  Notes notes;
  queue->addOperation(notes.operation("2"));
  const auto urgent = notes.operation("1");
  urgent->setQualityOfService(NSQualityOfServiceUtility);
  EXPECT_EQ(urgent->qualityOfService(), NSQualityOfServiceUtility);
  queue->addOperation(urgent);
  queue->setSuspended(false);
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(notes.text(), "12");
}

TEST(NSOperationQueue, TheMainQueueRunsOneATimeOnTheMainThread) {
  const auto& queue = NSOperationQueue::mainQueue();
  queue->setMaxConcurrentOperationCount(4);
  EXPECT_EQ(queue->maxConcurrentOperationCount(), 1);
  Notes notes;
  bool isInside = false;
  for (const char* name : {"1", "2", "3"})
    queue->addOperationWithBlock([&, name] {
      EXPECT_TRUE(NSThread::isMainThread());
      EXPECT_EQ(NSOperationQueue::currentQueue(), queue);
      EXPECT_FALSE(std::exchange(isInside, true));
      notes.write(name);
      pumpMainQueue(0);
      isInside = false;
    });
  EXPECT_EQ(notes.text(), "");
  while (queue->operationCount() > 0) pumpMainQueue(1);
  EXPECT_EQ(notes.text(), "123");
}

TEST(NSOperationQueue, TheMainQueueLeavesNothingToWhatIsMoreUrgentElsewhere) {
  while (pumpMainQueue(0)) {
  }
  // More than there are threads, so that some wait to begin.
  const auto urgent = std::make_shared<NSOperationQueue>();
  urgent->setQualityOfService(NSQualityOfServiceUserInteractive);
  std::atomic<bool> isOver{false};
  for (int i = 0; i < 100; ++i)
    urgent->addOperationWithBlock([&] {
      while (!isOver) std::this_thread::yield();
    });
  bool ran = false;
  NSOperationQueue::mainQueue()->addOperationWithBlock([&] { ran = true; });
  EXPECT_TRUE(pumpMainQueue(0));
  EXPECT_TRUE(ran);
  isOver = true;
  urgent->waitUntilAllOperationsAreFinished();
  while (!ran) pumpMainQueue(1);
}

}  // namespace
}  // namespace ORLFoundation
