/// The key of a protected archive, sealed by its password. The record stands in the archive's auth
/// data:
///
///     bytes  what
///     4      the length of the record
///     15     "orlf-scrypt-gcm"
///     1      zero
///     8 4 4  n, r and p of scrypt
///     16     its salt
///     12     the nonce
///     32     the archive's key, sealed by AES-256-GCM under the password's
///     16     the tag, over all before the nonce too
///
/// Numbers stand with their lowest byte first.
#pragma once

#include <ORLFoundation/platform/crypto/KeyedPrimitives.h>
#include <ORLFoundation/platform/crypto/SymmetricKey.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <cstdint>
#include <span>
#include <vector>

namespace ORLFoundation::internal::archives {

/// 128 MiB, and some tenths of a second.
inline constexpr crypto::ScryptCost kPasswordCost{std::uint64_t{1} << 17, 8, 1};
/// What a record may ask of a reader, in bytes and in n x r x p.
inline constexpr std::uint64_t kMostMemory = std::uint64_t{256} << 20;
inline constexpr std::uint64_t kMostWork = std::uint64_t{1} << 22;

[[noreturn]] void throwWrongPassword();

/// Under a salt and a nonce of its own. Throws `ArchiveError` where the system gives no random
/// bytes or no memory.
[[nodiscard]] std::vector<std::uint8_t> keyRecord(const SymmetricKey& archiveKey,
                                                  const NSData& password,
                                                  const crypto::ScryptCost& cost = kPasswordCost);
/// Throws `ArchiveErrorWrongKey` where the seal does not open, `ArchiveErrorTooLarge` for a record
/// that asks for too much, `ArchiveErrorUnsupported` where there is no record.
[[nodiscard]] SymmetricKey archiveKeyOfRecord(std::span<const std::uint8_t> record,
                                              const NSData& password);

}  // namespace ORLFoundation::internal::archives
