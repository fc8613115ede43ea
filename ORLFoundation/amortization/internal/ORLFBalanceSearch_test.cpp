#include <ORLFoundation/amortization/internal/ORLFBalanceSearch.h>

#include <ORLFoundation/platform/number/NSDecimalNumber_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <vector>

namespace ORLFoundation::internal::amortization {
namespace {

using testing::ElementsAre;

struct Walk {
  NSUInteger answer = 0;
  std::vector<NSUInteger> asked;
};

/// Searches among balances that `balanceAfter` tells, and notes which of them it asks for.
Walk walkTo(const char* target, const ORLFBalanceAfterPeriods& balanceAfter) {
  constexpr std::size_t kFarTooMany = 200;
  Walk walk;
  walk.answer = periodsToReachBalance(number(target), number("0"), [&](NSUInteger periods) {
    walk.asked.push_back(periods);
    if (walk.asked.size() > kFarTooMany) throw std::runtime_error("the search does not end");
    return balanceAfter(periods);
  });
  return walk;
}

/// One a period, and none that could be told at `unknown`.
ORLFBalanceAfterPeriods oneAPeriodBut(NSUInteger unknown, const char* each = "1") {
  return [unknown, each](NSUInteger periods) -> Optional {
    if (periods == unknown) return std::nullopt;
    return NSDecimalNumber::decimalNumberWithMantissa(periods, 0, false)
        .decimalNumberByMultiplyingBy(number(each));
  };
}

TEST(ORLFBalanceSearch, EndsAtABalanceThatCannotBeTold) {
  for (const char* const target : {"1000", "0", "-1000"}) {
    const Walk first = walkTo(target, oneAPeriodBut(100));
    EXPECT_EQ(first.answer, static_cast<NSUInteger>(NSIntegerMax)) << target;
    EXPECT_THAT(first.asked, ElementsAre(100)) << target;
  }
  for (const bool falls : {false, true}) {
    const char* const target = falls ? "-1000" : "1000";
    const char* const each = falls ? "-1" : "1";
    const Walk onTheWayUp = walkTo(target, oneAPeriodBut(400, each));
    EXPECT_EQ(onTheWayUp.answer, static_cast<NSUInteger>(NSIntegerMax));
    EXPECT_THAT(onTheWayUp.asked, ElementsAre(100, 100, 200, 400));
    const Walk whileHalving = walkTo(target, oneAPeriodBut(1200, each));
    EXPECT_EQ(whileHalving.answer, static_cast<NSUInteger>(NSIntegerMax));
    EXPECT_THAT(whileHalving.asked, ElementsAre(100, 100, 200, 400, 800, 1600, 1200));
  }
}

TEST(ORLFBalanceSearch, EndsWhereTheCountsEnd) {
  const Walk walk = walkTo("1e100", oneAPeriodBut(7));
  EXPECT_EQ(walk.answer, static_cast<NSUInteger>(NSIntegerMax));
  EXPECT_EQ(walk.asked.size(), 59U);
  EXPECT_EQ(walk.asked.back(), NSUInteger{100} << 57);
}

TEST(ORLFBalanceSearch, HalvesFromNoPeriods) {
  // 0.5 lies within the first period.
  const Walk walk = walkTo("0.5", oneAPeriodBut(NSUIntegerMax));
  EXPECT_EQ(walk.answer, 1U);
  EXPECT_THAT(walk.asked, ElementsAre(100, 100, 50, 25, 12, 6, 3, 1));
}

TEST(ORLFBalanceSearch, AnswersThePeriodThatReachesTheTarget) {
  for (NSUInteger target = 1; target <= 1000; target += 37) {
    const NSDecimalNumber wanted = NSDecimalNumber::decimalNumberWithMantissa(target, 0, false);
    EXPECT_EQ(periodsToReachBalance(wanted, number("0"), oneAPeriodBut(NSUIntegerMax)), target);
  }
}

}  // namespace
}  // namespace ORLFoundation::internal::amortization
