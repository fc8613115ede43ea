
#include <ORLFoundation/platform/value/internal/WideInteger.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

namespace ORLFoundation::internal::value {
namespace {

Wide randomBelow(std::mt19937_64& engine, Wide end) {
  return ((Wide{engine()} << 64) | engine()) % end;
}

/// Remainders at both ends of a unit and around its half, and what class each is.
struct RemainderCase {
  Wide remainder;
  Dropped dropped;
};

TEST(WideInteger, DropsDigitsWithAnyRemainder) {
  std::mt19937_64 engine(1);
  for (int count = 1; count <= NSDecimal::kMostDigits; ++count) {
    const Wide unit = powerOfTen(count), half = unit / 2;
    const RemainderCase cases[] = {
        {0, Dropped::kNothing}, {1, Dropped::kBelowHalf},        {half - 1, Dropped::kBelowHalf},
        {half, Dropped::kHalf}, {half + 1, Dropped::kAboveHalf}, {unit - 1, Dropped::kAboveHalf}};
    for (int i = 0; i < 2000; ++i) {
      Wide kept = randomBelow(engine, NSDecimal::kMantissaEnd);
      if (i % 4 == 1) kept = powerOfTen(i % 38 + 1) - 1;
      if (i % 4 == 2) kept = (Wide{1} << (i % 126)) - 1;
      if (i % 4 == 3) kept = Wide{1} << (i % 126);
      for (const RemainderCase& row : cases) {
        const WideInteger value = sum(product(kept, unit), {row.remainder, 0});
        const WideQuotient dropped = dropDigits(value, count);
        ASSERT_TRUE(dropped.quotient == kept) << count << " digits, case " << i;
        ASSERT_EQ(dropped.dropped, row.dropped) << count << " digits, case " << i;
      }
    }
  }
}

TEST(WideInteger, DropsMoreDigitsThanOneStepDivides) {
  std::mt19937_64 engine(2);
  for (int count = 39; count <= kMostWideDigits; ++count) {
    const WideInteger half = timesShort(widePowerOfTen(count - 1), 5);
    EXPECT_EQ(dropDigits(half, count).dropped, Dropped::kHalf) << count;
    EXPECT_EQ(dropDigits(sum(half, {1, 0}), count).dropped, Dropped::kAboveHalf) << count;
    EXPECT_EQ(dropDigits(difference(half, {1, 0}), count).dropped, Dropped::kBelowHalf) << count;
    EXPECT_TRUE(dropDigits(widePowerOfTen(count), count).quotient == 1) << count;
  }
  EXPECT_EQ(dropDigits(widePowerOfTen(kMostWideDigits), 200).dropped, Dropped::kBelowHalf);
  EXPECT_EQ(dropDigits({}, 200).dropped, Dropped::kNothing);
}

TEST(WideInteger, DividesByDivisorsOfAnyLength) {
  std::mt19937_64 engine(3);
  for (int i = 0; i < 200000; ++i) {
    const int bits = static_cast<int>(engine() % 126) + 1;
    Wide divisor = randomBelow(engine, Wide{1} << bits) + 1;
    if (i % 3 == 1) divisor = (Wide{1} << bits) - (bits == 1 ? 0 : 1);
    if (i % 3 == 2) divisor = (Wide{1} << bits) + 1;
    const Wide quotient = randomBelow(engine, Wide{1} << (engine() % 126 + 1));
    const Wide remainder = randomBelow(engine, divisor);
    const WideQuotient divided = divide(sum(product(quotient, divisor), {remainder, 0}), divisor);
    ASSERT_TRUE(divided.quotient == quotient) << i;
    ASSERT_EQ(divided.dropped, classOfRemainder(remainder, divisor)) << i;
  }
}

/// Words at both ends and in the middle, where estimates of a quotient are furthest off.
TEST(WideInteger, DividesWhereWordsAreAtTheirEnds) {
  constexpr std::uint64_t kMiddle = std::uint64_t{1} << 63;
  constexpr std::uint64_t kWords[] = {0,
                                      1,
                                      2,
                                      kMiddle >> 1,
                                      kMiddle - 1,
                                      kMiddle,
                                      kMiddle + 1,
                                      ~std::uint64_t{1},
                                      ~std::uint64_t{0}};
  std::vector<Wide> values;
  for (const std::uint64_t high : kWords)
    for (const std::uint64_t low : kWords) values.push_back((Wide{high} << 64) | low);
  for (const Wide divisor : values) {
    if (divisor == 0) continue;
    for (const Wide quotient : values) {
      for (const Wide remainder : {Wide{0}, Wide{1}, divisor / 2, divisor - 1}) {
        if (remainder >= divisor) continue;
        const WideQuotient divided =
            divide(sum(product(quotient, divisor), {remainder, 0}), divisor);
        ASSERT_TRUE(divided.quotient == quotient);
        ASSERT_EQ(divided.dropped, classOfRemainder(remainder, divisor));
      }
    }
  }
}

TEST(WideInteger, CountsDigitsAtEachPowerOfTen) {
  for (int digits = 1; digits < kMostWideDigits; ++digits) {
    const WideInteger& power = widePowerOfTen(digits);
    EXPECT_EQ(digitCount(power), digits + 1);
    EXPECT_EQ(digitCount(difference(power, {1, 0})), digits);
  }
  EXPECT_EQ(digitCount(WideInteger{}), 0);
  EXPECT_EQ(digitCount(WideInteger{1, 0}), 1);
}

}  // namespace
}  // namespace ORLFoundation::internal::value
