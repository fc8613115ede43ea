/// Letters and texts of ASCII alone.
#pragma once

#include <algorithm>
#include <string_view>

namespace ORLFoundation::internal {

[[nodiscard]] constexpr char upperASCII(char c) noexcept {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
[[nodiscard]] constexpr char lowerASCII(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

[[nodiscard]] inline bool isASCII(std::string_view text) noexcept {
  return std::all_of(text.begin(), text.end(),
                     [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

/// Equal but for the case of ASCII letters; `lower` is in lower case.
[[nodiscard]] constexpr bool equalsLower(std::string_view text, std::string_view lower) noexcept {
  return std::equal(text.begin(), text.end(), lower.begin(), lower.end(),
                    [](char left, char right) { return lowerASCII(left) == right; });
}

}  // namespace ORLFoundation::internal
