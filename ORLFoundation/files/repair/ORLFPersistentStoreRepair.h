/// Store files that a crash has left behind: their metadata after a repair, and whether files of
/// write-ahead belong to them. The caller must not have the store open for writing meanwhile.
///
///     const auto metadata = orlfMetadataForPersistentStoreOfType(NSSQLiteStoreType, url, &error);
///     const bool hasSideFiles = orlfJournalModeForSQLPersistentStoreAtURL(url) ==
///                               ORLFPersistentStoreJournalModeWAL;
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/store/NSPersistentStoreCoordinator.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <memory>
#include <string_view>

namespace ORLFoundation {

enum ORLFPersistentStoreJournalMode : NSUInteger {
  ORLFPersistentStoreJournalModeUnknown = 0,
  ORLFPersistentStoreJournalModeWAL = 1,
  ORLFPersistentStoreJournalModeDelete = 2,
};

/// What the database library calls the two modes.
inline constexpr char kORLFPersistentStoreJournalModeWALChars[] = "wal";
inline constexpr char kORLFPersistentStoreJournalModeDeleteChars[] = "delete";

/// `orlfMetadataForPersistentStoreOfType:URL:error:`  The metadata of a store. Where the type is
/// the constant `NSSQLiteStoreType` itself, there is no metadata and the error is 256 or 259 of
/// `NSCocoaErrorDomain`, the file is opened for writing once, so that the database library brings
/// it to a consistent state, and its metadata is asked for again; a line of the log says so. null
/// with the last error, or with the first one where the file cannot be opened. The slot is nil
/// after success.
///
/// The repair goes by the address's text as it stands, which the database library reads: a query
/// such as "?mode=memory" has its meaning there, and an address of another host is refused.
[[nodiscard]] std::shared_ptr<NSDictionary> orlfMetadataForPersistentStoreOfType(
    std::string_view type, const NSURL& url, NSErrorSlot error = nullptr);

/// `orlfJournalModeForSQLPersistentStoreAtURL:error:`  The mode of a store's journal, unknown for
/// what cannot be read and for every other mode. The slot is never touched. Asking changes nothing
/// in a file; where there is none, the database library makes an empty one.
[[nodiscard]] ORLFPersistentStoreJournalMode orlfJournalModeForSQLPersistentStoreAtURL(
    const NSURL& url, NSErrorSlot error = nullptr);

}  // namespace ORLFoundation
