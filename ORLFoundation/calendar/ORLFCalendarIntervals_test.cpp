
#include <ORLFoundation/calendar/ORLFCalendarIntervals.h>

#include <ORLFoundation/calendar/ORLFCalendarDays_testing.h>
#include <ORLFoundation/platform/process/NSBundle.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

namespace ORLFoundation {
namespace {

using orlftest::day;
using orlftest::Json;
using orlftest::text;
using orlftest::utcCalendar;

TEST(DateByRoundingDownDate, WeeksBeginOnSundayWhateverTheCalendarSays) {
  const auto monday =
      orlftest::calendarFromVector(Json{{"zone", "UTC"}, {"first_weekday", 2}, {"min_days", 4}});
  EXPECT_EQ(text(dateByRoundingDownDate(*monday, day("2024-05-15"), ORLFCalendarIntervalWeek)),
            "2024-05-12");
}

TEST(DateByRoundingDownDate, TwoWeeksBeginWithAnEvenWeek) {
  // Week 20 begins on 12 May 2024, week 21 a week later.
  EXPECT_EQ(
      text(dateByRoundingDownDate(utcCalendar(), day("2024-05-15"), ORLFCalendarIntervalTwoWeeks)),
      "2024-05-12");
  EXPECT_EQ(
      text(dateByRoundingDownDate(utcCalendar(), day("2024-05-22"), ORLFCalendarIntervalTwoWeeks)),
      "2024-05-12");
}

struct RoundedCase {
  ORLFCalendarInterval interval;
  const char *date, *rounded;
};
const RoundedCase kRounded[] = {
    {ORLFCalendarIntervalWeek, "2024-05-15", "2024-05-12"},
    {ORLFCalendarIntervalWeek, "2024-05-12", "2024-05-12"},
    {ORLFCalendarIntervalWeek, "2024-05-02", "2024-04-28"},
    {ORLFCalendarIntervalTwoWeeks, "2024-05-08", "2024-04-28"},
    {ORLFCalendarIntervalMonth, "2024-05-15", "2024-05-01"},
    {ORLFCalendarIntervalQuarter, "2024-03-31", "2024-01-01"},
    {ORLFCalendarIntervalQuarter, "2024-04-01", "2024-04-01"},
    {ORLFCalendarIntervalQuarter, "2024-06-30", "2024-04-01"},
    {ORLFCalendarIntervalQuarter, "2024-07-01", "2024-07-01"},
    {ORLFCalendarIntervalQuarter, "2024-09-30", "2024-07-01"},
    {ORLFCalendarIntervalQuarter, "2024-10-01", "2024-10-01"},
    {ORLFCalendarIntervalQuarter, "2024-12-31", "2024-10-01"},
    {ORLFCalendarIntervalYear, "2024-12-31", "2024-01-01"},
    {ORLFCalendarIntervalDay, "2024-05-15", "2024-05-15"},
};

TEST(DateByRoundingDownDate, MatchesTable) {
  for (const RoundedCase& row : kRounded) {
    const auto noon = orlftest::dateFromVector(std::string(row.date) + "T12:34:56Z");
    EXPECT_EQ(orlftest::vectorFromDate(dateByRoundingDownDate(utcCalendar(), *noon, row.interval)),
              std::string(row.rounded) + "T00:00:00Z")
        << row.date;
  }
}

TEST(DateByRoundingDownDate, ValuesOutsideTheSetGiveNil) {
  for (const int outside : {-1, 6})
    EXPECT_FALSE(dateByRoundingDownDate(utcCalendar(), day("2024-05-15"),
                                        static_cast<ORLFCalendarInterval>(outside)));
}

struct CountCase {
  ORLFCalendarInterval interval;
  NSInteger count;
  const char* date;
};
const CountCase kCounts[] = {
    {ORLFCalendarIntervalWeek, 2, "2024-02-14"},
    {ORLFCalendarIntervalTwoWeeks, 2, "2024-02-28"},
    {ORLFCalendarIntervalMonth, 1, "2024-02-29"},
    {ORLFCalendarIntervalQuarter, 1, "2024-04-30"},
    {ORLFCalendarIntervalYear, -1, "2023-01-31"},
    {ORLFCalendarIntervalDay, 30, "2024-03-01"},
    {static_cast<ORLFCalendarInterval>(9), 5, "2024-01-31"},
};

TEST(DateByAddingInterval, MatchesTable) {
  for (const CountCase& row : kCounts)
    EXPECT_EQ(text(dateByAddingInterval(utcCalendar(), row.interval, row.count, day("2024-01-31"))),
              row.date);
}

TEST(DateByAddingInterval, CountsTooLargeGiveNil) {
  EXPECT_FALSE(dateByAddingInterval(utcCalendar(), ORLFCalendarIntervalQuarter, NSIntegerMax,
                                    day("2024-01-31")));
}

struct WordCase {
  NSInteger interval, inAYear, between;  // between 2023-01-31 and 2024-03-15
  const char *single, *plural, *singleCapital, *pluralCapital;
};
const WordCase kWords[] = {
    {0, 52, 58, "week", "weeks", "Week", "Weeks"},
    {1, 26, 29, "two weeks", "two weeks", "Two Weeks", "Two Weeks"},
    {2, 12, 13, "month", "months", "Month", "Months"},
    {3, 4, 4, "quarter", "quarters", "Quarter", "Quarters"},
    {4, 1, 1, "year", "years", "Year", "Years"},
    {5, 365, 409, "day", "days", "Day", "Days"},
    {6, 0, 0, "unknown", "unknown", "unknown", "unknown"},
    {-1, 0, 0, "unknown", "unknown", "unknown", "unknown"},
};

TEST(ORLFCalendarIntervals, MatchesTable) {
  for (const WordCase& row : kWords) {
    const auto interval = static_cast<ORLFCalendarInterval>(row.interval);
    const auto name = [&](bool capitalize, NSInteger count) {
      return calendarUnitNameForIntervalType(utcCalendar(), interval, capitalize, count);
    };
    EXPECT_EQ(intervalCountInYear(utcCalendar(), interval), row.inAYear);
    EXPECT_EQ(numberOfIntervals(utcCalendar(), interval, day("2023-01-31"), day("2024-03-15")),
              row.between);
    EXPECT_EQ(name(false, 1), row.single);
    EXPECT_EQ(name(false, 2), row.plural);
    EXPECT_EQ(name(true, 1), row.singleCapital);
    EXPECT_EQ(name(true, 5), row.pluralCapital);
    EXPECT_EQ(name(false, 0), "unknown");
    EXPECT_EQ(name(true, -1), "unknown");
  }
}

TEST(ORLFCalendarIntervals, AskTheMainBundleForTheirNames) {
  NSBundle::mainBundle()->setLocalizedStrings("Localizable", {{"two weeks", "zwei Wochen"}});
  EXPECT_EQ(calendarUnitNameForIntervalType(utcCalendar(), ORLFCalendarIntervalTwoWeeks, false, 5),
            "zwei Wochen");
  NSBundle::mainBundle()->setLocalizedStrings("Localizable", {});
}

TEST(DateOnSameDayAsDate, LooksAtTheDayInTheCalendarsZone) {
  const auto newYork = orlftest::calendarFromVector(
      Json{{"zone", "America/New_York"}, {"first_weekday", 1}, {"min_days", 1}});
  const NSDate evening = *orlftest::dateFromVector("2024-05-15T23:00:00Z");
  const NSDate night = *orlftest::dateFromVector("2024-05-16T03:00:00Z");
  EXPECT_FALSE(dateOnSameDayAsDate(utcCalendar(), evening, night));
  EXPECT_TRUE(dateOnSameDayAsDate(*newYork, evening, night));
  EXPECT_TRUE(dateOnSameDayAsDate(utcCalendar(), evening, evening));
}

TEST(NumberOfIntervals, TruncatesTowardZero) {
  EXPECT_EQ(numberOfIntervals(utcCalendar(), ORLFCalendarIntervalTwoWeeks, day("2024-01-01"),
                              day("2024-01-22")),
            1);
  EXPECT_EQ(numberOfIntervals(utcCalendar(), ORLFCalendarIntervalTwoWeeks, day("2024-01-22"),
                              day("2024-01-01")),
            -1);
  EXPECT_EQ(numberOfIntervals(utcCalendar(), ORLFCalendarIntervalQuarter, day("2024-01-01"),
                              day("2024-12-31")),
            3);
  EXPECT_EQ(numberOfIntervals(utcCalendar(), static_cast<ORLFCalendarInterval>(-1),
                              day("2024-01-01"), day("2024-12-31")),
            0);
}

TEST(DateByAddingInterval, GivesNothingForCountsThatWouldWrap) {
  // Two weeks so often would be -2 weeks, and a quarter 2 months.
  EXPECT_FALSE(dateByAddingInterval(utcCalendar(), ORLFCalendarIntervalTwoWeeks, NSIntegerMax,
                                    day("2024-05-15")));
  EXPECT_FALSE(dateByAddingInterval(utcCalendar(), ORLFCalendarIntervalQuarter, 6148914691236517206,
                                    day("2024-05-15")));
}

// Apia had no 30 December in 2011: its clock tells two days from the 29th to the 31st.
TEST(NumberOfIntervals, CountsDaysByTheClock) {
  const auto calendar = orlftest::calendarIn("Pacific/Apia");
  const NSDate from = orlftest::at(*calendar, 2011, 12, 29);
  const NSDate to = orlftest::at(*calendar, 2011, 12, 31);
  EXPECT_EQ(numberOfIntervals(*calendar, ORLFCalendarIntervalDay, from, to), 2);
}

}  // namespace
}  // namespace ORLFoundation
