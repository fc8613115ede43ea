/// What a session's task keeps, under one lock.
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/object/NSMutableData.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>
#include <ORLFoundation/web/session/ORLFURLSessionTask.h>
#include <ORLFoundation/web/session/internal/LockedFields.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace ORLFoundation::internal::session {

struct TaskFields : LockedFields {
  using Completion = ORLFURLSessionTask::Completion;
  /// A completion that came while the task was being started.
  struct Held {
    std::shared_ptr<NSURLSessionTask> task;
    std::shared_ptr<const NSError> error;
  };

  bool canceled = false;
  std::shared_ptr<NSURLRequest> request;
  std::shared_ptr<NSURLResponse> response;
  id result;
  ORLURLSessionTaskState state = ORLURLSessionTaskStateReady;
  NSUInteger failures = 0;
  std::shared_ptr<ORLFProgressItem> downloadProgressItem;
  std::shared_ptr<ORLFProgressItem> uploadProgressItem;
  std::optional<NSURL> destinationURL;
  std::shared_ptr<NSURLSessionTask> connection;
  std::shared_ptr<NSOperationQueue> completionQueue;
  Completion completionHandler;
  dispatch_semaphore_t completionLock;
  std::shared_ptr<NSMutableData> taskResponseData;
  std::optional<std::string> taskResponsePath;
  std::shared_ptr<const NSError> taskDestinationError;
  /// What the task finished with.
  std::shared_ptr<const NSError> error;

  /// Starts that have begun and not ended. They are all on one thread: one may begin another from
  /// an observer of its notification.
  std::size_t starts = 0;
  std::thread::id starter;
  std::vector<Held> held;
  /// The threads on which the completion handler is at work.
  std::vector<std::thread::id> handlers;
  /// Threads that wait on the completion lock.
  std::size_t waiters = 0;

  // With the lock held.

  [[nodiscard]] bool isStartedElsewhere() const {
    return starts > 0 && starter != std::this_thread::get_id();
  }
  /// Whether somebody who waits has to go on waiting. A task that is ready for a moment only, since
  /// it is being started, or forwarded by a handler that has not returned, is under way to all but
  /// those who do that.
  [[nodiscard]] bool isUnderway() const;
  void beginStart() {
    ++starts;
    starter = std::this_thread::get_id();
  }
};

}  // namespace ORLFoundation::internal::session
