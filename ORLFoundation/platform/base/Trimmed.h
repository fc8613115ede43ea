/// Texts without what surrounds them.
#pragma once

#include <algorithm>
#include <string_view>

namespace ORLFoundation::internal::base {

/// The text without the bytes of `blanks` that it begins and ends with.
[[nodiscard]] constexpr std::string_view trimmed(std::string_view text,
                                                 std::string_view blanks) noexcept {
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  return text.substr(0, text.find_last_not_of(blanks) + 1);
}

}  // namespace ORLFoundation::internal::base
