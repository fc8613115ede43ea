#include "dates/schedule_request.h"

#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <gtest/gtest.h>

#include "dates/dates_walk.h"
#include "values/date_text.h"

namespace {

using namespace ORLFoundation;
using orlftest::calendarIn;
using orlftool::ScheduleArguments;

std::vector<NSDate> datesOf(const ScheduleArguments& arguments) {
  std::vector<NSDate> dates;
  orlftool::walkDates(orlftool::readScheduleRequest(arguments, calendarIn("America/New_York")),
                      [&](NSDate date) { dates.push_back(date); });
  return dates;
}

ScheduleArguments pattern(const char* name) {
  ScheduleArguments arguments;
  arguments.pattern = name;
  return arguments;
}

TEST(ScheduleRequest, EveryScheduleThatIncludesADateBeginsWithIt) {
  const auto calendar = calendarIn("America/New_York");
  NSDate date = orlftool::readDate("2011-12-25", *calendar).value();
  for (int index = 0; index < 800; ++index) {
    date = *calendar->dateByAddingUnit(NSCalendarUnitDay, 1, date, 0);
    const std::string day = orlftool::shortDateText(date, *calendar);
    for (const char* name :
         {"weekly", "biweekly", "semimonthly", "monthly", "quarterly", "semiannual", "annual"}) {
      ScheduleArguments arguments = pattern(name);
      arguments.including = day;
      arguments.count = "1";
      if (arguments.pattern == "semimonthly") arguments.andDate = "2012-01-01";
      EXPECT_EQ(datesOf(arguments), std::vector<NSDate>{date}) << name << ' ' << day;
    }
  }
}

TEST(ScheduleRequest, BiweeklyDatesKeepTheirPhaseWhereverTheyBegin) {
  const auto calendar = calendarIn("America/New_York");
  ScheduleArguments arguments = pattern("biweekly");
  arguments.including = "2012-01-06";
  arguments.count = "1500";
  const std::vector<NSDate> all = datesOf(arguments);
  ASSERT_EQ(all.size(), 1500U);
  for (std::size_t i = 1; i < all.size(); ++i)
    EXPECT_EQ(calendar->components(NSCalendarUnitDay, all[i - 1], all[i], 0).day(), 14);
  arguments.count = "1";
  for (std::size_t i = 0; i < all.size(); i += 97) {
    arguments.start = orlftool::shortDateText(
        *calendar->dateByAddingUnit(NSCalendarUnitDay, -13, all[i], 0), *calendar);
    EXPECT_EQ(datesOf(arguments), std::vector<NSDate>{all[i]});
  }
}

TEST(ScheduleRequest, GivesTwelveDatesWhereNothingElseEndsThem) {
  ScheduleArguments arguments = pattern("quarterly");
  arguments.start = "2024-01-01";
  EXPECT_EQ(datesOf(arguments).size(), 12U);
  arguments.until = "2034-01-01";
  EXPECT_EQ(datesOf(arguments).size(), 40U);
}

}  // namespace
