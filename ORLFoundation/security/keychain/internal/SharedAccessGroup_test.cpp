#include <ORLFoundation/security/keychain/internal/SharedAccessGroup.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/keychain/SecTask.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/process/NSBundle.h>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace ORLFoundation::internal::keychain {
namespace {

id groups(std::initializer_list<id> names) { return NSArray::arrayWithObjects(names); }

TEST(SharedAccessGroup, IsTheFirstThatContainsTheIdentifierWithItsEnding) {
  EXPECT_EQ(sharedGroupAmong(groups({"T.a.b", "T.a.b.shared.x", "a.b.shared"}), "a.b"),
            "T.a.b.shared.x");
  EXPECT_EQ(sharedGroupAmong(groups({"T.a.b.Shared"}), "a.b"), std::nullopt);
  EXPECT_EQ(sharedGroupAmong(groups({}), "a.b"), std::nullopt);
}

TEST(SharedAccessGroup, IsNoneForWhatIsNoListOfTexts) {
  EXPECT_EQ(sharedGroupAmong(nullptr, "a.b"), std::nullopt);
  EXPECT_EQ(sharedGroupAmong("a.b.shared", "a.b"), std::nullopt);
  EXPECT_EQ(sharedGroupAmong(groups({1, NSNull::null(), groups({"a.b.shared"})}), "a.b"),
            std::nullopt);
  EXPECT_EQ(sharedGroupAmong(groups({1, "a.b.shared"}), "a.b"), "a.b.shared");
}

// The text is put together with the identifier's description, which without one is "(null)".
TEST(SharedAccessGroup, OfABundleWithoutIdentifierIsSoughtLiterally) {
  EXPECT_EQ(sharedGroupAmong(groups({"a.b.shared"}), std::nullopt), std::nullopt);
  EXPECT_EQ(sharedGroupAmong(groups({"a.shared"}), ""), "a.shared");
}

class SharedAccessGroupDoors : public testing::Test {
 protected:
  SharedAccessGroupDoors() {
    NSBundle::mainBundle()->setInfoDictionary(
        *NSDictionary::dictionaryWithEntries({{kCFBundleIdentifierKey, "a.b"}}));
  }
  ~SharedAccessGroupDoors() override { NSBundle::mainBundle()->setInfoDictionary(NSDictionary()); }

  const Replaced<std::shared_ptr<const NSDictionary>> entitled_{
      &SecSetTaskEntitlements,
      NSDictionary::dictionaryWithEntries(
          {{"keychain-access-groups", NSArray::arrayWithObjects({"T.a.b.shared"})}})};
};

TEST_F(SharedAccessGroupDoors, AreReadAtTheFirstUseAndNeverAgain) {
  SharedAccessGroup group;
  EXPECT_EQ(group.name(), "T.a.b.shared");
  SecSetTaskEntitlements(nullptr);
  EXPECT_EQ(group.name(), "T.a.b.shared");
  group.setName(std::nullopt);
  EXPECT_EQ(group.name(), std::nullopt);
}

TEST_F(SharedAccessGroupDoors, AreNotReadAfterANameWasSet) {
  SharedAccessGroup group;
  group.setName("own");
  EXPECT_EQ(group.name(), "own");
}

TEST_F(SharedAccessGroupDoors, MayBeReadBySeveralThreads) {
  SharedAccessGroup group;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread)
    threads.emplace_back([&group] {
      for (int i = 0; i < 200; ++i) {
        EXPECT_EQ(group.name(), "T.a.b.shared");
        group.setName("T.a.b.shared");
      }
    });
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace ORLFoundation::internal::keychain
