#include <ORLFoundation/interchange/qif/ORLFQIFDataWriter.h>

#include <ORLFoundation/interchange/qif/ORLFQIFDataWriter_testing.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <limits>
#include <set>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::date;
using CallStream = orlftest::ScriptedOutputStream;
using orlftest::WrittenQIF;
using Writer = ORLFQIFDataWriter;

constexpr auto kLeast32 = std::numeric_limits<std::int32_t>::min();
constexpr auto kMost32 = std::numeric_limits<std::int32_t>::max();
constexpr auto kLeast64 = std::numeric_limits<std::int64_t>::min();
constexpr auto kMost64 = std::numeric_limits<std::int64_t>::max();

TEST(ORLFQIFDataWriter, NamesAccountTypes) {
  const char* const names[] = {"Bank",       "Cash",      "CCard", "Invst",
                               "MutualFund", "401k/403B", "Oth A", "Oth L"};
  for (std::int32_t type = 0; type < 8; ++type)
    EXPECT_EQ(Writer::stringForAccountType(type), names[type]) << type;
  for (const std::int32_t type : {-1, 8, 9, 256, kLeast32, kMost32})
    EXPECT_EQ(Writer::stringForAccountType(type), "Bank") << type;
}

TEST(ORLFQIFDataWriter, NamesInvestmentActions) {
  const std::vector<std::pair<std::int32_t, std::string>> rows{
      {1, "Buy"},         {2, "BuyX"},      {3, "Sell"},       {4, "SellX"},     {5, "BuyToCover"},
      {6, "BuyToCoverX"}, {7, "SellShort"}, {8, "SellShortX"}, {9, "CGLong"},    {10, "CGLongX"},
      {11, "CGMid"},      {12, "CGMidX"},   {13, "CGShort"},   {14, "CGShortX"}, {15, "Div"},
      {16, "DivX"},       {17, "IntInc"},   {18, "IntIncX"},   {19, "MargInt"},  {20, "MargIntX"},
      {21, "RtnCap"},     {22, "RtnCapX"},  {23, "ReinvDiv"},  {24, "ReinvInt"}, {25, "ReinvLg"},
      {26, "ReinvMd"},    {27, "ReinvSh"},  {28, "ShrsIn"},    {29, "XIn"},      {30, "ShrsOut"},
      {31, "XOut"},       {32, "MiscExp"},  {33, "MiscExpX"},  {34, "MiscInc"},  {35, "MiscIncX"},
      {36, "StkSplit"}};
  for (const auto& [action, name] : rows)
    EXPECT_EQ(Writer::stringForInvestmentAction(action), name) << action;
  for (const std::int32_t action : {0, -1, 37, 38, 292, kLeast32, kMost32})
    EXPECT_EQ(Writer::stringForInvestmentAction(action), "Cash") << action;
}

TEST(ORLFQIFDataWriter, NamesSecurityTypesAndRisks) {
  const char* const names[] = {"Stock", "Bond", "Mutual Fund", "CD"};
  for (std::int64_t type = 0; type < 4; ++type)
    EXPECT_EQ(Writer::securityTypeNameFromType(type), names[type]) << type;
  for (const std::int64_t type : {std::int64_t{4}, std::int64_t{-1}, kLeast64, kMost64})
    EXPECT_EQ(Writer::securityTypeNameFromType(type), "") << type;
  EXPECT_EQ(Writer::securityRiskNameFromRiskType(0), "Growth");
  for (const std::int64_t risk : {std::int64_t{1}, std::int64_t{-1}, kLeast64, kMost64})
    EXPECT_EQ(Writer::securityRiskNameFromRiskType(risk), "") << risk;
}

struct BoundaryRow {
  std::string_view name;
  bool (Writer::*operation)(NSErrorSlot);
  std::vector<std::string_view> writes;
};

const std::vector<BoundaryRow>& boundaries() {
  static const std::vector<BoundaryRow>& rows = *new std::vector<BoundaryRow>{
      {"BeginWriting", &Writer::beginWriting, {}},
      {"EndWriting", &Writer::endWriting, {}},
      {"BeginAccountList", &Writer::beginAccountList, {"!Option:AutoSwitch\n", "!Account\n"}},
      {"EndAccountList", &Writer::endAccountList, {"!Clear:AutoSwitch\n"}},
      {"BeginCategoryList", &Writer::beginCategoryList, {"!Type:Cat\n"}},
      {"EndCategoryList", &Writer::endCategoryList, {}},
      {"EndTransaction", &Writer::endTransaction, {"^\n"}},
      {"EndTransactionList", &Writer::endTransactionList, {}},
      {"BeginSecurityList", &Writer::beginSecurityList, {"!Type:Security\n"}},
      {"EndSecurityList", &Writer::endSecurityList, {"^\n"}},
      {"BeginSecurityPriceList", &Writer::beginSecurityPriceList, {"!Type:Prices\n"}},
      {"BeginSecurityPrices", &Writer::beginSecurityPrices, {}},
      {"EndSecurityPrices", &Writer::endSecurityPrices, {"^\n"}},
      {"EndSecurityPriceList", &Writer::endSecurityPriceList, {}}};
  return rows;
}

TEST(ORLFQIFDataWriter, WritesTheBoundariesOfLists) {
  for (const BoundaryRow& row : boundaries()) {
    Writer writer;
    const auto stream = std::make_shared<CallStream>();
    writer.setStream(stream);
    EXPECT_TRUE((writer.*row.operation)(nullptr)) << row.name;
    EXPECT_EQ(stream->calls_, std::vector<std::string>(row.writes.begin(), row.writes.end()))
        << row.name;
  }
}

TEST(ORLFQIFDataWriter, FailsAtTheFirstWriteThatFails) {
  for (const BoundaryRow& row : boundaries()) {
    for (std::size_t works = 0; works <= row.writes.size(); ++works) {
      Writer writer;
      const auto stream = std::make_shared<CallStream>(1, works);
      writer.setStream(stream);
      std::shared_ptr<const NSError> error;
      const bool succeeds = works == row.writes.size();
      EXPECT_EQ((writer.*row.operation)(&error), succeeds) << row.name << works;
      EXPECT_EQ(stream->calls_.size(), succeeds ? works : works + 1) << row.name << works;
      EXPECT_EQ(error, succeeds ? nullptr : stream->failure_) << row.name << works;
    }
  }
}

TEST(ORLFQIFDataWriter, WritesEachRecordInOneCall) {
  const std::function<bool(Writer&, NSErrorSlot)> records[] = {
      [](Writer& w, NSErrorSlot e) { return w.writeAccountName({.name = "n", .balance = 1}, e); },
      [](Writer& w, NSErrorSlot e) { return w.writeCategoryName({.taxible = true}, e); },
      [](Writer& w, NSErrorSlot e) { return w.beginTransactionListAccountName("n", 4, e); },
      [](Writer& w, NSErrorSlot e) {
        return w.writeRawNonInvestmentTransactionAmount({.payee = "p", .tags = {"t", "u"}}, e);
      },
      [](Writer& w, NSErrorSlot e) { return w.writeNonInvestmentTransactionAmount({}, e); },
      [](Writer& w, NSErrorSlot e) { return w.writeNonInvestmentTransferAmount({}, e); },
      [](Writer& w, NSErrorSlot e) { return w.writeNonInvestmentSplitTransactionAmount({}, e); },
      [](Writer& w, NSErrorSlot e) {
        return w.writeRawNonInvestmentSplitItemAmount({.memo = "m", .tags = {"t"}}, e);
      },
      [](Writer& w, NSErrorSlot e) { return w.writeNonInvestmentSplitItemAmount({}, e); },
      [](Writer& w, NSErrorSlot e) { return w.writeNonInvestmentSplitTransferItemAmount({}, e); },
      [](Writer& w, NSErrorSlot e) {
        return w.writeRawInvestmentTransactionType({.price = 1, .memo = "m"}, e);
      },
      [](Writer& w, NSErrorSlot e) { return w.writeInvestmentTransactionType({}, e); },
      [](Writer& w, NSErrorSlot e) { return w.writeInvestmentSplitSecurity({}, e); },
      [](Writer& w, NSErrorSlot e) { return w.writeInvestmentTransferType({}, e); },
      [](Writer& w, NSErrorSlot e) { return w.writeRawSecurityName("n", "s", 0, 0, e); },
      [](Writer& w, NSErrorSlot e) { return w.writeSecurityName("n", "s", 0, 0, e); },
      [](Writer& w, NSErrorSlot e) { return w.writeRawSecurityPriceSymbol("s", 1, {}, e); },
      [](Writer& w, NSErrorSlot e) { return w.writeSecurityPriceSymbol("s", 1, {}, e); }};
  for (std::size_t at = 0; at < std::size(records); ++at) {
    for (const NSInteger answer : {NSInteger{-1}, NSInteger{0}, NSInteger{3}, NSInteger{-2}}) {
      Writer writer;
      const bool isDone = answer != -1;
      const auto stream =
          std::make_shared<CallStream>(answer, isDone ? CallStream::kNever : std::size_t{0});
      writer.setStream(stream);
      std::shared_ptr<const NSError> error;
      EXPECT_EQ(records[at](writer, &error), isDone) << at << ' ' << answer;
      EXPECT_EQ(error, isDone ? nullptr : stream->failure_) << at << ' ' << answer;
      EXPECT_EQ(stream->calls_.size(), 1U) << at << ' ' << answer;
    }
  }
}

TEST(ORLFQIFDataWriter, HeadsTransactionListsWithTheAccount) {
  struct Row {
    std::int32_t type;
    std::string_view name, list;
  };
  const Row rows[] = {{0, "Bank", "Bank"},   {1, "Cash", "Cash"},        {2, "CCard", "CCard"},
                      {3, "Invst", "Invst"}, {4, "MutualFund", "Invst"}, {5, "401k/403B", "Invst"},
                      {6, "Oth A", "Oth A"}, {7, "Oth L", "Oth L"},      {8, "Bank", "Bank"},
                      {-1, "Bank", "Bank"},  {kLeast32, "Bank", "Bank"}, {kMost32, "Bank", "Bank"}};
  for (const Row& row : rows) {
    Writer writer;
    const auto stream = std::make_shared<CallStream>();
    writer.setStream(stream);
    EXPECT_TRUE(writer.beginTransactionListAccountName("Main", row.type));
    ASSERT_EQ(stream->calls_.size(), 1U);
    EXPECT_EQ(stream->calls_.front(), "!Account\nNMain\nT" + std::string(row.name) +
                                          "\n^\n!Type:" + std::string(row.list) + "\n");
  }
  WrittenQIF nameless;
  EXPECT_TRUE(nameless.writer.beginTransactionListAccountName(std::nullopt, 0));
  EXPECT_EQ(nameless.text(), "!Account\nN(null)\nTBank\n^\n!Type:Bank\n");
}

TEST(ORLFQIFDataWriter, WritesHeadersAndTextsAsTheyStand) {
  WrittenQIF qif;
  EXPECT_TRUE(qif.writer.writeExportHeaderName("Option", "AllXfr"));
  EXPECT_TRUE(qif.writer.writeExportHeaderName("", ""));
  EXPECT_TRUE(qif.writer.writeStringToStream("any\ntext"));
  EXPECT_TRUE(qif.writer.writeStringToStream(""));
  EXPECT_EQ(qif.text(), "!Option:AllXfr\n!:\nany\ntext");
}

TEST(ORLFQIFDataWriter, MakesItsStreamOnTheFirstRead) {
  Writer writer;
  const auto stream = writer.stream();
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(writer.stream(), stream);
  EXPECT_EQ(stream->streamStatus(), NSStreamStatusNotOpen);
  EXPECT_TRUE(writer.beginWriting());
  EXPECT_EQ(stream->streamStatus(), NSStreamStatusOpen);
  writer.endTransaction();
  EXPECT_TRUE(writer.endWriting());
  EXPECT_EQ(stream->streamStatus(), NSStreamStatusOpen);
  EXPECT_EQ(orlftest::bytesWritten(*stream), "^\n");
  writer.setStream(nullptr);
  EXPECT_NE(writer.stream(), stream);
  EXPECT_EQ(writer.encoding(), NSUInteger{4});
}

TEST(ORLFQIFDataWriter, OpensNoStreamAgain) {
  Writer writer;
  writer.beginWriting();
  writer.stream()->close();
  EXPECT_TRUE(writer.beginWriting());
  EXPECT_EQ(writer.stream()->streamStatus(), NSStreamStatusClosed);
  std::shared_ptr<const NSError> error;
  EXPECT_FALSE(writer.endTransaction(&error));
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error, writer.stream()->streamError());
}

TEST(ORLFQIFDataWriter, HasFormattersOfTheCurrentLocale) {
  const Replaced current(NSLocale::setCurrentLocale, std::make_shared<NSLocale>("en_US"));
  Writer writer;
  EXPECT_EQ(writer.encoding(), NSUTF8StringEncoding);
  const auto dates = writer.dateFormatter();
  EXPECT_EQ(writer.dateFormatter(), dates);
  EXPECT_EQ(dates->calendar()->calendarIdentifier(), NSCalendarIdentifierGregorian);
  EXPECT_EQ(dates->dateStyle(), NSDateFormatterShortStyle);
  EXPECT_EQ(dates->timeStyle(), NSDateFormatterNoStyle);
  EXPECT_EQ(dates->locale()->localeIdentifier(), "en_US");
  const auto amounts = writer.amountFormatter();
  EXPECT_EQ(writer.amountFormatter(), amounts);
  EXPECT_EQ(amounts->numberStyle(), NSNumberFormatterDecimalStyle);
  EXPECT_EQ(amounts->minimumFractionDigits(), 2);
  EXPECT_EQ(amounts->maximumFractionDigits(), 3);
}

TEST(ORLFQIFDataWriter, GivesTheAmountFormatterForSecuritiesToo) {
  Writer writer;
  const auto made = writer.securityAmountFormatter();
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(writer.amountFormatter(), made);
  writer.setSecurityAmountFormatter(std::make_shared<NSNumberFormatter>());
  EXPECT_EQ(writer.securityAmountFormatter(), made);
  const auto another = std::make_shared<NSNumberFormatter>();
  writer.setAmountFormatter(another);
  EXPECT_EQ(writer.securityAmountFormatter(), another);
  writer.setAmountFormatter(nullptr);
  EXPECT_NE(writer.amountFormatter(), another);
}

TEST(ORLFQIFDataWriter, WritesThroughTheFormattersThatItIsGiven) {
  WrittenQIF qif;
  const auto dates = std::make_shared<NSDateFormatter>();
  dates->setLocale(std::make_shared<NSLocale>("en_US"));
  dates->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
  dates->setDateFormat("yyyy-MM-dd");
  qif.writer.setDateFormatter(dates);
  qif.writer.amountFormatter()->setMinimumFractionDigits(3);
  EXPECT_TRUE(qif.writer.writeRawNonInvestmentTransactionAmount(
      {.amount = 1000, .date = date("2024-02-29T00:00:00Z")}));
  EXPECT_EQ(qif.text(), "D2024-02-29\nT1,000.000\n");
  qif.writer.setDateFormatter(nullptr);
  EXPECT_NE(qif.writer.dateFormatter(), dates);
}

}  // namespace
}  // namespace ORLFoundation
