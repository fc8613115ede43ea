
#include <ORLFoundation/platform/text/NSStringNumbers.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace ORLFoundation {
namespace {

struct IntegerCase {
  std::string_view name, text;
  NSInteger value;
};
const IntegerCase kIntegerCases[] = {
    {"Empty", "", 0},
    {"Digits", "42", 42},
    {"StopsAtTheFirstOtherCharacter", "42abc", 42},
    {"StopsAtAPoint", "-3.99", -3},
    {"StopsAtAnExponent", "1e3", 1},
    {"StopsAtAGroupMark", "1,234", 1},
    {"TakesASign", "+1", 1},
    {"TakesOneSignOnly", "+-5", 0},
    {"SkipsLeadingSpace", " \t\n 7", 7},
    {"SpaceAfterTheSignEndsIt", "- 7", 0},
    {"LeadingZerosAreDecimal", "007", 7},
    {"Words", "abc", 0},
    {"SignAlone", "-", 0},
    {"SpaceAlone", "  ", 0},
    {"SpaceOfOtherScripts", "\u00A0\u3000\u2028 7", 7},
    {"BrokenBytesAreNoSpace", "\xC2 7", 0},
    {"DigitsOfOtherScripts", "\xD9\xA1\xD9\xA2", 0},
    {"Largest", "9223372036854775807", NSIntegerMax},
    {"PastTheLargest", "9223372036854775808", NSIntegerMax},
    {"FarPastTheLargest", "99999999999999999999999", NSIntegerMax},
    {"Smallest", "-9223372036854775808", NSIntegerMin},
    {"PastTheSmallest", "-9223372036854775809", NSIntegerMin},
};

TEST(IntegerValue, ReadsTheBeginningOfAText) {
  for (const IntegerCase& row : kIntegerCases)
    EXPECT_EQ(integerValue(row.text), row.value) << row.name;
}

TEST(LongLongValue, IsTheSame) {
  for (const IntegerCase& row : kIntegerCases)
    EXPECT_EQ(longLongValue(row.text), row.value) << row.name;
}

constexpr double kInfinite = std::numeric_limits<double>::infinity();

struct DoubleCase {
  std::string_view name, text;
  double value;
};
const DoubleCase kDoubleCases[] = {
    {"Empty", "", 0},
    {"Whole", "42abc", 42},
    {"Fraction", "-3.99", -3.99},
    {"NothingBeforeThePoint", ".5", 0.5},
    {"NothingBehindThePoint", "5.", 5},
    {"ThePointAlone", ".", 0},
    {"TheSecondPointEndsIt", "12.5.6", 12.5},
    {"AGroupMarkEndsIt", "1,234", 1},
    {"Exponent", "1e3", 1000},
    {"SignedExponent", "25E-1x", 2.5},
    {"AnExponentNeedsDigits", "1e", 1},
    {"AnExponentNeedsDigitsBehindItsSign", "1e+", 1},
    {"AnExponentNeedsANumber", "e5", 0},
    {"TooLarge", "1e400", kInfinite},
    {"TooSmallANumber", "-1e400", -kInfinite},
    {"TooCloseToZero", "1e-400", 0},
    {"ManyZerosMakeItSmall", "0.0001e-400", 0},
    {"ManyDigitsMakeItLarge", "100000e305", kInfinite},
    {"AHugeExponent", "1e99999999999999999999", kInfinite},
    {"AHugeNegativeExponent", "1e-99999999999999999999", 0},
    {"ZeroWithAHugeExponent", "0e99999999999999999999", 0},
    {"WordsAreNoNumbers", "inf", 0},
    {"NotANumberIsNone", "NaN", 0},
    {"HexadecimalEndsAtItsLetter", "0x1F", 0},
    {"LeadingSpace", " \u00A0\n-7.5", -7.5},
    {"TwoSigns", "--5", 0},
};

TEST(DoubleValue, ReadsTheBeginningOfAText) {
  for (const DoubleCase& row : kDoubleCases)
    EXPECT_EQ(doubleValue(row.text), row.value) << row.name;
}

TEST(DoubleValue, ReadsLongTexts) {
  EXPECT_EQ(doubleValue(std::string(100000, '1')), kInfinite);
  EXPECT_EQ(doubleValue(std::string("0.").append(100000, '0').append("1")), 0);
  EXPECT_EQ(doubleValue(std::string("0.").append(400, '0').append("1e401")), 1);
}

struct BooleanCase {
  std::string_view text;
  bool value;
};
const BooleanCase kBooleanCases[] = {
    {"", false},      {"0", false},   {"1", true},      {"-1", true},      {"+9", true},
    {"007", true},    {"000", false}, {"0.1", false},   {".5", false},     {"-3.99", true},
    {"YES", true},    {"yes", true},  {"Y", true},      {"true", true},    {"T", true},
    {"NO", false},    {"no", false},  {"false", false}, {"on", false},     {"0x1", false},
    {"  true", true}, {"--5", false}, {"-", false},     {"\u00A01", true}, {"00y", true},
};

TEST(BoolValue, ReadsTheBeginningOfAText) {
  for (const BooleanCase& row : kBooleanCases)
    EXPECT_EQ(boolValue(row.text), row.value) << row.text;
}

}  // namespace
}  // namespace ORLFoundation
