
#include <ORLFoundation/platform/value/NSUUID.h>

#include <gtest/gtest.h>

#include <set>

namespace ORLFoundation {
namespace {

TEST(NSUUID, ReadsEitherCaseAndPrintsUpperCase) {
  const auto uuid = NSUUID::initWithUUIDString("e621e1f8-C36C-495a-93fc-0c247a3e6e5f");
  ASSERT_TRUE(uuid);
  EXPECT_EQ(uuid->UUIDString(), "E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
  EXPECT_EQ(uuid->UUIDBytes()[0], 0xe6);
  EXPECT_EQ(uuid->UUIDBytes()[15], 0x5f);
}

TEST(NSUUID, RefusesOtherTexts) {
  for (const char* text :
       {"", "E621E1F8-C36C-495A-93FC-0C247A3E6E5", "E621E1F8-C36C-495A-93FC-0C247A3E6E5FF",
        "E621E1F8C36C-495A-93FC-0C247A3E6E5F-", "G621E1F8-C36C-495A-93FC-0C247A3E6E5F",
        "{621E1F8-C36C-495A-93FC-0C247A3E6E5F"})
    EXPECT_FALSE(NSUUID::initWithUUIDString(text)) << text;
}

TEST(NSUUID, MakesRandomIdentifiersOfVersionFour) {
  std::set<std::string> seen;
  for (int i = 0; i < 100; ++i) {
    const std::string text = NSUUID::UUID().UUIDString();
    EXPECT_EQ(text[14], '4');
    EXPECT_NE(std::string("89AB").find(text[19]), std::string::npos) << text;
    seen.insert(text);
    EXPECT_EQ(NSUUID::initWithUUIDString(text)->UUIDString(), text);
  }
  EXPECT_EQ(seen.size(), 100U);
}

TEST(NSUUID, HashesEqualIdentifiersAlike) {
  const NSUUID uuid = NSUUID::UUID();
  EXPECT_EQ(uuid, NSUUID(uuid.UUIDBytes()));
  EXPECT_EQ(uuid.hash(), NSUUID(uuid.UUIDBytes()).hash());
  EXPECT_NE(uuid, NSUUID());
}

}  // namespace
}  // namespace ORLFoundation
