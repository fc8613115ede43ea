/// Lists of repeating dates. Every date of a series is counted from its anchor, never from the date
/// before, so that month ends do not drift.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>

#include <optional>
#include <vector>

namespace ORLFoundation {

/// What `orlfDatesOfEventsRepeatingWithUnit` takes.
struct ORLFRepeatingEvents {
  NSCalendarUnit unit;
  /// Units between two events. Its sign has no meaning; 0 is the anchor alone.
  NSInteger multiplier = 1;
  NSDate anchoredOnEventDate;
  std::optional<NSDate> fromDate = std::nullopt;
  /// nil is the current instant.
  std::optional<NSDate> toDate = std::nullopt;
  /// Whether an event on `toDate` itself belongs to the list; one on `fromDate` always does.
  bool inclusive = false;
};

/// `orlfDatesOfEventsRepeatingWithUnit:multiplier:anchoredOnEventDate:fromDate:toDate:inclusive:`
/// The anchor plus every whole number of steps that lies in the range, ascending. nil for a nil
/// `fromDate`, which fails the condition "fromDate != nil"; a range that runs backward fails
/// another and is empty. An anchor exactly on an inclusive `toDate`, with an earlier `fromDate`,
/// gives an empty list: required as it is. No instant comes twice: where the zone skipped a day,
/// the event of that day and the one of the day after it are one. Empty too where the calendar
/// cannot place one of the dates (not a number, infinite, beyond its years).
[[nodiscard]] std::optional<std::vector<NSDate>> orlfDatesOfEventsRepeatingWithUnit(
    const NSCalendar& calendar, const ORLFRepeatingEvents& events);

/// What `orlfDatesAtInterval` takes.
struct ORLFSteppedDates {
  NSInteger interval = 1;
  /// Whether the dates after the first are brought to the start of their unit.
  bool inAligned = false;
  NSCalendarUnit calendarUnit;
  NSDate firstDate;
  NSDate secondDate;
  /// Whether to step from the first date to the second, or the other way.
  bool startingWithFirst = true;
  bool sortAscending = true;
};

/// `orlfDatesAtInterval:inAligned:calendarUnit:firstDate:secondDate:startingWithFirst:sortAscending:`
/// The dates stepped through from one date toward the other, the one that reaches or passes it
/// included: at least two, even for equal dates. Steps that lead away end after the first; steps
/// into a day that the zone skipped go on to the next that there was. The list has one date where
/// the calendar cannot place one of the two.
[[nodiscard]] std::vector<NSDate> orlfDatesAtInterval(const NSCalendar& calendar,
                                                      const ORLFSteppedDates& dates);

}  // namespace ORLFoundation
