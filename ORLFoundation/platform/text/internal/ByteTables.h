/// Encodings of one byte a character.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace ORLFoundation::internal::text {

/// What a byte without a character stands for in a table.
inline constexpr char32_t kNoCharacter = 0xFFFFFFFF;

/// The character of each byte.
using ByteTable = std::array<char32_t, 256>;

/// Windows Latin 1, which leaves 81, 8D, 8F, 90 and 9D without a character.
[[nodiscard]] const ByteTable& windowsLatin1Table();
/// Mac Roman, which has a character for each byte.
[[nodiscard]] const ByteTable& macRomanTable();

/// The byte of a character; nil for one that the encoding lacks.
[[nodiscard]] std::optional<std::uint8_t> byteOfWindowsLatin1(char32_t character);
[[nodiscard]] std::optional<std::uint8_t> byteOfMacRoman(char32_t character);

}  // namespace ORLFoundation::internal::text
