/// LZVN: operations of one to three bytes, each with up to three literals and a match.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace ORLFoundation::internal::compression {

/// Most bytes that one byte of a payload can stand for.
inline constexpr std::size_t kMostLZVNExpansion = 136;

/// Appends the payload for an input of at least 8 and at most 65,535 bytes.
void appendLZVN(std::span<const std::uint8_t> input, std::vector<std::uint8_t>& output);

/// Fills the whole of [`at`, `end`); matches reach back to `begin`. False for a damaged payload,
/// one that gives another number of bytes, and one that does not end with its end.
[[nodiscard]] bool decodeLZVN(std::span<const std::uint8_t> payload, const std::uint8_t* begin,
                              std::uint8_t* at, std::uint8_t* end);

}  // namespace ORLFoundation::internal::compression
