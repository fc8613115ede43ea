/// The reader of a decimal's text in any form, a character at a time. `NSDecimal::parse` gives what
/// it gives, and reads the common forms in a shorter way.
#pragma once

#include <ORLFoundation/platform/value/NSDecimal.h>

#include <string_view>

namespace ORLFoundation::internal::value {

[[nodiscard]] NSDecimal readDecimal(std::string_view text, std::string_view decimalMark) noexcept;

}  // namespace ORLFoundation::internal::value
