#include "io/atomic_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include <tests/support/TemporaryFolder.h>
#include "cli/failure.h"

namespace {

namespace fs = std::filesystem;

class AtomicFile : public orlftest::TemporaryFolderTest {
 protected:
  [[nodiscard]] long fileCount() const { return static_cast<long>(names().size()); }
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
