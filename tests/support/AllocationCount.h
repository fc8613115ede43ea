/// Counts what a test program takes from the heap, and has the heap run out, through a replaced
/// operator new. For test programs that link orlf_test_allocations.
#pragma once

#include <cstddef>

namespace orlftest {

/// How many allocations the process has made, on all threads.
[[nodiscard]] std::size_t allocationCount() noexcept;
/// How many bytes they asked for.
[[nodiscard]] std::size_t allocatedBytes() noexcept;

/// While it lives, so many allocations succeed and all others throw `std::bad_alloc`, on all
/// threads. One at a time.
class FailingAllocations {
 public:
  explicit FailingAllocations(std::size_t succeeding) noexcept;
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;
};

}  // namespace orlftest
