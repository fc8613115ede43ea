
// What expression formatters begin with, and what copies, archives and interface files do to it.

#include <ORLFoundation/decimal/entry/ORLFNumberFormatter.h>

#include <ORLFoundation/decimal/entry/ORLFNumberFormattingLocale.h>
#include <ORLFoundation/platform/archive/NSKeyedArchiver_testing.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/defaults/NSUserDefaults.h>
#include <ORLFoundation/platform/object/Id.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace ORLFoundation {
namespace {

/// The user's first language, taken for numbers, while it lives.
class Language {
 public:
  explicit Language(const std::string& code) : languages_(NSLocale::setPreferredLanguages, {code}) {
    setOrlfUsePerferredLanguageForNumberFormatting(*NSUserDefaults::standardUserDefaults(), true);
  }

 private:
  Replaced<std::shared_ptr<NSUserDefaults>> defaults_{NSUserDefaults::setStandardUserDefaults,
                                                      std::make_shared<NSUserDefaults>()};
  Replaced<std::vector<std::string>> languages_;
};

TEST(ORLFNumberFormatter, BeginsLenientWithExpressionsInThePreferredLocale) {
  const Replaced current(NSLocale::setCurrentLocale, std::make_shared<NSLocale>("fr_FR"));
  {
    const Language german("de-DE");
    const ORLFNumberFormatter formatter;
    EXPECT_EQ(formatter.locale()->localeIdentifier(), "de_DE");
    EXPECT_TRUE(formatter.allowExpressions());
    EXPECT_TRUE(formatter.isLenient());
    EXPECT_EQ(formatter.simpleFormatter(), nullptr);
  }
  const Language none("de");
  EXPECT_EQ(ORLFNumberFormatter().locale()->localeIdentifier(), "fr_FR");
}

TEST(ORLFNumberFormatter, KnowsItsCharacters) {
  const auto characters = ORLFNumberFormatter().expressionCharacters();
  for (char32_t c = 0; c < 0x250; ++c)
    EXPECT_EQ(characters->longCharacterIsMember(c),
              std::u32string_view(U"+-*/[]").find(c) != std::u32string_view::npos);
}

TEST(ORLFNumberFormatter, CopiesKeepExpressionsAndWhatTheBaseClassCopies) {
  const auto formatter = std::make_shared<ORLFNumberFormatter>();
  formatter->setAllowExpressions(false);
  formatter->setLenient(false);
  formatter->setLocale(std::make_shared<NSLocale>("pl_PL"));
  formatter->setMaximum(3);
  static_cast<void>(formatter->getObjectValue(nullptr, "x"));
  ASSERT_NE(formatter->simpleFormatter(), nullptr);
  const auto copy = copyOf(formatter);
  EXPECT_NE(copy, formatter);
  EXPECT_EQ(copy->className(), "ORLFNumberFormatter");
  EXPECT_FALSE(copy->allowExpressions());
  EXPECT_FALSE(copy->isLenient());
  EXPECT_EQ(copy->locale()->localeIdentifier(), "pl_PL");
  EXPECT_EQ(copy->maximum(), NSNumber(3));
  EXPECT_EQ(copy->simpleFormatter(), nullptr) << "made anew, with the copy's own settings";
}

TEST(ORLFNumberFormatter, ReadingAnArchiveSetsLocaleExpressionsAndLeniencyAnew) {
  const Replaced current(NSLocale::setCurrentLocale, std::make_shared<NSLocale>("fr_FR"));
  const auto formatter = std::make_shared<ORLFNumberFormatter>();
  formatter->setLocale(std::make_shared<NSLocale>("pl_PL"));
  formatter->setAllowExpressions(false);
  formatter->setLenient(false);
  formatter->setNumberStyle(NSNumberFormatterCurrencyStyle);
  formatter->setGeneratesDecimalNumbers(true);
  formatter->setMinimum(2);
  const Language british("en-GB");
  const auto read = orlftest::archivedAndRead<ORLFNumberFormatter>(formatter);
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->locale()->localeIdentifier(), "en_GB");
  EXPECT_TRUE(read->allowExpressions());
  EXPECT_TRUE(read->isLenient());
  EXPECT_EQ(read->numberStyle(), NSNumberFormatterCurrencyStyle);
  EXPECT_TRUE(read->generatesDecimalNumbers());
  EXPECT_EQ(read->minimum(), NSNumber(2));
  const Language none("en");
  EXPECT_EQ(orlftest::archivedAndRead<ORLFNumberFormatter>(formatter)->locale()->localeIdentifier(),
            "fr_FR");
}

TEST(ORLFNumberFormatter, IsReadWhereItsBaseClassIsAllowed) {
  const auto read =
      orlftest::archivedAndRead<NSNumberFormatter>(std::make_shared<ORLFNumberFormatter>());
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->className(), "ORLFNumberFormatter");
}

TEST(ORLFNumberFormatter, AwakesWithTheSeparatorsOfThePreferredLocale) {
  const Language german("de-DE");
  for (const bool localizes : {false, true}) {
    ORLFNumberFormatter formatter;
    formatter.setLocale(std::make_shared<NSLocale>("en_US"));
    formatter.setLocalizesFormat(localizes);
    formatter.awakeFromNib();
    EXPECT_EQ(formatter.decimalSeparator(), localizes ? "," : ".");
    EXPECT_EQ(formatter.groupingSeparator(), localizes ? "." : ",");
  }
}

TEST(ORLFNumberFormatter, AwakesWithItsOwnSeparatorsWithoutAPreferredLocale) {
  const Language none("de");
  ORLFNumberFormatter formatter;
  formatter.setLocale(std::make_shared<NSLocale>("en_US"));
  formatter.setDecimalSeparator(";");
  formatter.awakeFromNib();
  EXPECT_EQ(formatter.decimalSeparator(), ".");
}

TEST(ORLFNumberFormatter, TheSimpleFormatterKeepsWhatItWasMadeWith) {
  ORLFNumberFormatter formatter;
  formatter.setLocale(std::make_shared<NSLocale>("de_DE"));
  formatter.setGeneratesDecimalNumbers(true);
  formatter.setAllowExpressions(false);
  formatter.setMinimum(2);
  formatter.setMaximum(9);
  EXPECT_FALSE(formatter.getObjectValue(nullptr, "x"));
  const auto simple = formatter.simpleFormatter();
  ASSERT_NE(simple, nullptr);
  formatter.setLocale(std::make_shared<NSLocale>("en_US"));
  formatter.setMinimum(std::nullopt);
  EXPECT_FALSE(formatter.getObjectValue(nullptr, "x"));
  EXPECT_EQ(formatter.simpleFormatter(), simple);
  EXPECT_EQ(simple->className(), "NSNumberFormatter");
  EXPECT_EQ(simple->locale()->localeIdentifier(), "de_DE");
  EXPECT_TRUE(simple->generatesDecimalNumbers());
  EXPECT_FALSE(simple->isLenient());
  EXPECT_EQ(simple->minimum(), NSNumber(2));
  EXPECT_EQ(simple->maximum(), NSNumber(9));
  EXPECT_EQ(simple->numberStyle(), NSNumberFormatterSpellOutStyle) << "the last one tried";
}

TEST(ORLFNumberFormatter, HoldsASimpleFormatterAsACopy) {
  ORLFNumberFormatter formatter;
  const auto given = std::make_shared<NSNumberFormatter>();
  given->setLocale(std::make_shared<NSLocale>("de_DE"));
  formatter.setSimpleFormatter(given);
  EXPECT_NE(formatter.simpleFormatter(), given);
  EXPECT_EQ(formatter.simpleFormatter()->locale()->localeIdentifier(), "de_DE");
  EXPECT_EQ(formatter.numberFromString("zwei"), NSNumber(2));
  formatter.setSimpleFormatter(nullptr);
  EXPECT_EQ(formatter.simpleFormatter(), nullptr);
}

TEST(ORLFNumberFormatter, PartialTextsAreAskedAboutUnderThreeStyles) {
  ORLFNumberFormatter formatter;
  formatter.setLocale(std::make_shared<NSLocale>("en_US"));
  formatter.setNumberStyle(NSNumberFormatterCurrencyStyle);
  formatter.setMinimumFractionDigits(4);
  formatter.setLenient(false);
  const auto isValid = [&formatter](std::string_view text) {
    return formatter.isPartialStringValid({.partialString = text});
  };
  EXPECT_TRUE(isValid("anything")) << "validation is off";
  formatter.setPartialStringValidationEnabled(true);
  for (const bool allow : {false, true}) {
    formatter.setAllowExpressions(allow);
    for (const char* text : {"$5", "5", "five", ""}) EXPECT_TRUE(isValid(text)) << text;
    for (const char* text : {"5+5", "x"}) EXPECT_FALSE(isValid(text)) << text;
    EXPECT_EQ(formatter.numberStyle(), NSNumberFormatterCurrencyStyle);
    EXPECT_EQ(formatter.minimumFractionDigits(), 4);
  }
}

}  // namespace
}  // namespace ORLFoundation
