#include <ORLFoundation/platform/crypto/CommonCrypto.h>

#include <ORLFoundation/platform/crypto/internal/OpenSSLState.h>
#include <ORLFoundation/platform/crypto/internal/PasswordKey.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/sha.h>

#include <algorithm>
#include <limits>
#include <memory>

namespace ORLFoundation {
namespace {

struct FreeBlockCipher {
  /// Wipes the key schedule too.
  void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};
using BlockCipherContext = std::unique_ptr<EVP_CIPHER_CTX, FreeBlockCipher>;

const EVP_CIPHER* cipherForKey(std::size_t length) {
  switch (length) {
    case 16:
      return EVP_aes_128_cbc();
    case 24:
      return EVP_aes_192_cbc();
    case 32:
      return EVP_aes_256_cbc();
    default:
      return nullptr;
  }
}

CCCryptorStatus checkCrypt(const CCCryptData& data) {
  const bool encrypts = data.operation == kCCEncrypt;
  if (!encrypts && data.operation != kCCDecrypt) return kCCUnimplemented;
  const bool isPadded = data.options == kCCOptionPKCS7Padding;
  if (data.algorithm != kCCAlgorithmAES || (!isPadded && data.options != 0))
    return kCCUnimplemented;
  if (cipherForKey(data.key.size()) == nullptr) return kCCParamError;
  if (!data.initializationVector.empty() && data.initializationVector.size() != kCCBlockSizeAES128)
    return kCCParamError;
  const std::size_t needed = data.input.size() + (encrypts && isPadded ? kCCBlockSizeAES128 : 0);
  if (data.output.size() < needed) return kCCBufferTooSmall;
  if (!(encrypts && isPadded) && data.input.size() % kCCBlockSizeAES128 != 0)
    return kCCAlignmentError;
  return kCCSuccess;
}

/// OpenSSL counts in `int`: long inputs go through in pieces of whole blocks.
constexpr std::size_t kPiece = std::size_t{1} << 30;

bool runCipher(EVP_CIPHER_CTX* context, const CCCryptData& data, std::size_t& moved) {
  moved = 0;
  for (std::size_t done = 0; done < data.input.size();) {
    const std::size_t piece = std::min(kPiece, data.input.size() - done);
    int count = 0;
    if (EVP_CipherUpdate(context, data.output.data() + moved, &count, data.input.data() + done,
                         static_cast<int>(piece)) != 1)
      return false;
    moved += static_cast<std::size_t>(count);
    done += piece;
  }
  // The last block of a decryption is kept back until its padding has been looked at.
  std::array<std::uint8_t, kCCBlockSizeAES128> last{};
  int count = 0;
  const bool isWhole = EVP_CipherFinal_ex(context, last.data(), &count) == 1;
  if (isWhole)
    std::copy_n(last.begin(), count, data.output.begin() + static_cast<std::ptrdiff_t>(moved));
  moved += isWhole ? static_cast<std::size_t>(count) : 0;
  OPENSSL_cleanse(last.data(), last.size());
  return isWhole;
}

}  // namespace

CCCryptorStatus CCCrypt(const CCCryptData& data, std::size_t& moved) {
  moved = 0;
  if (const CCCryptorStatus status = checkCrypt(data); status != kCCSuccess) return status;
  internal::crypto::keepOpenSSLState();
  const BlockCipherContext context(EVP_CIPHER_CTX_new());
  if (!context) return kCCMemoryFailure;
  constexpr std::array<std::uint8_t, kCCBlockSizeAES128> kZeros{};
  const std::uint8_t* const vector =
      data.initializationVector.empty() ? kZeros.data() : data.initializationVector.data();
  if (EVP_CipherInit_ex(context.get(), cipherForKey(data.key.size()), nullptr, data.key.data(),
                        vector, data.operation == kCCEncrypt ? 1 : 0) != 1)
    return kCCMemoryFailure;
  EVP_CIPHER_CTX_set_padding(context.get(), data.options == kCCOptionPKCS7Padding ? 1 : 0);
  if (runCipher(context.get(), data, moved)) return kCCSuccess;
  OPENSSL_cleanse(data.output.data(), moved);
  moved = 0;
  return kCCDecodeError;
}

CCCryptorStatus CCKeyDerivationPBKDF(CCPBKDFAlgorithm algorithm, std::string_view password,
                                     std::span<const std::uint8_t> salt,
                                     CCPseudoRandomAlgorithm function, std::uint32_t rounds,
                                     std::span<std::uint8_t> derivedKey) {
  if (algorithm != kCCPBKDF2 || function != kCCPRFHmacAlgSHA1) return kCCUnimplemented;
  // The count of blocks is a number of 32 bits in each block's text.
  constexpr std::size_t kMostBlocks = std::numeric_limits<std::uint32_t>::max();
  if (rounds == 0 || derivedKey.empty() || derivedKey.size() / CC_SHA1_DIGEST_LENGTH >= kMostBlocks)
    return kCCParamError;
  internal::crypto::deriveKeyOverSHA1(password, salt, rounds, derivedKey);
  return kCCSuccess;
}

std::array<std::uint8_t, CC_SHA1_DIGEST_LENGTH> CC_SHA1(std::span<const std::uint8_t> bytes) {
  std::array<std::uint8_t, CC_SHA1_DIGEST_LENGTH> digest{};
  static_assert(CC_SHA1_DIGEST_LENGTH == SHA_DIGEST_LENGTH);
  static_cast<void>(SHA1(bytes.data(), bytes.size(), digest.data()));
  return digest;
}

bool timingSafeEqual(std::span<const std::uint8_t> left,
                     std::span<const std::uint8_t> right) noexcept {
  return left.size() == right.size() && CRYPTO_memcmp(left.data(), right.data(), left.size()) == 0;
}

}  // namespace ORLFoundation
