#include <ORLFoundation/files/operations/ORLFFileUtilities.h>

#include <ORLFoundation/files/operations/ORLFURLAccess.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/files/NSFileCoordinator.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>

#include <filesystem>
#include <stdexcept>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using Error = std::shared_ptr<const NSError>;

class FileUtilities : public orlftest::TemporaryFolderTest {
 protected:
  NSFileManager manager_;
};

TEST_F(FileUtilities, KnowOneFileByItsIdentity) {
  write("a/b/c", "x");
  write("other", "x");
  fs::create_hard_link(path("a/b/c"), path("hard"));
  fs::create_directory_symlink("a", path("l"));
  EXPECT_TRUE(orlfIsPathEquivalentToPath(manager_, path("a/b/c"), path("hard")));
  EXPECT_TRUE(orlfIsPathEquivalentToPath(manager_, path("a//b/../b/c"), path("l/b/c")));
  EXPECT_FALSE(orlfIsPathEquivalentToPath(manager_, path("a"), path("l")));
  EXPECT_TRUE(orlfIsPathEquivalentToPath(manager_, path("a"), path("l/")));
  EXPECT_FALSE(orlfIsPathEquivalentToPath(manager_, path("hard"), path("other")));
  Error error;
  EXPECT_FALSE(orlfIsPathEquivalentToPath(manager_, path("a"), path("missing"), &error));
  EXPECT_EQ(error->code(), NSFileReadNoSuchFileError);
}

TEST_F(FileUtilities, FindWhatStandsAboveAPath) {
  write("a/b/c", "x");
  Error error = NSError::errorWithDomain("before", 1);
  EXPECT_TRUE(orlfIsPathAnsestorOfPath(manager_, path("a"), path("a/b/c"), &error));
  EXPECT_EQ(error, nullptr);
  EXPECT_TRUE(orlfIsPathAnsestorOfPath(manager_, path("a"), path("a")));
  EXPECT_FALSE(orlfIsPathAnsestorOfPath(manager_, "/", path("a")));
  EXPECT_FALSE(orlfIsPathAnsestorOfPath(manager_, "/", "/"));
  EXPECT_FALSE(orlfIsPathAnsestorOfPath(manager_, path("a/b"), path("a")));
  EXPECT_TRUE(orlfIsPathAnsestorOfPath(manager_, path("a"), path("a/no/where/at/all")));
  error = NSError::errorWithDomain("before", 1);
  EXPECT_FALSE(orlfIsPathAnsestorOfPath(manager_, path("a"), "", &error));
  EXPECT_EQ(error->domain(), "before");
}

/// The path without its last name, told in another way: by the standard library.
TEST_F(FileUtilities, LookAtEveryFolderAboveAPath) {
  class Asked final : public NSFileManager {
   public:
    std::shared_ptr<NSDictionary> attributesOfItemAtPath(const std::string& path,
                                                         NSErrorSlot) const override {
      if (path != "first") asked.push_back(path);
      return nullptr;
    }
    mutable std::vector<std::string> asked;
  };
  const auto asked = [](const std::string& path) {
    const Asked manager;
    EXPECT_FALSE(orlfIsPathAnsestorOfPath(manager, "first", path));
    return manager.asked;
  };
  EXPECT_THAT(asked("/a/b/c"), ElementsAre("/a/b/c", "/a/b", "/a"));
  EXPECT_THAT(asked("/a/b/"), ElementsAre("/a/b/", "/a"));
  EXPECT_THAT(asked("a//b"), ElementsAre("a//b", "a"));
  EXPECT_THAT(asked("a"), ElementsAre("a"));
  EXPECT_THAT(asked("//a"), ElementsAre("//a"));
  EXPECT_THAT(asked("///"), ElementsAre("///"));
}

TEST_F(FileUtilities, AskForTheSecondPathFirst) {
  class Asked final : public NSFileManager {
   public:
    std::shared_ptr<NSDictionary> attributesOfItemAtPath(const std::string& path,
                                                         NSErrorSlot error) const override {
      asked.push_back(path);
      NSFillErrorSlot(error, path, 1, "");
      return nullptr;
    }
    mutable std::vector<std::string> asked;
  };
  const Asked manager;
  Error error;
  EXPECT_FALSE(orlfIsPathEquivalentToPath(manager, "first", "second", &error));
  EXPECT_THAT(manager.asked, ElementsAre("second", "first"));
  EXPECT_EQ(error->domain(), "first") << "the error of the last that failed";
  manager.asked.clear();
  EXPECT_FALSE(orlfIsPathAnsestorOfPath(manager, "first", "/a/b"));
  EXPECT_THAT(manager.asked, ElementsAre("/a/b", "first", "/a", "first"));
}

TEST_F(FileUtilities, CreateFilesOfNewNames) {
  write("x", "old");
  write("a.txt", "old");
  write("a-1.txt", "old");
  fs::create_symlink("nowhere", path("l"));
  EXPECT_EQ(createUniqueFileAtPath(manager_, path("x"), NSData("new")), path("x-1"));
  EXPECT_EQ(createUniqueFileAtPath(manager_, path("a.txt"), NSData("new")), path("a-2.txt"));
  EXPECT_EQ(createUniqueFileAtPath(manager_, path("l"), NSData("new")), path("l-1"));
  EXPECT_EQ(createUniqueFileAtPath(manager_, path("free"), std::nullopt), path("free"));
  EXPECT_EQ(read("x") + read("x-1") + read("a-2.txt") + read("free"), "oldnewnew");
  EXPECT_FALSE(fs::exists(path("nowhere")));
}

TEST_F(FileUtilities, TakeSlashesAtTheEndForNoPartOfTheName) {
  class Taken final : public NSFileManager {
   public:
    bool createNewFileAtPath(const std::string& path, const std::optional<NSData>&,
                             const std::shared_ptr<NSDictionary>&) override {
      tried.push_back(path);
      return tried.size() == 2;
    }
    bool fileExistsAtPath(const std::string&) const override { return false; }
    std::vector<std::string> tried;
  };
  const auto tried = [](const std::string& path) {
    Taken manager;
    const std::string made = createUniqueFileAtPath(manager, path, NSData("new"));
    EXPECT_EQ(manager.tried.back(), made);
    return manager.tried;
  };
  EXPECT_THAT(tried("/t/x.y//"), ElementsAre("/t/x.y//", "/t/x-1.y"));
  EXPECT_THAT(tried("x/"), ElementsAre("x/", "x-1"));
  EXPECT_THAT(tried("/"), ElementsAre("/", "/-1"));
}

TEST_F(FileUtilities, CountOnAsLongAsNoFileCanBeMade) {
  class Stubborn final : public NSFileManager {
   public:
    bool createNewFileAtPath(const std::string&, const std::optional<NSData>&,
                             const std::shared_ptr<NSDictionary>&) override {
      return ++tries > 20000;
    }
    int tries = 0;
  };
  Stubborn manager;
  EXPECT_EQ(createUniqueFileAtPath(manager, path("no/x.y"), NSData("new")), path("no/x-20000.y"));
}

TEST_F(FileUtilities, RemoveWhatIsThereAndMindNothingThatIsNot) {
  write("a", "x");
  Error error;
  EXPECT_TRUE(orlfRemoveItemAtURL(manager_, NSURL::fileURLWithPath(path("a")), &error));
  EXPECT_TRUE(orlfRemoveItemAtURL(manager_, NSURL::fileURLWithPath(path("a")), &error));
  EXPECT_EQ(error, nullptr);
  EXPECT_FALSE(orlfRemoveItemAtURL(manager_, *NSURL::URLWithString("https://a/b"), &error));
  EXPECT_EQ(error->code(), NSFileWriteUnsupportedSchemeError);
}

TEST_F(FileUtilities, AccessTellsOfTheCoordinationAlone) {
  const NSURL url = NSURL::fileURLWithPath(path("a"));
  const Error own = NSError::errorWithDomain("own", 1);
  Error error = own;
  EXPECT_TRUE(orlfCoordinatedSecureAccessWithOptions(
      url, 0, [&](const NSURL&) { return own; }, &error));
  EXPECT_EQ(error, nullptr);
  const NSURL web = *NSURL::URLWithString("https://example.com/a");
  bool isCalled = false;
  EXPECT_FALSE(orlfCoordinatedSecureAsynchronousAccessWithOptions(
      web, 0,
      [&](const NSURL&, const ORLFURLRelinquish&) {
        isCalled = true;
        return own;
      },
      &error));
  EXPECT_FALSE(isCalled);
  EXPECT_EQ(error->code(), NSFileReadUnsupportedSchemeError);
}

/// Counts the accesses that are under way.
struct CountedScope final : NSSecurityScope {
  bool startAccessing(const NSURL&) override {
    ++underWay;
    return true;
  }
  void stopAccessing(const NSURL&) override { --underWay; }
  int underWay = 0;
};

TEST_F(FileUtilities, AccessEndsWhereTheAccessorThrows) {
  const auto scope = std::make_shared<CountedScope>();
  const Replaced inUse(NSSetSecurityScope, std::shared_ptr<NSSecurityScope>(scope));
  EXPECT_THROW(orlfCoordinatedSecureAccessWithOptions(NSURL::fileURLWithPath(path("a")), 0,
                                                      [&](const NSURL&) -> Error {
                                                        EXPECT_EQ(scope->underWay, 1);
                                                        throw std::runtime_error("no");
                                                      }),
               std::runtime_error);
  EXPECT_EQ(scope->underWay, 0);
}

}  // namespace
}  // namespace ORLFoundation
