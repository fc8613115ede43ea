/// Texts for people, in their language where the program has a table for it.
#pragma once

#include <ORLFoundation/platform/process/NSBundle.h>

#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::process {

/// What the main bundle has for the text; the text itself where it has nothing.
[[nodiscard]] inline std::string localizedText(std::string_view text) {
  return NSBundle::mainBundle()->localizedStringForKey(text, "", std::nullopt);
}

}  // namespace ORLFoundation::internal::process
