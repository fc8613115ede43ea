/// Hexadecimal text: two digits for a byte.
#pragma once

#include <ORLFoundation/platform/base/ASCII.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::base {

inline constexpr std::string_view kLowerHexDigits = "0123456789abcdef";
inline constexpr std::string_view kUpperHexDigits = "0123456789ABCDEF";

/// 0 to 15 for a digit of either case, -1 for any other character.
[[nodiscard]] constexpr int hexDigitValue(char c) noexcept {
  if (isDigit(c)) return c - '0';
  const char lower = lowerASCII(c);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

[[nodiscard]] constexpr bool isHexDigit(char c) noexcept { return hexDigitValue(c) >= 0; }

/// The byte that two digits at an index write; nil where fewer than two digits stand there.
[[nodiscard]] constexpr std::optional<std::uint8_t> hexByteAt(std::string_view text,
                                                              std::size_t index) noexcept {
  if (index >= text.size() || text.size() - index < 2) return std::nullopt;
  const int high = hexDigitValue(text[index]);
  const int low = hexDigitValue(text[index + 1]);
  if (high < 0 || low < 0) return std::nullopt;
  return static_cast<std::uint8_t>(high * 16 + low);
}

inline void appendHexByte(std::string& text, std::uint8_t byte,
                          std::string_view digits = kLowerHexDigits) {
  text += digits[byte >> 4];
  text += digits[byte & 15];
}

/// Two digits for each byte.
[[nodiscard]] inline std::string hexText(std::string_view bytes,
                                         std::string_view digits = kLowerHexDigits) {
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const char byte : bytes) appendHexByte(text, static_cast<std::uint8_t>(byte), digits);
  return text;
}

/// The bytes that a text of digits writes, in either case; nil for an odd number of digits and for
/// any other character.
[[nodiscard]] inline std::optional<std::string> bytesOfHexText(std::string_view text) {
  if (text.size() % 2 != 0) return std::nullopt;
  std::string bytes;
  bytes.reserve(text.size() / 2);
  for (std::size_t at = 0; at < text.size(); at += 2) {
    const auto byte = hexByteAt(text, at);
    if (!byte) return std::nullopt;
    bytes += static_cast<char>(*byte);
  }
  return bytes;
}

}  // namespace ORLFoundation::internal::base
