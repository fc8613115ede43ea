
#include <ORLFoundation/calendar/ORLFCalendarRatios.h>

#include <ORLFoundation/platform/process/LocalizedText.h>
#include <ORLFoundation/support/diagnostics/ORLFDebugLog.h>

#include <atomic>
#include <cmath>

namespace ORLFoundation {
namespace {

// A value that the first calendar to ask decides for the whole process.
class CachedMaximum {
 public:
  explicit constexpr CachedMaximum(NSCalendarUnit unit) : unit_(unit) {}

  double value(const NSCalendar& calendar) noexcept {
    if (value_.load(std::memory_order_relaxed) == 0) {
      NSUInteger unset = 0;
      value_.compare_exchange_strong(unset, NSMaxRange(calendar.maximumRangeOfUnit(unit_)),
                                     std::memory_order_relaxed);
    }
    return static_cast<double>(value_.load(std::memory_order_relaxed));
  }

 private:
  NSCalendarUnit unit_;
  std::atomic<NSUInteger> value_{0};
};

CachedMaximum hoursPerDay(NSCalendarUnitHour);
CachedMaximum minutesPerHour(NSCalendarUnitMinute);
CachedMaximum secondsPerMinute(NSCalendarUnitSecond);

struct SecondsOfUnits {
  double minute, hour, day;
};

SecondsOfUnits secondsOfUnits(const NSCalendar& calendar) noexcept {
  const double hours = hoursPerDay.value(calendar);
  const double minutes = minutesPerHour.value(calendar);
  const double seconds = secondsPerMinute.value(calendar);
  return {seconds, minutes * seconds, hours * minutes * seconds};
}

// The seconds of the unit that holds the date; 0 when it has no range.
double lengthOfUnit(const NSCalendar& calendar, NSCalendarUnit unit, NSDate date) noexcept {
  NSTimeInterval length = 0;
  return calendar.rangeOfUnit(unit, nullptr, &length, date) ? length : 0;
}

double divided(double length, double by) noexcept { return by == 0 ? 0 : length / by; }

struct UnitWord {
  NSCalendarUnit unit;
  const char *single, *plural;
};
constexpr UnitWord kWords[] = {
    {NSCalendarUnitYear, "year", "years"},       {NSCalendarUnitMonth, "month", "months"},
    {NSCalendarUnitWeek, "week", "weeks"},       {NSCalendarUnitWeekOfMonth, "week", "weeks"},
    {NSCalendarUnitWeekOfYear, "week", "weeks"}, {NSCalendarUnitQuarter, "quarter", "quarters"},
};

}  // namespace

double orlfMaximumValueOfUnit(const NSCalendar& calendar, NSCalendarUnit unit,
                              NSCalendarUnit inUnit, std::optional<NSDate> forDate) noexcept {
  if (!forDate) return 0;
  const double length = lengthOfUnit(calendar, inUnit, *forDate);
  if (length == 0) return 0;
  const SecondsOfUnits seconds = secondsOfUnits(calendar);
  switch (unit) {
    case NSCalendarUnitEra:
    case NSCalendarUnitYear:
    case NSCalendarUnitQuarter:
    case NSCalendarUnitWeek:
    case NSCalendarUnitWeekOfMonth:
    case NSCalendarUnitWeekOfYear:
      return divided(length, lengthOfUnit(calendar, unit, *forDate));
    case NSCalendarUnitMonth: {
      const NSRange days = calendar.rangeOfUnit(NSCalendarUnitDay, NSCalendarUnitMonth, *forDate);
      return divided(length, static_cast<double>(days.length) * seconds.day);
    }
    case NSCalendarUnitDay:
      return divided(length, seconds.day);
    case NSCalendarUnitHour:
      return divided(length, seconds.hour);
    case NSCalendarUnitMinute:
      return divided(length, seconds.minute);
    case NSCalendarUnitSecond:
      return length;
    default:
      return 0;
  }
}

double orlfRatioOfCalendarUnit(const NSCalendar& calendar, NSCalendarUnit unit,
                               NSCalendarUnit inUnit, std::optional<NSDate> forDate) noexcept {
  const auto inYear = [&](NSCalendarUnit asked) {
    const double value = orlfMaximumValueOfUnit(calendar, asked, NSCalendarUnitYear, forDate);
    return asked == NSCalendarUnitEra ? value : std::ceil(value);
  };
  return divided(inYear(unit), inYear(inUnit));
}

std::string orlfNameForCalendarUnit(NSCalendarUnit unit, bool plural) {
  for (const UnitWord& word : kWords) {
    if (word.unit != unit) continue;
    return internal::process::localizedText(plural ? word.plural : word.single);
  }
  _ORLFDebugLog("Unexpected repeat interval in orlfNameForCalendarUnit: %lu", unit);
  return "unknown";
}

}  // namespace ORLFoundation
