/// The escapes of addresses: a percent sign and two hex digits for a byte.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::value {

/// Whether an escape begins at an index of the text.
[[nodiscard]] bool isPercentEscapeAt(std::string_view text, std::size_t index) noexcept;
/// The text with the bytes that its escapes stand for; other percent signs stay.
[[nodiscard]] std::string withoutPercentEscapes(std::string_view text);

}  // namespace ORLFoundation::internal::value
