/// Text between UTF-8 and the UTF-16 of binary lists.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::plist {

/// Appends UTF-16 units, high byte first, as UTF-8. Half a surrogate pair becomes U+FFFD.
void appendFromUTF16BigEndian(std::string& text, std::span<const std::uint8_t> units);
/// Appends text as UTF-16 units, high byte first; gives the number of units. Throws
/// `PropertyListFault` for text that is not UTF-8.
std::size_t appendAsUTF16BigEndian(std::string& units, std::string_view text);
/// Throws `PropertyListFault` for text that is not UTF-8.
void checkUTF8(std::string_view text);
/// Whether XML 1.0 can hold all characters. The text is UTF-8.
[[nodiscard]] bool fitsXML(std::string_view text) noexcept;

}  // namespace ORLFoundation::internal::plist
