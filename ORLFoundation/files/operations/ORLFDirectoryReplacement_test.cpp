#include <ORLFoundation/files/operations/ORLFDirectoryReplacement.h>

#include <ORLFoundation/files/operations/ORLFDirectoryReplacement_testing.h>
#include <ORLFoundation/platform/files/FileCalls_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using internal::files::FileCall;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using Error = std::shared_ptr<const NSError>;

class ORLFDirectoryReplacement : public orlftest::TemporaryFolderTest {
 protected:
  void make(const TreeJson& destination, const TreeJson& source) {
    makeTree(folder_ / "destination", destination);
    makeTree(folder_ / "source", source);
  }
  bool replace(NSFileManager& manager, NSUInteger options = 0,
               const ORLFDirectoryReplacementHandler& handler = nullptr) {
    error_ = NSError::errorWithDomain("before", 1);
    return orlfReplaceContentsOfDirectoryAtURL(manager, url("destination"), url("source"), options,
                                               handler, &error_);
  }
  bool replace(NSUInteger options = 0, const ORLFDirectoryReplacementHandler& handler = nullptr) {
    NSFileManager manager;
    return replace(manager, options, handler);
  }
  /// Notes every question, "4 b/gone", and answers as the test says.
  ORLFDirectoryReplacementHandler noting(const std::function<bool(const std::string&)>& answer) {
    return [this, answer](const NSURL& asked, ORLFDirectoryReplacementAction action) {
      const std::string prefix = fs::canonical(folder_ / "destination").string() + "/";
      questions_.push_back(std::to_string(action) + " " + asked.path().substr(prefix.size()));
      return answer(questions_.back());
    };
  }
  [[nodiscard]] NSURL url(const std::string& name) const {
    return NSURL::fileURLWithPath(path(name));
  }
  [[nodiscard]] TreeJson destination() const { return treeAt(folder_ / "destination"); }
  [[nodiscard]] NSInteger code() const {
    return error_ && error_->domain() == NSCocoaErrorDomain ? error_->code() : -1;
  }
  [[nodiscard]] std::string description() const {
    return error_ ? error_->localizedDescription() : "";
  }

  Error error_;
  std::vector<std::string> questions_;
};

TEST_F(ORLFDirectoryReplacement, ReplacesEveryFileOfEqualFoldersAndRemovesNothing) {
  const TreeJson tree = {
      {"a", "1"}, {"b", {{"c", "2"}, {"d", {{"e", "3"}}}}}, {"f", TreeJson::object()}};
  make(tree, tree);
  const auto inode = [&](const char* name) {
    struct stat status {};
    EXPECT_EQ(::stat(path(name).c_str(), &status), 0);
    return status.st_ino;
  };
  const auto file = inode("destination/a"), folder = inode("destination/b");
  EXPECT_TRUE(replace(0, noting([](const std::string&) { return true; })));
  EXPECT_EQ(error_, nullptr);
  EXPECT_THAT(questions_, ElementsAre("2 a", "3 b", "2 b/c", "3 b/d", "2 b/d/e", "3 f"));
  EXPECT_EQ(destination(), tree);
  EXPECT_NE(inode("destination/a"), file);
  EXPECT_EQ(inode("destination/b"), folder);
}

TEST_F(ORLFDirectoryReplacement, AsksForNoTemporaryFolderForTwoEmptyFolders) {
  make(TreeJson::object(), TreeJson::object());
  std::vector<std::string> made;
  NSFileManager manager(
      std::make_shared<FileCallsOfTest>([&](FileCall call, std::string_view name) {
        if (call == FileCall::MakeFolder) made.emplace_back(name);
        return true;
      }));
  EXPECT_TRUE(replace(manager));
  EXPECT_THAT(made, IsEmpty());
}

TEST_F(ORLFDirectoryReplacement, ChangesNothingWhereTheHandlerRefusesAll) {
  const TreeJson before = {{"a", "old"}, {"b", {{"gone", "x"}}}, {"k", {{"l", "x"}}}};
  make(before, {{"a", "new"}, {"b", {{"c", "new"}}}, {"n", {{"o", "y"}}}});
  fs::create_directory(folder_ / "destination/.orlf-replacing-0123ABCD");
  EXPECT_TRUE(replace(0, noting([](const std::string&) { return false; })));
  // What the kept folder "k" holds is asked about too; what the vetoed "b" holds is not visited.
  EXPECT_THAT(questions_, ElementsAre("4 b/gone", "4 k", "4 k/l", "2 a", "3 b", "1 n"));
  EXPECT_TRUE(fs::remove(folder_ / "destination/.orlf-replacing-0123ABCD"));
  EXPECT_EQ(destination(), before);
}

TEST_F(ORLFDirectoryReplacement, ChangesNothingWhereThereIsNothingToDo) {
  const TreeJson tree = {{"b", {{"c", TreeJson::object()}}}};
  make(tree, tree);
  fs::create_directory(folder_ / "destination/.orlf-replacing-0123ABCD");
  EXPECT_TRUE(replace(0, noting([](const std::string&) { return true; })));
  EXPECT_THAT(questions_, ElementsAre("3 b", "3 b/c"));
  EXPECT_TRUE(fs::exists(folder_ / "destination/.orlf-replacing-0123ABCD"));
}

TEST_F(ORLFDirectoryReplacement, KeepsWhatOnlyTheDestinationHasWhereTheHandlerSaysSo) {
  make({{"mine", "x"}, {"a", "old"}}, {{"a", "new"}});
  EXPECT_TRUE(replace(0, noting([](const std::string& question) { return question[0] != '4'; })));
  EXPECT_EQ(destination(), TreeJson({{"mine", "x"}, {"a", "new"}}));
}

TEST_F(ORLFDirectoryReplacement, AsksOnceForANewFolder) {
  make(TreeJson::object(), {{"n", {{"o", {{"p", "y"}}}}}});
  EXPECT_TRUE(replace(0, noting([](const std::string&) { return true; })));
  EXPECT_THAT(questions_, ElementsAre("1 n"));
  EXPECT_EQ(destination(), TreeJson({{"n", {{"o", {{"p", "y"}}}}}}));
}

TEST_F(ORLFDirectoryReplacement, TellsOfEachItemThatIsCopied) {
  make({{"a", "old"}, {"b", {{"c", "old"}, {"kept", "x"}}}},
       {{"a", "new"}, {"b", {{"c", "new"}, {"kept", "y"}}}, {"n", {{"o", "y"}}}});
  NSFileManager manager;
  std::vector<std::string> told;
  manager.setCopyNotice([&](const std::string& item) {
    told.push_back(item.substr(fs::canonical(folder_ / "source").native().size()));
  });
  EXPECT_TRUE(replace(manager, 0,
                      noting([](const std::string& question) { return question != "2 b/kept"; })));
  EXPECT_THAT(told, ElementsAre("/a", "/b/c", "/n", "/n/o"));
}

TEST_F(ORLFDirectoryReplacement, CopiesFromAnotherFileSystem) {
  const orlftest::TemporaryFolder elsewhere(orlftest::parentInMemory());
  const TreeJson tree = {{"a", std::string(3 << 20, 'x')}, {"b", {{"c", "y"}}}};
  makeTree(folder_ / "destination", {{"b", "old"}});
  makeTree(elsewhere.path() / "source", tree);
  NSFileManager manager;
  EXPECT_TRUE(orlfReplaceContentsOfDirectoryAtURL(
      manager, url("destination"), NSURL::fileURLWithPath(elsewhere.path().string() + "/source"), 0,
      nullptr, &error_))
      << description();
  EXPECT_EQ(destination(), tree);
}

TEST_F(ORLFDirectoryReplacement, SwapsAFileAndAFolderOfOneName) {
  make({{"u", {{"v", "old"}}}, {"w", "old"}}, {{"u", "new"}, {"w", {{"x", "y"}}}});
  EXPECT_TRUE(replace(0, noting([](const std::string&) { return true; })));
  EXPECT_THAT(questions_, ElementsAre("4 u/v", "2 u", "2 w"));
  EXPECT_EQ(destination(), TreeJson({{"u", "new"}, {"w", {{"x", "y"}}}}));
}

TEST_F(ORLFDirectoryReplacement, PassesOverWhatTheOptionsSay) {
  make({{".h", "x"}, {"z", "x"}}, {{".i", {{"j", "y"}}}, {"a", "new"}});
  EXPECT_TRUE(replace(NSDirectoryEnumerationSkipsHiddenFiles));
  EXPECT_EQ(destination(), TreeJson({{".h", "x"}, {"a", "new"}}));
}

TEST_F(ORLFDirectoryReplacement, CopiesFilesThatAreEqualInDateAndSize) {
  make({{"a", "same"}}, {{"a", "more"}});
  fs::last_write_time(folder_ / "destination/a", fs::last_write_time(folder_ / "source/a"));
  EXPECT_TRUE(replace());
  EXPECT_EQ(read("destination/a"), "more");
}

struct RootsCase {
  const char* name;
  const char *destination, *source;
  NSInteger code;
};
constexpr RootsCase kRootsCases[] = {
    {"MissingSource", "one", "missing", NSFileReadNoSuchFileError},
    {"MissingDestination", "missing", "one", NSFileReadNoSuchFileError},
    {"EqualRoots", "one", "one", NSFileWriteUnknownError},
    {"EqualRootsThroughALink", "one", "link", NSFileWriteUnknownError},
    {"SourceInDestination", "one", "one/in", NSFileWriteUnknownError},
    {"DestinationInSource", "one/in/deep", "one", NSFileWriteUnknownError},
    {"NestedThroughALink", "link/in", "one", NSFileWriteUnknownError},
    {"SourceIsAFile", "one", "file", NSFileReadUnknownError},
    {"DestinationIsAFile", "file", "one", NSFileReadUnknownError},
    {"SourceBelowAFile", "one", "file/x", NSFileReadNoSuchFileError},
    {"LoopOfLinks", "loop", "one", NSFileReadUnknownError},
};

TEST_F(ORLFDirectoryReplacement, RefusesRootsThatAreMissingEqualOrNested) {
  makeTree(folder_ / "trees", {{"one", {{"a", "1"}, {"in", {{"deep", {{"b", "2"}}}}}}},
                               {"file", "x"},
                               {"link", {"link", "one"}},
                               {"loop", {"link", "loop"}}});
  const TreeJson before = treeAt(folder_ / "trees");
  for (const RootsCase& row : kRootsCases) {
    NSFileManager manager;
    Error error;
    EXPECT_FALSE(orlfReplaceContentsOfDirectoryAtURL(
        manager, url("trees/" + std::string(row.destination)),
        url("trees/" + std::string(row.source)), 0, nullptr, &error))
        << row.name;
    ASSERT_NE(error, nullptr) << row.name;
    EXPECT_EQ(error->domain(), NSCocoaErrorDomain) << row.name;
    EXPECT_EQ(error->code(), row.code) << row.name << ": " << error->localizedDescription();
    EXPECT_EQ(treeAt(folder_ / "trees"), before) << row.name;
  }
}

TEST_F(ORLFDirectoryReplacement, NamesTheRootThatCannotBeLookedAt) {
  make({{"a", "old"}}, {{"a", "new"}});
  // Where the roots stand is found out by climbing, first from the destination.
  const auto replaceRefusing = [&](int refused) {
    int climbs = 0;
    NSFileManager manager(
        std::make_shared<FileCallsOfTest>([&](FileCall call, std::string_view name) {
          errno = EACCES;
          return call != FileCall::Open || name != ".." || climbs++ != refused;
        }));
    static_cast<void>(replace(manager));
    return climbs;
  };
  const int climbs = replaceRefusing(-1);
  EXPECT_EQ(error_, nullptr);
  for (const bool isSource : {false, true}) {
    makeTree(folder_ / "destination", {{"a", "old"}});
    replaceRefusing(isSource ? climbs - 1 : 0);
    EXPECT_EQ(code(), NSFileReadNoPermissionError);
    EXPECT_EQ(description(),
              fs::canonical(folder_ / (isSource ? "source" : "destination")).string() +
                  ": Permission denied");
    EXPECT_EQ(destination(), TreeJson({{"a", "old"}}));
  }
}

TEST_F(ORLFDirectoryReplacement, RefusesAddressesOfOtherSchemes) {
  NSFileManager manager;
  Error error;
  const NSURL web = *NSURL::URLWithString("https://example.com/a");
  EXPECT_FALSE(orlfReplaceContentsOfDirectoryAtURL(manager, url(""), web, 0, nullptr, &error));
  EXPECT_EQ(error->code(), NSFileReadUnsupportedSchemeError);
  EXPECT_FALSE(orlfReplaceContentsOfDirectoryAtURL(manager, web, url(""), 0, nullptr));
}

TEST_F(ORLFDirectoryReplacement, TakesALinkForWhatItLeadsTo) {
  make({{"a", "old"}}, {{"a", "new"}, {"l", {"link", "a"}}});
  EXPECT_TRUE(replace(0, noting([](const std::string&) { return true; })));
  EXPECT_THAT(questions_, ElementsAre("2 a", "2 a"));
  EXPECT_EQ(destination(), TreeJson({{"a", "new"}}));
}

TEST_F(ORLFDirectoryReplacement, KeepsLinksInsideOfANewFolder) {
  makeTree(folder_ / "destination", TreeJson::object());
  makeTree(folder_ / "source", {{"n", {{"a", "y"}}}});
  fs::create_symlink("a", folder_ / "source/n/l");
  fs::create_symlink("/nowhere/at/all", folder_ / "source/n/out");
  EXPECT_TRUE(replace()) << description();
  EXPECT_EQ(fs::read_symlink(folder_ / "destination/n/l"), "a");
  EXPECT_EQ(fs::read_symlink(folder_ / "destination/n/out"), "/nowhere/at/all");
}

TEST_F(ORLFDirectoryReplacement, WritesThroughALinkInsideOfTheDestination) {
  make({{"d", {{"c", "old"}}}, {"b", {"link", "d"}}},
       {{"b", {{"c", "new"}}}, {"d", {{"c", "newest"}}}});
  EXPECT_TRUE(replace(0, noting([](const std::string&) { return true; }))) << description();
  EXPECT_THAT(questions_, ElementsAre("3 d", "2 d/c", "3 d", "2 d/c"));
  EXPECT_EQ(treeAt(folder_ / "destination/d"), TreeJson({{"c", "newest"}}));
  EXPECT_TRUE(fs::is_symlink(folder_ / "destination/b"));
}

struct LinkCase {
  const char* name;
  const char *tree, *link, *target;
};
constexpr LinkCase kLinkCases[] = {
    {"OutOfTheSource", "source", "l", "../outside"},
    {"OutOfTheSourceByAFullPath", "source", "l", "/etc"},
    {"OutOfTheSourceThroughNothing", "source", "l", "../missing"},
    {"OutOfTheDestination", "destination", "l", "../outside"},
    {"BackToTheRoot", "source", "b/l", ".."},
    {"InACircle", "source", "l", "l"},
    {"CounterpartLeadsOut", "destination", "a", "../outside/a"},
    {"FolderOfTheCounterpartLeadsOut", "destination", "n", "../outside"},
};

TEST_F(ORLFDirectoryReplacement, RefusesLinksThatLeadOutBeforeAnyChange) {
  for (const LinkCase& row : kLinkCases) {
    fs::remove_all(folder_ / "destination");
    fs::remove_all(folder_ / "source");
    fs::remove_all(folder_ / "outside");
    make({{"b", {{"c", "old"}}}, {"gone", "x"}},
         {{"a", "new"}, {"b", {{"c", "new"}}}, {"n", {{"a", "y"}}}});
    makeTree(folder_ / "outside", {{"a", "outside"}});
    fs::create_symlink(row.target, folder_ / row.tree / row.link);
    const TreeJson before = treeAt(folder_ / "destination");
    EXPECT_FALSE(replace()) << row.name;
    EXPECT_EQ(code(), NSFileReadUnknownError) << row.name;
    EXPECT_EQ(destination(), before) << row.name;
    EXPECT_EQ(treeAt(folder_ / "outside"), TreeJson({{"a", "outside"}})) << row.name;
  }
}

TEST_F(ORLFDirectoryReplacement, NeverOpensPipesSocketsAndDevices) {
  make({{"a", "old"}}, {{"a", "new"}});
  ASSERT_EQ(::mkfifo(path("source/pipe").c_str(), 0600), 0);
  std::vector<std::string> opened;
  NSFileManager manager(
      std::make_shared<FileCallsOfTest>([&](FileCall call, std::string_view name) {
        if (call == FileCall::Open || call == FileCall::OpenBeneath) opened.emplace_back(name);
        return true;
      }));
  EXPECT_FALSE(replace(manager));
  EXPECT_EQ(code(), NSFileReadUnknownError);
  EXPECT_THAT(description(), HasSubstr("neither a file, a folder nor a link"));
  EXPECT_THAT(opened, testing::Not(testing::Contains("pipe")));
  EXPECT_EQ(destination(), TreeJson({{"a", "new"}}));  // earlier changes stay
}

TEST_F(ORLFDirectoryReplacement, ReplacesAPipeOfTheDestinationUnopened) {
  make(TreeJson::object(), {{"a", "new"}});
  ASSERT_EQ(::mkfifo(path("destination/a").c_str(), 0600), 0);
  ASSERT_EQ(::mkfifo(path("destination/gone").c_str(), 0600), 0);
  EXPECT_TRUE(replace()) << description();
  EXPECT_EQ(destination(), TreeJson({{"a", "new"}}));
}

TEST_F(ORLFDirectoryReplacement, TakesNamesOfAnyBytes) {
  const std::string name = "\xff\xfe \n%41\\";
  make(TreeJson::object(), TreeJson::object());
  write("source/" + name, "x");
  write("destination/" + name + "gone", "x");
  EXPECT_TRUE(replace(0, noting([](const std::string&) { return true; }))) << description();
  EXPECT_THAT(questions_, ElementsAre("4 " + name + "gone", "1 " + name));
  EXPECT_EQ(read("destination/" + name), "x");
}

TEST_F(ORLFDirectoryReplacement, CopiesTreesThatAreAsDeepAsPathsMayBe) {
  make(TreeJson::object(), TreeJson::object());
  const std::string name(200, 'd');
  std::string path = "source";
  while (path.size() + name.size() < 3800) path += "/" + name;
  fs::create_directories(folder_ / path);
  write(path + "/a", "deep");
  EXPECT_TRUE(replace()) << description();
  EXPECT_EQ(read("destination" + path.substr(6) + "/a"), "deep");
}

/// A tree deeper than any path that can be named ends in an error, not in a crash.
TEST_F(ORLFDirectoryReplacement, ToldOfTreesThatAreDeeperThanPathsMayBe) {
  make({{"a", "old"}}, {{"a", "new"}, {"b", TreeJson::object()}});
  const std::string name(250, 'd');
  constexpr int kLevels = 40;
  int at = ::open(path("source/b").c_str(), O_PATH | O_DIRECTORY);
  for (int level = 0; level < kLevels; ++level) {
    ASSERT_EQ(::mkdirat(at, name.c_str(), 0700), 0);
    const int next = ::openat(at, name.c_str(), O_PATH | O_DIRECTORY);
    ::close(at);
    at = next;
  }
  ::close(at);
  EXPECT_FALSE(replace());
  EXPECT_EQ(code(), NSFileReadInvalidFileNameError) << description();
  EXPECT_EQ(destination(), TreeJson({{"a", "new"}}));  // nothing of "b"
}

TEST_F(ORLFDirectoryReplacement, BringsItemsAndFoldersToTheDisk) {
  const TreeJson tree = {{"a", "new"}, {"b", {{"c", "y"}}}};
  make({{"a", "old"}}, tree);
  int synchronized = 0;
  NSFileManager manager(std::make_shared<FileCallsOfTest>([&](FileCall call, std::string_view) {
    synchronized += call == FileCall::Synchronize ? 1 : 0;
    return true;
  }));
  manager.setBringsCopiesToDisk(true);
  EXPECT_TRUE(replace(manager)) << description();
  EXPECT_EQ(synchronized, 4);  // a, b/c, b and the root
  manager.setBringsCopiesToDisk(false);
  EXPECT_TRUE(replace(manager));
  EXPECT_EQ(synchronized, 4);
  EXPECT_EQ(destination(), tree);
}

TEST_F(ORLFDirectoryReplacement, LeavesTheFoldersOfLivingReplacementsAlone) {
  make({{"a", "old"}}, {{"a", "new"}});
  fs::create_directory(folder_ / "destination/.orlf-replacing-0123ABCD");
  fs::create_directory(folder_ / "destination/.orlf-replacing-89ABCDEF");
  write("destination/.orlf-replacing-89ABCDEF/dead/file", "x");
  const auto calls = internal::files::FileCalls::system();
  const internal::files::OpenFile living(
      *calls, calls->open(AT_FDCWD, path("destination/.orlf-replacing-0123ABCD"), O_RDONLY));
  ASSERT_TRUE(calls->lock(living.number()));
  EXPECT_TRUE(replace(0, noting([](const std::string&) { return true; })));
  EXPECT_THAT(questions_, ElementsAre("2 a"));
  EXPECT_THAT(names("destination"), UnorderedElementsAre(".orlf-replacing-0123ABCD", "a"));
}

}  // namespace
}  // namespace ORLFoundation
