#include <ORLFoundation/platform/base/CheckedArithmetic.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace ORLFoundation::internal::base {
namespace {

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

template <class Integer>
std::optional<Integer> fitted(int value) {
  const bool fits =
      value >= std::numeric_limits<Integer>::min() && value <= std::numeric_limits<Integer>::max();
  return fits ? std::optional(static_cast<Integer>(value)) : std::nullopt;
}

template <class Integer>
void expectAllPairsOfAByte() {
  for (int i = std::numeric_limits<Integer>::min(); i <= std::numeric_limits<Integer>::max(); ++i) {
    for (int j = std::numeric_limits<Integer>::min(); j <= std::numeric_limits<Integer>::max();
         ++j) {
      const auto left = static_cast<Integer>(i);
      const auto right = static_cast<Integer>(j);
      ASSERT_EQ(checkedSum(left, right), fitted<Integer>(i + j)) << i << ' ' << j;
      ASSERT_EQ(checkedDifference(left, right), fitted<Integer>(i - j)) << i << ' ' << j;
      ASSERT_EQ(checkedProduct(left, right), fitted<Integer>(i * j)) << i << ' ' << j;
    }
  }
}

TEST(CheckedArithmetic, AllPairsOfBytesAnswerOrTellThatTheyCannot) {
  expectAllPairsOfAByte<std::int8_t>();
  expectAllPairsOfAByte<std::uint8_t>();
}

TEST(CheckedArithmetic, TellsAtTheEdgesOfAWord) {
  EXPECT_EQ(checkedSum(kMost, 1), std::nullopt);
  EXPECT_EQ(checkedSum(kMost, 0), kMost);
  EXPECT_EQ(checkedDifference(kLeast, 1), std::nullopt);
  EXPECT_EQ(checkedDifference(std::int64_t{0}, kLeast), std::nullopt);
  EXPECT_EQ(checkedProduct(kLeast, -1), std::nullopt);
  EXPECT_EQ(checkedProduct(kMost / 2, 2), kMost - 1);
  EXPECT_EQ(checkedDifference(std::uint64_t{0}, 1), std::nullopt);
}

static_assert(checkedSum(2, 3) == 5, "usable where constants are worked out");

}  // namespace
}  // namespace ORLFoundation::internal::base
