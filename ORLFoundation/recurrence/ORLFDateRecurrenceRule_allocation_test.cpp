// A walk allocates nothing per period.
#include <ORLFoundation/recurrence/ORLFDateRecurrence_testing.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<std::size_t> allocations{0};
}  // namespace

void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace ORLFoundation {
namespace {

using Rule = ORLFDateRecurrenceRule;

/// How many allocations a walk makes from its second date to its last.
std::size_t allocationsOfWalk(const Rule& rule, const NSCalendar& calendar, NSDate start) {
  constexpr NSUInteger kDates = 1000;
  std::size_t atFirst = 0;
  std::size_t atLast = 0;
  rule.enumerateDatesForCalendarStartDate({.calendar = calendar,
                                           .startDate = start,
                                           .usingBlock = [&](NSDate, NSUInteger count, bool& stop) {
                                             if (count == 2) atFirst = allocations;
                                             stop = count == kDates;
                                             if (stop) atLast = allocations;
                                           }});
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
  rule.enumerateDatesForCalendarStartDate({.calendar = *calendar,
                                           .startDate = start,
                                           .usingBlock = [&](NSDate, NSUInteger count, bool& stop) {
                                             atDates.push_back(allocations);
                                             stop = count == 2000;
                                           }});
  // Past the first two windows of a year each.
  EXPECT_EQ(atDates.back(), atDates[800]);
}

}  // namespace
}  // namespace ORLFoundation
