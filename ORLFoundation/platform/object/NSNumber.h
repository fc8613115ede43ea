/// A number of any kind, boxed: boolean, signed, unsigned, double or decimal. Numbers are equal by
/// value whatever their kinds (`NSNumber(1) == NSNumber(1.0)`, and both equal `true`), and compare
/// exactly: 2^63 as a double is one more than the largest signed integer, and 0.1 as a double is a
/// little more than the decimal 0.1.
#pragma once

#include <ORLFoundation/platform/value/NSDecimal.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <concepts>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <type_traits>

namespace ORLFoundation {

/// A type around a decimal, such as `NSDecimalNumber`.
template <class T>
concept NSDecimalBoxing = requires(const T& number) {
  { number.decimalValue() } -> std::convertible_to<NSDecimal>;
};

class NSNumber {
 public:
  enum class Kind : std::uint8_t { Boolean, Integer, UnsignedInteger, Double, Decimal };

  // Implicit, so that a number stands wherever a boxed one is asked for.
  NSNumber(bool value) noexcept : kind_(Kind::Boolean), boolean_(value) {}
  template <std::signed_integral T>
  NSNumber(T value) noexcept : kind_(Kind::Integer), integer_(value) {}
  template <std::unsigned_integral T>
  requires(!std::same_as<T, bool>) NSNumber(T value)
  noexcept : kind_(Kind::UnsignedInteger), unsigned_(value) {}
  template <std::floating_point T>
  NSNumber(T value) noexcept : kind_(Kind::Double), double_(static_cast<double>(value)) {}
  NSNumber(const NSDecimal& value) noexcept : kind_(Kind::Decimal), decimal_(value) {}
  template <NSDecimalBoxing T>
  requires(!std::same_as<T, NSNumber>) NSNumber(const T& value)
      : NSNumber(NSDecimal(value.decimalValue())) {}

  [[nodiscard]] Kind kind() const noexcept { return kind_; }

  /// `compare:`  By exact value. Not-a-number, binary or decimal, equals itself and comes before
  /// every other number.
  [[nodiscard]] NSComparisonResult compare(const NSNumber& other) const;
  /// `isEqualToNumber:`  false for nil.
  [[nodiscard]] bool isEqualToNumber(const std::optional<NSNumber>& other) const;
  /// Equal numbers have equal hashes, across kinds.
  [[nodiscard]] NSUInteger hash() const;

  /// `boolValue`  false for zero only.
  [[nodiscard]] bool boolValue() const;
  /// `intValue`  The low 32 bits of `integerValue`.
  [[nodiscard]] std::int32_t intValue() const;
  /// `integerValue`  Fractions are cut off toward zero. Values out of range end at the nearer end,
  /// unsigned integers keep their bits, not-a-number is 0.
  [[nodiscard]] NSInteger integerValue() const;
  /// `unsignedIntegerValue`  As above; negative numbers keep the bits of `integerValue`.
  [[nodiscard]] NSUInteger unsignedIntegerValue() const;
  /// `doubleValue`  The nearest double.
  [[nodiscard]] double doubleValue() const;
  /// `decimalValue`  The shortest decimal that reads back as the same double, for doubles; infinite
  /// ones give not-a-number.
  [[nodiscard]] NSDecimal decimalValue() const;
  /// `stringValue`  Booleans read "1" and "0". A double has as many digits as tell it from its
  /// neighbours, with an exponent from 1e+16 on.
  [[nodiscard]] std::string stringValue() const;
  /// `description`
  [[nodiscard]] std::string description() const { return stringValue(); }

  friend bool operator==(const NSNumber& left, const NSNumber& right) {
    return left.compare(right) == NSOrderedSame;
  }

 private:
  /// What the visitor answers for the value, of the type that its kind tells.
  template <class Visitor>
  auto visited(Visitor visitor) const;

  // Not a std::variant, which all that includes this header would pay for.
  Kind kind_;
  union {
    bool boolean_;
    std::int64_t integer_;
    std::uint64_t unsigned_;
    double double_;
    NSDecimal decimal_;
  };
};

}  // namespace ORLFoundation

template <>
struct std::hash<ORLFoundation::NSNumber> {
  std::size_t operator()(const ORLFoundation::NSNumber& number) const { return number.hash(); }
};
