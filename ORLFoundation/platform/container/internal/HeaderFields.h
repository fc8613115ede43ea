/// Numbers of the container, which stand with their lowest byte first, and in its outer wrapper
/// with their highest.
#pragma once

#include <ORLFoundation/platform/base/Bytes.h>
#include <ORLFoundation/platform/container/ArchiveError.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace ORLFoundation::internal::container {

using Bytes = std::vector<std::uint8_t>;
using ByteSpan = std::span<const std::uint8_t>;
using base::appendBig;
using base::appendLittle;
using base::bigAt;
using base::bytesOf;
using base::littleAt;

inline void appendBytes(Bytes& bytes, ByteSpan more) {
  bytes.insert(bytes.end(), more.begin(), more.end());
}
template <std::size_t Count>
[[nodiscard]] std::array<std::uint8_t, Count> arrayAt(ByteSpan bytes, std::size_t at) {
  std::array<std::uint8_t, Count> values{};
  for (std::size_t i = 0; i < Count; ++i) values[i] = bytes[at + i];
  return values;
}
/// Numbers of four bytes each, such as magics.
[[nodiscard]] inline bool beginsWith(ByteSpan bytes, std::string_view magic) {
  if (bytes.size() < magic.size()) return false;
  for (std::size_t i = 0; i < magic.size(); ++i)
    if (bytes[i] != static_cast<std::uint8_t>(magic[i])) return false;
  return true;
}

[[noreturn]] inline void throwDamaged(std::string_view what) {
  throw ArchiveError(ArchiveErrorDamaged, "The archive is damaged: " + std::string(what) + ".");
}
[[noreturn]] inline void throwUnsupported(std::string_view what) {
  throw ArchiveError(ArchiveErrorUnsupported,
                     "The archive cannot be read here: " + std::string(what) + ".");
}

}  // namespace ORLFoundation::internal::container
