#include <ORLFoundation/security/archives/AppleArchive.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/crypto/SecRandom_testing.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/security/archives/AppleArchive_testing.h>
#include <ORLFoundation/security/archives/FoundationError.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tests/support/ChildProcess.h>

#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using orlftest::extractQuickly;
using orlftest::Outcome;
using orlftest::outcomeOf;
using orlftest::packQuickly;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr NSInteger kExists = 516;

using FailingAppleArchives = orlftest::AppleArchives;

TEST_F(FailingAppleArchives, TellAWrongPasswordAndLeaveNothing) {
  ASSERT_TRUE(packQuickly(path("from"), path("a"), "correct horse").isGood());
  const Outcome wrong = outcomeOf(AppleArchive::extract(url("a"), url("to"), "correct hors"));
  EXPECT_TRUE(wrong.is(ArchiveErrorDomain, ArchiveErrorWrongKey)) << wrong.text;
  EXPECT_EQ(wrong.text, "Wrong password or altered key record.");
  EXPECT_THAT(names(), ElementsAre("a", "from"));
}

struct FailureRow {
  const char* name;
  std::string_view domain;
  NSInteger code;
  Outcome outcome;
};

TEST_F(FailingAppleArchives, FailWithEachCaseOfFoundationError) {
  write("file", "no archive");
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  ASSERT_TRUE(packQuickly(path("from"), path("sealed"), "x").isGood());
  const auto https = *NSURL::URLWithString("https://example.com/a");
  constexpr auto kNil = static_cast<NSInteger>(FoundationError::nilUnwrappedOptional);
  constexpr auto kPassword = static_cast<NSInteger>(FoundationError::archiveRequiresPassword);
  const FailureRow rows[] = {
      {"no address of a file to pack", FoundationErrorDomain, kNil,
       outcomeOf(AppleArchive::archive(https, url("x")))},
      {"no address of a file to write", FoundationErrorDomain, kNil,
       outcomeOf(AppleArchive::archive(url("from"), https))},
      {"no address of an archive", FoundationErrorDomain, kNil,
       outcomeOf(AppleArchive::extract(https, url("x")))},
      {"a folder that is absent", FoundationErrorDomain, kNil,
       outcomeOf(AppleArchive::archive(url("missing"), url("x")))},
      {"a file for a folder", FoundationErrorDomain, kNil,
       outcomeOf(AppleArchive::archive(url("file"), url("x")))},
      {"an archive that is absent", FoundationErrorDomain, kNil,
       outcomeOf(AppleArchive::extract(url("missing"), url("x")))},
      {"a folder for an archive", FoundationErrorDomain, kNil,
       outcomeOf(AppleArchive::extract(url("from"), url("x")))},
      {"a pipe for an archive", FoundationErrorDomain, kNil,
       outcomeOf(AppleArchive::extract(url("pipe"), url("x")))},
      {"no password for a sealed archive", FoundationErrorDomain, kPassword,
       outcomeOf(AppleArchive::extract(url("sealed"), url("x")))},
      {"an empty one", FoundationErrorDomain, kPassword,
       outcomeOf(AppleArchive::extract(url("sealed"), url("x"), ""))},
      {"an empty one to pack with", FoundationErrorDomain, kPassword,
       outcomeOf(AppleArchive::archive(url("from"), url("x"), ""))},
      {"a password for what is not sealed", ArchiveErrorDomain, ArchiveErrorNotProtected,
       outcomeOf(AppleArchive::extract(url("file"), url("x"), "y"))},
      {"no archive", ArchiveErrorDomain, ArchiveErrorDamaged,
       outcomeOf(AppleArchive::extract(url("file"), url("x")))},
      {"a folder beside which nothing can be made", NSCocoaErrorDomain, 4,
       outcomeOf(AppleArchive::archive(url("from"), url("missing/x")))},
  };
  for (const FailureRow& row : rows) {
    EXPECT_TRUE(row.outcome.is(row.domain, row.code)) << row.name << ": " << row.outcome.text;
    EXPECT_FALSE(row.outcome.text.empty()) << row.name;
  }
  EXPECT_THAT(rows[3].outcome.text, HasSubstr("missing"));
  EXPECT_THAT(names(), ElementsAre("file", "from", "pipe", "sealed"));
}

TEST_F(FailingAppleArchives, TellNoPasswordsInErrorsAndLogs) {
  const LogCapture log;
  const std::string password = "hush-hush";
  ASSERT_EQ(::mkfifo(path("from/pipe").c_str(), 0600), 0);
  ASSERT_TRUE(packQuickly(path("from"), path("a"), password).isGood());
  std::string told = extractQuickly(path("a"), path("to"), password + "?").text;
  write("cut", std::string_view(read("a")).substr(0, 700));
  told += extractQuickly(path("cut"), path("to"), password).text;
  told += extractQuickly(path("missing"), path("to"), password).text;
  told += extractQuickly(path("from/a.txt"), path("to"), password).text;
  told += packQuickly(path("from"), path("a"), password).text;
  for (const std::string& line : log.lines()) told += line;
  EXPECT_THAT(told, HasSubstr("Wrong password"));
  EXPECT_THAT(told, HasSubstr("damaged"));
  EXPECT_THAT(told, HasSubstr("from/pipe"));
  EXPECT_THAT(told, testing::Not(HasSubstr("hush")));
}

TEST_F(FailingAppleArchives, FailAsUnknownWithoutRandomBytes) {
  const Replaced source(SecSetRandomSource, std::make_shared<orlftest::NoRandomBytes>());
  const Outcome outcome = outcomeOf(AppleArchive::archive(url("from"), url("a"), "x"));
  EXPECT_TRUE(outcome.is(FoundationErrorDomain, static_cast<NSInteger>(FoundationError::unknown)))
      << outcome.text;
  EXPECT_THAT(names(), ElementsAre("from"));
}

TEST_F(FailingAppleArchives, RefuseDestinationsThatExist) {
  ASSERT_TRUE(packQuickly(path("from"), path("a")).isGood());
  const std::string before = read("a");
  EXPECT_TRUE(packQuickly(path("from"), path("a")).is(NSCocoaErrorDomain, kExists));
  EXPECT_EQ(read("a"), before);
  fs::create_directory(folder_ / "empty");
  fs::create_symlink("nowhere", folder_ / "dangling");
  for (const char* name : {"empty", "dangling", "a", "from", "from/", "."})
    EXPECT_TRUE(extractQuickly(path("a"), path(name)).is(NSCocoaErrorDomain, kExists)) << name;
  EXPECT_THAT(names("empty"), ElementsAre());
  EXPECT_THAT(names(), ElementsAre("a", "dangling", "empty", "from"));
}

TEST_F(FailingAppleArchives, LeaveNothingOfADamagedArchive) {
  for (const bool isSealed : {false, true}) {
    const std::optional<std::string> password = isSealed ? std::optional("x") : std::nullopt;
    ASSERT_TRUE(packQuickly(path("from"), path("a"), password).isGood());
    const std::string bytes = read("a");
    for (std::size_t part = 1; part < 8; ++part) {
      write("cut", std::string_view(bytes).substr(0, bytes.size() * part / 8));
      const Outcome outcome = extractQuickly(path("cut"), path("to"), password);
      EXPECT_TRUE(outcome.is(ArchiveErrorDomain, ArchiveErrorDamaged)) << part << outcome.text;
    }
    std::string changed = bytes;
    changed[changed.size() - 30] = static_cast<char>(changed[changed.size() - 30] ^ 1);
    write("cut", changed);
    if (isSealed) {
      EXPECT_TRUE(extractQuickly(path("cut"), path("to"), password)
                      .is(ArchiveErrorDomain, ArchiveErrorDamaged));
    }
    EXPECT_THAT(names(), ElementsAre("a", "cut", "from"));
    fs::remove(folder_ / "a");
    fs::remove(folder_ / "cut");
  }
}

// All bytes of a sealed archive up to the first cluster: before the end of the record it is the
// record or the password, behind it damage.
TEST_F(FailingAppleArchives, TellAWrongPasswordFromDamage) {
  ASSERT_TRUE(packQuickly(path("from"), path("a"), "x").isGood());
  const std::string bytes = read("a");
  for (std::size_t at = 12; at < 268; at += at < 60 ? 1 : 7) {
    std::string changed = bytes;
    changed[at] = static_cast<char>(changed[at] ^ 0x40);
    write("changed", changed);
    const Outcome outcome = extractQuickly(path("changed"), path("to"), "x");
    const bool isInRecord = at < 12 + 112;
    const bool asksTooMuch = outcome.is(ArchiveErrorDomain, ArchiveErrorTooLarge);
    const bool isInCost = at >= 32 && at < 48;
    EXPECT_TRUE(
        outcome.is(ArchiveErrorDomain, isInRecord ? ArchiveErrorWrongKey : ArchiveErrorDamaged) ||
        (isInCost && asksTooMuch))
        << at << ": " << outcome.text;
  }
}

// Wherever the work looks, cancelling there leaves nothing.
TEST_F(FailingAppleArchives, BoundWhatIsExtracted) {
  ASSERT_TRUE(packQuickly(path("from"), path("a")).isGood());
  EXPECT_TRUE(extractQuickly(path("a"), path("to"), std::nullopt, {.mostEntries = 5})
                  .is(ArchiveErrorDomain, ArchiveErrorTooLarge));
  EXPECT_TRUE(extractQuickly(path("a"), path("to"), std::nullopt, {.mostBytes = 1000})
                  .is(ArchiveErrorDomain, ArchiveErrorTooLarge));
  EXPECT_THAT(names(), ElementsAre("a", "from"));
  EXPECT_TRUE(extractQuickly(path("a"), path("to"), std::nullopt, {.mostEntries = 6}).isGood());
}

TEST_F(FailingAppleArchives, FailWhereTheDiskIsFull) {
  std::string noise(200000, 0);  // does not shrink
  std::mt19937 random(1);
  for (char& byte : noise) byte = static_cast<char>(random());
  write("from/noise", noise);
  ASSERT_TRUE(packQuickly(path("from"), path("b")).isGood());
  fs::create_directory(folder_ / "disk");
  bool isDone = false;
  const std::string failures = orlftest::onSmallDisk(folder_ / "disk", 64, isDone, [&] {
    const Outcome packed = packQuickly(path("from"), path("disk/a"));
    const Outcome extracted = extractQuickly(path("b"), path("disk/to"));
    const bool isFull = packed.is(NSCocoaErrorDomain, 640) && extracted.is(NSCocoaErrorDomain, 640);
    return isFull && names("disk").empty() ? "" : packed.text + extracted.text;
  });
  EXPECT_EQ(failures, "");
}

// Folders that refuse their owner are filled first, and taken away all the same.
TEST_F(FailingAppleArchives, FailForAFileThatCannotBeRead) {
  EXPECT_EQ(orlftest::asOrdinaryUser(folder_,
                                     [&]() -> std::string {
                                       ::chmod(path("from/a.txt").c_str(), 0);
                                       const Outcome outcome = packQuickly(path("from"), path("a"));
                                       return outcome.is(NSCocoaErrorDomain, 257) &&
                                                      names() == std::vector<std::string>{"from"}
                                                  ? ""
                                                  : outcome.text;
                                     }),
            "");
}

}  // namespace
}  // namespace ORLFoundation
