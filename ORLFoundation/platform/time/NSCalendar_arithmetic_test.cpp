// Sums and differences of units and of components.
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

}  // namespace
}  // namespace ORLFoundation
