
#include <ORLFoundation/calendar/ORLFISO8601.h>

#include <ORLFoundation/calendar/ORLFCalendar_testing.h>
#include <ORLFoundation/platform/time/NSTimeZone_testing.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::at;
using orlftest::calendarIn;

class ORLFISO8601 : public testing::Test {
 protected:
  const orlftest::DefaultZone zone_{"America/New_York"};
  const std::shared_ptr<NSCalendar> utc_ = calendarIn("UTC");
};

TEST_F(ORLFISO8601, WritesInTheDefaultZoneWithItsOffsetAtThatInstant) {
  EXPECT_EQ(orlfISO8601StringFromDate(at(*utc_, 2024, 1, 31, 14, 30)), "2024-01-31T09:30:00-0500");
  EXPECT_EQ(orlfISO8601String(at(*utc_, 2024, 7, 31, 13, 30)), "2024-07-31T09:30:00-0400");
  orlftest::DefaultZone::set("Asia/Kathmandu");
  EXPECT_EQ(orlfISO8601String(at(*utc_, 2024, 1, 31, 14, 30)), "2024-01-31T20:15:00+0545");
}

TEST_F(ORLFISO8601, TellsTheTwoPassesOfADoubledHourApart) {
  EXPECT_EQ(orlfISO8601String(at(*utc_, 2024, 11, 3, 5, 30)), "2024-11-03T01:30:00-0400");
  EXPECT_EQ(orlfISO8601String(at(*utc_, 2024, 11, 3, 6, 30)), "2024-11-03T01:30:00-0500");
}

TEST_F(ORLFISO8601, CutsOffFractionsOnBothSidesOf1970) {
  EXPECT_EQ(orlfISO8601String(at(*utc_, 2024, 1, 31, 14, 30).dateByAddingTimeInterval(0.999)),
            "2024-01-31T09:30:00-0500");
  EXPECT_EQ(orlfISO8601String(at(*utc_, 1960, 1, 31, 14, 30).dateByAddingTimeInterval(0.25)),
            "1960-01-31T09:30:00-0500");
}

TEST_F(ORLFISO8601, ReadsOffsetsAndZ) {
  const NSDate date = at(*utc_, 2024, 1, 31, 14, 30);
  for (const char* text :
       {"2024-01-31T14:30:00-0000", "2024-01-31T14:30:00Z", "2024-01-31T14:30:00+0000",
        "2024-01-31T09:30:00-0500", "2024-01-31T20:15:00+0545"})
    EXPECT_EQ(orlfDateFromISO8601String(text), date) << text;
}

TEST_F(ORLFISO8601, ReadsWhiteSpaceAtTheEndAndOtherMarksWidthsAndNames) {
  const NSDate date = at(*utc_, 2024, 1, 31, 9, 30);
  for (const char* text :
       {"2024-01-31T09:30:00Z ", "2024-01-31T09:30:00-0000\t\n", "2024-01-31T09:30:00 -0000",
        "2024/01/31T09:30:00Z", "2024.1.31T9.30.0Z", "2024-Jan-31T09:30:00Z",
        "2024-01-31T09:30:00-00:00", "2024-01-31T09:30:00GMT", "2024-1-31T9:30:0Z"})
    EXPECT_EQ(orlfDateFromISO8601String(text), date) << text;
}

TEST_F(ORLFISO8601, ReadsBackYearsBeforeTheFirstAsWritten) {
  orlftest::DefaultZone::set("UTC");
  EXPECT_EQ(orlfISO8601String(at(*utc_, 1, 1, 1)), "0001-01-01T00:00:00+0000");
  EXPECT_EQ(orlfISO8601String(at(*utc_, 0, 12, 31, 23, 59, 59)), "0000-12-31T23:59:59+0000");
  EXPECT_EQ(orlfISO8601String(at(*utc_, -43, 3, 15)), "-0043-03-15T00:00:00+0000");
  for (const int year : {-100000, -9999, -400, -43, -4, -1, 0, 1, 4})
    for (const int month : {1, 2, 12}) {
      const NSDate date = at(*utc_, year, month, 28, 1, 2, 3);
      EXPECT_EQ(orlfDateFromISO8601String(orlfISO8601String(date)), date) << year;
    }
}

TEST_F(ORLFISO8601, ReadsZAsMinusZero) {
  EXPECT_EQ(orlfDateFromISO8601String("1999-12-31T23:59:59Z"),
            orlfDateFromISO8601String("1999-12-31T23:59:59-0000"));
}

TEST_F(ORLFISO8601, RefusesTextsOfAnotherForm) {
  for (const char* text : {"",
                           "Z",
                           "ZZ",
                           "2024",
                           "2024-01-31",
                           "2024-01-31T14:30:00",
                           "2024-01-31T14:30Z",
                           "2024-01-31 14:30:00Z",
                           "2024-01-31t14:30:00Z",
                           "2024-01-31T14:30:00Zx",
                           "2024-01-31T14:30:00Z x",
                           "x2024-01-31T14:30:00Z",
                           "2024-01-31T14:30:00.500Z",
                           "2024-13-01T00:00:00Z",
                           "2024-00-01T00:00:00Z",
                           "2023-02-29T00:00:00Z",
                           "2024-01-32T00:00:00Z",
                           "2024-01-31T24:00:00Z",
                           "2024-01-31T14:60:00Z",
                           "2024-01-31T14:30:61Z",
                           "2024-01-31T14:30:00ZZ",
                           "Wed, 31 Jan 2024 14:30:00 GMT",
                           "\xff\xfe",
                           "9999999999999999999-01-01T00:00:00Z"})
    EXPECT_EQ(orlfDateFromISO8601String(text), std::nullopt) << text;
}

TEST_F(ORLFISO8601, RefusesLongTextsAtOnce) {
  EXPECT_EQ(orlfDateFromISO8601String(std::string(1'000'000, '2')), std::nullopt);
}

TEST_F(ORLFISO8601, ReadsWhatItWroteOnEveryDayOfFourCenturies) {
  NSDate date = at(*utc_, 1800, 1, 1, 1, 2, 3);
  for (int day = 0; day < 146097; day += 5) {
    date = date.dateByAddingTimeInterval(5 * 86400 + 61);
    ASSERT_EQ(orlfDateFromISO8601String(orlfISO8601String(date)), date) << orlfISO8601String(date);
  }
}

TEST_F(ORLFISO8601, WritesYearsBeyondFourDigits) {
  orlftest::DefaultZone::set("UTC");
  EXPECT_EQ(orlfISO8601String(at(*utc_, 12024, 6, 15, 12)), "12024-06-15T12:00:00+0000");
  EXPECT_EQ(orlfISO8601String(at(*utc_, 400000, 6, 15, 12)), "400000-06-15T12:00:00+0000");
}

TEST_F(ORLFISO8601, ReadsYearsBeyondFourDigitsUpTo144683) {
  EXPECT_EQ(orlfDateFromISO8601String("12024-06-15T12:00:00Z"), at(*utc_, 12024, 6, 15, 12));
  EXPECT_EQ(orlfDateFromISO8601String("144683-06-15T12:00:00Z"), at(*utc_, 144683, 6, 15, 12));
  EXPECT_EQ(orlfDateFromISO8601String("144684-06-15T12:00:00Z"), std::nullopt);
  EXPECT_EQ(orlfDateFromISO8601String("400000-06-15T12:00:00Z"), std::nullopt);
}

TEST_F(ORLFISO8601, WritesNothingForDatesThatAreNone) {
  for (const double seconds : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1e300, -1e300, 1e17})
    EXPECT_EQ(orlfISO8601String(NSDate::dateWithTimeIntervalSinceReferenceDate(seconds)), "");
}

TEST_F(ORLFISO8601, ServesSeveralThreads) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread)
    threads.emplace_back([this, thread] {
      for (int day = 1; day <= 28; ++day) {
        const NSDate date = at(*utc_, 2000 + thread, 2, day, 3, 4, 5);
        EXPECT_EQ(orlfDateFromISO8601String(orlfISO8601String(date)), date);
      }
    });
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace ORLFoundation
