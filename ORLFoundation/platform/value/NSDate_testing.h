/// Dates in the forms that vector files write them, both ways. What cannot be read throws, which
/// fails the row.
#pragma once

#include <ORLFoundation/platform/value/NSDate.h>
#include <tests/support/VectorFile.h>
#include <tests/support/VectorText.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlftest {
namespace vectors {

inline constexpr double kMillisecondsPerSecond = 1000;
inline constexpr std::int64_t kReferenceSince1970 = 978307200;

/// Digits and marks stand where the pattern has 9 and its own marks.
inline bool hasShape(std::string_view text, std::string_view shape) {
  return text.size() == shape.size() &&
         std::equal(text.begin(), text.end(), shape.begin(), [](char given, char wanted) {
           return wanted == '9' ? given >= '0' && given <= '9' : given == wanted;
         });
}

inline ORLFoundation::NSDate plainDate(const std::string& text) {
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
  return ORLFoundation::NSDate::dateWithTimeIntervalSinceReferenceDate(
      static_cast<double>(milliseconds) / kMillisecondsPerSecond);
}

/// Without the plain form's last mark: "2024-01-31T14:30:00".
inline std::string plainText(std::int64_t secondsSinceReference) {
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

}  // namespace vectors

/// "2024-01-31T14:30:00Z", with a fraction "2024-01-31T14:30:00.500Z", "@n" for n seconds since
/// the reference date, "distantFuture", "distantPast"; nil for null or an absent text.
inline std::optional<ORLFoundation::NSDate> dateFromVector(const std::string& text) {
  if (text == "distantFuture") return ORLFoundation::NSDate::distantFuture();
  if (text == "distantPast") return ORLFoundation::NSDate::distantPast();
  if (!text.empty() && text.front() == '@')
    return ORLFoundation::NSDate::dateWithTimeIntervalSinceReferenceDate(
        vectors::parsed<double>("date", std::string_view(text).substr(1), text));
  return vectors::plainDate(text);
}

inline std::optional<ORLFoundation::NSDate> dateFromVector(const char* text) {
  return dateFromVector(std::string(text));
}

inline std::optional<ORLFoundation::NSDate> dateFromVector(const std::optional<std::string>& text) {
  if (!text) return std::nullopt;
  return dateFromVector(*text);
}

inline std::optional<ORLFoundation::NSDate> dateFromVector(const Json& value) {
  if (value.is_null()) return std::nullopt;
  return dateFromVector(value.get_ref<const std::string&>());
}

/// The plain form for whole milliseconds of the years 1 to 9999, "distantFuture" and
/// "distantPast" for these dates, else "@n"; "nil" for nil.
inline std::string vectorFromDate(std::optional<ORLFoundation::NSDate> date) {
  if (!date) return "nil";
  if (*date == ORLFoundation::NSDate::distantFuture()) return "distantFuture";
  if (*date == ORLFoundation::NSDate::distantPast()) return "distantPast";
  using vectors::kMillisecondsPerSecond;
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
  if (fraction == 0) return vectors::plainText(total / 1000) + "Z";
  std::snprintf(text, sizeof text, ".%03dZ", static_cast<int>(fraction));
  return vectors::plainText((total - fraction) / 1000) + text;
}

/// A list of dates, none of them nil.
inline std::vector<ORLFoundation::NSDate> datesFromVector(const Json& list) {
  std::vector<ORLFoundation::NSDate> dates;
  for (const Json& item : list) dates.push_back(dateFromVector(item).value());
  return dates;
}

/// "" when equal to the last bit, else "expected X, got Y".
inline std::string disagreement(std::optional<ORLFoundation::NSDate> expected,
                                std::optional<ORLFoundation::NSDate> actual) {
  if (expected == actual) return {};
  return "expected " + vectorFromDate(expected) + ", got " + vectorFromDate(actual);
}

inline std::string disagreement(const std::vector<ORLFoundation::NSDate>& expected,
                                const std::vector<ORLFoundation::NSDate>& actual) {
  const auto [left, right] =
      std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
  if (left == expected.end() && right == actual.end()) return {};
  const auto shown = [](const std::vector<ORLFoundation::NSDate>& dates, auto at) {
    return at == dates.end() ? std::string("none") : vectorFromDate(*at);
  };
  return std::to_string(expected.size()) + " dates expected, got " + std::to_string(actual.size()) +
         "; number " + std::to_string(left - expected.begin() + 1) + ": expected " +
         shown(expected, left) + ", got " + shown(actual, right);
}

/// The date that a text writes.
inline ORLFoundation::NSDate date(const std::string& text) { return dateFromVector(text).value(); }

}  // namespace orlftest
