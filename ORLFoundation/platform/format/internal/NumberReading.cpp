
#include <ORLFoundation/platform/format/internal/NumberReading.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <unicode/fmtable.h>
#include <unicode/parsepos.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>

namespace ORLFoundation::internal::format {
namespace {

using base::isDigit;
using base::isLetter;

// A lenient reading of words costs that many times a strict one, nearly.
constexpr NSUInteger kCostOfLeniency = 16;

bool isBlank(char16_t unit) noexcept {
  return unit == u' ' || unit == u'\t' || (unit > 0x7F && u_charType(unit) == U_SPACE_SEPARATOR);
}

// Whether a number in words surely ends before a unit: no rule of any language has these marks, and
// of a sign behind a digit or a letter only an exponent knows ("1E+5").
bool endsWords(std::u16string_view units, std::size_t i) noexcept {
  const char16_t unit = units[i];
  if (unit == u'*' || unit == u'/' || unit == u'[' || unit == u']') return true;
  if (unit != u'+' || i == 0) return false;
  const char16_t before = units[i - 1];
  const bool mayBeExponent =
      (before == u'E' || before == u'e') && (i == 1 || !isLetter(units[i - 2]));
  return isDigit(before) || (isLetter(before) && !mayBeExponent);
}

// What ICU gets of a text.
struct Window {
  std::u16string_view units;
  bool isCut = false;  // by the bound, so that a number that reaches its end is too long
};

Window windowOf(std::u16string_view units, bool words) {
  Window window{units.substr(0, NSNumberText::kMostUnitsOfNumber),
                units.size() > NSNumberText::kMostUnitsOfNumber};
  if (!words) return window;
  for (std::size_t i = 0; i < window.units.size(); ++i)
    if (endsWords(window.units, i)) return {window.units.substr(0, i), false};
  return window;
}

std::optional<NSNumber> decimalOf(icu::Formattable& number) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::StringPiece digits = number.getDecimalNumber(status);
  if (U_FAILURE(status)) return std::nullopt;
  const NSDecimal decimal =
      NSDecimal::parse({digits.data(), static_cast<std::size_t>(digits.size())});
  if (decimal.isNaN()) return std::nullopt;
  return decimal;
}

std::optional<NSNumber> numberOf(icu::Formattable& number, bool decimals) {
  if (decimals) return decimalOf(number);
  UErrorCode status = U_ZERO_ERROR;
  if (number.getType() != icu::Formattable::kDouble) return number.getInt64(status);
  return number.getDouble(status);
}

// Digits of a plain number, as far as they have been read.
struct PlainDigits {
  static constexpr int kMost = 18;
  std::uint64_t mantissa = 0;
  int count = 0;

  // Reads digits from i on; false when they are too many.
  bool read(std::u16string_view units, std::size_t& i) noexcept {
    for (; i < units.size() && isDigit(units[i]); ++i) {
      if (++count > kMost) return false;
      mantissa = mantissa * 10 + static_cast<std::uint64_t>(units[i] - u'0');
    }
    return true;
  }
};

// Reads groups of three digits, each behind its mark; false when they are not such.
bool readGroups(PlainDigits& digits, std::u16string_view units, std::size_t& i,
                char16_t mark) noexcept {
  if (i > 3) return false;
  while (i < units.size() && units[i] == mark) {
    const std::size_t start = ++i;
    if (!digits.read(units, i) || i - start != 3) return false;
  }
  return true;
}

// Whether nothing that stands at i can belong to the number before it.
bool endsPlainly(PlainMarks::Reach reach, std::u16string_view units, std::size_t i) noexcept {
  if (i == units.size()) return true;
  switch (units[i]) {
    case u'+':
    case u'*':
    case u'/':
    case u'[':
    case u']':
      return true;
    case u'-':
      return reach != PlainMarks::Reach::Words;
    default:
      return false;
  }
}

NSNumber plainNumber(const PlainDigits& digits, int exponent, bool decimals) noexcept {
  if (decimals) return NSDecimal(digits.mantissa, exponent, false);
  if (exponent == 0) return static_cast<std::int64_t>(digits.mantissa);
  // Both are exact doubles, so that the quotient is the nearest one.
  double power = 1;
  for (int i = exponent; i < 0; ++i) power *= 10;
  const double quotient = static_cast<double>(digits.mantissa) / power;
  const auto whole = static_cast<std::int64_t>(quotient);
  if (static_cast<double>(whole) == quotient) return whole;
  return quotient;
}

}  // namespace

std::optional<NumberReading> readPlainNumber(const PlainMarks& marks, bool generatesDecimals,
                                             std::u16string_view units) noexcept {
  using Reach = PlainMarks::Reach;
  if (marks.reach == Reach::Nothing || units.empty() || !isDigit(units[0])) return std::nullopt;
  PlainDigits digits;
  std::size_t i = 0;
  int exponent = marks.exponent;
  if (!digits.read(units, i)) return std::nullopt;
  if (marks.reach == Reach::Fractions && i < units.size()) {
    if (marks.grouping != 0 && units[i] == marks.grouping &&
        !readGroups(digits, units, i, marks.grouping))
      return std::nullopt;
    if (i < units.size() && units[i] == marks.decimal) {
      const std::size_t start = ++i;
      if (!digits.read(units, i) || i == start) return std::nullopt;
      exponent -= static_cast<int>(i - start);
    }
  }
  // What is surely exact: ICU takes digits among words for doubles beyond 32 bits.
  const int most = marks.reach == Reach::Words ? 9 : generatesDecimals ? PlainDigits::kMost : 15;
  if (digits.count > most) return std::nullopt;
  if (!endsPlainly(marks.reach, units, i)) return std::nullopt;
  return NumberReading{plainNumber(digits, exponent, generatesDecimals), i};
}

std::optional<NumberReading> readNumberByICU(const NumberFormats& formats, NSNumberText& text,
                                             NSRange range) {
  const std::u16string_view units = text.units().substr(range.location, range.length);
  const auto blanks = static_cast<std::size_t>(
      std::find_if_not(units.begin(), units.end(), isBlank) - units.begin());
  const bool words = formats.readsWords();
  const Window window = windowOf(units.substr(blanks), words);
  if (window.units.empty()) return std::nullopt;
  const NSUInteger cost = formats.settings.isLenient ? kCostOfLeniency : 1;
  if (words && !text.spendUnitsInWords(window.units.size() * cost)) return std::nullopt;
  // Stands for the units without a copy of them.
  const icu::UnicodeString alias(false, window.units.data(),
                                 static_cast<std::int32_t>(window.units.size()));
  icu::Formattable result;
  icu::ParsePosition position(0);
  formats.current().parse(alias, result, position);
  const std::int32_t end = position.getIndex();
  if (end <= 0 || position.getErrorIndex() >= 0) return std::nullopt;
  const auto taken = static_cast<std::size_t>(end);
  if (window.isCut && taken >= window.units.size()) return std::nullopt;
  const auto number = numberOf(result, formats.settings.generatesDecimals);
  if (!number) return std::nullopt;
  return NumberReading{*number, blanks + taken};
}

std::optional<NumberReading> readNumber(const NumberFormats& formats, NSNumberText& text,
                                        NSRange range) {
  const auto plain = readPlainNumber(formats.plainMarks(), formats.settings.generatesDecimals,
                                     text.units().substr(range.location, range.length));
  return plain ? plain : readNumberByICU(formats, text, range);
}

}  // namespace ORLFoundation::internal::format
