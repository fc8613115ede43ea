#include <ORLFoundation/platform/files/WholeFile.h>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tests/support/FileMask.h>
#include <tests/support/TemporaryFolder.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

namespace ORLFoundation::internal::files {
namespace {

namespace fs = std::filesystem;

class WholeFile : public orlftest::TemporaryFolderTest {
 protected:
  [[nodiscard]] std::size_t fileCount() const { return names().size(); }
  bool replace(const char* name, std::string_view bytes,
               NewFileRights rights = NewFileRights::Private) {
    error_ = nullptr;
    return replaceFile(path(name), bytes, rights, &error_);
  }

  std::shared_ptr<const NSError> error_;
};

TEST_F(WholeFile, CreatesFilesWhereNothingStands) {
  EXPECT_TRUE(createFile(path("a"), "new", NewFileRights::Private, &error_));
  EXPECT_EQ(read("a"), "new");
  EXPECT_EQ(modeOf("a"), 0600U);
  EXPECT_FALSE(createFile(path("a"), "newer", NewFileRights::Private, &error_));
  EXPECT_EQ(error_->code(), EEXIST);
  EXPECT_EQ(read("a"), "new");
  fs::create_symlink("nowhere", path("link"));
  EXPECT_FALSE(createFile(path("link"), "x", NewFileRights::Private, &error_));
  EXPECT_FALSE(createFile(path("no/such/folder"), "x", NewFileRights::Private, &error_));
  EXPECT_EQ(error_->code(), ENOENT);
  EXPECT_EQ(fileCount(), 2U);
}

TEST_F(WholeFile, WritesBytesAndLeavesNothingElseBehind) {
  EXPECT_TRUE(replace("a", std::string_view("one\0two\n", 8)));
  EXPECT_EQ(read("a"), std::string("one\0two\n", 8));
  EXPECT_TRUE(replace("a", "x"));
  EXPECT_EQ(read("a"), "x");
  EXPECT_TRUE(replace("a", ""));
  EXPECT_EQ(read("a"), "");
  EXPECT_EQ(fileCount(), 1U);
  EXPECT_EQ(error_, nullptr);
}

TEST_F(WholeFile, ANewFileIsTheUsersOrWhatTheMaskLeaves) {
  const orlftest::FileMask mask(0027);
  EXPECT_TRUE(replace("private", "x", NewFileRights::Private));
  EXPECT_EQ(modeOf("private"), 0600U);
  EXPECT_TRUE(replace("shared", "x", NewFileRights::Shared));
  EXPECT_EQ(modeOf("shared"), 0640U);
}

TEST_F(WholeFile, AFileThatIsReplacedHandsOnItsMode) {
  const orlftest::FileMask mask(0022);
  for (const mode_t mode : {0600U, 0640U, 0666U, 0444U, 0755U}) {
    for (const NewFileRights rights : {NewFileRights::Private, NewFileRights::Shared}) {
      EXPECT_TRUE(replace("a", "old", rights));
      ASSERT_EQ(::chmod(path("a").c_str(), mode), 0);
      EXPECT_TRUE(replace("a", "new", rights));
      EXPECT_EQ(modeOf("a"), mode) << std::oct << mode;
      EXPECT_EQ(read("a"), "new");
      fs::remove(path("a"));
    }
  }
}

TEST_F(WholeFile, BehindALinkTheFileThatItLeadsToIsReplaced) {
  EXPECT_TRUE(replace("target", "old"));
  ASSERT_EQ(::chmod(path("target").c_str(), 0640), 0);
  fs::create_symlink("target", path("link"));
  EXPECT_TRUE(replace("link", "new"));
  EXPECT_TRUE(fs::is_symlink(path("link")));
  EXPECT_EQ(read("target"), "new");
  EXPECT_EQ(modeOf("target"), 0640U);
  EXPECT_EQ(fileCount(), 2U);
}

TEST_F(WholeFile, RefusesWhatIsNoFile) {
  fs::create_directory(path("folder"));
  EXPECT_FALSE(replace("folder", "x"));
  EXPECT_EQ(error_->code(), EISDIR);
  EXPECT_EQ(error_->domain(), NSPOSIXErrorDomain);
  EXPECT_NE(error_->localizedDescription().find(path("folder")), std::string::npos);
  EXPECT_FALSE(replaceFile("/dev/null", "x", NewFileRights::Shared, &error_));
  EXPECT_EQ(error_->code(), EINVAL);
  EXPECT_FALSE(replace("no/such/folder", "x"));
  EXPECT_EQ(error_->code(), ENOENT);
  EXPECT_TRUE(replace("file", "x"));
  EXPECT_FALSE(replace("file/below", "x"));
  EXPECT_EQ(error_->code(), ENOTDIR);
  EXPECT_FALSE(replaceFile("", "x", NewFileRights::Shared, nullptr));
  EXPECT_EQ(fileCount(), 2U);
}

// The user root writes everywhere, so the folder is one where not even root may: it has too long a
// name once a temporary file's is made of it.
TEST_F(WholeFile, KeepsTheOldFileWhereNoOtherCanBeMadeBesideIt) {
  const std::string name(250, 'n');
  std::ofstream(path(name.c_str())) << "old";
  EXPECT_FALSE(replace(name.c_str(), "new"));
  EXPECT_EQ(error_->code(), ENAMETOOLONG);
  EXPECT_EQ(read(name.c_str()), "old");
  EXPECT_EQ(fileCount(), 1U);
}

TEST_F(WholeFile, KeepsTheOldFileWhereTheFolderIsNotToBeWritten) {
  if (::geteuid() == 0) {
    ASSERT_EQ(::setegid(65534), 0);
    ASSERT_EQ(::chown(path("").c_str(), 65534, 65534), 0);
    ASSERT_EQ(::seteuid(65534), 0);
  }
  std::ofstream(path("a")) << "old";
  ASSERT_EQ(::chmod(path("").c_str(), 0500), 0);
  const bool isReplaced = replace("a", "new");
  EXPECT_EQ(::chmod(path("").c_str(), 0700), 0);
  if (::getuid() == 0) {
    EXPECT_EQ(::seteuid(0), 0);
    EXPECT_EQ(::setegid(0), 0);
  }
  EXPECT_FALSE(isReplaced);
  EXPECT_EQ(error_->code(), EACCES);
  EXPECT_EQ(read("a"), "old");
  EXPECT_EQ(fileCount(), 1U);
}

TEST_F(WholeFile, TakesWhatIsWrittenToAPath) {
  const orlftest::FileMask mask(0022);
  std::string temporary;
  EXPECT_TRUE(replaceFile(
      path("a"),
      [&](const std::string& given) {
        temporary = given;
        EXPECT_EQ(fs::path(given).parent_path(), fs::path(path("a")).parent_path());
        EXPECT_EQ(fs::file_size(given), 0U);
        std::ofstream(given) << "written";
      },
      NewFileRights::Shared, &error_));
  EXPECT_EQ(read("a"), "written");
  EXPECT_EQ(modeOf("a"), 0644U);
  EXPECT_FALSE(fs::exists(temporary));
}

TEST_F(WholeFile, KeepsTheOldFileWhenTheWriterThrowsOrTakesItsFileAway) {
  EXPECT_TRUE(replace("a", "old"));
  const auto throws = [](const std::string& given) {
    std::ofstream(given) << "half";
    throw std::runtime_error("stopped");
  };
  EXPECT_THROW(static_cast<void>(replaceFile(path("a"), throws, NewFileRights::Shared, nullptr)),
               std::runtime_error);
  const auto removes = [](const std::string& given) { fs::remove(given); };
  EXPECT_FALSE(replaceFile(path("a"), removes, NewFileRights::Shared, &error_));
  EXPECT_EQ(error_->code(), ENOENT);
  EXPECT_EQ(read("a"), "old");
  EXPECT_EQ(fileCount(), 1U);
}

TEST_F(WholeFile, ReadsFilesWholeAndTellsWhereThereIsNone) {
  const std::string bytes(100000, 'b');
  EXPECT_TRUE(replace("a", bytes));
  EXPECT_EQ(readWholeFile(path("a"), nullptr)->data.text(), bytes);
  EXPECT_TRUE(readWholeFile(path("a"), nullptr)->exists);
  EXPECT_FALSE(readWholeFile(path("b"), nullptr)->exists);
  EXPECT_FALSE(readWholeFile(path(""), &error_));
  EXPECT_EQ(error_->code(), EISDIR);
}

TEST_F(WholeFile, KeepsBrokenFilesUnderFreeNames) {
  for (const char* bytes : {"1", "2", "3"}) {
    EXPECT_TRUE(replace("a", bytes));
    EXPECT_TRUE(keepAside(path("a"), &error_));
  }
  EXPECT_EQ(read("a.broken"), "1");
  EXPECT_EQ(read("a.broken2"), "2");
  EXPECT_EQ(read("a.broken3"), "3");
  EXPECT_FALSE(keepAside(path("a"), &error_));
  EXPECT_EQ(error_->code(), ENOENT);
}

}  // namespace
}  // namespace ORLFoundation::internal::files
