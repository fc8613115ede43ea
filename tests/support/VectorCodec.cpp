#include <tests/support/VectorCodec.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <set>
#include <sstream>

namespace orlftest {
namespace {

using namespace ORLFoundation;

constexpr double kMillisecondsPerSecond = 1000;
constexpr std::int64_t kReferenceSince1970 = 978307200;

struct NamedUnit {
  const char* name;
  NSCalendarUnit unit;
};

constexpr NamedUnit kUnits[] = {
    {"era", NSCalendarUnitEra},
    {"year", NSCalendarUnitYear},
    {"quarter", NSCalendarUnitQuarter},
    {"month", NSCalendarUnitMonth},
    {"weekOfYear", NSCalendarUnitWeekOfYear},
    {"weekOfMonth", NSCalendarUnitWeekOfMonth},
    {"weekday", NSCalendarUnitWeekday},
    {"weekdayOrdinal", NSCalendarUnitWeekdayOrdinal},
    {"day", NSCalendarUnitDay},
    {"hour", NSCalendarUnitHour},
    {"minute", NSCalendarUnitMinute},
    {"second", NSCalendarUnitSecond},
    {"nanosecond", NSCalendarUnitNanosecond},
    {"yearForWeekOfYear", NSCalendarUnitYearForWeekOfYear},
};

[[noreturn]] void unreadable(const char* what, const std::string& text) {
  throw std::runtime_error(std::string("unreadable ") + what + ": " + text);
}

template <typename Number>
Number parsed(const char* what, std::string_view digits, const std::string& whole) {
  Number value{};
  const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (digits.empty() || error != std::errc() || stop != digits.data() + digits.size())
    unreadable(what, whole);
  return value;
}

/// Digits and marks stand where the pattern has 9 and its own marks.
bool hasShape(std::string_view text, std::string_view shape) {
  return text.size() == shape.size() &&
         std::equal(text.begin(), text.end(), shape.begin(), [](char given, char wanted) {
           return wanted == '9' ? given >= '0' && given <= '9' : given == wanted;
         });
}

NSDate plainDate(const std::string& text) {
  const bool whole = hasShape(text, "9999-99-99T99:99:99Z");
  if (!whole && !hasShape(text, "9999-99-99T99:99:99.999Z")) unreadable("date", text);
  const auto part = [&text](std::size_t at, std::size_t length) {
    return parsed<int>("date", std::string_view(text).substr(at, length), text);
  };
  const std::chrono::year_month_day day{std::chrono::year(part(0, 4)),
                                        std::chrono::month(static_cast<unsigned>(part(5, 2))),
                                        std::chrono::day(static_cast<unsigned>(part(8, 2)))};
  const std::int64_t hour = part(11, 2);
  const std::int64_t minute = part(14, 2);
  const int second = part(17, 2);
  if (!day.ok() || hour > 23 || minute > 59 || second > 59) unreadable("date", text);
  const std::int64_t days = std::chrono::sys_days(day).time_since_epoch().count();
  const std::int64_t seconds =
      days * 86400 + hour * 3600 + minute * 60 + second - kReferenceSince1970;
  const std::int64_t milliseconds = seconds * 1000 + (whole ? 0 : part(20, 3));
  return NSDate::dateWithTimeIntervalSinceReferenceDate(static_cast<double>(milliseconds) /
                                                        kMillisecondsPerSecond);
}

/// Without the plain form's last mark: "2024-01-31T14:30:00".
std::string plainText(std::int64_t secondsSinceReference) {
  const std::chrono::sys_seconds instant{
      std::chrono::seconds(secondsSinceReference + kReferenceSince1970)};
  const auto midnight = std::chrono::floor<std::chrono::days>(instant);
  const std::chrono::year_month_day day(midnight);
  const std::chrono::hh_mm_ss time(instant - midnight);
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d", static_cast<int>(day.year()),
                static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count()));
  return text;
}

std::shared_ptr<NSCalendar> gregorian(const std::string& zone, NSInteger firstWeekday,
                                      NSInteger minimumDays) {
  auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  auto timeZone = NSTimeZone::timeZoneWithName(zone);
  if (!calendar || !timeZone) unreadable("calendar's zone", zone);
  calendar->setTimeZone(std::move(timeZone));
  calendar->setFirstWeekday(firstWeekday);
  calendar->setMinimumDaysInFirstWeek(minimumDays);
  return calendar;
}

void setNamed(NSDateComponents& components, const std::string& name, NSInteger value) {
  const auto* const found = std::find_if(std::begin(kUnits), std::end(kUnits),
                                         [&](const NamedUnit& unit) { return unit.name == name; });
  if (found == std::end(kUnits)) unreadable("component", name);
  components.setValueForComponent(value, found->unit);
}

}  // namespace

std::optional<NSDate> dateFromVector(const std::string& text) {
  if (text == "distantFuture") return NSDate::distantFuture();
  if (text == "distantPast") return NSDate::distantPast();
  if (!text.empty() && text.front() == '@')
    return NSDate::dateWithTimeIntervalSinceReferenceDate(
        parsed<double>("date", std::string_view(text).substr(1), text));
  return plainDate(text);
}

std::optional<NSDate> dateFromVector(const char* text) { return dateFromVector(std::string(text)); }

std::optional<NSDate> dateFromVector(const std::optional<std::string>& text) {
  if (!text) return std::nullopt;
  return dateFromVector(*text);
}

std::optional<NSDate> dateFromVector(const Json& value) {
  if (value.is_null()) return std::nullopt;
  return dateFromVector(value.get_ref<const std::string&>());
}

std::string vectorFromDate(std::optional<NSDate> date) {
  if (!date) return "nil";
  if (*date == NSDate::distantFuture()) return "distantFuture";
  if (*date == NSDate::distantPast()) return "distantPast";
  const double seconds = date->timeIntervalSinceReferenceDate();
  const double milliseconds = seconds * kMillisecondsPerSecond;
  // The first instants of the years 1 and 10000.
  const bool plain = seconds >= -63113904000.0 && seconds < 252423993600.0 &&
                     std::round(milliseconds) / kMillisecondsPerSecond == seconds;
  char text[64];
  if (!plain) {
    std::snprintf(text, sizeof text, "@%.17g", seconds);
    return text;
  }
  const auto total = static_cast<std::int64_t>(std::llround(milliseconds));
  const std::int64_t fraction = ((total % 1000) + 1000) % 1000;
  if (fraction == 0) return plainText(total / 1000) + "Z";
  std::snprintf(text, sizeof text, ".%03dZ", static_cast<int>(fraction));
  return plainText((total - fraction) / 1000) + text;
}

std::vector<NSDate> datesFromVector(const Json& list) {
  std::vector<NSDate> dates;
  for (const Json& item : list) dates.push_back(dateFromVector(item).value());
  return dates;
}

std::shared_ptr<NSCalendar> calendarFromVector(const Json& value) {
  static const std::set<std::string> kKeys = {"zone", "first_weekday", "min_days", "locale"};
  for (const auto& item : value.items())
    if (!kKeys.count(item.key())) unreadable("calendar's key", item.key());
  auto calendar =
      gregorian(value.at("zone").get<std::string>(), value.at("first_weekday").get<NSInteger>(),
                value.at("min_days").get<NSInteger>());
  if (value.contains("locale")) calendar->setLocaleIdentifier(value["locale"].get<std::string>());
  return calendar;
}

std::shared_ptr<NSCalendar> calendarFromVector(const TsvRow& row) {
  auto calendar =
      gregorian(row.text("zone"), row.integer("first_weekday"), row.integer("min_days"));
  if (row.hasColumn("locale")) calendar->setLocaleIdentifier(row.text("locale"));
  return calendar;
}

NSDateComponents componentsFromVector(const std::string& text) {
  NSDateComponents components;
  std::istringstream fields(text);
  for (std::string field; fields >> field;) {
    const std::size_t mark = field.find('=');
    if (mark == std::string::npos) unreadable("components", text);
    const auto value =
        parsed<NSInteger>("components", std::string_view(field).substr(mark + 1), text);
    setNamed(components, field.substr(0, mark), value);
  }
  return components;
}

NSDateComponents componentsFromVector(const char* text) {
  return componentsFromVector(std::string(text));
}

NSDateComponents componentsFromVector(const Json& object) {
  NSDateComponents components;
  for (const auto& item : object.items())
    setNamed(components, item.key(), item.value().get<NSInteger>());
  return components;
}

std::string vectorFromComponents(const NSDateComponents& components) {
  std::string text;
  for (const NamedUnit& unit : kUnits) {
    const NSInteger value = components.valueForComponent(unit.unit);
    if (value == NSDateComponentUndefined) continue;
    if (!text.empty()) text += ' ';
    text += std::string(unit.name) + '=' + std::to_string(value);
  }
  return text;
}

std::string disagreement(std::optional<NSDate> expected, std::optional<NSDate> actual) {
  if (expected == actual) return {};
  return "expected " + vectorFromDate(expected) + ", got " + vectorFromDate(actual);
}

std::string disagreement(const NSDateComponents& expected, const NSDateComponents& actual) {
  if (expected == actual) return {};
  return "expected " + vectorFromComponents(expected) + ", got " + vectorFromComponents(actual);
}

std::string disagreement(const std::vector<NSDate>& expected, const std::vector<NSDate>& actual) {
  const auto [left, right] =
      std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
  if (left == expected.end() && right == actual.end()) return {};
  const auto shown = [](const std::vector<NSDate>& dates, auto at) {
    return at == dates.end() ? std::string("none") : vectorFromDate(*at);
  };
  return std::to_string(expected.size()) + " dates expected, got " + std::to_string(actual.size()) +
         "; number " + std::to_string(left - expected.begin() + 1) + ": expected " +
         shown(expected, left) + ", got " + shown(actual, right);
}

}  // namespace orlftest
