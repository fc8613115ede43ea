// What is left of a replacement whose calls fail, whose folders are swapped, or that is killed.
#include <ORLFoundation/files/operations/ORLFDirectoryReplacement.h>
#include <ORLFoundation/files/operations/ORLFDirectoryReplacement_testing.h>
#include <ORLFoundation/platform/files/FileCalls_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/xattr.h>
#include <tests/support/ChildProcess.h>
#include <tests/support/TemporaryFolder.h>

#include <array>
#include <csignal>
#include <stdexcept>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using internal::files::FileCall;
using internal::files::FileCalls;
using Error = std::shared_ptr<const NSError>;

const TreeJson kOld = {{"a", "old"},
                       {"b", {{"c", "old"}, {"gone", "x"}}},
                       {"k", {{"l", "x"}, {"m", {{"n", "x"}}}}},
                       {"u", {{"v", "old"}}},
                       {"w", "old"},
                       {"z", "x"}};
const TreeJson kNew = {{"a", "new"},
                       {"b", {{"c", "new"}, {"fresh", "y"}, {"new", {{"p", "y"}}}}},
                       {"n", {{"o", "y"}, {"empty", TreeJson::object()}}},
                       {"u", "new"},
                       {"w", {{"x", "y"}}}};
/// What is changed in one step each.
constexpr std::array kItems{"/a", "/b/c", "/b/fresh", "/b/new", "/b/gone",
                            "/k", "/n",   "/u",       "/w",     "/z"};

TreeJson itemOf(const TreeJson& tree, const char* item) {
  return tree.value(TreeJson::json_pointer(item), TreeJson());
}

class ORLFDirectoryReplacementFaults : public orlftest::TemporaryFolderTest {
 protected:
  ORLFDirectoryReplacementFaults() : TemporaryFolderTest(orlftest::parentInMemory()) {}
  void makeTrees() {
    for (const char* name : {"destination", "source"}) fs::remove_all(folder_ / name);
    makeTree(folder_ / "destination", kOld);
    makeTree(folder_ / "source", kNew);
    fs::create_symlink("p", folder_ / "source/b/new/link");
    // Not on every file system.
    static_cast<void>(::setxattr(path("source/a").c_str(), "user.note", "1", 1, 0));
    fs::resize_file(folder_ / "source/n/o", 8192);  // with a hole
    wanted_ = treeAt(folder_ / "source");
  }
  bool replace(const std::shared_ptr<FileCalls>& calls, Error* error, bool toDisk = false) {
    NSFileManager manager(calls);
    manager.setBringsCopiesToDisk(toDisk);
    return orlfReplaceContentsOfDirectoryAtURL(manager, NSURL::fileURLWithPath(path("destination")),
                                               NSURL::fileURLWithPath(path("source")), 0, nullptr,
                                               error);
  }
  /// The destination without what replacements work in.
  [[nodiscard]] TreeJson items() const {
    TreeJson tree = treeAt(folder_ / "destination");
    for (auto at = tree.begin(); at != tree.end();)
      at = at.key().starts_with(".orlf-replacing-") ? tree.erase(at) : std::next(at);
    return tree;
  }
  /// "" where each item is the old one or the new one.
  [[nodiscard]] std::string halfDone() const {
    const TreeJson tree = items();
    for (const char* item : kItems) {
      const TreeJson found = itemOf(tree, item);
      if (found != itemOf(kOld, item) && found != itemOf(wanted_, item))
        return std::string(item) + " is " + found.dump();
    }
    return "";
  }
  /// "" where a run without faults brings the destination into line and clears what was left.
  [[nodiscard]] std::string healed() {
    Error error;
    if (!replace(FileCalls::system(), &error)) return error->localizedDescription();
    const TreeJson tree = treeAt(folder_ / "destination");
    return tree == wanted_ ? "" : "it is " + tree.dump();
  }
  /// Whether all is done but that one item was not removed, as where its own values cannot be read
  /// when the plan is made; what it holds is removed then.
  [[nodiscard]] bool isWantedButForOne() const {
    const TreeJson tree = items();
    for (const TreeJson& kept : {TreeJson{{"z", "x"}}, TreeJson{{"b", {{"gone", "x"}}}},
                                 TreeJson{{"k", TreeJson::object()}}}) {
      TreeJson wanted = wanted_;
      wanted.merge_patch(kept);
      if (tree == wanted) return true;
    }
    return false;
  }
  [[nodiscard]] std::size_t countCalls() {
    makeTrees();
    const FileCallsWithMoment counting(std::size_t(-1),
                                       [](FileCall, std::string_view) { return true; });
    Error error;
    EXPECT_TRUE(replace(counting.calls(), &error));
    EXPECT_EQ(items(), wanted_);
    return counting.count();
  }

  TreeJson wanted_;
};

TEST_F(ORLFDirectoryReplacementFaults, EveryCallFailedOnceLeavesItemsOldOrNew) {
  constexpr std::array kNumbers{EIO, ENOSPC, EACCES};
  const std::size_t count = countCalls();
  ASSERT_GT(count, 200U);
  std::size_t failures = 0;
  for (std::size_t moment = 0; moment < count; ++moment) {
    SCOPED_TRACE("call " + std::to_string(moment));
    makeTrees();
    bool isLook = false;
    const FileCallsWithMoment faulty(moment, [&](FileCall call, std::string_view) {
      isLook = call == FileCall::Status || call == FileCall::OpenBeneath;
      errno = kNumbers.at(moment % kNumbers.size());
      return false;
    });
    Error error;
    const bool isDone = replace(faulty.calls(), &error);
    EXPECT_EQ(isDone, error == nullptr);
    failures += isDone ? 0 : 1;
    if (isDone) {
      EXPECT_TRUE(items() == wanted_ || (isLook && isWantedButForOne()));
    } else {
      EXPECT_EQ(halfDone(), "");
    }
    EXPECT_EQ(healed(), "");
  }
  // Most calls matter; those that clear up after a change do not.
  EXPECT_GT(failures, count / 2);
}

TEST_F(ORLFDirectoryReplacementFaults, ADiskThatTakesNoMoreEndsTheWork) {
  constexpr int kSynchronized = 13;  // files, new folders, and the folders of what was changed
  for (int refused = 1; refused <= kSynchronized + 1; ++refused) {
    SCOPED_TRACE(refused);
    makeTrees();
    int count = 0;
    const auto calls = std::make_shared<FileCallsOfTest>([&](FileCall call, std::string_view) {
      errno = EIO;
      return call != FileCall::Synchronize || ++count != refused;
    });
    Error error;
    EXPECT_EQ(replace(calls, &error, true), refused > kSynchronized);
    EXPECT_EQ(count, std::min(refused, kSynchronized));
    EXPECT_TRUE(!error || error->code() == NSFileWriteUnknownError);
    EXPECT_EQ(halfDone(), "");
  }
}

TEST_F(ORLFDirectoryReplacementFaults, KilledAtAnyMomentLeavesItemsOldOrNew) {
  constexpr std::size_t kMoments = 200;
  const std::size_t count = countCalls();
  std::size_t left = 0;
  for (std::size_t index = 0; index < kMoments; ++index) {
    const std::size_t moment = index * count / kMoments;
    SCOPED_TRACE("call " + std::to_string(moment));
    makeTrees();
    const std::string end = orlftest::inChild([&]() -> std::string {
      const FileCallsWithMoment deadly(
          moment, [](FileCall, std::string_view) { return ::raise(SIGKILL) == 0; });
      static_cast<void>(replace(deadly.calls(), nullptr));
      return "lived";
    });
    ASSERT_EQ(end, "killed by 9");
    EXPECT_EQ(halfDone(), "");
    left += treeAt(folder_ / "destination").size() != items().size() ? 1 : 0;
    EXPECT_EQ(healed(), "");
  }
  EXPECT_GT(left, kMoments / 4);  // temporary folders that the next run cleared
}

TEST_F(ORLFDirectoryReplacementFaults, FollowsNoLinkThatIsPutInPlaceOfAFolderMeanwhile) {
  makeTree(folder_ / "outside",
           {{"c", "secret"}, {"gone", "precious"}, {"new", {{"q", "precious"}}}});
  const TreeJson outside = treeAt(folder_ / "outside");
  const std::size_t count = countCalls();
  std::size_t refusals = 0;
  for (const char* side : {"source", "destination"})
    for (std::size_t moment = 0; moment < count; moment += 5) {
      SCOPED_TRACE(std::string(side) + " at call " + std::to_string(moment));
      makeTrees();
      const fs::path folder = folder_ / side / "b";
      const FileCallsWithMoment swapping(moment, [&](FileCall, std::string_view) {
        std::error_code ignored;
        fs::rename(folder, folder_ / side / "moved", ignored);
        fs::create_symlink(folder_ / "outside", folder, ignored);
        return true;
      });
      Error error;
      refusals += replace(swapping.calls(), &error) ? 0 : 1;
      EXPECT_EQ(treeAt(folder_ / "outside"), outside);
      EXPECT_EQ(treeAt(folder_ / "destination").dump().find("secret"), std::string::npos);
    }
  EXPECT_GT(refusals, count / 10);
}

TEST_F(ORLFDirectoryReplacementFaults, LeaveNoTemporaryFolderWhereTheCallerThrows) {
  makeTrees();
  NSFileManager manager;
  manager.setCopyNotice([](const std::string& item) {
    if (item.ends_with("/n")) throw std::runtime_error("stopped");
  });
  EXPECT_THROW(static_cast<void>(orlfReplaceContentsOfDirectoryAtURL(
                   manager, NSURL::fileURLWithPath(path("destination")),
                   NSURL::fileURLWithPath(path("source")), 0, nullptr)),
               std::runtime_error);
  EXPECT_EQ(treeAt(folder_ / "destination"), items()) << "nothing but items is left";
  EXPECT_EQ(halfDone(), "");
}

TEST_F(ORLFDirectoryReplacementFaults, TellsOfAFullDisk) {
  makeTrees();
  const TreeJson before = {{"a", "old"}, {"big", "small"}};
  fs::remove_all(folder_ / "source");
  makeTree(folder_ / "source", {{"a", "new"}, {"big", std::string(1 << 20, 'x')}, {"c", "y"}});
  const auto run = [&](const std::shared_ptr<FileCalls>& calls) -> std::string {
    fs::remove_all(folder_ / "destination/sub");
    makeTree(folder_ / "destination/sub", before);
    NSFileManager manager(calls);
    Error error;
    const bool isDone = orlfReplaceContentsOfDirectoryAtURL(
        manager, NSURL::fileURLWithPath(path("destination/sub")),
        NSURL::fileURLWithPath(path("source")), 0, nullptr, &error);
    if (isDone) return "it was done";
    if (error->code() != NSFileWriteOutOfSpaceError) return error->localizedDescription();
    const TreeJson left = treeAt(folder_ / "destination/sub");
    return left == TreeJson({{"a", "new"}, {"big", "small"}}) ? "" : left.dump();
  };
  bool isDone = false;
  EXPECT_EQ(orlftest::onSmallDisk(folder_ / "destination", 256, isDone,
                                  [&] { return run(FileCalls::system()); }),
            "");
  // The same without the rights to mount a disk: the second file finds no room.
  int writes = 0;
  const auto full = std::make_shared<FileCallsOfTest>([&](FileCall call, std::string_view) {
    const bool isFull = (call == FileCall::Write || call == FileCall::CopyRange) && ++writes > 1;
    if (isFull) errno = ENOSPC;
    return !isFull;
  });
  EXPECT_EQ(run(full), "");
  EXPECT_GT(writes, 1);
}

/// A folder as the ordinary user finds it, and the code that the replacement ends with; 0 for none.
struct RightsCase {
  const char* name;
  const char* path;
  mode_t mode;
  NSInteger code;
};
constexpr std::array kRightsCases{
    RightsCase{"UnreadableFile", "source/b/c", 0000, NSFileReadNoPermissionError},
    RightsCase{"UnreadableFolderInANewOne", "source/n/empty", 0000, NSFileReadNoPermissionError},
    RightsCase{"UnlistableFolder", "destination/b", 0300, NSFileReadNoPermissionError},
    RightsCase{"UnsearchableSource", "source/b", 0600, NSFileReadNoPermissionError},
    RightsCase{"UnwritableFolder", "destination/b", 0500, NSFileWriteNoPermissionError},
    RightsCase{"UnwritableRoot", "destination", 0500, NSFileWriteNoPermissionError},
    RightsCase{"UnwritableRootOfTheSource", "source", 0500, 0},
    RightsCase{"UnwritableNewFolder", "source/n", 0500, 0},
    RightsCase{"UnwritableFolderOverAFile", "source/w", 0500, 0},
    RightsCase{"UnwritableFolderUnderAFile", "destination/u", 0500, 0},
    RightsCase{"UnwritableFolderToRemove", "destination/k", 0500, 0},
    RightsCase{"UnwritableFolderDeepInOneToRemove", "destination/k/m", 0500, 0},
    RightsCase{"UnreadableFileInOneToRemove", "destination/k/m/n", 0000, 0},
};

TEST_F(ORLFDirectoryReplacementFaults, TellsAnOrdinaryUserWhatIsRefused) {
  for (const RightsCase& row : kRightsCases) {
    SCOPED_TRACE(row.name);
    makeTrees();
    fs::permissions(folder_, fs::perms::all);
    const fs::path changed = folder_ / row.path;
    const std::string answer = orlftest::asOrdinaryUser(folder_, [&]() -> std::string {
      if (::chmod(changed.c_str(), row.mode) != 0) return "no chmod";
      Error error;
      const bool isDone = replace(FileCalls::system(), &error);
      const NSInteger code = error ? error->code() : 0;
      if (isDone != (row.code == 0) || code != row.code)
        return error ? error->localizedDescription() : "it was done";
      struct stat status {};
      const bool isCopied = isDone && std::string_view(row.path).starts_with("source/");
      const std::string inDestination =
          isCopied ? path("destination" + std::string(row.path).substr(6)) : "";
      if (isCopied &&
          (::stat(inDestination.c_str(), &status) != 0 || (status.st_mode & 07777) != row.mode))
        return "the copy has another mode";
      ::chmod(changed.c_str(), 0700);
      if (isCopied) ::chmod(inDestination.c_str(), 0700);
      const std::string half = halfDone();
      if (!half.empty()) return half;
      return isDone && items() != wanted_ ? items().dump() : "";
    });
    EXPECT_EQ(answer, "");
  }
}

}  // namespace
}  // namespace ORLFoundation
