
#include <ORLFoundation/platform/time/ZoneTable.h>

#include <ORLFoundation/platform/base/CivilDays.h>
#include <cctz/time_zone.h>
#include <gtest/gtest.h>

#include <string>

namespace ORLFoundation::internal::time {
namespace {

namespace civil = base::civil;

using CctzSeconds = cctz::time_point<cctz::seconds>;

std::int64_t startOfYear(std::int32_t year) {
  return civil::joinSeconds(civil::dayFromDate(year, 1, 1), 0);
}

cctz::civil_second civilSecond(std::int64_t local) {
  return cctz::civil_second(1970, 1, 1, 0, 0, 0) + local;
}

// What the zone library itself answers.
class Library {
 public:
  explicit Library(const std::string& name) {
    EXPECT_TRUE(cctz::load_time_zone(name, &zone_)) << name;
  }
  std::int64_t offsetAt(std::int64_t instant) const {
    return zone_.lookup(CctzSeconds(cctz::seconds(instant))).offset;
  }
  cctz::time_zone::civil_lookup local(std::int64_t local) const {
    return zone_.lookup(civilSecond(local));
  }

 private:
  cctz::time_zone zone_;
};

std::int64_t seconds(CctzSeconds point) { return point.time_since_epoch().count(); }

void expectLocal(const ZoneTable& table, const Library& library, std::int64_t local) {
  const auto lookup = library.local(local);
  const bool isGap = lookup.kind == cctz::time_zone::civil_lookup::SKIPPED;
  ASSERT_EQ(table.firstInstantOfLocal(local), seconds(lookup.pre)) << local;
  ASSERT_EQ(table.lastInstantOfLocal(local), seconds(isGap ? lookup.pre : lookup.post)) << local;
  ASSERT_EQ(table.startInstantOfLocal(local), seconds(isGap ? lookup.trans : lookup.pre)) << local;
  const bool isShownOnce = lookup.kind == cctz::time_zone::civil_lookup::UNIQUE;
  const ZoneTable::LocalStretch stretch = table.localStretchAt(local);
  ASSERT_EQ(local < stretch.end, isShownOnce) << local;
  if (!isShownOnce) return;
  ASSERT_LE(stretch.begin, local);
  ASSERT_EQ(local - stretch.offset, seconds(lookup.pre)) << local;
}

void expectShownOnceThroughout(const ZoneTable& table, const Library& library, std::int64_t local) {
  const ZoneTable::LocalStretch stretch = table.localStretchAt(local);
  if (local >= stretch.end) return;
  for (const std::int64_t end : {stretch.begin, stretch.end - 1}) {
    if (end == ZoneTable::kBeginningOfTime || end == ZoneTable::kEndOfTime - 1) continue;
    const auto lookup = library.local(end);
    ASSERT_EQ(lookup.kind, cctz::time_zone::civil_lookup::UNIQUE) << end;
    ASSERT_EQ(end - stretch.offset, seconds(lookup.pre)) << end;
  }
}

struct Span {
  std::int32_t firstYear;
  std::int32_t lastYear;
  std::int64_t step;  // seconds
};

class ZoneTableSweep : public testing::TestWithParam<const char*> {
 protected:
  void sweep(Span span) {
    const auto table = ZoneTable::read(GetParam());
    ASSERT_NE(table, nullptr);
    const Library library(GetParam());
    for (std::int64_t time = startOfYear(span.firstYear); time < startOfYear(span.lastYear + 1);
         time += span.step) {
      ASSERT_EQ(table->offsetAt(time), library.offsetAt(time)) << time;
      ASSERT_NO_FATAL_FAILURE(expectLocal(*table, library, time));
    }
  }
};

TEST_P(ZoneTableSweep, AgreesWithTheLibraryEveryHourOfOurYears) { sweep({2008, 2026, 3600}); }

TEST_P(ZoneTableSweep, AgreesWithTheLibraryEveryQuarterHourOfTwoYears) { sweep({2011, 2012, 900}); }

TEST_P(ZoneTableSweep, AgreesWithTheLibraryFromLocalMeanTimeOn) { sweep({1840, 2007, 40'009}); }

TEST_P(ZoneTableSweep, AgreesWithTheLibraryWhereTheIndexEnds) { sweep({2490, 2510, 3600}); }

TEST_P(ZoneTableSweep, AgreesWithTheLibraryWhereTheTableRepeats) { sweep({2400, 2445, 3600}); }

TEST_P(ZoneTableSweep, AgreesWithTheLibraryInFarYears) {
  sweep({2838, 2839, 3600});
  sweep({9999, 10'000, 3600});
  sweep({-1, 1, 40'009});
}

INSTANTIATE_TEST_SUITE_P(Zones, ZoneTableSweep,
                         testing::Values("America/New_York", "Australia/Lord_Howe",
                                         "Asia/Kathmandu", "Pacific/Apia", "Europe/Dublin",
                                         "Africa/Casablanca", "America/St_Johns", "UTC"));

TEST(ZoneTable, AgreesWithTheLibraryAroundEveryChangeOfItsTable) {
  for (const char* name : {"America/New_York", "Australia/Lord_Howe", "Pacific/Apia",
                           "America/St_Johns", "Africa/Cairo", "Asia/Manila"}) {
    const auto table = ZoneTable::read(name);
    ASSERT_NE(table, nullptr);
    const Library library(name);
    std::int64_t change = startOfYear(1800);
    int changes = 0;
    for (; (change = table->stretchAt(change).end) < startOfYear(2900); ++changes) {
      for (const std::int64_t near : {-90'000, -3600, -1800, -1, 0, 1, 1799, 3600, 90'000}) {
        ASSERT_EQ(table->offsetAt(change + near), library.offsetAt(change + near));
        const std::int64_t local = change + near + table->offsetAt(change - 1);
        ASSERT_NO_FATAL_FAILURE(expectLocal(*table, library, local)) << name;
        ASSERT_NO_FATAL_FAILURE(expectShownOnceThroughout(*table, library, local)) << name;
      }
    }
    EXPECT_GT(changes, 2) << name;
  }
}

TEST(ZoneTable, GivesTheInstantThatShowsALocalTime) {
  const auto table = ZoneTable::read("America/New_York");
  const std::int64_t start = startOfYear(2024);
  for (std::int64_t instant = start; instant < startOfYear(2025); instant += 600) {
    const std::int64_t local = instant + table->offsetAt(instant);
    ASSERT_TRUE(table->firstInstantOfLocal(local) == instant ||
                table->lastInstantOfLocal(local) == instant);
  }
}

TEST(ZoneTable, IsSteadyExactlyWhereNoChangeIsNear) {
  const auto table = ZoneTable::read("America/New_York");
  const std::int64_t change = 1'710'054'000;  // 2024-03-10 02:00 becomes 03:00
  EXPECT_TRUE(table->isSteadyAround(change - 1001, 1000));
  EXPECT_FALSE(table->isSteadyAround(change - 1000, 1000));
  EXPECT_FALSE(table->isSteadyAround(change, 1000));
  EXPECT_TRUE(table->isSteadyAround(change + 1000, 1000));
  EXPECT_TRUE(ZoneTable::fixed(3600)->isSteadyAround(startOfYear(3000), 1'000'000));
}

TEST(ZoneTable, TellsTheLocalTimesShownOnceBetweenTwoChanges) {
  const auto table = ZoneTable::read("America/New_York");
  const std::int64_t spring = civil::joinSeconds(civil::dayFromDate(2024, 3, 10), 3 * 3600);
  const std::int64_t autumn = civil::joinSeconds(civil::dayFromDate(2024, 11, 3), 3600);
  const ZoneTable::LocalStretch summer = table->localStretchAt(startOfYear(2024) + 180 * 86400);
  EXPECT_EQ(summer.begin, spring);
  EXPECT_EQ(summer.end, autumn);
  EXPECT_EQ(summer.offset, -4 * 3600);
  for (const std::int64_t leftOut : {spring - 3600, spring - 1})
    EXPECT_LE(table->localStretchAt(leftOut).end, leftOut);
  for (const std::int64_t doubled : {autumn, autumn + 3599})
    EXPECT_LE(table->localStretchAt(doubled).end, doubled);
  EXPECT_EQ(table->localStretchAt(autumn + 3600).begin, autumn + 3600);
}

TEST(ZoneTable, ShowsEveryLocalTimeOnceAtAFixedOffset) {
  const ZoneTable::LocalStretch all = ZoneTable::fixed(3600)->localStretchAt(startOfYear(3000));
  EXPECT_EQ(all.begin, ZoneTable::kBeginningOfTime);
  EXPECT_EQ(all.end, ZoneTable::kEndOfTime);
  EXPECT_EQ(all.offset, 3600);
}

TEST(ZoneTable, TellsLocalTimesShownOnceOfOneRepetitionOnly) {
  const auto table = ZoneTable::read("America/New_York");
  const Library library("America/New_York");
  for (std::int64_t day = 0; day < 6 * 366; ++day) {
    // Where the table repeats for the first time, and the second.
    for (const std::int32_t year : {2405, 2805}) {
      const std::int64_t local = startOfYear(year) + day * 86400 + 5400;
      ASSERT_NO_FATAL_FAILURE(expectLocal(*table, library, local));
      ASSERT_NO_FATAL_FAILURE(expectShownOnceThroughout(*table, library, local));
    }
  }
}

TEST(ZoneTable, HasNoTableForNamesUnknown) {
  EXPECT_EQ(ZoneTable::read("Atlantis/Capital"), nullptr);
  EXPECT_EQ(ZoneTable::read(""), nullptr);
}

}  // namespace
}  // namespace ORLFoundation::internal::time
