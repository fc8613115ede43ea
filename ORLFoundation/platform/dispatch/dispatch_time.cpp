
#include <ORLFoundation/platform/dispatch/dispatch_time.h>

#include <ORLFoundation/platform/dispatch/NSMonotonicClock.h>

#include <algorithm>

namespace ORLFoundation {

namespace internal::dispatch {

std::int64_t instantOf(dispatch_time_t when) {
  if (when == DISPATCH_TIME_NOW) return NSMonotonicClock::now();
  return when < static_cast<dispatch_time_t>(kNever) ? static_cast<std::int64_t>(when) : kNever;
}

}  // namespace internal::dispatch

dispatch_time_t dispatch_time(dispatch_time_t when, std::int64_t nanoseconds) {
  using internal::dispatch::kNever;
  const std::int64_t base = internal::dispatch::instantOf(when);
  if (base == kNever) return DISPATCH_TIME_FOREVER;
  // Both sums fit: the base is above 0.
  const std::int64_t instant =
      nanoseconds < 0 ? base + nanoseconds : internal::dispatch::laterBy(base, nanoseconds);
  if (instant == kNever) return DISPATCH_TIME_FOREVER;
  return static_cast<dispatch_time_t>(std::max<std::int64_t>(instant, 1));
}

}  // namespace ORLFoundation
