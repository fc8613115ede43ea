
#include <ORLFoundation/platform/time/NSISO8601DateFormatter.h>

#include <gtest/gtest.h>

#include <limits>

namespace ORLFoundation {
namespace {

std::string text(double since1970, const char* zone = "UTC", NSUInteger options = 1907) {
  return NSISO8601DateFormatter::stringFromDate(NSDate::dateWithTimeIntervalSince1970(since1970),
                                                *NSTimeZone::timeZoneWithName(zone), options);
}

constexpr double kMoment = 1794481686;  // 2026-11-12T11:08:06Z

struct FormatCase {
  const char* name;
  NSUInteger options;
  const char* zone;
  const char* answer;
};
const FormatCase kFormats[] = {
    {"All", 1907, "UTC", "2026-11-12T11:08:06Z"},
    {"NoYear", 1906, "UTC", "11-12T11:08:06Z"},
    {"NoMonth", 1905, "UTC", "2026-12T11:08:06Z"},
    {"NoDay", 1891, "UTC", "2026-11T11:08:06Z"},
    {"NoTime", 1875, "UTC", "2026-11-12Z"},
    {"NoZone", 1843, "UTC", "2026-11-12T11:08:06"},
    {"NoDashes", 1651, "UTC", "20261112T11:08:06Z"},
    {"NoColons", 1395, "UTC", "2026-11-12T110806Z"},
    {"East", 1907, "GMT+0530", "2026-11-12T16:38:06+05:30"},
    {"West", 1907, "America/New_York", "2026-11-12T06:08:06-05:00"},
    {"NoColonInTheZone", 883, "GMT+0530", "2026-11-12T16:38:06+0530"},
    {"TimeAlone", 32 + 512, "UTC", "11:08:06"},
    {"Nothing", 0, "UTC", ""},
    {"OtherBits", 1907 + (NSUInteger{1} << 40), "UTC", "2026-11-12T11:08:06Z"},
};

TEST(NSISO8601DateFormatter, WritesThePartsThatAreNamed) {
  for (const FormatCase& row : kFormats)
    EXPECT_EQ(text(kMoment, row.zone, row.options), row.answer) << row.name;
}

TEST(NSISO8601DateFormatter, CutsOffFractions) {
  EXPECT_EQ(text(kMoment + 0.999), "2026-11-12T11:08:06Z");
  EXPECT_EQ(text(-0.5), "1969-12-31T23:59:59Z");
}

TEST(NSISO8601DateFormatter, WritesSecondsOfAnOffset) {
  EXPECT_EQ(text(-3000000000, "America/New_York"), "1874-12-07T13:43:58-04:56:02");
}

TEST(NSISO8601DateFormatter, WritesFarYears) {
  EXPECT_EQ(text(-62167219200), "0000-01-01T00:00:00Z");
  EXPECT_EQ(text(-62167219201), "-0001-12-31T23:59:59Z");
  EXPECT_EQ(text(253402300800), "10000-01-01T00:00:00Z");
}

TEST(NSISO8601DateFormatter, WritesNothingForWhatIsNoDate) {
  EXPECT_EQ(text(std::numeric_limits<double>::infinity()), "");
  EXPECT_EQ(text(std::numeric_limits<double>::quiet_NaN()), "");
  EXPECT_EQ(text(-1e300), "");
  EXPECT_EQ(text(4.3e13), "");
}

}  // namespace
}  // namespace ORLFoundation
