#include <ORLFoundation/interchange/qif/ORLFQIFDataWriter_testing.h>
#include <ORLFoundation/platform/text/NSStringEncoding.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::WrittenQIF;

const NSDate kEncodedDay = orlftest::date("2024-03-05T00:00:00Z");

struct EncodingRow {
  std::string_view name;
  NSUInteger encoding;
  /// A character that the encoding has, and the widest it has in UTF-8.
  std::string_view wide;
  /// One that it lacks; nil where it lacks none.
  std::optional<std::string_view> lacking;
};

const EncodingRow kEncodings[] = {
    {"UTF8", NSUTF8StringEncoding, "😀", std::nullopt},
    {"UTF16", NSUTF16StringEncoding, "😀", std::nullopt},
    {"BigEndian", NSUTF16BigEndianStringEncoding, "😀", std::nullopt},
    {"LittleEndian", NSUTF16LittleEndianStringEncoding, "😀", std::nullopt},
    {"ASCII", NSASCIIStringEncoding, "~", "é"},
    {"Latin1", NSISOLatin1StringEncoding, "ÿ", "€"},
    {"WindowsLatin1", NSWindowsCP1252StringEncoding, "€", "ł"},
    {"MacRoman", NSMacOSRomanStringEncoding, "€", "ł"}};

/// Around each multiple of 2,048 bytes of text.
std::vector<std::size_t> lengthsAroundEdges() {
  std::vector<std::size_t> lengths{0, 1};
  for (const std::size_t edge : {2048U, 4096U, 6144U, 8192U})
    for (std::size_t length = edge - 12; length <= edge + 3; ++length) lengths.push_back(length);
  return lengths;
}

/// A record of a memo, and how many bytes of it stand before the memo's text.
std::string recordOf(const std::string& memo) { return "D3/5/24\nT1.00\nM" + memo + "\n"; }

bool write(WrittenQIF& qif, const std::string& memo, NSErrorSlot error = nullptr) {
  return qif.writer.writeRawNonInvestmentTransactionAmount(
      {.amount = 1, .date = kEncodedDay, .memo = memo}, error);
}

TEST(ORLFQIFDataWriterEncoding, WritesNoByteOfARecordWithACharacterThatItLacks) {
  for (const EncodingRow& row : kEncodings) {
    if (!row.lacking) continue;
    WrittenQIF qif;
    qif.writer.setEncoding(row.encoding);
    for (const std::size_t length : lengthsAroundEdges()) {
      for (const std::string& behind : {std::string(), std::string("b"), std::string(5000, 'b')}) {
        std::shared_ptr<const NSError> error;
        const std::string memo = std::string(length, 'a') + std::string(*row.lacking) + behind;
        ASSERT_FALSE(write(qif, memo, &error)) << row.name << length;
        ASSERT_NE(error, nullptr);
        EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
        EXPECT_EQ(error->code(), NSFileWriteInapplicableStringEncodingError);
        EXPECT_EQ(error->userInfo()->objectForKey(NSStringEncodingErrorKey).as<NSUInteger>(),
                  row.encoding);
        ASSERT_FALSE(write(qif, memo));
        ASSERT_EQ(qif.text(), "") << row.name << length;
      }
    }
  }
}

TEST(ORLFQIFDataWriterEncoding, KeepsEarlierRecordsAndWritesLaterOnes) {
  WrittenQIF qif;
  qif.writer.setEncoding(NSISOLatin1StringEncoding);
  EXPECT_TRUE(write(qif, "café"));
  EXPECT_FALSE(write(qif, "€"));
  EXPECT_FALSE(write(qif, "日本"));
  EXPECT_TRUE(qif.writer.endTransaction());
  EXPECT_EQ(qif.text(), "D3/5/24\nT1.00\nMcaf\xE9\n^\n");
}

TEST(ORLFQIFDataWriterEncoding, CutsNoCharacterThatStraddlesAnEdge) {
  for (const EncodingRow& row : kEncodings) {
    for (const std::size_t length : lengthsAroundEdges()) {
      WrittenQIF qif;
      qif.writer.setEncoding(row.encoding);
      std::string memo(length, 'a');
      for (int times = 0; times < 3; ++times) memo += row.wide;
      memo += std::string(100, 'b');
      ASSERT_TRUE(write(qif, memo)) << row.name << length;
      const NSData data(qif.text());
      ASSERT_EQ(stringWithData(data, row.encoding), recordOf(memo)) << row.name << length;
    }
  }
}

TEST(ORLFQIFDataWriterEncoding, BeginsEachWriteInUTF16WithAByteOrderMark) {
  WrittenQIF qif;
  qif.writer.setEncoding(NSUTF16StringEncoding);
  EXPECT_TRUE(qif.writer.endTransaction());
  EXPECT_TRUE(qif.writer.endTransaction());
  const std::string text = qif.text();
  ASSERT_EQ(text.size(), 12U);
  EXPECT_EQ(text.substr(0, 6), text.substr(6));
  EXPECT_EQ(stringWithData(NSData(std::string_view(text).substr(0, 6)), NSUTF16StringEncoding),
            "^\n");
}

TEST(ORLFQIFDataWriterEncoding, RefusesEncodingsThatAreNotKnown) {
  WrittenQIF qif;
  for (const NSUInteger encoding : {NSUInteger{0}, NSUInteger{2}, ~NSUInteger{0}}) {
    qif.writer.setEncoding(encoding);
    std::shared_ptr<const NSError> error;
    EXPECT_FALSE(qif.writer.endTransaction(&error));
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->code(), 517);
    EXPECT_EQ(error->userInfo()->objectForKey(NSStringEncodingErrorKey).as<NSUInteger>(), encoding);
  }
  EXPECT_EQ(qif.text(), "");
}

TEST(ORLFQIFDataWriterEncoding, TakesBrokenBytesForTheReplacementCharacter) {
  WrittenQIF qif;
  EXPECT_TRUE(write(qif, "a\xFFz"));
  EXPECT_EQ(qif.text(), recordOf("a\uFFFDz"));
  qif.writer.setEncoding(NSWindowsCP1252StringEncoding);
  EXPECT_FALSE(write(qif, "a\xFFz"));
}

}  // namespace
}  // namespace ORLFoundation
