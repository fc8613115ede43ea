#include <ORLFoundation/platform/container/internal/SealedPrologue.h>

#include <ORLFoundation/platform/crypto/CommonCrypto.h>

#include <algorithm>

namespace ORLFoundation::internal::container {
namespace {

using Checksum = ArchiveEncryptionContext::Checksum;
using Profile = ArchiveEncryptionContext::Profile;

constexpr std::size_t kStartBytes = 12;
constexpr std::size_t kMostAuthData = std::size_t{1} << 20;
constexpr std::size_t kLeastSegment = 0x4000, kLeastPerCluster = 32, kMostPerCluster = 65536;
constexpr std::uint8_t kMostStrength = 3;

struct Letter {
  char letter;
  ArchiveCompression compression;
};
constexpr std::array kLetters{Letter{'-', ArchiveCompression::none},
                              Letter{'e', ArchiveCompression::lzfse}};

Bytes infoOf(std::string_view label, std::optional<std::uint32_t> index) {
  Bytes info(label.begin(), label.end());
  if (index) appendLittle(info, *index, 4);
  return info;
}

Bytes kindOf(const SealedPrologue& prologue) {
  Bytes kind;
  appendLittle(kind, static_cast<std::uint32_t>(prologue.profile), 3);
  kind.push_back(prologue.strength);
  return kind;
}

/// What a stream has to hold at least.
template <std::size_t Count>
void readWhole(ArchiveByteStream& stream, std::array<std::uint8_t, Count>& bytes) {
  if (stream.read(bytes) != Count) throwDamaged("it ends within its first bytes");
}

}  // namespace

std::size_t SealedRoot::checksumBytes() const noexcept {
  switch (checksum) {
    case Checksum::none:
      return 0;
    case Checksum::murmurHash64:
      return 8;
    default:
      return 32;
  }
}

std::array<std::uint8_t, kRootBytes> SealedRoot::encoded() const {
  Bytes bytes;
  appendLittle(bytes, rawBytes, 8);
  appendLittle(bytes, containerBytes, 8);
  appendLittle(bytes, segmentBytes, 4);
  appendLittle(bytes, segmentsPerCluster, 4);
  for (const Letter& letter : kLetters)
    if (letter.compression == compression)
      bytes.push_back(static_cast<std::uint8_t>(letter.letter));
  bytes.push_back(static_cast<std::uint8_t>(checksum));
  bytes.resize(kRootBytes);
  return arrayAt<kRootBytes>(bytes, 0);
}

SealedRoot SealedRoot::rootWithBytes(ByteSpan bytes) {
  SealedRoot root;
  root.rawBytes = littleAt(bytes, 0, 8);
  root.containerBytes = littleAt(bytes, 8, 8);
  root.segmentBytes = littleAt(bytes, 16, 4);
  root.segmentsPerCluster = littleAt(bytes, 20, 4);
  const auto* const letter = std::find_if(kLetters.begin(), kLetters.end(), [&](const Letter& one) {
    return one.letter == static_cast<char>(bytes[24]);
  });
  if (letter == kLetters.end())
    throwUnsupported("its segments are compressed in another way than LZFSE");
  root.compression = letter->compression;
  if (bytes[25] > static_cast<std::uint8_t>(Checksum::sha256))
    throwUnsupported("its segments have an unknown checksum");
  root.checksum = static_cast<Checksum>(bytes[25]);
  const bool isInRange =
      root.segmentBytes >= kLeastSegment && root.segmentsPerCluster >= kLeastPerCluster &&
      std::all_of(bytes.begin() + 26, bytes.end(), [](std::uint8_t byte) { return byte == 0; });
  if (!isInRange) throwDamaged("its root header has impossible sizes");
  if (root.segmentBytes > ArchiveByteStream::kMostBlockBytes ||
      root.segmentsPerCluster > kMostPerCluster)
    throw ArchiveError(ArchiveErrorTooLarge, "The archive's segments are too large to be read.");
  return root;
}

std::size_t SealedPrologue::size() const noexcept {
  return kStartBytes + authData.size() + kSaltBytes + kTagBytes + kRootBytes + kTagBytes;
}

Bytes SealedPrologue::encoded() const {
  Bytes bytes(kSealedMagic.begin(), kSealedMagic.end());
  appendBytes(bytes, kindOf(*this));
  appendLittle(bytes, authData.size(), 4);
  for (const ByteSpan part : {ByteSpan(authData), ByteSpan(salt), ByteSpan(rootTag), ByteSpan(root),
                              ByteSpan(firstClusterTag)})
    appendBytes(bytes, part);
  return bytes;
}

void SealedPrologue::readFrom(ArchiveByteStream& stream) {
  std::array<std::uint8_t, kStartBytes> start{};
  readWhole(stream, start);
  if (!beginsWith(start, kSealedMagic)) throwDamaged("it is no sealed archive");
  profile = static_cast<Profile>(littleAt(start, 4, 3));
  strength = start[7];
  const bool isSymmetric = profile == Profile::hkdf_sha256_aesctr_hmac__symmetric__none;
  if (!isSymmetric && profile != Profile::hkdf_sha256_aesctr_hmac__scrypt__none)
    throwUnsupported("it is signed, or sealed for a public key (profile " +
                     std::to_string(littleAt(start, 4, 3)) + ")");
  if (strength > (isSymmetric ? 0 : kMostStrength)) throwDamaged("its strength is impossible");
  const std::uint64_t authBytes = littleAt(start, 8, 4);
  if (authBytes > kMostAuthData)
    throw ArchiveError(ArchiveErrorTooLarge, "The archive's key record is larger than 1 MiB.");
  authData.resize(authBytes);
  if (stream.read(authData) != authBytes) throwDamaged("it ends within its first bytes");
  readWhole(stream, salt);
  readWhole(stream, rootTag);
  readWhole(stream, root);
  readWhole(stream, firstClusterTag);
}

void deriveMainKey(const SealedPrologue& prologue, ChainKey& key) {
  Bytes info = infoOf("AEA_AMK", std::nullopt);
  appendBytes(info, kindOf(prologue));
  if (prologue.profile == Profile::hkdf_sha256_aesctr_hmac__symmetric__none)
    return crypto::deriveKey(prologue.key->bytes(), prologue.salt, info, key.bytes());
  Secret<64> extended;
  crypto::deriveKey(prologue.salt, {}, bytesOf("AEA_SCRYPT"), extended.bytes());
  ChainKey fromPassword;
  const crypto::ScryptCost cost{std::uint64_t{0x4000} << (2 * prologue.strength), 8, 1};
  if (!crypto::deriveKeyFromPassword(prologue.password->bytes(), extended.bytes().first(32), cost,
                                     kMostPasswordMemory, fromPassword.bytes()))
    throw ArchiveError(ArchiveErrorTooLarge, "The archive's key takes more than 256 MiB to make.");
  crypto::deriveKey(fromPassword.bytes(), extended.bytes().subspan(32), info, key.bytes());
}

void deriveClusterKey(const ChainKey& mainKey, std::uint32_t index, ChainKey& key) {
  crypto::deriveKey(mainKey.bytes(), {}, infoOf("AEA_CK", index), key.bytes());
}

Tag tagOfPadding(const ChainKey& mainKey, ByteSpan padding) {
  ChainKey key;
  crypto::deriveKey(mainKey.bytes(), {}, infoOf("AEA_PAK", std::nullopt), key.bytes());
  return crypto::hmacSHA256(key.bytes(), {padding});
}

Seal::Seal(const ChainKey& parent, std::string_view label, std::optional<std::uint32_t> index) {
  crypto::deriveKey(parent.bytes(), {}, infoOf(label, index), key_.bytes());
}

Tag Seal::tagOf(ByteSpan cipher, ByteSpan before, ByteSpan more) const {
  Bytes length;
  appendLittle(length, before.size() + more.size(), 8);
  return crypto::hmacSHA256(key_.bytes().first(32), {before, more, cipher, length});
}

void Seal::crypt(std::span<std::uint8_t> bytes) const {
  crypto::cryptInCounterMode(key_.bytes().subspan(32, 32), key_.bytes().subspan(64, 16), bytes);
}

Tag Seal::close(std::span<std::uint8_t> bytes, ByteSpan before, ByteSpan more) const {
  crypt(bytes);
  return tagOf(bytes, before, more);
}

bool Seal::open(std::span<std::uint8_t> bytes, const Tag& tag, ByteSpan before,
                ByteSpan more) const {
  if (!timingSafeEqual(tagOf(bytes, before, more), tag)) return false;
  crypt(bytes);
  return true;
}

std::uint64_t murmurHash64(ByteSpan bytes) {
  constexpr std::uint64_t kSeed = 0xE2236FDC26A5F6D2, kFactor = 0xC6A4A7935BD1E995;
  constexpr unsigned kShift = 47;
  std::uint64_t hash = kSeed ^ (bytes.size() * kFactor);
  for (; bytes.size() >= 8; bytes = bytes.subspan(8)) {
    std::uint64_t word = littleAt(bytes, 0, 8) * kFactor;
    word ^= word >> kShift;
    hash = (hash ^ (word * kFactor)) * kFactor;
  }
  if (!bytes.empty()) hash = (hash ^ littleAt(bytes, 0, bytes.size())) * kFactor;
  hash = (hash ^ (hash >> kShift)) * kFactor;
  return hash ^ (hash >> kShift);
}

}  // namespace ORLFoundation::internal::container
