// Counts allocations through a replaced operator new.

#include <ORLFoundation/platform/time/NSCalendar.h>

#include <gtest/gtest.h>
#include <tests/support/AllocationCount.h>

namespace ORLFoundation {
namespace {

// Every operation once, so that nothing is optimised away and nothing allocates.
NSInteger useEveryOperation(const NSCalendar& calendar, NSDate date) {
  NSDateComponents pattern;
  pattern.setMonth(2);
  pattern.setDay(29);
  NSDate start;
  NSTimeInterval length = 0;
  const NSDate other = date.dateByAddingTimeInterval(1e8);
  NSInteger sum = calendar.components(0xffff, date).weekOfYear();
  sum += calendar.component(NSCalendarUnitDay, date);
  sum += calendar.components(0xfffe, date, other, 0).month();
  sum += calendar.dateByAddingUnit(NSCalendarUnitMonth, 1, date, 0).has_value();
  sum += calendar.dateByAddingComponents(pattern, date, 0).has_value();
  sum += calendar.dateFromComponents(pattern).has_value();
  sum +=
      calendar.dateBySettingUnit(NSCalendarUnitDay, 31, date, NSCalendarMatchNextTime).has_value();
  sum += calendar.rangeOfUnit(NSCalendarUnitWeekOfYear, &start, &length, date);
  sum += static_cast<NSInteger>(
      calendar.rangeOfUnit(NSCalendarUnitDay, NSCalendarUnitMonth, date).length);
  sum += static_cast<NSInteger>(calendar.maximumRangeOfUnit(NSCalendarUnitDay).length);
  sum += calendar.date(date, pattern);
  sum += calendar.nextDateAfterDate(date, pattern, 6).has_value();
  sum += calendar.isDateInWeekend(date);
  return sum + pattern.isValidDateInCalendar(calendar);
}

TEST(NSCalendarAllocation, OperationsAllocateNothing) {
  const auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  calendar->setTimeZone(NSTimeZone::timeZoneWithName("America/New_York"));
  const std::size_t before = orlftest::allocationCount();
  NSInteger sum = 0;
  for (int month = 0; month < 1000; ++month) {
    sum += useEveryOperation(*calendar,
                             NSDate::dateWithTimeIntervalSinceReferenceDate(month * 2.6e6 - 1e9));
  }
  EXPECT_EQ(orlftest::allocationCount(), before);
  EXPECT_GT(sum, 0);
}

TEST(NSCalendarAllocation, TheCounterCounts) {
  const std::size_t before = orlftest::allocationCount();
  delete new NSDate;
  const auto zone = NSTimeZone::timeZoneForSecondsFromGMT(60);
  EXPECT_GT(orlftest::allocationCount(), before);
  EXPECT_NE(zone, nullptr);
}

}  // namespace
}  // namespace ORLFoundation
