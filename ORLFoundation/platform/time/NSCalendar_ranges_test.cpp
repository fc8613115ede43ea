// Ranges of units, the search for matching dates, and the setting of one unit.
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/time/NSDateComponents_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>

#include <string>

namespace ORLFoundation {
namespace {

using orlftest::calendarIn;
using orlftest::componentsFromVector;
using orlftest::vectorFromDate;

using orlftest::date;

// ---------------------------------------------------------------- ranges

// Clocks in St John's went back from 00:01 to 23:01 of the day before.
TEST(NSCalendar, RangesReachBeyondADateOfTheHourThatMidnightDoubled) {
  const auto calendar = calendarIn("America/St_Johns");
  const NSDate doubled = date("2006-10-29T02:31:00Z");
  for (const NSCalendarUnit unit : {NSCalendarUnitDay, NSCalendarUnitWeekOfYear}) {
    NSDate start;
    NSTimeInterval length = 0;
    ASSERT_TRUE(calendar->rangeOfUnit(unit, &start, &length, doubled));
    EXPECT_EQ(start.dateByAddingTimeInterval(length), date("2006-10-29T03:30:00Z")) << unit;
  }
  NSDate start;
  NSTimeInterval length = 0;
  ASSERT_TRUE(calendar->rangeOfUnit(NSCalendarUnitDay, &start, &length, doubled));
  EXPECT_EQ(start, date("2006-10-28T02:30:00Z"));
  // The minute between both midnights belongs to the next day.
  ASSERT_TRUE(
      calendar->rangeOfUnit(NSCalendarUnitDay, &start, &length, date("2006-10-29T02:30:30Z")));
  EXPECT_EQ(start, date("2006-10-29T02:30:00Z"));
  EXPECT_EQ(length, 25 * 3600);
}

TEST(NSCalendar, RangesHoldTheDateInEveryZoneAndUnit) {
  for (const char* zone :
       {"America/St_Johns", "America/Havana", "Asia/Beirut", "Pacific/Apia", "Pacific/Kwajalein",
        "Asia/Manila", "America/Sao_Paulo", "Australia/Lord_Howe", "Africa/Casablanca"}) {
    const auto calendar = calendarIn(zone);
    for (const NSCalendarUnit unit :
         {NSCalendarUnitHour, NSCalendarUnitDay, NSCalendarUnitWeekOfYear, NSCalendarUnitMonth,
          NSCalendarUnitQuarter, NSCalendarUnitYear, NSCalendarUnitYearForWeekOfYear}) {
      std::optional<NSDate> change = date("1900-01-01T00:00:00Z");
      for (int index = 0; index < 300 && change; ++index) {
        for (const double minutes : {-61.0, -60.0, -30.0, -1.0, 0.0, 1.0, 30.0, 59.0, 60.0, 61.0}) {
          const NSDate asked = change->dateByAddingTimeInterval(minutes * 60);
          NSDate start;
          NSTimeInterval length = 0;
          ASSERT_TRUE(calendar->rangeOfUnit(unit, &start, &length, asked));
          ASSERT_NE(start.compare(asked), NSOrderedDescending) << zone << ' ' << unit;
          ASSERT_EQ(start.dateByAddingTimeInterval(length).compare(asked), NSOrderedDescending)
              << zone << ' ' << unit << ' ' << orlftest::vectorFromDate(asked);
        }
        change = calendar->timeZone()->nextDaylightSavingTimeTransitionAfterDate(*change);
      }
    }
  }
}

struct WeeksOfMonthCase {
  NSInteger minimumDays;
  NSRange largest, smallest;
};

TEST(NSCalendar, CountsTheWeeksOfAMonthByItsMinimumDays) {
  const WeeksOfMonthCase cases[] = {{1, {1, 6}, {1, 4}}, {2, {0, 7}, {0, 5}}, {3, {0, 6}, {0, 5}},
                                    {4, {0, 6}, {0, 5}}, {6, {0, 6}, {0, 5}}, {7, {0, 6}, {0, 5}}};
  for (const WeeksOfMonthCase& row : cases) {
    const auto calendar = calendarIn("UTC", 1, row.minimumDays);
    EXPECT_EQ(calendar->maximumRangeOfUnit(NSCalendarUnitWeekOfMonth), row.largest);
    EXPECT_EQ(calendar->minimumRangeOfUnit(NSCalendarUnitWeekOfMonth), row.smallest);
  }
}

// Whatever the week of the month that a day shows, a search finds it.
TEST(NSCalendar, FindsEveryWeekOfAMonthThatADayShows) {
  for (NSInteger minimumDays = 1; minimumDays <= 7; ++minimumDays) {
    const auto calendar = calendarIn("UTC", 2, minimumDays);
    for (int day = 0; day < 1461; ++day) {
      const NSDate shown = date("2021-01-01T00:00:00Z").dateByAddingTimeInterval(day * 86400.0);
      const NSDateComponents wanted =
          calendar->components(NSCalendarUnitYear | NSCalendarUnitMonth |
                                   NSCalendarUnitWeekOfMonth | NSCalendarUnitWeekday,
                               shown);
      const auto found =
          calendar->nextDateAfterDate(shown.dateByAddingTimeInterval(1), wanted,
                                      NSCalendarMatchStrictly | NSCalendarSearchBackwards);
      ASSERT_EQ(found, shown) << minimumDays << ' ' << day;
    }
  }
}

TEST(NSCalendar, BeginsADayAtItsFirstInstant) {
  const struct {
    const char* zone;
    const char* date;
    const char* start;
    double hours;
  } rows[] = {
      {"America/New_York", "2024-03-10T12:00:00Z", "2024-03-10T05:00:00Z", 23},
      {"America/New_York", "2024-11-03T12:00:00Z", "2024-11-03T04:00:00Z", 25},
      {"America/Sao_Paulo", "2017-10-15T12:00:00Z", "2017-10-15T03:00:00Z", 23},
      {"Australia/Lord_Howe", "2024-10-05T20:00:00Z", "2024-10-05T13:30:00Z", 23.5},
      {"Pacific/Apia", "2011-12-30T05:00:00Z", "2011-12-29T10:00:00Z", 24},
      {"Pacific/Apia", "2011-12-30T15:00:00Z", "2011-12-30T10:00:00Z", 24},
  };
  for (const auto& row : rows) {
    NSDate start;
    NSTimeInterval interval = 0;
    ASSERT_TRUE(
        calendarIn(row.zone)->rangeOfUnit(NSCalendarUnitDay, &start, &interval, date(row.date)));
    EXPECT_EQ(vectorFromDate(start), row.start);
    EXPECT_EQ(interval, row.hours * 3600) << row.start;
  }
}

TEST(NSCalendar, HasNoRangeOfErasAndMasksAndLeavesBothOutputs) {
  const auto calendar = calendarIn("UTC");
  for (const NSUInteger unit : std::initializer_list<NSUInteger>{0, 1, 2, 12, 65536}) {
    NSDate start = date("1999-01-01T00:00:00Z");
    NSTimeInterval interval = -5;
    EXPECT_FALSE(calendar->rangeOfUnit(static_cast<NSCalendarUnit>(unit), &start, &interval,
                                       date("2024-03-10T12:00:00Z")));
    EXPECT_EQ(vectorFromDate(start), "1999-01-01T00:00:00Z");
    EXPECT_EQ(interval, -5);
  }
}

TEST(NSCalendar, LeavesOutRangeOutputsThatAreNotWanted) {
  const auto calendar = calendarIn("UTC");
  NSDate start;
  NSTimeInterval interval = 0;
  const NSDate at = date("2024-03-10T12:00:00.500Z");
  EXPECT_TRUE(calendar->rangeOfUnit(NSCalendarUnitMonth, nullptr, nullptr, at));
  EXPECT_TRUE(calendar->rangeOfUnit(NSCalendarUnitMonth, &start, nullptr, at));
  EXPECT_TRUE(calendar->rangeOfUnit(NSCalendarUnitMonth, nullptr, &interval, at));
  EXPECT_EQ(vectorFromDate(start), "2024-03-01T00:00:00Z");
  EXPECT_EQ(interval, 31 * 86400.0);
  EXPECT_TRUE(calendar->rangeOfUnit(NSCalendarUnitSecond, &start, &interval, at));
  EXPECT_EQ(vectorFromDate(start), "2024-03-10T12:00:00Z");
  EXPECT_EQ(interval, 1);
  EXPECT_TRUE(calendar->rangeOfUnit(NSCalendarUnitWeek, &start, &interval, at));
  EXPECT_EQ(vectorFromDate(start), "2024-03-10T00:00:00Z");
  EXPECT_EQ(interval, 7 * 86400.0);
}

struct RangeCase {
  NSUInteger unit;
  NSUInteger larger;
  const char* date;
  NSRange range;
};
constexpr NSUInteger kNone = 9223372036854775807;
const RangeCase kRangeCases[] = {
    {NSCalendarUnitDay, NSCalendarUnitMonth, "2024-02-10T00:00:00Z", {1, 29}},
    {NSCalendarUnitDay, NSCalendarUnitYear, "2024-02-10T00:00:00Z", {1, 366}},
    {NSCalendarUnitWeekdayOrdinal, NSCalendarUnitMonth, "2023-02-10T00:00:00Z", {1, 4}},
    {NSCalendarUnitWeekdayOrdinal, NSCalendarUnitMonth, "2024-02-10T00:00:00Z", {1, 5}},
    {NSCalendarUnitMonth, NSCalendarUnitYear, "2024-02-10T00:00:00Z", {1, 12}},
    {NSCalendarUnitMonth, NSCalendarUnitQuarter, "2024-05-10T00:00:00Z", {4, 3}},
    {NSCalendarUnitQuarter, NSCalendarUnitYear, "2024-05-10T00:00:00Z", {1, 4}},
    {NSCalendarUnitWeekday, NSCalendarUnitWeekOfYear, "2024-05-10T00:00:00Z", {1, 7}},
    {NSCalendarUnitHour, NSCalendarUnitDay, "2024-03-10T12:00:00Z", {0, 24}},
    {NSCalendarUnitMinute, NSCalendarUnitHour, "2024-03-10T12:00:00Z", {0, 60}},
    {NSCalendarUnitWeekOfYear, NSCalendarUnitYear, "2024-05-10T00:00:00Z", {1, 53}},
    {NSCalendarUnitWeek, NSCalendarUnitYear, "2024-05-10T00:00:00Z", {1, 53}},
    {NSCalendarUnitWeekOfYear, NSCalendarUnitYear, "2028-05-10T00:00:00Z", {1, 54}},
    {NSCalendarUnitWeekOfMonth, NSCalendarUnitMonth, "2024-06-10T00:00:00Z", {1, 6}},
    {NSCalendarUnitDay, NSCalendarUnitQuarter, "2024-05-10T00:00:00Z", {1, 91}},
    {NSCalendarUnitDay, NSCalendarUnitEra, "2024-05-10T00:00:00Z", {1, 31}},
    {NSCalendarUnitYear, NSCalendarUnitMonth, "2024-05-10T00:00:00Z", {kNone, 0}},
    {NSCalendarUnitDay, NSCalendarUnitDay, "2024-05-10T00:00:00Z", {kNone, 0}},
    {NSCalendarUnitYear | NSCalendarUnitMonth,
     NSCalendarUnitEra,
     "2024-05-10T00:00:00Z",
     {kNone, 0}},
    {NSCalendarUnitMonth,
     NSCalendarUnitMonth | NSCalendarUnitDay,
     "2024-05-10T00:00:00Z",
     {kNone, 0}},
};

TEST(NSCalendar, TellsTheRangeOfAUnitInALargerOne) {
  const auto calendar = calendarIn("UTC");
  for (const RangeCase& row : kRangeCases) {
    const NSRange range =
        calendar->rangeOfUnit(static_cast<NSCalendarUnit>(row.unit),
                              static_cast<NSCalendarUnit>(row.larger), date(row.date));
    EXPECT_EQ(range.location, row.range.location) << row.unit << " in " << row.larger;
    EXPECT_EQ(range.length, row.range.length) << row.unit << " in " << row.larger;
  }
}

TEST(NSCalendar, TellsTheLargestRangeOfEveryUnit) {
  const auto calendar = calendarIn("UTC");
  const struct {
    NSUInteger unit;
    NSRange range;
  } rows[] = {
      {NSCalendarUnitMonth, {1, 12}},         {NSCalendarUnitDay, {1, 31}},
      {NSCalendarUnitHour, {0, 24}},          {NSCalendarUnitMinute, {0, 60}},
      {NSCalendarUnitSecond, {0, 60}},        {NSCalendarUnitWeekday, {1, 7}},
      {NSCalendarUnitWeekdayOrdinal, {1, 5}}, {NSCalendarUnitQuarter, {1, 4}},
      {NSCalendarUnitWeek, {1, 53}},          {NSCalendarUnitWeekOfMonth, {1, 6}},
      {NSCalendarUnitWeekOfYear, {1, 53}},    {NSCalendarUnitNanosecond, {0, 1'000'000'000}}};
  for (const auto& row : rows) {
    EXPECT_EQ(calendar->maximumRangeOfUnit(static_cast<NSCalendarUnit>(row.unit)), row.range)
        << row.unit;
  }
  for (const NSUInteger unit : std::initializer_list<NSUInteger>{0, 1, 12, 65536}) {
    EXPECT_EQ(calendar->maximumRangeOfUnit(static_cast<NSCalendarUnit>(unit)).length, 0) << unit;
    EXPECT_EQ(calendar->minimumRangeOfUnit(static_cast<NSCalendarUnit>(unit)).length, 0) << unit;
  }
}

// ---------------------------------------------------------------- search and setting

struct SearchCase {
  const char* name;
  const char* zone;
  NSUInteger options;
  const char* components;
  const char* from;
  const char* found;
};
const SearchCase kSearchCases[] = {
    {"MonthAlone", "UTC", NSCalendarMatchStrictly | NSCalendarSearchBackwards, "month=2",
     "2024-01-15T00:00:00Z", "2023-02-01T00:00:00Z"},
    {"StartOfTheMatchItself", "UTC", NSCalendarMatchStrictly | NSCalendarSearchBackwards,
     "weekday=2", "2024-01-15T12:00:00Z", "2024-01-15T00:00:00Z"},
    {"NotTheDateItself", "UTC", NSCalendarMatchStrictly | NSCalendarSearchBackwards, "weekday=2",
     "2024-01-15T00:00:00Z", "2024-01-08T00:00:00Z"},
    {"WeekAlone", "UTC", NSCalendarMatchStrictly | NSCalendarSearchBackwards, "weekOfYear=1",
     "2021-06-01T00:00:00Z", "2020-12-27T00:00:00Z"},
    {"WeekOfACalendarYear", "UTC", NSCalendarMatchStrictly | NSCalendarSearchBackwards,
     "year=2021 weekOfYear=1", "2021-06-01T00:00:00Z", "2021-01-01T00:00:00Z"},
    {"YearAlone", "UTC", NSCalendarMatchStrictly | NSCalendarSearchBackwards, "year=1990",
     "2021-06-01T00:00:00Z", "1990-01-01T00:00:00Z"},
    {"WeekYearAlone", "UTC", NSCalendarMatchStrictly | NSCalendarSearchBackwards,
     "yearForWeekOfYear=2020", "2021-06-01T00:00:00Z", "2019-12-29T00:00:00Z"},
    {"QuarterAlone", "UTC", NSCalendarMatchStrictly | NSCalendarSearchBackwards, "quarter=4",
     "2021-06-01T00:00:00Z", "2020-10-01T00:00:00Z"},
    {"LeapDay", "UTC", NSCalendarMatchStrictly | NSCalendarSearchBackwards, "month=2 day=29",
     "2104-02-29T00:00:00Z", "2096-02-29T00:00:00Z"},
    {"LeapDayOverACentury", "UTC", NSCalendarMatchStrictly | NSCalendarSearchBackwards,
     "month=2 day=29 weekday=2", "2024-01-01T00:00:00Z", "2016-02-29T00:00:00Z"},
    {"RareLeapDay", "UTC", NSCalendarMatchStrictly | NSCalendarSearchBackwards,
     "month=2 day=29 weekday=1", "1932-01-01T00:00:00Z", "1920-02-29T00:00:00Z"},
    {"AFullCycleBack", "UTC", NSCalendarMatchStrictly | NSCalendarSearchBackwards,
     "month=2 day=29 weekday=5 year=1624", "2024-01-01T00:00:00Z", "1624-02-29T00:00:00Z"},
    {"Never", "UTC", NSCalendarMatchStrictly | NSCalendarSearchBackwards, "month=2 day=30",
     "2024-01-01T00:00:00Z", nullptr},
    {"NeverInAnyMonth", "UTC", NSCalendarMatchStrictly | NSCalendarSearchBackwards, "day=32",
     "2024-01-01T00:00:00Z", nullptr},
    {"NeverAFifteenthMonth", "UTC", NSCalendarMatchStrictly | NSCalendarSearchBackwards, "month=15",
     "2024-01-01T00:00:00Z", nullptr},
    {"YearStillToCome", "UTC", NSCalendarMatchStrictly | NSCalendarSearchBackwards, "year=2025",
     "2024-01-01T00:00:00Z", nullptr},
    {"NoFields", "UTC", 6, "", "2024-01-01T00:00:00Z", nullptr},
    {"FieldBeyondAll", "UTC", NSCalendarMatchStrictly | NSCalendarSearchBackwards,
     "day=4611686018427387904", "2024-01-01T00:00:00Z", nullptr},
    {"SkippedDayHasNoStart", "Pacific/Apia", NSCalendarMatchStrictly | NSCalendarSearchBackwards,
     "month=12 day=30", "2012-06-01T00:00:00Z", "2010-12-30T10:00:00Z"},
    {"TimeOfDay", "America/New_York", NSCalendarMatchStrictly | NSCalendarSearchBackwards, "hour=9",
     "2024-01-15T12:00:00Z", "2024-01-14T14:00:00Z"},
    {"MinuteOnly", "America/New_York", NSCalendarMatchStrictly | NSCalendarSearchBackwards,
     "minute=30", "2024-01-15T12:00:00Z", "2024-01-15T11:30:00Z"},
    {"SecondOnly", "America/New_York", NSCalendarMatchStrictly | NSCalendarSearchBackwards,
     "second=59", "2024-01-15T12:00:00Z", "2024-01-15T11:59:59Z"},
    {"TimeInAGapIsPassedOver", "America/New_York",
     NSCalendarMatchStrictly | NSCalendarSearchBackwards, "hour=2 minute=30",
     "2024-03-10T12:00:00Z", "2024-03-09T07:30:00Z"},
    {"SecondOfADoubledTime", "America/New_York",
     NSCalendarMatchStrictly | NSCalendarSearchBackwards, "hour=1 minute=30",
     "2024-11-03T12:00:00Z", "2024-11-03T06:30:00Z"},
    {"FirstOfADoubledTime", "America/New_York", NSCalendarMatchStrictly | NSCalendarSearchBackwards,
     "hour=1 minute=30", "2024-11-03T06:30:00Z", "2024-11-03T05:30:00Z"},
    {"Forward", "UTC", NSCalendarMatchStrictly, "month=2 day=29", "2024-02-29T00:00:00Z",
     "2028-02-29T00:00:00Z"},
    {"ForwardWithinTheMonth", "UTC", NSCalendarMatchStrictly, "day=31", "2024-01-05T00:00:00Z",
     "2024-01-31T00:00:00Z"},
    {"ForwardToAYear", "UTC", NSCalendarMatchStrictly, "year=2100 month=3", "2024-01-05T00:00:00Z",
     "2100-03-01T00:00:00Z"},
    {"ForwardByWeek", "UTC", NSCalendarMatchStrictly, "weekOfYear=53", "2024-12-31T00:00:00Z",
     "2028-12-24T00:00:00Z"},
    {"ForwardOverAGap", "America/New_York", NSCalendarMatchStrictly, "hour=2 minute=30",
     "2024-03-10T05:00:00Z", "2024-03-11T06:30:00Z"},
    {"ForwardToTheEndOfAGap", "America/New_York", NSCalendarMatchNextTime, "hour=2 minute=30",
     "2024-03-10T05:00:00Z", "2024-03-10T07:00:00Z"},
};

TEST(NSCalendar, FindsTheNearestMatch) {
  for (const SearchCase& row : kSearchCases) {
    const auto result = calendarIn(row.zone)->nextDateAfterDate(
        date(row.from), componentsFromVector(row.components), row.options);
    EXPECT_EQ(vectorFromDate(result), row.found ? row.found : "nil") << row.name;
  }
}

TEST(NSCalendar, SetsAUnit) {
  const struct {
    const char* name;
    NSUInteger unit;
    NSInteger value;
    NSUInteger options;
    const char* from;
    const char* to;
  } rows[] = {
      {"AlreadySet", NSCalendarUnitDay, 15, NSCalendarMatchNextTime, "2024-01-15T12:34:00Z",
       "2024-01-15T12:34:00Z"},
      {"ThisMonth", NSCalendarUnitDay, 20, NSCalendarMatchNextTime, "2024-01-15T12:34:00Z",
       "2024-01-20T00:00:00Z"},
      {"NextMonth", NSCalendarUnitDay, 10, NSCalendarMatchNextTime, "2024-12-15T12:34:00Z",
       "2025-01-10T00:00:00Z"},
      {"DayMissing", NSCalendarUnitDay, 31, NSCalendarMatchNextTime, "2024-04-15T12:34:00Z",
       "2024-05-01T00:00:00Z"},
      {"DayMissingInTheNextMonth", NSCalendarUnitDay, 30, NSCalendarMatchNextTime,
       "2024-01-31T12:34:00Z", "2024-03-01T00:00:00Z"},
      {"DayMissingGoesOnWhenStrict", NSCalendarUnitDay, 31, NSCalendarMatchStrictly,
       "2024-04-15T12:34:00Z", "2024-05-31T00:00:00Z"},
      {"NoSuchDay", NSCalendarUnitDay, 32, NSCalendarMatchNextTime, "2024-04-15T12:34:00Z",
       nullptr},
      {"DayBeyondAll", NSCalendarUnitDay, NSIntegerMin, NSCalendarMatchNextTime,
       "2024-04-15T12:34:00Z", nullptr},
      {"Unset", NSCalendarUnitDay, NSIntegerMax, NSCalendarMatchNextTime, "2024-04-15T12:34:00Z",
       nullptr},
      {"NoSuchUnit", NSCalendarUnitMonth | NSCalendarUnitDay, 1, NSCalendarMatchNextTime,
       "2024-04-15T12:34:00Z", nullptr},
      {"Month", NSCalendarUnitMonth, 3, NSCalendarMatchNextTime, "2024-04-15T12:34:00Z",
       "2025-03-01T00:00:00Z"},
      {"Hour", NSCalendarUnitHour, 9, NSCalendarMatchNextTime, "2024-04-15T12:34:00Z",
       "2024-04-16T09:00:00Z"},
      {"Minute", NSCalendarUnitMinute, 35, NSCalendarMatchNextTime, "2024-04-15T12:34:00Z",
       "2024-04-15T12:35:00Z"},
      {"Weekday", NSCalendarUnitWeekday, 2, NSCalendarMatchNextTime, "2024-04-16T12:34:00Z",
       "2024-04-22T00:00:00Z"},
  };
  for (const auto& row : rows) {
    const auto result = calendarIn("UTC")->dateBySettingUnit(
        static_cast<NSCalendarUnit>(row.unit), row.value, date(row.from), row.options);
    EXPECT_EQ(vectorFromDate(result), row.to ? row.to : "nil") << row.name;
  }
}

}  // namespace
}  // namespace ORLFoundation
