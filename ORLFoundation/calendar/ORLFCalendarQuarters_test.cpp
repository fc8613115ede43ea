
#include <ORLFoundation/calendar/ORLFCalendarQuarters.h>

#include <ORLFoundation/calendar/ORLFCalendarArithmetic.h>
#include <ORLFoundation/calendar/ORLFCalendar_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using orlftest::at;
using orlftest::calendarIn;

TEST(ORLFCalendarQuarters, HaveThreeMonths) {
  EXPECT_EQ(orlfMonthsPerQuarter(*calendarIn("UTC")), 3);
}

TEST(ORLFCalendarQuarters, AreNumberedByMonthOnEveryDayOfFourCenturies) {
  const auto calendar = calendarIn("UTC");
  NSDate date = at(*calendar, 1800, 1, 1);
  for (int day = 0; day < 146097; ++day) {
    const NSInteger month = calendar->component(NSCalendarUnitMonth, date);
    ASSERT_EQ(orlfQuarterForDate(*calendar, date), (month + 2) / 3) << day;
    date = date.dateByAddingTimeInterval(86400);
  }
}

TEST(ORLFCalendarQuarters, CountFrom1970TruncatedTowardZero) {
  const auto calendar = calendarIn("UTC");
  EXPECT_EQ(orlfQuartersForDateSince1970(*calendar, at(*calendar, 1970, 1, 1)), 0);
  EXPECT_EQ(orlfQuartersForDateSince1970(*calendar, at(*calendar, 1970, 3, 31, 23, 59, 59)), 0);
  EXPECT_EQ(orlfQuartersForDateSince1970(*calendar, at(*calendar, 1970, 4, 1)), 1);
  EXPECT_EQ(orlfQuartersForDateSince1970(*calendar, at(*calendar, 2024, 1, 1)), 216);
  // Both sides of 1970 count as quarter 0.
  EXPECT_EQ(orlfQuartersForDateSince1970(*calendar, at(*calendar, 1969, 10, 2)), 0);
  EXPECT_EQ(orlfQuartersForDateSince1970(*calendar, at(*calendar, 1969, 10, 1)), -1);
}

// Months go by the clock, whatever days it left out: Apia had no 30 December in 2011.
TEST(ORLFCalendarQuarters, CountOverASkippedDay) {
  const auto calendar = calendarIn("Pacific/Apia");
  EXPECT_EQ(orlfQuartersForDateSince1970(*calendar, at(*calendar, 2012, 1, 1)), 168);
}

struct QuarterCase {
  const char* name;
  int from[3], to[3];
  NSInteger quarters;
};
constexpr QuarterCase kQuarters[] = {
    {"StepsAtTheBoundaryADayApart", {2021, 3, 31}, {2021, 4, 1}, 1},
    {"StaysInsideAQuarter", {2021, 4, 1}, {2021, 6, 30}, 0},
    {"CountsBackward", {2021, 4, 1}, {2021, 3, 31}, -1},
    {"CountsAYear", {2020, 2, 29}, {2021, 2, 28}, 4},
};

TEST(ORLFCalendarQuarters, AreTheIntervalBetweenTwoDates) {
  const auto calendar = calendarIn("UTC");
  for (const QuarterCase& row : kQuarters)
    EXPECT_EQ(orlfIntervalInCalendarUnit(*calendar, NSCalendarUnitQuarter,
                                         at(*calendar, row.from[0], row.from[1], row.from[2]),
                                         at(*calendar, row.to[0], row.to[1], row.to[2])),
              row.quarters)
        << row.name;
}

// A year of thirteen months has no quarters.
TEST(ORLFCalendarQuarters, AreNotFoundWhereTheCalendarHasNone) {
  for (const std::string_view identifier :
       {NSCalendarIdentifierHebrew, NSCalendarIdentifierCoptic, NSCalendarIdentifierChinese}) {
    const auto calendar = NSCalendar::initWithCalendarIdentifier(identifier);
    calendar->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
    const NSDate date = NSDate::dateWithTimeIntervalSince1970(1700000000);
    const NSDate later = date.dateByAddingTimeInterval(400 * 86400.0);
    EXPECT_EQ(orlfMonthsPerQuarter(*calendar), NSNotFound);
    EXPECT_EQ(orlfQuartersForDateSince1970(*calendar, date), NSNotFound);
    EXPECT_EQ(orlfQuarterForDate(*calendar, date), NSNotFound);
    EXPECT_EQ(orlfIntervalInCalendarUnit(*calendar, NSCalendarUnitQuarter, date, later), 0);
    for (const NSInteger interval : {-2, -1, 0, 1, 2})
      EXPECT_FALSE(orlfDateByAddingInterval(*calendar, interval, NSCalendarUnitQuarter, date));
  }
}

TEST(ORLFCalendarQuarters, AreThreeMonthsInEveryCalendarOfTwelve) {
  for (const std::string_view identifier :
       {NSCalendarIdentifierBuddhist, NSCalendarIdentifierIndian, NSCalendarIdentifierPersian,
        NSCalendarIdentifierIslamicUmmAlQura}) {
    const auto calendar = NSCalendar::initWithCalendarIdentifier(identifier);
    calendar->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
    const NSDate date = NSDate::dateWithTimeIntervalSince1970(1700000000);
    const NSInteger month = calendar->component(NSCalendarUnitMonth, date);
    EXPECT_EQ(orlfMonthsPerQuarter(*calendar), 3);
    EXPECT_EQ(orlfQuarterForDate(*calendar, date), (month + 2) / 3);
    EXPECT_EQ(orlfDateByAddingInterval(*calendar, 2, NSCalendarUnitQuarter, date),
              calendar->dateByAddingUnit(NSCalendarUnitMonth, 6, date, 0));
  }
}

}  // namespace
}  // namespace ORLFoundation
