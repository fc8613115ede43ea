#include <ORLFoundation/platform/text/UTF16Range.h>

#include <gtest/gtest.h>

#include <limits>

namespace ORLFoundation::internal::text {
namespace {

constexpr NSUInteger kAll = std::numeric_limits<NSUInteger>::max() - 1;

TEST(UTF16Range, CountsUnitsUpToOneMoreThanAsked) {
  EXPECT_EQ(unitsOf("", 5), 0U);
  EXPECT_EQ(unitsOf("aé👍", kAll), 4U);
  EXPECT_EQ(unitsOf("aaaa", 4), 4U);
  EXPECT_EQ(unitsOf("aaaaa", 4), 5U);
  EXPECT_EQ(unitsOf("aaaaaaaa", 4), 5U);
}

TEST(UTF16Range, CutsToTheTextAndTheMost) {
  EXPECT_EQ(partOfText("👍3/4", {2, 3}, kAll), "3/4");
  EXPECT_EQ(partOfText("é3/4", {1, 2}, kAll), "3/");
  EXPECT_EQ(partOfText("abc", {0, kAll}, kAll), "abc");
  EXPECT_EQ(partOfText("abc", {0, 3}, 2), "ab");
  EXPECT_EQ(partOfText("abc", {3, 1}, kAll), "");
  EXPECT_EQ(partOfText("abc", {kAll, kAll}, kAll), "");
  EXPECT_EQ(partOfText("abc", {1, 0}, kAll), "");
}

TEST(UTF16Range, BeginsAndEndsBeforeACharacterThatItWouldCut) {
  EXPECT_EQ(partOfText("👍3", {1, 2}, kAll), "👍");
  EXPECT_EQ(partOfText("3👍", {0, 2}, kAll), "3");
}

}  // namespace
}  // namespace ORLFoundation::internal::text
