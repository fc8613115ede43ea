/// Counts what a test program takes from the heap, through a replaced operator new. For test
/// programs that link orlf_test_allocations.
#pragma once

#include <cstddef>

namespace orlftest {

/// How many allocations the process has made, on all threads.
[[nodiscard]] std::size_t allocationCount() noexcept;
/// How many bytes they asked for.
[[nodiscard]] std::size_t allocatedBytes() noexcept;

}  // namespace orlftest
