#include <ORLFoundation/decimal/internal/ORLFAmountReader.h>

#include <ORLFoundation/decimal/ORLFDecimalNumber.h>
#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/CheckedArithmetic.h>
#include <ORLFoundation/platform/base/FixedText.h>
#include <ORLFoundation/platform/base/UTF16.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>

#include <algorithm>
#include <iterator>
#include <limits>

namespace ORLFoundation::internal::decimal {
namespace {

/// The digits that a group between two separators holds at least.
constexpr std::size_t kSmallestGroup = 2;
constexpr std::size_t kThousandsGroup = 3;
constexpr int kFractionPlaces = 4;  // "%.4f"

using base::isDigit;

bool isSpace(char32_t c) {
  static const NSCharacterSet& spaces = *NSCharacterSet::whitespaceAndNewlineCharacterSet();
  return spaces.longCharacterIsMember(c);
}

bool isLetter(char32_t c) {
  static const NSCharacterSet& letters = *NSCharacterSet::letterCharacterSet();
  return letters.longCharacterIsMember(c);
}

bool isNine(char c) { return c == '9'; }

/// Adds one to the whole number that ends at `end`; gives its new end. No digits count as 0.
std::size_t addOne(std::string& digits, std::size_t end) {
  const auto behind = std::next(digits.begin(), static_cast<std::ptrdiff_t>(end));
  const auto nines = std::find_if_not(std::make_reverse_iterator(behind), digits.rend(), isNine);
  std::fill(nines.base(), behind, '0');
  if (nines != digits.rend() && isDigit(*nines)) {
    ++*nines;
    return end;
  }
  digits.insert(nines.base(), '1');
  return end + 1;
}

std::u16string_view digitsAtBeginning(std::u16string_view text) {
  const auto end = std::find_if_not(text.begin(), text.end(), isDigit<char16_t>);
  return {text.begin(), end};
}

std::u16string_view digitsAtEnd(std::u16string_view text) {
  const auto before = std::find_if_not(text.rbegin(), text.rend(), isDigit<char16_t>);
  return {before.base(), text.end()};
}

/// The value of a run of digits; one that is too long ends at the largest integer.
std::int64_t integerOf(std::u16string_view digits) {
  std::int64_t value = 0;
  for (const char16_t digit : digits) {
    const auto shifted = base::checkedProduct(value, 10);
    const auto longer = shifted ? base::checkedSum(*shifted, digit - u'0') : std::nullopt;
    if (!longer) return std::numeric_limits<std::int64_t>::max();
    value = *longer;
  }
  return value;
}

}  // namespace

ORLFAmountReader::ORLFAmountReader(std::string_view text) : text_(base::utf16Units(text)) {}

std::optional<NSDecimalNumber> ORLFAmountReader::read() {
  for (std::size_t i = 0; i < text_.size(); ++i) {
    rememberEnds(i);
    if (!take(i)) return std::nullopt;
  }
  if (separators_.count == 0 && fraction_.length > 0) placeFraction();
  if (separators_.count > 0) placePoint();
  const NSDecimalNumber number = NSDecimalNumber::decimalNumberWithString(buffer_);
  if (number == NSDecimalNumber::notANumber()) return std::nullopt;
  if (first_ == u'(' && last_ == u')') return orlfDecimalNumberByNegatingNumber(number);
  return number;
}

char32_t ORLFAmountReader::codePointAt(std::size_t index) const {
  const char32_t unit = text_[index];
  if (!base::isLeadingUnit(unit)) return unit;
  // No half stands alone in units made from UTF-8.
  return base::codePointOfUnits(unit, text_[index + 1]);
}

void ORLFAmountReader::rememberEnds(std::size_t index) {
  if (isSpace(codePointAt(index))) return;
  last_ = text_[index];
  if (first_ == 0) first_ = last_;
}

bool ORLFAmountReader::take(std::size_t index) {
  const char16_t c = text_[index];
  if (isDigit(c)) return takeDigit(static_cast<char>(c));
  switch (c) {
    case u',':
    case u'.':
      return takeSeparator(c);
    case u'E':
    case u'e':
      return takeExponent();
    case u'/':
      return takeSlash(index);
    case u'-':
      return takeMinus();
    case u'+':
      return takePlus();
    default:
      return takeOther(index);
  }
}

bool ORLFAmountReader::takeDigit(char digit) {
  if (!inExponent_) {
    ++separators_.digitsSince;
  } else if (previous() == 'e') {
    return false;  // An exponent needs its sign.
  }
  buffer_ += digit;
  return true;
}

bool ORLFAmountReader::takeSeparator(char16_t separator) {
  if (inExponent_) return false;
  const bool isFirst = separators_.count == 0;
  if (!isFirst && buffer_.size() - separators_.lastPosition < kSmallestGroup) return false;
  separators_.mixed = separators_.mixed || (!isFirst && separators_.last != separator);
  separators_.lastPosition = buffer_.size();
  separators_.last = separator;
  ++separators_.count;
  separators_.digitsSince = 0;
  return true;
}

bool ORLFAmountReader::takeExponent() {
  if (inExponent_) return false;
  buffer_ += 'e';
  inExponent_ = true;
  return true;
}

bool ORLFAmountReader::takeSlash(std::size_t index) {
  if (inExponent_ || fraction_.met) return false;
  const std::u16string_view text = text_;
  const std::u16string_view over = digitsAtEnd(text.substr(0, index));
  const std::u16string_view under = digitsAtBeginning(text.substr(index + 1));
  const std::int64_t denominator = integerOf(under);
  fraction_.met = true;
  fraction_.start = buffer_.size() - over.size();
  fraction_.length = over.size() + under.size();
  // 5/0 and 5/ are 5.
  fraction_.value = *orlfDecimalNumberByDividingBy(
      orlfDecimalNumberWithInteger(integerOf(over)),
      orlfDecimalNumberWithInteger(denominator == 0 ? 1 : denominator));
  return true;
}

bool ORLFAmountReader::takeMinus() {
  if (!buffer_.empty() && previous() != 'e') return false;
  buffer_ += '-';
  return true;
}

bool ORLFAmountReader::takePlus() {
  if (buffer_.empty()) return true;
  if (previous() != 'e') return false;
  buffer_ += '+';
  return true;
}

bool ORLFAmountReader::takeOther(std::size_t index) const {
  return buffer_.empty() || !isLetter(codePointAt(index));
}

/// Writes the fraction's value in place of its digits. 3 1/2 becomes 3.5000; an improper fraction
/// only stands alone. A proper one that rounds to 1 is carried: 3 99999/100000 becomes 4.0000.
void ORLFAmountReader::placeFraction() {
  const base::FixedText<kFractionPlaces> value(fraction_.value.doubleValue());
  std::string text(value.view());
  const bool isProper = fraction_.value.compare(NSDecimalNumber::one()) == NSOrderedAscending;
  const bool isAlone = fraction_.start == 0 && fraction_.length == buffer_.size();
  if (!isProper && !isAlone) {
    buffer_.erase(fraction_.start, fraction_.length);
    NSLog("Cannot append improper fraction to end of amount: " + buffer_);
    return;
  }
  if (isProper) {
    if (text.front() == '1') fraction_.start = addOne(buffer_, fraction_.start);
    text.erase(0, 1);
  }
  buffer_.replace(fraction_.start, fraction_.length, text);
}

/// Puts a point at the last separator, unless it ends a group of thousands. A single "." never
/// does: 1.234 is a decimal.
void ORLFAmountReader::placePoint() {
  const bool isSinglePoint = separators_.count == 1 && separators_.last == u'.';
  const bool endsThousands =
      !separators_.mixed && separators_.digitsSince == kThousandsGroup && !isSinglePoint;
  if (!endsThousands) buffer_.insert(separators_.lastPosition, 1, '.');
}

}  // namespace ORLFoundation::internal::decimal
