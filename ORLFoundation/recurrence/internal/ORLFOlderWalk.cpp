
#include <ORLFoundation/recurrence/internal/ORLFOlderWalk.h>

#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <ORLFoundation/platform/base/CheckedArithmetic.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/recurrence/ORLFFrequencyFacts.h>
#include <ORLFoundation/recurrence/internal/ORLFOlderPatterns.h>
#include <ORLFoundation/recurrence/internal/ORLFRecurrenceArithmetic.h>
#include <ORLFoundation/recurrence/internal/ORLFRuleLists.h>

#include <algorithm>

namespace ORLFoundation::internal::recurrence {
namespace {

constexpr NSUInteger kLookBack = NSCalendarMatchStrictly | NSCalendarSearchBackwards;

/// Whether the calendar knows a date of the pattern: a search in either direction covers the years
/// after which the calendar repeats itself.
bool isEverMatched(const NSDateComponents& pattern, const NSCalendar& calendar, NSDate from) {
  return calendar.date(from, pattern) || calendar.nextDateAfterDate(from, pattern, kLookBack) ||
         calendar.nextDateAfterDate(from, pattern, NSCalendarMatchStrictly);
}

}  // namespace

ORLFOlderWalk::ORLFOlderWalk(const ORLFDateRecurrenceRule& rule,
                             const ORLFDateRecurrenceRule::EnumerateDatesRefernceDate& arguments,
                             ORLFDateRecurrenceBlock usingBlock)
    : rule_(rule),
      arguments_(arguments),
      usingBlock_(usingBlock),
      patterns_(olderPatterns(rule)),
      unit_(steppingUnitOf(rule.frequency())) {}

void ORLFOlderWalk::run() {
  const std::optional<NSDate> start = base();
  if (!start || !canPickFrom(*start)) return;
  const bool standsStill = rule_.interval() == 0;
  const bool mayRepeat = !standsStill && unit_ == NSCalendarUnitDay;
  std::optional<NSDate> last;
  for (NSInteger number = 0; !stop_; ++number) {
    const std::optional<NSDate> period = dateOfPeriod(*start, number);
    if (!period) return;
    // A day that the zone skipped has the instant of the day after it.
    if (mayRepeat && period == last) continue;
    last = period;
    collectPeriod(*period);
    if (dates_.empty()) return;
    if (!deliver() && standsStill) return;
  }
}

/// Every period has a date for each pattern that is ever matched, so one look tells whether any
/// position reaches that far. Near an end of the calendar periods have fewer; there the walk ends.
bool ORLFOlderWalk::canPickFrom(NSDate start) const {
  if (!holdsEntries(rule_.setPositions())) return true;
  NSUInteger most = 1;
  if (patterns_) {
    most = static_cast<NSUInteger>(
        std::count_if(patterns_->begin(), patterns_->end(), [&](const NSDateComponents& pattern) {
          return isEverMatched(pattern, arguments_.calendar, start);
        }));
  }
  const auto& positions = *rule_.setPositions();
  return std::any_of(positions.begin(), positions.end(), [most](NSInteger position) {
    const auto places = static_cast<NSUInteger>(position);
    const NSUInteger reach = position < 0 ? -places : places;
    return reach >= 1 && reach <= most;
  });
}

/// The reference date, of an absolute rule the canonical one, moved to the rule's anchor.
std::optional<NSDate> ORLFOlderWalk::base() const {
  std::optional<NSDate> date = arguments_.refernceDate;
  if (rule_.absolute()) date = rule_.canonicalReferenceDateForDate(date, arguments_.calendar);
  if (!date || rule_.interval() < 2) return date;
  const auto slots = base::checkedDifference(rule_.anchorIndex(), rule_.interval());
  const NSInteger unitsPerSlot = isQuarterly(rule_.frequency()) ? kMonthsPerQuarter : 1;
  const auto units = slots ? base::checkedProduct(*slots, unitsPerSlot) : std::nullopt;
  if (!units) return std::nullopt;
  return arguments_.calendar.dateByAddingUnit(unit_, *units, *date, NSCalendarSearchBackwards);
}

/// Forward begins one interval after the base, backward at it. With patterns a quarterly rule steps
/// by whole years, because its patterns name a month in each quarter.
std::optional<NSDate> ORLFOlderWalk::dateOfPeriod(NSDate base, NSInteger number) const noexcept {
  const auto step =
      base::checkedProduct(rule_.interval(), arguments_.backwards ? -number : number + 1);
  NSInteger units = 1;
  if (isQuarterly(rule_.frequency())) units = patterns_ ? kMonthsPerYear : kMonthsPerQuarter;
  const auto count = step ? base::checkedProduct(*step, units) : std::nullopt;
  if (!count) return std::nullopt;
  return arguments_.calendar.dateByAddingUnit(unit_, *count, base, 0);
}

void ORLFOlderWalk::collectPeriod(NSDate period) {
  dates_.clear();
  if (!patterns_) {
    dates_.assign(1, period);
    return;
  }
  const NSCalendar& calendar = arguments_.calendar;
  for (const NSDateComponents& pattern : *patterns_) {
    const auto date = calendar.date(period, pattern)
                          ? period
                          : calendar.nextDateAfterDate(period, pattern, kLookBack);
    if (date) dates_.push_back(*date);
  }
  if (arguments_.backwards)
    std::sort(dates_.begin(), dates_.end(), orlfIsAfter);
  else
    std::sort(dates_.begin(), dates_.end(), orlfIsBefore);
}

/// Positions count from 1 at the period's first date, and from -1 at its last.
bool ORLFOlderWalk::isPicked(std::size_t index) const noexcept {
  const auto& positions = rule_.setPositions();
  if (!holdsEntries(positions)) return true;
  const auto fromStart = static_cast<NSInteger>(index) + 1;
  const auto fromEnd = static_cast<NSInteger>(index) - static_cast<NSInteger>(dates_.size());
  return std::any_of(positions->begin(), positions->end(), [=](NSInteger position) {
    return position == fromStart || position == fromEnd;
  });
}

/// Passes through all of the period's dates, also after a stop: an end answers anew for each, and
/// its answer takes the place of the block's. Answers whether a position picked any.
bool ORLFOlderWalk::deliver() {
  bool picked = false;
  for (std::size_t index = 0; index < dates_.size(); ++index) {
    if (!isPicked(index)) continue;
    picked = true;
    if (arguments_.end)
      stop_ = arguments_.end->shouldEndForDate(dates_[index], static_cast<NSInteger>(delivered_),
                                               arguments_.backwards);
    if (stop_) continue;
    usingBlock_(dates_[index], delivered_, stop_);
    ++delivered_;
  }
  return picked;
}

}  // namespace ORLFoundation::internal::recurrence
