// Laws that bind operations on decimals to one another, swept over seeded random ones, and doubles.
#include <ORLFoundation/platform/value/NSDecimalArithmetic.h>
#include <ORLFoundation/platform/value/NSDecimal_random_testing.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace ORLFoundation {
namespace {

using orlftest::RandomDecimals;

TEST(NSDecimalLaws, RoundingTwiceIsRoundingOnce) {
  RandomDecimals source(5);
  for (int i = 0; i < 200000; ++i) {
    const NSRoundingMode mode = source.mode();
    const NSInteger scale = source.between(-40, 40);
    const NSDecimal once = NSDecimalRound(source.any(), scale, mode).value;
    ASSERT_EQ(NSDecimalRound(once, scale, mode).value, once) << once.stringValue();
  }
}

TEST(NSDecimalLaws, TakingAwayWhatWasAddedGivesTheFirst) {
  RandomDecimals source(6);
  int exact = 0;
  for (int i = 0; i < 300000; ++i) {
    const NSDecimal left = source.any(), right = source.any();
    const NSDecimalResult sum = NSDecimalAdd(left, right);
    if (sum.error != NSCalculationNoError) continue;
    ++exact;
    const NSDecimalResult back = NSDecimalSubtract(sum.value, right);
    ASSERT_EQ(back.error, NSCalculationNoError);
    ASSERT_EQ(back.value, left) << left.stringValue() << " and " << right.stringValue();
  }
  EXPECT_GT(exact, 50000);
}

TEST(NSDecimalLaws, DividingByAFactorGivesTheOther) {
  RandomDecimals source(7);
  int exact = 0;
  for (int i = 0; i < 200000; ++i) {
    const NSDecimal left = source.any(), right = source.moneySized();
    const NSDecimalResult product = NSDecimalMultiply(left, right);
    if (product.error != NSCalculationNoError || right.isZero()) continue;
    ++exact;
    ASSERT_EQ(NSDecimalDivide(product.value, right).value, left)
        << left.stringValue() << " and " << right.stringValue();
  }
  EXPECT_GT(exact, 50000);
}

TEST(NSDecimalLaws, ReadingWhatWasWrittenGivesTheSameForAMillionValues) {
  RandomDecimals source(8);
  char text[NSDecimal::kLongestText];
  for (int i = 0; i < 1000000; ++i) {
    const NSDecimal value = source.any();
    const char* end = value.writeTo(text);
    const std::string_view written(text, static_cast<std::size_t>(end - text));
    ASSERT_EQ(NSDecimal::parse(written), value) << written;
  }
}

TEST(NSDecimalLaws, DoublesOfAtMost15DigitsComeBack) {
  RandomDecimals source(10);
  for (int i = 0; i < 100000; ++i) {
    const NSDecimal value(static_cast<NSDecimal::Mantissa>(source.between(0, 999999999999999)),
                          static_cast<int>(source.between(-30, 10)), source.between(0, 1) == 1);
    ASSERT_EQ(value.doubleValue(), std::stod(value.stringValue())) << value.stringValue();
    // A double that has few enough digits is taken without a change.
    const double half = static_cast<double>(source.between(-1000000, 1000000)) / 1024;
    ASSERT_EQ(NSDecimal::fromDouble(half).doubleValue(), half);
  }
}

TEST(NSDecimalLaws, DoublesAreThoseOfTheText) {
  constexpr std::uint64_t kExact = std::uint64_t{1} << 53;
  for (int exponent = -25; exponent <= 25; ++exponent) {
    for (std::uint64_t mantissa = kExact - 3; mantissa < kExact + 200; ++mantissa) {
      const std::string text = std::to_string(mantissa) + "e" + std::to_string(exponent);
      const NSDecimal value(mantissa, exponent, false);
      ASSERT_EQ(value.doubleValue(), std::stod(text)) << text;
      ASSERT_EQ(value.negated().doubleValue(), -std::stod(text)) << text;
    }
  }
}

}  // namespace
}  // namespace ORLFoundation
