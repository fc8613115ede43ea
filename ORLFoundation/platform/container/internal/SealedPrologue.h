/// The first bytes of a sealed container, and the keys that are derived from its own.
#pragma once

#include <ORLFoundation/platform/container/ArchiveEncryptionContext.h>
#include <ORLFoundation/platform/container/internal/HeaderFields.h>
#include <ORLFoundation/platform/crypto/KeyedPrimitives.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>

namespace ORLFoundation::internal::container {

using Tag = crypto::SHA256Digest;

inline constexpr std::string_view kSealedMagic = "AEA1";
inline constexpr std::size_t kTagBytes = 32, kSaltBytes = 32, kRootBytes = 48;
/// Memory that keys from passwords may take.
inline constexpr std::uint64_t kMostPasswordMemory = std::uint64_t{256} << 20;

/// The sizes and kinds that the root header tells.
struct SealedRoot {
  std::uint64_t rawBytes = 0;
  std::uint64_t containerBytes = 0;
  std::size_t segmentBytes = std::size_t{1} << 20;
  std::size_t segmentsPerCluster = 256;
  ArchiveCompression compression = ArchiveCompression::lzfse;
  ArchiveEncryptionContext::Checksum checksum = ArchiveEncryptionContext::Checksum::sha256;

  [[nodiscard]] std::size_t checksumBytes() const noexcept;
  [[nodiscard]] std::size_t segmentHeaderBytes() const noexcept { return 8 + checksumBytes(); }
  /// Of what stands before a cluster's segments.
  [[nodiscard]] std::size_t clusterHeaderBytes() const noexcept {
    return segmentsPerCluster * (segmentHeaderBytes() + kTagBytes) + kTagBytes;
  }
  [[nodiscard]] std::array<std::uint8_t, kRootBytes> encoded() const;
  /// Throws `ArchiveError` for values out of their range.
  [[nodiscard]] static SealedRoot rootWithBytes(ByteSpan bytes);
};

struct SealedPrologue {
  ArchiveEncryptionContext::Profile profile =
      ArchiveEncryptionContext::Profile::hkdf_sha256_aesctr_hmac__symmetric__none;
  std::uint8_t strength = 0;
  Bytes authData;
  std::array<std::uint8_t, kSaltBytes> salt{};
  Tag rootTag{};
  std::array<std::uint8_t, kRootBytes> root{};
  Tag firstClusterTag{};
  /// What is to be made; what is read stands in `root`, sealed.
  SealedRoot plan;
  std::size_t paddingBytes = 0;
  std::optional<NSData> key, password;

  [[nodiscard]] std::size_t size() const noexcept;
  [[nodiscard]] Bytes encoded() const;
  void readFrom(ArchiveByteStream& stream);
};

/// A key that is wiped.
template <std::size_t Count>
class Secret {
 public:
  Secret() = default;
  ~Secret() { crypto::wipe(bytes_); }
  Secret(const Secret&) = delete;
  Secret& operator=(const Secret&) = delete;
  [[nodiscard]] std::span<std::uint8_t> bytes() noexcept { return bytes_; }
  [[nodiscard]] ByteSpan bytes() const noexcept { return bytes_; }

 private:
  std::array<std::uint8_t, Count> bytes_{};
};
using ChainKey = Secret<32>;

/// The main key of a container, from its own one or the password. Throws `ArchiveError` where that
/// would take too much memory.
void deriveMainKey(const SealedPrologue& prologue, ChainKey& key);
/// The key of a cluster.
void deriveClusterKey(const ChainKey& mainKey, std::uint32_t index, ChainKey& key);
/// The tag of what follows the last segment.
[[nodiscard]] Tag tagOfPadding(const ChainKey& mainKey, ByteSpan padding);

/// Encrypts or decrypts, and tells the tag over the encrypted bytes.
class Seal {
 public:
  static Seal ofRoot(const ChainKey& mainKey) { return Seal(mainKey, "AEA_RHEK", std::nullopt); }
  static Seal ofClusterHeader(const ChainKey& clusterKey) {
    return Seal(clusterKey, "AEA_CHEK", std::nullopt);
  }
  static Seal ofSegment(const ChainKey& clusterKey, std::uint32_t index) {
    return Seal(clusterKey, "AEA_SK", index);
  }

  /// `before` are the parts that the tag covers too.
  [[nodiscard]] Tag close(std::span<std::uint8_t> bytes, ByteSpan before, ByteSpan more = {}) const;
  /// False, and the bytes are left alone, where the tag is another one.
  [[nodiscard]] bool open(std::span<std::uint8_t> bytes, const Tag& tag, ByteSpan before,
                          ByteSpan more = {}) const;
  /// For tests: hash key, cipher key and counter.
  [[nodiscard]] ByteSpan bytes() const noexcept { return key_.bytes(); }

 private:
  Seal(const ChainKey& parent, std::string_view label, std::optional<std::uint32_t> index);
  [[nodiscard]] Tag tagOf(ByteSpan cipher, ByteSpan before, ByteSpan more) const;
  void crypt(std::span<std::uint8_t> bytes) const;

  Secret<80> key_;
};

/// MurmurHash64A under the seed of the container.
[[nodiscard]] std::uint64_t murmurHash64(ByteSpan bytes);

}  // namespace ORLFoundation::internal::container
