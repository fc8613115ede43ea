
#include <ORLFoundation/platform/object/NSNumber.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace ORLFoundation {
namespace {

constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t kUnsignedMax = std::numeric_limits<std::uint64_t>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kNaN = std::nan("");

NSDecimal decimal(const char* text) { return NSDecimal::parse(text); }

/// In ascending order; the numbers of one row are equal.
const std::vector<std::vector<NSNumber>> kOrder = {
    {kNaN, NSDecimal::notANumber()},
    {-kInfinity},
    {-1e300},
    {decimal("-1e127")},
    {-9223372036854777856.0},
    {kMin, -9223372036854775808.0, decimal("-9223372036854775808")},
    {kMin + 1},
    {-1.5, decimal("-1.50")},
    {-1, -1.0, decimal("-1")},
    {-0.5},
    {0, false, 0U, 0.0, -0.0, decimal("0"), decimal("0.000")},
    {5e-324},
    {decimal("1e-128")},
    {decimal("0.1")},
    {0.1},  // a little more than the decimal: 0.1000000000000000055...
    {0.3},  // a little less: 0.2999999999999999888...
    {decimal("0.3")},
    {1, true, 1U, 1.0, decimal("1.00")},
    {9007199254740992, 9007199254740992.0, decimal("9007199254740992")},
    {9007199254740993, decimal("9007199254740993")},  // no double
    {kMax, std::uint64_t{9223372036854775807U}, decimal("9223372036854775807")},
    {std::uint64_t{9223372036854775808U}, 9223372036854775808.0, decimal("9223372036854775808")},
    {kUnsignedMax, decimal("18446744073709551615")},
    {18446744073709551616.0, decimal("18446744073709551616")},
    {decimal("1e127")},
    {1e300},
    {kInfinity},
};

TEST(NSNumber, ComparesExactlyAcrossKinds) {
  for (std::size_t i = 0; i < kOrder.size(); ++i)
    for (std::size_t j = 0; j < kOrder.size(); ++j)
      for (const NSNumber& left : kOrder[i])
        for (const NSNumber& right : kOrder[j]) {
          const auto expected = i < j    ? NSOrderedAscending
                                : i == j ? NSOrderedSame
                                         : NSOrderedDescending;
          EXPECT_EQ(left.compare(right), expected) << left.stringValue() << " in row " << i << ", "
                                                   << right.stringValue() << " in row " << j;
        }
}

TEST(NSNumber, HashesEqualNumbersAlikeAcrossKinds) {
  for (const auto& row : kOrder)
    for (const NSNumber& number : row)
      EXPECT_EQ(number.hash(), row.front().hash()) << number.stringValue();
}

TEST(NSNumber, EqualsNoNil) {
  EXPECT_FALSE(NSNumber(0).isEqualToNumber(std::nullopt));
  EXPECT_TRUE(NSNumber(1).isEqualToNumber(NSNumber(true)));
}

struct ValuesCase {
  const char* name;
  NSNumber number;
  bool asBool;
  NSInteger asInteger;
  NSUInteger asUnsigned;
  double asDouble;
  const char* asText;
};
const ValuesCase kValues[] = {
    {"True", true, true, 1, 1, 1, "1"},
    {"False", false, false, 0, 0, 0, "0"},
    {"Negative", -7, true, -7, static_cast<NSUInteger>(-7), -7, "-7"},
    {"LargestUnsigned", kUnsignedMax, true, -1, kUnsignedMax, 18446744073709551616.0,
     "18446744073709551615"},
    {"Fraction", -2.75, true, -2, static_cast<NSUInteger>(-2), -2.75, "-2.75"},
    {"SmallFraction", 0.25, true, 0, 0, 0.25, "0.25"},
    {"DoubleBeyondIntegers", 1e30, true, kMax, kUnsignedMax, 1e30, "1e+30"},
    {"DoubleBelowIntegers", -1e30, true, kMin, static_cast<NSUInteger>(kMin), -1e30, "-1e+30"},
    {"Infinite", kInfinity, true, kMax, kUnsignedMax, kInfinity, "inf"},
    {"UnsignedDouble", 1e19, true, kMax, 10000000000000000000U, 1e19, "1e+19"},
    {"Decimal", decimal("-12.50"), true, -12, static_cast<NSUInteger>(-12), -12.5, "-12.5"},
    {"DecimalBeyondIntegers", decimal("1e20"), true, kMax, kUnsignedMax, 1e20,
     "100000000000000000000"},
    {"DecimalBelowIntegers", decimal("-1e20"), true, kMin, static_cast<NSUInteger>(kMin), -1e20,
     "-100000000000000000000"},
    {"SmallDecimal", decimal("0.00001"), true, 0, 0, 0.00001, "0.00001"},
    {"TinyDecimal", decimal("1e-128"), true, 0, 0, 1e-128, nullptr},
};

TEST(NSNumber, ConvertsBetweenKinds) {
  for (const auto& row : kValues) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(row.number.boolValue(), row.asBool);
    EXPECT_EQ(row.number.integerValue(), row.asInteger);
    EXPECT_EQ(row.number.unsignedIntegerValue(), row.asUnsigned);
    EXPECT_EQ(row.number.doubleValue(), row.asDouble);
    if (row.asText) {
      EXPECT_EQ(row.number.stringValue(), row.asText);
    }
  }
}

TEST(NSNumber, CountsNotANumberAsZeroWhereIntegersAreAsked) {
  for (const NSNumber& number : {NSNumber(kNaN), NSNumber(NSDecimal::notANumber())}) {
    EXPECT_EQ(number.integerValue(), 0);
    EXPECT_EQ(number.unsignedIntegerValue(), 0U);
    EXPECT_TRUE(number.boolValue());
    EXPECT_TRUE(std::isnan(number.doubleValue()));
  }
}

TEST(NSNumber, CutsTheLow32BitsForInt) {
  EXPECT_EQ(NSNumber(std::int64_t{0x100000005}).intValue(), 5);
  EXPECT_EQ(NSNumber(-3.9).intValue(), -3);
}

struct TextCase {
  double value;
  const char* text;
};
const TextCase kDoubleTexts[] = {
    {0.1, "0.1"},
    {0.1 + 0.2, "0.30000000000000004"},
    {1.0 / 3, "0.3333333333333333"},
    {100000, "100000"},
    {1e15, "1000000000000000"},
    {1e16, "1e+16"},
    {1e-5, "1e-05"},
    {-0.0, "-0"},
    {123456.789, "123456.789"},
};

TEST(NSNumber, PrintsDoublesAsShortAsTheyReadBack) {
  for (const auto& row : kDoubleTexts) EXPECT_EQ(NSNumber(row.value).description(), row.text);
}

TEST(NSNumber, GivesTheDecimalOfADoublesShortestText) {
  EXPECT_EQ(NSNumber(0.1).decimalValue(), decimal("0.1"));
  EXPECT_EQ(NSNumber(-1e22).decimalValue(), decimal("-1e22"));
  EXPECT_TRUE(NSNumber(kInfinity).decimalValue().isNaN());
  EXPECT_EQ(NSNumber(kUnsignedMax).decimalValue(), decimal("18446744073709551615"));
  EXPECT_EQ(NSNumber(true).decimalValue(), decimal("1"));
}

}  // namespace
}  // namespace ORLFoundation
