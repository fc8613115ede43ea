
#include <ORLFoundation/decimal/entry/ORLFNumberFormattingLocale.h>

#include <ORLFoundation/platform/defaults/NSUserDefaults.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>

#include <string>
#include <vector>

namespace ORLFoundation {

std::shared_ptr<NSLocale> orlfPerferredLocalForNumberFormatting() {
  if (!orlfUsePerferredLanguageForNumberFormatting(*NSUserDefaults::standardUserDefaults()))
    return nullptr;
  const std::vector<std::string> languages = NSLocale::preferredLanguages();
  if (languages.empty()) return nullptr;
  const std::string& code = languages.front();
  const std::size_t dash = code.find('-');
  if (dash == std::string::npos || code.find('-', dash + 1) != std::string::npos) return nullptr;
  const auto components = NSDictionary::dictionaryWithEntries(
      {{NSLocaleLanguageCode, code.substr(0, dash)}, {NSLocaleCountryCode, code.substr(dash + 1)}});
  return NSLocale::localeWithLocaleIdentifier(
      NSLocale::localeIdentifierFromComponents(*components));
}

void orlfRegisterUsePerferredLanguageForNumberFormattingDefault(NSUserDefaults& defaults,
                                                                bool value) {
  defaults.registerDefaults(
      *NSDictionary::dictionaryWithEntries({{ORLFUsePerferredLanguageForNumberFormatting, value}}));
}

bool orlfUsePerferredLanguageForNumberFormatting(const NSUserDefaults& defaults) {
  return defaults.boolForKey(ORLFUsePerferredLanguageForNumberFormatting);
}

void setOrlfUsePerferredLanguageForNumberFormatting(NSUserDefaults& defaults, bool value) {
  defaults.setBool(value, ORLFUsePerferredLanguageForNumberFormatting);
}

}  // namespace ORLFoundation
