
#include <ORLFoundation/platform/value/NSDecimal.h>

#include <ORLFoundation/platform/value/NSDecimal_testing.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <unordered_set>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::decimal;

std::string zeros(std::size_t count) { return std::string(count, '0'); }

TEST(NSDecimal, IsAPlainValueOfThreeWords) {
  EXPECT_EQ(sizeof(NSDecimal), 24U);
  EXPECT_TRUE(std::is_trivially_copyable_v<NSDecimal>);
}

struct TextCase {
  const char* name;
  std::string text;
  std::string value;
};

const std::vector<TextCase> kTexts = {
    {"Zero", "0", "0"},
    {"NegativeZero", "-0", "0"},
    {"ZeroWithPlaces", "0.000", "0"},
    {"ZeroWithExponent", "0e999999999999999999999", "0"},
    {"Plus", "+7.5", "7.5"},
    {"Minus", "-7.5", "-7.5"},
    {"PointFirst", ".5", "0.5"},
    {"PointLast", "5.", "5"},
    {"ZerosBefore", "007", "7"},
    {"ZerosAtTheEnd", "1.5000", "1.5"},
    {"WholeZerosStay", "1200", "1200"},
    {"Exponent", "12e+3", "12000"},
    {"ExponentWithoutSign", "12E3", "12000"},
    {"NegativeExponent", "12e-3", "0.012"},
    {"Longest", std::string(38, '9'), std::string(38, '9')},
    {"RoundsThe39thDigit", std::string(38, '1') + "5", std::string(37, '1') + "20"},
    {"RoundsDownBelowHalf", std::string(38, '1') + "49", std::string(38, '1') + "00"},
    {"RoundsUpToAnotherPlace", std::string(39, '9'), "1" + zeros(39)},
    {"ManyZerosBefore", zeros(5000) + "1.5", "1.5"},
    {"ManyZerosBehind", "1." + zeros(5000), "1"},
    {"ManyPlacesAgainstTheExponent", "0." + zeros(5000) + "25e5001", "2.5"},
    {"LargestExponent", "1e127", "1" + zeros(127)},
    {"ExponentTakenInByZeros", "1e164", "1" + zeros(164)},
    {"TooLarge", "1e165", "NaN"},
    {"FarTooLarge", "1e99999999999999999999", "NaN"},
    {"SmallestExponent", "1e-128", "0." + zeros(127) + "1"},
    {"PlacesBelowTheSmallest", "15e-129", "0." + zeros(127) + "2"},
    {"TooSmall", "1e-129", "0"},
    {"FarTooSmall", "1e-99999999999999999999", "0"},
    {"Empty", "", "NaN"},
    {"Sign", "-", "NaN"},
    {"TwoSigns", "--1", "NaN"},
    {"Point", ".", "NaN"},
    {"TwoPoints", "1.2.3", "NaN"},
    {"Word", "twelve", "NaN"},
    {"LettersBehind", "12a", "NaN"},
    {"SpaceBefore", " 12", "NaN"},
    {"SpaceBehind", "12 ", "NaN"},
    {"ExponentWithoutDigits", "1e", "NaN"},
    {"ExponentOfASign", "1e+", "NaN"},
    {"ExponentAlone", "e5", "NaN"},
    {"ExponentWithPoint", "1e1.5", "NaN"},
    {"Comma", "1,5", "NaN"},
    {"NotANumber", "NaN", "NaN"},
    {"Infinity", "inf", "NaN"},
    {"NulBehind", std::string("1\0", 2), "NaN"},
};

TEST(NSDecimal, ReadsAndWritesPlainText) {
  for (const TextCase& row : kTexts)
    EXPECT_EQ(decimal(row.text).stringValue(), row.value) << row.name;
}

TEST(NSDecimal, TakesADecimalMarkOfAnyLength) {
  EXPECT_EQ(NSDecimal::parse("1,5", ",").stringValue(), "1.5");
  EXPECT_EQ(NSDecimal::parse("1\u066B5", "\u066B").stringValue(), "1.5");
  EXPECT_TRUE(NSDecimal::parse("1.5", ",").isNaN());
  EXPECT_TRUE(NSDecimal::parse("1.5", "").isNaN());
}

TEST(NSDecimal, ComparesByValue) {
  // In rising order, each below all that follow.
  const std::vector<std::string> rising = {"NaN",
                                           "-1e164",
                                           "-1e127",
                                           "-12.5",
                                           "-12.49",
                                           "-1",
                                           "-1e-128",
                                           "0",
                                           "1e-128",
                                           "1e-127",
                                           "0.99",
                                           "1",
                                           "1.01",
                                           "9",
                                           "10",
                                           "1e38",
                                           "1.0000000000000000000000000000000000001e38",
                                           "1e127",
                                           "1e164"};
  for (std::size_t i = 0; i < rising.size(); ++i) {
    for (std::size_t j = 0; j < rising.size(); ++j) {
      const int expected = i < j ? -1 : i > j ? 1 : 0;
      EXPECT_EQ(decimal(rising[i]).compare(decimal(rising[j])), expected)
          << rising[i] << " and " << rising[j];
    }
  }
}

TEST(NSDecimal, HasOneHashForAllFormsOfAValue) {
  const NSDecimal long_(NSDecimal::Mantissa{1500}, -3, true);
  const NSDecimal short_(NSDecimal::Mantissa{15}, -1, true);
  EXPECT_EQ(long_, short_);
  EXPECT_EQ(long_.hash(), short_.hash());
  EXPECT_NE(short_.hash(), short_.negated().hash());
  EXPECT_EQ(NSDecimal(NSDecimal::Mantissa{0}, 5, true), NSDecimal::zero());
  EXPECT_EQ(NSDecimal(NSDecimal::Mantissa{0}, 5, true).hash(), NSDecimal::zero().hash());
  EXPECT_EQ(decimal("1e164").hash(), NSDecimal(NSDecimal::kMantissaEnd / 10, 127, false).hash());
  EXPECT_EQ(NSDecimal::notANumber().hash(), decimal("x").hash());
}

TEST(NSDecimal, HasManyHashesForManyValues) {
  std::unordered_set<NSUInteger> hashes;
  std::size_t values = 0;
  for (int mantissa = 1; mantissa < 1000; ++mantissa) {
    if (mantissa % 10 == 0) continue;
    for (int exponent = -4; exponent <= 4; ++exponent) {
      const NSDecimal value(static_cast<NSDecimal::Mantissa>(mantissa), exponent, false);
      hashes.insert({value.hash(), value.negated().hash()});
      values += 2;
    }
  }
  EXPECT_EQ(hashes.size(), values);
}

TEST(NSDecimal, CompactsEachCountOfZerosAsFarAsTheExponentAllows) {
  for (const unsigned first : {1U, 9U, 32768U, 65536U}) {
    NSDecimal::Mantissa mantissa = first;
    for (int zeroCount = 0; mantissa < NSDecimal::kMantissaEnd; ++zeroCount, mantissa *= 10) {
      for (int room = 0; room <= NSDecimal::kMostDigits; ++room) {
        const int exponent = NSDecimal::kLargestExponent - room;
        const int taken = std::min(zeroCount, room);
        NSDecimal::Mantissa rest = mantissa;
        for (int i = 0; i < taken; ++i) rest /= 10;
        const NSDecimal compacted = NSDecimal(mantissa, exponent, true).compacted();
        ASSERT_TRUE(compacted.mantissa() == rest) << first << " with " << zeroCount;
        ASSERT_EQ(compacted.exponent(), exponent + taken) << first << " with " << zeroCount;
        ASSERT_TRUE(compacted.isNegative());
      }
    }
  }
}

TEST(NSDecimal, CompactsAllZerosToOneFormAndLeavesNotANumberAlone) {
  const NSDecimal zero = NSDecimal(0, -5, true).compacted();
  EXPECT_TRUE(zero.isZero());
  EXPECT_EQ(zero.exponent(), 0);
  EXPECT_TRUE(NSDecimal::notANumber().compacted().isNaN());
}

TEST(NSDecimal, CompactsAsFarAsTheExponentAllows) {
  const NSDecimal compacted = decimal("120000000000000000000000000000000000e5").compacted();
  EXPECT_TRUE(compacted.mantissa() == 12);
  EXPECT_EQ(compacted.exponent(), 39);
  const NSDecimal largest = decimal("12e130").compacted();
  EXPECT_TRUE(largest.mantissa() == 12000);
  EXPECT_EQ(largest.exponent(), 127);
}

TEST(NSDecimal, NegatesAllButZeroAndNotANumber) {
  EXPECT_EQ(decimal("1.5").negated().stringValue(), "-1.5");
  EXPECT_EQ(decimal("-1.5").negated().stringValue(), "1.5");
  EXPECT_FALSE(NSDecimal::zero().negated().isNegative());
  EXPECT_TRUE(NSDecimal::notANumber().negated().isNaN());
}

TEST(NSDecimal, HoldsIntegersOfBothKinds) {
  EXPECT_EQ(NSDecimal::fromInteger(std::numeric_limits<std::int64_t>::min()).stringValue(),
            "-9223372036854775808");
  EXPECT_EQ(NSDecimal::fromUnsigned(std::numeric_limits<std::uint64_t>::max()).stringValue(),
            "18446744073709551615");
}

struct DoubleCase {
  const char* name;
  double binary;
  std::string value;
};

const std::vector<DoubleCase> kDoubles = {
    {"Whole", 1250, "1250"},
    {"Half", -0.5, "-0.5"},
    {"NegativeZero", -0.0, "0"},
    {"ATenthIsNotExact", 0.1, "0.10000000000000000555111512312578270212"},
    {"LongestExact", std::ldexp(1, -38), "0.00000000000363797880709171295166015625"},
    {"LargeWhole", 1e22, "10000000000000000000000"},
    {"PastThe38thDigit", 1e40, "10000000000000000303786028427003666891000"},
    {"TooLarge", 1e300, "NaN"},
    {"TooSmall", 1e-300, "0"},
    {"SmallestDouble", std::numeric_limits<double>::denorm_min(), "0"},
    {"Infinity", std::numeric_limits<double>::infinity(), "NaN"},
    {"NotANumber", std::numeric_limits<double>::quiet_NaN(), "NaN"},
};

TEST(NSDecimal, TakesDoublesAsExactlyAs38DigitsCan) {
  for (const DoubleCase& row : kDoubles)
    EXPECT_EQ(NSDecimal::fromDouble(row.binary).stringValue(), row.value) << row.name;
}

TEST(NSDecimal, GivesTheNearestDouble) {
  EXPECT_EQ(decimal("0.1").doubleValue(), 0.1);
  EXPECT_EQ(decimal("-2.675").doubleValue(), -2.675);
  EXPECT_EQ(decimal("9007199254740993").doubleValue(), 9007199254740992.0) << "a tie to the even";
  EXPECT_EQ(decimal("9007199254740993.0000000000000000001").doubleValue(), 9007199254740994.0);
  EXPECT_EQ(decimal("1e23").doubleValue(), 1e23);
  EXPECT_EQ(decimal("1e-128").doubleValue(), 1e-128);
  EXPECT_EQ(decimal("1e164").doubleValue(), 1e164);
  EXPECT_FALSE(std::signbit(NSDecimal::zero().doubleValue()));
  EXPECT_TRUE(std::isnan(NSDecimal::notANumber().doubleValue()));
}

TEST(NSDecimal, WritesItsLongestTextIntoTheLongestBuffer) {
  char text[NSDecimal::kLongestText];
  const NSDecimal longest(NSDecimal::kMantissaEnd - 1, 127, true);
  EXPECT_EQ(longest.writeTo(text) - text, 166);
  const NSDecimal smallest(NSDecimal::kMantissaEnd - 1, -128, true);
  EXPECT_EQ(smallest.writeTo(text) - text, 131);
}

}  // namespace
}  // namespace ORLFoundation
