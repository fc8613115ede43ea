
#include <ORLFoundation/decimal/ORLFDecimalNumber.h>

#include <ORLFoundation/decimal/ORLFDecimal.h>
#include <ORLFoundation/decimal/ORLFDecimalNumberHandler.h>
#include <ORLFoundation/platform/number/NSDecimalNumber_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {
namespace {

const NSDecimalNumberBehaviors* toCents() {
  static const auto handler = ORLFDecimalNumberHandler::decimalNumberHandlerWithRoundingMode(
      {.scale = 2, .divideByZeroBehavior = ORLFDecimalErrorBehaviorReturnNil});
  return handler.get();
}

struct SignCase {
  const char* value;
  NSInteger order;
  /// Positive, negative, zero, positive or zero, negative or zero.
  std::array<bool, 5> signs;
};

constexpr SignCase kSigns[] = {
    {"0.01", 1, {true, false, false, true, false}},
    {"-0.01", -1, {false, true, false, false, true}},
    {"0.00", 0, {false, false, true, true, true}},
    {"1e-128", 1, {true, false, false, true, false}},
};

TEST(ORLFDecimalNumber, TellsTheSignUnderBothSpellings) {
  for (const SignCase& row : kSigns) {
    const NSDecimalNumber value(row.value);
    EXPECT_EQ(NSInteger{orlfCompareWithZero(value)}, row.order) << row.value;
    EXPECT_EQ(orlfIsPositiveNumber(value), row.signs[0]) << row.value;
    EXPECT_EQ(orlfIsNegativeNumber(value), row.signs[1]) << row.value;
    EXPECT_EQ(orlfIsNegitiveNumber(value), row.signs[1]) << row.value;
    EXPECT_EQ(orlfIsZero(value), row.signs[2]) << row.value;
    EXPECT_EQ(orlfIsPositiveNumberOrZero(value), row.signs[3]) << row.value;
    EXPECT_EQ(orlfIsNegativeNumberOrZero(value), row.signs[4]) << row.value;
    EXPECT_EQ(orlfIsNegitiveNumberOrZero(value), row.signs[4]) << row.value;
  }
}

TEST(ORLFDecimalNumber, TellsTheSignOfNumbersOfAnyKind) {
  for (const SignCase& row : kSigns) {
    for (const NSNumber& value : {NSNumber(row.order), NSNumber(double(row.order) / 8),
                                  NSNumber(NSDecimal::parse(row.value))}) {
      EXPECT_EQ(NSInteger{orlfCompareWithZero(value)}, row.order) << row.value;
      EXPECT_EQ(orlfIsPositiveNumber(value), row.signs[0]) << row.value;
      EXPECT_EQ(orlfIsNegitiveNumber(value), row.signs[1]) << row.value;
      EXPECT_EQ(orlfIsZero(value), row.signs[2]) << row.value;
      EXPECT_EQ(orlfIsPositiveNumberOrZero(value), row.signs[3]) << row.value;
      EXPECT_EQ(orlfIsNegitiveNumberOrZero(value), row.signs[4]) << row.value;
    }
  }
}

TEST(ORLFDecimalNumber, TakesTheBitsOfAnIntegerForItsMantissa) {
  EXPECT_EQ(orlfOne().stringValue(), "1");
  EXPECT_EQ(orlfDecimalNumberWithInteger(0).stringValue(), "0");
  EXPECT_EQ(orlfDecimalNumberWithInteger(42).stringValue(), "42");
  EXPECT_EQ(orlfDecimalNumberWithInteger(-1).stringValue(), "-18446744073709551615");
  EXPECT_EQ(orlfDecimalNumberWithInteger(NSIntegerMin).stringValue(), "-9223372036854775808");
  EXPECT_EQ(orlfDecimalNumberWithLong(-2).stringValue(), "-18446744073709551614");
  EXPECT_EQ(orlfDecimalNumberWithInt(-1).stringValue(), "-18446744073709551615");
  EXPECT_EQ(orlfDecimalNumberWithInt(2147483647).stringValue(), "2147483647");
}

struct DoubleCase {
  double value;
  const char* text;
};

constexpr DoubleCase kDoubles[] = {
    {0.1, "0.1"},
    {1.23456789, "1.234568"},
    {1e-7, "0"},
    {-1e-7, "0"},
    {5e-7, "0"},
    {0.0000015, "0.000002"},
    {-2.5, "-2.5"},
    {1e22, "10000000000000000000000"},
    {1e300, "NaN"},
    {std::numeric_limits<double>::infinity(), "NaN"},
    {-std::numeric_limits<double>::infinity(), "NaN"},
    {std::numeric_limits<double>::quiet_NaN(), "NaN"},
};

TEST(ORLFDecimalNumber, TakesADoubleBySixPlaces) {
  for (const DoubleCase& row : kDoubles)
    EXPECT_EQ(orlfDecimalNumberWithDouble(row.value).stringValue(), row.text) << row.value;
}

TEST(ORLFDecimalNumber, GivesNilForTextThatIsNoNumber) {
  EXPECT_EQ(orlfDecimalNumberWithString("-1.5"), number("-1.5"));
  EXPECT_EQ(orlfDecimalNumberWithString("one"), std::nullopt);
  EXPECT_EQ(orlfDecimalNumberWithString(""), std::nullopt);
  EXPECT_EQ(orlfDecimalNumberWithString(std::nullopt), std::nullopt);
  // What an emptied text held before does not count.
  std::optional<std::string_view> text = "5";
  text.reset();
  EXPECT_EQ(orlfDecimalNumberWithString(text), std::nullopt);
}

TEST(ORLFDecimalNumber, NegatesAndTakesTheAbsoluteValue) {
  EXPECT_EQ(orlfDecimalNumberByNegatingNumber(number("1.5")), number("-1.5"));
  EXPECT_EQ(orlfDecimalNumberByNegatingNumber(number("0")), number("0"));
  EXPECT_EQ(orlfAbsoluteValue(number("-1.5")), number("1.5"));
  EXPECT_EQ(orlfAbsoluteValue(number("1.5")), number("1.5"));
  EXPECT_EQ(orlfAbsoluteValue(number("0")), number("0"));
}

TEST(ORLFDecimalNumber, GivesTheReceiverOnATie) {
  // Equal values of different digits tell the receiver from the argument.
  const NSDecimalNumber receiver(NSDecimal(150, -2, false)), other(NSDecimal(15, -1, false));
  EXPECT_EQ(orlfLargerDecimalNumber(receiver, other).decimalValue().exponent(), -2);
  EXPECT_EQ(orlfSmallerDecimalNumber(receiver, other).decimalValue().exponent(), -2);
  EXPECT_EQ(orlfLargerDecimalNumber(number("-1"), number("2")), number("2"));
  EXPECT_EQ(orlfLargerDecimalNumber(number("2"), number("-1")), number("2"));
  EXPECT_EQ(orlfSmallerDecimalNumber(number("-1"), number("2")), number("-1"));
  EXPECT_EQ(orlfSmallerDecimalNumber(number("2"), number("-1")), number("-1"));
}

using Operation = Optional (*)(const Optional&, const Optional&, const NSDecimalNumberBehaviors*);
struct OperationCase {
  const char* name;
  Operation operation;
  /// Of 1.005 and 2.005, and the same in cents.
  const char* plain;
  const char* cents;
};

constexpr OperationCase kOperations[] = {
    {"adding", &orlfDecimalNumberByAdding, "3.01", "3.01"},
    {"subtracting", &orlfDecimalNumberBySubtracting, "-1", "-1"},
    {"multiplying", &orlfDecimalNumberByMultiplyingBy, "2.015025", "2.02"},
    {"dividing", &orlfDecimalNumberByDividingBy, "0.50124688279301745635910224438902743142",
     nullptr},
};

TEST(ORLFDecimalNumber, ToleratesAMissingOperand) {
  for (const OperationCase& row : kOperations) {
    for (const NSDecimalNumberBehaviors* behavior :
         {toCents(), static_cast<decltype(toCents())>(nullptr)}) {
      EXPECT_EQ(row.operation(number("1"), std::nullopt, behavior), std::nullopt) << row.name;
      EXPECT_EQ(row.operation(std::nullopt, number("1"), behavior), std::nullopt) << row.name;
      EXPECT_EQ(row.operation(std::nullopt, std::nullopt, behavior), std::nullopt) << row.name;
    }
    EXPECT_EQ(row.operation(number("1.005"), number("2.005"), nullptr), number(row.plain))
        << row.name;
    if (row.cents == nullptr) continue;
    EXPECT_EQ(row.operation(number("1.005"), number("2.005"), toCents()), number(row.cents))
        << row.name;
  }
}

TEST(ORLFDecimalNumber, LeavesErrorsToTheBehaviour) {
  EXPECT_THROW(static_cast<void>(orlfDecimalNumberByDividingBy(number("1"), number("0"))),
               NSException);
  EXPECT_EQ(orlfDecimalNumberByDividingBy(number("1"), number("0"), toCents()), std::nullopt);
}

TEST(ORLFDecimalNumber, TreatsAMissingOperandAsAbsentInSums) {
  EXPECT_EQ(orlfDecimalNumberByAddingTo(number("1.005"), number("2")), number("3.005"));
  EXPECT_EQ(orlfDecimalNumberByAddingTo(number("1.005"), number("2"), toCents()), number("3.01"));
  EXPECT_EQ(orlfDecimalNumberByAddingTo(number("1.005"), std::nullopt, toCents()), number("1.005"));
  EXPECT_EQ(orlfDecimalNumberByAddingTo(std::nullopt, number("1.005"), toCents()), number("1.005"));
  EXPECT_EQ(orlfDecimalNumberByAddingTo(std::nullopt, std::nullopt), std::nullopt);
}

TEST(ORLFDecimalNumber, TreatsAMissingOperandAsAbsentInDifferences) {
  EXPECT_EQ(orlfDecimalNumberBySubtractingFrom(number("1"), number("3.005")), number("2.005"));
  EXPECT_EQ(orlfDecimalNumberBySubtractingFrom(number("1"), number("3.005"), toCents()),
            number("2.01"));
  EXPECT_EQ(orlfDecimalNumberBySubtractingFrom(std::nullopt, number("3")), number("3"));
  EXPECT_EQ(orlfDecimalNumberBySubtractingFrom(number("3"), std::nullopt), number("-3"));
  EXPECT_EQ(orlfDecimalNumberBySubtractingFrom(number("3.005"), std::nullopt, toCents()),
            number("-3.005"));
  EXPECT_EQ(orlfDecimalNumberBySubtractingFrom(std::nullopt, std::nullopt), std::nullopt);
}

TEST(ORLFDecimal, CalculatesOnPlainValues) {
  const NSDecimal left = NSDecimal::parse("7.555"), right = NSDecimal::parse("-2");
  const auto text = [](const std::optional<NSDecimal>& value) {
    return value ? value->stringValue() : "nil";
  };
  EXPECT_EQ(text(adding(left, right, nullptr)), "5.555");
  EXPECT_EQ(text(adding(left, right, toCents())), "5.56");
  EXPECT_EQ(text(subtracting(left, right, nullptr)), "9.555");
  EXPECT_EQ(text(subtracting(left, right, toCents())), "9.56");
  EXPECT_EQ(text(multiplying(left, right, nullptr)), "-15.11");
  EXPECT_EQ(text(multiplying(left, left, toCents())), "57.08");
  EXPECT_EQ(text(dividing(left, right, nullptr)), "-3.7775");
  EXPECT_EQ(text(dividing(left, right, toCents())), "-3.78");
  EXPECT_EQ(text(dividing(left, NSDecimal::zero(), toCents())), "nil");
  EXPECT_EQ(text(raising(right, 3, nullptr)), "-8");
  EXPECT_EQ(text(raising(right, -3, toCents())), "-0.13");
  EXPECT_EQ(text(multiplyingByPowerOf10(left, -1, nullptr)), "0.7555");
  EXPECT_EQ(text(multiplyingByPowerOf10(left, -1, toCents())), "0.76");
  EXPECT_EQ(text(rounding(left, nullptr)), "7.555");
  EXPECT_EQ(text(rounding(left, toCents())), "7.56");
  EXPECT_THROW(static_cast<void>(dividing(left, NSDecimal::zero(), nullptr)), NSException);
}

}  // namespace
}  // namespace ORLFoundation
