
#include <ORLFoundation/platform/value/NSDecimalArithmetic.h>

#include <ORLFoundation/platform/value/NSDecimal_testing.h>

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::decimal;

/// "1.5", or "1.5!1" with an error.
std::string textOf(const NSDecimalResult& result) {
  std::string text = result.value.stringValue();
  if (result.error != NSCalculationNoError) text += "!" + std::to_string(NSUInteger{result.error});
  return text;
}

/// A result that is written with an exponent, in the digits that `textOf` gives.
std::string inFull(const std::string& result) {
  const std::size_t mark = result.find('e');
  return mark == std::string::npos ? result : decimal(result).stringValue();
}

constexpr auto kUnknownMode = static_cast<NSRoundingMode>(99);

struct RoundCase {
  const char* value;
  NSInteger scale;
  /// Plain, down, up, bankers.
  std::array<const char*, 4> rounded;
};

const std::vector<RoundCase> kRoundings = {
    {"2.5", 0, {"3", "2", "3", "2"}},
    {"-2.5", 0, {"-3", "-3", "-2", "-2"}},
    {"3.5", 0, {"4", "3", "4", "4"}},
    {"-3.5", 0, {"-4", "-4", "-3", "-4"}},
    {"2.51", 0, {"3", "2", "3", "3"}},
    {"-2.51", 0, {"-3", "-3", "-2", "-3"}},
    {"2.49", 0, {"2", "2", "3", "2"}},
    {"-2.49", 0, {"-2", "-3", "-2", "-2"}},
    {"2.000", 0, {"2", "2", "2", "2"}},
    {"0.5", 0, {"1", "0", "1", "0"}},
    {"-0.5", 0, {"-1", "-1", "0", "0"}},
    {"1.005", 2, {"1.01", "1", "1.01", "1"}},
    {"1250", -2, {"1300", "1200", "1300", "1200"}},
    {"-1350", -2, {"-1400", "-1400", "-1300", "-1400"}},
    {"50", -2, {"100", "0", "100", "0"}},
    {"49", -2, {"0", "0", "100", "0"}},
    {"3", -20, {"0", "0", "100000000000000000000", "0"}},
    {"99.99", 1, {"100", "99.9", "100", "100"}},
    {"1.5", NSDecimalNoScale, {"1.5", "1.5", "1.5", "1.5"}},
    {"1.5", 128, {"1.5", "1.5", "1.5", "1.5"}},
    {"0", -32768, {"0", "0", "0", "0"}},
    {"NaN", 2, {"NaN", "NaN", "NaN", "NaN"}},
    {"99999999999999999999999999999999999999",
     -38,
     {"100000000000000000000000000000000000000", "0", "100000000000000000000000000000000000000",
      "100000000000000000000000000000000000000"}},
    {"1234567890123456789012345678.9012345675",
     9,
     {"1234567890123456789012345678.901234568", "1234567890123456789012345678.901234567",
      "1234567890123456789012345678.901234568", "1234567890123456789012345678.901234568"}},
    {"1", -32768, {"0", "0", "NaN!3", "0"}},
    {"-1", -165, {"0", "NaN!3", "0", "0"}},
};

TEST(NSDecimalRound, FollowsEachModeOnBothSigns) {
  for (const RoundCase& row : kRoundings) {
    for (std::size_t mode = 0; mode < row.rounded.size(); ++mode) {
      const auto result = NSDecimalRound(decimal(row.value), row.scale, NSRoundingMode(mode));
      EXPECT_EQ(textOf(result), row.rounded[mode])
          << row.value << " at " << row.scale << " under mode " << mode;
    }
    EXPECT_EQ(textOf(NSDecimalRound(decimal(row.value), row.scale, kUnknownMode)), row.rounded[0]);
  }
}

struct BinaryCase {
  const char* name;
  char operation;
  const char* left;
  const char* right;
  NSRoundingMode mode;
  const char* result;
};

const std::vector<BinaryCase> kCalculations = {
    {"AlignsPlaces", '+', "0.1", "0.25", NSRoundPlain, "0.35"},
    {"CrossesZero", '+', "1", "-1.5", NSRoundPlain, "-0.5"},
    {"EndsAtZero", '-', "1.50", "1.5", NSRoundPlain, "0"},
    {"AddsZeroOfAnyExponent", '+', "0e-100", "1e100", NSRoundPlain, "1e100"},
    {"CarriesPast64Bits", '+', "18446744073709551615", "1", NSRoundPlain, "18446744073709551616"},
    {"CarriesPast38Digits", '+', "99999999999999999999999999999999999999", "1", NSRoundPlain,
     "100000000000000000000000000000000000000"},
    {"RoundsASumOnce", '+', "99999999999999999999999999999999999999", "0.5", NSRoundPlain,
     "100000000000000000000000000000000000000!1"},
    {"RoundsASumDown", '+', "99999999999999999999999999999999999999", "0.5", NSRoundDown,
     "99999999999999999999999999999999999999!1"},
    {"RoundsATieToTheEven", '+', "10000000000000000000000000000000000000", "0.5", NSRoundBankers,
     "10000000000000000000000000000000000000!1"},
    {"SeesWhatIsFarBelow", '+', "1", "1e-128", NSRoundUp,
     "1.0000000000000000000000000000000000001!1"},
    {"TakesOffWhatIsFarBelow", '-', "1", "1e-128", NSRoundDown,
     "0.99999999999999999999999999999999999999!1"},
    {"KeepsWhatIsFarBelow", '-', "1", "1e-128", NSRoundPlain, "1!1"},
    {"MultipliesExactly", '*', "19.99", "-1.0825", NSRoundPlain, "-21.639175"},
    {"MultipliesPast64Bits", '*', "18446744073709551615", "18446744073709551615", NSRoundPlain,
     "340282366920938463426481119284349108230!1"},
    {"TakesTheExponentInByZeros", '*', "1e127", "1e37", NSRoundPlain, "1e164"},
    {"Overflows", '*', "1e127", "1e38", NSRoundPlain, "NaN!3"},
    {"Underflows", '*', "1e-128", "0.1", NSRoundPlain, "0!2"},
    {"LosesHalfAUnitAtTheSmallest", '*', "1e-127", "0.05", NSRoundBankers, "0!2"},
    {"DividesEvenly", '/', "19.99", "2", NSRoundPlain, "9.995"},
    {"DividesWithoutEnd", '/', "2", "3", NSRoundPlain,
     "0.66666666666666666666666666666666666667!1"},
    {"DividesWithoutEndDown", '/', "-2", "3", NSRoundDown,
     "-0.66666666666666666666666666666666666667!1"},
    {"DividesLongByLong", '/', "99999999999999999999999999999999999999",
     "33333333333333333333333333333333333333", NSRoundPlain, "3"},
    {"DividesZero", '/', "0", "-3", NSRoundPlain, "0"},
    {"DividesByZero", '/', "5", "0", NSRoundPlain, "NaN!4"},
    {"DividesZeroByZero", '/', "0", "0", NSRoundPlain, "NaN!4"},
    {"DividesToOverflow", '/', "1e127", "1e-128", NSRoundPlain, "NaN!3"},
    {"NotANumberIsNoError", '+', "NaN", "1", NSRoundPlain, "NaN"},
    {"NotANumberPassesProducts", '*', "0", "NaN", NSRoundPlain, "NaN"},
    {"NotANumberByZeroIsNoDivision", '/', "NaN", "0", NSRoundPlain, "NaN"},
};

NSDecimalResult calculate(const BinaryCase& row) {
  const NSDecimal left = decimal(row.left);
  const NSDecimal right = decimal(row.right);
  switch (row.operation) {
    case '+':
      return NSDecimalAdd(left, right, row.mode);
    case '-':
      return NSDecimalSubtract(left, right, row.mode);
    case '*':
      return NSDecimalMultiply(left, right, row.mode);
    default:
      return NSDecimalDivide(left, right, row.mode);
  }
}

TEST(NSDecimalArithmetic, RoundsOnceAndTellsTheError) {
  for (const BinaryCase& row : kCalculations)
    EXPECT_EQ(textOf(calculate(row)), inFull(row.result)) << row.name;
}

TEST(NSDecimalArithmetic, RoundsAnUnderflowUpToTheSmallestDecimal) {
  const NSDecimal smallest = decimal("1e-128");
  const auto result = NSDecimalMultiply(smallest, smallest, NSRoundUp);
  EXPECT_EQ(result.value, smallest);
  EXPECT_EQ(result.error, NSCalculationLossOfPrecision);
}

TEST(NSDecimalArithmetic, GivesNotANumberForNotANumberOnEitherSide) {
  const NSDecimal none = NSDecimal::notANumber();
  const NSDecimal::Mantissa longest = NSDecimal::kMantissaEnd - 1;
  for (const NSDecimal::Mantissa mantissa :
       {NSDecimal::Mantissa{0}, NSDecimal::Mantissa{1}, longest / 10 * 9, longest}) {
    for (const int exponent : {NSDecimal::kSmallestExponent, 0, NSDecimal::kLargestExponent}) {
      for (const bool isNegative : {false, true}) {
        const NSDecimal number(mantissa, exponent, isNegative);
        for (const auto calculated :
             {NSDecimalAdd, NSDecimalSubtract, NSDecimalMultiply, NSDecimalDivide}) {
          EXPECT_EQ(textOf(calculated(none, number, NSRoundPlain)), "NaN") << textOf({number});
          EXPECT_EQ(textOf(calculated(number, none, NSRoundPlain)), "NaN") << textOf({number});
        }
      }
    }
  }
  EXPECT_EQ(textOf(NSDecimalMultiplyByPowerOf10(none, 0)), "NaN");
  EXPECT_EQ(textOf(NSDecimalMultiplyByPowerOf10(none, -200)), "NaN");
  EXPECT_EQ(textOf(NSDecimalRound(none, 0)), "NaN");
}

struct PowerCase {
  const char* base;
  NSInteger power;
  const char* result;
};

const std::vector<PowerCase> kPowers = {
    {"0", 0, "1"},
    {"5", 0, "1"},
    {"0", 3, "0"},
    {"0", -1, "NaN!4"},
    {"-2", 3, "-8"},
    {"-2", 4, "16"},
    {"2", -2, "0.25"},
    {"-2", -3, "-0.125"},
    {"3", -1, "0.33333333333333333333333333333333333333!1"},
    {"1", std::numeric_limits<NSInteger>::max(), "1"},
    {"-1", std::numeric_limits<NSInteger>::max(), "-1"},
    {"-1", std::numeric_limits<NSInteger>::min(), "1"},
    {"10", 164, "1e164"},
    {"10", 165, "NaN!3"},
    {"10", -128, "1e-128"},
    {"10", -129, "0!2"},
    {"2", std::numeric_limits<NSInteger>::max(), "NaN!3"},
    {"2", std::numeric_limits<NSInteger>::min(), "0!2"},
    {"0.5", std::numeric_limits<NSInteger>::max(), "0!2"},
    {"10", std::numeric_limits<NSInteger>::max(), "NaN!3"},
    {"10", std::numeric_limits<NSInteger>::min() + 1, "0!2"},
    {"0.1", std::numeric_limits<NSInteger>::max(), "0!2"},
    {"0.1", std::numeric_limits<NSInteger>::min() + 1, "NaN!3"},
    {"5", -115, "4.1538374868278621028243970633760768e-81"},
    {"55511151231257827021181583404541015625", -2, "324518553658426726783156020576256e-108"},
    {"-0.05", -113, "-10384593717069655257060992658440192e113"},
    {"NaN", 0, "NaN"},
};

TEST(NSDecimalPower, RaisesToPositiveAndNegativePowers) {
  for (const PowerCase& row : kPowers) {
    EXPECT_EQ(textOf(NSDecimalPower(decimal(row.base), row.power)), inFull(row.result))
        << row.base << " to the " << row.power;
  }
}

TEST(NSDecimalPower, KeepsTheLastDigitOfALongPower) {
  // 1.0000001 to the ten millionth, rounded from 80 digits of it.
  const auto result = NSDecimalPower(decimal("1.0000001"), 10000000);
  EXPECT_EQ(textOf(result), "2.7182816925449662711985502257778132732!1");
}

TEST(NSDecimalMultiplyByPowerOf10, MovesThePointAsFarAsItFits) {
  EXPECT_EQ(textOf(NSDecimalMultiplyByPowerOf10(decimal("1.5"), 3)), "1500");
  EXPECT_EQ(textOf(NSDecimalMultiplyByPowerOf10(decimal("-1.5"), -3)), "-0.0015");
  EXPECT_EQ(textOf(NSDecimalMultiplyByPowerOf10(decimal("1.5"), 32767)), "NaN!3");
  EXPECT_EQ(textOf(NSDecimalMultiplyByPowerOf10(decimal("1.5"), -32768)), "0!2");
  EXPECT_EQ(textOf(NSDecimalMultiplyByPowerOf10(decimal("0"), 32767)), "0");
}

}  // namespace
}  // namespace ORLFoundation
