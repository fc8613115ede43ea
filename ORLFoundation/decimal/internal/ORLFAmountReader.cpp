#include <ORLFoundation/decimal/internal/ORLFAmountReader.h>

#include <ORLFoundation/decimal/ORLFDecimalNumber.h>
#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/CheckedArithmetic.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>

#include <algorithm>
#include <charconv>
#include <limits>

namespace ORLFoundation::internal::decimal {
namespace {

/// The digits that a group between two separators holds at least.
constexpr std::size_t kSmallestGroup = 2;
constexpr int kThousandsGroup = 3;
constexpr int kFractionPlaces = 4;

using base::isDigit;

bool isSpace(char32_t c) {
  static const NSCharacterSet& spaces = *NSCharacterSet::whitespaceAndNewlineCharacterSet();
  return spaces.longCharacterIsMember(c);
}

bool isLetter(char32_t c) {
  static const NSCharacterSet& letters = *NSCharacterSet::letterCharacterSet();
  return letters.longCharacterIsMember(c);
}

constexpr char32_t kFirstOfPairs = 0xD800;
constexpr char32_t kSecondOfPairs = 0xDC00;
constexpr char32_t kFirstPair = 0x10000;

bool isFirstOfPair(char32_t unit) noexcept {
  return unit >= kFirstOfPairs && unit < kSecondOfPairs;
}
bool isSecondOfPair(char32_t unit) noexcept { return unit >= kSecondOfPairs && unit < 0xE000; }

/// Broken bytes stand for U+FFFD.
std::u16string utf16(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  while (!text.empty()) {
    const base::UTF8Character character = base::firstUTF8Character(text);
    text.remove_prefix(character.length);
    if (character.codePoint < kFirstPair) {
      units += static_cast<char16_t>(character.codePoint);
    } else {
      const char32_t offset = character.codePoint - kFirstPair;
      units += static_cast<char16_t>(kFirstOfPairs + (offset >> 10));
      units += static_cast<char16_t>(kSecondOfPairs + (offset & 0x3FF));
    }
  }
  return units;
}

/// "%.4f"
std::string fourPlaces(double value) {
  char text[64];
  const auto written =
      std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, kFractionPlaces);
  return {text, written.ptr};
}

/// Adds one to the whole number that ends at `end`; gives its new end. No digits count as 0.
std::size_t addOne(std::string& digits, std::size_t end) {
  std::size_t at = end;
  while (at > 0 && digits[at - 1] == '9') digits[--at] = '0';
  if (at > 0 && isDigit(digits[at - 1])) {
    ++digits[at - 1];
    return end;
  }
  digits.insert(at, 1, '1');
  return end + 1;
}

}  // namespace

ORLFAmountReader::ORLFAmountReader(std::string_view text) : text_(utf16(text)) {
  buffer_.reserve(text.size());
}

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
  // The text was well-formed: a second half follows its first.
  if (isSecondOfPair(text_[index])) --index;
  const char32_t unit = text_[index];
  if (!isFirstOfPair(unit)) return unit;
  return kFirstPair + ((unit - kFirstOfPairs) << 10) + (text_[index + 1] - kSecondOfPairs);
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
  std::size_t from = index;
  while (from > 0 && isDigit(text_[from - 1])) --from;
  std::size_t to = index + 1;
  while (to < text_.size() && isDigit(text_[to])) ++to;
  // 5/0 and 5/ are 5.
  const std::int64_t denominator = std::max<std::int64_t>(integerBetween(index + 1, to), 1);
  fraction_.met = true;
  fraction_.start = buffer_.size() - (index - from);
  fraction_.length = to - from - 1;
  fraction_.value =
      *orlfDecimalNumberByDividingBy(orlfDecimalNumberWithInteger(integerBetween(from, index)),
                                     orlfDecimalNumberWithInteger(denominator));
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

/// The value of a run of digits; one that is too long ends at the largest integer.
std::int64_t ORLFAmountReader::integerBetween(std::size_t from, std::size_t to) const {
  std::int64_t value = 0;
  for (; from < to; ++from) {
    const auto shifted = base::checkedProduct(value, 10);
    const auto longer = shifted ? base::checkedSum(*shifted, text_[from] - u'0') : std::nullopt;
    if (!longer) return std::numeric_limits<std::int64_t>::max();
    value = *longer;
  }
  return value;
}

/// Writes the fraction's value in place of its digits. 3 1/2 becomes 3.5000; an improper fraction
/// only stands alone. A proper one that rounds to 1 is carried: 3 99999/100000 becomes 4.0000.
void ORLFAmountReader::placeFraction() {
  std::string text = fourPlaces(fraction_.value.doubleValue());
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
