#include <ORLFoundation/platform/text/NSStringNumbers.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

struct IntegerCase {
  std::string_view name, text;
  NSInteger value;
};
const IntegerCase kIntegerCases[] = {
    {"Empty", "", 0},
    {"Digits", "42", 42},
    {"StopsAtTheFirstOtherCharacter", "42abc", 42},
    {"StopsAtAPoint", "-3.99", -3},
    {"StopsAtAnExponent", "1e3", 1},
    {"StopsAtAGroupMark", "1,234", 1},
    {"TakesASign", "+1", 1},
    {"TakesOneSignOnly", "+-5", 0},
    {"SkipsLeadingSpace", " \t\n 7", 7},
    {"SpaceAfterTheSignEndsIt", "- 7", 0},
    {"LeadingZerosAreDecimal", "007", 7},
    {"Words", "abc", 0},
    {"SignAlone", "-", 0},
    {"SpaceAlone", "  ", 0},
    {"DigitsOfOtherScripts", "\xD9\xA1\xD9\xA2", 0},
    {"Largest", "9223372036854775807", NSIntegerMax},
    {"PastTheLargest", "9223372036854775808", NSIntegerMax},
    {"FarPastTheLargest", "99999999999999999999999", NSIntegerMax},
    {"Smallest", "-9223372036854775808", NSIntegerMin},
    {"PastTheSmallest", "-9223372036854775809", NSIntegerMin},
};

TEST(IntegerValue, ReadsTheBeginningOfAText) {
  for (const IntegerCase& row : kIntegerCases)
    EXPECT_EQ(integerValue(row.text), row.value) << row.name;
}

}  // namespace
}  // namespace ORLFoundation
