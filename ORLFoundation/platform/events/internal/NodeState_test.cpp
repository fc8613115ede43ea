#include <ORLFoundation/platform/events/internal/NodeState.h>

#include <ORLFoundation/platform/events/NodeFlags.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/stat.h>

#include <cerrno>
#include <random>

namespace ORLFoundation::internal::events {
namespace {

class ScriptedName final : public NodeName {
 public:
  ScriptedName(bool isGone, bool isChanged) : isGone_(isGone), isChanged_(isChanged) {}
  [[nodiscard]] bool isGone() const override { return isGone_; }
  [[nodiscard]] bool isChanged() const override { return isChanged_; }

 private:
  bool isGone_;
  bool isChanged_;
};

const ScriptedName kInPlace(false, false);
const ScriptedName kMoved(false, true);
const ScriptedName kLost(true, true);

/// A file that was quiet for a second.
NodeState file(std::uint32_t links = 1) {
  NodeState state;
  state.device = 1;
  state.number = 2;
  state.links = links;
  state.mode = S_IFREG | 0600;
  state.size = 100;
  state.modified = state.changed = 1'000'000'000;
  state.seen = 2'000'000'000;
  return state;
}

NodeState folder(std::uint32_t links = 2) {
  NodeState state = file(links);
  state.mode = S_IFDIR | 0700;
  return state;
}

TEST(NodeState, ReadsDescriptorsAndPaths) {
  const auto root = stateOfPath("/");
  ASSERT_TRUE(root.has_value());
  EXPECT_TRUE(root->isFolder());
  EXPECT_TRUE(root->isSameNode(*stateOfPath("/proc/self/root")));
  EXPECT_FALSE(root->isSameNode(*stateOfPath("/proc")));
  EXPECT_FALSE(stateOfPath("/proc/self/mountinfo")->isFolder());
  EXPECT_EQ(stateOfPath("/no such path"), std::nullopt);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(stateOfDescriptor(-1), std::nullopt);
  EXPECT_EQ(errno, EBADF);
}

TEST(NodeState, CountsALostNameAsADeletionAndOthersAsLinks) {
  EXPECT_EQ(flagsOfEvents(IN_ATTRIB, file(1), file(0), kLost), kNodeDelete | kNodeLink);
  EXPECT_EQ(flagsOfEvents(IN_ATTRIB, file(2), file(1), kLost), kNodeDelete | kNodeLink);
  EXPECT_EQ(flagsOfEvents(IN_ATTRIB, file(2), file(1), kInPlace), kNodeLink);
  EXPECT_EQ(flagsOfEvents(IN_ATTRIB, file(1), file(2), kLost), kNodeLink);
  EXPECT_EQ(flagsOfEvents(IN_ATTRIB, file(0), file(0), kLost), kNodeAttribute) << "once gone";
}

TEST(NodeState, SeesTheEndOfAFolderWithoutAnEvent) {
  EXPECT_EQ(flagsOfEvents(0, folder(2), folder(0), kLost), kNodeDelete | kNodeLink);
  EXPECT_EQ(flagsOfEvents(IN_DELETE, folder(3), folder(2), kLost), kNodeLink | kNodeWrite)
      << "a folder inside went";
  EXPECT_EQ(flagsOfEvents(0, folder(2), folder(2), kInPlace), 0U);
}

TEST(NodeState, CountsAMoveOfItsOwnName) {
  EXPECT_EQ(flagsOfEvents(IN_MOVE_SELF, file(), file(), kInPlace), kNodeRename) << "and back again";
  EXPECT_EQ(flagsOfEvents(IN_MOVE_SELF, file(2), file(2), kMoved), kNodeRename);
  EXPECT_EQ(flagsOfEvents(IN_MOVE_SELF, file(2), file(2), kInPlace), 0U);
  EXPECT_EQ(flagsOfEvents(IN_MOVE_SELF, folder(5), folder(5), kInPlace), kNodeRename);
}

TEST(NodeState, TellsGrowthFromWriting) {
  NodeState larger = file();
  larger.size = 101;
  EXPECT_EQ(flagsOfEvents(IN_MODIFY, file(), larger, kInPlace), kNodeWrite | kNodeExtend);
  EXPECT_EQ(flagsOfEvents(IN_MODIFY, larger, file(), kInPlace), kNodeWrite);
  EXPECT_EQ(flagsOfEvents(IN_CREATE, folder(), folder(), kInPlace), kNodeWrite);
  EXPECT_EQ(flagsOfEvents(IN_OPEN, file(), larger, kInPlace), 0U);
}

TEST(NodeState, TellsTheKernelsOwnEnds) {
  EXPECT_EQ(flagsOfEvents(IN_DELETE_SELF, file(), file(), kInPlace), kNodeDelete);
  EXPECT_EQ(flagsOfEvents(IN_UNMOUNT, file(), file(), kInPlace), kNodeRevoke);
}

TEST(NodeState, TellsAttributesBesideLinks) {
  NodeState shared = file(2);
  shared.mode = S_IFREG | 0644;
  EXPECT_EQ(flagsOfEvents(IN_ATTRIB, file(1), shared, kInPlace), kNodeLink | kNodeAttribute);
  EXPECT_EQ(flagsOfEvents(IN_ATTRIB, file(1), file(1), kInPlace), kNodeAttribute);
  NodeState given = file(2);
  given.user = 5;
  EXPECT_EQ(flagsOfEvents(IN_ATTRIB, file(1), given, kInPlace), kNodeLink | kNodeAttribute);
  given = file(2);
  given.group = 5;
  EXPECT_EQ(flagsOfEvents(IN_ATTRIB, file(1), given, kInPlace), kNodeLink | kNodeAttribute);
}

TEST(NodeState, ComparesWhatEventsWereLostFor) {
  EXPECT_EQ(flagsOfDifference(file(), file(), kInPlace), 0U);
  NodeState now = file();
  now.modified += 1;
  EXPECT_EQ(flagsOfDifference(file(), now, kInPlace), kNodeWrite);
  now = file();
  now.size = 1;
  EXPECT_EQ(flagsOfDifference(file(), now, kInPlace), kNodeWrite);
  now.size = 1000;
  EXPECT_EQ(flagsOfDifference(file(), now, kInPlace), kNodeWrite | kNodeExtend);
  now = file();
  now.changed += 1;
  EXPECT_EQ(flagsOfDifference(file(), now, kInPlace), kNodeAttribute);
  now.mode = S_IFREG | 0644;
  EXPECT_EQ(flagsOfDifference(file(), now, kInPlace), kNodeAttribute);
  EXPECT_EQ(flagsOfDifference(file(), file(0), kLost), kNodeDelete | kNodeLink);
  EXPECT_EQ(flagsOfDifference(file(), file(), kMoved), kNodeRename);
  EXPECT_EQ(flagsOfDifference(file(2), file(1), kLost), kNodeDelete | kNodeLink | kNodeRename);
}

TEST(NodeState, TakesWhatTheClockCannotTellForAWrite) {
  NodeState fresh = file();
  fresh.seen = fresh.changed + 19'999'999;
  EXPECT_EQ(flagsOfDifference(fresh, fresh, kInPlace), kNodeWrite);
  fresh.seen = fresh.changed + 20'000'000;
  EXPECT_EQ(flagsOfDifference(fresh, fresh, kInPlace), 0U);
  fresh.seen = fresh.changed - 1'000'000'000;  // another machine's clock
  EXPECT_EQ(flagsOfDifference(fresh, fresh, kInPlace), kNodeWrite);
}

}  // namespace
}  // namespace ORLFoundation::internal::events
