#include <ORLFoundation/platform/crypto/SecKey.h>

#include <ORLFoundation/platform/crypto/internal/OpenSSLState.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

#include <utility>

namespace ORLFoundation {

namespace internal::crypto {
struct FreeKey {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
}  // namespace internal::crypto

namespace {

using Key = std::unique_ptr<EVP_PKEY, internal::crypto::FreeKey>;

struct FreeDigest {
  void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

/// Null for bytes that are no key, or go on behind it.
Key keyIn(const NSData& data) {
  internal::crypto::keepOpenSSLState();
  const std::span<const std::uint8_t> bytes = data.bytes();
  const auto read = [bytes](auto reader) -> Key {
    const std::uint8_t* at = bytes.data();
    Key key(reader(&at, static_cast<long>(bytes.size())));
    return key && at == bytes.data() + bytes.size() ? std::move(key) : nullptr;
  };
  if (Key key = read(
          [](const std::uint8_t** at, long length) { return d2i_PUBKEY(nullptr, at, length); }))
    return EVP_PKEY_is_a(key.get(), "RSA") == 1 ? std::move(key) : nullptr;
  return read([](const std::uint8_t** at, long length) {
    return d2i_PublicKey(EVP_PKEY_RSA, nullptr, at, length);
  });
}

bool holds(const NSDictionary& attributes, std::string_view key, std::string_view text) {
  return attributes.objectForKey(key) == id(text);
}

const EVP_MD* digestOf(SecKeyAlgorithm algorithm) {
  switch (algorithm) {
    case kSecKeyAlgorithmRSASignatureMessagePKCS1v15SHA1:
      return EVP_sha1();
    case kSecKeyAlgorithmRSASignatureMessagePKCS1v15SHA256:
      return EVP_sha256();
  }
  return nullptr;
}

}  // namespace

struct SecKey::Handle {
  Key key;
};

SecKey::SecKey(std::shared_ptr<const Handle> handle) : handle_(std::move(handle)) {}

int SecKey::sizeInBits() const { return EVP_PKEY_get_bits(handle_->key.get()); }

bool SecKey::verifies(std::span<const std::uint8_t> message,
                      std::span<const std::uint8_t> signature, SecKeyAlgorithm algorithm) const {
  const EVP_MD* const digest = digestOf(algorithm);
  const std::unique_ptr<EVP_MD_CTX, FreeDigest> context(EVP_MD_CTX_new());
  if (digest == nullptr || !context) return false;
  EVP_PKEY_CTX* padding = nullptr;  // the context's own
  return EVP_DigestVerifyInit(context.get(), &padding, digest, nullptr, handle_->key.get()) == 1 &&
         EVP_PKEY_CTX_set_rsa_padding(padding, RSA_PKCS1_PADDING) == 1 &&
         EVP_DigestVerify(context.get(), signature.data(), signature.size(), message.data(),
                          message.size()) == 1;
}

std::shared_ptr<SecKey> SecKeyCreateWithData(const NSData& keyData,
                                             const std::shared_ptr<NSDictionary>& attributes,
                                             NSErrorSlot error) {
  if (attributes == nullptr || !holds(*attributes, kSecAttrKeyType, kSecAttrKeyTypeRSA) ||
      !holds(*attributes, kSecAttrKeyClass, kSecAttrKeyClassPublic)) {
    NSFillErrorSlot(error, NSOSStatusErrorDomain, errSecUnsupportedKeyType,
                    "Only public RSA keys can be read.");
    return nullptr;
  }
  Key key = keyIn(keyData);
  if (!key) {
    NSFillErrorSlot(error, NSOSStatusErrorDomain, errSecParam,
                    "The data holds no public RSA key in DER form.");
    return nullptr;
  }
  auto handle = std::make_shared<SecKey::Handle>();
  handle->key = std::move(key);
  return std::make_shared<SecKey>(std::move(handle));
}

}  // namespace ORLFoundation
