/// Parts of numbers in texts of ASCII.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace ORLFoundation::internal::base {

/// Takes one sign off; answers whether it was a minus.
[[nodiscard]] constexpr bool takeSign(std::string_view& text) noexcept {
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) text.remove_prefix(1);
  return isNegative;
}

/// Where the digits from a place on end: that place where none stands there, the text's end for a
/// place beyond it.
[[nodiscard]] constexpr std::size_t endOfDigits(std::string_view text, std::size_t from) noexcept {
  return std::min(text.find_first_not_of("0123456789", from), text.size());
}

}  // namespace ORLFoundation::internal::base
