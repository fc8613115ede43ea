#include <ORLFoundation/tasks/async/ORLFAsyncTaskBase.h>

#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/tasks/async/ORLFAsyncBlockTask.h>
#include <ORLFoundation/tasks/async/ORLFAsyncTaskBase_testing.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::WaitingThread;
using orlftest::WorkingTask;

/// Holds whoever passes until it is opened.
struct Gate {
  dispatch_semaphore_t semaphore = dispatch_semaphore_create(0);
  void pass() const { dispatch_semaphore_wait(semaphore, DISPATCH_TIME_FOREVER); }
  void open() const { dispatch_semaphore_signal(semaphore); }
};

TEST(ORLFAsyncTaskBase, ResumedTwiceItRunsOnce) {
  std::atomic<int> runs{0};
  const auto task = std::make_shared<WorkingTask>([&] { ++runs; });
  EXPECT_EQ(task->state(), -1);
  task->resume();
  task->resume();
  task->waitUntilFinished();
  EXPECT_EQ(task->state(), 2);
  task->resume();
  EXPECT_EQ(task->state(), 2);
  EXPECT_EQ(runs, 1);
}

TEST(ORLFAsyncTaskBase, RunsOnAnotherThreadOutsideItsLock) {
  std::thread::id thread;
  std::shared_ptr<WorkingTask> task;
  task = std::make_shared<WorkingTask>([&] {
    thread = std::this_thread::get_id();
    std::thread([&] { task->cancel(); }).join();
  });
  task->resume();
  task->waitUntilFinished();
  EXPECT_NE(thread, std::this_thread::get_id());
  EXPECT_TRUE(task->canceled());
}

TEST(ORLFAsyncTaskBase, RunsOnTheGlobalQueueForWhatTheUserAskedFor) {
  const char* label = nullptr;
  const auto task = std::make_shared<WorkingTask>(
      [&] { label = dispatch_queue_get_label(DISPATCH_CURRENT_QUEUE_LABEL); });
  task->resume();
  task->waitUntilFinished();
  EXPECT_EQ(label, dispatch_queue_get_label(dispatch_get_global_queue(25, 0)));
}

TEST(ORLFAsyncTaskBase, CancelledBeforeItIsResumedItCanStillRun) {
  std::atomic<int> runs{0};
  const auto task = std::make_shared<WorkingTask>([&] { ++runs; });
  task->cancel();
  EXPECT_FALSE(task->canceled());
  EXPECT_EQ(task->state(), -1);
  task->resume();
  task->waitUntilFinished();
  EXPECT_EQ(runs, 1);
  EXPECT_FALSE(task->canceled());
  task->cancel();
  EXPECT_FALSE(task->canceled()) << "it has finished";
  EXPECT_EQ(task->state(), 2);
}

TEST(ORLFAsyncTaskBase, ACancelSetsTheFlagAndTheTaskEndsAllTheSame) {
  const Gate gate;
  const auto task = std::make_shared<WorkingTask>([&] { gate.pass(); });
  task->resume();
  EXPECT_EQ(task->state(), 0);
  task->cancel();
  EXPECT_EQ(task->state(), 1);
  EXPECT_EQ(task->valueForKey("state"), id(1));
  EXPECT_EQ(task->valueForKey("canceled"), id(true));
  task->resume();
  EXPECT_EQ(task->state(), 1);
  gate.open();
  task->waitUntilFinished();
  EXPECT_EQ(task->state(), 2);
  EXPECT_TRUE(task->canceled());
}

TEST(ORLFAsyncTaskBase, WaitsForATaskThatIsResumedLater) {
  const auto task = std::make_shared<WorkingTask>([] {});
  std::thread waiter([&] { task->waitUntilFinished(); });
  task->resume();
  waiter.join();
  EXPECT_EQ(task->state(), 2);
  task->waitUntilFinished();
  task->waitUntilFinished();
}

TEST(ORLFAsyncTaskBase, OfSeveralWaitersOneWakes) {
  const Gate gate;
  const auto task = std::make_shared<WorkingTask>([&] { gate.pass(); });
  task->resume();
  std::vector<std::unique_ptr<WaitingThread>> waiters;
  for (int i = 0; i < 3; ++i) {
    waiters.push_back(std::make_unique<WaitingThread>([&] { task->waitUntilFinished(); }));
    waiters.back()->comeToRest();
  }
  const auto returned = [&] {
    return std::ranges::count_if(waiters, [](const auto& each) { return each->hasReturned(); });
  };
  EXPECT_EQ(returned(), 0);
  gate.open();
  while (returned() == 0) std::this_thread::yield();
  task->waitUntilFinished();
  for (const auto& each : waiters) each->comeToRest();
  EXPECT_EQ(returned(), 1);
  for (int i = 0; i < 2; ++i) task->releaseWaiter();
}

TEST(ORLFAsyncTaskBase, HoldsItselfWhileItRuns) {
  const Gate gate;
  const Gate ended;
  auto task = std::make_shared<WorkingTask>([&] {
    gate.pass();
    ended.open();
  });
  const std::weak_ptr<WorkingTask> weak = task;
  task->resume();
  task = nullptr;
  EXPECT_FALSE(weak.expired());
  gate.open();
  ended.pass();
  while (!weak.expired()) std::this_thread::yield();
}

TEST(ORLFAsyncTaskBase, TheBaseDoesNothingAndFinishes) {
  const auto task = std::make_shared<ORLFAsyncTaskBase>();
  ORLFAsyncTask& interface = *task;
  interface.resume();
  interface.waitUntilFinished();
  EXPECT_FALSE(interface.canceled());
  EXPECT_EQ(task->className(), "ORLFAsyncTaskBase");
}

TEST(ORLFAsyncBlockTask, CallsItsBlockWithItselfAndLetsGoOfIt) {
  const auto captured = std::make_shared<int>(1);
  const ORLFAsyncBlockTaskStatus* seen = nullptr;
  const auto task = std::make_shared<ORLFAsyncBlockTask>(
      [&seen, captured](ORLFAsyncBlockTaskStatus& status) { seen = &status; });
  EXPECT_EQ(captured.use_count(), 2);
  task->resume();
  task->waitUntilFinished();
  EXPECT_EQ(seen, task.get());
  EXPECT_EQ(captured.use_count(), 1);
  EXPECT_EQ(task->className(), "ORLFAsyncBlockTask");
}

TEST(ORLFAsyncBlockTask, ItsBlockSeesTheCancel) {
  const Gate gate;
  const Gate begun;
  bool before = true;
  bool after = false;
  const auto task = std::make_shared<ORLFAsyncBlockTask>([&](ORLFAsyncBlockTaskStatus& status) {
    before = status.canceled();
    begun.open();
    gate.pass();
    after = status.canceled();
  });
  task->resume();
  begun.pass();
  task->cancel();
  gate.open();
  task->waitUntilFinished();
  EXPECT_FALSE(before);
  EXPECT_TRUE(after);
}

TEST(ORLFAsyncBlockTask, WithoutABlockItFinishes) {
  const auto task = std::make_shared<ORLFAsyncBlockTask>(nullptr);
  task->resume();
  task->waitUntilFinished();
  EXPECT_EQ(task->state(), 2);
}

}  // namespace
}  // namespace ORLFoundation
