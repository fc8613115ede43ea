#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>

namespace orlftest {
namespace {

using namespace ORLFoundation;

TEST(CalendarVectors, MakesACalendar) {
  const auto calendar = calendarFromVector(
      Json{{"zone", "Europe/Berlin"}, {"first_weekday", 2}, {"min_days", 4}, {"locale", "de_DE"}});
  EXPECT_EQ(calendar->timeZone()->name(), "Europe/Berlin");
  EXPECT_EQ(calendar->firstWeekday(), 2);
  EXPECT_EQ(calendar->minimumDaysInFirstWeek(), 4);
  EXPECT_EQ(calendar->localeIdentifier(), "de_DE");
}

TEST(CalendarVectors, RefusesACalendarWithAnUnknownKeyOrZone) {
  Json value{{"zone", "UTC"}, {"first_weekday", 1}, {"min_days", 1}};
  value["zone"] = "Nowhere/Here";
  EXPECT_THROW((void)calendarFromVector(value), std::runtime_error);
  value["zone"] = "UTC";
  value["first_weekdya"] = 1;
  EXPECT_THROW((void)calendarFromVector(value), std::runtime_error);
}

}  // namespace
}  // namespace orlftest
