/// The file of a store: a property list of "iv", "salt" and "data".
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSURL.h>
#include <ORLFoundation/security/store/ORLFEncryptedStore.h>

#include <string_view>

namespace ORLFoundation::internal::store {

/// As `readEncryptedPropertyListForFileAtURL` and `writeEncryptedPropertyList` tell.
[[nodiscard]] id readStoreFile(const NSURL& url, std::string_view password, NSErrorSlot error);
[[nodiscard]] bool writeStoreFile(const id& list, const NSURL& url, std::string_view password,
                                  NSErrorSlot error);
/// Writes a file without entries, unless something stands there by then.
[[nodiscard]] bool createStoreFile(const NSURL& url, std::string_view password);

struct CheckedStoreFile {
  ORLFEncryptedStoreFinding finding = ORLFEncryptedStoreUnreadable;
  /// The content where the file opens, a mutable dictionary.
  id content = {};
};
/// What `checkPassword` tells, and what was read meanwhile.
[[nodiscard]] CheckedStoreFile checkStoreFile(const NSURL& url, std::string_view password,
                                              NSErrorSlot error);

}  // namespace ORLFoundation::internal::store
