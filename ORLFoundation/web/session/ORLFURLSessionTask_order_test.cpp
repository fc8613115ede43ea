// What stands in a task's fields at each moment at which somebody is told of it.
#include <ORLFoundation/web/session/ORLFURLSessionTask.h>

#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/object/NSMutableData.h>
#include <ORLFoundation/web/session/ORLFURLSessionTask_testing.h>
#include <gmock/gmock.h>
#include <tests/support/TemporaryFolder.h>

namespace ORLFoundation {
namespace {

using namespace orlftest;
using testing::ElementsAre;

class ORLFURLSessionTaskOrder : public SessionTaskTest {
 protected:
  ORLFURLSessionTaskOrder() { session_->setLogger(logger_); }

  [[nodiscard]] NSURL place() const {
    return NSURL::fileURLWithPath((folder_.path() / "file").string());
  }
  [[nodiscard]] TaskPointer download() {
    return session_->taskWithRequestDestination(request_, place(), recording());
  }
  void tellDownloaded(std::size_t number, NSInteger status) {
    platform()->exchange(number).state->setResponse(answerOf(status));
    platform()->tellDownloaded(number,
                               NSURL::fileURLWithPath(folder_.write("location", "content")));
  }
  static std::string stored(const TaskPointer& task) {
    std::string text = task->response() ? "response" : "no response";
    text += task->result() ? ", result" : ", no result";
    return text + ", " + std::to_string(task->taskResponseData()->length()) + " bytes";
  }

  const TemporaryFolder folder_;
  const std::shared_ptr<TellingLogger> logger_ = std::make_shared<TellingLogger>();
  std::vector<std::string> lines_;
};

TEST_F(ORLFURLSessionTaskOrder, LogsARequestThenKeepsItsConnectionThenResumesIt) {
  TaskPointer task;
  const ScriptedProvider provider([&](const auto& platform, const std::string& call, auto number) {
    if (call != "resume") return;
    const bool isKept = task->connection() == platform->exchange(number).task();
    lines_.emplace_back(isKept ? "resumed, connected" : "resumed");
  });
  session_ = ORLFURLSession::initWithConfiguration(nullptr);
  session_->setLogger(logger_);
  logger_->request = [&](const auto&) {
    lines_.emplace_back(task->connection() ? "logged, connected" : "logged");
  };
  const auto token = NSNotificationCenter::defaultCenter()->addObserverForName(
      "ORLFURLSessionDidResumeTaskNotification", nullptr, [&](const NSNotification& told) {
        EXPECT_EQ(told.object(), id(session_));
        EXPECT_EQ(told.userInfo()->count(), 1U);
        EXPECT_EQ(told.userInfo()->objectForKey("ORLFURLSessionNotificationUserInfoTaskKey"),
                  id(task));
        lines_.emplace_back("told in " + std::to_string(task->state()));
      });
  task = dataTask();
  task->resume();
  EXPECT_THAT(lines_, ElementsAre("logged", "resumed, connected", "told in -1"));
}

TEST_F(ORLFURLSessionTaskOrder, IsStillReadyToWhoIsToldOfItsStart) {
  const auto task = dataTask();
  int starts = 0;
  const auto token = NSNotificationCenter::defaultCenter()->addObserverForName(
      std::string(ORLFURLSessionDidResumeTaskNotification), session_, [&](const NSNotification&) {
        if (++starts > 1) return;
        task->cancel();
        task->resume();
        lines_.push_back("in " + std::to_string(task->state()));
      });
  task->resume();
  EXPECT_THAT(calls(), ElementsAre("dataTaskWithRequest: 1", "resume 1", "dataTaskWithRequest: 2",
                                   "resume 2"));
  EXPECT_THAT(lines_, ElementsAre("in 0"));
  EXPECT_EQ(task->connection(), platform()->exchange(2).task());
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateRunning);
  EXPECT_FALSE(task->canceled());
  answer(2, 200, "body");
  settle();
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateCompleted);
}

TEST_F(ORLFURLSessionTaskOrder,
       DropsBodyAndFileBeforeItLogsAFailureAndStoresItsResponseAfterwards) {
  folder_.write("file", "older");
  const auto task = download();
  logger_->error = [&](const auto& told) {
    EXPECT_EQ(told.statusCode, 200);
    lines_.push_back(stored(task) + (folder_.names().empty() ? "" : ", a file"));
  };
  task->resume();
  platform()->tellData(1, NSData(std::string_view("part")));
  EXPECT_EQ(task->taskResponseData()->length(), 4U);
  platform()->exchange(1).state->setResponse(answerOf(200));
  platform()->tellCompleted(1, urlError(NSURLErrorNetworkConnectionLost));
  settle();
  EXPECT_THAT(lines_, ElementsAre("no response, no result, 0 bytes"));
  EXPECT_EQ(stored(task), "response, no result, 0 bytes");
}

TEST_F(ORLFURLSessionTaskOrder, LogsABodyBeforeItIsTheResult) {
  const auto task = dataTask();
  logger_->response = [&](const auto&) { lines_.push_back(stored(task)); };
  task->resume();
  answer(1, 200, "body");
  settle();
  EXPECT_THAT(lines_, ElementsAre("no response, no result, 4 bytes"));
  EXPECT_EQ(task->result().as<NSMutableData>(), task->taskResponseData())
      << "the body itself, which is not copied";
}

TEST_F(ORLFURLSessionTaskOrder, KeepsABodyAndStoresNoResponseWhileItAsksForAuthentication) {
  ORLFURLSessionDelegate::Answer kept;
  session_->setDelegate(
      std::make_shared<AnsweringDelegate>([&](auto, auto answer) { kept = std::move(answer); }));
  const auto task = dataTask();
  logger_->error = [&](const ORLFURLSessionLoggedError& told) {
    lines_.push_back(told.logError ? "an error" : "no error");
    lines_.push_back(stored(task));
  };
  task->resume();
  answer(1, 401, "who are you");
  settle();
  settle();
  EXPECT_TRUE(lines_.empty());
  EXPECT_EQ(stored(task), "no response, no result, 11 bytes");
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateRunning);
  EXPECT_EQ(task->connection(), nullptr);
  const auto given = urlError(-5);
  kept(nullptr, given);
  settle();
  EXPECT_THAT(lines_, ElementsAre("no error", "no response, no result, 11 bytes"));
  EXPECT_EQ(stored(task), "response, no result, 11 bytes");
  EXPECT_EQ(ended().at(0).error, given);
}

TEST_F(ORLFURLSessionTaskOrder, ForgetsAtARetryWhyADownloadWasNotPlaced) {
  session_->setDelegate(std::make_shared<AnsweringDelegate>(
      [&](auto, const auto& answer) { answer(other_, nullptr); }));
  const auto task = download();
  task->resume();
  tellDownloaded(1, 404);
  EXPECT_NE(task->taskDestinationError(), nullptr);
  platform()->tellCompleted(1, urlError(NSURLErrorUserAuthenticationRequired));
  settle();
  settle();
  EXPECT_EQ(task->taskDestinationError(), nullptr);
  tellDownloaded(2, 200);
  platform()->tellCompleted(2);
  settle();
  EXPECT_EQ(ended().at(0).error, nullptr);
  EXPECT_EQ(folder_.read("file"), "content");
}

TEST_F(ORLFURLSessionTaskOrder, EndsWithTheHandlerAndTheRequestOfTheMomentAtWhichTheEndBegan) {
  const auto task = dataTask();
  task->resume();
  session_->delegateQueue()->setSuspended(true);
  answer(1, 200, "body");
  EXPECT_EQ(stored(task), "response, result, 4 bytes") << "stored before the handler runs";
  task->setCompletionHandler([&](const auto&, const auto&) { lines_.emplace_back("the later"); });
  task->setRequest(other_);
  session_->delegateQueue()->setSuspended(false);
  settle();
  EXPECT_EQ(ended().size(), 1U);
  EXPECT_TRUE(lines_.empty());
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateRunning) << "it has another request by now";
}

TEST_F(ORLFURLSessionTaskOrder, SendsNoRequestThatIsNotThere) {
  auto response = std::make_shared<NSURLResponse>(std::nullopt);
  ErrorPointer error = urlError(-1);
  EXPECT_TRUE(ORLFURLSession::sendRequest(nullptr, &response, &error).isNil());
  EXPECT_EQ(response, nullptr);
  EXPECT_EQ(error, nullptr);
}

TEST_F(ORLFURLSessionTaskOrder, HasNoDateAndNoErrorOfAnAnswerThatNamesNone) {
  NSInteger status = 200;
  ErrorPointer failure;
  const ScriptedProvider provider([&](const auto& platform, const std::string& call, auto number) {
    if (call != "resume") return;
    platform->exchange(number).state->setResponse(answerOf(status));
    platform->tellCompleted(number, failure);
  });
  const NSURL url = *request_->URL();
  ErrorPointer error = urlError(-7);
  EXPECT_FALSE(ORLFURLSession::fetchLastModifiedDateForContentsOfURL(url, &error));
  EXPECT_EQ(error, nullptr);
  // A status takes the place of the error of the sending.
  failure = urlError(NSURLErrorNetworkConnectionLost);
  EXPECT_FALSE(ORLFURLSession::fetchLastModifiedDateForContentsOfURL(url, &error));
  EXPECT_EQ(error, failure);
  status = 206;
  EXPECT_FALSE(ORLFURLSession::fetchLastModifiedDateForContentsOfURL(url, &error));
  EXPECT_EQ(error->code(), NSURLErrorUnknown);
  EXPECT_EQ(error->userInfo()->objectForKey("statusCode").as<NSInteger>(), 206);
}

}  // namespace
}  // namespace ORLFoundation
