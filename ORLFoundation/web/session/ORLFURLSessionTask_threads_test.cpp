#include <ORLFoundation/web/session/ORLFURLSessionTask.h>

#include <ORLFoundation/platform/notification/NSNotificationCenter.h>
#include <ORLFoundation/platform/object/NSMutableData.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>
#include <ORLFoundation/web/session/ORLFURLSessionTask_testing.h>
#include <gmock/gmock.h>

#include <deque>
#include <system_error>
#include <thread>

namespace ORLFoundation {
namespace {

using namespace orlftest;
using testing::ElementsAre;

class ORLFURLSessionTaskThreads : public SessionTaskTest {
 protected:
  using Line = std::vector<std::string>;
  /// Writes down what befalls a task, in order.
  void note(const std::string& line) {
    const std::lock_guard guard(lock_);
    lines_.push_back(line);
  }
  std::shared_ptr<NSNotificationObserver> hearStarts(std::function<void()> then = [] {}) {
    return NSNotificationCenter::defaultCenter()->addObserverForName(
        std::string(ORLFURLSessionDidResumeTaskNotification), session_,
        [this, then = std::move(then)](const auto&) {
          note("started");
          then();
        });
  }
  [[nodiscard]] TaskPointer notingTask() {
    return session_->taskWithRequest(request_, [this](const TaskPointer& task, const auto&) {
      note("ended in " + std::to_string(task->state()));
    });
  }
  /// A platform that answers as soon as a task is resumed.
  void answerAtOnce(bool isOnOtherThread) {
    provider_at_once_ = nullptr;  // before the next, which gives back what it found
    provider_at_once_ = std::make_unique<ScriptedProvider>(
        [isOnOtherThread](const auto& platform, const std::string& call, auto number) {
          if (call != "resume") return;
          const auto answer = [platform, number] {
            platform->exchange(number).state->setResponse(answerOf(200));
            platform->tellData(number, NSData(std::string_view("body")));
            platform->tellCompleted(number);
          };
          if (!isOnOtherThread) return answer();
          std::thread(answer).join();
        });
    session_ = ORLFURLSession::initWithConfiguration(nullptr);
  }

  Line lines_;
  std::unique_ptr<ScriptedProvider> provider_at_once_;
};

TEST_F(ORLFURLSessionTaskThreads, LosesNoAnswerThatComesBeforeItsStartIsOver) {
  for (const bool isOnOtherThread : {false, true}) {
    answerAtOnce(isOnOtherThread);
    lines_.clear();
    const auto token = hearStarts();
    const auto task = notingTask();
    task->resume();
    task->waitUntilFinished();
    settle();
    EXPECT_THAT(lines_, ElementsAre("started", "ended in 0"));
    EXPECT_EQ(task->state(), ORLURLSessionTaskStateCompleted);
    EXPECT_EQ(task->result().as<NSMutableData>()->text(), "body");
    EXPECT_TRUE(session_->sessionTasks().empty());
  }
}

TEST_F(ORLFURLSessionTaskThreads, LosesNoEndThatComesAsSoonAsThePlatformHasMadeItsTask) {
  for (const bool downloads : {false, true}) {
    std::thread ending;
    provider_at_once_ = nullptr;
    provider_at_once_ = std::make_unique<ScriptedProvider>(
        [&](const auto& platform, const std::string& call, auto number) {
          if (!call.ends_with("TaskWithRequest:")) return;
          ending = std::thread([platform, number] {
            platform->tellCompleted(number, urlError(NSURLErrorCancelled));
          });
          std::this_thread::sleep_for(std::chrono::milliseconds(20));
        });
    session_ = ORLFURLSession::initWithConfiguration(nullptr);
    lines_.clear();
    const auto task = notingTask();
    if (downloads) task->setDestinationURL(NSURL::fileURLWithPath("/nowhere/file"));
    task->resume();
    ASSERT_TRUE(ending.joinable());
    ending.join();
    settle();
    EXPECT_THAT(lines_, ElementsAre("ended in 0"));
    EXPECT_EQ(task->state(), ORLURLSessionTaskStateCompleted);
    EXPECT_TRUE(session_->sessionTasks().empty());
  }
}

TEST_F(ORLFURLSessionTaskThreads, StaysReadyWhereThePlatformCannotBegin) {
  bool hasThreads = false;
  provider_at_once_ = std::make_unique<ScriptedProvider>(
      [&](const auto&, const std::string& call, auto /*number*/) {
        if (call == "resume" && !hasThreads)
          throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
      });
  session_ = ORLFURLSession::initWithConfiguration(nullptr);
  const auto token = hearStarts();
  const auto task = notingTask();
  EXPECT_THROW(task->resume(), std::system_error);
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateReady);
  EXPECT_EQ(task->connection(), nullptr);
  EXPECT_TRUE(session_->sessionTasks().empty());
  task->waitUntilFinished();
  EXPECT_TRUE(lines_.empty());
  hasThreads = true;
  task->resume();
  EXPECT_THAT(lines_, ElementsAre("started"));
  provider_at_once_->last()->tellCompleted(2);
  settle();
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateCompleted);
}

TEST_F(ORLFURLSessionTaskThreads, TakesAnAnswerThatWasHeldBackWithinTheLockOfTheTableToo) {
  answerAtOnce(false);
  std::atomic<bool> isSeen{false};
  std::thread looker;
  bool hasWaited = false;
  const auto logger = std::make_shared<TellingLogger>();
  logger->response = [&](const auto&) {
    looker = std::thread([&] {
      static_cast<void>(session_->sessionTasks());
      isSeen = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    hasWaited = !isSeen;
  };
  session_->setLogger(logger);
  notingTask()->resume();
  ASSERT_TRUE(looker.joinable());
  looker.join();
  settle();
  EXPECT_TRUE(hasWaited);
}

TEST_F(ORLFURLSessionTaskThreads, MayBeInvalidatedWhileOthersAsk) {
  std::thread other([&] {
    for (int i = 0; i < 200; ++i)
      session_->setDelegate(std::make_shared<AnsweringDelegate>([](auto, const auto&) {}));
  });
  for (int i = 0; i < 200; ++i) {
    static_cast<void>(session_->delegate());
    session_->invalidateSessionCancelingTasks(i % 2 == 0);
    EXPECT_TRUE(session_->sessionInvalidated());
    EXPECT_EQ(session_->taskWithRequest(request_, nullptr), nullptr);
  }
  other.join();
}

TEST_F(ORLFURLSessionTaskThreads, StartsOncePerResumeThatFindsItReady) {
  TaskPointer task;
  const auto token = hearStarts([&] {
    std::thread([&] {
      task->resume();
      EXPECT_EQ(task->state(), ORLURLSessionTaskStateReady);
      task->cancel();
    }).join();
  });
  task = notingTask();
  task->resume();
  EXPECT_THAT(calls(), ElementsAre("dataTaskWithRequest: 1", "resume 1"));
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateRunning);
}

TEST_F(ORLFURLSessionTaskThreads, LetsGoAllThatWait) {
  const auto task = dataTask();
  task->waitUntilFinished();
  task->resume();
  std::deque<WaitingThread> waiters;
  for (int i = 0; i < 4; ++i) waiters.emplace_back([&] { task->waitUntilFinished(); });
  for (const auto& waiter : waiters) waiter.comeToRest();
  for (const auto& waiter : waiters) EXPECT_FALSE(waiter.hasReturned());
  answer(1, 200);
  waiters.clear();  // joins
  task->waitUntilFinished();
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateCompleted);
}

TEST_F(ORLFURLSessionTaskThreads, HoldsWhoWaitsThroughRetriesAndForwards) {
  session_->setDelegate(
      std::make_shared<AnsweringDelegate>([&](NSUInteger count, const auto& answer) {
        answer(count < 3 ? other_ : nullptr, nullptr);
      }));
  const auto task = session_->taskWithRequest(request_, [&](const TaskPointer& done, const auto&) {
    if (done->request() == request_) return;
    done->forward(request_);
    done->resume();
  });
  task->resume();
  std::deque<WaitingThread> waiters;
  for (int i = 0; i < 3; ++i) waiters.emplace_back([&] { task->waitUntilFinished(); });
  const auto nobodyGoesOn = [&] {
    settle();
    settle();
    for (const auto& waiter : waiters) waiter.comeToRest();
    for (const auto& waiter : waiters)
      if (waiter.hasReturned()) return false;
    return true;
  };
  answer(1, 401);
  EXPECT_TRUE(nobodyGoesOn());
  platform()->tellCompleted(2, urlError(NSURLErrorUserAuthenticationRequired));
  EXPECT_TRUE(nobodyGoesOn());
  answer(3, 200);
  EXPECT_TRUE(nobodyGoesOn()) << "the handler has forwarded the task";
  answer(4, 200);
  waiters.clear();
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateCompleted);
}

TEST_F(ORLFURLSessionTaskThreads, LetsGoWhoWaitsForARetryThatCannotBeSent) {
  ORLFURLSessionDelegate::Answer kept;
  session_->setDelegate(
      std::make_shared<AnsweringDelegate>([&](auto, auto answer) { kept = std::move(answer); }));
  const auto task = dataTask();
  task->resume();
  WaitingThread waiter([&] { task->waitUntilFinished(); });
  answer(1, 401);
  settle();
  settle();
  waiter.comeToRest();
  EXPECT_FALSE(waiter.hasReturned());
  session_->invalidateSessionCancelingTasks(false);
  kept(other_, nullptr);
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateReady);
}

TEST_F(ORLFURLSessionTaskThreads, HoldsWhoComesWhileItsHandlerForwards) {
  std::unique_ptr<WaitingThread> waiter;
  const auto task = session_->taskWithRequest(request_, [&](const TaskPointer& done, const auto&) {
    if (done->request() == other_) return;
    done->forward(other_);
    done->waitUntilFinished();  // at once: the task is ready
    waiter = std::make_unique<WaitingThread>([done] { done->waitUntilFinished(); });
    waiter->comeToRest();
    EXPECT_FALSE(waiter->hasReturned());
    done->resume();
  });
  task->resume();
  answer(1, 200);
  settle();
  answer(2, 200);
  waiter = nullptr;
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateCompleted);
}

TEST_F(ORLFURLSessionTaskThreads, LetsGoWhoCameWhileItsHandlerForwardedItForNothing) {
  std::unique_ptr<WaitingThread> waiter;
  const auto task = session_->taskWithRequest(request_, [&](const TaskPointer& done, const auto&) {
    done->forward(other_);
    done->waitUntilFinished();  // at once, and the last one that waits clears the lock
    waiter = std::make_unique<WaitingThread>([done] { done->waitUntilFinished(); });
    waiter->comeToRest();
    EXPECT_FALSE(waiter->hasReturned());
  });
  task->resume();
  answer(1, 200);
  settle();
  waiter = nullptr;
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateReady);
}

TEST_F(ORLFURLSessionTaskThreads, GoesOnWhenOnlyItsExchangeHoldsIt) {
  const std::weak_ptr<ORLFURLSession> session = session_;
  const auto queue = session_->delegateQueue();
  auto task = notingTask();
  const std::weak_ptr<ORLFURLSessionTask> held = task;
  task->resume();
  task = nullptr;
  session_ = nullptr;
  EXPECT_FALSE(held.expired());
  answer(1, 200);
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(lines_, ElementsAre("ended in 0"));
  // What the operation holds goes with it, a moment after it has ended.
  for (int i = 0; i < 1000 && !session.expired(); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  EXPECT_TRUE(held.expired());
  EXPECT_TRUE(session.expired());
}

TEST_F(ORLFURLSessionTaskThreads, LeavesNothingOfASessionThatIsDroppedUninvalidated) {
  const std::weak_ptr<ORLFURLSession> session = session_;
  const std::weak_ptr<ScriptedPlatform> platform = provider_.takeLast();
  const std::weak_ptr<ORLFURLSessionTask> task = dataTask();
  EXPECT_TRUE(task.expired()) << "a task that nobody resumed is its owner's";
  session_ = nullptr;
  EXPECT_TRUE(session.expired());
  EXPECT_TRUE(platform.expired());
}

TEST_F(ORLFURLSessionTaskThreads, MayBeLetGoOfWithinItsEvents) {
  struct LastOwner final : NSURLSessionTaskDelegate {
    void URLSessionTaskDidCompleteWithError(const std::shared_ptr<NSURLSession>&,
                                            const std::shared_ptr<NSURLSessionTask>&,
                                            const std::shared_ptr<const NSError>&) override {
      session = nullptr;
    }
    std::shared_ptr<ORLFURLSession> session;
  };
  const auto owner = std::make_shared<LastOwner>();
  static_cast<void>(session_->dataTaskWithRequest(request_, owner));
  const std::weak_ptr<ORLFURLSession> session = session_;
  owner->session = std::move(session_);
  platform()->tellCompleted(1);
  EXPECT_TRUE(session.expired());
}

/// Many threads on few tasks: each task ends, whoever waits goes on, and nothing is left.
TEST_F(ORLFURLSessionTaskThreads, ServesManyThreadsAtATime) {
  answerAtOnce(true);
  constexpr int kThreads = 6, kTasks = 40;
  std::atomic<int> ends{0};
  for (int i = 0; i < kTasks; ++i) {
    const auto task =
        session_->taskWithRequest(request_, [&](const TaskPointer& done, const ErrorPointer&) {
          ++ends;
          if (done->request() != request_ || ends % 3 != 0) return;
          done->forward(other_);
          done->resume();
        });
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
      threads.emplace_back([&, t] {
        if (t % 2 == 0) task->resume();
        if (t == 3) task->cancel();
        if (t == 5) task->setDownloadProgressItem(std::make_shared<ORLFProgressItem>());
        static_cast<void>(task->result());
        static_cast<void>(session_->sessionTasks());
        task->waitUntilFinished();
      });
    for (auto& thread : threads) thread.join();
    task->waitUntilFinished();
    settle();
    EXPECT_EQ(task->state(), ORLURLSessionTaskStateCompleted);
  }
  EXPECT_GE(ends, kTasks);
  EXPECT_TRUE(session_->sessionTasks().empty());
}

}  // namespace
}  // namespace ORLFoundation
