
#include <ORLFoundation/calendar/ORLFCalendarSeries.h>

#include <ORLFoundation/calendar/ORLFCalendarArithmetic.h>
#include <ORLFoundation/calendar/ORLFCalendarRounding.h>
#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <ORLFoundation/platform/base/CheckedArithmetic.h>
#include <ORLFoundation/support/diagnostics/ORLFCondition.h>
#include <ORLFoundation/support/diagnostics/ORLFDebugLog.h>

#include <algorithm>

namespace ORLFoundation {
namespace {

using internal::base::checkedDifference;
using internal::base::checkedSum;
using Dates = std::vector<NSDate>;

// Whether steps of so many units lead anywhere: none of length 0 do, nor those of a mask or of what
// is no unit.
bool moves(NSInteger step, NSCalendarUnit unit) {
  NSDateComponents fields;
  fields.setValueForComponent(step, unit);
  return step != 0 && fields.setUnits() != 0;
}

bool isPlaced(const NSCalendar& calendar, NSDate date) {
  return calendar.component(NSCalendarUnitDay, date) != NSDateComponentUndefined;
}

// The events on one side of the anchor, one step after the other, each instant once: a step into a
// day that the zone skipped gives the instant of the next. It ends where the calendar does, and at
// once where a step does not move.
class SeriesWalk {
 public:
  SeriesWalk(const NSCalendar& calendar, const ORLFRepeatingEvents& events, bool backward)
      : calendar_(calendar),
        events_(events),
        step_(moves(events.multiplier, events.unit) ? events.multiplier : 0) {
    if (backward != (step_ < 0)) step_ = checkedDifference(NSInteger{0}, step_).value_or(0);
  }

  // Leaves out the steps that surely do not reach the date.
  void jumpTowards(NSDate date) {
    if (step_ == 0) return;
    const NSInteger units =
        orlfIntervalInCalendarUnit(calendar_, events_.unit, events_.anchoredOnEventDate, date);
    // Clamped and skipped days, and quarters that are counted by their boundaries, take one more.
    constexpr NSInteger kMargin = 2;
    offset_ = std::max<NSInteger>(units / step_ - kMargin, 0) * step_;
  }

  std::optional<NSDate> next() {
    while (step_ != 0) {
      const auto offset = checkedSum(offset_, step_);
      if (!offset) break;
      offset_ = *offset;
      const auto date =
          orlfDateByAddingInterval(calendar_, offset_, events_.unit, events_.anchoredOnEventDate);
      if (date == last_) continue;
      last_ = date;
      return date;
    }
    return std::nullopt;
  }

 private:
  const NSCalendar& calendar_;
  const ORLFRepeatingEvents& events_;
  NSInteger step_;
  NSInteger offset_ = 0;
  std::optional<NSDate> last_ = events_.anchoredOnEventDate;
};

struct Range {
  NSDate from, to;
  bool inclusive;

  [[nodiscard]] bool within(NSDate date) const {
    return inclusive ? orlfIsOnOrBefore(date, to) : orlfIsBefore(date, to);
  }
  [[nodiscard]] bool past(NSDate date) const {
    return inclusive ? orlfIsAfter(date, to) : orlfIsOnOrAfter(date, to);
  }
};

void addWithin(SeriesWalk& walk, std::optional<NSDate> date, const Range& range, Dates& dates) {
  for (; date && range.within(*date); date = walk.next()) dates.push_back(*date);
}

void addDownToStart(SeriesWalk& walk, std::optional<NSDate> date, const Range& range,
                    Dates& dates) {
  for (; date && orlfIsOnOrAfter(*date, range.from); date = walk.next()) dates.push_back(*date);
}

// The anchor lies in the range: both sides of it.
Dates datesAround(const NSCalendar& calendar, const ORLFRepeatingEvents& events,
                  const Range& range) {
  Dates dates{events.anchoredOnEventDate};
  SeriesWalk back(calendar, events, true);
  addDownToStart(back, back.next(), range, dates);
  SeriesWalk forward(calendar, events, false);
  addWithin(forward, forward.next(), range, dates);
  std::sort(dates.begin(), dates.end(), orlfIsBefore);
  return dates;
}

Dates datesAfter(const NSCalendar& calendar, const ORLFRepeatingEvents& events,
                 const Range& range) {
  Dates dates;
  SeriesWalk forward(calendar, events, false);
  forward.jumpTowards(range.from);
  auto date = forward.next();
  while (date && orlfIsBefore(*date, range.from)) date = forward.next();
  addWithin(forward, date, range, dates);
  return dates;
}

Dates datesBefore(const NSCalendar& calendar, const ORLFRepeatingEvents& events,
                  const Range& range) {
  if (!range.past(events.anchoredOnEventDate)) {
    _ORLFDebugLog("Wtf did you do??");
    return {};
  }
  Dates dates;
  SeriesWalk back(calendar, events, true);
  back.jumpTowards(range.to);
  auto date = back.next();
  while (date && range.past(*date)) date = back.next();
  addDownToStart(back, date, range, dates);
  std::sort(dates.begin(), dates.end(), orlfIsBefore);
  return dates;
}

// The date a step on, or as many steps as it takes to leave the instant: a step into a day that the
// zone skipped may lead back to where it began.
std::optional<NSDate> dateOnward(const NSCalendar& calendar, const ORLFSteppedDates& dates,
                                 NSInteger step, NSDate current) {
  std::optional<NSInteger> offset = step;
  std::optional<NSDate> next;
  do {
    next = orlfDateByAddingInterval(calendar, *offset, dates.calendarUnit, current);
    offset = checkedSum(*offset, step);
  } while (next && next->isEqualToDate(current) && offset && moves(step, dates.calendarUnit));
  return next;
}

// The next date of a stepped list.
std::optional<NSDate> steppedDate(const NSCalendar& calendar, const ORLFSteppedDates& dates,
                                  NSInteger step, bool backward, NSDate current) {
  const auto next = dateOnward(calendar, dates, step, current);
  if (!dates.inAligned) return next;
  if (!backward)
    return orlfDateByRoundingDateDownToCalendarUnit(calendar, next, dates.calendarUnit);
  const auto start =
      orlfDateByRoundingDateDownToCalendarUnit(calendar, current, dates.calendarUnit);
  return start && !start->isEqualToDate(current) ? start : next;
}

}  // namespace

std::optional<Dates> orlfDatesOfEventsRepeatingWithUnit(const NSCalendar& calendar,
                                                        const ORLFRepeatingEvents& events) {
  ORLFConditionAssert(events.fromDate.has_value(), "fromDate != nil",
                      "Can't pass nil for fromDate");
  if (!events.fromDate) return std::nullopt;
  const Range range{*events.fromDate, events.toDate.value_or(NSDate::date()), events.inclusive};
  ORLFConditionAssert(range.from.compare(range.to) != NSOrderedDescending,
                      "[fromDate compare:toDate] != NSOrderedDescending",
                      "fromDate must not be after toDate");
  const NSDate anchor = events.anchoredOnEventDate;
  if (!isPlaced(calendar, anchor) || !isPlaced(calendar, range.from) ||
      !isPlaced(calendar, range.to))
    return Dates{};
  if (orlfIsBefore(anchor, range.from)) return datesAfter(calendar, events, range);
  if (orlfIsAfter(range.to, anchor)) return datesAround(calendar, events, range);
  return datesBefore(calendar, events, range);
}

Dates orlfDatesAtInterval(const NSCalendar& calendar, const ORLFSteppedDates& dates) {
  NSDate current = dates.startingWithFirst ? dates.firstDate : dates.secondDate;
  const NSDate limit = dates.startingWithFirst ? dates.secondDate : dates.firstDate;
  const bool backward = current.compare(limit) == NSOrderedDescending;
  NSInteger step = dates.interval;
  if (backward) step = checkedDifference(NSInteger{0}, step).value_or(NSIntegerMax);

  Dates list{current};
  if (!isPlaced(calendar, limit)) return list;
  const auto ahead = backward ? orlfIsAfter : orlfIsBefore;
  for (bool more = true; more;) {
    const auto next = steppedDate(calendar, dates, step, backward, current);
    if (!next) break;
    more = ahead(current, *next) && ahead(*next, limit);
    current = *next;
    list.push_back(current);
  }
  std::stable_sort(list.begin(), list.end(), dates.sortAscending ? orlfIsBefore : orlfIsAfter);
  return list;
}

}  // namespace ORLFoundation
