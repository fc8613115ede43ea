#include <ORLFoundation/platform/compression/internal/StateTables.h>

#include <algorithm>
#include <bit>
#include <numeric>

namespace ORLFoundation::internal::compression {
namespace {

/// How the states of one symbol read: the first `longStates` of them `bits` bits, the others one
/// less.
struct SymbolShape {
  SymbolShape(std::size_t states, std::size_t frequency)
      : bits(static_cast<unsigned>(std::bit_width(states) - std::bit_width(frequency))),
        longStates(((2 * states) >> bits) - frequency) {}

  unsigned bits;
  std::size_t longStates;
};

struct StateStep {
  unsigned bits;
  std::int16_t next;
};

StateStep stepOf(const SymbolShape& shape, std::size_t states, std::size_t frequency,
                 std::size_t index) {
  if (index < shape.longStates)
    return {shape.bits, static_cast<std::int16_t>(((frequency + index) << shape.bits) - states)};
  return {shape.bits - 1,
          static_cast<std::int16_t>((index - shape.longStates) << (shape.bits - 1))};
}

/// Calls back for each state with its number, its symbol and its step.
template <class Take>
void forEachState(std::span<const std::uint16_t> frequencies, std::size_t states,
                  const Take& take) {
  std::size_t state = 0;
  for (std::size_t symbol = 0; symbol < frequencies.size(); ++symbol) {
    const std::size_t frequency = frequencies[symbol];
    if (frequency == 0) continue;
    const SymbolShape shape(states, frequency);
    for (std::size_t i = 0; i < frequency; ++i)
      take(state++, symbol, stepOf(shape, states, frequency, i));
  }
}

/// The symbol whose code lengthens least when it has one state less.
std::size_t cheapestToReduce(std::span<const std::uint32_t> counts,
                             std::span<const std::uint16_t> frequencies) {
  std::size_t cheapest = 0;
  double least = 0;
  bool isFound = false;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (frequencies[i] < 2) continue;
    const double cost = counts[i] / (frequencies[i] - 0.5);
    if (isFound && cost >= least) continue;
    isFound = true;
    least = cost;
    cheapest = i;
  }
  return cheapest;
}

/// The symbol whose code shortens most when it has one state more.
std::size_t bestToRaise(std::span<const std::uint32_t> counts,
                        std::span<const std::uint16_t> frequencies) {
  std::size_t best = 0;
  double most = -1;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    const double gain = counts[i] / (frequencies[i] + 0.5);
    if (frequencies[i] == 0 || gain <= most) continue;
    most = gain;
    best = i;
  }
  return best;
}

}  // namespace

bool fillsStates(std::span<const std::uint16_t> frequencies, std::size_t states) noexcept {
  const std::size_t sum = std::accumulate(frequencies.begin(), frequencies.end(), std::size_t{0});
  return sum == 0 || sum == states;
}

void makeLiteralStates(std::span<const std::uint16_t> frequencies, std::span<LiteralState> states) {
  forEachState(frequencies, states.size(),
               [&](std::size_t state, std::size_t symbol, const StateStep& step) {
                 states[state] = {static_cast<std::uint8_t>(step.bits),
                                  static_cast<std::uint8_t>(symbol), step.next};
               });
}

void makeValueStates(std::span<const std::uint16_t> frequencies,
                     std::span<const SymbolRange> ranges, std::span<ValueState> states) {
  forEachState(frequencies, states.size(),
               [&](std::size_t state, std::size_t symbol, const StateStep& step) {
                 const SymbolRange& range = ranges[symbol];
                 states[state] = {static_cast<std::uint8_t>(step.bits + range.extraBits),
                                  range.extraBits, step.next, range.base};
               });
}

void makeEncoderSymbols(std::span<const std::uint16_t> frequencies, std::size_t states,
                        std::span<EncoderSymbol> symbols) {
  std::size_t offset = 0;
  for (std::size_t symbol = 0; symbol < frequencies.size(); ++symbol) {
    const std::size_t frequency = frequencies[symbol];
    if (frequency == 0) continue;
    const unsigned bits = SymbolShape(states, frequency).bits;
    // The states that write all bits begin at (frequency << bits) - N, counted from 0 on.
    symbols[symbol] = {static_cast<std::uint32_t>((bits << 16) - (frequency << bits)),
                       static_cast<std::uint32_t>(offset + states - frequency)};
    offset += frequency;
  }
}

void fitFrequencies(std::span<const std::uint32_t> counts, std::size_t states,
                    std::span<std::uint16_t> frequencies) {
  const std::uint64_t total = std::accumulate(counts.begin(), counts.end(), std::uint64_t{0});
  std::fill(frequencies.begin(), frequencies.end(), std::uint16_t{0});
  if (total == 0) return;
  std::size_t sum = 0;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (counts[i] == 0) continue;
    const std::uint64_t share = (counts[i] * states + total / 2) / total;
    frequencies[i] = static_cast<std::uint16_t>(std::max<std::uint64_t>(share, 1));
    sum += frequencies[i];
  }
  for (; sum > states; --sum) --frequencies[cheapestToReduce(counts, frequencies)];
  for (; sum < states; ++sum) ++frequencies[bestToRaise(counts, frequencies)];
}

}  // namespace ORLFoundation::internal::compression
