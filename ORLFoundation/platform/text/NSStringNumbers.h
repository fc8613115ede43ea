/// Numbers at the beginning of a text, read as the platform reads them: never a failure, 0 where
/// there is no number.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <string_view>

namespace ORLFoundation {

/// `integerValue`  White space, a sign, then the digits 0 to 9 up to the first other character;
/// 0 when there are none. A number that 64 bits do not hold becomes the nearest end.
[[nodiscard]] NSInteger integerValue(std::string_view text) noexcept;

}  // namespace ORLFoundation
