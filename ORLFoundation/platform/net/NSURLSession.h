/// Loads what stands at addresses: http, https, file and data. A session makes tasks, runs any
/// number of them side by side over connections that it keeps, and tells its delegate of them.
///
///     const auto session = NSURLSession::sessionWithConfiguration(nullptr, loader, nullptr);
///     session->dataTaskWithRequest(NSURLRequest::requestWithURL(url))->resume();
///     session->finishTasksAndInvalidate();   // the loader hears when all is done
///
/// Bodies in gzip and deflate come decoded, unless a request names encodings itself; one that is
/// damaged or cut off ends its task with `NSURLErrorCannotDecodeRawData`, one in another encoding
/// with `NSURLErrorCannotDecodeContentData`.
///
/// All operations are safe on any thread. Tests, and hosts with a way of their own to load, put
/// their sessions in place of the library's.
#pragma once

#include <ORLFoundation/platform/net/NSURLSessionDelegate.h>
#include <ORLFoundation/platform/net/NSURLSessionTask.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <functional>
#include <memory>
#include <string>

namespace ORLFoundation {

class NSOperationQueue;
class NSURLRequest;
class NSURLSessionConfiguration;

class NSURLSession : public NSObject {
 public:
  /// `sessionWithConfiguration:delegate:delegateQueue:`  nil for the configuration is the default
  /// one, nil for the queue a serial one of the session's own; one that is given runs one operation
  /// at a time. null only where a provider that is installed gives none. The delegate is held while
  /// tasks run and until invalidation is told, and by nothing else of the session's: whoever drops
  /// delegate and session without invalidating leaves nothing behind.
  [[nodiscard]] static std::shared_ptr<NSURLSession> sessionWithConfiguration(
      std::shared_ptr<NSURLSessionConfiguration> configuration,
      std::shared_ptr<NSURLSessionDelegate> delegate,
      std::shared_ptr<NSOperationQueue> delegateQueue);

  /// `dataTaskWithRequest:`  nil for a session that was invalidated, and for a nil request. The
  /// request is copied.
  [[nodiscard]] virtual std::shared_ptr<NSURLSessionDataTask> dataTaskWithRequest(
      const std::shared_ptr<NSURLRequest>& request) = 0;
  /// `downloadTaskWithRequest:`  The same.
  [[nodiscard]] virtual std::shared_ptr<NSURLSessionDownloadTask> downloadTaskWithRequest(
      const std::shared_ptr<NSURLRequest>& request) = 0;
  /// `invalidateAndCancel`  Cancels all tasks.
  virtual void invalidateAndCancel() = 0;
  /// `finishTasksAndInvalidate`  Lets running tasks end; cancels those that were never resumed.
  virtual void finishTasksAndInvalidate() = 0;

  [[nodiscard]] std::string className() const override { return "NSURLSession"; }
};

/// Makes the sessions that `sessionWithConfiguration` gives, of its three arguments as they stand.
/// Where it gives null, the library's own session serves.
using NSURLSessionProvider = std::function<std::shared_ptr<NSURLSession>(
    std::shared_ptr<NSURLSessionConfiguration> configuration,
    std::shared_ptr<NSURLSessionDelegate> delegate,
    std::shared_ptr<NSOperationQueue> delegateQueue)>;

/// Replaces the provider for the whole process and gives back the one before; an empty one stands
/// for the library's own. Any thread.
NSURLSessionProvider NSSetURLSessionProvider(NSURLSessionProvider provider);

}  // namespace ORLFoundation
