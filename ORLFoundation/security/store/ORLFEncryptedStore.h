/// Passwords for services in one file under a password; the file's own entries may only say that
/// the password lies in the keychain.
///
///     const auto store = ORLFEncryptedStore::openStoreWithFileAtURL(url, "correct horse");
///     store->setStoreInKeychain(false);
///     store->setPassword("s3cret", "ann", "bank", std::nullopt);
///     store->passwordForUser("ann", "bank", ORLFEncryptedStore::noContext());  // "s3cret"
///
/// The file is an XML property list of a vector, a salt and a cipher text: AES-128 in CBC mode
/// under a key of PBKDF2 with HMAC over SHA-1, 1000 rounds. It is replaced whole, brought to the
/// disk before an operation succeeds, for the user alone where it is new, and under its own mode
/// later; a symbolic link to it stays one. A store watches its file and takes over what others
/// write.
///
/// A wrong password is hardly ever an error: the store opens, finds nothing, and what is set then
/// takes the place of all entries. `checkPassword` tells beforehand, and `mergePassword` never
/// writes under a wrong one.
///
/// All stores work on one serial queue: operations wait for what is on it, and must not be called
/// from within it. Keys, ciphers and serialized lists are wiped from memory; an open store's
/// password and its entries stay there until it is closed and gone.
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSTypes.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class ORLFFileSystemObserver;
namespace internal::store {
struct PasswordChange;
}

/// Posted on the stores' queue when the file changed and was read again, also after the store's own
/// writing. The object is the store; no user information.
inline constexpr std::string_view ORLFEncryptedStoreDidChangeNotification =
    "ORLFEncryptedStoreDidChangeNotification";

/// Key of an error's user information: the failure in a sentence, without its reason.
inline constexpr std::string_view NSLocalizedFailureErrorKey = "NSLocalizedFailure";

/// What `checkPassword` finds.
enum ORLFEncryptedStoreFinding : NSInteger {
  ORLFEncryptedStoreUnreadable = 0,  ///< No file, or none that is a property list; the error says.
  ORLFEncryptedStoreOpens = 1,       ///< The password is right and the file whole.
  ORLFEncryptedStoreDamaged = 2,     ///< The password is right; the file is damaged.
  ORLFEncryptedStoreWrongPasswordOrDamaged = 3,
  ORLFEncryptedStoreNotEncrypted = 4,  ///< A property list without any of a store's three keys.
};

class ORLFEncryptedStore final : public NSObject {
 public:
  /// `init`  Without a file; new passwords go to the keychain.
  ORLFEncryptedStore();
  /// `initWithKeychainStorage:`  Without a file.
  explicit ORLFEncryptedStore(bool keychainStorage);
  /// `initWithFileAtURL:password:`  Observes the file; the first event reads it. New passwords go
  /// to the keychain.
  [[nodiscard]] static std::shared_ptr<ORLFEncryptedStore> initWithFileAtURL(
      const NSURL& url, std::string_view password);
  /// Ends observation.
  ~ORLFEncryptedStore() override;

  /// `sharedEventQueue`  The one queue, "com.orlsoftware.foundation.ORLFEncryptedStore".
  [[nodiscard]] static const dispatch_queue_t& sharedEventQueue();
  /// `noContext`  The context of entries that have none: the bytes "NONE".
  [[nodiscard]] static const NSData& noContext();

  /// `readEncryptedPropertyListForFileAtURL:password:error:`  What the file holds, mutable. A list
  /// without vector, salt or data comes back as it stands, and so does, mostly, one under another
  /// password. nil for a file that cannot be read, or is no property list, and for one of about 256
  /// wrong passwords. On the caller's thread.
  [[nodiscard]] static id readEncryptedPropertyListForFileAtURL(const NSURL& url,
                                                                std::string_view password,
                                                                NSErrorSlot error = nullptr);
  /// `writeEncryptedPropertyList:toFileAtURL:password:error:`  false for nil, without an error, for
  /// what is no property list, and where the file cannot be written. On the caller's thread.
  [[nodiscard]] static bool writeEncryptedPropertyList(const id& propertyList,
                                                       const NSURL& toFileAtURL,
                                                       std::string_view password,
                                                       NSErrorSlot error = nullptr);
  /// Whether a password opens a file, at the cost of one derivation of a key; writes nothing. Text
  /// under damaged padding tells a right password: of files that are damaged in most places that
  /// cannot be said.
  [[nodiscard]] static ORLFEncryptedStoreFinding checkPassword(std::string_view password,
                                                               const NSURL& forFileAtURL,
                                                               NSErrorSlot error = nullptr);

  /// `openStoreWithFileAtURL:password:created:error:`  A store; makes the file where there is none.
  /// null for a nil address, and for a file that cannot be read; then `created` is left alone.
  [[nodiscard]] static std::shared_ptr<ORLFEncryptedStore> openStoreWithFileAtURL(
      const std::optional<NSURL>& url, std::string_view password, bool* created = nullptr,
      NSErrorSlot error = nullptr);
  /// `openAtURL:password:created:error:`  The same for an existing object, whose file before is let
  /// go.
  bool openAtURL(const NSURL& url, std::string_view password, bool* created = nullptr,
                 NSErrorSlot error = nullptr);
  /// `closeStore:remove:error:`  true for null.
  static bool closeStore(const std::shared_ptr<ORLFEncryptedStore>& store, bool remove,
                         NSErrorSlot error = nullptr);
  /// `close:error:`  Ends observation and forgets the entries. `remove` removes the file too: true
  /// also where it is gone, false for a store without a file.
  bool close(bool remove, NSErrorSlot error = nullptr);

  /// `saveEncryptedStore:error:`  Puts a list in place of the content and writes it. Failed writing
  /// leaves it in place. false for a store that is closed or has no file, without an error. On the
  /// caller's thread; begins observation anew where that had ended.
  bool saveEncryptedStore(const id& list, NSErrorSlot error = nullptr);

  /// `usersForPasswordService:context:`  nil for a context finds none; so do services with "." in
  /// their names or "@" before them, which the lookup takes for paths.
  [[nodiscard]] std::vector<std::string> usersForPasswordService(
      const std::string& service, const std::optional<NSData>& context) const;
  /// `passwordForUser:service:context:`  The same rules. An entry without a password of its own
  /// leads to the keychain.
  [[nodiscard]] std::optional<std::string> passwordForUser(
      const std::string& user, const std::string& service,
      const std::optional<NSData>& context) const;
  /// `setPassword:forUser:service:context:error:`  Adds, changes or, with nil, deletes an entry of
  /// the content and writes the file; what others wrote since the last event is lost. nil for a
  /// context stands for `noContext`. A password that is there already, and the deletion of what is
  /// not, are successes that write nothing. A keychain item stays where its entry is deleted.
  bool setPassword(const std::optional<std::string>& password, const std::string& forUser,
                   const std::string& service, const std::optional<NSData>& context,
                   NSErrorSlot error = nullptr);
  /// The same upon what the file holds now, with all other writers of this kind kept out meanwhile:
  /// no change of theirs is lost. Waits for whoever writes. false, with an error, and nothing is
  /// written, where the password of the store is not the file's, where the file is gone, damaged or
  /// not encrypted. The lock is a file beside the store's, ".lock" behind its name, which the
  /// kernel frees when its holder dies.
  bool mergePassword(const std::optional<std::string>& password, const std::string& forUser,
                     const std::string& service, const std::optional<NSData>& context,
                     NSErrorSlot error = nullptr);

  /// `errorForKeychainStatus:`  Of `ORLFSecurityErrorDomain`, with words of the main bundle.
  [[nodiscard]] static std::shared_ptr<NSError> errorForKeychainStatus(std::int32_t status);

  /// `storeInKeychain`  Whether new passwords go to the keychain.
  [[nodiscard]] bool storeInKeychain() const noexcept { return storeInKeychain_; }
  void setStoreInKeychain(bool storeInKeychain) noexcept { storeInKeychain_ = storeInKeychain; }
  /// `closed`
  [[nodiscard]] bool closed() const;
  /// `url`  nil until a file was opened.
  [[nodiscard]] std::optional<NSURL> url() const;
  /// `store`  The content as it was last read or written; nil before the first event.
  [[nodiscard]] id store() const;
  /// `observer`  null for a store without a file and for a closed one.
  [[nodiscard]] std::shared_ptr<ORLFFileSystemObserver> observer() const;

  [[nodiscard]] std::string className() const override { return "ORLFEncryptedStore"; }

 private:
  [[nodiscard]] static bool readAtOpening(const NSURL& url, const NSData& password, bool& created,
                                          NSErrorSlot error);
  void observe(const NSURL& url, const NSData& password);
  /// Of the opening with that number.
  void handleEvent(NSInteger event, std::uint64_t opening, const NSURL& url,
                   const NSData& password);
  std::uint64_t letGo();
  bool setStore(id list, std::uint64_t opening);
  [[nodiscard]] NSData filePassword() const;
  bool mergeIntoFile(const NSURL& url, const internal::store::PasswordChange& change,
                     NSErrorSlot error);

  std::atomic<bool> storeInKeychain_;
  mutable std::mutex lock_;  // of what follows
  bool closed_ = false;
  /// How often a file was let go: events of one before are on the queue still.
  std::uint64_t opening_ = 0;
  std::shared_ptr<ORLFFileSystemObserver> observer_;
  id store_;
  std::optional<NSURL> url_;
  NSData password_;
};

}  // namespace ORLFoundation
