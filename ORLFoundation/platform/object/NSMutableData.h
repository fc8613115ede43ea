/// Bytes that grow: a buffer shared by those who write into it.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace ORLFoundation {

class NSMutableData : public NSObject {
 public:
  /// No bytes.
  NSMutableData() = default;
  /// `initWithData:`  A copy of the bytes.
  explicit NSMutableData(const NSData& data);

  [[nodiscard]] NSUInteger length() const noexcept { return length_; }
  /// Valid until the next change.
  [[nodiscard]] std::span<const std::uint8_t> bytes() const noexcept {
    return {space_.get(), length_};
  }
  /// The same, to be written to.
  [[nodiscard]] std::span<std::uint8_t> mutableBytes() noexcept { return {space_.get(), length_}; }
  /// The same bytes as text; nothing is checked or decoded. Valid until the next change.
  [[nodiscard]] std::string_view text() const noexcept {
    return {reinterpret_cast<const char*>(space_.get()), length_};
  }
  /// A copy that no longer changes.
  [[nodiscard]] NSData data() const { return NSData(bytes()); }

  /// `appendBytes:length:`  Its own bytes too.
  void appendBytes(std::span<const std::uint8_t> bytes) {
    if (bytes.size() > capacity_ - length_) return appendGrown(bytes);
    if (!bytes.empty()) std::memcpy(space_.get() + length_, bytes.data(), bytes.size());
    length_ += bytes.size();
  }
  /// `appendData:`
  void appendData(const NSData& data) { appendBytes(data.bytes()); }
  /// `setLength:`  Cut, or filled with zeros.
  void setLength(NSUInteger length);

  [[nodiscard]] std::string className() const override { return "NSMutableData"; }
  /// The same bytes.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override { return data().hash(); }
  [[nodiscard]] std::string description() const override { return data().description(); }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override { return mutableCopy(); }
  [[nodiscard]] std::shared_ptr<NSObject> mutableCopy() override;

 private:
  struct Free {
    void operator()(std::uint8_t* space) const noexcept { std::free(space); }
  };
  void appendGrown(std::span<const std::uint8_t> bytes);
  void reserve(std::size_t length);

  // From C's heap, which moves large space to another address without copying it.
  std::unique_ptr<std::uint8_t[], Free> space_;
  std::size_t length_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace ORLFoundation
