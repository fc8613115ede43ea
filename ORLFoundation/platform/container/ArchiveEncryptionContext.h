/// How a container of sealed segments is made, or what the first bytes of one tell.
///
///     ArchiveEncryptionContext context(
///         ArchiveEncryptionContext::Profile::hkdf_sha256_aesctr_hmac__symmetric__none,
///         ArchiveCompression::lzfse);
///     context.setSymmetricKey(key);
///     const auto sealed = ArchiveByteStream::encryptionStream(*file, context);
#pragma once

#include <ORLFoundation/platform/container/ArchiveByteStream.h>
#include <ORLFoundation/platform/crypto/SymmetricKey.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace ORLFoundation {

namespace internal::container {
struct SealedPrologue;
}  // namespace internal::container

class ArchiveEncryptionContext {
 public:
  /// The forms of the container that are made and read here, by their numbers.
  // NOLINTBEGIN(bugprone-reserved-identifier): the names are the platform's.
  enum class Profile : std::uint32_t {
    hkdf_sha256_aesctr_hmac__symmetric__none = 1,
    hkdf_sha256_aesctr_hmac__scrypt__none = 5,
  };
  // NOLINTEND(bugprone-reserved-identifier)
  /// What each segment's bytes are checked by once more.
  enum class Checksum : std::uint8_t { none = 0, murmurHash64 = 1, sha256 = 2 };

  /// `init(profile:compressionAlgorithm:)`  For a new container. Throws `ArchiveError` for values
  /// that are none of their enumerations'.
  ArchiveEncryptionContext(Profile profile, ArchiveCompression compressionAlgorithm);
  /// `init(from:)`  Of a container that a stream is at the beginning of; the segments follow.
  /// Throws `ArchiveError` where there is none, and for other profiles.
  explicit ArchiveEncryptionContext(ArchiveByteStream& from);
  ~ArchiveEncryptionContext();
  ArchiveEncryptionContext(const ArchiveEncryptionContext&) = delete;
  ArchiveEncryptionContext& operator=(const ArchiveEncryptionContext&) = delete;

  [[nodiscard]] Profile profile() const noexcept;
  /// `setSymmetricKey(_:)`  The key of the first profile; 32 bytes. Throws `ArchiveError` for
  /// others.
  void setSymmetricKey(const SymmetricKey& key);
  /// `setPassword(_:)`  That of the other profile.
  void setPassword(std::string_view password);
  /// Whether it has what its profile needs.
  [[nodiscard]] bool hasKey() const noexcept;

  /// `authData`  Bytes that stand in clear, and cannot be changed without the key. Those of a
  /// container that is read are to be trusted once a stream was opened over it.
  [[nodiscard]] const std::vector<std::uint8_t>& authData() const noexcept;
  void setAuthData(std::vector<std::uint8_t> authData);

  /// At least 16 KiB, at most 64 MiB; 1 MiB unless it is set.
  void setSegmentSize(std::size_t bytes);
  /// At least 32, at most 65,536; 256 unless it is set.
  void setSegmentsPerCluster(std::size_t count);
  /// SHA-256 unless it is set. Throws `ArchiveError` for a value that is none.
  void setChecksum(Checksum checksum);
  /// Random bytes behind the last segment; none unless it is set.
  void setPaddingBytes(std::size_t count);

  /// What the streams work with.
  [[nodiscard]] const internal::container::SealedPrologue& prologue() const noexcept {
    return *prologue_;
  }

 private:
  const std::unique_ptr<internal::container::SealedPrologue> prologue_;
};

}  // namespace ORLFoundation
