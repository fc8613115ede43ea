#include <ORLFoundation/platform/value/NSDecimalSum.h>

#include <ORLFoundation/platform/value/NSDecimal_testing.h>
#include <gtest/gtest.h>

#include <string_view>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::decimal;

std::vector<NSDecimal> decimals(std::initializer_list<std::string_view> texts) {
  std::vector<NSDecimal> list;
  for (const std::string_view text : texts) list.push_back(decimal(text));
  return list;
}

TEST(NSDecimalSum, IsZeroForNothing) {
  const NSDecimalResult sum = NSDecimalSum({});
  EXPECT_TRUE(sum.value.isZero());
  EXPECT_EQ(sum.error, NSCalculationNoError);
  EXPECT_TRUE(NSDecimalSumOfProducts({}, {}).value.isZero());
}

TEST(NSDecimalSum, AddsAmountsOfAnyExponents) {
  EXPECT_EQ(NSDecimalSum(decimals({"1.25", "-0.255", "1e20", "3"})).value,
            decimal("100000000000000000003.995"));
  EXPECT_TRUE(NSDecimalSum(decimals({"0.1", "0.2", "-0.3"})).value.isZero());
}

TEST(NSDecimalSum, RoundsOnceAtTheEnd) {
  // One after the other, each 1 would be lost beside 1e38.
  const auto values = decimals({"1e38", "1", "1", "1", "1", "1", "1"});
  const NSDecimalResult down = NSDecimalSum(values, NSRoundDown);
  EXPECT_EQ(down.value, decimal("1e38"));
  EXPECT_EQ(down.error, NSCalculationLossOfPrecision);
  EXPECT_EQ(NSDecimalSum(values).value, decimal("100000000000000000000000000000000000010"));
  NSDecimal loop;
  for (const NSDecimal& value : values) loop = NSDecimalAdd(loop, value).value;
  EXPECT_EQ(loop, decimal("1e38"));
}

TEST(NSDecimalSum, GoesBeyondDecimalsOnItsWay) {
  const NSDecimal most(NSDecimal::kMantissaEnd - 1, NSDecimal::kLargestExponent, false);
  EXPECT_EQ(NSDecimalSum(std::vector{most, most, most.negated()}).value, most);
  const NSDecimalResult tooLarge = NSDecimalSum(std::vector{most, most});
  EXPECT_TRUE(tooLarge.value.isNaN());
  EXPECT_EQ(tooLarge.error, NSCalculationOverflow);
}

TEST(NSDecimalSum, TellsAProductThatIsTooSmall) {
  const NSDecimal least(1, NSDecimal::kSmallestExponent, false);
  const NSDecimalResult sum = NSDecimalSumOfProducts(std::vector{least}, std::vector{least});
  EXPECT_TRUE(sum.value.isZero());
  EXPECT_EQ(sum.error, NSCalculationUnderflow);
}

TEST(NSDecimalSum, IsNotANumberWhereOneIsNone) {
  for (const std::size_t place : {0U, 1U, 2U}) {
    std::vector<NSDecimal> values = decimals({"1", "2.5", "3"});
    values[place] = NSDecimal::notANumber();
    const std::vector<NSDecimal> zeros(3);
    for (const NSDecimalResult& sum : {NSDecimalSum(values), NSDecimalSumOfProducts(values, zeros),
                                       NSDecimalSumOfProducts(zeros, values)}) {
      EXPECT_TRUE(sum.value.isNaN());
      EXPECT_EQ(sum.error, NSCalculationNoError);
    }
  }
}

TEST(NSDecimalSum, PairsTheProductsByPlace) {
  EXPECT_EQ(
      NSDecimalSumOfProducts(decimals({"2", "-10.5", "1e-3"}), decimals({"19.99", "3", "7"})).value,
      decimal("8.487"));
  EXPECT_EQ(NSDecimalSumOfProducts(decimals({"2", "100"}), decimals({"3"})).value, decimal("6"));
}

TEST(NSDecimalAccumulator, GoesOnAfterASum) {
  NSDecimalAccumulator total;
  total.add(decimal("0.1"));
  EXPECT_EQ(total.sum().value, decimal("0.1"));
  total.addProduct(decimal("0.3"), decimal("3"));
  EXPECT_EQ(total.sum().value, decimal("1"));
  NSDecimalAccumulator other = total;
  other.add(decimal("1"));
  EXPECT_EQ(other.sum().value, decimal("2"));
  EXPECT_EQ(total.sum().value, decimal("1"));
}

TEST(NSDecimalAccumulator, TreatsUnknownModesLikePlainRounding) {
  NSDecimalAccumulator total;
  total.add(decimal("1e38"));
  total.add(decimal("5"));
  EXPECT_EQ(total.sum(static_cast<NSRoundingMode>(99)).value,
            decimal("100000000000000000000000000000000000010"));
}

}  // namespace
}  // namespace ORLFoundation
