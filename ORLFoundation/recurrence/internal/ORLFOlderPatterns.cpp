
#include <ORLFoundation/recurrence/internal/ORLFOlderPatterns.h>

#include <ORLFoundation/recurrence/internal/ORLFRecurrenceArithmetic.h>
#include <ORLFoundation/support/diagnostics/ORLFCondition.h>

#include <string_view>
#include <utility>

namespace ORLFoundation::internal {
namespace {

using Rule = ORLFDateRecurrenceRule;
using WorkingSet = Rule::WorkingSet;

/// A field that a stage writes, with what is logged when it is written already. The conditions'
/// spelling is the log's own.
struct OlderField {
  NSCalendarUnit unit;
  std::string_view condition;
  std::string_view message;
};

constexpr OlderField kMonth = {NSCalendarUnitMonth,
                               "dateComponenet.month == NSDateComponentUndefined",
                               "NSDateComponents month should not be defined yet"};
constexpr OlderField kWeekOfYear = {NSCalendarUnitWeekOfYear,
                                    "dateComponenet.weekOfYear == NSDateComponentUndefined",
                                    "NSDateComponents weekOfYear should not be defined yet"};
constexpr OlderField kDay = {NSCalendarUnitDay, "dateComponenet.day == NSDateComponentUndefined",
                             "NSDateComponents day should not be defined yet"};
constexpr OlderField kWeekdayOrdinal = {
    NSCalendarUnitWeekdayOrdinal, "dateComponenet.weekdayOrdinal == NSDateComponentUndefined",
    "NSDateComponents weekdayOrdinal should not be defined yet"};

void write(NSDateComponents& pattern, const OlderField& field, NSInteger value) {
  ORLFConditionAssert(pattern.valueForComponent(field.unit) == NSDateComponentUndefined,
                      field.condition, field.message);
  pattern.setValueForComponent(value, field.unit);
}

/// One copy of the set for each value, with the field written.
void append(WorkingSet& expanded, const WorkingSet& patterns, const OlderField& field,
            NSInteger value) {
  for (NSDateComponents pattern : olderCopy(patterns)) {
    write(pattern, field, value);
    expanded.push_back(pattern);
  }
}

template <class List>
bool holdsEntries(const List& list) {
  return list && !list->empty();
}

/// Answers whether the stage ran.
bool expand(WorkingSet& patterns, const OlderField& field, const Rule::Integers& values) {
  if (!holdsEntries(values)) return false;
  WorkingSet expanded;
  for (const NSInteger value : *values) append(expanded, patterns, field, value);
  patterns = std::move(expanded);
  return true;
}

bool expandMonths(WorkingSet& patterns, const Rule& rule) {
  if (!holdsEntries(rule.monthsOfTheYear())) return false;
  const bool quarterly = rule.frequency() == ORLFDateRecurrenceFrequencyQuarterly;
  const NSInteger months = quarterly ? 3 : 12;
  const NSInteger repeats = quarterly ? 4 : 1;
  WorkingSet expanded;
  for (const NSInteger month : *rule.monthsOfTheYear())
    for (NSInteger quarter = 0; quarter < repeats; ++quarter)
      append(expanded, patterns, kMonth,
             quarter * months + remainder(wrappedSum(month, -1), months) + 1);
  patterns = std::move(expanded);
  return true;
}

bool expandWeekdays(WorkingSet& patterns, const Rule& rule) {
  if (!holdsEntries(rule.daysOfTheWeek())) return false;
  WorkingSet expanded;
  for (const auto& entry : *rule.daysOfTheWeek()) {
    const NSInteger weekday = entry ? entry->dayOfTheWeek() : 0;
    const NSInteger number = entry ? entry->weekNumber() : 0;
    const bool placed = rule.frequency() != ORLFDateRecurrenceFrequencyWeekly && number != 0;
    for (NSDateComponents pattern : olderCopy(patterns)) {
      pattern.setWeekday(weekday);
      if (placed) write(pattern, kWeekdayOrdinal, number);
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
  ran = expand(patterns, kWeekOfYear, rule.weeksOfTheYear()) || ran;
  ran = expand(patterns, kDay, rule.daysOfTheYear()) || ran;
  ran = expand(patterns, kDay, rule.daysOfTheMonth()) || ran;
  ran = expandWeekdays(patterns, rule) || ran;
  if (!ran) return std::nullopt;
  return patterns;
}

WorkingSet olderCopy(const WorkingSet& patterns) {
  WorkingSet copy = patterns;
  for (NSDateComponents& pattern : copy) pattern.setNanosecond(NSDateComponentUndefined);
  return copy;
}

}  // namespace ORLFoundation::internal
