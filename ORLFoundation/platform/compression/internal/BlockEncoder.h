/// Collects runs of literals and matches, and writes them as blocks with packed tables.
#pragma once

#include <ORLFoundation/platform/compression/internal/StateTables.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace ORLFoundation::internal::compression {

class BlockEncoder {
 public:
  /// Literals, then a match of `length` bytes, none for 0, at a distance behind them. What does not
  /// fit into one triplet is cut, and a full block appended to the output.
  void add(std::span<const std::uint8_t> literals, std::size_t length, std::uint32_t distance,
           std::vector<std::uint8_t>& output);
  /// Appends what was collected, if anything.
  void finishBlock(std::vector<std::uint8_t>& output);

 private:
  struct Triplet {
    std::uint16_t run = 0;
    std::uint16_t length = 0;
    std::uint32_t distance = 0;
  };
  /// How values of one kind are coded.
  template <std::size_t Symbols>
  struct Code {
    std::array<std::uint32_t, Symbols> counts{};
    std::array<EncoderSymbol, Symbols> symbols{};
  };

  void addTriplet(std::span<const std::uint8_t> literals, std::size_t length,
                  std::uint32_t distance, std::vector<std::uint8_t>& output);
  void count();
  void clear() noexcept;

  std::array<Triplet, kMostTriplets> triplets_{};
  std::size_t tripletCount_ = 0;
  std::array<std::uint8_t, kMostLiterals> literals_{};
  std::size_t literalCount_ = 0;
  std::uint32_t rawBytes_ = 0;
  std::uint32_t lastDistance_ = 0;
  Code<kLSymbols> l_;
  Code<kMSymbols> m_;
  Code<kDSymbols> d_;
  Code<kLiteralSymbols> literal_;
  std::vector<std::uint8_t> literalBytes_, tripletBytes_;
};

}  // namespace ORLFoundation::internal::compression
