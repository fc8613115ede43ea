/// A counting semaphore for threads.
///
///     const auto done = dispatch_semaphore_create(0);
///     dispatch_async(queue, [done] { dispatch_semaphore_signal(done); });
///     dispatch_semaphore_wait(done, DISPATCH_TIME_FOREVER);
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_time.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

namespace ORLFoundation {

/// What `dispatch_semaphore_t` points to. Use the functions below.
class DispatchSemaphore final : public NSObject {
 public:
  explicit DispatchSemaphore(std::int64_t value) : value_(value) {}

  [[nodiscard]] bool waitUntil(dispatch_time_t timeout);
  bool signal();

  [[nodiscard]] std::string className() const override { return "DispatchSemaphore"; }

 private:
  std::mutex lock_;
  std::condition_variable hasCount_;
  std::int64_t value_;  // Signals that nobody has taken.
  std::int64_t waiting_ = 0;
};

/// A semaphore; nil where there is none.
using dispatch_semaphore_t = std::shared_ptr<DispatchSemaphore>;

/// A semaphore with a first count; null for one below 0.
[[nodiscard]] dispatch_semaphore_t dispatch_semaphore_create(std::int64_t value);
/// Takes one from the count, and waits for it while there is none. 0 when it was taken, another
/// number when the time came first; `DISPATCH_TIME_NOW` does not wait. A thread that waits serves
/// nothing: neither the main queue nor its run loop.
std::int64_t dispatch_semaphore_wait(const dispatch_semaphore_t& semaphore,
                                     dispatch_time_t timeout);
/// Adds one. Other than 0 when that wakes a thread. A count past 64 bits is a fatal error.
std::int64_t dispatch_semaphore_signal(const dispatch_semaphore_t& semaphore);

}  // namespace ORLFoundation
