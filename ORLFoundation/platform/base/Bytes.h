/// Texts as bytes, and numbers in bytes: with the lowest byte first (little) or the highest (big).
/// Widths are counts of bytes, up to 8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::base {

/// The bytes of a text, which must outlive them.
[[nodiscard]] inline std::span<const std::uint8_t> bytesOf(std::string_view text) noexcept {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

inline void appendLittle(std::vector<std::uint8_t>& bytes, std::uint64_t value, std::size_t width) {
  for (std::size_t i = 0; i < width; ++i)
    bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}
inline void appendBig(std::vector<std::uint8_t>& bytes, std::uint64_t value, std::size_t width) {
  for (std::size_t i = width; i-- > 0;)
    bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

/// The number of `width` bytes from a place on, all of which must be there.
[[nodiscard]] inline std::uint64_t littleAt(std::span<const std::uint8_t> bytes, std::size_t at,
                                            std::size_t width) {
  std::uint64_t value = 0;
  for (std::size_t i = width; i-- > 0;) value = value << 8 | bytes[at + i];
  return value;
}
[[nodiscard]] inline std::uint64_t bigAt(std::span<const std::uint8_t> bytes, std::size_t at,
                                         std::size_t width) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < width; ++i) value = value << 8 | bytes[at + i];
  return value;
}

/// The four bytes of a word, the low one first.
inline void storeLittle(std::uint32_t word, std::uint8_t* out) noexcept {
  for (int i = 0; i < 4; ++i) out[i] = static_cast<std::uint8_t>(word >> 8 * i);
}

}  // namespace ORLFoundation::internal::base
