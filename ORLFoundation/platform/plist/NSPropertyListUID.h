/// A reference inside a keyed archive: the index of an object in the archive's table. Only archives
/// hold them; a property list that is read as one shows them as they are.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>

#include <cstdint>
#include <memory>
#include <string>

namespace ORLFoundation {

class NSPropertyListUID final : public NSObject {
 public:
  explicit NSPropertyListUID(std::uint32_t value) noexcept : value_(value) {}

  [[nodiscard]] std::uint32_t value() const noexcept { return value_; }

  [[nodiscard]] std::string className() const override { return "NSPropertyListUID"; }
  /// Another reference of the same value.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override { return value_; }
  /// "UID 12".
  [[nodiscard]] std::string description() const override;
  [[nodiscard]] std::shared_ptr<NSObject> copy() override {
    return receiverOr([this] { return std::make_shared<NSPropertyListUID>(value_); });
  }

 private:
  const std::uint32_t value_;
};

}  // namespace ORLFoundation
