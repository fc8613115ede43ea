
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

NSComparisonResult NSNumber::compare(const NSNumber& other) const {
  return std::visit([](const auto& left,
                       const auto& right) { return internal::object::compareExactly(left, right); },
                    value_, other.value_);
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
  if (const auto* decimal = std::get_if<NSDecimal>(&value_))
    return decimal->isNaN() || decimal->doubleValue() != 0;
  return doubleValue() != 0;
}

std::int32_t NSNumber::intValue() const { return static_cast<std::int32_t>(integerValue()); }

NSInteger NSNumber::integerValue() const {
  switch (kind()) {
    case Kind::Boolean:
      return std::get<bool>(value_) ? 1 : 0;
    case Kind::Integer:
      return std::get<std::int64_t>(value_);
    case Kind::UnsignedInteger:
      return static_cast<NSInteger>(std::get<std::uint64_t>(value_));
    case Kind::Double:
      return truncated(std::get<double>(value_));
    case Kind::Decimal:
      return truncated<NSInteger>(std::get<NSDecimal>(value_));
  }
  return 0;
}

NSUInteger NSNumber::unsignedIntegerValue() const {
  const double nearest = doubleValue();
  if (nearest < 0 || kind() == Kind::UnsignedInteger || kind() == Kind::Integer)
    return static_cast<NSUInteger>(integerValue());
  if (const auto* decimal = std::get_if<NSDecimal>(&value_)) return truncated<NSUInteger>(*decimal);
  if (nearest >= kTwoTo64) return NSUIntegerMax;
  return std::isnan(nearest) ? 0 : static_cast<NSUInteger>(nearest);
}

double NSNumber::doubleValue() const {
  switch (kind()) {
    case Kind::Boolean:
      return std::get<bool>(value_) ? 1 : 0;
    case Kind::Integer:
      return static_cast<double>(std::get<std::int64_t>(value_));
    case Kind::UnsignedInteger:
      return static_cast<double>(std::get<std::uint64_t>(value_));
    case Kind::Double:
      return std::get<double>(value_);
    case Kind::Decimal:
      return std::get<NSDecimal>(value_).doubleValue();
  }
  return 0;
}

NSDecimal NSNumber::decimalValue() const {
  switch (kind()) {
    case Kind::Boolean:
      return NSDecimal::fromInteger(std::get<bool>(value_) ? 1 : 0);
    case Kind::Integer:
      return NSDecimal::fromInteger(std::get<std::int64_t>(value_));
    case Kind::UnsignedInteger:
      return NSDecimal::fromUnsigned(std::get<std::uint64_t>(value_));
    case Kind::Double:
      return NSDecimal::parse(shortestText(std::get<double>(value_)));
    case Kind::Decimal:
      return std::get<NSDecimal>(value_);
  }
  return NSDecimal::notANumber();
}

std::string NSNumber::stringValue() const {
  switch (kind()) {
    case Kind::Boolean:
      return std::get<bool>(value_) ? "1" : "0";
    case Kind::Integer:
      return std::to_string(std::get<std::int64_t>(value_));
    case Kind::UnsignedInteger:
      return std::to_string(std::get<std::uint64_t>(value_));
    case Kind::Double:
      return shortestText(std::get<double>(value_));
    case Kind::Decimal:
      return std::get<NSDecimal>(value_).stringValue();
  }
  return "";
}

}  // namespace ORLFoundation
