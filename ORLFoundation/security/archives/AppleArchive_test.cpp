#include <ORLFoundation/security/archives/AppleArchive.h>

#include <ORLFoundation/platform/crypto/SecRandom.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/security/archives/AppleArchive_testing.h>
#include <ORLFoundation/security/archives/FoundationError.h>
#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tests/support/ChildProcess.h>
#include <tests/support/TemporaryFolder.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <random>

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

class AppleArchives : public orlftest::TemporaryFolderTest {
 protected:
  AppleArchives() : TemporaryFolderTest(orlftest::parentInMemory()) {}
  void SetUp() override {
    write("from/a.txt", "hello\n");
    write("from/books/may.csv", text());
    fs::create_directory(folder_ / "from/empty");
    fs::create_symlink("../elsewhere", folder_ / "from/books/link");
    ::chmod(path("from/a.txt").c_str(), 0640);
    ::chmod(path("from/books").c_str(), 0710);
  }
  static std::string text() {
    std::string lines;
    for (int i = 0; i < 20000; ++i)
      lines += "2024-05-01;" + std::to_string(i * 37 % 9973) + ";rent\n";
    return lines;
  }
  /// What does not shrink.
  static std::string noise() {
    std::string bytes(200000, 0);
    std::mt19937 random(1);
    for (char& byte : bytes) byte = static_cast<char>(random());
    return bytes;
  }
  [[nodiscard]] NSURL url(const std::string& name) const {
    return NSURL::fileURLWithPath(path(name));
  }
  void expectTree(const std::string& name) const {
    EXPECT_EQ(read(name + "/a.txt"), "hello\n");
    EXPECT_EQ(read(name + "/books/may.csv"), text());
    EXPECT_THAT(names(name), ElementsAre("a.txt", "books", "empty"));
    EXPECT_EQ(fs::read_symlink(folder_ / name / "books/link"), "../elsewhere");
    EXPECT_EQ(fs::status(folder_ / name / "a.txt").permissions(), fs::perms{0640});
    EXPECT_EQ(fs::status(folder_ / name / "books").permissions(), fs::perms{0710});
  }
};

TEST_F(AppleArchives, PackAndExtractAFolder) {
  ASSERT_TRUE(outcomeOf(AppleArchive::archive(url("from"), url("a.aar"))).isGood());
  EXPECT_LT(fs::file_size(folder_ / "a.aar"), text().size() / 3);
  EXPECT_EQ(read("a.aar").substr(0, 4), "pbze");
  ASSERT_TRUE(outcomeOf(AppleArchive::extract(url("a.aar"), url("to"))).isGood());
  expectTree("to");
  EXPECT_THAT(names(), ElementsAre("a.aar", "from", "to"));
}

TEST_F(AppleArchives, PackAndExtractUnderAPassword) {
  const std::string password = "correct h\xc3\xb6rse";
  ASSERT_TRUE(outcomeOf(AppleArchive::archive(url("from"), url("a.aar"), password)).isGood());
  const std::string bytes = read("a.aar");
  EXPECT_EQ(bytes.substr(0, 4), "AEA1");
  EXPECT_THAT(bytes.substr(0, 200), HasSubstr("orlf-scrypt-gcm"));
  // n, r and p of the key record
  EXPECT_EQ(bytes.substr(32, 16), (std::string{0, 0, 2, 0, 0, 0, 0, 0, 8, 0, 0, 0, 1, 0, 0, 0}));
  ASSERT_TRUE(outcomeOf(AppleArchive::extract(url("a.aar"), url("to"), password)).isGood());
  expectTree("to");
}

TEST_F(AppleArchives, TellAWrongPasswordAndLeaveNothing) {
  ASSERT_TRUE(packQuickly(path("from"), path("a"), "correct horse").isGood());
  const Outcome wrong = outcomeOf(AppleArchive::extract(url("a"), url("to"), "correct hors"));
  EXPECT_TRUE(wrong.is(ArchiveErrorDomain, ArchiveErrorWrongKey)) << wrong.text;
  EXPECT_EQ(wrong.text, "Wrong password or altered key record.");
  EXPECT_THAT(names(), ElementsAre("a", "from"));
}

TEST_F(AppleArchives, TakeKeysSaltsAndNoncesOfTheirOwn) {
  ASSERT_TRUE(packQuickly(path("from"), path("a"), "x").isGood());
  ASSERT_TRUE(packQuickly(path("from"), path("b"), "x").isGood());
  const std::string a = read("a"), b = read("b");
  for (const auto& [at, count] : {std::pair{48, 16}, {64, 12}, {76, 32}, {124, 32}})
    EXPECT_NE(a.substr(static_cast<std::size_t>(at), static_cast<std::size_t>(count)),
              b.substr(static_cast<std::size_t>(at), static_cast<std::size_t>(count)))
        << at;
}

struct FailureRow {
  const char* name;
  std::string_view domain;
  NSInteger code;
  Outcome outcome;
};

TEST_F(AppleArchives, FailWithEachCaseOfFoundationError) {
  write("file", "no archive");
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
  EXPECT_THAT(names(), ElementsAre("file", "from", "sealed"));
}

TEST_F(AppleArchives, TellNoPasswordsInErrorsAndLogs) {
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

class NoRandom final : public SecRandomSource {
 public:
  bool copyBytes(std::span<std::uint8_t>) override {
    errno = EIO;
    return false;
  }
};

TEST_F(AppleArchives, FailAsUnknownWithoutRandomBytes) {
  const auto before = SecSetRandomSource(std::make_shared<NoRandom>());
  const Outcome outcome = outcomeOf(AppleArchive::archive(url("from"), url("a"), "x"));
  SecSetRandomSource(before);
  EXPECT_TRUE(outcome.is(FoundationErrorDomain, static_cast<NSInteger>(FoundationError::unknown)))
      << outcome.text;
  EXPECT_THAT(names(), ElementsAre("from"));
}

TEST_F(AppleArchives, RefuseDestinationsThatExist) {
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

TEST_F(AppleArchives, LeaveNothingOfADamagedArchive) {
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
TEST_F(AppleArchives, TellAWrongPasswordFromDamage) {
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

TEST_F(AppleArchives, TellHowFarTheyAre) {
  const auto item = std::make_shared<ORLFProgressItem>();
  const auto total = static_cast<double>(text().size() + 6);
  ASSERT_TRUE(
      outcomeOf(AppleArchive::archive(url("from"), url("a"), AppleArchiveOptions{.progress = item}))
          .isGood());
  EXPECT_EQ(item->maxValue(), total);
  EXPECT_EQ(item->value(), total);
  const auto back = std::make_shared<ORLFProgressItem>();
  ASSERT_TRUE(
      outcomeOf(AppleArchive::extract(url("a"), url("to"), AppleArchiveOptions{.progress = back}))
          .isGood());
  EXPECT_EQ(back->maxValue(), static_cast<double>(fs::file_size(folder_ / "a")));
  EXPECT_EQ(back->value(), back->maxValue());
}

TEST_F(AppleArchives, EndWhereTheTaskIsCancelled) {
  const auto executor = CooperativeExecutorOnGlobalQueue();
  const auto context = std::make_shared<CooperativeContext>(executor);
  context->cancel();
  const auto job = CooperativeJob<>::start(AppleArchive::archive(url("from"), url("a")), context);
  EXPECT_THROW(job->result(), CancellationError);
  EXPECT_THAT(names(), ElementsAre("from"));
}

// Wherever the work looks, cancelling there leaves nothing.
TEST_F(AppleArchives, LeaveNothingWhereverTheyAreCancelled) {
  ASSERT_TRUE(packQuickly(path("from"), path("plain")).isGood());
  ASSERT_TRUE(packQuickly(path("from"), path("sealed"), "x").isGood());
  const auto before = names();
  const auto endsWhenStopped = [&](auto work) {
    for (int looks = 0; looks < 100; ++looks) {
      int left = looks;
      internal::archives::ArchiveJob job(
          [&left] {
            if (left-- == 0) throw CancellationError();
          },
          {});
      try {
        work(job);
        return looks;
      } catch (const CancellationError&) {
        EXPECT_EQ(names(), before);
      }
    }
    return 0;
  };
  using internal::archives::ArchiveJob;
  const auto remove = [&](const char* name) { fs::remove_all(folder_ / name); };
  EXPECT_GT(
      endsWhenStopped([&](ArchiveJob& job) { job.pack(url("from"), url("b"), std::nullopt); }), 5);
  remove("b");
  EXPECT_GT(endsWhenStopped([&](ArchiveJob& job) {
              job.pack(url("from"), url("b"), orlftest::secret("x"), orlftest::kCheapCost);
            }),
            5);
  remove("b");
  EXPECT_GT(
      endsWhenStopped([&](ArchiveJob& job) { job.extract(url("plain"), url("to"), std::nullopt); }),
      5);
  remove("to");
  EXPECT_GT(endsWhenStopped([&](ArchiveJob& job) {
              job.extract(url("sealed"), url("to"), orlftest::secret("x"));
            }),
            5);
}

TEST_F(AppleArchives, LeaveTheArchiveOutOfItself) {
  ASSERT_TRUE(packQuickly(path("from"), path("from/self")).isGood());
  ASSERT_TRUE(extractQuickly(path("from/self"), path("to")).isGood());
  expectTree("to");
}

TEST_F(AppleArchives, BoundWhatIsExtracted) {
  ASSERT_TRUE(packQuickly(path("from"), path("a")).isGood());
  EXPECT_TRUE(extractQuickly(path("a"), path("to"), std::nullopt, {.mostEntries = 5})
                  .is(ArchiveErrorDomain, ArchiveErrorTooLarge));
  EXPECT_TRUE(extractQuickly(path("a"), path("to"), std::nullopt, {.mostBytes = 1000})
                  .is(ArchiveErrorDomain, ArchiveErrorTooLarge));
  EXPECT_THAT(names(), ElementsAre("a", "from"));
  EXPECT_TRUE(extractQuickly(path("a"), path("to"), std::nullopt, {.mostEntries = 6}).isGood());
}

TEST_F(AppleArchives, FailWhereTheDiskIsFull) {
  write("from/noise", noise());
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

TEST_F(AppleArchives, FailForAFileThatCannotBeRead) {
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
