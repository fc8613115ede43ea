
#include <ORLFoundation/decimal/ORLFDecimalSolver.h>

#include <ORLFoundation/decimal/ORLFDecimalNumberHandler.h>
#include <ORLFoundation/platform/number/NSDecimalNumber_testing.h>
#include <gtest/gtest.h>

#include <string>

namespace ORLFoundation {
namespace {

const NSDecimalNumberBehaviors* places(std::int16_t scale) {
  static const ORLFDecimalNumberHandler cents({.scale = 2});
  static const ORLFDecimalNumberHandler hundreds({.scale = -2});
  return scale == 2 ? &cents : &hundreds;
}

/// The candidates of a search for a target, and what it found.
struct Trace {
  std::string candidates;
  std::string found;
};

Trace trace(const Optional& lower, const Optional& upper, std::string_view target,
            std::int16_t scale = 2, int stopAtCall = 0) {
  Trace made;
  int calls = 0;
  const auto answer = aproximateValueUsingLinearRegressionLowerBound(
      lower, upper, places(scale), [&](const NSDecimalNumber& candidate, bool& stop) -> NSInteger {
        made.candidates += candidate.stringValue() + " ";
        stop = ++calls == stopAtCall;
        return candidate.compare(number(target));
      });
  made.found = textOf(answer);
  return made;
}

TEST(ORLFDecimalSolver, SearchesBothBoundsThenHalves) {
  const Trace found = trace(std::nullopt, std::nullopt, "7");
  EXPECT_EQ(found.candidates, "0 10 5 7.5 6.25 6.88 7.19 7.04 6.96 7 ");
  EXPECT_EQ(found.found, "7");
}

TEST(ORLFDecimalSolver, ComesWithinTheLastPlaceOfATargetBetweenTwo) {
  const Trace found = trace(std::nullopt, std::nullopt, "7.004");
  const NSDecimalNumber off = number(found.found).decimalNumberBySubtracting(number("7.004"));
  EXPECT_LE(off.compare(number("0.01")), NSOrderedSame);
  EXPECT_GE(off.compare(number("-0.01")), NSOrderedSame);
}

TEST(ORLFDecimalSolver, MovesTheUpperBoundWhileItSearchesDownward) {
  EXPECT_EQ(trace(std::nullopt, std::nullopt, "-150").candidates.substr(0, 26),
            "0 -10 -100 -1000 -550 -325");
  // The given upper bound gives way to the candidate before the last.
  EXPECT_EQ(trace(std::nullopt, number("5000"), "-7").candidates.substr(0, 9), "0 -10 -5 ");
}

TEST(ORLFDecimalSolver, KeepsAGivenUpperBoundAboveTheFirstCandidate) {
  EXPECT_EQ(trace(std::nullopt, number("8"), "2").candidates, "0 4 2 ");
}

TEST(ORLFDecimalSolver, SearchesUpwardFromTenWhateverTheLowerBound) {
  EXPECT_EQ(trace(number("50"), std::nullopt, "75").candidates, "10 100 75 ");
}

TEST(ORLFDecimalSolver, GivesEqualBoundsUnasked) {
  const Trace found = trace(number("3.10"), number("3.1"), "7");
  EXPECT_EQ(found.candidates, "");
  EXPECT_EQ(found.found, "3.1");
}

TEST(ORLFDecimalSolver, GivesNilForReversedBounds) {
  const Trace found = trace(number("3"), number("2"), "2.5");
  EXPECT_EQ(found.candidates + found.found, "nil");
}

TEST(ORLFDecimalSolver, GivesNilForATargetOutsideTheGivenBounds) {
  EXPECT_EQ(trace(number("0"), number("10"), "11").found, "nil");
}

TEST(ORLFDecimalSolver, SeesATargetBelowTheLowerBoundOnlyWhereTheMidpointRoundsDownToIt) {
  const auto below = [](NSRoundingMode mode) {
    const ORLFDecimalNumberHandler cents({.roundingMode = mode, .scale = 2});
    return aproximateValueUsingLinearRegressionLowerBound(
        number("0"), number("10"), &cents, [](const NSDecimalNumber&, bool&) { return 1; });
  };
  EXPECT_EQ(below(NSRoundDown), std::nullopt);
  EXPECT_EQ(below(NSRoundBankers), std::nullopt);
  // The midpoint of 0 and 0.01 rounds to 0.01, which is not the caller's bound.
  EXPECT_EQ(below(NSRoundPlain), number("0.01"));
}

TEST(ORLFDecimalSolver, FindsATargetInsideTheGivenBounds) {
  EXPECT_EQ(trace(number("0"), number("10"), "9.99").found, "9.99");
  EXPECT_EQ(trace(number("0"), number("1000"), "700", -2).found, "700");
}

TEST(ORLFDecimalSolver, GivesNilForAStopUnlessThatCallWasTheAnswer) {
  for (int call = 1; call <= 9; ++call)
    EXPECT_EQ(trace(std::nullopt, std::nullopt, "7", 2, call).found, "nil") << call;
  EXPECT_EQ(trace(std::nullopt, std::nullopt, "0", 2, 1).found, "0");
  EXPECT_EQ(trace(std::nullopt, std::nullopt, "10", 2, 2).found, "10");
  // While it halves, a stop counts more than the answer.
  EXPECT_EQ(trace(std::nullopt, std::nullopt, "7", 2, 10).found, "nil");
}

TEST(ORLFDecimalSolver, GivesNilUnaskedWhereTheMidpointIsAnError) {
  const ORLFDecimalNumberHandler exact(
      {.scale = NSDecimalNoScale, .exactnessBehavior = ORLFDecimalErrorBehaviorReturnNil});
  int calls = 0;
  // Half of 38 nines has 39 digits.
  const auto found = aproximateValueUsingLinearRegressionLowerBound(
      number("0"), number(std::string(38, '9')), &exact, [&](const NSDecimalNumber&, bool& stop) {
        stop = ++calls > 5;
        return 1;
      });
  EXPECT_EQ(found, std::nullopt);
  EXPECT_EQ(calls, 0);
}

struct RestCase {
  const char* name;
  NSInteger said;
  bool stops;
  const char* found;
};

/// What a search from 0 to 0.01 in cents finds when its first midpoint comes to rest on a bound.
std::string foundAtRest(NSRoundingMode mode, const RestCase& row) {
  const ORLFDecimalNumberHandler inCents({.roundingMode = mode, .scale = 2});
  const auto found = aproximateValueUsingLinearRegressionLowerBound(
      number("0"), number("0.01"), &inCents, [&](const NSDecimalNumber&, bool& stop) {
        stop = row.stops;
        return row.said;
      });
  return textOf(found);
}

TEST(ORLFDecimalSolver, TakesAMidpointAtRestBeforeItLooksAtTheStop) {
  EXPECT_EQ(foundAtRest(NSRoundPlain, {"Stop", 2, true, ""}), "0.01");
  EXPECT_EQ(foundAtRest(NSRoundPlain, {"Stop", -2, true, ""}), "0.01");
  EXPECT_EQ(foundAtRest(NSRoundDown, {"Stop", -2, true, ""}), "0");
}

TEST(ORLFDecimalSolver, IsOutsideTheBoundsOnlyForAnswersOfExactlyOne) {
  const RestCase atUpper[] = {{"TooLow", -1, false, "nil"},
                              {"TooLowByTwo", -2, false, "0.01"},
                              {"TooHigh", 1, false, "0.01"},
                              {"TheAnswer", 0, false, "0.01"}};
  for (const RestCase& row : atUpper)
    EXPECT_EQ(foundAtRest(NSRoundPlain, row), row.found) << row.name;
  const RestCase atLower[] = {{"TooHigh", 1, false, "nil"},
                              {"TooHighByTwo", 2, false, "0"},
                              {"TooLow", -1, false, "0"},
                              {"TheAnswer", 0, false, "0"}};
  for (const RestCase& row : atLower)
    EXPECT_EQ(foundAtRest(NSRoundDown, row), row.found) << row.name;
}

TEST(ORLFDecimalSolver, LeavesBoundsThatAreFinerThanTheScale) {
  const auto found = [](const char* lower, const char* upper, const char* target) {
    const Trace made = trace(number(lower), number(upper), target);
    return made.candidates + "-> " + made.found;
  };
  // The midpoint rounds to a value outside the bounds, which then is one of them.
  EXPECT_EQ(found("1.001", "1.004", "1.003"), "1 1 -> 1");
  EXPECT_EQ(found("1.006", "1.009", "1.007"), "1.01 1.01 -> 1.01");
  EXPECT_EQ(found("1.004", "1.006", "1.005"), "1.01 1.01 -> 1.01");
}

TEST(ORLFDecimalSolver, EndsWhereThePowersOfTenEnd) {
  const auto always = [](NSInteger answer) {
    return aproximateValueUsingLinearRegressionLowerBound(
        std::nullopt, std::nullopt, places(2), [=](const NSDecimalNumber& candidate, bool&) {
          EXPECT_FALSE(candidate.decimalValue().isNaN());
          return answer;
        });
  };
  EXPECT_EQ(always(1), std::nullopt);
  EXPECT_EQ(always(-1), std::nullopt);
}

TEST(ORLFDecimalSolver, TakesAnyPositiveOrNegativeAnswer) {
  const auto found = aproximateValueUsingLinearRegressionLowerBound(
      std::nullopt, std::nullopt, places(2), [](const NSDecimalNumber& candidate, bool&) {
        return NSInteger{candidate.compare(number("7"))} * 1000;
      });
  EXPECT_EQ(found, number("7"));
}

}  // namespace
}  // namespace ORLFoundation
