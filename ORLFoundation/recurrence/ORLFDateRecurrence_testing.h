/// What the tests of this folder share: the dates of a walk.
#pragma once

#include <ORLFoundation/calendar/ORLFCalendar_testing.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule_testing.h>
#include <ORLFoundation/recurrence/internal/ORLFDateWalk.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace orlftest {

/// Days as yyyymmdd.
using Days = std::vector<int>;

struct WalkOptions {
  std::shared_ptr<ORLFoundation::ORLFDateRecurrenceEnd> end = nullptr;
  bool backwards = false;
  bool exact = false;
};

/// The first dates of the main enumeration, at most so many.
inline std::vector<ORLFoundation::NSDate> firstDates(const Rule& rule,
                                                     const ORLFoundation::NSCalendar& calendar,
                                                     ORLFoundation::NSDate start, std::size_t most,
                                                     const WalkOptions& options = {}) {
  using namespace ORLFoundation;
  std::vector<NSDate> dates;
  rule.enumerateDatesForCalendarStartDate({.calendar = calendar,
                                           .startDate = start,
                                           .end = options.end,
                                           .backwards = options.backwards,
                                           .exactPatternMatch = options.exact},
                                          [&](NSDate date, NSUInteger, bool& stop) {
                                            dates.push_back(date);
                                            stop = dates.size() >= most;
                                          });
  return dates;
}

/// The days of a walk on the calendar's clock.
inline Days daysOf(const std::vector<ORLFoundation::NSDate>& dates,
                   const ORLFoundation::NSCalendar& calendar) {
  using namespace ORLFoundation;
  Days days;
  for (const NSDate date : dates) {
    const auto day =
        calendar.components(NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay, date);
    days.push_back(static_cast<int>(day.year() * 10000 + day.month() * 100 + day.day()));
  }
  return days;
}

/// How many periods a walk takes that gives no date.
inline ORLFoundation::NSUInteger periodsOf(const Rule& rule,
                                           const ORLFoundation::NSCalendar& calendar,
                                           ORLFoundation::NSDate start) {
  using namespace ORLFoundation;
  std::size_t delivered = 0;
  const NSUInteger periods =
      internal::recurrence::ORLFDateWalk(rule, {.calendar = calendar, .startDate = start},
                                         [&](NSDate, NSUInteger, bool&) { ++delivered; })
          .run();
  EXPECT_EQ(delivered, 0U);
  return periods;
}

class EnumerationTest : public testing::Test {
 protected:
  const std::shared_ptr<ORLFoundation::NSCalendar> calendar_ = calendarIn("America/New_York");

  [[nodiscard]] ORLFoundation::NSDate morning(int year, int month, int day) const {
    return at(*calendar_, year, month, day, 9, 30);
  }
  [[nodiscard]] Days days(const Rule& rule, ORLFoundation::NSDate start, std::size_t most,
                          const WalkOptions& options = {}) const {
    return daysOf(firstDates(rule, *calendar_, start, most, options), *calendar_);
  }
};

}  // namespace orlftest
