

#include <ORLFoundation/platform/process/internal/LanguageNames.h>

#include <algorithm>
#include <cstdlib>

namespace ORLFoundation::internal::process {
namespace {

std::string_view languageOf(std::string_view tag) { return tag.substr(0, tag.find('-')); }

/// The first of the variables that is set and not empty.
std::string_view firstVariable(std::initializer_list<const char*> names) {
  for (const char* name : names) {
    const char* value = std::getenv(name);
    if (value != nullptr && value[0] != '\0') return value;
  }
  return {};
}

}  // namespace

std::string languageTag(std::string_view localeName) {
  std::string tag(localeName.substr(0, localeName.find_first_of(".@")));
  if (tag == "C" || tag == "POSIX") return {};
  std::replace(tag.begin(), tag.end(), '_', '-');
  return tag;
}

std::vector<std::string> localizationsForLanguage(std::span<const std::string> localizations,
                                                  std::string_view language) {
  std::vector<std::string> found;
  for (std::string_view name = language; !name.empty();) {
    for (const std::string& localization : localizations)
      if (languageTag(localization) == name) found.push_back(localization);
    name = name.substr(0, name.find('-') == name.npos ? 0 : name.rfind('-'));
  }
  if (!found.empty() || language.empty()) return found;
  for (const std::string& localization : localizations)
    if (languageOf(languageTag(localization)) == languageOf(language)) return {localization};
  return {};
}

std::vector<std::string> languagesOfEnvironment() {
  const std::string locale = languageTag(firstVariable({"LC_ALL", "LC_MESSAGES", "LANG"}));
  if (locale.empty()) return {};
  std::string_view list = firstVariable({"LANGUAGE"});
  std::vector<std::string> languages;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(':'), list.size());
    std::string tag = languageTag(list.substr(0, end));
    if (!tag.empty()) languages.push_back(std::move(tag));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  if (languages.empty()) languages.push_back(locale);
  return languages;
}

}  // namespace ORLFoundation::internal::process
