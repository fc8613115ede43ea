/// What a session tells of its tasks, on its delegate queue, one event at a time. Of each task come
/// first the events of its body being sent, then those of the answer, data or download, then one
/// completion. Each operation does nothing unless a delegate overrides it.
///
///     class Loader : public NSObject, public NSURLSessionDataDelegate {
///       void URLSessionDataTaskDidReceiveData(const std::shared_ptr<NSURLSession>&,
///                                             const std::shared_ptr<NSURLSessionDataTask>&,
///                                             const NSData& data) override {
///         bytes_.appendData(data);
///       }
///       NSMutableData bytes_;
///     };
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstdint>
#include <functional>
#include <memory>

namespace ORLFoundation {

class NSData;
class NSError;
class NSURL;
class NSURLResponse;
class NSURLSession;
class NSURLSessionDataTask;
class NSURLSessionDownloadTask;
class NSURLSessionTask;

/// What is to become of a data task whose answer has begun.
enum NSURLSessionResponseDisposition : NSInteger {
  NSURLSessionResponseCancel = 0,
  NSURLSessionResponseAllow = 1,
};
using NSURLSessionResponseHandler = std::function<void(NSURLSessionResponseDisposition)>;

/// The labels of `URLSession:task:didSendBodyData:totalBytesSent:totalBytesExpectedToSend:`, in
/// bytes.
struct NSURLSessionSentBody {
  std::int64_t didSendBodyData = 0;  ///< Since the event before.
  std::int64_t totalBytesSent = 0;
  std::int64_t totalBytesExpectedToSend = 0;
};

/// The labels of
/// `URLSession:downloadTask:didWriteData:totalBytesWritten:totalBytesExpectedToWrite:`, in bytes.
struct NSURLSessionWrittenData {
  std::int64_t didWriteData = 0;  ///< Since the event before.
  std::int64_t totalBytesWritten = 0;
  std::int64_t totalBytesExpectedToWrite = 0;  ///< -1 when it is not known.
};

class NSURLSessionDelegate {
 public:
  NSURLSessionDelegate() = default;
  virtual ~NSURLSessionDelegate() = default;
  NSURLSessionDelegate(const NSURLSessionDelegate&) = delete;
  NSURLSessionDelegate& operator=(const NSURLSessionDelegate&) = delete;

  /// `URLSession:didBecomeInvalidWithError:`  The last event of an invalidated session, after the
  /// completions of all its tasks; the error is nil.
  virtual void URLSessionDidBecomeInvalidWithError(
      const std::shared_ptr<NSURLSession>& /*session*/,
      const std::shared_ptr<const NSError>& /*error*/) {}
};

class NSURLSessionTaskDelegate : public virtual NSURLSessionDelegate {
 public:
  /// `URLSession:task:didCompleteWithError:`  nil where the whole answer came, whatever its status
  /// says.
  virtual void URLSessionTaskDidCompleteWithError(const std::shared_ptr<NSURLSession>& /*session*/,
                                                  const std::shared_ptr<NSURLSessionTask>& /*task*/,
                                                  const std::shared_ptr<const NSError>& /*error*/) {
  }
  /// `URLSession:task:didSendBodyData:totalBytesSent:totalBytesExpectedToSend:`
  virtual void URLSessionTaskDidSendBodyData(const std::shared_ptr<NSURLSession>& /*session*/,
                                             const std::shared_ptr<NSURLSessionTask>& /*task*/,
                                             const NSURLSessionSentBody& /*body*/) {}
};

class NSURLSessionDataDelegate : public virtual NSURLSessionTaskDelegate {
 public:
  /// `URLSession:dataTask:didReceiveResponse:completionHandler:`  No data comes until the handler
  /// is called, on any thread; the default allows at once. A handler that is dropped uncalled
  /// cancels the task.
  virtual void URLSessionDataTaskDidReceiveResponse(
      const std::shared_ptr<NSURLSession>& /*session*/,
      const std::shared_ptr<NSURLSessionDataTask>& /*dataTask*/,
      const std::shared_ptr<NSURLResponse>& /*response*/,
      const NSURLSessionResponseHandler& completionHandler) {
    completionHandler(NSURLSessionResponseAllow);
  }
  /// `URLSession:dataTask:didReceiveData:`  The next bytes of the body, decoded.
  virtual void URLSessionDataTaskDidReceiveData(
      const std::shared_ptr<NSURLSession>& /*session*/,
      const std::shared_ptr<NSURLSessionDataTask>& /*dataTask*/, const NSData& /*data*/) {}
};

class NSURLSessionDownloadDelegate : public virtual NSURLSessionTaskDelegate {
 public:
  /// `URLSession:downloadTask:didFinishDownloadingToURL:`  The whole body stands in this file,
  /// which is removed when the operation returns: a delegate moves it away, or reads it, within.
  virtual void URLSessionDownloadTaskDidFinishDownloadingToURL(
      const std::shared_ptr<NSURLSession>& /*session*/,
      const std::shared_ptr<NSURLSessionDownloadTask>& /*downloadTask*/,
      const NSURL& /*location*/) {}
  /// `URLSession:downloadTask:didWriteData:totalBytesWritten:totalBytesExpectedToWrite:`
  virtual void URLSessionDownloadTaskDidWriteData(
      const std::shared_ptr<NSURLSession>& /*session*/,
      const std::shared_ptr<NSURLSessionDownloadTask>& /*downloadTask*/,
      const NSURLSessionWrittenData& /*data*/) {}
  /// `URLSession:downloadTask:didResumeAtOffset:expectedTotalBytes:`  For sessions that go on with
  /// a broken download; the library's own begins each anew.
  virtual void URLSessionDownloadTaskDidResumeAtOffset(
      const std::shared_ptr<NSURLSession>& /*session*/,
      const std::shared_ptr<NSURLSessionDownloadTask>& /*downloadTask*/,
      std::int64_t /*didResumeAtOffset*/, std::int64_t /*expectedTotalBytes*/) {}
};

}  // namespace ORLFoundation
