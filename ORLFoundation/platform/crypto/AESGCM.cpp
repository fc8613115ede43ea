#include <ORLFoundation/platform/crypto/AESGCM.h>

#include <ORLFoundation/platform/crypto/SecRandom.h>
#include <ORLFoundation/platform/crypto/internal/OpenSSLState.h>
#include <openssl/evp.h>

#include <limits>
#include <memory>
#include <utility>

namespace ORLFoundation {
namespace {

struct FreeCipherContext {
  /// Wipes the key schedule too.
  void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};
using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, FreeCipherContext>;

const EVP_CIPHER* sealingCipherForKey(std::size_t length) {
  switch (length) {
    case 16:
      return EVP_aes_128_gcm();
    case 24:
      return EVP_aes_192_gcm();
    case 32:
      return EVP_aes_256_gcm();
    default:
      return nullptr;
  }
}

bool isCountable(std::span<const std::uint8_t> bytes) {
  return bytes.size() <= static_cast<std::size_t>(std::numeric_limits<int>::max());
}

/// Ready for the message; null for what cannot be.
CipherContext begin(const AES::GCM::SealedBox& box, const SymmetricKey& key, bool seals,
                    std::span<const std::uint8_t> authenticating) {
  const EVP_CIPHER* const cipher = sealingCipherForKey(key.bytes().size());
  internal::crypto::keepOpenSSLState();
  CipherContext context(EVP_CIPHER_CTX_new());
  int count = 0;
  const bool isReady = cipher != nullptr && context && isCountable(authenticating) &&
                       EVP_CipherInit_ex(context.get(), cipher, nullptr, key.bytes().data(),
                                         box.nonce.data(), seals ? 1 : 0) == 1 &&
                       (authenticating.empty() ||
                        EVP_CipherUpdate(context.get(), nullptr, &count, authenticating.data(),
                                         static_cast<int>(authenticating.size())) == 1);
  return isReady ? std::move(context) : CipherContext();
}

}  // namespace

std::optional<AES::GCM::SealedBox> AES::GCM::seal(
    std::span<const std::uint8_t> message, const SymmetricKey& key,
    const std::optional<std::array<std::uint8_t, kNonceBytes>>& nonce,
    std::span<const std::uint8_t> authenticating) {
  SealedBox box;
  if (nonce) box.nonce = *nonce;
  if (!nonce && SecRandomCopyBytes(kSecRandomDefault, kNonceBytes, box.nonce.data()) != 0)
    return std::nullopt;
  const CipherContext context = begin(box, key, true, authenticating);
  if (!context || !isCountable(message)) return std::nullopt;
  box.ciphertext.resize(message.size());
  int count = 0;
  const bool isSealed =
      (message.empty() ||
       EVP_CipherUpdate(context.get(), box.ciphertext.data(), &count, message.data(),
                        static_cast<int>(message.size())) == 1) &&
      EVP_CipherFinal_ex(context.get(), box.tag.data(), &count) == 1 &&
      EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_GET_TAG, kTagBytes, box.tag.data()) == 1;
  if (!isSealed) return std::nullopt;
  return box;
}

std::optional<NSData> AES::GCM::open(const SealedBox& box, const SymmetricKey& key,
                                     std::span<const std::uint8_t> authenticating) {
  const CipherContext context = begin(box, key, false, authenticating);
  if (!context || !isCountable(box.ciphertext)) return std::nullopt;
  std::vector<std::uint8_t> message(box.ciphertext.size());
  std::array<std::uint8_t, kTagBytes> tag = box.tag;
  std::array<std::uint8_t, kTagBytes> none{};
  int count = 0;
  const bool isOpened =
      (message.empty() ||
       EVP_CipherUpdate(context.get(), message.data(), &count, box.ciphertext.data(),
                        static_cast<int>(message.size())) == 1) &&
      EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_TAG, kTagBytes, tag.data()) == 1 &&
      EVP_CipherFinal_ex(context.get(), none.data(), &count) == 1;
  const NSData opened = NSData::dataWipedAtRelease(std::move(message));
  if (!isOpened) return std::nullopt;
  return opened;
}

}  // namespace ORLFoundation
