

#include <ORLFoundation/platform/object/internal/ExactComparison.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::object {
namespace {

constexpr double kTwoTo63 = 9223372036854775808.0;
constexpr double kTwoTo64 = 18446744073709551616.0;
/// No double has more digits than this; printed with as many it is exact.
constexpr int kDigitsOfDouble = 767;

template <class T>
NSComparisonResult order(const T& left, const T& right) noexcept {
  if (left < right) return NSOrderedAscending;
  return right < left ? NSOrderedDescending : NSOrderedSame;
}

/// A positive number as 0.DIGITS times ten to the exponent; no zeros at either end of the digits.
struct Digits {
  std::string digits;
  long exponent = 0;

  friend bool operator<(const Digits& left, const Digits& right) {
    if (left.exponent != right.exponent) return left.exponent < right.exponent;
    return left.digits < right.digits;
  }
};

/// Of a text such as "-12.50" or "-1.25e+01"; its sign is left out.
Digits digitsOf(std::string_view text) {
  Digits number;
  bool isFraction = false;
  std::size_t i = 0;
  for (; i < text.size() && text[i] != 'e'; ++i) {
    if (text[i] == '.') isFraction = true;
    if (text[i] < '0' || text[i] > '9') continue;
    const bool isLeadingZero = number.digits.empty() && text[i] == '0';
    if (!isLeadingZero) number.digits += text[i];
    if (isLeadingZero ? isFraction : !isFraction) number.exponent += isFraction ? -1 : 1;
  }
  if (i < text.size()) {
    long shift = 0;
    const bool hasPlus = i + 1 < text.size() && text[i + 1] == '+';
    std::from_chars(text.data() + i + (hasPlus ? 2 : 1), text.data() + text.size(), shift);
    number.exponent += shift;
  }
  number.digits.erase(number.digits.find_last_not_of('0') + 1);
  return number;
}

/// For a double and a decimal whose nearest double it is, digit by digit.
NSComparisonResult compareDigits(double left, const NSDecimal& right) {
  char text[kDigitsOfDouble + 32];
  std::snprintf(text, sizeof text, "%.*e", kDigitsOfDouble - 1, left);
  const NSComparisonResult magnitudes = order(digitsOf(text), digitsOf(right.stringValue()));
  return left < 0 ? reversed(magnitudes) : magnitudes;
}

}  // namespace

NSComparisonResult compareExactly(std::int64_t left, std::int64_t right) noexcept {
  return order(left, right);
}

NSComparisonResult compareExactly(std::int64_t left, std::uint64_t right) noexcept {
  return left < 0 ? NSOrderedAscending : order(static_cast<std::uint64_t>(left), right);
}

NSComparisonResult compareExactly(std::uint64_t left, std::uint64_t right) noexcept {
  return order(left, right);
}

NSComparisonResult compareExactly(double left, double right) noexcept {
  if (std::isnan(left) || std::isnan(right)) return order(!std::isnan(left), !std::isnan(right));
  return order(left, right);
}

NSComparisonResult compareExactly(std::int64_t left, double right) noexcept {
  if (std::isnan(right) || right < -kTwoTo63) return NSOrderedDescending;
  if (right >= kTwoTo63) return NSOrderedAscending;
  const auto whole = static_cast<std::int64_t>(right);
  if (left != whole) return order(left, whole);
  return order(0.0, right - static_cast<double>(whole));
}

NSComparisonResult compareExactly(std::uint64_t left, double right) noexcept {
  if (std::isnan(right) || right < 0) return NSOrderedDescending;
  if (right >= kTwoTo64) return NSOrderedAscending;
  const auto whole = static_cast<std::uint64_t>(right);
  if (left != whole) return order(left, whole);
  return order(0.0, right - static_cast<double>(whole));
}

NSComparisonResult compareExactly(const NSDecimal& left, const NSDecimal& right) {
  if (left.isNaN() || right.isNaN()) return order(!left.isNaN(), !right.isNaN());
  return left.compare(right);
}

NSComparisonResult compareExactly(std::int64_t left, const NSDecimal& right) {
  return compareExactly(NSDecimal::fromInteger(left), right);
}

NSComparisonResult compareExactly(std::uint64_t left, const NSDecimal& right) {
  return compareExactly(NSDecimal::fromUnsigned(left), right);
}

// Rounding to the nearest double keeps order: only a decimal that rounds to the double itself has
// to be looked at more closely.
NSComparisonResult compareExactly(double left, const NSDecimal& right) {
  if (right.isNaN()) return std::isnan(left) ? NSOrderedSame : NSOrderedDescending;
  const NSComparisonResult rough = compareExactly(left, right.doubleValue());
  if (rough != NSOrderedSame || left == 0) return rough;
  return compareDigits(left, right);
}

}  // namespace ORLFoundation::internal::object
