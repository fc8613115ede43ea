/// Which locale numbers are typed in: the process's own, or that of the user's first language when
/// the user has asked for it.
///
///     const auto defaults = NSUserDefaults::standardUserDefaults();
///     setOrlfUsePerferredLanguageForNumberFormatting(*defaults, true);
///     orlfPerferredLocalForNumberFormatting();  // en_GB, with the languages "en-GB", "fr-FR"
#pragma once

#include <ORLFoundation/platform/format/NSLocale.h>

#include <memory>
#include <string_view>

namespace ORLFoundation {

class NSUserDefaults;

/// The key of the user default, a boolean.
inline constexpr std::string_view ORLFUsePerferredLanguageForNumberFormatting =
    "ORLFUsePerferredLanguageForNumberFormatting";

/// `orlfPerferredLocalForNumberFormatting`  nil unless the standard defaults ask for it. Then the
/// locale of the first of the preferred languages, if that is a language and a country with one
/// dash between them ("en-GB"): "en" and "zh-Hans-CN" give nil.
[[nodiscard]] std::shared_ptr<NSLocale> orlfPerferredLocalForNumberFormatting();

/// `orlfRegisterUsePerferredLanguageForNumberFormattingDefault:`  What holds until the user sets
/// it.
void orlfRegisterUsePerferredLanguageForNumberFormattingDefault(NSUserDefaults& defaults,
                                                                bool value);
/// `orlfUsePerferredLanguageForNumberFormatting`
[[nodiscard]] bool orlfUsePerferredLanguageForNumberFormatting(const NSUserDefaults& defaults);
/// `setOrlfUsePerferredLanguageForNumberFormatting:`
void setOrlfUsePerferredLanguageForNumberFormatting(NSUserDefaults& defaults, bool value);

}  // namespace ORLFoundation
