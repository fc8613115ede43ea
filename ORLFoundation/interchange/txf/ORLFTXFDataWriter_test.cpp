#include <ORLFoundation/interchange/txf/ORLFTXFDataWriter.h>

#include <ORLFoundation/interchange/txf/ORLFTXFDataWriter_testing.h>
#include <ORLFoundation/platform/text/NSStringEncoding.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <ORLFoundation/platform/value/NSDecimal_testing.h>
#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::decimal;
using CallStream = orlftest::ScriptedOutputStream;
using orlftest::WrittenTXF;

const NSDate kDay = orlftest::date("2024-12-31T00:00:00Z");

TEST(ORLFTXFDataWriter, WritesTheHeader) {
  WrittenTXF txf;
  EXPECT_TRUE(txf.writer.writeForHeaderAppName("App", kDay));
  EXPECT_EQ(txf.added(), "V042\nAApp\nD12/31/2024\n^\n");
  EXPECT_TRUE(txf.writer.writeForHeaderAppName(std::nullopt, std::nullopt));
  EXPECT_EQ(txf.added(), "V042\nA(null)\nD(null)\n^\n");
}

TEST(ORLFTXFDataWriter, WritesSummaries) {
  WrittenTXF txf;
  EXPECT_TRUE(txf.writer.writeSummaryForTaxFormCopy(1, 2, "287", decimal("-1234.5")));
  EXPECT_EQ(txf.added(), "TS\nN287\nC1\nL2\n$-1,234.50\n^\n");
  EXPECT_TRUE(
      txf.writer.writeSummaryForTaxFormCopy(-1, std::numeric_limits<NSInteger>::min(), 460, 0.5));
  EXPECT_EQ(txf.added(), "TS\nN460\nC-1\nL-9223372036854775808\n$0.50\n^\n");
  EXPECT_TRUE(txf.writer.writeSummaryForTaxFormCopy(0, 0, nullptr, std::nullopt));
  EXPECT_EQ(txf.added(), "TS\nN(null)\nC0\nL0\n$(null)\n^\n");
}

TEST(ORLFTXFDataWriter, WritesDetailsInColumns) {
  WrittenTXF txf;
  EXPECT_TRUE(txf.writer.writeDetailForTaxFormCopy({.taxFormCopy = 1,
                                                    .lineNumber = 2,
                                                    .refNumber = "480",
                                                    .amount = decimal("-25.5"),
                                                    .detailDate = kDay,
                                                    .detailAccount = "Acct",
                                                    .detailCheckNumber = "12",
                                                    .detailPayee = "Payee",
                                                    .detailMemo = "Memo",
                                                    .detailCategory = "Cat"}));
  EXPECT_EQ(txf.added(), "TD\nN480\nC1\nL2\n$-25.50\nX12/31/2024 Acct 12     Payee" +
                             std::string(36, ' ') + "Memo" + std::string(37, ' ') + "Cat" +
                             std::string(12, ' ') + "\n^\n");
  EXPECT_TRUE(txf.writer.writeDetailForTaxFormCopy({.refNumber = "480", .detailDate = kDay}));
  EXPECT_EQ(txf.added(), "TD\nN480\nC0\nL0\n$(null)\nX12/31/2024 " + std::string(1, ' ') +
                             std::string(6 + 1 + 40 + 1 + 40 + 1 + 15, ' ') + "\n^\n");
}

TEST(ORLFTXFDataWriter, CutsColumnsAtTheirWidths) {
  WrittenTXF txf;
  EXPECT_TRUE(txf.writer.writeDetailForTaxFormCopy({.refNumber = "1",
                                                    .amount = 0,
                                                    .detailDate = kDay,
                                                    .detailAccount = std::string(31, 'a'),
                                                    .detailCheckNumber = "1234567",
                                                    .detailPayee = std::string(41, 'p'),
                                                    .detailMemo = std::string(40, 'm'),
                                                    .detailCategory = std::string(16, 'c')}));
  EXPECT_EQ(txf.added(), "TD\nN1\nC0\nL0\n$0.00\nX12/31/2024 " + std::string(29, 'a') + " 67 " +
                             std::string(39, 'p') + " " + std::string(40, 'm') + " " +
                             std::string(14, 'c') + "\n^\n");
}

TEST(ORLFTXFDataWriter, RefusesARecordWhoseColumnEndsInHalfACharacter) {
  WrittenTXF txf;
  const std::string payee = std::string(38, 'p') + "😀😀";
  for (const NSUInteger encoding : {NSUTF8StringEncoding, NSUTF16LittleEndianStringEncoding}) {
    txf.writer.setEncoding(encoding);
    std::shared_ptr<const NSError> error;
    EXPECT_FALSE(txf.writer.writeDetailForTaxFormCopy({.detailPayee = payee}, &error));
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
    EXPECT_EQ(error->code(), NSFileWriteInapplicableStringEncodingError);
    EXPECT_EQ(error->userInfo()->objectForKey(NSStringEncodingErrorKey).as<NSUInteger>(), encoding);
    EXPECT_FALSE(txf.writer.writeDetailForTaxFormCopy({.detailPayee = payee}));
  }
  EXPECT_EQ(txf.text(), "");
}

TEST(ORLFTXFDataWriter, WritesCapitalGains) {
  const ORLFTXFCapitalGains gains{.securityName = "Acme Corp",
                                  .taxFormCopy = 3,
                                  .lineNumber = 7,
                                  .shares = decimal("12345.6789"),
                                  .costBasis = 100,
                                  .grossProceeds = decimal("1250.255"),
                                  .purchaseDate = orlftest::date("2001-02-03T00:00:00Z"),
                                  .saleDate = kDay};
  const std::string lines =
      "C3\nL7\nP12,345.679 Acme Corp\nD02/03/2001\nD12/31/2024\n$100.00\n$1,250.255\n^\n";
  WrittenTXF txf;
  EXPECT_TRUE(txf.writer.writeCapitalGainsLongForSecurityName(gains));
  EXPECT_EQ(txf.added(), "TD\nN323\n" + lines);
  EXPECT_TRUE(txf.writer.writeCapitalGainsShortForSecurityName(gains));
  EXPECT_EQ(txf.added(), "TD\nN321\n" + lines);
  EXPECT_TRUE(txf.writer.writeCapitalGainsShortForSecurityName({}));
  EXPECT_EQ(txf.added(),
            "TD\nN321\nC0\nL0\nP(null) (null)\nD(null)\nD(null)\n$(null)\n$(null)\n^\n");
}

TEST(ORLFTXFDataWriter, PadsTexts) {
  EXPECT_EQ(ORLFTXFDataWriter::padString("ab", 4), "ab  ");
  EXPECT_EQ(ORLFTXFDataWriter::padString("abcd", 4), "abcd");
  EXPECT_EQ(ORLFTXFDataWriter::padString("abcde", 4), "abcde");
  EXPECT_EQ(ORLFTXFDataWriter::padString("😀", 4), "😀  ");
  EXPECT_EQ(ORLFTXFDataWriter::padString("", 0), "");
}

TEST(ORLFTXFDataWriter, HasFormattersOfTheCurrentLocale) {
  ORLFTXFDataWriter writer;
  EXPECT_EQ(writer.encoding(), NSUInteger{4});
  EXPECT_EQ(writer.dateFormatter(), writer.dateFormatter());
  EXPECT_EQ(writer.dateFormatter()->dateFormat(), "MM/dd/yyyy");
  EXPECT_EQ(writer.amountFormatter()->numberStyle(), NSNumberFormatterDecimalStyle);
  EXPECT_EQ(writer.amountFormatter()->minimumFractionDigits(), 2);
  EXPECT_EQ(writer.securitySharesFormatter()->numberStyle(), NSNumberFormatterDecimalStyle);
  EXPECT_EQ(writer.securitySharesFormatter()->minimumFractionDigits(), 0);
  EXPECT_NE(writer.securitySharesFormatter(), writer.amountFormatter());
  const auto given = std::make_shared<NSNumberFormatter>();
  writer.setSecuritySharesFormatter(given);
  writer.setAmountFormatter(given);
  EXPECT_EQ(writer.securitySharesFormatter(), given);
  EXPECT_EQ(writer.amountFormatter(), given);
  writer.setDateFormatter(nullptr);
  EXPECT_NE(writer.dateFormatter(), nullptr);
}

TEST(ORLFTXFDataWriter, MakesItsStreamOnTheFirstReadAndLeavesItOpen) {
  ORLFTXFDataWriter writer;
  const auto stream = writer.stream();
  EXPECT_EQ(stream->streamStatus(), NSStreamStatusNotOpen);
  EXPECT_TRUE(writer.beginWriting());
  EXPECT_EQ(stream->streamStatus(), NSStreamStatusOpen);
  EXPECT_TRUE(writer.writeStringToStream("any\ntext"));
  stream->close();
  EXPECT_TRUE(writer.beginWriting());
  EXPECT_EQ(stream->streamStatus(), NSStreamStatusClosed);
  std::shared_ptr<const NSError> error;
  EXPECT_FALSE(writer.writeStringToStream("lost", &error));
  EXPECT_EQ(error, stream->streamError());
  writer.setStream(nullptr);
  EXPECT_NE(writer.stream(), stream);
}

TEST(ORLFTXFDataWriter, WritesEachRecordInOneCall) {
  for (const NSInteger answer : {NSInteger{-1}, NSInteger{0}, NSInteger{3}, NSInteger{1000}}) {
    ORLFTXFDataWriter writer;
    const auto stream = std::make_shared<CallStream>(answer);
    writer.setStream(stream);
    const bool isDone = answer != -1;
    std::shared_ptr<const NSError> error;
    EXPECT_EQ(writer.writeForHeaderAppName("App", kDay, &error), isDone);
    EXPECT_EQ(error, isDone ? nullptr : stream->failure_);
    EXPECT_EQ(writer.writeSummaryForTaxFormCopy(1, 1, "1", 1), isDone);
    EXPECT_EQ(writer.writeDetailForTaxFormCopy({}), isDone);
    EXPECT_EQ(writer.writeCapitalGainsLongForSecurityName({}), isDone);
    EXPECT_EQ(writer.writeCapitalGainsShortForSecurityName({}), isDone);
    EXPECT_EQ(stream->calls_.size(), 5U);
    for (const std::string& record : stream->calls_) EXPECT_TRUE(record.ends_with("^\n"));
  }
}

TEST(ORLFTXFDataWriter, WritesNoByteOfARecordThatItsEncodingLacks) {
  const std::pair<NSUInteger, std::string_view> lacking[] = {{NSASCIIStringEncoding, "é"},
                                                             {NSISOLatin1StringEncoding, "€"},
                                                             {NSWindowsCP1252StringEncoding, "ł"},
                                                             {NSMacOSRomanStringEncoding, "ł"}};
  for (const auto& [encoding, character] : lacking) {
    WrittenTXF txf;
    txf.writer.setEncoding(encoding);
    for (const std::size_t length :
         {0U, 2040U, 2044U, 2046U, 2047U, 2048U, 2049U, 4090U, 4095U, 4096U, 4097U}) {
      const std::string name = std::string(length, 'a') + std::string(character) + "b";
      EXPECT_FALSE(txf.writer.writeForHeaderAppName(name, kDay));
      EXPECT_FALSE(txf.writer.writeCapitalGainsLongForSecurityName({.securityName = name}));
      ASSERT_EQ(txf.text(), "") << encoding << ' ' << length;
    }
    EXPECT_TRUE(txf.writer.writeForHeaderAppName(std::string(5000, 'a'), kDay));
  }
}

/// The columns as their rules tell them, on ASCII.
std::string transcribed(std::string account, std::string check, std::string payee, std::string memo,
                        std::string category) {
  if (account.size() >= 31) account = account.substr(0, 29);
  if (check.size() < 7) {
    while (check.size() < 6) check += " ";
  } else {
    check = check.substr(5);
  }
  for (auto* text : {&payee, &memo}) {
    if (text->size() > 40)
      *text = text->substr(0, 39);
    else
      while (text->size() < 40) *text += " ";
  }
  if (category.size() > 15)
    category = category.substr(0, 14);
  else
    while (category.size() < 15) category += " ";
  return "X12/31/2024 " + account + " " + check + " " + payee + " " + memo + " " + category + "\n";
}

TEST(ORLFTXFDataWriter, AgreesWithTheRulesOfColumnsOnRandomTexts) {
  std::mt19937 random(6201);
  const auto text = [&random](std::size_t most) {
    std::string made;
    for (std::size_t length = random() % (most + 1); length > 0; --length)
      made += static_cast<char>(' ' + random() % 95);
    return made;
  };
  WrittenTXF txf;
  for (int round = 0; round < 3000; ++round) {
    const std::string account = text(45), check = text(12), payee = text(60), memo = text(60);
    const std::string category = text(25);
    EXPECT_TRUE(txf.writer.writeDetailForTaxFormCopy({.taxFormCopy = 1,
                                                      .lineNumber = 1,
                                                      .refNumber = 1,
                                                      .amount = 1,
                                                      .detailDate = kDay,
                                                      .detailAccount = account,
                                                      .detailCheckNumber = check,
                                                      .detailPayee = payee,
                                                      .detailMemo = memo,
                                                      .detailCategory = category}));
    ASSERT_EQ(txf.added(), "TD\nN1\nC1\nL1\n$1.00\n" +
                               transcribed(account, check, payee, memo, category) + "^\n");
  }
}

}  // namespace
}  // namespace ORLFoundation
