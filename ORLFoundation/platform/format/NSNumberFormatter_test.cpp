
#include <ORLFoundation/platform/format/NSNumberFormatter.h>

#include <ORLFoundation/platform/base/Replaced.h>
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

TEST(NSLocale, CurrentOneIsReplaceable) {
  {
    const Replaced french(NSLocale::setCurrentLocale, std::make_shared<NSLocale>("fr_FR"));
    EXPECT_EQ(NSLocale::currentLocale()->localeIdentifier(), "fr_FR");
    EXPECT_EQ(NSNumberFormatter().locale()->localeIdentifier(), "fr_FR");
    const Replaced german(NSLocale::setCurrentLocale, std::make_shared<NSLocale>("de_DE"));
    EXPECT_EQ(german.before()->localeIdentifier(), "fr_FR");
  }
  NSLocale::setCurrentLocale(nullptr);
  EXPECT_FALSE(NSLocale::currentLocale()->localeIdentifier().empty());
}

TEST(NSLocale, KnowsItsMarks) {
  EXPECT_EQ(NSLocale("de_DE").decimalSeparator(), ",");
  EXPECT_EQ(NSLocale("de_DE").groupingSeparator(), ".");
  EXPECT_EQ(NSLocale("en_US").decimalSeparator(), ".");
  EXPECT_EQ(NSLocale("no such locale").decimalSeparator(), ".");
}

TEST(NSLocale, EqualsOneOfTheSameIdentifier) {
  const auto locale = std::make_shared<NSLocale>("en_US");
  EXPECT_TRUE(locale->isEqual(std::make_shared<NSLocale>("en_US").get()));
  EXPECT_FALSE(locale->isEqual(std::make_shared<NSLocale>("en_GB").get()));
  EXPECT_EQ(locale->copy(), locale);
}

}  // namespace
}  // namespace ORLFoundation
