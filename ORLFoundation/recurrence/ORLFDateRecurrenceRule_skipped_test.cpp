// Walks over a day that a zone skipped: a step into it gives the instant of the next day, and no
// instant comes twice.
#include <ORLFoundation/calendar/ORLFCalendarSkippedDays_testing.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrence_testing.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>

namespace ORLFoundation {
namespace {

using namespace orlftest;

using internal::recurrence::ORLFDateWalk;
using Dates = std::vector<NSDate>;

// The days of each walk are counted from the skipped one, as in `dayAt`.
class WalkOverASkippedDay : public orlftest::SkippedDayTest {
 protected:
  [[nodiscard]] Dates daysAt(std::initializer_list<int> offsets, int hour = 12) const {
    Dates dates;
    for (const int offset : offsets) dates.push_back(dayAt(offset, hour));
    return dates;
  }
  [[nodiscard]] Dates walk(const Rule& rule, int offset, std::size_t most,
                           const WalkOptions& options = {}) const {
    return firstDates(rule, *calendar_, dayAt(offset, 12), most, options);
  }
  [[nodiscard]] Dates generalWalk(const Rule& rule, int offset, std::size_t most,
                                  bool backwards) const {
    Dates dates;
    const auto take = [&](NSDate date, NSUInteger number, bool& stop) {
      dates.push_back(date);
      EXPECT_EQ(number, dates.size());
      stop = dates.size() == most;
    };
    ORLFDateWalk(rule,
                 {.calendar = *calendar_, .startDate = dayAt(offset, 12), .backwards = backwards},
                 take, ORLFDateWalk::Paths::kGeneralOnly)
        .run();
    return dates;
  }
  [[nodiscard]] Dates olderWalk(const Rule& rule, int offset, std::size_t most,
                                bool backwards) const {
    Dates dates;
    rule.enumerateDatesForCalendarRefernceDate(
        {.calendar = *calendar_, .refernceDate = dayAt(offset, 12), .backwards = backwards},
        [&](NSDate date, NSUInteger number, bool& stop) {
          EXPECT_EQ(number, dates.size());
          dates.push_back(date);
          stop = dates.size() == most;
        });
    return dates;
  }
};

TEST_P(WalkOverASkippedDay, DailyGivesEachDayOnce) {
  for (const int hour : {0, 12, 23}) {
    EXPECT_EQ(firstDates(Rule(kDaily, 1), *calendar_, dayAt(-3, hour), 6),
              daysAt({-3, -2, -1, 1, 2, 3}, hour));
    EXPECT_EQ(firstDates(Rule(kDaily, 1), *calendar_, dayAt(3, hour), 6, {.backwards = true}),
              daysAt({3, 2, 1, -1, -2, -3}, hour));
  }
}

TEST_P(WalkOverASkippedDay, DailyGoesOnFromTheDaysBesideIt) {
  EXPECT_EQ(walk(Rule(kDaily, 1), -1, 3), daysAt({-1, 1, 2}));
  EXPECT_EQ(walk(Rule(kDaily, 1), 1, 3), daysAt({1, 2, 3}));
  EXPECT_EQ(walk(Rule(kDaily, 1), 1, 3, {.backwards = true}), daysAt({1, -1, -2}));
  EXPECT_EQ(walk(Rule(kDaily, 1), -1, 3, {.backwards = true}), daysAt({-1, -2, -3}));
}

TEST_P(WalkOverASkippedDay, EverySecondDayTakesTheNextDayForIt) {
  const Rule rule(kDaily, 2);
  EXPECT_EQ(walk(rule, -4, 5), daysAt({-4, -2, 1, 2, 4}));
  EXPECT_EQ(walk(rule, -3, 4), daysAt({-3, -1, 1, 3}));
  EXPECT_EQ(walk(rule, 4, 5, {.backwards = true}), daysAt({4, 2, 1, -2, -4}));
  EXPECT_EQ(walk(rule, 3, 4, {.backwards = true}), daysAt({3, 1, -1, -3}));
}

TEST_P(WalkOverASkippedDay, WeeklyTakesTheNextDayForItAndItsWeekdayPassesItOver) {
  const Rule rule(kWeekly, 1);
  EXPECT_EQ(walk(rule, -14, 5), daysAt({-14, -7, 1, 7, 14}));
  EXPECT_EQ(walk(rule, 14, 5, {.backwards = true}), daysAt({14, 7, 1, -7, -14}));
  EXPECT_EQ(walk(rule, -14, 4, {.exact = true}), daysAt({-14, -7, 7, 14}));
  EXPECT_EQ(walk(rule, 14, 4, {.backwards = true, .exact = true}), daysAt({14, 7, -7, -14}));
}

TEST_P(WalkOverASkippedDay, AnEndCountsEachInstantOnce) {
  const auto fifth = ORLFDateRecurrenceEnd::initEndWithOccurrenceCount(5);
  EXPECT_EQ(walk(Rule(kDaily, 1), -3, 99, {.end = fifth}), daysAt({-3, -2, -1, 1, 2}));
  EXPECT_EQ(walk(Rule(kDaily, 1), 3, 99, {.end = fifth, .backwards = true}),
            daysAt({3, 2, 1, -1, -2}));
  EXPECT_EQ(walk(Rule(kDaily, 2), -4, 99, {.end = fifth}), daysAt({-4, -2, 1, 2, 4}));
}

TEST_P(WalkOverASkippedDay, AnEndDateIsReachedBehindIt) {
  // The end itself is not given.
  const auto next = ORLFDateRecurrenceEnd::initEndWithEndDate(dayAt(2, 12));
  EXPECT_EQ(walk(Rule(kDaily, 1), -3, 99, {.end = next}), daysAt({-3, -2, -1, 1}));
  const auto later = ORLFDateRecurrenceEnd::initEndWithEndDate(dayAt(3, 12));
  EXPECT_EQ(walk(Rule(kDaily, 1), -3, 99, {.end = later}), daysAt({-3, -2, -1, 1, 2}));
  const auto before = ORLFDateRecurrenceEnd::initEndWithEndDate(dayAt(-3, 12));
  EXPECT_EQ(walk(Rule(kDaily, 1), 3, 99, {.end = before, .backwards = true}),
            daysAt({3, 2, 1, -1, -2}));
}

TEST_P(WalkOverASkippedDay, FastAndGeneralWalkAgree) {
  const Rule rules[] = {
      Rule(kDaily, 1),
      Rule(kDaily, 2),
      Rule(kWeekly, 1),
      Rule(Rule::Recurrence{.frequency = kDaily, .monthsOfTheYear = {{1, 8, 9, 12}}}),
      Rule(Rule::Recurrence{.frequency = kDaily, .daysOfTheMonth = {{1, 20, 21, 22, 30, 31}}}),
      Rule(Rule::Recurrence{.frequency = kWeekly,
                            .daysOfTheWeek = weekdays({{1, 0}, {4, 0}, {6, 0}, {7, 0}})}),
  };
  for (const Rule& rule : rules) {
    for (const bool backwards : {false, true}) {
      const int start = backwards ? 3 : -3;
      const Dates dates = walk(rule, start, 20, {.backwards = backwards});
      EXPECT_EQ(dates.size(), 20U);
      EXPECT_EQ(std::adjacent_find(dates.begin(), dates.end()), dates.end());
      EXPECT_EQ(generalWalk(rule, start, 20, backwards), dates)
          << rule.description() << ' ' << backwards;
    }
  }
}

TEST_P(WalkOverASkippedDay, TheOlderWalkGivesEachDayOnce) {
  EXPECT_EQ(olderWalk(Rule(kDaily, 1), -4, 5, false), daysAt({-3, -2, -1, 1, 2}));
  EXPECT_EQ(olderWalk(Rule(kDaily, 1), 3, 5, true), daysAt({3, 2, 1, -1, -2}));
  EXPECT_EQ(olderWalk(Rule(kWeekly, 1), -14, 3, false), daysAt({-7, 1, 7}));
}

INSTANTIATE_TEST_SUITE_P(Zones, WalkOverASkippedDay, testing::ValuesIn(orlftest::kSkippedDays));

}  // namespace
}  // namespace ORLFoundation
