#include <ORLFoundation/tasks/async/AsyncSemaphore.h>

#include <ORLFoundation/platform/base/CheckedArithmetic.h>
#include <ORLFoundation/platform/log/ORLFFatalError.h>

namespace ORLFoundation {

AsyncSemaphore::AsyncSemaphore(std::int64_t value) : value_(value) {
  if (value < 0) ORLFFatalError("AsyncSemaphore made with a negative value", __FILE__, __LINE__);
}

AsyncSemaphore::~AsyncSemaphore() {
  if (oldest_)
    ORLFFatalError("AsyncSemaphore destroyed while a task waits for a signal", __FILE__, __LINE__);
}

AsyncSemaphore::Wait AsyncSemaphore::wait() noexcept { return Wait(*this); }

AsyncSemaphore::WaitUnlessCancelled AsyncSemaphore::waitUnlessCancelled() noexcept {
  return WaitUnlessCancelled(*this);
}

bool AsyncSemaphore::signal() {
  internal::async::Continuation next;
  {
    const std::lock_guard guard(lock_);
    increase();
    if (!oldest_) return false;
    next = oldest_->continuation_;
    remove(*oldest_);
  }
  next.resume();
  return true;
}

std::int64_t AsyncSemaphore::value() const {
  const std::lock_guard guard(lock_);
  return value_;
}

std::vector<AsyncSemaphore::Parked> AsyncSemaphore::suspensions() const {
  const std::lock_guard guard(lock_);
  std::vector<Parked> parked;
  for (const Suspension* each = newest_; each; each = each->older_)
    parked.push_back({each->continuation_.context, each->state_});
  return parked;
}

bool AsyncSemaphore::takeOrPark(Suspension& suspension) {
  const std::lock_guard guard(lock_);
  decrease();
  if (value_ >= 0) return false;
  insertNewest(suspension);
  return true;
}

bool AsyncSemaphore::takeOrPark(WaitUnlessCancelled& wait) {
  const std::lock_guard guard(lock_);
  const CooperativeContext& context = *wait.continuation_.context;
  decrease();
  if (value_ >= 0) {
    if (!context.isCancelled()) return false;
    increase();
    wait.state_ = State::cancelled;
    return false;
  }
  // On a cancelled task the handler runs in here, with the lock held.
  wait.handler_.emplace(context.stopToken(), WaitUnlessCancelled::Handler{&wait});
  if (wait.state_ == State::cancelled) return false;
  wait.state_ = State::suspendedUnlessCancelled;
  insertNewest(wait);
  return true;
}

void AsyncSemaphore::cancel(WaitUnlessCancelled& wait) {
  internal::async::Continuation next;
  {
    const std::lock_guard guard(lock_);
    const bool isParked = wait.state_ == State::suspendedUnlessCancelled;
    // A signal that came first has let the task go on already: it keeps what it was given.
    if (isParked && !wait.isListed_) return;
    increase();
    wait.state_ = State::cancelled;
    if (!isParked) return;
    remove(wait);
    next = wait.continuation_;
  }
  next.resume();
}

void AsyncSemaphore::increase() {
  if (__builtin_add_overflow(value_, 1, &value_))
    ORLFFatalError("the value of an AsyncSemaphore overflows", __FILE__, __LINE__);
}

void AsyncSemaphore::decrease() {
  if (__builtin_sub_overflow(value_, 1, &value_))
    ORLFFatalError("the value of an AsyncSemaphore overflows", __FILE__, __LINE__);
}

void AsyncSemaphore::insertNewest(Suspension& suspension) noexcept {
  suspension.isListed_ = true;
  suspension.older_ = newest_;
  (newest_ ? newest_->newer_ : oldest_) = &suspension;
  newest_ = &suspension;
}

void AsyncSemaphore::remove(Suspension& suspension) noexcept {
  suspension.isListed_ = false;
  (suspension.newer_ ? suspension.newer_->older_ : newest_) = suspension.older_;
  (suspension.older_ ? suspension.older_->newer_ : oldest_) = suspension.newer_;
}

}  // namespace ORLFoundation
