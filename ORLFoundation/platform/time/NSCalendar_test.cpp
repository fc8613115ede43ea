#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/time/NSDateComponents_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

namespace ORLFoundation {
namespace {

using orlftest::calendarIn;
using orlftest::componentsFromVector;
using orlftest::vectorFromComponents;
using orlftest::vectorFromDate;

using orlftest::date;

// ---------------------------------------------------------------- the calendar as an object

TEST(NSCalendar, IsMadeForKnownIdentifiersOnly) {
  EXPECT_NE(NSCalendar::initWithCalendarIdentifier("gregorian"), nullptr);
  EXPECT_NE(NSCalendar::initWithCalendarIdentifier("iso8601"), nullptr);
  for (const char* identifier : {"", "julian", "martian", "Hebrew", "Gregorian"})
    EXPECT_EQ(NSCalendar::initWithCalendarIdentifier(identifier), nullptr) << identifier;
}

TEST(NSCalendar, BeginsWeeksOnSundayOrOnMondayForISO8601) {
  const auto gregorian = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  EXPECT_EQ(gregorian->firstWeekday(), 1);
  EXPECT_EQ(gregorian->minimumDaysInFirstWeek(), 1);
  const auto iso = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierISO8601);
  iso->setLocaleIdentifier("en_US");
  EXPECT_EQ(iso->firstWeekday(), 2);
  EXPECT_EQ(iso->minimumDaysInFirstWeek(), 4);
}

TEST(NSCalendar, TakesWeeksFromTheLocaleUnlessTheyWereSet) {
  const auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  calendar->setLocaleIdentifier("de_DE");
  EXPECT_EQ(calendar->firstWeekday(), 2);
  EXPECT_EQ(calendar->minimumDaysInFirstWeek(), 4);
  calendar->setFirstWeekday(7);
  calendar->setLocaleIdentifier("en_US");
  EXPECT_EQ(calendar->firstWeekday(), 7);
  EXPECT_EQ(calendar->minimumDaysInFirstWeek(), 1);
}

TEST(NSCalendar, IgnoresWeekdaysAndMinimumsThatDoNotExist) {
  const auto calendar = calendarIn("UTC", 3, 5);
  for (const NSInteger value : {NSIntegerMin, NSInteger{0}, NSInteger{8}, NSIntegerMax}) {
    calendar->setFirstWeekday(value);
    calendar->setMinimumDaysInFirstWeek(value);
  }
  EXPECT_EQ(calendar->firstWeekday(), 3);
  EXPECT_EQ(calendar->minimumDaysInFirstWeek(), 5);
}

TEST(NSCalendar, CopiesToACalendarOfItsOwn) {
  const auto calendar = calendarIn("Asia/Kathmandu", 2, 4);
  calendar->setLocaleIdentifier("ne_NP");
  const auto copy = copyOf(calendar);
  EXPECT_NE(copy, calendar);
  EXPECT_TRUE(copy->isEqual(calendar.get()));
  EXPECT_EQ(copy->hash(), calendar->hash());
  copy->setFirstWeekday(1);
  EXPECT_FALSE(copy->isEqual(calendar.get()));
  EXPECT_EQ(calendar->firstWeekday(), 2);
}

TEST(NSCalendar, IsInTheDefaultZoneWhenGivenNone) {
  NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName("Asia/Tehran"));
  const auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  EXPECT_EQ(calendar->timeZone()->name(), "Asia/Tehran");
  calendar->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
  calendar->setTimeZone(nullptr);
  EXPECT_EQ(calendar->timeZone()->name(), "Asia/Tehran");
  NSTimeZone::setDefaultTimeZone(nullptr);
}

// ---------------------------------------------------------------- components

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

// ---------------------------------------------------------------- sums

struct SumCase {
  const char* name;
  const char* zone;
  NSUInteger unit;
  NSInteger value;
  NSUInteger options;
  const char* from;
  const char* to;
};
const SumCase kSumCases[] = {
    {"MonthEndClamps", "UTC", NSCalendarUnitMonth, 1, 0, "2024-01-31T09:30:00Z",
     "2024-02-29T09:30:00Z"},
    {"MonthEndClampsBack", "UTC", NSCalendarUnitMonth, -1, 0, "2023-03-31T00:00:00Z",
     "2023-02-28T00:00:00Z"},
    {"LeapDayClampsByYear", "UTC", NSCalendarUnitYear, 1, 0, "2024-02-29T00:00:00Z",
     "2025-02-28T00:00:00Z"},
    {"QuarterIsThreeMonths", "UTC", NSCalendarUnitQuarter, 1, 0, "2024-11-30T00:00:00Z",
     "2025-02-28T00:00:00Z"},
    {"RetiredWeek", "UTC", NSCalendarUnitWeek, 1, 0, "2024-02-29T00:00:00Z",
     "2024-03-07T00:00:00Z"},
    {"WeekOfMonth", "UTC", NSCalendarUnitWeekOfMonth, -1, 0, "2024-03-07T00:00:00Z",
     "2024-02-29T00:00:00Z"},
    {"OrdinalIsAWeek", "UTC", NSCalendarUnitWeekdayOrdinal, 2, 0, "2024-03-07T00:00:00Z",
     "2024-03-21T00:00:00Z"},
    {"WeekdayIsADay", "UTC", NSCalendarUnitWeekday, 2, 0, "2024-03-07T00:00:00Z",
     "2024-03-09T00:00:00Z"},
    {"YearOfWeeksKeepsWeekAndWeekday", "UTC", NSCalendarUnitYearForWeekOfYear, 1, 0,
     "2024-03-07T00:00:00Z", "2025-03-06T00:00:00Z"},
    {"YearOfWeeksRunsOnFromWeek53", "UTC", NSCalendarUnitYearForWeekOfYear, 1, 0,
     "2022-12-31T00:00:00Z", "2024-01-06T00:00:00Z"},
    {"NanosecondsCarry", "UTC", NSCalendarUnitNanosecond, 1'500'000'000, 0, "2024-03-07T00:00:00Z",
     "2024-03-07T00:00:01.500Z"},
    {"NanosecondsBorrow", "UTC", NSCalendarUnitNanosecond, -250'000'000, 0, "2024-03-07T00:00:00Z",
     "2024-03-06T23:59:59.750Z"},
    {"FractionStays", "UTC", NSCalendarUnitMonth, 1, 0, "2024-03-07T00:00:00.625Z",
     "2024-04-07T00:00:00.625Z"},
    {"OptionFourActsAsNone", "UTC", NSCalendarUnitMonth, 1, NSCalendarSearchBackwards,
     "2024-12-31T00:00:00Z", "2025-01-31T00:00:00Z"},
    {"DayKeepsTheClock", "America/New_York", NSCalendarUnitDay, 1, 0, "2024-03-09T15:00:00Z",
     "2024-03-10T14:00:00Z"},
    {"HoursAreLengths", "America/New_York", NSCalendarUnitHour, 24, 0, "2024-03-09T15:00:00Z",
     "2024-03-10T15:00:00Z"},
    {"GapMovesOn", "America/New_York", NSCalendarUnitDay, 1, 0, "2024-03-09T07:30:00Z",
     "2024-03-10T07:30:00Z"},
    {"HalfHourGapMovesOn", "Australia/Lord_Howe", NSCalendarUnitDay, 1, 0, "2024-10-04T15:40:00Z",
     "2024-10-05T15:40:00Z"},
    {"DoubledTimeIsTheFirstGoingForward", "America/New_York", NSCalendarUnitDay, 1, 0,
     "2024-11-02T05:30:00Z", "2024-11-03T05:30:00Z"},
    {"DoubledTimeIsTheSecondGoingBack", "America/New_York", NSCalendarUnitDay, -1, 0,
     "2024-11-04T06:30:00Z", "2024-11-03T06:30:00Z"},
    {"NothingAddedKeepsTheSecond", "America/New_York", NSCalendarUnitDay, 0, 0,
     "2024-11-03T06:30:00Z", "2024-11-03T06:30:00Z"},
    {"SkippedDayIsMovedOn", "Pacific/Apia", NSCalendarUnitDay, 1, 0, "2011-12-29T20:00:00Z",
     "2011-12-30T20:00:00Z"},
    {"AfterTheSkippedDay", "Pacific/Apia", NSCalendarUnitDay, 2, 0, "2011-12-29T20:00:00Z",
     "2011-12-30T20:00:00Z"},
    {"ThreeAfterTheSkippedDay", "Pacific/Apia", NSCalendarUnitDay, 3, 0, "2011-12-29T20:00:00Z",
     "2011-12-31T20:00:00Z"},
    {"NoEra", "UTC", NSCalendarUnitEra, 1, 0, "2024-03-07T00:00:00Z", nullptr},
    {"NoErasAdded", "UTC", NSCalendarUnitEra, 0, 0, "2024-03-07T00:00:00Z", "2024-03-07T00:00:00Z"},
    {"NoMask", "UTC", NSCalendarUnitMonth | NSCalendarUnitDay, 1, 0, "2024-03-07T00:00:00Z",
     nullptr},
    {"MonthWraps", "UTC", NSCalendarUnitMonth, 1, NSCalendarWrapComponents, "2024-12-31T00:00:00Z",
     "2024-01-31T00:00:00Z"},
    {"MonthWrapsAndClamps", "UTC", NSCalendarUnitMonth, -11, NSCalendarWrapComponents,
     "2024-12-31T00:00:00Z", "2024-01-31T00:00:00Z"},
    {"DayWraps", "UTC", NSCalendarUnitDay, 1, NSCalendarWrapComponents, "2024-02-29T00:00:00Z",
     "2024-02-01T00:00:00Z"},
    {"DayWrapsBack", "UTC", NSCalendarUnitDay, -30, NSCalendarWrapComponents,
     "2024-02-01T00:00:00Z", "2024-02-29T00:00:00Z"},
    {"QuarterWraps", "UTC", NSCalendarUnitQuarter, 1, NSCalendarWrapComponents,
     "2024-12-15T00:00:00Z", "2024-03-15T00:00:00Z"},
    {"WeekdayWraps", "UTC", NSCalendarUnitWeekday, 1, NSCalendarWrapComponents,
     "2024-03-09T00:00:00Z", "2024-03-03T00:00:00Z"},
    {"WeekWraps", "UTC", NSCalendarUnitWeekOfYear, 1, NSCalendarWrapComponents,
     "2024-12-28T00:00:00Z", "2024-01-06T00:00:00Z"},
    {"OrdinalWraps", "UTC", NSCalendarUnitWeekdayOrdinal, 1, NSCalendarWrapComponents,
     "2024-02-29T00:00:00Z", "2024-02-01T00:00:00Z"},
    {"HourWraps", "UTC", NSCalendarUnitHour, 1, NSCalendarWrapComponents, "2024-02-29T23:10:00Z",
     "2024-02-29T00:10:00Z"},
    {"MinuteWraps", "UTC", NSCalendarUnitMinute, -11, NSCalendarWrapComponents,
     "2024-02-29T23:10:00Z", "2024-02-29T23:59:00Z"},
    {"SecondWraps", "UTC", NSCalendarUnitSecond, 61, NSCalendarWrapComponents,
     "2024-02-29T23:10:00Z", "2024-02-29T23:10:01Z"},
    {"YearDoesNotWrap", "UTC", NSCalendarUnitYear, 1, NSCalendarWrapComponents,
     "2024-02-29T00:00:00Z", "2025-02-28T00:00:00Z"},
};

TEST(NSCalendar, AddsAUnit) {
  for (const SumCase& row : kSumCases) {
    const auto result = calendarIn(row.zone)->dateByAddingUnit(
        static_cast<NSCalendarUnit>(row.unit), row.value, date(row.from), row.options);
    EXPECT_EQ(vectorFromDate(result), row.to ? row.to : "nil") << row.name;
  }
}

TEST(NSCalendar, AddsNothingOutOfRange) {
  const auto calendar = calendarIn("America/New_York");
  for (NSUInteger unit = NSCalendarUnitYear; unit <= NSCalendarUnitYearForWeekOfYear; unit *= 2) {
    for (const NSInteger value : {NSIntegerMin, NSIntegerMin + 1, -(NSInteger{1} << 62),
                                  NSInteger{1} << 62, NSIntegerMax - 1}) {
      EXPECT_EQ(calendar->dateByAddingUnit(static_cast<NSCalendarUnit>(unit), value,
                                           date("2024-02-29T00:00:00Z"), 0),
                std::nullopt)
          << unit << " " << value;
      static_cast<void>(calendar->dateByAddingUnit(static_cast<NSCalendarUnit>(unit), value,
                                                   date("2024-02-29T00:00:00Z"),
                                                   NSCalendarWrapComponents));
    }
  }
}

TEST(NSCalendar, AddsTheSmallestAndTheLargestCountOfNanoseconds) {
  const auto calendar = calendarIn("America/New_York");
  const NSDate from = date("2024-02-29T00:00:00Z");
  for (const NSInteger value : {NSIntegerMin, NSIntegerMax}) {
    const auto to = calendar->dateByAddingUnit(NSCalendarUnitNanosecond, value, from, 0);
    ASSERT_TRUE(to);
    EXPECT_NEAR(to->timeIntervalSinceDate(from), static_cast<double>(value) * 1e-9, 1e-5);
  }
}

TEST(NSCalendar, AddsComponentsFromTheLargestClampingAfterEach) {
  const auto calendar = calendarIn("UTC");
  const struct {
    const char* components;
    const char* from;
    const char* to;
  } rows[] = {
      {"", "2024-02-29T00:00:00.625Z", "2024-02-29T00:00:00.625Z"},
      {"month=1 day=1", "2024-01-31T00:00:00Z", "2024-03-01T00:00:00Z"},
      {"year=1 month=12", "2024-02-29T00:00:00Z", "2026-02-28T00:00:00Z"},
      {"weekdayOrdinal=2", "2024-02-29T00:00:00Z", "2024-03-14T00:00:00Z"},
      {"weekOfYear=1 day=-7", "2024-02-29T00:00:00Z", "2024-02-29T00:00:00Z"},
      {"era=0 day=1", "2024-02-29T00:00:00Z", "2024-03-01T00:00:00Z"},
      {"era=1 day=1", "2024-02-29T00:00:00Z", nullptr},
      {"year=4611686018427387904", "2024-02-29T00:00:00Z", nullptr},
      {"nanosecond=500000000 second=-1", "2024-02-29T00:00:00Z", "2024-02-28T23:59:59.500Z"},
  };
  for (const auto& row : rows) {
    const auto result =
        calendar->dateByAddingComponents(componentsFromVector(row.components), date(row.from), 0);
    EXPECT_EQ(vectorFromDate(result), row.to ? row.to : "nil") << row.components;
  }
}

// ---------------------------------------------------------------- differences

struct DifferenceCase {
  const char* name;
  const char* zone;
  NSUInteger mask;
  const char* from;
  const char* to;
  const char* components;
};
const DifferenceCase kDifferenceCases[] = {
    {"MonthEndIsAMonth", "UTC", NSCalendarUnitMonth, "2024-01-31T00:00:00Z", "2024-02-29T00:00:00Z",
     "month=1"},
    {"ASecondShort", "UTC", NSCalendarUnitMonth, "2024-01-31T00:00:01Z", "2024-02-29T00:00:00Z",
     "month=0"},
    {"AFractionShort", "UTC", NSCalendarUnitDay, "2024-01-31T00:00:00.500Z",
     "2024-02-01T00:00:00.250Z", "day=0"},
    {"BackwardTowardZero", "UTC", NSCalendarUnitMonth, "2024-03-31T00:00:00Z",
     "2024-02-29T00:00:01Z", "month=0"},
    {"Backward", "UTC", NSCalendarUnitMonth, "2024-03-31T00:00:00Z", "2024-02-29T00:00:00Z",
     "month=-1"},
    {"LargestFirst", "UTC", NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay,
     "2024-02-29T00:00:00Z", "2026-04-01T00:00:00Z", "year=2 month=1 day=4"},
    {"QuartersWhole", "UTC", NSCalendarUnitQuarter, "2024-01-31T00:00:00Z", "2024-12-31T00:00:00Z",
     "quarter=3"},
    {"YearsOfWeeks", "UTC", NSCalendarUnitYearForWeekOfYear, "2020-01-31T00:00:00Z",
     "2024-01-30T00:00:00Z", "yearForWeekOfYear=3"},
    {"RetiredWeekIsWeekOfYear", "UTC", NSCalendarUnitWeek, "2024-01-31T00:00:00Z",
     "2024-02-29T00:00:00Z", "weekOfYear=4"},
    {"Nanoseconds", "UTC", NSCalendarUnitSecond | NSCalendarUnitNanosecond, "2024-01-31T00:00:00Z",
     "2024-01-31T00:00:01.250Z", "second=1 nanosecond=250000000"},
    {"Eras", "UTC", NSCalendarUnitEra, "@-63113904001", "@0", "era=1"},
    {"ErasBack", "UTC", NSCalendarUnitEra, "@0", "@-63113904001", "era=-1"},
    {"DayOfTwentyThreeHours", "America/New_York", NSCalendarUnitDay | NSCalendarUnitHour,
     "2024-03-09T15:00:00Z", "2024-03-10T15:00:00Z", "day=1 hour=1"},
    {"TwoDaysOverTheSkippedOne", "Pacific/Apia", NSCalendarUnitDay, "2011-12-29T20:00:00Z",
     "2011-12-30T20:00:00Z", "day=2"},
    {"BackOverTheSkippedOne", "Pacific/Apia", NSCalendarUnitDay, "2011-12-30T20:00:00Z",
     "2011-12-29T20:00:00Z", "day=-2"},
    {"FarYears", "UTC", NSCalendarUnitYear, "@-20000000000000", "@20000000000000", "year=1267549"},
};

TEST(NSCalendar, CountsUnitsBetweenDates) {
  for (const DifferenceCase& row : kDifferenceCases) {
    const NSDateComponents components =
        calendarIn(row.zone)->components(row.mask, date(row.from), date(row.to), 0);
    EXPECT_EQ(vectorFromComponents(components), row.components) << row.name;
  }
}

const DifferenceCase kWrappingDifferenceCases[] = {
    {"DaysLeaveOutTheSkippedOne", "Pacific/Apia", NSCalendarUnitDay, "2011-12-29T20:00:00Z",
     "2011-12-30T20:00:00Z", "day=1"},
    {"DaysBackLeaveItOutToo", "Pacific/Apia", NSCalendarUnitDay, "2011-12-30T20:00:00Z",
     "2011-12-29T20:00:00Z", "day=-1"},
    {"WeeksLeaveItOut", "Pacific/Apia", NSCalendarUnitWeekOfYear, "2011-01-01T10:00:00Z",
     "2011-12-30T13:00:00Z", "weekOfYear=51"},
    {"MonthsDoNot", "Pacific/Apia", NSCalendarUnitMonth | NSCalendarUnitDay, "2011-11-30T20:00:00Z",
     "2011-12-30T20:00:00Z", "month=1 day=0"},
    {"ClockChangesOfAnHourMakeNoDifference", "America/New_York", NSCalendarUnitWeekOfYear,
     "2020-01-01T05:00:00Z", "2020-07-01T04:00:00Z", "weekOfYear=26"},
};

TEST(NSCalendar, CountsOnlyDaysThatThereWereWhenWrapping) {
  for (const DifferenceCase& row : kWrappingDifferenceCases) {
    const NSDateComponents components = calendarIn(row.zone)->components(
        row.mask, date(row.from), date(row.to), NSCalendarWrapComponents);
    EXPECT_EQ(vectorFromComponents(components), row.components) << row.name;
  }
}

// ---------------------------------------------------------------- dates from components

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

TEST(NSCalendar, TakesTheWeekendOfTheLocalesRegion) {
  const struct {
    const char* locale;
    const char* weekend;  // by weekday from Sunday
  } rows[] = {{"", "X.....X"},      {"en_US", "X.....X"}, {"ar_EG", ".....XX"},
              {"fa_IR", ".....X."}, {"en_IN", "X......"}, {"xx_YY", "X.....X"}};
  for (const auto& row : rows) {
    const auto calendar = calendarIn("America/New_York");
    calendar->setLocaleIdentifier(row.locale);
    std::string weekend;
    for (int day = 0; day < 7; ++day) {
      const NSDate sunday = date("2024-03-10T16:00:00Z");
      weekend +=
          calendar->isDateInWeekend(sunday.dateByAddingTimeInterval(day * 86400)) ? 'X' : '.';
    }
    EXPECT_EQ(weekend, row.weekend) << row.locale;
  }
}

// ---------------------------------------------------------------- dates that cannot be counted
// with

TEST(NSCalendar, HasAClearAnswerForDatesThatAreNotFiniteOrTooFar) {
  const auto calendar = calendarIn("America/New_York");
  const NSDate good = date("2024-01-01T00:00:00Z");
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const double seconds : {std::nan(""), kInfinity, -kInfinity, 1e300, -1e300, 1e18, 5e13}) {
    const NSDate bad = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
    EXPECT_EQ(calendar->components(0xffff, bad), NSDateComponents());
    EXPECT_EQ(calendar->component(NSCalendarUnitYear, bad), NSDateComponentUndefined);
    EXPECT_EQ(calendar->components(0xffff, bad, good, 0), NSDateComponents());
    EXPECT_EQ(calendar->components(0xffff, good, bad, 0), NSDateComponents());
    EXPECT_EQ(calendar->dateByAddingUnit(NSCalendarUnitDay, 1, bad, 0), std::nullopt);
    EXPECT_EQ(calendar->dateByAddingComponents(NSDateComponents(), bad, 0), std::nullopt);
    EXPECT_EQ(calendar->dateBySettingUnit(NSCalendarUnitDay, 1, bad, 1024), std::nullopt);
    EXPECT_FALSE(calendar->rangeOfUnit(NSCalendarUnitDay, nullptr, nullptr, bad));
    EXPECT_EQ(calendar->rangeOfUnit(NSCalendarUnitDay, NSCalendarUnitMonth, bad).length, 0);
    EXPECT_FALSE(calendar->date(bad, NSDateComponents()));
    EXPECT_EQ(calendar->nextDateAfterDate(bad, componentsFromVector("day=1"), 6), std::nullopt);
    EXPECT_FALSE(calendar->isDateInWeekend(bad));
  }
}

TEST(NSCalendar, AnswersAtTheEdgeOfTheSupportedRange) {
  const auto calendar = calendarIn("America/New_York");
  for (const double seconds : {-4.3198e13, 4.3198e13}) {
    const NSDate edge = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
    const NSDateComponents components = calendar->components(0xffff, edge);
    EXPECT_NE(components.year(), NSDateComponentUndefined);
    for (NSUInteger unit = 4; unit <= 32768; unit *= 2) {
      const auto single = static_cast<NSCalendarUnit>(unit);
      for (const NSInteger value : {-1, 1}) {
        static_cast<void>(calendar->dateByAddingUnit(single, value, edge, 0));
        static_cast<void>(calendar->dateByAddingUnit(single, value, edge, 1));
      }
      NSDate start;
      EXPECT_TRUE(calendar->rangeOfUnit(single, &start, nullptr, edge));
      EXPECT_LE(start.timeIntervalSinceReferenceDate(), seconds);
    }
    static_cast<void>(calendar->nextDateAfterDate(edge, componentsFromVector("day=1"), 6));
    static_cast<void>(calendar->nextDateAfterDate(edge, componentsFromVector("day=1"), 2));
  }
}

// The default zone is made ready for asking once it is set to nothing: an unreadable TZ would leave
// a line in the log.
TEST(NSCalendar, CopiesWithoutAskingTheSystemForItsZone) {
  const auto calendar = calendarIn("Asia/Tokyo");
  const char* const before = std::getenv("TZ");
  const std::string kept = before == nullptr ? "" : before;
  setenv("TZ", "Atlantis/Sunken", 1);
  const LogCapture log;
  const auto copy = std::static_pointer_cast<NSCalendar>(calendar->copy());
  const auto lines = log.lines();
  const auto fresh = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  const auto linesAfterAsking = log.lines();
  if (before == nullptr) {
    unsetenv("TZ");
  } else {
    setenv("TZ", kept.c_str(), 1);
  }
  EXPECT_EQ(lines, std::vector<std::string>());
  EXPECT_NE(linesAfterAsking, std::vector<std::string>());
  EXPECT_TRUE(copy->isEqual(calendar.get()));
  EXPECT_EQ(copy->timeZone(), calendar->timeZone());
}

}  // namespace
}  // namespace ORLFoundation
