// Decimal arithmetic takes nothing from the heap, with short and with long operands.
#include <ORLFoundation/platform/value/NSDecimalArithmetic.h>
#include <gtest/gtest.h>
#include <tests/support/AllocationCount.h>

namespace ORLFoundation {
namespace {

constexpr std::string_view kAmounts[] = {"1234.56",
                                         "-0.01",
                                         "99999999999999999999999999999999999999",
                                         "1.2345678901234567890123456789012345678",
                                         "-98765432109876543210987654321.012345678",
                                         "0",
                                         "NaN"};

/// Every operation once; the answers are added up so that none is left out.
double useEveryOperation(const NSDecimal& left, const NSDecimal& right) {
  char text[256];
  double sum = 0;
  for (const NSDecimalResult& result :
       {NSDecimalAdd(left, right), NSDecimalSubtract(left, right), NSDecimalMultiply(left, right),
        NSDecimalDivide(left, right), NSDecimalPower(left, 3),
        NSDecimalMultiplyByPowerOf10(left, 2), NSDecimalRound(left, 2, NSRoundBankers)}) {
    const char* end = result.value.writeTo(text);
    sum += static_cast<double>(end - text);
    sum += NSDecimal::parse(std::string_view(text, static_cast<std::size_t>(end - text))) ==
           result.value;
    sum += NSDecimal::fromDouble(result.value.doubleValue()).isNaN();
  }
  return sum + static_cast<double>(left.compare(right));
}

TEST(NSDecimalAllocation, OperationsAllocateNothing) {
  double sum = 0;
  const std::size_t before = orlftest::allocationCount();
  for (const std::string_view left : kAmounts)
    for (const std::string_view right : kAmounts)
      sum += useEveryOperation(NSDecimal::parse(left), NSDecimal::parse(right));
  EXPECT_EQ(orlftest::allocationCount(), before);
  EXPECT_GT(sum, 0);
}

TEST(NSDecimalAllocation, TheCounterCounts) {
  const std::size_t before = orlftest::allocationCount();
  EXPECT_EQ(std::string(100, '7').size(), 100U);
  EXPECT_GT(orlftest::allocationCount(), before);
}

}  // namespace
}  // namespace ORLFoundation
