/// What a store file tells of itself: the metadata of object stores in SQLite.
///
///     std::shared_ptr<const NSError> error;
///     const auto metadata = NSPersistentStoreCoordinator::metadataForPersistentStoreOfType(
///         NSSQLiteStoreType, url, nullptr, &error);
///     if (metadata) show(metadata->objectForKey(NSStoreUUIDKey));
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <functional>
#include <memory>
#include <string_view>

namespace ORLFoundation {

namespace internal::store {
/// Bytes of their own, so that the constant can be told from texts of the same characters.
inline constexpr char kSQLiteStoreType[] = "SQLite";
}  // namespace internal::store

/// The type of stores in SQLite, known by its identity: `NSIsSQLiteStoreType`.
inline constexpr std::string_view NSSQLiteStoreType = internal::store::kSQLiteStoreType;
/// Whether a type is the constant itself and not another text of the same characters.
[[nodiscard]] inline bool NSIsSQLiteStoreType(std::string_view type) noexcept {
  return type.data() == NSSQLiteStoreType.data() && type == NSSQLiteStoreType;
}

inline constexpr std::string_view NSStoreTypeKey = "NSStoreType";
inline constexpr std::string_view NSStoreUUIDKey = "NSStoreUUID";

/// Errors of the database library, by its numbers, extended ones too (5: locked by a writer). They
/// stand under `NSUnderlyingErrorKey` of the error that is told.
inline constexpr std::string_view NSSQLiteErrorDomain = "NSSQLiteErrorDomain";

/// The code of `NSCocoaErrorDomain` for types of stores that are not known.
inline constexpr NSInteger NSPersistentStoreInvalidTypeError = 134000;

class NSPersistentStoreCoordinator {
 public:
  /// `metadataForPersistentStoreOfType:URL:options:error:`  The metadata under its own keys, those
  /// of applications among them, with the store's identifier and its type. Options mean nothing.
  /// The file is opened for reading alone and is never changed. null with an error of
  /// `NSCocoaErrorDomain`: 260 for no file, 257 for one that may not be read, 259 for one that is
  /// no store, 256 for one that cannot be read as it stands (as after a crash), 262 for other
  /// addresses, 134000 for other types than "SQLite".
  [[nodiscard]] static std::shared_ptr<NSDictionary> metadataForPersistentStoreOfType(
      std::string_view type, const NSURL& url, const std::shared_ptr<NSDictionary>& options,
      NSErrorSlot error = nullptr);
};

/// Does the work of `metadataForPersistentStoreOfType`.
using NSStoreMetadataReader = std::function<std::shared_ptr<NSDictionary>(
    std::string_view type, const NSURL& url, const std::shared_ptr<NSDictionary>& options,
    NSErrorSlot error)>;
/// Replaces the reader and gives back the one before it; an empty one stands for the one that is
/// told of above. Safe on any thread.
NSStoreMetadataReader NSSetStoreMetadataReader(NSStoreMetadataReader reader);

}  // namespace ORLFoundation
