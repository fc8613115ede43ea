#include <ORLFoundation/platform/container/ArchiveEncryptionContext.h>

#include <ORLFoundation/platform/container/internal/SealedPrologue.h>

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace ORLFoundation {

using internal::container::SealedPrologue;

namespace {

using Profile = ArchiveEncryptionContext::Profile;
using Checksum = ArchiveEncryptionContext::Checksum;

constexpr std::size_t kKeyBytes = 32;

/// Throws for a value outside its enumeration, of which no container could be made.
template <class Value>
void checkKnown(Value value, std::initializer_list<Value> known) {
  if (std::find(known.begin(), known.end(), value) == known.end())
    throw ArchiveError(ArchiveErrorUnsupported, "Containers of that form are not made here.");
}

}  // namespace

ArchiveEncryptionContext::ArchiveEncryptionContext(Profile profile,
                                                   ArchiveCompression compressionAlgorithm)
    : prologue_(std::make_unique<SealedPrologue>()) {
  checkKnown(profile, {Profile::hkdf_sha256_aesctr_hmac__symmetric__none,
                       Profile::hkdf_sha256_aesctr_hmac__scrypt__none});
  checkKnown(compressionAlgorithm, {ArchiveCompression::none, ArchiveCompression::lzfse});
  prologue_->profile = profile;
  prologue_->plan.compression = compressionAlgorithm;
}

ArchiveEncryptionContext::ArchiveEncryptionContext(ArchiveByteStream& from)
    : prologue_(std::make_unique<SealedPrologue>()) {
  prologue_->readFrom(from);
}

ArchiveEncryptionContext::~ArchiveEncryptionContext() = default;

ArchiveEncryptionContext::Profile ArchiveEncryptionContext::profile() const noexcept {
  return prologue_->profile;
}

void ArchiveEncryptionContext::setSymmetricKey(const SymmetricKey& key) {
  if (key.bytes().size() != kKeyBytes)
    throw ArchiveError(ArchiveErrorUnsupported, "The key of an archive has 256 bits.");
  prologue_->key = key.sharedBytes();
}

void ArchiveEncryptionContext::setPassword(std::string_view password) {
  prologue_->password = NSData::dataWipedAtRelease({password.begin(), password.end()});
}

bool ArchiveEncryptionContext::hasKey() const noexcept {
  return prologue_->profile == Profile::hkdf_sha256_aesctr_hmac__symmetric__none
             ? prologue_->key.has_value()
             : prologue_->password.has_value();
}

const std::vector<std::uint8_t>& ArchiveEncryptionContext::authData() const noexcept {
  return prologue_->authData;
}

void ArchiveEncryptionContext::setAuthData(std::vector<std::uint8_t> authData) {
  prologue_->authData = std::move(authData);
}

void ArchiveEncryptionContext::setSegmentSize(std::size_t bytes) {
  prologue_->plan.segmentBytes =
      std::clamp<std::size_t>(bytes, 0x4000, ArchiveByteStream::kMostBlockBytes);
}

void ArchiveEncryptionContext::setSegmentsPerCluster(std::size_t count) {
  prologue_->plan.segmentsPerCluster = std::clamp<std::size_t>(count, 32, 65536);
}

void ArchiveEncryptionContext::setChecksum(Checksum checksum) {
  checkKnown(checksum, {Checksum::none, Checksum::murmurHash64, Checksum::sha256});
  prologue_->plan.checksum = checksum;
}

void ArchiveEncryptionContext::setPaddingBytes(std::size_t count) {
  prologue_->paddingBytes = count;
}

}  // namespace ORLFoundation
