#include <ORLFoundation/tasks/async/CooperativeTask.h>

#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/tasks/async/AsyncSemaphore_testing.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace ORLFoundation {
namespace {

using orlftest::SteppedExecutor;

CooperativeTask<int> answer(int value) { co_return value; }

CooperativeTask<int> sumOf(int left, int right) {
  const int first = co_await answer(left);
  const int second = co_await answer(right);
  co_return first + second;
}

CooperativeTask<> failing(const char* message) {
  throw std::runtime_error(message);
  co_return;
}

CooperativeTask<std::string> caught() {
  try {
    co_await failing("inner");
  } catch (const std::runtime_error& error) {
    co_return std::string("caught ") + error.what();
  }
  co_return "nothing";
}

TEST(CooperativeTask, BeginsWhenItsJobIsSteppedAndReturnsItsValue) {
  const auto executor = std::make_shared<SteppedExecutor>();
  const auto job = CooperativeJob<int>::start(sumOf(20, 22), executor);
  EXPECT_FALSE(job->isFinished());
  EXPECT_EQ(executor->waiting(), 1U);
  EXPECT_EQ(executor->runAll(), 1U) << "tasks in a task take no step of their own";
  EXPECT_TRUE(job->isFinished());
  EXPECT_EQ(job->result(), 42);
}

TEST(CooperativeTask, ThrowsWhatItsPartsThrow) {
  const auto executor = std::make_shared<SteppedExecutor>();
  const auto bad = CooperativeJob<>::start(failing("outer"), executor);
  const auto good = CooperativeJob<std::string>::start(caught(), executor);
  executor->runAll();
  EXPECT_THROW(bad->result(), std::runtime_error);
  EXPECT_EQ(good->result(), "caught inner");
}

CooperativeTask<> keep(std::shared_ptr<int> kept) {
  EXPECT_GT(kept.use_count(), 1);
  co_return;
}

TEST(CooperativeTask, LetsGoOfItsParametersRunOrNot) {
  const auto kept = std::make_shared<int>(1);
  { const auto unused = keep(kept); }
  EXPECT_EQ(kept.use_count(), 1);
  const auto executor = std::make_shared<SteppedExecutor>();
  const auto job = CooperativeJob<>::start(keep(kept), executor);
  executor->runAll();
  job->result();
  EXPECT_EQ(kept.use_count(), 1);
}

CooperativeTask<std::unique_ptr<int>> movable() { co_return std::make_unique<int>(7); }

TEST(CooperativeTask, ReturnsWhatCanOnlyBeMoved) {
  const auto executor = std::make_shared<SteppedExecutor>();
  const auto job = CooperativeJob<std::unique_ptr<int>>::start(movable(), executor);
  executor->runAll();
  EXPECT_EQ(*job->result(), 7);
}

CooperativeTask<> awaitTwice() {
  auto task = answer(1);
  EXPECT_EQ(co_await std::move(task), 1);
  co_await std::move(task);
}

TEST(CooperativeTask, RaisesWhenItIsAwaitedAgain) {
  const auto executor = std::make_shared<SteppedExecutor>();
  const auto job = CooperativeJob<>::start(awaitTwice(), executor);
  executor->runAll();
  EXPECT_THROW(job->result(), NSException);
}

CooperativeTask<std::shared_ptr<CooperativeContext>> contextInside() {
  co_return co_await CurrentContext();
}

CooperativeTask<bool> sharesItsContext() {
  const auto own = co_await CurrentContext();
  co_return own == co_await contextInside();
}

TEST(CooperativeTask, SharesItsContextWithTheTasksThatItAwaits) {
  const auto executor = std::make_shared<SteppedExecutor>();
  const auto shared = CooperativeJob<bool>::start(sharesItsContext(), executor);
  const auto context = std::make_shared<CooperativeContext>(executor);
  const auto inside =
      CooperativeJob<std::shared_ptr<CooperativeContext>>::start(contextInside(), context);
  executor->runAll();
  EXPECT_TRUE(shared->result());
  EXPECT_EQ(inside->context(), context);
  EXPECT_EQ(inside->result(), context);
}

CooperativeTask<> checkCancellation() { (co_await CurrentContext())->checkCancellation(); }

TEST(CooperativeTask, ACancelIsAFlagThatTheTaskLooksAt) {
  const auto executor = std::make_shared<SteppedExecutor>();
  const auto looking = CooperativeJob<>::start(checkCancellation(), executor);
  const auto going = CooperativeJob<>::start(checkCancellation(), executor);
  const auto blind = CooperativeJob<int>::start(answer(3), executor);
  looking->cancel();
  blind->cancel();
  EXPECT_TRUE(looking->context()->isCancelled());
  executor->runAll();
  EXPECT_THROW(looking->result(), CancellationError);
  EXPECT_NO_THROW(going->result());
  EXPECT_EQ(blind->result(), 3);
}

TEST(CooperativeContext, RunsHandlersOnTheCancellingThreadOrAtOnce) {
  CooperativeContext context(std::make_shared<SteppedExecutor>());
  int early = 0;
  int dropped = 0;
  int late = 0;
  const std::stop_callback installed(context.stopToken(), [&] { ++early; });
  {
    const std::stop_callback gone(context.stopToken(), [&] { ++dropped; });
  }
  EXPECT_EQ(early, 0);
  context.cancel();
  EXPECT_EQ(early, 1);
  const std::stop_callback atOnce(context.stopToken(), [&] { ++late; });
  EXPECT_EQ(late, 1);
  context.cancel();
  EXPECT_EQ(early + late + dropped, 2);
}

TEST(CooperativeContext, RaisesWithoutAnExecutor) {
  EXPECT_THROW(CooperativeContext(nullptr), NSException);
  const std::shared_ptr<CooperativeContext> none;
  EXPECT_THROW(static_cast<void>(CooperativeJob<int>::start(answer(1), none)), NSException);
}

TEST(CooperativeJob, CallsBackOnceItHasFinishedOrAtOnce) {
  const auto executor = std::make_shared<SteppedExecutor>();
  const auto job = CooperativeJob<int>::start(answer(1), executor);
  std::string calls;
  job->whenFinished([&] { calls += job->isFinished() ? "a" : "early"; });
  job->whenFinished([&] { calls += "b"; });
  EXPECT_EQ(calls, "");
  executor->runAll();
  EXPECT_EQ(calls, "ab");
  job->whenFinished([&] { calls += "c"; });
  EXPECT_EQ(calls, "abc");
}

CooperativeTask<std::thread::id> threadOf() { co_return std::this_thread::get_id(); }

TEST(CooperativeJob, RunsOnAQueueAndBlocksWhoAsksForItsResult) {
  const auto here = std::this_thread::get_id();
  using ThreadJob = CooperativeJob<std::thread::id>;
  EXPECT_NE(ThreadJob::start(threadOf(), CooperativeExecutorOnGlobalQueue())->result(), here);
  const auto queue = dispatch_queue_create("steps", DISPATCH_QUEUE_SERIAL);
  const auto gate = dispatch_semaphore_create(0);
  dispatch_async(queue, [gate] { dispatch_semaphore_wait(gate, DISPATCH_TIME_FOREVER); });
  const auto job = ThreadJob::start(threadOf(), CooperativeExecutorOnQueue(queue));
  EXPECT_FALSE(job->isFinished());
  dispatch_semaphore_signal(gate);
  EXPECT_NE(job->result(), here);
}

TEST(CooperativeJob, GoesOnWithoutItsHandle) {
  const auto executor = std::make_shared<SteppedExecutor>();
  AsyncSemaphore done(0);
  static_cast<void>(CooperativeJob<>::start(orlftest::waitOnce(done), executor));
  executor->runAll();
  EXPECT_EQ(done.value(), -1);
  done.signal();
  EXPECT_EQ(executor->runAll(), 1U);
}

}  // namespace
}  // namespace ORLFoundation
