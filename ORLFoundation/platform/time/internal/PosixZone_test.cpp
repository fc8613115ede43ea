#include <ORLFoundation/platform/time/internal/PosixZone.h>

#include <gtest/gtest.h>

namespace ORLFoundation::internal::time {
namespace {

constexpr std::int64_t kHour = 3600;
constexpr std::int64_t kDay = 24 * kHour;

struct SameRules {
  const char* text;
  const char* name;
};
// Zones that have kept these rules since 2008.
constexpr SameRules kSameRules[] = {
    {"EST5EDT,M3.2.0,M11.1.0", "America/New_York"},
    {"EST5EDT", "America/New_York"},
    {"CET-1CEST,M3.5.0,M10.5.0/3", "Europe/Vienna"},
    {"GMT0BST,M3.5.0/1,M10.5.0", "Europe/London"},
    {"AEST-10AEDT,M10.1.0,M4.1.0/3", "Australia/Sydney"},
    {"<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", "Australia/Lord_Howe"},
    {"IST-1GMT0,M10.5.0,M3.5.0/1", "Europe/Dublin"},
    {"<+0545>-5:45", "Asia/Kathmandu"},
    {"HST10", "Pacific/Honolulu"},
};

TEST(PosixZone, AgreesWithZonesThatHaveItsRules) {
  for (const SameRules& row : kSameRules) {
    const auto told = zoneFromPosixText(row.text);
    const auto listed = ZoneTable::read(row.name);
    ASSERT_NE(told, nullptr) << row.text;
    ASSERT_NE(listed, nullptr) << row.name;
    // Every hour of three years, and one hour of each day up to 2700.
    constexpr std::int64_t kBegin = 1230768000;  // 2009
    for (std::int64_t hour = 0; hour < 3 * 365 * 24; ++hour) {
      const std::int64_t instant = kBegin + hour * kHour;
      ASSERT_EQ(told->offsetAt(instant), listed->offsetAt(instant)) << row.text << ' ' << instant;
      ASSERT_EQ(told->offsetAt(instant - 1), listed->offsetAt(instant - 1)) << row.text;
    }
    for (std::int64_t instant = kBegin; instant < 23'000'000'000; instant += kDay + kHour)
      ASSERT_EQ(told->offsetAt(instant), listed->offsetAt(instant)) << row.text << ' ' << instant;
  }
}

// By day of the year: with rules that count the leap day, 60 is 29 February or 1 March.
TEST(PosixZone, CountsDaysOfTheYearWithAndWithoutTheLeapDay) {
  constexpr std::int64_t kMarch2023 = 1677628800;
  constexpr std::int64_t kMarch2024 = 1709251200;
  const auto withoutLeapDay = zoneFromPosixText("AAA0BBB,J60/0,J300/0");
  const auto counted = zoneFromPosixText("AAA0BBB,59/0,300/0");
  for (const auto& zone : {withoutLeapDay, counted}) {
    EXPECT_EQ(zone->offsetAt(kMarch2023 - 1), 0);
    EXPECT_EQ(zone->offsetAt(kMarch2023), 3600);
  }
  EXPECT_EQ(withoutLeapDay->offsetAt(kMarch2024 - 1), 0);
  EXPECT_EQ(withoutLeapDay->offsetAt(kMarch2024), 3600);
  EXPECT_EQ(counted->offsetAt(kMarch2024 - kDay - 1), 0);
  EXPECT_EQ(counted->offsetAt(kMarch2024 - kDay), 3600);
  EXPECT_TRUE(counted->segmentAt(kMarch2024).daylightSaving);
  EXPECT_FALSE(counted->segmentAt(kMarch2024 - 2 * kDay).daylightSaving);
}

TEST(PosixZone, KeepsADaylightSavingTimeOfTheWholeYear) {
  const auto zone = zoneFromPosixText("XXX3EDT4,0/0,J365/23");
  ASSERT_NE(zone, nullptr);
  for (std::int64_t day = 0; day < 400 * 366; day += 11)
    ASSERT_EQ(zone->offsetAt(day * kDay), -4 * kHour) << day;
}

TEST(PosixZone, ReadsTimesBeforeAndAfterTheDay) {
  // Two hours before the last Sunday of March, and 26 hours into the last Sunday of October.
  const auto zone = zoneFromPosixText("<-02>2<-01>,M3.5.0/-1,M10.5.0/0");
  const auto nuuk = ZoneTable::read("America/Nuuk");
  constexpr std::int64_t k2024 = 1704067200;
  for (std::int64_t hour = 0; hour < 3 * 366 * 24; ++hour)
    ASSERT_EQ(zone->offsetAt(k2024 + hour * kHour), nuuk->offsetAt(k2024 + hour * kHour)) << hour;
}

TEST(PosixZone, RefusesTextsOfAnotherForm) {
  for (const char* text : {"",
                           "E",
                           "ES5",
                           "EST",
                           "EST+",
                           "EST25",
                           "EST5:60",
                           "EST5EDT,",
                           "EST5EDT,M3.2.0",
                           "EST5EDT,M13.2.0,M11.1.0",
                           "EST5EDT,M3.6.0,M11.1.0",
                           "EST5EDT,M3.2.7,M11.1.0",
                           "EST5EDT,M3.2,M11.1.0",
                           "EST5EDT,J0,J300",
                           "EST5EDT,366,10",
                           "EST5EDT,M3.2.0,M11.1.0x",
                           "EST5EDT,M3.2.0/168,M11.1.0",
                           "<EST5",
                           "<+1>-1",
                           "EST5ED",
                           "5EST",
                           "Europe/Vienna"})
    EXPECT_EQ(zoneFromPosixText(text), nullptr) << text;
}

TEST(PosixZone, CountsSignsWestward) {
  EXPECT_EQ(zoneFromPosixText("AAA+3:30:15")->offsetAt(0), -(3 * 3600 + 30 * 60 + 15));
  EXPECT_EQ(zoneFromPosixText("AAA-14")->offsetAt(0), 14 * 3600);
  EXPECT_EQ(zoneFromPosixText("AAA3BBB1,J1,J200")->offsetAt(86400 * 90), -3600);
}

}  // namespace
}  // namespace ORLFoundation::internal::time
