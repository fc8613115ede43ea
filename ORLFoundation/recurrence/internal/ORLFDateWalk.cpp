
#include <ORLFoundation/recurrence/internal/ORLFDateWalk.h>

#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <ORLFoundation/platform/base/CheckedArithmetic.h>
#include <ORLFoundation/recurrence/ORLFFrequencyFacts.h>
#include <ORLFoundation/recurrence/internal/ORLFRecurrenceArithmetic.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation::internal::recurrence {
namespace {

/// So many empty periods in a row end a walk.
constexpr int kEmptinessLimit = 60;

std::optional<NSInteger> stepOf(const ORLFDateRecurrenceRule& rule, bool backwards) {
  const NSInteger units = isQuarterly(rule.frequency()) ? kMonthsPerQuarter : 1;
  return base::checkedProduct(rule.interval(), backwards ? -units : units);
}

}  // namespace

ORLFDateWalk::ORLFDateWalk(const ORLFDateRecurrenceRule& rule,
                           const ORLFDateRecurrenceRule::EnumerateDatesStartDate& arguments,
                           ORLFDateRecurrenceBlock usingBlock, Paths paths)
    : arguments_(arguments),
      usingBlock_(usingBlock),
      unit_(steppingUnitOf(rule.frequency())),
      step_(stepOf(rule, arguments.backwards)),
      simple_(rule.isSimpleRecurrence()),
      civil_(paths == Paths::kAll ? ORLFCivilWindows::forRule(rule, arguments) : std::nullopt),
      expansion_(rule, arguments.startDate, &arguments.calendar),
      current_(arguments.startDate) {}

/// Always counted from the start date, so that a month's end that clamps once stays out of the
/// windows after it. nil where the calendar ends, and with it the walk.
std::optional<NSDate> ORLFDateWalk::endOfWindow(NSInteger index) const noexcept {
  const std::optional<NSInteger> units = step_ ? base::checkedProduct(index, *step_) : std::nullopt;
  if (!units) return std::nullopt;
  return arguments_.calendar.dateByAddingUnit(unit_, *units, arguments_.startDate, 0);
}

/// A day that the zone skipped has the instant of the day after it, and the window between both is
/// empty. With an interval of 0 every window is, and the rule stands still.
bool ORLFDateWalk::isPassedOver(std::optional<NSDate> next) const noexcept {
  return unit_ == NSCalendarUnitDay && step_ != 0 && next == current_;
}

/// A window holds its near end and not its far end. Neither end need sit on a boundary of the
/// calendar, so both ends' patterns give candidates. Each window logs what its patterns fail, those
/// of the window before too, as required.
void ORLFDateWalk::collectWindow(std::optional<NSDate> next) {
  window_.clear();
  if (simple_) {
    if (!isPassedOver(next)) window_.assign(1, *current_);
    return;
  }
  if (!next) return;
  if (ofNext_.areMade) {
    std::swap(ofCurrent_, ofNext_);
    ofCurrent_.failed.log();
  } else {
    resolvePatterns(*current_, ofCurrent_);
  }
  resolvePatterns(*next, ofNext_);
  keepDatesInWindow(ofCurrent_.dates, *next);
  keepDatesInWindow(ofNext_.dates, *next);

  const auto before = [](NSDate left, NSDate right) { return orlfIsBefore(left, right); };
  const auto after = [](NSDate left, NSDate right) { return orlfIsAfter(left, right); };
  if (arguments_.backwards)
    std::sort(window_.begin(), window_.end(), after);
  else
    std::sort(window_.begin(), window_.end(), before);
  window_.erase(std::unique(window_.begin(), window_.end()), window_.end());
}

void ORLFDateWalk::resolvePatterns(NSDate date, PeriodDates& into) {
  into.dates.clear();
  for (const NSDateComponents& pattern : expansion_.expand(date)) {
    const std::optional<NSDate> resolved = arguments_.calendar.dateFromValidComponents(pattern);
    if (resolved) into.dates.push_back(*resolved);
  }
  into.failed = expansion_.failedConditions();
  into.areMade = true;
}

void ORLFDateWalk::keepDatesInWindow(const Dates& dates, NSDate next) {
  for (const NSDate date : dates) {
    const bool inside = arguments_.backwards
                            ? orlfIsOnOrBefore(date, *current_) && orlfIsAfter(date, next)
                            : orlfIsOnOrAfter(date, *current_) && orlfIsBefore(date, next);
    if (inside) window_.push_back(date);
  }
}

/// The end counts the dates delivered before, the block counts its own too.
inline void ORLFDateWalk::deliver() {
  for (const NSDate date : window_) {
    if (arguments_.end)
      stop_ = arguments_.end->shouldEndForDate(date, static_cast<NSInteger>(delivered_),
                                               arguments_.backwards);
    if (stop_) return;
    usingBlock_(date, ++delivered_, stop_);
    if (stop_) return;
  }
}

inline bool ORLFDateWalk::collectNextWindow(NSInteger index) {
  if (civil_ && civil_->collectNext(window_)) {
    // Neither this window's end nor its patterns have been made.
    current_.reset();
    ofNext_.areMade = false;
    return true;
  }
  if (!current_) current_ = endOfWindow(index - 1);
  const std::optional<NSDate> next = endOfWindow(index);
  collectWindow(next);
  current_ = next;
  return next.has_value();
}

NSUInteger ORLFDateWalk::run() {
  int emptiness = 0;
  NSInteger index = 0;
  while (!stop_) {
    const bool goesOn = collectNextWindow(++index);
    emptiness = window_.empty() ? emptiness + 1 : 0;
    deliver();
    if (emptiness >= kEmptinessLimit || !goesOn) break;
  }
  return static_cast<NSUInteger>(index);
}

}  // namespace ORLFoundation::internal::recurrence
