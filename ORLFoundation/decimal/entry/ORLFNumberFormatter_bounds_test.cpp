
// Texts made to take long.

#include <ORLFoundation/decimal/entry/ORLFNumberFormatter.h>

#include <ORLFoundation/platform/base/UTF8.h>
#include <gtest/gtest.h>
#include <tests/support/ProcessorTime.h>

#include <memory>
#include <string>

namespace ORLFoundation {
namespace {

constexpr std::size_t kMegabyte = 1 << 20;

std::string filledWith(std::string_view piece, std::size_t size) {
  std::string text;
  while (text.size() < size) text += piece;
  return text;
}

std::shared_ptr<ORLFNumberFormatter> formatterOf(NSUInteger style) {
  auto formatter = std::make_shared<ORLFNumberFormatter>();
  formatter->setLocale(std::make_shared<NSLocale>("en_US"));
  formatter->setNumberStyle(static_cast<NSNumberFormatterStyle>(style));
  formatter->setGeneratesDecimalNumbers(true);
  return formatter;
}

void expectAnAnswerSoon(const char* piece, NSUInteger style, bool lenient) {
  const std::string text = filledWith(piece, kMegabyte);
  const auto formatter = formatterOf(style);
  formatter->setLenient(lenient);
  EXPECT_LT(orlftest::processorSecondsOf([&] { formatter->getObjectValue(nullptr, text); }), 2)
      << piece << " in style " << style << ", lenient " << lenient;
}

TEST(ORLFNumberFormatter, AnswersMegabytesWithinTwoSecondsInEveryStyle) {
  for (const char* piece : {"1", "1+", "[", "minus ", "x"})
    for (NSUInteger style = 0; style < 7; ++style)
      for (const bool lenient : {false, true}) expectAnAnswerSoon(piece, style, lenient);
}

TEST(ORLFNumberFormatter, AnswersOtherMegabytesToo) {
  for (const char* piece : {"]", "-", "/", " ", "one+", "one-", "1-", "1.5*2,"})
    for (const NSUInteger style : {1U, 5U}) expectAnAnswerSoon(piece, style, true);
}

TEST(ORLFNumberFormatter, AddsHalfAMillionNumbers) {
  std::string text = filledWith("1+", kMegabyte);
  EXPECT_EQ(formatterOf(1)->numberFromString(text + "1"), NSNumber(kMegabyte / 2 + 1));
}

TEST(ORLFNumberFormatter, TakesBracketsAHundredThousandDeep) {
  constexpr std::size_t kDepth = 100000;
  const std::string open(kDepth, '[');
  const std::string close(kDepth, ']');
  const auto formatter = formatterOf(1);
  EXPECT_EQ(formatter->numberFromString(open + "2+3" + close + "*4"), NSNumber(20));
  EXPECT_EQ(formatter->numberFromString(open + "2"), NSNumber(2));
  EXPECT_EQ(formatter->numberFromString("2" + close), NSNumber(2));
  std::string nested;
  for (std::size_t i = 0; i < kDepth; ++i) nested += "[1+";
  EXPECT_EQ(formatter->numberFromString(nested + "1" + close), NSNumber(kDepth + 1));
}

TEST(ORLFNumberFormatter, EveryPlaneOfUnicodeIsAnswered) {
  const auto formatter = formatterOf(1);
  for (char32_t plane = 0; plane <= 0x10; ++plane) {
    for (const char32_t low : {0x0001U, 0x0660U, 0x0966U, 0xD7CEU, 0xFB00U, 0xFFFDU}) {
      const char32_t c = plane << 16 | low;
      std::string text = "1+";
      internal::base::appendUTF8(text, c);
      NSRange range{0, 20};
      const bool isRead = formatter->getObjectValue(nullptr, text, &range);
      const bool isDigit = c == 0x660 || c == 0x966 || c == 0x1D7CE;
      EXPECT_EQ(isRead, isDigit) << static_cast<std::uint32_t>(c);
      EXPECT_EQ(range.length, isDigit ? NSNumberText(text).units().size() : 20U);
    }
  }
}

}  // namespace
}  // namespace ORLFoundation
