// Lists and fiscal weeks in zones that skipped a whole day by changing sides of the date line.
#include <ORLFoundation/calendar/ORLFCalendarArithmetic.h>
#include <ORLFoundation/calendar/ORLFCalendarFiscal.h>
#include <ORLFoundation/calendar/ORLFCalendarSeries.h>
#include <ORLFoundation/calendar/ORLFCalendarSkippedDays_testing.h>
#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace ORLFoundation {
namespace {

using orlftest::at;
using orlftest::calendarIn;
using Dates = std::vector<NSDate>;

class OverASkippedDay : public orlftest::SkippedDayTest {
 protected:
  // The same time on each day from so many days before the skipped one to so many after it.
  [[nodiscard]] Dates days(int before, int after, int hour) const {
    Dates list;
    for (int day = -before; day <= after; ++day) {
      if (day != 0) list.push_back(dayAt(day, hour));
    }
    return list;
  }
};

TEST_P(OverASkippedDay, TheZoneLeavesItOut) {
  EXPECT_EQ(dayAt(0, 12), dayAt(1, 12));
  EXPECT_EQ(dayAt(1, 12).timeIntervalSinceDate(dayAt(-1, 12)), 86400);
}

TEST_P(OverASkippedDay, SeriesOfDaysGoOnFromAnchorsOnBothSides) {
  for (const int hour : {0, 12, 23}) {
    const Dates wanted = days(5, 6, hour);
    for (const int anchor : {-400, -5, -2, -1, 1, 2, 6, 400}) {
      const auto dates = orlfDatesOfEventsRepeatingWithUnit(
          *calendar_, {.unit = NSCalendarUnitDay,
                       .anchoredOnEventDate = dayAt(anchor, hour),
                       .fromDate = wanted.front(),
                       .toDate = dayAt(6, hour).dateByAddingTimeInterval(1),
                       .inclusive = true});
      EXPECT_EQ(dates, wanted) << skipped_.zone << ' ' << anchor << ' ' << hour;
    }
  }
}

TEST_P(OverASkippedDay, SeriesOfWeeksAndMonthsTakeTheNextDayForIt) {
  for (const NSCalendarUnit unit : {NSCalendarUnitWeekOfYear, NSCalendarUnitMonth}) {
    const NSDate anchor = *calendar_->dateByAddingUnit(unit, -3, dayAt(0, 12), 0);
    const auto dates =
        orlfDatesOfEventsRepeatingWithUnit(*calendar_, {.unit = unit,
                                                        .anchoredOnEventDate = anchor,
                                                        .fromDate = dayAt(-5, 12),
                                                        .toDate = dayAt(5, 12)});
    EXPECT_TRUE(dates && std::is_sorted(dates->begin(), dates->end(), orlfIsBefore));
    EXPECT_EQ(std::adjacent_find(dates->begin(), dates->end()), dates->end());
    EXPECT_GE(dates->size(), 1U);
  }
}

TEST_P(OverASkippedDay, SteppedListsOfDaysGoOnInBothDirections) {
  for (const bool forward : {true, false}) {
    for (const bool aligned : {true, false}) {
      const Dates list = orlfDatesAtInterval(*calendar_, {.interval = 1,
                                                          .inAligned = aligned,
                                                          .calendarUnit = NSCalendarUnitDay,
                                                          .firstDate = dayAt(-5, 0),
                                                          .secondDate = dayAt(6, 0),
                                                          .startingWithFirst = forward});
      EXPECT_EQ(list, days(5, 6, 0)) << skipped_.zone << forward << aligned;
    }
    const Dates atNoon = orlfDatesAtInterval(*calendar_, {.interval = 1,
                                                          .calendarUnit = NSCalendarUnitDay,
                                                          .firstDate = dayAt(-5, 12),
                                                          .secondDate = dayAt(6, 12),
                                                          .startingWithFirst = forward});
    EXPECT_EQ(atNoon, days(5, 6, 12)) << skipped_.zone << forward;
  }
}

// Weeks are counted in days that there were, so a year that begins after the skipped day begins
// with the week of its calendar year's first day, and no week is below it.
TEST_P(OverASkippedDay, FiscalWeeksBeginAlikeOnBothSides) {
  for (const int offset : {-60, -7, -1, 1, 7, 40, 41, 60}) {
    const NSDate start = dayAt(offset, 0);
    const NSDateComponents day =
        calendar_->components(NSCalendarUnitMonth | NSCalendarUnitDay, start);
    NSInteger last = 1;
    for (int later = 0; later < 120; ++later) {
      const NSDate date = dayAt(offset + later, 12);
      if (offset + later == 0) continue;
      const NSInteger week =
          orlfComponents(*calendar_, NSCalendarUnitWeekOfYear, date, day.month(), day.day())
              .weekOfYear();
      EXPECT_GE(week, last) << skipped_.zone << ' ' << offset << ' ' << later;
      EXPECT_LE(week, last + 1) << skipped_.zone << ' ' << offset << ' ' << later;
      last = week;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Zones, OverASkippedDay, testing::ValuesIn(orlftest::kSkippedDays));

TEST(OrlfComponents, FirstWeekOfAYearAfterKwajaleinsSkippedDayIsNotBelowOne) {
  const auto calendar = calendarIn("Pacific/Kwajalein");
  EXPECT_EQ(orlfComponents(*calendar, NSCalendarUnitWeekOfYear, at(*calendar, 1993, 10, 1), 10, 1)
                .weekOfYear(),
            1);
}

// Both sides of the skip may or may not keep daylight saving time: Samoa's clocks stand 23 to 25
// hours apart. 1 January 2011 was a Saturday; after the skip the weeks from it begin on Sundays,
// before and after 1 April 2012, when daylight saving time ended.
TEST(OrlfComponents, FiscalWeeksAfterASkippedDayDoNotDependOnDaylightSavingTime) {
  const auto calendar = calendarIn("Pacific/Apia");
  for (const int startMonth : {5, 7, 12}) {
    const auto weekOn = [&](int month, int day) {
      return orlfComponents(*calendar, NSCalendarUnitWeekOfYear,
                            at(*calendar, 2012, month, day, 12), startMonth, 1)
          .weekOfYear();
    };
    const NSInteger first = weekOn(1, 1);
    EXPECT_EQ(weekOn(1, 7), first) << startMonth;
    EXPECT_EQ(weekOn(3, 31), first + 12) << startMonth;
    EXPECT_EQ(weekOn(4, 1), first + 13) << startMonth;
    EXPECT_EQ(weekOn(4, 7), first + 13) << startMonth;
    EXPECT_EQ(weekOn(4, 8), first + 14) << startMonth;
  }
}

// A second's step from 1900 would take four thousand million steps on the way.
TEST(OrlfDatesOfEventsRepeating, JumpsToTheRangeFromAFarAnchor) {
  const auto calendar = calendarIn("America/New_York");
  const NSDate from = at(*calendar, 2024, 5, 6, 7, 8, 9);
  const Dates wanted{from, from.dateByAddingTimeInterval(1), from.dateByAddingTimeInterval(2)};
  for (const int year : {-90000, 1900, 2200, 90000}) {
    EXPECT_EQ(orlfDatesOfEventsRepeatingWithUnit(*calendar,
                                                 {.unit = NSCalendarUnitSecond,
                                                  .anchoredOnEventDate = at(*calendar, year, 1, 1),
                                                  .fromDate = from,
                                                  .toDate = wanted.back(),
                                                  .inclusive = true}),
              wanted)
        << year;
  }
}

// Against a walk that takes every step.
TEST(OrlfDatesOfEventsRepeating, LeavesOutNoEventByJumping) {
  const auto calendar = calendarIn("Europe/Vienna");
  constexpr NSCalendarUnit kSteppedUnits[] = {NSCalendarUnitDay,   NSCalendarUnitWeekOfYear,
                                              NSCalendarUnitMonth, NSCalendarUnitQuarter,
                                              NSCalendarUnitYear,  NSCalendarUnitYearForWeekOfYear};
  for (const NSCalendarUnit unit : kSteppedUnits) {
    for (const NSInteger multiplier : {1, 2, 3, 7}) {
      for (const int anchorDay : {1, 28, 29, 30, 31}) {
        for (const int anchorYear : {2010, 2030}) {
          const NSDate anchor = at(*calendar, anchorYear, 1, anchorDay, 2, 30);
          const NSDate from = at(*calendar, 2020, 2, 29, 2, 30);
          const NSDate to = at(*calendar, 2021, 3, 31, 2, 30);
          Dates wanted;
          const NSInteger sign = anchorYear < 2020 ? 1 : -1;
          for (NSInteger step = 1; step < 8000; ++step) {
            const auto date =
                orlfDateByAddingInterval(*calendar, sign * step * multiplier, unit, anchor);
            if (date && orlfIsOnOrAfter(*date, from) && orlfIsOnOrBefore(*date, to))
              wanted.push_back(*date);
          }
          std::sort(wanted.begin(), wanted.end(), orlfIsBefore);
          wanted.erase(std::unique(wanted.begin(), wanted.end()), wanted.end());
          EXPECT_EQ(orlfDatesOfEventsRepeatingWithUnit(*calendar, {.unit = unit,
                                                                   .multiplier = multiplier,
                                                                   .anchoredOnEventDate = anchor,
                                                                   .fromDate = from,
                                                                   .toDate = to,
                                                                   .inclusive = true}),
                    wanted)
              << unit << ' ' << multiplier << ' ' << anchorDay << ' ' << anchorYear;
        }
      }
    }
  }
}

}  // namespace
}  // namespace ORLFoundation
