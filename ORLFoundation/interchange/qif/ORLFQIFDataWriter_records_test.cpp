#include <ORLFoundation/interchange/qif/ORLFQIFDataWriter_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <ORLFoundation/platform/value/NSDecimal_testing.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::WrittenQIF;
using Text = std::optional<std::string_view>;

const NSDate kRecordDay = orlftest::date("2024-03-05T00:00:00Z");

NSDecimalNumber decimal(std::string_view text) { return NSDecimalNumber(orlftest::decimal(text)); }

TEST(ORLFQIFDataWriter, WritesAccounts) {
  WrittenQIF qif;
  EXPECT_TRUE(qif.writer.writeAccountName({.name = "Main", .type = 2}));
  EXPECT_EQ(qif.added(), "NMain\nTCCard\n^\n");
  EXPECT_TRUE(qif.writer.writeAccountName({.name = "Main",
                                           .type = 5,
                                           .description = "Savings",
                                           .balance = decimal("1234.50"),
                                           .creditLimit = 900,
                                           .salesTaxRate = "7 %"}));
  EXPECT_EQ(qif.added(), "NMain\nT401k/403B\nR7 %\nDSavings\nL900\nB1234.5\n^\n");
  EXPECT_TRUE(qif.writer.writeAccountName(
      {.description = "", .balance = "", .creditLimit = "", .salesTaxRate = ""}));
  EXPECT_EQ(qif.added(), "N(null)\nTBank\nR\nL\nB\n^\n");
}

TEST(ORLFQIFDataWriter, WritesCategories) {
  WrittenQIF qif;
  const std::pair<std::int64_t, std::string_view> types[] = {
      {0, "E\n"},
      {1, "I\n"},
      {2, "E\n"},
      {3, ""},
      {-1, ""},
      {std::numeric_limits<std::int64_t>::min(), ""},
      {std::numeric_limits<std::int64_t>::max(), ""}};
  for (const auto& [type, line] : types) {
    EXPECT_TRUE(qif.writer.writeCategoryName({.name = "Food", .type = type}));
    EXPECT_EQ(qif.added(), "NFood\n" + std::string(line) + "^\n") << type;
  }
  EXPECT_TRUE(qif.writer.writeCategoryName(
      {.name = "Pay", .type = 1, .description = "Work", .taxible = true, .taxCode = 460}));
  EXPECT_EQ(qif.added(), "NPay\nI\nDWork\nT\nR460\n^\n");
  EXPECT_TRUE(qif.writer.writeCategoryName({.type = 9, .description = "", .taxCode = ""}));
  EXPECT_EQ(qif.added(), "N(null)\nR\n^\n");
}

TEST(ORLFQIFDataWriter, WritesTransactionsWithTheLinesThatArePresent) {
  WrittenQIF qif;
  EXPECT_TRUE(qif.writer.writeRawNonInvestmentTransactionAmount({.amount = decimal("-1234.5"),
                                                                 .date = kRecordDay,
                                                                 .cleared = ORLFQIFReconciled,
                                                                 .refNum = "17",
                                                                 .payee = "Müller & Co",
                                                                 .memo = "note",
                                                                 .address = "Street 1\nTown",
                                                                 .category = "Food"}));
  EXPECT_EQ(qif.added(), "D3/5/24\nT-1,234.50\nCR\nN17\nPMüller & Co\nMnote\nLFood\n");
  EXPECT_TRUE(qif.writer.writeRawNonInvestmentTransactionAmount(
      {.date = kRecordDay, .refNum = "", .payee = "", .memo = "", .category = ""}));
  EXPECT_EQ(qif.added(), "D3/5/24\nT0.00\nN\nP\nM\nL\n");
  EXPECT_TRUE(qif.writer.writeRawNonInvestmentTransactionAmount({.address = "Street"}));
  EXPECT_EQ(qif.added(), "D(null)\nT0.00\n");
  EXPECT_TRUE(qif.writer.endTransaction());
  EXPECT_EQ(qif.added(), "^\n");
}

TEST(ORLFQIFDataWriter, WritesFifteenDigitsOfADecimal) {
  const std::pair<std::string_view, std::string_view> amounts[] = {
      {"99999999999999.99", "100,000,000,000,000.00"},
      {"-1234567890123.456", "-1,234,567,890,123.46"},
      {"123456789012.345", "123,456,789,012.345"},
      {"0.1234567890123456789", "0.123"},
      {"12000000000000000000", "12,000,000,000,000,000,000.00"},
      {"1.0000000000000000000", "1.00"}};
  WrittenQIF qif;
  for (const auto& [amount, text] : amounts) {
    qif.writer.writeRawNonInvestmentTransactionAmount(
        {.amount = decimal(amount), .date = kRecordDay});
    EXPECT_EQ(qif.added(), "D3/5/24\nT" + std::string(text) + "\n");
  }
  qif.writer.writeRawNonInvestmentTransactionAmount(
      {.amount = NSDecimal::notANumber(), .date = kRecordDay});
  EXPECT_EQ(qif.added(), "D3/5/24\nTNaN\n");
}

TEST(ORLFQIFDataWriter, WritesTheLargestAmounts) {
  const std::string nines(38, '9');
  std::string text = "1";
  for (int group = 0; group < 55; ++group) text += ",000";
  WrittenQIF qif;
  for (const char* sign : {"", "-"}) {
    qif.writer.writeRawNonInvestmentTransactionAmount(
        {.amount = decimal(sign + nines + "e+127"), .date = kRecordDay});
    EXPECT_EQ(qif.added(), std::string("D3/5/24\nT") + sign + text + ".00\n");
  }
}

TEST(ORLFQIFDataWriter, WritesALineForEveryDate) {
  WrittenQIF qif;
  for (const double seconds : {std::numeric_limits<double>::quiet_NaN(), HUGE_VAL, -HUGE_VAL, 1e300,
                               -1e300, 9.3e15, -9.3e15}) {
    EXPECT_TRUE(qif.writer.writeRawNonInvestmentTransactionAmount(
        {.date = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds)}));
    const std::string record = qif.added();
    EXPECT_TRUE(record.starts_with("D") && record.ends_with("\nT0.00\n")) << record;
  }
}

TEST(ORLFQIFDataWriter, WritesTheClearedStatesThatItKnows) {
  WrittenQIF qif;
  const std::pair<std::int32_t, std::string_view> states[] = {
      {0, ""},
      {1, "Cc\n"},
      {2, "CR\n"},
      {3, ""},
      {-1, ""},
      {257, ""},
      {std::numeric_limits<std::int32_t>::min(), ""},
      {std::numeric_limits<std::int32_t>::max(), ""}};
  for (const auto& [cleared, line] : states) {
    qif.writer.writeRawNonInvestmentTransactionAmount({.date = kRecordDay, .cleared = cleared});
    EXPECT_EQ(qif.added(), "D3/5/24\nT0.00\n" + std::string(line)) << cleared;
    qif.writer.writeRawInvestmentTransactionType({.date = kRecordDay, .cleared = cleared});
    EXPECT_EQ(qif.added(), "D3/5/24\nNCash\n" + std::string(line)) << cleared;
  }
}

struct TargetRow {
  std::string_view name;
  Text account, category;
  std::vector<std::string> tags;
  std::string_view line;
};

const std::vector<TargetRow>& targets() {
  static const std::vector<TargetRow>& rows = *new std::vector<TargetRow>{
      {"Nothing", {}, {}, {}, ""},
      {"Category", {}, "Food/Out", {}, "LFood-Out\n"},
      {"ColonsStayInCategories", {}, "Food:Out/In", {}, "LFood:Out-In\n"},
      {"EmptyCategory", {}, "", {}, "L\n"},
      {"Account", "A/B:C", {}, {}, "L[A/B:C]\n"},
      {"EmptyAccount", "", {}, {}, "L[]\n"},
      {"AccountBeforeCategory", "Name", "Lost", {}, "L[Name]\n"},
      {"Tags", {}, {}, {"tag"}, "L/tag\n"},
      {"ColonsInTags", {}, "Food/Out", {"a:b", "c"}, "LFood-Out/a-b:c\n"},
      {"SlashesStayInTags", {}, {}, {"a/b"}, "L/a/b\n"},
      {"EmptyTags", {}, {}, {"", ""}, "L/:\n"},
      {"EverythingButTheCategory", "Name", "Lost", {"x", "y:", "z"}, "L[Name]/x:y-:z\n"},
      {"EmptyCategoryWithTags", {}, "", {"t"}, "L/t\n"}};
  return rows;
}

TEST(ORLFQIFDataWriter, TellsWhereAnAmountGoes) {
  for (const TargetRow& row : targets()) {
    WrittenQIF qif;
    EXPECT_TRUE(qif.writer.writeRawNonInvestmentTransactionAmount(
        {.date = kRecordDay, .account = row.account, .category = row.category, .tags = row.tags}));
    EXPECT_EQ(qif.added(), "D3/5/24\nT0.00\n" + std::string(row.line)) << row.name;
    EXPECT_TRUE(qif.writer.writeRawNonInvestmentSplitItemAmount(
        {.account = row.account, .category = row.category, .tags = row.tags}));
    std::string line(row.line);
    if (!line.empty()) line.front() = 'S';
    EXPECT_EQ(qif.added(), line + "$0.00\n") << row.name;
  }
}

TEST(ORLFQIFDataWriter, LeavesOutWhatAFormOfTransactionLacks) {
  const ORLFQIFTransaction all{.amount = 1,
                               .date = kRecordDay,
                               .cleared = ORLFQIFCleared,
                               .refNum = "r",
                               .payee = "p",
                               .memo = "m",
                               .address = "a",
                               .account = "Acct",
                               .category = "Cat",
                               .tags = {"t"}};
  const std::string lines = "D3/5/24\nT1.00\nCc\nNr\nPp\nMm\n";
  WrittenQIF qif;
  EXPECT_TRUE(qif.writer.writeNonInvestmentTransactionAmount(all));
  EXPECT_EQ(qif.added(), lines + "LCat/t\n");
  EXPECT_TRUE(qif.writer.writeNonInvestmentTransferAmount(all));
  EXPECT_EQ(qif.added(), lines + "L[Acct]/t\n");
  EXPECT_TRUE(qif.writer.writeNonInvestmentSplitTransactionAmount(all));
  EXPECT_EQ(qif.added(), lines);
}

TEST(ORLFQIFDataWriter, WritesSplitItemsWithTheOppositeSign) {
  WrittenQIF qif;
  const std::pair<std::optional<NSDecimalNumber>, std::string_view> amounts[] = {
      {decimal("10"), "$-10.00\n"},
      {decimal("-1234.567"), "$1,234.567\n"},
      {decimal("0"), "$0.00\n"},
      {std::nullopt, "$0.00\n"}};
  for (const auto& [amount, line] : amounts) {
    EXPECT_TRUE(qif.writer.writeRawNonInvestmentSplitItemAmount({.amount = amount}));
    EXPECT_EQ(qif.added(), line);
  }
  const ORLFQIFSplitItem all{
      .amount = decimal("5"), .memo = "m", .account = "Acct", .category = "Cat", .tags = {"t"}};
  EXPECT_TRUE(qif.writer.writeNonInvestmentSplitItemAmount(all));
  EXPECT_EQ(qif.added(), "Em\nSCat/t\n$-5.00\n");
  EXPECT_TRUE(qif.writer.writeNonInvestmentSplitTransferItemAmount(all));
  EXPECT_EQ(qif.added(), "Em\nS[Acct]/t\n$-5.00\n");
  EXPECT_TRUE(qif.writer.writeNonInvestmentSplitItemAmount({.memo = ""}));
  EXPECT_EQ(qif.added(), "E\n$0.00\n");
}

TEST(ORLFQIFDataWriter, WritesInvestments) {
  WrittenQIF qif;
  EXPECT_TRUE(qif.writer.writeRawInvestmentTransactionType({.type = 2,
                                                            .security = "Acme",
                                                            .date = kRecordDay,
                                                            .price = decimal("12.5"),
                                                            .qField = 1000,
                                                            .commission = decimal("9.95"),
                                                            .transactionAmount = 12509.95,
                                                            .cleared = ORLFQIFCleared,
                                                            .payee = "Broker",
                                                            .memo = "first",
                                                            .lField = "any",
                                                            .lFieldAmount = decimal("1234.50")}));
  EXPECT_EQ(qif.added(),
            "D3/5/24\nNBuyX\nYAcme\nI12.50\nQ1,000.00\nT12,509.95\nO9.95\nCc\nPBroker\n"
            "Mfirst\nLany\n$1234.5\n");
  EXPECT_TRUE(qif.writer.writeRawInvestmentTransactionType({}));
  EXPECT_EQ(qif.added(), "D(null)\nNCash\n");
  EXPECT_TRUE(qif.writer.writeRawInvestmentTransactionType({.security = "",
                                                            .date = kRecordDay,
                                                            .payee = "",
                                                            .memo = "",
                                                            .lField = "",
                                                            .lFieldAmount = ""}));
  EXPECT_EQ(qif.added(), "D3/5/24\nNCash\nY\nP\nM\nL\n$\n");
}

TEST(ORLFQIFDataWriter, DropsTheCategoryOfInvestments) {
  const ORLFQIFInvestment all{.type = 4,
                              .security = "Acme",
                              .date = kRecordDay,
                              .price = 1,
                              .quantity = 2,
                              .commission = 3,
                              .transactionAmount = 4,
                              .cleared = ORLFQIFReconciled,
                              .payee = "p",
                              .memo = "m",
                              .category = "Lost",
                              .account = "Checking",
                              .transferAmount = decimal("1234.5")};
  const std::string lines = "D3/5/24\nNSellX\nYAcme\nI1.00\nQ2.00\nT4.00\nO3.00\nCR\nPp\nMm\n";
  WrittenQIF qif;
  EXPECT_TRUE(qif.writer.writeInvestmentTransactionType(all));
  EXPECT_EQ(qif.added(), lines);
  EXPECT_TRUE(qif.writer.writeInvestmentTransferType(all));
  EXPECT_EQ(qif.added(), lines + "L[Checking]\n$1234.5\n");
  EXPECT_TRUE(qif.writer.writeInvestmentTransferType({.date = kRecordDay}));
  EXPECT_EQ(qif.added(), "D3/5/24\nNCash\nL[(null)]\n");
}

TEST(ORLFQIFDataWriter, WritesSplitsOfSecurities) {
  WrittenQIF qif;
  EXPECT_TRUE(qif.writer.writeInvestmentSplitSecurity({.security = "Acme",
                                                       .date = kRecordDay,
                                                       .ratio = 20,
                                                       .cleared = ORLFQIFCleared,
                                                       .memo = "2 for 1"}));
  EXPECT_EQ(qif.added(), "D3/5/24\nNStkSplit\nYAcme\nQ20.00\nCc\nM2 for 1\n");
}

TEST(ORLFQIFDataWriter, WritesSecurities) {
  WrittenQIF qif;
  EXPECT_TRUE(qif.writer.writeRawSecurityName("Acme Corp", "ACM", 2, 0));
  EXPECT_EQ(qif.added(), "NAcme Corp\nSACM\nTMutual Fund\nGGrowth\n^\n");
  EXPECT_TRUE(qif.writer.writeSecurityName(std::nullopt, std::nullopt, 9, 1));
  EXPECT_EQ(qif.added(), "N\nS\nT\nG\n^\n");
  EXPECT_TRUE(qif.writer.endSecurityList());
  EXPECT_EQ(qif.added(), "^\n");
}

TEST(ORLFQIFDataWriter, WritesPricesAsTheirLocaleGroupsThem) {
  WrittenQIF qif;
  EXPECT_TRUE(qif.writer.writeRawSecurityPriceSymbol("ACM", decimal("1234.5"), kRecordDay));
  EXPECT_EQ(qif.added(), "\"ACM\",1,234.50,\"3/5/24\"\n");
  EXPECT_TRUE(qif.writer.writeSecurityPriceSymbol(std::nullopt, std::nullopt, std::nullopt));
  EXPECT_EQ(qif.added(), "\"\",(null),\"(null)\"\n");
  WrittenQIF german("de_DE");
  EXPECT_TRUE(german.writer.writeSecurityPriceSymbol("ACM", decimal("1234.5"), kRecordDay));
  EXPECT_EQ(german.added(), "\"ACM\",1.234,50,\"05.03.24\"\n");
}

/// A record as the tables of lines tell it, letter by letter.
std::string transcribed(const ORLFQIFTransaction& given, const std::string& amount) {
  std::string record = "D3/5/24\nT" + amount + "\n";
  if (given.cleared == 1) record += "Cc\n";
  if (given.cleared == 2) record += "CR\n";
  if (given.refNum) record += "N" + std::string(*given.refNum) + "\n";
  if (given.payee) record += "P" + std::string(*given.payee) + "\n";
  if (given.memo) record += "M" + std::string(*given.memo) + "\n";
  std::optional<std::string> tagText;
  for (std::string tag : given.tags) {
    for (char& c : tag)
      if (c == ':') c = '-';
    tagText = tagText ? *tagText + ":" + tag : "/" + tag;
  }
  std::optional<std::string> target;
  if (given.account) {
    target = "[" + std::string(*given.account) + "]";
  } else if (given.category) {
    target = std::string(*given.category);
    for (char& c : *target)
      if (c == '/') c = '-';
  }
  if (target && tagText) return record + "L" + *target + *tagText + "\n";
  if (target) return record + "L" + *target + "\n";
  return tagText ? record + "L" + *tagText + "\n" : record;
}

TEST(ORLFQIFDataWriter, AgreesWithTheTablesOfLinesOnRandomTransactions) {
  std::mt19937 random(6101);
  const std::string_view texts[] = {"", "a", "a/b", "x:y/z", "é日😀", "[b]", "long / text: here"};
  const auto text = [&]() -> Text {
    const std::size_t at = random() % (std::size(texts) + 2);
    return at < std::size(texts) ? Text(texts[at]) : std::nullopt;
  };
  WrittenQIF qif;
  for (int round = 0; round < 5000; ++round) {
    ORLFQIFTransaction given{.date = kRecordDay,
                             .cleared = static_cast<std::int32_t>(random() % 5) - 1,
                             .refNum = text(),
                             .payee = text(),
                             .memo = text(),
                             .address = text(),
                             .account = text(),
                             .category = text()};
    for (std::size_t tags = random() % 4; tags > 0; --tags)
      given.tags.emplace_back(text().value_or("tag"));
    const auto cents = static_cast<std::uint32_t>(random() % 100000);
    given.amount = NSDecimal(cents, -2, false);
    std::string digits = std::to_string(cents);
    if (digits.size() < 3) digits.insert(0, 3 - digits.size(), '0');
    if (digits.size() > 5) digits.insert(digits.size() - 5, ",");
    digits.insert(digits.size() - 2, ".");
    EXPECT_TRUE(qif.writer.writeRawNonInvestmentTransactionAmount(given));
    ASSERT_EQ(qif.added(), transcribed(given, digits)) << round;
  }
}

}  // namespace
}  // namespace ORLFoundation
