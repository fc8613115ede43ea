#include <ORLFoundation/security/store/internal/PasswordEntries.h>

#include <ORLFoundation/platform/files/NSFileErrors.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/security/store/ORLFEncryptedStore.h>
#include <ORLFoundation/security/store/internal/PasswordKeychain.h>

#include <cstdint>
#include <utility>

namespace ORLFoundation::internal::store {
namespace {

constexpr const char* kPasswordsKey = "passwords";
constexpr const char* kUserKey = "user";
constexpr const char* kContextKey = "context";
constexpr const char* kPasswordKey = "password";
constexpr const char* kKeychainKey = "keychain";
constexpr const char* kDefaultKeychain = "DEFAULT";

using Outcome = PasswordOutcome;

/// The mutable collection under a key: an immutable one is replaced by a mutable copy, an absent
/// one made. null for a value of another kind.
template <class Mutable, class Plain>
std::shared_ptr<Mutable> mutableMember(NSMutableDictionary& owner, const std::string& key) {
  const id member = owner.objectForKey(key);
  if (auto found = member.as<Mutable>()) return found;
  const auto plain = member.as<Plain>();
  if (member && !plain) return nullptr;
  auto made =
      plain ? std::static_pointer_cast<Mutable>(plain->mutableCopy()) : std::make_shared<Mutable>();
  owner.setObject(made, key);
  return made;
}

/// null where something else stands in their place.
std::shared_ptr<NSMutableArray> takeEntries(const std::shared_ptr<NSMutableDictionary>& content,
                                            const std::string& service) {
  if (!content) return std::make_shared<NSMutableArray>();
  const auto passwords = mutableMember<NSMutableDictionary, NSDictionary>(*content, kPasswordsKey);
  if (!passwords) return nullptr;
  return mutableMember<NSMutableArray, NSArray>(*passwords, service);
}

bool matches(const NSDictionary& entry, const std::string& user, const NSData& context) {
  return userOf(entry) == user && entry.objectForKey(kContextKey).as<NSData>() == context;
}

/// The first entry that matches, mutable; null where there is none.
std::shared_ptr<NSMutableDictionary> findEntry(NSMutableArray& entries,
                                               const PasswordChange& change) {
  const std::vector<id> snapshot = entries.members();
  for (NSUInteger index = 0; index < snapshot.size(); ++index) {
    const auto entry = snapshot[index].as<NSDictionary>();
    if (!entry || !matches(*entry, change.user, change.context)) continue;
    if (auto found = snapshot[index].as<NSMutableDictionary>()) return found;
    auto made = std::static_pointer_cast<NSMutableDictionary>(entry->mutableCopy());
    entries.replaceObjectAtIndex(index, made);
    return made;
  }
  return nullptr;
}

/// Sets a password in the keychain; `error` takes what its status tells.
bool updateKeychain(const PasswordChange& change, std::shared_ptr<const NSError>& error) {
  std::int32_t status = 0;
  const bool isDone =
      PasswordKeychain::current()->update(*change.password, change.user, change.service, &status);
  if (!isDone) error = ORLFEncryptedStore::errorForKeychainStatus(status);
  return isDone;
}

Outcome addEntry(NSMutableArray& entries, const PasswordChange& change) {
  Outcome outcome{true, nullptr};
  if (change.storeInKeychain) outcome.isToBeSaved = updateKeychain(change, outcome.error);
  if (!outcome.isToBeSaved) return outcome;
  const auto entry = std::make_shared<NSMutableDictionary>(
      NSDictionary::Entries{{kContextKey, change.context}, {kUserKey, change.user}});
  if (change.storeInKeychain) {
    entry->setObject(kDefaultKeychain, kKeychainKey);
  } else {
    entry->setObject(*change.password, kPasswordKey);
  }
  entries.addObject(entry);
  return outcome;
}

Outcome keepInFile(NSMutableDictionary& entry, const PasswordChange& change) {
  const bool differs = entry.objectForKey(kPasswordKey).as<std::string>() != change.password;
  entry.setObject(*change.password, kPasswordKey);
  entry.removeObjectForKey(kKeychainKey);
  return {differs, nullptr};
}

Outcome keepInKeychain(NSMutableDictionary& entry, const PasswordChange& change) {
  Outcome outcome;
  const auto found = PasswordKeychain::current()->find(change.user, change.service);
  if (!found) {
    outcome.isToBeSaved = updateKeychain(change, outcome.error);
  } else if (found == change.password) {
    // A plain text that must now go.
    outcome.isToBeSaved = !entry.objectForKey(kPasswordKey).isNil();
  } else {
    // Required: a failure of this one update leaves no error.
    outcome.isToBeSaved =
        PasswordKeychain::current()->update(*change.password, change.user, change.service, nullptr);
  }
  if (!outcome.isToBeSaved) return outcome;
  entry.removeObjectForKey(kPasswordKey);
  entry.setObject(kDefaultKeychain, kKeychainKey);
  return outcome;
}

Outcome damagedContent() {
  Outcome outcome;
  NSFillErrorSlot(&outcome.error, NSCocoaErrorDomain, NSFileReadCorruptFileError,
                  "The store's list of passwords is damaged.");
  return outcome;
}

}  // namespace

std::optional<std::string> userOf(const NSDictionary& entry) {
  return entry.objectForKey(kUserKey).as<std::string>();
}

std::optional<std::string> passwordOf(const NSDictionary& entry, const std::string& user,
                                      const std::string& service) {
  if (auto password = entry.objectForKey(kPasswordKey).as<std::string>()) return password;
  if (entry.objectForKey(kKeychainKey).isNil()) return std::nullopt;
  return PasswordKeychain::current()->find(user, service);
}

std::vector<std::shared_ptr<NSDictionary>> entriesForService(const id& content,
                                                             const std::string& service,
                                                             const std::optional<NSData>& context) {
  std::vector<std::shared_ptr<NSDictionary>> found;
  // The service is the rest of a key path: points part it, and "@" before it asks for something
  // else. Neither leads to entries, though such names are stored.
  if (!context || service.find('.') != std::string::npos || service.starts_with('@')) return found;
  const auto list = content.as<NSDictionary>();
  const auto passwords = list ? list->objectForKey(kPasswordsKey).as<NSDictionary>() : nullptr;
  const auto entries = passwords ? passwords->objectForKey(service).as<NSArray>() : nullptr;
  if (!entries) return found;
  for (const id& member : *entries) {
    auto entry = member.as<NSDictionary>();
    if (entry && entry->objectForKey(kContextKey).as<NSData>() == context)
      found.push_back(std::move(entry));
  }
  return found;
}

PasswordOutcome changePassword(const std::shared_ptr<NSMutableDictionary>& content,
                               const PasswordChange& change) {
  const auto entries = takeEntries(content, change.service);
  if (!entries) return damagedContent();
  const auto entry = findEntry(*entries, change);
  if (!entry && !change.password) return {};
  if (!entry) return addEntry(*entries, change);
  if (change.password)
    return change.storeInKeychain ? keepInKeychain(*entry, change) : keepInFile(*entry, change);
  entries->removeObject(entry);
  return {true, nullptr};
}

}  // namespace ORLFoundation::internal::store
