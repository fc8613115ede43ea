#include <ORLFoundation/platform/format/internal/ZoneBridge.h>

#include <ORLFoundation/platform/time/NSTimeZone_testing.h>
#include <gtest/gtest.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>

#include <cmath>
#include <limits>
#include <set>
#include <string>

namespace ORLFoundation::internal::format {
namespace {

std::unique_ptr<icu::TimeZone> ours(const char* name) {
  return icuZone(NSTimeZone::timeZoneWithName(name));
}

std::string printed(const char* pattern, const icu::TimeZone& zone, double seconds) {
  UErrorCode status = U_ZERO_ERROR;
  icu::SimpleDateFormat format(icu::UnicodeString(pattern), icu::Locale("en_US"), status);
  EXPECT_TRUE(U_SUCCESS(status));
  format.setTimeZone(zone);
  icu::UnicodeString text;
  format.format(seconds * 1000, text);
  std::string utf8;
  return text.toUTF8String(utf8);
}

constexpr double kWinter = 1705320000;  // 2024-01-15T12:00:00Z
constexpr double kSummer = 1721044800;  // 2024-07-15T12:00:00Z

struct NameCase {
  const char *zone, *pattern, *winter, *summer;
};
const NameCase kNames[] = {
    {"America/New_York", "z", "EST", "EDT"},
    {"America/New_York", "zzzz", "Eastern Standard Time", "Eastern Daylight Time"},
    {"America/New_York", "v", "ET", "ET"},
    {"America/New_York", "vvvv", "Eastern Time", "Eastern Time"},
    {"America/New_York", "VV", "America/New_York", "America/New_York"},
    {"America/New_York", "VVV", "New York", "New York"},
    {"America/New_York", "VVVV", "New York Time", "New York Time"},
    {"America/New_York", "Z", "-0500", "-0400"},
    {"America/New_York", "ZZZZ", "GMT-05:00", "GMT-04:00"},
    {"America/New_York", "ZZZZZ", "-05:00", "-04:00"},
    {"America/New_York", "O", "GMT-5", "GMT-4"},
    {"America/New_York", "OOOO", "GMT-05:00", "GMT-04:00"},
    {"America/New_York", "XXX", "-05:00", "-04:00"},
    {"Europe/Vienna", "zzzz", "Central European Standard Time", "Central European Summer Time"},
    {"Europe/London", "zzzz", "Greenwich Mean Time", "British Summer Time"},
    {"Europe/Dublin", "zzzz", "Greenwich Mean Time", "Irish Standard Time"},
    {"Asia/Kolkata", "zzzz", "India Standard Time", "India Standard Time"},
    {"Australia/Sydney", "zzzz", "Australian Eastern Daylight Time",
     "Australian Eastern Standard Time"},
    {"Africa/Cairo", "zzzz", "Eastern European Standard Time", "Eastern European Summer Time"},
    {"Africa/Cairo", "HH:mm", "14:00", "15:00"},
    {"America/Mexico_City", "zzzz", "Central Standard Time", "Central Standard Time"},
    {"America/Mexico_City", "HH:mm", "06:00", "06:00"},
    {"UTC", "zzzz", "Coordinated Universal Time", "Coordinated Universal Time"},
    {"GMT", "zzzz", "Greenwich Mean Time", "Greenwich Mean Time"},
    {"GMT+0530", "zzzz", "GMT+05:30", "GMT+05:30"},
    {"GMT+0530", "z", "GMT+5:30", "GMT+5:30"},
};

TEST(ZoneBridge, PrintsEachStyleOfAZonesName) {
  for (const NameCase& row : kNames) {
    const auto zone = ours(row.zone);
    EXPECT_EQ(printed(row.pattern, *zone, kWinter), row.winter) << row.zone << " " << row.pattern;
    EXPECT_EQ(printed(row.pattern, *zone, kSummer), row.summer) << row.zone << " " << row.pattern;
  }
}

// Zones whose rules did not change since the tables that ICU brings along, and whose daylight
// saving time both tell alike.
const char* const kSteadyZones[] = {"America/New_York", "America/Los_Angeles", "America/St_Johns",
                                    "Europe/Vienna",    "Europe/London",       "Europe/Dublin",
                                    "Australia/Sydney", "Pacific/Auckland",    "Asia/Tokyo",
                                    "Asia/Kolkata",     "America/Phoenix",     "UTC"};

TEST(ZoneBridge, PrintsAsIcusOwnZoneDoes) {
  constexpr double kStep = 13 * 86400.0 + 7 * 3600;
  for (const char* name : kSteadyZones) {
    const auto bridge = ours(name);
    const std::unique_ptr<icu::TimeZone> peer(icu::TimeZone::createTimeZone(name));
    for (const char* pattern : {"z", "zzzz", "v", "vvvv", "VVVV", "ZZZZZ"}) {
      UErrorCode status = U_ZERO_ERROR;
      icu::SimpleDateFormat format(icu::UnicodeString(pattern), icu::Locale("en_US"), status);
      ASSERT_TRUE(U_SUCCESS(status));
      for (double at = 788918400; at < 1640995200; at += kStep) {  // 1995 to 2022
        icu::UnicodeString texts[2];
        format.setTimeZone(*bridge);
        format.format(at * 1000, texts[0]);
        format.setTimeZone(*peer);
        format.format(at * 1000, texts[1]);
        std::string both[2];
        ASSERT_EQ(texts[0].toUTF8String(both[0]), texts[1].toUTF8String(both[1]))
            << name << " " << pattern << " " << at;
      }
    }
  }
}

double offsetAt(const icu::TimeZone& zone, double seconds, bool local) {
  UErrorCode status = U_ZERO_ERROR;
  std::int32_t raw = 1;
  std::int32_t saving = 1;
  zone.getOffset(seconds * 1000, local ? 1 : 0, raw, saving, status);
  EXPECT_TRUE(U_SUCCESS(status));
  return (raw + saving) / 1000.0;
}

TEST(ZoneBridge, ReadsAgreeWithTheTableOnBothSidesOfEachClockChange) {
  for (const char* name : {"America/New_York", "Australia/Lord_Howe", "Africa/Cairo",
                           "Pacific/Apia", "America/Sao_Paulo", "Europe/Dublin"}) {
    const auto zone = NSTimeZone::timeZoneWithName(name);
    const ZoneBridge bridge(zone);
    auto change = zone->nextDaylightSavingTimeTransitionAfterDate(NSDate());
    for (int count = 0; change && count < 60; ++count) {
      for (const double beside : {-90000.0, -5400.0, -1.0, 0.0, 1.0, 5400.0, 90000.0}) {
        const double at = change->timeIntervalSince1970() + beside;
        const auto offset = static_cast<double>(
            zone->secondsFromGMTForDate(NSDate::dateWithTimeIntervalSince1970(at)));
        EXPECT_EQ(offsetAt(bridge, at, false), offset) << name << " " << at;
        // The local time leads back, to the first occurrence of a doubled one.
        const double back = bridge.instantOfLocal(at + offset);
        EXPECT_LE(back, at) << name;
        EXPECT_EQ(back + static_cast<double>(zone->secondsFromGMTForDate(
                             NSDate::dateWithTimeIntervalSince1970(back))),
                  at + offset)
            << name;
        EXPECT_EQ(offsetAt(bridge, at + offset, true), at + offset - back) << name << " " << at;
      }
      change = zone->nextDaylightSavingTimeTransitionAfterDate(*change);
    }
  }
}

TEST(ZoneBridge, MovesATimeInAGapOnAndTakesTheFirstOfADoubledOne) {
  const ZoneBridge zone(NSTimeZone::timeZoneWithName("America/New_York"));
  constexpr double kGap = 1710037800;      // 2024-03-10 02:30 on the clock
  constexpr double kDoubled = 1730597400;  // 2024-11-03 01:30 on the clock
  EXPECT_EQ(zone.instantOfLocal(kGap), kGap + 5 * 3600);
  EXPECT_EQ(zone.instantOfLocal(kDoubled), kDoubled + 4 * 3600);
  EXPECT_EQ(offsetAt(zone, kGap, true), -5 * 3600);
  EXPECT_EQ(offsetAt(zone, kDoubled, true), -4 * 3600);
}

TEST(ZoneBridge, AnswersForDatesThatNoCalendarCounts) {
  const ZoneBridge zone(NSTimeZone::timeZoneWithName("America/New_York"));
  for (const double far :
       {1e300, -1e300, std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(offsetAt(zone, far, false), 0);
    EXPECT_EQ(offsetAt(zone, far, true), 0);
  }
}

TEST(ZoneBridge, TellsOffsetsOfFields) {
  UErrorCode status = U_ZERO_ERROR;
  const ZoneBridge zone(NSTimeZone::timeZoneWithName("America/New_York"));
  constexpr int kNoon = 12 * 3600 * 1000;
  constexpr int kHour = 3600 * 1000;
  EXPECT_EQ(zone.getOffset(1, 2024, UCAL_JULY, 15, UCAL_MONDAY, kNoon, status), -4 * kHour);
  EXPECT_EQ(zone.getOffset(1, 2024, UCAL_JANUARY, 15, UCAL_MONDAY, kNoon, 31, status), -5 * kHour);
  EXPECT_TRUE(U_SUCCESS(status));
  zone.getOffset(1, 2024, 12, 15, UCAL_MONDAY, kNoon, status);
  EXPECT_EQ(status, U_ILLEGAL_ARGUMENT_ERROR);
}

TEST(ZoneBridge, TellsTheClockChangesAround) {
  const ZoneBridge zone(NSTimeZone::timeZoneWithName("America/New_York"));
  constexpr UDate kToSummer = 1710054000e3;  // 2024-03-10T07:00:00Z
  icu::TimeZoneTransition change;
  ASSERT_TRUE(zone.getNextTransition(kWinter * 1000, 0, change));
  EXPECT_EQ(change.getTime(), kToSummer);
  EXPECT_EQ(change.getFrom()->getDSTSavings(), 0);
  EXPECT_EQ(change.getTo()->getDSTSavings(), 3600 * 1000);
  ASSERT_TRUE(zone.getNextTransition(kToSummer, 1, change));
  EXPECT_EQ(change.getTime(), kToSummer);
  ASSERT_TRUE(zone.getNextTransition(kToSummer, 0, change));
  EXPECT_GT(change.getTime(), kToSummer);
  ASSERT_TRUE(zone.getPreviousTransition(kSummer * 1000, 0, change));
  EXPECT_EQ(change.getTime(), kToSummer);
  ASSERT_TRUE(zone.getPreviousTransition(kToSummer, 1, change));
  EXPECT_EQ(change.getTime(), kToSummer);
  ASSERT_TRUE(zone.getPreviousTransition(kToSummer, 0, change));
  EXPECT_LT(change.getTime(), kToSummer);
  const ZoneBridge fixed(NSTimeZone::timeZoneForSecondsFromGMT(3600));
  EXPECT_FALSE(fixed.getNextTransition(0, 1, change));
  EXPECT_FALSE(fixed.getPreviousTransition(0, 1, change));
  EXPECT_FALSE(zone.getNextTransition(1e300, 1, change));
}

TEST(ZoneBridge, IsAValueOfItsZone) {
  const ZoneBridge zone(NSTimeZone::timeZoneWithName("America/New_York"));
  const std::unique_ptr<ZoneBridge> copy(zone.clone());
  EXPECT_EQ(copy->zone(), zone.zone());
  const icu::TimeZone& same = *copy;
  EXPECT_TRUE(zone == same);
  EXPECT_TRUE(zone.hasSameRules(*copy));
  const auto other = ours("Europe/Vienna");
  EXPECT_FALSE(zone == *other);
  EXPECT_FALSE(zone.hasSameRules(*other));
  EXPECT_FALSE(zone.hasSameRules(*icu::TimeZone::getGMT()));
  EXPECT_EQ(zone.getDynamicClassID(), ZoneBridge::getStaticClassID());
  EXPECT_EQ(copy->getRawOffset(), -5 * 3600 * 1000);
  copy->setRawOffset(0);
  EXPECT_EQ(copy->getRawOffset(), -5 * 3600 * 1000);
  EXPECT_TRUE(zone.useDaylightTime());
  EXPECT_FALSE(ours("Asia/Tokyo")->useDaylightTime());
}

TEST(ZoneBridge, TakesTheDefaultZoneForNil) {
  const orlftest::DefaultZone zone("Asia/Tokyo");
  icu::UnicodeString id;
  EXPECT_EQ(icuZone(nullptr)->getID(id), icu::UnicodeString("Asia/Tokyo"));
}

}  // namespace
}  // namespace ORLFoundation::internal::format
