

#include <ORLFoundation/platform/value/NSDate.h>

#include <ORLFoundation/platform/base/CivilDays.h>
#include <ORLFoundation/platform/base/Replaceable.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <utility>

namespace ORLFoundation {
namespace {

namespace civil = internal::base::civil;

constinit internal::base::ReplaceableFunction<std::function<NSDate()>> clocks;

NSDate systemNow() {
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return NSDate::dateWithTimeIntervalSince1970(std::chrono::duration<double>(sinceEpoch).count());
}

/// Beyond this many seconds from the reference date, some 28,500 years, a date is written as a
/// number.
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
  const auto [day, second] = civil::splitSeconds(
      static_cast<std::int64_t>(std::floor(seconds_ + NSTimeIntervalSince1970)));
  const civil::Date date = civil::dateFromDay(day);
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d +0000", date.year, date.month,
                date.day, second / 3600, second / 60 % 60, second % 60);
  return text;
}

}  // namespace ORLFoundation
