
#include <ORLFoundation/recurrence/internal/ORLFOlderWalk.h>

#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <ORLFoundation/recurrence/internal/ORLFOlderPatterns.h>
#include <ORLFoundation/recurrence/internal/ORLFRecurrenceArithmetic.h>

#include <algorithm>

namespace ORLFoundation::internal {
namespace {

constexpr NSInteger kMonthsPerQuarter = 3;
constexpr NSInteger kMonthsPerYear = 12;

/// The calendar repeats itself after 400 years, which have this many days. A rule whose positions
/// picked nothing through as many periods picks nothing later.
constexpr NSInteger kLongestBarrenRun = 146097;

bool isQuarterly(const ORLFDateRecurrenceRule& rule) {
  return rule.frequency() == ORLFDateRecurrenceFrequencyQuarterly;
}

}  // namespace

ORLFOlderWalk::ORLFOlderWalk(const ORLFDateRecurrenceRule& rule,
                             const ORLFDateRecurrenceRule::EnumerateDatesRefernceDate& arguments)
    : rule_(rule),
      arguments_(arguments),
      patterns_(olderPatterns(rule)),
      unit_(isQuarterly(rule) ? NSCalendarUnitMonth
                              : static_cast<NSCalendarUnit>(rule.frequency())) {}

void ORLFOlderWalk::run() {
  const std::optional<NSDate> start = base();
  if (!start) return;
  NSInteger barren = 0;
  for (NSInteger number = 0; !stop_ && barren < kLongestBarrenRun; ++number) {
    const std::optional<NSDate> period = dateOfPeriod(*start, number);
    if (!period) return;
    collectPeriod(*period);
    if (dates_.empty()) return;
    barren = deliver() ? 0 : barren + 1;
  }
}

/// The reference date, of an absolute rule the canonical one, moved to the rule's anchor.
std::optional<NSDate> ORLFOlderWalk::base() const {
  std::optional<NSDate> date = arguments_.refernceDate;
  if (rule_.absolute()) date = rule_.canonicalReferenceDateForDate(date, arguments_.calendar);
  if (!date || rule_.interval() < 2) return date;
  NSInteger slots = 0;
  if (__builtin_sub_overflow(rule_.anchorIndex(), rule_.interval(), &slots)) return std::nullopt;
  const auto units = product(slots, isQuarterly(rule_) ? kMonthsPerQuarter : 1);
  if (!units) return std::nullopt;
  return arguments_.calendar.dateByAddingUnit(unit_, *units, *date, NSCalendarSearchBackwards);
}

/// Forward begins one interval after the base, backward at it. With patterns a quarterly rule steps
/// by whole years, because its patterns name a month in each quarter.
std::optional<NSDate> ORLFOlderWalk::dateOfPeriod(NSDate base, NSInteger number) const noexcept {
  const auto step = product(rule_.interval(), arguments_.backwards ? -number : number + 1);
  NSInteger units = 1;
  if (isQuarterly(rule_)) units = patterns_ ? kMonthsPerYear : kMonthsPerQuarter;
  const auto count = step ? product(*step, units) : std::nullopt;
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
    const auto date =
        calendar.date(period, pattern)
            ? period
            : calendar.nextDateAfterDate(period, pattern,
                                         NSCalendarMatchStrictly | NSCalendarSearchBackwards);
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
  if (!positions || positions->empty()) return true;
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
    arguments_.usingBlock(dates_[index], delivered_, stop_);
    ++delivered_;
  }
  return picked;
}

}  // namespace ORLFoundation::internal
