/// Money and rates: the number around an `NSDecimal`, with arithmetic under a behaviour. A plain
/// value that never allocates; one that may be absent is a `std::optional<NSDecimalNumber>`.
///
///     auto price = NSDecimalNumber::decimalNumberWithString("19.99");
///     auto tax = price.decimalNumberByMultiplyingBy(rate, &toCents);  // nullopt or a number
///     auto twice = price.decimalNumberByAdding(price);                // raises on overflow
///
/// Operations with a behaviour round their result to its scale, once and from its exact value, and
/// answer errors with whatever its `exceptionDuringOperation` gives. Those without one raise an
/// `NSException` on overflow, underflow and division by zero and ignore loss of precision.
/// Not-a-number as an operand gives not-a-number.
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumberBehaviors.h>
#include <ORLFoundation/platform/object/NSNumber.h>
#include <ORLFoundation/platform/value/NSDecimalArithmetic.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// Names of the exceptions that calculations under the default behaviour raise.
inline constexpr const char* NSDecimalNumberOverflowException = "NSDecimalNumberOverflowException";
inline constexpr const char* NSDecimalNumberUnderflowException =
    "NSDecimalNumberUnderflowException";
inline constexpr const char* NSDecimalNumberDivideByZeroException =
    "NSDecimalNumberDivideByZeroException";

class NSDecimalNumber {
 public:
  /// Zero.
  constexpr NSDecimalNumber() noexcept = default;
  explicit constexpr NSDecimalNumber(const NSDecimal& value) noexcept : value_(value) {}
  /// `initWithString:`  As `decimalNumberWithString`.
  explicit NSDecimalNumber(std::string_view text) noexcept : value_(NSDecimal::parse(text)) {}

  [[nodiscard]] static constexpr NSDecimalNumber zero() noexcept { return {}; }
  [[nodiscard]] static constexpr NSDecimalNumber one() noexcept {
    return NSDecimalNumber(NSDecimal::one());
  }
  [[nodiscard]] static constexpr NSDecimalNumber notANumber() noexcept {
    return NSDecimalNumber(NSDecimal::notANumber());
  }
  /// `decimalNumberWithMantissa:exponent:isNegative:`  An exponent out of range is taken in by the
  /// mantissa; a value too large to hold is not-a-number, one too small is zero.
  [[nodiscard]] static NSDecimalNumber decimalNumberWithMantissa(NSUInteger mantissa,
                                                                 std::int16_t exponent,
                                                                 bool isNegative) noexcept;
  /// `decimalNumberWithString:`  The decimal mark is a point. Text that is no number gives
  /// not-a-number.
  [[nodiscard]] static NSDecimalNumber decimalNumberWithString(std::string_view text) noexcept {
    return NSDecimalNumber(text);
  }
  /// `decimalNumberWithString:locale:`  With the decimal mark of the locale of that identifier
  /// ("de_DE"); a point for locales that nobody knows.
  [[nodiscard]] static NSDecimalNumber decimalNumberWithString(std::string_view text,
                                                               std::string_view locale);

  /// `decimalValue`
  [[nodiscard]] constexpr const NSDecimal& decimalValue() const noexcept { return value_; }

  /// `decimalNumberByAdding:`
  [[nodiscard]] NSDecimalNumber decimalNumberByAdding(const NSDecimalNumber& other) const {
    return valueOrRaise(NSDecimalAdd(value_, other.value_));
  }
  /// `decimalNumberByAdding:withBehavior:`
  [[nodiscard]] std::optional<NSDecimalNumber> decimalNumberByAdding(
      const NSDecimalNumber& other, const NSDecimalNumberBehaviors* withBehavior) const;
  /// `decimalNumberBySubtracting:`
  [[nodiscard]] NSDecimalNumber decimalNumberBySubtracting(const NSDecimalNumber& other) const {
    return valueOrRaise(NSDecimalSubtract(value_, other.value_));
  }
  /// `decimalNumberBySubtracting:withBehavior:`
  [[nodiscard]] std::optional<NSDecimalNumber> decimalNumberBySubtracting(
      const NSDecimalNumber& other, const NSDecimalNumberBehaviors* withBehavior) const;
  /// `decimalNumberByMultiplyingBy:`
  [[nodiscard]] NSDecimalNumber decimalNumberByMultiplyingBy(const NSDecimalNumber& factor) const {
    return valueOrRaise(NSDecimalMultiply(value_, factor.value_));
  }
  /// `decimalNumberByMultiplyingBy:withBehavior:`
  [[nodiscard]] std::optional<NSDecimalNumber> decimalNumberByMultiplyingBy(
      const NSDecimalNumber& factor, const NSDecimalNumberBehaviors* withBehavior) const;
  /// `decimalNumberByDividingBy:`
  [[nodiscard]] NSDecimalNumber decimalNumberByDividingBy(const NSDecimalNumber& divisor) const {
    return valueOrRaise(NSDecimalDivide(value_, divisor.value_));
  }
  /// `decimalNumberByDividingBy:withBehavior:`
  [[nodiscard]] std::optional<NSDecimalNumber> decimalNumberByDividingBy(
      const NSDecimalNumber& divisor, const NSDecimalNumberBehaviors* withBehavior) const;
  /// `decimalNumberByRaisingToPower:`  A negative power divides one by the positive power.
  [[nodiscard]] NSDecimalNumber decimalNumberByRaisingToPower(NSInteger power) const {
    return valueOrRaise(NSDecimalPower(value_, power));
  }
  /// `decimalNumberByRaisingToPower:withBehavior:`
  [[nodiscard]] std::optional<NSDecimalNumber> decimalNumberByRaisingToPower(
      NSInteger power, const NSDecimalNumberBehaviors* withBehavior) const;
  /// `decimalNumberByMultiplyingByPowerOf10:withBehavior:`
  [[nodiscard]] std::optional<NSDecimalNumber> decimalNumberByMultiplyingByPowerOf10(
      std::int16_t power, const NSDecimalNumberBehaviors* withBehavior) const;
  /// `decimalNumberByRoundingAccordingToBehavior:`  Dropped digits are no error.
  [[nodiscard]] std::optional<NSDecimalNumber> decimalNumberByRoundingAccordingToBehavior(
      const NSDecimalNumberBehaviors* behavior) const;

  /// `compare:`  By value: 1.50 equals 1.5. Not-a-number equals itself and comes before every
  /// number.
  [[nodiscard]] NSComparisonResult compare(const NSDecimalNumber& other) const noexcept {
    return value_.compare(other.value_);
  }
  [[nodiscard]] NSComparisonResult compare(const NSNumber& other) const;
  /// `isEqualToNumber:`  false for nil.
  [[nodiscard]] bool isEqualToNumber(const NSDecimalNumber& other) const noexcept {
    return compare(other) == NSOrderedSame;
  }
  [[nodiscard]] bool isEqualToNumber(const std::optional<NSNumber>& other) const;
  /// Equal numbers have equal hashes, also those of other kinds, see `NSNumber`.
  [[nodiscard]] NSUInteger hash() const;

  /// `doubleValue`  The nearest double.
  [[nodiscard]] double doubleValue() const noexcept { return value_.doubleValue(); }
  /// `stringValue`  Plain text with a point as decimal mark; "NaN" for not-a-number.
  [[nodiscard]] std::string stringValue() const { return value_.stringValue(); }
  /// `description`
  [[nodiscard]] std::string description() const { return stringValue(); }

  friend bool operator==(const NSDecimalNumber& left, const NSDecimalNumber& right) noexcept {
    return left.value_ == right.value_;
  }

 private:
  /// The result under the default behaviour.
  [[nodiscard]] static NSDecimalNumber valueOrRaise(const NSDecimalResult& result) {
    if (result.error > NSCalculationLossOfPrecision) raise(result.error);
    return NSDecimalNumber(result.value);
  }
  [[noreturn]] static void raise(NSCalculationError error);

  NSDecimal value_;
};

}  // namespace ORLFoundation

template <>
struct std::hash<ORLFoundation::NSDecimalNumber> {
  std::size_t operator()(const ORLFoundation::NSDecimalNumber& number) const {
    return number.hash();
  }
};
