#include <ORLFoundation/platform/events/NodeWatcher_testing.h>
#include <ORLFoundation/platform/events/internal/NodeState.h>
#include <poll.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <tests/support/TemporaryFolder.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace ORLFoundation::internal::events {
namespace {

using orlftest::kAllNodeFlags;
using orlftest::ScriptedMounts;
using orlftest::WatchedNode;
using testing::ExitedWithCode;
using Set = std::set<std::uint64_t>;

class MountedNode : public orlftest::TemporaryFolderTest {
 protected:
  MountedNode() {
    write("a", "text");
    mount_ = stateOfPath(path("a"))->mount;
  }

  std::uint64_t mount_ = 0;
};

TEST_F(MountedNode, IsRevokedOnceWhenItsMountLeavesTheTable) {
  ASSERT_NE(mount_, 0U);
  auto* const mounts = new ScriptedMounts(Set{1, mount_});
  NodeWatcher watcher(KernelQueue::make(), std::unique_ptr<MountTable>(mounts));
  WatchedNode node(watcher, path("a"));
  WatchedNode unasked(watcher, path("a"), kNodeWrite);
  mounts->change({Set{mount_, mount_ + 1}});
  watcher.pump();
  EXPECT_EQ(node.flags(), 0U) << "another mount went";
  mounts->change({Set{1}});
  watcher.pump();
  EXPECT_EQ(node.flags(), kNodeRevoke);
  EXPECT_EQ(unasked.flags(), 0U);
  mounts->change({Set{}});
  watcher.pump();
  EXPECT_EQ(node.flags(), 0U) << "told once";
}

TEST_F(MountedNode, IsNotRevokedWhereTheTableNeverHadItsMount) {
  auto* const mounts = new ScriptedMounts(Set{1});
  NodeWatcher watcher(KernelQueue::make(), std::unique_ptr<MountTable>(mounts));
  WatchedNode node(watcher, path("a"));
  mounts->change({Set{2}});
  watcher.pump();
  EXPECT_EQ(node.flags(), 0U);
}

TEST_F(MountedNode, StandsInTheTableOfTheProcess) {
  const auto table = MountTable::make();
  EXPECT_TRUE(table->mounts().value().contains(mount_));
  EXPECT_EQ(table->mounts(), table->mounts());
}

TEST_F(MountedNode, IsNotRevokedByATableThatCannotBeRead) {
  auto* const mounts = new ScriptedMounts(Set{1, mount_});
  NodeWatcher watcher(KernelQueue::make(), std::unique_ptr<MountTable>(mounts));
  WatchedNode node(watcher, path("a"));
  mounts->change({std::nullopt});
  watcher.pump();
  EXPECT_EQ(node.flags(), 0U);
  WatchedNode later(watcher, path("a"));
  mounts->change({Set{1, mount_}});
  watcher.pump();
  EXPECT_EQ(node.flags(), 0U);
  mounts->change({std::nullopt, Set{1}});
  watcher.pump();
  EXPECT_EQ(node.flags(), 0U) << "not read yet";
  watcher.pump();
  EXPECT_EQ(node.flags(), kNodeRevoke) << "read again without another change";
  EXPECT_EQ(later.flags(), kNodeRevoke);
}

TEST_F(MountedNode, IsNotRevokedByATableThatChangesWhileItIsRead) {
  auto* const mounts = new ScriptedMounts(Set{1, mount_});
  NodeWatcher watcher(KernelQueue::make(), std::unique_ptr<MountTable>(mounts));
  WatchedNode node(watcher, path("a"));
  mounts->change({Set{1}, Set{}, Set{1, mount_}});
  watcher.pump();
  EXPECT_EQ(node.flags(), 0U);
  EXPECT_EQ(mounts->count(), 3);
  // One that never comes to rest holds nobody up.
  mounts->change(std::deque<ScriptedMounts::Reading>(20, Set{}));
  watcher.pump();
  EXPECT_EQ(node.flags(), 0U);
  EXPECT_LT(mounts->count(), 20);
  watcher.pump();
  watcher.pump();
  EXPECT_EQ(node.flags(), kNodeRevoke);
}

TEST_F(MountedNode, ReadsTheTableWithoutADescriptorToSpare) {
  const auto table = MountTable::make();
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit none{0, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  const auto mounts = table->mounts();
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
  ASSERT_TRUE(mounts.has_value());
  EXPECT_TRUE(mounts->contains(mount_));
}

TEST(MountsOfTable, AreTheNumbersAtTheBeginningsOfLines) {
  EXPECT_EQ(mountsOfTable("36 35 98:0 / / rw - ext4 /dev/a rw\n40 36 0:5 /x\\0401 /p rw\n"),
            (Set{36, 40}));
  EXPECT_EQ(mountsOfTable("18446744073709551615 1"), (Set{18446744073709551615U}));
  for (const char* odd : {"", "\n", "36", "36\n", "36 1\nx 2\n", " 36 1\n", "-1 2\n", "36x 1\n",
                          "18446744073709551616 1\n", "36 1\n\n37 1\n"})
    EXPECT_EQ(mountsOfTable(odd), std::nullopt) << odd;
}

/// Ends the process with 0 when a real mount's end was told as it should be, with 1 when not, and
/// with 77 where the machine lets nobody mount.
[[noreturn]] void runUnderARealMount(const std::string& place) {
  if (::unshare(CLONE_NEWNS) != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) std::_Exit(77);
  if (::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) std::_Exit(77);
  if (::mount("none", place.c_str(), "tmpfs", 0, nullptr) != 0) std::_Exit(77);
  std::ofstream(place + "/a") << "text";
  NodeWatcher watcher(KernelQueue::make(), MountTable::make());
  WatchedNode node(watcher, place + "/a");
  WatchedNode around(watcher, place + "/..");
  const bool isHindered = ::umount2(place.c_str(), 0) != 0 && errno == EBUSY;
  watcher.pump();
  const bool isQuiet = node.flags() == 0;
  if (::umount2(place.c_str(), MNT_DETACH) != 0) std::_Exit(1);
  pollfd table{watcher.mountTable().descriptor(), POLLPRI, 0};
  if (::poll(&table, 1, -1) != 1) std::_Exit(1);
  watcher.pump();
  // Other tests may write into the folder around it.
  const bool isTold = node.flags() == kNodeRevoke && (around.flags() & kNodeRevoke) == 0;
  std::filesystem::remove_all(place);
  std::_Exit(isHindered && isQuiet && isTold ? 0 : 1);
}

TEST_F(MountedNode, IsRevokedByARealUnmounting) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto hasEndedWell = [](int status) {
    return ExitedWithCode(0)(status) || ExitedWithCode(77)(status);
  };
  EXPECT_EXIT(runUnderARealMount(folder_), hasEndedWell, "");
}

}  // namespace
}  // namespace ORLFoundation::internal::events
