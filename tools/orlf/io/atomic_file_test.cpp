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

TEST_F(AtomicFile, HandsOnTheModeOfTheFileThatItReplaces) {
  orlftool::writeFileAtomically(path("a"), "old");
  fs::permissions(path("a"), fs::perms::owner_read | fs::perms::group_read);
  orlftool::writeFileAtomically(path("a"), "new");
  EXPECT_EQ(fs::status(path("a")).permissions(), fs::perms::owner_read | fs::perms::group_read);
}

TEST_F(AtomicFile, SaysOnceWhichFileAndWhy) {
  try {
    orlftool::writeFileAtomically("/dev/null", "x");
    FAIL() << "a device was replaced";
  } catch (const orlftool::JobFailure& failure) {
    EXPECT_STREQ(failure.what(), "/dev/null: cannot be written: it is not a file");
  }
}

}  // namespace
