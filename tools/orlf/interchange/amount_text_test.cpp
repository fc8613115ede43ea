#include "interchange/amount_text.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace orlftool {
namespace {

constexpr int kPoint = 1, kComma = 2, kBoth = 3;

int marksOf(const AmountText& amount) {
  return (amount.fits(DecimalMark::Point) ? kPoint : 0) +
         (amount.fits(DecimalMark::Comma) ? kComma : 0);
}

struct AmountCase {
  const char* text;
  AmountSign sign;
  int marks;
};
const AmountCase kAmounts[] = {
    {"5", AmountSign::None, kBoth},
    {"50000", AmountSign::None, kBoth},
    {"1,234", AmountSign::None, kBoth},
    {"123.456", AmountSign::None, kBoth},
    {"1234.567", AmountSign::None, kPoint},
    {"0.125", AmountSign::None, kPoint},
    {"000,125", AmountSign::None, kComma},
    {"001,125", AmountSign::None, kBoth},
    {".976500000000", AmountSign::None, kPoint},
    {",5", AmountSign::None, kComma},
    {"1.", AmountSign::None, kPoint},
    {"1,5", AmountSign::None, kComma},
    {"1.2345", AmountSign::None, kPoint},
    {"1,234.5", AmountSign::None, kPoint},
    {"1.234,56", AmountSign::None, kComma},
    {"1,234,567", AmountSign::None, kPoint},
    {"12.345.678", AmountSign::None, kComma},
    {"1,23,456", AmountSign::None, kPoint},
    {"1.23.456,78", AmountSign::None, kComma},
    {"11'373.94", AmountSign::None, kPoint},
    {"11'373", AmountSign::None, kBoth},
    {"1 234 567,89", AmountSign::None, kComma},
    {"1\u00A0234,5", AmountSign::None, kComma},
    {"1\u2009234,5", AmountSign::None, kComma},
    {"1\u202F234.5", AmountSign::None, kPoint},
    {"1\u2019234.5", AmountSign::None, kPoint},
    {"-$76.00", AmountSign::Minus, kPoint},
    {"$-76.00", AmountSign::Minus, kPoint},
    {"- $21.59", AmountSign::Minus, kPoint},
    {"\u22125,00", AmountSign::Minus, kComma},
    {"+$327.49", AmountSign::Plus, kPoint},
    {"EUR +5,00", AmountSign::Plus, kComma},
    {"5.00+", AmountSign::Plus, kPoint},
    {"12,50-", AmountSign::TrailingMinus, kComma},
    {"12,50\u2212", AmountSign::TrailingMinus, kComma},
    {"12,50- EUR", AmountSign::TrailingMinus, kComma},
    {"($85.00)", AmountSign::Brackets, kPoint},
    {"( 1,5 )", AmountSign::Brackets, kComma},
    {"1234,37 EUR", AmountSign::None, kComma},
    {"EUR5,00", AmountSign::None, kComma},
    {"5 EUR", AmountSign::None, kBoth},
    {"EUR -5,00", AmountSign::Minus, kComma},
    {"\u00A3500.00", AmountSign::None, kPoint},
    {"12,5 kr", AmountSign::None, kComma},
    {"\t 5.00 \u00A0", AmountSign::None, kPoint},
};

TEST(AmountText, TellsSignAndMarks) {
  for (const AmountCase& each : kAmounts) {
    const auto amount = AmountText::parse(each.text);
    ASSERT_TRUE(amount) << each.text;
    EXPECT_EQ(amount->sign(), each.sign) << each.text;
    EXPECT_EQ(marksOf(*amount), each.marks) << each.text;
    const bool isBelowZero = each.sign != AmountSign::None && each.sign != AmountSign::Plus;
    EXPECT_EQ(amount->isNegative(), isBelowZero) << each.text;
  }
}

TEST(AmountText, IsNoneOfOtherTexts) {
  for (const char* text :
       {"",           " ",        "-",    "EUR",       "a lot",        "12.34.56",
        "1.234.56",   "12:30",    "5%",   "1/2",       "8.10 SGD @ 2", "2024-01-02",
        "24.12.2009", "--5",      "(-5)", "5 dollars", "5 DR",         "1 23",
        "12 34",      "1234'567", "1'23", "1,,2",      "0234-5",       "NL28 INGB 1200",
        "$",          "'5",       "A1",   "$5 EUR",    "()",           "(",
        "1e5",        ".",        ",",    "0,234,567"}) {
    EXPECT_FALSE(AmountText::parse(text)) << text;
  }
  EXPECT_FALSE(AmountText::parse(std::string(201, '1')));
  EXPECT_TRUE(AmountText::parse(std::string(200, '1')));
}

TEST(AmountText, TellsWhatStandsBesideTheDigits) {
  EXPECT_TRUE(AmountText::parse("5 EUR")->hasCurrency());
  EXPECT_FALSE(AmountText::parse("5")->hasCurrency());
  EXPECT_FALSE(AmountText::parse("5")->hasMark());
  EXPECT_TRUE(AmountText::parse("5.0")->hasMark());
  EXPECT_TRUE(AmountText::parse("INV-1")->hasTightLetters());
  EXPECT_TRUE(AmountText::parse("EUR5,00")->hasTightLetters());
  EXPECT_FALSE(AmountText::parse("EUR 5,00")->hasTightLetters());
  EXPECT_FALSE(AmountText::parse("$5,00")->hasTightLetters());
  EXPECT_TRUE(AmountText::parse("5.")->endsInMark());
  EXPECT_TRUE(AmountText::parse("5,")->endsInMark());
  EXPECT_FALSE(AmountText::parse("5.0")->endsInMark());
  EXPECT_TRUE(AmountText::parse("0.00")->isZero());
  EXPECT_FALSE(AmountText::parse("0.01")->isZero());
}

std::string valueOf(const char* text, DecimalMark mark) {
  const auto value = AmountText::parse(text)->value(mark);
  return value ? value->stringValue() : "nil";
}

TEST(AmountText, HasAValueUnderTheMarksThatItFits) {
  EXPECT_EQ(valueOf("-1.234,56 EUR", DecimalMark::Comma), "-1234.56");
  EXPECT_EQ(valueOf("-1.234,56 EUR", DecimalMark::Point), "nil");
  EXPECT_EQ(valueOf("11'373.94", DecimalMark::Point), "11373.94");
  EXPECT_EQ(valueOf("1,234", DecimalMark::Point), "1234");
  EXPECT_EQ(valueOf("1,234", DecimalMark::Comma), "1.234");
  EXPECT_EQ(valueOf("+.5", DecimalMark::Point), "0.5");
  EXPECT_EQ(valueOf("5.-", DecimalMark::Point), "-5");
  EXPECT_EQ(valueOf("123456789012345678901234567890123456789", DecimalMark::Point), "nil");
}

// An amount of any size, grouped or not, under either mark: it is read back, and where the other
// mark fits it too, its value there has the same digits.
TEST(AmountText, ReadsBackWhatIsWritten) {
  std::mt19937 random(41);
  for (int round = 0; round < 20'000; ++round) {
    const bool isPoint = random() % 2 == 0;
    const auto mark = isPoint ? DecimalMark::Point : DecimalMark::Comma;
    std::string whole = std::to_string(random() % 100'000'000U >> random() % 27U);
    std::string expected = whole;
    const char* const groups[] = {"", isPoint ? "," : ".", "'", " ", "\u00A0", "\u2019"};
    const std::string group = groups[random() % 6];
    for (std::size_t at = whole.size(); at > 3; at -= 3) whole.insert(at - 3, group);
    const std::size_t places = random() % 4;
    std::string fraction;
    for (std::size_t place = 0; place < places; ++place)
      fraction += static_cast<char>('1' + random() % 9);
    if (places > 0) {
      whole.append(isPoint ? "." : ",").append(fraction);
      expected.append(".").append(fraction);
    }
    const auto amount = AmountText::parse(whole);
    ASSERT_TRUE(amount) << whole;
    const auto value = amount->value(mark);
    ASSERT_TRUE(value) << whole;
    EXPECT_EQ(value->stringValue(), expected) << whole;
  }
}

}  // namespace
}  // namespace orlftool
