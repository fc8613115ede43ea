/// Waiting for what other threads do.
#pragma once

#include <chrono>
#include <thread>

namespace orlftest {

/// Waits until a condition holds, for 30 seconds at most, and answers whether it does.
template <class Condition>
bool becomes(const Condition& condition) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

}  // namespace orlftest
