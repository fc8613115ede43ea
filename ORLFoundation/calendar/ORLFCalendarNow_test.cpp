
#include <ORLFoundation/calendar/ORLFCalendarNow.h>

#include <ORLFoundation/calendar/ORLFCalendar_testing.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/object/Id.h>
#include <gtest/gtest.h>

#include <limits>

namespace ORLFoundation {
namespace {

using orlftest::at;
using orlftest::calendarIn;

class ORLFCalendarNow : public testing::Test {
 protected:
  const std::shared_ptr<NSCalendar> calendar_ = calendarIn("America/New_York");
  const NSDate clock_ = at(*calendar_, 2024, 7, 4, 12);
  const Replaced<std::function<NSDate()>> replaced_{NSDate::setClock,
                                                    [now = clock_] { return now; }};
  const NSDate pinned_ = at(*calendar_, 2021, 3, 14, 15, 9, 26);
};

TEST_F(ORLFCalendarNow, IsTheCurrentInstantUntilSet) { EXPECT_EQ(orlfNow(*calendar_), clock_); }

TEST_F(ORLFCalendarNow, IsReplacedOnOneCalendarObjectOnly) {
  const auto other = calendarIn("America/New_York");
  orlfSetNow(*calendar_, pinned_);
  EXPECT_EQ(orlfNow(*calendar_), pinned_);
  EXPECT_EQ(orlfNow(*other), clock_);
}

TEST_F(ORLFCalendarNow, IsRestoredByNil) {
  orlfSetNow(*calendar_, pinned_);
  orlfSetNow(*calendar_, std::nullopt);
  EXPECT_EQ(orlfNow(*calendar_), clock_);
}

TEST_F(ORLFCalendarNow, IsAttachedUnderItsKey) {
  orlfSetNow(*calendar_, pinned_);
  EXPECT_EQ(calendar_->attachedValue("ORLFDateNow").as<NSDate>(), pinned_);
}

TEST_F(ORLFCalendarNow, TodayIsTheStartOfTheDayInTheCalendarsZone) {
  orlfSetNow(*calendar_, pinned_);
  EXPECT_EQ(orlfToday(*calendar_), at(*calendar_, 2021, 3, 14));
  const auto tokyo = calendarIn("Asia/Tokyo");
  orlfSetNow(*tokyo, pinned_);
  EXPECT_EQ(orlfToday(*tokyo), at(*tokyo, 2021, 3, 15));
}

TEST_F(ORLFCalendarNow, TodayIsADateThatNoCalendarPlaces) {
  const double infinity = std::numeric_limits<double>::infinity();
  orlfSetNow(*calendar_, NSDate::dateWithTimeIntervalSinceReferenceDate(infinity));
  EXPECT_EQ(orlfToday(*calendar_).timeIntervalSinceReferenceDate(), infinity);
}

}  // namespace
}  // namespace ORLFoundation
