
#include <ORLFoundation/recurrence/internal/ORLFPatternExpansion.h>

#include <ORLFoundation/recurrence/ORLFFrequencyFacts.h>
#include <ORLFoundation/recurrence/internal/ORLFRecurrenceArithmetic.h>
#include <ORLFoundation/recurrence/internal/ORLFRuleLists.h>
#include <ORLFoundation/recurrence/internal/ORLFWeekdayPatterns.h>

#include <algorithm>

namespace ORLFoundation::internal::recurrence {
namespace {

constexpr NSUInteger kTimeOfDay =
    NSCalendarUnitHour | NSCalendarUnitMinute | NSCalendarUnitSecond | NSCalendarUnitNanosecond;

/// The fields of a period's date that the stages of a rule may read.
NSUInteger unitsRead(const ORLFDateRecurrenceRule& rule) {
  NSUInteger units = NSCalendarUnitYear | NSCalendarUnitMonth;
  if (holdsEntries(rule.daysOfTheWeek())) {
    if (rule.frequency() == ORLFDateRecurrenceFrequencyWeekly) units |= NSCalendarUnitWeekOfMonth;
  }
  const bool namesDays = holdsEntries(rule.daysOfTheYear()) || holdsEntries(rule.daysOfTheMonth());
  if (!namesDays || holdsEntries(rule.weeksOfTheYear()) || holdsEntries(rule.daysOfTheWeek()) ||
      rule.frequency() == ORLFDateRecurrenceFrequencyWeekly)
    units |= NSCalendarUnitDay | NSCalendarUnitWeekday | NSCalendarUnitWeekdayOrdinal;
  return units;
}

}  // namespace

ORLFPatternExpansion::ORLFPatternExpansion(const ORLFDateRecurrenceRule& rule,
                                           std::optional<NSDate> referenceDate,
                                           const NSCalendar* calendar)
    : rule_(rule),
      calendar_(calendar),
      hasReference_(referenceDate.has_value()),
      units_(unitsRead(rule)) {
  if (calendar && referenceDate) timeOfDay_ = calendar->components(kTimeOfDay, *referenceDate);
}

const ORLFPatternExpansion::Patterns& ORLFPatternExpansion::expand(std::optional<NSDate> date) {
  const ORLFPeriodContext period(calendar_, date, units_);
  conditions_.reset();
  needsMonthConstraint_ = needsDayOfMonthConstraint_ = needsDayOfWeekConstraint_ = false;
  seed(period);
  expandMonths();
  expandWeeks();
  expandDaysOfTheYear(period);
  expandDaysOfTheMonth();
  expandDaysOfTheWeek(period);
  constrainDays(period);
  return patterns_;
}

void ORLFPatternExpansion::seed(const ORLFPeriodContext& period) {
  patterns_.assign(1, timeOfDay_);
  patterns_.front().setYear(period.field(NSCalendarUnitYear));
}

void ORLFPatternExpansion::expandMonths() {
  if (!holdsEntries(rule_.monthsOfTheYear())) {
    needsMonthConstraint_ = true;
    return;
  }
  const std::vector<NSInteger>& months = *rule_.monthsOfTheYear();
  const bool ofTheQuarter = (!hasReference_ || !calendar_) && isQuarterly(rule_.frequency());
  if (ofTheQuarter) {
    expandBy(months, [this](NSInteger month, const NSDateComponents& pattern) {
      const NSInteger first = reducedPlace(month, kMonthsPerQuarter);
      for (NSInteger quarter = 0; quarter < kQuartersPerYear; ++quarter) {
        NSDateComponents copy = pattern;
        conditions_.write(copy, kMonthField, first + kMonthsPerQuarter * quarter);
        add(copy);
      }
    });
  } else {
    expandBy(months, [this](NSInteger month, const NSDateComponents& pattern) {
      NSDateComponents copy = pattern;
      conditions_.write(copy, kMonthField, reducedPlace(month, kMonthsPerYear));
      add(copy);
    });
  }
  (holdsEntries(rule_.daysOfTheWeek()) ? needsDayOfWeekConstraint_ : needsDayOfMonthConstraint_) =
      true;
}

void ORLFPatternExpansion::expandWeeks() {
  if (!holdsEntries(rule_.weeksOfTheYear())) return;
  expandInto(kWeekOfYearField, *rule_.weeksOfTheYear());
  needsDayOfWeekConstraint_ = true;
  needsMonthConstraint_ = false;
}

void ORLFPatternExpansion::expandDaysOfTheYear(const ORLFPeriodContext& period) {
  if (holdsEntries(rule_.daysOfTheYear())) {
    expandInto(kDayField, *rule_.daysOfTheYear());
    needsDayOfWeekConstraint_ = needsDayOfMonthConstraint_ = false;
  } else if (needsMonthConstraint_) {
    constrainMonth(period);
  }
}

void ORLFPatternExpansion::constrainMonth(const ORLFPeriodContext& period) {
  for (NSDateComponents& pattern : patterns_)
    conditions_.write(pattern, kMonthField, period.field(NSCalendarUnitMonth));
  const ORLFDateRecurrenceFrequency frequency = rule_.frequency();
  const bool byWeekday =
      frequency == ORLFDateRecurrenceFrequencyWeekly ||
      (frequency != ORLFDateRecurrenceFrequencyDaily && holdsEntries(rule_.daysOfTheWeek()));
  (byWeekday ? needsDayOfWeekConstraint_ : needsDayOfMonthConstraint_) = true;
}

void ORLFPatternExpansion::expandDaysOfTheMonth() {
  if (!holdsEntries(rule_.daysOfTheMonth())) return;
  expandInto(kDayField, *rule_.daysOfTheMonth());
  needsDayOfMonthConstraint_ = false;
}

void ORLFPatternExpansion::expandDaysOfTheWeek(const ORLFPeriodContext& period) {
  if (!holdsEntries(rule_.daysOfTheWeek())) return;
  expanded_.clear();
  for (const auto& day : *rule_.daysOfTheWeek()) {
    ORLFWeekdayEntry entry{day->dayOfTheWeek(), day->weekNumber()};
    if (!entry.namesDays()) continue;
    for (const NSDateComponents& pattern : patterns_) {
      NSDateComponents copy = pattern;
      applyWeekdayEntry(entry, copy, rule_.frequency(), period, conditions_);
      add(copy);
      needsDayOfWeekConstraint_ = false;
    }
  }
  takeExpanded();
}

void ORLFPatternExpansion::constrainDays(const ORLFPeriodContext& period) {
  conditions_.check(!needsDayOfMonthConstraint_ || !needsDayOfWeekConstraint_,
                    "!needsDayOfMonthConstraint || !needsDayOfWeekConstraint",
                    "We should not ever need both a day of month and a day of week");
  if (needsDayOfMonthConstraint_) {
    for (NSDateComponents& pattern : patterns_)
      conditions_.write(pattern, kDayField, period.field(NSCalendarUnitDay));
  }
  if (needsDayOfWeekConstraint_) {
    for (NSDateComponents& pattern : patterns_) {
      conditions_.write(pattern, kWeekdayField, period.field(NSCalendarUnitWeekday));
      pattern.setWeekdayOrdinal(period.field(NSCalendarUnitWeekdayOrdinal));
    }
  }
}

template <class Change>
void ORLFPatternExpansion::expandBy(const std::vector<NSInteger>& values, Change change) {
  expanded_.clear();
  for (const NSInteger value : values)
    for (const NSDateComponents& pattern : patterns_) change(value, pattern);
  takeExpanded();
}

void ORLFPatternExpansion::expandInto(const ORLFPatternField& field,
                                      const std::vector<NSInteger>& values) {
  expandBy(values, [this, &field](NSInteger value, const NSDateComponents& pattern) {
    NSDateComponents copy = pattern;
    conditions_.write(copy, field, value);
    add(copy);
  });
}

/// A set holds each pattern once.
void ORLFPatternExpansion::add(const NSDateComponents& pattern) {
  if (std::find(expanded_.begin(), expanded_.end(), pattern) == expanded_.end())
    expanded_.push_back(pattern);
}

void ORLFPatternExpansion::takeExpanded() noexcept { patterns_.swap(expanded_); }

}  // namespace ORLFoundation::internal::recurrence
