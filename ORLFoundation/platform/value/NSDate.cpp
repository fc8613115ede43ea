

#include <ORLFoundation/platform/value/NSDate.h>

#include <ORLFoundation/platform/base/Replaceable.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <utility>

namespace ORLFoundation {
namespace {

constinit internal::base::ReplaceableFunction<std::function<NSDate()>> clocks;

NSDate systemNow() {
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return NSDate::dateWithTimeIntervalSince1970(std::chrono::duration<double>(sinceEpoch).count());
}

/// Beyond this many seconds from the reference date years no longer fit the calendar type.
constexpr double kPrintable = 9.0e11;

}  // namespace

NSDate NSDate::date() {
  const auto clock = clocks.current();
  return clock ? (*clock)() : systemNow();
}

std::function<NSDate()> NSDate::setClock(std::function<NSDate()> clock) {
  return clocks.exchange(std::move(clock));
}

NSUInteger NSDate::hash() const noexcept { return std::hash<double>{}(seconds_); }

std::string NSDate::description() const {
  char text[64];
  if (!(std::fabs(seconds_) < kPrintable)) {
    std::snprintf(text, sizeof text, "%g", seconds_);
    return text;
  }
  const std::chrono::sys_seconds whole{std::chrono::seconds(
      static_cast<std::int64_t>(std::floor(seconds_ + NSTimeIntervalSince1970)))};
  const auto day = std::chrono::floor<std::chrono::days>(whole);
  const std::chrono::year_month_day civil(day);
  const std::chrono::hh_mm_ss time(whole - day);
  std::snprintf(text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d +0000",
                static_cast<int>(civil.year()), static_cast<unsigned>(civil.month()),
                static_cast<unsigned>(civil.day()), static_cast<int>(time.hours().count()),
                static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
  return text;
}

}  // namespace ORLFoundation
