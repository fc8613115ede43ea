
#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>

#include <ORLFoundation/platform/dispatch/NSMonotonicClock.h>
#include <ORLFoundation/platform/log/ORLFFatalError.h>

#include <algorithm>
#include <chrono>

namespace ORLFoundation {
namespace {

/// How often a wait looks at a clock that is not the system's.
constexpr std::int64_t kLookNanoseconds = 1'000'000;

/// A hold of its own: the owner may let go of a semaphore once it is signalled or taken.
dispatch_semaphore_t held(const dispatch_semaphore_t& semaphore) {
  if (!semaphore) ORLFFatalError("a semaphore that is nil", __FILE__, __LINE__);
  return semaphore;
}

}  // namespace

bool DispatchSemaphore::waitUntil(dispatch_time_t timeout) {
  std::unique_lock guard(lock_);
  if (value_ == 0 && timeout == DISPATCH_TIME_NOW) return false;
  ++waiting_;
  const auto hasCount = [this] { return value_ > 0; };
  const std::int64_t due = internal::dispatch::instantOf(timeout);
  if (due == internal::dispatch::kNever) hasCount_.wait(guard, hasCount);
  while (value_ == 0) {
    const std::int64_t left = due - NSMonotonicClock::now();
    if (left <= 0) break;
    const std::int64_t span =
        NSMonotonicClock::isSystemClock() ? left : std::min(left, kLookNanoseconds);
    hasCount_.wait_for(guard, std::chrono::nanoseconds(span), hasCount);
  }
  --waiting_;
  if (value_ == 0) return false;
  --value_;
  return true;
}

bool DispatchSemaphore::signal() {
  const std::lock_guard guard(lock_);
  if (__builtin_add_overflow(value_, 1, &value_))
    ORLFFatalError("the count of a semaphore overflows", __FILE__, __LINE__);
  hasCount_.notify_one();
  return value_ <= waiting_;
}

dispatch_semaphore_t dispatch_semaphore_create(std::int64_t value) {
  return value < 0 ? nullptr : std::make_shared<DispatchSemaphore>(value);
}

std::int64_t dispatch_semaphore_wait(const dispatch_semaphore_t& semaphore,
                                     dispatch_time_t timeout) {
  return held(semaphore)->waitUntil(timeout) ? 0 : 1;
}

std::int64_t dispatch_semaphore_signal(const dispatch_semaphore_t& semaphore) {
  return held(semaphore)->signal() ? 1 : 0;
}

}  // namespace ORLFoundation
