#include <ORLFoundation/platform/keychain/SecItemStore.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/keychain/SecInProcessItemStore.h>
#include <ORLFoundation/platform/keychain/SecItemStore_testing.h>
#include <gmock/gmock.h>

namespace ORLFoundation {
namespace {

using testing::IsSupersetOf;

TEST(SecItemStore, NothingIsKeptUntilAStoreIsPutIn) {
  const auto store = SecCurrentItemStore();
  EXPECT_EQ(store->backend(), (SecItemBackend{"none", false, SecItemEncryptionNothingKept}));
  EXPECT_EQ(store->add(*secPassword("bank")), errSecNotAvailable);
  EXPECT_EQ(store->update(*secPassword("bank"), *secQuery({{kSecValueData, NSData("x")}})),
            errSecNotAvailable);
  EXPECT_EQ(store->remove(*secPassword("bank")), errSecNotAvailable);
  id result = "before";
  EXPECT_EQ(store->copyMatching(*secPassword("bank"), result), errSecNotAvailable);
  EXPECT_TRUE(result.isNil());
}

TEST(SecItemStore, AStoreIsPutInAndTakenOut) {
  const auto own = std::make_shared<SecInProcessItemStore>();
  {
    const Replaced<std::shared_ptr<SecItemStore>> replaced(&SecSetItemStore, own);
    EXPECT_EQ(SecCurrentItemStore(), own);
    EXPECT_EQ(replaced.before()->backend().name, "none");
    EXPECT_EQ(SecSetItemStore(nullptr), own);
    EXPECT_EQ(SecCurrentItemStore()->backend().name, "none");
  }
  EXPECT_EQ(SecCurrentItemStore()->backend().name, "none");
}

TEST(SecItemStore, AFailingStoreAnswersItsStatus) {
  SecFailingItemStore store(errSecAuthFailed);
  EXPECT_EQ(store.add(*secPassword("bank")), errSecAuthFailed);
  EXPECT_EQ(store.update(*secPassword("bank"), *secQuery({})), errSecAuthFailed);
  EXPECT_EQ(store.remove(*secPassword("bank")), errSecAuthFailed);
  id result;
  EXPECT_EQ(store.copyMatching(*secPassword("bank"), result), errSecAuthFailed);
}

TEST(SecItemStore, ConfigurationsNameStores) {
  EXPECT_EQ(SecItemStoreNamed("in-process")->backend().name, "in-process");
  EXPECT_NE(SecItemStoreNamed("in-process"), SecItemStoreNamed("in-process"));
  EXPECT_EQ(SecItemStoreNamed("none")->backend().name, "none");
  EXPECT_EQ(SecItemStoreNamed(""), nullptr);
  EXPECT_EQ(SecItemStoreNamed("plain-file"), nullptr);
  const auto own = std::make_shared<SecFailingItemStore>(errSecIO);
  SecRegisterItemStore("own", [own] { return own; });
  EXPECT_EQ(SecItemStoreNamed("own"), own);
  EXPECT_THAT(SecItemStoreNames(), IsSupersetOf({"in-process", "none", "own"}));
  SecRegisterItemStore("own", nullptr);
  EXPECT_EQ(SecItemStoreNamed("own"), nullptr);
}

TEST(SecItemStore, BackendsAreDescribed) {
  EXPECT_EQ((SecItemBackend{"x", true, SecItemEncryptionUnknown}.description()),
            "x (lasting, encryption at rest unknown)");
  EXPECT_EQ((SecItemBackend{"none", false, SecItemEncryptionNothingKept}.description()),
            "none (not lasting, nothing is kept on a disk)");
}

}  // namespace
}  // namespace ORLFoundation
