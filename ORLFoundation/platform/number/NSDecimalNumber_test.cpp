
#include <ORLFoundation/platform/number/NSDecimalNumber.h>

#include <ORLFoundation/platform/number/NSDecimalNumber_testing.h>
#include <ORLFoundation/platform/value/NSException_testing.h>
#include <gtest/gtest.h>

#include <string>
#include <unordered_set>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::nameOfException;

/// A behaviour that answers every error with 42, and says what it was told.
class Telling : public NSDecimalNumberBehaviors {
 public:
  explicit Telling(std::int16_t scale, bool ignoresLoss = false)
      : scale_(scale), ignoresLoss_(ignoresLoss) {}

  [[nodiscard]] NSRoundingMode roundingMode() const override { return NSRoundDown; }
  [[nodiscard]] std::int16_t scale() const override { return scale_; }
  [[nodiscard]] bool ignoresLossOfPrecision() const override { return ignoresLoss_; }
  [[nodiscard]] Optional exceptionDuringOperation(std::string_view operation,
                                                  NSCalculationError error, const Optional& left,
                                                  const Optional& right) const override {
    told_ = std::string(operation) + " " + std::to_string(NSUInteger{error}) + " " +
            (left ? left->stringValue() : "nil") + " " + (right ? right->stringValue() : "nil");
    return number("42.987");
  }
  [[nodiscard]] const std::string& told() const { return told_; }

 private:
  std::int16_t scale_;
  bool ignoresLoss_;
  mutable std::string told_;
};

TEST(NSDecimalNumber, StartsAtZeroAndHasItsConstants) {
  EXPECT_EQ(NSDecimalNumber(), NSDecimalNumber::zero());
  EXPECT_EQ(NSDecimalNumber::zero().stringValue(), "0");
  EXPECT_EQ(NSDecimalNumber::one().stringValue(), "1");
  EXPECT_EQ(NSDecimalNumber::notANumber().stringValue(), "NaN");
}

TEST(NSDecimalNumber, BuildsFromMantissaExponentAndSign) {
  const auto make = [](NSUInteger mantissa, std::int16_t exponent, bool isNegative) {
    return NSDecimalNumber::decimalNumberWithMantissa(mantissa, exponent, isNegative).stringValue();
  };
  EXPECT_EQ(make(15, -1, true), "-1.5");
  EXPECT_EQ(make(0, 5, true), "0");
  EXPECT_EQ(make(NSUIntegerMax, 0, false), "18446744073709551615");
  EXPECT_EQ(make(1, 165, false), "NaN");
  EXPECT_EQ(make(1, 32767, false), "NaN");
  EXPECT_EQ(make(1, -32768, false), "0");
}

TEST(NSDecimalNumber, ReadsWithTheMarkOfALocale) {
  const auto read = [](std::string_view text, std::string_view locale) {
    return NSDecimalNumber::decimalNumberWithString(text, locale).stringValue();
  };
  EXPECT_EQ(read("1.5", "us"), "1.5");
  EXPECT_EQ(read("1.5", "en_US"), "1.5");
  EXPECT_EQ(read("1,5", "de_DE"), "1.5");
  EXPECT_EQ(read("1.5", "de_DE"), "NaN");
  EXPECT_EQ(read("1,5", "us"), "NaN");
  EXPECT_EQ(read("1\u066B5", "ar_EG"), "1.5");
  EXPECT_EQ(read("1.5", ""), "1.5");
}

TEST(NSDecimalNumber, CalculatesUnderTheDefaultBehaviour) {
  const NSDecimalNumber left = number("7.5"), right = number("-2");
  EXPECT_EQ(left.decimalNumberByAdding(right).stringValue(), "5.5");
  EXPECT_EQ(left.decimalNumberBySubtracting(right).stringValue(), "9.5");
  EXPECT_EQ(left.decimalNumberByMultiplyingBy(right).stringValue(), "-15");
  EXPECT_EQ(left.decimalNumberByDividingBy(right).stringValue(), "-3.75");
  EXPECT_EQ(left.decimalNumberByRaisingToPower(2).stringValue(), "56.25");
  EXPECT_EQ(number("2").decimalNumberByDividingBy(number("3")).stringValue(),
            "0.66666666666666666666666666666666666667");
}

TEST(NSDecimalNumber, RaisesUnderTheDefaultBehaviour) {
  const NSDecimalNumber large = number("1e127"), small = number("1e-128"), zero;
  EXPECT_EQ(nameOfException([&] { (void)large.decimalNumberByMultiplyingBy(large); }),
            NSDecimalNumberOverflowException);
  EXPECT_EQ(nameOfException([&] { (void)small.decimalNumberByMultiplyingBy(small); }),
            NSDecimalNumberUnderflowException);
  EXPECT_EQ(nameOfException([&] { (void)large.decimalNumberByDividingBy(zero); }),
            NSDecimalNumberDivideByZeroException);
  EXPECT_EQ(nameOfException([&] { (void)large.decimalNumberByDividingBy(zero, nullptr); }),
            NSDecimalNumberDivideByZeroException);
  EXPECT_EQ(nameOfException([&] { (void)large.decimalNumberByRaisingToPower(5, nullptr); }),
            NSDecimalNumberOverflowException);
  EXPECT_EQ(
      nameOfException([&] { (void)small.decimalNumberByMultiplyingByPowerOf10(-1, nullptr); }),
      NSDecimalNumberUnderflowException);
}

TEST(NSDecimalNumber, TakesNilForTheDefaultBehaviour) {
  EXPECT_EQ(number("2").decimalNumberByDividingBy(number("3"), nullptr),
            number("2").decimalNumberByDividingBy(number("3")));
  EXPECT_EQ(number("1.255").decimalNumberByRoundingAccordingToBehavior(nullptr), number("1.255"));
}

TEST(NSDecimalNumber, RoundsToTheScaleOfTheBehaviour) {
  const Telling twoPlaces(2);
  EXPECT_EQ(number("1.005").decimalNumberByAdding(number("1"), &twoPlaces), number("2"));
  EXPECT_EQ(number("-1.005").decimalNumberBySubtracting(number("1"), &twoPlaces), number("-2.01"));
  EXPECT_EQ(number("1.99").decimalNumberByMultiplyingBy(number("0.5"), &twoPlaces), number("0.99"));
  EXPECT_EQ(number("1.99").decimalNumberByRaisingToPower(2, &twoPlaces), number("3.96"));
  EXPECT_EQ(number("1.99").decimalNumberByMultiplyingByPowerOf10(-1, &twoPlaces), number("0.19"));
  EXPECT_EQ(number("1.999").decimalNumberByRoundingAccordingToBehavior(&twoPlaces), number("1.99"));
  const Telling hundreds(-2);
  EXPECT_EQ(number("199").decimalNumberByRoundingAccordingToBehavior(&hundreds), number("100"));
  EXPECT_EQ(twoPlaces.told() + hundreds.told(), "");
}

TEST(NSDecimalNumber, GivesWhatTheBehaviourAnswersUnrounded) {
  const Telling behavior(0);
  EXPECT_EQ(number("5").decimalNumberByDividingBy(number("0"), &behavior), number("42.987"));
  EXPECT_EQ(behavior.told(), "decimalNumberByDividingBy: 4 5 0");
  EXPECT_EQ(number("1").decimalNumberByDividingBy(number("3"), &behavior), number("42.987"));
  EXPECT_EQ(behavior.told(), "decimalNumberByDividingBy: 1 1 3");
  EXPECT_EQ(number("1e120").decimalNumberByRaisingToPower(2, &behavior), number("42.987"));
  EXPECT_EQ(behavior.told().substr(0, 33), "decimalNumberByRaisingToPower: 3 ");
  EXPECT_EQ(behavior.told().substr(behavior.told().size() - 4), " nil");
}

TEST(NSDecimalNumber, TellsOverflowWhileItRounds) {
  const Telling farLeft(-165);
  EXPECT_EQ(number("-1").decimalNumberByRoundingAccordingToBehavior(&farLeft), number("42.987"));
  EXPECT_EQ(farLeft.told(), "decimalNumberByRoundingAccordingToBehavior: 3 -1 nil");
}

TEST(NSDecimalNumber, LetsABehaviourIgnoreLossOfPrecision) {
  const Telling behavior(2, true);
  EXPECT_EQ(number("2").decimalNumberByDividingBy(number("3"), &behavior), number("0.66"));
  EXPECT_EQ(behavior.told(), "");
  EXPECT_EQ(number("2").decimalNumberByDividingBy(number("0"), &behavior), number("42.987"));
}

TEST(NSDecimalNumber, PassesNotANumberThroughWithoutAnError) {
  const Telling behavior(2);
  const NSDecimalNumber nan = NSDecimalNumber::notANumber();
  EXPECT_EQ(nan.decimalNumberByAdding(number("1"), &behavior), nan);
  EXPECT_EQ(number("1").decimalNumberByDividingBy(nan), nan);
  EXPECT_EQ(nan.decimalNumberByRoundingAccordingToBehavior(&behavior), nan);
  EXPECT_EQ(behavior.told(), "");
}

TEST(NSDecimalNumber, ComparesByValueWithNumbersOfAnyKind) {
  EXPECT_EQ(number("1.50").compare(number("1.5")), NSOrderedSame);
  EXPECT_EQ(number("1.5").compare(1.5), NSOrderedSame);
  EXPECT_EQ(number("1").compare(1), NSOrderedSame);
  EXPECT_EQ(number("-1").compare(0U), NSOrderedAscending);
  EXPECT_EQ(number("18446744073709551616").compare(NSUIntegerMax), NSOrderedDescending);
  EXPECT_EQ(NSDecimalNumber::notANumber().compare(number("x")), NSOrderedSame);
  EXPECT_NE(NSDecimalNumber::notANumber().compare(NSDecimalNumber::zero()), NSOrderedSame);
}

TEST(NSDecimalNumber, IsEqualToNumberWhenItComparesEqual) {
  EXPECT_TRUE(number("1.50").isEqualToNumber(number("1.5")));
  EXPECT_TRUE(number("1").isEqualToNumber(NSNumber(true)));
  EXPECT_FALSE(number("1").isEqualToNumber(NSNumber(2)));
  EXPECT_FALSE(number("1").isEqualToNumber(std::nullopt));
}

TEST(NSDecimalNumber, HashesLikeEqualNumbers) {
  EXPECT_EQ(number("1.50").hash(), number("1.5").hash());
  EXPECT_EQ(number("7").hash(), NSNumber(7).hash());
  EXPECT_EQ((std::unordered_set<NSDecimalNumber>{number("1.0"), number("1"), number("2")}).size(),
            2U);
}

}  // namespace
}  // namespace ORLFoundation
