/// PBKDF2 with HMAC over SHA-1.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace ORLFoundation::internal::crypto {

/// Fills `key` from a password and a salt (RFC 8018, section 5.2), with at least one round and
/// fewer than 2^32 blocks of 20 bytes. What was worked with is wiped.
void deriveKeyOverSHA1(std::string_view password, std::span<const std::uint8_t> salt,
                       std::uint32_t rounds, std::span<std::uint8_t> key);

}  // namespace ORLFoundation::internal::crypto
