/// The pieces of which sealed containers are put together: keyed hashes, keys from keys and from
/// passwords, and a cipher that leaves lengths as they are. Safe on any thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>

namespace ORLFoundation::internal::crypto {

inline constexpr std::size_t kSHA256Bytes = 32;
using SHA256Digest = std::array<std::uint8_t, kSHA256Bytes>;
using ByteSpan = std::span<const std::uint8_t>;

[[nodiscard]] SHA256Digest sha256(ByteSpan bytes);
/// HMAC-SHA256 over the parts as if they were one.
[[nodiscard]] SHA256Digest hmacSHA256(ByteSpan key, std::initializer_list<ByteSpan> parts);

/// HKDF-SHA256 (RFC 5869), both steps. Fills at most 8,160 bytes. An empty salt is one of zeros.
void deriveKey(ByteSpan secret, ByteSpan salt, ByteSpan info, std::span<std::uint8_t> key);

/// What a password key costs: `n` a power of two, the memory is about 128 x n x r bytes.
struct ScryptCost {
  std::uint64_t n = 0;
  std::uint64_t r = 0;
  std::uint64_t p = 0;
};
/// Fills the key by scrypt (RFC 7914). False for a cost that is none or wants more memory.
[[nodiscard]] bool deriveKeyFromPassword(ByteSpan password, ByteSpan salt, const ScryptCost& cost,
                                         std::uint64_t mostMemory, std::span<std::uint8_t> key);

inline constexpr std::size_t kAES256KeyBytes = 32, kAESBlockBytes = 16;
/// Encrypts or decrypts in place, by AES-256 in counter mode; the counter is one number of 128
/// bits, its highest byte first.
void cryptInCounterMode(ByteSpan key, ByteSpan counter, std::span<std::uint8_t> bytes);

/// Overwrites the bytes, whatever the compiler makes of it.
void wipe(std::span<std::uint8_t> bytes) noexcept;
void wipe(std::span<char> text) noexcept;

}  // namespace ORLFoundation::internal::crypto
