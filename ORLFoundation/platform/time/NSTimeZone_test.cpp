
#include <ORLFoundation/platform/time/NSTimeZone.h>

#include <ORLFoundation/platform/object/NSObject_testing.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

NSDate since1970(double seconds) { return NSDate::dateWithTimeIntervalSince1970(seconds); }

TEST(NSTimeZone, GivesOneObjectPerNameOnAnyThread) {
  std::vector<std::shared_ptr<NSTimeZone>> zones(8);
  std::vector<std::thread> threads;
  for (auto& zone : zones)
    threads.emplace_back([&zone] { zone = NSTimeZone::timeZoneWithName("Europe/Vienna"); });
  for (std::thread& thread : threads) thread.join();
  for (const auto& zone : zones) {
    ASSERT_NE(zone, nullptr);
    EXPECT_EQ(zone, zones.front());
    EXPECT_EQ(&zone->table(), &zones.front()->table());
  }
}

TEST(NSTimeZone, GivesOneObjectForEachNameOfAnOffset) {
  for (const char* name : {"GMT", "GMT+0530", "UTC-5", "Etc/GMT+5", "UTC"})
    EXPECT_EQ(NSTimeZone::timeZoneWithName(name), NSTimeZone::timeZoneWithName(name)) << name;
  EXPECT_EQ(NSTimeZone::timeZoneWithName("GMT+5"), NSTimeZone::timeZoneForSecondsFromGMT(18000));
}

TEST(NSTimeZone, RefusesNamesThatAreNoZones) {
  for (const char* name :
       {"", "Atlantis/Capital", "/etc/passwd", "../zoneinfo/UTC", "America/../UTC", "file:UTC",
        "Fixed/UTC+01:00:00", "GMT+", "GMT+x", "GMT+05:3", "GMT+0560", "GMT+1900", "UTC-18:01",
        "GMT+123456", "America/New_York ", "America", "America//New_York"}) {
    EXPECT_EQ(NSTimeZone::timeZoneWithName(name), nullptr) << name;
  }
}

TEST(NSTimeZone, ReadsOffsetsFromNames) {
  const struct {
    const char* name;
    NSInteger seconds;
    const char* shown;
  } rows[] = {{"GMT", 0, "GMT"},
              {"GMT+0530", 19800, "GMT+0530"},
              {"GMT-5", -18000, "GMT-0500"},
              {"UTC+05:45", 20700, "GMT+0545"},
              {"GMT+18", 64800, "GMT+1800"}};
  for (const auto& row : rows) {
    const auto zone = NSTimeZone::timeZoneWithName(row.name);
    ASSERT_NE(zone, nullptr) << row.name;
    EXPECT_EQ(zone->secondsFromGMTForDate(since1970(0)), row.seconds) << row.name;
    EXPECT_EQ(zone->name(), row.shown);
    EXPECT_FALSE(zone->nextDaylightSavingTimeTransitionAfterDate(since1970(0)));
  }
}

TEST(NSTimeZone, NamesFixedOffsetsToTheSecond) {
  EXPECT_EQ(NSTimeZone::timeZoneForSecondsFromGMT(-11188)->name(), "GMT-030628");
  EXPECT_EQ(NSTimeZone::timeZoneForSecondsFromGMT(64801), nullptr);
  EXPECT_EQ(NSTimeZone::timeZoneForSecondsFromGMT(NSIntegerMin), nullptr);
}

TEST(NSTimeZone, ChangesItsOffsetAtTheInstantOfTheClockChange) {
  const auto zone = NSTimeZone::timeZoneWithName("America/New_York");
  EXPECT_EQ(zone->secondsFromGMTForDate(since1970(1'710'054'000 - 0.001)), -18000);
  EXPECT_FALSE(zone->isDaylightSavingTimeForDate(since1970(1'710'053'999)));
  EXPECT_EQ(zone->secondsFromGMTForDate(since1970(1'710'054'000)), -14400);
  EXPECT_TRUE(zone->isDaylightSavingTimeForDate(since1970(1'710'054'000)));
}

TEST(NSTimeZone, GoesOnChangingAfterTheLastListedYear) {
  const auto zone = NSTimeZone::timeZoneWithName("America/New_York");
  const auto march = zone->nextDaylightSavingTimeTransitionAfterDate(since1970(26'514'000'000));
  ASSERT_TRUE(march);
  const auto november = zone->nextDaylightSavingTimeTransitionAfterDate(*march);
  ASSERT_TRUE(november);
  EXPECT_LT(november->timeIntervalSinceDate(*march), 300 * 86400.0);
  EXPECT_NE(zone->secondsFromGMTForDate(*march), zone->secondsFromGMTForDate(*november));
}

TEST(NSTimeZone, AnswersForDatesThatAreNotFinite) {
  const auto zone = NSTimeZone::timeZoneWithName("America/New_York");
  for (const double seconds : {std::nan(""), std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity(), 1e300}) {
    EXPECT_EQ(zone->secondsFromGMTForDate(since1970(seconds)), 0);
    EXPECT_FALSE(zone->isDaylightSavingTimeForDate(since1970(seconds)));
    EXPECT_FALSE(zone->nextDaylightSavingTimeTransitionAfterDate(since1970(seconds)));
  }
}

TEST(NSTimeZone, TakesTheDefaultThatIsSet) {
  NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName("Asia/Kathmandu"));
  EXPECT_EQ(NSTimeZone::defaultTimeZone()->name(), "Asia/Kathmandu");
  NSTimeZone::setDefaultTimeZone(nullptr);
  EXPECT_TRUE(NSTimeZone::defaultTimeZone()->isEqual(NSTimeZone::systemTimeZone().get()));
}

TEST(NSTimeZone, EqualsByName) {
  const auto zone = NSTimeZone::timeZoneForSecondsFromGMT(3600);
  const auto same = NSTimeZone::timeZoneWithName("GMT+0100");
  EXPECT_TRUE(zone->isEqual(same.get()));
  EXPECT_EQ(zone->hash(), same->hash());
  EXPECT_FALSE(zone->isEqual(NSTimeZone::timeZoneWithName("Europe/Berlin").get()));
  EXPECT_FALSE(zone->isEqual(nullptr));
  EXPECT_EQ(zone->copy(), zone);
  EXPECT_EQ(zone->description(), "GMT+0100");
}

TEST(NSTimeZone, GivesTheStretchOfOneOffsetAroundADate) {
  const auto newYork = NSTimeZone::timeZoneWithName("America/New_York");
  // 2021-03-14T07:00:00Z to 2021-11-07T06:00:00Z.
  constexpr double kBegin = 1615705200;
  constexpr double kEnd = 1636264800;
  for (const double instant : {kBegin, kBegin + 1, kEnd - 0.25}) {
    const auto stretch =
        newYork->offsetStretchForDate(NSDate::dateWithTimeIntervalSince1970(instant));
    EXPECT_EQ(stretch.begin, kBegin);
    EXPECT_EQ(stretch.end, kEnd);
    EXPECT_EQ(stretch.secondsFromGMT, -4 * 3600);
  }
  const auto after = newYork->offsetStretchForDate(NSDate::dateWithTimeIntervalSince1970(kEnd));
  EXPECT_EQ(after.begin, kEnd);
  EXPECT_EQ(after.secondsFromGMT, -5 * 3600);
}

TEST(NSTimeZone, BoundsAStretchThatLiesCyclesLater) {
  const auto newYork = NSTimeZone::timeZoneWithName("America/New_York");
  constexpr double kCycle = 146097.0 * 86400;
  const auto stretch =
      newYork->offsetStretchForDate(NSDate::dateWithTimeIntervalSince1970(1615705200 + 5 * kCycle));
  EXPECT_EQ(stretch.begin, 1615705200 + 5 * kCycle);
  EXPECT_EQ(stretch.end, 1636264800 + 5 * kCycle);
}

TEST(NSTimeZone, LeavesAStretchOpenThatNoClockChangeBounds) {
  const auto stretch = NSTimeZone::timeZoneForSecondsFromGMT(3600)->offsetStretchForDate(NSDate());
  EXPECT_TRUE(std::isinf(stretch.begin) && stretch.begin < 0);
  EXPECT_TRUE(std::isinf(stretch.end) && stretch.end > 0);
  EXPECT_EQ(stretch.secondsFromGMT, 3600);
  const auto none = NSTimeZone::timeZoneWithName("Europe/Paris")
                        ->offsetStretchForDate(NSDate::dateWithTimeIntervalSince1970(NAN));
  EXPECT_EQ(none.begin, none.end);
}

TEST(NSTimeZone, ReadsATableOncePerZone) {
  const auto first = NSTimeZone::timeZoneWithName("Asia/Tokyo");
  EXPECT_EQ(&first->table(), &NSTimeZone::timeZoneWithName("Asia/Tokyo")->table());
}

TEST(NSTimeZone, CopiesOneOnTheStackToAnEqualOne) {
  const auto owned = NSTimeZone::timeZoneForSecondsFromGMT(3600);
  NSTimeZone zone(owned->name(), {owned, &owned->table()});
  orlftest::expectEqualCopyOfUnowned(zone);
  const auto copy = std::static_pointer_cast<NSTimeZone>(zone.copy());
  EXPECT_EQ(copy->secondsFromGMTForDate(since1970(0)), 3600);
}

}  // namespace
}  // namespace ORLFoundation
