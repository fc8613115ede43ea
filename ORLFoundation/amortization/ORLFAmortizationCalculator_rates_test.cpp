#include <ORLFoundation/amortization/ORLFAmortizationCalculator_testing.h>
#include <ORLFoundation/amortization/net_present_value.h>
#include <ORLFoundation/platform/number/NSDecimalNumber_testing.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <stdexcept>
#include <string>
#include <thread>

namespace ORLFoundation {
namespace {

using orlftest::Doubles;
using orlftest::indexes;
using orlftest::rateOf;
using Calculator = ORLFAmortizationCalculator;
using Decimal = Optional;

TEST(InternalRateOfReturn, FindsTheRateOfAYearlyGain) {
  EXPECT_NEAR(rateOf({0, 1}, {-100, 110})->doubleValue(), 0.1, 0.00001);
}

TEST(InternalRateOfReturn, FlowsOfOneSignHaveNone) {
  EXPECT_FALSE(rateOf({0, 1, 2}, {100, 110, 5}));
  EXPECT_FALSE(rateOf({0, 1}, {-100, -1}));
}

TEST(InternalRateOfReturn, EmptyListGivesTheMidpointOfTheWidestBracket) {
  double high = 0.2;
  for (int step = 0; step < 50; ++step) high = high + 1.6 * (high - 0.0);
  const Decimal rate = rateOf({}, {});
  ASSERT_TRUE(rate);
  EXPECT_DOUBLE_EQ(rate->doubleValue(), high + (0.0 - high) * 0.5);
}

TEST(InternalRateOfReturn, AsksForEachMemberOnce) {
  for (const NSUInteger options :
       {NSUInteger{0}, NSUInteger{NSEnumerationReverse}, NSUInteger{NSEnumerationConcurrent}}) {
    std::vector<std::atomic<int>> asked(1000);
    const auto rate = Calculator::internalRateOfReturnForDataset(
        *indexes(asked.size()), options, [&](const id& object, NSUInteger index, bool& /*stop*/) {
          ++asked[index];
          EXPECT_EQ(object.as<NSNumber>()->integerValue(), static_cast<NSInteger>(index));
          return ORLFCashFlowPoint{static_cast<double>(index), index == 0 ? -100.0 : 1.0};
        });
    EXPECT_TRUE(rate);
    for (const auto& count : asked) EXPECT_EQ(count, 1);
  }
}

TEST(InternalRateOfReturn, HasSeventeenPlaces) {
  const std::string text = rateOf({0, 1}, {-100, 90})->stringValue();
  EXPECT_LE(text.size() - text.find('.') - 1, 17U) << text;
  EXPECT_GE(text.size() - text.find('.') - 1, 15U) << text;
}

// Whole flows against rates from an independent solver (tests/data/reference/rates.py: bisection
// in decimal arithmetic of 60 digits), and against the search's own steps, done there in doubles.
struct RateCase {
  const char* name;
  Doubles times, values;
  double rate;
  const char* found;
};
const RateCase kRates[] = {
    {"Ruin", {0, 1}, {-1000, 20}, -0.98, "-0.97999250888824452"},
    {"Lottery", {0, 1}, {-1, 500}, 499, "498.99968885559633236"},
    {"Borrowing", {0, 1, 2}, {1000, -600, -600}, 0.130662386292, "0.13065795898437499"},
    {"Bond",
     {0, 1, 2, 3, 4, 5},
     {-950, 40, 40, 40, 40, 1040},
     0.051599861525,
     "0.05160522460937501"},
    {"Saving",
     {0, 0.25, 0.5, 0.75, 1},
     {-100, -100, -100, -100, 412},
     0.048284596985,
     "0.048284912109375"},
    {"Loss", {0, 1, 2}, {-1000, 200, 300}, -0.343223563717, "-0.34322738647460932"},
    {"Doubling", {0, 10}, {-1, 2}, 0.071773462536, "0.07177124023437502"},
};

TEST(InternalRateOfReturn, AgreesWithAnIndependentSolver) {
  for (const RateCase& row : kRates) {
    const Decimal rate = rateOf(row.times, row.values);
    ASSERT_TRUE(rate) << row.name;
    // The search ends within 0.00001 of the rate or of the worth.
    const double worth =
        net_present_value(row.times.data(), row.values.data(),
                          static_cast<std::int64_t>(row.times.size()), rate->doubleValue());
    EXPECT_TRUE(std::fabs(rate->doubleValue() - row.rate) < 0.00002 || std::fabs(worth) < 0.00001)
        << row.name << ": " << rate->stringValue();
    EXPECT_NEAR(rate->doubleValue(), row.rate, 0.001) << row.name;
    EXPECT_EQ(rate, number(row.found)) << row.name;
  }
}

TEST(InternalRateOfReturn, IsNilWhereTheSignsChangeButNoRateIs) {
  EXPECT_FALSE(rateOf({0, 1, 2}, {100, -150, 100}));
}

TEST(InternalRateOfReturn, IsNilForFlowsThatAreNoNumbers) {
  EXPECT_FALSE(rateOf({0, 1}, {-100, std::nan("")}));
}

TEST(InternalRateOfReturn, ConcurrentVisitGivesTheSame) {
  Doubles times, values;
  for (int i = 0; i < 5000; ++i) {
    times.push_back(i / 365.0);
    values.push_back(i == 0 ? -100000 : 25);
  }
  const Decimal inOrder = rateOf(times, values);
  ASSERT_TRUE(inOrder);
  EXPECT_EQ(rateOf(times, values, NSEnumerationConcurrent), inOrder);
  EXPECT_EQ(rateOf(times, values, NSEnumerationReverse), inOrder);
  EXPECT_EQ(rateOf(times, values, NSEnumerationConcurrent | NSEnumerationReverse), inOrder);
}

TEST(InternalRateOfReturn, StopEndsTheVisit) {
  NSUInteger visited = 0;
  const auto rate = Calculator::internalRateOfReturnForDataset(
      *indexes(100), 0, [&](const id& /*object*/, NSUInteger index, bool& stop) {
        ++visited;
        stop = index == 1;
        return ORLFCashFlowPoint{static_cast<double>(index), index == 0 ? -100.0 : 110.0};
      });
  EXPECT_EQ(visited, 2U);
  EXPECT_NEAR(rate->doubleValue(), 0.1, 0.00001);
}

TEST(InternalRateOfReturn, ConcurrentStopEndsTheVisit) {
  // Each thread stops at its first member, all others count as no flow.
  const std::size_t threads = std::max(2U, std::thread::hardware_concurrency());
  std::atomic<std::size_t> visited{0};
  const auto rate = Calculator::internalRateOfReturnForDataset(
      *indexes(10000), NSEnumerationConcurrent,
      [&](const id& /*object*/, NSUInteger /*index*/, bool& stop) {
        ++visited;
        stop = true;
        return ORLFCashFlowPoint{1, 100};
      });
  EXPECT_GE(visited, 1U);
  EXPECT_LE(visited, threads);
  EXPECT_FALSE(rate);  // flows of one sign
}

TEST(InternalRateOfReturn, ExceptionOfTheGeneratorReachesTheCaller) {
  for (const NSUInteger options : {NSUInteger{0}, NSUInteger{NSEnumerationConcurrent}}) {
    EXPECT_THROW((void)Calculator::internalRateOfReturnForDataset(
                     *indexes(500), options,
                     [](const id& /*object*/, NSUInteger index, bool& /*stop*/) {
                       if (index == 300) throw std::runtime_error("no such flow");
                       return ORLFCashFlowPoint{};
                     }),
                 std::runtime_error);
  }
}

TEST(InternalRateOfReturn, GeneratorGetsTheMemberAtItsIndex) {
  const auto rate = Calculator::internalRateOfReturnForDataset(
      *NSArray::arrayWithObjects({id(-100.0), id(110.0)}), NSEnumerationReverse,
      [](const id& object, NSUInteger index, bool& /*stop*/) {
        return ORLFCashFlowPoint{static_cast<double>(index), object.as<NSNumber>()->doubleValue()};
      });
  EXPECT_NEAR(rate->doubleValue(), 0.1, 0.00001);
}

}  // namespace
}  // namespace ORLFoundation
