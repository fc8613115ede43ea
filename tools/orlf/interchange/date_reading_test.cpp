#include "interchange/date_reading.h"

#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "cli/failure.h"
#include "values/date_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using orlftest::calendarIn;
using orlftest::utcCalendar;

std::string dayOf(DateReading& dates, std::string_view text) {
  const auto date = dates.read(text);
  return date ? shortDateText(*date, utcCalendar()) : "nil";
}

/// Notes and the fault, "|" between them.
std::string settled(DateReading& dates, const std::vector<std::string>& texts) {
  std::uint64_t line = 1;
  for (const std::string& text : texts) dates.add(text, line++);
  const DateReading::Finding finding = dates.settle();
  std::string words;
  for (const std::string& note : finding.notes) words += note + "|";
  return words + finding.fault;
}

TEST(DateReading, NamesTheRowThatDecided) {
  DateReading dates("auto", false, calendarIn("UTC"), "en_US");
  EXPECT_EQ(settled(dates, {"03/04/2021", "13/04/2021", "14/04/2021"}),
            "dates are read as dmy: line 2, '13/04/2021', decides|");
  EXPECT_EQ(dayOf(dates, "03/04/2021"), "2021-04-03");
  EXPECT_EQ(dayOf(dates, "31/04/2021"), "nil");
  EXPECT_EQ(dayOf(dates, "total"), "nil");
}

TEST(DateReading, RefusesWhereMoreThanOneOrderIsLeft) {
  DateReading dates("auto", false, calendarIn("UTC"), "en_US");
  EXPECT_EQ(settled(dates, {"03/04/2021", "05/04/2021"}),
            "dmy: 2021-04-03 to 2021-04-05, ascending|mdy: 2021-03-04 to 2021-05-04, ascending|"
            "the dates fit more than one order: --date-format dmy or mdy tells which");
  DateReading falling("auto", false, calendarIn("UTC"), "en_US");
  EXPECT_EQ(settled(falling, {"03/04/2021", "01/05/2021", "01/05/2021"}),
            "dmy: 2021-04-03 to 2021-05-01, ascending|mdy: 2021-01-05 to 2021-03-04, descending|"
            "the dates fit more than one order: --date-format dmy or mdy tells which");
}

TEST(DateReading, TakesOrdersThatReadAlikeForOne) {
  DateReading dates("auto", false, calendarIn("UTC"), "en_US");
  EXPECT_EQ(settled(dates, {"05/05/2021", "06/06/2021"}), "");
  EXPECT_EQ(dayOf(dates, "05/05/2021"), "2021-05-05");
}

TEST(DateReading, RefusesDatesThatContradictEachOther) {
  DateReading dates("auto", false, calendarIn("UTC"), "en_US");
  const std::string words = settled(dates, {"13/04/2021", "04/14/2021"});
  EXPECT_NE(words.find("no usual order"), std::string::npos) << words;
  EXPECT_NE(words.find("line 2, '04/14/2021'"), std::string::npos) << words;
}

TEST(DateReading, PassesOverWhatIsNoDateInAnyOrder) {
  DateReading dates("auto", false, calendarIn("UTC"), "en_US");
  EXPECT_EQ(settled(dates, {"2023-01-32", "Total", "40.40.40", "2023-01-31"}),
            "dates are read as ymd: line 4, '2023-01-31', decides|");
  DateReading none("auto", false, calendarIn("UTC"), "en_US");
  EXPECT_EQ(settled(none, {"Total"}), "");
  EXPECT_EQ(dayOf(none, "2023-01-31"), "nil");
}

TEST(DateReading, JudgesOtherOrdersOnlyWhereAsked) {
  DateReading usual("auto", false, calendarIn("UTC"), "en_US");
  EXPECT_NE(settled(usual, {"2021/13/04"}).find("no usual order"), std::string::npos);
  DateReading all("auto", true, calendarIn("UTC"), "en_US");
  EXPECT_EQ(settled(all, {"2021/13/04"}), "dates are read as ydm: line 1, '2021/13/04', decides|");
  EXPECT_EQ(dayOf(all, "2021/13/04"), "2021-04-13");
}

TEST(DateReading, TakesANamedOrderOrAPattern) {
  DateReading mdy("mdy", false, calendarIn("UTC"), "en_US");
  EXPECT_EQ(settled(mdy, {"03/04/2021"}), "");
  EXPECT_EQ(dayOf(mdy, "03/04/2021"), "2021-03-04");
  DateReading compact("yyyyMMdd", false, calendarIn("UTC"), "en_US");
  EXPECT_EQ(dayOf(compact, "20210304"), "2021-03-04");
  EXPECT_EQ(dayOf(compact, "20210230"), "nil");
  DateReading words("d MMM y", false, calendarIn("UTC"), "en_US");
  EXPECT_EQ(dayOf(words, "7 Nov 2013"), "2013-11-07");
  for (const char* format : {"", "d/m", "yy", "AUTO"})
    EXPECT_THROW(DateReading(format, false, calendarIn("UTC"), "en_US"), UsageFailure) << format;
}

/// Statements of 1 to 31 days from each day of two years, in each usual order and in both
/// directions: they are read right or refused.
TEST(DateReading, ReadsStatementsRightOrRefusesThem) {
  const auto calendar = calendarIn("UTC");
  const NSDate first = *readDate("2023-01-01", *calendar);
  const char* const formats[] = {"%3$02d/%2$02d/%1$04d", "%2$02d/%3$02d/%1$04d",
                                 "%1$04d-%2$02d-%3$02d", "%3$d.%2$d.%4$02d"};
  int right = 0;
  for (int start = 0; start < 730; start += 7) {
    for (int days = 1; days <= 31; days += 3) {
      for (const char* format : formats) {
        std::vector<std::string> texts;
        for (int day = start; day < start + days; ++day) {
          const NSDate date = *calendar->dateByAddingUnit(NSCalendarUnitDay, day, first, 0);
          const auto fields = calendar->components(
              NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay, date);
          std::array<char, 64> text{};
          std::snprintf(text.data(), text.size(), format, static_cast<int>(fields.year()),
                        static_cast<int>(fields.month()), static_cast<int>(fields.day()),
                        static_cast<int>(fields.year() % 100));
          texts.emplace_back(text.data());
        }
        DateReading dates("auto", false, calendar, "en_US");
        std::uint64_t line = 1;
        for (const std::string& text : texts) dates.add(text, line++);
        if (!dates.settle().fault.empty()) continue;
        ++right;
        for (int day = 0; day < days; ++day)
          ASSERT_EQ(dates.read(texts[static_cast<std::size_t>(day)]),
                    calendar->dateByAddingUnit(NSCalendarUnitDay, start + day, first, 0))
              << texts[static_cast<std::size_t>(day)];
      }
    }
  }
  EXPECT_GT(right, 2000);
}

}  // namespace
}  // namespace orlftool
