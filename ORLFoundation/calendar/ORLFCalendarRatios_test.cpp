
#include <ORLFoundation/calendar/ORLFCalendarRatios.h>

#include <ORLFoundation/calendar/ORLFCalendarDays_testing.h>
#include <ORLFoundation/platform/process/NSBundle.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

namespace ORLFoundation {
namespace {

using orlftest::utcCalendar;

std::optional<NSDate> january2024() { return orlftest::dateFromVector("2024-01-20T12:00:00Z"); }

struct ValueCase {
  const char* name;
  NSCalendarUnit unit, inUnit;
  double value;
};
const ValueCase kValues[] = {
    {"MonthsOfItsOwnLengthInAYear", NSCalendarUnitMonth, NSCalendarUnitYear, 366.0 / 31},
    {"DaysInAYear", NSCalendarUnitDay, NSCalendarUnitYear, 366},
    {"DaysInAMonth", NSCalendarUnitDay, NSCalendarUnitMonth, 31},
    {"HoursInADay", NSCalendarUnitHour, NSCalendarUnitDay, 24},
    {"MinutesInAnHour", NSCalendarUnitMinute, NSCalendarUnitHour, 60},
    {"SecondsInAMinute", NSCalendarUnitSecond, NSCalendarUnitMinute, 60},
    {"WeeksInAMonth", NSCalendarUnitWeek, NSCalendarUnitMonth, 31.0 / 7},
    {"QuartersInAYear", NSCalendarUnitQuarter, NSCalendarUnitYear, 366.0 / 91},
    {"WeeksOfTheMonthInAWeek", NSCalendarUnitWeekOfMonth, NSCalendarUnitWeekOfYear, 1},
    {"WeeksOfTheYearInAYear", NSCalendarUnitWeekOfYear, NSCalendarUnitYear, 366.0 / 7},
    {"YearsInAQuarter", NSCalendarUnitYear, NSCalendarUnitQuarter, 91.0 / 366},
    {"YearsInAYear", NSCalendarUnitYear, NSCalendarUnitYear, 1},
    {"ErasWhoseLengthTheCalendarDoesNotTell", NSCalendarUnitEra, NSCalendarUnitYear, 0},
    {"SecondsInAnHour", NSCalendarUnitSecond, NSCalendarUnitHour, 3600},
    {"SecondsInASecond", NSCalendarUnitSecond, NSCalendarUnitSecond, 1},
    {"NanosecondsHaveNoLength", NSCalendarUnitNanosecond, NSCalendarUnitYear, 0},
    {"WeekdaysHaveNoLength", NSCalendarUnitWeekdayOrdinal, NSCalendarUnitYear, 0},
    {"MasksHaveNoLength", NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay,
     NSCalendarUnitYear, 0},
};

TEST(OrlfMaximumValueOfUnit, DividesLengths) {
  for (const ValueCase& row : kValues)
    EXPECT_DOUBLE_EQ(orlfMaximumValueOfUnit(utcCalendar(), row.unit, row.inUnit, january2024()),
                     row.value)
        << row.name;
}

TEST(OrlfMaximumValueOfUnit, IsZeroForNilAndForUnitsWithoutARange) {
  EXPECT_EQ(
      orlfMaximumValueOfUnit(utcCalendar(), NSCalendarUnitDay, NSCalendarUnitYear, std::nullopt),
      0);
  EXPECT_EQ(orlfMaximumValueOfUnit(utcCalendar(), NSCalendarUnitDay, static_cast<NSCalendarUnit>(0),
                                   january2024()),
            0);
}

TEST(OrlfMaximumValueOfUnit, CountsTheHoursOfADayThatAClockChangeMakesLonger) {
  const auto calendar = orlftest::calendarFromVector(
      orlftest::Json{{"zone", "America/New_York"}, {"first_weekday", 1}, {"min_days", 1}});
  const auto longDay = orlftest::dateFromVector("2024-11-03T12:00:00Z");
  EXPECT_EQ(orlfMaximumValueOfUnit(*calendar, NSCalendarUnitHour, NSCalendarUnitDay, longDay), 25);
  // Days count as 24 hours whatever the clock does.
  EXPECT_DOUBLE_EQ(
      orlfMaximumValueOfUnit(*calendar, NSCalendarUnitDay, NSCalendarUnitMonth, longDay),
      30 + 1 / 24.0);
}

TEST(OrlfRatioOfCalendarUnit, RoundsEachSideUpFirst) {
  EXPECT_EQ(
      orlfRatioOfCalendarUnit(utcCalendar(), NSCalendarUnitDay, NSCalendarUnitMonth, january2024()),
      30.5);
  const auto january2023 = orlftest::dateFromVector("2023-01-20T12:00:00Z");
  EXPECT_EQ(orlfRatioOfCalendarUnit(utcCalendar(), NSCalendarUnitMonth, NSCalendarUnitQuarter,
                                    january2023),
            2.4);
}

TEST(OrlfRatioOfCalendarUnit, CountsOneYearOnEitherSide) {
  EXPECT_EQ(orlfRatioOfCalendarUnit(utcCalendar(), NSCalendarUnitYear, NSCalendarUnitMonth,
                                    january2024()),
            1.0 / 12);
  EXPECT_EQ(orlfRatioOfCalendarUnit(utcCalendar(), NSCalendarUnitMonth, NSCalendarUnitYear,
                                    january2024()),
            12);
}

TEST(OrlfRatioOfCalendarUnit, IsZeroWhereASideIs) {
  EXPECT_EQ(orlfRatioOfCalendarUnit(utcCalendar(), NSCalendarUnitDay, NSCalendarUnitWeekday,
                                    january2024()),
            0);
  EXPECT_EQ(
      orlfRatioOfCalendarUnit(utcCalendar(), NSCalendarUnitDay, NSCalendarUnitMonth, std::nullopt),
      0);
}

struct NameCase {
  NSCalendarUnit unit;
  const char *single, *plural;
};
const NameCase kNames[] = {
    {NSCalendarUnitYear, "year", "years"},       {NSCalendarUnitMonth, "month", "months"},
    {NSCalendarUnitWeek, "week", "weeks"},       {NSCalendarUnitWeekOfMonth, "week", "weeks"},
    {NSCalendarUnitWeekOfYear, "week", "weeks"}, {NSCalendarUnitQuarter, "quarter", "quarters"},
    {NSCalendarUnitDay, "unknown", "unknown"},   {NSCalendarUnitEra, "unknown", "unknown"},
};

TEST(OrlfNameForCalendarUnit, MatchesTable) {
  for (const NameCase& row : kNames) {
    EXPECT_EQ(orlfNameForCalendarUnit(row.unit, false), row.single);
    EXPECT_EQ(orlfNameForCalendarUnit(row.unit, true), row.plural);
  }
}

TEST(OrlfNameForCalendarUnit, AsksTheMainBundlesTable) {
  NSBundle::mainBundle()->setLocalizedStrings("Localizable", {{"weeks", "Wochen"}});
  EXPECT_EQ(orlfNameForCalendarUnit(NSCalendarUnitWeekOfYear, true), "Wochen");
  NSBundle::mainBundle()->setLocalizedStrings("Localizable", {});
  EXPECT_EQ(orlfNameForCalendarUnit(NSCalendarUnitWeekOfYear, true), "weeks");
}

}  // namespace
}  // namespace ORLFoundation
