/// Base64 text: four characters for three bytes, filled up with "=" (RFC 4648, section 4).
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::base {

/// The characters of the values 0 to 63.
inline constexpr std::string_view kBase64Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// 0 to 63 for a character of the alphabet, -1 for any other, "=" among them.
[[nodiscard]] int base64DigitValue(char c) noexcept;

/// The text of the bytes, in one line.
[[nodiscard]] std::string base64Text(std::string_view bytes);

/// The bytes of a text that `base64Text` could have written. nil for everything else: other
/// characters, line ends among them, a length that is no multiple of four, "=" anywhere but at the
/// end, and bits after the last byte that are not zero.
[[nodiscard]] std::optional<std::string> bytesOfBase64Text(std::string_view text);

/// The bytes of the alphabet's characters up to the first "=", with all else passed over, and bits
/// that make up no byte dropped: for formats that take any text.
[[nodiscard]] std::string bytesOfLooseBase64Text(std::string_view text);

}  // namespace ORLFoundation::internal::base
