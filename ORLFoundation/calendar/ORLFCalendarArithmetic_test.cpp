
#include <ORLFoundation/calendar/ORLFCalendarArithmetic.h>

#include <ORLFoundation/calendar/ORLFCalendar_testing.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ORLFoundation {
namespace {

using orlftest::at;
using orlftest::calendarIn;

constexpr double kNever = std::numeric_limits<double>::quiet_NaN();

struct IntervalCase {
  const char* name;
  NSUInteger unit;
  NSInteger interval;  // from 2024-01-31 to 2025-03-01
};
constexpr IntervalCase kIntervals[] = {
    {"Era", NSCalendarUnitEra, 0},
    {"Year", NSCalendarUnitYear, 1},
    {"Month", NSCalendarUnitMonth, 13},
    {"Day", NSCalendarUnitDay, 395},
    {"Hour", NSCalendarUnitHour, 9480},
    {"Minute", NSCalendarUnitMinute, 568800},
    {"Second", NSCalendarUnitSecond, 34128000},
    {"TheRetiredWeek", NSCalendarUnitWeek, 56},
    {"WeekdayCountsDays", NSCalendarUnitWeekday, 395},
    {"WeekdayOrdinalCountsWeeks", NSCalendarUnitWeekdayOrdinal, 56},
    {"QuarterStepsAtBoundaries", NSCalendarUnitQuarter, 4},
    {"WeekOfMonthCountsWeeks", NSCalendarUnitWeekOfMonth, 56},
    {"WeekOfYear", NSCalendarUnitWeekOfYear, 56},
    {"YearForWeekOfYearCountsYears", NSCalendarUnitYearForWeekOfYear, 1},
    {"NanosecondIsNoUnitOfIt", NSCalendarUnitNanosecond, 0},
    {"Nothing", 0, 0},
    {"AMask", NSCalendarUnitMonth | NSCalendarUnitDay, 0},
};

TEST(ORLFCalendarArithmetic, CountsWholeUnits) {
  const auto calendar = calendarIn("UTC");
  const NSDate from = at(*calendar, 2024, 1, 31);
  const NSDate to = at(*calendar, 2025, 3, 1);
  for (const IntervalCase& row : kIntervals) {
    const auto unit = static_cast<NSCalendarUnit>(row.unit);
    EXPECT_EQ(orlfIntervalInCalendarUnit(*calendar, unit, from, to), row.interval) << row.name;
  }
}

TEST(ORLFCalendarArithmetic, CountsNothingBetweenDatesThatNoCalendarPlaces) {
  const auto calendar = calendarIn("UTC");
  const NSDate never = NSDate::dateWithTimeIntervalSinceReferenceDate(kNever);
  for (NSUInteger unit = NSCalendarUnitEra; unit <= NSCalendarUnitNanosecond; unit <<= 1)
    EXPECT_EQ(
        orlfIntervalInCalendarUnit(*calendar, static_cast<NSCalendarUnit>(unit), never, NSDate()),
        0);
}

// Apia had no 30 December in 2011: its clock tells two days from the 29th to the 31st.
TEST(ORLFCalendarArithmetic, CountsDaysByTheClock) {
  const auto calendar = calendarIn("Pacific/Apia");
  EXPECT_EQ(orlfIntervalInCalendarUnit(*calendar, NSCalendarUnitDay, at(*calendar, 2011, 12, 29),
                                       at(*calendar, 2011, 12, 31)),
            2);
}

TEST(ORLFCalendarArithmetic, CountsOneYearExactlyThroughTheProbe) {
  const auto calendar = calendarIn("America/New_York");
  EXPECT_EQ(
      orlfCountOfCalendarUnit(*calendar, NSCalendarUnitYear, at(*calendar, 2023, 5, 17, 8, 45),
                              at(*calendar, 2024, 5, 17, 8, 45)),
      1.0);
}

TEST(ORLFCalendarArithmetic, AddsTheFractionsOfTheFirstAndTheLastUnit) {
  const auto calendar = calendarIn("UTC");
  // 17 of January's 31 days, no whole month, 14 of February's 29: not quite a month.
  const double count =
      orlfCountOfCalendarUnit(*calendar, NSCalendarUnitMonth, at(*calendar, 2024, 1, 15),
                              at(*calendar, 2024, 2, 15, 0, 0, 1));
  const double first = 17.0 * 86400 / (31.0 * 86400);
  const double last = (14.0 * 86400 + 1) / (29.0 * 86400);
  EXPECT_EQ(count, 0.0 + first + last);
}

TEST(ORLFCalendarArithmetic, CountsBackwardWithTheSameFractions) {
  const auto calendar = calendarIn("UTC");
  const double count =
      orlfCountOfCalendarUnit(*calendar, NSCalendarUnitMonth, at(*calendar, 2024, 3, 16, 12),
                              at(*calendar, 2024, 1, 16, 6));
  // From 1 April back to 1 January are three months; the fractions are added all the same.
  const double rest = 15.5 / 31;
  const double begun = 15.25 / 31;
  EXPECT_EQ(count, -3.0 + rest + begun);
}

TEST(ORLFCalendarArithmetic, CountsDaysWithoutAFraction) {
  const auto calendar = calendarIn("UTC");
  const LogCapture log;
  EXPECT_EQ(orlfCountOfCalendarUnit(*calendar, NSCalendarUnitDay, at(*calendar, 2024, 1, 1, 6),
                                    at(*calendar, 2024, 1, 4, 18)),
            2.0);
  EXPECT_TRUE(log.lines().empty());
}

TEST(ORLFCalendarArithmetic, LogsUnitsFinerThanADayAndCountsThemWhole) {
  const auto calendar = calendarIn("UTC");
  const LogCapture log;
  EXPECT_EQ(orlfCountOfCalendarUnit(*calendar, NSCalendarUnitHour, at(*calendar, 2024, 1, 1, 6, 30),
                                    at(*calendar, 2024, 1, 1, 18, 45)),
            11.0);
  EXPECT_EQ(log.lines(), std::vector<std::string>{"Condition Failed: unit == NSCalendarUnitDay "
                                                  "Units smaller than day are not supported"});
}

TEST(ORLFCalendarArithmetic, CountsUnitsOutsideTheLadderLikeFineOnes) {
  const auto calendar = calendarIn("UTC");
  const LogCapture log;
  EXPECT_EQ(orlfCountOfCalendarUnit(*calendar, NSCalendarUnitWeekday, at(*calendar, 2024, 1, 1, 6),
                                    at(*calendar, 2024, 1, 4, 18)),
            2.0);
  EXPECT_EQ(log.lines().size(), 1U);
}

TEST(ORLFCalendarArithmetic, CountsNothingToADateThatNoCalendarPlaces) {
  const auto calendar = calendarIn("UTC");
  const NSDate never = NSDate::dateWithTimeIntervalSinceReferenceDate(kNever);
  EXPECT_EQ(orlfCountOfCalendarUnit(*calendar, NSCalendarUnitMonth, NSDate(), never), 0.0);
}

// A side that no calendar places has no boundary: its fraction and the whole units are left out.
TEST(ORLFCalendarArithmetic, CountsTheFractionOfTheOneSideThatTheCalendarPlaces) {
  const auto calendar = calendarIn("UTC");
  const NSDate far = NSDate::dateWithTimeIntervalSinceReferenceDate(1e15);
  EXPECT_EQ(
      orlfCountOfCalendarUnit(*calendar, NSCalendarUnitMonth, at(*calendar, 2024, 1, 15), far),
      17.0 / 31);
  EXPECT_EQ(
      orlfCountOfCalendarUnit(*calendar, NSCalendarUnitMonth, far, at(*calendar, 2024, 2, 15)),
      14.0 / 29);
}

// The last year that begins within the calendar ends beyond it: no seconds lead to its end.
TEST(ORLFCalendarArithmetic, CountsNoRestOfAYearThatEndsBeyondTheCalendar) {
  const auto calendar = calendarIn("UTC");
  double placed = 0;
  double beyond = 1e15;
  while (beyond - placed > 1) {
    const double middle = std::floor((placed + beyond) / 2);
    const NSDate date = NSDate::dateWithTimeIntervalSinceReferenceDate(middle);
    const bool isPlaced = calendar->component(NSCalendarUnitDay, date) != NSDateComponentUndefined;
    (isPlaced ? placed : beyond) = middle;
  }
  EXPECT_EQ(orlfCountOfCalendarUnit(*calendar, NSCalendarUnitYear,
                                    NSDate::dateWithTimeIntervalSinceReferenceDate(placed),
                                    at(*calendar, 2024, 1, 1)),
            0.0);
}

TEST(ORLFCalendarArithmetic, CountsWholeMonthsThroughAddingOnEveryDayOfFourYears) {
  for (const char* zone : {"America/New_York", "Asia/Kathmandu", "Australia/Lord_Howe"}) {
    const auto calendar = calendarIn(zone);
    for (int day = 0; day < 4 * 365; ++day) {
      const NSDate from =
          calendar->dateByAddingUnit(NSCalendarUnitDay, day, at(*calendar, 2023, 1, 1, 9, 30), 0)
              .value();
      const NSDate to = orlfDateByAddingInterval(*calendar, 7, NSCalendarUnitMonth, from).value();
      const NSInteger months = orlfIntervalInCalendarUnit(*calendar, NSCalendarUnitMonth, from, to);
      ASSERT_EQ(months, 7) << zone << day;
      ASSERT_EQ(orlfCountOfCalendarUnit(*calendar, NSCalendarUnitMonth, from, to), 7.0);
    }
  }
}

struct AddingCase {
  const char* name;
  NSInteger interval;
  NSUInteger unit;
  int to[3];  // from 2024-01-31
};
constexpr AddingCase kAddings[] = {
    {"MonthClamps", 1, NSCalendarUnitMonth, {2024, 2, 29}},
    {"QuarterIsThreeMonths", 1, NSCalendarUnitQuarter, {2024, 4, 30}},
    {"QuarterBackward", -1, NSCalendarUnitQuarter, {2023, 10, 31}},
    {"TheRetiredWeek", 2, NSCalendarUnitWeek, {2024, 2, 14}},
    {"WeekOfYear", 2, NSCalendarUnitWeekOfYear, {2024, 2, 14}},
    {"WeekdayOrdinalIsAWeek", 1, NSCalendarUnitWeekdayOrdinal, {2024, 2, 7}},
    {"Year", 1, NSCalendarUnitYear, {2025, 1, 31}},
    {"NoUnit", 5, 0, {2024, 1, 31}},
    {"AMask", 5, NSCalendarUnitMonth | NSCalendarUnitDay, {2024, 1, 31}},
    {"Nothing", 0, NSCalendarUnitMonth, {2024, 1, 31}},
};

TEST(ORLFCalendarArithmetic, AddsUnits) {
  const auto calendar = calendarIn("America/New_York");
  for (const AddingCase& row : kAddings)
    EXPECT_EQ(
        orlfDateByAddingInterval(*calendar, row.interval, static_cast<NSCalendarUnit>(row.unit),
                                 at(*calendar, 2024, 1, 31)),
        at(*calendar, row.to[0], row.to[1], row.to[2]))
        << row.name;
}

TEST(ORLFCalendarArithmetic, AddsNothingToNilAndNothingBeyondTheCalendar) {
  const auto calendar = calendarIn("UTC");
  EXPECT_EQ(orlfDateByAddingInterval(*calendar, 1, NSCalendarUnitDay, std::nullopt), std::nullopt);
  for (const NSCalendarUnit unit :
       {NSCalendarUnitQuarter, NSCalendarUnitMonth, NSCalendarUnitYear}) {
    EXPECT_EQ(orlfDateByAddingInterval(*calendar, NSIntegerMax - 1, unit, NSDate()), std::nullopt);
    EXPECT_EQ(orlfDateByAddingInterval(*calendar, NSIntegerMin, unit, NSDate()), std::nullopt);
  }
  // Three times as many months would be 2 where the product wraps.
  EXPECT_EQ(
      orlfDateByAddingInterval(*calendar, 6148914691236517206, NSCalendarUnitQuarter, NSDate()),
      std::nullopt);
}

TEST(ORLFCalendarArithmetic, ComparesDaysBeforeInstants) {
  const auto calendar = calendarIn("America/New_York");
  const NSDate morning = at(*calendar, 2024, 3, 10, 0, 0, 1);
  const NSDate evening = at(*calendar, 2024, 3, 10, 23, 59, 59);
  const NSDate next = at(*calendar, 2024, 3, 11);
  EXPECT_EQ(orlfDateOnSameDayAsDate(*calendar, morning, evening), NSOrderedSame);
  EXPECT_EQ(orlfDateOnSameDayAsDate(*calendar, evening, next), NSOrderedAscending);
  EXPECT_EQ(orlfDateOnSameDayAsDate(*calendar, next, evening), NSOrderedDescending);
  for (const NSDate other : {at(*calendar, 2024, 2, 10), at(*calendar, 2023, 3, 10)})
    EXPECT_EQ(orlfDateOnSameDayAsDate(*calendar, morning, other), NSOrderedDescending);
  EXPECT_EQ(orlfDateOnSameDayAsDate(*calendar, std::nullopt, next), NSOrderedAscending);
  EXPECT_EQ(orlfDateOnSameDayAsDate(*calendar, next, std::nullopt), NSOrderedAscending);
  EXPECT_EQ(orlfDateOnSameDayAsDate(*calendar, std::nullopt, std::nullopt), NSOrderedAscending);
}

TEST(ORLFCalendarArithmetic, ComparesDatesThatNoCalendarPlacesAsInstants) {
  const auto calendar = calendarIn("UTC");
  const NSDate early = NSDate::dateWithTimeIntervalSinceReferenceDate(-1e15);
  const NSDate late = NSDate::dateWithTimeIntervalSinceReferenceDate(1e15);
  EXPECT_EQ(orlfDateOnSameDayAsDate(*calendar, early, late), NSOrderedAscending);
  EXPECT_EQ(orlfDateOnSameDayAsDate(*calendar, late, early), NSOrderedDescending);
  EXPECT_EQ(orlfDateOnSameDayAsDate(*calendar, late, late), NSOrderedSame);
}

}  // namespace
}  // namespace ORLFoundation
