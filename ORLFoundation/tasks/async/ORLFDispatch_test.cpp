#include <ORLFoundation/tasks/async/ORLFDispatch.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace ORLFoundation {
namespace {

const char* currentLabel() { return dispatch_queue_get_label(DISPATCH_CURRENT_QUEUE_LABEL); }

void runMainQueueOnce() {
  while (pumpMainQueue(0)) continue;
}

TEST(ORLFDispatch, ContinuesOnTheOtherQueueWhenTheWorkHasEnded) {
  const auto first = dispatch_queue_create("first", DISPATCH_QUEUE_SERIAL);
  const auto second = dispatch_queue_create("second", DISPATCH_QUEUE_SERIAL);
  const auto done = dispatch_semaphore_create(0);
  std::string order;
  orlfDispatch_async_continue(
      first, [&] { order += currentLabel(); }, second,
      [&] {
        order += std::string(" ") + currentLabel();
        dispatch_semaphore_signal(done);
      });
  dispatch_semaphore_wait(done, DISPATCH_TIME_FOREVER);
  EXPECT_EQ(order, "first second");
}

TEST(ORLFDispatch, LetsGoOfTheWorkBeforeItContinues) {
  const auto queue = dispatch_queue_create("first", DISPATCH_QUEUE_SERIAL);
  const auto done = dispatch_semaphore_create(0);
  auto captured = std::make_shared<int>(1);
  const std::weak_ptr<int> weak = captured;
  bool isGone = false;
  orlfDispatch_async_continue(
      queue, [captured = std::move(captured)] {}, queue,
      [&] {
        isGone = weak.expired();
        dispatch_semaphore_signal(done);
      });
  dispatch_semaphore_wait(done, DISPATCH_TIME_FOREVER);
  EXPECT_TRUE(isGone);
}

TEST(ORLFDispatch, WithoutAContinuationOrAQueueForItTheWorkRunsAlone) {
  const auto queue = dispatch_queue_create("work", DISPATCH_QUEUE_SERIAL);
  int runs = 0;
  orlfDispatch_async_continue(
      queue, [&] { ++runs; }, nullptr, [] { ADD_FAILURE(); });
  orlfDispatch_async_continue(
      queue, [&] { ++runs; }, queue, nullptr);
  orlfDispatch_async_continue(
      nullptr, [] { ADD_FAILURE(); }, queue, [] { ADD_FAILURE(); });
  orlfDispatch_async_continue(queue, nullptr, queue, [] { ADD_FAILURE(); });
  orlfDispatch_async_continue_main(
      queue, [&] { ++runs; }, nullptr);
  dispatch_sync(queue, [] {});
  EXPECT_EQ(runs, 3);
}

TEST(ORLFDispatch, ContinuesOnTheMainQueueAlsoFromThatQueue) {
  std::string order;
  orlfDispatch_async_continue_main(
      dispatch_get_main_queue(), [&] { order += "work "; },
      [&] { order += NSThread::isMainThread() ? "main" : "elsewhere"; });
  EXPECT_EQ(order, "");
  runMainQueueOnce();
  EXPECT_EQ(order, "work main");
}

TEST(ORLFDispatch, CallsAtOnceWithinTheMainQueueOnly) {
  const auto queue = dispatch_queue_create("other", DISPATCH_QUEUE_SERIAL);
  int calls = 0;
  orlfDispatch_main_queue_check_and_dispatch_if_needed([&] { ++calls; });
  EXPECT_EQ(calls, 1) << "on the main thread, outside of all items";
  orlfDispatch_main_queue_check_and_dispatch_if_needed(nullptr);
  dispatch_sync(queue,
                [&] { orlfDispatch_main_queue_check_and_dispatch_if_needed([&] { ++calls; }); });
  EXPECT_EQ(calls, 1) << "on the main thread, but within another queue";
  runMainQueueOnce();
  EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace ORLFoundation
