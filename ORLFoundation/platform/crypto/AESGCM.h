/// AES in Galois/counter mode: what is sealed cannot be read without the key, nor changed.
///
///     const auto box = AES::GCM::seal(text, key, {}, header);
///     if (const auto opened = AES::GCM::open(*box, key, header)) use(*opened);
#pragma once

#include <ORLFoundation/platform/crypto/SymmetricKey.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace ORLFoundation {

/// The ciphers over AES that seal.
struct AES {
  class GCM;
};

class AES::GCM {
 public:
  static constexpr std::size_t kNonceBytes = 12;
  static constexpr std::size_t kTagBytes = 16;

  struct SealedBox {
    std::array<std::uint8_t, kNonceBytes> nonce{};
    /// As long as the message.
    std::vector<std::uint8_t> ciphertext;
    std::array<std::uint8_t, kTagBytes> tag{};
  };

  /// `seal(_:using:nonce:authenticating:)`  Without a nonce a random one is taken; one nonce must
  /// not serve two messages under one key. `authenticating` is not in the box and has to be equal
  /// where it is opened. nil for keys that are not 16, 24 or 32 bytes long, and where the system
  /// gives no random bytes.
  [[nodiscard]] static std::optional<SealedBox> seal(
      std::span<const std::uint8_t> message, const SymmetricKey& key,
      const std::optional<std::array<std::uint8_t, kNonceBytes>>& nonce = std::nullopt,
      std::span<const std::uint8_t> authenticating = {});
  /// `open(_:using:authenticating:)`  The message, wiped when its last copy goes. nil where any bit
  /// of the box, of the key or of `authenticating` is another one.
  [[nodiscard]] static std::optional<NSData> open(
      const SealedBox& box, const SymmetricKey& key,
      std::span<const std::uint8_t> authenticating = {});
};

}  // namespace ORLFoundation
