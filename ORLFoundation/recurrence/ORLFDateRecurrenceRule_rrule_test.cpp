// Rules of other projects' tests: each is read or refused, none keeps the walk busy, and where all
// agree on the dates these come out. See tests/data/rrule.
#include <ORLFoundation/recurrence/ORLFDateRecurrence_testing.h>
#include <gtest/gtest.h>
#include <tests/support/Files.h>
#include <tests/support/VectorFile.h>

#include <sstream>

namespace ORLFoundation {
namespace {

using namespace orlftest;

std::vector<std::string> split(const std::string& text, char mark) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, mark);) parts.push_back(part);
  return parts;
}

std::vector<std::vector<std::string>> rowsOf(const std::string& name) {
  return orlftest::tabbedRows(orlftest::testDataFolder() / "rrule" / name);
}

/// "19970902T090000" or "19970902" on the calendar's clock.
NSDate dateFromText(const std::string& text, const NSCalendar& calendar) {
  const auto number = [&text](std::size_t at, std::size_t length) {
    return at < text.size() ? std::stoi(text.substr(at, length)) : 0;
  };
  return orlftest::at(calendar, number(0, 4), number(4, 2), number(6, 2), number(9, 2),
                      number(11, 2), number(13, 2));
}

std::string listText(const char* name, const Rule::Integers& values) {
  std::string text;
  if (!values) return text;
  for (const NSInteger value : *values)
    text += (text.empty() ? std::string(" ") + name + "=" : ",") + std::to_string(value);
  return text;
}

std::string daysText(const Rule& rule) {
  std::string text;
  if (!rule.daysOfTheWeek()) return text;
  for (const auto& day : *rule.daysOfTheWeek())
    text += (text.empty() ? " days=" : ",") + std::to_string(day->dayOfTheWeek()) + "/" +
            std::to_string(day->weekNumber());
  return text;
}

/// A rule as rules_read.tsv writes it.
std::string fieldsText(const Rule* rule) {
  if (rule == nullptr) return "nil";
  return std::to_string(rule->frequency()) + " " + std::to_string(rule->interval()) +
         daysText(*rule) + listText("bymonthday", rule->daysOfTheMonth()) +
         listText("bymonth", rule->monthsOfTheYear()) +
         listText("byweekno", rule->weeksOfTheYear()) +
         listText("byyearday", rule->daysOfTheYear());
}

TEST(RuleTextsOfOtherProjects, AreReadAsAnIndependentReaderReadsThem) {
  std::size_t rows = 0, rules = 0;
  for (const auto& row : rowsOf("rules_read.tsv")) {
    ASSERT_EQ(row.size(), 2U);
    const auto rule = Rule::dateRecurrenceRuleFromICalendarString(row[0]);
    EXPECT_EQ(fieldsText(rule.get()), row[1]) << row[0];
    ++rows;
    if (!rule) continue;
    ++rules;
    EXPECT_EQ(rule->anchorIndex(), 1) << row[0];
    EXPECT_FALSE(rule->absolute()) << row[0];
    EXPECT_FALSE(rule->setPositions()) << row[0];
  }
  EXPECT_EQ(rows, 364U);
  EXPECT_EQ(rules, 267U);
}

TEST(RuleTextsOfOtherProjects, HaveDatesInOrderOrEndByThemselves) {
  std::size_t walked = 0;
  for (const auto& row : rowsOf("rrule_dev.tsv")) {
    const auto rule = Rule::dateRecurrenceRuleFromICalendarString(row[0]);
    if (!rule) continue;
    ++walked;
    const auto calendar = orlftest::calendarIn(row[2].empty() ? "UTC" : row[2]);
    const NSDate start = dateFromText(row[1], *calendar);
    for (const bool backwards : {false, true}) {
      const auto dates =
          orlftest::firstDates(*rule, *calendar, start, 200, {.backwards = backwards});
      const NSComparisonResult order = backwards ? NSOrderedDescending : NSOrderedAscending;
      for (std::size_t i = 1; i < dates.size(); ++i)
        ASSERT_EQ(dates[i - 1].compare(dates[i]), order) << row[0];
    }
  }
  EXPECT_EQ(walked, 267U);
}

TEST(RuleTextsOfOtherProjects, GiveTheDatesOnWhichAllAgree) {
  std::size_t rows = 0;
  for (const auto& row : rowsOf("rrule_dev.tsv")) {
    ASSERT_EQ(row.size(), 8U);
    if (row[5] != "core" || !row[6].empty()) continue;
    ++rows;
    SCOPED_TRACE(row[0] + " from " + row[1]);
    const auto rule = Rule::dateRecurrenceRuleFromICalendarString(row[0]);
    ASSERT_TRUE(rule);
    const auto calendar = orlftest::calendarIn(row[2].empty() ? "UTC" : row[2]);
    std::vector<NSDate> expected;
    for (const std::string& date : split(row[3], ','))
      expected.push_back(dateFromText(date, *calendar));
    EXPECT_EQ(
        orlftest::firstDates(*rule, *calendar, dateFromText(row[1], *calendar), expected.size()),
        expected);
  }
  EXPECT_EQ(rows, 55U);
}

}  // namespace
}  // namespace ORLFoundation
