/// UTF-8, read strictly: no characters cut short, none written longer than need be, no surrogates,
/// none beyond U+10FFFF.
///
///     for (std::string_view rest = text; !rest.empty();) {
///       const UTF8Character character = firstUTF8Character(rest);
///       show(character.isBroken ? U'?' : character.codePoint);
///       rest.remove_prefix(character.length);
///     }
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::base {

/// What stands for bytes that are no UTF-8.
inline constexpr char32_t kReplacementCharacter = U'\uFFFD';

struct UTF8Character {
  /// The replacement character for what is broken.
  char32_t codePoint = kReplacementCharacter;
  /// In bytes, 1 to 4. Of what is broken, the bytes that could have begun a character: two of
  /// "E2 82 41", one of "C0 80".
  std::uint8_t length = 1;
  bool isBroken = true;
};

/// The first character of a text that is not empty.
[[nodiscard]] constexpr UTF8Character firstUTF8Character(std::string_view text) noexcept {
  const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned lead = byte(0);
  if (lead < 0x80) return {static_cast<char32_t>(lead), 1, false};
  if (lead < 0xC2 || lead > 0xF4) return {};
  const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  // After these leads some second bytes would make characters that are too long or too high.
  const unsigned leastSecond = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const unsigned mostSecond = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  char32_t codePoint = lead & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    const bool fits = i < text.size() && byte(i) >= (i == 1 ? leastSecond : 0x80) &&
                      byte(i) <= (i == 1 ? mostSecond : 0xBF);
    if (!fits) return {kReplacementCharacter, static_cast<std::uint8_t>(i), true};
    codePoint = codePoint << 6 | (byte(i) & 0x3FU);
  }
  return {codePoint, static_cast<std::uint8_t>(length), false};
}

/// Whether a byte goes on with a character that an earlier byte began.
[[nodiscard]] constexpr bool continuesUTF8Character(char byte) noexcept {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// Whether bytes are UTF-8 throughout.
[[nodiscard]] constexpr bool isUTF8(std::string_view bytes) noexcept {
  while (!bytes.empty()) {
    const UTF8Character first = firstUTF8Character(bytes);
    if (first.isBroken) return false;
    bytes.remove_prefix(first.length);
  }
  return true;
}

/// The units that a character takes up in UTF-16.
[[nodiscard]] constexpr std::size_t unitsInUTF16(char32_t codePoint) noexcept {
  return codePoint < 0x10000 ? 1 : 2;
}

/// Writes a character; the replacement character for a surrogate and for what lies beyond U+10FFFF.
constexpr void appendUTF8(std::string& text, char32_t codePoint) {
  if (codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF))
    codePoint = kReplacementCharacter;
  const auto append = [&text](char32_t byte) { text += static_cast<char>(byte); };
  if (codePoint < 0x80) return append(codePoint);
  if (codePoint < 0x800) {
    append(0xC0 | codePoint >> 6);
  } else {
    if (codePoint < 0x10000) {
      append(0xE0 | codePoint >> 12);
    } else {
      append(0xF0 | codePoint >> 18);
      append(0x80 | (codePoint >> 12 & 0x3F));
    }
    append(0x80 | (codePoint >> 6 & 0x3F));
  }
  append(0x80 | (codePoint & 0x3F));
}

}  // namespace ORLFoundation::internal::base
