#include "interchange/cell_shapes.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using orlftool::amountShapeOf;
using orlftool::AmountSign;
using orlftool::dateShapeOf;
using orlftool::kBothMarks;
using orlftool::kCommaMark;
using orlftool::kPointMark;

struct AmountCase {
  const char* text;
  AmountSign sign;
  std::uint8_t marks;
};
const AmountCase kAmounts[] = {
    {"5", AmountSign::None, kBothMarks},
    {"50000", AmountSign::None, kBothMarks},
    {"1,234", AmountSign::None, kBothMarks},
    {"123.456", AmountSign::None, kBothMarks},
    {"1234.567", AmountSign::None, kPointMark},
    {"0.125", AmountSign::None, kPointMark},
    {".976500000000", AmountSign::None, kPointMark},
    {"1,5", AmountSign::None, kCommaMark},
    {"1.2345", AmountSign::None, kPointMark},
    {"1,234.5", AmountSign::None, kPointMark},
    {"1.234,56", AmountSign::None, kCommaMark},
    {"1,234,567", AmountSign::None, kPointMark},
    {"12.345.678", AmountSign::None, kCommaMark},
    {"11'373.94", AmountSign::None, kPointMark},
    {"1 234 567,89", AmountSign::None, kCommaMark},
    {"1\xC2\xA0"
     "234,5",
     AmountSign::None, kCommaMark},
    {"-$76.00", AmountSign::Minus, kPointMark},
    {"$-76.00", AmountSign::Minus, kPointMark},
    {"- $21.59", AmountSign::Minus, kPointMark},
    {"\xE2\x88\x92"
     "5,00",
     AmountSign::Minus, kCommaMark},
    {"+$327.49", AmountSign::Plus, kPointMark},
    {"12,50-", AmountSign::TrailingMinus, kCommaMark},
    {"($85.00)", AmountSign::Brackets, kPointMark},
    {"(1,5)", AmountSign::Brackets, kCommaMark},
    {"1234,37 EUR", AmountSign::None, kCommaMark},
    {"EUR5,00", AmountSign::None, kCommaMark},
    {"5 EUR", AmountSign::None, kBothMarks},
    {"EUR -5,00", AmountSign::Minus, kCommaMark},
    {"\xC2\xA3"
     "500.00",
     AmountSign::None, kPointMark},
};

TEST(AmountShape, TellsSignAndMarks) {
  for (const AmountCase& each : kAmounts) {
    const auto shape = amountShapeOf(each.text);
    ASSERT_TRUE(shape) << each.text;
    EXPECT_EQ(shape->sign, each.sign) << each.text;
    EXPECT_EQ(shape->marks, each.marks) << each.text;
  }
}

TEST(AmountShape, IsNoneOfOtherTexts) {
  for (const char* text : {"",
                           " ",
                           "-",
                           "EUR",
                           "a lot",
                           "12.34.56",
                           "1,23,456",
                           "1.234.56",
                           "12:30",
                           "5%",
                           "8.10 SGD @ 2",
                           "24.12.2009",
                           "2024-01-02",
                           "1.",
                           "--5",
                           "5 dollars",
                           "1 23",
                           "12 34",
                           "1234'567",
                           "1'23",
                           "1,,2",
                           "NL28 INGB 1200",
                           "0234-5",
                           "$",
                           "'5",
                           "INV-1",
                           "A1"})
    EXPECT_FALSE(amountShapeOf(text)) << text;
}

TEST(AmountShape, CountsHundredths) {
  EXPECT_EQ(std::lround(amountShapeOf("-1.234,56 EUR")->hundredths(kCommaMark)), 123456);
  EXPECT_EQ(std::lround(amountShapeOf("11'373.94")->hundredths(kPointMark)), 1137394);
  EXPECT_TRUE(amountShapeOf("0.00")->isZero());
  EXPECT_FALSE(amountShapeOf("0.01")->isZero());
  EXPECT_TRUE(amountShapeOf("5 EUR")->hasCurrency);
  EXPECT_FALSE(amountShapeOf("5")->hasMark);
}

struct DateCase {
  const char* text;
  const char* numbers;
  std::uint8_t namedOrders;
};
constexpr std::uint8_t kDmy = 1U << 1U, kMdy = 1U << 2U, kYmd = 1U << 3U, kMyd = 1U << 5U;
const DateCase kDates[] = {
    {"31/01/2024", "31/01/2024", 0},
    {"2024-01-31", "2024/01/31", 0},
    {"24.12.09", "24/12/09", 0},
    {"2/8/15", "2/8/15", 0},
    {" 2020-02-20", "2020/02/20", 0},
    {"2021-02-03 13:12", "2021/02/03", 0},
    {"2002-09-10T23:00:04", "2002/09/10", 0},
    {"20121231", "2012/12/31", 0},
    {"31122012", "31/12/2012", 0},
    {"12312012", "12/31/2012", 0},
    {"20091224120000[0:GMT]", "2009/12/24", 0},
    {"07 Nov 2013", "", kDmy},
    {"23-Jan-15", "", kDmy | kYmd},
    {"2015-January-23", "", kYmd},
    {"Nov 7, 2013", "", kMdy},
    {"Sept 7 13", "", kMdy | kMyd},
    {"7 may 2013 12:30", "", kDmy},
};

TEST(DateShape, TellsNumbersOrOrders) {
  for (const DateCase& each : kDates) {
    const auto shape = dateShapeOf(each.text);
    ASSERT_TRUE(shape) << each.text;
    EXPECT_EQ(shape->numbers, each.numbers) << each.text;
    EXPECT_EQ(shape->namedOrders, each.namedOrders) << each.text;
  }
}

TEST(DateShape, IsNoneOfOtherTexts) {
  for (
      const char* text :
      {"",           "Date",       "12.50",           "1/2",         "1/2/3/4",     "1/2-3",
       "32/32/2024", "13/13/2024", "2024/2024/1",     "0/0/0",       "1234567",     "20241301",
       "99999999",   "0/1/2024",   "12/12/123",       "1/1/1800",    "2024-01-31x", "12 Mango 2013",
       "May",        "7 Nov",      "7 Nov 2013 rent", "123-45-6789", "1.234.567",   "00 Nov 00000"})
    EXPECT_FALSE(dateShapeOf(text)) << text;
}

}  // namespace
