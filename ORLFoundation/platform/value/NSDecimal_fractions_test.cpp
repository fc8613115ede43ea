// The agreement of every calculation, comparison and reading with plain fractions of unbounded
// integers.
#include <ORLFoundation/platform/value/NSDecimalArithmetic.h>
#include <ORLFoundation/platform/value/NSDecimalSum.h>
#include <ORLFoundation/platform/value/NSDecimal_random_testing.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <boost/multiprecision/cpp_int.hpp>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {
namespace {

using boost::multiprecision::cpp_int;
using orlftest::RandomDecimals;
using Mantissa = NSDecimal::Mantissa;

cpp_int integerOf(Mantissa value) {
  return (cpp_int(static_cast<std::uint64_t>(value >> 64)) << 64) |
         static_cast<std::uint64_t>(value);
}

cpp_int powerOfTen(int exponent) { return pow(cpp_int(10), static_cast<unsigned>(exponent)); }

/// A fraction of whole numbers, the denominator above zero.
struct Fraction {
  cpp_int numerator;
  cpp_int denominator = 1;
};

Fraction fractionOf(const NSDecimal& value) {
  cpp_int digits = integerOf(value.mantissa());
  if (value.isNegative()) digits = -digits;
  if (value.exponent() >= 0) return {digits * powerOfTen(value.exponent())};
  return {digits, powerOfTen(-value.exponent())};
}

/// The whole number next to a fraction under a mode.
cpp_int roundedWhole(const Fraction& value, NSRoundingMode mode) {
  cpp_int floor = value.numerator / value.denominator;
  cpp_int rest = value.numerator % value.denominator;
  if (rest < 0) {
    --floor;
    rest += value.denominator;
  }
  if (rest == 0 || mode == NSRoundDown) return floor;
  if (mode == NSRoundUp) return floor + 1;
  const int half = cpp_int(rest * 2).compare(value.denominator);
  if (half != 0) return half > 0 ? cpp_int(floor + 1) : floor;
  const bool away = mode == NSRoundBankers ? floor % 2 != 0 : value.numerator > 0;
  return away ? cpp_int(floor + 1) : floor;
}

Fraction scaled(const Fraction& value, int exponent) {
  if (exponent >= 0) return {value.numerator, value.denominator * powerOfTen(exponent)};
  return {value.numerator * powerOfTen(-exponent), value.denominator};
}

/// What a calculation with this exact value is to give, written as "mantissa e exponent ! error".
std::string expectedResult(const Fraction& value, NSRoundingMode mode) {
  if (value.numerator == 0) return "0e0!0";
  const cpp_int size = abs(value.numerator);
  // The smallest exponent that leaves 38 digits, or the smallest that there is.
  const auto places =
      static_cast<int>(size.str().size()) - static_cast<int>(value.denominator.str().size());
  int exponent = std::max(NSDecimal::kSmallestExponent, places - NSDecimal::kMostDigits);
  const auto isTooLong = [&](int at) {
    const Fraction part = scaled({size, value.denominator}, at);
    return part.numerator / part.denominator >= integerOf(NSDecimal::kMantissaEnd);
  };
  while (isTooLong(exponent)) ++exponent;
  const Fraction unit = scaled(value, exponent);
  cpp_int whole = roundedWhole(unit, mode);
  const bool exact = whole * unit.denominator == unit.numerator;
  if (whole == 0) return "0e0!2";
  while (whole % 10 == 0) {
    whole /= 10;
    ++exponent;
  }
  const auto digits = static_cast<int>(cpp_int(abs(whole)).str().size());
  if (exponent + digits > NSDecimal::kLargestExponent + NSDecimal::kMostDigits) return "NaN!3";
  return whole.str() + "e" + std::to_string(exponent) + (exact ? "!0" : "!1");
}

std::string digitsOf(const NSDecimalResult& result) {
  const std::string error = "!" + std::to_string(NSUInteger{result.error});
  if (result.value.isNaN()) return "NaN" + error;
  cpp_int digits = integerOf(result.value.mantissa());
  if (digits == 0) return "0e0" + error;
  int exponent = result.value.exponent();
  for (; digits % 10 == 0; ++exponent) digits /= 10;
  return (result.value.isNegative() ? "-" : "") + digits.str() + "e" + std::to_string(exponent) +
         error;
}

/// The sum and the difference are those of plain fractions, in the range of a decimal.
void expectExactSums(const NSDecimal& left, const NSDecimal& right, NSRoundingMode mode) {
  const Fraction a = fractionOf(left), b = fractionOf(right);
  const cpp_int first = a.numerator * b.denominator, second = b.numerator * a.denominator;
  const cpp_int denominator = a.denominator * b.denominator;
  const NSDecimalResult sum = NSDecimalAdd(left, right, mode);
  const NSDecimalResult difference = NSDecimalSubtract(left, right, mode);
  ASSERT_EQ(digitsOf(sum), expectedResult({first + second, denominator}, mode))
      << left.stringValue() << " + " << right.stringValue() << " mode " << mode;
  ASSERT_EQ(digitsOf(difference), expectedResult({first - second, denominator}, mode))
      << left.stringValue() << " - " << right.stringValue() << " mode " << mode;
  ASSERT_TRUE(sum.value.isNaN() || sum.value.mantissa() < NSDecimal::kMantissaEnd);
  ASSERT_TRUE(difference.value.isNaN() || difference.value.mantissa() < NSDecimal::kMantissaEnd);
}

/// The divisor is not zero.
void expectExactQuotient(const NSDecimal& left, const NSDecimal& right, NSRoundingMode mode) {
  const Fraction a = fractionOf(left), b = fractionOf(right);
  Fraction quotient{a.numerator * b.denominator, a.denominator * b.numerator};
  if (quotient.denominator < 0) quotient = {-quotient.numerator, -quotient.denominator};
  const NSDecimalResult result = NSDecimalDivide(left, right, mode);
  ASSERT_EQ(digitsOf(result), expectedResult(quotient, mode))
      << left.stringValue() << " / " << right.stringValue() << " mode " << mode;
  ASSERT_TRUE(result.value.isNaN() || result.value.mantissa() < NSDecimal::kMantissaEnd);
}

constexpr std::array kModes = {NSRoundPlain, NSRoundDown, NSRoundUp, NSRoundBankers};
constexpr int kRandomCalculations = 60000;

TEST(NSDecimalLaws, SumsAgreeWithFractions) {
  RandomDecimals source(1);
  for (int i = 0; i < kRandomCalculations; ++i) {
    const NSDecimal left = source.any(), right = source.any();
    ASSERT_NO_FATAL_FAILURE(expectExactSums(left, right, source.mode()));
  }
}

TEST(NSDecimalLaws, SumsAtEachDistanceAgreeWithFractions) {
  const Mantissa end = NSDecimal::kMantissaEnd;
  const Mantissa half = end / 2;
  for (const Mantissa high : {Mantissa{1}, Mantissa{9}, end / 10, end - 1}) {
    for (const Mantissa low : {Mantissa{1}, half / 10, half - 1, half, half + 1, end - 1}) {
      for (const int distance : {0, 1, 17, 18, 19, 20, 37, 38, 39, 40, 74, 75, 76, 77, 78, 114}) {
        for (const int exponent : {0, NSDecimal::kLargestExponent}) {
          for (const NSRoundingMode mode : kModes) {
            const NSDecimal upper(high, exponent, false), lower(low, exponent - distance, false);
            ASSERT_NO_FATAL_FAILURE(expectExactSums(upper, lower, mode));
            ASSERT_NO_FATAL_FAILURE(expectExactSums(lower.negated(), upper, mode));
          }
        }
      }
    }
  }
}

TEST(NSDecimalLaws, SumsOfManyAgreeWithFractions) {
  // One denominator for all products of decimals.
  const cpp_int denominator = powerOfTen(-2 * NSDecimal::kSmallestExponent);
  RandomDecimals source(5);
  for (int i = 0; i < kRandomCalculations / 10; ++i) {
    std::vector<NSDecimal> left, right;
    const bool isMoney = source.between(0, 1) == 0;
    const bool isColumn = source.between(0, 2) == 0;
    for (NSInteger count = source.between(0, isColumn ? 60 : 12); count > 0; --count) {
      left.push_back(isColumn  ? source.ofTwoPlaces()
                     : isMoney ? source.moneySized()
                               : source.any());
      right.push_back(isColumn  ? source.ofTwoPlaces()
                      : isMoney ? source.moneySized()
                                : source.any());
      if (source.between(0, 5) == 0) left.push_back(left.back().negated());
      if (left.size() > right.size()) right.push_back(right.back());
    }
    cpp_int sum = 0, ofProducts = 0;
    for (std::size_t at = 0; at < left.size(); ++at) {
      const Fraction a = fractionOf(left[at]), b = fractionOf(right[at]);
      sum += a.numerator * (denominator / a.denominator);
      ofProducts += a.numerator * b.numerator * (denominator / (a.denominator * b.denominator));
    }
    const NSRoundingMode mode = source.mode();
    ASSERT_EQ(digitsOf(NSDecimalSum(left, mode)), expectedResult({sum, denominator}, mode));
    ASSERT_EQ(digitsOf(NSDecimalSumOfProducts(left, right, mode)),
              expectedResult({ofProducts, denominator}, mode));
  }
}

TEST(NSDecimalLaws, ProductsAgreeWithFractions) {
  RandomDecimals source(2);
  for (int i = 0; i < kRandomCalculations; ++i) {
    const NSDecimal left = source.any(), right = source.any();
    const NSRoundingMode mode = source.mode();
    const Fraction a = fractionOf(left), b = fractionOf(right);
    ASSERT_EQ(digitsOf(NSDecimalMultiply(left, right, mode)),
              expectedResult({a.numerator * b.numerator, a.denominator * b.denominator}, mode))
        << left.stringValue() << " * " << right.stringValue() << " mode " << mode;
  }
}

TEST(NSDecimalLaws, QuotientsAgreeWithFractions) {
  RandomDecimals source(3);
  for (int i = 0; i < kRandomCalculations; ++i) {
    const NSDecimal left = source.any(), right = source.any();
    const NSRoundingMode mode = source.mode();
    if (right.isZero()) continue;
    ASSERT_NO_FATAL_FAILURE(expectExactQuotient(left, right, mode));
  }
}

TEST(NSDecimalLaws, QuotientsThatTieAgreeWithFractions) {
  for (const NSRoundingMode mode : kModes) {
    // 38 digits and a half.
    for (Mantissa below = 1; below <= 15; below += 2) {
      const NSDecimal odd(NSDecimal::kMantissaEnd - below, 0, false);
      ASSERT_NO_FATAL_FAILURE(expectExactQuotient(odd, NSDecimal::fromInteger(-2), mode));
    }
    // Of two words of 64 bits: a 39th digit of 5 at the end of some.
    for (std::int64_t dividend = 1; dividend < 40; dividend += 2) {
      for (int power = 45; power <= 60; ++power) {
        const NSDecimal divisor = NSDecimal::fromInteger(std::int64_t{1} << power);
        ASSERT_NO_FATAL_FAILURE(
            expectExactQuotient(NSDecimal::fromInteger(dividend), divisor, mode));
      }
    }
  }
}

TEST(NSDecimalLaws, QuotientsAtTheEndsOfTheExponentsAgreeWithFractions) {
  const Mantissa longest = NSDecimal::kMantissaEnd - 1;
  for (const Mantissa first : {Mantissa{1}, Mantissa{2}, NSDecimal::kMantissaEnd / 10, longest}) {
    for (const Mantissa second : {Mantissa{1}, Mantissa{3}, Mantissa{8}, longest / 9, longest}) {
      for (int exponent = 0; exponent <= 80; ++exponent) {
        const NSDecimal small(first, NSDecimal::kSmallestExponent, false);
        const NSDecimal large(first, NSDecimal::kLargestExponent, true);
        const NSRoundingMode mode = kModes[static_cast<std::size_t>(exponent) % kModes.size()];
        ASSERT_NO_FATAL_FAILURE(
            expectExactQuotient(small, NSDecimal(second, exponent - 40, false), mode));
        ASSERT_NO_FATAL_FAILURE(
            expectExactQuotient(large, NSDecimal(second, exponent - 79, false), mode));
      }
    }
  }
}

Fraction powerOf(const Fraction& value, NSInteger power) {
  const auto times = static_cast<unsigned>(std::abs(power));
  const cpp_int above = pow(value.numerator, times), below = pow(value.denominator, times);
  if (power >= 0) return {above, below};
  return above < 0 ? Fraction{-below, -above} : Fraction{below, above};
}

TEST(NSDecimalLaws, PowersAgreeWithFractions) {
  RandomDecimals source(11);
  for (int i = 0; i < kRandomCalculations / 3; ++i) {
    const NSInteger kind = source.between(0, 3);
    const NSDecimal base = kind == 0   ? source.any()
                           : kind == 1 ? source.decimalWithExponentBetween(-38, 0)
                           : kind == 2 ? NSDecimal::fromInteger(source.between(-50, 50))
                                       : source.moneySized();
    const NSInteger most = kind == 2 ? 150 : kind == 1 ? 12 : 6;
    const NSInteger power = source.between(-most, most);
    if (base.isZero()) continue;
    const NSRoundingMode mode = source.mode();
    ASSERT_EQ(digitsOf(NSDecimalPower(base, power, mode)),
              expectedResult(powerOf(fractionOf(base), power), mode))
        << base.stringValue() << " to the " << power << " mode " << mode;
  }
}

TEST(NSDecimalLaws, RoundingAgreesWithFractions) {
  RandomDecimals source(4);
  for (int i = 0; i < kRandomCalculations; ++i) {
    const NSDecimal value = source.any();
    const NSRoundingMode mode = source.mode();
    const auto scale = static_cast<int>(source.between(-60, 40));
    const NSDecimal rounded = NSDecimalRound(value, scale, mode).value;
    const cpp_int whole = roundedWhole(scaled(fractionOf(value), -scale), mode);
    const Fraction came = fractionOf(rounded);
    const Fraction expected =
        scale >= 0 ? Fraction{whole, powerOfTen(scale)} : Fraction{whole * powerOfTen(-scale)};
    ASSERT_EQ(came.numerator * expected.denominator, expected.numerator * came.denominator)
        << value.stringValue() << " at " << scale << " mode " << mode;
  }
}

TEST(NSDecimalLaws, ComparisonIsATotalOrderThatAgreesWithFractions) {
  RandomDecimals source(9);
  for (int i = 0; i < 100000; ++i) {
    const NSDecimal left = source.any(), right = source.any();
    const NSComparisonResult order = left.compare(right);
    const Fraction a = fractionOf(left), b = fractionOf(right);
    const int expected =
        cpp_int(a.numerator * b.denominator).compare(cpp_int(b.numerator * a.denominator));
    ASSERT_EQ(NSInteger{order}, expected < 0 ? -1 : expected > 0 ? 1 : 0);
    ASSERT_EQ(NSInteger{right.compare(left)}, -NSInteger{order});
    const NSDecimal raised = left.compacted();
    ASSERT_EQ(raised, left);
    ASSERT_EQ(raised.hash(), left.hash());
  }
}

/// What a text says, read character by character: "mantissa e exponent".
std::string expectedOfText(std::string_view text) {
  std::size_t at = 0;
  const auto take = [&](std::string_view any) {
    const bool isHere = at < text.size() && any.find(text[at]) != any.npos;
    at += isHere ? 1 : 0;
    return isHere;
  };
  const auto takeDigits = [&] {
    const std::size_t start = at;
    while (take("0123456789")) continue;
    return std::string(text.substr(start, at - start));
  };
  const bool isNegative = take("-");
  if (!isNegative) take("+");
  const std::string whole = takeDigits();
  const std::string places = take(".") ? takeDigits() : "";
  if (whole.empty() && places.empty()) return "NaN";
  int exponent = 0;
  if (take("eE")) {
    const bool isBelow = take("-");
    if (!isBelow) take("+");
    const std::string power = takeDigits();
    if (power.empty()) return "NaN";
    // What is past the thousandth place is out of range, whatever the digits.
    constexpr std::size_t kMostPlaces = 4;
    const std::size_t first = std::min(power.find_first_not_of('0'), power.size() - 1);
    exponent = power.size() - first > kMostPlaces ? 9999 : std::stoi(power.substr(first));
    if (isBelow) exponent = -exponent;
  }
  if (at != text.size()) return "NaN";
  const std::size_t first = (whole + places).find_first_not_of('0');
  if (first == std::string::npos) return "0e0";
  const cpp_int digits((whole + places).substr(first));
  exponent -= static_cast<int>(places.size());
  const cpp_int value = isNegative ? cpp_int(-digits) : digits;
  const std::string result = expectedResult(exponent < 0 ? Fraction{value, powerOfTen(-exponent)}
                                                         : Fraction{value * powerOfTen(exponent)},
                                            NSRoundPlain);
  return result.substr(0, result.find('!'));
}

TEST(NSDecimalLaws, TextsAgreeWithTheirCharacters) {
  constexpr std::string_view kOthers("/:+-.eE,\0 \x89\x8A\xB0\xFF", 15);
  RandomDecimals source(6);
  for (int i = 0; i < kRandomCalculations; ++i) {
    std::string text;
    for (NSInteger run = source.between(1, 3); run > 0; --run) {
      const NSInteger kind = source.between(0, 2);
      for (NSInteger length = source.between(0, run == 1 ? 3 : 25); length > 0; --length)
        text += static_cast<char>('0' + (kind == 0 ? 0 : kind == 1 ? 9 : source.between(0, 9)));
      if (source.between(0, 2) != 0) text += '.';
    }
    if (source.between(0, 3) == 0) text += "e" + std::to_string(source.between(-200, 200));
    if (source.between(0, 3) == 0) text.insert(0, source.between(0, 1) == 0 ? "-" : "+");
    if (source.between(0, 3) == 0 && !text.empty())
      text[static_cast<std::size_t>(source.between(0, std::ssize(text) - 1))] =
          kOthers[static_cast<std::size_t>(source.between(0, std::ssize(kOthers) - 1))];
    // In a place of its own: a byte read behind its end is found out.
    const std::vector<char> exact(text.begin(), text.end());
    const std::string result = digitsOf({NSDecimal::parse({exact.data(), exact.size()})});
    ASSERT_EQ(result.substr(0, result.find('!')), expectedOfText(text)) << text;
  }
}

}  // namespace
}  // namespace ORLFoundation
