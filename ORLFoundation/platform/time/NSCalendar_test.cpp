#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/time/NSDateComponents_testing.h>
#include <ORLFoundation/platform/time/NSTimeZone_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>
#include <tests/support/EnvironmentVariable.h>

#include <cmath>
#include <limits>
#include <string>

namespace ORLFoundation {
namespace {

using orlftest::calendarIn;
using orlftest::componentsFromVector;
using orlftest::date;

TEST(NSCalendar, IsMadeForKnownIdentifiersOnly) {
  EXPECT_NE(NSCalendar::initWithCalendarIdentifier("gregorian"), nullptr);
  EXPECT_NE(NSCalendar::initWithCalendarIdentifier("iso8601"), nullptr);
  for (const char* identifier : {"", "julian", "martian", "Hebrew", "Gregorian"})
    EXPECT_EQ(NSCalendar::initWithCalendarIdentifier(identifier), nullptr) << identifier;
}

TEST(NSCalendar, BeginsWeeksOnSundayOrOnMondayForISO8601) {
  const auto gregorian = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  EXPECT_EQ(gregorian->firstWeekday(), 1);
  EXPECT_EQ(gregorian->minimumDaysInFirstWeek(), 1);
  const auto iso = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierISO8601);
  iso->setLocaleIdentifier("en_US");
  EXPECT_EQ(iso->firstWeekday(), 2);
  EXPECT_EQ(iso->minimumDaysInFirstWeek(), 4);
}

TEST(NSCalendar, TakesWeeksFromTheLocaleUnlessTheyWereSet) {
  const auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  calendar->setLocaleIdentifier("de_DE");
  EXPECT_EQ(calendar->firstWeekday(), 2);
  EXPECT_EQ(calendar->minimumDaysInFirstWeek(), 4);
  calendar->setFirstWeekday(7);
  calendar->setLocaleIdentifier("en_US");
  EXPECT_EQ(calendar->firstWeekday(), 7);
  EXPECT_EQ(calendar->minimumDaysInFirstWeek(), 1);
}

TEST(NSCalendar, IgnoresWeekdaysAndMinimumsThatDoNotExist) {
  const auto calendar = calendarIn("UTC", 3, 5);
  for (const NSInteger value : {NSIntegerMin, NSInteger{0}, NSInteger{8}, NSIntegerMax}) {
    calendar->setFirstWeekday(value);
    calendar->setMinimumDaysInFirstWeek(value);
  }
  EXPECT_EQ(calendar->firstWeekday(), 3);
  EXPECT_EQ(calendar->minimumDaysInFirstWeek(), 5);
}

TEST(NSCalendar, CopiesToACalendarOfItsOwn) {
  const auto calendar = calendarIn("Asia/Kathmandu", 2, 4);
  calendar->setLocaleIdentifier("ne_NP");
  const auto copy = copyOf(calendar);
  EXPECT_NE(copy, calendar);
  EXPECT_TRUE(copy->isEqual(calendar.get()));
  EXPECT_EQ(copy->hash(), calendar->hash());
  copy->setFirstWeekday(1);
  EXPECT_FALSE(copy->isEqual(calendar.get()));
  EXPECT_EQ(calendar->firstWeekday(), 2);
}

TEST(NSCalendar, IsInTheDefaultZoneWhenGivenNone) {
  const orlftest::DefaultZone zone("Asia/Tehran");
  const auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  EXPECT_EQ(calendar->timeZone()->name(), "Asia/Tehran");
  calendar->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
  calendar->setTimeZone(nullptr);
  EXPECT_EQ(calendar->timeZone()->name(), "Asia/Tehran");
}

TEST(NSCalendar, TakesTheWeekendOfTheLocalesRegion) {
  const struct {
    const char* locale;
    const char* weekend;  // by weekday from Sunday
  } rows[] = {{"", "X.....X"},      {"en_US", "X.....X"}, {"ar_EG", ".....XX"},
              {"fa_IR", ".....X."}, {"en_IN", "X......"}, {"xx_YY", "X.....X"}};
  for (const auto& row : rows) {
    const auto calendar = calendarIn("America/New_York");
    calendar->setLocaleIdentifier(row.locale);
    std::string weekend;
    for (int day = 0; day < 7; ++day) {
      const NSDate sunday = date("2024-03-10T16:00:00Z");
      weekend +=
          calendar->isDateInWeekend(sunday.dateByAddingTimeInterval(day * 86400)) ? 'X' : '.';
    }
    EXPECT_EQ(weekend, row.weekend) << row.locale;
  }
}

TEST(NSCalendar, HasAClearAnswerForDatesThatAreNotFiniteOrTooFar) {
  const auto calendar = calendarIn("America/New_York");
  const NSDate good = date("2024-01-01T00:00:00Z");
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const double seconds : {std::nan(""), kInfinity, -kInfinity, 1e300, -1e300, 1e18, 5e13}) {
    const NSDate bad = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
    EXPECT_EQ(calendar->components(0xffff, bad), NSDateComponents());
    EXPECT_EQ(calendar->component(NSCalendarUnitYear, bad), NSDateComponentUndefined);
    EXPECT_EQ(calendar->components(0xffff, bad, good, 0), NSDateComponents());
    EXPECT_EQ(calendar->components(0xffff, good, bad, 0), NSDateComponents());
    EXPECT_EQ(calendar->dateByAddingUnit(NSCalendarUnitDay, 1, bad, 0), std::nullopt);
    EXPECT_EQ(calendar->dateByAddingComponents(NSDateComponents(), bad, 0), std::nullopt);
    EXPECT_EQ(calendar->dateBySettingUnit(NSCalendarUnitDay, 1, bad, 1024), std::nullopt);
    EXPECT_FALSE(calendar->rangeOfUnit(NSCalendarUnitDay, nullptr, nullptr, bad));
    EXPECT_EQ(calendar->rangeOfUnit(NSCalendarUnitDay, NSCalendarUnitMonth, bad).length, 0);
    EXPECT_FALSE(calendar->date(bad, NSDateComponents()));
    EXPECT_EQ(calendar->nextDateAfterDate(bad, componentsFromVector("day=1"), 6), std::nullopt);
    EXPECT_FALSE(calendar->isDateInWeekend(bad));
  }
}

TEST(NSCalendar, AnswersAtTheEdgeOfTheSupportedRange) {
  const auto calendar = calendarIn("America/New_York");
  for (const double seconds : {-4.3198e13, 4.3198e13}) {
    const NSDate edge = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
    const NSDateComponents components = calendar->components(0xffff, edge);
    EXPECT_NE(components.year(), NSDateComponentUndefined);
    for (NSUInteger unit = 4; unit <= 32768; unit *= 2) {
      const auto single = static_cast<NSCalendarUnit>(unit);
      for (const NSInteger value : {-1, 1}) {
        static_cast<void>(calendar->dateByAddingUnit(single, value, edge, 0));
        static_cast<void>(calendar->dateByAddingUnit(single, value, edge, 1));
      }
      NSDate start;
      EXPECT_TRUE(calendar->rangeOfUnit(single, &start, nullptr, edge));
      EXPECT_LE(start.timeIntervalSinceReferenceDate(), seconds);
    }
    static_cast<void>(calendar->nextDateAfterDate(edge, componentsFromVector("day=1"), 6));
    static_cast<void>(calendar->nextDateAfterDate(edge, componentsFromVector("day=1"), 2));
  }
}

// The default zone is made ready for asking once it is set to nothing: an unreadable TZ would leave
// a line in the log.
TEST(NSCalendar, CopiesWithoutAskingTheSystemForItsZone) {
  const auto calendar = calendarIn("Asia/Tokyo");
  const orlftest::EnvironmentVariable variable("TZ", "Atlantis/Sunken");
  const LogCapture log;
  const auto copy = std::static_pointer_cast<NSCalendar>(calendar->copy());
  const auto lines = log.lines();
  const auto fresh = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  const auto linesAfterAsking = log.lines();
  EXPECT_EQ(lines, std::vector<std::string>());
  EXPECT_NE(linesAfterAsking, std::vector<std::string>());
  EXPECT_TRUE(copy->isEqual(calendar.get()));
  EXPECT_EQ(copy->timeZone(), calendar->timeZone());
}

}  // namespace
}  // namespace ORLFoundation
