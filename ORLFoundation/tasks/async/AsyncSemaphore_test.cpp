#include <ORLFoundation/tasks/async/AsyncSemaphore.h>

#include <ORLFoundation/tasks/async/AsyncSemaphore_testing.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>

namespace ORLFoundation {
namespace {

using orlftest::SteppedExecutor;
using orlftest::traps;
using orlftest::waitOnce;
using orlftest::waitOnceUnlessCancelled;
using Job = std::shared_ptr<CooperativeJob<>>;
using State = AsyncSemaphore::State;

class AsyncSemaphoreTest : public testing::Test {
 protected:
  [[nodiscard]] Job started(CooperativeTask<> task) {
    auto job = CooperativeJob<>::start(std::move(task), executor_);
    executor_->runAll();
    return job;
  }

  const std::shared_ptr<SteppedExecutor> executor_ = std::make_shared<SteppedExecutor>();
};

TEST_F(AsyncSemaphoreTest, WithZeroTheFirstWaitParksAndASignalResumesIt) {
  AsyncSemaphore semaphore(0);
  const Job job = started(waitOnce(semaphore));
  EXPECT_FALSE(job->isFinished());
  EXPECT_EQ(semaphore.value(), -1);
  ASSERT_EQ(semaphore.suspensions().size(), 1U);
  EXPECT_EQ(semaphore.suspensions()[0].state, State::suspended);
  EXPECT_EQ(semaphore.suspensions()[0].context, job->context().get());
  EXPECT_TRUE(semaphore.signal());
  EXPECT_EQ(semaphore.value(), 0);
  EXPECT_FALSE(job->isFinished()) << "it goes on through its executor, not within the signal";
  EXPECT_EQ(executor_->runAll(), 1U);
  EXPECT_TRUE(job->isFinished());
}

TEST_F(AsyncSemaphoreTest, WithOneAWaitReturnsAtOnceAndASignalFindsNobody) {
  AsyncSemaphore semaphore(1);
  EXPECT_TRUE(started(waitOnce(semaphore))->isFinished());
  EXPECT_EQ(semaphore.value(), 0);
  EXPECT_FALSE(semaphore.signal());
  EXPECT_EQ(semaphore.value(), 1);
}

TEST_F(AsyncSemaphoreTest, ASignalWithNobodyParkedRaisesTheValue) {
  AsyncSemaphore semaphore(0);
  EXPECT_FALSE(semaphore.signal());
  EXPECT_FALSE(semaphore.signal());
  EXPECT_EQ(semaphore.value(), 2);
  EXPECT_TRUE(semaphore.suspensions().empty());
}

CooperativeTask<> waitAndNote(AsyncSemaphore& semaphore, std::string& order, char name,
                              bool mayCancel) {
  if (mayCancel) {
    co_await semaphore.waitUnlessCancelled();
  } else {
    co_await semaphore.wait();
  }
  order += name;
}

TEST_F(AsyncSemaphoreTest, ThreeWaitersGoOnInTheOrderInWhichTheyCame) {
  AsyncSemaphore semaphore(0);
  std::string order;
  for (const char name : {'1', '2', '3'})
    static_cast<void>(started(waitAndNote(semaphore, order, name, name == '2')));
  const auto parked = semaphore.suspensions();
  ASSERT_EQ(parked.size(), 3U);
  EXPECT_EQ(parked[1].state, State::suspendedUnlessCancelled);
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(semaphore.signal());
  executor_->runAll();
  EXPECT_EQ(order, "123");
}

TEST_F(AsyncSemaphoreTest, ACancelledWaitLeavesTheValueAsItWas) {
  for (const std::int64_t value : {0, 1, 5}) {
    AsyncSemaphore semaphore(value);
    const auto context = std::make_shared<CooperativeContext>(executor_);
    context->cancel();
    const Job job = CooperativeJob<>::start(waitOnceUnlessCancelled(semaphore), context);
    executor_->runAll();
    EXPECT_THROW(job->result(), CancellationError);
    EXPECT_EQ(semaphore.value(), value);
    EXPECT_TRUE(semaphore.suspensions().empty());
  }
}

TEST_F(AsyncSemaphoreTest, ACancelWhileItIsParkedEndsOneWaitAndKeepsTheOthersInOrder) {
  for (const int cancelled : {0, 1, 2}) {
    AsyncSemaphore semaphore(0);
    std::string order;
    std::vector<Job> jobs;
    for (const char name : {'0', '1', '2'})
      jobs.push_back(started(waitAndNote(semaphore, order, name, true)));
    const auto index = static_cast<std::size_t>(cancelled);
    jobs[index]->cancel();
    EXPECT_EQ(semaphore.value(), -2);
    EXPECT_EQ(semaphore.suspensions().size(), 2U);
    executor_->runAll();
    EXPECT_THROW(jobs[index]->result(), CancellationError);
    EXPECT_TRUE(semaphore.signal());
    EXPECT_TRUE(semaphore.signal());
    EXPECT_FALSE(semaphore.signal());
    executor_->runAll();
    std::string expected = "012";
    expected.erase(index, 1);
    EXPECT_EQ(order, expected);
  }
}

TEST_F(AsyncSemaphoreTest, APlainWaitDoesNotHearOfACancel) {
  AsyncSemaphore semaphore(0);
  const Job job = started(waitOnce(semaphore));
  job->cancel();
  executor_->runAll();
  EXPECT_FALSE(job->isFinished());
  EXPECT_TRUE(semaphore.signal());
  executor_->runAll();
  EXPECT_NO_THROW(job->result());
}

TEST_F(AsyncSemaphoreTest, ACancelAfterTheSignalChangesNothing) {
  AsyncSemaphore semaphore(0);
  const Job job = started(waitOnceUnlessCancelled(semaphore));
  EXPECT_TRUE(semaphore.signal());
  job->cancel();
  EXPECT_EQ(semaphore.value(), 0);
  executor_->runAll();
  EXPECT_NO_THROW(job->result());
  EXPECT_EQ(semaphore.value(), 0);
}

TEST_F(AsyncSemaphoreTest, ASignalAfterTheCancelGoesToTheNext) {
  AsyncSemaphore semaphore(0);
  const Job first = started(waitOnceUnlessCancelled(semaphore));
  const Job second = started(waitOnceUnlessCancelled(semaphore));
  first->cancel();
  EXPECT_TRUE(semaphore.signal());
  executor_->runAll();
  EXPECT_THROW(first->result(), CancellationError);
  EXPECT_NO_THROW(second->result());
}

/// Runs steps where they are given, inside the signal or the cancel.
class InPlaceExecutor final : public CooperativeExecutor {
 public:
  void execute(std::function<void()> step) override { step(); }
};

TEST_F(AsyncSemaphoreTest, WorksWithAnExecutorThatRunsStepsInPlace) {
  AsyncSemaphore semaphore(0);
  const auto inPlace = std::make_shared<InPlaceExecutor>();
  const auto first = CooperativeJob<>::start(waitOnceUnlessCancelled(semaphore), inPlace);
  const auto second = CooperativeJob<>::start(waitOnceUnlessCancelled(semaphore), inPlace);
  EXPECT_FALSE(first->isFinished());
  first->cancel();
  EXPECT_TRUE(first->isFinished());
  EXPECT_TRUE(semaphore.signal());
  EXPECT_TRUE(second->isFinished());
  EXPECT_EQ(semaphore.value(), 0);
}

TEST_F(AsyncSemaphoreTest, AWaitThatIsNotAwaitedTakesNothing) {
  AsyncSemaphore semaphore(1);
  {
    [[maybe_unused]] const auto unused = semaphore.wait();
    [[maybe_unused]] const auto alsoUnused = semaphore.waitUnlessCancelled();
  }
  EXPECT_EQ(semaphore.value(), 1);
}

TEST_F(AsyncSemaphoreTest, StopsTheProcessForBadValuesAndForWaitersItWouldLose) {
  EXPECT_TRUE(traps([] { const AsyncSemaphore made(-1); }));
  EXPECT_TRUE(traps([] { const AsyncSemaphore made(std::numeric_limits<std::int64_t>::min()); }));
  EXPECT_FALSE(traps([] { const AsyncSemaphore made(std::numeric_limits<std::int64_t>::max()); }));
  EXPECT_TRUE(traps([] {
    AsyncSemaphore made(std::numeric_limits<std::int64_t>::max());
    made.signal();
  }));
  for (const bool mayCancel : {false, true}) {
    EXPECT_TRUE(traps([&] {
      AsyncSemaphore made(0);
      static_cast<void>(started(mayCancel ? waitOnceUnlessCancelled(made) : waitOnce(made)));
    }));
  }
  EXPECT_FALSE(traps([&] {
    AsyncSemaphore made(0);
    static_cast<void>(started(waitOnce(made)));
    made.signal();
  }));
}

}  // namespace
}  // namespace ORLFoundation
