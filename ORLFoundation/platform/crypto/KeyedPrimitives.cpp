#include <ORLFoundation/platform/crypto/KeyedPrimitives.h>

#include <ORLFoundation/platform/crypto/internal/OpenSSLState.h>
#include <openssl/core_names.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/params.h>
#include <openssl/sha.h>

#include <algorithm>
#include <memory>
#include <new>

namespace ORLFoundation::internal::crypto {
namespace {

struct FreeHash {
  /// Wipes the key too.
  void operator()(EVP_MAC_CTX* context) const { EVP_MAC_CTX_free(context); }
};
struct FreeCounterCipher {
  void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};

// OpenSSL counts in `int`.
constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;

EVP_MAC* keyedHash() {
  keepOpenSSLState();
  static EVP_MAC* const hash = EVP_MAC_fetch(nullptr, "HMAC", nullptr);
  return hash;
}

/// Calls to OpenSSL here fail for lack of memory alone.
void check(bool isDone) {
  if (!isDone) throw std::bad_alloc();
}

}  // namespace

SHA256Digest sha256(ByteSpan bytes) {
  keepOpenSSLState();
  SHA256Digest digest{};
  static_cast<void>(SHA256(bytes.data(), bytes.size(), digest.data()));
  return digest;
}

SHA256Digest hmacSHA256(ByteSpan key, std::initializer_list<ByteSpan> parts) {
  const std::unique_ptr<EVP_MAC_CTX, FreeHash> context(EVP_MAC_CTX_new(keyedHash()));
  std::array<char, 7> name{"SHA256"};
  const std::array<OSSL_PARAM, 2> parameters{
      OSSL_PARAM_construct_utf8_string(OSSL_MAC_PARAM_DIGEST, name.data(), 0),
      OSSL_PARAM_construct_end()};
  // A key of no length must not be a null pointer, which would leave the last key in place.
  const std::uint8_t none = 0;
  check(context && EVP_MAC_init(context.get(), key.empty() ? &none : key.data(), key.size(),
                                parameters.data()) == 1);
  for (const ByteSpan part : parts)
    check(EVP_MAC_update(context.get(), part.data(), part.size()) == 1);
  SHA256Digest digest{};
  std::size_t length = 0;
  check(EVP_MAC_final(context.get(), digest.data(), &length, digest.size()) == 1);
  return digest;
}

void deriveKey(ByteSpan secret, ByteSpan salt, ByteSpan info, std::span<std::uint8_t> key) {
  const SHA256Digest zeros{};
  SHA256Digest fixed = hmacSHA256(salt.empty() ? ByteSpan(zeros) : salt, {secret});
  SHA256Digest block{};
  for (std::uint8_t number = 1; !key.empty(); ++number) {
    const ByteSpan before = number == 1 ? ByteSpan() : ByteSpan(block);
    block = hmacSHA256(fixed, {before, info, ByteSpan(&number, 1)});
    const std::size_t count = std::min(block.size(), key.size());
    std::copy_n(block.begin(), count, key.begin());
    key = key.subspan(count);
  }
  wipe(fixed);
  wipe(block);
}

bool deriveKeyFromPassword(ByteSpan password, ByteSpan salt, const ScryptCost& cost,
                           std::uint64_t mostMemory, std::span<std::uint8_t> key) {
  keepOpenSSLState();
  const std::uint8_t none = 0;
  const auto* const text =
      reinterpret_cast<const char*>(password.empty() ? &none : password.data());
  return EVP_PBE_scrypt(text, password.size(), salt.data(), salt.size(), cost.n, cost.r, cost.p,
                        mostMemory, key.data(), key.size()) == 1;
}

void cryptInCounterMode(ByteSpan key, ByteSpan counter, std::span<std::uint8_t> bytes) {
  keepOpenSSLState();
  const std::unique_ptr<EVP_CIPHER_CTX, FreeCounterCipher> context(EVP_CIPHER_CTX_new());
  check(context && EVP_EncryptInit_ex(context.get(), EVP_aes_256_ctr(), nullptr, key.data(),
                                      counter.data()) == 1);
  while (!bytes.empty()) {
    const std::size_t count = std::min(bytes.size(), kMostAtOnce);
    int done = 0;
    check(EVP_EncryptUpdate(context.get(), bytes.data(), &done, bytes.data(),
                            static_cast<int>(count)) == 1);
    bytes = bytes.subspan(count);
  }
}

void wipe(std::span<std::uint8_t> bytes) noexcept { OPENSSL_cleanse(bytes.data(), bytes.size()); }
void wipe(std::span<char> text) noexcept { OPENSSL_cleanse(text.data(), text.size()); }

}  // namespace ORLFoundation::internal::crypto
