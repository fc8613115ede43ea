/// Whole numbers as the tool reads them from its command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace orlftool {

/// Reads an optional sign and decimal digits, all of the text: "010" is ten. nil for other text and
/// for numbers that 64 bits do not hold.
[[nodiscard]] std::optional<std::int64_t> readWholeNumber(std::string_view text);

/// The same for an argument of the command line, with its range, both ends included. Throws
/// UsageFailure that names the argument and quotes what was typed.
[[nodiscard]] std::int64_t readWholeArgument(std::string_view argument, std::string_view text,
                                             std::int64_t least, std::int64_t most);

}  // namespace orlftool
