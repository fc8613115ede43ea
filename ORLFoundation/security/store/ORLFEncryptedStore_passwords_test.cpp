// Which entries match, and what is kept of a content.
#include <ORLFoundation/platform/files/NSFileErrors.h>
#include <ORLFoundation/platform/keychain/SecInProcessItemStore.h>
#include <ORLFoundation/security/keychain/ORLFKeychainAccess.h>
#include <ORLFoundation/security/store/ORLFEncryptedStore_testing.h>
#include <gmock/gmock.h>

#include <random>

namespace ORLFoundation {
namespace {

using orlftest::contentWith;
using orlftest::entryOf;
using orlftest::noContext;
using testing::ElementsAre;
using testing::IsEmpty;
using Error = std::shared_ptr<const NSError>;
using Store = ORLFEncryptedStore;
using Text = std::optional<std::string>;

class StoredPasswords : public orlftest::EncryptedStoreTest {};

TEST_F(StoredPasswords, WriteNothingForANilPasswordOfAnUnknownUser) {
  const auto store = open();
  const std::string bytes = read("store");
  EXPECT_TRUE(store->setPassword(std::nullopt, "nobody", "bank", noContext()));
  EXPECT_EQ(read("store"), bytes);
  EXPECT_THAT(keychain_->calls, IsEmpty());
}

TEST_F(StoredPasswords, MoveFromTheFileToTheKeychain) {
  const auto store = open();
  EXPECT_TRUE(store->setPassword("s3cret", "ann", "bank", noContext()));
  keychain_->passwords["ann@bank"] = "s3cret";
  store->setStoreInKeychain(true);
  EXPECT_TRUE(store->setPassword("s3cret", "ann", "bank", noContext()));
  EXPECT_EQ(contentOf(), contentWith("bank", {entryOf("ann", std::nullopt, true)}));
  EXPECT_EQ(store->passwordForUser("ann", "bank", noContext()), "s3cret");
}

TEST_F(StoredPasswords, AreWrittenButNotFoundUnderServicesWithPoints) {
  const auto store = open();
  for (const char* service : {"a.b", ".", "a.", "@count", "@x", "bank.user", "bank.user.length"}) {
    EXPECT_TRUE(store->setPassword("p", "ann", service, noContext())) << service;
    EXPECT_EQ(store->passwordForUser("ann", service, noContext()), std::nullopt) << service;
    EXPECT_THAT(store->usersForPasswordService(service, noContext()), IsEmpty()) << service;
    const auto passwords = contentOf().as<NSDictionary>()->objectForKey("passwords");
    EXPECT_TRUE(passwords.as<NSDictionary>()->objectForKey(service)) << service;
    // A second set finds the entry under its whole name.
    EXPECT_TRUE(store->setPassword(std::nullopt, "ann", service, noContext())) << service;
    EXPECT_EQ(contentOf()
                  .as<NSDictionary>()
                  ->objectForKey("passwords")
                  .as<NSDictionary>()
                  ->objectForKey(service)
                  .as<NSArray>()
                  ->count(),
              0U)
        << service;
  }
  EXPECT_TRUE(store->setPassword("p", "ann", "bank", noContext()));
  EXPECT_EQ(store->passwordForUser("ann", "bank.user", noContext()), std::nullopt);
  EXPECT_TRUE(store->setPassword("p", "ann", "", noContext()));
  EXPECT_EQ(store->passwordForUser("ann", "", noContext()), "p");
}

TEST_F(StoredPasswords, AreMatchedByUserAndContextInTheirOrder) {
  const NSData first(std::string_view("\1\0", 2)), second(std::string_view("\1"));
  const auto store = open();
  EXPECT_TRUE(store->setPassword("1", "ann", "bank", first));
  EXPECT_TRUE(store->setPassword("2", "ann", "bank", second));
  EXPECT_TRUE(store->setPassword("3", "bob", "bank", first));
  EXPECT_TRUE(store->setPassword("4", "ann", "shop", first));
  EXPECT_TRUE(store->setPassword("5", "ann", "bank", std::nullopt));
  EXPECT_EQ(store->passwordForUser("ann", "bank", first), "1");
  EXPECT_EQ(store->passwordForUser("ann", "bank", second), "2");
  EXPECT_EQ(store->passwordForUser("bob", "bank", first), "3");
  EXPECT_EQ(store->passwordForUser("bob", "bank", second), std::nullopt);
  EXPECT_EQ(store->passwordForUser("ann", "shop", first), "4");
  EXPECT_EQ(store->passwordForUser("ann", "bank", noContext()), "5")
      << "nil is stored as the marker";
  EXPECT_EQ(store->passwordForUser("ann", "bank", std::nullopt), std::nullopt);
  EXPECT_THAT(store->usersForPasswordService("bank", first), ElementsAre("ann", "bob"));
  EXPECT_THAT(store->usersForPasswordService("bank", noContext()), ElementsAre("ann"));
  EXPECT_THAT(store->usersForPasswordService("bank", std::nullopt), IsEmpty());
  EXPECT_THAT(store->usersForPasswordService("none", first), IsEmpty());
}

TEST_F(StoredPasswords, OfTheFirstMatchCount) {
  const auto twin = [](const char* password) { return entryOf("ann", password, false); };
  ASSERT_TRUE(
      Store::writeEncryptedPropertyList(contentWith("bank", {twin("1"), twin("2")}), url(), "pw"));
  const auto store = open();
  EXPECT_EQ(store->passwordForUser("ann", "bank", noContext()), "1");
  EXPECT_TRUE(store->setPassword("3", "ann", "bank", noContext()));
  EXPECT_EQ(contentOf(), contentWith("bank", {twin("3"), twin("2")}));
  EXPECT_TRUE(store->setPassword(std::nullopt, "ann", "bank", noContext()));
  EXPECT_EQ(store->passwordForUser("ann", "bank", noContext()), "2");
}

TEST_F(StoredPasswords, LeadToTheKeychainOnlyWhereTheyAreMarked) {
  keychain_->passwords["ann@bank"] = "item";
  ASSERT_TRUE(Store::writeEncryptedPropertyList(
      contentWith("bank", {entryOf("ann", std::nullopt, true), entryOf("bob", std::nullopt, false),
                           entryOf("carl", "plain", true), entryOf("dora", std::nullopt, true)}),
      url(), "pw"));
  const auto store = open();
  EXPECT_EQ(store->passwordForUser("ann", "bank", noContext()), "item");
  EXPECT_EQ(store->passwordForUser("bob", "bank", noContext()), std::nullopt);
  EXPECT_EQ(store->passwordForUser("carl", "bank", noContext()), "plain");
  EXPECT_EQ(store->passwordForUser("dora", "bank", noContext()), std::nullopt);
  EXPECT_THAT(keychain_->calls, ElementsAre("find ann@bank", "find dora@bank"));
}

TEST_F(StoredPasswords, LieInTheKeychainThatTheHostPutIn) {
  const Replaced systems(&internal::store::PasswordKeychain::exchange, nullptr);
  const auto store = Store::openStoreWithFileAtURL(url(), "pw");
  Error error;
  EXPECT_FALSE(store->setPassword("p", "ann", "bank", noContext(), &error));
  EXPECT_EQ(error->domain(), ORLFSecurityErrorDomain);
  EXPECT_EQ(error->code(), errSecNotAvailable);
  const Replaced items(SecSetItemStore, std::make_shared<SecInProcessItemStore>());
  EXPECT_TRUE(store->setPassword("p", "ann", "bank", noContext()));
  EXPECT_EQ(ORLFKeychainAccess::findGenericPasswordForKey("ann", "bank"), "p");
  EXPECT_EQ(contentOf(), contentWith("bank", {entryOf("ann", std::nullopt, true)}));
  EXPECT_EQ(store->passwordForUser("ann", "bank", noContext()), "p");
  EXPECT_TRUE(store->setPassword("q", "ann", "bank", noContext()));
  EXPECT_EQ(store->passwordForUser("ann", "bank", noContext()), "q");
}

TEST_F(StoredPasswords, KeepAllOtherKeysOfTheContent) {
  const auto content = contentWith("bank", {entryOf("ann", "p", false)}).as<NSMutableDictionary>();
  content->setObject("kept", "note");
  content->setObject(NSArray::arrayWithObjects({1, true, NSData(std::string_view("\0", 1))}),
                     "list");
  ASSERT_TRUE(Store::writeEncryptedPropertyList(content, url(), "pw"));
  EXPECT_TRUE(open()->setPassword("q", "bob", "bank", noContext()));
  content->setObject(contentWith("bank", {entryOf("ann", "p", false), entryOf("bob", "q", false)})
                         .as<NSDictionary>()
                         ->objectForKey("passwords"),
                     "passwords");
  EXPECT_EQ(contentOf(), id(content));
}

TEST_F(StoredPasswords, EncryptAPlainListWithItsEntries) {
  write("store",
        "<plist><dict><key>passwords</key><dict><key>bank</key><array><dict><key>user</key>"
        "<string>ann</string><key>context</key><data>Tk9ORQ==</data><key>password</key>"
        "<string>p</string></dict></array></dict></dict></plist>");
  const auto store = open();
  EXPECT_EQ(store->passwordForUser("ann", "bank", noContext()), "p");
  EXPECT_TRUE(store->setPassword("q", "ann", "bank", noContext()));
  EXPECT_EQ(Store::checkPassword("pw", url()), ORLFEncryptedStoreOpens);
  EXPECT_EQ(contentOf(), contentWith("bank", {entryOf("ann", "q", false)}));
}

TEST_F(StoredPasswords, TakeThePlaceOfAllOthersUnderAWrongPassword) {
  ASSERT_TRUE(Store::writeEncryptedPropertyList(contentWith("bank", {entryOf("ann", "p", false)}),
                                                url(), "pw"));
  std::string wrong;
  std::shared_ptr<Store> store;
  for (int number = 0; !store; ++number) store = open(wrong = "wrong" + std::to_string(number));
  EXPECT_TRUE(store->setPassword("q", "bob", "shop", noContext()));
  const auto content = contentOf(wrong).as<NSDictionary>();
  EXPECT_TRUE(content->objectForKey("iv")) << "the outer list was the content";
  EXPECT_EQ(content->objectForKey("passwords").valueForKey("shop").as<NSArray>()->count(), 1U);
}

TEST_F(StoredPasswords, OfAStoreWithoutAFileAreNotKept) {
  Store store(false);
  Error error;
  EXPECT_TRUE(store.setPassword(std::nullopt, "ann", "bank", noContext(), &error));
  EXPECT_FALSE(store.setPassword("p", "ann", "bank", noContext(), &error));
  EXPECT_EQ(error, nullptr);
  EXPECT_EQ(store.passwordForUser("ann", "bank", noContext()), std::nullopt);
}

TEST_F(StoredPasswords, AreNotFoundInContentsOfOtherShapes) {
  const auto in = [](const char* key, id value) {
    const auto list = std::make_shared<NSMutableDictionary>();
    list->setObject(value, key);
    return list;
  };
  Error error;
  for (const id& content :
       {id("text"), id(NSArray::arrayWithObjects({1})), id(in("passwords", "text")),
        id(in("passwords", NSArray::arrayWithObjects({"bank"}))),
        id(in("passwords", in("bank", "text"))), id(in("passwords", in("bank", in("user", "ann")))),
        id(in("passwords", in("bank", NSArray::arrayWithObjects(
                                          {1, "ann", in("user", 5), in("context", "NONE")}))))}) {
    ASSERT_TRUE(Store::writeEncryptedPropertyList(content, url(), "pw"));
    const auto store = open();
    SCOPED_TRACE(content.description());
    EXPECT_THAT(store->usersForPasswordService("bank", noContext()), IsEmpty());
    EXPECT_EQ(store->passwordForUser("ann", "bank", noContext()), std::nullopt);
    const std::string bytes = read("store");
    error = nullptr;
    // What stands in the place of entries is never lost.
    if (store->setPassword("p", "ann", "bank", noContext(), &error)) {
      EXPECT_EQ(store->passwordForUser("ann", "bank", noContext()), "p");
      EXPECT_EQ(contentOf()
                    .as<NSDictionary>()
                    ->objectForKey("passwords")
                    .valueForKey("bank")
                    .as<NSArray>()
                    ->count(),
                5U);
    } else {
      EXPECT_EQ(read("store"), bytes);
      EXPECT_TRUE(!error || error->code() == NSFileReadCorruptFileError);
    }
  }
}

/// The table again, as a model of plain maps, under random calls.
TEST_F(StoredPasswords, FollowAModelUnderRandomSets) {
  struct Kept {
    Text password;
    bool isMarked = false;
  };
  std::map<std::string, Kept> entries;
  std::map<std::string, std::string> items;
  std::mt19937 random(20240131);
  const auto below = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
  const auto store = open();
  for (int step = 0; step < 250; ++step) {
    const std::string user = "u" + std::to_string(below(3)),
                      service = "s" + std::to_string(below(2));
    const std::string name = user + "@" + service;
    const Text given = below(4) == 0 ? std::nullopt : Text("p" + std::to_string(below(3)));
    const bool inKeychain = below(2) == 0;
    keychain_->refusal = below(5) == 0 ? -1 : 0;
    store->setStoreInKeychain(inKeychain);
    bool result = true;
    const auto entry = entries.find(name);
    const auto item = items.find(name);
    if (!given) {
      entries.erase(name);
    } else if (!inKeychain) {
      entries[name] = {given, false};
    } else if (entry != entries.end() && item != items.end() && item->second == given) {
      if (entry->second.password) entry->second = {std::nullopt, true};
    } else if (keychain_->refusal != 0) {
      result = entry != entries.end() && item != items.end();
    } else {
      items[name] = *given;
      entries[name] = {std::nullopt, true};
    }
    ASSERT_EQ(store->setPassword(given, user, service, noContext()), result) << step;
    if (below(10) == 0) waitForStores();
    for (const char* s : {"s0", "s1"})
      for (const char* u : {"u0", "u1", "u2"}) {
        const auto kept = entries.find(std::string(u) + "@" + s);
        Text expected;
        if (kept != entries.end()) expected = kept->second.password;
        if (kept != entries.end() && !expected && kept->second.isMarked)
          expected = items.at(std::string(u) + "@" + s);
        ASSERT_EQ(store->passwordForUser(u, s, noContext()), expected) << step << u << s;
      }
  }
}

}  // namespace
}  // namespace ORLFoundation
