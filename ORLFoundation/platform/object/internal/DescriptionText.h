/// The text forms that descriptions of collections are put together from.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <string>
#include <string_view>

namespace ORLFoundation::internal::object {

/// Deeper collections are described as "...".
inline constexpr NSUInteger kDeepestDescription = 100;

/// Text as it stands in a collection: as it is when it is made of ASCII letters and digits, else in
/// quotes. Inside quotes a quote, a backslash and line ends are escaped, and each UTF-16 unit
/// beyond ASCII reads \Uxxxx, a broken sequence of bytes \Ufffd.
[[nodiscard]] std::string quotedWhereNeeded(std::string_view text);

/// The character of a code point; U+FFFD for a number that is none.
[[nodiscard]] std::string characterText(NSUInteger codePoint);

/// The text with U+FFFD for each broken sequence of bytes.
[[nodiscard]] std::string wellFormed(std::string_view text);

/// Four spaces a level.
[[nodiscard]] inline std::string indentation(NSUInteger levels) {
  return std::string(4 * levels, ' ');
}

}  // namespace ORLFoundation::internal::object
