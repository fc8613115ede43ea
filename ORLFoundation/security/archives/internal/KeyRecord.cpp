#include <ORLFoundation/security/archives/internal/KeyRecord.h>

#include <ORLFoundation/platform/base/Bytes.h>
#include <ORLFoundation/platform/container/ArchiveError.h>
#include <ORLFoundation/platform/crypto/AESGCM.h>
#include <ORLFoundation/platform/crypto/SecRandom.h>
#include <ORLFoundation/security/archives/FoundationError.h>

#include <algorithm>
#include <array>
#include <bit>
#include <string_view>

namespace ORLFoundation::internal::archives {
namespace {

using base::appendLittle;
using base::littleAt;
using crypto::ByteSpan;
using crypto::ScryptCost;

constexpr std::string_view kName = "orlf-scrypt-gcm";
constexpr std::size_t kCostAt = 4 + kName.size() + 1, kSaltBytes = 16, kKeyBytes = 32;
constexpr std::size_t kSaltAt = kCostAt + 16, kNonceAt = kSaltAt + kSaltBytes;
constexpr std::size_t kSealedAt = kNonceAt + AES::GCM::kNonceBytes, kTagAt = kSealedAt + kKeyBytes;
constexpr std::size_t kRecordBytes = kTagAt + AES::GCM::kTagBytes;

[[noreturn]] void throwUnknown() {
  throw ArchiveError(NSErrorOfFoundationError(FoundationError::unknown));
}

/// What stands before the nonce.
std::vector<std::uint8_t> startOfRecord(const ScryptCost& cost) {
  std::vector<std::uint8_t> record;
  appendLittle(record, kRecordBytes, 4);
  record.insert(record.end(), kName.begin(), kName.end());
  record.push_back(0);
  appendLittle(record, cost.n, 8);
  appendLittle(record, cost.r, 4);
  appendLittle(record, cost.p, 4);
  record.resize(kNonceAt);
  if (SecRandomCopyBytes(kSecRandomDefault, kSaltBytes, record.data() + kSaltAt) != 0)
    throwUnknown();
  return record;
}

bool isRecord(ByteSpan record) {
  const auto name = record.subspan(std::min<std::size_t>(record.size(), 4));
  return record.size() == kRecordBytes && littleAt(record, 0, 4) == kRecordBytes &&
         std::equal(
             kName.begin(), kName.end(), name.begin(),
             [](char c, std::uint8_t byte) { return static_cast<std::uint8_t>(c) == byte; }) &&
         record[kCostAt - 1] == 0;
}

/// Throws for a cost that is none, or more than a reader has to bear.
void checkCost(const ScryptCost& cost) {
  if (!std::has_single_bit(cost.n) || cost.n < 2 || cost.r == 0 || cost.p == 0)
    throwWrongPassword();
  // Of these bounds each keeps the products after it within 64 bits.
  const bool isBearable = cost.n <= kMostWork && cost.r <= kMostWork && cost.p <= kMostWork &&
                          cost.n * cost.r <= kMostWork && cost.n * cost.r * cost.p <= kMostWork &&
                          128 * cost.r * (cost.n + cost.p + 2) <= kMostMemory;
  if (!isBearable)
    throw ArchiveError(ArchiveErrorTooLarge,
                       "The archive's key record asks for more than 256 MiB of memory, or for too "
                       "much work.");
}

/// The key that the password and the salt of a record make.
SymmetricKey passwordKey(ByteSpan record, const ScryptCost& cost, const NSData& password) {
  std::array<std::uint8_t, kKeyBytes> bytes{};
  const bool isMade = crypto::deriveKeyFromPassword(
      password.bytes(), record.subspan(kSaltAt, kSaltBytes), cost, kMostMemory, bytes);
  SymmetricKey key(bytes);
  crypto::wipe(bytes);
  if (!isMade) throwUnknown();
  return key;
}

}  // namespace

void throwWrongPassword() {
  throw ArchiveError(ArchiveErrorWrongKey, "Wrong password or altered key record.");
}

std::vector<std::uint8_t> keyRecord(const SymmetricKey& archiveKey, const NSData& password,
                                    const ScryptCost& cost) {
  std::vector<std::uint8_t> record = startOfRecord(cost);
  const auto box =
      AES::GCM::seal(archiveKey.bytes(), passwordKey(record, cost, password), std::nullopt, record);
  if (!box) throwUnknown();
  record.insert(record.end(), box->nonce.begin(), box->nonce.end());
  record.insert(record.end(), box->ciphertext.begin(), box->ciphertext.end());
  record.insert(record.end(), box->tag.begin(), box->tag.end());
  return record;
}

SymmetricKey archiveKeyOfRecord(ByteSpan record, const NSData& password) {
  if (record.empty())
    throw ArchiveError(ArchiveErrorUnsupported,
                       "The archive is sealed with a key of its own, not with a password.");
  if (!isRecord(record)) throwWrongPassword();
  const ScryptCost cost{littleAt(record, kCostAt, 8), littleAt(record, kCostAt + 8, 4),
                        littleAt(record, kCostAt + 12, 4)};
  checkCost(cost);
  AES::GCM::SealedBox box;
  std::copy_n(record.begin() + kNonceAt, box.nonce.size(), box.nonce.begin());
  box.ciphertext.assign(record.begin() + kSealedAt, record.begin() + kTagAt);
  std::copy_n(record.begin() + kTagAt, box.tag.size(), box.tag.begin());
  const auto key = AES::GCM::open(box, passwordKey(record, cost, password), record.first(kNonceAt));
  if (!key) throwWrongPassword();
  return SymmetricKey(key->bytes());
}

}  // namespace ORLFoundation::internal::archives
