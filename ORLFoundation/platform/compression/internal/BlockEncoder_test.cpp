#include <ORLFoundation/platform/compression/internal/BlockEncoder.h>

#include <ORLFoundation/platform/compression/LZFSE_testing.h>
#include <ORLFoundation/platform/compression/internal/BitStreams.h>
#include <ORLFoundation/platform/compression/internal/BlockHeader.h>
#include <ORLFoundation/platform/compression/internal/LittleEndian.h>
#include <gtest/gtest.h>
#include <openssl/sha.h>

namespace ORLFoundation::internal::compression {
namespace {

using orlftest::Bytes;
using orlftest::bytesOf;
using orlftest::hexOf;

// "abc" and a match of 15 at a distance of 3, "XYZ" and one of 9 at 21.
Bytes exampleStream() {
  BlockEncoder encoder;
  Bytes stream;
  encoder.add(bytesOf("abc"), 15, 3, stream);
  encoder.add(bytesOf("XYZ"), 9, 21, stream);
  encoder.finishBlock(stream);
  append(stream, kEndOfStream);
  return stream;
}

TEST(BlockEncoder, WritesTheExampleToTheByte) {
  EXPECT_EQ(hexOf(exampleStream()), orlftest::kTablesExample);
}

TEST(BlockHeader, ReadsTheFieldsOfTheExample) {
  const auto header = readBlockHeader(exampleStream());
  ASSERT_TRUE(header);
  EXPECT_EQ(header->size, 140U);
  EXPECT_EQ(header->rawBytes, 30U);
  EXPECT_EQ(header->literals, 8U);
  EXPECT_EQ(header->triplets, 2U);
  EXPECT_EQ(header->literalPayload, 3U);
  EXPECT_EQ(header->tripletPayload, 9U);
  EXPECT_EQ(header->literalSpare, -2);
  EXPECT_EQ(header->tripletSpare, -2);
  EXPECT_EQ(header->lFrequencies[3], 64);
  EXPECT_EQ(header->mFrequencies[9], 32);
  EXPECT_EQ(header->mFrequencies[15], 32);
  EXPECT_EQ(header->dFrequencies[symbolOfD(3)], 128);
  EXPECT_EQ(header->dFrequencies[symbolOfD(21)], 128);
  EXPECT_EQ(header->literalFrequencies[0], 256);
  for (const char letter : {'X', 'Y', 'Z', 'a', 'b', 'c'})
    EXPECT_EQ(header->literalFrequencies[static_cast<std::uint8_t>(letter)], 128);
}

/// The stream of the example with its tables as plain numbers.
Bytes plainForm(const Bytes& stream) {
  const auto header = readBlockHeader(stream);
  Bytes plain;
  append(plain, kPlainTables);
  for (const std::uint32_t word :
       {header->rawBytes, static_cast<std::uint32_t>(header->payload()), header->literals,
        header->triplets, header->literalPayload, header->tripletPayload,
        static_cast<std::uint32_t>(header->literalSpare)})
    append(plain, word);
  for (const std::uint16_t state : header->literalStates) append(plain, state);
  append(plain, static_cast<std::uint32_t>(header->tripletSpare));
  for (const std::uint16_t state : {header->lState, header->mState, header->dState})
    append(plain, state);
  for (const std::uint16_t frequency : header->lFrequencies) append(plain, frequency);
  for (const std::uint16_t frequency : header->mFrequencies) append(plain, frequency);
  for (const std::uint16_t frequency : header->dFrequencies) append(plain, frequency);
  for (const std::uint16_t frequency : header->literalFrequencies) append(plain, frequency);
  append(plain, std::uint16_t{0});
  plain.insert(plain.end(), stream.begin() + static_cast<std::ptrdiff_t>(header->size),
               stream.end());
  return plain;
}

TEST(BlockHeader, ReadsPlainTables) {
  const Bytes plain = plainForm(exampleStream());
  ASSERT_EQ(plain.size(), 788U);
  std::array<std::uint8_t, SHA256_DIGEST_LENGTH> digest{};
  SHA256(plain.data(), plain.size(), digest.data());
  EXPECT_EQ(hexOf(digest), "7b0443fef0e18317760fe9faf65a67599894c800e70608ad90a34a25628861cd");
  EXPECT_EQ(orlftest::unpacked(plain), bytesOf("abcabcabcabcabcabcXYZabcabcabc"));
}

TEST(BlockHeader, ReadsPlainTablesOfLongTextsAlike) {
  const Bytes text = orlftest::ledgerText(9000);
  EXPECT_EQ(orlftest::unpacked(plainForm(orlftest::packed(text))), text);
}

TEST(BlockHeader, WritesEveryFrequencyAsItIsRead) {
  for (std::uint16_t frequency = 0; frequency <= kLiteralStates; ++frequency) {
    BlockHeader header;
    header.literalFrequencies[0] = frequency;
    header.literalFrequencies[1] = static_cast<std::uint16_t>(kLiteralStates - frequency);
    Bytes bytes;
    appendBlockHeader(header, bytes);
    const auto back = readBlockHeader(bytes);
    ASSERT_TRUE(back) << frequency;
    EXPECT_EQ(back->literalFrequencies, header.literalFrequencies) << frequency;
    EXPECT_EQ(back->size, bytes.size());
  }
}

TEST(BitStreams, GiveBackNumbersBackward) {
  orlftest::RandomNumbers random(8);
  for (int round = 0; round < 200; ++round) {
    std::vector<std::pair<std::uint32_t, unsigned>> numbers(random() % 60);
    for (auto& [value, count] : numbers) {
      count = random() % 25;
      value = static_cast<std::uint32_t>(random()) & ((1U << count) - 1);
    }
    Bytes bytes(numbers.size() * 4 + 16);
    BitWriter writer(bytes.data());
    for (const auto& [value, count] : numbers) {
      writer.push(value, count);
      writer.flush();
    }
    const int spare = writer.finish();
    BackwardBits reader;
    ASSERT_TRUE(reader.begin(std::span(bytes).first(writer.length()), spare));
    for (auto number = numbers.rbegin(); number != numbers.rend(); ++number) {
      reader.refill();
      ASSERT_EQ(reader.pull(number->second), number->first);
      ASSERT_FALSE(reader.isOverdrawn());
    }
    EXPECT_EQ(reader.left(), 0);
    static_cast<void>(reader.pull(1));
    EXPECT_TRUE(reader.isOverdrawn());
  }
}

TEST(BitStreams, RefuseBitsAboveTheLastOne) {
  BackwardBits reader;
  const Bytes bytes{0x81};
  EXPECT_FALSE(reader.begin(bytes, -1));
  EXPECT_TRUE(reader.begin(bytes, 0));
  EXPECT_FALSE(reader.begin({}, -1));
  EXPECT_FALSE(reader.begin(bytes, 1));
  EXPECT_FALSE(reader.begin(bytes, -8));
}

// After a block that an encoder wrote every state is back at 0, and the padding is left.
TEST(BlockEncoder, LeavesTheDecoderWhereItBegan) {
  const Bytes stream = orlftest::packed(orlftest::ledgerText(20000));
  const auto header = readBlockHeader(stream);
  ASSERT_TRUE(header);
  std::array<LiteralState, kLiteralStates> table;
  makeLiteralStates(header->literalFrequencies, table);
  BackwardBits bits;
  ASSERT_TRUE(bits.begin(std::span(stream).subspan(header->size, header->literalPayload),
                         header->literalSpare));
  std::array<std::size_t, 4> states{};
  for (std::size_t i = 0; i < 4; ++i) states[i] = header->literalStates[i];
  for (std::size_t i = 0; i < header->literals; ++i) {
    bits.refill();
    const LiteralState& entry = table[states[i % 4]];
    states[i % 4] = static_cast<std::size_t>(entry.next) + bits.pull(entry.bits);
  }
  EXPECT_EQ(states, (std::array<std::size_t, 4>{}));
  EXPECT_EQ(bits.left(), 0);
}

}  // namespace
}  // namespace ORLFoundation::internal::compression
