
#include <ORLFoundation/platform/object/NSString.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <gtest/gtest.h>

#include <cstdio>
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
    {"%c%c%c", {'A', 233, 321}, "AéA"},
    {"%C %C %C %lc", {0x20AC, 0x1F600, 0xD800, 66}, "€ 😀 \uFFFD B"},
    {"[%3c] [%-3C]", {'A', 'B'}, "[  A] [B  ]"},
    {"%S %ls", {"wide", "text"}, "wide text"},
    {"%p %p", {0xBEEF, nullptr}, "0xbeef 0x0"},
    {"[%8p] [%-8p]", {1, 1}, "[     0x1] [0x1     ]"},
    {"%2$@ %1$@ %2$@", {"a", "b"}, "b a b"},
    {"%2$@ %@ %@", {"a", "b"}, "b a b"},
    {"%1$05d|%1$x", {10}, "00010|a"},
    {"[%*d] [%-*d] [%*d]", {4, 1, 4, 2, -4, 3}, "[   1] [2   ] [3   ]"},
    {"%.*f %.*f %*.*f", {1, 1.25, -1, 0.5, 6, 2, 3.14159}, "1.2 0.500000   3.14"},
    {"%2$*1$d|%1$d", {3, 7}, "  7|3"},
    {"%*d", {1000000, 1}, std::string(999, ' ') + "1"},
    {"%*@", {"no number", "a"}, "a"},
    // What does not fit.
    {"%d", {"text"}, "text"},
    {"%d", {1.5}, "1.5"},
    {"%f", {"text"}, "text"},
    {"%ld %@", {1}, "1 (null)"},
    {"%@", {1, 2}, "1"},
    {"%", {1}, "%"},
    {"50% done", {1}, "50 1one"},
    {"%k %!", {1}, "%k %!"},
    {"%k %y %5.2m %*k %3$k %@ %@", {1, 2}, "%k %y %5.2m %*k %3$k 1 2"},
    {"%0$d %$d %1$", {5}, "%0$d %$d %1$"},
    {"%9$@ %9999999999$@ %@", {1}, "(null) (null) 1"},
    {"%c %C %p", {"text", 1.5, "text"}, "text 1.5 text"},
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
  const char* const none = nullptr;
  EXPECT_EQ(stringWithFormat("%s %@ %s", none, none, "text"), "(null) (null) text");
}

TEST(NSString, PrintsTheAddressesOfObjectsAndPointers) {
  const auto object = std::make_shared<NSArray>();
  char expected[32];
  std::snprintf(expected, sizeof expected, "%p", static_cast<const void*>(object.get()));
  EXPECT_EQ(stringWithFormat("%p", object), expected);
  EXPECT_EQ(stringWithFormat("%p", object.get()), expected);
  EXPECT_EQ(stringWithFormat("%p", static_cast<const void*>(object.get())), expected);
  EXPECT_EQ(stringWithFormat("%p", static_cast<const int*>(nullptr)), "0x0");
}

}  // namespace
}  // namespace ORLFoundation
