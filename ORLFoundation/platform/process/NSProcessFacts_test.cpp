
#include <ORLFoundation/platform/process/NSProcessFacts.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/process/NSProcessInfo.h>
#include <gtest/gtest.h>
#include <sys/utsname.h>

namespace ORLFoundation {
namespace {

struct VersionCase {
  std::string_view text;
  NSOperatingSystemVersion version;
};
const VersionCase kVersions[] = {
    {"12", {12, 0, 0}},
    {"\"22.04\"", {22, 4, 0}},
    {"'3.18.4'", {3, 18, 4}},
    {"6.1.0-13-amd64", {6, 1, 0}},
    {"", {}},
    {"rolling", {}},
    {"1.2.3.4", {1, 2, 3}},
    {"1..3", {1, 0, 3}},
    {"7.x", {7, 0, 0}},
    {"12345678901234567890.5", {1'234'567, 5, 0}},
};

TEST(NSProcessFacts, ReadsVersions) {
  for (const VersionCase& row : kVersions)
    EXPECT_EQ(NSVersionFromText(row.text), row.version) << row.text;
}

TEST(NSProcessFacts, TellsOfTheMachine) {
  ::utsname names{};
  ASSERT_EQ(::uname(&names), 0);
  const auto facts = NSCurrentProcessFacts();
  EXPECT_EQ(facts->systemNames, (NSSystemNames{names.sysname, names.nodename, names.release,
                                               names.version, names.machine}));
  EXPECT_NE(facts->operatingSystemVersion, NSOperatingSystemVersion{});
  EXPECT_EQ(NSProcessInfo::processInfo()->operatingSystemVersion(), facts->operatingSystemVersion);
}

TEST(NSProcessFacts, TellsWhatIsPutInItsPlace) {
  {
    const Replaced facts(NSSetProcessFacts,
                         std::make_shared<const NSProcessFacts>(NSProcessFacts{{13, 2, 1}, {}}));
    EXPECT_EQ(NSProcessInfo::processInfo()->operatingSystemVersion(),
              (NSOperatingSystemVersion{13, 2, 1}));
    EXPECT_EQ(NSCurrentProcessFacts()->systemNames, NSSystemNames{});
  }
  EXPECT_NE(NSCurrentProcessFacts()->systemNames, NSSystemNames{});
}

}  // namespace
}  // namespace ORLFoundation
