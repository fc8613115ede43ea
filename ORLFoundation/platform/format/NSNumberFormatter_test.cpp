
#include <ORLFoundation/platform/format/NSNumberFormatter.h>

#include <ORLFoundation/platform/format/NSLocale.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <optional>
#include <string>

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

struct ReadCase {
  const char *name, *text;
  NSNumberFormatterStyle style;
  bool lenient;
  NSUInteger taken;  // 0 for no number
  const char* value;
};
const ReadCase kReadCases[] = {
    {"WhatStandsBehindIsLeft", "12.50 apples", NSNumberFormatterDecimalStyle, false, 5, "12.5"},
    {"GroupsOfTheLocale", "1,234.5", NSNumberFormatterDecimalStyle, false, 7, "1234.5"},
    {"NoGroupsWithoutStyle", "1,234", NSNumberFormatterNoStyle, false, 1, "1"},
    {"FractionsAndExponentsWithoutStyle", "1.5E2", NSNumberFormatterNoStyle, false, 5, "150"},
    {"BlanksInFrontCount", " \t\u00A07", NSNumberFormatterDecimalStyle, false, 4, "7"},
    {"NoLineEndsInFront", "\n7", NSNumberFormatterDecimalStyle, false, 0, ""},
    {"PercentStrict", "5%", NSNumberFormatterPercentStyle, false, 2, "0.05"},
    {"PercentWithoutItsSignStrict", "5", NSNumberFormatterPercentStyle, false, 0, ""},
    {"PercentWithoutItsSignLenient", "5", NSNumberFormatterPercentStyle, true, 1, "0.05"},
    {"Currency", "$1,234.50", NSNumberFormatterCurrencyStyle, false, 9, "1234.5"},
    {"CurrencyLenient", "1,234.50", NSNumberFormatterCurrencyStyle, true, 8, "1234.5"},
    {"Words", "one hundred five", NSNumberFormatterSpellOutStyle, false, 16, "105"},
    {"WordsInCapitalsStrict", "Five", NSNumberFormatterSpellOutStyle, false, 0, ""},
    {"WordsInCapitalsLenient", "Five", NSNumberFormatterSpellOutStyle, true, 4, "5"},
    {"Ordinal", "21st", NSNumberFormatterOrdinalStyle, false, 4, "21"},
    {"ArabicIndicDigits", "\u0661\u0662", NSNumberFormatterDecimalStyle, false, 2, "12"},
    {"DevanagariDigits", "\u0967\u0968", NSNumberFormatterDecimalStyle, false, 2, "12"},
    {"DigitsBeyondTheFirstPlane", "\U0001D7CF\U0001D7D0", NSNumberFormatterDecimalStyle, false, 4,
     "12"},
    {"RightToLeftMark", "\u200F7", NSNumberFormatterDecimalStyle, false, 2, "7"},
    {"BrokenBytes", "7\xFF", NSNumberFormatterDecimalStyle, false, 1, "7"},
    {"Empty", "", NSNumberFormatterDecimalStyle, true, 0, ""},
    {"BlanksAlone", "   ", NSNumberFormatterDecimalStyle, true, 0, ""},
    {"ThirtyEightDigits", "12345678901234567890123456789012345678", NSNumberFormatterDecimalStyle,
     false, 38, "12345678901234567890123456789012345678"},
    {"TooLargeForADecimal", "1E999", NSNumberFormatterDecimalStyle, false, 0, ""},
    {"NotANumberIsNoDecimal", "NaN", NSNumberFormatterDecimalStyle, false, 0, ""},
};

TEST(NSNumberFormatter, ReadsTheNumberAtTheBeginning) {
  for (const ReadCase& row : kReadCases) {
    NSNumberFormatter formatter;
    formatter.setLocale(std::make_shared<NSLocale>("en_US"));
    formatter.setNumberStyle(row.style);
    formatter.setLenient(row.lenient);
    formatter.setGeneratesDecimalNumbers(true);
    std::optional<NSNumber> value;
    NSRange range{0, 100};
    std::shared_ptr<const NSError> error;
    const bool read = formatter.getObjectValue(&value, row.text, &range, &error);
    EXPECT_EQ(read, row.taken > 0) << row.name;
    EXPECT_EQ(range, (read ? NSRange{0, row.taken} : NSRange{0, 100})) << row.name;
    EXPECT_EQ(value ? value->stringValue() : "", row.value) << row.name;
    EXPECT_EQ(error != nullptr, !read) << row.name;
  }
}

TEST(NSNumberFormatter, ReadsInPlaceWithinARange) {
  NSNumberFormatter formatter;
  decimalFormatter(formatter, "en_US");
  const auto read = [&formatter](NSRange range) {
    std::optional<NSNumber> value;
    const bool isRead = formatter.getObjectValue(&value, "\u20AC5 and 1234", &range);
    return (isRead ? value->stringValue() : "nil") + " at " + std::to_string(range.location) + "+" +
           std::to_string(range.length);
  };
  EXPECT_EQ(read({1, 1}), "5 at 1+1");
  EXPECT_EQ(read({7, 2}), "12 at 7+2");
  EXPECT_EQ(read({7, 99}), "1234 at 7+4");
  EXPECT_EQ(read({6, ~NSUInteger{0}}), "1234 at 6+5");
  EXPECT_EQ(read({11, 5}), "nil at 11+5");
  EXPECT_EQ(read({~NSUInteger{0}, ~NSUInteger{0}}).substr(0, 3), "nil");
  EXPECT_EQ(read({0, 2}), "nil at 0+2");
}

TEST(NSNumberFormatter, WholeTextsAreNumbers) {
  NSNumberFormatter formatter;
  decimalFormatter(formatter, "en_US");
  EXPECT_EQ(formatter.numberFromString("12.5"), NSNumber(12.5));
  EXPECT_EQ(formatter.numberFromString(" 12"), NSNumber(12));
  for (const char* text : {"12 ", "12x", "", "x", "1 2"})
    EXPECT_EQ(formatter.numberFromString(text), std::nullopt) << text;
}

TEST(NSNumberFormatter, GivesIntegersAndDoublesUnlessDecimalsAreAskedFor) {
  NSNumberFormatter formatter;
  decimalFormatter(formatter, "en_US");
  const auto kind = [&formatter](const char* text) {
    return formatter.numberFromString(text)->kind();
  };
  EXPECT_EQ(kind("12"), NSNumber::Kind::Integer);
  EXPECT_EQ(kind("-9000000000"), NSNumber::Kind::Integer);
  EXPECT_EQ(kind("0.1"), NSNumber::Kind::Double);
  EXPECT_EQ(formatter.numberFromString("0.1"), NSNumber(0.1));
  formatter.setGeneratesDecimalNumbers(true);
  EXPECT_EQ(kind("12"), NSNumber::Kind::Decimal);
  EXPECT_EQ(kind("-0.1"), NSNumber::Kind::Decimal);
  EXPECT_EQ(formatter.numberFromString("-0.1"), NSNumber(NSDecimal::parse("-0.1")));
}

TEST(NSNumberFormatter, RefusesNumbersBeyondItsLimits) {
  NSNumberFormatter formatter;
  decimalFormatter(formatter, "en_US");
  formatter.setMinimum(-1);
  formatter.setMaximum(10.5);
  for (const char* text : {"-1", "10.5", "0"})
    EXPECT_TRUE(formatter.numberFromString(text)) << text;
  for (const char* text : {"-1.1", "10.6"}) {
    std::shared_ptr<const NSError> error;
    EXPECT_FALSE(formatter.getObjectValue(nullptr, text, nullptr, &error)) << text;
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
    EXPECT_EQ(error->code(), 2048);
    EXPECT_NE(error->localizedDescription().find(text[0] == '-' ? "less" : "greater"),
              std::string::npos);
  }
  EXPECT_EQ(formatter.stringFromDouble(99), "99") << "limits bind reading alone";
}

TEST(NSNumberFormatter, ValidatesPartialTextsWhenAskedTo) {
  NSNumberFormatter formatter;
  decimalFormatter(formatter, "en_US");
  formatter.setMaximum(3);
  std::string description;
  const auto isValid = [&](std::string_view text) {
    return formatter.isPartialStringValid(
        {.partialString = text, .errorDescription = &description});
  };
  EXPECT_TRUE(isValid("apples"));
  formatter.setPartialStringValidationEnabled(true);
  for (const char* text : {"", "-", "1", "12.", "12.5", "1,234", "."})
    EXPECT_TRUE(isValid(text)) << text;
  EXPECT_EQ(description, "");
  for (const char* text : {"x", "12x", "1.2.3", "5 6"}) EXPECT_FALSE(isValid(text)) << text;
  EXPECT_EQ(description, "The text is not a number.");
  EXPECT_FALSE(formatter.isPartialStringValid({.partialString = "x"}));
}

}  // namespace
}  // namespace ORLFoundation
