#include <ORLFoundation/platform/store/NSPersistentStoreCoordinator.h>

#include <ORLFoundation/platform/files/NSFileErrors.h>
#include <ORLFoundation/platform/store/NSPersistentStoreCoordinator_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tests/support/ChildProcess.h>
#include <tests/support/TemporaryFolder.h>

#include <filesystem>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using Error = std::shared_ptr<const NSError>;

class StoreMetadata : public orlftest::TemporaryFolderTest {
 protected:
  std::shared_ptr<NSDictionary> metadataOf(const NSURL& url,
                                           std::string_view type = NSSQLiteStoreType) {
    error_ = nullptr;
    return NSPersistentStoreCoordinator::metadataForPersistentStoreOfType(type, url, nullptr,
                                                                          &error_);
  }
  std::shared_ptr<NSDictionary> metadataOf(const std::string& name) {
    return metadataOf(NSURL::fileURLWithPath(path(name)));
  }
  /// The code of the error that the metadata of a file fails with; 0 where it does not.
  NSInteger failureOf(const std::string& name) {
    if (metadataOf(name)) return 0;
    EXPECT_EQ(error_->domain(), NSCocoaErrorDomain);
    return error_->code();
  }

  Error error_;
};

TEST_F(StoreMetadata, GivesTheListWithTheIdentifierAndTheType) {
  for (const char* mode : {"delete", "wal"}) {
    const std::string name = std::string(mode) + " store?#%41.sqlite";
    makeStore(path(name), mode);
    const auto metadata = metadataOf(name);
    ASSERT_NE(metadata, nullptr) << error_->localizedDescription();
    EXPECT_EQ(*metadata->objectForKey(NSStoreUUIDKey).as<std::string>(), kStoreIdentifier);
    EXPECT_EQ(*metadata->objectForKey(NSStoreTypeKey).as<std::string>(), "SQLite");
    EXPECT_EQ(*metadata->objectForKey("Owner").as<std::string>(), "Ann");
    EXPECT_EQ(metadata->count(), 4U);
    EXPECT_EQ(error_, nullptr);
  }
}

TEST_F(StoreMetadata, TakesTheTypeByItsText) {
  makeStore(path("a.sqlite"), "delete");
  const std::string text(NSSQLiteStoreType);
  EXPECT_NE(metadataOf(NSURL::fileURLWithPath(path("a.sqlite")), text), nullptr);
  EXPECT_EQ(metadataOf(NSURL::fileURLWithPath(path("a.sqlite")), "XML"), nullptr);
  EXPECT_EQ(error_->code(), NSPersistentStoreInvalidTypeError);
}

TEST_F(StoreMetadata, KnowsTheConstantFromATextOfItsCharacters) {
  const std::string text(NSSQLiteStoreType);
  EXPECT_TRUE(NSIsSQLiteStoreType(NSSQLiteStoreType));
  EXPECT_FALSE(NSIsSQLiteStoreType(text));
  EXPECT_FALSE(NSIsSQLiteStoreType("SQLite"));
  EXPECT_FALSE(NSIsSQLiteStoreType(NSSQLiteStoreType.substr(0, 3)));
}

TEST_F(StoreMetadata, HasNoMoreThanIdentifierAndTypeWhereTheListIsNull) {
  makeStore(path("a.sqlite"), "delete", std::nullopt);
  const auto metadata = metadataOf("a.sqlite");
  ASSERT_NE(metadata, nullptr);
  EXPECT_EQ(metadata->count(), 2U);
  EXPECT_EQ(*metadata->objectForKey(NSStoreTypeKey).as<std::string>(), "SQLite");
}

TEST_F(StoreMetadata, ReadsWhatIsOnlyWrittenAhead) {
  makeStore(path("a.sqlite"), "wal");
  StoreDatabase writer(path("a.sqlite"));
  writer.run("UPDATE Z_METADATA SET Z_UUID = 'ahead'");
  ASSERT_GT(fs::file_size(path("a.sqlite-wal")), 0U);
  const auto metadata = metadataOf("a.sqlite");
  ASSERT_NE(metadata, nullptr) << error_->localizedDescription();
  EXPECT_EQ(*metadata->objectForKey(NSStoreUUIDKey).as<std::string>(), "ahead");
}

TEST_F(StoreMetadata, ChangesNothing) {
  for (const char* mode : {"delete", "wal"}) {
    makeStore(path("a.sqlite"), mode);
    const std::string bytes = read("a.sqlite");
    const auto before = names();
    EXPECT_NE(metadataOf("a.sqlite"), nullptr);
    EXPECT_EQ(read("a.sqlite"), bytes);
    EXPECT_EQ(names(), before);
    fs::remove(path("a.sqlite"));
  }
}

TEST_F(StoreMetadata, ReadsStoresThatMayOnlyBeRead) {
  makeStore(path("wal.sqlite"), "wal");
  makeStore(path("delete.sqlite"), "delete");
  EXPECT_EQ(
      orlftest::asOrdinaryUser(folder_,
                               [&]() -> std::string {
                                 if (::chmod(folder_.c_str(), 0500) != 0) return "no chmod";
                                 if (!metadataOf("wal.sqlite") || !metadataOf("delete.sqlite"))
                                   return error_->localizedDescription();
                                 ::chmod(path("delete.sqlite").c_str(), 0000);
                                 const NSInteger code = failureOf("delete.sqlite");
                                 ::chmod(folder_.c_str(), 0700);
                                 return std::to_string(code);
                               }),
      "257");
}

struct FileCase {
  const char* name;
  std::string bytes;
  NSInteger code;
};

TEST_F(StoreMetadata, TellsOfFilesThatAreNoStores) {
  makeStore(path("good.sqlite"), "delete");
  const std::string good = read("good.sqlite");
  const std::string magic = good.substr(0, 16);
  const FileCase rows[] = {
      {"empty", "", NSFileReadCorruptFileError},
      {"text", std::string(4096, 'x'), NSFileReadCorruptFileError},
      {"magic only", magic, NSFileReadCorruptFileError},
      {"cut header", good.substr(0, 99), NSFileReadCorruptFileError},
      {"header only", good.substr(0, 100), NSFileReadCorruptFileError},
      {"cut after the first page", good.substr(0, 4096), NSFileReadCorruptFileError},
      {"noise behind the header", good.substr(0, 100) + std::string(8000, '\x5a'),
       NSFileReadCorruptFileError},
  };
  for (const FileCase& row : rows) {
    write("file", row.bytes);
    EXPECT_EQ(failureOf("file"), row.code) << row.name;
    EXPECT_EQ(read("file"), row.bytes) << row.name;
  }
  EXPECT_EQ(failureOf("missing"), NSFileReadNoSuchFileError);
  EXPECT_EQ(failureOf("file/below"), NSFileReadNoSuchFileError);
  EXPECT_EQ(failureOf(""), NSFileReadUnknownError);
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(failureOf("pipe"), NSFileReadUnknownError);
}

struct TableCase {
  const char* name;
  const char* change;
};
constexpr TableCase kTableCases[] = {
    {"NoTable", "DROP TABLE Z_METADATA"},
    {"NoRow", "DELETE FROM Z_METADATA"},
    {"TwoRows", "INSERT INTO Z_METADATA VALUES (2, 'x', NULL)"},
    {"IdentifierIsANumber",
     "DROP TABLE Z_METADATA; CREATE TABLE Z_METADATA (Z_VERSION, Z_UUID, "
     "Z_PLIST); INSERT INTO Z_METADATA VALUES (1, 2, NULL)"},
    {"IdentifierIsNull", "UPDATE Z_METADATA SET Z_UUID = NULL"},
    {"VersionIsAText",
     "DROP TABLE Z_METADATA; CREATE TABLE Z_METADATA (Z_VERSION, Z_UUID, "
     "Z_PLIST); INSERT INTO Z_METADATA VALUES ('1', 'x', NULL)"},
    {"ListIsAText", "UPDATE Z_METADATA SET Z_PLIST = 'bplist00'"},
    {"ListIsBroken", "UPDATE Z_METADATA SET Z_PLIST = x'62706C69737430'"},
    {"ListIsAnArray", "UPDATE Z_METADATA SET Z_PLIST = '<plist><array/></plist>'"},
    {"NoColumn", "ALTER TABLE Z_METADATA RENAME COLUMN Z_PLIST TO Z_OTHER"},
    {"TableIsAView",
     "ALTER TABLE Z_METADATA RENAME TO A; CREATE VIEW Z_METADATA AS SELECT * FROM A"},
};

TEST_F(StoreMetadata, TellsOfDatabasesThatHoldNoMetadata) {
  for (const TableCase& row : kTableCases) {
    makeStore(path("a.sqlite"), "delete");
    StoreDatabase(path("a.sqlite")).run(row.change);
    EXPECT_EQ(failureOf("a.sqlite"), NSFileReadCorruptFileError) << row.name;
    fs::remove(path("a.sqlite"));
  }
}

TEST_F(StoreMetadata, ReadsBesideAWriterAndIsToldToWaitByALockedStore) {
  makeStore(path("a.sqlite"), "delete");
  StoreDatabase writer(path("a.sqlite"));
  writer.run("BEGIN IMMEDIATE");
  EXPECT_EQ(failureOf("a.sqlite"), 0);
  writer.run("COMMIT; BEGIN EXCLUSIVE");
  EXPECT_EQ(failureOf("a.sqlite"), NSFileReadUnknownError);
  const auto cause = error_->userInfo()->objectForKey(NSUnderlyingErrorKey).as<NSError>();
  EXPECT_EQ(cause->domain(), NSSQLiteErrorDomain);
  EXPECT_EQ(cause->code(), SQLITE_BUSY);
  EXPECT_EQ(cause->localizedDescription(), "database is locked");
}

TEST_F(StoreMetadata, RefusesAddressesThatNameNoFile) {
  EXPECT_EQ(metadataOf(*NSURL::URLWithString("https://example.com/a.sqlite")), nullptr);
  EXPECT_EQ(error_->code(), NSFileReadUnsupportedSchemeError);
  EXPECT_EQ(metadataOf(*NSURL::URLWithString("file:///a%00b")), nullptr);
  EXPECT_EQ(error_->code(), NSFileReadInvalidFileNameError);
}

}  // namespace
}  // namespace ORLFoundation
