
#include <ORLFoundation/calendar/ORLFCalendarRounding.h>

#include <ORLFoundation/support/diagnostics/ORLFDebugLog.h>

namespace ORLFoundation {

std::optional<NSDate> orlfDateByRoundingDateDownToCalendarUnit(const NSCalendar& calendar,
                                                               std::optional<NSDate> date,
                                                               NSCalendarUnit unit) noexcept {
  if (!date) {
    _ORLFDebugLog("Date passed is nil. Returning nil.");
    return std::nullopt;
  }
  NSDate start;
  if (!calendar.rangeOfUnit(unit, &start, nullptr, *date)) return std::nullopt;
  return start;
}

std::optional<NSDate> orlfDateByRoundingDateUpToCalendarUnit(const NSCalendar& calendar,
                                                             std::optional<NSDate> date,
                                                             NSCalendarUnit unit) noexcept {
  if (!date) {
    _ORLFDebugLog("Date passed is nil. Returning nil.");
    return std::nullopt;
  }
  NSDate start;
  NSTimeInterval length = 0;
  if (!calendar.rangeOfUnit(unit, &start, &length, *date)) return std::nullopt;
  return start.isEqualToDate(*date) ? start : start.dateByAddingTimeInterval(length);
}

}  // namespace ORLFoundation
