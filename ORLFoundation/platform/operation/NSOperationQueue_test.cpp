#include <ORLFoundation/platform/operation/NSOperationQueue.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <ORLFoundation/platform/operation/NSOperation_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <random>
#include <string>
#include <thread>

namespace ORLFoundation {
namespace {

using orlftest::blockOperation;
using Operations = NSOperationQueue::Operations;

/// An operation that runs until it is opened.
struct Gated {
  dispatch_semaphore_t gate = dispatch_semaphore_create(0);
  dispatch_semaphore_t begun = dispatch_semaphore_create(0);
  std::shared_ptr<NSBlockOperation> operation = blockOperation([gate = gate, begun = begun] {
    dispatch_semaphore_signal(begun);
    dispatch_semaphore_wait(gate, DISPATCH_TIME_FOREVER);
  });

  void waitUntilBegun() const { dispatch_semaphore_wait(begun, DISPATCH_TIME_FOREVER); }
  void open() const { dispatch_semaphore_signal(gate); }
};

/// What operations of one test wrote, in order.
class Notes {
 public:
  std::shared_ptr<NSBlockOperation> operation(const std::string& name) {
    return blockOperation([this, name] { write(name); });
  }
  void write(const std::string& text) {
    const std::lock_guard guard(lock_);
    text_ += text;
  }
  [[nodiscard]] std::string text() const {
    const std::lock_guard guard(lock_);
    return text_;
  }

 private:
  mutable std::mutex lock_;
  std::string text_;
};

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
  EXPECT_EQ(queue->operations(), Operations{held.operation});
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
