#include <ORLFoundation/tasks/async/ORLFAsyncTaskBase.h>

#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>

#include <memory>

namespace ORLFoundation {

void ORLFAsyncTaskBase::main() {}

void ORLFAsyncTaskBase::resume() {
  const std::lock_guard guard(lock_);
  if (state_ != notStarted) return;
  state_ = running;
  static_cast<void>(completionLock());
  const auto self = std::static_pointer_cast<ORLFAsyncTaskBase>(receiverOrReference());
  dispatch_async(dispatch_get_global_queue(QOS_CLASS_USER_INITIATED, 0), [self] { self->run(); });
}

void ORLFAsyncTaskBase::cancel() {
  const std::lock_guard guard(lock_);
  if (state_ != running) return;
  state_ = cancelledWhileRunning;
  canceled_ = true;
}

void ORLFAsyncTaskBase::waitUntilFinished() {
  dispatch_semaphore_t completed;
  {
    const std::lock_guard guard(lock_);
    if (state_ == finished) return;
    completed = completionLock();
  }
  dispatch_semaphore_wait(completed, DISPATCH_TIME_FOREVER);
}

bool ORLFAsyncTaskBase::canceled() const {
  const std::lock_guard guard(lock_);
  return canceled_;
}

std::int64_t ORLFAsyncTaskBase::state() const {
  const std::lock_guard guard(lock_);
  return state_;
}

const dispatch_semaphore_t& ORLFAsyncTaskBase::completionLock() {
  const std::lock_guard guard(lock_);
  if (!completionLock_) completionLock_ = dispatch_semaphore_create(0);
  return completionLock_;
}

void ORLFAsyncTaskBase::run() {
  main();
  const std::lock_guard guard(lock_);
  state_ = finished;
  dispatch_semaphore_signal(completionLock_);
}

const NSKeyTable& ORLFAsyncTaskBase::keyTable() const {
  static const NSKeyTable table(NSObject::keyTable(),
                                {
                                    NSKey::readOnly<&ORLFAsyncTaskBase::canceled>("canceled"),
                                    NSKey::readOnly<&ORLFAsyncTaskBase::state>("state"),
                                });
  return table;
}

}  // namespace ORLFoundation
