#include <ORLFoundation/security/store/ORLFEncryptedStore.h>

#include <ORLFoundation/files/watching/ORLFFileSystemObserver.h>
#include <ORLFoundation/platform/files/NSFileErrors.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/notification/NSNotificationCenter.h>
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>
#include <ORLFoundation/platform/process/NSBundle.h>
#include <ORLFoundation/security/store/ORLFEncryptedStore_testing.h>
#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <thread>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using orlftest::contentWith;
using orlftest::entryOf;
using orlftest::noContext;
using testing::ElementsAre;
using testing::IsEmpty;
using Store = ORLFEncryptedStore;
using Error = std::shared_ptr<const NSError>;

class EncryptedStore : public orlftest::EncryptedStoreTest {};

TEST_F(EncryptedStore, CreatesAFileThatOpensWithTheSamePassword) {
  bool created = false;
  Error error = NSError::errorWithDomain("before", 1);
  const auto store = Store::openStoreWithFileAtURL(url(), "pw", &created, &error);
  ASSERT_TRUE(store);
  EXPECT_TRUE(created);
  EXPECT_EQ(error, nullptr);
  EXPECT_TRUE(store->storeInKeychain());
  EXPECT_FALSE(store->closed());
  EXPECT_EQ(store->url(), url());
  EXPECT_EQ(contentOf(), id(std::make_shared<NSDictionary>()));
  EXPECT_THAT(names(), ElementsAre("store"));
  EXPECT_EQ(modeOf("store"), 0600U);
  ASSERT_TRUE(Store::openStoreWithFileAtURL(url(), "pw", &created));
  EXPECT_FALSE(created);
}

TEST_F(EncryptedStore, OpensExistingObjectsTheSameWay) {
  const auto store = std::make_shared<Store>();
  EXPECT_TRUE(store->storeInKeychain());
  EXPECT_FALSE(std::make_shared<Store>(false)->storeInKeychain());
  EXPECT_EQ(store->url(), std::nullopt);
  EXPECT_EQ(store->observer(), nullptr);
  bool created = false;
  ASSERT_TRUE(store->openAtURL(url(), "pw", &created));
  EXPECT_TRUE(created);
  EXPECT_TRUE(store->observer()->isObserving());
  const auto before = store->observer();
  ASSERT_TRUE(store->openAtURL(url("other"), "pw", &created));
  EXPECT_FALSE(before->isObserving());
  EXPECT_EQ(store->observer()->url(), url("other"));
  store->setStoreInKeychain(false);
  EXPECT_TRUE(store->setPassword("p", "ann", "bank", noContext()));
  EXPECT_EQ(contentOf(), id(std::make_shared<NSDictionary>()));
}

TEST_F(EncryptedStore, OpensNothingThatCannotBeRead) {
  write("store", "no list");
  bool created = true;
  Error error;
  EXPECT_EQ(Store::openStoreWithFileAtURL(url(), "pw", &created, &error), nullptr);
  EXPECT_EQ(error->code(), NSPropertyListReadCorruptError);
  EXPECT_TRUE(created) << "left alone";
  const auto store = std::make_shared<Store>();
  EXPECT_FALSE(store->openAtURL(url(), "pw", &created, &error));
  EXPECT_TRUE(created);
  EXPECT_EQ(store->observer(), nullptr);
  EXPECT_EQ(Store::openStoreWithFileAtURL(std::nullopt, "pw", &created, &error), nullptr);
  // The error of writing is dropped, that of reading told.
  EXPECT_EQ(Store::openStoreWithFileAtURL(url("no/such/folder"), "pw", &created, &error), nullptr);
  EXPECT_EQ(error->code(), NSFileReadNoSuchFileError);
  EXPECT_EQ(read("store"), "no list");
}

TEST_F(EncryptedStore, SeesItsContentRightAfterOpening) {
  ASSERT_TRUE(Store::writeEncryptedPropertyList(contentWith("bank", {entryOf("ann", "s3", false)}),
                                                url(), "pw"));
  for (int round = 0; round < 20; ++round)
    EXPECT_EQ(open()->passwordForUser("ann", "bank", noContext()), "s3");
  const auto store = Store::initWithFileAtURL(url(), "pw");
  EXPECT_TRUE(store->storeInKeychain());
  EXPECT_EQ(store->passwordForUser("ann", "bank", noContext()), "s3");
}

TEST_F(EncryptedStore, OpensUnderAWrongPasswordAndFindsNothing) {
  ASSERT_TRUE(Store::writeEncryptedPropertyList(contentWith("bank", {entryOf("ann", "s3", false)}),
                                                url(), "pw"));
  std::shared_ptr<Store> store;
  for (int number = 0; !store; ++number) store = open("wrong" + std::to_string(number));
  EXPECT_EQ(store->passwordForUser("ann", "bank", noContext()), std::nullopt);
  EXPECT_THAT(store->usersForPasswordService("bank", noContext()), IsEmpty());
}

TEST_F(EncryptedStore, FillsItsContentWithTheFirstEvent) {
  std::shared_ptr<Store> store;
  dispatch_sync(Store::sharedEventQueue(), [&] {
    // In the queue, as a handler would, by the initializer that does not enter it.
    static_cast<void>(Store::writeEncryptedPropertyList(contentWith("bank", {}), url(), "pw"));
    store = Store::initWithFileAtURL(url(), "pw");
    EXPECT_TRUE(store->store().isNil());
  });
  waitForStores();
  EXPECT_EQ(store->store(), contentWith("bank", {}));
}

TEST_F(EncryptedStore, TakesOverWhatOthersWriteAndTellsOfIt) {
  const auto store = open();
  const auto other = open("pw", "other");
  std::vector<std::string> told;
  const auto token = NSNotificationCenter::defaultCenter()->addObserverForName(
      std::string(ORLFEncryptedStoreDidChangeNotification), nullptr,
      [&](const NSNotification& notification) {
        told.emplace_back(notification.object().as<Store>() == store ? "store" : "other");
        EXPECT_EQ(notification.userInfo(), nullptr);
        EXPECT_STREQ(dispatch_queue_get_label(DISPATCH_CURRENT_QUEUE_LABEL),
                     dispatch_queue_get_label(Store::sharedEventQueue()));
      });
  const auto toldSoFar = [&] {
    std::vector<std::string> copy;
    dispatch_sync(Store::sharedEventQueue(), [&] { copy = told; });
    return copy;
  };
  waitForStores();
  EXPECT_THAT(toldSoFar(), IsEmpty()) << "event 1 is not told of";
  ASSERT_TRUE(Store::writeEncryptedPropertyList(contentWith("bank", {entryOf("ann", "new", false)}),
                                                url(), "pw"));
  waitForStores();
  EXPECT_THAT(toldSoFar(), ElementsAre("store"));
  EXPECT_EQ(store->passwordForUser("ann", "bank", noContext()), "new");
  EXPECT_TRUE(store->setPassword("p", "bob", "bank", noContext()));
  waitForStores();
  EXPECT_THAT(toldSoFar(), ElementsAre("store", "store")) << "its own writing too";
}

TEST_F(EncryptedStore, KeepsItsContentWhereTheFileNoLongerReads) {
  const auto store = open();
  EXPECT_TRUE(store->setPassword("p", "ann", "bank", noContext()));
  waitForStores();
  int told = 0;
  const auto token = NSNotificationCenter::defaultCenter()->addObserverForName(
      std::string(ORLFEncryptedStoreDidChangeNotification), store,
      [&](const NSNotification&) { ++told; });
  orlftest::saveAtomically(path("store"), "no list");
  waitForStores();
  EXPECT_EQ(told, 0);
  EXPECT_EQ(store->passwordForUser("ann", "bank", noContext()), "p");
}

TEST_F(EncryptedStore, SaysThatItNoLongerObserves) {
  const auto store = open();
  waitForStores();
  const LogCapture log;
  fs::remove(path("store"));
  waitForStores();
  EXPECT_THAT(log.lines(), ElementsAre("ORLEncryptedStore no longer observing file on disk: 3"));
  EXPECT_FALSE(store->observer()->isObserving());
  // Saving begins observation anew.
  EXPECT_TRUE(store->setPassword("p", "ann", "bank", noContext()));
  EXPECT_TRUE(store->observer()->isObserving());
  fs::rename(path("store"), path("moved"));
  waitForStores();
  EXPECT_EQ(log.lines().back(), "ORLEncryptedStore no longer observing file on disk: 4");
}

TEST_F(EncryptedStore, ReadsUnderTheAddressAndThePasswordOfItsOpening) {
  ASSERT_TRUE(Store::writeEncryptedPropertyList(contentWith("a", {}), url("a"), "1"));
  ASSERT_TRUE(Store::writeEncryptedPropertyList(contentWith("b", {}), url("b"), "2"));
  const auto store = open("1", "a");
  EXPECT_TRUE(store->openAtURL(url("b"), "2"));
  waitForStores();
  EXPECT_EQ(store->store(), contentWith("b", {}));
  ASSERT_TRUE(Store::writeEncryptedPropertyList(contentWith("c", {}), url("a"), "1"));
  waitForStores();
  EXPECT_EQ(store->store(), contentWith("b", {}));
}

// An opening waits on the queue, and behind it an event of the file before.
TEST_F(EncryptedStore, TakesNoContentFromALateEventOfTheFileBefore) {
  const LogCapture log;
  ASSERT_TRUE(Store::writeEncryptedPropertyList(contentWith("b", {}), url("b"), "pw"));
  const auto store = open("pw", "a");
  fs::remove(path("a"));
  waitForStores();
  std::promise<void> go;
  dispatch_async(Store::sharedEventQueue(), [&] { go.get_future().wait(); });
  std::thread opening([&] { EXPECT_TRUE(store->openAtURL(url("b"), "pw")); });
  // It is right however late the thread comes; mostly it waits by now.
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_TRUE(store->saveEncryptedStore(contentWith("a", {})));
  id found;
  bool isOpened = false;
  dispatch_async(Store::sharedEventQueue(), [&] {
    found = store->store();
    isOpened = store->url() == url("b");
  });
  go.set_value();
  opening.join();
  waitForStores();
  EXPECT_TRUE(!isOpened || found.isNil()) << found.description();
  EXPECT_EQ(store->store(), contentWith("b", {}));
}

TEST_F(EncryptedStore, ObservesNothingOnceClosedInTheMidstOfSaving) {
  const LogCapture log;
  for (int round = 0; round < 20; ++round) {
    const auto store = open();
    const auto observer = store->observer();
    fs::remove(path("store"));
    waitForStores();
    std::thread saving([&] { store->saveEncryptedStore(contentWith("bank", {})); });
    std::this_thread::sleep_for(std::chrono::microseconds(30 * round));
    EXPECT_TRUE(store->close(false));
    saving.join();
    EXPECT_FALSE(observer->isObserving()) << round;
  }
}

TEST_F(EncryptedStore, SavesNothingOnceClosed) {
  const auto store = open();
  const auto observer = store->observer();
  EXPECT_TRUE(store->close(false));
  EXPECT_TRUE(store->closed());
  EXPECT_FALSE(observer->isObserving());
  EXPECT_EQ(store->observer(), nullptr);
  EXPECT_TRUE(store->store().isNil());
  EXPECT_EQ(store->url(), url());
  Error error;
  EXPECT_FALSE(store->saveEncryptedStore(contentWith("bank", {}), &error));
  EXPECT_EQ(error, nullptr);
  EXPECT_TRUE(store->store().isNil());
  EXPECT_FALSE(store->setPassword("p", "ann", "bank", noContext(), &error));
  EXPECT_FALSE(store->mergePassword("p", "ann", "bank", noContext(), &error));
  EXPECT_EQ(error, nullptr);
  EXPECT_EQ(contentOf(), id(std::make_shared<NSDictionary>()));
  EXPECT_TRUE(store->openAtURL(url(), "pw"));
  EXPECT_FALSE(store->closed());
}

TEST_F(EncryptedStore, RemovesItsFileAtClosingOnDemand) {
  Error error;
  const auto store = open();
  EXPECT_TRUE(store->mergePassword("p", "ann", "bank", noContext()));
  EXPECT_THAT(names(), ElementsAre("store", "store.lock"));
  EXPECT_TRUE(Store::closeStore(store, true, &error));
  EXPECT_THAT(names(), IsEmpty());
  EXPECT_TRUE(store->close(true)) << "it is gone already";
  EXPECT_TRUE(Store::closeStore(nullptr, true, &error));
  EXPECT_FALSE(std::make_shared<Store>()->close(true));
  EXPECT_TRUE(std::make_shared<Store>()->close(false));
}

TEST_F(EncryptedStore, SavesNoContentWithoutAFile) {
  const auto store = std::make_shared<Store>(false);
  Error error;
  const id content = contentWith("bank", {});
  EXPECT_FALSE(store->saveEncryptedStore(content, &error));
  EXPECT_EQ(error, nullptr);
  EXPECT_EQ(store->store(), content) << "set before the writing is tried";
  EXPECT_FALSE(store->mergePassword("p", "ann", "bank", noContext()));
}

TEST_F(EncryptedStore, KeepsAContentThatCouldNotBeWritten) {
  const auto store = open();
  waitForStores();
  fs::remove(path("store"));
  waitForStores();
  fs::remove(folder_);
  Error error;
  EXPECT_FALSE(store->setPassword("p", "ann", "bank", noContext(), &error));
  EXPECT_EQ(error->code(), NSFileNoSuchFileError);
  EXPECT_EQ(store->passwordForUser("ann", "bank", noContext()), "p");
  EXPECT_FALSE(store->observer()->isObserving());
}

TEST_F(EncryptedStore, StopsObservingWithItsLastReference) {
  const auto observer = open()->observer();
  waitForStores();
  EXPECT_FALSE(observer->isObserving());
}

TEST_F(EncryptedStore, KeepsTheModeOfAFileAndALinkToIt) {
  const auto store = open("pw", "target");
  ::chmod(path("target").c_str(), 0640);
  EXPECT_TRUE(store->setPassword("p", "ann", "bank", noContext()));
  EXPECT_EQ(modeOf("target"), 0640U);
  fs::create_symlink("target", path("link"));
  const auto linked = open("pw", "link");
  EXPECT_TRUE(linked->setPassword("q", "bob", "bank", noContext()));
  EXPECT_TRUE(linked->mergePassword("r", "carl", "bank", noContext()));
  EXPECT_TRUE(fs::is_symlink(path("link")));
  EXPECT_EQ(modeOf("target"), 0640U);
  EXPECT_EQ(modeOf("target.lock"), 0600U);
  fs::create_symlink("later", path("dangling"));
  EXPECT_TRUE(open("pw", "dangling")->setPassword("p", "ann", "bank", noContext()));
  EXPECT_TRUE(fs::is_symlink(path("dangling")));
  EXPECT_EQ(modeOf("later"), 0600U);
  EXPECT_THAT(names(), ElementsAre("dangling", "later", "link", "target", "target.lock"));
}

TEST_F(EncryptedStore, RunsAllStoresOnOneQueueInTheOrderOfTheCalls) {
  EXPECT_STREQ(dispatch_queue_get_label(Store::sharedEventQueue()),
               "com.orlsoftware.foundation.ORLFEncryptedStore");
  const auto first = open("pw", "first"), second = open("pw", "second");
  std::string order;
  std::vector<std::thread> threads;
  dispatch_sync(Store::sharedEventQueue(), [&] {
    dispatch_async(Store::sharedEventQueue(), [&] { order += 'a'; });
    threads.emplace_back([&] { EXPECT_TRUE(first->setPassword("p", "ann", "bank", noContext())); });
    threads.emplace_back(
        [&] { EXPECT_TRUE(second->setPassword("q", "bob", "bank", noContext())); });
    order += '1';
  });
  for (std::thread& thread : threads) thread.join();
  dispatch_sync(Store::sharedEventQueue(), [&] { order += '2'; });
  EXPECT_EQ(order, "1a2");
  EXPECT_EQ(first->passwordForUser("ann", "bank", noContext()), "p");
  EXPECT_EQ(second->passwordForUser("bob", "bank", noContext()), "q");
}

TEST_F(EncryptedStore, LosesNoSetOfItsThreads) {
  constexpr int kThreads = 4, kSets = 10;
  const auto store = open();
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread)
    threads.emplace_back([&, thread] {
      for (int set = 0; set < kSets; ++set)
        EXPECT_TRUE(
            store->setPassword("p", std::to_string(thread * kSets + set), "bank", noContext()));
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(store->usersForPasswordService("bank", noContext()).size(), kThreads * kSets * 1U);
}

struct KeychainError {
  std::int32_t status;
  const char *description, *suggestion, *reason, *failure;
};
constexpr const char* kFailed = "Communicating with Keychain failed.";
constexpr const char* kRestart = "Make sure the Keychain is unlocked or try restarting.";
const KeychainError kKeychainErrors[] = {
    {-25293, "The information could not be saved in the Keychain.",
     "Make sure the Keychain is unlocked, the app has been granted access and/or restarting.",
     "The application is not authorized to access the Keychain.",
     "The information was not saved in the Keychain."},
    {-25300, kFailed, kRestart, nullptr, nullptr},
    {0, kFailed, kRestart, nullptr, nullptr},
    {INT32_MIN, kFailed, kRestart, nullptr, nullptr},
};

TEST_F(EncryptedStore, TellsWhatAKeychainsStatusMeans) {
  for (const KeychainError& row : kKeychainErrors) {
    SCOPED_TRACE(row.status);
    const auto error = Store::errorForKeychainStatus(row.status);
    EXPECT_EQ(error->domain(), "ORLFSecurityErrorDomain");
    EXPECT_EQ(error->code(), row.status);
    const NSDictionary& about = *error->userInfo();
    EXPECT_EQ(about.count(), row.reason != nullptr ? 4U : 2U);
    EXPECT_EQ(about.objectForKey(NSLocalizedDescriptionKey), id(row.description));
    EXPECT_EQ(about.objectForKey(NSLocalizedRecoverySuggestionErrorKey), id(row.suggestion));
    EXPECT_EQ(about.objectForKey(NSLocalizedFailureReasonErrorKey), id(row.reason));
    EXPECT_EQ(about.objectForKey(NSLocalizedFailureErrorKey), id(row.failure));
  }
  NSBundle::mainBundle()->setLocalizedStrings("Localizable", {{kFailed, "Kein Schlüsselbund."}});
  EXPECT_EQ(Store::errorForKeychainStatus(1)->localizedDescription(), "Kein Schlüsselbund.");
  NSBundle::mainBundle()->setLocalizedStrings("Localizable", {});
}

}  // namespace
}  // namespace ORLFoundation
