/// How a decimal calculation rounds, and what stands in for its result when it meets an error.
/// `ORLFDecimalNumberHandler` and `ORLFRoundingBehavior` are the library's own; anyone may write
/// another.
///
/// Operations take a pointer; nullptr is the default behaviour: plain rounding, no fixed scale, an
/// exception on overflow, underflow and division by zero, and loss of precision ignored.
#pragma once

#include <ORLFoundation/platform/value/NSDecimal.h>

#include <optional>
#include <string_view>

namespace ORLFoundation {

class NSDecimalNumber;

class NSDecimalNumberBehaviors {
 public:
  virtual ~NSDecimalNumberBehaviors() = default;

  /// `roundingMode`
  [[nodiscard]] virtual NSRoundingMode roundingMode() const = 0;
  /// `scale`  Digits kept after the point; negative ones round before it.
  [[nodiscard]] virtual std::int16_t scale() const = 0;
  /// Whether loss of precision counts as no error, so that the rounded result stands; false unless
  /// a behaviour says otherwise.
  [[nodiscard]] virtual bool ignoresLossOfPrecision() const { return false; }
  /// `exceptionDuringOperation:error:leftOperand:rightOperand:`  Called when a calculation meets an
  /// error, loss of precision included. What it gives is the operation's result, unrounded; what it
  /// throws goes to the caller. The operation is its name, "decimalNumberByAdding:"; the right
  /// operand is absent where there is none that is a decimal.
  [[nodiscard]] virtual std::optional<NSDecimalNumber> exceptionDuringOperation(
      std::string_view operation, NSCalculationError error,
      const std::optional<NSDecimalNumber>& leftOperand,
      const std::optional<NSDecimalNumber>& rightOperand) const = 0;
};

}  // namespace ORLFoundation
