/// Names of languages: "de-AT", "zh-Hant-TW". Parts are separated by dashes, the language first.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::process {

/// "de_AT.UTF-8@euro" as "de-AT"; "" for "C" and "POSIX".
[[nodiscard]] std::string languageTag(std::string_view localeName);

/// The localization that suits a language best, and behind it those of the language's own name with
/// fewer parts; empty when none is of that language.
[[nodiscard]] std::vector<std::string> localizationsForLanguage(
    std::span<const std::string> localizations, std::string_view language);

/// The user's languages as gettext reads them from the environment.
[[nodiscard]] std::vector<std::string> languagesOfEnvironment();

}  // namespace ORLFoundation::internal::process
