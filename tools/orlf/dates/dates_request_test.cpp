#include "dates/dates_request.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/failure.h"
#include "session.h"

namespace {

using namespace ORLFoundation;
using orlftool::DatesArguments;
using orlftool::readWeekday;

DatesArguments monthly() {
  DatesArguments arguments;
  arguments.frequency = "monthly";
  arguments.start = "2024-01-31T09:30:00";
  return arguments;
}

orlftool::DatesRequest read(const DatesArguments& arguments) {
  return orlftool::readDatesRequest(arguments, orlftool::makeCalendar("UTC", "en_US"));
}

TEST(ReadWeekday, TakesADayAndItsPlace) {
  struct Row {
    const char* text;
    NSInteger day, place;
  };
  for (const Row& row :
       {Row{"SU", 1, 0}, Row{"mo", 2, 0}, Row{"2TU", 3, 2}, Row{"+2WE", 4, 2}, Row{"-1FR", 6, -1},
        Row{"5sa", 7, 5}, Row{"day", -1, 0}, Row{"-1day", -1, -1}, Row{"1weekday", -2, 1},
        Row{"-1Weekend", -3, -1}, Row{"th", 5, 0}}) {
    const auto weekday = readWeekday(row.text);
    ASSERT_TRUE(weekday) << row.text;
    EXPECT_EQ(weekday->dayOfTheWeek(), row.day) << row.text;
    EXPECT_EQ(weekday->weekNumber(), row.place) << row.text;
  }
}

TEST(ReadWeekday, RefusesOtherText) {
  for (const char* text :
       {"", "XX", "0MO", "2", "-", "MO2", "2 MO", "monday", "367day", "--1MO",
        "99999999999999999999MO", "+-1MO", "-9223372036854775808MO", "0x2MO", "1-MO"})
    EXPECT_FALSE(readWeekday(text)) << text;
}

TEST(DatesRequest, BuildsTheRuleOfItsOptions) {
  DatesArguments arguments = monthly();
  arguments.interval = "3";
  arguments.anchor = "-2";
  arguments.absolute = true;
  arguments.weekdays = {"-1FR"};
  arguments.monthDays = {"15", "-1"};
  arguments.months = {"3"};
  arguments.yearDays = {"200"};
  arguments.weeks = {"7"};
  arguments.setPositions = {"-1"};
  arguments.older = true;
  const auto rule = read(arguments).rule;
  EXPECT_EQ(rule->frequency(), ORLFDateRecurrenceFrequencyMonthly);
  EXPECT_EQ(rule->interval(), 3);
  EXPECT_EQ(rule->anchorIndex(), 2);
  EXPECT_TRUE(rule->absolute());
  EXPECT_EQ(rule->daysOfTheWeek()->size(), 1U);
  EXPECT_EQ(rule->daysOfTheMonth(), (std::vector<NSInteger>{15, -1}));
  EXPECT_EQ(rule->monthsOfTheYear(), std::vector<NSInteger>{3});
  EXPECT_EQ(rule->daysOfTheYear(), std::vector<NSInteger>{200});
  EXPECT_EQ(rule->weeksOfTheYear(), std::vector<NSInteger>{7});
  EXPECT_EQ(rule->setPositions(), std::vector<NSInteger>{-1});
}

TEST(DatesRequest, WithoutListsTheRuleIsSimple) {
  EXPECT_TRUE(read(monthly()).rule->isSimpleRecurrence());
}

TEST(DatesRequest, CountsTwentyWhereNothingElseEndsTheWalk) {
  EXPECT_EQ(read(monthly()).count, 20);
  DatesArguments until = monthly();
  until.until = "2025-01-01";
  EXPECT_FALSE(read(until).count);
  until.count = "5";
  EXPECT_EQ(read(until).count, 5);
  DatesArguments range = monthly();
  range.from = range.to = "2025-01-01";
  EXPECT_FALSE(read(range).count);
}

struct FaultRow {
  const char* name;
  void (*change)(DatesArguments&);
  const char* failure;
};

const FaultRow kFaults[] = {
    {"UnknownFrequency", [](DatesArguments& a) { a.frequency = "hourly"; },
     "--freq: expected daily, weekly, monthly, quarterly or yearly, got 'hourly'"},
    {"IntervalZero", [](DatesArguments& a) { a.interval = "0"; },
     "--interval: expected a whole number from 1 to 100000, got '0'"},
    {"IntervalNegative", [](DatesArguments& a) { a.interval = "-2"; },
     "--interval: expected a whole number from 1 to 100000, got '-2'"},
    {"UnknownWeekday",
     [](DatesArguments& a) {
       a.weekdays = {"MO", "XX"};
     },
     "--by-weekday: expected a weekday such as MO, 2TU, -1FR, day, weekday or weekend, got 'XX'"},
    {"MonthOutOfRange", [](DatesArguments& a) { a.months = {"13"}; },
     "--by-month: expected a whole number from 1 to 12, got '13'"},
    {"MonthDayOutOfRange", [](DatesArguments& a) { a.monthDays = {"32"}; },
     "--by-monthday: expected a whole number from -31 to 31, got '32'"},
    {"MonthDayZero", [](DatesArguments& a) { a.monthDays = {"0"}; },
     "--by-monthday: expected no 0"},
    {"YearDayOutOfRange", [](DatesArguments& a) { a.yearDays = {"-367"}; },
     "--by-yearday: expected a whole number from -366 to 366, got '-367'"},
    {"WeekOutOfRange", [](DatesArguments& a) { a.weeks = {"54"}; },
     "--by-week: expected a whole number from -53 to 53, got '54'"},
    {"PositionZero",
     [](DatesArguments& a) {
       a.setPositions = {"0"};
       a.older = true;
     },
     "--set-pos: expected no 0"},
    {"PositionsOfTheMainWalk", [](DatesArguments& a) { a.setPositions = {"1"}; },
     "--set-pos needs --older"},
    {"AnchorOfTheMainWalk", [](DatesArguments& a) { a.anchor = "0"; }, "--anchor needs --older"},
    {"AbsoluteMainWalk", [](DatesArguments& a) { a.absolute = true; }, "--absolute needs --older"},
    {"CountZero", [](DatesArguments& a) { a.count = "0"; },
     "--count: expected a whole number from 1 to 1000000, got '0'"},
    {"FromWithoutTo", [](DatesArguments& a) { a.from = "2024-01-01"; },
     "--from and --to are given together or not at all"},
    {"ToWithoutFrom", [](DatesArguments& a) { a.to = "2024-01-01"; },
     "--from and --to are given together or not at all"},
    {"RangeBackwards",
     [](DatesArguments& a) {
       a.from = a.to = "2024-01-01";
       a.backwards = true;
     },
     "--from does not go together with --backwards"},
    {"RangeUntil", [](DatesArguments& a) { a.from = a.to = a.until = "2024-01-01"; },
     "--from does not go together with --until"},
    {"OlderExact", [](DatesArguments& a) { a.older = a.exact = true; },
     "--older does not go together with --exact"},
    {"InclusiveOfNothing", [](DatesArguments& a) { a.inclusive = true; },
     "--inclusive needs --to or --until"},
    {"NoSuchStart", [](DatesArguments& a) { a.start = "2024-02-30"; },
     "--start: expected an ISO 8601 date or date-time such as 2024-01-31 or "
     "2024-01-31T09:30:00-05:00, got '2024-02-30'"},
};

class DatesRequestFaults : public testing::TestWithParam<FaultRow> {};

TEST_P(DatesRequestFaults, AreWrongUsage) {
  DatesArguments arguments = monthly();
  GetParam().change(arguments);
  try {
    (void)read(arguments);
    FAIL() << "no failure";
  } catch (const orlftool::UsageFailure& failure) {
    EXPECT_STREQ(failure.what(), GetParam().failure);
  }
}

INSTANTIATE_TEST_SUITE_P(Rows, DatesRequestFaults, testing::ValuesIn(kFaults),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
