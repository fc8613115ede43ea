/// The library's own session.
#pragma once

#include <ORLFoundation/platform/net/NSURLSession.h>
#include <ORLFoundation/platform/net/NSURLSessionConfiguration.h>
#include <ORLFoundation/platform/net/internal/Loader.h>
#include <ORLFoundation/platform/net/internal/LoadingTask.h>

#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace ORLFoundation::internal::net {

/// Tasks hold it while they run, so that it dies without any; its loader's thread ends then.
class LoadingSession final : public NSURLSession {
 public:
  LoadingSession(const std::shared_ptr<NSURLSessionConfiguration>& configuration,
                 const std::shared_ptr<NSURLSessionDelegate>& delegate,
                 std::shared_ptr<NSOperationQueue> delegateQueue);
  ~LoadingSession() override;

  [[nodiscard]] std::shared_ptr<NSURLSessionDataTask> dataTaskWithRequest(
      const std::shared_ptr<NSURLRequest>& request) override;
  [[nodiscard]] std::shared_ptr<NSURLSessionDownloadTask> downloadTaskWithRequest(
      const std::shared_ptr<NSURLRequest>& request) override;
  void invalidateAndCancel() override;
  void finishTasksAndInvalidate() override;

  [[nodiscard]] std::shared_ptr<NSURLSessionDelegate> delegate() const { return delegate_.lock(); }
  /// The delegate as what it is besides; null for what it is not. For who holds it.
  struct DelegateKinds {
    NSURLSessionTaskDelegate* ofTasks = nullptr;
    NSURLSessionDataDelegate* ofData = nullptr;
    NSURLSessionDownloadDelegate* ofDownloads = nullptr;
  };
  [[nodiscard]] const DelegateKinds& delegateKinds() const noexcept { return kinds_; }
  [[nodiscard]] Loader& loader() const noexcept { return *loader_; }
  /// A task of this number that has ended or died.
  void forget(NSUInteger identifier);

 private:
  template <class Task>
  [[nodiscard]] std::shared_ptr<Task> makeTask(const std::shared_ptr<NSURLRequest>& request);
  /// No task is made any more. Gives those that have not ended.
  [[nodiscard]] std::vector<std::shared_ptr<LoadingTask>> close();
  /// Tells the loader, once.
  void invalidate();

  const std::weak_ptr<NSURLSessionDelegate> delegate_;
  const DelegateKinds kinds_;
  const std::shared_ptr<Loader> loader_;
  std::mutex lock_;
  bool isClosed_ = false;
  bool isInvalidated_ = false;  ///< Whether the loader knows.
  NSUInteger lastIdentifier_ = 0;
  std::map<NSUInteger, std::weak_ptr<LoadingTask>> tasks_;  ///< Those that have not ended.
};

}  // namespace ORLFoundation::internal::net
