/// Digests of bytes as hexadecimal text, for tests that link OpenSSL.
#pragma once

#include <ORLFoundation/platform/base/Hexadecimal_testing.h>
#include <openssl/sha.h>

#include <array>
#include <cstdint>
#include <span>
#include <string>

namespace orlftest {

inline std::string sha256Of(std::span<const std::uint8_t> bytes) {
  std::array<std::uint8_t, SHA256_DIGEST_LENGTH> digest{};
  SHA256(bytes.data(), bytes.size(), digest.data());
  return hexOf(digest);
}

}  // namespace orlftest
