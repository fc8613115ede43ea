/// The one way in which the library stops the process on purpose.
#pragma once

#include <string_view>

namespace ORLFoundation {

/// Prints "Fatal error: <message>: file <source>, line <line>" to standard error, past the log's
/// sink, and aborts. For values that leave no way on, such as a frequency that no calendar unit
/// stands for.
[[noreturn]] void ORLFFatalError(std::string_view message, std::string_view source,
                                 int line) noexcept;

}  // namespace ORLFoundation
