#include "dates/dates_walk.h"

#include <ORLFoundation/platform/log/LogCapture.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "session.h"

namespace {

using namespace ORLFoundation;
using orlftool::DatesRequest;

DatesRequest requestOf(const std::string& rule) {
  orlftool::DatesArguments arguments;
  arguments.rule = rule;
  arguments.start = "2024-01-01";
  arguments.count = "2";
  return orlftool::readDatesRequest(arguments, orlftool::makeCalendar("UTC", "en_US"));
}

// Each has patterns that no date of some periods fits, which the walk logs.
TEST(DatesWalk, LogsNothingOfPatternsThatNoDateFits) {
  struct Row {
    const char* rule;
    std::size_t dates;
  };
  for (const Row& row : {Row{"RRULE:FREQ=YEARLY;BYWEEKNO=-1;BYDAY=MO", 0},
                         Row{"RRULE:FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=31;BYDAY=MO", 0},
                         Row{"RRULE:FREQ=YEARLY;BYWEEKNO=53;BYDAY=MO", 2}}) {
    const LogCapture log;
    std::vector<NSDate> dates;
    orlftool::walkDates(requestOf(row.rule), [&](NSDate date) { dates.push_back(date); });
    EXPECT_EQ(dates.size(), row.dates) << row.rule;
    EXPECT_EQ(log.lines(), std::vector<std::string>()) << row.rule;
  }
}

TEST(DatesWalk, LetsOtherLinesOfTheLogThrough) {
  const LogCapture log;
  orlftool::walkDates(requestOf("RRULE:FREQ=DAILY;COUNT=1"), [](NSDate) {
    NSLog("a note");
    NSLog("Condition Failed: x");
  });
  EXPECT_EQ(log.lines(), std::vector<std::string>{"a note"});
  NSLog("Condition Failed: y");
  EXPECT_EQ(log.lines().size(), 2U);
}

}  // namespace
