#include <ORLFoundation/platform/compression/internal/StateTables.h>

#include <ORLFoundation/platform/compression/LZFSE_testing.h>
#include <gtest/gtest.h>

#include <array>
#include <numeric>
#include <vector>

namespace ORLFoundation::internal::compression {
namespace {

TEST(StateTables, GiveAStateOfTheDecoderToEachShareOfASymbol) {
  const std::array<std::uint16_t, 2> frequencies{3, 5};
  std::array<LiteralState, 8> states;
  makeLiteralStates(frequencies, states);
  const std::array<std::array<int, 3>, 8> expected{
      {{2, 0, 4}, {1, 0, 0}, {1, 0, 2}, {1, 1, 2}, {1, 1, 4}, {1, 1, 6}, {0, 1, 0}, {0, 1, 1}}};
  for (std::size_t i = 0; i < states.size(); ++i) {
    EXPECT_EQ(states[i].bits, expected[i][0]) << i;
    EXPECT_EQ(states[i].symbol, expected[i][1]) << i;
    EXPECT_EQ(states[i].next, expected[i][2]) << i;
  }
}

/// A symbol as published, in a table of N states: from the first state on that writes all bits,
/// what is left is added to one number, below it to another.
struct PublishedSymbol {
  std::size_t first, bits;
  std::ptrdiff_t next, shortNext;
};

void expectPublished(const EncoderSymbol& symbol, const PublishedSymbol& published,
                     std::size_t states) {
  for (std::size_t state = 0; state < states; ++state) {
    const bool isFull = state >= published.first;
    const std::size_t bits = published.bits - (isFull ? 0 : 1);
    const auto counted = static_cast<std::uint32_t>(states + state);
    ASSERT_EQ(symbol.bitsFor(counted), bits) << state;
    const std::ptrdiff_t next = (isFull ? published.next : published.shortNext) +
                                static_cast<std::ptrdiff_t>(state >> bits);
    ASSERT_EQ(symbol.next(counted, static_cast<unsigned>(bits)),
              states + static_cast<std::size_t>(next))
        << state;
  }
}

TEST(StateTables, TellTheEncoderWhereASymbolLeads) {
  const std::array<std::uint16_t, 2> frequencies{3, 5};
  std::array<EncoderSymbol, 2> symbols;
  makeEncoderSymbols(frequencies, 8, symbols);
  expectPublished(symbols[0], {4, 2, -1, 1}, 8);
  expectPublished(symbols[1], {2, 1, 2, 6}, 8);
}

TEST(StateTables, LeaveTheStateAsItIsForTheOnlySymbol) {
  const std::array<std::uint16_t, 2> frequencies{0, 1024};
  std::array<EncoderSymbol, 2> symbols;
  makeEncoderSymbols(frequencies, 1024, symbols);
  expectPublished(symbols[1], {0, 0, 0, 0}, 1024);
}

TEST(StateTables, CutValuesAtTheStatedBases) {
  const std::array<std::pair<std::size_t, std::uint32_t>, 7> bases{
      {{0, 0}, {4, 4}, {8, 12}, {16, 60}, {32, 1020}, {48, 16380}, {60, 131068}}};
  for (const auto& [symbol, base] : bases) EXPECT_EQ(kDRanges[symbol].base, base) << symbol;
  EXPECT_EQ(kDRanges[63].base, 229372U);
  for (std::uint32_t value = 0; value <= kMostD; ++value) {
    const SymbolRange& range = kDRanges[symbolOfD(value)];
    ASSERT_TRUE(value >= range.base && value - range.base < 1U << range.extraBits) << value;
  }
  EXPECT_EQ(kDRanges[63].base + (1U << kDRanges[63].extraBits) - 1, kMostD);
  for (std::uint32_t value = 0; value <= kMostL; ++value) {
    const SymbolRange& range = kLRanges[kSymbolOfL[value]];
    ASSERT_TRUE(value >= range.base && value - range.base < 1U << range.extraBits) << value;
  }
  for (std::uint32_t value = 0; value <= kMostM; ++value) {
    const SymbolRange& range = kMRanges[kSymbolOfM[value]];
    ASSERT_TRUE(value >= range.base && value - range.base < 1U << range.extraBits) << value;
  }
}

TEST(StateTables, LeadBackFromEverySymbolToEveryState) {
  orlftest::RandomNumbers random(2);
  for (int round = 0; round < 50; ++round) {
    std::vector<std::uint32_t> counts(kLiteralSymbols);
    for (std::uint32_t& count : counts) count = random() % 3 == 0 ? random() % 500 : 0;
    counts[random() % counts.size()] = 1;
    std::array<std::uint16_t, kLiteralSymbols> frequencies{};
    fitFrequencies(counts, kLiteralStates, frequencies);
    std::array<LiteralState, kLiteralStates> states;
    makeLiteralStates(frequencies, states);
    std::array<EncoderSymbol, kLiteralSymbols> symbols{};
    makeEncoderSymbols(frequencies, kLiteralStates, symbols);
    for (std::size_t symbol = 0; symbol < symbols.size(); ++symbol) {
      if (frequencies[symbol] == 0) continue;
      constexpr std::uint32_t kFirst = kLiteralStates;
      for (std::uint32_t before = 0; before < kFirst; ++before) {
        const EncoderSymbol& code = symbols[symbol];
        const unsigned bits = code.bitsFor(kFirst + before);
        const std::uint32_t after = code.next(kFirst + before, bits) - kFirst;
        const LiteralState& state = states.at(after);
        ASSERT_EQ(state.symbol, symbol);
        ASSERT_EQ(state.bits, bits);
        ASSERT_EQ(static_cast<std::uint32_t>(state.next) + (before & ((1U << bits) - 1)), before);
      }
    }
  }
}

TEST(StateTables, FitFrequenciesToTheStates) {
  orlftest::RandomNumbers random(4);
  for (int round = 0; round < 300; ++round) {
    std::vector<std::uint32_t> counts(1 + random() % kDSymbols);
    for (std::uint32_t& count : counts)
      count = random() % 2 == 0 ? 0 : 1 + random() % (random() % 4 == 0 ? 40000 : 4);
    std::vector<std::uint16_t> frequencies(counts.size(), 99);
    fitFrequencies(counts, kDStates, frequencies);
    const bool isEmpty = std::accumulate(counts.begin(), counts.end(), 0U) == 0;
    EXPECT_EQ(std::accumulate(frequencies.begin(), frequencies.end(), 0U), isEmpty ? 0U : kDStates);
    for (std::size_t i = 0; i < counts.size(); ++i) EXPECT_EQ(frequencies[i] == 0, counts[i] == 0);
  }
}

TEST(StateTables, KnowFrequenciesThatMakeATable) {
  const std::array<std::uint16_t, 3> full{32, 0, 32}, none{}, less{32, 0, 31}, more{32, 1, 32};
  EXPECT_TRUE(fillsStates(full, 64));
  EXPECT_TRUE(fillsStates(none, 64));
  EXPECT_FALSE(fillsStates(less, 64));
  EXPECT_FALSE(fillsStates(more, 64));
}

}  // namespace
}  // namespace ORLFoundation::internal::compression
