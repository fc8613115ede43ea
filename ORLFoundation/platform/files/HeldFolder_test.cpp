#include <ORLFoundation/platform/files/HeldFolder.h>

#include <ORLFoundation/platform/files/FileCalls_testing.h>
#include <ORLFoundation/platform/files/NSDirectoryEnumerator.h>
#include <ORLFoundation/platform/files/NSFileManager.h>
#include <ORLFoundation/platform/files/ReplacementFolder.h>
#include <ORLFoundation/platform/files/ResolvedPath.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>

#include <filesystem>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using namespace internal::files;
using testing::ElementsAre;
using testing::SizeIs;

class Held : public orlftest::TemporaryFolderTest {
 protected:
  Held() : TemporaryFolderTest(orlftest::parentInMemory()) {}
  void SetUp() override {
    write("root/in/deep/file", "x");
    write("outside/file", "secret");
    fs::create_directory_symlink("in", path("root/inner"));
    fs::create_directory_symlink("../outside", path("root/out"));
    fs::create_symlink("in/deep/file", path("root/link"));
  }
};

struct BeneathCase {
  const char* path;
  bool isReached;
};
constexpr BeneathCase kBeneathCases[] = {
    {"", true},
    {"in", true},
    {"in/deep", true},
    {"in/deep/file", true},
    {"inner", false},
    {"inner/deep", false},
    {"out", false},
    {"out/file", false},
    {"link", false},
    {"..", false},
    {"in/../..", false},
    {"../outside/file", false},
    {"in/../../outside", false},
    {"missing", false},
    {"in/deep/file/x", false},
};

/// With the newer call of the kernel and where there is none.
TEST_F(Held, OpensNothingThroughLinksAndNothingOutside) {
  for (const auto& calls : {FileCalls::system(), std::shared_ptr<FileCalls>(callsThatRefuse(
                                                     FileCall::OpenBeneath, ENOSYS))}) {
    const OpenFile root(*calls, calls->open(AT_FDCWD, path("root"), O_PATH | O_DIRECTORY));
    for (const BeneathCase& row : kBeneathCases) {
      const OpenFile file(*calls, calls->openBeneath(root.number(), row.path, O_RDONLY));
      EXPECT_EQ(file.isOpen(), row.isReached) << row.path;
    }
    EXPECT_FALSE(
        OpenFile(*calls, calls->openBeneath(root.number(), std::string(5000, 'x'), O_RDONLY))
            .isOpen());
    EXPECT_EQ(errno, ENAMETOOLONG);
  }
}

TEST_F(Held, GoesOnWithTheFolderThatItHoldsWhateverItsPathSays) {
  HeldFolder root(*FileCalls::system(), path("root"));
  fs::rename(path("root"), path("moved"));
  fs::create_directory_symlink("outside", path("root"));
  struct stat status {};
  EXPECT_TRUE(root.status("in/deep/file", status));
  EXPECT_FALSE(root.status("file", status));
}

TEST_F(Held, ListsInTheOrderOfBytesWithKinds) {
  ASSERT_EQ(::mkfifo(path("root/B").c_str(), 0600), 0);
  write("root/.h", "");
  HeldFolder root(*FileCalls::system(), path("root"));
  const auto entries = root.list("");
  ASSERT_TRUE(entries);
  std::string told;
  for (const FolderEntry& entry : *entries)
    told += entry.name + std::to_string(static_cast<int>(entry.kind)) + " ";
  EXPECT_EQ(told, ".h0 B3 in1 inner2 link2 out2 ");
  EXPECT_FALSE(root.list("inner"));
  EXPECT_FALSE(root.list("missing"));
  EXPECT_EQ(errno, ENOENT);
}

TEST_F(Held, ListsFoldersOfThousandsOfNames) {
  constexpr int kCount = 3000;
  for (int i = 0; i < kCount; ++i) fs::create_symlink("x", path("outside/n" + std::to_string(i)));
  HeldFolder root(*FileCalls::system(), path("outside"));
  EXPECT_THAT(root.list("").value(), SizeIs(kCount + 1));
}

std::vector<std::string> walked(const NSURL& folder, NSUInteger options,
                                const std::string& skipped = "") {
  NSFileManager manager;
  const auto items = manager.enumeratorAtURL(folder, {}, options);
  std::vector<std::string> names;
  while (const auto item = items->nextURL()) {
    names.push_back(std::to_string(items->level()) + item->path().substr(folder.path().size()));
    if (item->lastPathComponent() == skipped) items->skipDescendants();
  }
  EXPECT_TRUE(items->nextObject().isNil());
  return names;
}

TEST_F(Held, IsWalkedEachItemBeforeWhatItHolds) {
  write("root/.h/a", "");
  const NSURL root = NSURL::fileURLWithPath(path("root"));
  EXPECT_THAT(walked(root, 0), ElementsAre("1/.h", "2/.h/a", "1/in", "2/in/deep", "3/in/deep/file",
                                           "1/inner", "1/link", "1/out"));
  EXPECT_THAT(walked(root, NSDirectoryEnumerationSkipsHiddenFiles, "deep"),
              ElementsAre("1/in", "2/in/deep", "1/inner", "1/link", "1/out"));
  EXPECT_THAT(walked(root, NSDirectoryEnumerationSkipsSubdirectoryDescendants),
              ElementsAre("1/.h", "1/in", "1/inner", "1/link", "1/out"));
  EXPECT_THAT(walked(root, 2, "in"),
              ElementsAre("1/.h", "2/.h/a", "1/in", "1/inner", "1/link", "1/out"));
  // Skipping at an item that is no folder leaves nothing out.
  EXPECT_THAT(walked(root, 0, "a"), SizeIs(8));
}

TEST_F(Held, IsWalkedOnBehindAFolderThatCannotBeListedWhereTheHandlerSaysSo) {
  int lists = 0;
  const auto calls = std::make_shared<FileCallsOfTest>([&](FileCall call, std::string_view) {
    errno = EACCES;
    return call != FileCall::List || ++lists != 3;  // the first answer about "in"
  });
  for (const bool goesOn : {true, false}) {
    lists = 0;
    std::vector<std::string> told;
    NSFileManager manager(calls);
    const auto items = manager.enumeratorAtURL(
        NSURL::fileURLWithPath(path("root")), {}, 0,
        [&](const NSURL& url, const std::shared_ptr<const NSError>& error) {
          told.push_back(url.lastPathComponent() + " " + std::to_string(error->code()));
          return goesOn;
        });
    int count = 0;
    while (items->nextURL()) ++count;
    EXPECT_THAT(told, ElementsAre("in 257"));
    EXPECT_EQ(count, goesOn ? 4 : 1);
  }
}

TEST_F(Held, TellsTheHandlerOfAFolderThatIsNotThere) {
  NSFileManager manager;
  NSInteger code = 0;
  const auto items =
      manager.enumeratorAtURL(NSURL::fileURLWithPath(path("missing")), {}, 0,
                              [&](const NSURL&, const std::shared_ptr<const NSError>& error) {
                                code = error->code();
                                return true;
                              });
  EXPECT_EQ(items->nextURL(), std::nullopt);
  EXPECT_EQ(code, NSFileReadNoSuchFileError);
}

TEST_F(Held, TellsTheHandlerOfAnAddressThatNamesNoFolder) {
  const struct {
    std::string address;
    NSInteger code;
  } rows[] = {{"file://" + path("root") + "%00x", NSFileReadInvalidFileNameError},
              {"https://example.com" + path("root"), NSFileReadUnsupportedSchemeError}};
  for (const auto& row : rows) {
    NSFileManager manager;
    std::vector<NSInteger> codes;
    const auto items =
        manager.enumeratorAtURL(*NSURL::URLWithString(row.address), {}, 0,
                                [&](const NSURL& url, const std::shared_ptr<const NSError>& error) {
                                  EXPECT_EQ(url.absoluteString(), row.address);
                                  codes.push_back(error->code());
                                  return true;
                                });
    EXPECT_EQ(items->nextURL(), std::nullopt);
    EXPECT_THAT(codes, ElementsAre(row.code));
    EXPECT_EQ(manager.enumeratorAtURL(*NSURL::URLWithString(row.address), {}, 0)->nextURL(),
              std::nullopt);
  }
}

struct ResolvedCase {
  const char *path, *resolved;
};
constexpr ResolvedCase kResolvedCases[] = {
    {"root/in", "root/in"},
    {"root/inner/deep/./../deep", "root/in/deep"},
    {"root/inner/../out/file", "outside/file"},
    {"root/link", "root/in/deep/file"},
    {"root/dangling/x", "nowhere/x"},
    {"root//missing/../in/", "root/in"},
    {"root/full", "outside"},
};

TEST_F(Held, ResolvesLinksAlsoWhereNothingStands) {
  fs::create_symlink("../nowhere", path("root/dangling"));
  fs::create_symlink(fs::canonical(path("outside")), path("root/full"));
  const std::string base = fs::canonical(folder_).string() + "/";
  FileCalls& calls = *FileCalls::system();
  for (const ResolvedCase& row : kResolvedCases)
    EXPECT_EQ(resolvedPath(calls, base + row.path), base + row.resolved) << row.path;
  EXPECT_EQ(resolvedPath(calls, "/"), "/");
  EXPECT_EQ(resolvedPath(calls, "/../.."), "/");
  EXPECT_EQ(resolvedPath(calls, "relative"), std::nullopt);
  fs::create_symlink("loop2", path("loop1"));
  fs::create_symlink("loop1", path("loop2"));
  EXPECT_EQ(resolvedPath(calls, base + "loop1/x"), std::nullopt);
  EXPECT_EQ(errno, ELOOP);
}

TEST_F(Held, TemporaryFoldersAreLockedAndClearedWhenTheirOwnersAreGone) {
  HeldFolder root(*FileCalls::system(), path("root"));
  FileOutcome failure;
  auto living = ReplacementFolder::make(root, failure);
  ASSERT_NE(living, nullptr);
  write("root/.orlf-replacing-00000000/deep/file", "x");
  write("root/.orlf-replacing-0000000g/file", "not one of ours");
  write("root/.orlf-replacing-00000001", "a file");
  ReplacementFolder::removeAbandoned(root);
  EXPECT_TRUE(fs::exists(living->folder().path()));
  EXPECT_FALSE(fs::exists(path("root/.orlf-replacing-00000000")));
  EXPECT_TRUE(fs::exists(path("root/.orlf-replacing-0000000g/file")));
  EXPECT_TRUE(fs::exists(path("root/.orlf-replacing-00000001")));
  EXPECT_TRUE(ReplacementFolder::isName(nameOfPath(living->folder().path())));
  living->remove();
  EXPECT_FALSE(fs::exists(living->folder().path()));
}

/// Another process may take a new folder for an abandoned one before it is locked.
TEST_F(Held, TemporaryFoldersAreMadeAgainWhereAnotherLocksThem) {
  struct {
    int number, refusals, made;
    bool isDone;
  } const rows[] = {{EWOULDBLOCK, 3, 4, true}, {EWOULDBLOCK, 100, 8, false}, {EIO, 1, 1, false}};
  for (const auto& row : rows) {
    int locks = 0, made = 0;
    const auto calls = std::make_shared<FileCallsOfTest>([&](FileCall call, std::string_view) {
      made += call == FileCall::MakeFolder ? 1 : 0;
      errno = row.number;
      return call != FileCall::Lock || ++locks > row.refusals;
    });
    HeldFolder root(*calls, path("outside"));
    FileOutcome failure;
    const auto folder = ReplacementFolder::make(root, failure);
    EXPECT_EQ(folder != nullptr, row.isDone);
    EXPECT_EQ(made, row.made);
    if (!row.isDone) {
      ASSERT_TRUE(failure);
      EXPECT_EQ(failure->number, row.number);
    }
    if (folder) folder->remove();
    EXPECT_THAT(names("outside"), ElementsAre("file"));
  }
}

}  // namespace
}  // namespace ORLFoundation
