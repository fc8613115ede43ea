/// Bytes that grow: a buffer shared by those who write into it.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class NSMutableData : public NSObject {
 public:
  /// No bytes.
  NSMutableData() = default;
  /// `initWithData:`  A copy of the bytes.
  explicit NSMutableData(const NSData& data);

  [[nodiscard]] NSUInteger length() const noexcept { return bytes_.size(); }
  /// Valid until the next change.
  [[nodiscard]] std::span<const std::uint8_t> bytes() const noexcept { return bytes_; }
  /// The same, to be written to.
  [[nodiscard]] std::span<std::uint8_t> mutableBytes() noexcept { return bytes_; }
  /// The same bytes as text; nothing is checked or decoded. Valid until the next change.
  [[nodiscard]] std::string_view text() const noexcept {
    return {reinterpret_cast<const char*>(bytes_.data()), bytes_.size()};
  }
  /// A copy that no longer changes.
  [[nodiscard]] NSData data() const { return NSData(bytes()); }

  /// `appendBytes:length:`
  void appendBytes(std::span<const std::uint8_t> bytes);
  /// `appendData:`
  void appendData(const NSData& data) { appendBytes(data.bytes()); }
  /// `setLength:`  Cut, or filled with zeros.
  void setLength(NSUInteger length) { bytes_.resize(length); }

  [[nodiscard]] std::string className() const override { return "NSMutableData"; }
  /// The same bytes.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override { return data().hash(); }
  [[nodiscard]] std::string description() const override { return data().description(); }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override { return mutableCopy(); }
  [[nodiscard]] std::shared_ptr<NSObject> mutableCopy() override;

 private:
  std::vector<std::uint8_t> bytes_;
};

}  // namespace ORLFoundation
