
#include <ORLFoundation/calendar/ORLFCompareCalendarUnits.h>

#include <gtest/gtest.h>

#include <vector>

namespace ORLFoundation {
namespace {

/// Coarse to fine; weeks share a rung.
const std::vector<std::vector<NSUInteger>> kLadder = {{2},  {4},  {2048}, {8},  {256, 4096, 8192},
                                                      {16}, {32}, {64},   {128}};
constexpr NSUInteger kOutside[] = {512, 1024, 16384, 32768};

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
  EXPECT_EQ(ORLFCompareCalendarUnits(256, 8192), NSOrderedSame);
}

TEST(ORLFCompareCalendarUnits, TakesAMonthForFinerThanAQuarter) {
  EXPECT_EQ(ORLFCompareCalendarUnits(8, 2048), NSOrderedAscending);
}

TEST(ORLFCompareCalendarUnits, TakesAFirstUnitOutsideTheLadderForTheSameAsAnything) {
  for (const NSUInteger unit : {NSUInteger{512}, NSUInteger{1024}, NSUInteger{16384},
                                NSUInteger{32768}, NSUInteger{0}, NSUInteger{24}})
    for (NSUInteger other = 1; other != 0; other <<= 1)
      EXPECT_EQ(ORLFCompareCalendarUnits(unit, other), NSOrderedSame) << unit << ' ' << other;
}

TEST(ORLFCompareCalendarUnits, TakesASecondUnitOutsideTheLadderForFinerThanAllButASecond) {
  for (const NSUInteger other : kOutside) {
    for (std::size_t rung = 0; rung + 1 < kLadder.size(); ++rung)
      EXPECT_EQ(ORLFCompareCalendarUnits(kLadder[rung][0], other), NSOrderedDescending) << other;
    EXPECT_EQ(ORLFCompareCalendarUnits(128, other), NSOrderedAscending) << other;
  }
}

struct MaskCase {
  const char* name;
  NSUInteger unit, mask;
  NSComparisonResult result;
};
constexpr MaskCase kMasks[] = {
    {"YearAmongYearMonthDayIsSame", 4, 28, NSOrderedSame},
    {"MonthBesideAYearIsFiner", 8, 28, NSOrderedAscending},
    {"MonthAmongMonthAndDayIsSame", 8, 24, NSOrderedSame},
    {"EraIsNeverFiner", 2, 28, NSOrderedDescending},
    {"DayBesideTheRetiredWeekIsFiner", 16, 768, NSOrderedAscending},
    {"QuarterBesideAWeekIsCoarser", 2048, 768, NSOrderedDescending},
    {"SecondBesideAMinuteIsFiner", 128, 192, NSOrderedAscending},
    {"SecondAloneIsSame", 128, 128, NSOrderedSame},
    {"SecondBesideNothingIsFiner", 128, 0, NSOrderedAscending},
    {"DayBesideNothingIsCoarser", 16, 0, NSOrderedDescending},
};

TEST(ORLFCompareCalendarUnits, TakesTheFirstRowThatAMaskMeets) {
  for (const MaskCase& row : kMasks)
    EXPECT_EQ(ORLFCompareCalendarUnits(row.unit, row.mask), row.result) << row.name;
}

}  // namespace
}  // namespace ORLFoundation
