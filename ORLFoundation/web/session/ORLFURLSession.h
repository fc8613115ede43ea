/// Sends requests. A session owns one session of the platform, is its delegate, and hands what it
/// hears of each exchange to the task that began it.
///
///     const auto session = ORLFURLSession::initWithConfiguration(nullptr);
///     const auto request = NSURLRequest::requestWithURL(url);
///     const auto task = session->taskWithRequest(request, nullptr);
///     task->resume();
///     task->waitUntilFinished();
///     if (const auto body = task->result().as<NSMutableData>()) show(body->text());
///     session->invalidateSessionCancelingTasks(false);
///
/// Without a session, for a thread that may block:
///
///     const auto request = NSURLRequest::requestWithURL(url);
///     std::shared_ptr<NSURLResponse> response;
///     const id body = ORLFURLSession::sendRequest(request, &response, &error);
///
/// A session lives as long as its tasks do. One that is dropped without being invalidated leaves
/// nothing behind. Everything is safe on any thread.
#pragma once

#include <ORLFoundation/platform/net/NSURLSession.h>
#include <ORLFoundation/platform/value/NSDate.h>
#include <ORLFoundation/web/session/ORLFURLSessionDelegate.h>
#include <ORLFoundation/web/session/ORLFURLSessionTask.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

class NSURLSessionConfiguration;
class ORLFURLSessionLogger;

namespace internal::session {
struct SessionFields;
}  // namespace internal::session

/// Posted by `resume` with the session as its object and the task under the key.
inline constexpr std::string_view ORLFURLSessionDidResumeTaskNotification =
    "ORLFURLSessionDidResumeTaskNotification";
inline constexpr std::string_view ORLFURLSessionNotificationUserInfoTaskKey =
    "ORLFURLSessionNotificationUserInfoTaskKey";

/// Declared for callers; nothing here raises it.
enum class URLSessionError : std::uint8_t { invalidated };

class ORLFURLSession : public NSObject,
                       public NSURLSessionDataDelegate,
                       public NSURLSessionDownloadDelegate {
  struct Passkey {};

 public:
  using Completion = ORLFURLSessionTask::Completion;
  /// Who receives the events of a platform's task. Those of data and of downloads go to a receiver
  /// that is a delegate of theirs too.
  using Receiver = std::shared_ptr<NSURLSessionTaskDelegate>;
  using Receivers = std::map<NSUInteger, Receiver>;

  /// `initWithConfiguration:delegate:delegateQueue:`  null for the configuration is the default
  /// one, for the queue a new one that runs one operation at a time.
  [[nodiscard]] static std::shared_ptr<ORLFURLSession> initWithConfiguration(
      std::shared_ptr<NSURLSessionConfiguration> configuration,
      std::shared_ptr<ORLFURLSessionDelegate> delegate = nullptr,
      std::shared_ptr<NSOperationQueue> delegateQueue = nullptr);
  ORLFURLSession(Passkey passkey, std::shared_ptr<ORLFURLSessionDelegate> delegate,
                 std::shared_ptr<NSOperationQueue> delegateQueue);
  ~ORLFURLSession() override;

  /// `sendRequest:returningResponse:error:`  Sends it in a session of its own, of the request's
  /// cache policy and timeout, and blocks until it has ended. The result is that of a task; both
  /// places are filled where they are given, the error's with null for a success.
  static id sendRequest(const std::shared_ptr<NSURLRequest>& request,
                        std::shared_ptr<NSURLResponse>* returningResponse = nullptr,
                        NSErrorSlot error = nullptr);
  /// `fetchLastModifiedDateForContentsOfURL:error:`  Of a file its modification date. Else what the
  /// server answers to HEAD within 5 seconds: nil with the code -1100 for 404, with -1 for another
  /// status than 200, and nil without an error for an answer that names no date. Blocks.
  static std::optional<NSDate> fetchLastModifiedDateForContentsOfURL(const NSURL& url,
                                                                     NSErrorSlot error = nullptr);

  /// `invalidateSessionCancelingTasks:`  Ends the session for good, at once or when its tasks have
  /// ended. It makes no tasks any more and has no delegate.
  void invalidateSessionCancelingTasks(bool cancelingTasks);

  /// `taskWithRequest:completion:`, `taskWithRequest:destination:completion:`  A task that has not
  /// started; null once the session is invalidated. nil for the destination is none.
  [[nodiscard]] std::shared_ptr<ORLFURLSessionTask> taskWithRequest(
      const std::shared_ptr<NSURLRequest>& request, Completion completion);
  [[nodiscard]] std::shared_ptr<ORLFURLSessionTask> taskWithRequestDestination(
      const std::shared_ptr<NSURLRequest>& request, std::optional<NSURL> destination,
      Completion completion);
  /// `taskWithRequest:toUpdateFile:completion:`  Asks with HEAD first, and downloads only where the
  /// server's date is that of the file or later. A file that is not there is downloaded; one that
  /// is current, or whose date the server does not name, is the result as it stands. null, with a
  /// failed condition logged, for what is no file address.
  [[nodiscard]] std::shared_ptr<ORLFURLSessionTask> taskWithRequestToUpdateFile(
      const std::shared_ptr<NSURLRequest>& request, const std::optional<NSURL>& toUpdateFile,
      Completion completion);
  /// `dataTaskWithRequest:delegate:`, `downloadTaskWithRequest:delegate:`  A task of the platform
  /// whose events go to the delegate, which is held until its completion; keep the session until
  /// then. null once the session is invalidated. null for the delegate leaves the events unheard.
  [[nodiscard]] std::shared_ptr<NSURLSessionDataTask> dataTaskWithRequest(
      const std::shared_ptr<NSURLRequest>& request, const Receiver& delegate);
  [[nodiscard]] std::shared_ptr<NSURLSessionDownloadTask> downloadTaskWithRequest(
      const std::shared_ptr<NSURLRequest>& request, const Receiver& delegate);

  /// `sessionTask:didFailAuthentication:`, `task:didFailAuthentication:`  Asks the delegate, on the
  /// delegate queue. Without one that answers the callback is called at once, with null and the
  /// code -1013. Both are the same.
  void sessionTaskDidFailAuthentication(const std::shared_ptr<ORLFURLSessionTask>& task,
                                        ORLFURLSessionDelegate::Answer callback);
  void taskDidFailAuthentication(const std::shared_ptr<ORLFURLSessionTask>& task,
                                 ORLFURLSessionDelegate::Answer callback);
  /// `uniqueIDForTask:`  "0x55d0c8-0x55d1f0": session and task by their addresses.
  [[nodiscard]] std::string uniqueIDForTask(const std::shared_ptr<ORLFURLSessionTask>& task) const;

  /// `sessionTask:logDataRequest:` and its siblings tell the logger; nothing without one. Bodies
  /// that are no UTF-8 are nil to it.
  void sessionTaskLogDataRequest(const std::shared_ptr<ORLFURLSessionTask>& task,
                                 const std::shared_ptr<NSURLRequest>& logDataRequest);
  /// `sessionTask:logData:statusCode:forRequest:`
  void sessionTaskLogData(const std::shared_ptr<ORLFURLSessionTask>& task,
                          const NSMutableData& logData, std::int64_t statusCode,
                          const std::shared_ptr<NSURLRequest>& forRequest);
  /// `sessionTask:logDownloadRequest:`
  void sessionTaskLogDownloadRequest(const std::shared_ptr<ORLFURLSessionTask>& task,
                                     const std::shared_ptr<NSURLRequest>& logDownloadRequest);
  /// `sessionTask:logDownload:statusCode:forRequest:`
  void sessionTaskLogDownload(const std::shared_ptr<ORLFURLSessionTask>& task,
                              const std::optional<NSURL>& logDownload, std::int64_t statusCode,
                              const std::shared_ptr<NSURLRequest>& forRequest);
  /// `sessionTask:logError:statusCode:forRequest:`
  void sessionTaskLogError(const std::shared_ptr<ORLFURLSessionTask>& task,
                           const std::shared_ptr<const NSError>& logError, std::int64_t statusCode,
                           const std::shared_ptr<NSURLRequest>& forRequest);

  [[nodiscard]] bool sessionInvalidated() const;
  /// `delegate`  Held; null after invalidation.
  [[nodiscard]] std::shared_ptr<ORLFURLSessionDelegate> delegate() const;
  void setDelegate(std::shared_ptr<ORLFURLSessionDelegate> value);
  /// `delegateQueue`  Where the delegate is asked and, unless a task has another, handlers run.
  /// null is replaced by a new queue that runs one operation at a time.
  [[nodiscard]] std::shared_ptr<NSOperationQueue> delegateQueue() const;
  void setDelegateQueue(std::shared_ptr<NSOperationQueue> value);
  [[nodiscard]] std::shared_ptr<ORLFURLSessionLogger> logger() const;
  void setLogger(std::shared_ptr<ORLFURLSessionLogger> value);
  /// `session`  The platform's.
  [[nodiscard]] const std::shared_ptr<NSURLSession>& session() const noexcept { return session_; }
  /// `sessionTasks`  Of this moment: who receives the events of which of the platform's tasks.
  [[nodiscard]] Receivers sessionTasks() const;

  // What the platform tells, on a serial queue of its own. Each is passed on within the recursive
  // lock of the table of tasks, so that a receiver must not wait there for another thread's event.
  void URLSessionDidBecomeInvalidWithError(const std::shared_ptr<NSURLSession>& session,
                                           const std::shared_ptr<const NSError>& error) override;
  void URLSessionTaskDidCompleteWithError(const std::shared_ptr<NSURLSession>& session,
                                          const std::shared_ptr<NSURLSessionTask>& task,
                                          const std::shared_ptr<const NSError>& error) override;
  void URLSessionTaskDidSendBodyData(const std::shared_ptr<NSURLSession>& session,
                                     const std::shared_ptr<NSURLSessionTask>& task,
                                     const NSURLSessionSentBody& body) override;
  void URLSessionDataTaskDidReceiveData(const std::shared_ptr<NSURLSession>& session,
                                        const std::shared_ptr<NSURLSessionDataTask>& dataTask,
                                        const NSData& data) override;
  void URLSessionDownloadTaskDidFinishDownloadingToURL(
      const std::shared_ptr<NSURLSession>& session,
      const std::shared_ptr<NSURLSessionDownloadTask>& downloadTask,
      const NSURL& location) override;
  void URLSessionDownloadTaskDidWriteData(
      const std::shared_ptr<NSURLSession>& session,
      const std::shared_ptr<NSURLSessionDownloadTask>& downloadTask,
      const NSURLSessionWrittenData& data) override;
  void URLSessionDownloadTaskDidResumeAtOffset(
      const std::shared_ptr<NSURLSession>& session,
      const std::shared_ptr<NSURLSessionDownloadTask>& downloadTask, std::int64_t didResumeAtOffset,
      std::int64_t expectedTotalBytes) override;

  [[nodiscard]] std::string className() const override { return "ORLFURLSession"; }

 private:
  friend class ORLFURLSessionTask;
  using Fields = internal::session::SessionFields;

  [[nodiscard]] std::shared_ptr<ORLFURLSession> self();
  void addReceiver(const NSURLSessionTask& task, const Receiver& receiver);
  /// Takes it out of the table; null where it is not in it.
  Receiver takeReceiver(const NSURLSessionTask& task);
  /// Calls the block with the receiver of a task's events, within the lock.
  template <class Delegate, class Block>
  void route(const std::shared_ptr<NSURLSessionTask>& task, const Block& block);
  /// The same for a block that has its receiver.
  void performRouted(const std::function<void()>& block);
  void logRequest(const std::shared_ptr<ORLFURLSessionTask>& task,
                  const std::shared_ptr<NSURLRequest>& request);

  std::shared_ptr<NSURLSession> session_;
  const std::unique_ptr<Fields> fields_;
};

}  // namespace ORLFoundation
