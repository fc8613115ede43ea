

#include <ORLFoundation/amortization/ORLFPaymentSchedules.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <initializer_list>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

using Recurrence = ORLFDateRecurrenceRule::Recurrence;
using Integers = ORLFDateRecurrenceRule::Integers;
using DaysOfTheWeek = ORLFDateRecurrenceRule::DaysOfTheWeek;

constexpr NSInteger kFriday = 6;
constexpr NSInteger kLast = -1;

ORLFPaymentSchedule schedule(Recurrence recurrence) {
  return std::make_shared<ORLFDateRecurrenceRule>(std::move(recurrence));
}

Integers list(std::initializer_list<NSInteger> values) { return std::vector<NSInteger>(values); }

DaysOfTheWeek everyWeek(NSInteger weekday) {
  return DaysOfTheWeek({ORLFDateRecurrenceDayOfWeek::dayOfWeek(weekday)});
}

ORLFPaymentSchedule weekly(std::optional<NSInteger> dayOfTheWeek, NSInteger interval,
                           bool absolute) {
  const NSInteger day = dayOfTheWeek.value_or(kFriday);
  if (day < 1 || day > 7) return nullptr;
  return schedule({.frequency = ORLFDateRecurrenceFrequencyWeekly,
                   .interval = interval,
                   .absolute = absolute,
                   .daysOfTheWeek = everyWeek(day)});
}

// A second payment left out: a fixed step after the first where that is sure to exist, else the
// value for what is last.
NSInteger secondOr(std::optional<NSInteger> second, NSInteger first, NSInteger step,
                   NSInteger lastFirst, NSInteger otherwise) {
  if (second) return *second;
  return first >= 1 && first <= lastFirst ? first + step : otherwise;
}

NSInteger dayOf(NSDate date, const NSCalendar& calendar) {
  return calendar.component(NSCalendarUnitDay, date);
}
NSInteger monthOf(NSDate date, const NSCalendar& calendar) {
  return calendar.component(NSCalendarUnitMonth, date);
}
NSInteger weekdayOf(NSDate date, const NSCalendar& calendar) {
  return calendar.component(NSCalendarUnitWeekday, date);
}
bool isPlaced(NSDate date, const NSCalendar& calendar) {
  return dayOf(date, calendar) != NSDateComponentUndefined;
}

template <class List>
NSUInteger countOf(const std::optional<List>& values) {
  return values ? values->size() : 0;
}

// How many days the rule names in each of its periods, at least one.
NSUInteger daysPerPeriod(const ORLFDateRecurrenceRule& rule) {
  const auto firstCount = [](std::initializer_list<NSUInteger> counts) {
    for (const NSUInteger count : counts)
      if (count != 0) return count;
    return NSUInteger{1};
  };
  switch (rule.frequency()) {
    case ORLFDateRecurrenceFrequencyYearly:
      return firstCount({countOf(rule.daysOfTheYear()), countOf(rule.weeksOfTheYear()),
                         countOf(rule.monthsOfTheYear())});
    case ORLFDateRecurrenceFrequencyMonthly:
      return firstCount({countOf(rule.daysOfTheMonth()), countOf(rule.daysOfTheWeek())});
    case ORLFDateRecurrenceFrequencyWeekly:
      return firstCount({countOf(rule.daysOfTheWeek())});
    default:
      return 1;
  }
}

NSUInteger periodsInYear(ORLFDateRecurrenceFrequency frequency) {
  switch (frequency) {
    case ORLFDateRecurrenceFrequencyYearly:
      return 1;
    case ORLFDateRecurrenceFrequencyMonthly:
      return 12;
    case ORLFDateRecurrenceFrequencyWeekly:
      return 52;
    case ORLFDateRecurrenceFrequencyQuarterly:
      return 4;
    case ORLFDateRecurrenceFrequencyDaily:
      return 365;
  }
  return 0;
}

}  // namespace

ORLFPaymentSchedule scheduleForWeeklyPayments(std::optional<NSInteger> dayOfTheWeek) {
  return weekly(dayOfTheWeek, 1, false);
}

ORLFPaymentSchedule scheduleForBiweeklyPayments(std::optional<NSInteger> dayOfTheWeek) {
  return weekly(dayOfTheWeek, 2, true);
}

ORLFPaymentSchedule scheduleForSemiMonthlyPayments(std::optional<NSInteger> firstPayment,
                                                   std::optional<NSInteger> secondPayment) {
  const NSInteger first = firstPayment.value_or(1);
  return schedule({.frequency = ORLFDateRecurrenceFrequencyMonthly,
                   .daysOfTheMonth = list({first, secondOr(secondPayment, first, 14, 17, kLast)})});
}

ORLFPaymentSchedule scheduleForMonthlyPayments(std::optional<NSInteger> day) {
  return schedule(
      {.frequency = ORLFDateRecurrenceFrequencyMonthly, .daysOfTheMonth = list({day.value_or(1)})});
}

ORLFPaymentSchedule scheduleForLastDayOfMonth() {
  return schedule({.frequency = ORLFDateRecurrenceFrequencyMonthly,
                   .daysOfTheWeek = DaysOfTheWeek(
                       {std::make_shared<ORLFDateRecurrenceDayOfWeek>(kLast, kLast)})});
}

ORLFPaymentSchedule scheduleForQuarterlyPayments() {
  return schedule({.frequency = ORLFDateRecurrenceFrequencyQuarterly});
}

ORLFPaymentSchedule scheduleForSemiAnnualPayments(std::optional<NSInteger> firstPayment,
                                                  std::optional<NSInteger> secondPayment) {
  const NSInteger first = firstPayment.value_or(1);
  return schedule(
      {.frequency = ORLFDateRecurrenceFrequencyYearly,
       .daysOfTheYear = list({first, secondOr(secondPayment, first, 182, 183, kLast)})});
}

ORLFPaymentSchedule scheduleForSemiAnnualPayments(std::optional<NSInteger> day,
                                                  std::optional<NSInteger> month1,
                                                  std::optional<NSInteger> month2) {
  const NSInteger first = month1.value_or(1);
  return schedule({.frequency = ORLFDateRecurrenceFrequencyYearly,
                   .daysOfTheMonth = list({day.value_or(1)}),
                   .monthsOfTheYear = list({first, secondOr(month2, first, 6, 6, 12)})});
}

ORLFPaymentSchedule scheduleForAnnualPayments(std::optional<NSInteger> month,
                                              std::optional<NSInteger> day) {
  return schedule({.frequency = ORLFDateRecurrenceFrequencyYearly,
                   .daysOfTheMonth = list({day.value_or(1)}),
                   .monthsOfTheYear = list({month.value_or(1)})});
}

ORLFPaymentSchedule absoluteScheduleForWeeklyPaymentsIncludingDate(NSDate date,
                                                                   const NSCalendar& inCalendar) {
  if (!isPlaced(date, inCalendar)) return nullptr;
  return schedule({.frequency = ORLFDateRecurrenceFrequencyWeekly,
                   .absolute = true,
                   .daysOfTheWeek = everyWeek(weekdayOf(date, inCalendar))});
}

ORLFPaymentSchedule absoluteScheduleForBiweeklyPaymentsIncludingDate(NSDate date,
                                                                     const NSCalendar& inCalendar) {
  if (!isPlaced(date, inCalendar)) return nullptr;
  constexpr NSInteger kWeeks = 2;
  return schedule(
      {.frequency = ORLFDateRecurrenceFrequencyWeekly,
       .interval = kWeeks,
       .anchorIndex = ORLFDateRecurrenceRule::anchorIndexForAbsoluteRecurrenceWithFrequency(
           ORLFDateRecurrenceFrequencyWeekly, kWeeks, date, inCalendar),
       .absolute = true,
       .daysOfTheWeek = everyWeek(weekdayOf(date, inCalendar))});
}

ORLFPaymentSchedule absoluteScheduleForMonthlyPaymentsIncludingDate(NSDate date,
                                                                    const NSCalendar& inCalendar) {
  if (!isPlaced(date, inCalendar)) return nullptr;
  return schedule({.frequency = ORLFDateRecurrenceFrequencyMonthly,
                   .absolute = true,
                   .daysOfTheMonth = list({dayOf(date, inCalendar)})});
}

ORLFPaymentSchedule absoluteScheduleForSemiMonthlyPaymentsIncludingDate(
    NSDate date, NSDate andDate, const NSCalendar& inCalendar) {
  if (!isPlaced(date, inCalendar) || !isPlaced(andDate, inCalendar)) return nullptr;
  return schedule({.frequency = ORLFDateRecurrenceFrequencyMonthly,
                   .daysOfTheMonth = list({dayOf(date, inCalendar), dayOf(andDate, inCalendar)})});
}

ORLFPaymentSchedule absoluteScheduleForQuarterlyPaymentsIncludingDate(
    NSDate date, const NSCalendar& inCalendar) {
  if (!isPlaced(date, inCalendar)) return nullptr;
  return schedule({.frequency = ORLFDateRecurrenceFrequencyQuarterly,
                   .daysOfTheMonth = list({dayOf(date, inCalendar)}),
                   .monthsOfTheYear = list({monthOf(date, inCalendar) % 3})});
}

ORLFPaymentSchedule absoluteScheduleForSemiAnnualPaymentsIncludingDate(
    NSDate date, std::optional<NSDate> andDate, const NSCalendar& inCalendar) {
  if (!isPlaced(date, inCalendar) || (andDate && !isPlaced(*andDate, inCalendar))) return nullptr;
  const NSInteger first = monthOf(date, inCalendar);
  const NSInteger second = andDate ? monthOf(*andDate, inCalendar) : (first + 6) % 12;
  return schedule({.frequency = ORLFDateRecurrenceFrequencyYearly,
                   .daysOfTheMonth = list({dayOf(date, inCalendar)}),
                   .monthsOfTheYear = list({first, second})});
}

ORLFPaymentSchedule absoluteScheduleForAnnualPaymentsIncludingDate(NSDate date,
                                                                   const NSCalendar& inCalendar) {
  if (!isPlaced(date, inCalendar)) return nullptr;
  return schedule({.frequency = ORLFDateRecurrenceFrequencyYearly,
                   .daysOfTheMonth = list({dayOf(date, inCalendar)}),
                   .monthsOfTheYear = list({monthOf(date, inCalendar)})});
}

NSUInteger numberOfPaymentPeriodsPerYear(const ORLFDateRecurrenceRule& rule) {
  if (rule.interval() < 1) return 0;
  const NSUInteger periods =
      periodsInYear(rule.frequency()) / static_cast<NSUInteger>(rule.interval());
  return periods * daysPerPeriod(rule);
}

}  // namespace ORLFoundation
