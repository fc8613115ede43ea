/// One request of a session and what came of it. Tasks are made by a session and do nothing until
/// they are resumed; each runs once.
///
///     const auto task = session->dataTaskWithRequest(request);
///     task->resume();
///
/// All operations are safe on any thread.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstdint>
#include <memory>
#include <string>

namespace ORLFoundation {

class NSURLResponse;

class NSURLSessionTask : public NSObject {
 public:
  /// `taskIdentifier`  Its number in its session, from 1.
  [[nodiscard]] virtual NSUInteger taskIdentifier() const = 0;
  /// `resume`  Begins the request; a second call does nothing. The session's delegate is held until
  /// the task has completed. Raises `std::system_error` where the session gets no thread to load
  /// on; the task can be resumed later then.
  virtual void resume() = 0;
  /// `cancel`  At any moment: the task completes with `NSURLErrorCancelled` unless it has ended
  /// already. One that was never resumed completes so too.
  virtual void cancel() = 0;
  /// `response`  nil until the answer has begun. It stays when the rest of the answer fails.
  [[nodiscard]] virtual std::shared_ptr<NSURLResponse> response() const = 0;
  /// `countOfBytesReceived`  Of the body, decoded, as far as the delegate has been told.
  [[nodiscard]] virtual std::int64_t countOfBytesReceived() const = 0;
  /// `countOfBytesExpectedToReceive`  The body's length as the server tells it; -1 when it does
  /// not, and for a body that is decoded. 0 until the answer has begun.
  [[nodiscard]] virtual std::int64_t countOfBytesExpectedToReceive() const = 0;

  [[nodiscard]] std::string className() const override { return "NSURLSessionTask"; }
};

/// Its body comes to the delegate piece by piece.
class NSURLSessionDataTask : public NSURLSessionTask {
 public:
  [[nodiscard]] std::string className() const override { return "NSURLSessionDataTask"; }
};

/// Its body goes to a temporary file.
class NSURLSessionDownloadTask : public NSURLSessionTask {
 public:
  [[nodiscard]] std::string className() const override { return "NSURLSessionDownloadTask"; }
};

}  // namespace ORLFoundation
