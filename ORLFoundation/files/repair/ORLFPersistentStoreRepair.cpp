#include <ORLFoundation/files/repair/ORLFPersistentStoreRepair.h>

#include <ORLFoundation/platform/files/NSFileErrors.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/store/SQLiteCalls.h>

#include <cstring>

namespace ORLFoundation {
namespace {

using internal::store::kSQLiteDone;
using internal::store::kSQLiteRow;
using internal::store::SQLiteCalls;

using Error = std::shared_ptr<const NSError>;

bool isOfDamage(const Error& error) {
  return error && error->domain() == NSCocoaErrorDomain &&
         (error->code() == NSFileReadUnknownError || error->code() == NSFileReadCorruptFileError);
}

/// Reads the list of tables, for the sake of what opening and reading do to the file.
bool openForRepair(const NSURL& url) {
  const auto calls = SQLiteCalls::current();
  sqlite3* database = nullptr;
  if (calls->open(url.absoluteString(), database) != kSQLiteDone) return false;
  sqlite3_stmt* statement = nullptr;
  static_cast<void>(calls->prepare(database, "SELECT * FROM sqlite_master", -1, statement));
  static_cast<void>(calls->step(statement));
  calls->finalize(statement);
  calls->close(database);
  return true;
}

ORLFPersistentStoreJournalMode modeOf(const char* text) {
  if (text == nullptr) return ORLFPersistentStoreJournalModeUnknown;
  if (std::strcmp(text, kORLFPersistentStoreJournalModeWALChars) == 0)
    return ORLFPersistentStoreJournalModeWAL;
  if (std::strcmp(text, kORLFPersistentStoreJournalModeDeleteChars) == 0)
    return ORLFPersistentStoreJournalModeDelete;
  return ORLFPersistentStoreJournalModeUnknown;
}

}  // namespace

std::shared_ptr<NSDictionary> orlfMetadataForPersistentStoreOfType(std::string_view type,
                                                                   const NSURL& url,
                                                                   NSErrorSlot error) {
  Error failure;
  auto metadata =
      NSPersistentStoreCoordinator::metadataForPersistentStoreOfType(type, url, nullptr, &failure);
  if (!metadata && NSIsSQLiteStoreType(type) && isOfDamage(failure)) {
    NSLog("Detected damaged file. Attempting repairs...");
    if (openForRepair(url)) {
      failure = nullptr;
      metadata = NSPersistentStoreCoordinator::metadataForPersistentStoreOfType(type, url, nullptr,
                                                                                &failure);
    }
  }
  if (error != nullptr) *error = failure;
  return metadata;
}

ORLFPersistentStoreJournalMode orlfJournalModeForSQLPersistentStoreAtURL(const NSURL& url,
                                                                         NSErrorSlot) {
  const auto calls = SQLiteCalls::current();
  sqlite3* database = nullptr;
  if (calls->open(url.absoluteString(), database) != kSQLiteDone)
    return ORLFPersistentStoreJournalModeUnknown;
  sqlite3_stmt* statement = nullptr;
  static_cast<void>(calls->prepare(database, "PRAGMA journal_mode", -1, statement));
  auto mode = ORLFPersistentStoreJournalModeUnknown;
  if (calls->step(statement) == kSQLiteRow && calls->columnCount(statement) == 1)
    mode = modeOf(calls->columnText(statement, 0));
  calls->finalize(statement);
  calls->close(database);
  return mode;
}

}  // namespace ORLFoundation
