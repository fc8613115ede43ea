
// What number formatters are set to, and that copies and archives keep it.

#include <ORLFoundation/platform/format/NSNumberFormatter.h>

#include <ORLFoundation/platform/archive/NSKeyedArchiver_testing.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/object/Id.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>

namespace ORLFoundation {
namespace {

std::shared_ptr<NSNumberFormatter> americanFormatter() {
  auto formatter = std::make_shared<NSNumberFormatter>();
  formatter->setLocale(std::make_shared<NSLocale>("en_US"));
  formatter->setNumberStyle(NSNumberFormatterDecimalStyle);
  return formatter;
}

TEST(NSNumberFormatter, BeginsPlain) {
  const Replaced locale(NSLocale::setCurrentLocale, std::make_shared<NSLocale>("de_DE"));
  const NSNumberFormatter formatter;
  EXPECT_EQ(formatter.numberStyle(), NSNumberFormatterNoStyle);
  EXPECT_EQ(formatter.locale()->localeIdentifier(), "de_DE");
  EXPECT_FALSE(formatter.isLenient());
  EXPECT_FALSE(formatter.generatesDecimalNumbers());
  EXPECT_TRUE(formatter.localizesFormat());
  EXPECT_FALSE(formatter.isPartialStringValidationEnabled());
  EXPECT_FALSE(formatter.minimum() || formatter.maximum());
  EXPECT_FALSE(formatter.usesGroupingSeparator());
  EXPECT_EQ(formatter.maximumFractionDigits(), 0);
}

void expectAllSettings(NSNumberFormatter& formatter) {
  EXPECT_EQ(formatter.numberStyle(), NSNumberFormatterPercentStyle);
  EXPECT_EQ(formatter.locale()->localeIdentifier(), "fr_FR");
  EXPECT_EQ(formatter.minimumFractionDigits(), 1);
  EXPECT_EQ(formatter.maximumFractionDigits(), 4);
  EXPECT_FALSE(formatter.usesGroupingSeparator());
  EXPECT_EQ(formatter.decimalSeparator(), ";");
  EXPECT_EQ(formatter.groupingSeparator(), "_");
  EXPECT_TRUE(formatter.isLenient());
  EXPECT_TRUE(formatter.generatesDecimalNumbers());
  EXPECT_FALSE(formatter.localizesFormat());
  EXPECT_TRUE(formatter.isPartialStringValidationEnabled());
  EXPECT_EQ(formatter.minimum(), NSNumber(NSDecimal::parse("0.5")));
  EXPECT_EQ(formatter.minimum()->kind(), NSNumber::Kind::Decimal);
  EXPECT_EQ(formatter.maximum(), NSNumber(7));
  EXPECT_EQ(formatter.stringFromDouble(12.5), "1250;0\u00A0%");
}

TEST(NSNumberFormatter, CopiesAndArchivesKeepEverySetting) {
  const auto formatter = americanFormatter();
  formatter->setNumberStyle(NSNumberFormatterPercentStyle);
  formatter->setLocale(std::make_shared<NSLocale>("fr_FR"));
  formatter->setMinimumFractionDigits(1);
  formatter->setMaximumFractionDigits(4);
  formatter->setUsesGroupingSeparator(false);
  formatter->setDecimalSeparator(";");
  formatter->setGroupingSeparator("_");
  formatter->setLenient(true);
  formatter->setGeneratesDecimalNumbers(true);
  formatter->setLocalizesFormat(false);
  formatter->setPartialStringValidationEnabled(true);
  formatter->setMinimum(NSDecimal::parse("0.5"));
  formatter->setMaximum(7);
  expectAllSettings(*formatter);
  const auto copy = copyOf(formatter);
  EXPECT_NE(copy, formatter);
  expectAllSettings(*copy);
  const auto read = orlftest::archivedAndRead<NSNumberFormatter>(formatter);
  ASSERT_NE(read, nullptr);
  expectAllSettings(*read);
  copy->setLenient(false);
  EXPECT_TRUE(formatter->isLenient()) << "a copy stands alone";
}

TEST(NSNumberFormatter, ArchivesKeepWhatWasNeverSet) {
  const auto read = orlftest::archivedAndRead<NSNumberFormatter>(americanFormatter());
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->stringFromDouble(1234.5678), "1,234.568");
  EXPECT_TRUE(read->localizesFormat());
  EXPECT_FALSE(read->minimum() || read->maximum() || read->isLenient());
  read->setLocale(std::make_shared<NSLocale>("de_DE"));
  EXPECT_EQ(read->decimalSeparator(), ",");
}

TEST(NSNumberFormatter, SeparatorsAreTheLocalesUntilSet) {
  const auto formatter = americanFormatter();
  EXPECT_EQ(formatter->decimalSeparator(), ".");
  EXPECT_EQ(formatter->groupingSeparator(), ",");
  formatter->setDecimalSeparator(",");
  formatter->setGroupingSeparator(".");
  EXPECT_EQ(formatter->stringFromDouble(1234.5), "1.234,5");
  EXPECT_EQ(formatter->numberFromString("1.234,5"), NSNumber(1234.5));
  EXPECT_EQ(formatter->numberFromString("12,5"), NSNumber(12.5));
  formatter->setDecimalSeparator(std::nullopt);
  formatter->setGroupingSeparator(std::nullopt);
  EXPECT_EQ(formatter->stringFromDouble(1234.5), "1,234.5");
}

TEST(NSNumberFormatter, DigitsAndGroupingStayWhenTheStyleChanges) {
  const auto formatter = americanFormatter();
  formatter->setMinimumFractionDigits(2);
  formatter->setUsesGroupingSeparator(false);
  for (const NSNumberFormatterStyle style :
       {NSNumberFormatterSpellOutStyle, NSNumberFormatterDecimalStyle})
    formatter->setNumberStyle(style);
  EXPECT_EQ(formatter->stringFromDouble(1234), "1234.00");
  formatter->setNumberStyle(NSNumberFormatterCurrencyStyle);
  EXPECT_EQ(formatter->stringFromDouble(1234), "$1234.00");
}

TEST(NSNumberFormatter, TakesWildSettings) {
  const auto formatter = americanFormatter();
  formatter->setNumberStyle(static_cast<NSNumberFormatterStyle>(~NSUInteger{0}));
  EXPECT_EQ(formatter->numberStyle(), ~NSUInteger{0});
  EXPECT_EQ(formatter->stringFromDouble(1234.5), "1234");
  formatter->setNumberStyle(NSNumberFormatterDecimalStyle);
  formatter->setMaximumFractionDigits(-3);
  EXPECT_EQ(formatter->maximumFractionDigits(), 0);
  formatter->setMinimumFractionDigits(NSInteger{1} << 40);
  EXPECT_EQ(formatter->minimumFractionDigits(), 127);
  formatter->setLocale(std::make_shared<NSLocale>("no such locale"));
  formatter->setMaximumFractionDigits(1);
  EXPECT_EQ(formatter->stringFromDouble(0.5), "0.5");
  formatter->setLocale(nullptr);
  EXPECT_EQ(formatter->locale(), NSLocale::currentLocale());
}

TEST(NSNumberFormatter, DigitsOnceSetLeaveNothingBehind) {
  const auto formatter = americanFormatter();
  formatter->setNumberStyle(NSNumberFormatterCurrencyStyle);
  EXPECT_EQ(formatter->stringFromDouble(5), "$5.00");
  formatter->setMaximumFractionDigits(0);
  EXPECT_EQ(formatter->stringFromDouble(5), "$5");
  formatter->setMaximumFractionDigits(4);
  EXPECT_EQ(formatter->stringFromDouble(5), "$5.00");
  EXPECT_EQ(copyOf(formatter)->stringFromDouble(5), "$5.00") << "whenever it was written with";
  formatter->setNumberStyle(NSNumberFormatterDecimalStyle);
  const auto raised = americanFormatter();
  for (const NSInteger digits : {5, 0}) {
    raised->setMinimumFractionDigits(digits);
    EXPECT_EQ(raised->maximumFractionDigits(), std::max<NSInteger>(digits, 3));
    EXPECT_EQ(copyOf(raised)->maximumFractionDigits(), raised->maximumFractionDigits());
  }
}

TEST(NSNumberFormatter, WritesAndReadsAsTheRootLocaleWhereTheLocaleIsNone) {
  const auto root = americanFormatter();
  root->setLocale(std::make_shared<NSLocale>(""));
  const auto formatter = americanFormatter();
  for (const std::string& identifier :
       {std::string("en_US@numbers=bogus"), "en_US@currency=" + std::string(3000, 'X'),
        "en_" + std::string(300, 'V'), std::string(400, 'a')}) {
    formatter->setLocale(std::make_shared<NSLocale>(identifier));
    EXPECT_EQ(formatter->decimalSeparator(), ".") << identifier;
    EXPECT_EQ(formatter->groupingSeparator(), ",") << identifier;
    for (NSUInteger style = 0; style < 8; ++style) {
      for (const auto& each : {root, formatter})
        each->setNumberStyle(static_cast<NSNumberFormatterStyle>(style));
      EXPECT_EQ(formatter->stringFromDouble(1234.5), root->stringFromDouble(1234.5)) << identifier;
      EXPECT_EQ(formatter->maximumFractionDigits(), root->maximumFractionDigits()) << identifier;
      EXPECT_EQ(formatter->numberFromString("12"), root->numberFromString("12")) << identifier;
    }
  }
}

struct WordsCase {
  NSNumber number;
  const char* text;
};
const WordsCase kLargeWords[] = {
    {9007199254740991.0,
     "nine quadrillion seven trillion one hundred ninety-nine billion two hundred fifty-four "
     "million seven hundred forty thousand nine hundred ninety-one"},
    {NSDecimal::parse("-10000000000000001"), "minus ten quadrillion one"},
    {std::int64_t{10000000000000003}, "ten quadrillion three"},
    {NSDecimal::parse("500000000000000000.5"), "five hundred quadrillion"},
    {3e17, "three hundred quadrillion"},
    {9223372036854775807, "9,223,372,036,854,775,807"},
    {1e19, "10,000,000,000,000,000,000"},
    {NSDecimal::parse("-1e20"), "-100,000,000,000,000,000,000"},
    {std::numeric_limits<double>::infinity(), "infinity"},
    {NSDecimal::notANumber(), "not a number"},
};

TEST(NSNumberFormatter, SpellsOutLargeNumbersAsLargeAsTheyAre) {
  const auto formatter = americanFormatter();
  formatter->setNumberStyle(NSNumberFormatterSpellOutStyle);
  for (const WordsCase& row : kLargeWords)
    EXPECT_EQ(formatter->stringFromNumber(row.number), row.text);
  EXPECT_EQ(formatter->stringFromDouble(-std::numeric_limits<double>::max()).size(), 412U);
  formatter->setNumberStyle(NSNumberFormatterOrdinalStyle);
  EXPECT_EQ(formatter->stringFromDouble(1e19), "10,000,000,000,000,000,000th");
}

TEST(NSNumberFormatter, WritesEveryKindOfNumberAndNoOther) {
  const auto formatter = americanFormatter();
  EXPECT_EQ(formatter->stringFromNumber(std::nullopt), std::nullopt);
  EXPECT_EQ(formatter->stringFromNumber(NSNumber(true)), "1");
  EXPECT_EQ(formatter->stringFromNumber(NSNumber(~std::uint64_t{0})), "18,446,744,073,709,551,615");
  EXPECT_EQ(formatter->stringForObjectValue(0.5), "0.5");
  EXPECT_EQ(formatter->stringForObjectValue("0.5"), std::nullopt);
  EXPECT_EQ(formatter->stringForObjectValue(nullptr), std::nullopt);
  formatter->setNumberStyle(NSNumberFormatterSpellOutStyle);
  EXPECT_EQ(formatter->stringFromNumber(NSNumber(105)), "one hundred five");
  formatter->setNumberStyle(NSNumberFormatterOrdinalStyle);
  EXPECT_EQ(formatter->stringFromNumber(NSNumber(21)), "21st");
}

}  // namespace
}  // namespace ORLFoundation
