/// Keys from passwords, AES, random bytes and public keys. All operations are safe on any thread
/// and hold no secret beyond the call.
///
///     const NSData key = ORLFCryptography::keyWithLength(16, "correct horse", salt, 1000);
///     const auto sealed = ORLFCryptography::AES128EncryptData(text, key, vector);
#pragma once

#include <ORLFoundation/platform/crypto/SecKey.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSMutableData.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSTypes.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace ORLFoundation {

class ORLFCryptography final : public NSObject {
 public:
  /// `randomDataOfLength:`  That many random bytes. Where the system gives none, the log says so
  /// ("Unable to generate random bytes: %d", with `errno`) and the bytes are zeros.
  [[nodiscard]] static std::shared_ptr<NSMutableData> randomDataOfLength(NSUInteger length);

  /// `keyWithLength:fromPassword:salt:rounds:`  PBKDF2 with HMAC over SHA-1, from the UTF-8 bytes
  /// of the password. The key's memory is wiped when its last copy goes. Without rounds, and
  /// without a length, the log says so ("Unable to create AES key for password: %d") and the key is
  /// zeros.
  [[nodiscard]] static NSData keyWithLength(NSUInteger length, std::string_view password,
                                            const NSData& salt, std::uint32_t rounds);

  /// `AES128EncryptData:key:initializationVector:error:`  CBC mode with PKCS#7 padding; whatever
  /// the name says, a key of 24 or 32 bytes gives the longer variant. A vector of nil is one of
  /// zeros. nil for keys of other lengths and vectors that are not 16 bytes long. The error slot is
  /// never filled.
  [[nodiscard]] static std::optional<NSData> AES128EncryptData(
      const NSData& data, const NSData& key, const std::optional<NSData>& initializationVector,
      NSErrorSlot error = nullptr);
  /// `AES128DecryptData:key:initializationVector:error:`  The inverse; nil for damaged padding and
  /// for data of no whole number of blocks too: callers cannot tell causes apart. Most wrong keys
  /// show as damaged padding, one of about 256 does not. The plain text's memory is wiped when its
  /// last copy goes.
  [[nodiscard]] static std::optional<NSData> AES128DecryptData(
      const NSData& data, const NSData& key, const std::optional<NSData>& initializationVector,
      NSErrorSlot error = nullptr);

  /// `makePublicRSAKeyWithFileAtURL:error:`  The public RSA key that a file holds in DER form,
  /// whatever its size is. Null, and the error of reading the file or of `SecKeyCreateWithData`,
  /// where it holds none.
  [[nodiscard]] static std::shared_ptr<SecKey> makePublicRSAKeyWithFileAtURL(
      const NSURL& url, NSErrorSlot error = nullptr);

  [[nodiscard]] std::string className() const override { return "ORLFCryptography"; }
};

}  // namespace ORLFoundation
