#include "values/date_text.h"

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/CivilDays.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "cli/failure.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using internal::base::isDigit;

using internal::base::civil::kSecondsPerDay;

/// What the text says, before it is placed in a zone.
struct DateFields {
  NSInteger year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
  double fraction = 0;
  std::optional<NSInteger> offset;  // seconds east of GMT
};

/// Takes pieces of a text from its front; every step says whether it fitted.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  [[nodiscard]] bool atEnd() const { return rest_.empty(); }
  [[nodiscard]] char next() const { return rest_.empty() ? '\0' : rest_.front(); }
  bool skip(char expected) {
    if (next() != expected || rest_.empty()) return false;
    rest_.remove_prefix(1);
    return true;
  }
  bool digits(std::size_t least, std::size_t most, NSInteger& value) {
    std::size_t count = 0;
    value = 0;
    while (count < most && count < rest_.size() && isDigit(rest_[count]))
      value = value * 10 + (rest_[count++] - '0');
    rest_.remove_prefix(count);
    return count >= least;
  }
  bool fraction(double& value) {
    std::size_t count = 0;
    double scale = 0.1;
    for (; count < rest_.size() && isDigit(rest_[count]); ++count) {
      value += (rest_[count] - '0') * scale;
      scale /= 10;
    }
    rest_.remove_prefix(count);
    return count > 0 && count <= 9;
  }

 private:
  std::string_view rest_;
};

bool readDay(Scanner& scanner, DateFields& fields) {
  return scanner.digits(4, 6, fields.year) && scanner.skip('-') &&
         scanner.digits(2, 2, fields.month) && scanner.skip('-') &&
         scanner.digits(2, 2, fields.day);
}

bool readTime(Scanner& scanner, DateFields& fields) {
  if (!scanner.digits(2, 2, fields.hour) || !scanner.skip(':')) return false;
  if (!scanner.digits(2, 2, fields.minute)) return false;
  if (!scanner.skip(':')) return true;
  if (!scanner.digits(2, 2, fields.second)) return false;
  return !scanner.skip('.') || scanner.fraction(fields.fraction);
}

bool readOffset(Scanner& scanner, DateFields& fields) {
  if (scanner.skip('Z') || scanner.skip('z')) {
    fields.offset = 0;
    return true;
  }
  const bool west = scanner.next() == '-';
  if (!scanner.skip('+') && !scanner.skip('-')) return true;
  NSInteger hours = 0, minutes = 0, seconds = 0;
  if (!scanner.digits(2, 2, hours)) return false;
  const bool colons = scanner.skip(':');
  if (!scanner.atEnd() && !scanner.digits(2, 2, minutes)) return false;
  if (colons && scanner.skip(':') && !scanner.digits(2, 2, seconds)) return false;
  if (hours > 23 || minutes > 59 || seconds > 59) return false;
  const NSInteger total = hours * 3600 + minutes * 60 + seconds;
  fields.offset = west ? -total : total;
  return true;
}

bool isReal(const DateFields& fields) {
  if (fields.year < 1 || fields.month < 1 || fields.month > 12 || fields.day < 1) return false;
  const auto last = internal::base::civil::daysInMonth(static_cast<std::int32_t>(fields.year),
                                                       static_cast<std::int32_t>(fields.month));
  return fields.day <= last && fields.hour < 24 && fields.minute < 60 && fields.second < 60;
}

std::optional<DateFields> readFields(std::string_view text) {
  Scanner scanner(text);
  DateFields fields;
  if (!readDay(scanner, fields)) return std::nullopt;
  if (!scanner.atEnd()) {
    if (!scanner.skip('T') && !scanner.skip('t') && !scanner.skip(' ')) return std::nullopt;
    if (!readTime(scanner, fields) || !readOffset(scanner, fields)) return std::nullopt;
  }
  if (!scanner.atEnd() || !isReal(fields)) return std::nullopt;
  return fields;
}

/// Days from 1970-01-01 to a day of the Gregorian calendar.
NSInteger daysFromCivil(const DateFields& fields) {
  return internal::base::civil::dayFromDate(static_cast<std::int32_t>(fields.year),
                                            static_cast<std::int32_t>(fields.month),
                                            static_cast<std::int32_t>(fields.day));
}

std::string offsetText(NSInteger offset) {
  const NSInteger size = std::abs(offset);
  std::array<char, 32> buffer{};
  const int length =
      std::snprintf(buffer.data(), buffer.size(), "%c%02d:%02d", offset < 0 ? '-' : '+',
                    static_cast<int>(size / 3600), static_cast<int>(size / 60 % 60));
  std::string text(buffer.data(), static_cast<std::size_t>(length));
  if (size % 60 != 0) {
    const int more =
        std::snprintf(buffer.data(), buffer.size(), ":%02d", static_cast<int>(size % 60));
    text.append(buffer.data(), static_cast<std::size_t>(more));
  }
  return text;
}

NSDateComponents localFields(NSDate date, const NSCalendar& calendar) {
  return calendar.components(NSCalendarUnitEra | NSCalendarUnitYear | NSCalendarUnitMonth |
                                 NSCalendarUnitDay | NSCalendarUnitHour | NSCalendarUnitMinute |
                                 NSCalendarUnitSecond | NSCalendarUnitNanosecond,
                             date);
}

/// "2024-01-31"; a year before the first is printed as ISO 8601 counts it, the year before 1 as 0.
std::string dayText(const NSDateComponents& fields) {
  const NSInteger year = fields.era() == 0 ? 1 - fields.year() : fields.year();
  std::array<char, 64> buffer{};
  const int length = std::snprintf(
      buffer.data(), buffer.size(), "%s%04lld-%02d-%02d", year < 0 ? "-" : "", std::llabs(year),
      static_cast<int>(fields.month()), static_cast<int>(fields.day()));
  return std::string(buffer.data(), static_cast<std::size_t>(length));
}

std::string clockText(const NSDateComponents& fields) {
  std::array<char, 64> buffer{};
  int length = std::snprintf(buffer.data(), buffer.size(), "T%02d:%02d:%02d",
                             static_cast<int>(fields.hour()), static_cast<int>(fields.minute()),
                             static_cast<int>(fields.second()));
  std::string text(buffer.data(), static_cast<std::size_t>(length));
  const int microseconds = static_cast<int>(fields.nanosecond() / 1000);
  if (microseconds == 0) return text;
  length = std::snprintf(buffer.data(), buffer.size(), ".%06d", microseconds);
  text.append(buffer.data(), static_cast<std::size_t>(length));
  while (text.back() == '0') text.pop_back();
  return text;
}

}  // namespace

std::optional<NSDate> readDate(std::string_view text, const NSCalendar& calendar) {
  const std::optional<DateFields> fields = readFields(text);
  if (!fields) return std::nullopt;
  if (fields->offset) {
    const NSInteger seconds = daysFromCivil(*fields) * kSecondsPerDay + fields->hour * 3600 +
                              fields->minute * 60 + fields->second - *fields->offset;
    return NSDate::dateWithTimeIntervalSince1970(static_cast<double>(seconds) + fields->fraction);
  }
  NSDateComponents components;
  components.setYear(fields->year);
  components.setMonth(fields->month);
  components.setDay(fields->day);
  components.setHour(fields->hour);
  components.setMinute(fields->minute);
  components.setSecond(fields->second);
  const std::optional<NSDate> date = calendar.dateFromComponents(components);
  if (!date) return std::nullopt;
  return date->dateByAddingTimeInterval(fields->fraction);
}

NSDate readDateOption(std::string_view option, std::string_view text, const NSCalendar& calendar) {
  if (const std::optional<NSDate> date = readDate(text, calendar)) return *date;
  throw UsageFailure(std::string(option) + ": expected " + std::string(kDateForms) + ", got '" +
                     std::string(text) + "'");
}

NSDate startOfDay(NSDate date, const NSCalendar& calendar) {
  NSDate start;
  const bool found = calendar.rangeOfUnit(NSCalendarUnitDay, &start, nullptr, date);
  return found ? start : date;
}

std::string dateTimeText(NSDate date, const NSCalendar& calendar) {
  const NSDateComponents fields = localFields(date, calendar);
  if (fields.year() == NSDateComponentUndefined) return "(no date)";
  return dayText(fields) + clockText(fields) +
         offsetText(calendar.timeZone()->secondsFromGMTForDate(date));
}

std::string shortDateText(NSDate date, const NSCalendar& calendar) {
  if (startOfDay(date, calendar) != date) return dateTimeText(date, calendar);
  return dayText(localFields(date, calendar));
}

}  // namespace orlftool
