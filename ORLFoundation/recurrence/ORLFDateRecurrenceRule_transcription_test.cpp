// The main expansion and the main enumeration against a plain telling of their steps, which makes
// everything anew for each period, over rules of every shape.
#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceChance_testing.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceExpansion_testing.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation {
namespace {

using namespace orlftest;
using orlftest::chance::RandomWalks;
using orlftest::chance::textOf;
using namespace orlftest::told;

/// Whether a search for the nth day of the weekend, or outside it, ends soon: as it is told it runs
/// on as far as the number says.
bool searchesEndSoon(const Rule::Recurrence& fields) {
  constexpr NSInteger kMost = 60;
  return !holds(fields.daysOfTheWeek) ||
         std::ranges::all_of(*fields.daysOfTheWeek, [](const auto& entry) {
           const bool searches = entry->dayOfTheWeek() == -2 || entry->dayOfTheWeek() == -3;
           return !searches || entry->weekNumber() <= kMost;
         });
}

using Texts = std::vector<std::string>;

TEST(ORLFDateRecurrenceRule, MakesThePatternsThatItsStagesTell) {
  RandomWalks random;
  std::size_t patterns = 0;
  std::size_t lines = 0;
  for (int round = 0; round < 3'000; ++round) {
    const auto calendar = random.calendar();
    Rule::Recurrence fields = random.rule();
    const NSDate start = random.start(*calendar);
    const OptionalDate date = random.below(40) == 0 ? OptionalDate() : random.start(*calendar);
    const OptionalDate reference = random.below(20) == 0 ? OptionalDate() : start;
    const NSCalendar* const given = random.below(40) == 0 ? nullptr : calendar.get();
    if (!searchesEndSoon(fields)) fields.daysOfTheWeek.reset();
    const auto rule = Rule::ruleWithFields(fields);
    ToldExpansion told(*rule, date, reference, given);
    const Rule::WorkingSet expected = told.run();
    const LogCapture log;
    ASSERT_EQ(rule->generateDateComponentsFromDate(date, reference, given, round % 2 == 0),
              expected)
        << textOf(*rule) << " in " << calendar->timeZone()->name();
    ASSERT_EQ(log.lines(), told.log()) << textOf(*rule) << " in " << calendar->timeZone()->name();
    patterns += expected.size();
    lines += told.log().size();
  }
  EXPECT_GT(patterns, 3'000U);
  EXPECT_GT(lines, 1'000U);
}

/// A walk over dates that are as far as they are delivered, with their numbers and the log.
struct Delivery {
  std::vector<std::pair<NSDate, NSUInteger>> dates;
  Texts log;
};

/// The steps of the main enumeration. A walk also ends where the calendar does, and a daily one
/// gives the instant of a day that its zone skipped with the day after it alone.
class ToldWalk {
 public:
  ToldWalk(const Rule& rule, const Rule::EnumerateDatesStartDate& arguments)
      : rule_(rule), arguments_(arguments), current_(arguments.startDate) {}

  Texts run(ORLFDateRecurrenceBlock block) {
    const bool quarterly = rule_.frequency() == kQuarterly;
    const auto unit =
        quarterly ? NSCalendarUnitMonth : static_cast<NSCalendarUnit>(rule_.frequency());
    const NSInteger forward = quarterly ? 3 * rule_.interval() : rule_.interval();
    const NSInteger step = arguments_.backwards ? -forward : forward;
    const bool mayRepeat = unit == NSCalendarUnitDay && step != 0;
    int emptiness = 0;
    for (NSInteger index = 1; !stop_; ++index) {
      const OptionalDate next =
          arguments_.calendar.dateByAddingUnit(unit, index * step, arguments_.startDate, 0);
      std::vector<NSDate> list;
      if (!rule_.isSimpleRecurrence())
        list = next ? candidates(*next) : list;
      else if (!mayRepeat || next != current_)
        list = {current_};
      emptiness = list.empty() ? emptiness + 2 : 0;
      deliver(list, block);
      if (emptiness >= 120 || !next) stop_ = true;
      if (!stop_) current_ = *next;
    }
    return log_;
  }

 private:
  std::vector<NSDate> candidates(NSDate next) {
    Rule::WorkingSet joined;
    for (const NSDate date : {current_, next}) {
      ToldExpansion told(rule_, date, arguments_.startDate, &arguments_.calendar);
      for (const NSDateComponents& pattern : told.run()) joined.push_back(pattern);
      log_.insert(log_.end(), told.log().begin(), told.log().end());
    }
    std::vector<NSDate> list;
    for (const NSDateComponents& pattern : joined) {
      if (!pattern.isValidDateInCalendar(arguments_.calendar)) continue;
      const OptionalDate date = arguments_.calendar.dateFromComponents(pattern);
      if (!date) continue;
      const bool inside = arguments_.backwards
                              ? orlfIsOnOrBefore(*date, current_) && orlfIsAfter(*date, next)
                              : orlfIsOnOrAfter(*date, current_) && orlfIsBefore(*date, next);
      if (inside && std::ranges::count(list, *date) == 0) list.push_back(*date);
    }
    std::sort(list.begin(), list.end(), orlfIsBefore);
    if (arguments_.backwards) std::reverse(list.begin(), list.end());
    return list;
  }
  void deliver(const std::vector<NSDate>& list, ORLFDateRecurrenceBlock block) {
    for (const NSDate date : list) {
      if (arguments_.end)
        stop_ = arguments_.end->shouldEndForDate(date, static_cast<NSInteger>(delivered_),
                                                 arguments_.backwards);
      if (stop_) return;
      block(date, ++delivered_, stop_);
      if (stop_) return;
    }
  }

  const Rule& rule_;
  const Rule::EnumerateDatesStartDate& arguments_;
  NSDate current_;
  NSUInteger delivered_ = 0;
  bool stop_ = false;
  Texts log_;
};

TEST(ORLFDateRecurrenceRule, WalksThroughThePeriodsThatItsStepsTell) {
  constexpr std::size_t kMost = 40;
  constexpr NSInteger kFarthest = 10'000;
  RandomWalks random;
  std::size_t dates = 0;
  std::size_t lines = 0;
  for (int round = 0; round < 500; ++round) {
    const auto calendar = random.calendar();
    Rule::Recurrence fields = random.rule();
    if (!searchesEndSoon(fields)) fields.daysOfTheWeek.reset();
    if (fields.interval < -kFarthest || fields.interval > kFarthest) fields.interval = 5;
    const auto rule = Rule::ruleWithFields(fields);
    const NSDate start = random.start(*calendar);
    Rule::EnumerateDatesStartDate arguments{
        .calendar = *calendar, .startDate = start, .backwards = random.below(3) == 0};
    const auto days = static_cast<double>(random.below(600) * (arguments.backwards ? -1 : 1));
    if (random.below(4) == 0)
      arguments.end = random.below(2) == 0 ? ORLFDateRecurrenceEnd::initEndWithOccurrenceCount(
                                                 static_cast<NSUInteger>(random.below(6)))
                                           : ORLFDateRecurrenceEnd::initEndWithEndDate(
                                                 start.dateByAddingTimeInterval(86'400 * days));
    const bool exact = random.below(2) == 0;

    Delivery expected;
    Delivery found;
    const auto taking = [](Delivery& into) {
      return [&into](NSDate date, NSUInteger count, bool& stop) {
        into.dates.emplace_back(date, count);
        stop = into.dates.size() == kMost;
      };
    };
    const auto exactRule =
        exact && rule->isSimpleRecurrence()
            ? rule->dateRecurrenceRuleForExactMatchToReferenceDate(start, *calendar)
            : rule;
    auto take = taking(expected);
    expected.log = ToldWalk(*exactRule, arguments).run(take);
    arguments.exactPatternMatch = exact;
    {
      const LogCapture log;
      auto collect = taking(found);
      rule->enumerateDatesForCalendarStartDate(arguments, collect);
      found.log = log.lines();
    }
    SCOPED_TRACE(testing::Message() << textOf(*rule) << " in " << calendar->timeZone()->name()
                                    << " from " << start.description());
    // Not-a-number equals nothing.
    if (start == start) {
      ASSERT_EQ(found.dates, expected.dates);
    }
    ASSERT_EQ(found.dates.size(), expected.dates.size());
    ASSERT_EQ(found.log, expected.log);
    dates += found.dates.size();
    lines += found.log.size();
  }
  EXPECT_GT(dates, 3'000U);
  EXPECT_GT(lines, 1'000U);
}

}  // namespace
}  // namespace ORLFoundation
