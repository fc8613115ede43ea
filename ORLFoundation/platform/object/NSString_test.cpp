
#include <ORLFoundation/platform/object/NSString.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <gtest/gtest.h>

#include <limits>

namespace ORLFoundation {
namespace {

struct FormatCase {
  const char* format;
  std::vector<id> arguments;
  std::string text;
};
const FormatCase kFormats[] = {
    {"plain", {}, "plain"},
    {"", {1}, ""},
    {"%@ and %@", {"a", NSNull()}, "a and <null>"},
    {"%@", {nullptr}, "(null)"},
    {"Condition Failed: %s %@", {"x > 0", "no"}, "Condition Failed: x > 0 no"},
    {"%d %i %ld %lld %zd", {1, -2, 3, -4, 5}, "1 -2 3 -4 5"},
    {"%ld", {std::numeric_limits<std::int64_t>::min()}, "-9223372036854775808"},
    {"%lu", {std::numeric_limits<std::uint64_t>::max()}, "18446744073709551615"},
    {"%lu", {-1}, "18446744073709551615"},
    {"%u", {-1}, "4294967295"},
    {"%x %X %o %#x", {255, 255, 8, 255}, "ff FF 10 0xff"},
    {"%d", {true}, "1"},
    {"%f %.2f %e %g", {1.5, 2.0 / 3, 1500.0, 0.5}, "1.500000 0.67 1.500000e+03 0.5"},
    {"%.1f", {3}, "3.0"},
    {"%.2f", {NSDecimal::parse("1.255")}, "1.25"},
    {"[%5d] [%-5d] [%05d] [%+d] [% d]",
     {42, 42, 42, 42, 42},
     "[   42] [42   ] [00042] [+42] [ 42]"},
    {"[%5@] [%-5s] [%.2s]", {"ab", "ab", "abcd"}, "[   ab] [ab   ] [ab]"},
    {"[%.1@]", {"é"}, "[]"},
    {"100%% of %d%%", {5}, "100% of 5%"},
    // What does not fit.
    {"%d", {"text"}, "text"},
    {"%d", {1.5}, "1.5"},
    {"%f", {"text"}, "text"},
    {"%ld %@", {1}, "1 (null)"},
    {"%@", {1, 2}, "1"},
    {"%", {1}, "%"},
    {"50% done", {1}, "50 1one"},
    {"%k %!", {1}, "%k %!"},
    {"%n", {1}, "%n"},
    {"%9999999999d", {1}, std::string(999, ' ') + "1"},
    {"%.9999999999f|", {0}, "0." + std::string(1000, '0') + "|"},
    {"%l", {1}, "%l"},
};

TEST(NSString, PutsTextTogetherFromAFormat) {
  for (const auto& row : kFormats)
    EXPECT_EQ(stringWithFormatArguments(row.format, row.arguments), row.text) << row.format;
}

TEST(NSString, TakesArgumentsOfAnyType) {
  EXPECT_EQ(stringWithFormat("none"), "none");
  EXPECT_EQ(stringWithFormat("%@ %@ %ld %.1f", "a", std::string("b"), 3, 0.5), "a b 3 0.5");
  EXPECT_EQ(stringWithFormat("%@", NSArray::arrayWithObjects({1})), "(\n    1\n)");
  EXPECT_EQ(stringWithFormat("%@", std::optional<NSDate>()), "(null)");
}

}  // namespace
}  // namespace ORLFoundation
