/// Bytes of texts, for tests.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace orlftest {

using Bytes = std::vector<std::uint8_t>;

inline Bytes bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

/// The bytes where they stand.
inline std::span<const std::uint8_t> spanOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

}  // namespace orlftest
