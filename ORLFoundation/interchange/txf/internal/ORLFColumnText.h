/// Columns of a stated width in UTF-16 units: a letter with an accent of its own counts once, a
/// character beyond the BMP twice.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::txf {

/// The units of a text; broken bytes count as the replacement character that stands for them.
[[nodiscard]] std::size_t unitCount(std::string_view text) noexcept;
/// The units of a text from one index up to another, which may lie beyond its end. nil when a cut
/// would go through the two units of a character: no encoding holds a half of it.
[[nodiscard]] std::optional<std::string_view> unitsOf(std::string_view text, std::size_t from,
                                                      std::size_t to) noexcept;
/// The text with blanks behind it up to the length; a longer one as it is.
[[nodiscard]] std::string padded(std::string_view text, std::size_t length);

// The columns of the detail line. nil as above.

/// 31 units and more are cut to 29. Shorter texts are not padded; this is required.
[[nodiscard]] std::optional<std::string> accountColumn(std::string_view text);
/// Fewer than 7 units are padded to 6; of a longer number the units behind the fifth stay.
[[nodiscard]] std::optional<std::string> checkNumberColumn(std::string_view text);
/// Padded to the width; a longer text is cut to one unit less.
[[nodiscard]] std::optional<std::string> textColumn(std::string_view text, std::size_t width);

}  // namespace ORLFoundation::internal::txf
