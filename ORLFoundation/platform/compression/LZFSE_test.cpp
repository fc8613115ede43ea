#include <ORLFoundation/platform/compression/LZFSE.h>

#include <ORLFoundation/platform/compression/LZFSE_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ORLFoundation::internal::compression {
namespace {

using orlftest::Bytes;
using orlftest::bytesOf;
using orlftest::bytesOfHex;
using orlftest::hexOf;
using orlftest::packed;
using orlftest::unpacked;
using testing::Optional;

TEST(LZFSE, StoresWhatIsTooShortToShrink) {
  EXPECT_EQ(hexOf(packed({})), "6276782d0000000062767824");
  EXPECT_EQ(hexOf(packed(bytesOf("abc"))), "6276782d0300000061626362767824");
  EXPECT_THAT(unpacked(bytesOfHex("6276782d0300000061626362767824")), Optional(bytesOf("abc")));
}

TEST(LZFSE, StoresWhatDoesNotShrink) {
  for (const std::size_t count : {8U, 100U, 4095U, 4096U, 50000U}) {
    const Bytes bytes = orlftest::randomBytes(count, 256, 1);
    const Bytes stream = packed(bytes);
    EXPECT_EQ(stream.size(), count + 12) << count;
    EXPECT_THAT(unpacked(stream), Optional(bytes));
  }
}

TEST(LZFSE, ReadsEveryOperationOfLZVN) {
  const Bytes stream = bytesOfHex(
      "6276786e4d0000002e000000e36162633803f54e5a8714005152aa650021e0003031323334353637383961626364"
      "6566"
      "f004060000000000000062767824");
  EXPECT_THAT(unpacked(stream),
              Optional(bytesOf("abcabcabcabcabcabcZbcZbQRcab!bcabcabcabca0123456789abcdefbcabcabca"
                               "0123456789a")));
}

TEST(LZFSE, ReadsPackedTables) {
  EXPECT_THAT(unpacked(bytesOfHex(orlftest::kTablesExample)),
              Optional(bytesOf("abcabcabcabcabcabcXYZabcabcabc")));
}

TEST(LZFSE, PacksARunOfZerosIntoTablesOfOneLiteral) {
  const Bytes zeros(300000);
  const Bytes stream = packed(zeros);
  EXPECT_LE(stream.size(), 322U);
  EXPECT_THAT(unpacked(stream), Optional(zeros));
}

TEST(LZFSE, ReachesBackIntoEarlierBlocks) {
  // "abc" stored, then a match of six bytes at a distance of three, in LZVN.
  const Bytes stream = bytesOfHex(
      "6276782d03000000616263"
      "6276786e06000000"
      "0a0000001803060000000000000062767824");
  EXPECT_THAT(unpacked(stream), Optional(bytesOf("abcabcabc")));
}

TEST(LZFSE, RefusesMoreThanTheCallerAllows) {
  const Bytes stream = packed(Bytes(300000));
  EXPECT_EQ(unpacked(stream, 299999), std::nullopt);
  EXPECT_TRUE(unpacked(stream, 300000).has_value());
}

TEST(LZFSE, FillsExactlyWhatIsAskedFor) {
  const Bytes stream = packed(orlftest::ledgerText(5000));
  LZFSEDecoder decoder;
  for (const std::size_t count : {4999U, 5001U}) {
    Bytes output(count);
    EXPECT_FALSE(decoder.decode(stream, output)) << count;
  }
  Bytes output(5000);
  EXPECT_TRUE(decoder.decode(stream, output));
  EXPECT_EQ(output, orlftest::ledgerText(5000));
}

TEST(LZFSE, RefusesWhatIsNoStream) {
  const auto tables = bytesOfHex(orlftest::kTablesExample);
  const std::vector<std::pair<const char*, std::string>> cases{
      {"nothing", ""},
      {"no end", "6276782d03000000616263"},
      {"more after the end", "6276782400"},
      {"an unknown block", "6276783300000000000000000000000062767824"},
      {"a stored block cut off", "6276782d0500000061626362767824"},
      {"LZVN of more than its payload can hold",
       "6276786e00100000080000000600000000000000"
       "62767824"},
      {"LZVN of fewer bytes than it says",
       "6276786e040000000c000000e36162630600000000000000"
       "62767824"},
      {"LZVN with bytes after its end",
       "6276786e030000000d000000e3616263060000000000000000"
       "62767824"},
      {"LZVN with an end that is not zero",
       "6276786e030000000c000000e36162630600000000000001"
       "62767824"},
      {"LZVN that reaches before the first byte",
       "6276786e060000000e000000e36162630004060000000000000062767824"},
      {"LZVN with a distance of zero",
       "6276786e060000000e000000e36162630000060000000000000062767824"},
      {"LZVN that repeats a distance that it never had",
       "6276786e060000000d000000e3616263f3060000000000000062767824"},
  };
  for (const auto& [name, hex] : cases) EXPECT_EQ(unpacked(bytesOfHex(hex)), std::nullopt) << name;
  for (std::size_t length = 0; length < tables.size(); ++length)
    EXPECT_EQ(unpacked(std::span(tables).first(length)), std::nullopt) << length;
}

TEST(LZFSE, RefusesHeadersOutOfRange) {
  struct Change {
    const char* name;
    std::size_t at;
    unsigned bits;
  };
  const Change changes[] = {
      {"literals that are no multiple of four", 8, 1},
      {"more than 40,000 literals", 10, 8},
      {"more than 10,000 triplets", 14, 0x4},
      {"an unused bit", 15, 0x80},
      {"a state of run lengths that is not there", 28, 0x40},
      {"another size of the header", 24, 1},
      {"frequencies that are too many", 32, 0x02},
  };
  for (const Change& change : changes) {
    Bytes stream = bytesOfHex(orlftest::kTablesExample);
    stream[change.at] ^= static_cast<std::uint8_t>(change.bits);
    EXPECT_EQ(unpacked(stream), std::nullopt) << change.name;
  }
}

TEST(LZFSE, RefusesInputsOfTwoGigabytes) {
  LZFSEEncoder encoder;
  Bytes output;
  const std::uint8_t byte = 0;
  EXPECT_THROW(encoder.append({&byte, std::size_t{0x7fffffff}}, output), std::length_error);
  EXPECT_TRUE(output.empty());
}

}  // namespace
}  // namespace ORLFoundation::internal::compression
