#include <ORLFoundation/security/archives/ORLFSymmetricKeyText.h>

#include <ORLFoundation/platform/base/Base64.h>
#include <ORLFoundation/platform/crypto/KeyedPrimitives.h>

#include <span>

namespace ORLFoundation {

NSData data(const SymmetricKey& key) { return key.sharedBytes(); }

std::optional<SymmetricKey> initBase64EncodedString(std::string_view text) {
  auto bytes = internal::base::bytesOfBase64Text(text);
  if (!bytes || bytes->empty()) return std::nullopt;
  const SymmetricKey key(
      std::span(reinterpret_cast<const std::uint8_t*>(bytes->data()), bytes->size()));
  internal::crypto::wipe(std::span<char>(*bytes));
  return key;
}

}  // namespace ORLFoundation
