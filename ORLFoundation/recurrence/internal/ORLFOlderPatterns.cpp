
#include <ORLFoundation/recurrence/internal/ORLFOlderPatterns.h>

#include <ORLFoundation/recurrence/ORLFFrequencyFacts.h>
#include <ORLFoundation/recurrence/internal/ORLFPatternConditions.h>
#include <ORLFoundation/recurrence/internal/ORLFRecurrenceArithmetic.h>
#include <ORLFoundation/recurrence/internal/ORLFRuleLists.h>
#include <ORLFoundation/support/diagnostics/ORLFCondition.h>

#include <string_view>
#include <utility>

namespace ORLFoundation::internal::recurrence {
namespace {

using Rule = ORLFDateRecurrenceRule;
using WorkingSet = Rule::WorkingSet;

void write(NSDateComponents& pattern, const ORLFPatternField& field, NSInteger value) {
  ORLFConditionAssert(pattern.valueForComponent(field.unit) == NSDateComponentUndefined,
                      field.olderCondition, field.message);
  pattern.setValueForComponent(value, field.unit);
}

/// One copy of the set for each value, with the field written.
void append(WorkingSet& expanded, const WorkingSet& patterns, const ORLFPatternField& field,
            NSInteger value) {
  for (NSDateComponents pattern : olderCopy(patterns)) {
    write(pattern, field, value);
    expanded.push_back(pattern);
  }
}

/// Answers whether the stage ran.
bool expand(WorkingSet& patterns, const ORLFPatternField& field, const Rule::Integers& values) {
  if (!holdsEntries(values)) return false;
  WorkingSet expanded;
  for (const NSInteger value : *values) append(expanded, patterns, field, value);
  patterns = std::move(expanded);
  return true;
}

bool expandMonths(WorkingSet& patterns, const Rule& rule) {
  if (!holdsEntries(rule.monthsOfTheYear())) return false;
  const bool quarterly = isQuarterly(rule.frequency());
  const NSInteger months = quarterly ? kMonthsPerQuarter : kMonthsPerYear;
  const NSInteger repeats = quarterly ? kQuartersPerYear : 1;
  WorkingSet expanded;
  for (const NSInteger month : *rule.monthsOfTheYear())
    for (NSInteger quarter = 0; quarter < repeats; ++quarter)
      append(expanded, patterns, kMonthField, quarter * months + reducedPlace(month, months));
  patterns = std::move(expanded);
  return true;
}

bool expandWeekdays(WorkingSet& patterns, const Rule& rule) {
  if (!holdsEntries(rule.daysOfTheWeek())) return false;
  WorkingSet expanded;
  for (const auto& entry : *rule.daysOfTheWeek()) {
    const NSInteger number = entry->weekNumber();
    const bool placed = rule.frequency() != ORLFDateRecurrenceFrequencyWeekly && number != 0;
    for (NSDateComponents pattern : olderCopy(patterns)) {
      pattern.setWeekday(entry->dayOfTheWeek());
      if (placed) write(pattern, kWeekdayOrdinalField, number);
      expanded.push_back(pattern);
    }
  }
  patterns = std::move(expanded);
  return true;
}

}  // namespace

std::optional<WorkingSet> olderPatterns(const Rule& rule) {
  WorkingSet patterns(1);
  bool ran = expandMonths(patterns, rule);
  ran = expand(patterns, kWeekOfYearField, rule.weeksOfTheYear()) || ran;
  ran = expand(patterns, kDayField, rule.daysOfTheYear()) || ran;
  ran = expand(patterns, kDayField, rule.daysOfTheMonth()) || ran;
  ran = expandWeekdays(patterns, rule) || ran;
  if (!ran) return std::nullopt;
  return patterns;
}

WorkingSet olderCopy(const WorkingSet& patterns) {
  WorkingSet copy = patterns;
  for (NSDateComponents& pattern : copy) pattern.setNanosecond(NSDateComponentUndefined);
  return copy;
}

}  // namespace ORLFoundation::internal::recurrence
