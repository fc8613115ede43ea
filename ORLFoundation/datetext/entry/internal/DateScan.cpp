#include <ORLFoundation/datetext/entry/internal/DateScan.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>
#include <ORLFoundation/platform/text/NSScanner.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

namespace ORLFoundation::internal::entry {
namespace {

constexpr NSUInteger kDayUnits = NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay;
constexpr NSInteger kFirstYear = 1900;
constexpr NSInteger kLastYear = 2299;
constexpr std::string_view kMarks = "/.-";

bool isYear(NSInteger number) { return number >= kFirstYear && number <= kLastYear; }

bool isWithin(NSInteger number, NSRange range) {
  return range.length > 0 && number >= 0 && static_cast<NSUInteger>(number) >= range.location &&
         static_cast<NSUInteger>(number) < NSMaxRange(range);
}

// The numbers of a text, up to three, and what stands behind them.
class Numbers {
 public:
  explicit Numbers(std::string_view text) : text_(text) { isRead_ = scanAll(); }

  [[nodiscard]] bool isRead() const noexcept { return isRead_; }
  [[nodiscard]] std::size_t count() const noexcept { return count_; }
  [[nodiscard]] NSInteger operator[](std::size_t index) const { return values_[index]; }
  /// Whether nothing but white space is left.
  [[nodiscard]] bool isAtEnd() {
    skipWhiteSpace();
    return place_ == text_.size();
  }

 private:
  bool scanAll() {
    do {
      if (!scanNumber()) return false;
    } while (scanMarks() && count_ < values_.size());
    return true;
  }

  bool scanNumber() {
    skipWhiteSpace();
    const char sign = place_ < text_.size() ? text_[place_] : '\0';
    if (sign == '+' || sign == '-') ++place_;
    const std::size_t first = place_;
    NSInteger value = 0;
    for (; place_ < text_.size() && base::isDigit(text_[place_]); ++place_) {
      const NSInteger digit = text_[place_] - '0';
      value = value > (kLargest - digit) / 10 ? kLargest : value * 10 + digit;
    }
    if (place_ == first) return false;
    values_[count_++] = sign == '-' ? -value : value;
    return true;
  }

  bool scanMarks() {
    skipWhiteSpace();
    const std::size_t end = std::min(text_.find_first_not_of(kMarks, place_), text_.size());
    const bool found = end > place_;
    place_ = end;
    return found;
  }

  // Plain characters are looked at here, others by their set. Line ends are no white space.
  void skipWhiteSpace() {
    while (place_ < text_.size()) {
      const char c = text_[place_];
      if (c == ' ' || c == '\t') {
        ++place_;
      } else if (base::isASCII(c) || !skipOthers()) {
        return;
      }
    }
  }

  bool skipOthers() {
    const auto scanner = NSScanner::scannerOverString(text_.substr(place_));
    scanner->setCharactersToBeSkipped(nullptr);
    const bool found = scanner->scanCharactersFromSet(*NSCharacterSet::whitespaceCharacterSet());
    place_ += scanner->placeInBytes();
    return found;
  }

  static constexpr NSInteger kLargest = std::numeric_limits<NSInteger>::max();

  std::string_view text_;
  std::size_t place_ = 0;
  std::array<NSInteger, 3> values_{};
  std::size_t count_ = 0;
  bool isRead_ = false;
};

// Today, and the choice that a format and the numbers make.
class Choice {
 public:
  Choice(bool monthFirst, const NSCalendar& calendar, NSDate today)
      : monthFirst_(monthFirst),
        calendar_(calendar),
        components_(calendar.components(kDayUnits, today)),
        months_(calendar.rangeOfUnit(NSCalendarUnitMonth, NSCalendarUnitYear, today)),
        days_(calendar.rangeOfUnit(NSCalendarUnitDay, NSCalendarUnitMonth, today)) {}

  [[nodiscard]] std::optional<NSDate> date(Numbers& numbers) {
    if (!choose(numbers)) return std::nullopt;
    const NSInteger month = components_.month();
    if (!isWithin(month, months_) ||
        !isWithin(components_.day(), dayRange(month, components_.year(), calendar_)))
      return std::nullopt;
    return calendar_.dateFromComponents(components_);
  }

 private:
  [[nodiscard]] bool choose(Numbers& numbers) {
    if (numbers.count() == 1) return chooseOne(numbers);
    if (numbers.count() == 2) {
      chooseMonth(monthFirst_, numbers[0], numbers[1]);
      return true;
    }
    const bool yearIsFirst = isYear(numbers[0]);
    if (!yearIsFirst && !isYear(numbers[2])) return false;
    components_.setYear(numbers[yearIsFirst ? 0 : 2]);
    const std::size_t first = yearIsFirst ? 1 : 0;
    chooseMonth(monthFirst_, numbers[first], numbers[first + 1]);
    return true;
  }

  [[nodiscard]] bool chooseOne(Numbers& numbers) {
    const NSInteger number = numbers[0];
    if (number < 1 || !numbers.isAtEnd()) return false;
    if (isWithin(number, days_)) {
      components_.setDay(number);
      return true;
    }
    if (!isYear(number)) return false;
    components_.setYear(number);
    components_.setMonth(1);
    components_.setDay(1);
    return true;
  }

  // The one that the format has as its month, where that is a month, else the other.
  void chooseMonth(bool firstIsMonth, NSInteger first, NSInteger second) {
    const NSInteger month = firstIsMonth ? first : second;
    const NSInteger day = firstIsMonth ? second : first;
    const bool fits = isWithin(month, months_);
    components_.setMonth(fits ? month : day);
    components_.setDay(fits ? day : month);
  }

  bool monthFirst_;
  const NSCalendar& calendar_;
  NSDateComponents components_;
  NSRange months_;
  NSRange days_;
};

}  // namespace

NSRange dayRange(NSInteger month, NSInteger year, const NSCalendar& calendar) {
  NSDateComponents first;
  first.setYear(year);
  first.setMonth(month);
  first.setDay(1);
  const auto date = calendar.dateFromComponents(first);
  if (!date) return {static_cast<NSUInteger>(NSNotFound), 0};
  return calendar.rangeOfUnit(NSCalendarUnitDay, NSCalendarUnitMonth, *date);
}

std::optional<NSDate> scanDate(std::string_view text, bool monthFirst, const NSCalendar& calendar,
                               NSDate today) {
  Numbers numbers(text);
  if (!numbers.isRead()) return std::nullopt;
  return Choice(monthFirst, calendar, today).date(numbers);
}

}  // namespace ORLFoundation::internal::entry
