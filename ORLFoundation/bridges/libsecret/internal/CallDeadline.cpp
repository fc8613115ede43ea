#include <ORLFoundation/bridges/libsecret/internal/CallDeadline.h>

namespace ORLFoundation::internal::libsecret {

CallDeadline::CallDeadline(std::chrono::milliseconds limit)
    : end_(Clock::now() + limit), watcher_([this] { watch(); }) {}

CallDeadline::~CallDeadline() {
  {
    const std::lock_guard guard(lock_);
    isDone_ = true;
  }
  changed_.notify_one();
  watcher_.join();
}

void CallDeadline::setLimit(std::chrono::milliseconds limit) {
  {
    const std::lock_guard guard(lock_);
    end_ = Clock::now() + limit;
  }
  changed_.notify_one();
}

void CallDeadline::watch() {
  std::unique_lock guard(lock_);
  while (!isDone_) {
    if (Clock::now() >= end_) {
      guard.unlock();
      g_cancellable_cancel(cancellable_.get());
      return;
    }
    changed_.wait_until(guard, end_);
  }
}

}  // namespace ORLFoundation::internal::libsecret
