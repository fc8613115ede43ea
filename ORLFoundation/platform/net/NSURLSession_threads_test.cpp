#include <ORLFoundation/platform/net/NSURLSession_testing.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <tests/support/Files.h>
#include <tests/support/NoThreads.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace {

using namespace ORLFoundation;
using orlftest::becomes;
using orlftest::Loading;
using orlftest::plainRequest;
using orlftest::RecordingDelegate;
using orlftest::TaskRecord;
using testing::ElementsAre;

std::size_t threadCount() { return orlftest::entryCount("/proc/self/task"); }

TEST(NSURLSessionThreads, CancelATaskThatWaitsAndTellsSoOnce) {
  Loading loading;
  const auto task = loading.session->dataTaskWithRequest(plainRequest("/silent"));
  task->resume();
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  task->cancel();
  task->cancel();
  ASSERT_TRUE(loading.delegate->waitForCompletions(1));
  const TaskRecord record = loading.delegate->record(1);
  EXPECT_EQ(record.code(), NSURLErrorCancelled);
  EXPECT_THAT(record.events, ElementsAre("complete"));
  EXPECT_EQ(loading.data(plainRequest("/echo")).status(), 200);
  EXPECT_EQ(loading.delegate->completions(), 2U);
}

TEST(NSURLSessionThreads, CancelWhatWasNeverResumedAndNotWhatHasEnded) {
  Loading loading;
  const auto early = loading.session->dataTaskWithRequest(plainRequest("/echo"));
  early->cancel();
  ASSERT_TRUE(loading.delegate->waitForCompletions(1));
  EXPECT_EQ(loading.delegate->record(1).code(), NSURLErrorCancelled);
  early->resume();
  const auto late = loading.session->downloadTaskWithRequest(plainRequest("/echo"));
  EXPECT_EQ(loading.run(late).code(), 0);
  late->cancel();
  EXPECT_EQ(loading.data(plainRequest("/echo")).code(), 0);
  EXPECT_EQ(loading.delegate->completions(), 3U);
}

TEST(NSURLSessionThreads, CancelWithinEachEvent) {
  class Canceller : public RecordingDelegate {
   public:
    void URLSessionDataTaskDidReceiveData(const Session& session,
                                          const std::shared_ptr<NSURLSessionDataTask>& dataTask,
                                          const NSData& data) override {
      RecordingDelegate::URLSessionDataTaskDidReceiveData(session, dataTask, data);
      dataTask->cancel();
    }
    void URLSessionDownloadTaskDidWriteData(
        const Session& session, const std::shared_ptr<NSURLSessionDownloadTask>& downloadTask,
        const NSURLSessionWrittenData& data) override {
      RecordingDelegate::URLSessionDownloadTaskDidWriteData(session, downloadTask, data);
      downloadTask->cancel();
    }
    void URLSessionTaskDidCompleteWithError(const Session& session, const Task& task,
                                            const std::shared_ptr<const NSError>& error) override {
      task->cancel();
      RecordingDelegate::URLSessionTaskDidCompleteWithError(session, task, error);
    }
  };
  const auto delegate = std::make_shared<Canceller>();
  const auto session = NSURLSession::sessionWithConfiguration(nullptr, delegate, nullptr);
  session->dataTaskWithRequest(plainRequest("/bytes/20000000"))->resume();
  session->downloadTaskWithRequest(plainRequest("/bytes/20000000"))->resume();
  ASSERT_TRUE(delegate->waitForCompletions(2));
  EXPECT_EQ(delegate->record(1).code(), NSURLErrorCancelled);
  EXPECT_LT(delegate->record(1).body.size(), 20'000'000U);
  EXPECT_EQ(delegate->record(2).code(), NSURLErrorCancelled);
  EXPECT_THAT(delegate->record(2).events, ElementsAre("written", "complete"));
  session->invalidateAndCancel();
}

void storm(const std::shared_ptr<NSOperationQueue>& queue) {
  constexpr int kThreads = 4;
  constexpr int kTasks = 60;
  const auto configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
  configuration->setHTTPMaximumConnectionsPerHost(8);
  Loading loading(configuration, queue);
  std::vector<std::thread> threads;
  for (unsigned seed = 0; seed < kThreads; ++seed)
    threads.emplace_back([&loading, seed] {
      std::minstd_rand random(seed + 1);
      const char* paths[] = {"/bytes/200000", "/late/0.01", "/drop", "/redirect/2", "/status/404"};
      for (int i = 0; i < kTasks; ++i) {
        const auto request = plainRequest(paths[random() % 5]);
        std::shared_ptr<NSURLSessionTask> task;
        if (random() % 2 == 0) {
          task = loading.session->dataTaskWithRequest(request);
        } else {
          task = loading.session->downloadTaskWithRequest(request);
        }
        task->resume();
        if (random() % 3 == 0)
          std::this_thread::sleep_for(std::chrono::microseconds(random() % 3000));
        if (random() % 3 != 0) task->cancel();
      }
    });
  for (std::thread& thread : threads) thread.join();
  ASSERT_TRUE(loading.delegate->waitForCompletions(kThreads * kTasks));
  for (NSUInteger task = 1; task <= kThreads * kTasks; ++task) {
    const TaskRecord record = loading.delegate->record(task);
    EXPECT_EQ(record.completions, 1) << task;
    EXPECT_EQ(record.events.back(), "complete");
  }
  EXPECT_EQ(loading.data(plainRequest("/echo")).status(), 200);
}

TEST(NSURLSessionThreads, EndEveryTaskOnceInAStormOfCancels) {
  storm(nullptr);
  storm(std::make_shared<NSOperationQueue>());
}

TEST(NSURLSessionThreads, HearOfTasksThoughNoDescriptorIsLeft) {
  Loading loading;
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit none{0, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  const auto inside = NSURL::URLWithString("data:,inside").value();
  std::vector<std::string> bodies;
  for (int i = 0; i < 3; ++i) {
    bodies.push_back(loading.data(inside).body);
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  const TaskRecord file = loading.download(inside);
  ::setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_THAT(bodies, ElementsAre("inside", "inside", "inside"));
  EXPECT_EQ(file.code(), NSURLErrorCannotCreateFile);
}

TEST(NSURLSessionThreads, SayThatThereIsNoThreadAndCanBeginLater) {
  std::weak_ptr<RecordingDelegate> delegate;
  {
    Loading loading;
    delegate = loading.delegate;
    const auto task = loading.session->dataTaskWithRequest(plainRequest("/echo"));
    const auto other = loading.session->dataTaskWithRequest(plainRequest("/echo"));
    {
      const orlftest::NoThreads noThreads;
      EXPECT_THROW(task->resume(), std::system_error);
      EXPECT_THROW(other->cancel(), std::system_error);
    }
    EXPECT_EQ(loading.run(task).status(), 200);
    EXPECT_EQ(loading.run(other).code(), NSURLErrorCancelled);
    EXPECT_EQ(loading.delegate->completions(), 2U);
  }
  EXPECT_TRUE(becomes([&] { return delegate.expired(); }));
}

TEST(NSURLSessionThreads, SendNothingOfTasksThatAreCancelledWhileTheyWait) {
  const auto configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
  configuration->setHTTPMaximumConnectionsPerHost(1);
  Loading loading(configuration);
  static_cast<void>(Loading().data(plainRequest("/requests")));
  std::vector<std::shared_ptr<NSURLSessionTask>> tasks;
  for (int i = 0; i < 50; ++i) {
    tasks.push_back(loading.session->dataTaskWithRequest(
        plainRequest(i == 0 ? "/silent" : "/status/201?waits")));
    tasks.back()->resume();
  }
  ASSERT_TRUE(becomes([] {
    return Loading().data(plainRequest("/requests")).body.find("/silent") != std::string::npos;
  }));
  // Those that wait first: the connection is free once the silent one is cancelled.
  for (auto task = tasks.rbegin(); task != tasks.rend(); ++task) (*task)->cancel();
  ASSERT_TRUE(loading.delegate->waitForCompletions(50));
  EXPECT_EQ(loading.data(plainRequest("/echo")).status(), 200);
  EXPECT_EQ(Loading().data(plainRequest("/requests")).body, "GET /echo");
}

TEST(NSURLSessionThreads, HoldDelegateAndSessionWhileTasksRunAndNoLonger) {
  const std::size_t threads = threadCount();
  std::weak_ptr<RecordingDelegate> delegate;
  std::weak_ptr<NSURLSession> session;
  std::weak_ptr<NSURLSessionTask> task;
  {
    const auto owned = std::make_shared<RecordingDelegate>();
    const auto made = NSURLSession::sessionWithConfiguration(nullptr, owned, nullptr);
    const auto begun = made->dataTaskWithRequest(plainRequest("/late/0.1"));
    begun->resume();
    delegate = owned;
    session = made;
    task = begun;
  }
  EXPECT_FALSE(delegate.expired());
  EXPECT_FALSE(session.expired());
  EXPECT_TRUE(becomes([&] { return delegate.expired() && session.expired() && task.expired(); }));
  EXPECT_TRUE(becomes([&] { return threadCount() <= threads; }));
}

TEST(NSURLSessionThreads, DieWithATaskThatWasNeverResumed) {
  std::weak_ptr<NSURLSession> session;
  {
    const auto made = NSURLSession::sessionWithConfiguration(nullptr, nullptr, nullptr);
    const auto task = made->dataTaskWithRequest(plainRequest("/echo"));
    session = made;
  }
  EXPECT_TRUE(session.expired());
}

TEST(NSURLSessionThreads, LoadWithoutADelegate) {
  const auto session = NSURLSession::sessionWithConfiguration(nullptr, nullptr, nullptr);
  const auto task = session->dataTaskWithRequest(plainRequest("/bytes/1000"));
  task->resume();
  const auto file = session->downloadTaskWithRequest(plainRequest("/bytes/1000"));
  file->resume();
  EXPECT_TRUE(becomes([&] {
    return task->countOfBytesReceived() == 1000 && file->countOfBytesReceived() == 1000;
  }));
}

/// Drops the last reference to its session within an event.
class Dropper : public NSURLSessionDataDelegate {
 public:
  void URLSessionTaskDidCompleteWithError(const std::shared_ptr<NSURLSession>&,
                                          const std::shared_ptr<NSURLSessionTask>&,
                                          const std::shared_ptr<const NSError>&) override {
    session_.reset();
    hasDropped_ = true;
  }
  std::shared_ptr<NSURLSession> session_;
  std::atomic<bool> hasDropped_{false};
};

TEST(NSURLSessionThreads, DieOnTheirOwnThreadAndOnAQueue) {
  for (const auto& queue :
       {std::shared_ptr<NSOperationQueue>(), std::make_shared<NSOperationQueue>()}) {
    for (int i = 0; i < 20; ++i) {
      auto delegate = std::make_shared<Dropper>();
      delegate->session_ = NSURLSession::sessionWithConfiguration(nullptr, delegate, queue);
      const std::weak_ptr<NSURLSession> session = delegate->session_;
      const std::weak_ptr<Dropper> held = delegate;
      delegate->session_->dataTaskWithRequest(plainRequest("/echo"))->resume();
      delegate.reset();
      EXPECT_TRUE(becomes([&] { return session.expired() && held.expired(); }));
    }
  }
}

TEST(NSURLSessionThreads, LetGoOfTheirQueueOnItsOwnThread) {
  for (int i = 0; i < 20; ++i) {
    auto queue = std::make_shared<NSOperationQueue>();
    auto delegate = std::make_shared<Dropper>();
    delegate->session_ = NSURLSession::sessionWithConfiguration(nullptr, delegate, queue);
    const std::weak_ptr<NSURLSession> session = delegate->session_;
    const std::weak_ptr<NSOperationQueue> held = queue;
    const auto task = delegate->session_->dataTaskWithRequest(plainRequest("/echo"));
    queue.reset();
    delegate.reset();
    task->resume();
    EXPECT_TRUE(becomes([&] { return session.expired() && held.expired(); }));
  }
}

TEST(NSURLSessionThreads, KeepManyRequestsToTheirConnections) {
  constexpr std::size_t kRequests = 600;
  const auto configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
  configuration->setHTTPMaximumConnectionsPerHost(20);
  Loading loading(configuration);
  for (std::size_t i = 0; i < kRequests; ++i)
    loading.session->dataTaskWithRequest(plainRequest("/bytes/1000"))->resume();
  ASSERT_TRUE(loading.delegate->waitForCompletions(kRequests));
  for (NSUInteger task = 1; task <= kRequests; ++task) {
    EXPECT_EQ(loading.delegate->record(task).error, nullptr);
    EXPECT_EQ(loading.delegate->record(task).body.size(), 1000U);
  }
}

}  // namespace
