/// A run of bytes that is shared, never changed, and compared by content. Copies share the bytes.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class NSData {
 public:
  /// No bytes.
  NSData() noexcept = default;
  explicit NSData(std::vector<std::uint8_t> bytes);
  /// `dataWithBytes:length:`  A copy of the bytes.
  explicit NSData(std::span<const std::uint8_t> bytes);
  /// The bytes of a text as they are, UTF-8.
  explicit NSData(std::string_view text);
  /// Bytes whose memory is overwritten when the last copy goes: for keys and plain texts.
  [[nodiscard]] static NSData dataWipedAtRelease(std::vector<std::uint8_t> bytes);

  [[nodiscard]] NSUInteger length() const noexcept { return bytes().size(); }
  /// Valid as long as a copy of the data lives.
  [[nodiscard]] std::span<const std::uint8_t> bytes() const noexcept {
    return bytes_ ? std::span<const std::uint8_t>(*bytes_) : std::span<const std::uint8_t>();
  }
  /// The same bytes as text; nothing is checked or decoded.
  [[nodiscard]] std::string_view text() const noexcept;

  /// `isEqualToData:`
  [[nodiscard]] bool isEqualToData(const NSData& other) const noexcept;
  [[nodiscard]] NSUInteger hash() const noexcept;
  /// "{length = 5, bytes = 0x68656c6c6f}". Of more than 24 bytes the first 16 and the last 8 are
  /// shown, in groups of four.
  [[nodiscard]] std::string description() const;

  friend bool operator==(const NSData& left, const NSData& right) noexcept {
    return left.isEqualToData(right);
  }

 private:
  std::shared_ptr<const std::vector<std::uint8_t>> bytes_;
};

}  // namespace ORLFoundation

template <>
struct std::hash<ORLFoundation::NSData> {
  std::size_t operator()(const ORLFoundation::NSData& data) const noexcept { return data.hash(); }
};
