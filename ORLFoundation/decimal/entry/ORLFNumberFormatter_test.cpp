
#include <ORLFoundation/decimal/entry/ORLFNumberFormatter.h>

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace ORLFoundation {
namespace {

std::shared_ptr<ORLFNumberFormatter> americanFormatter() {
  auto formatter = std::make_shared<ORLFNumberFormatter>();
  formatter->setLocale(std::make_shared<NSLocale>("en_US"));
  formatter->setNumberStyle(NSNumberFormatterDecimalStyle);
  formatter->setGeneratesDecimalNumbers(true);
  return formatter;
}

/// "14", "nil", or "false" with the error's code where there is one.
std::string answer(ORLFNumberFormatter& formatter, std::string_view text) {
  std::optional<NSNumber> value;
  std::shared_ptr<const NSError> error;
  if (!formatter.getObjectValue(&value, text, nullptr, &error))
    return error ? "false " + std::to_string(error->code()) : "false";
  return value ? value->stringValue() : "nil";
}

struct SumCase {
  const char *text, *answer;
};
const SumCase kSums[] = {
    {"2+3*4", "14"},
    {"[2+3]*4", "20"},
    {"10-4-3", "3"},
    {"8/4/2", "1"},
    {"2*3/4", "1.5"},
    {"-5", "-5"},
    {"*3", "3"},
    {"+3", "3"},
    {"/3", "3"},
    {"5+", "5"},
    {"5*", "5"},
    {"[2+3", "5"},
    {"2+3]", "5"},
    {"5 6", "false 2048"},
    {"5/0", "false"},
    {"", "nil"},
    {" \t\u00A0", "nil"},
    {"12.50+3*[4-1]", "21.5"},
    {"5*-3", "-3"},
    {"2[3+4]", "7"},
    {"[", "nil"},
    {"]", "nil"},
    {"[]", "nil"},
    {"//3", "3"},
    {"5 x", "false 2048"},
    {"x", "false 2048"},
    {"1,234.50+1", "1235.5"},
    {"two*[three+four]", "14"},
    {"\u0661\u0662+1", "13"},
    {"\u0967\u0968*2", "24"},
    {"\u200F12+1", "13"},
    {"\U0001D7CF+1", "2"},
    {"1+\U0001F600", "false 2048"},
    {"\uFF0B1", "1"},
};

TEST(ORLFNumberFormatter, WorksOutTypedSums) {
  const auto formatter = americanFormatter();
  for (const SumCase& row : kSums) EXPECT_EQ(answer(*formatter, row.text), row.answer) << row.text;
}

TEST(ORLFNumberFormatter, RightToLeftLocalesReadTheirOwnDigits) {
  const auto formatter = americanFormatter();
  formatter->setLocale(std::make_shared<NSLocale>("ar_EG"));
  EXPECT_EQ(answer(*formatter, "\u0661\u066C\u0662\u0663\u0664\u066B\u0665*2"), "2469");
  formatter->setLocale(std::make_shared<NSLocale>("hi_IN"));
  EXPECT_EQ(answer(*formatter, "[\u0967+2]*\u0968"), "6");
}

TEST(ORLFNumberFormatter, LimitsBindTheEndValueAlone) {
  const auto formatter = americanFormatter();
  formatter->setMaximum(10);
  formatter->setMinimum(NSDecimal::parse("-1"));
  EXPECT_EQ(answer(*formatter, "8+8-8"), "8");
  EXPECT_EQ(answer(*formatter, "8+8"), "false 2559");
  EXPECT_EQ(answer(*formatter, "-2"), "false 2048");
  EXPECT_EQ(answer(*formatter, "10"), "10");
  EXPECT_EQ(answer(*formatter, "-1"), "-1");
  EXPECT_EQ(answer(*formatter, ""), "nil") << "nothing is within every limit";
  std::optional<NSNumber> value = 3;
  EXPECT_FALSE(formatter->getObjectValue(&value, "11"));
  EXPECT_EQ(value, std::nullopt);
}

TEST(ORLFNumberFormatter, TellsTheValueAndTheLimit) {
  const auto below = ORLFNumberFormatter::errorValue(1, 2);
  EXPECT_EQ(below->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(below->code(), 2048);
  EXPECT_EQ(below->userInfo()->objectForKey("NSInvalidValue"), id(1));
  EXPECT_EQ(below->userInfo()->objectForKey("NSMinimumValidValue"), id(2));
  EXPECT_EQ(below->userInfo()->count(), 2U);
  const auto above = ORLFNumberFormatter::errorValueIsAboveMaximum(3, 2.5);
  EXPECT_EQ(above->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(above->code(), 2559);
  EXPECT_EQ(above->userInfo()->objectForKey("NSInvalidValue"), id(3));
  EXPECT_EQ(above->userInfo()->objectForKey("NSMaximumValidValue"), id(2.5));
  EXPECT_EQ(above->userInfo()->count(), 2U);
}

TEST(ORLFNumberFormatter, LimitsComeBackWhateverHappens) {
  struct Throwing : ORLFNumberFormatter {
    bool getObjectValueBase(std::optional<NSNumber>* value, NSNumberText& text, NSRange* range,
                            NSErrorSlot error) override {
      seenMinimum = minimum();
      if (text.units() == u"throw") throw std::runtime_error("no more");
      return ORLFNumberFormatter::getObjectValueBase(value, text, range, error);
    }
    std::optional<NSNumber> seenMinimum = 7;
  } formatter;
  const auto expectLimits = [&formatter](const char* text) {
    EXPECT_EQ(formatter.minimum(), NSNumber(1)) << text;
    EXPECT_EQ(formatter.maximum(), NSNumber(2)) << text;
    EXPECT_EQ(formatter.seenMinimum, std::nullopt) << text;
  };
  formatter.setMinimum(1);
  formatter.setMaximum(2);
  for (const char* text : {"1", "5", "x", "1 2", "1/0"}) {
    static_cast<void>(formatter.getObjectValue(nullptr, text));
    expectLimits(text);
  }
  EXPECT_THROW(formatter.getObjectValue(nullptr, "throw"), std::runtime_error);
  expectLimits("throw");
}

TEST(ORLFNumberFormatter, TwoNumbersInARowHaveNoUserInfoWhenANumberCouldBeRead) {
  const auto formatter = americanFormatter();
  std::shared_ptr<const NSError> error;
  EXPECT_FALSE(formatter->getObjectValue(nullptr, "5 6", nullptr, &error));
  EXPECT_EQ(error->userInfo()->count(), 0U);
  EXPECT_FALSE(formatter->getObjectValue(nullptr, "[5] 6", nullptr, &error));
  EXPECT_GT(error->userInfo()->count(), 0U) << "the parser's own, for the whole text is none";
  EXPECT_FALSE(formatter->getObjectValue(nullptr, "5 6"));
}

TEST(ORLFNumberFormatter, RangesAreReadInPlace) {
  const auto formatter = americanFormatter();
  const auto read = [&formatter](std::string_view text, NSRange range) {
    std::optional<NSNumber> value;
    const bool isRead = formatter->getObjectValue(&value, text, &range);
    return (isRead ? value ? value->stringValue() : "nil" : "false") + " " +
           std::to_string(range.location) + "+" + std::to_string(range.length);
  };
  EXPECT_EQ(read("x 1+2 y", {2, 3}), "3 2+3");
  EXPECT_EQ(read("x 1+2 y", {1, 5}), "3 1+4") << "white space behind is not taken";
  EXPECT_EQ(read("\U0001F6001+2", {2, 3}), "3 2+3") << "UTF-16 units are counted";
  EXPECT_EQ(read("1+2", {0, 2}), "1 0+2");
  EXPECT_EQ(read("1+2", {1, 99}), "2 1+2");
  EXPECT_EQ(read("1+2", {99, 1}), "nil 3+0");
  EXPECT_EQ(read("1 2", {0, 3}), "false 0+3");
  EXPECT_EQ(read("   ", {0, 3}), "nil 0+0");
}

TEST(ORLFNumberFormatter, WithoutExpressionsOneNumberIsRead) {
  const auto formatter = americanFormatter();
  formatter->setAllowExpressions(false);
  EXPECT_EQ(answer(*formatter, "2+3"), "2");
  EXPECT_EQ(answer(*formatter, ""), "false 2048");
  EXPECT_EQ(answer(*formatter, "twelve"), "12");
  formatter->setMaximum(10);
  EXPECT_EQ(answer(*formatter, "11"), "11") << "the second parser was made without a limit";
  formatter->setSimpleFormatter(nullptr);
  EXPECT_EQ(answer(*formatter, "11"), "false 2048") << "the limits are those of the parsers";
  EXPECT_EQ(formatter->numberFromString("2+3"), std::nullopt);
  formatter->setAllowExpressions(true);
  EXPECT_EQ(formatter->numberFromString("2+3"), NSNumber(5));
}

TEST(ORLFNumberFormatter, GivesDoublesUnlessDecimalsAreAskedFor) {
  const auto formatter = americanFormatter();
  formatter->setGeneratesDecimalNumbers(false);
  EXPECT_EQ(formatter->numberFromString("0.1+0.2"), NSNumber(0.1 + 0.2));
  EXPECT_EQ(formatter->numberFromString("-5"), NSNumber(-5));
  EXPECT_EQ(answer(*formatter, "1e300*1e300"), NSNumber(1e300 * 1e300).stringValue());
}

TEST(ORLFNumberFormatter, AskEachStyleForANumberAndTellTheFirstError) {
  const auto formatter = americanFormatter();
  formatter->setNumberStyle(NSNumberFormatterCurrencyStyle);
  formatter->setLenient(false);
  std::optional<NSNumber> value;
  for (const char* text : {"$5", "5", "five"}) {
    NSRange range{0, 10};
    std::shared_ptr<const NSError> error;
    EXPECT_TRUE(formatter->getObjectValueBase(&value, text, &range, &error)) << text;
    EXPECT_EQ(value, NSNumber(5)) << text;
    EXPECT_EQ(range.length, std::string_view(text).size()) << text;
    EXPECT_EQ(error, nullptr) << text;
  }
  NSRange range{1, 2};
  std::shared_ptr<const NSError> error;
  EXPECT_FALSE(formatter->getObjectValueBase(&value, "xyz", &range, &error));
  EXPECT_EQ(range, (NSRange{1, 2}));
  EXPECT_EQ(error->code(), 2048);
  EXPECT_FALSE(formatter->getExpressionValue(nullptr, "xyz"));
}

TEST(ORLFNumberFormatter, ABlankExpressionClearsTheValueThatStoodThere) {
  ORLFNumberFormatter formatter;
  std::optional<NSNumber> value = NSNumber(5);
  EXPECT_TRUE(formatter.getExpressionValue(&value, " "));
  EXPECT_FALSE(value);
}

}  // namespace
}  // namespace ORLFoundation
