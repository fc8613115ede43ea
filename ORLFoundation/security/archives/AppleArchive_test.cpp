#include <ORLFoundation/security/archives/AppleArchive.h>

#include <ORLFoundation/security/archives/AppleArchive_testing.h>
#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tests/support/ChildProcess.h>

#include <filesystem>
#include <memory>
#include <set>
#include <string>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using orlftest::AppleArchives;
using orlftest::extractQuickly;
using orlftest::Outcome;
using orlftest::outcomeOf;
using orlftest::packQuickly;
using testing::ElementsAre;
using testing::HasSubstr;

TEST_F(AppleArchives, PackAndExtractAFolder) {
  ASSERT_TRUE(outcomeOf(AppleArchive::archive(url("from"), url("a.aar"))).isGood());
  EXPECT_LT(fs::file_size(folder_ / "a.aar"), text().size() / 3);
  EXPECT_EQ(read("a.aar").substr(0, 4), "pbze");
  ASSERT_TRUE(outcomeOf(AppleArchive::extract(url("a.aar"), url("to"))).isGood());
  expectTree("to");
  EXPECT_THAT(names(), ElementsAre("a.aar", "from", "to"));
}

TEST_F(AppleArchives, ExtractEntriesWithoutBlocksAroundThem) {
  const auto file =
      ArchiveByteStream::fileStream(path("bare"), ArchiveByteStream::FileMode::createNew);
  const auto entries = ArchiveStream::encodeStream(*file);
  entries->writeDirectoryContents(path("from"), ArchiveHeader::FieldKeySet("TYP,PAT,DAT,MOD"));
  entries->close();
  file->close();
  EXPECT_TRUE(extractQuickly(path("bare"), path("to")).isGood());
  expectTree("to");
  std::string bytes = read("bare");
  for (std::size_t at = 0; (at = bytes.find("AA01", at)) != bytes.npos;)
    bytes.replace(at, 4, "YAA1");
  write("older", bytes);
  EXPECT_TRUE(extractQuickly(path("older"), path("again")).isGood());
  expectTree("again");
  EXPECT_EQ(extractQuickly(path("from/a.txt"), path("x")).text, "The file is no archive.");
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

TEST_F(AppleArchives, TakeKeysSaltsAndNoncesOfTheirOwn) {
  ASSERT_TRUE(packQuickly(path("from"), path("a"), "x").isGood());
  ASSERT_TRUE(packQuickly(path("from"), path("b"), "x").isGood());
  const std::string a = read("a"), b = read("b");
  for (const auto& [at, count] : {std::pair{48, 16}, {64, 12}, {76, 32}, {124, 32}})
    EXPECT_NE(a.substr(static_cast<std::size_t>(at), static_cast<std::size_t>(count)),
              b.substr(static_cast<std::size_t>(at), static_cast<std::size_t>(count)))
        << at;
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

TEST_F(AppleArchives, TellAThousandTimesAtMost) {
  constexpr int kFiles = 1999;
  for (int file = 0; file < kFiles; ++file) write("many/" + std::to_string(file), "1");
  const auto item = std::make_shared<ORLFProgressItem>();
  std::set<double> told;
  internal::archives::ArchiveJob job([&] { told.insert(item->value()); }, {.progress = item});
  job.pack(url("many"), url("a"), std::nullopt);
  // The beginning too.
  EXPECT_LE(told.size(), 1001U);
  EXPECT_GE(told.size(), 990U);
  EXPECT_EQ(item->value(), kFiles);
}

TEST_F(AppleArchives, EndWhereTheTaskIsCancelled) {
  const auto executor = CooperativeExecutorOnGlobalQueue();
  const auto context = std::make_shared<CooperativeContext>(executor);
  context->cancel();
  const auto job = CooperativeJob<>::start(AppleArchive::archive(url("from"), url("a")), context);
  EXPECT_THROW(job->result(), CancellationError);
  EXPECT_THAT(names(), ElementsAre("from"));
}

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

TEST_F(AppleArchives, MakeAndRemoveFoldersThatMayNotBeWrittenTo) {
  ASSERT_TRUE(packQuickly(path("from"), path("a")).isGood());
  ::chmod(path("from/books").c_str(), 0500);
  ::chmod(path("from").c_str(), 0500);
  EXPECT_EQ(orlftest::asOrdinaryUser(
                folder_,
                [&]() -> std::string {
                  const Outcome packed = packQuickly(path("from"), path("b"));
                  if (!packed.isGood()) return packed.text;
                  const auto before = names();
                  for (int looks = 0;; ++looks) {
                    int left = looks;
                    internal::archives::ArchiveJob job(
                        [&left] {
                          if (left-- == 0) throw CancellationError();
                        },
                        {});
                    try {
                      job.extract(url("b"), url("to"), std::nullopt);
                      const bool isKept =
                          fs::status(folder_ / "to/books").permissions() == fs::perms{0500};
                      return looks > 5 && isKept && read("to/books/may.csv") == text()
                                 ? ""
                                 : "not extracted";
                    } catch (const CancellationError&) {
                      if (names() != before) return "left behind at look " + std::to_string(looks);
                    }
                  }
                }),
            "");
  for (const char* name : {"from", "to", "from/books", "to/books"})
    ::chmod(path(name).c_str(), 0700);
}

}  // namespace
}  // namespace ORLFoundation
