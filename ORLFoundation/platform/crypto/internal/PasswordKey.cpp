#include <ORLFoundation/platform/crypto/internal/PasswordKey.h>

#include <ORLFoundation/platform/crypto/internal/OpenSSLState.h>
#include <openssl/crypto.h>
#include <openssl/sha.h>

#include <algorithm>
#include <array>
#include <cstddef>

// SHA-1's compression alone is called, once for each half of a round: the states after the padded
// password are the same in every round.
namespace ORLFoundation::internal::crypto {
namespace {

constexpr std::size_t kDigest = SHA_DIGEST_LENGTH, kBlock = SHA_CBLOCK;
using Digest = std::array<std::uint8_t, kDigest>;
using Block = std::array<std::uint8_t, kBlock>;

void storeBigEndian(std::uint32_t value, std::uint8_t* out) {
  for (int shift = 24; shift >= 0; shift -= 8) *out++ = static_cast<std::uint8_t>(value >> shift);
}

void storeState(const SHA_CTX& state, std::uint8_t* out) {
  for (const SHA_LONG word : {state.h0, state.h1, state.h2, state.h3, state.h4}) {
    storeBigEndian(word, out);
    out += 4;
  }
}

/// HMAC under one key. Everything is kept in one place, which is wiped at the end.
class KeyedHash {
 public:
  explicit KeyedHash(std::string_view key) {
    Block padded{};
    if (key.size() > kBlock) {
      static_cast<void>(
          SHA1(reinterpret_cast<const std::uint8_t*>(key.data()), key.size(), padded.data()));
    } else {
      std::copy(key.begin(), key.end(), padded.begin());
    }
    absorb(padded, 0x36, inner_);
    absorb(padded, 0x5c, outer_);
    OPENSSL_cleanse(padded.data(), padded.size());
    // A message of one digest after the block of the key is one block: the digest, a bit, and the
    // length in bits.
    block_[kDigest] = 0x80;
    storeBigEndian(8 * (kBlock + kDigest), block_.data() + kBlock - 4);
  }
  KeyedHash(const KeyedHash&) = delete;
  KeyedHash& operator=(const KeyedHash&) = delete;
  ~KeyedHash() { OPENSSL_cleanse(this, sizeof *this); }

  /// The hash of a salt and a number, which `hashAgain` goes on from.
  void hash(std::span<const std::uint8_t> salt, std::uint32_t number) {
    state_ = inner_;
    SHA1_Update(&state_, salt.data(), salt.size());
    std::array<std::uint8_t, 4> bytes{};
    storeBigEndian(number, bytes.data());
    SHA1_Update(&state_, bytes.data(), bytes.size());
    SHA1_Final(block_.data(), &state_);
    finish();
  }

  /// The hash of the last hash.
  void hashAgain() {
    state_ = inner_;
    SHA1_Transform(&state_, block_.data());
    storeState(state_, block_.data());
    finish();
  }

  [[nodiscard]] const std::uint8_t* digest() const { return block_.data(); }

 private:
  static void absorb(const Block& key, std::uint8_t pad, SHA_CTX& state) {
    Block mixed = key;
    for (std::uint8_t& byte : mixed) byte ^= pad;
    SHA1_Init(&state);
    SHA1_Update(&state, mixed.data(), mixed.size());
    OPENSSL_cleanse(mixed.data(), mixed.size());
  }

  void finish() {
    state_ = outer_;
    SHA1_Transform(&state_, block_.data());
    storeState(state_, block_.data());
  }

  SHA_CTX inner_{}, outer_{}, state_{};
  Block block_{};
};

}  // namespace

void deriveKeyOverSHA1(std::string_view password, std::span<const std::uint8_t> salt,
                       std::uint32_t rounds, std::span<std::uint8_t> key) {
  keepOpenSSLState();
  KeyedHash hash(password);
  Digest sum{};
  for (std::uint32_t number = 1; !key.empty(); ++number) {
    hash.hash(salt, number);
    std::copy_n(hash.digest(), kDigest, sum.begin());
    for (std::uint32_t round = 1; round < rounds; ++round) {
      hash.hashAgain();
      for (std::size_t i = 0; i < kDigest; ++i) sum[i] ^= hash.digest()[i];
    }
    const std::size_t count = std::min(kDigest, key.size());
    std::copy_n(sum.begin(), count, key.begin());
    key = key.subspan(count);
  }
  OPENSSL_cleanse(sum.data(), sum.size());
}

}  // namespace ORLFoundation::internal::crypto
