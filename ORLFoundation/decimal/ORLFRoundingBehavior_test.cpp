#include <ORLFoundation/decimal/ORLFRoundingBehavior.h>

#include <ORLFoundation/platform/number/NSDecimalNumber_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <boost/multiprecision/cpp_int.hpp>
#include <optional>
#include <random>
#include <string>
#include <string_view>

namespace ORLFoundation {
namespace {

constexpr std::array kModes = {NSRoundPlain, NSRoundDown, NSRoundUp, NSRoundBankers};

/// Two thirds of 38 digits, the last of which is told.
std::string twoThirds(char last) { return "0." + std::string(37, '6') + last; }

struct ThirdCase {
  NSRoundingMode mode;
  const char* left;
  std::string quotient;
};

TEST(ORLFRoundingBehavior, TakesAResultOfMoreThan38DigitsUnderItsMode) {
  const ThirdCase cases[] = {
      {NSRoundPlain, "2", twoThirds('7')},       {NSRoundDown, "2", twoThirds('6')},
      {NSRoundUp, "2", twoThirds('7')},          {NSRoundBankers, "2", twoThirds('7')},
      {NSRoundDown, "-2", "-" + twoThirds('7')}, {NSRoundUp, "-2", "-" + twoThirds('6')}};
  for (const ThirdCase& row : cases) {
    const ORLFRoundingBehavior behavior(row.mode);
    EXPECT_EQ(textOf(number(row.left).decimalNumberByDividingBy(number("3"), &behavior)),
              row.quotient)
        << row.mode << " " << row.left;
  }
}

TEST(ORLFRoundingBehavior, RoundsSumsThatReachPast38Digits) {
  const ORLFRoundingBehavior down(NSRoundDown, 2);
  const ORLFRoundingBehavior up(NSRoundUp, 2);
  const ORLFRoundingBehavior plain(NSRoundPlain, 2);
  EXPECT_EQ(textOf(number("1").decimalNumberBySubtracting(number("1e-60"), &down)), "0.99");
  EXPECT_EQ(textOf(number("1").decimalNumberBySubtracting(number("1e-60"), &plain)), "1");
  EXPECT_EQ(textOf(number("1").decimalNumberByAdding(number("1e-60"), &up)), "1.01");
  EXPECT_EQ(textOf(number("-1").decimalNumberByAdding(number("1e-60"), &up)), "-0.99");
}

struct OnceCase {
  const char* name;
  NSRoundingMode mode;
  std::string left;
  std::string right;
  std::string sum;
};

/// Sums at and beside a tie, told apart only by a digit behind the 38th. Rounded to 38 digits first
/// they would all be the tie.
TEST(ORLFRoundingBehavior, RoundsOnceFromTheExactResultToItsScale) {
  const std::string tiny = "1e-60";
  const std::string minusTiny = "-1e-60";
  const OnceCase cases[] = {
      {"PlainBelowTheTie", NSRoundPlain, "1.005", minusTiny, "1"},
      {"PlainAboveTheTie", NSRoundPlain, "1.005", tiny, "1.01"},
      {"PlainBelowTheTieOfANegative", NSRoundPlain, "-1.005", tiny, "-1"},
      {"PlainAboveTheTieOfANegative", NSRoundPlain, "-1.005", minusTiny, "-1.01"},
      {"BankersBelowTheTieOfAnOddDigit", NSRoundBankers, "1.015", minusTiny, "1.01"},
      {"BankersAboveTheTieOfAnEvenDigit", NSRoundBankers, "1.005", tiny, "1.01"},
      {"BankersAboveTheTieOfANegative", NSRoundBankers, "-1.005", minusTiny, "-1.01"},
      {"DownBelowADigit", NSRoundDown, "1.01", minusTiny, "1"},
      {"DownBelowADigitOfANegative", NSRoundDown, "-1.01", minusTiny, "-1.02"},
      {"UpAboveADigit", NSRoundUp, "1.01", tiny, "1.02"},
      {"UpAboveADigitOfANegative", NSRoundUp, "-1.01", tiny, "-1"},
  };
  for (const OnceCase& row : cases) {
    const ORLFRoundingBehavior behavior(row.mode, 2);
    EXPECT_EQ(textOf(number(row.left).decimalNumberByAdding(number(row.right), &behavior)), row.sum)
        << row.name;
  }
}

using Integer = boost::multiprecision::cpp_int;

/// The quotient of two whole numbers rounded to a whole number, in integers without end.
Integer roundedQuotient(const Integer& left, const Integer& right, NSRoundingMode mode) {
  const bool isNegative = (left < 0) != (right < 0) && left != 0;
  const Integer top = abs(left);
  const Integer bottom = abs(right);
  Integer kept = top / bottom;
  const Integer twice = (top % bottom) * 2;
  const bool isInexact = twice != 0;
  const bool isTie = twice == bottom;
  const bool goesAway = mode == NSRoundDown    ? isInexact && isNegative
                        : mode == NSRoundUp    ? isInexact && !isNegative
                        : mode == NSRoundPlain ? twice >= bottom
                                               : twice > bottom || (isTie && kept % 2 != 0);
  if (goesAway) ++kept;
  return isNegative ? Integer(-kept) : kept;
}

std::string randomDigits(std::mt19937_64& engine, std::size_t count) {
  std::string digits = std::to_string(1 + engine() % 9);
  // Runs of a digit and ties are where roundings go wrong.
  const char filler = "0459"[engine() % 4];
  for (std::size_t i = 1; i < count; ++i)
    digits += engine() % 3 == 0 ? static_cast<char>('0' + engine() % 10) : filler;
  return digits;
}

TEST(ORLFRoundingBehavior, AgreesWithIntegersWithoutEnd) {
  std::mt19937_64 engine(7);
  int inexact = 0;
  for (int i = 0; i < 4000; ++i) {
    const std::string left = randomDigits(engine, 20 + engine() % 19);
    const std::string right = (i % 2 == 0 ? "-" : "") + randomDigits(engine, 1 + engine() % 18);
    for (const NSRoundingMode mode : kModes) {
      const ORLFRoundingBehavior whole(mode, 0);
      const NSDecimalNumber quotient =
          *number(left).decimalNumberByDividingBy(number(right), &whole);
      EXPECT_EQ(quotient.stringValue(), roundedQuotient(Integer(left), Integer(right), mode).str())
          << left << " / " << right << " mode " << mode;
      // A product of more than 38 digits, rounded where at most 38 of them stay.
      const ORLFRoundingBehavior far(mode, -20);
      const Integer product = Integer(left) * Integer(right);
      const Integer unit = pow(Integer(10), 20);
      const NSDecimalNumber rounded =
          *number(left).decimalNumberByMultiplyingBy(number(right), &far);
      EXPECT_EQ(rounded.stringValue(), Integer(roundedQuotient(product, unit, mode) * unit).str())
          << left << " * " << right << " mode " << mode;
      inexact += Integer(abs(product)).str().size() > 38 ? 1 : 0;
    }
  }
  EXPECT_GT(inexact, 4000);
}

TEST(ORLFRoundingBehavior, AnswersOtherErrorsAsTold) {
  const NSDecimalNumber large = number("1e127");
  const NSDecimalNumber small = number("1e-128");
  const auto answers = [&](std::int32_t code) {
    const ORLFRoundingBehavior behavior(NSRoundPlain, 2, code);
    return textOf(large.decimalNumberByMultiplyingBy(large, &behavior)) + " " +
           textOf(small.decimalNumberByMultiplyingBy(small, &behavior)) + " " +
           textOf(large.decimalNumberByDividingBy(number("0"), &behavior));
  };
  EXPECT_EQ(answers(ORLFDecimalErrorBehaviorReturnNil), "nil nil nil");
  EXPECT_EQ(answers(ORLFDecimalErrorBehaviorReturnZero), "0 0 0");
  EXPECT_THROW((void)answers(ORLFDecimalErrorBehaviorRaise), NSException);
  const ORLFRoundingBehavior raising(NSRoundPlain);
  EXPECT_THROW((void)large.decimalNumberByDividingBy(number("0"), &raising), NSException);
}

TEST(ORLFRoundingBehavior, TellsTheOperandsOfAnErrorInTheirOrder) {
  const ORLFRoundingBehavior raising(NSRoundPlain);
  std::string reason;
  try {
    (void)number("7").decimalNumberByDividingBy(number("0"), &raising);
  } catch (const NSException& exception) {
    reason = exception.reason();
  }
  EXPECT_EQ(reason, "The error was 4 for left=7 and right=0");
}

}  // namespace
}  // namespace ORLFoundation
