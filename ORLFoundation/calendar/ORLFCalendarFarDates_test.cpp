// Every operation with dates that the calendar cannot place: not a number, infinite, beyond its
// years. Under the sanitizer of undefined behaviour these also show sums that overflow.
#include <ORLFoundation/calendar/ORLFCalendarArithmetic.h>
#include <ORLFoundation/calendar/ORLFCalendarFiscal.h>
#include <ORLFoundation/calendar/ORLFCalendarIntervals.h>
#include <ORLFoundation/calendar/ORLFCalendarQuarters.h>
#include <ORLFoundation/calendar/ORLFCalendarSeries.h>
#include <ORLFoundation/calendar/ORLFCalendar_testing.h>
#include <gtest/gtest.h>

#include <limits>

namespace ORLFoundation {
namespace {

using orlftest::at;
using orlftest::calendarIn;

class FarDates : public testing::TestWithParam<double> {
 protected:
  const NSDate date_ = NSDate::dateWithTimeIntervalSinceReferenceDate(GetParam());
  const std::shared_ptr<NSCalendar> calendar_ = calendarIn("America/New_York");
  const NSDate today_ = at(*calendar_, 2024, 5, 6);
};

constexpr ORLFCalendarInterval kAllIntervals[] = {
    ORLFCalendarIntervalWeek,    ORLFCalendarIntervalTwoWeeks, ORLFCalendarIntervalMonth,
    ORLFCalendarIntervalQuarter, ORLFCalendarIntervalYear,     ORLFCalendarIntervalDay};

TEST_P(FarDates, HaveNoIntervals) {
  for (const ORLFCalendarInterval interval : kAllIntervals) {
    EXPECT_FALSE(dateByRoundingDownDate(*calendar_, date_, interval)) << interval;
    EXPECT_FALSE(dateByAddingInterval(*calendar_, interval, 1, date_)) << interval;
    EXPECT_EQ(numberOfIntervals(*calendar_, interval, date_, today_), 0) << interval;
    EXPECT_EQ(numberOfIntervals(*calendar_, interval, today_, date_), 0) << interval;
  }
  EXPECT_FALSE(dateOnSameDayAsDate(*calendar_, date_, date_));
  EXPECT_FALSE(dateOnSameDayAsDate(*calendar_, date_, today_));
}

TEST_P(FarDates, HaveNoFiscalPeriods) {
  EXPECT_FALSE(orlfStartOfYear(*calendar_, date_, 7, 1));
  constexpr NSUInteger kMask = NSCalendarUnitYear | NSCalendarUnitQuarter | NSCalendarUnitMonth |
                               NSCalendarUnitWeekOfYear | NSCalendarUnitDay;
  EXPECT_EQ(orlfComponents(*calendar_, kMask, date_, 7, 1), NSDateComponents());
  for (const NSCalendarUnit unit :
       {NSCalendarUnitYear, NSCalendarUnitQuarter, NSCalendarUnitMonth, NSCalendarUnitDay}) {
    EXPECT_FALSE(orlfDateByRoundingDateDownToCalendarUnit(*calendar_, date_, unit, 7, 1)) << unit;
    EXPECT_FALSE(orlfDateByRoundingDateUpToCalendarUnit(*calendar_, date_, unit, 7, 1)) << unit;
  }
}

TEST_P(FarDates, HaveNoQuarter) {
  EXPECT_EQ(orlfQuarterForDate(*calendar_, date_), NSNotFound);
  EXPECT_EQ(orlfQuartersForDateSince1970(*calendar_, date_), 0);
  EXPECT_EQ(orlfIntervalInCalendarUnit(*calendar_, NSCalendarUnitQuarter, date_, today_), 0);
  EXPECT_FALSE(orlfDateByAddingInterval(*calendar_, 1, NSCalendarUnitQuarter, date_));
}

TEST_P(FarDates, HaveNoSeries) {
  const ORLFRepeatingEvents series[] = {
      {NSCalendarUnitDay, 1, date_, today_, today_, true},
      {NSCalendarUnitDay, 1, today_, date_, today_, true},
      {NSCalendarUnitDay, 1, today_, today_, date_, true},
  };
  for (const ORLFRepeatingEvents& events : series)
    EXPECT_EQ(orlfDatesOfEventsRepeatingWithUnit(*calendar_, events), std::vector<NSDate>());
  EXPECT_EQ(orlfDatesAtInterval(
                *calendar_,
                {.calendarUnit = NSCalendarUnitDay, .firstDate = today_, .secondDate = date_}),
            std::vector<NSDate>{today_});
}

constexpr double kInfinity = std::numeric_limits<double>::infinity();
INSTANTIATE_TEST_SUITE_P(Dates, FarDates,
                         testing::Values(std::numeric_limits<double>::quiet_NaN(), kInfinity,
                                         -kInfinity, 1e300, -1e300, 5e13, -5e13));

TEST(FiscalYears, BeginningOnNumbersThatAreNoMonthGiveNoDateAndDoNotOverflow) {
  const auto calendar = calendarIn("UTC");
  const NSDate date = at(*calendar, 2024, 5, 6);
  for (const NSInteger number : {NSIntegerMin, NSIntegerMin + 1, NSIntegerMax - 1}) {
    for (const NSCalendarUnit unit : {NSCalendarUnitYear, NSCalendarUnitQuarter}) {
      EXPECT_FALSE(orlfDateByRoundingDateDownToCalendarUnit(*calendar, date, unit, number, 1));
      EXPECT_FALSE(orlfDateByRoundingDateUpToCalendarUnit(*calendar, date, unit, number, 1));
    }
    EXPECT_FALSE(orlfStartOfYear(*calendar, date, number, 1));
    EXPECT_EQ(orlfComponents(*calendar, NSCalendarUnitMonth, date, number, 1).month(), 5);
  }
}

TEST(FiscalYears, HaveNoQuartersWhereTheCalendarHasNone) {
  const auto calendar = orlftest::calendarOf(NSCalendarIdentifierHebrew, "UTC");
  const NSDate date = NSDate::dateWithTimeIntervalSince1970(1700000000);
  for (const NSInteger month : {NSIntegerMin, NSIntegerMax})
    EXPECT_FALSE(
        orlfDateByRoundingDateDownToCalendarUnit(*calendar, date, NSCalendarUnitQuarter, month, 1));
}

// The first days that the calendar places: their week begins before them.
TEST(DateByRoundingDownDate, GivesNoWeekThatBeginsBeforeTheCalendar) {
  const auto calendar = calendarIn("UTC");
  constexpr double kDay = 86400;
  double seconds = -500'000'000 * kDay;
  const auto date = [&] { return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds); };
  while (calendar->component(NSCalendarUnitDay, date()) == NSDateComponentUndefined)
    seconds += kDay;
  ASSERT_NE(calendar->component(NSCalendarUnitWeekday, date()), 1);
  for (; calendar->component(NSCalendarUnitWeekday, date()) != 1; seconds += kDay) {
    EXPECT_FALSE(dateByRoundingDownDate(*calendar, date(), ORLFCalendarIntervalWeek));
    EXPECT_FALSE(dateByRoundingDownDate(*calendar, date(), ORLFCalendarIntervalTwoWeeks));
  }
}

struct LeapDayYear {
  int year, month, day;
  int startYear, startMonth, startDay;
};
// A year from 29 February begins on 1 March where there is none.
constexpr LeapDayYear kLeapDayYears[] = {
    {2024, 2, 29, 2024, 2, 29}, {2024, 2, 28, 2023, 2, 28}, {2025, 1, 10, 2024, 3, 1},
    {2025, 2, 28, 2024, 3, 1},  {2025, 3, 1, 2025, 3, 1},   {2023, 12, 31, 2023, 3, 1},
};

TEST(OrlfStartOfYear, OfAYearFromTheLeapDay) {
  const auto calendar = calendarIn("UTC");
  for (const LeapDayYear& row : kLeapDayYears)
    EXPECT_EQ(orlfStartOfYear(*calendar, at(*calendar, row.year, row.month, row.day, 12), 2, 29),
              at(*calendar, row.startYear, row.startMonth, row.startDay))
        << row.year << '-' << row.month << '-' << row.day;
}

TEST(OrlfStartOfYear, BeforeYearOneStaysInItsEra) {
  const auto calendar = calendarIn("UTC");
  EXPECT_EQ(orlfStartOfYear(*calendar, at(*calendar, -43, 3, 15), 7, 1), at(*calendar, -44, 7, 1));
}

}  // namespace
}  // namespace ORLFoundation
