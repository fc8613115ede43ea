#include "io/atomic_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "cli/failure.h"

namespace {

namespace fs = std::filesystem;

class AtomicFile : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = testing::TempDir() + "/atomicXXXXXX";
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
  }
  void TearDown() override { fs::remove_all(folder_); }

  [[nodiscard]] std::string path(const std::string& name) const { return folder_ / name; }
  [[nodiscard]] std::string read(const std::string& name) const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  [[nodiscard]] long fileCount() const {
    return std::distance(fs::directory_iterator(folder_), fs::directory_iterator());
  }

  fs::path folder_;
};

TEST_F(AtomicFile, WritesBytesAndLeavesNothingElseBehind) {
  orlftool::writeFileAtomically(path("a.csv"), std::string_view("one\0two\n", 8));
  EXPECT_EQ(read("a.csv"), std::string("one\0two\n", 8));
  EXPECT_EQ(fileCount(), 1);
}

TEST_F(AtomicFile, ReplacesAFileAsAWhole) {
  orlftool::writeFileAtomically(path("a"), "a longer first text");
  orlftool::writeFileAtomically(path("a"), "short");
  EXPECT_EQ(read("a"), "short");
  EXPECT_EQ(fileCount(), 1);
}

TEST_F(AtomicFile, KeepsTheOldFileWhenWritingFails) {
  orlftool::writeFileAtomically(path("a"), "old");
  EXPECT_THROW(orlftool::writeFileAtomically(path("a"),
                                             [](const std::string& temporary) {
                                               std::ofstream(temporary) << "half";
                                               throw orlftool::JobFailure("stopped");
                                             }),
               orlftool::JobFailure);
  EXPECT_EQ(read("a"), "old");
  EXPECT_EQ(fileCount(), 1);
}

TEST_F(AtomicFile, WritesThroughALink) {
  orlftool::writeFileAtomically(path("target"), "old");
  fs::create_symlink("target", path("link"));
  orlftool::writeFileAtomically(path("link"), "new");
  EXPECT_TRUE(fs::is_symlink(path("link")));
  EXPECT_EQ(read("target"), "new");
}

TEST_F(AtomicFile, RefusesFoldersDevicesAndPlacesThatAreNotThere) {
  fs::create_directory(path("folder"));
  EXPECT_THROW(orlftool::writeFileAtomically(path("folder"), "x"), orlftool::JobFailure);
  EXPECT_THROW(orlftool::writeFileAtomically("/dev/null", "x"), orlftool::JobFailure);
  EXPECT_THROW(orlftool::writeFileAtomically(path("no/such/folder/a"), "x"), orlftool::JobFailure);
  EXPECT_EQ(fileCount(), 1);
}

}  // namespace
