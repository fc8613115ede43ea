/// What tests of encrypted stores share: a scripted keychain, and the waiting for what a file's
/// events bring.
#pragma once

#include <ORLFoundation/files/watching/ORLFFileSystemObserver_testing.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/security/store/ORLFEncryptedStore.h>
#include <ORLFoundation/security/store/internal/PasswordKeychain.h>
#include <tests/support/TemporaryFolder.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orlftest {

/// Holds passwords under "user@service", refuses updates with a status where one is set, and keeps
/// a list of what it was asked.
class ScriptedKeychain final : public ORLFoundation::internal::store::PasswordKeychain {
 public:
  std::optional<std::string> find(const std::string& user, const std::string& service) override {
    calls.push_back("find " + user + "@" + service);
    const auto found = passwords.find(user + "@" + service);
    return found == passwords.end() ? std::nullopt : std::optional(found->second);
  }
  bool update(const std::string& password, const std::string& user, const std::string& service,
              std::int32_t* status) override {
    calls.push_back((status != nullptr ? "update " : "update silently ") + user + "@" + service);
    if (status != nullptr) *status = refusal;
    if (refusal == 0) passwords[user + "@" + service] = password;
    return refusal == 0;
  }

  std::map<std::string, std::string> passwords;
  std::vector<std::string> calls;
  std::int32_t refusal = 0;
};

/// The context of entries that have none, as an argument.
inline std::optional<ORLFoundation::NSData> noContext() {
  return ORLFoundation::ORLFEncryptedStore::noContext();
}

/// A folder, a keychain, and stores in the folder.
class EncryptedStoreTest : public TemporaryFolderTest {
 protected:
  EncryptedStoreTest() : TemporaryFolderTest(parentInMemory()) {}

  using Store = ORLFoundation::ORLFEncryptedStore;

  [[nodiscard]] ORLFoundation::NSURL url(const std::string& name = "store") const {
    return ORLFoundation::NSURL::fileURLWithPath(
        (std::filesystem::canonical(folder_) / name).string());
  }
  [[nodiscard]] std::shared_ptr<Store> open(const std::string& password = "pw",
                                            const std::string& name = "store") const {
    const auto store = Store::openStoreWithFileAtURL(url(name), password);
    if (store) store->setStoreInKeychain(false);
    return store;
  }
  /// What the file holds under a password.
  [[nodiscard]] ORLFoundation::id contentOf(const std::string& password = "pw",
                                            const std::string& name = "store") const {
    return Store::readEncryptedPropertyListForFileAtURL(url(name), password);
  }
  /// Returns when what has happened to the files so far has reached their stores.
  static void waitForStores() { waitForEvents(Store::sharedEventQueue()); }

  const std::shared_ptr<ScriptedKeychain> keychain_ = std::make_shared<ScriptedKeychain>();

 private:
  const ORLFoundation::Replaced<std::shared_ptr<ORLFoundation::internal::store::PasswordKeychain>>
      installed_{&ORLFoundation::internal::store::PasswordKeychain::exchange, keychain_};
};

/// A content whose one service has the entries.
inline ORLFoundation::id contentWith(
    const std::string& service,
    const std::vector<std::shared_ptr<ORLFoundation::NSMutableDictionary>>& entries) {
  using namespace ORLFoundation;
  const auto list = std::make_shared<NSMutableArray>();
  for (const auto& entry : entries) list->addObject(entry);
  const auto passwords = std::make_shared<NSMutableDictionary>();
  passwords->setObject(list, service);
  const auto content = std::make_shared<NSMutableDictionary>();
  content->setObject(passwords, "passwords");
  return content;
}

/// An entry without a context; absent parts are left out.
inline std::shared_ptr<ORLFoundation::NSMutableDictionary> entryOf(
    const std::string& user, const std::optional<std::string>& password, bool isInKeychain) {
  using namespace ORLFoundation;
  const auto entry = std::make_shared<NSMutableDictionary>(
      NSDictionary::Entries{{"user", user}, {"context", ORLFEncryptedStore::noContext()}});
  if (password) entry->setObject(*password, "password");
  if (isInKeychain) entry->setObject("DEFAULT", "keychain");
  return entry;
}

}  // namespace orlftest
