
#include "dates/rule_options.h"

#include <gtest/gtest.h>

#include "cli/failure.h"

namespace {

using namespace ORLFoundation;
using orlftool::RuleArguments;

std::string failureOf(const RuleArguments& arguments) {
  try {
    const auto rule = orlftool::readRule(arguments, "--rule");
    orlftool::checkNumbersOfText(*rule, "--rule");
    return "";
  } catch (const orlftool::UsageFailure& failure) {
    return failure.what();
  }
}

RuleArguments textOf(const char* rule) {
  RuleArguments arguments;
  arguments.rule = rule;
  return arguments;
}

TEST(ReadRule, TakesATextAsTheLibraryReadsIt) {
  const auto rule = orlftool::readRule(textOf("x RRULE:FREQ=WEEKLY;INTERVAL=2;BYDAY=MO"), "RULE");
  EXPECT_EQ(rule->frequency(), ORLFDateRecurrenceFrequencyWeekly);
  EXPECT_EQ(rule->interval(), 2);
  EXPECT_EQ(rule->anchorIndex(), 1);
  EXPECT_EQ(rule->daysOfTheWeek()->size(), 1U);
}

TEST(ReadRule, NamesTheOptionThatIsMissingOrNoRule) {
  EXPECT_EQ(failureOf({}), "--freq or --rule is required (--help tells more)");
  EXPECT_EQ(failureOf(textOf("weekly")),
            "--rule: expected an iCalendar rule such as RRULE:FREQ=MONTHLY;BYDAY=-1FR, got "
            "'weekly'");
}

TEST(ReadRule, DoesNotLookAtTheNumbersOfAText) {
  EXPECT_TRUE(orlftool::readRule(textOf("RRULE:BYMONTH=13;INTERVAL=-1"), "RULE"));
}

struct NumberCase {
  const char *text, *message;
};
const NumberCase kNumbers[] = {
    {"RRULE:FREQ=DAILY;INTERVAL=100000", ""},
    {"RRULE:FREQ=DAILY;INTERVAL=100001",
     "--rule: INTERVAL: expected a number from 1 to 100000, got 100001"},
    {"RRULE:FREQ=DAILY;INTERVAL=-1",
     "--rule: INTERVAL: expected a number from 1 to 100000, got -1"},
    {"RRULE:FREQ=DAILY;INTERVAL=99999999999999999999",
     "--rule: INTERVAL: expected a number from 1 to 100000, got 9223372036854775807"},
    {"RRULE:BYMONTH=1,12", ""},
    {"RRULE:BYMONTH=-1", "--rule: BYMONTH: expected a number from 1 to 12, got -1"},
    {"RRULE:BYMONTHDAY=31,-31", ""},
    {"RRULE:BYMONTHDAY=32", "--rule: BYMONTHDAY: expected a number from -31 to 31, got 32"},
    {"RRULE:BYYEARDAY=366,-366", ""},
    {"RRULE:BYYEARDAY=367", "--rule: BYYEARDAY: expected a number from -366 to 366, got 367"},
    {"RRULE:BYWEEKNO=53,-53", ""},
    {"RRULE:BYWEEKNO=54", "--rule: BYWEEKNO: expected a number from -53 to 53, got 54"},
    {"RRULE:BYDAY=MO,-366TU", ""},
    {"RRULE:BYDAY=367MO", "--rule: BYDAY: expected a number from -366 to 366, got 367"},
};

TEST(CheckNumbersOfText, TakesWhatTheOptionsTake) {
  for (const NumberCase& row : kNumbers) EXPECT_EQ(failureOf(textOf(row.text)), row.message);
}

}  // namespace
