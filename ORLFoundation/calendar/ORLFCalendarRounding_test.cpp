
#include <ORLFoundation/calendar/ORLFCalendarRounding.h>

#include <ORLFoundation/calendar/ORLFCalendar_testing.h>
#include <gtest/gtest.h>

#include <limits>

namespace ORLFoundation {
namespace {

using orlftest::at;
using orlftest::calendarIn;

constexpr NSCalendarUnit kUnits[] = {
    NSCalendarUnitYear,   NSCalendarUnitQuarter,     NSCalendarUnitMonth, NSCalendarUnitWeekOfYear,
    NSCalendarUnitWeek,   NSCalendarUnitWeekOfMonth, NSCalendarUnitDay,   NSCalendarUnitHour,
    NSCalendarUnitMinute, NSCalendarUnitSecond};

TEST(ORLFCalendarRounding, FindsTheBoundariesOfAMonth) {
  const auto calendar = calendarIn("America/New_York");
  const NSDate date = at(*calendar, 2024, 2, 15, 9, 30);
  EXPECT_EQ(orlfDateByRoundingDateDownToCalendarUnit(*calendar, date, NSCalendarUnitMonth),
            at(*calendar, 2024, 2, 1));
  EXPECT_EQ(orlfDateByRoundingDateUpToCalendarUnit(*calendar, date, NSCalendarUnitMonth),
            at(*calendar, 2024, 3, 1));
}

TEST(ORLFCalendarRounding, LeavesADateOnABoundaryWhereItIs) {
  const auto calendar = calendarIn("America/New_York");
  const NSDate boundary = at(*calendar, 2023, 1, 1);  // a year, a quarter, a month and a week begin
  for (const NSCalendarUnit unit : kUnits) {
    EXPECT_EQ(orlfDateByRoundingDateUpToCalendarUnit(*calendar, boundary, unit), boundary) << unit;
    EXPECT_EQ(orlfDateByRoundingDateDownToCalendarUnit(*calendar, boundary, unit), boundary)
        << unit;
  }
}

TEST(ORLFCalendarRounding, RoundsAFractionOfASecond) {
  const auto calendar = calendarIn("UTC");
  const NSDate whole = at(*calendar, 2024, 5, 6, 7, 8, 9);
  const NSDate date = whole.dateByAddingTimeInterval(0.25);
  EXPECT_EQ(orlfDateByRoundingDateDownToCalendarUnit(*calendar, date, NSCalendarUnitSecond), whole);
  EXPECT_EQ(orlfDateByRoundingDateUpToCalendarUnit(*calendar, date, NSCalendarUnitSecond),
            whole.dateByAddingTimeInterval(1));
}

TEST(ORLFCalendarRounding, TakesDaysAsLongAsTheyAre) {
  const auto calendar = calendarIn("America/New_York");
  const NSDate shortDay = at(*calendar, 2024, 3, 10, 12);
  EXPECT_EQ(orlfDateByRoundingDateUpToCalendarUnit(*calendar, shortDay, NSCalendarUnitDay),
            at(*calendar, 2024, 3, 11));
  const auto brazil = calendarIn("America/Sao_Paulo");  // midnight is left out on 2018-11-04
  EXPECT_EQ(orlfDateByRoundingDateDownToCalendarUnit(*brazil, at(*brazil, 2018, 11, 4, 12),
                                                     NSCalendarUnitDay),
            at(*brazil, 2018, 11, 4, 1));
}

// Clocks in St John's went back from 00:01 to 23:01 of 28 October.
TEST(ORLFCalendarRounding, UpNeverLiesBeforeADateOfTheHourThatMidnightDoubled) {
  const auto calendar = calendarIn("America/St_Johns");
  const NSDate midnight = at(*calendarIn("UTC"), 2006, 10, 29, 3, 30);
  EXPECT_EQ(orlfDateByRoundingDateUpToCalendarUnit(
                *calendar, at(*calendarIn("UTC"), 2006, 10, 29, 2, 31), NSCalendarUnitDay),
            midnight);
}

TEST(ORLFCalendarRounding, HoldsTheDateBetweenItsBoundariesThroughTwoYearsOfHours) {
  for (const char* zone : {"America/New_York", "Asia/Kathmandu", "Australia/Lord_Howe"}) {
    const auto calendar = calendarIn(zone);
    NSDate date = at(*calendar, 2023, 6, 1, 0, 17);
    for (int hour = 0; hour < 2 * 366 * 24; hour += 7) {
      date = date.dateByAddingTimeInterval(7 * 3600);
      for (const NSCalendarUnit unit : kUnits) {
        const auto down = orlfDateByRoundingDateDownToCalendarUnit(*calendar, date, unit).value();
        const auto up = orlfDateByRoundingDateUpToCalendarUnit(*calendar, date, unit).value();
        ASSERT_LE(down.timeIntervalSinceReferenceDate(), date.timeIntervalSinceReferenceDate());
        ASSERT_GE(up.timeIntervalSinceReferenceDate(), date.timeIntervalSinceReferenceDate());
        ASSERT_EQ(orlfDateByRoundingDateDownToCalendarUnit(*calendar, down, unit), down);
        ASSERT_EQ(orlfDateByRoundingDateUpToCalendarUnit(*calendar, up, unit), up);
      }
    }
  }
}

TEST(ORLFCalendarRounding, AnswersNilForNilForNoUnitAndForNoDate) {
  const auto calendar = calendarIn("UTC");
  const NSDate date = at(*calendar, 2024, 1, 1);
  const NSDate never =
      NSDate::dateWithTimeIntervalSinceReferenceDate(std::numeric_limits<double>::quiet_NaN());
  const auto nowhere = static_cast<NSCalendarUnit>(0);
  EXPECT_EQ(orlfDateByRoundingDateDownToCalendarUnit(*calendar, std::nullopt, NSCalendarUnitDay),
            std::nullopt);
  EXPECT_EQ(orlfDateByRoundingDateUpToCalendarUnit(*calendar, std::nullopt, NSCalendarUnitDay),
            std::nullopt);
  EXPECT_EQ(orlfDateByRoundingDateDownToCalendarUnit(*calendar, date, nowhere), std::nullopt);
  EXPECT_EQ(orlfDateByRoundingDateUpToCalendarUnit(*calendar, date, nowhere), std::nullopt);
  EXPECT_EQ(orlfDateByRoundingDateDownToCalendarUnit(*calendar, never, NSCalendarUnitDay),
            std::nullopt);
}

}  // namespace
}  // namespace ORLFoundation
