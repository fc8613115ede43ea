/// Texts without the blanks around them.
#pragma once

#include <ORLFoundation/platform/base/Trimmed.h>

#include <string_view>

namespace orlftool {

inline constexpr std::string_view kBlanks = " \t\r";

/// The text without the blanks that it begins and ends with.
[[nodiscard]] inline std::string_view trimmed(std::string_view text,
                                              std::string_view blanks = kBlanks) {
  return ORLFoundation::internal::base::trimmed(text, blanks);
}

}  // namespace orlftool
