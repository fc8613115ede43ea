// The older expansion, the older enumeration and the anchors against a plain telling of their
// steps, over rules of every shape.
#include <ORLFoundation/calendar/ORLFCalendarRounding.h>
#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceChance_testing.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceExpansion_testing.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace ORLFoundation {
namespace {

using namespace orlftest;
using orlftest::chance::RandomWalks;
using orlftest::chance::textOf;
using orlftest::told::holds;
using orlftest::told::OptionalDate;

constexpr NSUInteger kStrictlyBackwards = 6;

class ToldOlderExpansion {
 public:
  explicit ToldOlderExpansion(const Rule& rule) : rule_(rule) {}

  std::optional<Rule::WorkingSet> run() {
    if (holds(rule_.monthsOfTheYear())) months();
    expandBy(rule_.weeksOfTheYear(), NSCalendarUnitWeekOfYear, "weekOfYear");
    expandBy(rule_.daysOfTheYear(), NSCalendarUnitDay, "day");
    expandBy(rule_.daysOfTheMonth(), NSCalendarUnitDay, "day");
    if (holds(rule_.daysOfTheWeek())) daysOfTheWeek();
    if (!ran_) return std::nullopt;
    return set_;
  }
  [[nodiscard]] const std::vector<std::string>& log() const { return log_; }

 private:
  void write(NSDateComponents& pattern, NSCalendarUnit unit, const std::string& name,
             NSInteger value) {
    if (pattern.valueForComponent(unit) != NSDateComponentUndefined)
      log_.push_back("Condition Failed: dateComponenet." + name +
                     " == NSDateComponentUndefined NSDateComponents " + name +
                     " should not be defined yet");
    pattern.setValueForComponent(value, unit);
  }
  void take(const Rule::WorkingSet& expanded) {
    set_ = expanded;
    ran_ = true;
  }
  void months() {
    const bool quarterly = rule_.frequency() == kQuarterly;
    const NSInteger divisor = quarterly ? 3 : 12;
    Rule::WorkingSet expanded;
    for (const NSInteger month : *rule_.monthsOfTheYear()) {
      const NSInteger before = month == NSIntegerMin ? NSIntegerMax : month - 1;
      for (NSInteger k = 0; k < (quarterly ? 4 : 1); ++k) {
        for (NSDateComponents pattern : rule_.makeDateComponentsCopyOld(set_)) {
          write(pattern, NSCalendarUnitMonth, "month", k * divisor + before % divisor + 1);
          expanded.push_back(pattern);
        }
      }
    }
    take(expanded);
  }
  void expandBy(const Rule::Integers& values, NSCalendarUnit unit, const std::string& name) {
    if (!holds(values)) return;
    Rule::WorkingSet expanded;
    for (const NSInteger value : *values) {
      for (NSDateComponents pattern : rule_.makeDateComponentsCopyOld(set_)) {
        write(pattern, unit, name, value);
        expanded.push_back(pattern);
      }
    }
    take(expanded);
  }
  void daysOfTheWeek() {
    Rule::WorkingSet expanded;
    for (const auto& entry : *rule_.daysOfTheWeek()) {
      for (NSDateComponents pattern : rule_.makeDateComponentsCopyOld(set_)) {
        pattern.setWeekday(entry->dayOfTheWeek());
        if (rule_.frequency() != kWeekly && entry->weekNumber() != 0)
          write(pattern, NSCalendarUnitWeekdayOrdinal, "weekdayOrdinal", entry->weekNumber());
        expanded.push_back(pattern);
      }
    }
    take(expanded);
  }

  const Rule& rule_;
  Rule::WorkingSet set_ = Rule::WorkingSet(1);
  bool ran_ = false;
  std::vector<std::string> log_;
};

NSCalendarUnit steppingUnit(ORLFDateRecurrenceFrequency frequency) {
  return frequency == kQuarterly ? NSCalendarUnitMonth : static_cast<NSCalendarUnit>(frequency);
}

/// A unit that elapsed time is read in, of all that rules can step by.
bool isRead(NSCalendarUnit unit) {
  return unit == NSCalendarUnitYear || unit == NSCalendarUnitMonth || unit == NSCalendarUnitDay ||
         unit == NSCalendarUnitWeekOfYear;
}

NSInteger definedOr0(NSInteger field) { return field == NSDateComponentUndefined ? 0 : field; }

NSInteger toldPosition(NSInteger elapsed, NSInteger days) {
  return days >= 0 ? std::abs(elapsed) : 1 - elapsed;
}

NSInteger toldAnchorIndex(ORLFDateRecurrenceFrequency frequency, NSInteger interval, NSDate date,
                          const NSCalendar& calendar) {
  const NSCalendarUnit unit = steppingUnit(frequency);
  const NSDateComponents gone = calendar.components(
      static_cast<NSUInteger>(unit) | 16, *Rule::universalAnchorDateInCalendar(calendar), date, 0);
  const NSInteger elapsed = isRead(unit) ? definedOr0(gone.valueForComponent(unit)) : 0;
  const NSInteger span = frequency == kQuarterly ? 3 * interval : interval;
  return toldPosition(elapsed, definedOr0(gone.day())) % span + 1;
}

OptionalDate toldCanonicalDate(const Rule& rule, NSDate date, const NSCalendar& calendar) {
  const OptionalDate day =
      orlfDateByRoundingDateDownToCalendarUnit(calendar, date, NSCalendarUnitDay);
  if (!day || !rule.absolute() || rule.interval() < 2) return day;
  const bool quarterly = rule.frequency() == kQuarterly;
  const NSCalendarUnit unit = steppingUnit(rule.frequency());
  const NSInteger span = quarterly ? 12 * rule.interval() : rule.interval();
  const OptionalDate origin =
      calendar.dateByAddingUnit(unit, (1 - rule.interval()) * (quarterly ? 12 : 1),
                                *Rule::universalAnchorDateInCalendar(calendar), 0);
  std::vector<NSDate> dates;
  if (const auto patterns = ToldOlderExpansion(rule).run(); patterns && origin)
    for (const NSDateComponents& pattern : *patterns)
      if (const auto found = calendar.nextDateAfterDate(*origin, pattern, kStrictlyBackwards))
        dates.push_back(*found);
  std::sort(dates.begin(), dates.end(), orlfIsBefore);
  NSDateComponents gone;
  if (!dates.empty())
    gone = calendar.components(static_cast<NSUInteger>(unit) | 16, dates.front(), *day, 0);
  const NSInteger elapsed =
      !quarterly && isRead(unit) ? definedOr0(gone.valueForComponent(unit)) : 0;
  const NSInteger offset = span - 1 - toldPosition(elapsed, definedOr0(gone.day())) % span;
  gone.setDay(0);
  if (isRead(unit)) gone.setValueForComponent(offset, unit);
  return calendar.dateByAddingComponents(gone, *day, 0);
}

using NumberedDates = std::vector<std::pair<NSDate, NSUInteger>>;

/// The steps of the older enumeration, as far as so many periods, and what they deliver. A walk
/// also ends where the calendar does, and a daily one gives no skipped day.
NumberedDates toldDates(const Rule& rule, const Rule::EnumerateDatesRefernceDate& arguments,
                        std::size_t most, NSInteger periods) {
  const NSCalendar& calendar = arguments.calendar;
  const auto patterns = ToldOlderExpansion(rule).run();
  const bool quarterly = rule.frequency() == kQuarterly;
  const NSCalendarUnit unit = steppingUnit(rule.frequency());
  OptionalDate base = arguments.refernceDate;
  if (rule.absolute()) base = toldCanonicalDate(rule, *base, calendar);
  if (base && rule.interval() >= 2)
    base = calendar.dateByAddingUnit(
        unit, (rule.anchorIndex() - rule.interval()) * (quarterly ? 3 : 1), *base, 4);
  NumberedDates delivered;
  OptionalDate last;
  bool stop = !base;
  for (NSInteger n = 0; !stop && n < periods; ++n) {
    const NSInteger step = arguments.backwards ? -(rule.interval() * n) : rule.interval() * (n + 1);
    const NSInteger each = !quarterly ? 1 : patterns ? 12 : 3;
    const OptionalDate period = calendar.dateByAddingUnit(unit, step * each, *base, 0);
    if (!period) break;
    if (unit == NSCalendarUnitDay && rule.interval() != 0 && period == last) continue;
    last = period;
    std::vector<NSDate> list;
    if (!patterns) list = {*period};
    for (const NSDateComponents& pattern : patterns.value_or(Rule::WorkingSet())) {
      const OptionalDate found =
          calendar.date(*period, pattern)
              ? period
              : calendar.nextDateAfterDate(*period, pattern, kStrictlyBackwards);
      if (found) list.push_back(*found);
    }
    std::sort(list.begin(), list.end(), orlfIsBefore);
    if (arguments.backwards) std::reverse(list.begin(), list.end());
    if (list.empty()) break;
    const auto count = static_cast<NSInteger>(list.size());
    for (NSInteger i = 0; i < count; ++i) {
      const NSDate date = list[static_cast<std::size_t>(i)];
      if (holds(rule.setPositions()) && std::ranges::count(*rule.setPositions(), i + 1) == 0 &&
          std::ranges::count(*rule.setPositions(), i - count) == 0)
        continue;
      if (arguments.end)
        stop = arguments.end->shouldEndForDate(date, static_cast<NSInteger>(delivered.size()),
                                               arguments.backwards);
      if (stop) continue;
      delivered.emplace_back(date, delivered.size());
      stop = delivered.size() >= most;
    }
  }
  return delivered;
}

NumberedDates olderDates(const Rule& rule, const Rule::EnumerateDatesRefernceDate& arguments,
                         std::size_t most) {
  NumberedDates delivered;
  rule.enumerateDatesForCalendarRefernceDate(arguments,
                                             [&](NSDate date, NSUInteger count, bool& stop) {
                                               delivered.emplace_back(date, count);
                                               stop = delivered.size() >= most;
                                             });
  return delivered;
}

/// A rule whose phases can be told without a number that is too large.
std::shared_ptr<Rule> countableRule(RandomWalks& random) {
  constexpr NSInteger kFarthest = 10'000;
  Rule::Recurrence fields = random.rule();
  if (fields.interval < -kFarthest || fields.interval > kFarthest) fields.interval = 5;
  fields.anchorIndex = random.below(12) - 3;
  fields.absolute = random.below(3) == 0;
  if (random.below(6) != 0)
    fields.setPositions.reset();
  else
    fields.setPositions = {{random.below(3) - 1, random.below(5) - 2}};
  return Rule::ruleWithFields(fields);
}

TEST(OlderTranscription, MakesThePatternsThatItsStagesTell) {
  RandomWalks random;
  std::size_t patterns = 0;
  for (int round = 0; round < 5'000; ++round) {
    const auto rule = Rule::ruleWithFields(random.rule());
    ToldOlderExpansion told(*rule);
    const auto expected = told.run();
    const LogCapture log;
    ASSERT_EQ(rule->matchingDateComponentsOld(), expected) << textOf(*rule);
    ASSERT_EQ(log.lines(), told.log()) << textOf(*rule);
    patterns += expected.value_or(Rule::WorkingSet()).size();
  }
  EXPECT_GT(patterns, 5'000U);
}

TEST(OlderTranscription, FindsTheSlotsThatItsStepsTell) {
  RandomWalks random;
  for (int round = 0; round < 4'000; ++round) {
    const auto calendar = random.calendar();
    const auto rule = countableRule(random);
    const NSDate date = random.start(*calendar);
    const LogCapture quiet;
    if (rule->interval() != 0) {
      ASSERT_EQ(Rule::anchorIndexForAbsoluteRecurrenceWithFrequency(
                    rule->frequency(), rule->interval(), date, *calendar),
                toldAnchorIndex(rule->frequency(), rule->interval(), date, *calendar))
          << textOf(*rule) << " at " << date.description();
    }
    ASSERT_EQ(rule->canonicalReferenceDateForDate(date, *calendar),
              toldCanonicalDate(*rule, date, *calendar))
        << textOf(*rule) << " at " << date.description();
  }
}

TEST(OlderTranscription, WalksThroughThePeriodsThatItsStepsTell) {
  constexpr std::size_t kMost = 12;
  constexpr NSInteger kPeriodsTold = 60;
  RandomWalks random;
  std::size_t dates = 0;
  for (int round = 0; round < 1'000; ++round) {
    const auto calendar = random.calendar();
    const auto rule = countableRule(random);
    const NSDate start = random.start(*calendar);
    if (start != start) continue;
    Rule::EnumerateDatesRefernceDate arguments{
        .calendar = *calendar, .refernceDate = start, .backwards = random.below(2) == 0};
    if (random.below(4) == 0)
      arguments.end = ORLFDateRecurrenceEnd::initEndWithOccurrenceCount(
          static_cast<NSUInteger>(random.below(6)));
    const LogCapture quiet;
    const NumberedDates expected = toldDates(*rule, arguments, kMost, kPeriodsTold);
    NumberedDates found = olderDates(*rule, arguments, kMost);
    // What is told ends after so many periods.
    if (found.size() > expected.size() && holds(rule->setPositions()))
      found.resize(expected.size());
    ASSERT_EQ(found, expected) << textOf(*rule) << " anchor " << rule->anchorIndex() << " absolute "
                               << rule->absolute() << " in " << calendar->timeZone()->name()
                               << " from " << start.description()
                               << (arguments.backwards ? " backwards" : "");
    dates += found.size();
  }
  EXPECT_GT(dates, 3'000U);
}

}  // namespace
}  // namespace ORLFoundation
