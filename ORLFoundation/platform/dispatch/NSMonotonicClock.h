/// The clock of timers, delays and timed waits: it never falls, whatever happens to the time of
/// day. Tests put one in its place that stands still until they move it.
///
///     const auto clock = std::make_shared<NSVirtualMonotonicClock>();
///     const Replaced installed(NSMonotonicClock::setCurrentClock, clock);
///     clock->advance(0.25);
///     while (pumpMainQueue(0)) {}     // what has become due runs here
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <atomic>
#include <cstdint>
#include <memory>

namespace ORLFoundation {

class NSMonotonicClock {
 public:
  NSMonotonicClock() = default;
  virtual ~NSMonotonicClock() = default;
  NSMonotonicClock(const NSMonotonicClock&) = delete;
  NSMonotonicClock& operator=(const NSMonotonicClock&) = delete;

  /// Nanoseconds since an instant that stays the same while the process runs, above 0. Any thread.
  [[nodiscard]] virtual std::int64_t nanoseconds() const = 0;

  /// The time of the clock in use.
  [[nodiscard]] static std::int64_t now();
  /// Replaces the clock of the whole process and gives back the one before it; null is the
  /// system's. Another clock's time is read as it is: what was due at an instant of the old one is
  /// due at the same number of the new one. Any thread.
  static std::shared_ptr<NSMonotonicClock> setCurrentClock(std::shared_ptr<NSMonotonicClock> clock);
  /// Whether the system's clock is the one in use.
  [[nodiscard]] static bool isSystemClock();
};

/// A clock that moves by its owner's hand alone. Any thread may ask and move it.
class NSVirtualMonotonicClock final : public NSMonotonicClock {
 public:
  /// Begins at 1 second.
  NSVirtualMonotonicClock() = default;

  [[nodiscard]] std::int64_t nanoseconds() const override { return now_; }
  /// Moves on; what waits for a time that has come is woken, on its own thread. A span below 0 and
  /// not-a-number move nothing.
  void advance(NSTimeInterval seconds);
  /// Moves to an instant, unless it is past already.
  void advanceTo(std::int64_t nanoseconds);

 private:
  std::atomic<std::int64_t> now_{1'000'000'000};
};

namespace internal::dispatch {

/// Later than every instant that comes.
inline constexpr std::int64_t kNever = INT64_MAX;

/// Seconds in nanoseconds, to the nearest; 0 for spans below 0 and not-a-number, `kNever` for what
/// is too long to count.
[[nodiscard]] std::int64_t nanosecondsOf(NSTimeInterval seconds) noexcept;
/// The sum, `kNever` when it is past the end.
[[nodiscard]] std::int64_t laterBy(std::int64_t instant, std::int64_t span) noexcept;
/// The system's clock, whatever is in its place.
[[nodiscard]] std::int64_t realNow() noexcept;

}  // namespace internal::dispatch

}  // namespace ORLFoundation
