// What holds between the calendar's operations, swept over years of dates in zones that change
// their clocks at odd places.

#include <ORLFoundation/platform/time/NSCalendar.h>

#include <ORLFoundation/platform/time/internal/CalendarFields.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

namespace ORLFoundation {
namespace {

using namespace internal::time;

struct CalendarCase {
  const char* zone;
  NSInteger firstWeekday, minimumDays;
};
const CalendarCase kCalendars[] = {
    {"UTC", 1, 1},
    {"America/New_York", 1, 1},
    {"Australia/Lord_Howe", 2, 4},
    {"Asia/Kathmandu", 1, 1},
    {"Pacific/Apia", 2, 1},
    {"America/Sao_Paulo", 7, 3},
    {"America/St_Johns", 1, 7},
};

constexpr NSCalendarUnit kClockUnits[] = {
    NSCalendarUnitYear,       NSCalendarUnitQuarter, NSCalendarUnitMonth,
    NSCalendarUnitWeekOfYear, NSCalendarUnitDay,
};
constexpr NSCalendarUnit kRangeUnits[] = {
    NSCalendarUnitYear,       NSCalendarUnitQuarter, NSCalendarUnitMonth,
    NSCalendarUnitWeekOfYear, NSCalendarUnitDay,     NSCalendarUnitHour,
    NSCalendarUnitMinute,     NSCalendarUnitSecond,  NSCalendarUnitYearForWeekOfYear,
    NSCalendarUnitWeekOfMonth};
constexpr NSUInteger kFullDate = NSCalendarUnitEra | NSCalendarUnitYear | NSCalendarUnitMonth |
                                 NSCalendarUnitDay | NSCalendarUnitHour | NSCalendarUnitMinute |
                                 NSCalendarUnitSecond | NSCalendarUnitNanosecond;
constexpr NSUInteger kFullWeekDate =
    NSCalendarUnitYearForWeekOfYear | NSCalendarUnitWeekOfYear | NSCalendarUnitWeekday |
    NSCalendarUnitHour | NSCalendarUnitMinute | NSCalendarUnitSecond | NSCalendarUnitNanosecond;

class NSCalendarLaws : public testing::TestWithParam<CalendarCase> {
 protected:
  void SetUp() override {
    calendar_ = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
    calendar_->setTimeZone(NSTimeZone::timeZoneWithName(GetParam().zone));
    calendar_->setFirstWeekday(GetParam().firstWeekday);
    calendar_->setMinimumDaysInFirstWeek(GetParam().minimumDays);
  }

  NSDate yearStart(std::int32_t year) const {
    return NSDate::dateWithTimeIntervalSince1970(civil::dayFromDate(year, 1, 1) * 86400.0);
  }

  // Dates of the years, `step` seconds apart.
  std::vector<NSDate> dates(std::int32_t firstYear, std::int32_t lastYear, double step) const {
    std::vector<NSDate> all;
    const NSDate end = yearStart(lastYear + 1);
    for (NSDate date = yearStart(firstYear); date.compare(end) < 0;
         date = date.dateByAddingTimeInterval(step)) {
      all.push_back(date);
    }
    return all;
  }

  // A doubled time resolves to its first occurrence, so the second gives the first back.
  bool isSecondOccurrence(NSDate date) const {
    const ZoneTable& table = calendar_->timeZone()->table();
    const auto instant = static_cast<std::int64_t>(std::floor(date.timeIntervalSince1970()));
    return table.firstInstantOfLocal(instant + table.offsetAt(instant)) != instant;
  }

  NSInteger offsetAt(NSDate date) const {
    return calendar_->timeZone()->secondsFromGMTForDate(date);
  }

  std::shared_ptr<NSCalendar> calendar_;
};

TEST_P(NSCalendarLaws, ComponentsResolveToTheirDate) {
  for (const double step : {1799.0, 86399.625}) {
    for (const NSDate date : dates(step > 1800 ? 1890 : 2009, step > 1800 ? 2110 : 2013, step)) {
      if (isSecondOccurrence(date)) continue;
      for (const NSUInteger mask : {kFullDate, kFullWeekDate}) {
        const NSDateComponents components = calendar_->components(mask, date);
        ASSERT_EQ(calendar_->dateFromComponents(components), date) << date.description();
        ASSERT_TRUE(components.isValidDateInCalendar(*calendar_)) << date.description();
        ASSERT_TRUE(calendar_->date(date, components)) << date.description();
      }
    }
  }
}

TEST_P(NSCalendarLaws, PlainFieldsResolveLikeAllOthers) {
  for (const NSDate date : dates(1890, 2110, 86400.0 * 5 + 1799.625)) {
    NSDateComponents fields = calendar_->components(kFullDate, date);
    for (const NSInteger more : {-100'000, -13, 0, 1, 40, 100'000}) {
      for (const NSCalendarUnit unit :
           {NSCalendarUnitDay, NSCalendarUnitHour, NSCalendarUnitMinute, NSCalendarUnitSecond}) {
        NSDateComponents moved = fields;
        moved.setValueForComponent(fields.valueForComponent(unit) + more, unit);
        const Instant plain = instantFromPlainFields(calendar_->rules(), moved);
        ASSERT_TRUE(plain.exists());
        const Instant any = instantFromAnyFields(calendar_->rules(), moved);
        ASSERT_EQ(plain.seconds, any.seconds) << date.description();
        ASSERT_EQ(plain.fraction, any.fraction) << date.description();
      }
    }
  }
}

TEST_P(NSCalendarLaws, CountsAreTheMostStepsThatDoNotPass) {
  const std::vector<NSDate> all = dates(2010, 2013, 86400.0 * 3 + 3600 * 5 + 1);
  for (std::size_t i = 0; i < all.size(); ++i) {
    for (const std::size_t j : {(i * 7 + 3) % all.size(), (i + 1) % all.size()}) {
      for (const NSCalendarUnit unit : kClockUnits) {
        const NSDate from = all[i];
        const NSDate to = all[j];
        const NSInteger count = calendar_->components(unit, from, to, 0).valueForComponent(unit);
        const NSInteger onward = to.compare(from) < 0 ? -1 : 1;
        const auto reached = calendar_->dateByAddingUnit(unit, count, from, 0);
        const auto passed = calendar_->dateByAddingUnit(unit, count + onward, from, 0);
        ASSERT_NE(reached->compare(to), onward) << from.description() << to.description();
        ASSERT_EQ(passed->compare(to), onward) << from.description() << to.description();
      }
    }
  }
}

TEST_P(NSCalendarLaws, CountsWhatWasAddedWithoutClamping) {
  for (const NSDate from : dates(2010, 2013, 86400.0 + 1800)) {
    if (calendar_->component(NSCalendarUnitDay, from) > 28) continue;
    for (const NSCalendarUnit unit : kClockUnits) {
      for (const NSInteger count : {-13, -1, 1, 5, 29}) {
        const NSDate to = calendar_->dateByAddingUnit(unit, count, from, 0).value();
        const NSInteger counted = calendar_->components(unit, from, to, 0).valueForComponent(unit);
        // Over a day that the zone skipped, one day more or less is the same instant.
        if (counted == count) continue;
        ASSERT_EQ(calendar_->dateByAddingUnit(unit, counted, from, 0), to) << from.description();
      }
    }
  }
}

TEST_P(NSCalendarLaws, UnitsHoldTheirDatesAndMeetWithoutGap) {
  for (const NSDate date : dates(2009, 2013, 3600.0 * 11 + 1799)) {
    for (const NSCalendarUnit unit : kRangeUnits) {
      NSDate start;
      NSTimeInterval length = 0;
      ASSERT_TRUE(calendar_->rangeOfUnit(unit, &start, &length, date));
      ASSERT_LE(start.compare(date), 0) << date.description() << unit;
      const NSDate end = start.dateByAddingTimeInterval(length);
      ASSERT_GT(end.compare(date), 0) << date.description() << unit;
      // Clocks that change by half an hour end an hour of theirs early.
      if (length <= 3600 && offsetAt(end) != offsetAt(start)) continue;
      NSDate next;
      ASSERT_TRUE(calendar_->rangeOfUnit(unit, &next, nullptr, end));
      // A midnight that is put back comes twice: the unit after it begins at the first, and the
      // unit before it holds the time up to the second.
      if (next != end) {
        ASSERT_TRUE(isSecondOccurrence(end)) << date.description() << unit;
        ASSERT_LT(next.compare(end), 0) << date.description() << unit;
        continue;
      }
      ASSERT_TRUE(calendar_->rangeOfUnit(unit, &next, nullptr, start));
      ASSERT_EQ(next, start) << date.description() << unit;
    }
  }
}

TEST_P(NSCalendarLaws, SearchFindsTheLatestOfAllDays) {
  // Against a plain walk over days.
  const struct {
    NSInteger month, day, weekday, ordinal;
  } patterns[] = {
      {NSDateComponentUndefined, 31, NSDateComponentUndefined, NSDateComponentUndefined},
      {2, 29, NSDateComponentUndefined, NSDateComponentUndefined},
      {NSDateComponentUndefined, NSDateComponentUndefined, 3, 5},
      {10, NSDateComponentUndefined, 1, 3}};
  for (const auto& pattern : patterns) {
    NSDateComponents components;
    components.setMonth(pattern.month);
    components.setDay(pattern.day);
    components.setWeekday(pattern.weekday);
    components.setWeekdayOrdinal(pattern.ordinal);
    std::optional<NSDate> latest;
    for (const NSDate date : dates(2008, 2017, 3600.0 * 12)) {
      NSDate start;
      ASSERT_TRUE(calendar_->rangeOfUnit(NSCalendarUnitDay, &start, nullptr, date));
      if (start.compare(date) < 0 && calendar_->date(start, components)) latest = start;
      if (!latest) continue;
      ASSERT_EQ(calendar_->nextDateAfterDate(date, components, 6), latest) << date.description();
    }
  }
}

TEST_P(NSCalendarLaws, SettingADayIsTheFirstThatShowsIt) {
  for (const NSDate date : dates(2010, 2012, 3600.0 * 13)) {
    for (const NSInteger day : {1, 15, 28}) {
      const NSDate set =
          calendar_->dateBySettingUnit(NSCalendarUnitDay, day, date, NSCalendarMatchNextTime)
              .value();
      ASSERT_EQ(calendar_->component(NSCalendarUnitDay, set), day) << date.description();
      ASSERT_GE(set.compare(date), 0);
      ASSERT_LT(set.timeIntervalSinceDate(date), 32 * 86400.0);
    }
  }
}

TEST_P(NSCalendarLaws, WeeksCountUpByOne) {
  constexpr NSUInteger kWeek = NSCalendarUnitWeekOfYear | NSCalendarUnitYearForWeekOfYear;
  NSDate date = yearStart(1950);
  NSDateComponents before = calendar_->components(kWeek, date);
  for (int week = 0; week < 52 * 150; ++week) {
    date = calendar_->dateByAddingUnit(NSCalendarUnitWeekOfYear, 1, date, 0).value();
    const NSDateComponents now = calendar_->components(kWeek, date);
    const bool nextWeek = now.yearForWeekOfYear() == before.yearForWeekOfYear() &&
                          now.weekOfYear() == before.weekOfYear() + 1;
    const bool nextYear = now.yearForWeekOfYear() == before.yearForWeekOfYear() + 1 &&
                          now.weekOfYear() == 1 && before.weekOfYear() >= 52;
    ASSERT_TRUE(nextWeek || nextYear) << date.description();
    before = now;
  }
}

INSTANTIATE_TEST_SUITE_P(Calendars, NSCalendarLaws, testing::ValuesIn(kCalendars));

}  // namespace
}  // namespace ORLFoundation
