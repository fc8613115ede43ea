/// One logical request of a session. It may pass through several exchanges with a server: after a
/// refusal for want of authentication a new request takes its place, and the completion handler may
/// forward the task to another request.
///
///     const auto task = session->taskWithRequest(
///         request, [](const std::shared_ptr<ORLFURLSessionTask>& done,
///                     const std::shared_ptr<const NSError>& error) {
///           if (!error) show(done->result().as<NSMutableData>()->text());
///         });
///     task->resume();
///
/// Any status but 401 is a success here, of a download any but 200 a failure. A task is made with
/// `std::make_shared`. Everything is safe on any thread.
#pragma once

#include <ORLFoundation/platform/net/NSURLSessionDelegate.h>
#include <ORLFoundation/platform/net/NSURLSessionTask.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/tasks/async/ORLFAsyncTask.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace ORLFoundation {

class NSMutableData;
class NSOperationQueue;
class NSURLRequest;
class NSURLResponse;
class ORLFProgressItem;
class ORLFURLSession;

namespace internal::session {
struct TaskFields;
}  // namespace internal::session

/// Where a task stands. 1 is no state.
enum ORLURLSessionTaskState : std::int64_t {
  ORLURLSessionTaskStateReady = -1,     ///< Built or forwarded: `resume` may start it.
  ORLURLSessionTaskStateRunning = 0,    ///< An exchange, or the completion handler, is under way.
  ORLURLSessionTaskStateCanceling = 2,  ///< Cancelled; the end of the exchange is awaited.
  ORLURLSessionTaskStateCompleted = 3,  ///< Finished, for good.
};

class ORLFURLSessionTask : public NSObject,
                           public ORLFAsyncTask,
                           public NSURLSessionDataDelegate,
                           public NSURLSessionDownloadDelegate {
 public:
  /// Takes the task, from which the result is read, and the error, null for a success.
  using Completion = std::function<void(const std::shared_ptr<ORLFURLSessionTask>& task,
                                        const std::shared_ptr<const NSError>& error)>;

  /// `initWithSession:request:completion:`, `initWithSession:request:destination:completion:`  With
  /// a destination the task downloads to that file. nil for the completion is taken.
  ORLFURLSessionTask(std::shared_ptr<ORLFURLSession> session,
                     const std::shared_ptr<NSURLRequest>& request, Completion completion);
  ORLFURLSessionTask(std::shared_ptr<ORLFURLSession> session,
                     const std::shared_ptr<NSURLRequest>& request, std::optional<NSURL> destination,
                     Completion completion);
  ~ORLFURLSessionTask() override;

  /// `resume`  Starts a task that is ready. It stays ready where its session was invalidated. The
  /// notification is posted before the state is running, and no answer is taken before that. What
  /// the platform's task raises where there is no thread to load on goes to the caller, and the
  /// task stays ready.
  void resume() override;
  /// `cancel`  Only for a running task, which then ends as any other, with what the platform tells
  /// of it. A task whose handler is at work is cancelled by name alone.
  void cancel() override;
  /// `waitUntilFinished`  Blocks while the task is running or cancelled, and through retries and
  /// forwards that are resumed before the handler returns. At once for one that is ready or has
  /// finished. Not for the completion queue, where it would wait for itself.
  void waitUntilFinished() override;
  /// `canceled`
  [[nodiscard]] bool canceled() const override;

  /// `forward:download:completion:`  Has a running task go on with another request, destination and
  /// handler, as soon as it is resumed; for completion handlers. A task that is not running logs a
  /// failed condition and stays as it is. A task that is forwarded to its very request counts as
  /// finished when the handler returns.
  void forwardDownload(const std::shared_ptr<NSURLRequest>& request, std::optional<NSURL> download,
                       Completion completion);
  /// `forward:completion:`  The same without a destination and with the present handler: the one
  /// given is ignored, which is required.
  void forwardCompletion(const std::shared_ptr<NSURLRequest>& request,
                         const Completion& completion);
  /// `forward:`
  void forward(const std::shared_ptr<NSURLRequest>& request);

  /// `processTaskResponse:error:`  Judges how an exchange ended, and logs it.
  void processTaskResponse(const std::shared_ptr<NSURLResponse>& response,
                           const std::shared_ptr<const NSError>& error);
  /// `endWithResult:response:error:`  Keeps both, and calls the handler on the completion queue.
  void endWithResult(id result, std::shared_ptr<NSURLResponse> response,
                     std::shared_ptr<const NSError> error);

  [[nodiscard]] const std::shared_ptr<ORLFURLSession>& session() const noexcept { return session_; }
  [[nodiscard]] ORLURLSessionTaskState state() const;
  /// `request`  The one in force. Kept as its copy, which for an `NSURLRequest` is itself.
  [[nodiscard]] std::shared_ptr<NSURLRequest> request() const;
  void setRequest(const std::shared_ptr<NSURLRequest>& value);
  /// `response`  The last one.
  [[nodiscard]] std::shared_ptr<NSURLResponse> response() const;
  void setResponse(std::shared_ptr<NSURLResponse> value);
  /// `result`  The body as an `NSMutableData`, or the `NSURL` of the downloaded file; nil for an
  /// empty body and after a failure.
  [[nodiscard]] id result() const;
  void setResult(id value);
  /// `failures`  How often authentication failed, from the first request on.
  [[nodiscard]] NSUInteger failures() const;
  /// `downloadProgressItem`, `uploadProgressItem`  Told of bytes and their expected number.
  [[nodiscard]] std::shared_ptr<ORLFProgressItem> downloadProgressItem() const;
  void setDownloadProgressItem(std::shared_ptr<ORLFProgressItem> value);
  [[nodiscard]] std::shared_ptr<ORLFProgressItem> uploadProgressItem() const;
  void setUploadProgressItem(std::shared_ptr<ORLFProgressItem> value);
  /// `destinationURL`  nil for a task whose body is kept in memory.
  [[nodiscard]] std::optional<NSURL> destinationURL() const;
  void setDestinationURL(std::optional<NSURL> value);
  /// `connection`  The platform's task that runs; null between two of them.
  [[nodiscard]] std::shared_ptr<NSURLSessionTask> connection() const;
  /// `completionQueue`  The session's delegate queue, until another is set. null is replaced, when
  /// it is read, by a new queue that runs one operation at a time.
  [[nodiscard]] std::shared_ptr<NSOperationQueue> completionQueue() const;
  void setCompletionQueue(std::shared_ptr<NSOperationQueue> value);
  /// `completionHandler`  One that is set when the task has finished is called at once, on the
  /// completion queue.
  [[nodiscard]] Completion completionHandler() const;
  void setCompletionHandler(Completion value);
  /// `taskResponseData`  The body so far. Made at first need.
  [[nodiscard]] std::shared_ptr<NSMutableData> taskResponseData();
  /// `taskResponsePath`  Kept for callers; `resume` clears it.
  [[nodiscard]] std::optional<std::string> taskResponsePath() const;
  void setTaskResponsePath(std::optional<std::string> value);
  /// `taskDestinationError`  Why a download did not come to its place.
  [[nodiscard]] std::shared_ptr<const NSError> taskDestinationError() const;

  // What the session passes on of the task's exchange, under the lock of its table of tasks.
  void URLSessionTaskDidCompleteWithError(const std::shared_ptr<NSURLSession>& session,
                                          const std::shared_ptr<NSURLSessionTask>& task,
                                          const std::shared_ptr<const NSError>& error) override;
  void URLSessionTaskDidSendBodyData(const std::shared_ptr<NSURLSession>& session,
                                     const std::shared_ptr<NSURLSessionTask>& task,
                                     const NSURLSessionSentBody& body) override;
  /// `URLSession:dataTask:didReceiveResponse:completionHandler:`  For direct callers: the session
  /// does not pass it on. Begins the body anew and allows.
  void URLSessionDataTaskDidReceiveResponse(
      const std::shared_ptr<NSURLSession>& session,
      const std::shared_ptr<NSURLSessionDataTask>& dataTask,
      const std::shared_ptr<NSURLResponse>& response,
      const NSURLSessionResponseHandler& completionHandler) override;
  void URLSessionDataTaskDidReceiveData(const std::shared_ptr<NSURLSession>& session,
                                        const std::shared_ptr<NSURLSessionDataTask>& dataTask,
                                        const NSData& data) override;
  /// `URLSession:downloadTask:didFinishDownloadingToURL:`  Puts the file at the destination, whose
  /// address becomes the one under which it then stands. Of another status than 200 nothing is
  /// placed. Failures are told with the completion.
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

  [[nodiscard]] std::string className() const override { return "ORLFURLSessionTask"; }
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 private:
  using Fields = internal::session::TaskFields;
  /// What an end takes as it stands when it begins.
  struct Ending;

  [[nodiscard]] std::shared_ptr<ORLFURLSessionTask> self();
  void clearOutcome();
  void start();
  void endStart(bool isRunning);
  void complete(const std::shared_ptr<NSURLSessionTask>& task,
                const std::shared_ptr<const NSError>& error);
  void succeed(const std::shared_ptr<NSURLResponse>& response,
               const std::shared_ptr<const NSError>& error);
  void fail(const std::shared_ptr<NSURLResponse>& response,
            const std::shared_ptr<const NSError>& error);
  void askForAuthentication(const std::shared_ptr<NSURLResponse>& response,
                            const std::shared_ptr<const NSError>& error);
  void retry(const std::shared_ptr<NSURLRequest>& request);
  void end(const Ending& ending);
  void updateDownload(std::int64_t value, std::int64_t max);

  const std::shared_ptr<ORLFURLSession> session_;
  const std::unique_ptr<Fields> fields_;
};

}  // namespace ORLFoundation
