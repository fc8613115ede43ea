#include <ORLFoundation/platform/compression/internal/BlockDecoder.h>

#include <ORLFoundation/platform/compression/internal/BitStreams.h>

#include <cstring>

namespace ORLFoundation::internal::compression {
namespace {

std::uint32_t nextValue(BackwardBits& bits, std::span<const ValueState> table,
                        std::uint32_t& state) noexcept {
  const ValueState& entry = table[state];
  const std::uint32_t read = bits.pull(entry.totalBits);
  state = static_cast<std::uint32_t>(entry.next) + (read >> entry.extraBits);
  return entry.base + (read & ((1U << entry.extraBits) - 1));
}

}  // namespace

bool BlockDecoder::decode(const BlockHeader& header, std::span<const std::uint8_t> payload,
                          DecodedBytes& output) {
  makeLiteralStates(header.literalFrequencies, literalTable_);
  makeValueStates(header.lFrequencies, kLRanges, lTable_);
  makeValueStates(header.mFrequencies, kMRanges, mTable_);
  makeValueStates(header.dFrequencies, kDRanges, dTable_);
  return decodeLiterals(header, payload.first(header.literalPayload)) &&
         decodeTriplets(header, payload.subspan(header.literalPayload), output);
}

bool BlockDecoder::decodeLiterals(const BlockHeader& header,
                                  std::span<const std::uint8_t> payload) {
  BackwardBits bits;
  if (!bits.begin(payload, header.literalSpare)) return false;
  std::array<std::uint32_t, 4> states{};
  for (std::size_t i = 0; i < 4; ++i) states[i] = header.literalStates[i];
  for (std::size_t at = 0; at < header.literals; at += 4) {
    bits.refill();
    for (std::size_t i = 0; i < 4; ++i) {
      const LiteralState& entry = literalTable_[states[i]];
      literals_[at + i] = entry.symbol;
      states[i] = static_cast<std::uint32_t>(entry.next) + bits.pull(entry.bits);
    }
    if (bits.isOverdrawn()) return false;
  }
  return true;
}

bool BlockDecoder::decodeTriplets(const BlockHeader& header, std::span<const std::uint8_t> payload,
                                  DecodedBytes& output) {
  BackwardBits bits;
  if (!bits.begin(payload, header.tripletSpare)) return false;
  std::uint32_t lState = header.lState, mState = header.mState, dState = header.dState;
  const std::uint8_t* literal = literals_.data();
  const std::uint8_t* const lastLiteral = literal + header.literals;
  std::uint8_t* const blockEnd = output.at + header.rawBytes;
  std::uint8_t* at = output.at;
  std::uint32_t distance = 0;
  for (std::uint32_t i = 0; i < header.triplets; ++i) {
    bits.refill();
    const std::uint32_t run = nextValue(bits, lTable_, lState);
    const std::uint32_t length = nextValue(bits, mTable_, mState);
    const std::uint32_t stated = nextValue(bits, dTable_, dState);
    if (stated != 0) distance = stated;
    const bool isThere = !bits.isOverdrawn() && run <= lastLiteral - literal &&
                         std::ptrdiff_t{run} + length <= blockEnd - at && distance != 0 &&
                         distance <= at + run - output.begin;
    if (!isThere) return false;
    if (output.end - at >= std::ptrdiff_t{run} + kFreeRoom)
      copyFreely(at, literal, run);
    else
      std::memcpy(at, literal, run);
    at += run;
    literal += run;
    copyMatch(at, distance, length, output.end - at);
    at += length;
  }
  output.at = at;
  return at == blockEnd;
}

}  // namespace ORLFoundation::internal::compression
