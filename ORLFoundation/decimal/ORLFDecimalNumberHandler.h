/// The library's behaviour record: how a decimal calculation rounds and what each of its errors
/// gives. An immutable handler may be shared between threads.
///
///     auto toCents = ORLFDecimalNumberHandler::decimalNumberHandlerWithRoundingMode(
///         {.roundingMode = NSRoundBankers, .scale = 2,
///          .divideByZeroBehavior = ORLFDecimalErrorBehaviorReturnNil});
///     price.decimalNumberByDividingBy(count, toCents.get());  // nullopt when count is 0
#pragma once

#include <ORLFoundation/decimal/ORLFDecimalErrorBehavior.h>
#include <ORLFoundation/platform/archive/NSSecureCoding.h>
#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/number/NSDecimalNumberBehaviors.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

class ORLFDecimalNumberHandler : public NSObject,
                                 public NSDecimalNumberBehaviors,
                                 public NSSecureCoding {
 public:
  /// The six values, in the order of the labels. None is checked: an undefined mode or code is kept
  /// and acted on as it comes.
  struct Fields {
    NSRoundingMode roundingMode = NSRoundPlain;
    std::int16_t scale = 0;
    std::int32_t exactnessBehavior = ORLFDecimalErrorBehaviorRaise;
    std::int32_t overflowBehavior = ORLFDecimalErrorBehaviorRaise;
    std::int32_t underflowBehavior = ORLFDecimalErrorBehaviorRaise;
    std::int32_t divideByZeroBehavior = ORLFDecimalErrorBehaviorRaise;
  };

  /// `decimalNumberHandlerWithRoundingMode:scale:exactnessBehavior:overflowBehavior:underflowBehavior:divideByZeroBehavior:`
  /// Always an immutable handler, also when called on the mutable class.
  [[nodiscard]] static std::shared_ptr<ORLFDecimalNumberHandler>
  decimalNumberHandlerWithRoundingMode(const Fields& fields);
  /// `initWithRoundingMode:scale:exactnessBehavior:overflowBehavior:underflowBehavior:divideByZeroBehavior:`
  explicit ORLFDecimalNumberHandler(const Fields& fields);

  /// `roundingMode`
  [[nodiscard]] NSRoundingMode roundingMode() const override;
  /// `scale`  The field `decimalScale`.
  [[nodiscard]] std::int16_t scale() const override;
  /// `exactnessBehavior`, the reaction to loss of precision, and its siblings for the other errors.
  [[nodiscard]] std::int32_t exactnessBehavior() const noexcept;
  [[nodiscard]] std::int32_t overflowBehavior() const noexcept;
  [[nodiscard]] std::int32_t underflowBehavior() const noexcept;
  [[nodiscard]] std::int32_t divideByZeroBehavior() const noexcept;

  /// `exceptionDuringOperation:error:leftOperand:rightOperand:`  Nothing or zero, as the field of
  /// the error says. Else, and for an error code outside 1 to 4, raises an `NSException` named
  /// "NSDecimalNumber calculation error" that tells the code and the operands. The operation's name
  /// plays no part.
  [[nodiscard]] std::optional<NSDecimalNumber> exceptionDuringOperation(
      std::string_view operation, NSCalculationError error,
      const std::optional<NSDecimalNumber>& leftOperand,
      const std::optional<NSDecimalNumber>& rightOperand) const override;

  [[nodiscard]] std::string className() const override { return "ORLFDecimalNumberHandler"; }
  /// `copyWithZone:` (`NSCopying`)  The receiver itself: it never changes. A new handler with the
  /// same six values where no shared pointer owns the receiver.
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;
  /// `mutableCopyWithZone:` (`NSMutableCopying`)  A new `ORLFMutableDecimalNumberHandler` with the
  /// same six values.
  [[nodiscard]] std::shared_ptr<NSObject> mutableCopy() override;

  /// `encodeWithCoder:`, `initWithCoder:` (`NSCoding`)  The six values under their names, the scale
  /// under "decimalScale", of which reading takes 16 bits. No value is checked.
  void encodeWithCoder(NSCoder& coder) const override;
  [[nodiscard]] static std::shared_ptr<ORLFDecimalNumberHandler> initWithCoder(NSCoder& coder);
  [[nodiscard]] static bool supportsSecureCoding() noexcept { return true; }
  [[nodiscard]] static const NSCodingClass& codingClass();
  [[nodiscard]] const NSCodingClass& classForCoder() const override { return codingClass(); }

 protected:
  Fields fields_;

 private:
  /// The code of the field that stands for the error; to raise for an error that has none.
  [[nodiscard]] std::int32_t reactionTo(NSCalculationError error) const noexcept;
};

}  // namespace ORLFoundation
