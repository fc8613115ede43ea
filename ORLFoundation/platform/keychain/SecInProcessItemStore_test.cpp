#include <ORLFoundation/platform/keychain/SecInProcessItemStore.h>

#include <ORLFoundation/platform/keychain/SecItemStore_testing.h>

#include <atomic>
#include <thread>

namespace ORLFoundation {
namespace {

struct StoreHolder {
  SecInProcessItemStore held;
};

class SecInProcessItemStoreTest : private StoreHolder, public SecItemStoreContract {
 protected:
  SecInProcessItemStoreTest() : SecItemStoreContract(held) {}
};
SEC_ITEM_STORE_CONTRACT(SecInProcessItemStoreTest)

TEST(SecInProcessItemStore, SaysThatItForgets) {
  const SecInProcessItemStore store;
  EXPECT_EQ(store.backend(), (SecItemBackend{"in-process", false, SecItemEncryptionNothingKept}));
  EXPECT_EQ(store.backend().description(), "in-process (not lasting, nothing is kept on a disk)");
}

TEST(SecInProcessItemStore, KeepsACopyOfWhatItIsGiven) {
  SecInProcessItemStore store;
  const auto item = secPassword("bank", {{kSecValueData, NSData("one")}});
  ASSERT_EQ(store.add(*item), errSecSuccess);
  item->setObject("shop", kSecAttrService);
  EXPECT_EQ(dataOfItem(store, *secPassword("bank")), "one");
}

// Of equal items that threads add at once, one stands in the end.
TEST(SecInProcessItemStore, ServesSeveralThreads) {
  SecInProcessItemStore store;
  std::atomic<int> added{0};
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread)
    threads.emplace_back([&store, &added] {
      for (int i = 0; i < 100; ++i) {
        const std::string service = std::to_string(i);
        if (store.add(*secPassword(service)) == errSecSuccess) ++added;
        EXPECT_NE(dataOfItem(store, *secPassword(service)), std::nullopt);
        EXPECT_EQ(store.update(*secPassword(service), *secQuery({{kSecValueData, NSData("x")}})),
                  errSecSuccess);
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(added, 100);
  EXPECT_EQ(itemsOfStore(store).size(), 100U);
}

}  // namespace
}  // namespace ORLFoundation
