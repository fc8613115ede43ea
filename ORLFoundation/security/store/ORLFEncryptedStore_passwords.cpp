#include <ORLFoundation/security/store/ORLFEncryptedStore.h>

#include <ORLFoundation/platform/files/NSFileErrors.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/security/store/internal/PasswordEntries.h>
#include <ORLFoundation/security/store/internal/StoreFile.h>
#include <ORLFoundation/security/store/internal/StoreLock.h>

namespace ORLFoundation {

using namespace internal::store;

namespace {

std::string_view reasonOf(ORLFEncryptedStoreFinding finding) {
  switch (finding) {
    case ORLFEncryptedStoreDamaged:
      return "The file of the store is damaged.";
    case ORLFEncryptedStoreNotEncrypted:
      return "The file is not encrypted.";
    default:
      return "The password is wrong, or the file of the store is damaged.";
  }
}

/// A shallow copy; null for a content that is no dictionary, of which nothing is saved.
std::shared_ptr<NSMutableDictionary> mutableCopyOf(const id& content) {
  const auto dictionary = content.as<NSDictionary>();
  return dictionary ? std::static_pointer_cast<NSMutableDictionary>(dictionary->mutableCopy())
                    : nullptr;
}

/// Fills the slot, and answers false, where the change could not be made.
bool isDone(const PasswordOutcome& outcome, NSErrorSlot error) {
  return !outcome.error || NSFillErrorSlot(error, outcome.error);
}

}  // namespace

std::vector<std::string> ORLFEncryptedStore::usersForPasswordService(
    const std::string& service, const std::optional<NSData>& context) const {
  return dispatch_sync(sharedEventQueue(), [&] {
    std::vector<std::string> users;
    for (const auto& entry : entriesForService(store(), service, context))
      if (auto user = userOf(*entry)) users.push_back(*std::move(user));
    return users;
  });
}

std::optional<std::string> ORLFEncryptedStore::passwordForUser(
    const std::string& user, const std::string& service,
    const std::optional<NSData>& context) const {
  return dispatch_sync(sharedEventQueue(), [&]() -> std::optional<std::string> {
    for (const auto& entry : entriesForService(store(), service, context))
      if (userOf(*entry) == user) return passwordOf(*entry, user, service);
    return std::nullopt;
  });
}

bool ORLFEncryptedStore::setPassword(const std::optional<std::string>& password,
                                     const std::string& forUser, const std::string& service,
                                     const std::optional<NSData>& context, NSErrorSlot error) {
  return dispatch_sync(sharedEventQueue(), [&] {
    const auto content = mutableCopyOf(store());
    const PasswordOutcome outcome = changePassword(
        content, {password, forUser, service, context.value_or(noContext()), storeInKeychain()});
    return outcome.isToBeSaved ? saveEncryptedStore(content, error) : isDone(outcome, error);
  });
}

bool ORLFEncryptedStore::mergePassword(const std::optional<std::string>& password,
                                       const std::string& forUser, const std::string& service,
                                       const std::optional<NSData>& context, NSErrorSlot error) {
  while (true) {
    const std::optional<NSURL> url = this->url();
    if (!url || closed()) return false;
    // Taken before the queue is entered, and by nobody in it: no one waits for the other.
    const StoreLock lock(*url, error);
    if (!lock.isHeld()) return false;
    const auto isMerged = dispatch_sync(sharedEventQueue(), [&]() -> std::optional<bool> {
      // Another file was opened while this waited.
      if (this->url() != url) return std::nullopt;
      if (closed()) return false;
      return mergeIntoFile(
          *url, {password, forUser, service, context.value_or(noContext()), storeInKeychain()},
          error);
    });
    if (isMerged) return *isMerged;
  }
}

bool ORLFEncryptedStore::mergeIntoFile(const NSURL& url, const PasswordChange& change,
                                       NSErrorSlot error) {
  const CheckedStoreFile file = checkStoreFile(url, filePassword().text(), error);
  if (file.finding == ORLFEncryptedStoreUnreadable) return false;
  if (file.finding != ORLFEncryptedStoreOpens)
    return NSFillErrorSlot(error, NSCocoaErrorDomain, NSFileReadCorruptFileError,
                           reasonOf(file.finding));
  const PasswordOutcome outcome = changePassword(file.content.as<NSMutableDictionary>(), change);
  return outcome.isToBeSaved ? saveEncryptedStore(file.content, error) : isDone(outcome, error);
}

}  // namespace ORLFoundation
