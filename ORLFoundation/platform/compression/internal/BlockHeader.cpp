#include <ORLFoundation/platform/compression/internal/BlockHeader.h>

#include <ORLFoundation/platform/compression/internal/BitStreams.h>
#include <ORLFoundation/platform/compression/internal/LittleEndian.h>
#include <ORLFoundation/platform/compression/internal/StateTables.h>

#include <algorithm>

namespace ORLFoundation::internal::compression {
namespace {

constexpr std::size_t kPlainSize = 772, kPlainFrequencies = 50, kPackedFixed = 32;
constexpr std::uint32_t kMostRawBytes = kMostTriplets * (kMostL + kMostM);

/// Calls back for the four tables in the order in which they stand.
template <class Header, class Take>
bool forEachTable(Header& header, const Take& take) {
  return take(header.lFrequencies) && take(header.mFrequencies) && take(header.dFrequencies) &&
         take(header.literalFrequencies);
}

/// The codes of frequencies: the bits that tell the code, how many there are with the number behind
/// them, where that stands, and the first of the frequencies.
struct FrequencyCode {
  std::uint32_t mark, markBits, bits;
  std::uint32_t first, count;
};
constexpr std::array kFrequencyCodes{
    FrequencyCode{0b00, 2, 2, 0, 1},        FrequencyCode{0b10, 2, 2, 1, 1},
    FrequencyCode{0b001, 3, 3, 2, 1},       FrequencyCode{0b101, 3, 3, 3, 1},
    FrequencyCode{0b00011, 3, 5, 4, 4},     FrequencyCode{0b0111, 4, 8, 8, 16},
    FrequencyCode{0b1111, 4, 14, 24, 1024},
};

/// The bits of packed tables, from the first byte on.
class ForwardBits {
 public:
  explicit ForwardBits(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  /// The next 14 bits, zeros beyond the end.
  [[nodiscard]] std::uint32_t peek() {
    while (count_ < 14) {
      bits_ |= (at_ < bytes_.size() ? std::uint32_t{bytes_[at_]} : 0U) << count_;
      ++at_;
      count_ += 8;
    }
    return bits_;
  }
  void skip(std::uint32_t count) {
    bits_ >>= count;
    count_ -= count;
    used_ += count;
  }
  [[nodiscard]] std::size_t usedBytes() const { return (used_ + 7) / 8; }

 private:
  const std::span<const std::uint8_t> bytes_;
  std::size_t at_ = 0;
  std::uint32_t bits_ = 0;
  std::uint32_t count_ = 0;
  std::size_t used_ = 0;
};

std::uint16_t readFrequency(ForwardBits& bits) {
  const std::uint32_t next = bits.peek();
  for (const FrequencyCode& code : kFrequencyCodes) {
    const std::uint32_t mask = (1U << code.markBits) - 1;
    if ((next & mask) != (code.mark & mask)) continue;
    bits.skip(code.bits);
    const std::uint32_t number = (next & ((1U << code.bits) - 1)) >> code.markBits;
    return static_cast<std::uint16_t>(code.first + number);
  }
  return 0;  // the seven marks leave nothing out
}

bool readPackedTables(BlockHeader& header, std::span<const std::uint8_t> bytes) {
  if (bytes.empty()) return true;
  ForwardBits bits(bytes);
  static_cast<void>(forEachTable(header, [&](auto& frequencies) {
    for (std::uint16_t& frequency : frequencies) frequency = readFrequency(bits);
    return true;
  }));
  return bits.usedBytes() == bytes.size();
}

std::uint64_t field(std::uint64_t word, unsigned at, unsigned width) {
  return (word >> at) & ((std::uint64_t{1} << width) - 1);
}

template <class Integer>
void set(Integer& value, std::uint64_t word, unsigned at, unsigned width) {
  value = static_cast<Integer>(field(word, at, width));
}

bool readPacked(BlockHeader& header, std::span<const std::uint8_t> bytes) {
  if (bytes.size() < kPackedFixed) return false;
  const auto v0 = load<std::uint64_t>(bytes.data() + 8);
  const auto v1 = load<std::uint64_t>(bytes.data() + 16);
  const auto v2 = load<std::uint64_t>(bytes.data() + 24);
  set(header.literals, v0, 0, 20);
  set(header.literalPayload, v0, 20, 20);
  set(header.triplets, v0, 40, 20);
  header.literalSpare = static_cast<int>(field(v0, 60, 3)) - 7;
  for (unsigned i = 0; i < 4; ++i) set(header.literalStates[i], v1, 10 * i, 10);
  set(header.tripletPayload, v1, 40, 20);
  header.tripletSpare = static_cast<int>(field(v1, 60, 3)) - 7;
  set(header.size, v2, 0, 32);
  set(header.lState, v2, 32, 10);
  set(header.mState, v2, 42, 10);
  set(header.dState, v2, 52, 10);
  if (v0 >> 63 != 0 || v1 >> 63 != 0 || v2 >> 62 != 0) return false;
  if (header.size < kPackedFixed || header.size > bytes.size()) return false;
  return readPackedTables(header, bytes.subspan(kPackedFixed, header.size - kPackedFixed));
}

bool readPlain(BlockHeader& header, std::span<const std::uint8_t> bytes) {
  if (bytes.size() < kPlainSize) return false;
  const auto word = [&](std::size_t at) { return load<std::uint32_t>(bytes.data() + at); };
  const auto half = [&](std::size_t at) { return load<std::uint16_t>(bytes.data() + at); };
  header.size = kPlainSize;
  header.literals = word(12);
  header.triplets = word(16);
  header.literalPayload = word(20);
  header.tripletPayload = word(24);
  header.literalSpare = static_cast<int>(word(28));
  header.tripletSpare = static_cast<int>(word(40));
  for (std::size_t i = 0; i < 4; ++i) header.literalStates[i] = half(32 + 2 * i);
  header.lState = half(44);
  header.mState = half(46);
  header.dState = half(48);
  std::size_t at = kPlainFrequencies;
  static_cast<void>(forEachTable(header, [&](auto& frequencies) {
    for (std::uint16_t& frequency : frequencies) {
      frequency = half(at);
      at += 2;
    }
    return true;
  }));
  return word(8) == header.payload();
}

bool isSpare(int bits) { return bits >= -7 && bits <= 0; }

bool isInRange(const BlockHeader& header) {
  const bool areStatesInRange =
      std::all_of(header.literalStates.begin(), header.literalStates.end(),
                  [](std::uint16_t state) { return state < kLiteralStates; }) &&
      header.lState < kLStates && header.mState < kMStates && header.dState < kDStates;
  const bool areTablesFull = fillsStates(header.lFrequencies, kLStates) &&
                             fillsStates(header.mFrequencies, kMStates) &&
                             fillsStates(header.dFrequencies, kDStates) &&
                             fillsStates(header.literalFrequencies, kLiteralStates);
  const auto isEmpty = [](const auto& frequencies) {
    return std::all_of(frequencies.begin(), frequencies.end(), [](auto f) { return f == 0; });
  };
  const bool areNeededTablesThere =
      (header.literals == 0 || !isEmpty(header.literalFrequencies)) &&
      (header.triplets == 0 || !(isEmpty(header.lFrequencies) || isEmpty(header.mFrequencies) ||
                                 isEmpty(header.dFrequencies)));
  return areStatesInRange && areTablesFull && areNeededTablesThere && header.literals % 4 == 0 &&
         header.literals <= kMostLiterals && header.triplets <= kMostTriplets &&
         header.rawBytes <= kMostRawBytes && isSpare(header.literalSpare) &&
         isSpare(header.tripletSpare);
}

void writeFrequency(BitWriter& bits, std::uint16_t frequency) {
  for (const FrequencyCode& code : kFrequencyCodes) {
    if (frequency >= code.first + code.count) continue;
    bits.push(code.mark | (frequency - code.first) << code.markBits, code.bits);
    bits.flush();
    return;
  }
}

}  // namespace

std::optional<BlockHeader> readBlockHeader(std::span<const std::uint8_t> bytes) {
  if (bytes.size() < 8) return std::nullopt;
  BlockHeader header;
  header.rawBytes = load<std::uint32_t>(bytes.data() + 4);
  const bool isPlain = load<std::uint32_t>(bytes.data()) == kPlainTables;
  const bool isRead = isPlain ? readPlain(header, bytes) : readPacked(header, bytes);
  if (!isRead || !isInRange(header)) return std::nullopt;
  return header;
}

void appendBlockHeader(const BlockHeader& header, std::vector<std::uint8_t>& bytes) {
  constexpr std::size_t kMostTableBytes =
      (kLSymbols + kMSymbols + kDSymbols + kLiteralSymbols) * 14 / 8 + 16;
  std::array<std::uint8_t, kMostTableBytes> tables{};
  BitWriter bits(tables.data());
  static_cast<void>(forEachTable(header, [&](const auto& frequencies) {
    for (const std::uint16_t frequency : frequencies) writeFrequency(bits, frequency);
    return true;
  }));
  static_cast<void>(bits.finish());
  append(bytes, kPackedTables);
  append(bytes, header.rawBytes);
  const auto spare = [](int bitCount) { return static_cast<std::uint64_t>(bitCount + 7) << 60; };
  append(bytes, std::uint64_t{header.literals} | std::uint64_t{header.literalPayload} << 20 |
                    std::uint64_t{header.triplets} << 40 | spare(header.literalSpare));
  std::uint64_t states = std::uint64_t{header.tripletPayload} << 40 | spare(header.tripletSpare);
  for (unsigned i = 0; i < 4; ++i) states |= std::uint64_t{header.literalStates[i]} << (10 * i);
  append(bytes, states);
  append(bytes, (kPackedFixed + bits.length()) | std::uint64_t{header.lState} << 32 |
                    std::uint64_t{header.mState} << 42 | std::uint64_t{header.dState} << 52);
  bytes.insert(bytes.end(), tables.begin(),
               tables.begin() + static_cast<std::ptrdiff_t>(bits.length()));
}

}  // namespace ORLFoundation::internal::compression
