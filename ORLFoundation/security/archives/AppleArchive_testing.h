/// Archives' operations run to their end, for tests.
#pragma once

#include <ORLFoundation/platform/container/ArchiveError.h>
#include <ORLFoundation/security/archives/AppleArchive.h>
#include <ORLFoundation/security/archives/internal/ArchiveJobs.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tests/support/TemporaryFolder.h>

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

namespace orlftest {

/// The domain and the code of what went wrong; an empty domain for nothing.
struct Outcome {
  std::string domain;
  ORLFoundation::NSInteger code = 0;
  std::string text;

  [[nodiscard]] bool isGood() const { return domain.empty(); }
  [[nodiscard]] bool is(std::string_view expected, ORLFoundation::NSInteger number) const {
    return domain == expected && code == number;
  }
};

template <class Work>
Outcome outcomeOf(const Work& work) {
  try {
    work();
  } catch (const ORLFoundation::ArchiveError& failure) {
    return {failure.error()->domain(), failure.error()->code(), failure.what()};
  }
  return {};
}

/// Starts the task on the global queue and waits for its end.
inline Outcome outcomeOf(ORLFoundation::CooperativeTask<> task) {
  const auto job = ORLFoundation::CooperativeJob<>::start(
      std::move(task), ORLFoundation::CooperativeExecutorOnGlobalQueue());
  return outcomeOf([&] { job->result(); });
}

inline ORLFoundation::NSData secret(std::string_view password) {
  return ORLFoundation::NSData(password);
}

/// What a password costs in tests that are not about that.
inline constexpr ORLFoundation::internal::crypto::ScryptCost kCheapCost{16, 1, 1};

/// Packs on the calling thread, under a cheap password key.
inline Outcome packQuickly(const std::string& from, const std::string& to,
                           const std::optional<std::string>& password = std::nullopt) {
  using namespace ORLFoundation;
  return outcomeOf([&] {
    internal::archives::ArchiveJob job([] {}, {});
    job.pack(NSURL::fileURLWithPath(from), NSURL::fileURLWithPath(to),
             password ? std::optional(secret(*password)) : std::nullopt, kCheapCost);
  });
}

inline Outcome extractQuickly(const std::string& from, const std::string& to,
                              const std::optional<std::string>& password = std::nullopt,
                              ORLFoundation::AppleArchiveOptions options = {}) {
  using namespace ORLFoundation;
  return outcomeOf([&] {
    internal::archives::ArchiveJob job([] {}, std::move(options));
    job.extract(NSURL::fileURLWithPath(from), NSURL::fileURLWithPath(to),
                password ? std::optional(secret(*password)) : std::nullopt);
  });
}

/// So many lines of a bank's table.
inline std::string ledger(int count) {
  std::string lines;
  for (int i = 0; i < count; ++i)
    lines += "2024-05-01;" + std::to_string(i * 37 % 9973) + ";rent\n";
  return lines;
}

/// A folder of two files, an empty folder and a link, with modes of their own, to be packed.
class AppleArchives : public TemporaryFolderTest {
 protected:
  AppleArchives() : TemporaryFolderTest(parentInMemory()) {}
  void SetUp() override {
    write("from/a.txt", "hello\n");
    write("from/books/may.csv", text());
    std::filesystem::create_directory(folder_ / "from/empty");
    std::filesystem::create_symlink("../elsewhere", folder_ / "from/books/link");
    ::chmod(path("from/a.txt").c_str(), 0640);
    ::chmod(path("from/books").c_str(), 0710);
  }
  static std::string text() { return ledger(20000); }
  [[nodiscard]] ORLFoundation::NSURL url(const std::string& name) const {
    return ORLFoundation::NSURL::fileURLWithPath(path(name));
  }
  void expectTree(const std::string& name) const {
    EXPECT_EQ(read(name + "/a.txt"), "hello\n");
    EXPECT_EQ(read(name + "/books/may.csv"), text());
    EXPECT_THAT(names(name), testing::ElementsAre("a.txt", "books", "empty"));
    EXPECT_EQ(std::filesystem::read_symlink(folder_ / name / "books/link"), "../elsewhere");
    EXPECT_EQ(std::filesystem::status(folder_ / name / "a.txt").permissions(),
              std::filesystem::perms{0640});
    EXPECT_EQ(std::filesystem::status(folder_ / name / "books").permissions(),
              std::filesystem::perms{0710});
  }
};

}  // namespace orlftest
