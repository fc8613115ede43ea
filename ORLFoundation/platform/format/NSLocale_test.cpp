
#include <ORLFoundation/platform/format/NSLocale.h>

#include <ORLFoundation/platform/archive/NSKeyedArchiver_testing.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/format/NSNumberFormatter.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSObject_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <memory>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

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

TEST(NSLocale, TakesItsIdentifierApartAndPutsItTogether) {
  const auto locale = NSLocale::localeWithLocaleIdentifier("zh_Hant_TW");
  EXPECT_EQ(locale->objectForKey(NSLocaleIdentifier), "zh_Hant_TW");
  EXPECT_EQ(locale->objectForKey(NSLocaleLanguageCode), "zh");
  EXPECT_EQ(locale->objectForKey(NSLocaleScriptCode), "Hant");
  EXPECT_EQ(locale->objectForKey(NSLocaleCountryCode), "TW");
  EXPECT_EQ(locale->objectForKey("colour"), "");
  EXPECT_EQ(NSLocale("de").objectForKey(NSLocaleCountryCode), "");
  EXPECT_EQ(NSLocale("de_DE").objectForKey(NSLocaleDecimalSeparator), ",");
  EXPECT_EQ(NSLocale("de_DE").objectForKey(NSLocaleGroupingSeparator), ".");
}

TEST(NSLocale, PutsComponentsTogether) {
  const auto identifier = [](std::initializer_list<std::pair<id, id>> entries) {
    return NSLocale::localeIdentifierFromComponents(*NSDictionary::dictionaryWithEntries(entries));
  };
  const id language = NSLocaleLanguageCode;
  const id country = NSLocaleCountryCode;
  EXPECT_EQ(identifier({{language, "en"}, {country, "GB"}}), "en_GB");
  EXPECT_EQ(identifier({{language, "zh"}, {NSLocaleScriptCode, "Hans"}, {country, "CN"}}),
            "zh_Hans_CN");
  EXPECT_EQ(identifier({{language, "en"}}), "en");
  EXPECT_EQ(identifier({{country, "GB"}}), "_GB");
  EXPECT_EQ(identifier({{country, 7}}), "");
  EXPECT_EQ(identifier({}), "");
}

TEST(NSLocale, PreferredLanguagesAreReplaceable) {
  {
    const Replaced languages(NSLocale::setPreferredLanguages, {"en-GB", "fr"});
    EXPECT_EQ(NSLocale::preferredLanguages(), (std::vector<std::string>{"en-GB", "fr"}));
  }
  EXPECT_EQ(NSLocale::preferredLanguages().size(), 1U);
  EXPECT_EQ(NSLocale::preferredLanguages()[0].find('_'), std::string::npos);
}

TEST(NSLocale, IsArchived) {
  const auto read = orlftest::archivedAndRead<NSLocale>(std::make_shared<NSLocale>("pt_BR"));
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->localeIdentifier(), "pt_BR");
}

TEST(NSLocale, AgreesWithVectorsOfSeparators) {
  using orlftest::Json;
  const auto check = [](const Json& in, const Json& out) {
    const NSLocale locale(in.at("locale").get<std::string>());
    const Json got{{"decimalSeparator", locale.decimalSeparator()},
                   {"groupingSeparator", locale.groupingSeparator()}};
    return orlftest::disagreement(out.dump(), got.dump());
  };
  orlftest::runJsonVectors("formats_locale", {{"locale", check}});
}

TEST(NSLocale, CopiesToItselfAndOneOnTheStackToAnEqualOne) {
  const auto owned = std::make_shared<NSLocale>("de_DE");
  EXPECT_EQ(owned->copy(), owned);
  NSLocale locale("de_DE");
  orlftest::expectEqualCopyOfUnowned(locale);
}

}  // namespace
}  // namespace ORLFoundation
