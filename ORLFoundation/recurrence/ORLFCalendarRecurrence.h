/// Questions that a calendar answers about a rule: the dates in a range, the nth date before or
/// after a date, whether a date belongs to the series, and a walk from a date.
///
///     std::vector<NSDate> dates = datesForRecurrenceRule(
///         *calendar,
///         {.recurrenceRule = *rule, .fromDate = from, .toDate = to, .referenceDate = start});
///     std::optional<NSDate> next = dateAfterDate(*calendar, date, *rule, 1, start);
///
/// The reference date fixes the phase of the series: a rule says every two weeks, the reference
/// date says which. nil takes the date in question. All answers come from the rule's own
/// enumeration, which first walks from the reference date toward the target and then over it; the
/// first of these walks matches the reference date's pattern exactly, the second does so only where
/// it is asked to.
///
/// Do not ask about a simple rule whose interval is 0: its series stands still on the reference
/// date, and a query that waits for a date beyond it, or before it, never returns. Those that the
/// reference date itself answers do: whether the rule includes it, and the range from and to it. A
/// rule with lists and an interval of 0 has no dates. An interval below 0 walks away from where it
/// looks, to the end of the calendar.
#pragma once

#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <optional>
#include <vector>

namespace ORLFoundation {

class NSCalendar;

struct ORLFDatesForRecurrenceRule {
  const ORLFDateRecurrenceRule& recurrenceRule;
  NSDate fromDate;
  NSDate toDate;
  std::optional<NSDate> referenceDate = std::nullopt;
  bool inclusive = false;
};
struct ORLFDateBeforeDate {
  NSDate date;
  const ORLFDateRecurrenceRule& usingRecurrenceRule;
  NSUInteger count = 1;
  std::optional<NSDate> referenceDate = std::nullopt;
  bool exactPatternMatch = false;
};
struct ORLFDateAfterDate {
  NSDate date;
  const ORLFDateRecurrenceRule& usingRecurrenceRule;
  NSUInteger count = 1;
  std::optional<NSDate> referenceDate = std::nullopt;
  bool exactMatch = false;
};
struct ORLFEnumerateDatesUsingRecurrenceRule {
  const ORLFDateRecurrenceRule& recurrenceRule;
  NSDate startDate;
  bool backwards = false;
  std::optional<NSDate> referenceDate = std::nullopt;
};

/// `datesForRecurrenceRule:fromDate:toDate:referenceDate:inclusive:`
/// The dates of the range, ascending. `fromDate` belongs to it; `toDate` only when `inclusive`.
/// Empty when the range is.
[[nodiscard]] std::vector<NSDate> datesForRecurrenceRule(
    const NSCalendar& calendar, const ORLFDatesForRecurrenceRule& arguments);

/// `dateBeforeDate:usingRecurrenceRule:count:referenceDate:`
/// The count-th date strictly before a date; a count of 0 is 1. A series that ends sooner gives the
/// last date that it had, nil when it had none.
[[nodiscard]] std::optional<NSDate> dateBeforeDate(
    const NSCalendar& calendar, NSDate date, const ORLFDateRecurrenceRule& usingRecurrenceRule,
    NSUInteger count, std::optional<NSDate> referenceDate);
/// `dateBeforeDate:usingRecurrenceRule:count:referenceDate:exactPatternMatch:`
[[nodiscard]] std::optional<NSDate> dateBeforeDate(const NSCalendar& calendar,
                                                   const ORLFDateBeforeDate& arguments);

/// `dateAfterDate:usingRecurrenceRule:count:referenceDate:`
/// The count-th date strictly after a date. A count of 0 is the date itself when the series holds
/// it, else the next: this exists in this direction only.
[[nodiscard]] std::optional<NSDate> dateAfterDate(const NSCalendar& calendar, NSDate date,
                                                  const ORLFDateRecurrenceRule& usingRecurrenceRule,
                                                  NSUInteger count,
                                                  std::optional<NSDate> referenceDate);
/// `dateAfterDate:usingRecurrenceRule:count:referenceDate:exactMatch:`
[[nodiscard]] std::optional<NSDate> dateAfterDate(const NSCalendar& calendar,
                                                  const ORLFDateAfterDate& arguments);

/// `recurrenceRule:includesDate:referenceDate:`  Whether the date is a date of the series, to the
/// fraction of a second: the right day at another time is not.
[[nodiscard]] bool recurrenceRuleIncludesDate(const NSCalendar& calendar,
                                              const ORLFDateRecurrenceRule& recurrenceRule,
                                              NSDate includesDate,
                                              std::optional<NSDate> referenceDate);

/// `enumerateDatesUsingRecurrenceRule:startDate:backwards:referenceDate:usingBlock:`
/// Walks the series from about a date until the block stops it. With a reference date on the near
/// side of the start the walk begins at the reference date, with one on the far side at the date of
/// the series next to the start on its near side: so dates come that lie before the start. This is
/// required; callers filter.
void enumerateDatesUsingRecurrenceRule(const NSCalendar& calendar,
                                       const ORLFEnumerateDatesUsingRecurrenceRule& arguments,
                                       ORLFDateRecurrenceBlock usingBlock);

}  // namespace ORLFoundation
