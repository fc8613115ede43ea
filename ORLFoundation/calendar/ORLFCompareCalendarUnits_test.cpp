
#include <ORLFoundation/calendar/ORLFCompareCalendarUnits.h>

#include <gtest/gtest.h>

#include <vector>

namespace ORLFoundation {
namespace {

/// Coarse to fine; weeks share a rung.
const std::vector<std::vector<NSUInteger>> kLadder = {
    {NSCalendarUnitEra},
    {NSCalendarUnitYear},
    {NSCalendarUnitQuarter},
    {NSCalendarUnitMonth},
    {NSCalendarUnitWeek, NSCalendarUnitWeekOfMonth, NSCalendarUnitWeekOfYear},
    {NSCalendarUnitDay},
    {NSCalendarUnitHour},
    {NSCalendarUnitMinute},
    {NSCalendarUnitSecond}};
constexpr NSUInteger kOutside[] = {NSCalendarUnitWeekday, NSCalendarUnitWeekdayOrdinal,
                                   NSCalendarUnitYearForWeekOfYear, NSCalendarUnitNanosecond,
                                   1};  // 1 is no unit

TEST(ORLFCompareCalendarUnits, OrdersTheLadderBothWays) {
  for (std::size_t left = 0; left < kLadder.size(); ++left) {
    for (std::size_t right = 0; right < kLadder.size(); ++right) {
      NSComparisonResult expected = NSOrderedSame;
      if (left > right) expected = NSOrderedAscending;
      if (left < right) expected = NSOrderedDescending;
      for (const NSUInteger unit : kLadder[left])
        for (const NSUInteger other : kLadder[right])
          EXPECT_EQ(ORLFCompareCalendarUnits(unit, other), expected) << unit << ' ' << other;
    }
  }
}

TEST(ORLFCompareCalendarUnits, TakesTheRetiredWeekForTheWeek) {
  EXPECT_EQ(ORLFCompareCalendarUnits(NSCalendarUnitWeek, NSCalendarUnitWeekOfYear), NSOrderedSame);
}

TEST(ORLFCompareCalendarUnits, TakesAMonthForFinerThanAQuarter) {
  EXPECT_EQ(ORLFCompareCalendarUnits(NSCalendarUnitMonth, NSCalendarUnitQuarter),
            NSOrderedAscending);
}

TEST(ORLFCompareCalendarUnits, TakesAFirstUnitOutsideTheLadderForTheSameAsAnything) {
  for (const NSUInteger unit :
       {NSUInteger{NSCalendarUnitWeekday}, NSUInteger{NSCalendarUnitWeekdayOrdinal},
        NSUInteger{NSCalendarUnitYearForWeekOfYear}, NSUInteger{NSCalendarUnitNanosecond},
        NSUInteger{0}, NSUInteger{NSCalendarUnitMonth | NSCalendarUnitDay}})
    for (NSUInteger other = 1; other != 0; other <<= 1)
      EXPECT_EQ(ORLFCompareCalendarUnits(unit, other), NSOrderedSame) << unit << ' ' << other;
}

TEST(ORLFCompareCalendarUnits, TakesASecondUnitOutsideTheLadderForFinerThanAllButASecond) {
  for (const NSUInteger other : kOutside) {
    for (std::size_t rung = 0; rung + 1 < kLadder.size(); ++rung)
      EXPECT_EQ(ORLFCompareCalendarUnits(kLadder[rung][0], other), NSOrderedDescending) << other;
    EXPECT_EQ(ORLFCompareCalendarUnits(NSCalendarUnitSecond, other), NSOrderedAscending) << other;
  }
}

struct MaskCase {
  const char* name;
  NSUInteger unit, mask;
  NSComparisonResult result;
};
constexpr MaskCase kMasks[] = {
    {"YearAmongYearMonthDayIsSame", NSCalendarUnitYear,
     NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay, NSOrderedSame},
    {"MonthBesideAYearIsFiner", NSCalendarUnitMonth,
     NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay, NSOrderedAscending},
    {"MonthAmongMonthAndDayIsSame", NSCalendarUnitMonth, NSCalendarUnitMonth | NSCalendarUnitDay,
     NSOrderedSame},
    {"EraIsNeverFiner", NSCalendarUnitEra,
     NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay, NSOrderedDescending},
    {"DayBesideTheRetiredWeekIsFiner", NSCalendarUnitDay,
     NSCalendarUnitWeek | NSCalendarUnitWeekday, NSOrderedAscending},
    {"QuarterBesideAWeekIsCoarser", NSCalendarUnitQuarter,
     NSCalendarUnitWeek | NSCalendarUnitWeekday, NSOrderedDescending},
    {"SecondBesideAMinuteIsFiner", NSCalendarUnitSecond,
     NSCalendarUnitMinute | NSCalendarUnitSecond, NSOrderedAscending},
    {"SecondAloneIsSame", NSCalendarUnitSecond, NSCalendarUnitSecond, NSOrderedSame},
    {"SecondBesideNothingIsFiner", NSCalendarUnitSecond, 0, NSOrderedAscending},
    {"DayBesideNothingIsCoarser", NSCalendarUnitDay, 0, NSOrderedDescending},
};

TEST(ORLFCompareCalendarUnits, TakesTheFirstRowThatAMaskMeets) {
  for (const MaskCase& row : kMasks)
    EXPECT_EQ(ORLFCompareCalendarUnits(row.unit, row.mask), row.result) << row.name;
}

}  // namespace
}  // namespace ORLFoundation
