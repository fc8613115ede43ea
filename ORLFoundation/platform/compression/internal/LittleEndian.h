/// Numbers in memory, the lowest byte first, and 16 bytes moved at a time.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

namespace ORLFoundation::internal::compression {

template <class Integer>
[[nodiscard]] inline Integer load(const std::uint8_t* bytes) noexcept {
  static_assert(std::endian::native == std::endian::little);
  Integer value;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

template <class Integer>
inline void store(std::uint8_t* bytes, Integer value) noexcept {
  std::memcpy(bytes, &value, sizeof value);
}

template <class Integer>
inline void append(std::vector<std::uint8_t>& bytes, Integer value) {
  const std::size_t at = bytes.size();
  bytes.resize(at + sizeof value);
  store(bytes.data() + at, value);
}

// What `copyFreely` may read and write beyond the count.
inline constexpr std::ptrdiff_t kFreeRoom = 16;

/// Copies in steps of 16 bytes, up to 15 more than asked for. Regions that overlap lie at least 16
/// bytes apart, the source first.
inline void copyFreely(std::uint8_t* to, const std::uint8_t* from, std::size_t count) noexcept {
  for (std::size_t at = 0; at < count; at += 16) std::memcpy(to + at, from + at, 16);
}

/// Copies `count` bytes from `distance` before `to`; what overlaps repeats. `room` is how many
/// bytes may be written.
inline void copyMatch(std::uint8_t* to, std::size_t distance, std::size_t count,
                      std::ptrdiff_t room) noexcept {
  const std::uint8_t* const from = to - distance;
  if (distance >= 16 && room >= static_cast<std::ptrdiff_t>(count) + kFreeRoom)
    return copyFreely(to, from, count);
  if (distance == 1) {
    std::memset(to, *from, count);
    return;
  }
  for (std::size_t i = 0; i < count; ++i) to[i] = from[i];
}

}  // namespace ORLFoundation::internal::compression
