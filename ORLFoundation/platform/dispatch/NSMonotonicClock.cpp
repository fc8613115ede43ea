
#include <ORLFoundation/platform/dispatch/NSMonotonicClock.h>

#include <ORLFoundation/platform/base/Replaceable.h>
#include <ORLFoundation/platform/dispatch/internal/Loop.h>

#include <chrono>
#include <cmath>
#include <utility>

namespace ORLFoundation {
namespace {

constinit internal::base::Replaceable<NSMonotonicClock> clocks;

}  // namespace

namespace internal::dispatch {

std::int64_t nanosecondsOf(NSTimeInterval seconds) noexcept {
  if (!(seconds > 0)) return 0;
  constexpr double kMost = 9.2e9;  // Seconds; more does not fit 64 bits of nanoseconds.
  return seconds < kMost ? std::llround(seconds * 1e9) : kNever;
}

std::int64_t laterBy(std::int64_t instant, std::int64_t span) noexcept {
  return span < kNever - instant ? instant + span : kNever;
}

std::int64_t realNow() noexcept {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

}  // namespace internal::dispatch

std::int64_t NSMonotonicClock::now() {
  const std::shared_ptr<NSMonotonicClock> clock = clocks.current();
  return clock ? clock->nanoseconds() : internal::dispatch::realNow();
}

std::shared_ptr<NSMonotonicClock> NSMonotonicClock::setCurrentClock(
    std::shared_ptr<NSMonotonicClock> clock) {
  std::shared_ptr<NSMonotonicClock> before = clocks.exchange(std::move(clock));
  internal::dispatch::Loop::wakeAll();
  return before;
}

bool NSMonotonicClock::isSystemClock() { return clocks.current() == nullptr; }

void NSVirtualMonotonicClock::advance(NSTimeInterval seconds) {
  advanceTo(internal::dispatch::laterBy(now_, internal::dispatch::nanosecondsOf(seconds)));
}

void NSVirtualMonotonicClock::advanceTo(std::int64_t nanoseconds) {
  std::int64_t before = now_;
  while (before < nanoseconds && !now_.compare_exchange_weak(before, nanoseconds)) {
  }
  internal::dispatch::Loop::wakeAll();
}

}  // namespace ORLFoundation
