#include <ORLFoundation/web/session/ORLFURLSession.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/object/NSMutableData.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <ORLFoundation/web/session/ORLFURLSessionTask_testing.h>
#include <gmock/gmock.h>

namespace ORLFoundation {
namespace {

using namespace orlftest;
using testing::ElementsAre;

class ORLFURLSessionTest : public SessionTaskTest {};

struct Ears final : NSURLSessionTaskDelegate {
  void URLSessionTaskDidCompleteWithError(const std::shared_ptr<NSURLSession>&,
                                          const std::shared_ptr<NSURLSessionTask>&,
                                          const std::shared_ptr<const NSError>&) override {
    ++completions;
  }
  int completions = 0;
};

TEST_F(ORLFURLSessionTest, MakesNoTasksOnceItIsInvalidated) {
  session_->setDelegate(std::make_shared<AnsweringDelegate>([](auto, const auto&) {}));
  session_->invalidateSessionCancelingTasks(false);
  EXPECT_TRUE(session_->sessionInvalidated());
  EXPECT_EQ(session_->delegate(), nullptr);
  const auto file = NSURL::fileURLWithPath("/nowhere/file");
  EXPECT_EQ(session_->taskWithRequest(request_, nullptr), nullptr);
  EXPECT_EQ(session_->taskWithRequestDestination(request_, file, nullptr), nullptr);
  EXPECT_EQ(session_->taskWithRequestToUpdateFile(request_, file, nullptr), nullptr);
  EXPECT_EQ(session_->dataTaskWithRequest(request_, nullptr), nullptr);
  EXPECT_EQ(session_->downloadTaskWithRequest(request_, nullptr), nullptr);
  EXPECT_THAT(calls(), ElementsAre("finishTasksAndInvalidate"));
  session_->invalidateSessionCancelingTasks(true);
  EXPECT_EQ(calls().back(), "invalidateAndCancel");
}

TEST_F(ORLFURLSessionTest, LogsADestinationThatIsNoFileAlsoWhenItIsInvalidated) {
  std::vector<std::string> lines;
  const Replaced log(NSSetLogSink, [&](std::string_view line) { lines.emplace_back(line); });
  const auto address = NSURL::URLWithString("https://example.com/file");
  EXPECT_EQ(session_->taskWithRequestToUpdateFile(request_, address, nullptr), nullptr);
  EXPECT_EQ(session_->taskWithRequestToUpdateFile(request_, std::nullopt, nullptr), nullptr);
  session_->invalidateSessionCancelingTasks(true);
  EXPECT_EQ(session_->taskWithRequestToUpdateFile(request_, address, nullptr), nullptr);
  const std::string line =
      "Condition Failed: destinationURL.isFileURL destinationURL must be a fileURL";
  EXPECT_THAT(lines, ElementsAre(line, line, line));
}

TEST_F(ORLFURLSessionTest, HoldsReceiversUntilTheirTaskIsComplete) {
  auto ears = std::make_shared<Ears>();
  const std::weak_ptr<Ears> held = ears;
  const auto task = session_->dataTaskWithRequest(request_, ears);
  EXPECT_EQ(session_->sessionTasks().at(task->taskIdentifier()), ears);
  platform()->tellData(1, NSData(std::string_view("not for it")));
  platform()->tellWritten(1, 1, 2);
  platform()->tellCompleted(1);
  EXPECT_EQ(ears->completions, 1);
  platform()->tellCompleted(1);
  EXPECT_EQ(ears->completions, 1) << "what comes after a completion is heard by nobody";
  EXPECT_TRUE(session_->sessionTasks().empty());
  ears = nullptr;
  EXPECT_TRUE(held.expired());
  EXPECT_NE(session_->downloadTaskWithRequest(request_, nullptr), nullptr);
  EXPECT_TRUE(session_->sessionTasks().empty()) << "nobody to be held";
}

TEST_F(ORLFURLSessionTest, ForgetsAllReceiversWhenThePlatformIsInvalid) {
  const auto ears = std::make_shared<Ears>();
  static_cast<void>(session_->dataTaskWithRequest(request_, ears));
  platform()->tellInvalid();
  EXPECT_TRUE(session_->sessionTasks().empty());
  platform()->tellCompleted(1);
  EXPECT_EQ(ears->completions, 0);
}

/// Events that come while one is passed on, on its own thread, are passed on within it.
TEST_F(ORLFURLSessionTest, HoldsALockOverItsTableThatItsOwnThreadTakesAgain) {
  struct Asking final : NSURLSessionTaskDelegate {
    explicit Asking(std::shared_ptr<ORLFURLSession> asked) : session(std::move(asked)) {}
    void URLSessionTaskDidSendBodyData(const std::shared_ptr<NSURLSession>& platform,
                                       const std::shared_ptr<NSURLSessionTask>& task,
                                       const NSURLSessionSentBody&) override {
      count = session->sessionTasks().size();
      session->URLSessionTaskDidCompleteWithError(platform, task, nullptr);
      std::thread([&] { hasWaited = !lookFor(std::chrono::milliseconds(20)); }).join();
    }
    /// Whether another thread sees the table within a time.
    bool lookFor(std::chrono::milliseconds time) {
      const auto seen = std::make_shared<std::atomic<bool>>(false);
      looker = std::thread([seen, kept = session] {
        static_cast<void>(kept->sessionTasks());
        *seen = true;
      });
      std::this_thread::sleep_for(time);
      return *seen;
    }
    const std::shared_ptr<ORLFURLSession> session;
    std::size_t count = 0;
    bool hasWaited = false;
    std::thread looker;
  };
  const auto asking = std::make_shared<Asking>(session_);
  static_cast<void>(session_->dataTaskWithRequest(request_, asking));
  platform()->tellSent(1, 1, 1);
  asking->looker.join();
  EXPECT_EQ(asking->count, 1U);
  EXPECT_TRUE(asking->hasWaited) << "no other thread sees the table while an event is passed on";
  EXPECT_TRUE(session_->sessionTasks().empty());
}

TEST_F(ORLFURLSessionTest, AsksUnderBothNamesOfTheOperation) {
  const auto task = dataTask();
  std::vector<NSInteger> codes;
  const auto hear = [&](const RequestPointer& request, const ErrorPointer& error) {
    EXPECT_EQ(request, nullptr);
    codes.push_back(error->code());
  };
  session_->taskDidFailAuthentication(task, hear);
  session_->sessionTaskDidFailAuthentication(task, hear);
  EXPECT_THAT(codes, ElementsAre(-1013, -1013));
  session_->setDelegate(
      std::make_shared<AnsweringDelegate>([](NSUInteger failures, const auto& answer) {
        answer(nullptr, urlError(static_cast<NSInteger>(failures)));
      }));
  session_->sessionTaskDidFailAuthentication(task, hear);
  settle();
  EXPECT_THAT(codes, ElementsAre(-1013, -1013, 0));
}

TEST_F(ORLFURLSessionTest, AsksOnItsDelegateQueueTheDelegateOfThatMoment) {
  const auto task = dataTask();
  std::vector<NSUInteger> counts;
  session_->setDelegate(
      std::make_shared<AnsweringDelegate>([&](NSUInteger failures, const auto& answer) {
        counts.push_back(failures);
        EXPECT_EQ(NSOperationQueue::currentQueue(), session_->delegateQueue());
        answer(nullptr, nullptr);
      }));
  session_->delegateQueue()->setSuspended(true);
  int answers = 0;
  session_->taskDidFailAuthentication(task, [&](const auto&, const auto&) { ++answers; });
  session_->invalidateSessionCancelingTasks(false);
  EXPECT_EQ(answers, 0);
  session_->delegateQueue()->setSuspended(false);
  settle();
  EXPECT_EQ(answers, 1) << "who was to be asked before the invalidation is asked";
  EXPECT_THAT(counts, ElementsAre(0U));
}

TEST_F(ORLFURLSessionTest, HasADelegateQueueWhateverItIsGiven) {
  const auto before = session_->delegateQueue();
  session_->setDelegateQueue(nullptr);
  ASSERT_NE(session_->delegateQueue(), nullptr);
  EXPECT_NE(session_->delegateQueue(), before);
  EXPECT_EQ(session_->delegateQueue()->maxConcurrentOperationCount(), 1);
  EXPECT_EQ(dataTask()->completionQueue(), session_->delegateQueue());
}

TEST_F(ORLFURLSessionTest, TellsNobodyWithoutALogger) {
  const auto task = dataTask();
  session_->sessionTaskLogDataRequest(task, request_);
  session_->sessionTaskLogDownloadRequest(task, request_);
  session_->sessionTaskLogData(task, NSMutableData(), 200, request_);
  session_->sessionTaskLogDownload(task, std::nullopt, 200, request_);
  session_->sessionTaskLogError(task, nullptr, 0, request_);
  EXPECT_EQ(session_->logger(), nullptr);
}

TEST_F(ORLFURLSessionTest, TellsALoggerOfARequestThatIsNotThere) {
  const auto logger = std::make_shared<TellingLogger>();
  int calls = 0;
  logger->error = [&](const ORLFURLSessionLoggedError& told) {
    EXPECT_EQ(told.session, session_);
    EXPECT_EQ(told.method, "");
    EXPECT_FALSE(told.url);
    ++calls;
  };
  session_->setLogger(logger);
  session_->sessionTaskLogError(dataTask(), nullptr, 0, nullptr);
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace ORLFoundation
