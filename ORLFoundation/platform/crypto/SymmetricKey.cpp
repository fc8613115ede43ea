#include <ORLFoundation/platform/crypto/SymmetricKey.h>

#include <ORLFoundation/platform/crypto/CommonCrypto.h>
#include <ORLFoundation/platform/crypto/SecRandom.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <cstring>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

NSData randomBytes(SymmetricKeySize size) {
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size) / 8);
  if (SecRandomCopyBytes(kSecRandomDefault, bytes.size(), bytes.data()) != 0)
    throw NSException(std::string(NSGenericException),
                      std::string("No random bytes for a key: ") + std::strerror(errno));
  return NSData::dataWipedAtRelease(std::move(bytes));
}

}  // namespace

SymmetricKey::SymmetricKey(SymmetricKeySize size) : data_(randomBytes(size)) {}

SymmetricKey::SymmetricKey(std::span<const std::uint8_t> data)
    : data_(NSData::dataWipedAtRelease({data.begin(), data.end()})) {}

bool operator==(const SymmetricKey& left, const SymmetricKey& right) noexcept {
  return timingSafeEqual(left.bytes(), right.bytes());
}

}  // namespace ORLFoundation
