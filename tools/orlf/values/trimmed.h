/// Texts without the blanks around them.
#pragma once

#include <algorithm>
#include <string_view>

namespace orlftool {

inline constexpr std::string_view kBlanks = " \t\r";

/// The text without the blanks that it begins and ends with.
[[nodiscard]] inline std::string_view trimmed(std::string_view text,
                                              std::string_view blanks = kBlanks) {
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  return text.substr(0, text.find_last_not_of(blanks) + 1);
}

}  // namespace orlftool
