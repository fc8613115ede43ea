
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <ORLFoundation/calendar/ORLFCalendarRounding.h>
#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <ORLFoundation/platform/base/CheckedArithmetic.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/recurrence/ORLFFrequencyFacts.h>
#include <ORLFoundation/recurrence/internal/ORLFRecurrenceArithmetic.h>
#include <ORLFoundation/support/diagnostics/ORLFDebugLog.h>

namespace ORLFoundation {

using namespace internal::recurrence;

namespace {

/// The span of a quarterly rule where its series begins; its slots count three months each. The
/// difference is required.
constexpr NSInteger kMonthsPerQuarterlySpan = 12;

constexpr NSUInteger kElapsedUnits =
    NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay | NSCalendarUnitWeekOfYear;

bool isElapsedUnit(NSCalendarUnit unit) {
  const auto bits = static_cast<NSUInteger>(unit);
  return (bits & (bits - 1)) == 0 && (bits & kElapsedUnits) != 0;
}

/// A count of the difference between two dates; 0 where the calendar could not tell.
NSInteger countOf(const NSDateComponents& difference, NSCalendarUnit unit) {
  const NSInteger count = difference.valueForComponent(unit);
  return count == NSDateComponentUndefined ? 0 : count;
}

/// How far along its series a date is. Days before the anchor count as one unit more.
NSInteger positionOf(NSInteger elapsed, NSInteger days) {
  if (days < 0) return wrappedSum(1, static_cast<NSInteger>(-static_cast<NSUInteger>(elapsed)));
  return elapsed < 0 ? static_cast<NSInteger>(-static_cast<NSUInteger>(elapsed)) : elapsed;
}

NSInteger spanOf(NSInteger interval, NSInteger unitsEach) {
  return internal::base::checkedProduct(interval, unitsEach).value_or(NSIntegerMax);
}

/// The earliest date at or before the first slot of the anchor's span that a pattern describes.
std::optional<NSDate> firstOfPatterns(const ORLFDateRecurrenceRule& rule,
                                      const NSCalendar& calendar) {
  const auto patterns = rule.matchingDateComponentsOld();
  const auto anchor = ORLFDateRecurrenceRule::universalAnchorDateInCalendar(calendar);
  if (!patterns || !anchor) return std::nullopt;
  const auto units = internal::base::checkedProduct(
      1 - rule.interval(), isQuarterly(rule.frequency()) ? kMonthsPerQuarterlySpan : 1);
  const auto origin =
      units ? calendar.dateByAddingUnit(steppingUnitOf(rule.frequency()), *units, *anchor, 0)
            : std::nullopt;
  if (!origin) return std::nullopt;
  std::optional<NSDate> first;
  for (const NSDateComponents& pattern : *patterns) {
    const auto date = calendar.nextDateAfterDate(
        *origin, pattern, NSCalendarMatchStrictly | NSCalendarSearchBackwards);
    if (date && (!first || orlfIsBefore(*date, *first))) first = date;
  }
  return first;
}

}  // namespace

std::optional<NSDate> ORLFDateRecurrenceRule::universalAnchorDateInCalendar(
    const NSCalendar& calendar) noexcept {
  constexpr NSInteger kAnchorYear = 2012;
  NSDateComponents components;
  components.setYear(kAnchorYear);
  components.setMonth(1);
  components.setDay(1);
  return calendar.dateFromComponents(components);
}

NSInteger ORLFDateRecurrenceRule::anchorIndexForAbsoluteRecurrenceWithFrequency(
    ORLFDateRecurrenceFrequency frequency, NSInteger interval, NSDate occurrenceDate,
    const NSCalendar& inCalendar) noexcept {
  const NSCalendarUnit unit = steppingUnitOf(frequency);
  const std::optional<NSDate> anchor = universalAnchorDateInCalendar(inCalendar);
  NSDateComponents difference;
  if (anchor)
    difference = inCalendar.components(unit | NSCalendarUnitDay, *anchor, occurrenceDate, 0);
  NSInteger elapsed = 0;
  if (isElapsedUnit(unit))
    elapsed = countOf(difference, unit);
  else
    _ORLFDebugLog("Unexpected frequency");
  const NSInteger span = spanOf(interval, isQuarterly(frequency) ? kMonthsPerQuarter : 1);
  return remainder(positionOf(elapsed, countOf(difference, NSCalendarUnitDay)), span) + 1;
}

std::optional<NSDate> ORLFDateRecurrenceRule::canonicalReferenceDateForDate(
    std::optional<NSDate> date, const NSCalendar& inCalendar) const {
  const auto day = orlfDateByRoundingDateDownToCalendarUnit(
      inCalendar, date ? *date : NSDate::date(), NSCalendarUnitDay);
  if (!day || !absolute() || interval() < 2) return day;

  const NSCalendarUnit unit = steppingUnitOf(frequency());
  const NSInteger span = spanOf(interval(), isQuarterly(frequency()) ? kMonthsPerQuarterlySpan : 1);
  const std::optional<NSDate> first = firstOfPatterns(*this, inCalendar);
  NSDateComponents components;
  if (first) components = inCalendar.components(unit | NSCalendarUnitDay, *first, *day, 0);
  NSInteger elapsed = 0;
  if (!isQuarterly(frequency()) && isElapsedUnit(unit))
    elapsed = countOf(components, unit);
  else
    _ORLFDebugLog("Unexpected frequency");

  const NSInteger position = positionOf(elapsed, countOf(components, NSCalendarUnitDay));
  const NSInteger offset = span - 1 - remainder(position, span);
  components.setDay(0);
  if (isElapsedUnit(unit)) components.setValueForComponent(offset, unit);
  return inCalendar.dateByAddingComponents(components, *day, 0);
}

std::vector<NSDate> ORLFDateRecurrenceRule::boundingDatesForReferenceDate(
    std::optional<NSDate> date, const NSCalendar& inCalendar) const {
  const NSDate reference = date ? *date : NSDate::date();
  const auto firstOfWalk = [&](bool backwards) {
    std::optional<NSDate> first;
    enumerateDatesForCalendarRefernceDate(
        {.calendar = inCalendar, .refernceDate = reference, .backwards = backwards},
        [&](NSDate found, NSUInteger, bool& stop) {
          if (!first) first = found;
          stop = true;
        });
    return first;
  };
  const std::optional<NSDate> previous = firstOfWalk(true);
  const std::optional<NSDate> next = firstOfWalk(false);
  if (!previous || !next) return {};
  return {*previous, *next};
}

}  // namespace ORLFoundation
