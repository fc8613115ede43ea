#include <ORLFoundation/platform/base/Trimmed.h>

#include <gtest/gtest.h>

namespace ORLFoundation::internal::base {
namespace {

TEST(Trimmed, TakesBlanksOffBothEndsAlone) {
  EXPECT_EQ(trimmed(" a b ", " "), "a b");
  EXPECT_EQ(trimmed("\t a\t", " "), "\t a\t");
  EXPECT_EQ(trimmed("\t a\t", " \t"), "a");
  EXPECT_EQ(trimmed("a", " "), "a");
  EXPECT_EQ(trimmed("a", ""), "a");
  EXPECT_EQ(trimmed("  ", " "), "");
  EXPECT_EQ(trimmed("", " "), "");
}

}  // namespace
}  // namespace ORLFoundation::internal::base
