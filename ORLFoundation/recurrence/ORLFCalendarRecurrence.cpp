
#include <ORLFoundation/recurrence/ORLFCalendarRecurrence.h>

#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <ORLFoundation/platform/time/NSCalendar.h>

namespace ORLFoundation {
namespace {

struct Direction {
  bool backwards;
  bool exact;
};

void walk(const ORLFDateRecurrenceRule& rule, const NSCalendar& calendar, NSDate start,
          Direction direction, ORLFDateRecurrenceBlock block) {
  rule.enumerateDatesForCalendarStartDate({.calendar = calendar,
                                           .startDate = start,
                                           .backwards = direction.backwards,
                                           .exactPatternMatch = direction.exact},
                                          block);
}

/// Walks toward a target, by the exact pattern, and answers the first date for which `reached`
/// holds, else the last one, else nil.
template <class Reached>
std::optional<NSDate> position(const ORLFDateRecurrenceRule& rule, const NSCalendar& calendar,
                               NSDate start, bool backwards, Reached reached) {
  std::optional<NSDate> found;
  walk(rule, calendar, start, {.backwards = backwards, .exact = true},
       [&](NSDate date, NSUInteger, bool& stop) {
         found = date;
         stop = reached(date);
       });
  return found;
}

/// Walks from `start` and answers the count-th date that lies `beyond` the date asked about, a
/// count of 0 taken for 1; the last date of the walk when it ends sooner.
template <class Beyond>
std::optional<NSDate> countedDate(const ORLFDateRecurrenceRule& rule, const NSCalendar& calendar,
                                  NSDate start, Direction direction, NSUInteger count,
                                  Beyond beyond) {
  std::optional<NSDate> result;
  NSUInteger base = 0;
  walk(rule, calendar, start, direction, [&](NSDate date, NSUInteger index, bool& stop) {
    result = date;
    if (!beyond(date))
      base = index;
    else if (index - base >= count)
      stop = true;
  });
  return result;
}

}  // namespace

std::vector<NSDate> datesForRecurrenceRule(const NSCalendar& calendar,
                                           const ORLFDatesForRecurrenceRule& arguments) {
  const auto& [rule, fromDate, toDate, referenceDate, inclusive] = arguments;
  std::vector<NSDate> dates;
  const bool holdsAny =
      inclusive ? orlfIsOnOrBefore(fromDate, toDate) : orlfIsBefore(fromDate, toDate);
  if (!holdsAny) return dates;

  const NSDate start = referenceDate.value_or(fromDate);
  std::optional<NSDate> found;
  if (orlfIsBefore(fromDate, start))
    found = position(rule, calendar, start, true,
                     [from = fromDate](NSDate date) { return orlfIsBefore(date, from); });

  walk(rule, calendar, found.value_or(start), {.backwards = false, .exact = false},
       [&, from = fromDate, to = toDate, closed = inclusive](NSDate date, NSUInteger, bool& stop) {
         const bool beforeEnd = closed ? orlfIsOnOrBefore(date, to) : orlfIsBefore(date, to);
         if (orlfIsOnOrAfter(date, from) && beforeEnd) dates.push_back(date);
         stop = orlfIsOnOrAfter(date, to);
       });
  return dates;
}

std::optional<NSDate> dateBeforeDate(const NSCalendar& calendar, NSDate date,
                                     const ORLFDateRecurrenceRule& usingRecurrenceRule,
                                     NSUInteger count, std::optional<NSDate> referenceDate) {
  return dateBeforeDate(calendar, {.date = date,
                                   .usingRecurrenceRule = usingRecurrenceRule,
                                   .count = count,
                                   .referenceDate = referenceDate});
}

std::optional<NSDate> dateBeforeDate(const NSCalendar& calendar,
                                     const ORLFDateBeforeDate& arguments) {
  const ORLFDateRecurrenceRule& rule = arguments.usingRecurrenceRule;
  const NSDate date = arguments.date;
  NSDate start = arguments.referenceDate.value_or(date);
  if (orlfIsBefore(start, date))
    start = position(rule, calendar, start, false, [date](NSDate found) {
              return orlfIsOnOrAfter(found, date);
            }).value_or(start);
  return countedDate(rule, calendar, start,
                     {.backwards = true, .exact = arguments.exactPatternMatch}, arguments.count,
                     [date](NSDate found) { return orlfIsBefore(found, date); });
}

std::optional<NSDate> dateAfterDate(const NSCalendar& calendar, NSDate date,
                                    const ORLFDateRecurrenceRule& usingRecurrenceRule,
                                    NSUInteger count, std::optional<NSDate> referenceDate) {
  return dateAfterDate(calendar, {.date = date,
                                  .usingRecurrenceRule = usingRecurrenceRule,
                                  .count = count,
                                  .referenceDate = referenceDate});
}

std::optional<NSDate> dateAfterDate(const NSCalendar& calendar,
                                    const ORLFDateAfterDate& arguments) {
  const ORLFDateRecurrenceRule& rule = arguments.usingRecurrenceRule;
  const NSDate date = arguments.date;
  if (arguments.count == 0 &&
      recurrenceRuleIncludesDate(calendar, rule, date, arguments.referenceDate))
    return date;
  NSDate start = arguments.referenceDate.value_or(date);
  if (orlfIsAfter(start, date))
    start = position(rule, calendar, start, true, [date](NSDate found) {
              return orlfIsOnOrBefore(found, date);
            }).value_or(start);
  return countedDate(rule, calendar, start, {.backwards = false, .exact = arguments.exactMatch},
                     arguments.count, [date](NSDate found) { return orlfIsAfter(found, date); });
}

bool recurrenceRuleIncludesDate(const NSCalendar& calendar,
                                const ORLFDateRecurrenceRule& recurrenceRule, NSDate includesDate,
                                std::optional<NSDate> referenceDate) {
  const NSDate start = referenceDate.value_or(includesDate);
  const auto meets = [&](bool backwards) {
    bool included = false;
    walk(recurrenceRule, calendar, start, {.backwards = backwards, .exact = false},
         [&](NSDate date, NSUInteger, bool& stop) {
           stop = backwards ? orlfIsOnOrBefore(date, includesDate)
                            : orlfIsOnOrAfter(date, includesDate);
           if (stop) included = date.isEqualToDate(includesDate);
         });
    return included;
  };
  return meets(true) || meets(false);
}

namespace {

/// Where the caller's walk begins; nil when the series has no date there.
std::optional<NSDate> startOfWalk(const NSCalendar& calendar,
                                  const ORLFEnumerateDatesUsingRecurrenceRule& arguments) {
  const auto& [rule, startDate, backwards, referenceDate] = arguments;
  if (!referenceDate) return startDate;
  if (backwards) {
    if (!orlfIsBefore(*referenceDate, startDate)) return referenceDate;
    return dateAfterDate(calendar, {.date = startDate,
                                    .usingRecurrenceRule = rule,
                                    .referenceDate = referenceDate,
                                    .exactMatch = true});
  }
  if (!orlfIsAfter(*referenceDate, startDate)) return referenceDate;
  return dateBeforeDate(calendar, {.date = startDate,
                                   .usingRecurrenceRule = rule,
                                   .referenceDate = referenceDate,
                                   .exactPatternMatch = true});
}

}  // namespace

void enumerateDatesUsingRecurrenceRule(const NSCalendar& calendar,
                                       const ORLFEnumerateDatesUsingRecurrenceRule& arguments,
                                       ORLFDateRecurrenceBlock usingBlock) {
  const std::optional<NSDate> walkStart = startOfWalk(calendar, arguments);
  if (!walkStart) return;
  NSUInteger skipped = 0;
  walk(arguments.recurrenceRule, calendar, *walkStart,
       {.backwards = arguments.backwards, .exact = false},
       [&](NSDate date, NSUInteger index, bool& stop) {
         const bool onWay = arguments.backwards ? orlfIsOnOrAfter(*walkStart, date)
                                                : orlfIsOnOrBefore(*walkStart, date);
         if (onWay)
           usingBlock(date, index - skipped, stop);
         else
           ++skipped;
       });
}

}  // namespace ORLFoundation
