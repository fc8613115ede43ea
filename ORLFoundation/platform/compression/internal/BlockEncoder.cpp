#include <ORLFoundation/platform/compression/internal/BlockEncoder.h>

#include <ORLFoundation/platform/compression/internal/BitStreams.h>
#include <ORLFoundation/platform/compression/internal/BlockHeader.h>

#include <algorithm>

namespace ORLFoundation::internal::compression {
namespace {

// A reader that looks at eight bytes at once may do so at the first triplet.
constexpr unsigned kLeadingZeroBytes = 8;
constexpr std::size_t kMostBitsOfTriplet = 54, kMostBitsOfLiteral = 10, kSlack = 16;

void pushSymbol(BitWriter& bits, const EncoderSymbol& symbol, std::uint32_t& state) noexcept {
  const unsigned count = symbol.bitsFor(state);
  bits.push(state & ((1U << count) - 1), count);
  state = symbol.next(state, count);
}

/// The bits of its own, then the symbol, which is read first.
void pushValue(BitWriter& bits, std::uint32_t value, const SymbolRange& range,
               const EncoderSymbol& symbol, std::uint32_t& state) noexcept {
  bits.push(value - range.base, range.extraBits);
  pushSymbol(bits, symbol, state);
}

template <class Code, class Frequencies>
void makeCode(Code& code, std::size_t states, Frequencies& frequencies) {
  fitFrequencies(code.counts, states, frequencies);
  makeEncoderSymbols(frequencies, states, code.symbols);
}

}  // namespace

void BlockEncoder::add(std::span<const std::uint8_t> literals, std::size_t length,
                       std::uint32_t distance, std::vector<std::uint8_t>& output) {
  while (literals.size() > kMostL) {
    addTriplet(literals.first(kMostL), 0, 0, output);
    literals = literals.subspan(kMostL);
  }
  while (length > kMostM) {
    addTriplet(literals, kMostM, distance, output);
    literals = {};
    length -= kMostM;
  }
  if (length > 0 || !literals.empty()) addTriplet(literals, length, distance, output);
}

void BlockEncoder::addTriplet(std::span<const std::uint8_t> literals, std::size_t length,
                              std::uint32_t distance, std::vector<std::uint8_t>& output) {
  if (tripletCount_ == kMostTriplets || literalCount_ + literals.size() > kMostLiterals)
    finishBlock(output);
  // Without a match the last distance is repeated, or is 1 where there is none.
  if (length == 0) distance = lastDistance_ == 0 ? 1 : lastDistance_;
  triplets_[tripletCount_++] = {static_cast<std::uint16_t>(literals.size()),
                                static_cast<std::uint16_t>(length),
                                distance == lastDistance_ ? 0 : distance};
  lastDistance_ = distance;
  std::copy(literals.begin(), literals.end(),
            literals_.begin() + static_cast<std::ptrdiff_t>(literalCount_));
  literalCount_ += literals.size();
  rawBytes_ += static_cast<std::uint32_t>(literals.size() + length);
}

void BlockEncoder::count() {
  l_.counts.fill(0);
  m_.counts.fill(0);
  d_.counts.fill(0);
  literal_.counts.fill(0);
  for (std::size_t i = 0; i < tripletCount_; ++i) {
    ++l_.counts[kSymbolOfL[triplets_[i].run]];
    ++m_.counts[kSymbolOfM[triplets_[i].length]];
    ++d_.counts[symbolOfD(triplets_[i].distance)];
  }
  for (std::size_t i = 0; i < literalCount_; ++i) ++literal_.counts[literals_[i]];
}

void BlockEncoder::clear() noexcept {
  tripletCount_ = 0;
  literalCount_ = 0;
  rawBytes_ = 0;
  lastDistance_ = 0;
}

void BlockEncoder::finishBlock(std::vector<std::uint8_t>& output) {
  if (tripletCount_ == 0) return;
  while (literalCount_ % 4 != 0) literals_[literalCount_++] = 0;
  count();
  BlockHeader header;
  makeCode(l_, kLStates, header.lFrequencies);
  makeCode(m_, kMStates, header.mFrequencies);
  makeCode(d_, kDStates, header.dFrequencies);
  makeCode(literal_, kLiteralStates, header.literalFrequencies);

  literalBytes_.resize(literalCount_ * kMostBitsOfLiteral / 8 + kSlack);
  BitWriter literalBits(literalBytes_.data());
  std::array<std::uint32_t, 4> states{kLiteralStates, kLiteralStates, kLiteralStates,
                                      kLiteralStates};
  for (std::size_t at = literalCount_; at > 0; at -= 4) {
    for (std::size_t i = 4; i-- > 0;)
      pushSymbol(literalBits, literal_.symbols[literals_[at - 4 + i]], states[i]);
    literalBits.flush();
  }
  header.literalSpare = literalBits.finish();

  tripletBytes_.resize(kLeadingZeroBytes + tripletCount_ * kMostBitsOfTriplet / 8 + kSlack);
  BitWriter bits(tripletBytes_.data());
  for (unsigned i = 0; i < kLeadingZeroBytes; ++i) {
    bits.push(0, 8);
    bits.flush();
  }
  std::uint32_t l = kLStates, m = kMStates, d = kDStates;
  for (std::size_t i = tripletCount_; i-- > 0;) {
    const Triplet& triplet = triplets_[i];
    const std::uint8_t dSymbol = symbolOfD(triplet.distance);
    const std::uint8_t mSymbol = kSymbolOfM[triplet.length];
    const std::uint8_t lSymbol = kSymbolOfL[triplet.run];
    pushValue(bits, triplet.distance, kDRanges[dSymbol], d_.symbols[dSymbol], d);
    pushValue(bits, triplet.length, kMRanges[mSymbol], m_.symbols[mSymbol], m);
    pushValue(bits, triplet.run, kLRanges[lSymbol], l_.symbols[lSymbol], l);
    bits.flush();
  }
  header.tripletSpare = bits.finish();

  header.rawBytes = rawBytes_;
  header.literals = static_cast<std::uint32_t>(literalCount_);
  header.triplets = static_cast<std::uint32_t>(tripletCount_);
  header.literalPayload = static_cast<std::uint32_t>(literalBits.length());
  header.tripletPayload = static_cast<std::uint32_t>(bits.length());
  for (std::size_t i = 0; i < 4; ++i)
    header.literalStates[i] = static_cast<std::uint16_t>(states[i] - kLiteralStates);
  header.lState = static_cast<std::uint16_t>(l - kLStates);
  header.mState = static_cast<std::uint16_t>(m - kMStates);
  header.dState = static_cast<std::uint16_t>(d - kDStates);
  appendBlockHeader(header, output);
  output.insert(output.end(), literalBytes_.begin(), literalBytes_.begin() + header.literalPayload);
  output.insert(output.end(), tripletBytes_.begin(), tripletBytes_.begin() + header.tripletPayload);
  clear();
}

}  // namespace ORLFoundation::internal::compression
