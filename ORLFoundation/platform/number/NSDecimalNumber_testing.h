/// Short words for tests of decimals.
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>

#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

using Optional = std::optional<NSDecimalNumber>;

inline NSDecimalNumber number(std::string_view text) { return NSDecimalNumber(text); }

/// "1000", "nil".
inline std::string textOf(const Optional& value) { return value ? value->stringValue() : "nil"; }

}  // namespace ORLFoundation
