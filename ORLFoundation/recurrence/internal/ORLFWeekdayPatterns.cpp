#include <ORLFoundation/recurrence/internal/ORLFWeekdayPatterns.h>

namespace ORLFoundation::internal::recurrence {
namespace {

/// How far a search for a qualifying day goes. A month is enough for every pattern that can
/// describe a date; the rest keeps patterns apart that describe none.
constexpr int kLongestSearch = 3660;

void checkValid(const NSDateComponents& pattern, const ORLFPeriodContext& period,
                ORLFPatternConditions& conditions) {
  conditions.check(period.isValid(pattern), "[dateComponent isValidDateInCalendar:calendar]",
                   "This should be valid... gulp");
}

void placeWeekday(const ORLFWeekdayEntry& entry, NSDateComponents& pattern,
                  ORLFPatternConditions& conditions) {
  pattern.setWeekday(entry.weekday);
  conditions.write(pattern, kWeekdayOrdinalField, entry.number);
}

void placeWeekdayInWeekOfDate(ORLFWeekdayEntry& entry, NSDateComponents& pattern,
                              const ORLFPeriodContext& period) {
  pattern.setWeekday(entry.weekday);
  entry.number = period.field(NSCalendarUnitWeekOfMonth);
  pattern.setWeekOfMonth(entry.number);
}

/// The last place that the weekday may have in the date's month, or the one before it where the
/// month, as the pattern names it, does not hold that many.
void placeLastWeekday(const ORLFWeekdayEntry& entry, NSDateComponents& pattern,
                      const ORLFPeriodContext& period, ORLFPatternConditions& conditions) {
  conditions.check(period.matches(pattern),
                   "[calendar date:dateForComponent matchesComponents:dateComponent]",
                   "We should always match this date");
  if (period.date()) {
    const NSInteger last = period.lastInMonth(NSCalendarUnitWeekdayOrdinal);
    pattern.setWeekday(entry.weekday);
    pattern.setWeekdayOrdinal(last);
    NSDateComponents inMonth = pattern;
    if (inMonth.month() == NSDateComponentUndefined)
      inMonth.setMonth(period.field(NSCalendarUnitMonth));
    const bool isValid = period.isValid(inMonth);
    if (isValid && inMonth == pattern) return;
    if (!isValid) pattern.setWeekdayOrdinal(last - 1);
  }
  checkValid(pattern, period, conditions);
}

/// Sets the last day of the month that the pattern describes. One that describes none is logged and
/// stays as it is.
void placeLastDay(NSDateComponents& pattern, const ORLFPeriodContext& period,
                  ORLFPatternConditions& conditions) {
  const std::optional<NSDate> resolved = period.resolve(pattern);
  conditions.check(resolved.has_value(), "dateForComponent != nil",
                   "We should always have date at this point");
  if (resolved) pattern.setDay(period.lastInMonth(NSCalendarUnitDay, *resolved));
}

bool qualifies(NSInteger weekday, NSDate date, const ORLFPeriodContext& period) {
  return period.isInWeekend(date) == (weekday == kWeekendDay);
}

/// Moves the pattern's day on, by `step` at a time, to the nth that qualifies.
void seekQualifyingDay(NSInteger weekday, NSInteger number, NSInteger step,
                       NSDateComponents& pattern, const ORLFPeriodContext& period) {
  NSInteger remaining = number;
  for (int days = 0; days < kLongestSearch; ++days) {
    const std::optional<NSDate> resolved = period.resolve(pattern);
    if (!resolved) return;
    if (qualifies(weekday, *resolved, period)) --remaining;
    if (remaining == 0) return;
    pattern.setDay(pattern.day() + step);
  }
}

void placeDay(const ORLFWeekdayEntry& entry, NSDateComponents& pattern,
              const ORLFPeriodContext& period, ORLFPatternConditions& conditions) {
  if (pattern.month() == NSDateComponentUndefined)
    pattern.setMonth(period.field(NSCalendarUnitMonth));
  const bool fromStart = entry.number > 0;
  if (fromStart)
    pattern.setDay(entry.weekday == kAnyDay ? entry.number : 1);
  else
    placeLastDay(pattern, period, conditions);
  if (entry.weekday != kAnyDay)
    seekQualifyingDay(entry.weekday, fromStart ? entry.number : 1, fromStart ? 1 : -1, pattern,
                      period);
  checkValid(pattern, period, conditions);
}

}  // namespace

void applyWeekdayEntry(ORLFWeekdayEntry& entry, NSDateComponents& pattern,
                       ORLFDateRecurrenceFrequency frequency, const ORLFPeriodContext& period,
                       ORLFPatternConditions& conditions) {
  const bool weekly = frequency == ORLFDateRecurrenceFrequencyWeekly;
  if (entry.weekday < 0) return placeDay(entry, pattern, period, conditions);
  if (entry.number > 0) return placeWeekday(entry, pattern, conditions);
  if (!weekly) return placeLastWeekday(entry, pattern, period, conditions);
  if (entry.number == 0) return placeWeekdayInWeekOfDate(entry, pattern, period);
  placeWeekday(entry, pattern, conditions);
}

}  // namespace ORLFoundation::internal::recurrence
