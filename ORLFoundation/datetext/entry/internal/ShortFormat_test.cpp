#include <ORLFoundation/datetext/entry/internal/ShortFormat.h>

#include <ORLFoundation/platform/log/LogCapture.h>
#include <gtest/gtest.h>

namespace ORLFoundation::internal::entry {
namespace {

TEST(ShortFormat, IsUnderstoodByItsLengthItsEndsAndItsPairs) {
  const LogCapture log;
  EXPECT_EQ(monthFirstOfShortFormat("M/d/y"), true);       // 5 characters
  EXPECT_EQ(monthFirstOfShortFormat("MM/dd/yyyy"), true);  // 10
  EXPECT_EQ(monthFirstOfShortFormat("d.M-y"), false);
  EXPECT_TRUE(log.lines().empty());
  for (const char* format : {"M/dy", "MM/dd/yyyyy", "y/M/d", "M/d/Y", "dM/My", "M/M/y", "d/d/y",
                             "L/d/y", "E/M/d/y", "M d y", "M/yy/y", ""})
    EXPECT_FALSE(monthFirstOfShortFormat(format)) << format;
  EXPECT_EQ(log.lines().size(), 12U);
  EXPECT_EQ(log.lines()[2], "Unrecognized date format string y/M/d");
}

TEST(ShortFormat, TakesTheDayFirstWhereBothOrdersStand) {
  EXPECT_EQ(monthFirstOfShortFormat("M/d/M/d/y"), true);
  EXPECT_EQ(monthFirstOfShortFormat("M/d/M/y"), false);
}

struct WideCase {
  const char *format, *year, *month, *day, *all;
};
const WideCase kWide[] = {
    {"M/d/yy", "M/d/yyyy", "MM/d/yy", "M/dd/yy", "MM-dd-yyyy"},
    {"M/d/y", "M/d/yyyy", "MM/d/y", "M/dd/y", "MM-dd-yyyy"},
    {"yyy MMM ddd", "yyyy MMM ddd", "yyy MMM ddd", "yyy MMM ddd", "yyyy MMM ddd"},
    {"yyyyy/M", "yyyyy/M", "yyyyy/MM", "yyyyy/M", "yyyyy-MM"},
    {"y'y'yyM", "yyyy'y'yyyyM", "y'y'yyMM", "y'y'yyM", "yyyy'y'yyyyMM"},
    {"d 'o''d' d", "d 'o''d' d", "d 'o''d' d", "dd 'o''d' dd", "dd 'o''d' dd"},
    {"d''M", "d''M", "d''MM", "dd''M", "dd''MM"},
    {"'d/", "'d/", "'d/", "'d/", "'d-"},
    {"", "", "", "", ""},
};

TEST(ShortFormat, WidensRunsOutsideOfQuotes) {
  for (const WideCase& row : kWide) {
    EXPECT_EQ(
        widenedFormat(row.format, {.year = true, .month = false, .day = false, .dashes = false}),
        row.year);
    EXPECT_EQ(
        widenedFormat(row.format, {.year = false, .month = true, .day = false, .dashes = false}),
        row.month);
    EXPECT_EQ(
        widenedFormat(row.format, {.year = false, .month = false, .day = true, .dashes = false}),
        row.day);
    EXPECT_EQ(widenedFormat(row.format, {.year = true, .month = true, .day = true, .dashes = true}),
              row.all);
    EXPECT_EQ(widenedFormat(row.format, {}), row.format);
  }
}

}  // namespace
}  // namespace ORLFoundation::internal::entry
