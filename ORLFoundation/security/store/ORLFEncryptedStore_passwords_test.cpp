// The table of `setPassword`, matching, and what is kept.
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
using orlftest::ScriptedKeychain;
using testing::ElementsAre;
using testing::IsEmpty;
using Error = std::shared_ptr<const NSError>;
using Store = ORLFEncryptedStore;
using Text = std::optional<std::string>;

constexpr std::int32_t kRefused = -25293;

/// An entry of "ann" at "bank": none, or its password and its mark of the keychain.
struct Entry {
  bool exists = false;
  Text password = std::nullopt;
  bool isInKeychain = false;
};
const Entry kNoEntry{};
Entry inFile(const std::string& password) { return {true, password, false}; }
const Entry kInKeychain{true, std::nullopt, true};
const Entry kInNeither{true, std::nullopt, false};
Entry inBoth(const std::string& password) { return {true, password, true}; }

struct SetCase {
  std::string_view name;
  Entry entry;
  bool storeInKeychain;
  Text given;
  Text inKeychain = std::nullopt;
  std::int32_t refusal = 0;
  // What comes of it.
  bool result = true;
  NSInteger errorCode = 0;
  bool isWritten = true;
  Entry entryAfter = {};
  Text inKeychainAfter = std::nullopt;
  std::vector<std::string> calls = {};
};

const std::string kFind = "find ann@bank";
const std::string kUpdate = "update ann@bank";
const std::string kUpdateSilently = "update silently ann@bank";

std::vector<SetCase> setCases() {
  using Calls = std::vector<std::string>;
  const auto written = [](SetCase row, const Entry& after, const Text& keychain, Calls calls) {
    row.entryAfter = after;
    row.inKeychainAfter = keychain;
    row.calls = std::move(calls);
    return row;
  };
  const auto unwritten = [&](SetCase row, const Entry& after, Calls calls = {}) {
    row.isWritten = false;
    return written(row, after, row.inKeychain, std::move(calls));
  };
  const auto refused = [&](SetCase row, Calls calls, NSInteger code) {
    row.refusal = kRefused;
    row.result = code == 0;
    row.errorCode = code;
    return unwritten(row, row.entry, std::move(calls));
  };
  // clang-format off
  return {
      written({"NoEntryFileGiven", kNoEntry, false, "new"}, inFile("new"), {}, {}),
      written({"NoEntryFileGivenWithItem", kNoEntry, false, "new", "old"}, inFile("new"), "old", {}),
      unwritten({"NoEntryFileNil", kNoEntry, false, {}}, kNoEntry),
      written({"NoEntryKeychainGiven", kNoEntry, true, "new"}, kInKeychain, "new", {kUpdate}),
      written({"NoEntryKeychainGivenWithItem", kNoEntry, true, "new", "old"}, kInKeychain, "new", {kUpdate}),
      refused({"NoEntryKeychainRefused", kNoEntry, true, "new"}, {kUpdate}, kRefused),
      unwritten({"NoEntryKeychainNil", kNoEntry, true, {}, "old"}, kNoEntry),

      written({"FoundFileDiffers", inFile("old"), false, "new"}, inFile("new"), {}, {}),
      unwritten({"FoundFileSame", inFile("new"), false, "new"}, inFile("new")),
      written({"FoundFileWasInKeychain", kInKeychain, false, "new", "new"}, inFile("new"), "new", {}),
      written({"FoundFileWasInNeither", kInNeither, false, "new"}, inFile("new"), {}, {}),
      // The mark goes in memory alone: an equal password writes nothing.
      unwritten({"FoundFileSameInBoth", inBoth("new"), false, "new"}, inFile("new")),
      written({"FoundFileDiffersInBoth", inBoth("old"), false, "new"}, inFile("new"), {}, {}),
      written({"FoundFileEmpty", inFile("old"), false, ""}, inFile(""), {}, {}),
      written({"FoundFileNil", inFile("old"), false, {}}, kNoEntry, {}, {}),
      written({"FoundFileNilWithItem", kInKeychain, false, {}, "old"}, kNoEntry, "old", {}),

      written({"FoundKeychainNoItem", inFile("old"), true, "new"}, kInKeychain, "new", {kFind, kUpdate}),
      written({"FoundKeychainNoItemMarked", kInKeychain, true, "new"}, kInKeychain, "new", {kFind, kUpdate}),
      refused({"FoundKeychainNoItemRefused", inFile("old"), true, "new"}, {kFind, kUpdate}, kRefused),
      written({"FoundKeychainSamePlain", inFile("new"), true, "new", "new"}, kInKeychain, "new", {kFind}),
      written({"FoundKeychainSameOtherPlain", inFile("old"), true, "new", "new"}, kInKeychain, "new", {kFind}),
      written({"FoundKeychainSameInBoth", inBoth("new"), true, "new", "new"}, kInKeychain, "new", {kFind}),
      unwritten({"FoundKeychainSameMarked", kInKeychain, true, "new", "new"}, kInKeychain, {kFind}),
      unwritten({"FoundKeychainSameInNeither", kInNeither, true, "new", "new"}, kInNeither, {kFind}),
      written({"FoundKeychainDiffers", kInKeychain, true, "new", "old"}, kInKeychain, "new", {kFind, kUpdateSilently}),
      written({"FoundKeychainDiffersPlain", inFile("old"), true, "new", "old"}, kInKeychain, "new", {kFind, kUpdateSilently}),
      // Required: this failure has no error, and counts as a success that writes nothing.
      refused({"FoundKeychainDiffersRefused", inFile("old"), true, "new", "old"}, {kFind, kUpdateSilently}, 0),
      written({"FoundKeychainNil", inFile("old"), true, {}, "old"}, kNoEntry, "old", {}),
      written({"FoundKeychainNilMarked", kInKeychain, true, {}, "old"}, kNoEntry, "old", {}),
  };
  // clang-format on
}

class SetPassword : public orlftest::EncryptedStoreTest,
                    public testing::WithParamInterface<SetCase> {
 protected:
  static Entry entryIn(const id& content) {
    const auto entries =
        content.as<NSDictionary>()->objectForKey("passwords").valueForKey("bank").as<NSArray>();
    if (!entries || entries->count() == 0) return kNoEntry;
    const auto entry = entries->objectAtIndex(0).as<NSDictionary>();
    EXPECT_EQ(entries->count(), 1U);
    EXPECT_EQ(entry->objectForKey("user"), id("ann"));
    EXPECT_EQ(entry->objectForKey("context"), id(Store::noContext()));
    const id mark = entry->objectForKey("keychain");
    EXPECT_TRUE(mark.isNil() || mark == id("DEFAULT"));
    return {true, entry->objectForKey("password").as<std::string>(), !mark.isNil()};
  }
  static void expectEntry(const Entry& expected, const Entry& found) {
    EXPECT_EQ(found.exists, expected.exists);
    EXPECT_EQ(found.password, expected.password);
    EXPECT_EQ(found.isInKeychain, expected.isInKeychain);
  }
};

TEST_P(SetPassword, MatchesItsCell) {
  const SetCase& row = GetParam();
  const id before =
      row.entry.exists
          ? contentWith("bank", {entryOf("ann", row.entry.password, row.entry.isInKeychain)})
          : contentWith("bank", {});
  ASSERT_TRUE(Store::writeEncryptedPropertyList(before, url(), "pw"));
  if (row.inKeychain) keychain_->passwords["ann@bank"] = *row.inKeychain;
  keychain_->refusal = row.refusal;
  const auto store = open();
  store->setStoreInKeychain(row.storeInKeychain);
  const std::string bytes = read("store");

  Error error;
  EXPECT_EQ(store->setPassword(row.given, "ann", "bank", std::nullopt, &error), row.result);

  EXPECT_EQ(error ? error->code() : 0, row.errorCode);
  EXPECT_EQ(read("store") != bytes, row.isWritten);
  EXPECT_EQ(keychain_->calls, row.calls);
  const auto item = keychain_->passwords.find("ann@bank");
  EXPECT_EQ(item == keychain_->passwords.end() ? std::nullopt : Text(item->second),
            row.inKeychainAfter);
  expectEntry(row.entryAfter, entryIn(store->store()));
  if (row.isWritten) expectEntry(row.entryAfter, entryIn(contentOf()));
}

INSTANTIATE_TEST_SUITE_P(Cells, SetPassword, testing::ValuesIn(setCases()),
                         [](const auto& row) { return std::string(row.param.name); });

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
