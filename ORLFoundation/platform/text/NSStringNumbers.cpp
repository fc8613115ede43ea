
#include <ORLFoundation/platform/text/NSStringNumbers.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/CheckedArithmetic.h>
#include <ORLFoundation/platform/base/NumberText.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <system_error>

namespace ORLFoundation {
namespace {

namespace base = internal::base;
using base::endOfDigits;
using base::takeSign;

std::string_view withoutLeadingSpace(std::string_view text) noexcept {
  while (!text.empty()) {
    if (text.front() > ' ' && base::isASCII(text.front())) break;
    const base::UTF8Character first = base::firstUTF8Character(text);
    const auto& space = NSCharacterSet::whitespaceAndNewlineCharacterSet();
    if (first.isBroken || !space->longCharacterIsMember(first.codePoint)) break;
    text.remove_prefix(first.length);
  }
  return text;
}

// Digits as a number with the sign given; ends at the nearest end of 64 bits.
NSInteger digitsValue(std::string_view digits, bool negative) noexcept {
  NSInteger value = 0;
  for (const char character : digits) {
    if (!base::isDigit(character)) break;
    const NSInteger digit = negative ? '0' - character : character - '0';
    const auto tens = base::checkedProduct(value, 10);
    const auto next = tens ? base::checkedSum(*tens, digit) : std::nullopt;
    if (!next) return negative ? NSIntegerMin : NSIntegerMax;
    value = *next;
  }
  return value;
}

/// Where the digits of an exponent end; `from` where none begins there.
std::size_t endOfExponent(std::string_view text, std::size_t from) noexcept {
  if (from >= text.size() || (text[from] != 'e' && text[from] != 'E')) return from;
  std::size_t digits = from + 1;
  if (digits < text.size() && (text[digits] == '+' || text[digits] == '-')) ++digits;
  const std::size_t end = endOfDigits(text, digits);
  return end > digits ? end : from;
}

/// The unsigned decimal number at the beginning of a text; empty when there is none.
std::string_view decimalPart(std::string_view text) noexcept {
  std::size_t end = endOfDigits(text, 0);
  std::size_t digits = end;
  if (end < text.size() && text[end] == '.') {
    const std::size_t fraction = endOfDigits(text, end + 1);
    digits += fraction - end - 1;
    end = fraction;
  }
  return digits == 0 ? std::string_view() : text.substr(0, endOfExponent(text, end));
}

/// Whether a number that a double does not hold is too large rather than too small: the place of
/// its first digit that is not 0, moved by its exponent.
bool isTooLarge(std::string_view number) noexcept {
  const std::size_t mantissaEnd = std::min(number.find_first_of("eE"), number.size());
  const std::string_view mantissa = number.substr(0, mantissaEnd);
  const auto point = static_cast<NSInteger>(std::min(mantissa.find('.'), mantissa.size()));
  const auto first = static_cast<NSInteger>(mantissa.find_first_not_of("0."));
  if (mantissaEnd == number.size()) return first < point;
  std::string_view exponent = number.substr(mantissaEnd + 1);
  const bool negative = takeSign(exponent);
  const auto place = base::checkedSum(digitsValue(exponent, negative), point - first);
  if (!place) return !negative;
  return *place > 0;
}

}  // namespace

NSInteger integerValue(std::string_view text) noexcept {
  text = withoutLeadingSpace(text);
  const bool negative = takeSign(text);
  return digitsValue(text, negative);
}

long long longLongValue(std::string_view text) noexcept { return integerValue(text); }

double doubleValue(std::string_view text) {
  text = withoutLeadingSpace(text);
  const bool negative = takeSign(text);
  const std::string_view number = decimalPart(text);
  double value = 0;
  const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
  if (result.ec == std::errc::result_out_of_range)
    value = isTooLarge(number) ? std::numeric_limits<double>::infinity() : 0;
  return negative ? -value : value;
}

bool boolValue(std::string_view text) noexcept {
  text = withoutLeadingSpace(text);
  static_cast<void>(takeSign(text));
  text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
  return !text.empty() && std::string_view("YyTt123456789").find(text.front()) != text.npos;
}

}  // namespace ORLFoundation
