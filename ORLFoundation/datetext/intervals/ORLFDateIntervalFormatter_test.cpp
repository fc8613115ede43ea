#include <ORLFoundation/datetext/intervals/ORLFDateIntervalFormatter.h>

#include <ORLFoundation/platform/archive/NSKeyedArchiver_testing.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/format/NSDateIntervalFormatter_testing.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/time/NSTimeZone_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::calendarIn;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

NSDate dateOf(const std::string& text) {
  return *orlftest::dateFromVector(text.size() == 10 ? text + "T00:00:00Z" : text);
}

/// A compact formatter of dates in en_US and UTC, in a process of that locale and zone.
class Spans : public testing::Test {
 protected:
  Spans() {
    formatter_->setDateStyle(NSDateIntervalFormatterShortStyle);
    formatter_->setUseCompactFormat(true);
  }

  [[nodiscard]] std::string text(const std::string& from, const std::string& to) const {
    return orlftest::withPlainBlanks(
        formatter_->stringFromDate(dateOf(from), dateOf(to)).value_or("nil"));
  }
  void setStyles(NSUInteger date, NSUInteger time) {
    formatter_->setDateStyle(static_cast<NSDateIntervalFormatterStyle>(date));
    formatter_->setTimeStyle(static_cast<NSDateIntervalFormatterStyle>(time));
  }

  const Replaced<std::shared_ptr<NSLocale>> locale_{NSLocale::setCurrentLocale,
                                                    std::make_shared<NSLocale>("en_US")};
  const orlftest::DefaultZone zone_{"UTC"};
  const std::shared_ptr<ORLFDateIntervalFormatter> formatter_ =
      std::make_shared<ORLFDateIntervalFormatter>();
};

struct CompactCase {
  std::string_view name;
  std::string from, to;
  bool includesEnd;
  std::string_view text;
};
const CompactCase kCompactCases[] = {
    {"OneYear", "2024-01-01", "2025-01-01", false, "2024"},
    {"OneYearWithItsEnd", "2024-01-01", "2025-01-01", true, "2025"},
    {"SeveralYears", "2022-01-01", "2025-01-01", false, "2022 - 2024"},
    {"TwoYears", "2022-01-01", "2024-01-01", false, "2022 - 2023"},
    {"SeveralYearsWithTheirEnd", "2022-01-01", "2025-01-01", true, "2022 - 2025"},
    {"OneMonth", "2024-03-01", "2024-04-01", false, "MAR 2024"},
    {"OneMonthWithItsEnd", "2024-03-01", "2024-04-01", true, "APR 2024"},
    {"OneMonthToANewYear", "2024-12-01", "2025-01-01", false, "DEC 2024"},
    {"SeveralMonths", "2024-03-01", "2024-06-01", false, "MAR 2024 - MAY 2024"},
    {"TwoMonths", "2024-03-01", "2024-05-01", false, "MAR 2024 - APR 2024"},
    {"MonthsOfTwoYears", "2024-11-01", "2025-03-01", false, "NOV 2024 - FEB 2025"},
    {"ElevenMonths", "2024-01-01", "2024-12-01", false, "JAN 2024 - NOV 2024"},
    {"AYearFromFebruary", "2024-02-01", "2025-02-01", false, "2/1/2024 – 1/31/2025"},
    {"TwoYearsFromFebruary", "2024-02-01", "2026-02-01", false, "2/1/2024 – 1/31/2026"},
    {"AYearAndAMonth", "2024-01-01", "2025-02-01", false, "1/1/2024 – 1/31/2025"},
    {"AYearAndADay", "2024-01-01", "2025-01-02", false, "1/1/2024 – 1/1/2025"},
    {"AYearFromTheSecond", "2024-01-02", "2025-01-02", false, "1/2/2024 – 1/1/2025"},
    {"AMonthFromTheSecond", "2024-03-02", "2024-04-02", false, "3/2/2024 – 4/1/2024"},
    {"AMonthAndADay", "2024-03-01", "2024-04-02", false, "3/1/2024 – 4/1/2024"},
    {"NoTime", "2024-01-01", "2024-01-01", true, "1/1/24"},
    {"Backwards", "2025-01-01", "2024-01-01", true, "1/1/2025 – 1/1/2024"},
    {"AMonthBackwards", "2024-04-01", "2024-03-01", true, "4/1/2024 – 3/1/2024"},
    {"HoursAreNotLookedAt", "2024-03-01T05:00:00Z", "2024-04-01T06:00:00Z", true, "APR 2024"},
};

TEST_F(Spans, WholeYearsAndMonthsAreCompact) {
  for (const CompactCase& row : kCompactCases) {
    formatter_->setIncludeEndDateInRange(row.includesEnd);
    EXPECT_EQ(text(row.from, row.to), row.text) << row.name;
  }
}

TEST_F(Spans, OthersAreToldByTheBaseClass) {
  formatter_->setUseCompactFormat(false);
  EXPECT_EQ(text("2024-01-01", "2025-01-01"), "1/1/2024 – 12/31/2024");
  formatter_->setIncludeEndDateInRange(true);
  EXPECT_EQ(text("2024-01-01", "2025-01-01"), "1/1/2024 – 1/1/2025");
}

struct BackCase {
  NSUInteger dateStyle, timeStyle;
  std::string_view text;
};
const BackCase kBackCases[] = {
    {1, 0, "3/5/2024 – 3/6/2024"},
    {4, 0, "Tuesday, March 5 – Wednesday, March 6, 2024"},
    {0, 1, "3/5/2024, 8:00 AM – 3/7/2024, 8:59 AM"},
    {2, 2, "Mar 5, 2024, 8:00:00 AM – Mar 7, 2024, 8:59:00 AM"},
    {2, 3, "Mar 5, 2024, 8:00:00 AM UTC – Mar 7, 2024, 8:59:59 AM UTC"},
    {0, 4,
     "3/5/2024, 8:00:00 AM Coordinated Universal Time – 3/7/2024, 8:59:59 AM Coordinated Universal "
     "Time"},
    // A style of no name counts seconds, and is told as none.
    {1, 9, "3/5/2024 – 3/7/2024"},
};

TEST_F(Spans, TheEndMovesBackByTheUnitOfTheStyle) {
  for (const BackCase& row : kBackCases) {
    setStyles(row.dateStyle, row.timeStyle);
    EXPECT_EQ(text("2024-03-05T08:00:00Z", "2024-03-07T09:00:00Z"), row.text)
        << row.dateStyle << ' ' << row.timeStyle;
  }
}

TEST_F(Spans, WithoutStylesTheEndStaysAndTheLogSaysSo) {
  const std::string kMessage =
      "dateStyle of timeStyle can not both be NSDateIntervalFormatterNoStyle";
  setStyles(0, 0);
  {
    LogCapture log;
    EXPECT_EQ(text("2024-03-01", "2024-04-01"), "APR 2024");
    EXPECT_THAT(log.lines(), ElementsAre(testing::AllOf(testing::StartsWith("Condition Failed: "),
                                                        testing::EndsWith(" " + kMessage))));
  }
  {
    LogCapture log;
    EXPECT_EQ(text("2024-03-01", "2024-04-02"), "");
    EXPECT_EQ(formatter_->stringFromDate(std::nullopt, std::nullopt), std::nullopt);
    EXPECT_EQ(log.lines().size(), 2U);
  }
  LogCapture log;
  formatter_->setIncludeEndDateInRange(true);
  EXPECT_EQ(text("2024-03-01", "2024-04-01"), "APR 2024");
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Spans, NilIsToldByTheBaseClass) {
  const NSDate date = dateOf("2024-03-01");
  for (const bool includesEnd : {false, true}) {
    formatter_->setIncludeEndDateInRange(includesEnd);
    EXPECT_EQ(formatter_->stringFromDate(date, std::nullopt), std::nullopt);
    EXPECT_EQ(formatter_->stringFromDate(std::nullopt, date), std::nullopt);
    EXPECT_EQ(formatter_->stringFromDate(std::nullopt, std::nullopt), std::nullopt);
  }
  formatter_->setCalendar(nullptr);
  EXPECT_EQ(text("2024-03-01", "2024-04-01"), "3/1/2024 – 4/1/2024");
  formatter_->setIncludeEndDateInRange(false);
  EXPECT_EQ(text("2024-03-01", "2024-04-01"), "nil");
}

TEST_F(Spans, DatesThatNoCalendarPlacesGiveNil) {
  const NSDate date = dateOf("2024-03-01");
  for (const double wild : {std::numeric_limits<double>::quiet_NaN(),
                            std::numeric_limits<double>::infinity(), -1e300}) {
    const NSDate far = NSDate::dateWithTimeIntervalSince1970(wild);
    EXPECT_EQ(formatter_->stringFromDate(date, far), std::nullopt) << wild;
    EXPECT_EQ(formatter_->stringFromDate(far, date), std::nullopt) << wild;
  }
}

TEST_F(Spans, AreWholeInTheCalendarOfTheFormatter) {
  formatter_->setCalendar(calendarIn("America/New_York"));
  formatter_->setTimeZone(NSTimeZone::timeZoneWithName("America/New_York"));
  // Over the clock change in March; the year is that of the shared formatter's zone.
  EXPECT_EQ(text("2024-03-01T05:00:00Z", "2024-04-01T04:00:00Z"), "MAR 2024");
  EXPECT_EQ(text("2024-11-01T04:00:00Z", "2024-12-01T05:00:00Z"), "NOV 2024");
  EXPECT_EQ(text("2024-03-01", "2024-04-01"), "2/29/2024 – 3/30/2024");
  EXPECT_EQ(text("2024-01-01T05:00:00Z", "2025-01-01T05:00:00Z"), "2024");
  formatter_->setCalendar(calendarIn("Asia/Tokyo"));
  EXPECT_EQ(text("2023-12-31T15:00:00Z", "2024-12-31T15:00:00Z"), "2024");
  EXPECT_EQ(text("2021-12-31T15:00:00Z", "2024-12-31T15:00:00Z"), "2021 - 2024");
}

TEST_F(Spans, TheShortFormsHaveTheLocaleOfTheProcess) {
  formatter_->setLocale(std::make_shared<NSLocale>("de_DE"));
  EXPECT_EQ(text("2024-05-01", "2024-06-01"), "MAY 2024");
  EXPECT_EQ(text("2024-05-02", "2024-06-01"), "02.–31.05.2024");
}

TEST_F(Spans, MonthsWithoutANameAreToldByTheBaseClass) {
  const auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierCoptic);
  calendar->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
  NSDateComponents components;
  components.setYear(1740);
  components.setMonth(13);
  components.setDay(1);
  const NSDate start = *calendar->dateFromComponents(components);
  const auto end = calendar->dateByAddingUnit(NSCalendarUnitMonth, 1, start, 0);
  formatter_->setCalendar(calendar);
  const auto told = formatter_->stringFromDate(start, end);
  ASSERT_TRUE(told);
  EXPECT_THAT(*told, HasSubstr("1740"));
}

/// The five cases word for word.
std::string wayByTheLetter(const NSDateComponents& span, const NSDateComponents& first) {
  if (span.year() == 1 && span.month() == 0 && span.day() == 0 && first.month() == 1 &&
      first.day() == 1)
    return "year";
  if (span.year() >= 2 && span.month() == 0 && span.day() == 0 && first.month() == 1 &&
      first.day() == 1)
    return "years";
  if (span.year() == 0 && span.month() == 1 && span.day() == 0 && first.day() == 1) return "month";
  if (span.year() == 0 && span.month() >= 2 && span.day() == 0 && first.day() == 1) return "months";
  return "base";
}

std::string textByTheLetter(NSDate start, NSDate end, const NSDateIntervalFormatter& base) {
  constexpr NSUInteger kDayUnits = NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay;
  constexpr std::array<const char*, 12> kMonths{"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                                "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};
  const auto calendar = calendarIn("UTC");
  const NSDate shown = *calendar->dateByAddingUnit(NSCalendarUnitDay, -1, end, 0);
  const auto year = [&](NSDate date) {
    return std::to_string(calendar->component(NSCalendarUnitYear, date));
  };
  const auto month = [&](NSDate date) {
    const auto place = static_cast<std::size_t>(calendar->component(NSCalendarUnitMonth, date));
    return kMonths.at(place - 1) + (" " + year(date));
  };
  const std::string way = wayByTheLetter(calendar->components(kDayUnits, start, end, 0),
                                         calendar->components(kDayUnits, start));
  if (way == "year") return year(shown);
  if (way == "years") return year(start) + " - " + year(shown);
  if (way == "month") return month(shown);
  if (way == "months") return month(start) + " - " + month(shown);
  return base.stringFromDate(start, shown).value_or("nil");
}

TEST_F(Spans, AreToldByTheLetter) {
  NSDateIntervalFormatter base;
  base.setDateStyle(NSDateIntervalFormatterShortStyle);
  const auto calendar = calendarIn("UTC");
  std::mt19937 random(54);
  const auto day = [&] {
    NSDateComponents components;
    components.setYear(2020 + static_cast<NSInteger>(random() % 4));
    components.setMonth(1 + static_cast<NSInteger>(random() % 3 == 0 ? 0 : random() % 12));
    components.setDay(1 + static_cast<NSInteger>(random() % 3 == 0 ? random() % 28 : 0));
    return *calendar->dateFromComponents(components);
  };
  for (int round = 0; round < 3000; ++round) {
    const NSDate start = day(), end = day();
    ASSERT_EQ(formatter_->stringFromDate(start, end), textByTheLetter(start, end, base))
        << orlftest::vectorFromDate(start) << ' ' << orlftest::vectorFromDate(end);
  }
}

TEST_F(Spans, CopiesAndArchivesHoldTheSettings) {
  formatter_->setIncludeEndDateInRange(true);
  const auto copy = copyOf(formatter_);
  EXPECT_EQ(copy->className(), "ORLFDateIntervalFormatter");
  EXPECT_TRUE(copy->useCompactFormat());
  EXPECT_TRUE(copy->includeEndDateInRange());
  EXPECT_EQ(copy->dateStyle(), NSDateIntervalFormatterShortStyle);
  copy->setIncludeEndDateInRange(false);
  EXPECT_TRUE(formatter_->includeEndDateInRange());
  const auto read = orlftest::archivedAndRead<ORLFDateIntervalFormatter>(copy);
  ASSERT_TRUE(read);
  EXPECT_TRUE(read->useCompactFormat());
  EXPECT_FALSE(read->includeEndDateInRange());
  EXPECT_EQ(read->stringFromDate(dateOf("2024-03-01"), dateOf("2024-04-01")), "MAR 2024");
}

TEST_F(Spans, SettingsAreKeys) {
  const ORLFDateIntervalFormatter fresh;
  EXPECT_FALSE(fresh.useCompactFormat());
  EXPECT_FALSE(fresh.includeEndDateInRange());
  for (const char* key : {"useCompactFormat", "includeEndDateInRange"}) {
    formatter_->setValueForKey(true, key);
    EXPECT_EQ(formatter_->valueForKey(key), id(true));
  }
  EXPECT_TRUE(formatter_->includeEndDateInRange());
}

TEST_F(Spans, EightThreadsShareTheFormattersOfTheShortForms) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 8; ++thread)
    threads.emplace_back([this] {
      ORLFDateIntervalFormatter own;
      own.setDateStyle(NSDateIntervalFormatterShortStyle);
      own.setUseCompactFormat(true);
      for (int round = 0; round < 200; ++round) {
        EXPECT_EQ(own.stringFromDate(dateOf("2024-03-01"), dateOf("2024-06-01")),
                  "MAR 2024 - MAY 2024");
        EXPECT_EQ(text("2022-01-01", "2025-01-01"), "2022 - 2024");
      }
    });
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace ORLFoundation
