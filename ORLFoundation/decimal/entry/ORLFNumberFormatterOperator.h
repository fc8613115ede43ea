/// An operator of the sums that `ORLFNumberFormatter` reads, and what it does to two numbers.
///
///     const ORLFNumberFormatterOperator divide(ORLFNumberFormatterOperatorTypeDivide);
///     divide.numberByPerformingOperation(10, 4, nullptr);  // 2.5
///     divide.numberByPerformingOperation(10, 0, nullptr);  // nil
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSNumber.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstdint>
#include <optional>
#include <string>

namespace ORLFoundation {

/// The code is the precedence too: of two operators the one with the higher code binds tighter. So
/// "/" ranks above "*" and "-" above "+", which alters no value: equal and falling codes are worked
/// out at once, from the left.
enum ORLFNumberFormatterOperatorType : std::int32_t {
  ORLFNumberFormatterOperatorTypeAdd = 0,
  ORLFNumberFormatterOperatorTypeSubtract = 1,
  ORLFNumberFormatterOperatorTypeMultiply = 2,
  ORLFNumberFormatterOperatorTypeDivide = 3,
  ORLFNumberFormatterOperatorTypeStartGroup = 4,
};

class ORLFNumberFormatterOperator final : public NSObject {
 public:
  /// `initWithOperatorType:`  Any code is taken; one of no operator gives nil for every number.
  explicit ORLFNumberFormatterOperator(ORLFNumberFormatterOperatorType type) noexcept
      : type_(type) {}

  [[nodiscard]] ORLFNumberFormatterOperatorType type() const noexcept { return type_; }
  /// `numberOfOpperands`  1 for the start of a group, else 2.
  [[nodiscard]] NSUInteger numberOfOpperands() const noexcept;
  /// `defaultOpperand:`  What stands for a missing left operand: zero for plus and minus, one for
  /// times, nil for the others. A decimal when `decimals` is true, else a double.
  [[nodiscard]] std::optional<NSNumber> defaultOpperand(bool decimals) const;
  /// `numberByPerformingOperationLeft:right:error:`  Of two decimals a decimal; otherwise of the
  /// double values, as a double. A missing operand and division by zero give nil without an error.
  /// Too large and too small decimals give nil and an error of the code 2048 with the exception's
  /// reason. The start of a group gives the left number, or else the right one.
  [[nodiscard]] std::optional<NSNumber> numberByPerformingOperation(
      const std::optional<NSNumber>& left, const std::optional<NSNumber>& right,
      NSErrorSlot error) const;

  [[nodiscard]] std::string className() const override { return "ORLFNumberFormatterOperator"; }

 private:
  const ORLFNumberFormatterOperatorType type_;
};

}  // namespace ORLFoundation
