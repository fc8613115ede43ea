
#include <ORLFoundation/calendar/ORLFCalendarFiscal.h>

#include <ORLFoundation/calendar/ORLFCalendarDays_testing.h>
#include <ORLFoundation/calendar/ORLFCalendarIntervals.h>
#include <ORLFoundation/calendar/ORLFCalendarRatios.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/time/NSDateComponents_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

namespace ORLFoundation {
namespace {

using orlftest::day;
using orlftest::Json;
using orlftest::text;
using orlftest::unitOf;
using orlftest::utcCalendar;

ORLFCalendarInterval intervalOf(const Json& code) {
  return static_cast<ORLFCalendarInterval>(code.get<std::int32_t>());
}

using FiscalRounding = std::optional<NSDate> (*)(const NSCalendar&, std::optional<NSDate>,
                                                 NSCalendarUnit, NSInteger, NSInteger) noexcept;

orlftest::JsonCheck roundingCheck(FiscalRounding rounding) {
  return [rounding](const Json& in, const Json& out) {
    return orlftest::disagreement(
        orlftest::dateFromVector(out),
        rounding(*orlftest::calendarFromVector(in.at("calendar")),
                 orlftest::dateFromVector(in.at("date")), unitOf(in.at("unit")),
                 in.at("yearStartMonth").get<NSInteger>(),
                 in.at("monthStartDay").get<NSInteger>()));
  };
}

TEST(ORLFCalendarFiscal, AgreesWithVectors) {
  orlftest::runJsonVectors(
      "planning_fiscal",
      {{"orlfComponents",
        [](const Json& in, const Json& out) {
          return orlftest::disagreement(
              orlftest::componentsFromVector(out),
              orlfComponents(*orlftest::calendarFromVector(in.at("calendar")),
                             in.at("mask").get<NSUInteger>(),
                             *orlftest::dateFromVector(in.at("date")),
                             in.at("month").get<NSInteger>(), in.at("day").get<NSInteger>()));
        }},
       {"roundDown", roundingCheck(orlfDateByRoundingDateDownToCalendarUnit)},
       {"roundUp", roundingCheck(orlfDateByRoundingDateUpToCalendarUnit)},
       {"dateByAddingInterval:count:toDate:",
        [](const Json& in, const Json& out) {
          return orlftest::disagreement(
              orlftest::dateFromVector(out),
              dateByAddingInterval(*orlftest::calendarFromVector(in.at("calendar")),
                                   intervalOf(in.at("interval")), in.at("count").get<NSInteger>(),
                                   *orlftest::dateFromVector(in.at("date"))));
        }},
       {"numberOfIntervals:fromDate:toDate:",
        [](const Json& in, const Json& out) {
          return orlftest::disagreement(
              out.get<NSInteger>(),
              numberOfIntervals(*orlftest::calendarFromVector(in.at("calendar")),
                                intervalOf(in.at("interval")),
                                *orlftest::dateFromVector(in.at("from")),
                                *orlftest::dateFromVector(in.at("to"))));
        }},
       {"date:onSameDayAsDate:",
        [](const Json& in, const Json& out) {
          const auto dates = orlftest::datesFromVector(in.at("dates"));
          return orlftest::disagreement(
              out.get<bool>(), dateOnSameDayAsDate(*orlftest::calendarFromVector(in.at("calendar")),
                                                   dates.at(0), dates.at(1)));
        }},
       {"dateByRoundingDownDate:toInterval:",
        [](const Json& in, const Json& out) {
          return orlftest::disagreement(
              orlftest::dateFromVector(out),
              dateByRoundingDownDate(*orlftest::calendarFromVector(in.at("calendar")),
                                     *orlftest::dateFromVector(in.at("date")),
                                     intervalOf(in.at("interval"))));
        }},
       {"intervalCountInYear:",
        [](const Json& in, const Json& out) {
          return orlftest::disagreement(out.get<NSInteger>(),
                                        intervalCountInYear(utcCalendar(), intervalOf(in)));
        }},
       {"calendarUnitNameForIntervalType:capitalize:unitCount:",
        [](const Json& in, const Json& out) {
          return orlftest::disagreement(
              out.get<std::string>(),
              calendarUnitNameForIntervalType(utcCalendar(), intervalOf(in.at(0)),
                                              in.at(1).get<bool>(), in.at(2).get<NSInteger>()));
        }},
       {"orlfNameForCalendarUnit:plural:", [](const Json& in, const Json& out) {
          return orlftest::disagreement(
              out.get<std::string>(),
              orlfNameForCalendarUnit(unitOf(in.at(0)), in.at(1).get<bool>()));
        }}});
}

struct JulyYearCase {
  const char *name, *date;
  NSInteger year, month, quarter;
};
const JulyYearCase kJulyYear[] = {
    {"EarlierHalf", "2020-03-15", 2020, 9, 3},
    {"LaterHalf", "2020-08-15", 2021, 2, 1},
    {"LastDay", "2020-06-30", 2020, 12, 4},
    {"StartItselfKeepsThePlainYear", "2020-07-01", 2020, 1, 1},
    {"DayAfterTheStart", "2020-07-02", 2021, 1, 1},
};

TEST(OrlfComponents, CountsFromTheFirstOfJuly) {
  for (const JulyYearCase& row : kJulyYear) {
    const NSDateComponents fields = orlfComponents(
        utcCalendar(),
        NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitQuarter | NSCalendarUnitDay,
        day(row.date), 7, 1);
    EXPECT_EQ(fields.year(), row.year) << row.name;
    EXPECT_EQ(fields.month(), row.month) << row.name;
    EXPECT_EQ(fields.quarter(), row.quarter) << row.name;
    EXPECT_EQ(fields.day(), utcCalendar().component(NSCalendarUnitDay, day(row.date))) << row.name;
    EXPECT_EQ(fields.weekOfYear(), NSDateComponentUndefined) << row.name;
  }
}

// It ends with 1 January of the next year.
TEST(OrlfComponents, NameAYearFromTheSecondOfJanuaryAfterTheDayOnWhichItEnds) {
  EXPECT_EQ(orlfComponents(utcCalendar(), NSCalendarUnitYear, day("2020-06-15"), 1, 2).year(),
            2021);
}

// Months go by the clock, whatever days it left out: Apia had no 30 December in 2011.
TEST(OrlfComponents, CountMonthsOverASkippedDay) {
  const auto calendar = orlftest::calendarIn("Pacific/Apia");
  EXPECT_EQ(
      orlfComponents(*calendar, NSCalendarUnitMonth, orlftest::at(*calendar, 2012, 1, 1), 7, 1)
          .month(),
      7);
}

TEST(OrlfComponents, HoldTheFieldsOfTheMaskAlone) {
  for (const NSCalendarUnit unit :
       {NSCalendarUnitYear, NSCalendarUnitQuarter, NSCalendarUnitMonth, NSCalendarUnitWeekOfYear,
        NSCalendarUnitDay, NSCalendarUnitHour})
    EXPECT_EQ(orlfComponents(utcCalendar(), unit, day("2020-08-15"), 7, 1).setUnits(),
              static_cast<NSUInteger>(unit));
}

struct WeekCase {
  const char* name;
  const char* date;
  NSInteger week;
};
// Weeks of seven days are counted from January 1st, so that the second one begins on July 2nd.
const WeekCase kJulyWeeks[] = {
    {"FirstDay", "2019-07-01", 1},       {"SecondDay", "2019-07-02", 2},
    {"EndOfTheSecond", "2019-07-08", 2}, {"ThirdWeek", "2019-07-09", 3},
    {"March", "2020-03-15", 38},         {"LastDay", "2020-06-30", 54},
};

TEST(OrlfComponents, CountsWeeksFromTheStartOfTheYear) {
  for (const WeekCase& row : kJulyWeeks)
    EXPECT_EQ(
        orlfComponents(utcCalendar(), NSCalendarUnitWeekOfYear, day(row.date), 7, 1).weekOfYear(),
        row.week)
        << row.name;
}

TEST(OrlfComponents, OfAYearFromTheFirstOfJanuaryAreTheCalendars) {
  NSDate date = day("2023-01-01");
  for (int index = 0; index < 800; ++index) {
    const NSUInteger mask = NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay;
    EXPECT_EQ(orlfComponents(utcCalendar(), mask, date, 1, 1),
              utcCalendar().components(mask, date));
    date = *utcCalendar().dateByAddingUnit(NSCalendarUnitDay, 1, date, 0);
  }
}

struct RoundingCase {
  const char* name;
  NSCalendarUnit unit;
  const char* date;
  NSInteger yearStartMonth, monthStartDay;
  const char *down, *up;
};
const RoundingCase kRoundings[] = {
    {"Year", NSCalendarUnitYear, "2020-08-15", 7, 1, "2020-07-01", "2020-08-01"},
    {"YearBeforeItsStartMonth", NSCalendarUnitYear, "2020-03-15", 7, 1, "2019-07-01", "2019-08-01"},
    {"QuarterRoundsDownBothWays", NSCalendarUnitQuarter, "2020-08-15", 7, 1, "2020-07-01",
     "2020-07-01"},
    {"QuarterBeforeItsStartMonth", NSCalendarUnitQuarter, "2020-03-15", 7, 1, "2020-01-01",
     "2020-01-01"},
    {"YearOnALaterDay", NSCalendarUnitYear, "2020-08-15", 7, 15, "2020-07-15", "2020-08-15"},
    {"WeekRoundsPlainly", NSCalendarUnitWeekOfYear, "2020-08-05", 7, 10, "2020-08-02",
     "2020-08-09"},
    {"MonthTakesItsStartDayInTheDatesMonth", NSCalendarUnitMonth, "2020-08-05", 7, 10, "2020-08-10",
     "2020-09-10"},
    {"DayRoundsPlainly", NSCalendarUnitDay, "2020-08-05", 7, 10, "2020-08-05", "2020-08-05"},
};

TEST(OrlfDateByRoundingDateToFiscalUnit, MatchesTable) {
  for (const RoundingCase& row : kRoundings) {
    const auto down = orlfDateByRoundingDateDownToCalendarUnit(
        utcCalendar(), day(row.date), row.unit, row.yearStartMonth, row.monthStartDay);
    const auto up = orlfDateByRoundingDateUpToCalendarUnit(utcCalendar(), day(row.date), row.unit,
                                                           row.yearStartMonth, row.monthStartDay);
    EXPECT_EQ(text(down), row.down) << row.name;
    EXPECT_EQ(text(up), row.up) << row.name;
  }
}

TEST(OrlfDateByRoundingDateToFiscalUnit, NilGivesNil) {
  for (const NSCalendarUnit unit :
       {NSCalendarUnitYear, NSCalendarUnitQuarter, NSCalendarUnitMonth, NSCalendarUnitDay}) {
    EXPECT_FALSE(orlfDateByRoundingDateUpToCalendarUnit(utcCalendar(), std::nullopt, unit, 7, 1));
    EXPECT_FALSE(orlfDateByRoundingDateDownToCalendarUnit(utcCalendar(), std::nullopt, unit, 7, 1));
  }
}

// Years that begin with each of the twelve months.
TEST(OrlfDateByRoundingDateToFiscalUnit, TakesTheFirstDayOfTheYearAndTheQuarterOnEveryDayOfAYear) {
  const auto added = [](NSInteger months, NSDate date) {
    return *utcCalendar().dateByAddingUnit(NSCalendarUnitMonth, months, date, 0);
  };
  for (NSDate date = day("2023-01-01"); date != day("2024-03-01");
       date = date.dateByAddingTimeInterval(86400)) {
    const NSDateComponents fields =
        utcCalendar().components(NSCalendarUnitMonth | NSCalendarUnitDay, date);
    const NSDate month =
        *utcCalendar().dateByAddingUnit(NSCalendarUnitDay, 1 - fields.day(), date, 0);
    for (NSInteger start = 1; start <= 12; ++start) {
      const NSInteger monthsIn = (fields.month() - start + 12) % 12;
      const NSDate year = added(-monthsIn, month);
      EXPECT_EQ(orlfDateByRoundingDateDownToCalendarUnit(utcCalendar(), date, NSCalendarUnitYear,
                                                         start, 1),
                year);
      EXPECT_EQ(
          orlfDateByRoundingDateUpToCalendarUnit(utcCalendar(), date, NSCalendarUnitYear, start, 1),
          fields.day() == 1 ? year : added(1, year));
      EXPECT_EQ(orlfDateByRoundingDateDownToCalendarUnit(utcCalendar(), date, NSCalendarUnitQuarter,
                                                         start, 1),
                added(-(monthsIn % 3), month));
    }
  }
}

TEST(OrlfDateByRoundingDateToFiscalUnit, QuarterUpIsQuarterDownOnEveryDayOfAYear) {
  NSDate date = day("2023-01-01");
  for (int index = 0; index < 366; ++index) {
    for (const NSInteger start : {1, 4, 7, 10, 12})
      EXPECT_EQ(orlfDateByRoundingDateUpToCalendarUnit(utcCalendar(), date, NSCalendarUnitQuarter,
                                                       start, 1),
                orlfDateByRoundingDateDownToCalendarUnit(utcCalendar(), date, NSCalendarUnitQuarter,
                                                         start, 1));
    date = *utcCalendar().dateByAddingUnit(NSCalendarUnitDay, 1, date, 0);
  }
}

}  // namespace
}  // namespace ORLFoundation
