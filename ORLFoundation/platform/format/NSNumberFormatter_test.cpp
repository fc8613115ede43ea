
#include <ORLFoundation/platform/format/NSNumberFormatter.h>

#include <ORLFoundation/platform/format/NSLocale.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace ORLFoundation {
namespace {

NSNumberFormatter& decimalFormatter(NSNumberFormatter& formatter, const char* locale) {
  formatter.setLocale(std::make_shared<NSLocale>(locale));
  formatter.setNumberStyle(NSNumberFormatterDecimalStyle);
  return formatter;
}

struct DoubleCase {
  const char *locale, *text;
  double number;
};
const DoubleCase kDoubles[] = {
    {"en_US", "1,234,567.892", 1234567.8915},
    {"de_DE", "1.234.567,892", 1234567.8915},
    {"en_US", "0", 0},
    {"en_US", "-1", -1},
    {"en_US", "0.062", 0.0625},
    {"en_US", "0.188", 0.1875},
    {"en_US", "1,000", 999.9999},
    {"en_US", "NaN", std::numeric_limits<double>::quiet_NaN()},
};

TEST(NSNumberFormatter, DecimalStyleGroupsAndKeepsThreePlacesTiesToEven) {
  NSNumberFormatter formatter;
  for (const DoubleCase& row : kDoubles)
    EXPECT_EQ(decimalFormatter(formatter, row.locale).stringFromDouble(row.number), row.text);
}

TEST(NSNumberFormatter, NoStyleIsPlainWholeDigits) {
  NSNumberFormatter formatter;
  formatter.setLocale(std::make_shared<NSLocale>("en_US"));
  EXPECT_EQ(formatter.numberStyle(), NSNumberFormatterNoStyle);
  EXPECT_EQ(formatter.stringFromDouble(1234567.25), "1234567");
}

TEST(NSNumberFormatter, WritesDecimalsExactly) {
  NSNumberFormatter formatter;
  decimalFormatter(formatter, "en_US");
  formatter.setMaximumFractionDigits(20);
  EXPECT_EQ(formatter.stringFromDecimal(NSDecimal::parse("12345678901234567890.12345678901234567")),
            "12,345,678,901,234,567,890.12345678901234567");
  EXPECT_EQ(formatter.stringFromDecimal(NSDecimal::parse("-0.1")), "-0.1");
}

TEST(NSNumberFormatter, FractionDigitsAreSettable) {
  NSNumberFormatter formatter;
  decimalFormatter(formatter, "en_US");
  formatter.setMinimumFractionDigits(2);
  EXPECT_EQ(formatter.stringFromDouble(5), "5.00");
  formatter.setMaximumFractionDigits(1);
  EXPECT_EQ(formatter.minimumFractionDigits(), 1);
  EXPECT_EQ(formatter.stringFromDouble(5), "5.0");
}

}  // namespace
}  // namespace ORLFoundation
