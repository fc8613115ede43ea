#include <ORLFoundation/platform/store/internal/StoreFile.h>

#include <ORLFoundation/platform/files/FileCalls.h>
#include <ORLFoundation/platform/files/FileFailure.h>
#include <ORLFoundation/platform/files/NSFileErrors.h>
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>
#include <ORLFoundation/platform/store/NSPersistentStoreCoordinator.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <span>
#include <string_view>
#include <utility>

namespace ORLFoundation::internal::store {
namespace {

using files::FileCalls;
using files::FileWork;
using files::fillErrorSlot;
using files::OpenFile;

constexpr std::string_view kMagic("SQLite format 3\0", 16);
constexpr std::size_t kHeaderBytes = 100;
constexpr std::size_t kWriteVersionAt = 18;
constexpr std::byte kWriteAhead{2};
constexpr int kMostBytes = 16 << 20;  // of one value; such metadata has a few thousand
constexpr int kStepsBetweenLooks = 1000000, kMostLooks = 50;

constexpr const char* kTableQuery =
    "SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = 'Z_METADATA'";
constexpr const char* kRowQuery = "SELECT Z_VERSION, Z_UUID, Z_PLIST FROM Z_METADATA";

/// The path as an address of the database library.
std::string addressOf(const std::string& path, bool isSettled) {
  std::string address(NSURL::fileURLWithPath(path).absoluteString());
  return address + (isSettled ? "?mode=ro&immutable=1" : "?mode=ro");
}

bool isAbsentOrEmpty(const std::string& path) {
  struct stat status {};
  if (FileCalls::system()->status(AT_FDCWD, path, status)) return status.st_size == 0;
  return errno == ENOENT;
}

/// Ends what a damaged file would keep going for ever.
int countLooks(void* looks) { return ++*static_cast<int*>(looks) > kMostLooks ? 1 : 0; }

std::string_view textOf(sqlite3_stmt* statement, int column) {
  const auto* text = reinterpret_cast<const char*>(::sqlite3_column_text(statement, column));
  return {text, static_cast<std::size_t>(::sqlite3_column_bytes(statement, column))};
}

}  // namespace

bool StoreFile::failWithResult(int result, NSErrorSlot error) const {
  const int kind = result & 0xff;
  const bool isOther = kind == SQLITE_NOTADB || kind == SQLITE_CORRUPT || kind == SQLITE_TOOBIG;
  const NSInteger code =
      isOther ? NSInteger{NSFileReadCorruptFileError} : NSInteger{NSFileReadUnknownError};
  const auto cause = NSError::errorWithDomain(
      NSSQLiteErrorDomain, result,
      NSDictionary::dictionaryWithEntries({{NSLocalizedDescriptionKey, ::sqlite3_errstr(result)}}));
  return NSFillErrorSlot(
      error, NSError::errorWithDomain(
                 NSCocoaErrorDomain, code,
                 NSDictionary::dictionaryWithEntries(
                     {{NSLocalizedDescriptionKey, path_ + ": " + ::sqlite3_errstr(result)},
                      {NSUnderlyingErrorKey, cause}})));
}

bool StoreFile::failAsOtherFormat(const std::string& reason, NSErrorSlot error) const {
  return NSFillErrorSlot(error, NSCocoaErrorDomain, NSFileReadCorruptFileError,
                         path_ + ": " + reason);
}

/// Opens files alone: a pipe would hold the process.
bool StoreFile::looksLikeStore(NSErrorSlot error) {
  FileCalls& calls = *FileCalls::system();
  const OpenFile place(calls, calls.open(AT_FDCWD, path_, O_PATH));
  struct stat status {};
  if (!place.isOpen() || !calls.status(place.number(), status))
    return fillErrorSlot(error, {FileWork::Read, errno, path_});
  if (!S_ISREG(status.st_mode))
    return fillErrorSlot(error, {FileWork::Read, EINVAL, path_, "it is not a file"});
  const OpenFile file(calls, calls.open(AT_FDCWD, path_, O_RDONLY | O_NONBLOCK));
  std::array<std::byte, kHeaderBytes> header{};
  const ssize_t length = file.isOpen() ? calls.read(file.number(), header, 0) : -1;
  if (length < 0) return fillErrorSlot(error, {FileWork::Read, errno, path_});
  const std::string_view text(reinterpret_cast<const char*>(header.data()), kMagic.size());
  if (static_cast<std::size_t>(length) < kHeaderBytes || text != kMagic)
    return failAsOtherFormat("it is not an SQLite database", error);
  isSettled_ = header[kWriteVersionAt] == kWriteAhead && isAbsentOrEmpty(path_ + "-wal");
  return true;
}

bool StoreFile::open(NSErrorSlot error) {
  constexpr int kFlags = SQLITE_OPEN_READONLY | SQLITE_OPEN_URI;
  sqlite3* database = nullptr;
  const int result =
      ::sqlite3_open_v2(addressOf(path_, isSettled_).c_str(), &database, kFlags, nullptr);
  database_.reset(database);
  if (result != SQLITE_OK) return failWithResult(result, error);
  ::sqlite3_extended_result_codes(database, 1);
  ::sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  ::sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  ::sqlite3_limit(database, SQLITE_LIMIT_LENGTH, kMostBytes);
  return true;
}

StoreFile::Statement StoreFile::prepare(const char* sql, NSErrorSlot error) {
  sqlite3_stmt* statement = nullptr;
  const int result = ::sqlite3_prepare_v2(database_.get(), sql, -1, &statement, nullptr);
  if (result == SQLITE_OK) return Statement(statement);
  if ((result & 0xff) == SQLITE_ERROR) {  // a column is missing, or the table is a wreck
    failAsOtherFormat(::sqlite3_errmsg(database_.get()), error);
  } else {
    failWithResult(result, error);
  }
  return nullptr;
}

bool StoreFile::hasTable(NSErrorSlot error) {
  const Statement statement = prepare(kTableQuery, error);
  if (!statement) return false;
  const int result = ::sqlite3_step(statement.get());
  if (result == SQLITE_ROW) return true;
  return result == SQLITE_DONE ? failAsOtherFormat("it holds no metadata of a store", error)
                               : failWithResult(result, error);
}

std::optional<StoreFile::Row> StoreFile::row(NSErrorSlot error) {
  const Statement statement = prepare(kRowQuery, error);
  if (!statement) return std::nullopt;
  int result = ::sqlite3_step(statement.get());
  std::optional<Row> row;
  if (result == SQLITE_ROW) {
    const int plist = ::sqlite3_column_type(statement.get(), 2);
    const bool isMetadata = ::sqlite3_column_type(statement.get(), 0) == SQLITE_INTEGER &&
                            ::sqlite3_column_type(statement.get(), 1) == SQLITE_TEXT &&
                            (plist == SQLITE_BLOB || plist == SQLITE_NULL);
    if (isMetadata) row = Row{std::string(textOf(statement.get(), 1)), std::nullopt};
    if (row && plist == SQLITE_BLOB) row->plist = NSData(textOf(statement.get(), 2));
    result = ::sqlite3_step(statement.get());
  }
  if (result == SQLITE_DONE && row) return row;
  if (result == SQLITE_DONE || result == SQLITE_ROW) {
    failAsOtherFormat("its metadata is not one row of a number, a text and data", error);
  } else {
    failWithResult(result, error);
  }
  return std::nullopt;
}

std::shared_ptr<NSDictionary> StoreFile::metadata(NSErrorSlot error) {
  if (!looksLikeStore(error) || !open(error)) return nullptr;
  int looks = 0;
  ::sqlite3_progress_handler(database_.get(), kStepsBetweenLooks, &countLooks, &looks);
  if (!hasTable(error)) return nullptr;
  const auto found = row(error);
  if (!found) return nullptr;
  const auto metadata = std::make_shared<NSMutableDictionary>();
  if (found->plist) {
    const auto list =
        NSPropertyListSerialization::propertyListWithData(*found->plist, 0).as<NSDictionary>();
    if (!list) {
      failAsOtherFormat("its metadata is no property list", error);
      return nullptr;
    }
    metadata->addEntriesFromDictionary(*list);
  }
  if (!metadata->objectForKey(NSStoreTypeKey))
    metadata->setObject(NSSQLiteStoreType, NSStoreTypeKey);
  metadata->setObject(found->identifier, NSStoreUUIDKey);
  return metadata;
}

}  // namespace ORLFoundation::internal::store
