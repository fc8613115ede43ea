/// What a session keeps, under two locks.
#pragma once

#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <ORLFoundation/web/session/ORLFURLSession.h>
#include <ORLFoundation/web/session/internal/LockedFields.h>

#include <memory>
#include <mutex>

namespace ORLFoundation::internal::session {

struct SessionFields : LockedFields {
  bool sessionInvalidated = false;
  std::shared_ptr<ORLFURLSessionDelegate> delegate;
  std::shared_ptr<NSOperationQueue> delegateQueue;
  std::shared_ptr<ORLFURLSessionLogger> logger;

  /// Held while an event is passed on, during which its receiver may come back.
  mutable std::recursive_mutex tasksLock;
  ORLFURLSession::Receivers sessionTasks;
};

}  // namespace ORLFoundation::internal::session
