/// The bytes that benchmarks tell of beside their time.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>

namespace orlftest {

/// The bytes of a second.
inline void countBytes(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

/// The bytes of a second, and "part": to how much of them they are packed.
inline void countBytes(benchmark::State& state, std::size_t bytes, std::size_t packed) {
  countBytes(state, bytes);
  state.counters["part"] = static_cast<double>(packed) / static_cast<double>(bytes);
}

}  // namespace orlftest
