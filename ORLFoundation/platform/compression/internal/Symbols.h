/// How runs of literals (L), lengths of matches (M) and distances (D) are cut into symbols: a value
/// is the base of its symbol and some bits that stand as they are.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace ORLFoundation::internal::compression {

struct SymbolRange {
  std::uint32_t base = 0;
  std::uint8_t extraBits = 0;
};

inline constexpr std::size_t kLSymbols = 20, kMSymbols = 20, kDSymbols = 64, kLiteralSymbols = 256;
inline constexpr std::size_t kLStates = 64, kMStates = 64, kDStates = 256, kLiteralStates = 1024;
inline constexpr std::uint32_t kMostL = 315, kMostM = 2359, kMostD = 262139;
/// Triplets and literals of a block.
inline constexpr std::size_t kMostTriplets = 10000, kMostLiterals = 40000;

/// Sixteen values of their own, then four ranges.
template <std::size_t Count>
constexpr std::array<SymbolRange, Count> rangesOfRun(const std::array<SymbolRange, 4>& last) {
  std::array<SymbolRange, Count> ranges{};
  for (std::size_t i = 0; i < 16; ++i) ranges[i].base = static_cast<std::uint32_t>(i);
  for (std::size_t i = 0; i < last.size(); ++i) ranges[16 + i] = last[i];
  return ranges;
}

constexpr std::array<SymbolRange, kDSymbols> rangesOfDistance() {
  std::array<SymbolRange, kDSymbols> ranges{};
  std::uint32_t base = 0;
  for (std::size_t i = 0; i < ranges.size(); ++i) {
    ranges[i] = {base, static_cast<std::uint8_t>(i / 4)};
    base += std::uint32_t{1} << (i / 4);
  }
  return ranges;
}

inline constexpr std::array<SymbolRange, kLSymbols> kLRanges =
    rangesOfRun<kLSymbols>({{{16, 2}, {20, 3}, {28, 5}, {60, 8}}});
inline constexpr std::array<SymbolRange, kMSymbols> kMRanges =
    rangesOfRun<kMSymbols>({{{16, 3}, {24, 5}, {56, 8}, {312, 11}}});
inline constexpr std::array<SymbolRange, kDSymbols> kDRanges = rangesOfDistance();

template <std::size_t Most, std::size_t Count>
constexpr std::array<std::uint8_t, Most + 1> symbolsOfValues(
    const std::array<SymbolRange, Count>& ranges) {
  std::array<std::uint8_t, Most + 1> symbols{};
  std::size_t symbol = 0;
  for (std::size_t value = 0; value <= Most; ++value) {
    if (symbol + 1 < Count && value == ranges[symbol + 1].base) ++symbol;
    symbols[value] = static_cast<std::uint8_t>(symbol);
  }
  return symbols;
}

inline constexpr auto kSymbolOfL = symbolsOfValues<kMostL>(kLRanges);
inline constexpr auto kSymbolOfM = symbolsOfValues<kMostM>(kMRanges);

/// Four symbols for each number of bits; those of n bits begin at 4 x (2^n - 1).
constexpr std::uint8_t symbolOfD(std::uint32_t distance) noexcept {
  const auto bits = (static_cast<std::uint32_t>(std::bit_width(distance / 4 + 1)) - 1) & 31U;
  const std::uint32_t first = (std::uint32_t{4} << bits) - 4;
  return static_cast<std::uint8_t>(4 * bits + ((distance - first) >> bits));
}

}  // namespace ORLFoundation::internal::compression
