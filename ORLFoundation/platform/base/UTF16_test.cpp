#include <ORLFoundation/platform/base/UTF16.h>

#include <gtest/gtest.h>

#include <string>

namespace ORLFoundation::internal::base {
namespace {

// By the definition: ten bits of what lies beyond U+FFFF in each unit.
TEST(UTF16, UnitsOfEachCharacterLeadBackToIt) {
  for (char32_t code = kFirstOfTwoUnits; code <= 0x10FFFF; ++code) {
    const char16_t leading = leadingUnit(code);
    const char16_t trailing = trailingUnit(code);
    ASSERT_TRUE(isLeadingUnit(leading) && !isTrailingUnit(leading)) << static_cast<unsigned>(code);
    ASSERT_TRUE(isTrailingUnit(trailing) && !isLeadingUnit(trailing))
        << static_cast<unsigned>(code);
    ASSERT_EQ((leading & 0x3FFU) << 10 | (trailing & 0x3FFU), code - 0x10000);
    ASSERT_EQ(codePointOfUnits(leading, trailing), code);
  }
}

TEST(UTF16, TellsUnitsOfPairsFromAllOthers) {
  for (unsigned unit = 0; unit < 0x10000; ++unit) {
    ASSERT_EQ(isLeadingUnit(unit), (unit & 0xFC00U) == 0xD800U) << unit;
    ASSERT_EQ(isTrailingUnit(unit), (unit & 0xFC00U) == 0xDC00U) << unit;
  }
}

TEST(UTF16, WritesTextsUnitByUnit) {
  EXPECT_EQ(utf16Units(""), u"");
  EXPECT_EQ(utf16Units("a\u00E9\uFFFF\U00010000\U0010FFFFz"),
            u"a\u00E9\uFFFF\U00010000\U0010FFFFz");
  EXPECT_EQ(utf16Units("\xE2\x82"
                       "A\x80"),
            u"\uFFFDA\uFFFD");
}

}  // namespace
}  // namespace ORLFoundation::internal::base
