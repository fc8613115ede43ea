/// An exact decimal value for money and rates: a sign, up to 38 decimal digits, a power of ten from
/// -128 to 127, or not-a-number. Equality, order and hash go by value, so 1.50 and 1.5 are the
/// same.
///
///     NSDecimal price = NSDecimal::parse("19.99");
///     price.stringValue();                              // "19.99"
///     NSDecimal::parse("1.50") == NSDecimal::parse("1.5");  // true
///
/// A plain value of 24 bytes that never allocates. NSDecimalArithmetic.h calculates with it.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// How digits that are dropped change the last one that stays.
enum NSRoundingMode : NSUInteger {
  NSRoundPlain = 0,    ///< To the nearest; a tie goes away from zero.
  NSRoundDown = 1,     ///< Toward negative infinity.
  NSRoundUp = 2,       ///< Toward positive infinity.
  NSRoundBankers = 3,  ///< To the nearest; a tie goes to the even digit.
};

/// What went wrong in a calculation. Underflow comes before overflow, as in archives and callbacks.
enum NSCalculationError : NSUInteger {
  NSCalculationNoError = 0,
  NSCalculationLossOfPrecision = 1,
  NSCalculationUnderflow = 2,
  NSCalculationOverflow = 3,
  NSCalculationDivideByZero = 4,
};

/// The scale that leaves all digits after the point alone.
inline constexpr std::int16_t NSDecimalNoScale = 32767;

class NSDecimal {
 public:
  __extension__ typedef unsigned __int128 Mantissa;

  static constexpr int kMostDigits = 38;
  static constexpr int kSmallestExponent = -128;
  static constexpr int kLargestExponent = 127;
  /// 10^38, the first mantissa that is too long.
  static constexpr Mantissa kMantissaEnd =
      Mantissa{10000000000000000000U} * Mantissa{10000000000000000000U};

  /// Zero.
  constexpr NSDecimal() noexcept = default;
  /// The sign times the mantissa times ten to the exponent. The mantissa is below `kMantissaEnd`
  /// and the exponent is in range: that is the caller's care. Zero loses its sign.
  constexpr NSDecimal(Mantissa mantissa, int exponent, bool isNegative) noexcept
      : low_(static_cast<std::uint64_t>(mantissa)),
        high_(static_cast<std::uint64_t>(mantissa >> 64)),
        place_(static_cast<std::int16_t>(exponent) * 2 + (isNegative && mantissa != 0 ? 1 : 0)) {}

  [[nodiscard]] static constexpr NSDecimal zero() noexcept { return {}; }
  [[nodiscard]] static constexpr NSDecimal one() noexcept { return {1, 0, false}; }
  [[nodiscard]] static constexpr NSDecimal notANumber() noexcept {
    NSDecimal value;
    value.high_ = kNotANumber;
    return value;
  }
  [[nodiscard]] static constexpr NSDecimal fromInteger(std::int64_t value) noexcept {
    const auto bits = static_cast<std::uint64_t>(value);
    return {value < 0 ? std::uint64_t{0} - bits : bits, 0, value < 0};
  }
  [[nodiscard]] static constexpr NSDecimal fromUnsigned(std::uint64_t value) noexcept {
    return {value, 0, false};
  }
  /// The exact value of the double where 38 digits hold it (0.5, not 0.1), else the nearest decimal
  /// of 38 digits. Infinite doubles and those past the largest decimal give not-a-number, those too
  /// small give zero.
  [[nodiscard]] static NSDecimal fromDouble(double value) noexcept;
  /// Reads digits with an optional sign, decimal mark and exponent ("-12.50", ".5", "5.", "1e+5"),
  /// and nothing else: a blank is no number. Digits past the 38th round to the nearest. Text that
  /// is no number, or too large to hold, gives not-a-number; one too small gives zero.
  [[nodiscard]] static NSDecimal parse(std::string_view text,
                                       std::string_view decimalMark = ".") noexcept;

  [[nodiscard]] constexpr bool isNaN() const noexcept { return (high_ & kNotANumber) != 0; }
  [[nodiscard]] constexpr bool isZero() const noexcept { return (low_ | high_) == 0; }
  /// Below zero.
  [[nodiscard]] constexpr bool isNegative() const noexcept { return (place_ & 1) != 0; }
  /// The digits as they are stored: 1.50 may hold 150 and -2, or 15 and -1 (see `compacted`). Not
  /// for not-a-number.
  [[nodiscard]] constexpr Mantissa mantissa() const noexcept {
    return (Mantissa{high_} << 64) | low_;
  }
  [[nodiscard]] constexpr int exponent() const noexcept { return static_cast<int>(place_ >> 1); }
  /// The mantissa fits 64 bits; false for not-a-number.
  [[nodiscard]] constexpr bool isShort() const noexcept { return high_ == 0; }
  /// The low 64 bits of the mantissa.
  [[nodiscard]] constexpr std::uint64_t shortMantissa() const noexcept { return low_; }
  /// The same value without zeros at the end of the mantissa, as far as the exponent allows.
  [[nodiscard]] NSDecimal compacted() const noexcept;
  /// The same value with the other sign; zero and not-a-number stay.
  [[nodiscard]] constexpr NSDecimal negated() const noexcept {
    NSDecimal value = *this;
    if (!isZero() && !isNaN()) value.place_ ^= 1;
    return value;
  }

  /// `compare:`  By value. Not-a-number equals itself and comes before every number.
  [[nodiscard]] NSComparisonResult compare(const NSDecimal& other) const noexcept {
    if (place_ != other.place_ || isNaN() || other.isNaN()) return compareUnlike(other);
    const Mantissa left = mantissa();
    const Mantissa right = other.mantissa();
    if (left == right) return NSOrderedSame;
    return (left < right) != isNegative() ? NSOrderedAscending : NSOrderedDescending;
  }
  /// Equal values have equal hashes.
  [[nodiscard]] NSUInteger hash() const noexcept;
  /// `doubleValue`  The nearest double, a tie to the even one; not-a-number for not-a-number.
  [[nodiscard]] double doubleValue() const noexcept;
  /// `stringValue`  All digits in plain notation with a point, no zeros at the end of a fraction:
  /// "-0.05", "1200". Not-a-number is "NaN".
  [[nodiscard]] std::string stringValue() const;
  /// `description`
  [[nodiscard]] std::string description() const { return stringValue(); }

  /// The longest text of a decimal: a sign, "0." and 128 digits, or 165 digits.
  static constexpr std::size_t kLongestText = 167;
  /// Writes `stringValue` to a buffer of at least `kLongestText` characters; gives its end.
  char* writeTo(char* text) const noexcept;

  friend bool operator==(const NSDecimal& left, const NSDecimal& right) noexcept {
    return left.compare(right) == NSOrderedSame;
  }

 private:
  /// No mantissa reaches this bit, so that one test of the high words finds long mantissas and
  /// not-a-number alike.
  static constexpr std::uint64_t kNotANumber = std::uint64_t{1} << 63;

  [[nodiscard]] NSComparisonResult compareUnlike(const NSDecimal& other) const noexcept;

  std::uint64_t low_ = 0;
  std::uint64_t high_ = 0;
  /// Twice the exponent, and one more below zero. A whole word, as the others: a copy reads words,
  /// and waits for the parts of one that were written apart.
  std::int64_t place_ = 0;
};

}  // namespace ORLFoundation

template <>
struct std::hash<ORLFoundation::NSDecimal> {
  std::size_t operator()(const ORLFoundation::NSDecimal& value) const noexcept {
    return value.hash();
  }
};
