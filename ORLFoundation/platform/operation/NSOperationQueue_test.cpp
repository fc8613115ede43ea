#include <ORLFoundation/platform/operation/NSOperationQueue.h>

#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <ORLFoundation/platform/operation/NSOperation_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <random>
#include <string>
#include <thread>

namespace ORLFoundation {
namespace {

using orlftest::blockOperation;
using orlftest::Gated;
using orlftest::Notes;
using Operations = NSOperationQueue::Operations;

TEST(NSOperationQueue, RunsAnOperationOnAnotherThreadOnce) {
  const auto queue = std::make_shared<NSOperationQueue>();
  std::atomic<int> runs{0};
  std::thread::id thread;
  const auto operation = blockOperation([&] {
    ++runs;
    thread = std::this_thread::get_id();
  });
  queue->addOperation(operation);
  operation->waitUntilFinished();
  EXPECT_EQ(runs, 1);
  EXPECT_NE(thread, std::this_thread::get_id());
  EXPECT_EQ(queue->operationCount(), 0U);
}

TEST(NSOperationQueue, NilDoesNothing) {
  const auto queue = std::make_shared<NSOperationQueue>();
  queue->addOperation(nullptr);
  queue->addOperations({}, true);
  queue->addOperations({nullptr}, true);
  queue->addOperationWithBlock(nullptr);
  EXPECT_TRUE(queue->operations().empty());
  queue->waitUntilAllOperationsAreFinished();
}

TEST(NSOperationQueue, ListsWhatHasNotFinishedInOrderOfAddition) {
  const auto queue = std::make_shared<NSOperationQueue>();
  const Gated first;
  const Gated second;
  const auto third = blockOperation();
  third->addDependency(second.operation);
  queue->addOperation(first.operation);
  queue->addOperations({second.operation, third}, false);
  EXPECT_EQ(queue->operations(), (Operations{first.operation, second.operation, third}));
  EXPECT_EQ(queue->operationCount(), 3U);
  first.open();
  first.operation->waitUntilFinished();
  EXPECT_EQ(queue->operations(), (Operations{second.operation, third}));
  second.open();
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(queue->operations().empty());
}

TEST(NSOperationQueue, BeginsAnyNumberAtOnce) {
  const auto queue = std::make_shared<NSOperationQueue>();
  const std::vector<Gated> many(40);
  for (const Gated& each : many) queue->addOperation(each.operation);
  for (const Gated& each : many) each.waitUntilBegun();
  EXPECT_EQ(queue->operationCount(), many.size());
  for (const Gated& each : many) each.open();
  queue->waitUntilAllOperationsAreFinished();
}

TEST(NSOperationQueue, DependenciesHoldAcrossQueuesAndCancels) {
  const auto queue = std::make_shared<NSOperationQueue>();
  const auto other = std::make_shared<NSOperationQueue>();
  Notes notes;
  const Gated gate;
  const auto first = notes.operation("1");
  const auto second = notes.operation("2");
  const auto cancelled = notes.operation("never");
  first->addDependency(gate.operation);
  second->addDependency(first);
  second->addDependency(cancelled);
  other->addOperation(second);
  queue->addOperations({first, gate.operation, cancelled}, false);
  cancelled->cancel();
  gate.waitUntilBegun();
  EXPECT_FALSE(second->isFinished());
  gate.open();
  second->waitUntilFinished();
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(notes.text() == "12" || notes.text() == "never12") << notes.text();
}

TEST(NSOperationQueue, ACancelledOperationLeavesAtOnceAndLetsGoOnWhoWaitsForIt) {
  const auto queue = std::make_shared<NSOperationQueue>();
  const auto neverAdded = blockOperation();
  std::atomic<bool> wasCompleted{false};
  const auto waiting = blockOperation([] { ADD_FAILURE() << "ran"; });
  waiting->addDependency(neverAdded);
  const auto completed = dispatch_semaphore_create(0);
  waiting->setCompletionBlock([&] {
    wasCompleted = waiting->isFinished();
    dispatch_semaphore_signal(completed);
  });
  const auto next = blockOperation();
  next->addDependency(waiting);
  queue->addOperations({waiting, next}, false);
  EXPECT_EQ(queue->operationCount(), 2U);
  waiting->cancel();
  next->waitUntilFinished();
  dispatch_semaphore_wait(completed, DISPATCH_TIME_FOREVER);
  EXPECT_TRUE(wasCompleted);
  EXPECT_EQ(queue->operationCount(), 0U);
}

TEST(NSOperationQueue, ADependencyThatIsAddedBeforeItBeginsHoldsAnOperationThatWasReady) {
  const auto queue = std::make_shared<NSOperationQueue>();
  queue->setSuspended(true);
  const auto late = blockOperation();
  const auto ready = blockOperation([&] { EXPECT_TRUE(late->isFinished()); });
  const auto after = blockOperation();
  queue->addOperations({ready, after}, false);
  ready->addDependency(late);
  queue->setSuspended(false);
  after->waitUntilFinished();
  EXPECT_EQ(queue->operations(), Operations{ready});
  late->start();
  ready->waitUntilFinished();
}

TEST(NSOperationQueue, CancelAllSetsTheFlagOfThoseThatRunAndRemovesTheOthers) {
  const auto queue = std::make_shared<NSOperationQueue>();
  const Gated running;
  const auto waiting = blockOperation([] { ADD_FAILURE() << "ran"; });
  waiting->addDependency(running.operation);
  queue->addOperations({running.operation, waiting}, false);
  running.waitUntilBegun();
  queue->cancelAllOperations();
  waiting->waitUntilFinished();
  EXPECT_TRUE(running.operation->isCancelled());
  EXPECT_EQ(queue->operations(), Operations{running.operation});
  running.open();
  queue->waitUntilAllOperationsAreFinished();
}

TEST(NSOperationQueue, TheCompletionBlockRunsAfterTheEndOnTheFinishingThread) {
  const auto queue = std::make_shared<NSOperationQueue>();
  std::thread::id thread;
  std::thread::id completionThread;
  const auto done = dispatch_semaphore_create(0);
  const auto operation = blockOperation([&] { thread = std::this_thread::get_id(); });
  NSUInteger countInside = 1;
  operation->setCompletionBlock([&] {
    completionThread = std::this_thread::get_id();
    countInside = queue->operationCount();
    dispatch_semaphore_signal(done);
  });
  queue->addOperation(operation);
  dispatch_semaphore_wait(done, DISPATCH_TIME_FOREVER);
  EXPECT_EQ(thread, completionThread);
  EXPECT_EQ(countInside, 0U);
}

TEST(NSOperationQueue, ACompletionBlockThatBlocksHoldsUpNobody) {
  const auto queue = std::make_shared<NSOperationQueue>();
  queue->setMaxConcurrentOperationCount(1);
  const auto next = blockOperation();
  const auto completed = dispatch_semaphore_create(0);
  const auto operation = blockOperation();
  operation->setCompletionBlock([&] {
    next->waitUntilFinished();
    dispatch_semaphore_signal(completed);
  });
  queue->addOperations({operation, next}, false);
  dispatch_semaphore_wait(completed, DISPATCH_TIME_FOREVER);
  EXPECT_TRUE(next->isFinished());
}

TEST(NSOperationQueue, RefusesAnOperationThatWasAddedOrHasBegun) {
  const auto queue = std::make_shared<NSOperationQueue>();
  queue->setSuspended(true);
  const auto refusal = [&](const Operations& operations) -> std::string {
    try {
      queue->addOperations(operations, false);
    } catch (const NSException& exception) {
      EXPECT_EQ(exception.name(), NSInvalidArgumentException);
      return exception.reason();
    }
    return "none";
  };
  const std::string start = "*** -[NSOperationQueue addOperation:]: operation is ";
  const auto added = blockOperation();
  queue->addOperation(added);
  EXPECT_EQ(refusal({added}), start + "already enqueued on a queue");
  const auto finished = blockOperation();
  finished->start();
  EXPECT_EQ(refusal({finished}), start + "finished and cannot be enqueued");
  std::shared_ptr<NSBlockOperation> running;
  running = blockOperation(
      [&] { EXPECT_EQ(refusal({running}), start + "executing and cannot be enqueued"); });
  running->start();
  // All of a batch or none of it.
  const auto fresh = blockOperation();
  EXPECT_EQ(refusal({fresh, fresh}), start + "already enqueued on a queue");
  EXPECT_EQ(refusal({fresh, finished}), start + "finished and cannot be enqueued");
  EXPECT_FALSE(fresh->wasEnqueued());
  EXPECT_EQ(refusal({fresh}), "none");
  EXPECT_TRUE(fresh->wasEnqueued());
  EXPECT_EQ(queue->operations(), (Operations{added, fresh}));
  queue->setSuspended(false);
  queue->waitUntilAllOperationsAreFinished();
}

TEST(NSOperationQueue, WaitsForABatchAndNotForMore) {
  const auto queue = std::make_shared<NSOperationQueue>();
  const Gated other;
  queue->addOperation(other.operation);
  std::atomic<int> runs{0};
  queue->addOperations({blockOperation([&] { ++runs; }), blockOperation([&] { ++runs; })}, true);
  EXPECT_EQ(runs, 2);
  EXPECT_FALSE(other.operation->isFinished());
  other.open();
  queue->waitUntilAllOperationsAreFinished();
}

TEST(NSOperationQueue, OperationsGoOnWithoutTheirQueue) {
  auto queue = std::make_shared<NSOperationQueue>();
  const Gated first;
  const auto second = blockOperation();
  second->addDependency(first.operation);
  queue->addOperations({first.operation, second}, false);
  first.waitUntilBegun();
  queue = nullptr;
  first.open();
  second->waitUntilFinished();
  EXPECT_TRUE(second->isFinished());
}

TEST(NSOperationQueue, TellsAnOperationItsQueue) {
  EXPECT_EQ(NSOperationQueue::currentQueue(), nullptr);
  auto queue = std::make_shared<NSOperationQueue>();
  std::shared_ptr<NSOperationQueue> inside;
  std::shared_ptr<NSOperationQueue> afterInner;
  queue->addOperations({blockOperation([&] { inside = NSOperationQueue::currentQueue(); })}, true);
  EXPECT_EQ(inside, queue);
  const Gated gone;
  const auto asking = blockOperation([&] { afterInner = NSOperationQueue::currentQueue(); });
  asking->addDependency(gone.operation);
  queue->addOperations({gone.operation, asking}, false);
  gone.waitUntilBegun();
  inside = queue = nullptr;
  gone.open();
  asking->waitUntilFinished();
  EXPECT_EQ(afterInner, nullptr);
}

TEST(NSOperationQueue, OperationsMayAddToTheirQueueFromManyThreads) {
  const auto queue = std::make_shared<NSOperationQueue>();
  std::atomic<int> runs{0};
  std::function<void(int)> spread = [&](int depth) {
    ++runs;
    if (depth == 0) return;
    for (int i = 0; i < 3; ++i) queue->addOperationWithBlock([&, depth] { spread(depth - 1); });
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([&] { queue->addOperationWithBlock([&] { spread(5); }); });
  for (std::thread& each : threads) each.join();
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(runs, 4 * 364);
}

/// Dependencies, cancels and additions race; each operation ends once, and in its order.
TEST(NSOperationQueue, RacesOfCancelsAndDependenciesEndEachOperationOnce) {
  for (unsigned seed = 0; seed < 200; ++seed) {
    std::mt19937 random(seed);
    const auto queue = std::make_shared<NSOperationQueue>();
    std::vector<std::atomic<int>> ends(12);
    Operations operations;
    for (std::size_t i = 0; i < ends.size(); ++i) {
      operations.push_back(blockOperation([&, i] {
        const bool mayBeEarly = i == 0 || operations[i]->isCancelled();
        EXPECT_TRUE(mayBeEarly || operations[i / 2]->isFinished());
      }));
      operations[i]->setCompletionBlock([&ends, i] { ++ends[i]; });
      if (i > 0) operations[i]->addDependency(operations[i / 2]);
    }
    const std::size_t cancelled = random() % ends.size();
    std::thread canceller([&, cancelled] { operations[cancelled]->cancel(); });
    for (const auto& each : operations) queue->addOperation(each);
    canceller.join();
    queue->waitUntilAllOperationsAreFinished();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    const auto allEnded = [&] {
      return std::ranges::all_of(ends, [](const auto& count) { return count == 1; });
    };
    while (!allEnded() && std::chrono::steady_clock::now() < deadline) std::this_thread::yield();
    EXPECT_TRUE(allEnded()) << seed;
  }
}

}  // namespace
}  // namespace ORLFoundation
