/// The entries of a store's content: under "passwords" a dictionary from services to lists of
/// dictionaries.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ORLFoundation::internal::store {

/// What a change is asked for.
struct PasswordChange {
  /// nil deletes.
  const std::optional<std::string>& password;
  const std::string& user;
  const std::string& service;
  NSData context;
  bool storeInKeychain;
};

struct PasswordOutcome {
  bool isToBeSaved = false;
  std::shared_ptr<const NSError> error;
};

/// Makes a change in a content; null has no entries and keeps none. Lists and entries within it are
/// changed in place.
[[nodiscard]] PasswordOutcome changePassword(const std::shared_ptr<NSMutableDictionary>& content,
                                             const PasswordChange& change);

/// The entries of a service whose contexts are equal to one, in order. None for a nil context, for
/// a service that a key path does not lead to, and where the content is not as told.
[[nodiscard]] std::vector<std::shared_ptr<NSDictionary>> entriesForService(
    const id& content, const std::string& service, const std::optional<NSData>& context);

/// The account name of an entry; nil where it has none.
[[nodiscard]] std::optional<std::string> userOf(const NSDictionary& entry);
/// The password of an entry, looked up in the keychain where the entry says so.
[[nodiscard]] std::optional<std::string> passwordOf(const NSDictionary& entry,
                                                    const std::string& user,
                                                    const std::string& service);

}  // namespace ORLFoundation::internal::store
