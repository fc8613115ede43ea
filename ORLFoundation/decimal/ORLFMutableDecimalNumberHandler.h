/// A behaviour record with setters. It has no lock: it belongs to one thread at a time. Its copy is
/// a snapshot that can no longer change.
#pragma once

#include <ORLFoundation/decimal/ORLFDecimalNumberHandler.h>

#include <cstdint>
#include <memory>
#include <string>

namespace ORLFoundation {

class ORLFMutableDecimalNumberHandler : public ORLFDecimalNumberHandler {
 public:
  using ORLFDecimalNumberHandler::ORLFDecimalNumberHandler;

  /// `setRoundingMode:`, `setScale:`, `setExactnessBehavior:`, `setOverflowBehavior:`,
  /// `setUnderflowBehavior:`, `setDivideByZeroBehavior:`  Nothing is checked.
  void setRoundingMode(NSRoundingMode roundingMode) noexcept;
  void setScale(std::int16_t scale) noexcept;
  void setExactnessBehavior(std::int32_t behavior) noexcept;
  void setOverflowBehavior(std::int32_t behavior) noexcept;
  void setUnderflowBehavior(std::int32_t behavior) noexcept;
  void setDivideByZeroBehavior(std::int32_t behavior) noexcept;

  [[nodiscard]] std::string className() const override { return "ORLFMutableDecimalNumberHandler"; }
  /// `copyWithZone:`  A new immutable `ORLFDecimalNumberHandler` with the same six values.
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;

  /// `initWithCoder:`  As the base class reads itself; may be read where that one is allowed.
  [[nodiscard]] static std::shared_ptr<ORLFMutableDecimalNumberHandler> initWithCoder(
      NSCoder& coder);
  [[nodiscard]] static const NSCodingClass& codingClass();
  [[nodiscard]] const NSCodingClass& classForCoder() const override { return codingClass(); }
};

}  // namespace ORLFoundation
