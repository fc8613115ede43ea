// Calendars beyond the Gregorian one: dates and years that are known.
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/time/NSDateComponents_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace ORLFoundation {
namespace {

using orlftest::calendarOf;
using orlftest::date;
using orlftest::vectorFromComponents;

constexpr NSUInteger kEraToDay =
    NSCalendarUnitEra | NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay;

struct KnownDate {
  std::string_view identifier;
  const char* date;
  const char* components;
};
constexpr KnownDate kKnownDates[] = {
    {NSCalendarIdentifierBuddhist, "2024-02-29", "era=0 year=2567 month=2 day=29"},
    {NSCalendarIdentifierChinese, "2024-02-10", "era=78 year=41 month=1 day=1"},
    {NSCalendarIdentifierCoptic, "2024-09-11", "era=1 year=1741 month=1 day=1"},
    {NSCalendarIdentifierHebrew, "2024-10-03", "era=0 year=5785 month=1 day=1"},
    {NSCalendarIdentifierIndian, "2024-03-21", "era=0 year=1946 month=1 day=1"},
    {NSCalendarIdentifierIslamicUmmAlQura, "2024-07-07", "era=0 year=1446 month=1 day=1"},
    {NSCalendarIdentifierJapanese, "2019-04-30", "era=235 year=31 month=4 day=30"},
    {NSCalendarIdentifierJapanese, "2019-05-01", "era=236 year=1 month=5 day=1"},
    {NSCalendarIdentifierPersian, "2024-03-20", "era=0 year=1403 month=1 day=1"},
    {NSCalendarIdentifierRepublicOfChina, "2024-12-31", "era=1 year=113 month=12 day=31"},
    {NSCalendarIdentifierRepublicOfChina, "1911-12-31", "era=0 year=1 month=12 day=31"},
    // Gregorian years before 1582 too, as the Gregorian calendar counts them.
    {NSCalendarIdentifierBuddhist, "1500-03-01", "era=0 year=2043 month=3 day=1"},
};

TEST(OtherCalendarsOf, ShowAndResolveKnownDates) {
  for (const KnownDate& row : kKnownDates) {
    const auto calendar = calendarOf(row.identifier, "UTC");
    const NSDate midnight = date(std::string(row.date) + "T00:00:00Z");
    EXPECT_EQ(vectorFromComponents(calendar->components(kEraToDay, midnight)), row.components);
    EXPECT_EQ(calendar->dateFromComponents(orlftest::componentsFromVector(row.components)),
              midnight)
        << row.identifier << ' ' << row.date;
  }
}

struct NamedYear {
  std::string_view identifier;
  NSInteger year;
  const char* date;  // the 3rd day of the 2nd month
};
// Farther from 2023 than one walk goes; no era is named.
constexpr NamedYear kNamedYears[] = {
    {NSCalendarIdentifierBuddhist, 2700, "2157-02-03"},
    {NSCalendarIdentifierBuddhist, 2400, "1857-02-03"},
    {NSCalendarIdentifierCoptic, 1900, "2183-10-15"},
    {NSCalendarIdentifierHebrew, 5990, "2229-10-21"},
    {NSCalendarIdentifierHebrew, 5600, "1839-10-11"},
    {NSCalendarIdentifierPersian, 1540, "2161-04-22"},
    {NSCalendarIdentifierJapanese, 120, "2138-02-03"},
    {NSCalendarIdentifierRepublicOfChina, 250, "2161-02-03"},
};

TEST(OtherCalendarsOf, SearchGoesToANamedYearInBothDirections) {
  constexpr NSUInteger kBackwards = NSCalendarMatchStrictly | NSCalendarSearchBackwards;
  const NSDate origin = date("2023-11-14T22:13:20Z");
  for (const NamedYear& row : kNamedYears) {
    const auto calendar = calendarOf(row.identifier, "UTC");
    const NSDate wanted = date(std::string(row.date) + "T00:00:00Z");
    NSDateComponents fields;
    fields.setYear(row.year);
    fields.setMonth(2);
    fields.setDay(3);
    const bool isBefore = wanted.compare(origin) == NSOrderedAscending;
    const NSUInteger toward = isBefore ? kBackwards : NSUInteger{NSCalendarMatchStrictly};
    const NSUInteger away = isBefore ? NSUInteger{NSCalendarMatchStrictly} : kBackwards;
    EXPECT_EQ(calendar->nextDateAfterDate(origin, fields, toward), wanted)
        << row.identifier << ' ' << row.year;
    EXPECT_EQ(calendar->nextDateAfterDate(origin, fields, away), std::nullopt)
        << row.identifier << ' ' << row.year;
  }
}

}  // namespace
}  // namespace ORLFoundation
