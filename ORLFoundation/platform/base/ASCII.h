/// Characters and texts of ASCII alone. No locale has a say: a byte beyond ASCII is no letter and
/// no digit, and keeps its case.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::base {

template <class Character>
[[nodiscard]] constexpr bool isDigit(Character c) noexcept {
  return c >= Character{'0'} && c <= Character{'9'};
}
template <class Character>
[[nodiscard]] constexpr bool isUpperLetter(Character c) noexcept {
  return c >= Character{'A'} && c <= Character{'Z'};
}
template <class Character>
[[nodiscard]] constexpr bool isLowerLetter(Character c) noexcept {
  return c >= Character{'a'} && c <= Character{'z'};
}
template <class Character>
[[nodiscard]] constexpr bool isLetter(Character c) noexcept {
  return isUpperLetter(c) || isLowerLetter(c);
}
template <class Character>
[[nodiscard]] constexpr bool isLetterOrDigit(Character c) noexcept {
  return isLetter(c) || isDigit(c);
}

[[nodiscard]] constexpr char upperASCII(char c) noexcept {
  return isLowerLetter(c) ? static_cast<char>(c - 'a' + 'A') : c;
}
[[nodiscard]] constexpr char lowerASCII(char c) noexcept {
  return isUpperLetter(c) ? static_cast<char>(c - 'A' + 'a') : c;
}

/// The text with its ASCII letters in lower case, and every other byte as it is.
[[nodiscard]] inline std::string lowerASCII(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = lowerASCII(c);
  return lower;
}

[[nodiscard]] constexpr bool isASCII(char c) noexcept {
  return static_cast<unsigned char>(c) < 0x80;
}
[[nodiscard]] constexpr bool isASCII(std::string_view text) noexcept {
  return std::all_of(text.begin(), text.end(), [](char byte) { return isASCII(byte); });
}

/// Equal but for the case of ASCII letters.
[[nodiscard]] constexpr bool equalsIgnoringCase(std::string_view left,
                                                std::string_view right) noexcept {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char a, char b) { return lowerASCII(a) == lowerASCII(b); });
}

/// The same where `lower` is known to be in lower case.
[[nodiscard]] constexpr bool equalsLower(std::string_view text, std::string_view lower) noexcept {
  return std::equal(text.begin(), text.end(), lower.begin(), lower.end(),
                    [](char left, char right) { return lowerASCII(left) == right; });
}

}  // namespace ORLFoundation::internal::base
