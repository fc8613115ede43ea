/// The headers of blocks that are coded by tables of states, in both of their forms.
#pragma once

#include <ORLFoundation/platform/compression/internal/Symbols.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace ORLFoundation::internal::compression {

inline constexpr std::uint32_t kEndOfStream = 0x24787662;   // "bvx$"
inline constexpr std::uint32_t kStoredBlock = 0x2d787662;   // "bvx-"
inline constexpr std::uint32_t kLZVNBlock = 0x6e787662;     // "bvxn"
inline constexpr std::uint32_t kPlainTables = 0x31787662;   // "bvx1"
inline constexpr std::uint32_t kPackedTables = 0x32787662;  // "bvx2"

struct BlockHeader {
  /// Of the header itself.
  std::size_t size = 0;
  std::uint32_t rawBytes = 0;
  std::uint32_t literals = 0;
  std::uint32_t triplets = 0;
  std::uint32_t literalPayload = 0;
  std::uint32_t tripletPayload = 0;
  int literalSpare = 0;
  int tripletSpare = 0;
  std::array<std::uint16_t, 4> literalStates{};
  std::uint16_t lState = 0, mState = 0, dState = 0;
  std::array<std::uint16_t, kLSymbols> lFrequencies{};
  std::array<std::uint16_t, kMSymbols> mFrequencies{};
  std::array<std::uint16_t, kDSymbols> dFrequencies{};
  std::array<std::uint16_t, kLiteralSymbols> literalFrequencies{};

  [[nodiscard]] std::size_t payload() const noexcept {
    return std::size_t{literalPayload} + tripletPayload;
  }
};

/// The header that begins with the magic of either form; nil where it is cut off or has a value out
/// of its range.
[[nodiscard]] std::optional<BlockHeader> readBlockHeader(std::span<const std::uint8_t> bytes);
/// Appends the header with packed tables. `size` is not looked at.
void appendBlockHeader(const BlockHeader& header, std::vector<std::uint8_t>& bytes);

}  // namespace ORLFoundation::internal::compression
