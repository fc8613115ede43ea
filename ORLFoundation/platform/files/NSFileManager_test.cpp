#include <ORLFoundation/platform/files/NSFileManager.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/files/FileCalls_testing.h>
#include <ORLFoundation/platform/files/NSFileCoordinator.h>
#include <ORLFoundation/platform/files/NSURLResourceValues.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/ChildProcess.h>
#include <tests/support/TemporaryFolder.h>

#include <filesystem>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using internal::files::FileCall;
using testing::ElementsAre;
using testing::IsEmpty;
using Error = std::shared_ptr<const NSError>;

class FileManager : public orlftest::TemporaryFolderTest {
 protected:
  [[nodiscard]] NSURL url(const std::string& name) const {
    return NSURL::fileURLWithPath(path(name));
  }
  [[nodiscard]] NSInteger code() const {
    return error_ && error_->domain() == NSCocoaErrorDomain ? error_->code() : 0;
  }

  NSFileManager manager_;
  Error error_;
};

TEST_F(FileManager, GivesAttributesOfTheItemItself) {
  write("a", "12345");
  fs::create_symlink("a", path("l"));
  fs::create_hard_link(path("a"), path("h"));
  ASSERT_EQ(::chmod(path("a").c_str(), 0640), 0);
  const auto a = manager_.attributesOfItemAtPath(path("a")),
             h = manager_.attributesOfItemAtPath(path("h")),
             l = manager_.attributesOfItemAtPath(path("l"));
  struct stat status {};
  ASSERT_EQ(::stat(path("a").c_str(), &status), 0);
  EXPECT_EQ(fileSystemNumber(*a), status.st_dev);
  EXPECT_EQ(fileSystemFileNumber(*a), status.st_ino);
  EXPECT_EQ(fileSystemFileNumber(*h), status.st_ino);
  EXPECT_NE(fileSystemFileNumber(*l), status.st_ino);
  EXPECT_EQ(a->objectForKey(NSFileSize).as<NSInteger>(), 5);
  EXPECT_EQ(a->objectForKey(NSFilePosixPermissions).as<NSInteger>(), 0640);
  EXPECT_NEAR(a->objectForKey(NSFileModificationDate).as<NSDate>()->timeIntervalSince1970(),
              static_cast<double>(status.st_mtim.tv_sec), 1.0);
  EXPECT_EQ(fileSystemNumber(NSDictionary()), 0U);
  EXPECT_EQ(fileSystemFileNumber(NSDictionary()), 0U);
}

TEST_F(FileManager, TellsWhyAttributesCannotBeRead) {
  write("a", "");
  EXPECT_EQ(manager_.attributesOfItemAtPath(path("missing"), &error_), nullptr);
  EXPECT_EQ(code(), NSFileReadNoSuchFileError);
  EXPECT_EQ(*error_->userInfo()->objectForKey(NSFilePathErrorKey).as<std::string>(),
            path("missing"));
  EXPECT_EQ(error_->userInfo()->objectForKey(NSUnderlyingErrorKey).as<NSError>()->code(), ENOENT);
  EXPECT_EQ(manager_.attributesOfItemAtPath(path("a/b"), &error_), nullptr);
  EXPECT_EQ(code(), NSFileReadNoSuchFileError);
  EXPECT_EQ(manager_.attributesOfItemAtPath(path(std::string(300, 'x')), &error_), nullptr);
  EXPECT_EQ(code(), NSFileReadInvalidFileNameError);
  EXPECT_EQ(manager_.attributesOfItemAtPath(std::string(5000, 'x'), &error_), nullptr);
  EXPECT_EQ(code(), NSFileReadInvalidFileNameError);
  EXPECT_EQ(manager_.attributesOfItemAtPath("", &error_), nullptr);
  EXPECT_EQ(manager_.attributesOfItemAtPath(path("a") + std::string("\0x", 2), &error_), nullptr);
}

TEST_F(FileManager, FindsWhatLinksLeadTo) {
  fs::create_symlink("nowhere", path("l"));
  EXPECT_TRUE(manager_.fileExistsAtPath(path("")));
  EXPECT_FALSE(manager_.fileExistsAtPath(path("l")));
  EXPECT_FALSE(manager_.fileExistsAtPath(""));
}

TEST_F(FileManager, CreatesFilesWhole) {
  const auto mode = NSDictionary::dictionaryWithEntries({{NSFilePosixPermissions, 0604}});
  EXPECT_TRUE(manager_.createFileAtPath(path("a"), NSData("one"), mode));
  EXPECT_TRUE(manager_.createFileAtPath(path("a"), NSData("two")));
  EXPECT_EQ(read("a"), "two");
  EXPECT_EQ(fs::status(path("a")).permissions(), fs::perms(0604));
  EXPECT_TRUE(manager_.createFileAtPath(path("b"), std::nullopt));
  EXPECT_EQ(read("b"), "");
  EXPECT_FALSE(manager_.createFileAtPath(path("missing/a"), NSData("x")));
  EXPECT_FALSE(manager_.createFileAtPath(path(""), NSData("x")));
  EXPECT_FALSE(manager_.createFileAtPath("", NSData("x")));
  EXPECT_THAT(names(), ElementsAre("a", "b"));
}

TEST_F(FileManager, CreatesNewFilesOverNothing) {
  const auto mode = NSDictionary::dictionaryWithEntries({{NSFilePosixPermissions, 0444}});
  fs::create_symlink("nowhere", path("l"));
  EXPECT_TRUE(manager_.createNewFileAtPath(path("a"), NSData("one"), mode));
  EXPECT_FALSE(manager_.createNewFileAtPath(path("a"), NSData("two")));
  EXPECT_FALSE(manager_.createNewFileAtPath(path("l"), NSData("two")));
  EXPECT_EQ(read("a"), "one");
  EXPECT_EQ(fs::status(path("a")).permissions(), fs::perms(0444));
  EXPECT_FALSE(manager_.createNewFileAtPath("", NSData("x")));
  EXPECT_FALSE(manager_.createNewFileAtPath(path("b") + std::string("\0x", 2), NSData("x")));
  for (const FileCall call : {FileCall::Write, FileCall::SetMode, FileCall::Close}) {
    NSFileManager full(callsThatRefuse(call, ENOSPC));
    EXPECT_FALSE(full.createNewFileAtPath(path("b"), NSData("x"), mode));
  }
  EXPECT_THAT(names(), ElementsAre("a", "l"));
}

TEST_F(FileManager, RemovesFoldersWithAllThatTheyHold) {
  write("f/a/b", "x");
  write("kept", "x");
  fs::create_symlink("../kept", path("f/l"));
  EXPECT_TRUE(manager_.removeItemAtURL(url("f"), &error_));
  EXPECT_THAT(names(), ElementsAre("kept"));
  EXPECT_FALSE(manager_.removeItemAtURL(url("f"), &error_));
  EXPECT_EQ(code(), NSFileNoSuchFileError);
  EXPECT_FALSE(manager_.removeItemAtURL(url("no/f"), &error_));
  EXPECT_EQ(code(), NSFileNoSuchFileError);
  EXPECT_FALSE(manager_.removeItemAtURL(url("kept/f"), &error_));
  EXPECT_EQ(code(), NSFileNoSuchFileError);
  EXPECT_FALSE(manager_.removeItemAtURL(NSURL::fileURLWithPath("/"), &error_));
  EXPECT_EQ(code(), NSFileWriteUnknownError);
  EXPECT_FALSE(manager_.removeItemAtURL(*NSURL::URLWithString("https://a/b"), &error_));
  EXPECT_EQ(code(), NSFileWriteUnsupportedSchemeError);
  EXPECT_FALSE(manager_.removeItemAtURL(*NSURL::URLWithString("file:///kept%00x"), &error_));
  EXPECT_EQ(code(), NSFileWriteInvalidFileNameError);
}

TEST_F(FileManager, CopiesItemsToNewAddresses) {
  write("f/a", "x");
  EXPECT_TRUE(manager_.copyItemAtURL(url("f"), url("g"), &error_));
  EXPECT_EQ(read("g/a"), "x");
  EXPECT_FALSE(manager_.copyItemAtURL(url("f"), url("g"), &error_));
  EXPECT_EQ(code(), NSFileWriteFileExistsError);
  EXPECT_FALSE(manager_.copyItemAtURL(url("missing"), url("h"), &error_));
  EXPECT_EQ(code(), NSFileReadNoSuchFileError);
  EXPECT_FALSE(manager_.copyItemAtURL(url("f"), url("no/h"), &error_));
  EXPECT_EQ(code(), NSFileNoSuchFileError);
  EXPECT_FALSE(manager_.copyItemAtURL(url("f"), url("f/in"), &error_));
  EXPECT_EQ(code(), NSFileWriteUnknownError);
  EXPECT_THAT(names(), ElementsAre("f", "g"));
}

TEST_F(FileManager, LeavesNothingOfACopyThatFailed) {
  write("f/a", "x");
  write("f/b", "x");
  ASSERT_EQ(::mkfifo(path("f/c").c_str(), 0600), 0);
  EXPECT_FALSE(manager_.copyItemAtURL(url("f"), url("g"), &error_));
  EXPECT_EQ(code(), NSFileReadUnknownError);
  EXPECT_THAT(names(), ElementsAre("f"));
}

TEST_F(FileManager, PutsItemsInPlaceOfOthers) {
  write("new", "new");
  write("old/in", "old");
  std::optional<NSURL> result;
  EXPECT_TRUE(manager_.replaceItemAtURL(
      {.replaceItemAtURL = url("old"), .withItemAtURL = url("new")}, &result, &error_));
  EXPECT_EQ(result, url("old"));
  EXPECT_EQ(read("old"), "new");
  EXPECT_THAT(names(), ElementsAre("old"));
  // Where nothing stands it is the same.
  EXPECT_TRUE(
      manager_.replaceItemAtURL({.replaceItemAtURL = url("x"), .withItemAtURL = url("old")}));
  EXPECT_THAT(names(), ElementsAre("x"));
  EXPECT_FALSE(manager_.replaceItemAtURL(
      {.replaceItemAtURL = url("x"), .withItemAtURL = url("missing")}, nullptr, &error_));
  EXPECT_EQ(code(), NSFileNoSuchFileError);
  EXPECT_EQ(read("x"), "new");
}

TEST_F(FileManager, KeepsABackupWhereItIsAskedTo) {
  for (const NSUInteger options : {0U, 2U}) {
    write("new", "new");
    write("old", "old");
    EXPECT_TRUE(manager_.replaceItemAtURL({.replaceItemAtURL = url("old"),
                                           .withItemAtURL = url("new"),
                                           .backupItemName = "saved",
                                           .options = options},
                                          nullptr, &error_));
    EXPECT_EQ(read("old"), "new");
    EXPECT_EQ(fs::exists(path("saved")), options == 2);
    EXPECT_FALSE(fs::exists(path("new")));
  }
  EXPECT_EQ(read("saved"), "old");
  write("new", "newer");
  EXPECT_FALSE(manager_.replaceItemAtURL({.replaceItemAtURL = url("old"),
                                          .withItemAtURL = url("new"),
                                          .backupItemName = "../out",
                                          .options = 2}));
  EXPECT_EQ(read("old"), "new");
}

TEST_F(FileManager, ReplacesNothingByItself) {
  write("f/x", "bytes");
  fs::create_directory_symlink("f", path("l"));
  fs::create_hard_link(path("f/x"), path("f/y"));
  const auto replace = [&](const std::string& item, const std::string& by,
                           const std::optional<std::string>& backup = std::nullopt) {
    return manager_.replaceItemAtURL({.replaceItemAtURL = url(item),
                                      .withItemAtURL = url(by),
                                      .backupItemName = backup,
                                      .options = 2},
                                     nullptr, &error_);
  };
  for (const char* same : {"f/x", "l/x", "f/./x"}) {
    EXPECT_FALSE(replace("f/x", same)) << same;
    EXPECT_EQ(code(), NSFileWriteUnknownError);
  }
  for (const char* backup : {"x", ".", "..", "", "a/b"})
    EXPECT_FALSE(replace("f/x", "f/y", backup));
  EXPECT_THAT(names("f"), ElementsAre("x", "y"));
  EXPECT_TRUE(replace("f/x", "f/y"));  // another name of the file
  EXPECT_THAT(names("f"), ElementsAre("x"));
  EXPECT_EQ(read("f/x"), "bytes");
  write("f/new", "new");
  EXPECT_TRUE(replace("f/x", "f/new", "new"));  // they change names
  EXPECT_EQ(read("f/x") + read("f/new"), "newbytes");
}

TEST_F(FileManager, KeepsABackupWithItsRights) {
  write("a/new", "new");
  write("b/old/in", "old");
  EXPECT_EQ(orlftest::asOrdinaryUser(
                folder_,
                [&]() -> std::string {
                  if (::chmod(path("b/old").c_str(), 0500) != 0) return "no chmod";
                  if (!manager_.replaceItemAtURL({.replaceItemAtURL = url("b/old"),
                                                  .withItemAtURL = url("a/new"),
                                                  .backupItemName = "saved",
                                                  .options = 2},
                                                 nullptr, &error_))
                    return error_->localizedDescription();
                  if (read("b/old") != "new" || read("b/saved/in") != "old") return "not replaced";
                  struct stat status {};
                  ::stat(path("b/saved").c_str(), &status);
                  ::chmod(path("b/saved").c_str(), 0700);
                  return (status.st_mode & 07777) == 0500 ? "" : "the backup has another mode";
                }),
            "");
}

TEST_F(FileManager, TellsOfEachItemThatItCopies) {
  write("f/a", "1");
  write("f/deep/b", "2");
  fs::create_symlink("a", path("f/l"));
  std::vector<std::string> told;
  manager_.setCopyNotice([&](const std::string& copied) { told.push_back(copied); });
  EXPECT_TRUE(manager_.copyItemAtURL(url("f"), url("g")));
  EXPECT_THAT(told,
              ElementsAre(path("f"), path("f/a"), path("f/deep"), path("f/deep/b"), path("f/l")));
  manager_.setCopyNotice(nullptr);
  EXPECT_TRUE(manager_.copyItemAtURL(url("f"), url("h")));
  EXPECT_THAT(told, testing::SizeIs(5));
}

TEST_F(FileManager, MakesTemporaryFoldersOnTheSameFileSystem) {
  write("f/a", "x");
  const auto inFolder = manager_.URLForDirectory(99, 1, url("f"), true);
  const auto beside = manager_.URLForDirectory(99, 1, url("f/a"), false);
  ASSERT_TRUE(inFolder && beside);
  EXPECT_NE(*inFolder, *beside);
  EXPECT_EQ(fs::path(inFolder->path()).parent_path(), path("f"));
  EXPECT_EQ(fs::path(beside->path()).parent_path(), path("f"));
  EXPECT_EQ(fs::status(beside->path()).permissions(), fs::perms(0700));
  EXPECT_FALSE(manager_.URLForDirectory(5, 1, url("f"), true, &error_));
  EXPECT_FALSE(manager_.URLForDirectory(99, 2, url("f"), true, &error_));
  EXPECT_FALSE(manager_.URLForDirectory(99, 1, url("no/f"), true, &error_));
  EXPECT_EQ(code(), NSFileNoSuchFileError);
}

TEST_F(FileManager, SharesOneObjectUnlessAskedForAnother) {
  EXPECT_EQ(NSFileManager::defaultManager(), NSFileManager::defaultManager());
  EXPECT_FALSE(NSFileManager::defaultManager()->bringsCopiesToDisk());
}

TEST_F(FileManager, ResourceValuesAreThoseOfTheItem) {
  write("f/a", "12345");
  fs::create_symlink("f", path("l"));
  const std::vector<std::string_view> keys{NSURLIsDirectoryKey, NSURLFileSizeKey,
                                           NSURLContentModificationDateKey, "other"};
  const auto file = resourceValuesForKeys(url("f/a"), keys, &error_);
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(file->count(), 3U);
  EXPECT_EQ(file->objectForKey(NSURLIsDirectoryKey).as<bool>(), false);
  EXPECT_EQ(file->objectForKey(NSURLFileSizeKey).as<NSInteger>(), 5);
  EXPECT_TRUE(file->objectForKey(NSURLContentModificationDateKey).as<NSDate>());
  const auto folder = resourceValuesForKeys(url("f"), keys);
  EXPECT_EQ(folder->objectForKey(NSURLIsDirectoryKey).as<bool>(), true);
  EXPECT_TRUE(folder->objectForKey(NSURLFileSizeKey).isNil());
  id value = "before";
  EXPECT_TRUE(getResourceValue(url("l"), value, NSURLIsDirectoryKey));
  EXPECT_EQ(value.as<bool>(), false);
  EXPECT_FALSE(getResourceValue(url("missing"), value, NSURLIsDirectoryKey, &error_));
  EXPECT_EQ(code(), NSFileReadNoSuchFileError);
  EXPECT_EQ(value.as<bool>(), false);
  EXPECT_TRUE(getResourceValue(url("f"), value, NSURLFileSizeKey));
  EXPECT_TRUE(value.isNil());
  EXPECT_EQ(resourceValuesForKeys(*NSURL::URLWithString("https://a/b"), keys, &error_), nullptr);
  EXPECT_EQ(code(), NSFileReadUnsupportedSchemeError);
}

TEST_F(FileManager, PathsAreResolved) {
  write("f/a", "");
  fs::create_symlink("f", path("l"));
  fs::create_symlink("loop", path("loop"));
  const std::string base = fs::canonical(folder_).string();
  EXPECT_EQ(stringByResolvingSymlinksInPath(base + "/l/a"), base + "/f/a");
  EXPECT_EQ(stringByResolvingSymlinksInPath(base + "/loop"), base + "/loop");
  EXPECT_EQ(stringByResolvingSymlinksInPath("l/a"), "l/a");
  EXPECT_EQ(URLByResolvingSymlinksInPath(NSURL::fileURLWithPath(base + "/l")).path(), base + "/f");
  const std::string zero = base + std::string("/l\0x", 4);
  EXPECT_EQ(stringByResolvingSymlinksInPath(zero), zero);
  const NSURL web = *NSURL::URLWithString("https://example.com/l");
  EXPECT_EQ(URLByResolvingSymlinksInPath(web), web);
}

TEST_F(FileManager, CoordinationGivesTheAddressOrFails) {
  int calls = 0;
  const auto coordinator = NSFileCoordinator::fileCoordinator();
  coordinator->coordinateReadingItemAtURL(
      url("a"), 0, [&](const NSURL& given) { calls += given == url("a") ? 1 : 0; }, &error_);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(error_, nullptr);
  coordinator->coordinateReadingItemAtURL(
      *NSURL::URLWithString("https://a/b"), 0, [&](const NSURL&) { ++calls; }, &error_);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(code(), NSFileReadUnsupportedSchemeError);
  {
    const Replaced none(NSSetFileCoordinatorMaker, [] { return nullptr; });
    EXPECT_NE(NSFileCoordinator::fileCoordinator(), nullptr);
  }
  EXPECT_FALSE(startAccessingSecurityScopedResource(url("a")));
  stopAccessingSecurityScopedResource(url("a"));
}

}  // namespace
}  // namespace ORLFoundation
