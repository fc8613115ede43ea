
#include <ORLFoundation/decimal/entry/ORLFNumberFormattingLocale.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/defaults/NSUserDefaults.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace ORLFoundation {
namespace {

TEST(ORLFNumberFormattingLocale, TheDefaultIsRegisteredReadAndSet) {
  NSUserDefaults defaults;
  EXPECT_FALSE(orlfUsePerferredLanguageForNumberFormatting(defaults));
  orlfRegisterUsePerferredLanguageForNumberFormattingDefault(defaults, true);
  EXPECT_TRUE(orlfUsePerferredLanguageForNumberFormatting(defaults));
  EXPECT_TRUE(defaults.boolForKey("ORLFUsePerferredLanguageForNumberFormatting"));
  setOrlfUsePerferredLanguageForNumberFormatting(defaults, false);
  EXPECT_FALSE(orlfUsePerferredLanguageForNumberFormatting(defaults));
  defaults.removeObjectForKey("ORLFUsePerferredLanguageForNumberFormatting");
  EXPECT_TRUE(orlfUsePerferredLanguageForNumberFormatting(defaults)) << "registered";
  orlfRegisterUsePerferredLanguageForNumberFormattingDefault(defaults, false);
  EXPECT_FALSE(orlfUsePerferredLanguageForNumberFormatting(defaults));
}

std::string chosenFor(const std::string& language) {
  const Replaced preferred(NSLocale::setPreferredLanguages, {language, "fr-FR"});
  const auto locale = orlfPerferredLocalForNumberFormatting();
  return locale ? locale->localeIdentifier() : "nil";
}

TEST(ORLFNumberFormattingLocale, TakesALanguageAndACountryAndNothingElse) {
  const Replaced defaults(NSUserDefaults::setStandardUserDefaults,
                          std::make_shared<NSUserDefaults>());
  EXPECT_EQ(chosenFor("en-GB"), "nil") << "nobody asked for it";
  setOrlfUsePerferredLanguageForNumberFormatting(*NSUserDefaults::standardUserDefaults(), true);
  EXPECT_EQ(chosenFor("en-GB"), "en_GB");
  for (const char* code : {"zh-Hans-CN", "en", "", "en_GB", "a-b-c-d"})
    EXPECT_EQ(chosenFor(code), "nil") << code;
}

}  // namespace
}  // namespace ORLFoundation
