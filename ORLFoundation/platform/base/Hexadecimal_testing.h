/// Bytes of hexadecimal text, and back, for tests.
#pragma once

#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <tests/support/Bytes.h>

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace orlftest {

/// Bytes from digits, in a text; blanks are passed over. Throws for any other character and for an
/// odd number of digits.
inline std::string textOfHex(std::string_view hex) {
  std::string digits(hex);
  std::erase(digits, ' ');
  const auto bytes = ORLFoundation::internal::base::bytesOfHexText(digits);
  if (!bytes) throw std::runtime_error("no hexadecimal text");
  return *bytes;
}
inline Bytes bytesOfHex(std::string_view hex) { return bytesOf(textOfHex(hex)); }

inline std::string hexOf(std::span<const std::uint8_t> bytes) {
  return ORLFoundation::internal::base::hexText(std::string(bytes.begin(), bytes.end()));
}

}  // namespace orlftest
