/// A session of the platform whose events a test plays, and a logger that tells a test of its
/// calls.
#pragma once

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/net/NSURLSessionConfiguration.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <ORLFoundation/web/logging/ORLFURLSessionLogger.h>
#include <ORLFoundation/web/session/ORLFURLSession.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace orlftest {

/// What a task of the scripted platform shows.
struct ScriptedTaskState {
  std::atomic<std::int64_t> received{0}, expected{0};

  [[nodiscard]] std::shared_ptr<ORLFoundation::NSURLResponse> response() const {
    const std::lock_guard guard(lock_);
    return response_;
  }
  void setResponse(std::shared_ptr<ORLFoundation::NSURLResponse> response) {
    const std::lock_guard guard(lock_);
    response_.swap(response);
  }

 private:
  mutable std::mutex lock_;
  std::shared_ptr<ORLFoundation::NSURLResponse> response_;
};

template <class Base>
class ScriptedTask final : public Base {
 public:
  using Call = std::function<void(const char* call)>;
  ScriptedTask(ORLFoundation::NSUInteger number, std::shared_ptr<ScriptedTaskState> state,
               Call call)
      : number_(number), state_(std::move(state)), call_(std::move(call)) {}

  [[nodiscard]] ORLFoundation::NSUInteger taskIdentifier() const override { return number_; }
  void resume() override { call_("resume"); }
  void cancel() override { call_("cancel"); }
  [[nodiscard]] std::shared_ptr<ORLFoundation::NSURLResponse> response() const override {
    return state_->response();
  }
  [[nodiscard]] std::int64_t countOfBytesReceived() const override { return state_->received; }
  [[nodiscard]] std::int64_t countOfBytesExpectedToReceive() const override {
    return state_->expected;
  }

 private:
  const ORLFoundation::NSUInteger number_;
  const std::shared_ptr<ScriptedTaskState> state_;
  const Call call_;
};

/// A task of the scripted platform, under both of its faces, so that any event can be played on it.
struct ScriptedExchange {
  ORLFoundation::NSUInteger number = 0;
  std::shared_ptr<ORLFoundation::NSURLRequest> request;
  bool isDownload = false;
  std::shared_ptr<ScriptedTaskState> state = std::make_shared<ScriptedTaskState>();
  std::shared_ptr<ORLFoundation::NSURLSessionDataTask> dataTask = nullptr;
  std::shared_ptr<ORLFoundation::NSURLSessionDownloadTask> downloadTask = nullptr;

  [[nodiscard]] std::shared_ptr<ORLFoundation::NSURLSessionTask> task() const {
    if (isDownload) return downloadTask;
    return dataTask;
  }
};

class ScriptedPlatform final : public ORLFoundation::NSURLSession {
 public:
  /// A call to the platform or to one of its tasks; the number is 0 for those of the session. No
  /// lock is held.
  using Heard = std::function<void(const std::shared_ptr<ScriptedPlatform>& platform,
                                   const std::string& call, ORLFoundation::NSUInteger number)>;

  ScriptedPlatform(std::shared_ptr<ORLFoundation::NSURLSessionConfiguration> given,
                   const std::shared_ptr<ORLFoundation::NSURLSessionDelegate>& delegate,
                   std::shared_ptr<ORLFoundation::NSOperationQueue> queue, Heard heard)
      : configuration(std::move(given)),
        delegateQueue(std::move(queue)),
        delegate_(delegate),
        heard_(std::move(heard)) {}

  std::shared_ptr<ORLFoundation::NSURLSessionDataTask> dataTaskWithRequest(
      const std::shared_ptr<ORLFoundation::NSURLRequest>& request) override {
    const ScriptedExchange made = add(request, false);
    if (made.number > 0) heard_(self(), "dataTaskWithRequest:", made.number);
    return made.dataTask;
  }
  std::shared_ptr<ORLFoundation::NSURLSessionDownloadTask> downloadTaskWithRequest(
      const std::shared_ptr<ORLFoundation::NSURLRequest>& request) override {
    const ScriptedExchange made = add(request, true);
    if (made.number > 0) heard_(self(), "downloadTaskWithRequest:", made.number);
    return made.downloadTask;
  }
  void invalidateAndCancel() override { heard_(self(), "invalidateAndCancel", 0); }
  void finishTasksAndInvalidate() override { heard_(self(), "finishTasksAndInvalidate", 0); }

  /// By its number, from 1.
  [[nodiscard]] ScriptedExchange exchange(std::size_t number) const {
    const std::lock_guard guard(lock_);
    return exchanges_.at(number - 1);
  }
  [[nodiscard]] std::shared_ptr<ORLFoundation::NSURLSessionDelegate> delegate() const {
    return delegate_.lock();
  }
  void refuseTasks() { isRefusing_ = true; }

  // The events, on the calling thread.
  void tellInvalid() {
    tell<ORLFoundation::NSURLSessionDelegate>(
        [&](auto& delegate) { delegate.URLSessionDidBecomeInvalidWithError(self(), nullptr); });
  }
  void tellData(std::size_t number, const ORLFoundation::NSData& data) {
    tell<ORLFoundation::NSURLSessionDataDelegate>([&](auto& delegate) {
      delegate.URLSessionDataTaskDidReceiveData(self(), exchange(number).dataTask, data);
    });
  }
  void tellSent(std::size_t number, std::int64_t total, std::int64_t expected) {
    tell<ORLFoundation::NSURLSessionTaskDelegate>([&](auto& delegate) {
      delegate.URLSessionTaskDidSendBodyData(self(), exchange(number).task(),
                                             {.didSendBodyData = total,
                                              .totalBytesSent = total,
                                              .totalBytesExpectedToSend = expected});
    });
  }
  void tellWritten(std::size_t number, std::int64_t total, std::int64_t expected) {
    tell<ORLFoundation::NSURLSessionDownloadDelegate>([&](auto& delegate) {
      delegate.URLSessionDownloadTaskDidWriteData(self(), exchange(number).downloadTask,
                                                  {.didWriteData = total,
                                                   .totalBytesWritten = total,
                                                   .totalBytesExpectedToWrite = expected});
    });
  }
  void tellResumedAt(std::size_t number, std::int64_t offset, std::int64_t expected) {
    tell<ORLFoundation::NSURLSessionDownloadDelegate>([&](auto& delegate) {
      delegate.URLSessionDownloadTaskDidResumeAtOffset(self(), exchange(number).downloadTask,
                                                       offset, expected);
    });
  }
  void tellDownloaded(std::size_t number, const ORLFoundation::NSURL& location) {
    tell<ORLFoundation::NSURLSessionDownloadDelegate>([&](auto& delegate) {
      delegate.URLSessionDownloadTaskDidFinishDownloadingToURL(
          self(), exchange(number).downloadTask, location);
    });
  }
  void tellCompleted(std::size_t number,
                     const std::shared_ptr<const ORLFoundation::NSError>& error = nullptr) {
    tell<ORLFoundation::NSURLSessionTaskDelegate>([&](auto& delegate) {
      delegate.URLSessionTaskDidCompleteWithError(self(), exchange(number).task(), error);
    });
  }

  const std::shared_ptr<ORLFoundation::NSURLSessionConfiguration> configuration;
  const std::shared_ptr<ORLFoundation::NSOperationQueue> delegateQueue;

 private:
  [[nodiscard]] std::shared_ptr<ScriptedPlatform> self() {
    return std::static_pointer_cast<ScriptedPlatform>(shared_from_this());
  }
  template <class Delegate, class Block>
  void tell(const Block& block) {
    const auto kept = self();
    const auto delegate = std::dynamic_pointer_cast<Delegate>(delegate_.lock());
    if (delegate) block(*delegate);
  }
  ScriptedExchange add(const std::shared_ptr<ORLFoundation::NSURLRequest>& request,
                       bool isDownload) {
    using namespace ORLFoundation;
    if (!request || isRefusing_) return {};
    const std::lock_guard guard(lock_);
    const NSUInteger number = exchanges_.size() + 1;
    ScriptedExchange made{.number = number, .request = request, .isDownload = isDownload};
    const std::weak_ptr<ScriptedPlatform> platform = self();
    const auto call = [platform, number](const char* name) {
      if (const auto alive = platform.lock()) alive->heard_(alive, name, number);
    };
    made.dataTask = std::make_shared<ScriptedTask<NSURLSessionDataTask>>(number, made.state, call);
    made.downloadTask =
        std::make_shared<ScriptedTask<NSURLSessionDownloadTask>>(number, made.state, call);
    exchanges_.push_back(made);
    return made;
  }

  const std::weak_ptr<ORLFoundation::NSURLSessionDelegate> delegate_;
  const Heard heard_;
  std::atomic<bool> isRefusing_{false};
  mutable std::mutex lock_;
  std::vector<ScriptedExchange> exchanges_;
};

/// Has `sessionWithConfiguration` make scripted sessions, and keeps the last one.
class ScriptedProvider {
 public:
  explicit ScriptedProvider(ScriptedPlatform::Heard heard = [](const auto&, const auto&, auto) {})
      : provider_(ORLFoundation::NSSetURLSessionProvider,
                  [this, heard = std::move(heard)](auto configuration, auto delegate, auto queue) {
                    last_ = std::make_shared<ScriptedPlatform>(std::move(configuration), delegate,
                                                               std::move(queue), heard);
                    return last_;
                  }) {}

  [[nodiscard]] const std::shared_ptr<ScriptedPlatform>& last() const noexcept { return last_; }
  /// Lets go of it.
  std::shared_ptr<ScriptedPlatform> takeLast() { return std::move(last_); }

 private:
  std::shared_ptr<ScriptedPlatform> last_;
  const ORLFoundation::Replaced<ORLFoundation::NSURLSessionProvider> provider_;
};

/// Hands each of the four calls to a function of its own.
struct TellingLogger final : ORLFoundation::ORLFURLSessionLogger {
  std::function<void(const ORLFoundation::ORLFURLSessionLoggedRequest&)> request = [](auto&) {};
  std::function<void(const ORLFoundation::ORLFURLSessionLoggedResponse&)> response = [](auto&) {};
  std::function<void(const ORLFoundation::ORLFURLSessionLoggedDownload&)> download = [](auto&) {};
  std::function<void(const ORLFoundation::ORLFURLSessionLoggedError&)> error = [](auto&) {};

  void sessionLogRequestWithID(const ORLFoundation::ORLFURLSessionLoggedRequest& told) override {
    request(told);
  }
  void sessionLogResponse(const ORLFoundation::ORLFURLSessionLoggedResponse& told) override {
    response(told);
  }
  void sessionLogDownload(const ORLFoundation::ORLFURLSessionLoggedDownload& told) override {
    download(told);
  }
  void sessionLogError(const ORLFoundation::ORLFURLSessionLoggedError& told) override {
    error(told);
  }
};

}  // namespace orlftest
