// Calendars beyond the Gregorian one: ICU's own answers on every so many days, and the laws that
// hold in all of them.
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/time/NSDateComponents_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>
#include <unicode/gregocal.h>
#include <unicode/simpletz.h>

#include <limits>
#include <string>

namespace ORLFoundation {
namespace {

using orlftest::calendarOf;
using orlftest::date;
using orlftest::vectorFromComponents;
using orlftest::vectorFromDate;

constexpr NSUInteger kDate =
    NSCalendarUnitEra | NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay;
constexpr NSUInteger kTime = NSCalendarUnitHour | NSCalendarUnitMinute | NSCalendarUnitSecond;

constexpr std::string_view kIdentifiers[] = {
    NSCalendarIdentifierBuddhist, NSCalendarIdentifierChinese, NSCalendarIdentifierCoptic,
    NSCalendarIdentifierHebrew,   NSCalendarIdentifierIndian,  NSCalendarIdentifierIslamicUmmAlQura,
    NSCalendarIdentifierJapanese, NSCalendarIdentifierPersian, NSCalendarIdentifierRepublicOfChina};

class OtherCalendars : public testing::TestWithParam<std::string_view> {
 protected:
  // ICU's own calendar of the kind, in GMT, standing at the local time of the date.
  [[nodiscard]] std::unique_ptr<icu::Calendar> peerAt(const NSCalendar& calendar,
                                                      NSDate shown) const {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Locale locale(("en_US@calendar=" + std::string(GetParam())).c_str());
    std::unique_ptr<icu::Calendar> peer(
        icu::Calendar::createInstance(new icu::SimpleTimeZone(0, u"GMT"), locale, status));
    if (auto* gregorian = dynamic_cast<icu::GregorianCalendar*>(peer.get()))
      gregorian->setGregorianChange(-std::numeric_limits<double>::max(), status);
    peer->setFirstDayOfWeek(static_cast<UCalendarDaysOfWeek>(calendar.firstWeekday()));
    peer->setMinimalDaysInFirstWeek(static_cast<std::uint8_t>(calendar.minimumDaysInFirstWeek()));
    const auto offset = static_cast<double>(calendar.timeZone()->secondsFromGMTForDate(shown));
    peer->setTime((shown.timeIntervalSince1970() + offset) * 1000, status);
    EXPECT_TRUE(U_SUCCESS(status));
    return peer;
  }
  static NSInteger get(const icu::Calendar& peer, UCalendarDateFields field) {
    UErrorCode status = U_ZERO_ERROR;
    const NSInteger value = peer.get(field, status);
    EXPECT_TRUE(U_SUCCESS(status));
    return value;
  }
  static bool isLeapMonth(const icu::Calendar& peer) { return get(peer, UCAL_IS_LEAP_MONTH) != 0; }
  // The date whose local time is the peer's; the peer's time is one that the zone shows once.
  static NSDate dateOfPeer(const NSCalendar& calendar, const icu::Calendar& peer) {
    UErrorCode status = U_ZERO_ERROR;
    const double local = peer.getTime(status) / 1000;
    const NSDate near = NSDate::dateWithTimeIntervalSince1970(local);
    const auto zone = calendar.timeZone();
    const auto guess =
        near.dateByAddingTimeInterval(-static_cast<double>(zone->secondsFromGMTForDate(near)));
    return near.dateByAddingTimeInterval(-static_cast<double>(zone->secondsFromGMTForDate(guess)));
  }
  // At 23:30 and 13:05 GMT, on some days of the years 1850 to 2150. ICU is slow in the calendars
  // that follow the moon as it is seen.
  static std::vector<NSDate> dates(int step) {
    if (GetParam() == NSCalendarIdentifierChinese) step *= 13;
    if (GetParam() == NSCalendarIdentifierIslamicUmmAlQura) step *= 5;
    std::vector<NSDate> list;
    const NSDate first = date("1850-01-03T23:30:00Z");
    for (int day = 0; day < 300 * 365; day += step)
      list.push_back(first.dateByAddingTimeInterval(day * 86400.0 - (day % 2 ? 37500 : 0)));
    return list;
  }
};

struct FieldOfUnit {
  NSCalendarUnit unit;
  UCalendarDateFields field;
  NSInteger shift;
};
constexpr FieldOfUnit kFieldsOfUnits[] = {
    {NSCalendarUnitEra, UCAL_ERA, 0},
    {NSCalendarUnitYear, UCAL_YEAR, 0},
    {NSCalendarUnitMonth, UCAL_MONTH, 1},
    {NSCalendarUnitDay, UCAL_DATE, 0},
    {NSCalendarUnitHour, UCAL_HOUR_OF_DAY, 0},
    {NSCalendarUnitMinute, UCAL_MINUTE, 0},
    {NSCalendarUnitSecond, UCAL_SECOND, 0},
    {NSCalendarUnitWeekday, UCAL_DAY_OF_WEEK, 0},
    {NSCalendarUnitWeekdayOrdinal, UCAL_DAY_OF_WEEK_IN_MONTH, 0},
    {NSCalendarUnitWeekOfMonth, UCAL_WEEK_OF_MONTH, 0},
    {NSCalendarUnitWeekOfYear, UCAL_WEEK_OF_YEAR, 0},
    {NSCalendarUnitYearForWeekOfYear, UCAL_YEAR_WOY, 0},
};

TEST_P(OtherCalendars, ShowTheFieldsThatICUShowsAtTheZonesLocalTime) {
  for (const NSInteger firstWeekday : {1, 2}) {
    const auto calendar =
        calendarOf(GetParam(), "Africa/Cairo", firstWeekday, firstWeekday * 2 - 1);
    for (const NSDate shown : dates(firstWeekday == 1 ? 29 : 61)) {
      const auto peer = peerAt(*calendar, shown);
      for (const FieldOfUnit& row : kFieldsOfUnits)
        ASSERT_EQ(calendar->component(row.unit, shown), get(*peer, row.field) + row.shift)
            << GetParam() << ' ' << vectorFromDate(shown) << ' ' << row.unit;
    }
  }
}

TEST_P(OtherCalendars, ResolveWhatTheyShow) {
  const auto calendar = calendarOf(GetParam(), "Asia/Kathmandu");
  constexpr NSUInteger kByPlace =
      NSCalendarUnitEra | NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitWeekday | kTime;
  constexpr NSUInteger kByWeek =
      NSCalendarUnitYearForWeekOfYear | NSCalendarUnitWeekOfYear | NSCalendarUnitWeekday | kTime;
  for (const NSDate shown : dates(23)) {
    const auto resolved = [&](NSUInteger mask) {
      return calendar->dateFromComponents(calendar->components(mask, shown));
    };
    ASSERT_EQ(resolved(kByWeek), shown) << vectorFromDate(shown);
    if (isLeapMonth(*peerAt(*calendar, shown)) && GetParam() == NSCalendarIdentifierChinese)
      continue;
    ASSERT_EQ(resolved(kDate | kTime), shown) << vectorFromDate(shown);
    ASSERT_EQ(resolved(kByPlace | NSCalendarUnitWeekdayOrdinal), shown) << vectorFromDate(shown);
    ASSERT_EQ(resolved(kByPlace | NSCalendarUnitWeekOfMonth), shown) << vectorFromDate(shown);
    ASSERT_TRUE(calendar->components(kDate | kTime, shown).isValidDateInCalendar(*calendar));
  }
}

TEST_P(OtherCalendars, AddMonthsAndYearsAsICUDoes) {
  const auto calendar = calendarOf(GetParam(), "Asia/Kolkata");
  for (const NSDate from : dates(331)) {
    for (const int count : {-25, -12, -1, 1, 2, 13, 100}) {
      for (const FieldOfUnit& row : {kFieldsOfUnits[1], kFieldsOfUnits[2]}) {
        const auto peer = peerAt(*calendar, from);
        UErrorCode status = U_ZERO_ERROR;
        peer->add(row.field, count, status);
        ASSERT_TRUE(U_SUCCESS(status));
        ASSERT_EQ(calendar->dateByAddingUnit(row.unit, count, from, 0),
                  dateOfPeer(*calendar, *peer))
            << vectorFromDate(from) << ' ' << row.unit << ' ' << count;
      }
    }
  }
}

TEST_P(OtherCalendars, CountTheMostStepsThatDoNotPass) {
  const auto calendar = calendarOf(GetParam(), "America/New_York");
  const auto all = dates(1201);
  for (const NSCalendarUnit unit :
       {NSCalendarUnitYear, NSCalendarUnitMonth, NSCalendarUnitWeekOfYear, NSCalendarUnitDay}) {
    for (std::size_t index = 0; index + 3 < all.size(); index += 3) {
      for (const NSDate to : {all[index + 1], all[all.size() - 1 - index], all[index]}) {
        const NSDate from = all[index];
        const bool backward = to.compare(from) == NSOrderedAscending;
        const NSInteger count = calendar->components(unit, from, to, 0).valueForComponent(unit);
        const auto reached = calendar->dateByAddingUnit(unit, count, from, 0).value();
        const auto beyond =
            calendar->dateByAddingUnit(unit, count + (backward ? -1 : 1), from, 0).value();
        ASSERT_NE(backward ? to.compare(reached) : reached.compare(to), NSOrderedDescending);
        ASSERT_EQ(backward ? to.compare(beyond) : beyond.compare(to), NSOrderedDescending);
      }
    }
  }
}

TEST_P(OtherCalendars, DifferencesAddUpAgain) {
  const auto calendar = calendarOf(GetParam(), "Europe/Vienna");
  const auto all = dates(1201);
  constexpr NSUInteger kAll = NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay | kTime;
  for (std::size_t index = 0; index + 1 < all.size(); ++index) {
    const auto difference = calendar->components(kAll, all[index], all[index + 1], 0);
    ASSERT_EQ(calendar->dateByAddingComponents(difference, all[index], 0), all[index + 1])
        << vectorFromComponents(difference);
  }
}

TEST_P(OtherCalendars, UnitsHoldTheirDatesAndMeetWithoutGap) {
  const auto calendar = calendarOf(GetParam(), "America/Sao_Paulo");
  for (const NSDate shown : dates(307)) {
    for (const NSCalendarUnit unit :
         {NSCalendarUnitDay, NSCalendarUnitWeekOfYear, NSCalendarUnitMonth, NSCalendarUnitYear,
          NSCalendarUnitYearForWeekOfYear}) {
      NSDate start;
      NSTimeInterval length = 0;
      ASSERT_TRUE(calendar->rangeOfUnit(unit, &start, &length, shown));
      ASSERT_NE(start.compare(shown), NSOrderedDescending);
      const NSDate end = start.dateByAddingTimeInterval(length);
      ASSERT_EQ(end.compare(shown), NSOrderedDescending);
      NSDate next;
      ASSERT_TRUE(calendar->rangeOfUnit(unit, &next, nullptr, end));
      ASSERT_EQ(next, end) << vectorFromDate(shown) << ' ' << unit;
      if (unit == NSCalendarUnitWeekOfYear || unit == NSCalendarUnitDay) continue;
      // The number changes at the end, and not just before it.
      const NSUInteger years = unit == NSCalendarUnitYearForWeekOfYear
                                   ? NSUInteger{NSCalendarUnitYearForWeekOfYear}
                                   : NSUInteger{NSCalendarUnitEra | NSCalendarUnitYear};
      const NSDate last = end.dateByAddingTimeInterval(-1);
      if (unit != NSCalendarUnitMonth && GetParam() != NSCalendarIdentifierJapanese) {
        ASSERT_EQ(calendar->components(years, shown), calendar->components(years, last));
        ASSERT_NE(calendar->components(years, end), calendar->components(years, last));
      }
      if (unit == NSCalendarUnitMonth) {
        ASSERT_EQ(static_cast<NSInteger>(
                      calendar->rangeOfUnit(NSCalendarUnitDay, NSCalendarUnitMonth, shown).length),
                  calendar->component(NSCalendarUnitDay, last));
        ASSERT_EQ(calendar->component(NSCalendarUnitDay, start), 1);
        ASSERT_EQ(calendar->component(NSCalendarUnitDay, end), 1);
      }
    }
  }
}

TEST_P(OtherCalendars, SearchFindsTheNearestOfAllDays) {
  const auto calendar = calendarOf(GetParam(), "Europe/Vienna", 2, 4);
  constexpr NSUInteger kMasks[] = {
      NSCalendarUnitDay, NSCalendarUnitMonth | NSCalendarUnitDay,
      NSCalendarUnitMonth | NSCalendarUnitWeekday | NSCalendarUnitWeekdayOrdinal,
      NSCalendarUnitWeekOfYear | NSCalendarUnitWeekday, kDate};
  for (const NSDate shown : dates(9973)) {
    for (const NSUInteger mask : kMasks) {
      const auto wanted = calendar->components(mask, shown);
      NSDate start;
      ASSERT_TRUE(calendar->rangeOfUnit(NSCalendarUnitDay, &start, nullptr, shown));
      for (const bool backward : {true, false}) {
        const double step = backward ? -86400.0 : 86400.0;
        const NSDate origin = start.dateByAddingTimeInterval(-step * 400 + 3600 * 13);
        // The day of the origin began before it.
        NSDate expected = origin.dateByAddingTimeInterval(backward ? 0 : step);
        while (!calendar->date(expected, wanted))
          expected = expected.dateByAddingTimeInterval(step);
        ASSERT_TRUE(calendar->rangeOfUnit(NSCalendarUnitDay, &expected, nullptr, expected));
        const auto found = calendar->nextDateAfterDate(
            origin, wanted,
            NSCalendarMatchStrictly | (backward ? NSCalendarSearchBackwards : NSUInteger{0}));
        ASSERT_EQ(found, expected) << vectorFromDate(origin) << vectorFromComponents(wanted);
      }
    }
  }
}

TEST_P(OtherCalendars, SearchGivesTheStartOfTheSmallestUnit) {
  const auto calendar = calendarOf(GetParam(), "UTC");
  const NSDate shown = date("2023-11-17T15:00:00Z");
  NSDateComponents month;
  month.setMonth(2);
  const auto found = calendar->nextDateAfterDate(
      shown, month, NSCalendarMatchStrictly | NSCalendarSearchBackwards);
  ASSERT_TRUE(found);
  EXPECT_EQ(calendar->component(NSCalendarUnitMonth, *found), 2);
  EXPECT_EQ(calendar->component(NSCalendarUnitDay, *found), 1);
  EXPECT_EQ(found->compare(shown), NSOrderedAscending);
  NSDateComponents never;
  never.setMonth(14);
  EXPECT_FALSE(calendar->nextDateAfterDate(shown, never, 0));
}

TEST_P(OtherCalendars, SetADayOrTheDayAfterTheMonthsEnd) {
  const auto calendar = calendarOf(GetParam(), "UTC");
  for (const NSDate shown : dates(1777)) {
    for (const NSInteger day : {1, 15, 29, 30, 31, 32}) {
      const auto set =
          calendar->dateBySettingUnit(NSCalendarUnitDay, day, shown, NSCalendarMatchNextTime);
      const NSRange range = calendar->maximumRangeOfUnit(NSCalendarUnitDay);
      ASSERT_EQ(set.has_value(), day <= static_cast<NSInteger>(range.length)) << day;
      if (!set) continue;
      const NSInteger got = calendar->component(NSCalendarUnitDay, *set);
      ASSERT_TRUE(got == day || got == 1) << got << ' ' << day;
      ASSERT_NE(set->compare(shown),
                got == calendar->component(NSCalendarUnitDay, shown) && got == day
                    ? NSOrderedDescending
                    : NSOrderedSame);
    }
  }
}

TEST_P(OtherCalendars, WrapWithinTheLargerUnit) {
  const auto calendar = calendarOf(GetParam(), "UTC");
  for (const NSDate shown : dates(1777)) {
    const auto wrapped =
        calendar->dateByAddingUnit(NSCalendarUnitDay, 20, shown, NSCalendarWrapComponents);
    ASSERT_TRUE(wrapped);
    ASSERT_EQ(calendar->components(NSCalendarUnitYear | NSCalendarUnitMonth, *wrapped),
              calendar->components(NSCalendarUnitYear | NSCalendarUnitMonth, shown));
    ASSERT_NE(*wrapped, shown);
  }
}

TEST_P(OtherCalendars, HaveNothingToSayOfDatesTooFarAway) {
  const auto calendar = calendarOf(GetParam(), "UTC");
  for (const double seconds : {std::numeric_limits<double>::quiet_NaN(), 1e300, 4e11, -4e11}) {
    const NSDate far = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
    EXPECT_EQ(calendar->components(kDate | kTime, far), NSDateComponents());
    EXPECT_EQ(calendar->components(kDate, far, NSDate(), 0), NSDateComponents());
    EXPECT_FALSE(calendar->dateByAddingUnit(NSCalendarUnitMonth, 1, far, 0));
    EXPECT_FALSE(calendar->rangeOfUnit(NSCalendarUnitMonth, nullptr, nullptr, far));
    EXPECT_FALSE(calendar->nextDateAfterDate(far, calendar->components(kDate, NSDate()), 0));
  }
  NSDateComponents far;
  for (const NSInteger year :
       {NSIntegerMin, NSInteger{-900'000}, NSInteger{900'000}, NSIntegerMax - 1}) {
    far.setYear(year);
    EXPECT_FALSE(calendar->dateFromComponents(far)) << year;
  }
  for (const NSInteger count : {NSIntegerMin, NSInteger{400'000}, NSIntegerMax})
    EXPECT_FALSE(calendar->dateByAddingUnit(NSCalendarUnitYear, count, NSDate(), 0)) << count;
}

TEST_P(OtherCalendars, HaveQuartersWhereEveryYearHasTwelveMonths) {
  const auto calendar = calendarOf(GetParam(), "UTC");
  const bool has = calendar->maximumRangeOfUnit(NSCalendarUnitMonth).length == 12 &&
                   GetParam() != NSCalendarIdentifierChinese;
  const NSDate shown = date("2024-05-06T00:00:00Z");
  EXPECT_EQ(calendar->maximumRangeOfUnit(NSCalendarUnitQuarter).length, has ? 4U : 0U);
  EXPECT_EQ(calendar->rangeOfUnit(NSCalendarUnitQuarter, nullptr, nullptr, shown), has);
  EXPECT_EQ(calendar->dateByAddingUnit(NSCalendarUnitQuarter, 1, shown, 0),
            has ? calendar->dateByAddingUnit(NSCalendarUnitMonth, 3, shown, 0) : std::nullopt);
  const NSInteger quarter = calendar->component(NSCalendarUnitQuarter, shown);
  EXPECT_EQ(quarter, has ? (calendar->component(NSCalendarUnitMonth, shown) + 2) / 3
                         : NSDateComponentUndefined);
}

TEST_P(OtherCalendars, TakeWeeksAndWeekendFromTheLocalesRegion) {
  const auto calendar = NSCalendar::initWithCalendarIdentifier(GetParam());
  calendar->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
  calendar->setLocaleIdentifier("fa_IR");
  EXPECT_EQ(calendar->firstWeekday(), 7);
  EXPECT_TRUE(calendar->isDateInWeekend(date("2024-05-10T12:00:00Z")));
  EXPECT_FALSE(calendar->isDateInWeekend(date("2024-05-12T12:00:00Z")));
  calendar->setLocaleIdentifier("de_DE");
  EXPECT_EQ(calendar->firstWeekday(), 2);
  EXPECT_EQ(calendar->minimumDaysInFirstWeek(), 4);
  const auto copy = std::static_pointer_cast<NSCalendar>(calendar->copy());
  EXPECT_TRUE(copy->isEqual(calendar.get()));
  EXPECT_EQ(copy->components(kDate, NSDate()), calendar->components(kDate, NSDate()));
}

INSTANTIATE_TEST_SUITE_P(Kinds, OtherCalendars, testing::ValuesIn(kIdentifiers),
                         [](const auto& kind) {
                           std::string name(kind.param);
                           std::erase(name, '-');
                           return name;
                         });

}  // namespace
}  // namespace ORLFoundation
