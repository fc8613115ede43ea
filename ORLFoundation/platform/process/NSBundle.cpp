
#include <ORLFoundation/platform/process/NSBundle.h>

#include <ORLFoundation/platform/process/internal/LanguageNames.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation {
namespace {

/// What bundles of the process share.
struct Shared {
  std::mutex lock;
  std::vector<std::shared_ptr<NSBundle>> added;
  std::optional<std::vector<std::string>> languages;
};

Shared& shared() {
  static Shared& shared = *new Shared;
  return shared;
}

}  // namespace

NSBundle::NSBundle() : information_(std::make_shared<NSDictionary>()) {}

const std::shared_ptr<NSBundle>& NSBundle::mainBundle() {
  static const auto& bundle = *new auto(std::make_shared<NSBundle>());
  return bundle;
}

std::shared_ptr<NSBundle> NSBundle::bundleWithIdentifier(std::string_view identifier) {
  if (mainBundle()->bundleIdentifier() == identifier) return mainBundle();
  const std::lock_guard guard(shared().lock);
  for (const auto& bundle : shared().added)
    if (bundle->bundleIdentifier() == identifier) return bundle;
  return nullptr;
}

void NSBundle::addBundle(std::shared_ptr<NSBundle> bundle) {
  const std::lock_guard guard(shared().lock);
  shared().added.push_back(std::move(bundle));
}

std::shared_ptr<NSDictionary> NSBundle::infoDictionary() const {
  const std::lock_guard guard(lock_);
  return information_;
}

void NSBundle::setInfoDictionary(const NSDictionary& information) {
  auto copy = std::make_shared<NSDictionary>(information.entries());
  const std::lock_guard guard(lock_);
  information_ = std::move(copy);
}

id NSBundle::objectForInfoDictionaryKey(std::string_view key) const {
  if (const auto word = wordInTable("InfoPlist", key)) return *word;
  return infoDictionary()->objectForKey(key);
}

std::optional<std::string> NSBundle::bundleIdentifier() const {
  return infoDictionary()->objectForKey(kCFBundleIdentifierKey).as<std::string>();
}

std::string NSBundle::localizedStringForKey(std::optional<std::string_view> key,
                                            std::optional<std::string_view> value,
                                            std::optional<std::string_view> table) const {
  if (!key) return std::string(value.value_or(""));
  const std::string_view name = table.value_or("").empty() ? "Localizable" : *table;
  if (const auto word = wordInTable(name, *key)) return *word;
  return std::string(value.value_or("").empty() ? *key : *value);
}

/// The languages whose tables are looked for, "" for those of all languages.
std::vector<std::string> NSBundle::searchOrder() const {
  std::vector<std::string> order{""};
  for (const std::string& language : preferredLocalizations()) order.push_back(language);
  order.push_back(developmentLocalization());
  return order;
}

std::optional<std::string> NSBundle::wordInTable(std::string_view table,
                                                 std::string_view key) const {
  const std::vector<std::string> order = searchOrder();
  const std::lock_guard guard(lock_);
  for (const std::string& language : order) {
    const auto tables = tablesByLanguage_.find(language);
    if (tables == tablesByLanguage_.end()) continue;
    const auto words = tables->second.find(table);
    if (words == tables->second.end()) continue;
    const auto word = words->second.find(key);
    return word == words->second.end() ? std::nullopt : std::optional(word->second);
  }
  return std::nullopt;
}

void NSBundle::setLocalizedStrings(std::string_view table, Table words,
                                   std::optional<std::string_view> localization) {
  std::string language = localization ? internal::process::languageTag(*localization) : "";
  const std::lock_guard guard(lock_);
  tablesByLanguage_[std::move(language)].insert_or_assign(std::string(table), std::move(words));
}

std::vector<std::string> NSBundle::localizations() const {
  const std::lock_guard guard(lock_);
  std::vector<std::string> languages;
  for (const auto& [language, tables] : tablesByLanguage_)
    if (!language.empty()) languages.push_back(language);
  return languages;
}

std::string NSBundle::developmentLocalization() const {
  const auto region =
      infoDictionary()->objectForKey(kCFBundleDevelopmentRegionKey).as<std::string>();
  return region ? internal::process::languageTag(*region) : "en";
}

std::vector<std::string> NSBundle::preferredLocalizations() const {
  std::vector<std::string> own = localizations();
  // What the bundle was written in comes first, so that it serves where nothing suits.
  const std::string development = developmentLocalization();
  std::stable_partition(own.begin(), own.end(),
                        [&](const auto& name) { return name == development; });
  return preferredLocalizationsFromArray(own, preferredLanguages());
}

std::vector<std::string> NSBundle::preferredLocalizationsFromArray(
    std::span<const std::string> localizations, std::span<const std::string> forPreferences) {
  for (const std::string& preference : forPreferences) {
    std::vector<std::string> found = internal::process::localizationsForLanguage(
        localizations, internal::process::languageTag(preference));
    if (!found.empty()) return found;
  }
  if (localizations.empty()) return {};
  return {localizations.front()};
}

std::vector<std::string> NSBundle::preferredLanguages() {
  {
    const std::lock_guard guard(shared().lock);
    if (shared().languages) return *shared().languages;
  }
  return internal::process::languagesOfEnvironment();
}

void NSBundle::setPreferredLanguages(std::optional<std::vector<std::string>> languages) {
  const std::lock_guard guard(shared().lock);
  shared().languages = std::move(languages);
}

}  // namespace ORLFoundation
