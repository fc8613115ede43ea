#include "interchange/date_shape.h"

#include <ORLFoundation/platform/base/ASCII.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

#include "values/trimmed.h"

namespace orlftool {
namespace {

using namespace ORLFoundation::internal;

/// Runs of digits and of letters, with what stands between left out.
std::vector<std::string_view> wordsOf(std::string_view text) {
  std::vector<std::string_view> words;
  while (!text.empty()) {
    const bool isNumber = base::isDigit(text.front());
    const bool isWord = base::isLetter(text.front());
    std::size_t end = 1;
    while (end < text.size() && (isNumber || isWord) &&
           (isNumber ? base::isDigit(text[end]) : base::isLetter(text[end])))
      ++end;
    if (isNumber || isWord) words.push_back(text.substr(0, end));
    text.remove_prefix(end);
  }
  return words;
}

bool isNumber(std::string_view word) { return !word.empty() && base::isDigit(word.front()); }
int valueOf(std::string_view digits) { return std::atoi(std::string(digits.substr(0, 4)).c_str()); }

bool isMonthName(std::string_view word) {
  constexpr std::array<std::string_view, 12> kMonths{
      "january", "february", "march",     "april",   "may",      "june",
      "july",    "august",   "september", "october", "november", "december"};
  if (word.size() < 3) return false;
  const std::string lower = base::lowerASCII(word);
  return lower == "sept" ||
         std::any_of(kMonths.begin(), kMonths.end(), [&](std::string_view month) {
           return month == lower || (lower.size() == 3 && month.starts_with(lower));
         });
}

/// Whether three numbers can be a day, a month and a year in some order.
bool mayBeDate(const std::array<std::string_view, 3>& numbers) {
  int months = 0, days = 0, years = 0;
  for (const std::string_view number : numbers) {
    const int value = valueOf(number);
    if (number.size() == 3 || number.size() > 4) return false;
    years += number.size() == 4 ? 1 : 0;
    if (number.size() == 4 && (value < 1900 || value > 2099)) return false;
    if (number.size() > 2 || value == 0) continue;
    months += value <= 12 ? 1 : 0;
    days += value <= 31 ? 1 : 0;
  }
  return years <= 1 && months >= 1 && days >= 2;
}

std::string joined(const std::array<std::string_view, 3>& numbers) {
  return std::string(numbers[0]) + "/" + std::string(numbers[1]) + "/" + std::string(numbers[2]);
}

std::optional<DateShape> numericDate(std::string_view text) {
  std::array<std::string_view, 3> numbers;
  char mark = 0;
  for (std::size_t part = 0; part < numbers.size(); ++part) {
    std::size_t end = 0;
    while (end < text.size() && base::isDigit(text[end])) ++end;
    if (end == 0) return std::nullopt;
    numbers.at(part) = text.substr(0, end);
    text.remove_prefix(end);
    if (part == 2) break;
    if (text.empty() || std::string_view("/.-").find(text.front()) == std::string_view::npos)
      return std::nullopt;
    if (mark != 0 && mark != text.front()) return std::nullopt;
    mark = text.front();
    text.remove_prefix(1);
  }
  const bool endsHere = text.empty() || std::string_view(" T,").find(text.front()) != text.npos;
  if (!endsHere || !mayBeDate(numbers)) return std::nullopt;
  return DateShape{joined(numbers), 0};
}

/// Eight digits, or fourteen with a time, with a year at one end.
std::optional<DateShape> compactDate(std::string_view text) {
  const auto* const end = std::find_if_not(text.begin(), text.end(), base::isDigit<char>);
  const auto digits = static_cast<std::size_t>(end - text.begin());
  if (!(digits == 8 && digits == text.size()) && digits != 14) return std::nullopt;
  const auto part = [text](std::size_t at, std::size_t length) { return text.substr(at, length); };
  const std::array<std::string_view, 3> yearFirst{part(0, 4), part(4, 2), part(6, 2)};
  if (mayBeDate(yearFirst) && valueOf(yearFirst[1]) <= 12 && valueOf(yearFirst[1]) > 0)
    return DateShape{joined(yearFirst), 0};
  const std::array<std::string_view, 3> yearLast{part(0, 2), part(2, 2), part(4, 4)};
  if (digits == 8 && mayBeDate(yearLast)) return DateShape{joined(yearLast), 0};
  return std::nullopt;
}

std::uint8_t bitOfOrder(int order) { return static_cast<std::uint8_t>(1U << order); }

std::optional<DateShape> namedDate(std::string_view text) {
  // Most texts hold too many bytes, or no number.
  constexpr std::size_t kLongest = 100;
  if (text.size() > kLongest || text.find_first_of("0123456789") == text.npos) return std::nullopt;
  const std::vector<std::string_view> words = wordsOf(text);
  if (words.size() < 3) return std::nullopt;
  const bool isSecond = isNumber(words[0]) && isMonthName(words[1]) && isNumber(words[2]);
  const bool isFirst = isMonthName(words[0]) && isNumber(words[1]) && isNumber(words[2]);
  if (!isSecond && !isFirst) return std::nullopt;
  // Times may follow, and nothing else.
  const bool endsInTime = std::all_of(words.begin() + 3, words.end(), [](std::string_view word) {
    return isNumber(word) || word == "AM" || word == "PM";
  });
  const std::string_view left = isSecond ? words[0] : words[1];
  const std::string_view right = words[2];
  if (!endsInTime || left.size() > 4 || right.size() > 4) return std::nullopt;
  const auto mayBeDay = [](std::string_view number) {
    return number.size() <= 2 && valueOf(number) >= 1 && valueOf(number) <= 31;
  };
  std::uint8_t orders = 0;
  if (mayBeDay(left)) orders |= bitOfOrder(isSecond ? 1 : 2);
  if (mayBeDay(right)) orders |= bitOfOrder(isSecond ? 3 : 5);
  return orders == 0 ? std::nullopt : std::optional(DateShape{"", orders});
}

}  // namespace

std::optional<DateShape> dateShapeOf(std::string_view cell) {
  const std::string_view text = trimmed(cell);
  if (auto date = numericDate(text)) return date;
  if (auto date = compactDate(text)) return date;
  return namedDate(text);
}

}  // namespace orlftool
