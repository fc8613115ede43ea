#include "money/typed_sum.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace ORLFoundation;
using orlftool::readPercentage;
using orlftool::SumReader;
using orlftool::TypedSum;

std::string told(const TypedSum& sum) {
  return sum.value ? sum.value->stringValue() : "no: " + sum.fault;
}

struct SumCase {
  const char *text, *answer;
};
const SumCase kSums[] = {
    {"12.50+3*[4-1]", "21.5"},
    {" \t2+3 \r\n", "5"},
    {"two*three", "6"},
    {"1,234.50/2", "617.25"},
    {"", "no: there is no number"},
    {"[]", "no: there is no number"},
    {"5 6", "no: a sign is missing between two parts"},
    {"5+3x", "no: a sign is missing between two parts"},
    {"[5]6", "no: a sign is missing between two parts"},
    {"5/0", "no: it divides by zero, or a number is missing"},
    {"5/0]", "no: it divides by zero, or a number is missing"},
    {"1e100*1e100]", "no: The result is too large for a decimal."},
    {"5+abc", "no: no number begins at 'abc'"},
    {"\xF0\x9F\x98\x80+1", "no: no number begins at '\xF0\x9F\x98\x80+1'"},
    {"1e100*1e100", "no: The result is too large for a decimal."},
    {"7*3+980", "no: 1001 is above the maximum 1000"},
    {"-2", "no: -2 is below the minimum -1.5"},
    {"-1.5", "-1.5"},
};

TEST(TypedSum, IsReadWholeOrTellsWhyNot) {
  SumReader reader("en_US", NSDecimalNumber("-1.5"), NSDecimalNumber("1000"));
  for (const SumCase& row : kSums) {
    EXPECT_EQ(told(reader.read(row.text)), row.answer) << row.text;
  }
}

TEST(TypedSum, NumbersAreShownAsTypedAndAsUnderstood) {
  SumReader reader("de_DE", std::nullopt, std::nullopt);
  const TypedSum sum = reader.read("1.234,50 + zwei*[\xD9\xA3-\xF0\x9D\x9F\x8F]");
  EXPECT_EQ(told(sum), "1238.5");
  ASSERT_EQ(sum.numbers.size(), 4U);
  const char* expected[][2] = {
      {"1.234,50", "1234.5"}, {"zwei", "2"}, {"\xD9\xA3", "3"}, {"\xF0\x9D\x9F\x8F", "1"}};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(sum.numbers[i].text, expected[i][0]);
    EXPECT_EQ(sum.numbers[i].number.stringValue(), expected[i][1]);
  }
  EXPECT_EQ(reader.read("5").numbers.size(), 1U) << "those of the text before are forgotten";
}

TEST(TypedSum, PercentagesFollowTheLocale) {
  EXPECT_EQ(told(readPercentage("en_US", "5")), "0.05");
  EXPECT_EQ(told(readPercentage("en_US", " 12.5% ")), "0.125");
  EXPECT_EQ(told(readPercentage("de_DE", "5\xC2\xA0%")), "0.05");
  EXPECT_EQ(told(readPercentage("de_DE", "5")),
            "no: expected a percentage as de_DE writes it, '5,25\xC2\xA0%'");
  for (const char* text : {"", "x", "5%%", "5% of it"})
    EXPECT_FALSE(readPercentage("en_US", text).value) << text;
}

}  // namespace
