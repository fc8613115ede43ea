#include <ORLFoundation/tasks/operations/ORLFOperationQueue.h>

#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/operation/NSOperation_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/tasks/operations/ORLFOperationQueue_gated_testing.h>
#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <string>
#include <thread>

namespace ORLFoundation {
namespace {

using orlftest::blockOperation;
using orlftest::gated;
using orlftest::Promise;
using Gated = orlftest::GatedInstance;
using Operations = NSOperationQueue::Operations;

class ORLFOperationQueueTest : public testing::Test {
 protected:
  const std::shared_ptr<ORLFOperationQueue> queue_ = std::make_shared<ORLFOperationQueue>();
};

TEST_F(ORLFOperationQueueTest, IsMadeWithoutATargetQueueAndWithoutALog) {
  EXPECT_EQ(queue_->targetQueue(), nullptr);
  EXPECT_FALSE(queue_->logsActivity());
  EXPECT_EQ(queue_->className(), "ORLFOperationQueue");
  const auto target = std::make_shared<NSOperationQueue>();
  const auto targeted = std::make_shared<ORLFOperationQueue>(target);
  EXPECT_EQ(targeted->targetQueue(), target);
  targeted->clearTargetQueue();
  EXPECT_EQ(targeted->targetQueue(), nullptr);
}

TEST_F(ORLFOperationQueueTest, NilDoesNothing) {
  queue_->addOperation(nullptr);
  queue_->addOperation(nullptr, "G", nullptr);
  queue_->addOperation(nullptr, [](const auto&, bool) { ADD_FAILURE(); });
  queue_->addOperations({}, true);
  queue_->addOperationWithBlock(nullptr);
  queue_->pauseQueueWithBlock(nullptr);
  queue_->makeOperationDependOnAllBarrierOperations(nullptr);
  const auto running = gated();
  queue_->addOperation(running, std::nullopt, nullptr);
  queue_->cancelAllOperationsForGroup(std::nullopt);
  queue_->cancelOperationForSingleInstanceID(std::nullopt);
  EXPECT_FALSE(running->isCancelled());
  EXPECT_EQ(queue_->operations(), Operations{running});
  running->open();
  queue_->waitUntilAllOperationsAreFinished();
}

TEST_F(ORLFOperationQueueTest, OfTwoWithOneIDTheFirstIsCancelledAndTheSecondRuns) {
  const auto first = gated("a");
  const auto other = gated("A");
  const auto second = gated("a");
  queue_->addOperation(first);
  queue_->addOperation(other);
  first->waitUntilBegun();
  queue_->addOperation(second);
  EXPECT_TRUE(first->isCancelled());
  EXPECT_FALSE(other->isCancelled());
  second->waitUntilBegun();
  EXPECT_FALSE(second->isCancelled());
  EXPECT_TRUE(first->isExecuting()) << "it has begun, and ends by itself";
  for (const auto& each : {first, other, second}) each->open();
  queue_->waitUntilAllOperationsAreFinished();
}

TEST_F(ORLFOperationQueueTest, LooksAtItsOperationsOnAQueueOfItsOwnName) {
  struct QueueNoting final : NSOperation, ORLFSingleInstanceOperation {
    std::optional<std::string> enqueuedSingleInstanceID() const override {
      askedOn = dispatch_queue_get_label(nullptr);
      return "a";
    }
    mutable std::string askedOn;
  };
  const auto asked = std::make_shared<QueueNoting>();
  queue_->setSuspended(true);
  queue_->addOperation(asked);
  queue_->cancelOperationForSingleInstanceID("a");
  EXPECT_EQ(asked->askedOn, "com.orlsoftware.foundation.ORLFOperationQueue");
  EXPECT_TRUE(asked->isCancelled());
  queue_->setSuspended(false);
  queue_->waitUntilAllOperationsAreFinished();
}

TEST_F(ORLFOperationQueueTest, TwoWithOneIDInABatchBothRun) {
  const auto earlier = gated("a");
  const auto first = gated("a");
  const auto second = gated("a");
  queue_->addOperation(earlier);
  queue_->addOperations({first, second}, false);
  EXPECT_TRUE(earlier->isCancelled());
  first->waitUntilBegun();
  second->waitUntilBegun();
  EXPECT_FALSE(first->isCancelled());
  EXPECT_FALSE(second->isCancelled());
  for (const auto& each : {earlier, first, second}) each->open();
  queue_->waitUntilAllOperationsAreFinished();
}

TEST_F(ORLFOperationQueueTest, CancelsAGroupAndNoOther) {
  const std::pair<std::optional<std::string>, bool> groups[] = {
      {"G", true}, {"g", false}, {"G ", false}, {"", false}, {std::nullopt, false}, {"G", true}};
  std::vector<std::shared_ptr<Gated>> all;
  for (const auto& group : groups) {
    all.push_back(gated());
    queue_->addOperation(all.back(), group.first, nullptr);
    all.back()->waitUntilBegun();
  }
  queue_->cancelAllOperationsForGroup("G");
  for (std::size_t i = 0; i < all.size(); ++i)
    EXPECT_EQ(all[i]->isCancelled(), groups[i].second) << i;
  queue_->cancelAllOperationsForGroup("");
  EXPECT_TRUE(all[3]->isCancelled());
  EXPECT_FALSE(all[4]->isCancelled());
  for (const auto& each : all) each->open();
  queue_->waitUntilAllOperationsAreFinished();
}

TEST_F(ORLFOperationQueueTest, ACancelledOperationOfAGroupCompletesWithFalse) {
  const auto fence = gated();
  orlfSetIsBarrierOperation(*fence, true);
  queue_->addOperation(fence);
  const auto operation = blockOperation([] { ADD_FAILURE() << "ran"; });
  Promise<bool> answer;
  queue_->addOperation(operation, "G", [&](const auto& ended, bool wasFinished) {
    EXPECT_EQ(ended, operation);
    EXPECT_EQ(orlfGroupID(*ended), "G");
    answer.give(wasFinished);
  });
  queue_->cancelAllOperationsForGroup("G");
  EXPECT_FALSE(answer.take());
  fence->open();
  queue_->waitUntilAllOperationsAreFinished();
}

TEST_F(ORLFOperationQueueTest, AFinishedOperationCallsItsOwnBlockThenTheCompletionWithTrue) {
  const auto operation = blockOperation();
  std::string order;
  operation->setCompletionBlock([&] { order += "own "; });
  Promise<std::string> answer;
  queue_->addOperation(operation, [&](const auto& ended, bool wasFinished) {
    order += wasFinished ? "true " : "false ";
    answer.give(order + (orlfGroupID(*ended) ? "grouped" : "in no group"));
  });
  EXPECT_EQ(answer.take(), "own true in no group");
}

TEST_F(ORLFOperationQueueTest, AFenceRunsAfterWhatWasAddedBeforeAndBeforeWhatIsAddedLater) {
  const auto earlier = gated();
  queue_->addOperation(earlier);
  std::atomic<bool> hasRun{false};
  Promise<bool> earlierHadEnded;
  Promise<bool> laterSawIt;
  queue_->pauseQueueWithBlock([&] {
    earlierHadEnded.give(earlier->isFinished());
    hasRun = true;
  });
  queue_->addOperation(blockOperation([&] { laterSawIt.give(hasRun); }));
  EXPECT_EQ(queue_->operationCount(), 3U) << "the queue goes on taking operations";
  EXPECT_FALSE(queue_->isSuspended());
  earlier->waitUntilBegun();
  earlier->open();
  EXPECT_TRUE(earlierHadEnded.take());
  EXPECT_TRUE(laterSawIt.take());
  queue_->waitUntilAllOperationsAreFinished();
}

TEST_F(ORLFOperationQueueTest, ABarrierThatIsAddedAloneHoldsLaterOnesAndWaitsForNone) {
  const auto earlier = gated();
  const auto barrier = gated();
  const auto later = gated();
  orlfSetIsBarrierOperation(*barrier, true);
  queue_->addOperation(earlier);
  queue_->addOperation(barrier);
  queue_->addOperation(later);
  barrier->waitUntilBegun();
  EXPECT_FALSE(earlier->isFinished());
  EXPECT_EQ(later->dependencies(), Operations{barrier});
  EXPECT_FALSE(later->hasBegun());
  barrier->open();
  later->waitUntilBegun();
  later->open();
  earlier->open();
  queue_->waitUntilAllOperationsAreFinished();
}

TEST_F(ORLFOperationQueueTest, ABarrierInABatchHoldsNoneOfItsBatch) {
  const auto barrier = gated();
  const auto sibling = gated();
  const auto later = gated();
  orlfSetIsBarrierOperation(*barrier, true);
  queue_->addOperations({barrier, sibling}, false);
  queue_->addOperation(later);
  sibling->waitUntilBegun();
  EXPECT_TRUE(sibling->dependencies().empty());
  EXPECT_EQ(later->dependencies(), Operations{barrier});
  for (const auto& each : {barrier, sibling, later}) each->open();
  queue_->waitUntilAllOperationsAreFinished();
}

TEST_F(ORLFOperationQueueTest, AnOperationThatIsMarkedOnTheQueueHoldsWhatComesLater) {
  const auto marked = gated();
  queue_->addOperation(marked);
  const auto before = gated();
  queue_->addOperation(before);
  orlfSetIsBarrierOperation(*marked, true);
  const auto after = gated();
  queue_->addOperation(after);
  orlfSetIsBarrierOperation(*marked, false);
  const auto last = gated();
  queue_->addOperation(last);
  EXPECT_TRUE(before->dependencies().empty());
  EXPECT_EQ(after->dependencies(), Operations{marked});
  EXPECT_TRUE(last->dependencies().empty());
  for (const auto& each : {marked, before, after, last}) each->open();
  queue_->waitUntilAllOperationsAreFinished();
}

TEST_F(ORLFOperationQueueTest, MakesAnOperationOfAnyQueueDependOnItsBarriers) {
  const auto barrier = gated();
  orlfSetIsBarrierOperation(*barrier, true);
  queue_->addOperation(barrier);
  const auto operation = blockOperation();
  queue_->makeOperationDependOnAllBarrierOperations(operation);
  EXPECT_EQ(operation->dependencies(), Operations{barrier});
  barrier->open();
  queue_->waitUntilAllOperationsAreFinished();
  const auto free = blockOperation();
  queue_->makeOperationDependOnAllBarrierOperations(free);
  EXPECT_TRUE(free->dependencies().empty());
}

TEST_F(ORLFOperationQueueTest, WithTheLogAPlainOperationGetsACompletionBlockButNotInABatch) {
  const LogCapture log;
  queue_->setLogsActivity(true);
  queue_->setSuspended(true);
  const auto alone = blockOperation();
  const auto inBatch = blockOperation();
  queue_->addOperation(alone);
  queue_->addOperations({inBatch}, false);
  EXPECT_TRUE(alone->completionBlock());
  EXPECT_FALSE(inBatch->completionBlock());
  queue_->setLogsActivity(false);
  const auto plain = blockOperation();
  queue_->addOperation(plain);
  EXPECT_FALSE(plain->completionBlock());
  queue_->setSuspended(false);
  queue_->waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(log.lines().empty()) << "the debug log does nothing";
}

TEST_F(ORLFOperationQueueTest, CallbacksRunOnTheTargetQueueNotOnTheFinishingThread) {
  const auto target = std::make_shared<NSOperationQueue>();
  target->setMaxConcurrentOperationCount(1);
  queue_->setTargetQueue(target);
  for (const bool isBatch : {false, true}) {
    Promise<std::shared_ptr<NSOperationQueue>> ranOn;
    const auto operation = blockOperation();
    operation->setCompletionBlock([&] { ranOn.give(NSOperationQueue::currentQueue()); });
    isBatch ? queue_->addOperations({operation}, false) : queue_->addOperation(operation);
    EXPECT_EQ(ranOn.take(), target);
  }
  Promise<std::shared_ptr<NSOperationQueue>> ranOn;
  queue_->addOperation(blockOperation(), "G",
                       [&](const auto&, bool) { ranOn.give(NSOperationQueue::currentQueue()); });
  EXPECT_EQ(ranOn.take(), target);
}

TEST_F(ORLFOperationQueueTest, WithoutATargetACallbackRunsOnTheFinishingThread) {
  std::thread::id mainThread;
  Promise<std::thread::id> callbackThread;
  const auto operation = blockOperation([&] { mainThread = std::this_thread::get_id(); });
  operation->setCompletionBlock([&] { callbackThread.give(std::this_thread::get_id()); });
  queue_->addOperation(operation);
  const auto thread = callbackThread.take();
  EXPECT_EQ(thread, mainThread);
}

TEST_F(ORLFOperationQueueTest, TheTargetIsReadWhenTheCallbackIsDue) {
  const auto target = std::make_shared<NSOperationQueue>();
  target->setSuspended(true);
  queue_->setTargetQueue(target);
  const auto operation = gated();
  Promise<std::shared_ptr<NSOperationQueue>> ranOn;
  operation->setCompletionBlock([&] { ranOn.give(NSOperationQueue::currentQueue()); });
  queue_->addOperation(operation);
  queue_->clearTargetQueue();
  operation->open();
  EXPECT_NE(ranOn.take(), target);
  EXPECT_EQ(target->operationCount(), 0U);
}

TEST_F(ORLFOperationQueueTest, AWaitingBatchHoldsUpCancelsUntilItHasFinished) {
  const auto operation = gated();
  std::atomic<bool> hasReturned{false};
  std::thread adding([&] { queue_->addOperations({operation}, true); });
  operation->waitUntilBegun();
  std::thread cancelling([&] {
    queue_->cancelAllOperationsForGroup("G");
    hasReturned = true;
    EXPECT_TRUE(operation->isFinished());
  });
  EXPECT_FALSE(hasReturned);
  operation->open();
  adding.join();
  cancelling.join();
  EXPECT_TRUE(hasReturned);
}

TEST_F(ORLFOperationQueueTest, OperationsAndCallbacksMayCallTheQueue) {
  Promise<bool> ended;
  const auto operation = blockOperation([&] {
    queue_->cancelAllOperationsForGroup("other");
    queue_->addOperation(blockOperation());
  });
  operation->setCompletionBlock([&] {
    queue_->cancelOperationForSingleInstanceID("a");
    queue_->pauseQueueWithBlock([&] { ended.give(true); });
  });
  queue_->addOperation(operation);
  EXPECT_TRUE(ended.take());
  queue_->waitUntilAllOperationsAreFinished();
}

TEST_F(ORLFOperationQueueTest, AnOperationThatIsAddedTwiceRaisesAndTheQueueGoesOn) {
  queue_->setSuspended(true);
  const auto operation = blockOperation();
  queue_->addOperation(operation);
  EXPECT_THROW(queue_->addOperation(operation), NSException);
  EXPECT_THROW(queue_->addOperations({operation}, true), NSException);
  EXPECT_EQ(queue_->operations(), Operations{operation});
  queue_->setSuspended(false);
  queue_->addOperations({blockOperation()}, true);
  queue_->waitUntilAllOperationsAreFinished();
}

TEST_F(ORLFOperationQueueTest, LetsGoOfOperationsAndOfItselfWhenAllHasEnded) {
  std::weak_ptr<NSOperation> operation;
  std::weak_ptr<ORLFOperationQueue> queue;
  Promise<bool> ended;
  {
    const auto inner = std::make_shared<ORLFOperationQueue>();
    const auto made = gated("a");
    operation = made;
    queue = inner;
    inner->addOperation(made, "G", [&](const auto&, bool) { ended.give(true); });
    made->open();
  }
  EXPECT_TRUE(ended.take());
  while (!operation.expired() || !queue.expired()) std::this_thread::yield();
}

}  // namespace
}  // namespace ORLFoundation
