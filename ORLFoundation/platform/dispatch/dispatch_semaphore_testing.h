/// What tests that wait for other threads share.
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <tests/support/Waiting.h>

#include <cstdint>

namespace orlftest {

/// Waits for a signal, for 20 seconds at most, and answers whether it came.
inline bool comes(const ORLFoundation::dispatch_semaphore_t& signal) {
  constexpr auto kLong = static_cast<std::int64_t>(20 * ORLFoundation::NSEC_PER_SEC);
  const auto limit = ORLFoundation::dispatch_time(ORLFoundation::DISPATCH_TIME_NOW, kLong);
  return ORLFoundation::dispatch_semaphore_wait(signal, limit) == 0;
}

}  // namespace orlftest
