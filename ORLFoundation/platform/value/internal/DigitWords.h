/// Digits of a text, eight in a word of 64 bits: a byte for each, the first in the lowest.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ORLFoundation::internal::value {

inline constexpr std::size_t kDigitsOfWord = 8;
inline constexpr std::uint64_t kEachByte = 0x0101010101010101;

/// Where a text's first byte in memory is the lowest of a word.
inline constexpr bool hasDigitWords = std::endian::native == std::endian::little;

template <class Word>
[[nodiscard]] inline std::uint64_t wordAt(const char* text) noexcept {
  Word word = 0;
  std::memcpy(&word, text, sizeof word);
  return word;
}

/// At most eight characters, at least one, in the lowest bytes.
[[nodiscard]] inline std::uint64_t wordOf(const char* text, std::size_t size) noexcept {
  if (size == kDigitsOfWord) return wordAt<std::uint64_t>(text);
  // What both ends hold is the same in both.
  const auto joined = [&](std::uint64_t first, std::uint64_t last, std::size_t at) {
    return first | last << 8 * at;
  };
  if (size >= 4)
    return joined(wordAt<std::uint32_t>(text), wordAt<std::uint32_t>(text + size - 4), size - 4);
  const std::uint64_t ends =
      joined(wordAt<std::uint8_t>(text), wordAt<std::uint8_t>(text + size - 1), size - 1);
  return joined(ends, wordAt<std::uint8_t>(text + size / 2), size / 2);
}

/// The digits of a text that ends with the last word; zeros stand before it. A character that is no
/// digit is a byte above 9.
template <std::size_t kWords>
[[nodiscard]] std::array<std::uint64_t, kWords> digitWords(const char* text,
                                                           std::size_t size) noexcept {
  constexpr std::uint64_t kZeros = kEachByte * '0';
  std::array<std::uint64_t, kWords> words{};
  std::size_t left = size;
  for (std::size_t i = kWords; i-- > 0 && left > 0;) {
    if (left >= kDigitsOfWord) {
      left -= kDigitsOfWord;
      words[i] = wordAt<std::uint64_t>(text + left) ^ kZeros;
    } else {
      const std::uint64_t word =
          size >= kDigitsOfWord ? wordAt<std::uint64_t>(text) : wordOf(text, size);
      words[i] = (word ^ kZeros) << 8 * (kDigitsOfWord - left);
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
