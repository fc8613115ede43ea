#include <ORLFoundation/platform/base/Digest_testing.h>
#include <ORLFoundation/security/archives/AppleArchive_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tests/support/TemporaryFolder.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

// A program in Python that shares nothing with the library reads what it packs.
namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using orlftest::ledger;
using orlftest::packQuickly;
using orlftest::sha256Of;
using orlftest::spanOf;
using Json = nlohmann::json;

class ArchivePeer : public orlftest::TemporaryFolderTest {
 protected:
  ArchivePeer() : TemporaryFolderTest(orlftest::parentInMemory()) {}
  void SetUp() override {
    write("from/a.txt", "hello\n");
    write("from/empty", "");
    write("from/deep/er/ledger.csv", ledger(4000));
    fs::create_symlink("../a.txt", folder_ / "from/deep/link");
    ::chmod(path("from/a.txt").c_str(), 0604);
    ::chmod(path("from/deep").c_str(), 02751);
  }
  /// What the program prints of an archive, by the paths of the entries.
  [[nodiscard]] std::map<std::string, Json> entriesOf(const std::string& words) const {
    const std::string command = "cd '" + folder_.string() +
                                "' && python3 '" ORLF_SOURCE_DIR
                                "/ORLFoundation/security/archives/archive_peer.py' " +
                                words + " >entries.json 2>errors.txt";
    EXPECT_EQ(std::system(command.c_str()), 0) << read("errors.txt");
    std::map<std::string, Json> entries;
    for (const Json& entry : Json::parse(read("entries.json")))
      EXPECT_TRUE(entries.emplace(entry.at("PAT").get<std::string>(), entry).second);
    return entries;
  }
  void expectEntries(const std::map<std::string, Json>& entries) const {
    struct Row {
      const char* path;
      char letter;
      std::optional<std::string> data, target;
    };
    const Row rows[] = {{"", 'D', {}, {}},
                        {"a.txt", 'F', "hello\n", {}},
                        {"deep", 'D', {}, {}},
                        {"deep/er", 'D', {}, {}},
                        {"deep/er/ledger.csv", 'F', ledger(4000), {}},
                        {"deep/link", 'L', {}, "../a.txt"},
                        {"empty", 'F', "", {}}};
    EXPECT_EQ(entries.size(), std::size(rows));
    for (const Row& row : rows) {
      struct stat status {};
      const std::string place = path("from") + (*row.path == '\0' ? "" : "/") + row.path;
      ASSERT_EQ(::lstat(place.c_str(), &status), 0);
      Json expected{{"TYP", static_cast<int>(row.letter)},
                    {"PAT", row.path},
                    {"UID", status.st_uid},
                    {"GID", status.st_gid},
                    {"MOD", status.st_mode & 07777}};
      if (row.target) expected["LNK"] = *row.target;
      if (row.data)
        expected["DAT"] = {{"size", row.data->size()}, {"sha256", sha256Of(spanOf(*row.data))}};
      EXPECT_EQ(entries.at(row.path), expected) << row.path;
    }
  }
};

TEST_F(ArchivePeer, ReadsAPlainArchiveWithItsSixKeys) {
  ASSERT_TRUE(packQuickly(path("from"), path("a")).isGood());
  expectEntries(entriesOf("a"));
}

TEST_F(ArchivePeer, ReadsAProtectedArchiveWithItsSixKeys) {
  ASSERT_TRUE(packQuickly(path("from"), path("a"), "correct horse").isGood());
  expectEntries(entriesOf("a 'correct horse'"));
}

}  // namespace
}  // namespace ORLFoundation
