/// A secret key of a cipher. Its memory is wiped when the last copy goes.
///
///     const SymmetricKey key(SymmetricKeySize::bits256);
///     const auto box = AES::GCM::seal(text, key);
///     const auto back = AES::GCM::open(*box, key);   // equal to the text
#pragma once

#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace ORLFoundation {

/// The length of a key, in bits.
enum class SymmetricKeySize : std::uint16_t { bits128 = 128, bits192 = 192, bits256 = 256 };

/// Any bytes as a key; ciphers say which lengths they take.
class SymmetricKey {
 public:
  /// `init(size:)`  Random bytes. Raises `NSGenericException` where the system gives none.
  explicit SymmetricKey(SymmetricKeySize size);
  /// `init(data:)`  A copy of the bytes, wiped at the end.
  explicit SymmetricKey(std::span<const std::uint8_t> data);

  /// `bitCount`
  [[nodiscard]] NSUInteger bitCount() const noexcept { return data_.length() * 8; }
  /// Valid as long as a copy of the key lives.
  [[nodiscard]] std::span<const std::uint8_t> bytes() const noexcept { return data_.bytes(); }
  /// The same bytes, shared and wiped with them.
  [[nodiscard]] const NSData& sharedBytes() const noexcept { return data_; }

  /// Equal bytes, in a time that depends on their lengths alone.
  friend bool operator==(const SymmetricKey& left, const SymmetricKey& right) noexcept;

 private:
  NSData data_;
};

}  // namespace ORLFoundation
