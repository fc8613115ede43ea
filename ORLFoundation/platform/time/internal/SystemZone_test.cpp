#include <ORLFoundation/platform/time/internal/SystemZone.h>

#include <ORLFoundation/platform/log/LogCapture.h>
#include <gtest/gtest.h>
#include <tests/support/EnvironmentVariable.h>
#include <tests/support/TemporaryFolder.h>

#include <filesystem>

namespace ORLFoundation::internal::time {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

// 2024-01-15 and 2024-07-15 at noon.
const NSDate kWinter = NSDate::dateWithTimeIntervalSince1970(1705320000);
const NSDate kSummer = NSDate::dateWithTimeIntervalSince1970(1721044800);
constexpr const char* kZoneinfo = "/usr/share/zoneinfo/";

// A folder with a machine's zone files of each kind.
class SystemZone : public orlftest::TemporaryFolderTest {
 protected:
  void SetUp() override {
    fs::create_symlink(std::string(kZoneinfo) + "Europe/Vienna", folder_ / "link");
    fs::create_symlink("link", folder_ / "linkToLink");
    fs::create_symlink("linkInACircle", folder_ / "linkInACircle");
    fs::copy_file(fs::canonical(std::string(kZoneinfo) + "America/New_York"), folder_ / "plain");
    write("text", "no zone\n");
  }

  [[nodiscard]] std::shared_ptr<NSTimeZone> zone(std::optional<std::string> variable,
                                                 const char* machineFile = "link") const {
    return zoneOfSettings({std::move(variable), path(machineFile)});
  }
};

void expectOffsets(const std::shared_ptr<NSTimeZone>& zone, NSInteger winter, NSInteger summer) {
  ASSERT_NE(zone, nullptr);
  EXPECT_EQ(zone->secondsFromGMTForDate(kWinter), winter) << zone->name();
  EXPECT_EQ(zone->secondsFromGMTForDate(kSummer), summer) << zone->name();
}

TEST_F(SystemZone, IsNamedByTheVariableInAnyOfItsForms) {
  const struct {
    std::string variable, name;
    NSInteger winter, summer;
  } rows[] = {
      {"Asia/Kathmandu", "Asia/Kathmandu", 20700, 20700},
      {":America/New_York", "America/New_York", -18000, -14400},
      {std::string(kZoneinfo) + "America/New_York", "America/New_York", -18000, -14400},
      {":" + std::string(kZoneinfo) + "America/New_York", "America/New_York", -18000, -14400},
      {":" + path("link"), "Europe/Vienna", 3600, 7200},
      {path("linkToLink"), "Europe/Vienna", 3600, 7200},
      {":" + path("plain"), path("plain"), -18000, -14400},
      {"EST5EDT,M3.2.0,M11.1.0", "EST5EDT,M3.2.0,M11.1.0", -18000, -14400},
      {":EST5EDT,M3.2.0,M11.1.0", "EST5EDT,M3.2.0,M11.1.0", -18000, -14400},
      {"EST5EDT", "EST5EDT", -18000, -14400},
      {"GMT+5", "GMT+5", -18000, -18000},
      {"UTC-3", "UTC-3", 10800, 10800},
  };
  const LogCapture log;
  for (const auto& row : rows) {
    const auto found = zone(row.variable);
    expectOffsets(found, row.winter, row.summer);
    EXPECT_EQ(found->name(), row.name) << row.variable;
  }
  EXPECT_EQ(log.lines(), Lines{});
}

TEST_F(SystemZone, IsTheMachinesWhereNoVariableIsSet) {
  const LogCapture log;
  EXPECT_EQ(zone(std::nullopt)->name(), "Europe/Vienna");
  EXPECT_EQ(zone("")->name(), "Europe/Vienna");
  EXPECT_EQ(zone(std::nullopt, "linkToLink")->name(), "Europe/Vienna");
  expectOffsets(zone(std::nullopt, "plain"), -18000, -14400);
  EXPECT_EQ(log.lines(), Lines{});
}

TEST_F(SystemZone, FallsBackToTheMachinesWithALineInTheLog) {
  for (const std::string& variable : {std::string("Atlantis/Capital"), std::string(":"), path("no"),
                                      path("text"), std::string("../../etc/passwd")}) {
    const LogCapture log;
    EXPECT_EQ(zone(variable)->name(), "Europe/Vienna") << variable;
    EXPECT_EQ(log.lines(),
              Lines{"TZ tells no time zone: " + variable + ". The machine's own is taken."});
  }
}

TEST_F(SystemZone, IsUTCWithALineInTheLogWhereNothingCanBeRead) {
  for (const char* machineFile : {"no", "text", "linkInACircle", "."}) {
    const LogCapture log;
    const auto found = zone(std::nullopt, machineFile);
    EXPECT_EQ(found->name(), "UTC") << machineFile;
    EXPECT_EQ(log.lines(), Lines{path(machineFile) + " tells no time zone. UTC is taken."});
  }
}

TEST(SystemTimeZone, FollowsTheVariable) {
  const orlftest::EnvironmentVariable variable("TZ", "EST5EDT,M3.2.0,M11.1.0");
  expectOffsets(NSTimeZone::systemTimeZone(), -18000, -14400);
  variable.set("Asia/Tokyo");
  EXPECT_EQ(NSTimeZone::systemTimeZone()->name(), "Asia/Tokyo");
  EXPECT_EQ(NSTimeZone::defaultTimeZone()->name(), "Asia/Tokyo");
}

TEST(SystemTimeZone, TellsOnceThatTheVariableIsUnreadable) {
  const LogCapture log;
  const orlftest::EnvironmentVariable variable("TZ", "Atlantis/Capital");
  const auto zone = NSTimeZone::systemTimeZone();
  EXPECT_EQ(NSTimeZone::systemTimeZone(), zone);
  const auto told = log.lines();
  ASSERT_FALSE(told.empty());
  EXPECT_EQ(told.front(), "TZ tells no time zone: Atlantis/Capital. The machine's own is taken.");
  EXPECT_EQ(told, log.distinctLines());
}

}  // namespace
}  // namespace ORLFoundation::internal::time
