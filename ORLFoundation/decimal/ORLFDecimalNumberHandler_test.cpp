
#include <ORLFoundation/decimal/ORLFDecimalNumberHandler.h>

#include <ORLFoundation/decimal/ORLFDecimalNumberHandler_testing.h>
#include <ORLFoundation/decimal/ORLFMutableDecimalNumberHandler.h>
#include <ORLFoundation/platform/number/NSDecimalNumber_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace ORLFoundation {
namespace {

using Handler = std::shared_ptr<ORLFDecimalNumberHandler>;
using orlftest::expectHandlerFields;
using orlftest::kHandlerFields;

Handler handler(const ORLFDecimalNumberHandler::Fields& fields) {
  return ORLFDecimalNumberHandler::decimalNumberHandlerWithRoundingMode(fields);
}

/// "nil", the number, or the name and the reason of the exception.
std::string answerOf(const ORLFDecimalNumberHandler& handler, NSUInteger error,
                     const Optional& left = number("1.50"), const Optional& right = number("-2")) {
  try {
    const Optional answer = handler.exceptionDuringOperation(
        "any", static_cast<NSCalculationError>(error), left, right);
    return textOf(answer);
  } catch (const NSException& exception) {
    return exception.name() + ": " + exception.reason();
  }
}

TEST(ORLFDecimalNumberHandler, KeepsItsSixValuesUnchecked) {
  expectHandlerFields(*handler(kHandlerFields));
  const auto odd = handler({.roundingMode = static_cast<NSRoundingMode>(99), .scale = -32768});
  EXPECT_EQ(odd->roundingMode(), 99U);
  EXPECT_EQ(odd->scale(), -32768);
}

TEST(ORLFDecimalNumberHandler, MakesAnImmutableHandlerThroughTheMutableClassToo) {
  const auto made =
      ORLFMutableDecimalNumberHandler::decimalNumberHandlerWithRoundingMode(kHandlerFields);
  EXPECT_EQ(made->className(), "ORLFDecimalNumberHandler");
  EXPECT_EQ(std::dynamic_pointer_cast<ORLFMutableDecimalNumberHandler>(made), nullptr);
}

TEST(ORLFDecimalNumberHandler, ReactsToEachErrorByItsField) {
  constexpr std::int32_t kNil = ORLFDecimalErrorBehaviorReturnNil;
  constexpr std::int32_t kZero = ORLFDecimalErrorBehaviorReturnZero;
  const auto nilOnly = [&](std::int32_t exactness, std::int32_t overflow, std::int32_t underflow,
                           std::int32_t divideByZero) {
    const auto made = handler({.exactnessBehavior = exactness,
                               .overflowBehavior = overflow,
                               .underflowBehavior = underflow,
                               .divideByZeroBehavior = divideByZero});
    std::string answers;
    for (NSUInteger error = 1; error <= 4; ++error) answers += answerOf(*made, error) + " ";
    return answers;
  };
  EXPECT_EQ(nilOnly(kNil, kZero, kZero, kZero), "nil 0 0 0 ");
  EXPECT_EQ(nilOnly(kZero, kZero, kNil, kZero), "0 nil 0 0 ");
  EXPECT_EQ(nilOnly(kZero, kNil, kZero, kZero), "0 0 nil 0 ");
  EXPECT_EQ(nilOnly(kZero, kZero, kZero, kNil), "0 0 0 nil ");
}

TEST(ORLFDecimalNumberHandler, RaisesForCodeZeroAndForEveryUnknownCode) {
  for (const std::int32_t code : {0, 3, -1, 77}) {
    const auto made = handler({.exactnessBehavior = code,
                               .overflowBehavior = code,
                               .underflowBehavior = code,
                               .divideByZeroBehavior = code});
    for (NSUInteger error = 1; error <= 4; ++error) {
      EXPECT_EQ(answerOf(*made, error), "NSDecimalNumber calculation error: The error was " +
                                            std::to_string(error) + " for left=1.5 and right=-2");
    }
  }
}

TEST(ORLFDecimalNumberHandler, RaisesForErrorsOutsideOneToFourWhateverItsFieldsHold) {
  const auto made = handler({.exactnessBehavior = ORLFDecimalErrorBehaviorReturnNil,
                             .overflowBehavior = ORLFDecimalErrorBehaviorReturnNil,
                             .underflowBehavior = ORLFDecimalErrorBehaviorReturnNil,
                             .divideByZeroBehavior = ORLFDecimalErrorBehaviorReturnNil});
  EXPECT_EQ(answerOf(*made, 0, std::nullopt, std::nullopt),
            "NSDecimalNumber calculation error: The error was 0 for left=(null) and right=(null)");
  EXPECT_EQ(answerOf(*made, 5),
            "NSDecimalNumber calculation error: The error was 5 for left=1.5 and right=-2");
  EXPECT_EQ(
      answerOf(*made, NSUIntegerMax),
      "NSDecimalNumber calculation error: The error was 18446744073709551615 for left=1.5 and "
      "right=-2");
}

TEST(ORLFDecimalNumberHandler, TellsUnderflowFromOverflowInCalculations) {
  const auto made = handler({.scale = NSDecimalNoScale,
                             .overflowBehavior = ORLFDecimalErrorBehaviorReturnNil,
                             .underflowBehavior = ORLFDecimalErrorBehaviorReturnZero});
  const NSDecimalNumber large = number("1e127"), small = number("1e-128");
  EXPECT_EQ(large.decimalNumberByMultiplyingBy(large, made.get()), std::nullopt);
  EXPECT_EQ(small.decimalNumberByMultiplyingBy(small, made.get()), NSDecimalNumber::zero());
}

TEST(ORLFDecimalNumberHandler, RaisesOnLossOfPrecisionInCalculations) {
  const auto made = handler({.scale = 2});
  EXPECT_THROW(static_cast<void>(number("1").decimalNumberByDividingBy(number("3"), made.get())),
               NSException);
  EXPECT_EQ(number("1").decimalNumberByDividingBy(number("8"), made.get()), number("0.13"));
}

TEST(ORLFDecimalNumberHandler, IsItsOwnCopy) {
  const auto made = handler(kHandlerFields);
  EXPECT_EQ(made->copy(), made);
}

TEST(ORLFDecimalNumberHandler, CopiesToAnEqualOneWhereNothingOwnsIt) {
  ORLFDecimalNumberHandler made(kHandlerFields);
  const auto copy = std::dynamic_pointer_cast<ORLFDecimalNumberHandler>(made.copy());
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy.get(), &made);
  expectHandlerFields(*copy);
}

TEST(ORLFDecimalNumberHandler, GivesANewMutableCopyWithTheSameValues) {
  const auto made = handler(kHandlerFields);
  const auto copy = std::dynamic_pointer_cast<ORLFMutableDecimalNumberHandler>(made->mutableCopy());
  ASSERT_NE(copy, nullptr);
  expectHandlerFields(*copy);
  copy->setScale(5);
  EXPECT_EQ(made->scale(), kHandlerFields.scale);
}

TEST(ORLFMutableDecimalNumberHandler, ChangesEachFieldByItself) {
  ORLFMutableDecimalNumberHandler made{ORLFDecimalNumberHandler::Fields{}};
  made.setRoundingMode(kHandlerFields.roundingMode);
  made.setScale(kHandlerFields.scale);
  made.setExactnessBehavior(kHandlerFields.exactnessBehavior);
  made.setOverflowBehavior(kHandlerFields.overflowBehavior);
  made.setUnderflowBehavior(kHandlerFields.underflowBehavior);
  made.setDivideByZeroBehavior(kHandlerFields.divideByZeroBehavior);
  expectHandlerFields(made);
}

TEST(ORLFMutableDecimalNumberHandler, CopiesToASnapshotThatCannotChange) {
  const auto made = std::make_shared<ORLFMutableDecimalNumberHandler>(kHandlerFields);
  const auto snapshot = std::dynamic_pointer_cast<ORLFDecimalNumberHandler>(made->copy());
  ASSERT_NE(snapshot, nullptr);
  EXPECT_EQ(snapshot->className(), "ORLFDecimalNumberHandler");
  EXPECT_NE(std::static_pointer_cast<NSObject>(snapshot), std::static_pointer_cast<NSObject>(made));
  made->setScale(9);
  made->setRoundingMode(NSRoundUp);
  expectHandlerFields(*snapshot);
}

TEST(ORLFMutableDecimalNumberHandler, GivesANewMutableCopy) {
  const auto made = std::make_shared<ORLFMutableDecimalNumberHandler>(kHandlerFields);
  const auto copy = made->mutableCopy();
  EXPECT_NE(copy, std::static_pointer_cast<NSObject>(made));
  EXPECT_EQ(copy->className(), "ORLFMutableDecimalNumberHandler");
  expectHandlerFields(*std::dynamic_pointer_cast<ORLFDecimalNumberHandler>(copy));
}

}  // namespace
}  // namespace ORLFoundation
