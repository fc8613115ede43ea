/// Units of UTF-16: characters beyond U+FFFF are two of them, a leading and a trailing one.
#pragma once

#include <ORLFoundation/platform/base/UTF8.h>

#include <string>
#include <string_view>

namespace ORLFoundation::internal::base {

inline constexpr char32_t kFirstOfTwoUnits = 0x10000;

[[nodiscard]] constexpr bool isLeadingUnit(char32_t unit) noexcept {
  return unit >= 0xD800 && unit < 0xDC00;
}
[[nodiscard]] constexpr bool isTrailingUnit(char32_t unit) noexcept {
  return unit >= 0xDC00 && unit < 0xE000;
}

/// The units of a character from U+10000 on.
[[nodiscard]] constexpr char16_t leadingUnit(char32_t codePoint) noexcept {
  return static_cast<char16_t>(0xD800 + ((codePoint - kFirstOfTwoUnits) >> 10));
}
[[nodiscard]] constexpr char16_t trailingUnit(char32_t codePoint) noexcept {
  return static_cast<char16_t>(0xDC00 + (codePoint & 0x3FF));
}

/// The character of a leading and a trailing unit.
[[nodiscard]] constexpr char32_t codePointOfUnits(char32_t leading, char32_t trailing) noexcept {
  return kFirstOfTwoUnits + ((leading - 0xD800) << 10) + (trailing - 0xDC00);
}

/// Calls for each unit of a character.
template <class Use>
constexpr void forEachUnit(char32_t codePoint, Use&& use) {
  if (codePoint < kFirstOfTwoUnits) {
    use(static_cast<char16_t>(codePoint));
  } else {
    use(leadingUnit(codePoint));
    use(trailingUnit(codePoint));
  }
}

/// The units of a text in UTF-8; broken bytes stand for U+FFFD.
[[nodiscard]] inline std::u16string utf16Units(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  while (!text.empty()) {
    const UTF8Character character = firstUTF8Character(text);
    text.remove_prefix(character.length);
    forEachUnit(character.codePoint, [&units](char16_t unit) { units += unit; });
  }
  return units;
}

}  // namespace ORLFoundation::internal::base
