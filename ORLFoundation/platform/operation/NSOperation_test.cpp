#include <ORLFoundation/platform/operation/NSOperation.h>

#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/operation/NSBlockOperation.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <ORLFoundation/platform/operation/NSOperation_testing.h>
#include <ORLFoundation/platform/value/NSException_testing.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace ORLFoundation {
namespace {

using orlftest::blockOperation;
using orlftest::raisedBy;

TEST(NSOperation, StartRunsMainOnTheCallingThreadThenTheCompletionBlock) {
  std::string order;
  std::thread::id thread;
  const auto operation = blockOperation([&] {
    order += "main ";
    thread = std::this_thread::get_id();
  });
  operation->setCompletionBlock([&] { order += operation->isFinished() ? "done" : "early"; });
  EXPECT_TRUE(operation->isReady());
  operation->start();
  EXPECT_EQ(order, "main done");
  EXPECT_EQ(thread, std::this_thread::get_id());
  EXPECT_TRUE(operation->isFinished());
  EXPECT_FALSE(operation->isReady());
  EXPECT_FALSE(operation->isExecuting());
  operation->start();
  EXPECT_EQ(order, "main done");
}

TEST(NSOperation, IsExecutingInsideMainAndStartsOnce) {
  int runs = 0;
  std::shared_ptr<NSBlockOperation> operation;
  operation = blockOperation([&] {
    ++runs;
    EXPECT_TRUE(operation->isExecuting());
    EXPECT_FALSE(operation->isFinished());
    operation->start();
  });
  operation->start();
  EXPECT_EQ(runs, 1);
}

TEST(NSOperation, CancelledBeforeItStartsEndsWithoutMain) {
  int runs = 0;
  int completions = 0;
  const auto operation = blockOperation([&] { ++runs; });
  operation->setCompletionBlock([&] { ++completions; });
  operation->cancel();
  EXPECT_TRUE(operation->isCancelled());
  EXPECT_FALSE(operation->isFinished());
  operation->start();
  EXPECT_EQ(runs, 0);
  EXPECT_EQ(completions, 1);
  EXPECT_TRUE(operation->isFinished());
}

TEST(NSOperation, CancelWhileItRunsOnlySetsTheFlag) {
  std::shared_ptr<NSBlockOperation> operation;
  bool wasFinishedAfterCancel = true;
  operation = blockOperation([&] {
    operation->cancel();
    wasFinishedAfterCancel = operation->isFinished();
  });
  operation->start();
  EXPECT_FALSE(wasFinishedAfterCancel);
  EXPECT_TRUE(operation->isCancelled());
}

TEST(NSOperation, CancelAfterTheEndHasNoEffect) {
  const auto operation = blockOperation();
  operation->start();
  operation->cancel();
  EXPECT_FALSE(operation->isCancelled());
}

TEST(NSOperation, StartRaisesWhileItWaitsForAnother) {
  const auto first = blockOperation();
  const auto second = blockOperation();
  second->addDependency(first);
  EXPECT_FALSE(second->isReady());
  EXPECT_EQ(raisedBy([&] { second->start(); }),
            "NSInvalidArgumentException: start: the operation is not ready");
  first->start();
  EXPECT_TRUE(second->isReady());
  second->start();
  EXPECT_TRUE(second->isFinished());
}

TEST(NSOperation, ACancelledOneIsReadyWhateverItDependsOn) {
  const auto second = blockOperation([] { ADD_FAILURE() << "ran"; });
  second->addDependency(blockOperation());
  second->cancel();
  EXPECT_TRUE(second->isReady());
  second->start();
  EXPECT_TRUE(second->isFinished());
}

TEST(NSOperation, StartRaisesForOneOnAQueue) {
  const auto queue = std::make_shared<NSOperationQueue>();
  queue->setSuspended(true);
  const auto operation = blockOperation();
  queue->addOperation(operation);
  EXPECT_EQ(raisedBy([&] { operation->start(); }),
            "NSInvalidArgumentException: start: the operation is on a queue");
  queue->setSuspended(false);
  operation->waitUntilFinished();
}

TEST(NSOperation, ListsDependenciesOnceEachUntilItHasFinished) {
  const auto first = blockOperation();
  const auto second = blockOperation();
  const auto third = blockOperation();
  first->start();
  third->addDependency(second);
  third->addDependency(first);
  third->addDependency(second);
  third->addDependency(nullptr);
  const NSOperationQueue::Operations expected = {second, first};
  EXPECT_EQ(third->dependencies(), expected);
  second->start();
  EXPECT_EQ(third->dependencies(), expected);
  third->start();
  EXPECT_TRUE(third->dependencies().empty());
  third->addDependency(first);
  EXPECT_TRUE(third->dependencies().empty());
}

TEST(NSOperation, ADependencyGivenWhileItRunsHasNoEffect) {
  const auto other = blockOperation();
  std::shared_ptr<NSBlockOperation> operation;
  operation = blockOperation([&] { operation->addDependency(other); });
  operation->start();
  EXPECT_TRUE(operation->isFinished());
  other->start();
  EXPECT_TRUE(other->isFinished());
}

TEST(NSOperation, ADependentThatIsGoneIsNoMatter) {
  const auto first = blockOperation();
  blockOperation()->addDependency(first);
  first->start();
  EXPECT_TRUE(first->isFinished());
}

TEST(NSOperation, LetsGoOfItsBlocksWhenTheyHaveRun) {
  const auto captured = std::make_shared<int>(1);
  const auto operation = blockOperation([captured] {});
  operation->setCompletionBlock([captured, operation] {});
  EXPECT_TRUE(operation->completionBlock());
  operation->start();
  EXPECT_EQ(captured.use_count(), 1);
  EXPECT_FALSE(operation->completionBlock());
}

TEST(NSOperation, ACompletionBlockThatIsSetAfterwardsNeverRuns) {
  const auto operation = blockOperation();
  operation->start();
  operation->setCompletionBlock([operation] { ADD_FAILURE() << operation->description(); });
  EXPECT_FALSE(operation->completionBlock());
  EXPECT_EQ(operation.use_count(), 1) << "it holds itself no longer";
  operation->start();
}

TEST(NSOperation, ItsWorkMayLetGoOfTheLastThatHoldsIt) {
  std::shared_ptr<NSBlockOperation> operation;
  bool completed = false;
  operation = blockOperation([&] { operation = nullptr; });
  operation->setCompletionBlock([&] { completed = true; });
  NSOperation& started = *operation;
  started.start();
  EXPECT_EQ(operation, nullptr);
  EXPECT_TRUE(completed);
}

TEST(NSOperation, AnEmptyBlockDoesNothing) {
  const auto operation = blockOperation(nullptr);
  operation->start();
  EXPECT_TRUE(operation->isFinished());
}

TEST(NSOperation, WaitsUntilAnotherThreadHasRunIt) {
  const auto operation = blockOperation();
  std::thread waiter([&] { operation->waitUntilFinished(); });
  std::thread other([&] { operation->waitUntilFinished(); });
  operation->start();
  waiter.join();
  other.join();
  operation->waitUntilFinished();
  EXPECT_TRUE(operation->isFinished());
}

TEST(NSOperation, ALongChainNeitherRunsNorFallsByRecursion) {
  const auto makeChain = [] {
    std::vector<std::shared_ptr<NSOperation>> chain = {std::make_shared<NSOperation>()};
    for (int i = 1; i < 200'000; ++i) {
      chain.push_back(std::make_shared<NSOperation>());
      chain.back()->addDependency(chain[chain.size() - 2]);
    }
    return chain;
  };
  auto dropped = makeChain();
  auto last = dropped.back();
  dropped.clear();
  EXPECT_EQ(last->dependencies().size(), 1U);
  last = nullptr;

  const auto queue = std::make_shared<NSOperationQueue>();
  auto chain = makeChain();
  last = chain.back();
  queue->addOperations(std::move(chain), true);
  EXPECT_TRUE(last->isFinished());
}

TEST(NSOperation, TellsByKeyWhereItStands) {
  NSOperation operation;
  for (const char* key : {"isCancelled", "isExecuting", "isFinished"})
    EXPECT_EQ(operation.valueForKey(key), id(false)) << key;
  EXPECT_EQ(operation.valueForKey("isReady"), id(true));
  EXPECT_EQ(operation.className(), "NSOperation");
  EXPECT_EQ(NSBlockOperation([] {}).className(), "NSBlockOperation");
}

}  // namespace
}  // namespace ORLFoundation
