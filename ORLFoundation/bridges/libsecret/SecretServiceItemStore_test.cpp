#include <ORLFoundation/bridges/libsecret/SecretServiceItemStore.h>

#include <ORLFoundation/bridges/libsecret/PrivateSession_testing.h>
#include <ORLFoundation/platform/keychain/SecItemStore_testing.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <filesystem>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// One daemon for all tests of a suite, empty at the beginning of each.
struct StoreHolder {
  static inline std::optional<PrivateSessionBus> bus;
  static inline std::optional<PrivateKeyring> keyring;
  SecretServiceItemStore held;
};

class SecretServiceStore : public StoreHolder, public SecItemStoreContract {
 protected:
  SecretServiceStore() : SecItemStoreContract(held) {
    EXPECT_THAT(held.remove(*secQuery({{kSecAttrSynchronizable, kSecAttrSynchronizableAny}})),
                testing::AnyOf(errSecSuccess, errSecItemNotFound));
  }
  static void SetUpTestSuite() {
    bus.emplace();
    keyring.emplace(*bus);
  }
  static void TearDownTestSuite() {
    keyring.reset();
    bus.reset();
  }

  /// The attributes of all items of a service as the daemon has them, each as "name=value".
  static std::vector<std::vector<std::string>> attributesInDaemon(const char* service) {
    using internal::libsecret::VariantPointer;
    std::vector<std::vector<std::string>> all;
    const auto found =
        bus->call(kSecretsName, kSecretsPath, "org.freedesktop.Secret.Service", "SearchItems",
                  g_variant_new_parsed("({'service': %s},)", service));
    const VariantPointer paths(g_variant_get_child_value(found.get(), 0));
    for (gsize i = 0; i < g_variant_n_children(paths.get()); ++i) {
      const char* path = nullptr;
      g_variant_get_child(paths.get(), i, "&o", &path);
      const auto got =
          bus->call(kSecretsName, path, "org.freedesktop.DBus.Properties", "Get",
                    g_variant_new("(ss)", "org.freedesktop.Secret.Item", "Attributes"));
      const VariantPointer boxed(g_variant_get_child_value(got.get(), 0));
      const VariantPointer map(g_variant_get_variant(boxed.get()));
      std::vector<std::string> words;
      GVariantIter iterator;
      g_variant_iter_init(&iterator, map.get());
      const char* name = nullptr;
      const char* value = nullptr;
      while (g_variant_iter_next(&iterator, "{&s&s}", &name, &value) != FALSE)
        if (std::string_view(name) != "added") words.push_back(std::string(name) + "=" + value);
      std::ranges::sort(words);
      all.push_back(std::move(words));
    }
    return all;
  }
};
SEC_ITEM_STORE_CONTRACT(SecretServiceStore)

TEST_F(SecretServiceStore, SaysThatItLastsAndNotHowItKeeps) {
  EXPECT_EQ(held.backend(), (SecItemBackend{"secret-service", true, SecItemEncryptionUnknown}));
  EXPECT_EQ(held.backend().description(), "secret-service (lasting, encryption at rest unknown)");
}

TEST_F(SecretServiceStore, IsMadeByNameOnceRegistered) {
  SecretServiceItemStore::registerStore();
  const auto store = SecItemStoreNamed("secret-service");
  ASSERT_NE(store, nullptr);
  EXPECT_EQ(store->backend().name, "secret-service");
  EXPECT_EQ(store->add(*secPassword("bank")), errSecSuccess);
  EXPECT_EQ(dataOfItem(held, *secPassword("bank")), "");
}

TEST_F(SecretServiceStore, SaysAllAttributesInSoManyWords) {
  ASSERT_EQ(held.add(*secPassword("bank", {{kSecAttrAccount, "anna"}})), errSecSuccess);
  EXPECT_THAT(
      attributesInDaemon("bank"),
      ElementsAre(ElementsAre("account=anna", "class=genp", "service=bank", "synchronizable=absent",
                              "xdg:schema=org.orlfoundation.KeychainItem")));
  ASSERT_EQ(held.add(*secPassword("shop", {{kSecAttrSynchronizable, true},
                                           {kSecAttrAccessGroup, "group"},
                                           {kSecAttrProtocol, kSecAttrProtocolHTTPS},
                                           {kSecAttrServer, "a.b"},
                                           {kSecAttrAccessible, "ck"}})),
            errSecSuccess);
  EXPECT_THAT(attributesInDaemon("shop"),
              ElementsAre(ElementsAre("accessible=ck", "class=genp", "group=group", "protocol=htps",
                                      "server=a.b", "service=shop", "synchronizable=true",
                                      "xdg:schema=org.orlfoundation.KeychainItem")));
}

TEST_F(SecretServiceStore, LeavesItemsOfOthersAlone) {
  const char* const password =
      "{'org.freedesktop.Secret.Item.Label': <'other'>, "
      "'org.freedesktop.Secret.Item.Attributes': <{'service': 'bank'}>}";
  const auto session = bus->call(kSecretsName, kSecretsPath, "org.freedesktop.Secret.Service",
                                 "OpenSession", g_variant_new_parsed("('plain', <''>)"));
  const char* path = nullptr;
  g_variant_get_child(session.get(), 1, "&o", &path);
  const std::string item = std::string("(") + password + ", (objectpath '" + path +
                           "', @ay [], @ay [0x31], 'text/plain'), false)";
  ASSERT_NE(bus->call(kSecretsName, "/org/freedesktop/secrets/collection/login",
                      "org.freedesktop.Secret.Collection", "CreateItem",
                      g_variant_new_parsed(item.c_str())),
            nullptr);
  EXPECT_THAT(itemsOfStore(held), IsEmpty());
  EXPECT_EQ(held.remove(*secPassword("bank")), errSecItemNotFound);
  EXPECT_EQ(held.add(*secPassword("bank")), errSecSuccess);
  EXPECT_EQ(held.remove(*secPassword("bank")), errSecSuccess);
  EXPECT_THAT(attributesInDaemon("bank"), ElementsAre(ElementsAre("service=bank")));
}

TEST_F(SecretServiceStore, RefusesTextsThatTheBusDoesNotCarry) {
  for (const std::string_view text : {std::string_view("\xff"), std::string_view("a\0b", 3)}) {
    const auto item = secPassword("bank", {{kSecAttrAccount, text}});
    id result;
    EXPECT_EQ(held.add(*item), errSecParam);
    EXPECT_EQ(held.copyMatching(*item, result), errSecParam);
    EXPECT_EQ(held.remove(*item), errSecParam);
    EXPECT_EQ(held.add(*secPassword("bank", {{kSecAttrAccessible, text}})), errSecParam);
  }
  EXPECT_THAT(itemsOfStore(held), IsEmpty());
}

TEST_F(SecretServiceStore, KeepsItemsWhenTheDaemonStartsAnew) {
  const std::string bytes("\0\xff\x80 x", 5);
  ASSERT_EQ(held.add(*secPassword("bank", {{kSecAttrAccount, "anna"},
                                           {kSecAttrSynchronizable, true},
                                           {kSecValueData, NSData(std::string_view(bytes))}})),
            errSecSuccess);
  keyring->stop();
  keyring->start();
  EXPECT_EQ(dataOfItem(held, *secPassword("bank", {{kSecAttrSynchronizable, true}})), bytes);
  EXPECT_EQ(dataOfItem(held, *secPassword("bank")), std::nullopt);
}

TEST_F(SecretServiceStore, PutsNothingOnTheDiskInTheClearThatItIsToKeepSecret) {
  ASSERT_EQ(held.add(*secPassword(
                "bank", {{kSecAttrAccount, "anna"}, {kSecValueData, NSData("s3cr3t-of-anna")}})),
            errSecSuccess);
  std::size_t files = 0;
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(keyring->folder().path())) {
    if (!entry.is_regular_file()) continue;
    ++files;
    const auto name = std::filesystem::relative(entry.path(), keyring->folder().path()).string();
    EXPECT_THAT(keyring->folder().read(name), Not(HasSubstr("s3cr3t-of-anna"))) << name;
  }
  EXPECT_GT(files, 0U);
}

// Of equal items that threads add at once, one stands in the end.
TEST_F(SecretServiceStore, ServesSeveralThreads) {
  std::atomic<int> added{0};
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 3; ++thread)
    threads.emplace_back([this, &added] {
      for (int i = 0; i < 5; ++i) {
        const std::string service = "bank" + std::to_string(i);
        if (held.add(*secPassword(service, {{kSecValueData, NSData("x")}})) == errSecSuccess)
          ++added;
        EXPECT_EQ(dataOfItem(held, *secPassword(service)), "x");
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(added, 5);
  EXPECT_EQ(itemsOfStore(held).size(), 5U);
}

}  // namespace
}  // namespace ORLFoundation
