/// The text forms that descriptions of collections are put together from.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <string>
#include <string_view>

namespace ORLFoundation::internal {

/// Deeper collections are described as "...".
inline constexpr NSUInteger kDeepestDescription = 100;

/// Text as it stands in a collection: as it is when it is made of ASCII letters and digits, else in
/// quotes. Inside quotes a quote, a backslash and line ends are escaped, and each UTF-16 unit
/// beyond ASCII reads \Uxxxx.
[[nodiscard]] std::string quotedWhereNeeded(std::string_view text);

/// Four spaces a level.
[[nodiscard]] inline std::string indentation(NSUInteger levels) {
  return std::string(4 * levels, ' ');
}

}  // namespace ORLFoundation::internal
