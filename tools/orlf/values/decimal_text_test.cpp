#include "values/decimal_text.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/failure.h"

namespace {

using namespace ORLFoundation;
using orlftool::DecimalPrinter;
using orlftool::readDecimal;

TEST(ReadDecimal, TakesSignPointAndExponent) {
  const std::pair<const char*, const char*> rows[] = {
      {"0", "0"},
      {"-0", "0"},
      {"12", "12"},
      {"+12", "12"},
      {"-1250.75", "-1250.75"},
      {".5", "0.5"},
      {"5.", "5"},
      {"007.50", "7.5"},
      {"2.5e3", "2500"},
      {"25E-1", "2.5"},
      {"1e+2", "100"},
      {"99999999999999999999999999999999999999", "99999999999999999999999999999999999999"},
      {"1000000000000000000000000000000000000000", "1000000000000000000000000000000000000000"},
      {"0.10000000000000000000000000000000000000000", "0.1"},
  };
  for (const auto& [text, printed] : rows) {
    const std::optional<NSDecimalNumber> number = readDecimal(text);
    ASSERT_TRUE(number) << text;
    EXPECT_EQ(number->stringValue(), printed) << text;
  }
}

TEST(ReadDecimal, RefusesOtherText) {
  for (const char* text : {"",
                           "-",
                           "+",
                           ".",
                           "-.",
                           "e5",
                           "1e",
                           "1e+",
                           "1e5x",
                           "--1",
                           "1-",
                           "1,5",
                           "1 000",
                           " 1",
                           "1 ",
                           "0x10",
                           "NaN",
                           "inf",
                           "1.2.3",
                           "1e99999",
                           "1e200",
                           "\xD9\xA1",
                           "123456789012345678901234567890123456789"})
    EXPECT_FALSE(readDecimal(text)) << text;
}

TEST(ReadDecimal, ArgumentIsNamedInTheFailure) {
  EXPECT_THROW((void)orlftool::readDecimalArgument("VALUE", "x"), orlftool::UsageFailure);
}

TEST(DecimalPrinter, GroupsAndFillsToTheDigits) {
  const DecimalPrinter money("en_US", 2);
  EXPECT_EQ(money.text(readDecimal("-1234567.5").value()), "-1,234,567.50");
  EXPECT_EQ(money.text(NSDecimalNumber::zero()), "0.00");
}

TEST(DecimalPrinter, RoundsNoDigitAway) {
  const DecimalPrinter money("en_US", 2);
  EXPECT_EQ(money.text(readDecimal("0.1234567890123456789012345678901234567").value()),
            "0.1234567890123456789012345678901234567");
  EXPECT_EQ(money.text(readDecimal("12345678901234567890123456789012345678").value()),
            "12,345,678,901,234,567,890,123,456,789,012,345,678.00");
}

TEST(DecimalPrinter, FollowsTheLocale) {
  EXPECT_EQ(DecimalPrinter("de_DE", 2).text(readDecimal("1234.5").value()), "1.234,50");
  EXPECT_EQ(DecimalPrinter("en_IN", 0).text(readDecimal("1234567").value()), "12,34,567");
}

TEST(DecimalPrinter, SaysWhatIsAbsentOrNoNumber) {
  const DecimalPrinter money("en_US", 2);
  EXPECT_EQ(money.text(std::optional<NSDecimalNumber>(), "-"), "-");
  EXPECT_EQ(money.text(NSDecimalNumber::notANumber()), "NaN");
}

TEST(ReadRate, TakesFractionsAndPercentages) {
  for (const auto& [text, rate] : std::vector<std::pair<const char*, const char*>>{
           {"0.045", "0.045"}, {"4.5%", "0.045"}, {"-1%", "-0.01"}, {"0", "0"}, {"100%", "1"}}) {
    const auto read = orlftool::readRate(text);
    ASSERT_TRUE(read) << text;
    EXPECT_EQ(read->stringValue(), rate);
  }
  for (const char* text : {"", "%", "4.5 %", "%4.5", "4,5%", "4.5%%", "1e-127%"})
    EXPECT_FALSE(orlftool::readRate(text)) << text;
}

}  // namespace
