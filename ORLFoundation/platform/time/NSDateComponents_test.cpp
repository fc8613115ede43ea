
#include <ORLFoundation/platform/time/NSDateComponents.h>

#include <ORLFoundation/platform/base/CivilDays.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/time/NSDateComponents_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

namespace civil = internal::base::civil;

struct FieldCase {
  NSUInteger value;
  NSInteger (NSDateComponents::*read)() const noexcept;
  void (NSDateComponents::*write)(NSInteger) noexcept;
};
using C = NSDateComponents;
const FieldCase kFields[] = {
    {NSCalendarUnitEra, &C::era, &C::setEra},
    {NSCalendarUnitYear, &C::year, &C::setYear},
    {NSCalendarUnitMonth, &C::month, &C::setMonth},
    {NSCalendarUnitDay, &C::day, &C::setDay},
    {NSCalendarUnitHour, &C::hour, &C::setHour},
    {NSCalendarUnitMinute, &C::minute, &C::setMinute},
    {NSCalendarUnitSecond, &C::second, &C::setSecond},
    {NSCalendarUnitWeekday, &C::weekday, &C::setWeekday},
    {NSCalendarUnitWeekdayOrdinal, &C::weekdayOrdinal, &C::setWeekdayOrdinal},
    {NSCalendarUnitQuarter, &C::quarter, &C::setQuarter},
    {NSCalendarUnitWeekOfMonth, &C::weekOfMonth, &C::setWeekOfMonth},
    {NSCalendarUnitWeekOfYear, &C::weekOfYear, &C::setWeekOfYear},
    {NSCalendarUnitYearForWeekOfYear, &C::yearForWeekOfYear, &C::setYearForWeekOfYear},
    {NSCalendarUnitNanosecond, &C::nanosecond, &C::setNanosecond},
};

TEST(NSDateComponents, HoldsEachFieldUnderItsUnitValue) {
  for (const FieldCase& field : kFields) {
    const auto unit = static_cast<NSCalendarUnit>(field.value);
    NSDateComponents components;
    EXPECT_EQ((components.*field.read)(), 9223372036854775807) << field.value;
    (components.*field.write)(7);
    EXPECT_EQ(components.valueForComponent(unit), 7) << field.value;
    components.setValueForComponent(-3, unit);
    EXPECT_EQ((components.*field.read)(), -3) << field.value;
    components.setValueForComponent(NSDateComponentUndefined, unit);
    EXPECT_EQ(components, NSDateComponents()) << field.value;
  }
}

TEST(NSDateComponents, ReadsAndWritesWeekOfYearUnderTheRetiredUnit) {
  NSDateComponents components;
  components.setValueForComponent(12, NSCalendarUnitWeek);
  EXPECT_EQ(components.weekOfYear(), 12);
  EXPECT_EQ(components.valueForComponent(NSCalendarUnitWeek), 12);
}

TEST(NSDateComponents, HasNoFieldForMasksAndUnknownUnits) {
  NSDateComponents components;
  for (const NSUInteger unit :
       std::initializer_list<NSUInteger>{0, 1, NSCalendarUnitYear | NSCalendarUnitMonth,
                                         NSCalendarUnitMonth | NSCalendarUnitDay, 65536}) {
    components.setValueForComponent(5, static_cast<NSCalendarUnit>(unit));
    EXPECT_EQ(components.valueForComponent(static_cast<NSCalendarUnit>(unit)),
              NSDateComponentUndefined);
  }
  EXPECT_EQ(components, NSDateComponents());
}

TEST(NSDateComponents, EqualsOverAllFields) {
  for (const FieldCase& field : kFields) {
    NSDateComponents one;
    NSDateComponents other;
    (one.*field.write)(1);
    EXPECT_NE(one, other) << field.value;
    (other.*field.write)(1);
    EXPECT_EQ(one, other) << field.value;
  }
}

struct ValidCase {
  const char* name;
  const char* zone;
  const char* components;
  bool valid;
};
const ValidCase kValidCases[] = {
    {"Nothing", "UTC", "", true},
    {"LeapDay", "UTC", "year=2024 month=2 day=29", true},
    {"NoLeapDay", "UTC", "year=2023 month=2 day=29", false},
    {"NoLeapDayInACentury", "UTC", "year=1900 month=2 day=29", false},
    {"ThirtyFirstOfApril", "UTC", "year=2024 month=4 day=31", false},
    {"DayZero", "UTC", "year=2024 month=4 day=0", false},
    {"MonthThirteen", "UTC", "year=2024 month=13", false},
    {"DayOfYearAsDay", "UTC", "year=2024 day=32", false},
    {"FifthMonday", "UTC", "year=2024 month=4 weekday=2 weekdayOrdinal=5", true},
    {"NoFifthTuesdayOfMay", "UTC", "year=2024 month=5 weekday=3 weekdayOrdinal=5", false},
    {"OrdinalFromTheEnd", "UTC", "year=2024 month=5 weekday=3 weekdayOrdinal=-1", false},
    {"WeekdayOfItsDay", "UTC", "year=2024 month=5 day=7 weekday=3", true},
    {"WeekdayOfAnotherDay", "UTC", "year=2024 month=5 day=7 weekday=4", false},
    {"WeekOfMonthWithoutTheWeekday", "UTC", "year=2024 month=5 weekOfMonth=1 weekday=1", false},
    {"WeekOfYear", "UTC", "year=2024 weekOfYear=1", true},
    {"NoWeekFiftyFour", "UTC", "year=2024 weekOfYear=54", false},
    {"WeekdayOfAWeekInTheYearBefore", "UTC", "year=2020 weekOfYear=1 weekday=2", false},
    {"WeekdayAndItsOrdinalInAWeek", "UTC", "year=2024 weekOfYear=2 weekday=2 weekdayOrdinal=2",
     true},
    {"WeekdayAndAnotherOrdinalInAWeek", "UTC", "year=2024 weekOfYear=2 weekday=2 weekdayOrdinal=3",
     false},
    {"QuarterOfItsMonth", "UTC", "year=2024 quarter=2 month=5", true},
    {"QuarterOfAnotherMonth", "UTC", "year=2024 quarter=3 month=5", false},
    {"TwentyFourHours", "UTC", "year=2024 month=5 day=7 hour=24", false},
    {"SixtySeconds", "UTC", "year=2024 month=5 day=7 second=60", false},
    {"ManyNanoseconds", "UTC", "year=2024 month=5 day=7 nanosecond=1000000000", false},
    {"Nanoseconds", "UTC", "year=2024 month=5 day=7 nanosecond=123456789", true},
    {"YearBeforeChrist", "UTC", "era=0 year=1 month=2 day=29", true},
    {"NoYearZero", "UTC", "year=0 month=1 day=1", false},
    {"TimeInAGap", "America/New_York", "year=2024 month=3 day=10 hour=2 minute=30", false},
    {"TimeAfterAGap", "America/New_York", "year=2024 month=3 day=10 hour=3 minute=30", true},
    {"DoubledTime", "America/New_York", "year=2024 month=11 day=3 hour=1 minute=30", true},
    {"DayWithoutMidnight", "America/Sao_Paulo", "year=2017 month=10 day=15", true},
    {"MidnightLeftOut", "America/Sao_Paulo", "year=2017 month=10 day=15 hour=0", false},
    {"SkippedDay", "Pacific/Apia", "year=2011 month=12 day=30", false},
    {"YearBeyondAll", "UTC", "year=4611686018427387904", false},
    {"MonthBeyondAll", "UTC", "year=2024 month=-9223372036854775808", false},
    {"DayBeyondAll", "UTC", "year=2024 month=1 day=4611686018427387904", false},
    {"HourBeyondAll", "UTC", "year=2024 month=1 day=1 hour=4611686018427387904", false},
    {"WeekBeyondAll", "UTC", "year=2024 weekOfYear=4611686018427387904", false},
    {"NanosecondBeyondAll", "UTC", "year=2024 nanosecond=-9223372036854775808", false},
};

TEST(NSDateComponents, IsValidForDatesThatExist) {
  for (const ValidCase& row : kValidCases) {
    const auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
    calendar->setTimeZone(NSTimeZone::timeZoneWithName(row.zone));
    EXPECT_EQ(orlftest::componentsFromVector(row.components).isValidDateInCalendar(*calendar),
              row.valid)
        << row.name;
  }
}

TEST(NSDateComponents, IsValidForEveryDayOfFourCenturiesAndNotForTheDayAfterAMonth) {
  const auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  calendar->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
  for (std::int32_t year = 1800; year < 2200; ++year) {
    for (std::int32_t month = 1; month <= 12; ++month) {
      const std::int32_t length = civil::daysInMonth(year, month);
      NSDateComponents components;
      components.setYear(year);
      components.setMonth(month);
      for (std::int32_t day = 0; day <= 32; ++day) {
        components.setDay(day);
        ASSERT_EQ(components.isValidDateInCalendar(*calendar), day >= 1 && day <= length)
            << year << "-" << month << "-" << day;
      }
    }
  }
}

TEST(NSDateComponents, TellsWhichUnitsAreSet) {
  EXPECT_EQ(NSDateComponents().setUnits(), 0U);
  constexpr NSCalendarUnit kUnits[] = {NSCalendarUnitEra,        NSCalendarUnitYear,
                                       NSCalendarUnitMonth,      NSCalendarUnitDay,
                                       NSCalendarUnitHour,       NSCalendarUnitMinute,
                                       NSCalendarUnitSecond,     NSCalendarUnitNanosecond,
                                       NSCalendarUnitWeekday,    NSCalendarUnitWeekdayOrdinal,
                                       NSCalendarUnitQuarter,    NSCalendarUnitWeekOfMonth,
                                       NSCalendarUnitWeekOfYear, NSCalendarUnitYearForWeekOfYear};
  NSUInteger all = 0;
  NSDateComponents fields;
  for (const NSCalendarUnit unit : kUnits) {
    fields.setValueForComponent(0, unit);
    all |= unit;
    EXPECT_EQ(fields.setUnits(), all);
  }
}

}  // namespace
}  // namespace ORLFoundation
