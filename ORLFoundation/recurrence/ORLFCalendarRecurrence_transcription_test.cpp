// The questions to a calendar against a plain telling of their steps, over rules of every shape.
#include <ORLFoundation/recurrence/ORLFCalendarRecurrence.h>

#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceChance_testing.h>
#include <gtest/gtest.h>

#include <utility>

namespace ORLFoundation {
namespace {

using namespace orlftest;
using orlftest::chance::RandomWalks;
using orlftest::chance::textOf;

using MaybeDate = std::optional<NSDate>;

/// One rule in one calendar, and the steps of each question. `reference` is nil at times.
struct Told {
  const NSCalendar& calendar;
  const Rule& rule;
  MaybeDate reference;

  /// Walks until `taken` answers that it is enough.
  template <class Taken>
  void walk(NSDate start, bool backwards, bool exact, Taken taken) const {
    rule.enumerateDatesForCalendarStartDate(
        {.calendar = calendar,
         .startDate = start,
         .backwards = backwards,
         .exactPatternMatch = exact},
        [&](NSDate date, NSUInteger index, bool& stop) { stop = taken(date, index); });
  }

  [[nodiscard]] std::vector<NSDate> dates(NSDate from, NSDate to, bool inclusive) const {
    std::vector<NSDate> list;
    if (inclusive ? !orlfIsOnOrBefore(from, to) : !orlfIsBefore(from, to)) return list;
    const NSDate start = reference ? *reference : from;
    MaybeDate found;
    if (orlfIsBefore(from, start))
      walk(start, true, true, [&](NSDate date, NSUInteger) {
        found = date;
        return orlfIsBefore(date, from);
      });
    if (!found) found = start;
    walk(*found, false, false, [&](NSDate date, NSUInteger) {
      if (orlfIsOnOrAfter(date, from) &&
          (orlfIsBefore(date, to) || (inclusive && orlfIsOnOrBefore(date, to))))
        list.push_back(date);
      return orlfIsOnOrAfter(date, to);
    });
    return list;
  }

  [[nodiscard]] MaybeDate before(NSDate asked, NSUInteger count, bool exact) const {
    NSDate start = reference ? *reference : asked;
    if (orlfIsBefore(start, asked))
      walk(NSDate(start), false, true, [&](NSDate date, NSUInteger) {
        start = date;
        return orlfIsOnOrAfter(date, asked);
      });
    MaybeDate result;
    NSUInteger base = 0;
    walk(start, true, exact, [&](NSDate date, NSUInteger index) {
      result = date;
      if (!orlfIsBefore(date, asked)) {
        base = index;
        return false;
      }
      return index - base >= count;
    });
    return result;
  }

  [[nodiscard]] MaybeDate after(NSDate asked, NSUInteger count, bool exact) const {
    if (count == 0 && includes(asked)) return asked;
    if (count == 0) count = 1;
    NSDate start = reference ? *reference : asked;
    if (orlfIsAfter(start, asked))
      walk(NSDate(start), true, true, [&](NSDate date, NSUInteger) {
        start = date;
        return orlfIsOnOrBefore(date, asked);
      });
    MaybeDate result;
    NSUInteger base = 0;
    walk(start, false, exact, [&](NSDate date, NSUInteger index) {
      result = date;
      if (!orlfIsAfter(date, asked)) {
        base = index;
        return false;
      }
      return index - base >= count;
    });
    return result;
  }

  [[nodiscard]] bool includes(NSDate asked) const {
    const NSDate start = reference ? *reference : asked;
    bool answer = false;
    walk(start, true, false, [&](NSDate date, NSUInteger) {
      if (!orlfIsOnOrBefore(date, asked)) return false;
      answer = date == asked;
      return true;
    });
    if (answer) return true;
    walk(start, false, false, [&](NSDate date, NSUInteger) {
      if (!orlfIsOnOrAfter(date, asked)) return false;
      answer = date == asked;
      return true;
    });
    return answer;
  }

  using Counted = std::vector<std::pair<NSDate, NSUInteger>>;
  [[nodiscard]] Counted walked(NSDate start, bool backwards, std::size_t most) const {
    Counted list;
    MaybeDate first = start;
    if (reference) {
      first = reference;
      if (backwards && orlfIsBefore(*reference, start)) first = after(start, 1, true);
      if (!backwards && orlfIsAfter(*reference, start)) first = before(start, 1, true);
    }
    if (!first) return list;
    walk(*first, backwards, false, [&](NSDate date, NSUInteger index) {
      list.emplace_back(date, index);
      return list.size() >= most;
    });
    return list;
  }
};

TEST(CalendarTranscription, AnswersWhatTheStepsTell) {
  constexpr std::size_t kMost = 6;
  RandomWalks random;
  std::size_t dates = 0;
  int included = 0;
  for (int round = 0; round < 250; ++round) {
    const auto calendar = random.calendar();
    Rule::Recurrence fields = random.rule();
    fields.frequency = random.oneOf(orlftest::chance::kFrequencies);
    fields.interval = 1 + random.below(4);
    const auto rule = Rule::ruleWithFields(fields);
    const NSDate date =
        at(*calendar, 2008 + static_cast<int>(random.below(8)),
           1 + static_cast<int>(random.below(12)), 1 + static_cast<int>(random.below(31)), 9, 30);
    const auto moved = [&](NSInteger most) {
      const auto days = 1 + random.below(most);
      return calendar->dateByAddingUnit(NSCalendarUnitDay, days, date, 0).value();
    };
    Told told{*calendar, *rule, std::nullopt};
    if (random.below(4) != 0) told.reference = random.below(3) == 0 ? date : moved(700);
    const LogCapture quiet;
    SCOPED_TRACE(testing::Message() << textOf(*rule) << " in " << calendar->timeZone()->name()
                                    << " at " << date.description() << " by "
                                    << (told.reference ? told.reference->description() : "none"));
    const bool flag = random.below(2) == 0;
    const auto count = static_cast<NSUInteger>(random.below(4));
    // On both sides of the reference date, on dates of the rule and beside them.
    NSDate asked = random.below(2) == 0 ? date : moved(1400);
    if (const auto near = told.before(asked, 1, false); near && random.below(2) == 0) asked = *near;
    const NSDate end = random.below(8) == 0 ? asked : moved(1400);

    const auto range = datesForRecurrenceRule(*calendar, {.recurrenceRule = *rule,
                                                          .fromDate = asked,
                                                          .toDate = end,
                                                          .referenceDate = told.reference,
                                                          .inclusive = flag});
    ASSERT_EQ(range, told.dates(asked, end, flag));
    dates += range.size();
    ASSERT_EQ(dateBeforeDate(*calendar, {.date = asked,
                                         .usingRecurrenceRule = *rule,
                                         .count = count,
                                         .referenceDate = told.reference,
                                         .exactPatternMatch = flag}),
              told.before(asked, count, flag));
    ASSERT_EQ(dateAfterDate(*calendar, {.date = asked,
                                        .usingRecurrenceRule = *rule,
                                        .count = count,
                                        .referenceDate = told.reference,
                                        .exactMatch = flag}),
              told.after(asked, count, flag));
    const bool includes = recurrenceRuleIncludesDate(*calendar, *rule, asked, told.reference);
    ASSERT_EQ(includes, told.includes(asked));
    included += includes ? 1 : 0;
    Told::Counted found;
    enumerateDatesUsingRecurrenceRule(*calendar,
                                      {.recurrenceRule = *rule,
                                       .startDate = asked,
                                       .backwards = flag,
                                       .referenceDate = told.reference},
                                      [&](NSDate each, NSUInteger index, bool& stop) {
                                        found.emplace_back(each, index);
                                        stop = found.size() >= kMost;
                                      });
    ASSERT_EQ(found, told.walked(asked, flag, kMost));
  }
  EXPECT_GT(dates, 500U);
  EXPECT_GT(included, 30);
}

}  // namespace
}  // namespace ORLFoundation
