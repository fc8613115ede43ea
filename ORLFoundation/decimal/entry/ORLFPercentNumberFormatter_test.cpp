
#include <ORLFoundation/decimal/entry/ORLFPercentNumberFormatter.h>

#include <ORLFoundation/platform/archive/NSKeyedArchiver_testing.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/object/Id.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace ORLFoundation {
namespace {

std::shared_ptr<ORLFPercentNumberFormatter> americanPercentFormatter() {
  auto formatter = std::make_shared<ORLFPercentNumberFormatter>();
  formatter->setLocale(std::make_shared<NSLocale>("en_US"));
  return formatter;
}

TEST(ORLFPercentNumberFormatter, BeginsWithPercentsOfThreePlaces) {
  const auto formatter = americanPercentFormatter();
  EXPECT_EQ(formatter->numberStyle(), NSNumberFormatterPercentStyle);
  EXPECT_EQ(formatter->maximumFractionDigits(), 3);
  EXPECT_FALSE(formatter->isLenient());
  EXPECT_EQ(formatter->stringFromDouble(0.1234567), "12.346%");
}

TEST(ORLFPercentNumberFormatter, TakesABareNumberForAPercentage) {
  const auto formatter = americanPercentFormatter();
  for (const char* text : {"5", "5%"}) EXPECT_EQ(formatter->numberFromString(text), NSNumber(0.05));
  std::optional<NSNumber> value;
  EXPECT_TRUE(formatter->getObjectValue(&value, "5"));
  EXPECT_EQ(value, NSNumber(0.05));
  for (const char* text : {"", "x", "%", "%5", "5 %"}) {
    std::shared_ptr<const NSError> error;
    EXPECT_FALSE(formatter->getObjectValue(&value, text, nullptr, &error)) << text;
    EXPECT_NE(error, nullptr) << text;
  }
  formatter->setMaximum(1);
  EXPECT_FALSE(formatter->getObjectValue(&value, "101"));
}

TEST(ORLFPercentNumberFormatter, TellsARangeOneLonger) {
  const auto formatter = americanPercentFormatter();
  NSRange range{1, 2};
  std::optional<NSNumber> value;
  EXPECT_TRUE(formatter->getObjectValue(&value, "x12", &range));
  EXPECT_EQ(value, NSNumber(0.12));
  EXPECT_EQ(range, (NSRange{1, 3})) << "the sign that was put behind the text is in it";
  NSRange inside{0, 1};
  EXPECT_FALSE(formatter->getObjectValue(&value, "123", &inside)) << "the sign stands at the end";
  EXPECT_EQ(inside, (NSRange{0, 1}));
}

TEST(ORLFPercentNumberFormatter, ALocaleWithABlankBeforeTheSignReadsNoBareNumber) {
  const auto formatter = americanPercentFormatter();
  formatter->setLocale(std::make_shared<NSLocale>("de_DE"));
  EXPECT_EQ(formatter->numberFromString("5"), std::nullopt);
  EXPECT_EQ(formatter->numberFromString("5\u00A0%"), NSNumber(0.05));
}

TEST(ORLFPercentNumberFormatter, AwakesWithTheSeparatorsOfTheCurrentLocale) {
  const Replaced current(NSLocale::setCurrentLocale, std::make_shared<NSLocale>("de_DE"));
  for (const bool localizes : {false, true}) {
    const auto formatter = americanPercentFormatter();
    formatter->setLocalizesFormat(localizes);
    formatter->awakeFromNib();
    EXPECT_EQ(formatter->decimalSeparator(), localizes ? "," : ".");
    EXPECT_EQ(formatter->groupingSeparator(), localizes ? "." : ",");
  }
}

TEST(ORLFPercentNumberFormatter, CopiesAndArchivesKeepItsClassAndSettings) {
  const auto formatter = americanPercentFormatter();
  formatter->setMaximumFractionDigits(1);
  const auto copy = copyOf(formatter);
  EXPECT_EQ(copy->className(), "ORLFPercentNumberFormatter");
  EXPECT_EQ(copy->maximumFractionDigits(), 1);
  const auto read = orlftest::archivedAndRead<ORLFPercentNumberFormatter>(formatter);
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->maximumFractionDigits(), 1);
  EXPECT_EQ(read->numberFromString("5"), NSNumber(0.05));
}

}  // namespace
}  // namespace ORLFoundation
