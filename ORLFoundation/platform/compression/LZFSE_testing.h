/// Bytes that tests pack.
#pragma once

#include <ORLFoundation/platform/base/Hexadecimal_testing.h>
#include <ORLFoundation/platform/compression/LZFSE.h>

#include <cstdint>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <string_view>

namespace orlftest {

/// "abcabcabcabcabcabcXYZabcabcabc" in a block with packed tables: "abc" and a match of 15 bytes
/// three back, "XYZ" and one of nine 21 back.
inline constexpr std::string_view kTablesExample =
    "627678321e0000000800300000020050b0020d38400900508c00000000800004c0a3000000000000c02300c0"
    "2300003c1a00f06800000000000000000000000000f0e8000000000000000000000000000000000000000000"
    "008fc6a3f16800c0a3f1683c1a00000000000000000000000000000000000000000000000000000000000000"
    "000000000000000000000000000000000000000162767824";

/// The same numbers on every machine.
class RandomNumbers {
 public:
  explicit RandomNumbers(unsigned seed) : engine_(seed) {}
  unsigned operator()() { return static_cast<unsigned>(engine_()); }

 private:
  std::mt19937 engine_;
};

inline std::string textOf(std::span<const std::uint8_t> bytes) {
  return {bytes.begin(), bytes.end()};
}

inline Bytes packed(std::span<const std::uint8_t> bytes) {
  ORLFoundation::internal::compression::LZFSEEncoder encoder;
  Bytes stream;
  encoder.append(bytes, stream);
  return stream;
}
inline std::optional<Bytes> unpacked(std::span<const std::uint8_t> stream,
                                     std::size_t mostBytes = std::size_t{1} << 28) {
  ORLFoundation::internal::compression::LZFSEDecoder decoder;
  return decoder.decoded(stream, mostBytes);
}

/// Lines of a bank's table, as many as make up so many bytes.
inline Bytes ledgerText(std::size_t count) {
  RandomNumbers random(7);
  std::string text;
  while (text.size() < count) {
    const unsigned number = random();
    text += "2024-" + std::to_string(1 + number % 12) + "-" + std::to_string(1 + number / 16 % 28) +
            ";" + std::to_string(number / 512 % 100000) + "." + std::to_string(number % 100) +
            ";payee number " + std::to_string(number / 64 % 400) + " of the month;Groceries\n";
  }
  text.resize(count);
  return bytesOf(text);
}

/// Random bytes of an alphabet; the fewer letters it has, the more of them repeat.
inline Bytes randomBytes(std::size_t count, unsigned letters, unsigned seed) {
  RandomNumbers random(seed);
  Bytes bytes(count);
  for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random() % letters);
  return bytes;
}

}  // namespace orlftest
