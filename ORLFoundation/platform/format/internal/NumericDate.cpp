#include <ORLFoundation/platform/format/internal/NumericDate.h>

#include <ORLFoundation/platform/base/ASCII.h>

#include <cstddef>

namespace ORLFoundation::internal::format {

namespace civil = base::civil;

namespace {

constexpr std::string_view kMarks = "/.-";
constexpr std::string_view kLetters = "dMy";
constexpr std::size_t kMostDigitsOfYear = 4;
constexpr std::int32_t kLastYear = 9999;

struct Digits {
  std::int32_t value = 0;
  std::size_t count = 0;
};

// The run of digits at the beginning, up to one more than are looked at.
Digits leadingDigits(std::string_view text) {
  Digits digits;
  while (digits.count < text.size() && digits.count <= kMostDigitsOfYear &&
         base::isDigit(text[digits.count]))
    digits.value = digits.value * 10 + (text[digits.count++] - '0');
  return digits;
}

void appendNumber(std::string& text, std::int32_t value, std::size_t width) {
  const std::string digits = std::to_string(value);
  if (digits.size() < width) text.append(width - digits.size(), '0');
  text += digits;
}

}  // namespace

std::optional<NumericDate> NumericDate::ofPattern(std::string_view pattern) {
  NumericDate date;
  std::array<bool, 3> seen{};
  std::size_t at = 0;
  for (std::size_t index = 0; index < date.parts_.size(); ++index) {
    Part& part = date.parts_[index];
    if (index > 0) {
      if (at >= pattern.size() || kMarks.find(pattern[at]) == std::string_view::npos) return {};
      part.before = pattern[at++];
    }
    if (at >= pattern.size()) return {};
    const char letter = pattern[at];
    const std::size_t field = kLetters.find(letter);
    if (field == std::string_view::npos || seen[field]) return {};
    seen[field] = true;
    part.field = static_cast<Field>(field);
    while (at < pattern.size() && pattern[at] == letter) ++part.width, ++at;
    const bool isYear = part.field == kYear;
    if (part.width > (isYear ? 4 : 2) || (isYear && part.width == 3)) return {};
  }
  if (at != pattern.size()) return {};
  return date;
}

NumericDate::Answer NumericDate::read(std::string_view text, std::int32_t windowStart,
                                      civil::Date& date) const {
  for (const Part& part : parts_) {
    if (part.before != 0) {
      if (text.empty() || text.front() != part.before) return Answer::kUnknown;
      text.remove_prefix(1);
    }
    const Digits digits = leadingDigits(text);
    const bool isYear = part.field == kYear;
    if (digits.count == 0 || digits.count > (isYear ? kMostDigitsOfYear : 2))
      return Answer::kUnknown;
    text.remove_prefix(digits.count);
    if (part.field == kDay) date.day = digits.value;
    if (part.field == kMonth) date.month = digits.value;
    if (!isYear) continue;
    date.year = digits.value;
    if (digits.count != 2 || part.width > 2) continue;
    const std::int32_t century = windowStart - windowStart % 100;
    if (windowStart < 1 || digits.value == windowStart % 100) return Answer::kUnknown;
    date.year += century + (digits.value < windowStart % 100 ? 100 : 0);
  }
  if (!text.empty() || date.year == 0) return Answer::kUnknown;
  const bool isHeld = date.month >= 1 && date.month <= 12 && date.day >= 1 &&
                      date.day <= civil::daysInMonth(date.year, date.month);
  return isHeld ? Answer::kDate : Answer::kRefused;
}

std::optional<std::string> NumericDate::print(civil::Date date) const {
  if (date.year < 1 || date.year > kLastYear) return std::nullopt;
  std::string text;
  for (const Part& part : parts_) {
    if (part.before != 0) text += part.before;
    switch (part.field) {
      case kDay:
        appendNumber(text, date.day, part.width);
        break;
      case kMonth:
        appendNumber(text, date.month, part.width);
        break;
      case kYear:
        appendNumber(text, part.width == 2 ? date.year % 100 : date.year, part.width);
        break;
    }
  }
  return text;
}

}  // namespace ORLFoundation::internal::format
