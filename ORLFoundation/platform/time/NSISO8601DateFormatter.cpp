
#include <ORLFoundation/platform/time/NSISO8601DateFormatter.h>

#include <ORLFoundation/platform/base/CivilDays.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace ORLFoundation {
namespace {

namespace civil = internal::base::civil;

constexpr double kFarthest = 0.99 * civil::kMaxDay * civil::kSecondsPerDay;

std::string twoDigits(std::int64_t number) {
  std::array<char, 24> text{};
  std::snprintf(text.data(), text.size(), "%02lld", static_cast<long long>(number));
  return text.data();
}

/// The parts that are there, with the separator between them.
std::string joined(std::initializer_list<std::string> parts, const char* separator) {
  std::string text;
  for (const std::string& part : parts) {
    if (part.empty()) continue;
    if (!text.empty()) text += separator;
    text += part;
  }
  return text;
}

std::string yearText(std::int32_t year) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), year < 0 ? "%05d" : "%04d", year);
  return text.data();
}

std::string zoneText(std::int64_t offset, const char* separator) {
  if (offset == 0) return "Z";
  const std::int64_t size = std::abs(offset);
  const std::int64_t seconds = size % 60;
  return (offset < 0 ? "-" : "+") + joined({twoDigits(size / 3600), twoDigits(size / 60 % 60),
                                            seconds == 0 ? "" : twoDigits(seconds)},
                                           separator);
}

}  // namespace

std::string NSISO8601DateFormatter::stringFromDate(NSDate date, const NSTimeZone& timeZone,
                                                   NSUInteger formatOptions) {
  const auto has = [formatOptions](NSISO8601DateFormatOptions bit) {
    return (formatOptions & bit) != 0;
  };
  const double seconds = date.timeIntervalSince1970();
  if (!(std::fabs(seconds) < kFarthest)) return "";
  const NSInteger offset = timeZone.secondsFromGMTForDate(date);
  const auto [day, second] =
      civil::splitSeconds(static_cast<std::int64_t>(std::floor(seconds)) + offset);
  const civil::Date civilDate = civil::dateFromDay(day);
  const std::string dateText =
      joined({has(NSISO8601DateFormatWithYear) ? yearText(civilDate.year) : "",
              has(NSISO8601DateFormatWithMonth) ? twoDigits(civilDate.month) : "",
              has(NSISO8601DateFormatWithDay) ? twoDigits(civilDate.day) : ""},
             has(NSISO8601DateFormatWithDashSeparatorInDate) ? "-" : "");
  const std::string timeText =
      has(NSISO8601DateFormatWithTime)
          ? joined({twoDigits(second / 3600), twoDigits(second / 60 % 60), twoDigits(second % 60)},
                   has(NSISO8601DateFormatWithColonSeparatorInTime) ? ":" : "")
          : "";
  std::string text = joined({dateText, timeText}, "T");
  if (has(NSISO8601DateFormatWithTimeZone))
    text += zoneText(offset, has(NSISO8601DateFormatWithColonSeparatorInTimeZone) ? ":" : "");
  return text;
}

}  // namespace ORLFoundation
