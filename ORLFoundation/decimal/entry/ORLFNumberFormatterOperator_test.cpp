
#include <ORLFoundation/decimal/entry/ORLFNumberFormatterOperator.h>

#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace ORLFoundation {
namespace {

using Operator = ORLFNumberFormatterOperator;
using Optional = std::optional<NSNumber>;

NSNumber decimal(std::string_view text) { return NSDecimal::parse(text); }

Operator wild(std::int32_t code) {
  return Operator(static_cast<ORLFNumberFormatterOperatorType>(code));
}

struct OperatorCase {
  std::int32_t code;
  NSUInteger operands;
  Optional decimalDefault, doubleDefault;
  Optional ofSevenAndTwo;
};
const OperatorCase kOperators[] = {
    {0, 2, decimal("0"), 0.0, decimal("9")},
    {1, 2, decimal("0"), 0.0, decimal("5")},
    {2, 2, decimal("1"), 1.0, decimal("14")},
    {3, 2, std::nullopt, std::nullopt, decimal("3.5")},
    {4, 1, std::nullopt, std::nullopt, decimal("7")},
    {5, 2, std::nullopt, std::nullopt, std::nullopt},
    {-1, 2, std::nullopt, std::nullopt, std::nullopt},
    {std::numeric_limits<std::int32_t>::min(), 2, std::nullopt, std::nullopt, std::nullopt},
};

TEST(ORLFNumberFormatterOperator, FollowsItsTable) {
  for (const OperatorCase& row : kOperators) {
    const Operator operation = wild(row.code);
    EXPECT_EQ(static_cast<std::int32_t>(operation.type()), row.code);
    EXPECT_EQ(operation.numberOfOpperands(), row.operands) << row.code;
    EXPECT_EQ(operation.defaultOpperand(true), row.decimalDefault) << row.code;
    EXPECT_EQ(operation.defaultOpperand(false), row.doubleDefault) << row.code;
    EXPECT_EQ(operation.numberByPerformingOperation(decimal("7"), decimal("2"), nullptr),
              row.ofSevenAndTwo)
        << row.code;
    EXPECT_EQ(operation.numberByPerformingOperation(7.0, 2.0, nullptr), row.ofSevenAndTwo)
        << row.code;
  }
}

TEST(ORLFNumberFormatterOperator, DefaultsAreOfTheKindAskedFor) {
  for (const std::int32_t code : {0, 1, 2}) {
    EXPECT_EQ(wild(code).defaultOpperand(true)->kind(), NSNumber::Kind::Decimal);
    EXPECT_EQ(wild(code).defaultOpperand(false)->kind(), NSNumber::Kind::Double);
  }
}

TEST(ORLFNumberFormatterOperator, AMissingOperandGivesNilButForGroups) {
  for (std::int32_t code = 0; code < 4; ++code) {
    std::shared_ptr<const NSError> error;
    EXPECT_EQ(wild(code).numberByPerformingOperation(std::nullopt, 1, &error), std::nullopt);
    EXPECT_EQ(wild(code).numberByPerformingOperation(1, std::nullopt, &error), std::nullopt);
    EXPECT_EQ(error, nullptr);
  }
  const Operator group(ORLFNumberFormatterOperatorTypeStartGroup);
  EXPECT_EQ(group.numberByPerformingOperation(std::nullopt, 1, nullptr), NSNumber(1));
  EXPECT_EQ(group.numberByPerformingOperation(2, std::nullopt, nullptr), NSNumber(2));
  EXPECT_EQ(group.numberByPerformingOperation(2, 1, nullptr), NSNumber(2));
  EXPECT_EQ(group.numberByPerformingOperation(std::nullopt, std::nullopt, nullptr), std::nullopt);
}

TEST(ORLFNumberFormatterOperator, DivisionByZeroIsNilWithoutAnError) {
  const Operator divide(ORLFNumberFormatterOperatorTypeDivide);
  std::shared_ptr<const NSError> error;
  for (const NSNumber& zero :
       {NSNumber(0), NSNumber(0.0), NSNumber(-0.0), decimal("0"), NSNumber(false)})
    for (const NSNumber& left : {NSNumber(5), NSNumber(5.0), decimal("5"), decimal("0")})
      EXPECT_EQ(divide.numberByPerformingOperation(left, zero, &error), std::nullopt);
  EXPECT_EQ(error, nullptr);
}

TEST(ORLFNumberFormatterOperator, TwoDecimalsStayDecimalsAndOthersBecomeDoubles) {
  const Operator add(ORLFNumberFormatterOperatorTypeAdd);
  const auto sum = [&add](const NSNumber& left, const NSNumber& right) {
    return *add.numberByPerformingOperation(left, right, nullptr);
  };
  EXPECT_EQ(sum(decimal("0.1"), decimal("0.2")), decimal("0.3"));
  EXPECT_EQ(sum(decimal("0.1"), decimal("0.2")).kind(), NSNumber::Kind::Decimal);
  EXPECT_EQ(sum(decimal("0.1"), 0.2).kind(), NSNumber::Kind::Double);
  EXPECT_EQ(sum(0.1, decimal("0.2")), NSNumber(0.1 + 0.2));
  EXPECT_EQ(sum(1, 2).kind(), NSNumber::Kind::Double) << "integers too";
  EXPECT_EQ(sum(NSDecimal::notANumber(), decimal("1")), NSNumber(NSDecimal::notANumber()));
}

TEST(ORLFNumberFormatterOperator, ARaisedExceptionIsAnErrorWithItsReason) {
  const NSNumber huge = decimal("1e120");
  const NSNumber tiny = decimal("1e-120");
  const struct {
    std::int32_t code;
    NSNumber left, right;
    const char* reason;
  } rows[] = {
      {2, huge, huge, "too large"}, {2, tiny, tiny, "too small"}, {3, huge, tiny, "too large"}};
  for (const auto& row : rows) {
    std::shared_ptr<const NSError> error;
    EXPECT_EQ(wild(row.code).numberByPerformingOperation(row.left, row.right, &error),
              std::nullopt);
    EXPECT_EQ(wild(row.code).numberByPerformingOperation(row.left, row.right, nullptr),
              std::nullopt);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
    EXPECT_EQ(error->code(), 2048);
    EXPECT_NE(error->localizedDescription().find(row.reason), std::string::npos)
        << error->localizedDescription();
  }
  EXPECT_EQ(wild(2).numberByPerformingOperation(1e300, 1e300, nullptr),
            NSNumber(std::numeric_limits<double>::infinity()));
}

}  // namespace
}  // namespace ORLFoundation
