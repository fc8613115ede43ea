#include <ORLFoundation/web/session/ORLFURLSessionTask.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/notification/NSNotificationCenter.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <ORLFoundation/platform/object/NSMutableData.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>
#include <ORLFoundation/web/session/ORLFURLSessionTask_testing.h>
#include <gmock/gmock.h>

namespace ORLFoundation {
namespace {

using namespace orlftest;
using testing::ElementsAre;
using testing::IsEmpty;

class ORLFURLSessionTaskTest : public SessionTaskTest {};

TEST_F(ORLFURLSessionTaskTest, StartsOnePlatformTaskWhenItIsResumedTwice) {
  const auto task = dataTask();
  task->resume();
  task->resume();
  EXPECT_THAT(calls(), ElementsAre("dataTaskWithRequest: 1", "resume 1"));
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateRunning);
  EXPECT_EQ(task->connection(), platform()->exchange(1).task());
}

TEST_F(ORLFURLSessionTaskTest, RunsNormallyWhenItWasCancelledBefore) {
  const auto task = dataTask();
  task->cancel();
  EXPECT_FALSE(task->canceled());
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateReady);
  task->resume();
  answer(1, 200, "body");
  settle();
  EXPECT_EQ(task->result().as<NSMutableData>()->text(), "body");
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateCompleted);
}

TEST_F(ORLFURLSessionTaskTest, IsRunningToItsHandlerAndFinishedAfterwards) {
  const auto task = dataTask();
  task->resume();
  answer(1, 200, "body");
  settle();
  ASSERT_EQ(ended().size(), 1U);
  EXPECT_EQ(ended()[0].task, task);
  EXPECT_EQ(ended()[0].error, nullptr);
  EXPECT_EQ(ended()[0].state, ORLURLSessionTaskStateRunning);
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateCompleted);
  task->resume();
  EXPECT_EQ(calls().size(), 2U) << "a finished task is not restarted";
}

TEST_F(ORLFURLSessionTaskTest, CancelsThePlatformsTaskAndEndsThroughIt) {
  const auto task = dataTask();
  task->resume();
  task->cancel();
  EXPECT_TRUE(task->canceled());
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateCanceling);
  task->cancel();
  EXPECT_THAT(calls(), ElementsAre("dataTaskWithRequest: 1", "resume 1", "cancel 1"));
  const auto error = urlError(NSURLErrorCancelled);
  platform()->tellCompleted(1, error);
  settle();
  EXPECT_EQ(ended().at(0).error, error);
  EXPECT_EQ(ended().at(0).state, ORLURLSessionTaskStateCanceling);
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateCompleted);
}

TEST_F(ORLFURLSessionTaskTest, EndsUnauthorizedWithoutADelegateWithAnErrorAndNoResult) {
  const auto task = dataTask();
  task->resume();
  answer(1, 401, "who are you");
  settle();
  ASSERT_EQ(ended().size(), 1U);
  EXPECT_EQ(ended()[0].error->domain(), NSURLErrorDomain);
  EXPECT_EQ(ended()[0].error->code(), NSURLErrorUserAuthenticationRequired);
  EXPECT_EQ(ended()[0].error->userInfo()->count(), 0U);
  EXPECT_TRUE(task->result().isNil());
  EXPECT_EQ(task->failures(), 1U);
}

TEST_F(ORLFURLSessionTaskTest, EndsAServersErrorWithTheBodyAndLogsItsStatus) {
  const auto logger = std::make_shared<TellingLogger>();
  std::vector<std::string> lines;
  logger->response = [&](const auto& told) {
    lines.push_back(std::string(*told.logResponse) + " " + std::to_string(told.statusCode));
  };
  session_->setLogger(logger);
  const auto task = dataTask();
  task->resume();
  answer(1, 500, "out of order");
  settle();
  EXPECT_EQ(ended().at(0).error, nullptr);
  EXPECT_EQ(task->result().as<NSMutableData>()->text(), "out of order");
  EXPECT_THAT(lines, ElementsAre("out of order 500"));
}

TEST_F(ORLFURLSessionTaskTest, LogsAnEmptyBodyAsADownloadWithoutAFile) {
  const auto logger = std::make_shared<TellingLogger>();
  std::vector<std::string> lines;
  logger->request = [&](const auto& told) {
    lines.push_back("request " + std::string(told.logRequestWithID));
  };
  logger->download = [&](const auto& told) {
    lines.push_back((told.logDownload ? "file " : "nothing ") + std::string(told.forID));
  };
  session_->setLogger(logger);
  const auto task = dataTask();
  task->resume();
  answer(1, 200);
  settle();
  EXPECT_TRUE(task->result().isNil());
  EXPECT_EQ(ended().at(0).error, nullptr);
  const std::string identifier = session_->uniqueIDForTask(task);
  EXPECT_THAT(lines, ElementsAre("request " + identifier, "nothing " + identifier));
  EXPECT_THAT(identifier, testing::MatchesRegex("0x[0-9a-f]+-0x[0-9a-f]+"));
}

TEST_F(ORLFURLSessionTaskTest, OnlyLogsAForwardWhenItIsNotRunning) {
  std::vector<std::string> lines;
  const Replaced log(NSSetLogSink, [&](std::string_view line) { lines.emplace_back(line); });
  const auto task = dataTask();
  task->forward(other_);
  task->forwardCompletion(other_, nullptr);
  task->forwardDownload(other_, NSURL::fileURLWithPath("/nowhere"), nullptr);
  const std::string line =
      "Condition Failed: state == ORLURLSessionTaskStateRunning "
      "This should only be called for running tasks";
  EXPECT_THAT(lines, ElementsAre(line, line, line));
  EXPECT_EQ(task->request(), request_);
  EXPECT_FALSE(task->destinationURL());
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateReady);
}

TEST_F(ORLFURLSessionTaskTest, KeepsItsHandlerWhenItIsForwardedWithAnother) {
  bool wasOtherCalled = false;
  const auto other = [&](const TaskPointer&, const ErrorPointer&) { wasOtherCalled = true; };
  std::vector<std::string> bodies;
  const auto task = session_->taskWithRequest(request_, [&](const TaskPointer& done, const auto&) {
    bodies.emplace_back(done->result().as<NSMutableData>()->text());
    if (bodies.size() > 1) return;
    done->forwardCompletion(other_, other);
    done->resume();
  });
  task->resume();
  answer(1, 200, "one");
  settle();
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateRunning);
  EXPECT_EQ(platform()->exchange(2).request, other_);
  answer(2, 200, "two");
  settle();
  EXPECT_THAT(bodies, ElementsAre("one", "two"));
  EXPECT_FALSE(wasOtherCalled);
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateCompleted);
}

TEST_F(ORLFURLSessionTaskTest, CountsAsFinishedWhenItIsForwardedToItsVeryRequest) {
  const auto task = session_->taskWithRequest(
      request_, [&](const TaskPointer& done, const auto&) { done->forward(request_); });
  task->resume();
  answer(1, 200, "one");
  settle();
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateCompleted);
}

TEST_F(ORLFURLSessionTaskTest, KeepsACopyOfARequestThatChanges) {
  const auto changing = NSMutableURLRequest::requestWithURL(request_->URL());
  const auto task = session_->taskWithRequest(changing, nullptr);
  changing->setHTTPMethod("PUT");
  EXPECT_EQ(task->request()->HTTPMethod(), "GET");
  EXPECT_EQ(session_->taskWithRequest(request_, nullptr)->request(), request_);
}

TEST_F(ORLFURLSessionTaskTest, RetriesWithTheRequestThatItsDelegateGives) {
  std::vector<NSUInteger> counts;
  session_->setDelegate(std::make_shared<AnsweringDelegate>([&](NSUInteger count, auto answer) {
    counts.push_back(count);
    answer(count < 3 ? other_ : nullptr, count < 3 ? nullptr : urlError(-5));
  }));
  const auto task = dataTask();
  task->resume();
  answer(1, 401);
  settle();
  settle();
  EXPECT_EQ(platform()->exchange(2).request, other_);
  answer(2, 401);
  settle();
  platform()->tellCompleted(3, urlError(NSURLErrorUserAuthenticationRequired));
  settle();
  EXPECT_THAT(counts, ElementsAre(1U, 2U, 3U));
  EXPECT_EQ(ended().at(0).error->code(), -5);
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateCompleted);
}

TEST_F(ORLFURLSessionTaskTest, MakesAQueueThatRunsOneOperationAtATimeWhereItHasNone) {
  const auto task = dataTask();
  EXPECT_EQ(task->completionQueue(), session_->delegateQueue());
  task->setCompletionQueue(nullptr);
  const auto made = task->completionQueue();
  EXPECT_NE(made, session_->delegateQueue());
  EXPECT_EQ(made->maxConcurrentOperationCount(), 1);
  EXPECT_EQ(task->completionQueue(), made);
}

TEST_F(ORLFURLSessionTaskTest, CallsAHandlerThatComesAfterTheEndAtOnce) {
  const auto task = dataTask();
  task->resume();
  const auto error = urlError(NSURLErrorTimedOut);
  platform()->tellCompleted(1, error);
  settle();
  task->setCompletionHandler(recording());
  settle();
  ASSERT_EQ(ended().size(), 2U);
  EXPECT_EQ(ended()[1].error, error);
  EXPECT_EQ(ended()[1].state, ORLURLSessionTaskStateCompleted);
  task->setCompletionHandler(nullptr);
  settle();
  EXPECT_EQ(ended().size(), 2U);
}

TEST_F(ORLFURLSessionTaskTest, ForgetsWhatCameOfItWhenItIsResumedAgain) {
  const auto task = dataTask();
  task->setTaskResponsePath("path");
  task->setResult("result");
  task->setResponse(answerOf(200));
  task->taskResponseData()->appendData(NSData(std::string_view("data")));
  task->resume();
  EXPECT_FALSE(task->taskResponsePath());
  EXPECT_TRUE(task->result().isNil());
  EXPECT_EQ(task->response(), nullptr);
  EXPECT_EQ(task->taskResponseData()->length(), 0U);
  EXPECT_EQ(task->failures(), 0U);
}

TEST_F(ORLFURLSessionTaskTest, StaysReadyWhenThePlatformGivesNoTask) {
  const auto task = dataTask();
  platform()->refuseTasks();
  task->resume();
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateReady);
  EXPECT_EQ(task->connection(), nullptr);
  task->waitUntilFinished();
  const auto asked = session_->taskWithRequest(nullptr, nullptr);
  asked->resume();
  EXPECT_EQ(asked->state(), ORLURLSessionTaskStateReady);
}

TEST_F(ORLFURLSessionTaskTest, StaysReadyWhenAnObserverOfItsStartThrows) {
  const auto token = NSNotificationCenter::defaultCenter()->addObserverForName(
      std::string(ORLFURLSessionDidResumeTaskNotification), session_,
      [](const auto&) { throw std::runtime_error("not now"); });
  const auto task = dataTask();
  EXPECT_THROW(task->resume(), std::runtime_error);
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateReady);
  NSNotificationCenter::defaultCenter()->removeObserver(token);
  task->resume();
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateRunning);
}

TEST_F(ORLFURLSessionTaskTest, TellsObserversOfItsState) {
  const auto task = dataTask();
  std::vector<NSInteger> states;
  const auto token =
      task->addObserver("state", NSKeyValueObservingOptionNew, [&](const NSKeyValueChange&) {
        states.push_back(*task->valueForKey("state").as<NSInteger>());
      });
  task->resume();
  task->cancel();
  answer(1, 200);
  settle();
  EXPECT_THAT(states, ElementsAre(0, 2, 3));
  EXPECT_EQ(task->valueForKey("canceled").as<bool>(), true);
  EXPECT_EQ(task->valueForKey("request").as<NSURLRequest>(), request_);
}

TEST_F(ORLFURLSessionTaskTest, CountsBytesOnItsProgressItems) {
  const auto task = dataTask();
  task->setUploadProgressItem(std::make_shared<ORLFProgressItem>());
  task->setDownloadProgressItem(std::make_shared<ORLFProgressItem>());
  task->resume();
  platform()->tellSent(1, 3, 10);
  EXPECT_EQ(task->uploadProgressItem()->value(), 3);
  EXPECT_EQ(task->uploadProgressItem()->maxValue(), 10);
  platform()->exchange(1).state->received = 4;
  platform()->exchange(1).state->expected = 9;
  platform()->tellData(1, NSData(std::string_view("data")));
  EXPECT_EQ(task->downloadProgressItem()->value(), 4);
  EXPECT_EQ(task->downloadProgressItem()->maxValue(), 9);
  platform()->tellWritten(1, 5, 8);
  EXPECT_EQ(task->downloadProgressItem()->value(), 5);
  platform()->tellResumedAt(1, 6, 7);
  EXPECT_EQ(task->downloadProgressItem()->value(), 6);
  EXPECT_EQ(task->downloadProgressItem()->maxValue(), 7);
}

}  // namespace
}  // namespace ORLFoundation
