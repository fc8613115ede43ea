#include "dates/rule_options.h"

#include <gtest/gtest.h>

#include "cli/failure.h"

namespace {

using namespace ORLFoundation;
using orlftool::RuleArguments;

std::string failureOf(const RuleArguments& arguments) {
  try {
    (void)orlftool::readRule(arguments, "--rule");
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

}  // namespace
