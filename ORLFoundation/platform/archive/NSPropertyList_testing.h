/// What the tests of property lists and archives share: bytes from hex digits, and binary lists put
/// together object by object.
#pragma once

#include <ORLFoundation/platform/value/NSData.h>

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orlftest {

/// Bytes from hex digits; blanks are passed over.
inline std::string bytesFromHex(std::string_view hex) {
  std::string bytes;
  int high = -1;
  for (const char digit : hex) {
    if (std::isxdigit(static_cast<unsigned char>(digit)) == 0) continue;
    const int value = digit <= '9' ? digit - '0' : (digit | 0x20) - 'a' + 10;
    if (high < 0) {
      high = value;
    } else {
      bytes += static_cast<char>(high * 16 + value);
      high = -1;
    }
  }
  return bytes;
}

inline void appendBigEndian(std::string& bytes, std::uint64_t value, unsigned width) {
  for (unsigned at = width; at-- > 0;) bytes += static_cast<char>(value >> (8 * at));
}

/// A binary list of the objects, the first one on top, with references of two bytes.
inline ORLFoundation::NSData binaryList(const std::vector<std::string>& objects) {
  std::string bytes = "bplist00";
  std::vector<std::size_t> offsets;
  for (const std::string& object : objects) {
    offsets.push_back(bytes.size());
    bytes += object;
  }
  const std::size_t table = bytes.size();
  for (const std::size_t offset : offsets) appendBigEndian(bytes, offset, 4);
  bytes += std::string("\0\0\0\0\0\0\4\2", 8);
  appendBigEndian(bytes, offsets.size(), 8);
  appendBigEndian(bytes, 0, 8);
  appendBigEndian(bytes, table, 8);
  return ORLFoundation::NSData(std::string_view(bytes));
}

/// The object of an array (0xA0) with references of two bytes.
inline std::string binaryArray(const std::vector<std::size_t>& references) {
  std::string bytes("\xAF\x12", 2);
  appendBigEndian(bytes, references.size(), 4);
  for (const std::size_t reference : references) appendBigEndian(bytes, reference, 2);
  return bytes;
}

}  // namespace orlftest
