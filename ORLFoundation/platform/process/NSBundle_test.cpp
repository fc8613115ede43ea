
#include <ORLFoundation/platform/process/NSBundle.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/EnvironmentVariable.h>

#include <thread>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using Names = std::vector<std::string>;

/// Languages of the user for one test.
class Languages {
 public:
  explicit Languages(Names names) { NSBundle::setPreferredLanguages(std::move(names)); }
  ~Languages() { NSBundle::setPreferredLanguages(std::nullopt); }
  Languages(const Languages&) = delete;
  Languages& operator=(const Languages&) = delete;
};

TEST(NSBundle, GivesTheKeyOrTheValueWithoutATable) {
  const NSBundle bundle;
  EXPECT_EQ(bundle.localizedStringForKey("week", "", std::nullopt), "week");
  EXPECT_EQ(bundle.localizedStringForKey("week", std::nullopt, std::nullopt), "week");
  EXPECT_EQ(bundle.localizedStringForKey("week", "a week", std::nullopt), "a week");
  EXPECT_EQ(bundle.localizedStringForKey(std::nullopt, "a week", std::nullopt), "a week");
  EXPECT_EQ(bundle.localizedStringForKey(std::nullopt, std::nullopt, std::nullopt), "");
}

TEST(NSBundle, LooksInTheTableThatIsNamed) {
  NSBundle bundle;
  bundle.setLocalizedStrings("Localizable", {{"week", "Woche"}});
  bundle.setLocalizedStrings("Other", {{"week", "semaine"}});
  EXPECT_EQ(bundle.localizedStringForKey("week", "", std::nullopt), "Woche");
  EXPECT_EQ(bundle.localizedStringForKey("week", "", ""), "Woche");
  EXPECT_EQ(bundle.localizedStringForKey("week", "", "Other"), "semaine");
  EXPECT_EQ(bundle.localizedStringForKey("day", "", "Other"), "day");
  EXPECT_EQ(bundle.localizedStringForKey("week", "", "Absent"), "week");
}

TEST(NSBundle, TakesTheTableOfTheUsersLanguage) {
  const Languages languages({"fr-CA", "de-AT"});
  NSBundle bundle;
  bundle.setLocalizedStrings("Localizable", {{"week", "week"}, {"day", "day"}}, "en");
  bundle.setLocalizedStrings("Localizable", {{"week", "Woche"}}, "de");
  EXPECT_EQ(bundle.localizedStringForKey("week", "", std::nullopt), "Woche");
  EXPECT_EQ(bundle.localizedStringForKey("day", "a day", std::nullopt), "a day");
  bundle.setLocalizedStrings("Localizable", {{"week", "Woche (AT)"}}, "de_AT");
  EXPECT_EQ(bundle.localizedStringForKey("week", "", std::nullopt), "Woche (AT)");
  bundle.setLocalizedStrings("Localizable", {{"week", "any"}});
  EXPECT_EQ(bundle.localizedStringForKey("week", "", std::nullopt), "any");
}

TEST(NSBundle, TakesTheDevelopmentTableWhereTheLanguageHasNone) {
  NSBundle bundle;
  bundle.setInfoDictionary(
      *NSDictionary::dictionaryWithEntries({{kCFBundleDevelopmentRegionKey, "nl"}}));
  bundle.setLocalizedStrings("Other", {{"week", "Woche"}}, "de");
  bundle.setLocalizedStrings("Localizable", {{"week", "week (nl)"}}, "nl");
  bundle.setLocalizedStrings("Localizable", {{"week", "viikko"}}, "fi");
  const Languages languages({"de"});
  EXPECT_EQ(bundle.localizedStringForKey("week", "", "Other"), "Woche");
  EXPECT_EQ(bundle.localizedStringForKey("week", "", std::nullopt), "week (nl)");
  const Languages others({"ja"});
  EXPECT_THAT(bundle.preferredLocalizations(), ElementsAre("nl"));
  EXPECT_EQ(bundle.localizedStringForKey("week", "", std::nullopt), "week (nl)");
}

TEST(NSBundle, KnowsItsLocalizations) {
  NSBundle bundle;
  EXPECT_THAT(bundle.localizations(), IsEmpty());
  EXPECT_THAT(bundle.preferredLocalizations(), IsEmpty());
  EXPECT_EQ(bundle.developmentLocalization(), "en");
  bundle.setLocalizedStrings("a", {}, "fr");
  bundle.setLocalizedStrings("a", {}, "de_AT");
  bundle.setLocalizedStrings("a", {});
  EXPECT_THAT(bundle.localizations(), ElementsAre("de-AT", "fr"));
}

struct MatchCase {
  std::string_view name;
  Names localizations, preferences, found;
};
const MatchCase kMatches[] = {
    {"SameName", {"en", "de"}, {"de"}, {"de"}},
    {"FewerParts", {"en", "de"}, {"de-AT"}, {"de"}},
    {"OwnNamesBehindTheBest", {"zh", "zh-Hant", "en"}, {"zh-Hant-TW"}, {"zh-Hant", "zh"}},
    {"SameLanguageElsewhere", {"en", "pt-BR"}, {"pt-PT"}, {"pt-BR"}},
    {"MoreParts", {"en", "de-AT"}, {"de"}, {"de-AT"}},
    {"SecondPreference", {"en", "de"}, {"fr", "de"}, {"de"}},
    {"FirstPreferenceCounts", {"en", "de"}, {"en-GB", "de"}, {"en"}},
    {"OtherSpellings", {"de_AT"}, {"de_AT.UTF-8"}, {"de_AT"}},
    {"NothingSuits", {"en", "de"}, {"fr"}, {"en"}},
    {"NoPreferences", {"en", "de"}, {}, {"en"}},
    {"NoLocalizations", {}, {"de"}, {}},
    {"NoName", {"en", "de"}, {"", "C", "de"}, {"de"}},
};

TEST(NSBundle, MatchesLocalizationsToLanguages) {
  for (const MatchCase& row : kMatches)
    EXPECT_THAT(NSBundle::preferredLocalizationsFromArray(row.localizations, row.preferences),
                ElementsAreArray(row.found))
        << row.name;
}

struct EnvironmentCase {
  std::string_view name;
  const char *language, *all, *messages, *lang;
  Names found;
};
const EnvironmentCase kEnvironments[] = {
    {"Lang", nullptr, nullptr, nullptr, "de_AT.UTF-8@euro", {"de-AT"}},
    {"MessagesBeforeLang", nullptr, "", "fr_FR", "de_AT", {"fr-FR"}},
    {"AllBeforeMessages", nullptr, "nl", "fr_FR", "de_AT", {"nl"}},
    {"ListBeforeAll", "sv:C::nb_NO", nullptr, nullptr, "de_AT", {"sv", "nb-NO"}},
    {"ListOfNothing", ":", nullptr, nullptr, "de_AT", {"de-AT"}},
    {"NoListInTheLocaleC", "sv", "C", nullptr, "de_AT", {}},
    {"LocalePOSIX", nullptr, "POSIX.UTF-8", nullptr, nullptr, {}},
    {"Nothing", nullptr, nullptr, nullptr, nullptr, {}},
};

TEST(NSBundle, ReadsTheUsersLanguagesFromTheEnvironment) {
  for (const EnvironmentCase& row : kEnvironments) {
    const orlftest::EnvironmentVariable language("LANGUAGE", row.language), all("LC_ALL", row.all),
        messages("LC_MESSAGES", row.messages), lang("LANG", row.lang);
    EXPECT_THAT(NSBundle::preferredLanguages(), ElementsAreArray(row.found)) << row.name;
  }
}

TEST(NSBundle, TellsItsNamesAndVersions) {
  NSBundle bundle;
  EXPECT_EQ(bundle.bundleIdentifier(), std::nullopt);
  EXPECT_TRUE(bundle.objectForInfoDictionaryKey(kCFBundleNameKey).isNil());
  bundle.setInfoDictionary(
      *NSDictionary::dictionaryWithEntries({{kCFBundleIdentifierKey, "com.example.accounts"},
                                            {kCFBundleNameKey, "Accounts"},
                                            {kCFBundleVersionKey, "1204"},
                                            {"CFBundleShortVersionString", "1.2"}}));
  EXPECT_EQ(bundle.bundleIdentifier(), "com.example.accounts");
  EXPECT_EQ(bundle.objectForInfoDictionaryKey(kCFBundleVersionKey), id("1204"));
  EXPECT_EQ(bundle.infoDictionary()->count(), 4U);
  const Languages languages({"de"});
  bundle.setLocalizedStrings("InfoPlist", {{"CFBundleName", "Konten"}}, "de");
  EXPECT_EQ(bundle.objectForInfoDictionaryKey(kCFBundleNameKey), id("Konten"));
  EXPECT_EQ(bundle.objectForInfoDictionaryKey("CFBundleShortVersionString"), id("1.2"));
  EXPECT_EQ(bundle.infoDictionary()->objectForKey(kCFBundleNameKey), id("Accounts"));
}

TEST(NSBundle, IsFoundByItsIdentifier) {
  const auto library = std::make_shared<NSBundle>();
  library->setInfoDictionary(
      *NSDictionary::dictionaryWithEntries({{kCFBundleIdentifierKey, "com.example.library"}}));
  EXPECT_EQ(NSBundle::bundleWithIdentifier("com.example.library"), nullptr);
  NSBundle::addBundle(library);
  EXPECT_EQ(NSBundle::bundleWithIdentifier("com.example.library"), library);
  EXPECT_EQ(NSBundle::bundleWithIdentifier("com.example.program"), nullptr);
  NSBundle::mainBundle()->setInfoDictionary(
      *NSDictionary::dictionaryWithEntries({{kCFBundleIdentifierKey, "com.example.program"}}));
  EXPECT_EQ(NSBundle::bundleWithIdentifier("com.example.program"), NSBundle::mainBundle());
  NSBundle::mainBundle()->setInfoDictionary(NSDictionary());
}

TEST(NSBundle, MainBundleIsOneForTheProcess) {
  EXPECT_EQ(NSBundle::mainBundle().get(), NSBundle::mainBundle().get());
}

TEST(NSBundle, IsUsedFromManyThreads) {
  NSBundle bundle;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&, t] {
      for (int i = 0; i < 100; ++i) {
        bundle.setLocalizedStrings("Localizable", {{"week", std::to_string(t)}}, "en");
        bundle.setInfoDictionary(*NSDictionary::dictionaryWithEntries({{"key", t}}));
        EXPECT_EQ(bundle.localizedStringForKey("week", "", std::nullopt).size(), 1U);
      }
    });
  for (auto& thread : threads) thread.join();
}

}  // namespace
}  // namespace ORLFoundation
