/// What tests that wait for other threads share.
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>

#include <chrono>
#include <thread>

namespace orlftest {

/// Waits for a signal, for 20 seconds at most, and answers whether it came.
inline bool comes(const ORLFoundation::dispatch_semaphore_t& signal) {
  constexpr auto kLong = static_cast<std::int64_t>(20 * ORLFoundation::NSEC_PER_SEC);
  const auto limit = ORLFoundation::dispatch_time(ORLFoundation::DISPATCH_TIME_NOW, kLong);
  return ORLFoundation::dispatch_semaphore_wait(signal, limit) == 0;
}

/// Waits until a condition holds, for 20 seconds at most, and answers whether it does.
template <class Condition>
bool becomes(const Condition& condition) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!condition() && std::chrono::steady_clock::now() < end)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  return condition();
}

}  // namespace orlftest
