/// Case by the rules of the user's language.
#pragma once

#include <ORLFoundation/platform/format/NSLocale.h>

#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// `localizedCapitalizedString`  As `capitalizedStringWithLocale` tells, in the locale given; in
/// the current one when it is nil.
[[nodiscard]] std::string localizedCapitalizedString(
    std::string_view text, const std::shared_ptr<NSLocale>& locale = nullptr);

}  // namespace ORLFoundation
