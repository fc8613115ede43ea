#include <ORLFoundation/platform/net/NSURLSession_testing.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <thread>

namespace {

using namespace ORLFoundation;
using orlftest::Loading;
using orlftest::plainRequest;

TEST(NSURLSessionInvalidation, LetsRunningTasksEndBeforeItIsTold) {
  Loading loading;
  const auto running = loading.session->dataTaskWithRequest(plainRequest("/late/0.05"));
  running->resume();
  loading.session->finishTasksAndInvalidate();
  EXPECT_EQ(loading.session->dataTaskWithRequest(plainRequest("/echo")), nullptr);
  EXPECT_EQ(loading.session->downloadTaskWithRequest(plainRequest("/echo")), nullptr);
  ASSERT_TRUE(loading.delegate->waitForInvalidation());
  EXPECT_EQ(loading.delegate->completions(), 1U);
  EXPECT_EQ(loading.delegate->record(1).body, "late");
  loading.session->finishTasksAndInvalidate();
  loading.session->invalidateAndCancel();
  EXPECT_EQ(loading.delegate->invalidations_, 1);
}

TEST(NSURLSessionInvalidation, CancelsTasksThatWereNeverResumedBeforeItIsTold) {
  Loading loading;
  const auto idle = loading.session->dataTaskWithRequest(plainRequest("/echo"));
  const auto running = loading.session->dataTaskWithRequest(plainRequest("/late/0.05"));
  running->resume();
  static_cast<void>(loading.session->downloadTaskWithRequest(plainRequest("/echo")));
  loading.session->finishTasksAndInvalidate();
  ASSERT_TRUE(loading.delegate->waitForInvalidation());
  EXPECT_EQ(loading.delegate->completions(), 2U);
  EXPECT_EQ(loading.delegate->record(1).code(), NSURLErrorCancelled);
  EXPECT_EQ(loading.delegate->record(2).body, "late");
  idle->resume();
  idle->cancel();
  EXPECT_EQ(loading.delegate->completions(), 2U);
}

TEST(NSURLSessionInvalidation, CancelsAllTasksBeforeItIsTold) {
  for (const auto& queue :
       {std::shared_ptr<NSOperationQueue>(), std::make_shared<NSOperationQueue>()}) {
    Loading loading(nullptr, queue);
    const auto waiting = loading.session->dataTaskWithRequest(plainRequest("/echo"));
    for (int i = 0; i < 20; ++i)
      loading.session->downloadTaskWithRequest(plainRequest("/silent"))->resume();
    loading.session->invalidateAndCancel();
    ASSERT_TRUE(loading.delegate->waitForInvalidation());
    // The download tasks were dropped by the test: the session holds those that run.
    EXPECT_EQ(loading.delegate->completions(), 21U);
    for (NSUInteger task = 1; task <= 21; ++task)
      EXPECT_EQ(loading.delegate->record(task).code(), NSURLErrorCancelled);
  }
}

TEST(NSURLSessionInvalidation, CancelsTasksThatAreMadeMeanwhile) {
  for (int round = 0; round < 20; ++round) {
    Loading loading;
    const auto request = plainRequest("/silent");
    std::atomic<bool> begins{false};
    std::size_t made = 0;
    std::thread maker([&] {
      begins = true;
      for (; made < 300; ++made) {
        const auto task = loading.session->dataTaskWithRequest(request);
        if (!task) return;
        task->resume();
      }
    });
    while (!begins) std::this_thread::yield();
    loading.session->invalidateAndCancel();
    maker.join();
    ASSERT_TRUE(loading.delegate->waitForInvalidation());
    EXPECT_EQ(loading.delegate->completions(), made);
    for (NSUInteger task = 1; task <= made; ++task)
      EXPECT_EQ(loading.delegate->record(task).code(), NSURLErrorCancelled);
  }
}

TEST(NSURLSessionInvalidation, EndsTasksThatBeginMeanwhileBeforeItIsTold) {
  const auto request = NSURLRequest::requestWithURL(NSURL::URLWithString("data:,inside"));
  for (int round = 0; round < 200; ++round) {
    Loading loading;
    const auto task = loading.session->dataTaskWithRequest(request);
    std::atomic<bool> begins{false};
    std::thread resuming([&] {
      begins = true;
      task->resume();
    });
    while (!begins) std::this_thread::yield();
    round % 2 == 0 ? loading.session->finishTasksAndInvalidate()
                   : loading.session->invalidateAndCancel();
    EXPECT_TRUE(loading.delegate->waitForInvalidation());
    EXPECT_EQ(loading.delegate->completions(), 1U) << round;
    resuming.join();
  }
}

TEST(NSURLSessionInvalidation, IsToldOfASessionThatDidNothing) {
  Loading loading;
  loading.session->finishTasksAndInvalidate();
  EXPECT_TRUE(loading.delegate->waitForInvalidation());
}

}  // namespace
