#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/tool/RunTool.h>

#include <filesystem>
#include <nlohmann/json.hpp>

namespace {

namespace fs = std::filesystem;
using orlftest::runTool;
using testing::ElementsAre;
using testing::HasSubstr;

class ArchiveCommands : public orlftest::TemporaryFolderTest {
 protected:
  void SetUp() override {
    write("from/books/may.csv", "Rent;-800\n");
    fs::create_symlink("books/may.csv", folder_ / "from/latest");
    write("password", "correct horse\n");
  }
};

TEST_F(ArchiveCommands, PackAndExtract) {
  const auto packed = runTool({"archive", path("from"), path("a.aar")});
  EXPECT_EQ(packed.exitCode, 0) << packed.err;
  EXPECT_EQ(packed.out,
            path("a.aar") + ": " + std::to_string(fs::file_size(folder_ / "a.aar")) + " bytes\n");
  const auto extracted = runTool({"extract", path("a.aar"), path("to")});
  EXPECT_EQ(extracted.exitCode, 0) << extracted.err;
  EXPECT_EQ(extracted.out, "Extracted to " + path("to") + "\n");
  EXPECT_EQ(read("to/books/may.csv"), "Rent;-800\n");
  EXPECT_EQ(fs::read_symlink(folder_ / "to/latest"), "books/may.csv");
}

TEST_F(ArchiveCommands, SealAndOpenUnderAPasswordFromAFile) {
  const auto packed =
      runTool({"archive", path("from"), path("a"), "--password-file", path("password"), "--json"});
  ASSERT_EQ(packed.exitCode, 0) << packed.err;
  EXPECT_EQ(nlohmann::json::parse(packed.out).at("protected"), true);
  write("other", "wrong horse");
  const auto wrong = runTool({"extract", path("a"), path("to"), "--password-file", path("other")});
  EXPECT_EQ(wrong.exitCode, 1);
  EXPECT_EQ(wrong.out, "");
  EXPECT_EQ(wrong.err, "orlf extract: Wrong password or altered key record.\n");
  EXPECT_FALSE(fs::exists(folder_ / "to"));
  const auto right =
      runTool({"extract", path("a"), path("to"), "--password-file", path("password"), "--json"});
  ASSERT_EQ(right.exitCode, 0) << right.err;
  EXPECT_EQ(nlohmann::json::parse(right.out).at("protected"), true);
  EXPECT_EQ(read("to/books/may.csv"), "Rent;-800\n");
}

TEST_F(ArchiveCommands, KeepSetIDBitsOnRequest) {
  ::chmod(path("from/books/may.csv").c_str(), 04750);
  ASSERT_EQ(runTool({"archive", path("from"), path("a")}).exitCode, 0);
  ASSERT_EQ(runTool({"extract", path("a"), path("to")}).exitCode, 0);
  ASSERT_EQ(runTool({"extract", path("a"), path("with"), "--set-id"}).exitCode, 0);
  EXPECT_EQ(fs::status(folder_ / "to/books/may.csv").permissions(), fs::perms{0750});
  EXPECT_EQ(fs::status(folder_ / "with/books/may.csv").permissions(), fs::perms{04750});
}

TEST_F(ArchiveCommands, FailWithALineAndLeaveNothing) {
  write("noise", "no archive");
  struct Row {
    std::vector<std::string> words;
    std::string message;
    int exitCode;
  };
  const Row rows[] = {
      {{"archive", path("missing"), path("a")}, "missing: No such file or directory", 1},
      {{"archive", path("from"), path("noise")}, "noise: File exists", 1},
      {{"archive", path("from"), path("a"), "--password-file", path("missing")},
       "missing: cannot be read: No such file or directory",
       1},
      {{"archive", path("from"), path("a"), "--password", "--password-file", path("password")},
       "--password",
       2},
      {{"extract", path("noise"), path("to")}, "The file is no archive.", 1},
      {{"extract", path("noise"), path("to"), "--password-file", path("password")},
       "the archive is not protected",
       1},
      {{"extract", path("noise"), path("from")}, "from: File exists", 1},
      {{"extract", path("missing"), path("to")}, "missing: No such file or directory", 1},
      {{"extract", path("noise"), ""}, "DIR: expected a path, got ''", 2},
  };
  for (const Row& row : rows) {
    const auto run = runTool(row.words);
    EXPECT_EQ(run.exitCode, row.exitCode) << row.message << run.err;
    EXPECT_THAT(run.err, HasSubstr(row.message));
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
  }
  EXPECT_THAT(names(), ElementsAre("from", "noise", "password"));
}

// Neither messages nor archives hold it.
TEST_F(ArchiveCommands, ShowThePasswordNowhere) {
  std::string said;
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"archive", path("from"), path("a")},
        {"archive", path("from"), path("a")},
        {"extract", path("a"), path("to")},
        {"extract", path("a"), path("to")}}) {
    std::vector<std::string> all = words;
    all.insert(all.end(), {"--password-file", path("password")});
    const auto run = runTool(all);
    said += run.out + run.err;
  }
  EXPECT_EQ(said.find("correct horse"), std::string::npos);
  EXPECT_EQ(read("a").find("correct horse"), std::string::npos);
}

}  // namespace
