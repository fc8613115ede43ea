#include <ORLFoundation/platform/base/NumberText.h>

#include <gtest/gtest.h>

namespace ORLFoundation::internal::base {
namespace {

struct Signed {
  std::string_view text;
  bool isNegative;
  std::string_view rest;
};

TEST(NumberText, LosesOneSign) {
  for (const Signed& row :
       {Signed{"-1", true, "1"}, Signed{"+1", false, "1"}, Signed{"1", false, "1"},
        Signed{"--1", true, "-1"}, Signed{"+-1", false, "-1"}, Signed{"-", true, ""},
        Signed{"", false, ""}, Signed{" -1", false, " -1"}}) {
    std::string_view text = row.text;
    EXPECT_EQ(takeSign(text), row.isNegative) << row.text;
    EXPECT_EQ(text, row.rest) << row.text;
  }
}

TEST(NumberText, TellsWhereDigitsEnd) {
  EXPECT_EQ(endOfDigits("a09/", 1), 3U);
  EXPECT_EQ(endOfDigits("a09:", 0), 0U);
  EXPECT_EQ(endOfDigits("12", 0), 2U);
  EXPECT_EQ(endOfDigits("12", 2), 2U);
  EXPECT_EQ(endOfDigits("12", 3), 2U);
  EXPECT_EQ(endOfDigits("", 0), 0U);
}

}  // namespace
}  // namespace ORLFoundation::internal::base
