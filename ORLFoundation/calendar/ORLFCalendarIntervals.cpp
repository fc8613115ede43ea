
#include <ORLFoundation/calendar/ORLFCalendarIntervals.h>

#include <ORLFoundation/platform/process/LocalizedText.h>

#include <iterator>

namespace ORLFoundation {
namespace {

constexpr NSUInteger kDayFields = NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay;

// What each interval is: its count in a year, the field that adds it and how many of it, the unit
// that counts it and how many of them make one, and its words.
struct IntervalRow {
  NSInteger countInYear;
  NSCalendarUnit added;
  NSInteger addedPerInterval;
  NSCalendarUnit counted;
  NSInteger countedPerInterval;
  const char *single, *plural, *singleCapital, *pluralCapital;
};
constexpr IntervalRow kIntervals[] = {
    {52, NSCalendarUnitWeekdayOrdinal, 1, NSCalendarUnitWeekOfYear, 1, "week", "weeks", "Week",
     "Weeks"},
    {26, NSCalendarUnitWeekdayOrdinal, 2, NSCalendarUnitWeekOfYear, 2, "two weeks", "two weeks",
     "Two Weeks", "Two Weeks"},
    {12, NSCalendarUnitMonth, 1, NSCalendarUnitMonth, 1, "month", "months", "Month", "Months"},
    {4, NSCalendarUnitMonth, 3, NSCalendarUnitMonth, 3, "quarter", "quarters", "Quarter",
     "Quarters"},
    {1, NSCalendarUnitYear, 1, NSCalendarUnitYear, 1, "year", "years", "Year", "Years"},
    {365, NSCalendarUnitDay, 1, NSCalendarUnitDay, 1, "day", "days", "Day", "Days"},
};

const IntervalRow* rowOf(ORLFCalendarInterval interval) noexcept {
  const auto index = static_cast<std::int32_t>(interval);
  return index >= 0 && index < static_cast<std::int32_t>(std::size(kIntervals)) ? &kIntervals[index]
                                                                                : nullptr;
}

// The time of the date on the Sunday on or before it, or one week earlier still.
std::optional<NSDate> sundayBefore(const NSCalendar& calendar, NSDate date,
                                   bool twoWeeks) noexcept {
  const NSDateComponents fields =
      calendar.components(NSCalendarUnitWeekday | NSCalendarUnitWeek, date);
  NSDateComponents step;
  step.setDay(1 - fields.weekday());
  if (twoWeeks && fields.weekOfYear() % 2 != 0) step.setWeekOfYear(-1);
  return calendar.dateByAddingComponents(step, date, 0);
}

NSInteger firstMonthOfQuarter(NSInteger month) noexcept {
  if (month <= 3) return 1;
  if (month <= 6) return 4;
  return month <= 9 ? 7 : 10;
}

}  // namespace

NSInteger intervalCountInYear(const NSCalendar& /*calendar*/,
                              ORLFCalendarInterval interval) noexcept {
  const IntervalRow* row = rowOf(interval);
  return row == nullptr ? 0 : row->countInYear;
}

std::string calendarUnitNameForIntervalType(const NSCalendar& /*calendar*/,
                                            ORLFCalendarInterval intervalType, bool capitalize,
                                            NSInteger unitCount) {
  const IntervalRow* row = rowOf(intervalType);
  if (row == nullptr || unitCount < 1) return "unknown";
  const bool plural = unitCount > 1;
  const char* const word = capitalize ? (plural ? row->pluralCapital : row->singleCapital)
                                      : (plural ? row->plural : row->single);
  return internal::process::localizedText(word);
}

std::optional<NSDate> dateByRoundingDownDate(const NSCalendar& calendar, NSDate date,
                                             ORLFCalendarInterval toInterval) noexcept {
  const bool twoWeeks = toInterval == ORLFCalendarIntervalTwoWeeks;
  const bool weeks = twoWeeks || toInterval == ORLFCalendarIntervalWeek;
  const std::optional<NSDate> day = weeks ? sundayBefore(calendar, date, twoWeeks) : date;
  if (!day || rowOf(toInterval) == nullptr) return std::nullopt;
  NSDateComponents fields = calendar.components(kDayFields, *day);
  if (fields.day() == NSDateComponentUndefined) return std::nullopt;
  if (toInterval == ORLFCalendarIntervalYear) fields.setMonth(1);
  if (toInterval == ORLFCalendarIntervalQuarter)
    fields.setMonth(firstMonthOfQuarter(fields.month()));
  if (!weeks && toInterval != ORLFCalendarIntervalDay) fields.setDay(1);
  return calendar.dateFromComponents(fields);
}

std::optional<NSDate> dateByAddingInterval(const NSCalendar& calendar,
                                           ORLFCalendarInterval interval, NSInteger count,
                                           NSDate toDate) noexcept {
  NSDateComponents step;
  if (const IntervalRow* row = rowOf(interval)) {
    NSInteger value = 0;
    if (__builtin_mul_overflow(count, row->addedPerInterval, &value)) return std::nullopt;
    step.setValueForComponent(value, row->added);
  }
  return calendar.dateByAddingComponents(step, toDate, 0);
}

NSInteger numberOfIntervals(const NSCalendar& calendar, ORLFCalendarInterval interval,
                            NSDate fromDate, NSDate toDate) noexcept {
  const IntervalRow* row = rowOf(interval);
  if (row == nullptr) return 0;
  const NSInteger count =
      calendar.components(row->counted, fromDate, toDate, 0).valueForComponent(row->counted);
  return count == NSDateComponentUndefined ? 0 : count / row->countedPerInterval;
}

bool dateOnSameDayAsDate(const NSCalendar& calendar, NSDate date, NSDate onSameDayAsDate) noexcept {
  const NSDateComponents day = calendar.components(kDayFields, date);
  return day.day() != NSDateComponentUndefined &&
         day == calendar.components(kDayFields, onSameDayAsDate);
}

}  // namespace ORLFoundation
