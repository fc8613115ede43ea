// Components of dates, and dates from components.
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/time/NSDateComponents_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using orlftest::calendarIn;
using orlftest::componentsFromVector;
using orlftest::date;
using orlftest::vectorFromComponents;
using orlftest::vectorFromDate;

struct ComponentsCase {
  const char* name;
  const char* zone;
  NSInteger firstWeekday, minimumDays;
  NSUInteger mask;
  const char* date;
  const char* components;
};
const ComponentsCase kComponentsCases[] = {
    {"OnlyTheMask", "UTC", 1, 1, NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay,
     "2024-02-29T12:00:00Z", "year=2024 month=2 day=29"},
    {"EmptyMask", "UTC", 1, 1, 0, "2024-02-29T12:00:00Z", ""},
    {"UnknownBits", "UTC", 1, 1, 1, "2024-02-29T12:00:00Z", ""},
    {"RetiredWeek", "UTC", 1, 1, NSCalendarUnitWeek, "2024-01-07T00:00:00Z", "weekOfYear=2"},
    {"RetiredWeekWithWeekday", "UTC", 1, 1, NSCalendarUnitWeek | NSCalendarUnitWeekday,
     "2024-01-07T00:00:00Z", "weekOfYear=2 weekday=1"},
    {"WeekYearEndsISO", "UTC", 2, 4, NSCalendarUnitWeekOfYear | NSCalendarUnitYearForWeekOfYear,
     "2021-01-03T00:00:00Z", "weekOfYear=53 yearForWeekOfYear=2020"},
    {"WeekYearBeginsISO", "UTC", 2, 4, NSCalendarUnitWeekOfYear | NSCalendarUnitYearForWeekOfYear,
     "2024-12-30T00:00:00Z", "weekOfYear=1 yearForWeekOfYear=2025"},
    {"WeekYearBeginsUS", "UTC", 1, 1, NSCalendarUnitWeekOfYear | NSCalendarUnitYearForWeekOfYear,
     "2020-12-27T00:00:00Z", "weekOfYear=1 yearForWeekOfYear=2021"},
    {"WeekZeroOfAMonth", "UTC", 2, 4, NSCalendarUnitWeekOfMonth, "2021-01-02T00:00:00Z",
     "weekOfMonth=0"},
    {"FirstDayOfYear1", "UTC", 1, 1,
     NSCalendarUnitEra | NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay,
     "@-63113904000", "era=1 year=1 month=1 day=1"},
    {"DayBeforeChrist", "UTC", 1, 1,
     NSCalendarUnitEra | NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay,
     "@-63113904001", "era=0 year=1 month=12 day=31"},
    {"BeforeTheReform", "UTC", 1, 1, NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay,
     "1582-10-14T00:00:00Z", "year=1582 month=10 day=14"},
    {"Before1970", "UTC", 1, 1,
     NSCalendarUnitDay | NSCalendarUnitHour | NSCalendarUnitMinute | NSCalendarUnitSecond,
     "1969-12-31T23:59:59Z", "day=31 hour=23 minute=59 second=59"},
    {"FractionBeforeTheReference", "UTC", 1, 1, NSCalendarUnitSecond | NSCalendarUnitNanosecond,
     "@-0.25", "second=59 nanosecond=750000000"},
    {"OddOffset", "Asia/Kathmandu", 1, 1, NSCalendarUnitHour | NSCalendarUnitMinute,
     "2024-01-01T00:00:00Z", "hour=5 minute=45"},
    {"HalfHourChange", "Australia/Lord_Howe", 1, 1, NSCalendarUnitHour | NSCalendarUnitMinute,
     "2024-04-06T15:00:00Z", "hour=1 minute=30"},
    {"Year400000", "UTC", 1, 1, NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay,
     "@12559635273600", "year=400000 month=1 day=1"},
};

TEST(NSCalendar, TellsTheComponentsOfADate) {
  for (const ComponentsCase& row : kComponentsCases) {
    const auto calendar = calendarIn(row.zone, row.firstWeekday, row.minimumDays);
    const NSDateComponents components = calendar->components(row.mask, date(row.date));
    EXPECT_EQ(vectorFromComponents(components), row.components) << row.name;
  }
}

TEST(NSCalendar, TellsOneComponentLikeAll) {
  const auto calendar = calendarIn("America/St_Johns", 2, 4);
  for (NSUInteger unit = 1; unit <= 65536; unit *= 2) {
    for (const char* text : {"2024-12-31T12:34:56.500Z", "1931-02-03T00:00:00Z"}) {
      const auto single = static_cast<NSCalendarUnit>(unit);
      EXPECT_EQ(calendar->component(single, date(text)),
                calendar->components(0xffff, date(text)).valueForComponent(single))
          << unit;
    }
  }
}

struct ResolveCase {
  const char* name;
  const char* zone;
  NSInteger firstWeekday, minimumDays;
  const char* components;
  const char* date;
};
const ResolveCase kResolveCases[] = {
    {"SmallestValues", "UTC", 1, 1, "year=2024", "2024-01-01T00:00:00Z"},
    {"DayRollsOver", "UTC", 1, 1, "year=2024 month=4 day=31", "2024-05-01T00:00:00Z"},
    {"MonthRollsOver", "UTC", 1, 1, "year=2024 month=14 day=1", "2025-02-01T00:00:00Z"},
    {"TimeRollsOver", "UTC", 1, 1, "year=2024 hour=25 minute=-61 second=3601",
     "2024-01-02T00:59:01Z"},
    {"NanosecondsRollOver", "UTC", 1, 1, "year=2024 nanosecond=-250000000",
     "2023-12-31T23:59:59.750Z"},
    {"QuarterAlone", "UTC", 1, 1, "year=2024 quarter=3", "2024-07-01T00:00:00Z"},
    {"WeekdayOrdinal", "UTC", 1, 1, "year=2024 month=5 weekday=3 weekdayOrdinal=2",
     "2024-05-14T00:00:00Z"},
    {"WeekdayOrdinalFromTheEnd", "UTC", 1, 1, "year=2024 month=5 weekday=3 weekdayOrdinal=-1",
     "2024-05-28T00:00:00Z"},
    {"WeekdayOrdinalZero", "UTC", 1, 1, "year=2024 month=5 weekday=3 weekdayOrdinal=0",
     "2024-04-30T00:00:00Z"},
    {"WeekdayAlone", "UTC", 1, 1, "year=2024 month=5 weekday=3", "2024-05-07T00:00:00Z"},
    {"WeekOfMonth", "UTC", 2, 4, "year=2024 month=5 weekOfMonth=2 weekday=1",
     "2024-05-12T00:00:00Z"},
    {"WeekOfYearISO", "UTC", 2, 4, "year=2021 weekOfYear=1", "2021-01-04T00:00:00Z"},
    {"WeekOfYearUS", "UTC", 1, 1, "yearForWeekOfYear=2021 weekOfYear=1", "2020-12-27T00:00:00Z"},
    {"WeekYearAlone", "UTC", 2, 4, "yearForWeekOfYear=2020", "2019-12-30T00:00:00Z"},
    {"DayOverWeek", "UTC", 1, 1, "year=2024 month=5 day=7 weekday=1 weekOfYear=50",
     "2024-05-07T00:00:00Z"},
    {"BeforeChrist", "UTC", 1, 1, "era=0 year=1 month=12 day=31", "@-63113990400"},
    {"GapMovesOn", "America/New_York", 1, 1, "year=2024 month=3 day=10 hour=2 minute=30",
     "2024-03-10T07:30:00Z"},
    {"DoubledTimeIsTheFirst", "America/New_York", 1, 1, "year=2024 month=11 day=3 hour=1 minute=30",
     "2024-11-03T05:30:00Z"},
    {"YearBeyondAll", "UTC", 1, 1, "year=4611686018427387904", nullptr},
    {"DayBeyondAll", "UTC", 1, 1, "year=2024 day=-4611686018427387904", nullptr},
    {"HourBeyondAll", "UTC", 1, 1, "year=2024 hour=4611686018427387904", nullptr},
    {"OrdinalBeyondAll", "UTC", 1, 1, "year=2024 weekday=1 weekdayOrdinal=4611686018427387904",
     nullptr},
    {"WeekdayBeyondAll", "UTC", 1, 1, "year=2024 weekday=4611686018427387904", nullptr},
    {"WeekYearBeyondAll", "UTC", 1, 1, "yearForWeekOfYear=4611686018427387904", nullptr},
    {"Year400000", "UTC", 1, 1, "year=400000", "@12559635273600"},
};

TEST(NSCalendar, ResolvesComponents) {
  for (const ResolveCase& row : kResolveCases) {
    const auto calendar = calendarIn(row.zone, row.firstWeekday, row.minimumDays);
    const auto result = calendar->dateFromComponents(componentsFromVector(row.components));
    EXPECT_EQ(vectorFromDate(result), row.date ? row.date : "nil") << row.name;
  }
}

TEST(NSCalendar, MatchesEverySetField) {
  const auto calendar = calendarIn("UTC", 2, 4);
  const NSDate at = date("2021-01-03T10:20:30.500Z");
  EXPECT_TRUE(calendar->date(at, NSDateComponents()));
  EXPECT_TRUE(calendar->date(at, componentsFromVector("year=2021 weekOfYear=53 weekday=1")));
  EXPECT_TRUE(calendar->date(at, componentsFromVector("hour=10 nanosecond=500000000")));
  EXPECT_FALSE(calendar->date(at, componentsFromVector("hour=10 nanosecond=0")));
  EXPECT_FALSE(calendar->date(at, componentsFromVector("year=2021 weekOfYear=1")));
}

}  // namespace
}  // namespace ORLFoundation
