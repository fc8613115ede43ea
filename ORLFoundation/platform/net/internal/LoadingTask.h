/// The library's own tasks: what both kinds share, and the kinds.
#pragma once

#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/net/NSURLSessionDelegate.h>
#include <ORLFoundation/platform/net/NSURLSessionTask.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>

namespace ORLFoundation::internal::net {

class LoadingSession;

/// Safe on any thread.
class LoadingTask {
 public:
  LoadingTask(std::shared_ptr<LoadingSession> session, NSUInteger identifier,
              std::shared_ptr<NSURLRequest> request);
  virtual ~LoadingTask();
  LoadingTask(const LoadingTask&) = delete;
  LoadingTask& operator=(const LoadingTask&) = delete;

  /// The task as users know it; one of the two is null.
  [[nodiscard]] virtual std::shared_ptr<NSURLSessionDataTask> dataTask() { return nullptr; }
  [[nodiscard]] virtual std::shared_ptr<NSURLSessionDownloadTask> downloadTask() { return nullptr; }
  [[nodiscard]] std::shared_ptr<NSURLSessionTask> task();

  [[nodiscard]] const std::shared_ptr<NSURLRequest>& request() const noexcept { return request_; }
  [[nodiscard]] bool isCancelled() const noexcept { return isCancelled_; }
  [[nodiscard]] std::shared_ptr<NSURLResponse> response() const;
  void setResponse(std::shared_ptr<NSURLResponse> response, std::int64_t expected);
  void setReceived(std::int64_t count) noexcept { received_ = count; }

  /// Session and delegate of a task that runs; they are held until it has ended.
  [[nodiscard]] std::pair<std::shared_ptr<LoadingSession>, std::shared_ptr<NSURLSessionDelegate>>
  holders() const;
  /// From here on `cancel` does nothing. Gives back what was held, for the caller to let go of.
  [[nodiscard]] std::pair<std::shared_ptr<LoadingSession>, std::shared_ptr<NSURLSessionDelegate>>
  end();

  // With the task itself. Each raises `std::system_error` where the session gets no thread.
  void begin(const std::shared_ptr<LoadingTask>& self);
  void stop(const std::shared_ptr<LoadingTask>& self);
  /// A task that has begun goes on.
  void stopUnlessBegun(const std::shared_ptr<LoadingTask>& self);

 protected:
  [[nodiscard]] NSUInteger identifier() const noexcept { return identifier_; }
  [[nodiscard]] std::int64_t received() const noexcept { return received_; }
  [[nodiscard]] std::int64_t expected() const noexcept { return expected_; }

 private:
  enum class State : std::uint8_t { Made, Running, Ended };

  const NSUInteger identifier_;
  const std::shared_ptr<NSURLRequest> request_;
  std::atomic<bool> isCancelled_{false};
  std::atomic<std::int64_t> received_{0};
  std::atomic<std::int64_t> expected_{0};
  mutable std::mutex lock_;
  State state_ = State::Made;
  std::shared_ptr<LoadingSession> session_;
  std::shared_ptr<NSURLSessionDelegate> delegate_;
  std::shared_ptr<NSURLResponse> response_;
};

/// A task of a kind, `NSURLSessionDataTask` or `NSURLSessionDownloadTask`.
template <class Kind>
class LoadingTaskOf : public Kind, public LoadingTask {
 public:
  using LoadingTask::LoadingTask;

  [[nodiscard]] NSUInteger taskIdentifier() const override { return identifier(); }
  void resume() override { begin(self()); }
  void cancel() override { stop(self()); }
  [[nodiscard]] std::shared_ptr<NSURLResponse> response() const override {
    return LoadingTask::response();
  }
  [[nodiscard]] std::int64_t countOfBytesReceived() const override { return received(); }
  [[nodiscard]] std::int64_t countOfBytesExpectedToReceive() const override { return expected(); }

 protected:
  [[nodiscard]] std::shared_ptr<LoadingTaskOf> self() {
    return std::static_pointer_cast<LoadingTaskOf>(this->shared_from_this());
  }
};

class LoadingDataTask final : public LoadingTaskOf<NSURLSessionDataTask> {
 public:
  using LoadingTaskOf::LoadingTaskOf;
  [[nodiscard]] std::shared_ptr<NSURLSessionDataTask> dataTask() override { return self(); }
};

class LoadingDownloadTask final : public LoadingTaskOf<NSURLSessionDownloadTask> {
 public:
  using LoadingTaskOf::LoadingTaskOf;
  [[nodiscard]] std::shared_ptr<NSURLSessionDownloadTask> downloadTask() override { return self(); }
};

}  // namespace ORLFoundation::internal::net
