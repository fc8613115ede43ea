/// What a program or library brings along beside its code: what it is called, its versions, and its
/// words in the languages of its users. The host installs these when it starts; nothing is read
/// from disk. Safe on any thread.
///
///     const auto bundle = NSBundle::mainBundle();
///     bundle->setInfoDictionary(*NSDictionary::dictionaryWithEntries(
///         {{"CFBundleIdentifier", "com.example.accounts"}, {"CFBundleName", "Accounts"}}));
///     bundle->setLocalizedStrings("Localizable", {{"week", "Woche"}}, "de");
///     bundle->localizedStringForKey("week", "", std::nullopt);  // "Woche" for readers of German
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

// Keys of the information dictionary. "CFBundleShortVersionString" is the version for people.
inline constexpr std::string_view kCFBundleIdentifierKey = "CFBundleIdentifier";
inline constexpr std::string_view kCFBundleNameKey = "CFBundleName";
inline constexpr std::string_view kCFBundleVersionKey = "CFBundleVersion";
inline constexpr std::string_view kCFBundleDevelopmentRegionKey = "CFBundleDevelopmentRegion";

class NSBundle final : public NSObject {
 public:
  using Table = std::map<std::string, std::string, std::less<>>;

  NSBundle();
  /// `mainBundle`  The running program's; one for the process.
  [[nodiscard]] static const std::shared_ptr<NSBundle>& mainBundle();
  /// `bundleWithIdentifier:`  The main bundle or one that was added; null when neither is called
  /// so.
  [[nodiscard]] static std::shared_ptr<NSBundle> bundleWithIdentifier(std::string_view identifier);
  /// Adds a library's bundle to those that are found by their identifiers.
  static void addBundle(std::shared_ptr<NSBundle> bundle);

  /// `infoDictionary`  Empty until one is installed; never null.
  [[nodiscard]] std::shared_ptr<NSDictionary> infoDictionary() const;
  void setInfoDictionary(const NSDictionary& information);
  /// `objectForInfoDictionaryKey:`  The word under the key in the table "InfoPlist" where there is
  /// one, else the value of the information dictionary.
  [[nodiscard]] id objectForInfoDictionaryKey(std::string_view key) const;
  /// `bundleIdentifier`  nil when there is none.
  [[nodiscard]] std::optional<std::string> bundleIdentifier() const;

  /// `localizedStringForKey:value:table:`  The word under a key of a table ("Localizable" for nil
  /// and ""); where there is none the value, or the key itself when the value is nil or empty. A
  /// nil key gives the value, or "". Only one table is looked into: the one without a language,
  /// else that of the first preferred localization that has one, else that of the development
  /// localization.
  [[nodiscard]] std::string localizedStringForKey(std::optional<std::string_view> key,
                                                  std::optional<std::string_view> value,
                                                  std::optional<std::string_view> table) const;
  /// Installs a table of words in place of the one of that name and language. nil stands for all
  /// languages.
  void setLocalizedStrings(std::string_view table, Table words,
                           std::optional<std::string_view> localization = std::nullopt);

  /// `localizations`  The languages that tables were installed for, in alphabetical order.
  [[nodiscard]] std::vector<std::string> localizations() const;
  /// `developmentLocalization`  From the information dictionary; "en" when it does not say.
  [[nodiscard]] std::string developmentLocalization() const;
  /// `preferredLocalizations`  Those of the bundle that suit the user's languages, the best first.
  [[nodiscard]] std::vector<std::string> preferredLocalizations() const;
  /// `preferredLocalizationsFromArray:forPreferences:`  For the first preferred language that has
  /// any: the localization of its name, of its name with fewer parts ("zh-Hant" and "zh" for
  /// "zh-Hant-TW"), or else of the same language elsewhere ("pt-BR" for "pt-PT"), and behind it
  /// those of its own name with fewer parts. Without any, the first localization.
  [[nodiscard]] static std::vector<std::string> preferredLocalizationsFromArray(
      std::span<const std::string> localizations, std::span<const std::string> forPreferences);

  /// The user's languages, the best first: those that were set, else those of the environment as
  /// gettext reads it (LANGUAGE, LC_ALL, LC_MESSAGES, LANG), as "de-AT". Empty in the locale "C".
  [[nodiscard]] static std::vector<std::string> preferredLanguages();
  /// nil goes back to the environment.
  static void setPreferredLanguages(std::optional<std::vector<std::string>> languages);

  [[nodiscard]] std::string className() const override { return "NSBundle"; }

 private:
  using Tables = std::map<std::string, Table, std::less<>>;

  [[nodiscard]] std::optional<std::string> wordInTable(std::string_view table,
                                                       std::string_view key) const;
  [[nodiscard]] std::vector<std::string> searchOrder() const;

  mutable std::mutex lock_;
  std::shared_ptr<NSDictionary> information_;
  std::map<std::string, Tables, std::less<>> tablesByLanguage_;
};

}  // namespace ORLFoundation
