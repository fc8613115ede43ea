#include <ORLFoundation/platform/operation/internal/ProgressFraction.h>

#include <gtest/gtest.h>

#include <boost/multiprecision/cpp_int.hpp>
#include <cstdint>
#include <limits>
#include <random>

namespace ORLFoundation::internal::operation {
namespace {

using Big = boost::multiprecision::cpp_int;

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

/// The same in numbers without an end, as told.
struct Exact {
  Big completed, total;
};

Exact exact(ProgressFraction fraction) { return {fraction.completed, fraction.total}; }

Big divisorOf(Big left, Big right) {
  while (right != 0) {
    const Big rest = left % right;
    left = right;
    right = rest;
  }
  return left;
}

Exact sum(const Exact& left, const Exact& right, int sign) {
  if (right.total == 0) return left;
  if (left.total == 0) return {sign * right.completed, right.total};
  const Big common = left.total * (right.total / divisorOf(left.total, right.total));
  return {left.completed * (common / left.total) + sign * right.completed * (common / right.total),
          common};
}

void expectSame(ProgressFraction got, const Exact& wanted) {
  EXPECT_EQ(Big(got.completed) * wanted.total, wanted.completed * Big(got.total));
  EXPECT_EQ(got.total < 0, wanted.total < 0);
  EXPECT_EQ(got.total == 0, wanted.total == 0);
}

TEST(ProgressFraction, AddsSubtractsAndMultipliesExactlyWhileItFits) {
  std::mt19937_64 random(11);
  const std::int64_t totals[] = {1, 2, 3, 7, 10, 1000, 997, 0, -1, -3, -1000};
  const auto any = [&] {
    return ProgressFraction{static_cast<std::int64_t>(random() % 4001) - 2000,
                            totals[random() % std::size(totals)]};
  };
  for (int i = 0; i < 20000; ++i) {
    const ProgressFraction left = any();
    const ProgressFraction right = any();
    expectSame(sumOf(left, right), sum(exact(left), exact(right), 1));
    expectSame(differenceOf(left, right), sum(exact(left), exact(right), -1));
    expectSame(productOf(left, right),
               {Big(left.completed) * right.completed, Big(left.total) * right.total});
  }
}

TEST(ProgressFraction, ReducesWhatDoesNotFit) {
  const ProgressFraction half = productOf({kMost - 1, kMost}, {kMost, (kMost - 1) * 1});
  EXPECT_EQ(half.completed, half.total);
  const ProgressFraction third = sumOf({1, 3'000'000'000'000}, {1, 6'000'000'000'000});
  EXPECT_TRUE(areEqual(third, {1, 2'000'000'000'000}));
}

TEST(ProgressFraction, TakesTheNearestFractionWhereReducingDoesNotHelp) {
  const ProgressFraction sum = sumOf({1, 1'000'000'007}, {1, kMost});
  EXPECT_NEAR(sum.value(), 1.0 / 1'000'000'007 + 1.0 / static_cast<double>(kMost), 1e-18);
  const ProgressFraction product = productOf({kMost, kMost - 1}, {kMost - 2, kMost - 4});
  EXPECT_NEAR(product.value(), 1, 1e-15);
  EXPECT_GT(product.total, 0);
  EXPECT_LT(productOf({kMost, kMost - 1}, {kMost - 2, 4 - kMost}).total, 0);
  EXPECT_EQ(productOf({kMost, 1}, {kMost, 1}).value(), static_cast<double>(kMost));
  EXPECT_EQ(productOf({kMost, 1}, {-kMost, 1}).completed, -kMost);
  EXPECT_NEAR(sumOf({kMost, 1}, {kMost, 3}).value(), static_cast<double>(kMost), 2);
}

TEST(ProgressFraction, EndsInAFractionForAnyCounts) {
  std::mt19937_64 random(3);
  const std::int64_t wild[] = {0, 1, -1, kMost, kLeast, kMost / 3, kLeast + 1, 1000, -1000};
  const auto any = [&] {
    return ProgressFraction{wild[random() % std::size(wild)], wild[random() % std::size(wild)]};
  };
  for (int i = 0; i < 20000; ++i) {
    ProgressFraction all = any();
    for (int step = 0; step < 5; ++step) {
      all = step % 2 == 0 ? sumOf(all, any()) : productOf(all, differenceOf(any(), any()));
      ASSERT_GE(all.value(), 0);
      ASSERT_LE(all.value(), static_cast<double>(kMost));
    }
  }
}

TEST(ProgressFraction, WeighsNothingWhereItIsOfNothing) {
  EXPECT_TRUE(areEqual(sumOf({}, {1, 2}), {1, 2}));
  EXPECT_TRUE(areEqual(sumOf({1, 2}, {}), {1, 2}));
  EXPECT_TRUE(areEqual(differenceOf({}, {1, 2}), {-1, 2}));
  EXPECT_TRUE(areEqual(sumOf({}, {}), {}));
  EXPECT_FALSE(areEqual({}, {0, 1}));
  EXPECT_FALSE(areEqual({1, 0}, {2, 0}));
  EXPECT_TRUE(areEqual({1, 2}, {500, 1000}));
  EXPECT_TRUE(areEqual({1, 2}, {-1, -2}));
}

TEST(ProgressFraction, KeepsTheSignOfATotal) {
  // As an indeterminate node's children stand to its own units, in either order.
  EXPECT_TRUE(sumOf({500, 1000}, {0, -1'000'000}).isIndeterminate());
  EXPECT_TRUE(sumOf({-1, -1}, {-1, -1000}).isIndeterminate());
  EXPECT_FALSE(sumOf({-1, -1000}, {3, 1'000'000}).total < 0);
}

}  // namespace
}  // namespace ORLFoundation::internal::operation
