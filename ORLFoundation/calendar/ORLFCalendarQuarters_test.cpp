
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

}  // namespace
}  // namespace ORLFoundation
