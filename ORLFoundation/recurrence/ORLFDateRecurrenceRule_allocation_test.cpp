// A walk allocates nothing per period, and what it needs is small.
#include <ORLFoundation/recurrence/ORLFDateRecurrence_testing.h>
#include <gtest/gtest.h>
#include <tests/support/AllocationCount.h>

namespace ORLFoundation {
namespace {

using namespace orlftest;

/// How many allocations a walk makes from its second date to its last.
std::size_t allocationsOfWalk(const Rule& rule, const NSCalendar& calendar, NSDate start) {
  constexpr NSUInteger kDates = 1000;
  std::size_t atFirst = 0;
  std::size_t atLast = 0;
  rule.enumerateDatesForCalendarStartDate({.calendar = calendar, .startDate = start},
                                          [&](NSDate, NSUInteger count, bool& stop) {
                                            if (count == 2) atFirst = orlftest::allocationCount();
                                            stop = count == kDates;
                                            if (stop) atLast = orlftest::allocationCount();
                                          });
  EXPECT_GT(atLast, 0U);
  return atLast - atFirst;
}

TEST(ORLFDateRecurrenceRule, WalksWithoutAllocating) {
  const auto calendar = orlftest::calendarIn("America/New_York");
  const NSDate start = orlftest::at(*calendar, 2020, 1, 31, 9, 30);
  const auto day = [](NSInteger weekday, NSInteger number) {
    return std::make_shared<ORLFDateRecurrenceDayOfWeek>(weekday, number);
  };
  const Rule::Recurrence rules[] = {
      {.frequency = ORLFDateRecurrenceFrequencyMonthly},
      {.frequency = ORLFDateRecurrenceFrequencyMonthly, .daysOfTheMonth = {{31}}},
      {.frequency = ORLFDateRecurrenceFrequencyMonthly, .daysOfTheWeek = {{day(3, 2)}}},
      {.frequency = ORLFDateRecurrenceFrequencyMonthly, .daysOfTheWeek = {{day(-1, -1)}}},
      {.frequency = ORLFDateRecurrenceFrequencyWeekly, .daysOfTheWeek = {{day(2, 0), day(6, 0)}}},
      {.frequency = ORLFDateRecurrenceFrequencyYearly,
       .daysOfTheMonth = {{15}},
       .monthsOfTheYear = {{3}}},
      {.frequency = ORLFDateRecurrenceFrequencyDaily, .interval = 3}};
  for (const Rule::Recurrence& fields : rules)
    EXPECT_EQ(allocationsOfWalk(*Rule::ruleWithFields(fields), *calendar, start), 0U);
}

TEST(ORLFDateRecurrenceRule, WalksLargeSetsWithoutAllocatingOnceWarm) {
  const auto calendar = orlftest::calendarIn("America/New_York");
  const NSDate start = orlftest::at(*calendar, 2020, 1, 31, 9, 30);
  std::vector<NSInteger> days;
  for (NSInteger day = 1; day <= 31; ++day) days.push_back(day);
  std::vector<NSInteger> months;
  for (NSInteger month = 1; month <= 12; ++month) months.push_back(month);
  const Rule rule(Rule::Recurrence{.frequency = ORLFDateRecurrenceFrequencyYearly,
                                   .daysOfTheMonth = days,
                                   .monthsOfTheYear = months});
  std::vector<std::size_t> atDates;
  atDates.reserve(2000);
  rule.enumerateDatesForCalendarStartDate({.calendar = *calendar, .startDate = start},
                                          [&](NSDate, NSUInteger count, bool& stop) {
                                            atDates.push_back(orlftest::allocationCount());
                                            stop = count == 2000;
                                          });
  // Past the first two windows of a year each.
  EXPECT_EQ(atDates.back(), atDates[800]);
}

TEST(ORLFDateRecurrenceRule, TakesUnderFourKilobytesWithCalendarAndWalk) {
  // The tables of zones are shared: that of the walk, and that which a new calendar begins with.
  const auto zone = NSTimeZone::timeZoneWithName("America/New_York");
  const auto other = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  const std::size_t before = orlftest::allocatedBytes();
  const auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  calendar->setTimeZone(zone);
  const auto rule = Rule::ruleWithFields(
      {.frequency = ORLFDateRecurrenceFrequencyWeekly,
       .daysOfTheWeek = {{std::make_shared<ORLFDateRecurrenceDayOfWeek>(2, 0),
                          std::make_shared<ORLFDateRecurrenceDayOfWeek>(6, 0)}}});
  std::size_t walked = 0;
  rule->enumerateDatesForCalendarStartDate(
      {.calendar = *calendar, .startDate = orlftest::at(*calendar, 2020, 1, 31, 9, 30)},
      [&](NSDate, NSUInteger count, bool& stop) { stop = (walked = count) == 100; });
  EXPECT_EQ(walked, 100U);
  const std::size_t onHeap = orlftest::allocatedBytes() - before;
  EXPECT_GT(onHeap, sizeof(Rule) + sizeof(NSCalendar));
  EXPECT_LT(onHeap + sizeof(internal::recurrence::ORLFDateWalk), 4096U);
}

}  // namespace
}  // namespace ORLFoundation
