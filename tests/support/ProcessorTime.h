/// How much of a processor's time a piece of work takes, for tests of promises about hostile input.
/// Other processes on the machine do not count.
#pragma once

#include <ctime>

namespace orlftest {

/// What a sanitizer makes of a second; 1 without one.
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
inline constexpr double kSlowdown = 10;
#else
inline constexpr double kSlowdown = 1;
#endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr double kSlowdown = 10;
#else
inline constexpr double kSlowdown = 1;
#endif

/// Whether a sanitizer watches: sweeps then take fewer steps.
inline constexpr bool kIsSanitized = kSlowdown > 1;

/// Seconds of the processor, as they would be without a sanitizer.
template <class Work>
double processorSecondsOf(Work&& work) {
  const std::clock_t start = std::clock();
  work();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC / kSlowdown;
}

}  // namespace orlftest
