// The check of a password, and the set that merges.
#include <ORLFoundation/platform/crypto/CommonCrypto.h>
#include <ORLFoundation/platform/files/NSFileErrors.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>
#include <ORLFoundation/security/primitives/ORLFCryptography.h>
#include <ORLFoundation/security/store/ORLFEncryptedStore_testing.h>
#include <ORLFoundation/security/store/internal/StoreLock.h>
#include <gmock/gmock.h>
#include <tests/support/ProcessorTime.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <limits>
#include <thread>

namespace ORLFoundation {
namespace {

using orlftest::contentWith;
using orlftest::entryOf;
using orlftest::noContext;
using testing::ElementsAre;
using testing::UnorderedElementsAre;
using Error = std::shared_ptr<const NSError>;
using Store = ORLFEncryptedStore;

class CheckedStore : public orlftest::EncryptedStoreTest {
 protected:
  CheckedStore() {
    EXPECT_TRUE(Store::writeEncryptedPropertyList(
        contentWith("bank", {entryOf("ann", "s3cret-of-ann", false)}), url(), "pw"));
  }
  [[nodiscard]] std::shared_ptr<NSMutableDictionary> outerList() const {
    return NSPropertyListSerialization::propertyListWithData(NSData(read("store")),
                                                             NSPropertyListMutableContainers)
        .as<NSMutableDictionary>();
  }
  void writeOuter(const id& list) const {
    write("store",
          NSPropertyListSerialization::dataWithPropertyList(list, NSPropertyListXMLFormat_v1_0, 0)
              ->text());
  }
  /// Changes the bytes under a key of the file.
  template <class Change>
  void damage(const char* key, const Change& change) const {
    const auto list = outerList();
    const auto bytes = list->objectForKey(key).as<NSData>()->bytes();
    std::vector<std::uint8_t> changed(bytes.begin(), bytes.end());
    change(changed);
    list->setObject(NSData(std::move(changed)), key);
    writeOuter(list);
  }
  [[nodiscard]] ORLFEncryptedStoreFinding check(const std::string& password = "pw") const {
    return Store::checkPassword(password, url());
  }
};

using Bytes = std::vector<std::uint8_t>;

TEST_F(CheckedStore, OpensUnderItsPasswordAlone) {
  const std::string before = read("store");
  EXPECT_EQ(check(), ORLFEncryptedStoreOpens);
  for (int number = 0; number < 1500; ++number)
    ASSERT_EQ(check("wrong" + std::to_string(number)), ORLFEncryptedStoreWrongPasswordOrDamaged)
        << number;
  EXPECT_EQ(read("store"), before);
  EXPECT_THAT(names(), ElementsAre("store"));
}

TEST_F(CheckedStore, TellsDamageUnderTheRightPassword) {
  const std::string whole = read("store");
  const auto found = [&](const char* key, auto change) {
    write("store", whole);
    damage(key, change);
    return check();
  };
  const auto flipLast = [](Bytes& bytes) { bytes.back() ^= 1; };
  EXPECT_EQ(found("data", flipLast), ORLFEncryptedStoreDamaged);
  EXPECT_EQ(found("data", [](Bytes& bytes) { bytes.resize(bytes.size() - 16); }),
            ORLFEncryptedStoreDamaged);
  EXPECT_EQ(found("data", [](Bytes& bytes) { bytes.resize(bytes.size() - 5); }),
            ORLFEncryptedStoreDamaged);
  EXPECT_EQ(found("data", [](Bytes& bytes) { bytes.push_back(0); }), ORLFEncryptedStoreDamaged);
  EXPECT_EQ(found("data", [](Bytes& bytes) { bytes[0] ^= 1; }), ORLFEncryptedStoreDamaged);
  EXPECT_EQ(found("iv", [](Bytes& bytes) { bytes.resize(15); }), ORLFEncryptedStoreDamaged);
  // Too much damage, too little text, and another key tell nothing.
  EXPECT_EQ(found("data", [](Bytes& bytes) { bytes.resize(48); }),
            ORLFEncryptedStoreWrongPasswordOrDamaged);
  EXPECT_EQ(found("data", [](Bytes& bytes) { bytes.clear(); }),
            ORLFEncryptedStoreWrongPasswordOrDamaged);
  EXPECT_EQ(found("salt", flipLast), ORLFEncryptedStoreWrongPasswordOrDamaged);
  EXPECT_EQ(found("data",
                  [](Bytes& bytes) {
                    for (std::size_t i = 0; i < bytes.size(); i += 16) bytes[i] ^= 1;
                  }),
            ORLFEncryptedStoreWrongPasswordOrDamaged);
}

TEST_F(CheckedStore, TellsMissingPartsAndOtherContents) {
  struct Row {
    const char* missing;
    ORLFEncryptedStoreFinding finding;
  };
  const auto whole = outerList();
  for (const Row& row :
       {Row{"iv", ORLFEncryptedStoreDamaged}, Row{"salt", ORLFEncryptedStoreWrongPasswordOrDamaged},
        Row{"data", ORLFEncryptedStoreWrongPasswordOrDamaged}}) {
    const auto list = std::make_shared<NSMutableDictionary>(whole->entries());
    list->removeObjectForKey(row.missing);
    writeOuter(list);
    EXPECT_EQ(check(), row.finding) << row.missing;
  }
  writeOuter(contentWith("bank", {}));
  EXPECT_EQ(check(), ORLFEncryptedStoreNotEncrypted);
  writeOuter(std::make_shared<NSArray>());
  EXPECT_EQ(check(), ORLFEncryptedStoreNotEncrypted);
  ASSERT_TRUE(Store::writeEncryptedPropertyList(
      NSArray::arrayWithObjects({"a list that holds no dictionary"}), url(), "pw"));
  EXPECT_EQ(check(), ORLFEncryptedStoreDamaged);
}

/// So many times a text.
std::string times(std::size_t count, std::string_view text) {
  std::string all;
  while (count-- > 0) all += text;
  return all;
}

/// A list that ends with a tail and takes whole blocks with it.
std::string listBefore(std::string_view tail) {
  const std::string begin = "<plist><dict></dict>" + times(40, " "), end = "</plist>";
  const std::size_t size = begin.size() + end.size() + tail.size();
  return begin + times((16 - size % 16) % 16, " ") + end + std::string(tail);
}

TEST_F(CheckedStore, TakesPaddingThatIsWholeAndTextOfThreeQuarters) {
  struct Row {
    std::string plain;
    ORLFEncryptedStoreFinding finding;
  };
  const std::string noText = times(16, "\1");
  const Row rows[] = {
      {listBefore("\2\2"), ORLFEncryptedStoreOpens},
      {listBefore(times(16, "\x10")), ORLFEncryptedStoreOpens},
      // What could be cut off as padding is none.
      {listBefore(times(9, " ") + "\n"), ORLFEncryptedStoreDamaged},
      {listBefore(times(32, " ")), ORLFEncryptedStoreDamaged},
      {times(64, "a"), ORLFEncryptedStoreDamaged},
      {times(48, "a"), ORLFEncryptedStoreWrongPasswordOrDamaged},
      {times(48, "a") + noText, ORLFEncryptedStoreDamaged},
      {times(47, "a") + "\1" + noText, ORLFEncryptedStoreWrongPasswordOrDamaged},
      {times(16, "\t\n\r") + noText, ORLFEncryptedStoreDamaged},
      {times(48, " ") + noText, ORLFEncryptedStoreDamaged},
      {times(24, "\u00E9") + noText, ORLFEncryptedStoreDamaged},
      {times(64, "\x7F"), ORLFEncryptedStoreWrongPasswordOrDamaged},
      {times(64, "\x1F"), ORLFEncryptedStoreWrongPasswordOrDamaged},
      {times(64, "\xE9"), ORLFEncryptedStoreWrongPasswordOrDamaged},
  };
  const auto list = outerList();
  const NSData salt = *list->objectForKey("salt").as<NSData>();
  const NSData vector = *list->objectForKey("iv").as<NSData>();
  const NSData key = ORLFCryptography::keyWithLength(16, "pw", salt, 1000);
  for (const Row& row : rows) {
    const NSData plain{std::string_view(row.plain)};
    Bytes sealed(plain.length());
    std::size_t length = 0;
    ASSERT_EQ(CCCrypt({.operation = kCCEncrypt,
                       .algorithm = kCCAlgorithmAES,
                       .options = 0,
                       .key = key.bytes(),
                       .initializationVector = vector.bytes(),
                       .input = plain.bytes(),
                       .output = sealed},
                      length),
              kCCSuccess)
        << row.plain;
    list->setObject(NSData(std::move(sealed)), "data");
    writeOuter(list);
    EXPECT_EQ(check(), row.finding) << row.plain;
    // What opens is what is read.
    const id outer = NSPropertyListSerialization::propertyListWithData(NSData(read("store")), 0);
    EXPECT_EQ(!contentOf().isNil() && contentOf() != outer, row.finding == ORLFEncryptedStoreOpens)
        << row.plain;
  }
}

TEST_F(CheckedStore, SaysWhyAFileCannotBeRead) {
  Error error;
  EXPECT_EQ(Store::checkPassword("pw", url("none"), &error), ORLFEncryptedStoreUnreadable);
  EXPECT_EQ(error->code(), NSFileReadNoSuchFileError);
  write("store", "no list");
  EXPECT_EQ(Store::checkPassword("pw", url(), &error), ORLFEncryptedStoreUnreadable);
  EXPECT_EQ(error->code(), NSPropertyListReadCorruptError);
}

TEST_F(CheckedStore, CostsOneDerivation) {
  const auto least = [](auto work) {
    double seconds = std::numeric_limits<double>::max();
    for (int batch = 0; batch < 8; ++batch)
      seconds = std::min(seconds, orlftest::processorSecondsOf([&] {
                           for (int time = 0; time < 30; ++time) work();
                         }));
    return seconds;
  };
  const std::array<std::uint8_t, 8> salt{};
  std::array<std::uint8_t, 16> key{};
  const double derivation = least([&] {
    ASSERT_EQ(CCKeyDerivationPBKDF(kCCPBKDF2, "p", salt, kCCPRFHmacAlgSHA1, 1000, key), 0);
  });
  const double reading = least([&] {
    ASSERT_TRUE(NSPropertyListSerialization::propertyListWithData(NSData(read("store")), 0));
  });
  const double check = least([&] { ASSERT_EQ(this->check(), ORLFEncryptedStoreOpens); });
  EXPECT_GE(check, 0.8 * derivation);
  EXPECT_LE(check, 1.5 * derivation + 4 * reading);
}

TEST_F(CheckedStore, MergesIntoWhatOthersWrote) {
  const auto store = open();
  dispatch_sync(Store::sharedEventQueue(), [&] {
    // The store has not heard of this when it merges.
    EXPECT_TRUE(Store::writeEncryptedPropertyList(
        contentWith("bank", {entryOf("bob", "of bob", false)}), url(), "pw"));
  });
  EXPECT_TRUE(store->mergePassword("of carl", "carl", "bank", std::nullopt));
  EXPECT_THAT(store->usersForPasswordService("bank", noContext()), ElementsAre("bob", "carl"));
  EXPECT_TRUE(store->mergePassword(std::nullopt, "bob", "bank", std::nullopt));
  EXPECT_TRUE(store->mergePassword("changed", "carl", "bank", std::nullopt));
  waitForStores();
  EXPECT_EQ(contentOf(), contentWith("bank", {entryOf("carl", "changed", false)}));
  const std::string before = read("store");
  EXPECT_TRUE(store->mergePassword("changed", "carl", "bank", std::nullopt));
  EXPECT_TRUE(store->mergePassword(std::nullopt, "nobody", "bank", std::nullopt));
  EXPECT_EQ(read("store"), before) << "nothing to write";
  EXPECT_EQ(modeOf("store.lock"), 0600U);
}

TEST_F(CheckedStore, MergesPasswordsToTheKeychain) {
  const auto store = open();
  store->setStoreInKeychain(true);
  EXPECT_TRUE(store->mergePassword("s3cret-of-ann", "ann", "bank", noContext()));
  EXPECT_EQ(contentOf(), contentWith("bank", {entryOf("ann", std::nullopt, true)}));
  keychain_->refusal = -25293;
  Error error;
  EXPECT_FALSE(store->mergePassword("p", "bob", "bank", noContext(), &error));
  EXPECT_EQ(error->code(), -25293);
}

TEST_F(CheckedStore, MergesNothingUnderAWrongPasswordOrIntoDamage) {
  std::shared_ptr<Store> store;
  for (int number = 0; !store; ++number) store = open("wrong" + std::to_string(number));
  const auto refusal = [&](const std::shared_ptr<Store>& merging) -> std::string {
    const std::string before = read("store");
    Error error;
    if (merging->mergePassword("p", "bob", "bank", noContext(), &error)) return "merged";
    EXPECT_EQ(read("store"), before);
    EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
    EXPECT_EQ(error->code(), NSFileReadCorruptFileError);
    return error->localizedDescription();
  };
  EXPECT_EQ(refusal(store), "The password is wrong, or the file of the store is damaged.");
  const auto right = open();
  damage("data", [](Bytes& bytes) { bytes.back() ^= 1; });
  EXPECT_EQ(refusal(right), "The file of the store is damaged.");
  writeOuter(contentWith("bank", {}));
  EXPECT_EQ(refusal(right), "The file is not encrypted.");
  ASSERT_TRUE(std::filesystem::remove(path("store")));
  Error error;
  EXPECT_FALSE(right->mergePassword("p", "bob", "bank", noContext(), &error));
  EXPECT_EQ(error->code(), NSFileReadNoSuchFileError);
  EXPECT_FALSE(std::filesystem::exists(path("store")));
}

/// Whether somebody waits for a lock of a whole file, as the kernel tells.
bool waitsForALock() {
  std::ifstream locks("/proc/locks");
  for (std::string line; std::getline(locks, line);)
    if (line.find("-> FLOCK") != std::string::npos) return true;
  return false;
}

TEST_F(CheckedStore, MergesIntoTheFileThatIsOpenWhenItsTurnComes) {
  ASSERT_TRUE(Store::writeEncryptedPropertyList(contentWith("shop", {}), url("other"), "pw"));
  const auto store = open();
  std::thread merging;
  {
    const internal::store::StoreLock lock(url(), nullptr);
    ASSERT_TRUE(lock.isHeld());
    merging =
        std::thread([&] { EXPECT_TRUE(store->mergePassword("p", "bob", "shop", std::nullopt)); });
    // It is right however late the thread comes; mostly it is seen to wait.
    for (int turn = 0; turn < 1000 && !waitsForALock(); ++turn)
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_TRUE(store->openAtURL(url("other"), "pw"));
  }
  merging.join();
  EXPECT_EQ(contentOf(), contentWith("bank", {entryOf("ann", "s3cret-of-ann", false)}));
  EXPECT_EQ(contentOf("pw", "other"), contentWith("shop", {entryOf("bob", "p", false)}));
}

TEST_F(CheckedStore, MergesNothingOnceItWasClosedMeanwhile) {
  const auto store = open();
  store->setStoreInKeychain(true);
  std::thread merging;
  {
    const internal::store::StoreLock lock(url(), nullptr);
    merging =
        std::thread([&] { EXPECT_FALSE(store->mergePassword("p", "bob", "bank", std::nullopt)); });
    for (int turn = 0; turn < 1000 && !waitsForALock(); ++turn)
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_TRUE(store->close(false));
  }
  merging.join();
  EXPECT_THAT(keychain_->calls, testing::IsEmpty());
  EXPECT_EQ(contentOf(), contentWith("bank", {entryOf("ann", "s3cret-of-ann", false)}));
}

TEST_F(CheckedStore, LeavesALockThatSomebodyHolds) {
  const auto store = open();
  {
    const internal::store::StoreLock lock(url(), nullptr);
    EXPECT_TRUE(store->close(true));
    EXPECT_THAT(names(), ElementsAre("store.lock"));
  }
  EXPECT_TRUE(store->close(true));
  EXPECT_THAT(names(), ElementsAre());
}

TEST_F(CheckedStore, SaysWhenNoLockCanBeMade) {
  const auto store = open();
  std::filesystem::create_symlink("store", path("store.lock"));
  Error error;
  EXPECT_FALSE(store->mergePassword("p", "bob", "bank", noContext(), &error));
  EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(contentOf(), contentWith("bank", {entryOf("ann", "s3cret-of-ann", false)}));
}

TEST_F(CheckedStore, LetsThreadsMergeWithoutLoss) {
  constexpr int kThreads = 3, kSets = 6;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread)
    threads.emplace_back([&, thread] {
      const auto store = open();
      for (int set = 0; set < kSets; ++set)
        EXPECT_TRUE(
            store->mergePassword("p", std::to_string(thread * kSets + set), "new", noContext()));
    });
  for (std::thread& thread : threads) thread.join();
  const auto passwords = contentOf().as<NSDictionary>()->objectForKey("passwords");
  EXPECT_EQ(passwords.valueForKey("new").as<NSArray>()->count(), kThreads * kSets * 1U);
  EXPECT_EQ(passwords.valueForKey("bank").as<NSArray>()->count(), 1U);
}

TEST_F(CheckedStore, TellsNoSecretsInErrorsAndLogs) {
  const LogCapture log;
  const std::string secret = "hush-hush";
  const auto store = open();
  std::string told;
  const auto note = [&](bool isDone, const Error& error) {
    EXPECT_FALSE(isDone);
    if (error) told += error->description() + error->userInfo()->description();
  };
  Error error;
  note(store->setPassword(secret + '\1', "ann", "bank", noContext(), &error), error);
  note(store->setPassword("\xFF" + secret, "bob", "bank", noContext(), &error), error);
  keychain_->refusal = -1;
  store->setStoreInKeychain(true);
  note(store->setPassword(secret, "carl", "bank", noContext(), &error), error);
  note(Store::openStoreWithFileAtURL(url("no/such"), secret, nullptr, &error) != nullptr, error);
  damage("data", [](Bytes& bytes) { bytes.back() ^= 1; });
  note(store->mergePassword(secret, "dora", "bank", noContext(), &error), error);
  note(Store::initWithFileAtURL(url(), secret)
           ->mergePassword(secret, "dora", "bank", noContext(), &error),
       error);
  write("store", "<plist><string>" + secret);
  note(Store::checkPassword(secret, url(), &error) != ORLFEncryptedStoreUnreadable, error);
  std::filesystem::remove(path("store"));
  waitForStores();
  for (const std::string& line : log.lines()) told += line;
  told += store->description();
  EXPECT_NE(told.find("no longer observing"), std::string::npos);
  EXPECT_EQ(told.find("hush"), std::string::npos) << told;
  EXPECT_EQ(told.find("s3cret"), std::string::npos) << told;
}

}  // namespace
}  // namespace ORLFoundation
