
#include <ORLFoundation/platform/object/NSNumber.h>

#include <ORLFoundation/platform/object/internal/ExactComparison.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string_view>

namespace ORLFoundation {
namespace {

constexpr double kTwoTo63 = 9223372036854775808.0;
constexpr double kTwoTo64 = 18446744073709551616.0;
/// Whole doubles from here on are printed with an exponent.
constexpr double kPlainIntegersEnd = 1e16;
constexpr int kFewestDigits = 15;
constexpr int kMostDigits = 17;

/// With as few digits as read back as the same double.
std::string shortestText(double value) {
  char text[32];
  if (std::fabs(value) < kPlainIntegersEnd && value == std::trunc(value)) {
    std::snprintf(text, sizeof text, "%.0f", value);
    return text;
  }
  for (int digits = kFewestDigits; digits <= kMostDigits; ++digits) {
    std::snprintf(text, sizeof text, "%.*g", digits, value);
    double back = 0;
    const std::string_view written(text);
    std::from_chars(written.data(), written.data() + written.size(), back);
    if (back == value) break;
  }
  return text;
}

NSInteger truncated(double value) {
  if (std::isnan(value)) return 0;
  if (value >= kTwoTo63) return NSIntegerMax;
  if (value < -kTwoTo63) return NSIntegerMin;
  return static_cast<NSInteger>(value);
}

/// The digits before the decimal mark; ends at the nearer end of the range.
template <class Integer>
Integer truncated(const NSDecimal& decimal) {
  const std::string text = decimal.stringValue();
  if (decimal.isNaN()) return 0;
  const std::string_view whole = std::string_view(text).substr(0, text.find('.'));
  Integer value = 0;
  const auto result = std::from_chars(whole.data(), whole.data() + whole.size(), value);
  if (result.ec != std::errc::result_out_of_range) return value;
  return text.starts_with('-') ? std::numeric_limits<Integer>::min()
                               : std::numeric_limits<Integer>::max();
}

}  // namespace

static_assert(std::is_trivially_copyable_v<NSNumber>);

template <class Visitor>
auto NSNumber::visited(Visitor visitor) const {
  switch (kind_) {
    case Kind::Boolean:
      return visitor(boolean_);
    case Kind::Integer:
      return visitor(integer_);
    case Kind::UnsignedInteger:
      return visitor(unsigned_);
    case Kind::Double:
      return visitor(double_);
    default:
      return visitor(decimal_);
  }
}

NSComparisonResult NSNumber::compare(const NSNumber& other) const {
  return visited([&other](const auto& left) {
    return other.visited(
        [&left](const auto& right) { return internal::object::compareExactly(left, right); });
  });
}

bool NSNumber::isEqualToNumber(const std::optional<NSNumber>& other) const {
  return other && compare(*other) == NSOrderedSame;
}

// Equal numbers have the same nearest double, whatever their kinds.
NSUInteger NSNumber::hash() const {
  const double value = doubleValue();
  if (std::isnan(value)) return 0x6e616e;
  return std::hash<double>{}(value + 0.0);
}

bool NSNumber::boolValue() const {
  if (kind_ == Kind::Decimal) return decimal_.isNaN() || decimal_.doubleValue() != 0;
  return doubleValue() != 0;
}

std::int32_t NSNumber::intValue() const { return static_cast<std::int32_t>(integerValue()); }

NSInteger NSNumber::integerValue() const {
  switch (kind()) {
    case Kind::Boolean:
      return boolean_ ? 1 : 0;
    case Kind::Integer:
      return integer_;
    case Kind::UnsignedInteger:
      return static_cast<NSInteger>(unsigned_);
    case Kind::Double:
      return truncated(double_);
    case Kind::Decimal:
      return truncated<NSInteger>(decimal_);
  }
  return 0;
}

NSUInteger NSNumber::unsignedIntegerValue() const {
  const double nearest = doubleValue();
  if (nearest < 0 || kind() == Kind::UnsignedInteger || kind() == Kind::Integer)
    return static_cast<NSUInteger>(integerValue());
  if (kind_ == Kind::Decimal) return truncated<NSUInteger>(decimal_);
  if (nearest >= kTwoTo64) return NSUIntegerMax;
  return std::isnan(nearest) ? 0 : static_cast<NSUInteger>(nearest);
}

double NSNumber::doubleValue() const {
  switch (kind()) {
    case Kind::Boolean:
      return boolean_ ? 1 : 0;
    case Kind::Integer:
      return static_cast<double>(integer_);
    case Kind::UnsignedInteger:
      return static_cast<double>(unsigned_);
    case Kind::Double:
      return double_;
    case Kind::Decimal:
      return decimal_.doubleValue();
  }
  return 0;
}

NSDecimal NSNumber::decimalValue() const {
  switch (kind()) {
    case Kind::Boolean:
      return NSDecimal::fromInteger(boolean_ ? 1 : 0);
    case Kind::Integer:
      return NSDecimal::fromInteger(integer_);
    case Kind::UnsignedInteger:
      return NSDecimal::fromUnsigned(unsigned_);
    case Kind::Double:
      return NSDecimal::parse(shortestText(double_));
    case Kind::Decimal:
      return decimal_;
  }
  return NSDecimal::notANumber();
}

std::string NSNumber::stringValue() const {
  switch (kind()) {
    case Kind::Boolean:
      return boolean_ ? "1" : "0";
    case Kind::Integer:
      return std::to_string(integer_);
    case Kind::UnsignedInteger:
      return std::to_string(unsigned_);
    case Kind::Double:
      return shortestText(double_);
    case Kind::Decimal:
      return decimal_.stringValue();
  }
  return "";
}

}  // namespace ORLFoundation
