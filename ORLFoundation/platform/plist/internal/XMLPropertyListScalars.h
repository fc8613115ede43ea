/// The texts of single values in XML lists. Readers throw `PropertyListFault`.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace ORLFoundation::internal::plist {

/// A whole number between -2^63 and 2^64-1: its bits, and whether it is below zero. Decimal, or
/// hexadecimal after "0x", with an optional sign and white space around it.
[[nodiscard]] std::pair<std::uint64_t, bool> integerFromXML(std::string_view text);
/// A decimal real with a point whatever the locale; "nan", "inf" and "infinity" in any case.
[[nodiscard]] double realFromXML(std::string_view text);
/// "2024-01-02T03:04:05Z", and nothing but it: seconds since the reference date.
[[nodiscard]] double dateFromXML(std::string_view text);
/// Base64; characters outside its alphabet are passed over, and padding ends it.
[[nodiscard]] std::string dataFromXML(std::string_view text);

[[nodiscard]] std::string realToXML(double value);
/// Whole seconds, fractions cut off toward the past. Throws for a date outside the years -32767 to
/// 32767.
[[nodiscard]] std::string dateToXML(double seconds);
/// Base64 in lines as long as that level of nesting has room for, each after `indent`.
[[nodiscard]] std::string dataToXML(std::string_view bytes, std::string_view indent,
                                    std::size_t lineLength);

}  // namespace ORLFoundation::internal::plist
