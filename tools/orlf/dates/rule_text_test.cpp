#include "dates/rule_text.h"

#include <gtest/gtest.h>

#include "cli/failure.h"

namespace {

using orlftool::readRuleText;
using orlftool::RuleText;

TEST(RuleText, TellsTheEndThatTheRuleHasNoPlaceFor) {
  const RuleText text = readRuleText("RRULE:FREQ=DAILY;COUNT=05;UNTIL=20241231T235959Z", "--rule");
  EXPECT_EQ(text.count, 5);
  EXPECT_EQ(text.until, "20241231T235959Z");
  EXPECT_TRUE(text.passedOver.empty());
  EXPECT_EQ(readRuleText("RRULE:FREQ=DAILY", "--rule").count, std::nullopt);
  EXPECT_EQ(readRuleText("RRULE:FREQ=DAILY", "--rule").until, std::nullopt);
}

TEST(RuleText, NamesEachKeyThatDatesDoNotHeedOnce) {
  const RuleText text = readRuleText(
      "DTSTART:20240101\r\nRRULE:FREQ=DAILY;WKST=MO;BYHOUR=9,10;WKST=SU;INTERVAL=2;freq=x", "RULE");
  EXPECT_EQ(text.passedOver,
            (std::vector<std::string>{"the text before RRULE:", "WKST", "BYHOUR", "freq"}));
  EXPECT_TRUE(readRuleText(" \nRRULE:FREQ=DAILY", "RULE").passedOver.empty());
}

TEST(RuleText, EndsWithItsLine) {
  EXPECT_EQ(orlftool::ruleLine("x RRULE:FREQ=DAILY\r\nEND:VEVENT\r\n"), "RRULE:FREQ=DAILY");
  EXPECT_EQ(orlftool::ruleLine("RRULE:FREQ=DAILY"), "RRULE:FREQ=DAILY");
  EXPECT_EQ(orlftool::ruleLine("FREQ=DAILY"), "");
}

struct NumberCase {
  const char *text, *message;
};
const NumberCase kNumbers[] = {
    {"RRULE:FREQ=DAILY;INTERVAL=100000", ""},
    {"RRULE:FREQ=DAILY;INTERVAL=100001",
     "--rule: INTERVAL: expected a whole number from 1 to 100000, got '100001'"},
    {"RRULE:FREQ=DAILY;INTERVAL=-1",
     "--rule: INTERVAL: expected a whole number from 1 to 100000, got '-1'"},
    {"RRULE:FREQ=DAILY;INTERVAL=99999999999999999999",
     "--rule: INTERVAL: expected a whole number from 1 to 100000, got '99999999999999999999'"},
    {"RRULE:FREQ=DAILY;INTERVAL=2x",
     "--rule: INTERVAL: expected a whole number from 1 to 100000, got '2x'"},
    {"RRULE:BYMONTH=1,12", ""},
    {"RRULE:BYMONTH=-1", "--rule: BYMONTH: expected a whole number from 1 to 12, got '-1'"},
    {"RRULE:BYMONTHDAY=31,-31", ""},
    {"RRULE:BYMONTHDAY=32", "--rule: BYMONTHDAY: expected a whole number from -31 to 31, got '32'"},
    {"RRULE:BYYEARDAY=366,-366", ""},
    {"RRULE:BYYEARDAY=367",
     "--rule: BYYEARDAY: expected a whole number from -366 to 366, got '367'"},
    {"RRULE:BYWEEKNO=53,-53", ""},
    {"RRULE:BYWEEKNO=54", "--rule: BYWEEKNO: expected a whole number from -53 to 53, got '54'"},
    {"RRULE:BYDAY=MO,-366TU", ""},
    {"RRULE:BYDAY=367MO", "--rule: BYDAY: expected a whole number from -366 to 366, got '367'"},
    {"RRULE:COUNT=0", "--rule: COUNT: expected a whole number from 1 to 1000000, got '0'"},
};

TEST(RuleText, TakesTheNumbersThatTheOptionsTake) {
  for (const NumberCase& row : kNumbers) {
    std::string message;
    try {
      (void)readRuleText(row.text, "--rule");
    } catch (const orlftool::UsageFailure& failure) {
      message = failure.what();
    }
    EXPECT_EQ(message, row.message);
  }
}

}  // namespace
