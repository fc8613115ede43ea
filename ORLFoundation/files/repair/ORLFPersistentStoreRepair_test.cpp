#include <ORLFoundation/files/repair/ORLFPersistentStoreRepair.h>

#include <ORLFoundation/platform/files/NSFileErrors.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/store/NSPersistentStoreCoordinator_testing.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <tests/support/TemporaryFolder.h>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <new>
#include <random>
#include <thread>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using Error = std::shared_ptr<const NSError>;

constexpr const char* kRepairLine = "Detected damaged file. Attempting repairs...";

class ORLFPersistentStoreRepairOfFiles : public orlftest::TemporaryFolderTest {
 protected:
  ORLFPersistentStoreRepairOfFiles() : TemporaryFolderTest(orlftest::parentInMemory()) {}
  [[nodiscard]] NSURL url(const std::string& name) const {
    return NSURL::fileURLWithPath(path(name));
  }
};

TEST_F(ORLFPersistentStoreRepairOfFiles, GivesTheMetadataOfAGoodStoreWithoutAWord) {
  makeStore(path("a.sqlite"), "wal");
  const LogCapture log;
  Error error = NSError::errorWithDomain("before", 1);
  const auto metadata =
      orlfMetadataForPersistentStoreOfType(NSSQLiteStoreType, url("a.sqlite"), &error);
  ASSERT_NE(metadata, nullptr);
  EXPECT_EQ(*metadata->objectForKey(NSStoreUUIDKey).as<std::string>(), kStoreIdentifier);
  EXPECT_EQ(error, nullptr);
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ORLFPersistentStoreRepairOfFiles, TriesOnceAndTellsTheSecondErrorOfANoStore) {
  write("noise", std::string(2000, 'x'));
  const LogCapture log;
  Error error;
  EXPECT_EQ(orlfMetadataForPersistentStoreOfType(NSSQLiteStoreType, url("noise"), &error), nullptr);
  EXPECT_EQ(error->code(), NSFileReadCorruptFileError);
  EXPECT_THAT(log.lines(), ElementsAre(kRepairLine));
  EXPECT_EQ(read("noise"), std::string(2000, 'x'));
}

TEST_F(ORLFPersistentStoreRepairOfFiles, RepairsNeitherAMissingFileNorAnotherType) {
  const LogCapture log;
  write("noise", "x");
  const std::string equalText(NSSQLiteStoreType);
  EXPECT_EQ(orlfMetadataForPersistentStoreOfType(NSSQLiteStoreType, url("missing")), nullptr);
  EXPECT_EQ(orlfMetadataForPersistentStoreOfType(equalText, url("noise")), nullptr);
  EXPECT_EQ(orlfMetadataForPersistentStoreOfType("XML", url("noise")), nullptr);
  EXPECT_THAT(log.lines(), IsEmpty());
  EXPECT_THAT(names(), ElementsAre("noise"));
}

TEST_F(ORLFPersistentStoreRepairOfFiles, KnowsTwoModesOfJournals) {
  struct {
    const char* mode;
    ORLFPersistentStoreJournalMode expected;
  } const rows[] = {
      {"wal", ORLFPersistentStoreJournalModeWAL},
      {"delete", ORLFPersistentStoreJournalModeDelete},
      {"truncate", ORLFPersistentStoreJournalModeDelete},  // a mode of connections, not of files
      {"persist", ORLFPersistentStoreJournalModeDelete},
      {"memory", ORLFPersistentStoreJournalModeDelete},
  };
  for (const auto& row : rows) {
    const std::string name = std::string(row.mode) + ".sqlite";
    makeStore(path(name), row.mode);
    const std::string bytes = read(name);
    EXPECT_EQ(orlfJournalModeForSQLPersistentStoreAtURL(url(name)), row.expected) << row.mode;
    EXPECT_EQ(read(name), bytes);
  }
}

/// Forms of addresses as the database library reads them, each of a store in write-ahead mode.
TEST_F(ORLFPersistentStoreRepairOfFiles, PassesTheAddressOnAsItIs) {
  const std::string name = "a b?c#d%e.sqlite", plain = path("plain.sqlite");
  makeStore(path(name), "wal");
  makeStore(plain, "wal");
  struct {
    const char* what;
    std::string address;
    ORLFPersistentStoreJournalMode expected;
  } const rows[] = {
      {"escapes", url(name).absoluteString(), ORLFPersistentStoreJournalModeWAL},
      {"no host", "file:" + plain, ORLFPersistentStoreJournalModeWAL},
      {"this host", "file://localhost" + plain, ORLFPersistentStoreJournalModeWAL},
      {"another host", "file://elsewhere" + plain, ORLFPersistentStoreJournalModeUnknown},
      {"capitals", "FILE://" + plain, ORLFPersistentStoreJournalModeUnknown},
      {"a query", "file://" + plain + "?mode=ro", ORLFPersistentStoreJournalModeWAL},
      {"in memory", "file://" + plain + "?mode=memory", ORLFPersistentStoreJournalModeUnknown},
      {"an unknown mode", "file://" + plain + "?mode=odd", ORLFPersistentStoreJournalModeUnknown},
      {"a fragment", "file://" + plain + "#x", ORLFPersistentStoreJournalModeWAL},
      {"a plain path", plain, ORLFPersistentStoreJournalModeWAL},
      {"a folder", url("").absoluteString(), ORLFPersistentStoreJournalModeUnknown},
      {"a web address", "https://example.com/a", ORLFPersistentStoreJournalModeUnknown},
  };
  for (const auto& row : rows) {
    const auto address = NSURL::URLWithString(row.address);
    ASSERT_TRUE(address) << row.what;
    EXPECT_EQ(orlfJournalModeForSQLPersistentStoreAtURL(*address), row.expected) << row.what;
  }
}

/// What the writer has told of, in memory that outlives it.
struct Told {
  std::atomic<int> steps{0};
  std::atomic<int> committed{0};
};

class CrashedStores : public ORLFPersistentStoreRepairOfFiles {
 protected:
  static constexpr int kRowsOfTransaction = 40;

  CrashedStores()
      : memory_(::mmap(nullptr, sizeof(Told), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                       -1, 0)) {
    if (memory_ == MAP_FAILED) throw std::bad_alloc();
  }
  ~CrashedStores() override { ::munmap(memory_, sizeof(Told)); }

  /// Writes transactions until it is killed. Its cache holds next to nothing, so that a transaction
  /// reaches the file long before it is committed.
  [[noreturn]] void writeForEver(Told& told) const {
    StoreDatabase store(path("crashed.sqlite"));
    const auto run = [&](const std::string& sql) {
      store.run(sql);
      ++told.steps;
    };
    run("PRAGMA synchronous=OFF; PRAGMA cache_size=1; PRAGMA cache_spill=1");
    for (int number = 1;; ++number) {
      run("BEGIN; UPDATE Z_METADATA SET Z_UUID = '" + std::to_string(number) + "'");
      for (int row = 0; row < kRowsOfTransaction; ++row)
        run("INSERT INTO ZROW VALUES (" + std::to_string(number) + ", randomblob(900))");
      run("UPDATE ZROW SET Z_DATA = randomblob(900) WHERE Z_NUMBER % 3 = " +
          std::to_string(number % 3));
      run("COMMIT");
      told.committed = number;
    }
  }
  /// Kills a writer somewhere behind so many steps, however quick or slow it is; how many
  /// transactions it told of.
  int crash(int steps) const {
    Told& told = *new (memory_) Told;
    const pid_t writer = ::fork();
    if (writer == 0) writeForEver(told);
    while (told.steps < steps) std::this_thread::yield();
    ::kill(writer, SIGKILL);
    ::waitpid(writer, nullptr, 0);
    return told.committed;
  }

 private:
  void* const memory_;
};

TEST_F(CrashedStores, AreReadOrRepairedWithAllThatWasCommitted) {
  constexpr int kCrashes = 200, kLeastRepairs = 50;
  constexpr int kMostSteps = 4 * kRowsOfTransaction;
  std::mt19937 random(20240131);
  int repairs = 0, commits = 0;
  for (int crashed = 0; crashed < kCrashes; ++crashed) {
    const bool isAhead = crashed % 4 == 0;  // others keep a rollback journal
    SCOPED_TRACE("crash " + std::to_string(crashed) + (isAhead ? ", wal" : ", delete"));
    for (const std::string& name : names()) fs::remove(path(name));
    makeStore(path("crashed.sqlite"), isAhead ? "wal" : "delete");
    StoreDatabase(path("crashed.sqlite")).run("CREATE TABLE ZROW (Z_NUMBER INTEGER, Z_DATA BLOB)");
    const int committed = crash(std::uniform_int_distribution<int>(0, kMostSteps)(random));
    commits += committed;

    const LogCapture log;
    Error first, error;
    const auto before = NSPersistentStoreCoordinator::metadataForPersistentStoreOfType(
        NSSQLiteStoreType, url("crashed.sqlite"), nullptr, &first);
    const auto metadata =
        orlfMetadataForPersistentStoreOfType(NSSQLiteStoreType, url("crashed.sqlite"), &error);
    ASSERT_NE(metadata, nullptr) << error->localizedDescription();
    if (before == nullptr) {
      EXPECT_TRUE(first->code() == NSFileReadUnknownError ||
                  first->code() == NSFileReadCorruptFileError);
      EXPECT_THAT(log.lines(), ElementsAre(kRepairLine));
      ++repairs;
    } else {
      EXPECT_THAT(log.lines(), IsEmpty());
    }
    StoreDatabase store(path("crashed.sqlite"));
    EXPECT_EQ(store.text("PRAGMA integrity_check"), "ok");
    // The last transaction may have been committed and not told of.
    const int kept = store.number("SELECT COALESCE(MAX(Z_NUMBER), 0) FROM ZROW");
    EXPECT_TRUE(kept == committed || kept == committed + 1) << kept << " of " << committed;
    EXPECT_EQ(store.number("SELECT COUNT(*) FROM ZROW"), kept * kRowsOfTransaction);
    const std::string identifier = kept == 0 ? kStoreIdentifier : std::to_string(kept);
    EXPECT_EQ(*metadata->objectForKey(NSStoreUUIDKey).as<std::string>(), identifier);
  }
  EXPECT_GE(repairs, kLeastRepairs);
  EXPECT_GT(commits, 0);
}

}  // namespace
}  // namespace ORLFoundation
