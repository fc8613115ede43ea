
#include <ORLFoundation/calendar/ORLFCalendarNow.h>

#include <ORLFoundation/calendar/ORLFCalendarRounding.h>
#include <ORLFoundation/platform/object/Id.h>

namespace ORLFoundation {

void orlfSetNow(const NSCalendar& calendar, std::optional<NSDate> now) {
  calendar.setAttachedValue(ORLFDateNowKey, now);
}

NSDate orlfNow(const NSCalendar& calendar) {
  const std::optional<NSDate> now = calendar.attachedValue(ORLFDateNowKey).as<NSDate>();
  return now ? *now : NSDate::date();
}

NSDate orlfToday(const NSCalendar& calendar) {
  const NSDate now = orlfNow(calendar);
  return orlfDateByRoundingDateDownToCalendarUnit(calendar, now, NSCalendarUnitDay).value_or(now);
}

}  // namespace ORLFoundation
