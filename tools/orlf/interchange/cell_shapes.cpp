#include "interchange/cell_shapes.h"

#include <ORLFoundation/platform/base/ASCII.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

#include "values/trimmed.h"

namespace orlftool {
namespace {

using namespace ORLFoundation::internal;

/// Takes a text off the front or the back of another; false where it does not stand there.
bool takeFront(std::string_view& text, std::string_view front) {
  if (!text.starts_with(front)) return false;
  text.remove_prefix(front.size());
  return true;
}
bool takeBack(std::string_view& text, std::string_view back) {
  if (!text.ends_with(back)) return false;
  text.remove_suffix(back.size());
  return true;
}

bool isCurrency(char c) { return base::isLetter(c) || !base::isASCII(c) || c == '$'; }

/// Takes signs, a currency and blanks off both ends.
class AmountDressing {
 public:
  explicit AmountDressing(std::string_view text) : text_(trimmed(text)) {
    if (text_.starts_with('(') && text_.ends_with(')')) {
      text_ = trimmed(text_.substr(1, text_.size() - 2));
      sign_ = AmountSign::Brackets;
    }
    while (takeSign() || takeBlank() || takeCurrency()) {
    }
  }

  [[nodiscard]] std::string_view core() const { return text_; }
  [[nodiscard]] AmountSign sign() const { return sign_; }
  [[nodiscard]] bool hasCurrency() const { return currencyBytes_ > 0; }
  [[nodiscard]] bool isProper() const { return signs_ <= 1 && currencyBytes_ <= kLongestCurrency; }
  /// Whether letters stand right beside the digits or their sign, as in "INV-1".
  [[nodiscard]] bool hasTightLetters() const { return hasLetters_ && !hasBlank_; }

 private:
  static constexpr std::size_t kLongestCurrency = 4;

  bool takeSign() {
    const AmountSign front = takeFront(text_, "-") || takeFront(text_, "\xE2\x88\x92")
                                 ? AmountSign::Minus
                             : takeFront(text_, "+") ? AmountSign::Plus
                             : takeBack(text_, "-")  ? AmountSign::TrailingMinus
                             : takeBack(text_, "+")  ? AmountSign::Plus
                                                     : AmountSign::None;
    if (front == AmountSign::None) return false;
    ++signs_;
    if (sign_ != AmountSign::Brackets) sign_ = front;
    return true;
  }

  bool takeBlank() {
    constexpr std::string_view kNoBreak = "\xC2\xA0";
    const bool isHere = takeFront(text_, " ") || takeFront(text_, kNoBreak) ||
                        takeBack(text_, " ") || takeBack(text_, kNoBreak);
    hasBlank_ = hasBlank_ || isHere;
    return isHere;
  }

  bool takeCurrency() {
    const bool isFront = !text_.empty() && isCurrency(text_.front());
    const bool isBack = !text_.empty() && isCurrency(text_.back());
    if (isFront || isBack)
      hasLetters_ = hasLetters_ || base::isLetter(isFront ? text_.front() : text_.back());
    if (isFront)
      text_.remove_prefix(1);
    else if (isBack)
      text_.remove_suffix(1);
    currencyBytes_ += isFront || isBack ? 1 : 0;
    return isFront || isBack;
  }

  std::string_view text_;
  AmountSign sign_ = AmountSign::None;
  int signs_ = 0;
  std::size_t currencyBytes_ = 0;
  bool hasLetters_ = false;
  bool hasBlank_ = false;
};

/// Digits without the blanks and apostrophes that part them in threes; empty for anything else.
std::string plainCore(std::string_view text) {
  std::string core;
  std::size_t sinceGroup = 0;
  bool isGrouped = false;
  while (!text.empty()) {
    const bool isGroup = takeFront(text, " ") || takeFront(text, "'") ||
                         takeFront(text, "\xC2\xA0") || takeFront(text, "\xE2\x80\x99") ||
                         takeFront(text, "\xE2\x80\xAF");
    if (isGroup) {
      if (isGrouped ? sinceGroup != 3 : sinceGroup == 0 || sinceGroup > 3) return {};
      isGrouped = true;
      sinceGroup = 0;
      continue;
    }
    const char c = text.front();
    if (!base::isDigit(c) && c != '.' && c != ',') return {};
    if (isGrouped && !base::isDigit(c) && sinceGroup != 3) return {};
    if (!base::isDigit(c)) isGrouped = false;
    ++sinceGroup;
    core += c;
    text.remove_prefix(1);
  }
  return isGrouped && sinceGroup != 3 ? std::string() : core;
}

/// Whether a mark parts the whole digits in threes.
bool groupsByThree(std::string_view whole, char mark) {
  const std::size_t lead = whole.find(mark);
  if (lead == 0 || lead > 3) return false;
  for (std::size_t at = 0; at < whole.size(); ++at) {
    const bool atMark = at >= lead && (at - lead) % 4 == 0;
    if (atMark != (whole[at] == mark)) return false;
  }
  return (whole.size() - lead) % 4 == 0;
}

DecimalMarks bitOf(char mark) { return mark == '.' ? kPointMark : kCommaMark; }

/// The marks that can part the fraction; 0 for no number.
std::uint8_t possibleMarks(std::string_view core) {
  const std::size_t last = core.find_last_of(".,");
  if (last == core.npos) return kBothMarks;
  if (last + 1 == core.size()) return 0;
  const char mark = core[last];
  const char other = mark == '.' ? ',' : '.';
  const std::string_view whole = core.substr(0, last);
  if (whole.find(mark) != whole.npos)
    return groupsByThree(core, mark) ? static_cast<std::uint8_t>(bitOf(other)) : 0;
  if (whole.find(other) != whole.npos)
    return groupsByThree(whole, other) ? static_cast<std::uint8_t>(bitOf(mark)) : 0;
  const bool mayGroup = core.size() - last == 4 && last >= 1 && last <= 3 && core.front() != '0';
  return mayGroup ? static_cast<std::uint8_t>(kBothMarks) : static_cast<std::uint8_t>(bitOf(mark));
}

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

double AmountShape::hundredths(DecimalMarks mark) const {
  std::string plain;
  for (const char c : core) {
    if (base::isDigit(c)) plain += c;
    if ((c == '.' || c == ',') && bitOf(c) == mark) plain += '.';
  }
  return 100 * std::strtod(plain.c_str(), nullptr);
}

std::optional<AmountShape> amountShapeOf(std::string_view cell) {
  const AmountDressing dressing(cell);
  if (!dressing.isProper()) return std::nullopt;
  AmountShape shape{dressing.sign(), 0, false, dressing.hasCurrency(), plainCore(dressing.core())};
  if (shape.core.find_first_of("0123456789") == std::string::npos) return std::nullopt;
  shape.marks = possibleMarks(shape.core);
  shape.hasMark = shape.core.find_first_of(".,") != std::string::npos;
  if (dressing.hasTightLetters() && !shape.hasMark) return std::nullopt;
  return shape.marks == 0 ? std::nullopt : std::optional(std::move(shape));
}

std::optional<DateShape> dateShapeOf(std::string_view cell) {
  const std::string_view text = trimmed(cell);
  if (auto date = numericDate(text)) return date;
  if (auto date = compactDate(text)) return date;
  return namedDate(text);
}

}  // namespace orlftool
