/// Numbers at the beginning of a text, read as the platform reads them: never a failure, 0 where
/// there is no number. White space of any script, line ends too, is skipped before it; digits are
/// the ASCII ones alone.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <string_view>

namespace ORLFoundation {

/// `integerValue`  White space, a sign, then the digits 0 to 9 up to the first other character;
/// 0 when there are none. A number that 64 bits do not hold becomes the nearest end.
[[nodiscard]] NSInteger integerValue(std::string_view text) noexcept;
/// `longLongValue`  The same.
[[nodiscard]] long long longLongValue(std::string_view text) noexcept;
/// `doubleValue`  A sign, digits with one point among, before or behind them, and an exponent when
/// it has digits ("1e" is 1). What is too large is infinite, what is too small 0. The words for
/// infinity and not-a-number, and hexadecimal digits, are no numbers here: "inf" is 0.
[[nodiscard]] double doubleValue(std::string_view text);
/// `boolValue`  A sign, zeros, and then one of Y, y, T, t or a digit from 1 to 9 for true: "YES",
/// "true" and "-007" are true, "0.1" and "on" are not.
[[nodiscard]] bool boolValue(std::string_view text) noexcept;

}  // namespace ORLFoundation
