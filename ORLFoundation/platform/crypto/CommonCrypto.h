/// Ciphers, key derivation and digests, on OpenSSL. All are safe on any thread and keep nothing of
/// what they were given.
///
///     std::array<std::uint8_t, 16> key{};
///     const auto status =
///         CCKeyDerivationPBKDF(kCCPBKDF2, password, salt, kCCPRFHmacAlgSHA1, 1000, key);
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace ORLFoundation {

/// What the operations answer.
enum CCCryptorStatus : std::int32_t {
  kCCSuccess = 0,
  kCCParamError = -4300,
  kCCBufferTooSmall = -4301,
  kCCMemoryFailure = -4302,
  kCCAlignmentError = -4303,
  kCCDecodeError = -4304,
  kCCUnimplemented = -4305,
};

/// Which way a cipher runs.
enum CCOperation : std::uint32_t { kCCEncrypt = 0, kCCDecrypt = 1 };
/// The ciphers: one is offered.
enum CCAlgorithm : std::uint32_t { kCCAlgorithmAES = 0 };
/// Bits; without any the mode is CBC over whole blocks.
enum CCOptions : std::uint32_t { kCCOptionPKCS7Padding = 1 };
/// How keys are derived from passwords: one way is offered.
enum CCPBKDFAlgorithm : std::uint32_t { kCCPBKDF2 = 2 };
/// What the derivation hashes with: one function is offered.
enum CCPseudoRandomAlgorithm : std::uint32_t { kCCPRFHmacAlgSHA1 = 1 };

/// Bytes of a block of AES, and of its initialization vector.
inline constexpr std::size_t kCCBlockSizeAES128 = 16;
inline constexpr std::size_t CC_SHA1_DIGEST_LENGTH = 20;

/// What `CCCrypt` works on. The output may be longer than needed; it does not overlap the input.
struct CCCryptData {
  CCOperation operation;
  CCAlgorithm algorithm;
  /// Bits of `CCOptions`.
  std::uint32_t options;
  /// 16, 24 or 32 bytes.
  std::span<const std::uint8_t> key;
  /// 16 bytes; empty for a vector of zeros.
  std::span<const std::uint8_t> initializationVector;
  std::span<const std::uint8_t> input;
  std::span<std::uint8_t> output;
};

/// `CCCrypt`  AES in CBC mode, the whole input at once, with PKCS#7 padding where the options ask
/// for it, and tells how many bytes of output there are. `kCCParamError` for a key or a vector of
/// another length, `kCCUnimplemented` for another operation, algorithm or set of options,
/// `kCCBufferTooSmall` where the result could outgrow the output: encryption needs the input's
/// length and a block more, decryption the input's length. `kCCAlignmentError` for a cipher text,
/// and for a text without padding, of no whole number of blocks, `kCCDecodeError` for one whose
/// padding is none. After a failure the output holds nothing of the plain text.
[[nodiscard]] CCCryptorStatus CCCrypt(const CCCryptData& data, std::size_t& moved);

/// `CCKeyDerivationPBKDF`  A key as long as `derivedKey` from a password and a salt (RFC 8018,
/// section 5.2). `kCCParamError` for no rounds and for a key without length, `kCCUnimplemented` for
/// another algorithm or pseudo-random function; the key stays untouched then.
[[nodiscard]] CCCryptorStatus CCKeyDerivationPBKDF(
    CCPBKDFAlgorithm algorithm, std::string_view password, std::span<const std::uint8_t> salt,
    CCPseudoRandomAlgorithm function, std::uint32_t rounds, std::span<std::uint8_t> derivedKey);

/// `CC_SHA1`  The SHA-1 digest of the bytes.
[[nodiscard]] std::array<std::uint8_t, CC_SHA1_DIGEST_LENGTH> CC_SHA1(
    std::span<const std::uint8_t> bytes);

/// Whether both runs are equal, in a time that depends on their lengths alone.
[[nodiscard]] bool timingSafeEqual(std::span<const std::uint8_t> left,
                                   std::span<const std::uint8_t> right) noexcept;

}  // namespace ORLFoundation
