/// Digits of a text, eight in a word of 64 bits: a byte for each, the first in the lowest.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ORLFoundation::internal::value {

inline constexpr std::size_t kDigitsOfWord = 8;
inline constexpr std::size_t kHalfWord = kDigitsOfWord / 2;
inline constexpr std::uint64_t kEachByte = 0x0101010101010101;
inline constexpr std::uint64_t kZeroDigits = kEachByte * '0';

/// Where a text's first byte in memory is the lowest of a word.
inline constexpr bool hasDigitWords = std::endian::native == std::endian::little;

template <class Word>
[[nodiscard]] inline std::uint64_t wordAt(const char* text) noexcept {
  Word word = 0;
  std::memcpy(&word, text, sizeof word);
  return word;
}

/// The digits of a text of four to eight characters at the end of a word; zeros stand before them.
/// A character that is no digit is a byte above 9.
[[nodiscard]] inline std::uint64_t digitWord(const char* text, std::size_t size) noexcept {
  constexpr std::uint64_t kZeros = kZeroDigits >> 32;
  const std::uint64_t first = wordAt<std::uint32_t>(text) ^ kZeros;
  const std::uint64_t last = wordAt<std::uint32_t>(text + size - kHalfWord) ^ kZeros;
  // What both halves hold moves out of the first one.
  return last << 32 | static_cast<std::uint32_t>(first << 8 * (kDigitsOfWord - size));
}

/// The same of a text of at least eight characters, in words.
template <std::size_t kWords>
[[nodiscard]] std::array<std::uint64_t, kWords> digitWords(const char* text,
                                                           std::size_t size) noexcept {
  std::array<std::uint64_t, kWords> words{};
  std::size_t left = size;
  for (std::size_t i = kWords; i-- > 0 && left > 0;) {
    if (left >= kDigitsOfWord) {
      left -= kDigitsOfWord;
      words[i] = wordAt<std::uint64_t>(text + left) ^ kZeroDigits;
    } else {
      words[i] = (wordAt<std::uint64_t>(text) ^ kZeroDigits) << 8 * (kDigitsOfWord - left);
      left = 0;
    }
  }
  return words;
}

/// The top bit of each byte above 9; behind the first of them, bytes from 0 to 9 may have it too.
[[nodiscard]] constexpr std::uint64_t othersIn(std::uint64_t digits) noexcept {
  return ((digits + kEachByte * 0x76) | digits) & (kEachByte * 0x80);
}

/// Of eight bytes from 0 to 9: pairs, then fours, then all.
[[nodiscard]] constexpr std::uint64_t valueOfDigits(std::uint64_t digits) noexcept {
  constexpr std::uint64_t kFirstOfFour = 0x000000FF000000FF;
  const std::uint64_t pairs = digits * 10 + (digits >> 8);
  const std::uint64_t upper = (pairs & kFirstOfFour) * ((std::uint64_t{1'000'000} << 32) + 100);
  const std::uint64_t lower = ((pairs >> 16) & kFirstOfFour) * ((std::uint64_t{10'000} << 32) + 1);
  return (upper + lower) >> 32;
}

}  // namespace ORLFoundation::internal::value
