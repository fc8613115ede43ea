/// Instants of the monotonic clock (NSMonotonicClock.h), for delays and timed waits.
///
///     dispatch_after(dispatch_time(DISPATCH_TIME_NOW, 250'000'000), queue, block);  // 0.25 s
#pragma once

#include <cstdint>

namespace ORLFoundation {

/// Nanoseconds of the clock in use, or one of the two below.
using dispatch_time_t = std::uint64_t;
inline constexpr dispatch_time_t DISPATCH_TIME_NOW = 0;
inline constexpr dispatch_time_t DISPATCH_TIME_FOREVER = ~std::uint64_t{0};
inline constexpr std::uint64_t NSEC_PER_SEC = 1'000'000'000;
inline constexpr std::uint64_t NSEC_PER_MSEC = 1'000'000;
inline constexpr std::uint64_t NSEC_PER_USEC = 1'000;

/// The instant so many nanoseconds after another. An instant before the clock's beginning is its
/// first nanosecond, one past its end `DISPATCH_TIME_FOREVER`, which no span moves.
[[nodiscard]] dispatch_time_t dispatch_time(dispatch_time_t when, std::int64_t nanoseconds);

namespace internal::dispatch {
/// As an instant of the clock: `DISPATCH_TIME_NOW` is asked for, `DISPATCH_TIME_FOREVER` is kNever.
[[nodiscard]] std::int64_t instantOf(dispatch_time_t when);
}  // namespace internal::dispatch

}  // namespace ORLFoundation
