#include <ORLFoundation/security/store/ORLFEncryptedStore.h>

#include <ORLFoundation/files/operations/ORLFFileUtilities.h>
#include <ORLFoundation/files/watching/ORLFFileSystemObserver.h>
#include <ORLFoundation/platform/crypto/SecBase.h>
#include <ORLFoundation/platform/files/NSFileManager.h>
#include <ORLFoundation/platform/files/NSURLResourceValues.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/notification/NSNotificationCenter.h>
#include <ORLFoundation/platform/object/NSString.h>
#include <ORLFoundation/platform/process/LocalizedText.h>
#include <ORLFoundation/security/store/internal/PasswordEntries.h>
#include <ORLFoundation/security/store/internal/StoreFile.h>
#include <ORLFoundation/security/store/internal/StoreLock.h>

#include <utility>

namespace ORLFoundation {

using internal::process::localizedText;
using namespace internal::store;

namespace {

/// A copy of a password that is wiped when its last holder goes.
NSData keptPassword(std::string_view password) {
  return NSData::dataWipedAtRelease({password.begin(), password.end()});
}

bool isAbsent(const NSURL& url) {
  std::shared_ptr<const NSError> error;
  if (resourceValuesForKeys(URLByResolvingSymlinksInPath(url), {}, &error)) return false;
  return error->domain() == NSCocoaErrorDomain && error->code() == NSFileReadNoSuchFileError;
}

}  // namespace

ORLFEncryptedStore::ORLFEncryptedStore() : ORLFEncryptedStore(true) {}

ORLFEncryptedStore::ORLFEncryptedStore(bool keychainStorage) : storeInKeychain_(keychainStorage) {}

ORLFEncryptedStore::~ORLFEncryptedStore() {
  if (observer_) observer_->stopObserving();
}

std::shared_ptr<ORLFEncryptedStore> ORLFEncryptedStore::initWithFileAtURL(
    const NSURL& url, std::string_view password) {
  auto store = std::make_shared<ORLFEncryptedStore>();
  store->observe(url, keptPassword(password));
  return store;
}

const dispatch_queue_t& ORLFEncryptedStore::sharedEventQueue() {
  // Never destroyed: events may come while the process ends.
  static const auto* const queue = new dispatch_queue_t(dispatch_queue_create(
      "com.orlsoftware.foundation.ORLFEncryptedStore", DISPATCH_QUEUE_SERIAL));
  return *queue;
}

const NSData& ORLFEncryptedStore::noContext() {
  static const auto* const marker = new NSData(std::string_view("NONE"));
  return *marker;
}

id ORLFEncryptedStore::readEncryptedPropertyListForFileAtURL(const NSURL& url,
                                                             std::string_view password,
                                                             NSErrorSlot error) {
  return readStoreFile(url, password, error);
}

bool ORLFEncryptedStore::writeEncryptedPropertyList(const id& propertyList,
                                                    const NSURL& toFileAtURL,
                                                    std::string_view password, NSErrorSlot error) {
  return writeStoreFile(propertyList, toFileAtURL, password, error);
}

ORLFEncryptedStoreFinding ORLFEncryptedStore::checkPassword(std::string_view password,
                                                            const NSURL& forFileAtURL,
                                                            NSErrorSlot error) {
  return checkStoreFile(forFileAtURL, password, error).finding;
}

bool ORLFEncryptedStore::readAtOpening(const NSURL& url, const NSData& password, bool& created,
                                       NSErrorSlot error) {
  created = isAbsent(url) && createStoreFile(url, password.text());
  if (error != nullptr) *error = nullptr;
  return !readStoreFile(url, password.text(), error).isNil();
}

std::shared_ptr<ORLFEncryptedStore> ORLFEncryptedStore::openStoreWithFileAtURL(
    const std::optional<NSURL>& url, std::string_view password, bool* created, NSErrorSlot error) {
  if (!url) return nullptr;
  return dispatch_sync(sharedEventQueue(), [&]() -> std::shared_ptr<ORLFEncryptedStore> {
    bool isCreated = false;
    if (!readAtOpening(*url, keptPassword(password), isCreated, error)) return nullptr;
    if (created != nullptr) *created = isCreated;
    return initWithFileAtURL(*url, password);
  });
}

bool ORLFEncryptedStore::openAtURL(const NSURL& url, std::string_view password, bool* created,
                                   NSErrorSlot error) {
  return dispatch_sync(sharedEventQueue(), [&] {
    bool isCreated = false;
    const NSData kept = keptPassword(password);
    if (!readAtOpening(url, kept, isCreated, error)) return false;
    observe(url, kept);
    if (created != nullptr) *created = isCreated;
    return true;
  });
}

void ORLFEncryptedStore::observe(const NSURL& url, const NSData& password) {
  const std::uint64_t opening = letGo();
  const std::weak_ptr<NSObject> self = weak_from_this();
  const auto observer = std::make_shared<ORLFFileSystemObserver>(
      url, sharedEventQueue(),
      [self, opening, url, password](NSInteger event, const std::optional<NSURL>& /*location*/) {
        if (const auto store = std::static_pointer_cast<ORLFEncryptedStore>(self.lock()))
          store->handleEvent(event, opening, url, password);
      });
  {
    const std::lock_guard guard(lock_);
    observer_ = observer;
    url_ = url;
    password_ = password;
    closed_ = false;
  }
  observer->startObserving();
}

void ORLFEncryptedStore::handleEvent(NSInteger event, std::uint64_t opening, const NSURL& url,
                                     const NSData& password) {
  const bool isChange = event == ORLFFileSystemEventChanged;
  if (isChange || event == ORLFFileSystemEventStarted) {
    id list = readStoreFile(url, password.text(), nullptr);
    if (!list.isNil() && setStore(std::move(list), opening) && isChange)
      NSNotificationCenter::defaultCenter()->postNotificationName(
          ORLFEncryptedStoreDidChangeNotification, shared_from_this());
    return;
  }
  const auto observer = this->observer();
  if (!observer || !observer->isObserving())
    NSLog(stringWithFormat("ORLEncryptedStore no longer observing file on disk: %ld", event));
}

bool ORLFEncryptedStore::closeStore(const std::shared_ptr<ORLFEncryptedStore>& store, bool remove,
                                    NSErrorSlot error) {
  return !store || store->close(remove, error);
}

bool ORLFEncryptedStore::close(bool remove, NSErrorSlot error) {
  return dispatch_sync(sharedEventQueue(), [&] {
    letGo();
    const std::optional<NSURL> url = this->url();
    if (!remove) return true;
    if (!url || !orlfRemoveItemAtURL(*NSFileManager::defaultManager(), *url, error)) return false;
    StoreLock::removeFile(*url);
    return true;
  });
}

std::uint64_t ORLFEncryptedStore::letGo() {
  std::shared_ptr<ORLFFileSystemObserver> observer;
  id store;
  std::uint64_t opening = 0;
  {
    const std::lock_guard guard(lock_);
    observer.swap(observer_);
    std::swap(store, store_);
    closed_ = true;
    opening = ++opening_;
  }
  if (observer) observer->stopObserving();
  return opening;
}

bool ORLFEncryptedStore::saveEncryptedStore(const id& list, NSErrorSlot error) {
  std::shared_ptr<ORLFFileSystemObserver> observer;
  std::optional<NSURL> url;
  NSData password;
  {
    const std::lock_guard guard(lock_);
    if (closed_) return false;
    store_ = list;
    observer = observer_;
    url = url_;
    password = password_;
  }
  if (!url || !writeStoreFile(list, *url, password.text(), error)) return false;
  if (observer && !observer->isObserving()) {
    observer->startObserving();
    // The store was closed, or opened anew, meanwhile.
    if (this->observer() != observer) observer->stopObserving();
  }
  return true;
}

bool ORLFEncryptedStore::closed() const {
  const std::lock_guard guard(lock_);
  return closed_;
}

NSData ORLFEncryptedStore::filePassword() const {
  const std::lock_guard guard(lock_);
  return password_;
}

std::optional<NSURL> ORLFEncryptedStore::url() const {
  const std::lock_guard guard(lock_);
  return url_;
}

id ORLFEncryptedStore::store() const {
  const std::lock_guard guard(lock_);
  return store_;
}

/// False, and the content stays, once another file was opened or this one closed.
bool ORLFEncryptedStore::setStore(id list, std::uint64_t opening) {
  const std::lock_guard guard(lock_);
  if (opening != opening_) return false;
  std::swap(store_, list);
  return true;
}

std::shared_ptr<ORLFFileSystemObserver> ORLFEncryptedStore::observer() const {
  const std::lock_guard guard(lock_);
  return observer_;
}

std::shared_ptr<NSError> ORLFEncryptedStore::errorForKeychainStatus(std::int32_t status) {
  if (status != errSecAuthFailed)
    return NSError::errorWithDomain(
        ORLFSecurityErrorDomain, status,
        NSDictionary::dictionaryWithEntries(
            {{NSLocalizedDescriptionKey, localizedText("Communicating with Keychain failed.")},
             {NSLocalizedRecoverySuggestionErrorKey,
              localizedText("Make sure the Keychain is unlocked or try restarting.")}}));
  return NSError::errorWithDomain(
      ORLFSecurityErrorDomain, status,
      NSDictionary::dictionaryWithEntries(
          {{NSLocalizedDescriptionKey,
            localizedText("The information could not be saved in the Keychain.")},
           {NSLocalizedRecoverySuggestionErrorKey,
            localizedText(
                "Make sure the Keychain is unlocked, the app has been granted access and/or "
                "restarting.")},
           {NSLocalizedFailureReasonErrorKey,
            localizedText("The application is not authorized to access the Keychain.")},
           {NSLocalizedFailureErrorKey,
            localizedText("The information was not saved in the Keychain.")}}));
}

}  // namespace ORLFoundation
