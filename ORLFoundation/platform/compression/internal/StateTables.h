/// Tables of states, by which symbols cost fractions of bits. Of N states, a power of two, a symbol
/// of frequency f owns f; the frequencies of a table add up to N.
#pragma once

#include <ORLFoundation/platform/compression/internal/Symbols.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace ORLFoundation::internal::compression {

/// What a state of a decoder stands for: a literal, and the next state less the bits to be read.
struct LiteralState {
  std::uint8_t bits = 0;
  std::uint8_t symbol = 0;
  std::int16_t next = 0;
};

/// The same for a value: of `totalBits` that are read at once the low `extraBits` are its own.
struct ValueState {
  std::uint8_t totalBits = 0;
  std::uint8_t extraBits = 0;
  std::int16_t next = 0;
  std::uint32_t base = 0;
};

/// How an encoder leaves a state, which it counts from N on: it writes the low bits, drops them and
/// adds a number. A symbol of frequency f that owns the states from `first` on writes one of two
/// numbers of bits that follow each other, the greater one from some state on.
struct EncoderSymbol {
  /// The greater number of bits, 16 bits up, less the first state that writes as many: with a state
  /// added, what stands 16 bits up is the number for that state.
  std::uint32_t bitsLessState = 0;
  /// `first` - f + N.
  std::uint32_t base = 0;

  [[nodiscard]] unsigned bitsFor(std::uint32_t state) const noexcept {
    return (state + bitsLessState) >> 16;
  }
  [[nodiscard]] std::uint32_t next(std::uint32_t state, unsigned bits) const noexcept {
    return base + (state >> bits);
  }
};

/// Whether the frequencies make a table: they add up to the number of states, or to nothing.
[[nodiscard]] bool fillsStates(std::span<const std::uint16_t> frequencies,
                               std::size_t states) noexcept;

/// Frequencies that add up to the number of states; a table of none leaves the states as they are.
void makeLiteralStates(std::span<const std::uint16_t> frequencies, std::span<LiteralState> states);
void makeValueStates(std::span<const std::uint16_t> frequencies,
                     std::span<const SymbolRange> ranges, std::span<ValueState> states);
void makeEncoderSymbols(std::span<const std::uint16_t> frequencies, std::size_t states,
                        std::span<EncoderSymbol> symbols);

/// Frequencies in proportion to the counts: every symbol that is counted gets one at least, others
/// none, and all add up to the number of states, or to nothing where nothing is counted.
void fitFrequencies(std::span<const std::uint32_t> counts, std::size_t states,
                    std::span<std::uint16_t> frequencies);

}  // namespace ORLFoundation::internal::compression
