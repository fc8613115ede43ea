#include <ORLFoundation/platform/value/NSDecimalSum.h>

#include <ORLFoundation/platform/value/NSDecimal_testing.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
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

TEST(NSDecimalSum, RoundsASumOfMoreThanTwoWordsAsOneOfTwo) {
  const NSDecimal most(NSDecimal::kMantissaEnd - 1, 0, false);
  const NSDecimal quarter(NSDecimal::Mantissa{1} << 126, 0, false);
  const NSDecimal little(3, 0, true);
  for (const NSDecimal& value : {most, most.negated(), quarter, quarter.negated()}) {
    std::vector<NSDecimal> values;
    for (std::int64_t count = 1; count <= 40; ++count) {
      values.push_back(value);
      for (const NSRoundingMode mode : {NSRoundPlain, NSRoundDown, NSRoundUp, NSRoundBankers}) {
        const NSDecimalResult product =
            NSDecimalMultiply(value, NSDecimal::fromInteger(count), mode);
        const NSDecimalResult sum = NSDecimalSum(values, mode);
        ASSERT_EQ(sum.value, product.value) << count;
        ASSERT_EQ(sum.error, product.error) << count;
      }
    }
  }
  EXPECT_EQ(NSDecimalSum(std::vector{quarter, quarter, little}).value,
            NSDecimalAdd(quarter, NSDecimalAdd(quarter, little).value).value);
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

// In any of the words of a product, and in none of the others.
TEST(NSDecimalSum, OfOneProductOfPowersOfTwoIsTheProduct) {
  constexpr int kMostBits = 126;
  for (int left = 0; left <= kMostBits; ++left) {
    for (int right = 0; right <= kMostBits; ++right) {
      for (const bool isNegative : {false, true}) {
        const NSDecimal one(NSDecimal::Mantissa{1} << left, 0, isNegative);
        const NSDecimal other(NSDecimal::Mantissa{1} << right, 0, false);
        const NSDecimalResult sum =
            NSDecimalSumOfProducts(std::vector{one}, std::vector{other}, NSRoundDown);
        const NSDecimalResult product = NSDecimalMultiply(one, other, NSRoundDown);
        ASSERT_EQ(sum.value, product.value) << left << " and " << right;
        ASSERT_EQ(sum.error, product.error) << left << " and " << right;
      }
    }
  }
}

/// Values one by one, which the short ways of ranges never take.
NSDecimalResult sumOneByOne(const std::vector<NSDecimal>& values, NSRoundingMode mode) {
  NSDecimalAccumulator total;
  for (const NSDecimal& value : values) total.add(value);
  return total.sum(mode);
}
NSDecimalResult sumOfProductsOneByOne(const std::vector<NSDecimal>& left,
                                      const std::vector<NSDecimal>& right, NSRoundingMode mode) {
  NSDecimalAccumulator total;
  for (std::size_t i = 0; i < left.size(); ++i) total.addProduct(left[i], right[i]);
  return total.sum(mode);
}

/// Ranges that are too short for vectors.
NSDecimalResult sumOfProductsInShortRanges(std::span<const NSDecimal> left,
                                           std::span<const NSDecimal> right, NSRoundingMode mode) {
  constexpr std::size_t kPairs = 48;
  NSDecimalAccumulator total;
  for (; left.size() > kPairs; left = left.subspan(kPairs), right = right.subspan(kPairs))
    total.addProducts(left.first(kPairs), right.first(kPairs));
  total.addProducts(left, right);
  return total.sum(mode);
}

void expectTheSumOneByOne(const std::vector<NSDecimal>& values, NSRoundingMode mode) {
  const NSDecimalResult sum = NSDecimalSum(values, mode);
  const NSDecimalResult plain = sumOneByOne(values, mode);
  ASSERT_EQ(sum.value, plain.value) << values.size() << " values";
  ASSERT_EQ(sum.error, plain.error) << values.size() << " values";
}
void expectTheProductsOneByOne(const std::vector<NSDecimal>& left,
                               const std::vector<NSDecimal>& right, NSRoundingMode mode) {
  const NSDecimalResult plain = sumOfProductsOneByOne(left, right, mode);
  for (const NSDecimalResult& sum :
       {NSDecimalSumOfProducts(left, right, mode), sumOfProductsInShortRanges(left, right, mode)}) {
    ASSERT_EQ(sum.value, plain.value) << left.size() << " pairs";
    ASSERT_EQ(sum.error, plain.error) << left.size() << " pairs";
  }
}

/// What does not go with amounts of two places and few digits.
const std::vector<NSDecimal>& strangers() {
  constexpr NSDecimal::Mantissa kWord = NSDecimal::Mantissa{1} << 64;
  static const std::vector<NSDecimal> list = {NSDecimal::notANumber(),
                                              NSDecimal(),
                                              {0, -2, true},
                                              {0, 127, false},
                                              {5, -1, false},
                                              {5, -1, true},
                                              {5, -3, false},
                                              {5, -3, true},
                                              {7, 127, true},
                                              {7, -128, false},
                                              {7, 300, false},
                                              {7, -300, true},
                                              {(kWord >> 32) - 1, -2, true},
                                              {kWord >> 32, -2, false},
                                              {(kWord >> 4) - 1, -2, true},
                                              {kWord >> 4, -2, false},
                                              {kWord - 1, -2, false},
                                              {kWord, -2, true},
                                              {kWord + 1, -2, false},
                                              {NSDecimal::kMantissaEnd - 1, -2, true}};
  return list;
}

TEST(NSDecimalSum, AddsStrangersAtEachPlaceOfARange) {
  constexpr std::size_t kMostBelow = 16;
  for (const std::size_t count :
       {1U, 15U, 16U, 17U, 31U, 32U, 33U, 49U, 63U, 64U, 65U, 127U, 128U, 129U}) {
    for (const NSDecimal& stranger : strangers()) {
      // Of long ranges, enough places to meet each of a short block and each half of a long one.
      for (std::size_t place = 0; place<count; place += count> 100 ? 5 : 1) {
        std::vector<NSDecimal> values;
        // Those after the first ones are above zero, all of a block too.
        for (std::size_t i = 0; i < count; ++i)
          values.emplace_back(1000 + i, -2, i < kMostBelow && i % 3 == 0);
        const std::vector<NSDecimal> factors = values;
        values[place] = stranger;
        expectTheSumOneByOne(values, NSRoundPlain);
        expectTheProductsOneByOne(values, factors, NSRoundPlain);
        expectTheProductsOneByOne(factors, values, NSRoundPlain);
      }
    }
  }
}

TEST(NSDecimalSum, AddsBlocksOfOneExponentAfterThoseOfAnother) {
  constexpr std::size_t kCount = 200;
  for (std::size_t change = 0; change <= kCount; ++change) {
    std::vector<NSDecimal> values(change, {125, -2, false});
    values.insert(values.end(), kCount - change, {5, -4, true});
    values.insert(values.end(), kCount, {125, -2, false});
    const std::vector<NSDecimal> factors(values.size(), {3, -1, true});
    expectTheSumOneByOne(values, NSRoundPlain);
    expectTheProductsOneByOne(values, values, NSRoundPlain);
    expectTheProductsOneByOne(values, factors, NSRoundPlain);
    expectTheProductsOneByOne(factors, values, NSRoundPlain);
  }
}

TEST(NSDecimalSum, AddsBlocksOfEachExponentUnderEachSign) {
  constexpr std::size_t kCount = 64;
  for (int exponent = NSDecimal::kSmallestExponent; exponent <= NSDecimal::kLargestExponent;
       ++exponent) {
    for (const bool isNegative : {false, true}) {
      std::vector<NSDecimal> values(kCount, {11, exponent, isNegative});
      expectTheSumOneByOne(values, NSRoundPlain);
      expectTheProductsOneByOne(values, std::vector<NSDecimal>(kCount, {3, 0, true}), NSRoundPlain);
      values.insert(values.end(), kCount, {7, 0, isNegative});
      expectTheSumOneByOne(values, NSRoundPlain);
      expectTheProductsOneByOne(values, values, NSRoundPlain);
    }
  }
}

TEST(NSDecimalSum, EndsWithTheShorterOfTwoRanges) {
  std::vector<NSDecimal> values, factors;
  for (std::uint64_t i = 0; i < 200; ++i) {
    values.emplace_back(1000 + i, -2, i % 3 == 0);
    factors.emplace_back(7 + i, -1, false);
  }
  const std::span<const NSDecimal> left(values), right(factors);
  for (std::size_t count = 0; count < values.size(); ++count) {
    const NSDecimalResult sum = sumOfProductsOneByOne(
        {values.begin(), values.begin() + static_cast<std::ptrdiff_t>(count)},
        {factors.begin(), factors.begin() + static_cast<std::ptrdiff_t>(count)}, NSRoundPlain);
    ASSERT_EQ(NSDecimalSumOfProducts(left.first(count), right).value, sum.value) << count;
    ASSERT_EQ(NSDecimalSumOfProducts(left, right.first(count)).value, sum.value) << count;
  }
}

// Behind what vectors refuse, pairs that they would take go the other way for a while.
TEST(NSDecimalSum, AddsLongRangesBehindAStranger) {
  constexpr std::size_t kCounts[] = {512, 513, 575, 576, 577, 640, 1100};
  for (const std::size_t count : kCounts) {
    for (const std::size_t place : {0U, 1U, 63U, 64U, 127U, 500U, 511U}) {
      std::vector<NSDecimal> values;
      for (std::size_t i = 0; i < count; ++i) values.emplace_back(1000 + i, -2, i % 3 == 0);
      const std::vector<NSDecimal> factors = values;
      values[place] = {7, -3, true};
      expectTheProductsOneByOne(values, factors, NSRoundPlain);
      expectTheProductsOneByOne(factors, values, NSRoundPlain);
    }
  }
}

TEST(NSDecimalSum, AddsTheLargestOfEachLength) {
  constexpr std::size_t kCount = 67;
  const auto largest = [](int bits) { return (NSDecimal::Mantissa{1} << bits) - 1; };
  for (const bool isNegative : {false, true}) {
    for (int bits = 1; bits <= 66; ++bits) {
      const std::vector<NSDecimal> left(kCount, {largest(bits), -2, isNegative});
      expectTheSumOneByOne(left, NSRoundPlain);
      for (int others = 1; others <= 66; ++others)
        expectTheProductsOneByOne(
            left, std::vector<NSDecimal>(kCount, {largest(others), -4, false}), NSRoundPlain);
    }
  }
}

/// Columns of amounts: most of one exponent and length, some not.
class ColumnSource {
 public:
  explicit ColumnSource(unsigned seed) : engine_(seed) {}

  int between(int from, int to) { return std::uniform_int_distribution<int>(from, to)(engine_); }

  std::vector<NSDecimal> column(std::size_t count) {
    const int exponent = between(0, 3) == 0 ? between(-128, 127) : between(-6, 2);
    const int bits = between(1, between(0, 1) == 0 ? 34 : 64);
    const int strange = between(0, 2);
    std::vector<NSDecimal> list;
    for (std::size_t i = 0; i < count; ++i) {
      const NSDecimal::Mantissa digits = engine_() >> (64 - bits);
      list.emplace_back(digits, exponent, between(0, 1) == 1);
      if (strange > 0 && between(0, strange == 1 ? 200 : 10) == 0) list.back() = stranger(exponent);
    }
    return list;
  }
  NSRoundingMode mode() { return static_cast<NSRoundingMode>(between(0, 4)); }

 private:
  NSDecimal stranger(int exponent) {
    const std::vector<NSDecimal>& list = strangers();
    // Not a number but seldom, which would hide all else.
    const auto choice = static_cast<std::size_t>(between(-4, static_cast<int>(list.size()) - 1));
    if (choice < list.size())
      return list[between(0, 9) == 0 ? choice : std::max(choice, std::size_t{1})];
    return {engine_(), exponent + between(-1, 1), between(0, 1) == 1};
  }

  std::mt19937_64 engine_;
};

TEST(NSDecimalSum, OfARangeIsThatOfItsValuesOneByOne) {
  ColumnSource source(1);
  for (int round = 0; round < 20; ++round) {
    for (std::size_t count = 0; count <= 200; ++count) {
      const std::vector<NSDecimal> left = source.column(count), right = source.column(count);
      const NSRoundingMode mode = source.mode();
      ASSERT_NO_FATAL_FAILURE(expectTheSumOneByOne(left, mode)) << round;
      ASSERT_NO_FATAL_FAILURE(expectTheProductsOneByOne(left, right, mode)) << round;
    }
  }
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
