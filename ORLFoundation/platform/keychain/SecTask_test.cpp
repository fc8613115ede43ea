#include <ORLFoundation/platform/keychain/SecTask.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

TEST(SecTask, HasNoEntitlementsUntilTheHostNamesSome) {
  const auto task = SecTaskCreateFromSelf();
  EXPECT_TRUE(SecTaskCopyValueForEntitlement(*task, "keychain-access-groups").isNil());
}

TEST(SecTask, GivesWhatTheHostNamed) {
  const std::shared_ptr<const NSDictionary> own =
      NSDictionary::dictionaryWithEntries({{"keychain-access-groups", "x"}, {"other", 1}});
  std::shared_ptr<const NSError> error;
  {
    const Replaced replaced(&SecSetTaskEntitlements, own);
    const auto task = SecTaskCreateFromSelf();
    EXPECT_EQ(SecTaskCopyValueForEntitlement(*task, "keychain-access-groups", &error), id("x"));
    EXPECT_EQ(SecTaskCopyValueForEntitlement(*task, "other", &error), id(1));
    EXPECT_TRUE(SecTaskCopyValueForEntitlement(*task, "absent", &error).isNil());
    EXPECT_EQ(SecSetTaskEntitlements(nullptr), own);
    EXPECT_TRUE(SecTaskCopyValueForEntitlement(*SecTaskCreateFromSelf(), "other").isNil());
    // A task keeps what it was made with.
    EXPECT_EQ(SecTaskCopyValueForEntitlement(*task, "other", &error), id(1));
  }
  EXPECT_EQ(error, nullptr);
  EXPECT_EQ(SecTaskCreateFromSelf()->entitlements(), nullptr);
}

}  // namespace
}  // namespace ORLFoundation
