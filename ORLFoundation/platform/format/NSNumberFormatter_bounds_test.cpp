
// Texts made to take long: a megabyte of one thing, in every style.
#include <ORLFoundation/platform/format/NSNumberFormatter.h>

#include <gtest/gtest.h>
#include <tests/support/ProcessorTime.h>

#include <memory>
#include <string>

namespace ORLFoundation {
namespace {

constexpr NSUInteger kStyles = 7;
constexpr std::size_t kMegabyte = 1 << 20;

std::string megabyteOf(std::string_view piece) {
  std::string text;
  while (text.size() < kMegabyte) text += piece;
  return text;
}

TEST(NSNumberFormatter, AnswersMegabytesSoon) {
  for (const char* piece : {"1", "1+", "[", "minus ", "x", "one ", " ", "1,", "\xF0\x9F\x98\x80"}) {
    const std::string text = megabyteOf(piece);
    for (NSUInteger style = 0; style < kStyles; ++style) {
      for (const bool lenient : {false, true}) {
        NSNumberFormatter formatter;
        formatter.setLocale(std::make_shared<NSLocale>("en_US"));
        formatter.setNumberStyle(static_cast<NSNumberFormatterStyle>(style));
        formatter.setLenient(lenient);
        EXPECT_LT(orlftest::processorSecondsOf([&] { formatter.getObjectValue(nullptr, text); }), 2)
            << piece << style << lenient;
      }
    }
  }
}

NSNumberFormatter& american(NSNumberFormatter& formatter, NSNumberFormatterStyle style) {
  formatter.setLocale(std::make_shared<NSLocale>("en_US"));
  formatter.setNumberStyle(style);
  formatter.setGeneratesDecimalNumbers(true);
  return formatter;
}

TEST(NSNumberFormatter, TakesNumbersUpToTheBoundAndNoLonger) {
  NSNumberFormatter formatter;
  american(formatter, NSNumberFormatterDecimalStyle);
  const std::string zeros(NSNumberText::kMostUnitsOfNumber - 1, '0');
  EXPECT_EQ(formatter.numberFromString(zeros + "7"), NSNumber(7));
  EXPECT_EQ(formatter.numberFromString(zeros + "77"), std::nullopt);
  std::optional<NSNumber> value;
  NSRange range{0, 300};
  ASSERT_TRUE(formatter.getObjectValue(&value, zeros + " " + zeros, &range));
  EXPECT_EQ(range, (NSRange{0, zeros.size()}));
  // White space in front is no part of the number.
  EXPECT_EQ(formatter.numberFromString(std::string(1000, ' ') + "7"), NSNumber(7));
}

TEST(NSNumberFormatter, LooksAtSoManyUnitsOfATextAsWords) {
  NSNumberFormatter formatter;
  american(formatter, NSNumberFormatterSpellOutStyle);
  NSNumberText text("one");
  const auto reads = [&](bool lenient) {
    formatter.setLenient(lenient);
    return formatter.getObjectValue(nullptr, text);
  };
  for (NSUInteger left = NSNumberText::kMostUnitsInWords; left >= 3; left -= 3)
    ASSERT_TRUE(reads(false)) << left;
  EXPECT_FALSE(reads(false));
  NSNumberText digits("5");
  while (digits.spendUnitsInWords(1)) {
  }
  EXPECT_TRUE(formatter.getObjectValue(nullptr, digits)) << "digits are no words";
  NSNumberText short_("one");
  ASSERT_TRUE(short_.spendUnitsInWords(NSNumberText::kMostUnitsInWords - 3 * 16));
  formatter.setLenient(true);
  EXPECT_TRUE(formatter.getObjectValue(nullptr, short_));
  EXPECT_FALSE(formatter.getObjectValue(nullptr, short_));
}

TEST(NSNumberFormatter, DigitsThatAreWordsSpendThemToo) {
  NSNumberFormatter formatter;
  formatter.setLocale(std::make_shared<NSLocale>("en_US@numbers=roman"));
  formatter.setNumberStyle(NSNumberFormatterDecimalStyle);
  EXPECT_EQ(formatter.stringFromDouble(12), "XII");
  EXPECT_EQ(formatter.numberFromString("XII"), NSNumber(12));
  NSNumberText text("XII");
  ASSERT_TRUE(text.spendUnitsInWords(NSNumberText::kMostUnitsInWords - 3));
  EXPECT_TRUE(formatter.getObjectValue(nullptr, text));
  EXPECT_FALSE(formatter.getObjectValue(nullptr, text));
}

TEST(NSNumberFormatter, EndsWordsBeforeTheMarksOfSums) {
  NSNumberFormatter formatter;
  american(formatter, NSNumberFormatterSpellOutStyle);
  const auto taken = [&formatter](const std::string& text) {
    NSRange range{0, text.size()};
    return formatter.getObjectValue(nullptr, text, &range) ? range.length : 0;
  };
  for (const char* mark : {"+", "*", "/", "[", "]"})
    EXPECT_EQ(taken("twenty" + std::string(mark) + "one"), 6U) << mark;
  EXPECT_EQ(taken("twenty-one"), 10U);
  EXPECT_EQ(taken("5E+2"), 4U);
  EXPECT_EQ(taken("5e+2"), 4U);
  EXPECT_EQ(taken("one+2"), 3U);
  EXPECT_EQ(taken("*5"), 0U);
}

}  // namespace
}  // namespace ORLFoundation
