#include <ORLFoundation/recurrence/internal/ORLFExactPattern.h>

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/recurrence/internal/ORLFRuleLists.h>

namespace ORLFoundation::internal::recurrence {
namespace {

using Rule = ORLFDateRecurrenceRule;

Rule::Recurrence withoutLists(const Rule& rule) {
  return {.frequency = rule.frequency(), .interval = rule.interval()};
}

std::optional<Rule::Recurrence> exactDay(const Rule& rule, const NSDateComponents& date) {
  if (holdsEntries(rule.daysOfTheMonth())) return std::nullopt;
  Rule::Recurrence exact = withoutLists(rule);
  exact.daysOfTheMonth = {{date.day()}};
  return exact;
}

std::optional<Rule::Recurrence> exactWeekday(const Rule& rule, const NSDateComponents& date) {
  if (holdsEntries(rule.daysOfTheWeek())) return std::nullopt;
  Rule::Recurrence exact = withoutLists(rule);
  exact.daysOfTheWeek = {{ORLFDateRecurrenceDayOfWeek::dayOfWeek(date.weekday())}};
  return exact;
}

std::optional<Rule::Recurrence> exactDayAndMonth(const Rule& rule, const NSDateComponents& date) {
  Rule::Recurrence exact = withoutLists(rule);
  exact.daysOfTheMonth = rule.daysOfTheMonth();
  if (!holdsEntries(exact.daysOfTheMonth)) exact.daysOfTheMonth = {{date.day()}};
  exact.monthsOfTheYear = {{date.month()}};
  return exact;
}

}  // namespace

std::optional<Rule::Recurrence> exactPattern(const Rule& rule, NSDate referenceDate,
                                             const NSCalendar& calendar) {
  const NSDateComponents date = calendar.components(
      NSCalendarUnitMonth | NSCalendarUnitDay | NSCalendarUnitWeekday, referenceDate);
  switch (rule.frequency()) {
    case ORLFDateRecurrenceFrequencyDaily:
      break;
    case ORLFDateRecurrenceFrequencyMonthly:
    case ORLFDateRecurrenceFrequencyQuarterly:
      return exactDay(rule, date);
    case ORLFDateRecurrenceFrequencyWeekly:
      return exactWeekday(rule, date);
    case ORLFDateRecurrenceFrequencyYearly:
      return exactDayAndMonth(rule, date);
  }
  return std::nullopt;
}

}  // namespace ORLFoundation::internal::recurrence
