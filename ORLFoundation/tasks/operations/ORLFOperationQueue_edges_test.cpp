// The order of the queue's steps, what it holds, and calls that go wrong.
#include <ORLFoundation/tasks/operations/ORLFOperationQueue.h>

#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/operation/NSOperation_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/tasks/operations/ORLFOperationQueue_gated_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::blockOperation;
using orlftest::gated;
using orlftest::Promise;
using testing::ElementsAre;
using Operations = NSOperationQueue::Operations;

constexpr const char* kLabel = "com.orlsoftware.foundation.ORLFOperationQueue";

/// Answers what a block does.
class Asked final : public NSOperation, public ORLFSingleInstanceOperation {
 public:
  explicit Asked(std::function<std::optional<std::string>()> answer) : answer_(std::move(answer)) {}
  std::optional<std::string> enqueuedSingleInstanceID() const override { return answer_(); }

 private:
  const std::function<std::optional<std::string>()> answer_;
};

/// Does something when it is cancelled.
class Cancelled final : public NSOperation, public ORLFSingleInstanceOperation {
 public:
  explicit Cancelled(std::function<void()> block) : block_(std::move(block)) {}
  void cancel() override {
    block_();
    NSOperation::cancel();
  }
  std::optional<std::string> enqueuedSingleInstanceID() const override { return "a"; }

 private:
  const std::function<void()> block_;
};

class ORLFOperationQueueEdges : public testing::Test {
 protected:
  const std::shared_ptr<ORLFOperationQueue> queue_ = std::make_shared<ORLFOperationQueue>();
};

TEST_F(ORLFOperationQueueEdges, AsksForAnIDOnceOutsideOfItsQueueAndThenInsideForEachOther) {
  std::vector<std::string> asked;
  const auto operation = std::make_shared<Asked>([&] {
    const char* const label = dispatch_queue_get_label(DISPATCH_CURRENT_QUEUE_LABEL);
    asked.emplace_back(std::string(label) == kLabel ? "inside" : "outside");
    return "a";
  });
  queue_->setSuspended(true);
  queue_->addOperation(operation);
  EXPECT_THAT(asked, ElementsAre("outside"));
  queue_->addOperation(blockOperation());
  EXPECT_THAT(asked, ElementsAre("outside"));
  queue_->addOperations({gated("b")}, false);
  EXPECT_THAT(asked, ElementsAre("outside", "inside"));
  EXPECT_FALSE(operation->isCancelled());
  queue_->cancelAllOperations();
  queue_->setSuspended(false);
  queue_->waitUntilAllOperationsAreFinished();
}

TEST_F(ORLFOperationQueueEdges, HasTheGroupBeforeItCancelsOlderInstances) {
  std::vector<std::optional<std::string>> groups;
  std::shared_ptr<Asked> operation;
  operation = std::make_shared<Asked>([&] {
    groups.push_back(orlfGroupID(*operation));
    return std::nullopt;
  });
  Promise<bool> ended;
  queue_->addOperation(operation, "G",
                       [&](const auto&, bool wasFinished) { ended.give(wasFinished); });
  EXPECT_TRUE(ended.take());
  EXPECT_THAT(groups, ElementsAre("G"));
}

TEST_F(ORLFOperationQueueEdges, CancelsOlderInstancesBeforeItTakesTheCompletionBlock) {
  const auto target = std::make_shared<NSOperationQueue>();
  queue_->setTargetQueue(target);
  Promise<std::shared_ptr<NSOperationQueue>> ranOn;
  const auto newer = gated("a");
  const auto older = std::make_shared<Cancelled>(
      [&] { newer->setCompletionBlock([&] { ranOn.give(NSOperationQueue::currentQueue()); }); });
  queue_->setSuspended(true);
  queue_->addOperation(older);
  queue_->addOperation(newer);
  EXPECT_TRUE(older->isCancelled());
  queue_->setSuspended(false);
  newer->open();
  EXPECT_EQ(ranOn.take(), target);
  queue_->waitUntilAllOperationsAreFinished();
}

TEST_F(ORLFOperationQueueEdges, LivesUntilItsCallbacksHaveRun) {
  const auto target = std::make_shared<NSOperationQueue>();
  auto queue = std::make_shared<ORLFOperationQueue>(target);
  const std::weak_ptr<ORLFOperationQueue> weak = queue;
  Promise<std::shared_ptr<NSOperationQueue>> ranOn;
  const auto operation = gated();
  operation->setCompletionBlock([&] { ranOn.give(NSOperationQueue::currentQueue()); });
  queue->addOperation(operation);
  queue = nullptr;
  EXPECT_FALSE(weak.expired());
  operation->open();
  EXPECT_EQ(ranOn.take(), target);
}

TEST_F(ORLFOperationQueueEdges, HoldsAnOperationOfAGroupUntilItsCompletionAndNoOtherSoLong) {
  const auto target = std::make_shared<NSOperationQueue>();
  target->setSuspended(true);
  queue_->setTargetQueue(target);
  auto plain = blockOperation();
  auto grouped = blockOperation();
  const std::weak_ptr<NSOperation> weakPlain = plain;
  const std::weak_ptr<NSOperation> weakGrouped = grouped;
  plain->setCompletionBlock([] {});
  queue_->addOperation(std::move(plain));
  queue_->addOperation(std::move(grouped), "G", nullptr);
  while (target->operationCount() < 2 || !weakPlain.expired()) std::this_thread::yield();
  EXPECT_FALSE(weakGrouped.expired()) << "its callback waits on the target queue";
  target->setSuspended(false);
  while (!weakGrouped.expired()) std::this_thread::yield();
}

TEST_F(ORLFOperationQueueEdges, WithoutAGroupAnOperationLosesTheOneThatItHad) {
  const auto operation = blockOperation();
  orlfSetGroupID(*operation, "H");
  queue_->setSuspended(true);
  queue_->addOperation(operation, nullptr);
  EXPECT_EQ(orlfGroupID(*operation), std::nullopt);
  queue_->setSuspended(false);
  queue_->waitUntilAllOperationsAreFinished();
}

TEST_F(ORLFOperationQueueEdges, CancelsWhatIsOnItselfAlone) {
  const auto other = std::make_shared<ORLFOperationQueue>();
  for (const auto& queue : {queue_, other}) queue->setSuspended(true);
  const auto mine = gated("a");
  const auto theirs = gated("a");
  queue_->addOperation(mine, "G", nullptr);
  other->addOperation(theirs, "G", nullptr);
  EXPECT_FALSE(mine->isCancelled()) << "a newer one on another queue";
  queue_->cancelAllOperationsForGroup("G");
  queue_->cancelOperationForSingleInstanceID("a");
  EXPECT_TRUE(mine->isCancelled());
  EXPECT_FALSE(theirs->isCancelled());
  theirs->open();
  for (const auto& queue : {queue_, other}) {
    queue->setSuspended(false);
    queue->waitUntilAllOperationsAreFinished();
  }
}

TEST_F(ORLFOperationQueueEdges, OfOneOperationOnTwoQueuesTheSecondRaises) {
  const auto other = std::make_shared<ORLFOperationQueue>();
  const auto operation = gated();
  queue_->addOperation(operation);
  EXPECT_THROW(other->addOperation(operation), NSException);
  EXPECT_THROW(other->addOperations({blockOperation(), operation}, true), NSException);
  EXPECT_EQ(other->operationCount(), 0U);
  operation->open();
  queue_->waitUntilAllOperationsAreFinished();
  EXPECT_THROW(other->addOperation(operation), NSException) << "it has finished";
  other->addOperations({nullptr, blockOperation(), nullptr}, true);
}

TEST_F(ORLFOperationQueueEdges, AMarkedOperationOfTheQueueCanBeMadeToWaitForItself) {
  const auto barrier = gated();
  orlfSetIsBarrierOperation(*barrier, true);
  queue_->setSuspended(true);
  queue_->addOperation(barrier);
  EXPECT_TRUE(barrier->dependencies().empty());
  queue_->makeOperationDependOnAllBarrierOperations(barrier);
  EXPECT_EQ(barrier->dependencies(), Operations{barrier});
  queue_->setSuspended(false);
  EXPECT_FALSE(barrier->isReady());
  barrier->cancel();
  queue_->waitUntilAllOperationsAreFinished();
}

TEST_F(ORLFOperationQueueEdges, LetsOutWhatAnIDThrowsAndGoesOn) {
  bool throws = false;
  const auto throwing = std::make_shared<Asked>([&]() -> std::optional<std::string> {
    if (throws) throw std::runtime_error("refused");
    return "a";
  });
  queue_->setSuspended(true);
  queue_->addOperation(throwing);
  throws = true;
  const auto newer = gated("a");
  EXPECT_THROW(queue_->addOperation(newer), std::runtime_error);
  EXPECT_THROW(queue_->cancelOperationForSingleInstanceID("b"), std::runtime_error);
  EXPECT_EQ(queue_->operations(), Operations{throwing});
  throws = false;
  queue_->addOperation(newer);
  EXPECT_TRUE(throwing->isCancelled());
  newer->open();
  queue_->setSuspended(false);
  queue_->waitUntilAllOperationsAreFinished();
}

TEST_F(ORLFOperationQueueEdges, AFenceIsABarrierInNoGroupWhoseEndTakesNoDetour) {
  const auto target = std::make_shared<NSOperationQueue>();
  target->setSuspended(true);
  queue_->setTargetQueue(target);
  queue_->setLogsActivity(true);
  queue_->setSuspended(true);
  queue_->pauseQueueWithBlock([] {});
  const Operations all = queue_->operations();
  ASSERT_EQ(all.size(), 1U);
  EXPECT_TRUE(orlfIsBarrierOperation(*all[0]));
  EXPECT_EQ(orlfGroupID(*all[0]), std::nullopt);
  EXPECT_FALSE(all[0]->completionBlock());
  EXPECT_TRUE(all[0]->dependencies().empty());
  queue_->setSuspended(false);
  queue_->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(target->operationCount(), 0U);
}

}  // namespace
}  // namespace ORLFoundation
