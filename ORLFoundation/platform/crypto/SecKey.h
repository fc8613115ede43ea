/// Public keys, on OpenSSL.
#pragma once

#include <ORLFoundation/platform/crypto/SecBase.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace ORLFoundation {

// Attributes of keys, and their values.
inline constexpr std::string_view kSecAttrKeyType = "type";
inline constexpr std::string_view kSecAttrKeyTypeRSA = "42";
inline constexpr std::string_view kSecAttrKeyClass = "kcls";
inline constexpr std::string_view kSecAttrKeyClassPublic = "0";
inline constexpr std::string_view kSecAttrKeySizeInBits = "bsiz";

/// Digests of signatures: RSA with PKCS#1 v1.5 padding over each.
enum SecKeyAlgorithm : std::uint8_t {
  kSecKeyAlgorithmRSASignatureMessagePKCS1v15SHA1,
  kSecKeyAlgorithmRSASignatureMessagePKCS1v15SHA256,
};

/// An RSA public key; it never changes.
class SecKey final : public NSObject {
 public:
  struct Handle;

  /// What `SecKeyCreateWithData` calls.
  explicit SecKey(std::shared_ptr<const Handle> handle);

  /// Bits of the modulus.
  [[nodiscard]] int sizeInBits() const;
  /// Whether `signature` is this key's over the message. False for values outside the enumeration.
  [[nodiscard]] bool verifies(std::span<const std::uint8_t> message,
                              std::span<const std::uint8_t> signature,
                              SecKeyAlgorithm algorithm) const;

  [[nodiscard]] std::string className() const override { return "SecKey"; }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override {
    return receiverOr([this] { return std::make_shared<SecKey>(handle_); });
  }

 private:
  const std::shared_ptr<const Handle> handle_;
};

/// `SecKeyCreateWithData`  A key from DER bytes: PKCS#1's RSAPublicKey or the SubjectPublicKeyInfo
/// of X.509, nothing behind it. The attributes are to name an RSA key of the public class; the size
/// among them is a wish, the key's own counts. Null, and an error of `NSOSStatusErrorDomain` with
/// `errSecUnsupportedKeyType` for other attributes and `errSecParam` for other bytes.
[[nodiscard]] std::shared_ptr<SecKey> SecKeyCreateWithData(
    const NSData& keyData, const std::shared_ptr<NSDictionary>& attributes,
    NSErrorSlot error = nullptr);

}  // namespace ORLFoundation
