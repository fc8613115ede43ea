/// Decodes blocks that are coded by tables of states.
#pragma once

#include <ORLFoundation/platform/compression/internal/BlockHeader.h>
#include <ORLFoundation/platform/compression/internal/StateTables.h>

#include <array>
#include <cstdint>
#include <span>

namespace ORLFoundation::internal::compression {

/// Where the decoded bytes go; matches reach back to `begin`.
struct DecodedBytes {
  std::uint8_t* begin;
  std::uint8_t* at;
  std::uint8_t* end;

  [[nodiscard]] std::ptrdiff_t room() const noexcept { return end - at; }
};

class BlockDecoder {
 public:
  /// Appends the block's bytes, for which there must be room. False for a damaged payload.
  [[nodiscard]] bool decode(const BlockHeader& header, std::span<const std::uint8_t> payload,
                            DecodedBytes& output);

 private:
  [[nodiscard]] bool decodeLiterals(const BlockHeader& header,
                                    std::span<const std::uint8_t> payload);
  [[nodiscard]] bool decodeTriplets(const BlockHeader& header,
                                    std::span<const std::uint8_t> payload, DecodedBytes& output);

  std::array<LiteralState, kLiteralStates> literalTable_{};
  std::array<ValueState, kLStates> lTable_{};
  std::array<ValueState, kMStates> mTable_{};
  std::array<ValueState, kDStates> dTable_{};
  // The longest run may be copied freely from any place.
  std::array<std::uint8_t, kMostLiterals + kMostL + 16> literals_{};
};

}  // namespace ORLFoundation::internal::compression
