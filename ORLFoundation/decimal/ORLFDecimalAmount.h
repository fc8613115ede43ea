/// Amounts as people type them.
///
///     orlfDecimalNumberWithFormattedString("$1,000.50");  // 1000.50
///     orlfDecimalNumberWithFormattedString("(12.50)");    // -12.50
///     orlfDecimalNumberWithFormattedString("3 1/2");      // 3.5
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>

#include <optional>
#include <string_view>

namespace ORLFoundation {

/// `orlfDecimalNumberWithFormattedString:`  Skips what stands before the number, takes "," and "."
/// for thousands or decimals by their places (1,234 is 1234 and 1,23 is 1.23), reads one fraction,
/// an exponent with an explicit sign (1e+3) and accounting brackets for a negative. nil for nil,
/// for text without a number and for letters after its beginning ("5 USD"). A fraction counts with
/// four places, and one that rounds to 1 is added to the number before it: 3 99999/100000 is 4. A
/// fraction of 1 or more after other digits is left out with a line in the log. The user's locale
/// plays no part.
[[nodiscard]] std::optional<NSDecimalNumber> orlfDecimalNumberWithFormattedString(
    std::optional<std::string_view> text);

}  // namespace ORLFoundation
