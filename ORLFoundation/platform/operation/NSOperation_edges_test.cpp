// Operations in odd company: circles, two queues, cancels that come early, blocks that throw.
#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <ORLFoundation/platform/operation/NSOperation_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>

namespace ORLFoundation {
namespace {

using orlftest::blockOperation;
using orlftest::Gated;
using orlftest::Notes;
using Operations = NSOperationQueue::Operations;

TEST(NSOperation, ACircleBeginsNothingUntilOneOfItIsCancelled) {
  for (const std::size_t size : {1U, 2U, 5U}) {
    const auto queue = std::make_shared<NSOperationQueue>();
    Notes notes;
    Operations circle;
    for (std::size_t i = 0; i < size; ++i) circle.push_back(notes.operation(std::to_string(i)));
    for (std::size_t i = 0; i < size; ++i) circle[i]->addDependency(circle[(i + 1) % size]);
    queue->addOperations(circle, false);
    queue->addOperations({blockOperation()}, true);
    EXPECT_EQ(notes.text(), "");
    EXPECT_EQ(queue->operations(), circle);
    EXPECT_FALSE(circle.back()->isReady());
    circle[0]->cancel();
    queue->waitUntilAllOperationsAreFinished();
    std::string expected;  // The last waits for the first, and so on.
    for (std::size_t i = size - 1; i > 0; --i) expected += std::to_string(i);
    EXPECT_EQ(notes.text(), expected);
    EXPECT_TRUE(circle[0]->dependencies().empty());
  }
}

TEST(NSOperation, CancelledBeforeItIsAddedItLeavesWithoutMainAndCompletes) {
  const auto queue = std::make_shared<NSOperationQueue>();
  const auto operation = blockOperation([] { ADD_FAILURE() << "ran"; });
  const auto completed = dispatch_semaphore_create(0);
  operation->addDependency(blockOperation());
  operation->setCompletionBlock([completed] { dispatch_semaphore_signal(completed); });
  operation->cancel();
  EXPECT_FALSE(operation->isFinished());
  queue->addOperations({operation}, true);
  dispatch_semaphore_wait(completed, DISPATCH_TIME_FOREVER);
  EXPECT_TRUE(operation->isFinished());
  EXPECT_EQ(queue->operationCount(), 0U);
}

TEST(NSOperation, ASuspendedOrAFullQueueKeepsACancelledOne) {
  const auto queue = std::make_shared<NSOperationQueue>();
  const auto cancelled = blockOperation([] { ADD_FAILURE() << "ran"; });
  queue->setSuspended(true);
  queue->addOperation(cancelled);
  cancelled->cancel();
  EXPECT_TRUE(cancelled->isReady());
  EXPECT_EQ(queue->operations(), Operations{cancelled});
  queue->setSuspended(false);
  cancelled->waitUntilFinished();

  const Gated running;
  const auto next = blockOperation([] { ADD_FAILURE() << "ran"; });
  queue->setMaxConcurrentOperationCount(1);
  queue->addOperations({running.operation, next}, false);
  running.waitUntilBegun();
  next->cancel();
  EXPECT_EQ(queue->operations(), (Operations{running.operation, next}));
  running.open();
  queue->waitUntilAllOperationsAreFinished();
}

TEST(NSOperation, CancelledOnceItCouldBeginItEndsOnce) {
  const auto queue = std::make_shared<NSOperationQueue>();
  const auto first = blockOperation();
  const auto operation = blockOperation([] { ADD_FAILURE() << "ran"; });
  const auto next = blockOperation();
  std::atomic<int> completions{0};
  operation->setCompletionBlock([&] { ++completions; });
  operation->addDependency(first);
  queue->setSuspended(true);
  queue->addOperations({operation, next}, false);
  EXPECT_FALSE(operation->isReady());
  first->start();
  EXPECT_TRUE(operation->isReady());
  operation->cancel();
  operation->cancel();
  queue->setSuspended(false);
  queue->waitUntilAllOperationsAreFinished();
  while (completions == 0) std::this_thread::yield();
  queue->addOperations({blockOperation()}, true);
  EXPECT_EQ(completions, 1);
}

TEST(NSOperation, IsRefusedByASecondQueue) {
  const auto first = std::make_shared<NSOperationQueue>();
  const auto second = std::make_shared<NSOperationQueue>();
  const auto operation = blockOperation();
  first->setSuspended(true);
  first->addOperation(operation);
  EXPECT_THROW(second->addOperation(operation), NSException);
  EXPECT_THROW(second->addOperations({blockOperation(), operation}, true), NSException);
  EXPECT_EQ(second->operationCount(), 0U);
  EXPECT_EQ(first->operations(), Operations{operation});
  first->setSuspended(false);
  operation->waitUntilFinished();
  EXPECT_THROW(second->addOperation(operation), NSException);
}

TEST(NSOperation, ItsWorkMayReplaceItsCompletionBlock) {
  std::string order;
  std::shared_ptr<NSBlockOperation> operation;
  operation = blockOperation([&] { operation->setCompletionBlock([&] { order += "new"; }); });
  operation->setCompletionBlock([&] { order += "old"; });
  operation->start();
  EXPECT_EQ(order, "new");
}

/// Whenever it comes: what it does not reach has run to its end.
TEST(NSOperationQueue, ACancelOfAllMissesNone) {
  constexpr std::size_t kAdded = 40;
  for (unsigned seed = 0; seed < 100; ++seed) {
    std::mt19937 random(seed);
    const auto queue = std::make_shared<NSOperationQueue>();
    if (seed % 2 == 0)
      queue->setMaxConcurrentOperationCount(static_cast<NSInteger>(1 + random() % 3));
    std::array<std::atomic<int>, kAdded> runs{};
    Operations operations;
    for (auto& count : runs)
      operations.push_back(blockOperation([&count, turns = random() % 4] {
        ++count;
        for (auto i = turns; i > 0; --i) std::this_thread::yield();
      }));
    queue->addOperations(operations, false);
    for (auto i = random() % 50; i > 0; --i) std::this_thread::yield();
    queue->cancelAllOperations();
    for (const auto& each : operations) EXPECT_TRUE(each->isCancelled() || each->isFinished());
    queue->waitUntilAllOperationsAreFinished();
    for (std::size_t i = 0; i < kAdded; ++i) {
      EXPECT_LE(runs[i], 1);
      EXPECT_TRUE(operations[i]->isCancelled() || runs[i] == 1);
    }
  }
}

TEST(NSOperationQueue, TakesAnyQualityOfServiceForTheDefaultThatItDoesNotKnow) {
  for (const std::int64_t wild : {INT64_MIN, std::int64_t{-2}, std::int64_t{26}, INT64_MAX}) {
    const auto queue = std::make_shared<NSOperationQueue>();
    queue->setMaxConcurrentOperationCount(1);
    queue->setSuspended(true);
    queue->setQualityOfService(static_cast<NSQualityOfService>(wild));
    EXPECT_EQ(queue->qualityOfService(), wild);
    Notes notes;
    queue->addOperation(notes.operation("2"));
    const auto less = notes.operation("3");
    less->setQualityOfService(NSQualityOfServiceUtility);
    const auto more = notes.operation("1");
    more->setQualityOfService(NSQualityOfServiceUserInitiated);
    queue->addOperations({less, more}, false);
    queue->setSuspended(false);
    queue->waitUntilAllOperationsAreFinished();
    EXPECT_EQ(notes.text(), "123") << wild;
  }
}

using NSOperationDeathTest = testing::Test;

TEST_F(NSOperationDeathTest, WhatItsWorkOrACompletionBlockThrowsEndsTheProcess) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const std::function<void()> throwing = [] { throw std::runtime_error("refused"); };
  const auto completing = [&] {
    auto operation = blockOperation();
    operation->setCompletionBlock(throwing);
    return operation;
  };
  const auto never = dispatch_semaphore_create(0);
  const auto queue = std::make_shared<NSOperationQueue>();
  const auto runOnMain = [](const std::shared_ptr<NSOperation>& operation) {
    NSOperationQueue::mainQueue()->addOperation(operation);
    pumpMainQueue(20);
  };
  EXPECT_DEATH(blockOperation(throwing)->start(), "refused");
  EXPECT_DEATH(completing()->start(), "refused");
  EXPECT_DEATH(queue->addOperations({blockOperation(throwing)}, true), "refused");
  EXPECT_DEATH((queue->addOperation(completing()), dispatch_semaphore_wait(never, ~0ULL)),
               "refused");
  EXPECT_DEATH(runOnMain(blockOperation(throwing)), "refused");
  EXPECT_DEATH(runOnMain(completing()), "refused");
}

}  // namespace
}  // namespace ORLFoundation
