#include <ORLFoundation/files/operations/ORLFDirectoryReplacement_testing.h>
#include <ORLFoundation/platform/store/NSPersistentStoreCoordinator_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/tool/RunTool.h>

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace ORLFoundation;
using orlftest::runTool;
using testing::HasSubstr;
using testing::StartsWith;

class FileCommands : public orlftest::TemporaryFolderTest {
 protected:
  void makeTrees() {
    makeTree(folder_ / "to",
             {{"a", "old"}, {"b", {{"c", "old"}, {"gone", "x"}}}, {"k", {{"l", "x"}}}});
    makeTree(folder_ / "from", {{"a", "new"}, {"b", {{"c", "new"}}}, {"n", {{"o", "y"}}}});
  }
  [[nodiscard]] orlftest::ToolRun mirror(const std::vector<std::string>& options = {}) const {
    std::vector<std::string> words{"mirror", path("from"), path("to")};
    words.insert(words.end(), options.begin(), options.end());
    return runTool(words);
  }
};

TEST_F(FileCommands, MirrorBringsAFolderIntoLine) {
  makeTrees();
  for (const std::vector<std::string>& options : {std::vector<std::string>{}, {"--fsync"}}) {
    const auto run = mirror(options);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(treeAt(folder_ / "to"), treeAt(folder_ / "from"));
    EXPECT_EQ(run.out, options.empty() ? "Added: 1, replaced: 2, removed: 2\n"
                                       : "Added: 0, replaced: 3, removed: 0\n");
  }
}

TEST_F(FileCommands, MirrorTellsWhatItWouldDoAndDoesNothing) {
  makeTrees();
  const TreeJson before = treeAt(folder_ / "to");
  const auto run = mirror({"--dry-run"});
  EXPECT_EQ(run.out,
            "remove b/gone\nremove k\nreplace a\nreplace b/c\nadd n\n"
            "To add: 1, to replace: 2, to remove: 2\n");
  EXPECT_EQ(mirror({"--dry-run", "--keep-removed"}).out,
            "keep b/gone\nkeep k\nreplace a\nreplace b/c\nadd n\n"
            "To add: 1, to replace: 2, to remove: 0, to keep: 2\n");
  EXPECT_EQ(treeAt(folder_ / "to"), before);
}

TEST_F(FileCommands, MirrorTellsBeforehandWhatCannotBeCopied) {
  makeTrees();
  const auto refused = [&](const std::string& item) {
    ASSERT_EQ(::mkfifo(path("from/" + item).c_str(), 0600), 0);
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{"--dry-run"}, {"--dry-run", "--keep-removed"}, {}}) {
      const auto run = mirror(options);
      EXPECT_EQ(run.exitCode, 1);
      EXPECT_EQ(run.out, "");
      EXPECT_EQ(run.err,
                "orlf mirror: " + fs::path(path("from/" + item)).lexically_normal().string() +
                    ": it is neither a file, a folder nor a link\n");
    }
    std::filesystem::remove(path("from/" + item));
  };
  refused("pipe");
  std::filesystem::create_directories(path("from/new/folder"));
  refused("new/folder/pipe");
  std::filesystem::remove(path("from/a"));
  refused("a");
  // What is left where it is may be of any kind.
  ASSERT_EQ(::mkfifo(path("to/pipe").c_str(), 0600), 0);
  EXPECT_EQ(mirror({"--dry-run"}).exitCode, 0);
}

TEST_F(FileCommands, MirrorKeepsWhatOnlyTheDestinationHas) {
  makeTrees();
  EXPECT_EQ(mirror({"--keep-removed"}).out, "Added: 1, replaced: 2, removed: 0, kept: 2\n");
  EXPECT_EQ(treeAt(folder_ / "to"), TreeJson({{"a", "new"},
                                              {"b", {{"c", "new"}, {"gone", "x"}}},
                                              {"k", {{"l", "x"}}},
                                              {"n", {{"o", "y"}}}}));
}

TEST_F(FileCommands, MirrorPrintsJson) {
  makeTrees();
  const auto json = TreeJson::parse(mirror({"--dry-run", "--json"}).out);
  EXPECT_EQ(json.at("dryRun"), true);
  EXPECT_EQ(json.at("removed"), 2);
  EXPECT_EQ(json.at("actions").size(), 5U);
  EXPECT_EQ(json.at("actions").at(4), TreeJson({{"action", "add"}, {"item", "n"}}));
}

TEST_F(FileCommands, MirrorFailsWithALine) {
  makeTrees();
  fs::create_directories(folder_ / "to/b/in");
  for (const auto& [from, to] :
       std::vector<std::pair<std::string, std::string>>{{"missing", "to"},
                                                        {"from", "missing"},
                                                        {"to", "to"},
                                                        {"to", "to/b/in"},
                                                        {"to/b", "to"}}) {
    const auto run = runTool({"mirror", path(from), path(to)});
    EXPECT_EQ(run.exitCode, 1) << from << " " << to;
    EXPECT_THAT(run.err, StartsWith("orlf mirror: /"));
    EXPECT_EQ(run.out, "");
  }
  EXPECT_EQ(runTool({"mirror", "", path("to")}).exitCode, 2);
}

TEST_F(FileCommands, StoreInfoPrintsMetadataAndTheMode) {
  makeStore(path("a.sqlite"), "wal");
  const auto run = runTool({"store-info", path("a.sqlite")});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, StartsWith("Journal mode: wal\nRepaired: no\n"));
  EXPECT_THAT(run.out, HasSubstr("NSStoreUUID: " + std::string(kStoreIdentifier) + "\n"));
  EXPECT_THAT(run.out, HasSubstr("Owner: Ann\n"));
  const auto json = TreeJson::parse(runTool({"store-info", path("a.sqlite"), "--json"}).out);
  EXPECT_EQ(json.at("journalMode"), "wal");
  EXPECT_EQ(json.at("repaired"), false);
  EXPECT_EQ(json.at("metadata").at("NSStoreModelVersionHashesVersion"), 3);
}

TEST_F(FileCommands, StoreInfoTellsOfARepair) {
  makeStore(path("a.sqlite"), "delete");
  {
    StoreDatabase writer(path("a.sqlite"));
    writer.run("PRAGMA cache_size=1; CREATE TABLE T (A); BEGIN");
    for (int i = 0; i < 50; ++i) writer.run("INSERT INTO T VALUES (randomblob(3000))");
    // As a crash would leave both files.
    fs::copy_file(path("a.sqlite"), path("b.sqlite"));
    fs::copy_file(path("a.sqlite-journal"), path("b.sqlite-journal"));
    writer.run("ROLLBACK");
  }
  const auto run = runTool({"store-info", path("b.sqlite")});
  EXPECT_THAT(run.out, StartsWith("Journal mode: delete\nRepaired: yes\n")) << run.err;
  EXPECT_EQ(run.err, "orlf: Detected damaged file. Attempting repairs...\n");
}

TEST_F(FileCommands, StoreInfoLeavesAStoreAloneThatSomebodyWrites) {
  makeStore(path("a.sqlite"), "delete");
  StoreDatabase writer(path("a.sqlite"));
  writer.run("BEGIN EXCLUSIVE");
  const auto run = runTool({"store-info", path("a.sqlite")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "orlf store-info: " + path("a.sqlite") + ": database is locked\n");
  writer.run("COMMIT");
  EXPECT_THAT(runTool({"store-info", path("a.sqlite")}).out,
              StartsWith("Journal mode: delete\nRepaired: no\n"));
}

TEST_F(FileCommands, StoreInfoFailsForWhatIsNoStore) {
  write("text", "no store");
  const auto run = runTool({"store-info", path("text")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("it is not an SQLite database"));
  EXPECT_THAT(runTool({"store-info", path("missing")}).err, HasSubstr("No such file"));
  EXPECT_EQ(read("text"), "no store");
  EXPECT_THAT(names(), testing::ElementsAre("text"));
}

TEST_F(FileCommands, SameFileComparesWhatPathsLeadTo) {
  write("a", "x");
  write("b", "x");
  fs::create_hard_link(path("a"), path("h"));
  fs::create_symlink("a", path("l"));
  EXPECT_EQ(runTool({"same-file", path("a"), path("./h")}).out, "one file\n");
  EXPECT_EQ(runTool({"same-file", path("a"), path("h")}).exitCode, 0);
  EXPECT_EQ(runTool({"same-file", path("a"), path("b")}).out, "two files\n");
  EXPECT_EQ(runTool({"same-file", path("a"), path("b")}).exitCode, 1);
  EXPECT_EQ(runTool({"same-file", path("a"), path("l")}).out, "two files\n");
  EXPECT_EQ(TreeJson::parse(runTool({"same-file", path("a"), path("h"), "--json"}).out),
            TreeJson({{"same", true}}));
  const auto run = runTool({"same-file", path("a"), path("missing")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("missing: No such file or directory"));
  EXPECT_EQ(run.out, "");
}

}  // namespace
