#include "values/decimal_text.h"

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <unicode/locid.h>
#include <unicode/numberformatter.h>

#include <algorithm>

#include "cli/failure.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using internal::base::isDigit;

constexpr std::size_t kMostDigits = 38;

std::size_t digitRun(std::string_view text, std::size_t from) {
  std::size_t end = from;
  while (end < text.size() && isDigit(text[end])) ++end;
  return end - from;
}

std::size_t afterSign(std::string_view text, std::size_t from) {
  return from < text.size() && (text[from] == '-' || text[from] == '+') ? from + 1 : from;
}

/// Whether all of the text is sign, digits with a point, exponent; `mantissa` gets the part before
/// the exponent.
bool hasDecimalForm(std::string_view text, std::string_view& mantissa) {
  std::size_t at = afterSign(text, 0);
  std::size_t digits = digitRun(text, at);
  at += digits;
  if (at < text.size() && text[at] == '.') {
    const std::size_t fraction = digitRun(text, at + 1);
    digits += fraction;
    at += 1 + fraction;
  }
  if (digits == 0) return false;
  mantissa = text.substr(0, at);
  if (at == text.size()) return true;
  if (text[at] != 'e' && text[at] != 'E') return false;
  at = afterSign(text, at + 1);
  const std::size_t exponent = digitRun(text, at);
  return exponent > 0 && exponent <= 4 && at + exponent == text.size();
}

/// Digits without the zeros before the first other digit and after the last.
std::size_t significantDigits(std::string_view mantissa) {
  std::string digits;
  std::copy_if(mantissa.begin(), mantissa.end(), std::back_inserter(digits),
               [](char c) { return isDigit(c); });
  const std::size_t first = digits.find_first_not_of('0');
  return first == std::string::npos ? 0 : digits.find_last_not_of('0') - first + 1;
}

}  // namespace

std::optional<NSDecimalNumber> readDecimal(std::string_view text) {
  std::string_view mantissa;
  if (!hasDecimalForm(text, mantissa) || significantDigits(mantissa) > kMostDigits)
    return std::nullopt;
  const NSDecimalNumber number = NSDecimalNumber::decimalNumberWithString(std::string(text));
  if (number.compare(NSDecimalNumber::notANumber()) == NSOrderedSame) return std::nullopt;
  return number;
}

NSDecimalNumber readDecimalArgument(std::string_view argument, std::string_view text) {
  if (const std::optional<NSDecimalNumber> number = readDecimal(text)) return *number;
  throw UsageFailure(std::string(argument) + ": expected " + std::string(kDecimalForm) + ", got '" +
                     std::string(text) + "'");
}

std::optional<NSDecimalNumber> readRate(std::string_view text) {
  if (!text.ends_with('%')) return readDecimal(text);
  text.remove_suffix(1);
  const std::optional<NSDecimalNumber> percent = readDecimal(text);
  if (!percent) return std::nullopt;
  try {
    return percent->decimalNumberByMultiplyingBy(NSDecimalNumber::decimalNumberWithString("0.01"));
  } catch (const NSException&) {
    return std::nullopt;
  }
}

NSDecimalNumber readRateArgument(std::string_view argument, std::string_view text) {
  if (const std::optional<NSDecimalNumber> rate = readRate(text)) return *rate;
  throw UsageFailure(std::string(argument) + ": expected " + std::string(kRateForm) + ", got '" +
                     std::string(text) + "'");
}

int placesAfterPoint(const NSDecimalNumber& number) {
  const std::string text = number.stringValue();
  const std::size_t point = text.find('.');
  return point == std::string::npos ? 0 : static_cast<int>(text.size() - point - 1);
}

struct DecimalPrinter::Formatter {
  icu::number::LocalizedNumberFormatter numbers;
};

DecimalPrinter::DecimalPrinter(const std::string& locale, int fractionDigits)
    : formatter_(new Formatter{
          icu::number::NumberFormatter::withLocale(icu::Locale(locale.c_str()))
              .precision(icu::number::Precision::minMaxFraction(fractionDigits, 200))}) {}

DecimalPrinter::~DecimalPrinter() = default;
DecimalPrinter::DecimalPrinter(DecimalPrinter&&) noexcept = default;

std::string DecimalPrinter::text(const NSDecimalNumber& number) const {
  std::string plain = number.stringValue();
  UErrorCode status = U_ZERO_ERROR;
  const icu::number::FormattedNumber formatted =
      formatter_->numbers.formatDecimal(icu::StringPiece(plain), status);
  const icu::UnicodeString printed = formatted.toString(status);
  if (U_FAILURE(status)) return plain;
  std::string utf8;
  printed.toUTF8String(utf8);
  return utf8;
}

std::string DecimalPrinter::text(const std::optional<NSDecimalNumber>& number,
                                 std::string_view absent) const {
  return number ? text(*number) : std::string(absent);
}

}  // namespace orlftool
