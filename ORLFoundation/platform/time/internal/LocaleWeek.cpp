
#include <ORLFoundation/platform/time/internal/LocaleWeek.h>

#include <unicode/ucal.h>

#include <memory>

namespace ORLFoundation::internal::time {
namespace {

struct CloseCalendar {
  void operator()(UCalendar* calendar) const { ucal_close(calendar); }
};

void setWeekendOfWeekday(LocaleWeek& week, const UCalendar* calendar, std::size_t index) {
  const auto weekday = static_cast<UCalendarDaysOfWeek>(index + 1);
  UErrorCode status = U_ZERO_ERROR;
  const UCalendarWeekdayType type = ucal_getDayOfWeekType(calendar, weekday, &status);
  std::int32_t from = 0;
  std::int32_t to = type == UCAL_WEEKDAY ? 0 : kWholeDay;
  if (type == UCAL_WEEKEND_ONSET)
    from = ucal_getWeekendTransition(calendar, weekday, &status) / 1000;
  if (type == UCAL_WEEKEND_CEASE) to = ucal_getWeekendTransition(calendar, weekday, &status) / 1000;
  if (U_FAILURE(status)) return;
  week.weekendFrom[index] = from;
  week.weekendTo[index] = to;
}

}  // namespace

LocaleWeek weekOfLocale(const std::string& localeIdentifier) {
  LocaleWeek week;
  UErrorCode status = U_ZERO_ERROR;
  const UChar gmt[] = u"GMT";
  const std::unique_ptr<UCalendar, CloseCalendar> calendar(
      ucal_open(gmt, 3, localeIdentifier.c_str(), UCAL_GREGORIAN, &status));
  if (U_FAILURE(status)) return week;
  week.firstWeekday = ucal_getAttribute(calendar.get(), UCAL_FIRST_DAY_OF_WEEK);
  week.minimumDays = ucal_getAttribute(calendar.get(), UCAL_MINIMAL_DAYS_IN_FIRST_WEEK);
  for (std::size_t index = 0; index < 7; ++index) setWeekendOfWeekday(week, calendar.get(), index);
  return week;
}

}  // namespace ORLFoundation::internal::time
