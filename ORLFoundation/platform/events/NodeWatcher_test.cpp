#include <ORLFoundation/platform/events/NodeWatcher.h>

#include <ORLFoundation/platform/events/NodeWatcher_testing.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <tests/support/ChildProcess.h>
#include <tests/support/TemporaryFolder.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <thread>

namespace ORLFoundation::internal::events {
namespace {

namespace fs = std::filesystem;
using orlftest::kAllNodeFlags;
using orlftest::NodeWatcherTest;
using orlftest::WatchedNode;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(NodeWatcherTest, TellsWhatIsAskedAndNoMore) {
  for (std::uint64_t asked = 0; asked <= kAllNodeFlags; ++asked) {
    write("each", "text");
    WatchedNode node(watcher_, path("each"), asked);
    orlftest::appendToNode(path("each"));
    fs::permissions(path("each"), fs::perms::owner_all);
    fs::create_hard_link(path("each"), path("other"));
    fs::rename(path("each"), path("moved"));
    fs::remove(path("other"));
    fs::remove(path("moved"));
    EXPECT_EQ(flagsAfterPump(node), asked & ~std::uint64_t{kNodeRevoke}) << asked;
  }
}

TEST_F(NodeWatcherTest, JoinsWhatCameTogether) {
  WatchedNode node(watcher_, path("a"));
  orlftest::appendToNode(path("a"));
  fs::rename(path("a"), path("b"));
  watcher_.pump();
  orlftest::appendToNode(path("b"));
  watcher_.pump();
  watcher_.pump();
  EXPECT_THAT(node.words(),
              ElementsAre(kNodeWrite | kNodeExtend | kNodeRename, kNodeWrite | kNodeExtend));
}

TEST_F(NodeWatcherTest, GivesEachUserOfAFileItsOwnFlagsAndOutlivesTheOthers) {
  fs::create_hard_link(path("a"), path("b"));
  WatchedNode writes(watcher_, path("a"), kNodeWrite);
  WatchedNode rights(watcher_, path("b"), kNodeAttribute);
  WatchedNode both(watcher_, path("a"), kNodeWrite | kNodeAttribute);
  EXPECT_EQ(watcher_.nodes(), 1U);
  const auto change = [&] {
    orlftest::appendToNode(path("a"));
    fs::permissions(path("a"), fs::perms::owner_write, fs::perm_options::replace);
    fs::permissions(path("a"), fs::perms::owner_all, fs::perm_options::replace);
    watcher_.pump();
  };
  change();
  EXPECT_EQ(writes.flags(), kNodeWrite);
  EXPECT_EQ(rights.flags(), kNodeAttribute);
  EXPECT_EQ(both.flags(), kNodeWrite | kNodeAttribute);
  writes.stop();
  change();
  EXPECT_THAT(writes.words(), IsEmpty());
  EXPECT_EQ(rights.flags(), kNodeAttribute);
  EXPECT_EQ(both.flags(), kNodeWrite | kNodeAttribute);
  both.stop();
  change();
  EXPECT_EQ(rights.flags(), kNodeAttribute);
  EXPECT_THAT(both.words(), IsEmpty());
  rights.stop();
  EXPECT_EQ(watcher_.nodes(), 0U);
}

TEST_F(NodeWatcherTest, TellsOfTwoNamesEachOfItsOwn) {
  fs::create_hard_link(path("a"), path("b"));
  WatchedNode first(watcher_, path("a"));
  WatchedNode second(watcher_, path("b"));
  fs::rename(path("a"), path("c"));
  EXPECT_EQ(flagsAfterPump(first), kNodeRename);
  EXPECT_EQ(second.flags(), 0U);
  fs::remove(path("b"));
  EXPECT_EQ(flagsAfterPump(second), kNodeDelete | kNodeLink);
  EXPECT_EQ(first.flags(), kNodeLink);
  fs::remove(path("c"));
  EXPECT_EQ(flagsAfterPump(first), kNodeDelete | kNodeLink);
}

TEST_F(NodeWatcherTest, TellsOfTheEndOfAFolder) {
  fs::create_directory(path("e"));
  WatchedNode folder(watcher_, path("d"));
  WatchedNode other(watcher_, path("e"));
  WatchedNode around(watcher_, folder_, kNodeRename);
  orlftest::appendToNode(path("d/x"));
  EXPECT_EQ(flagsAfterPump(folder) & ~std::uint64_t{kNodeExtend}, kNodeWrite);
  fs::rename(path("d"), path("e/d"));
  EXPECT_EQ(flagsAfterPump(folder), kNodeRename);
  EXPECT_NE(other.flags() & kNodeWrite, 0U);
  fs::remove(path("e/d/x"));
  fs::remove(path("e/d"));
  EXPECT_EQ(flagsAfterPump(folder) & (kNodeDelete | kNodeWrite), kNodeDelete | kNodeWrite);
  EXPECT_EQ(other.flags() & (kNodeDelete | kNodeWrite), kNodeWrite);
  EXPECT_THAT(around.words(), IsEmpty()) << "guards are nobody else's matter";
}

/// The folder around it was not to be read when it was first watched.
TEST_F(NodeWatcherTest, TellsOfTheEndOfAFolderThatCameOutOfAClosedOne) {
  fs::create_directories(path("closed/inner"));
  EXPECT_EQ(orlftest::asOrdinaryUser(folder_,
                                     [&]() -> std::string {
                                       if (::chmod(path("closed").c_str(), 0300) != 0)
                                         return "no chmod";
                                       NodeWatcher watcher(KernelQueue::make(), MountTable::make());
                                       WatchedNode folder(watcher, path("closed/inner"));
                                       if (!folder.isWatched()) return "not watched";
                                       fs::rename(path("closed/inner"), path("inner"));
                                       ::chmod(path("closed").c_str(), 0700);
                                       watcher.pump();
                                       if (folder.flags() != kNodeRename)
                                         return "the move was not told";
                                       fs::remove(path("inner"));
                                       watcher.pump();
                                       return (folder.flags() & kNodeDelete) != 0
                                                  ? ""
                                                  : "the end was not told";
                                     }),
            "");
}

TEST_F(NodeWatcherTest, TellsOfAFolderThatIsReplaced) {
  WatchedNode folder(watcher_, path("d"));
  fs::create_directory(path("e"));
  fs::rename(path("e"), path("d"));
  EXPECT_EQ(flagsAfterPump(folder) & kNodeDelete, kNodeDelete);
  folder.stop();
  EXPECT_EQ(watcher_.nodes(), 0U) << "the guard went with it";
}

TEST_F(NodeWatcherTest, NeverTellsAFolderOfWritesInsideItsFiles) {
  WatchedNode folder(watcher_, folder_, kAllNodeFlags);
  orlftest::appendToNode(path("a"));
  fs::permissions(path("a"), fs::perms::owner_read);
  fs::create_directory(path("d/inner"));
  EXPECT_EQ(flagsAfterPump(folder), 0U);
}

TEST_F(NodeWatcherTest, TellsALateUserNothingOfBefore) {
  WatchedNode early(watcher_, path("a"));
  orlftest::appendToNode(path("a"));
  WatchedNode late(watcher_, path("a"));
  EXPECT_EQ(early.flags(), kNodeWrite | kNodeExtend) << "what waited was reported";
  EXPECT_EQ(flagsAfterPump(late), 0U);
}

TEST_F(NodeWatcherTest, TellsAtOnceOfWhatEndedBeforeItBegan) {
  const int deleted = openForEvents(path("a"));
  fs::remove(path("a"));
  WatchedNode gone(watcher_, deleted, kAllNodeFlags, std::nullopt);
  EXPECT_THAT(gone.words(), ElementsAre(kNodeDelete));

  const int moved = openForEvents(write("b", ""));
  fs::rename(path("b"), path("c"));
  WatchedNode elsewhere(watcher_, moved, kAllNodeFlags, path("b"));
  EXPECT_THAT(elsewhere.words(), ElementsAre(kNodeRename));
  WatchedNode unasked(watcher_, openForEvents(path("c")), kNodeWrite, path("b"));
  EXPECT_THAT(unasked.words(), IsEmpty());
  write("b", "another");
  WatchedNode replaced(watcher_, openForEvents(path("c")), kAllNodeFlags, path("b"));
  EXPECT_THAT(replaced.words(), ElementsAre(kNodeRename));
  WatchedNode inPlace(watcher_, path("c"), kAllNodeFlags, true);
  EXPECT_THAT(inPlace.words(), IsEmpty());
}

/// The kernel's own queue, which tells of a move once something was added.
class MovingQueue final : public KernelQueue {
 public:
  [[nodiscard]] int descriptor() const override { return -1; }
  [[nodiscard]] int add(const std::string& path, std::uint32_t mask) override {
    return moved_ = queue_->add(path, mask);
  }
  void set(const std::string& path, std::uint32_t mask) override { queue_->set(path, mask); }
  void remove(int watch) override { queue_->remove(watch); }
  [[nodiscard]] std::vector<KernelEvent> read() override {
    auto found = queue_->read();
    constexpr std::uint32_t kMoved = 0x800;
    if (const int moved = std::exchange(moved_, -1); moved >= 0)
      found.push_back({moved, kMoved, false});
    return found;
  }

 private:
  const std::unique_ptr<KernelQueue> queue_ = KernelQueue::make();
  int moved_ = -1;
};

TEST_F(NodeWatcherTest, TellsNothingOfTheMoveThatBroughtTheFileToItsName) {
  NodeWatcher watcher(std::make_unique<MovingQueue>(), MountTable::make());
  WatchedNode elsewhere(watcher, path("a"), kAllNodeFlags, false);
  watcher.pump();
  EXPECT_THAT(elsewhere.words(), ElementsAre(kNodeRename));
  WatchedNode inPlace(watcher, path("a"), kAllNodeFlags, true);
  watcher.pump();
  EXPECT_THAT(inPlace.words(), IsEmpty());
  EXPECT_THAT(elsewhere.words(), ElementsAre(kNodeRename)) << "it was watched before";
  orlftest::appendToNode(path("a"));
  watcher.pump();
  EXPECT_THAT(inPlace.words(), ElementsAre(kNodeWrite | kNodeExtend));
}

TEST_F(NodeWatcherTest, RefusesWhatCannotBeWatched) {
  const auto errorOf = [&](int descriptor) {
    NodeRequest request;
    request.descriptor = descriptor;
    errno = 0;
    return watcher_.watch(std::move(request)) == nullptr ? errno : 0;
  };
  EXPECT_EQ(errorOf(-1), EBADF);
  EXPECT_EQ(errorOf(1'000'000), EBADF);
  EXPECT_EQ(watcher_.nodes(), 0U);
}

TEST_F(NodeWatcherTest, WatchesAFileThroughALinkAndTheRoot) {
  fs::create_symlink(path("a"), path("link"));
  WatchedNode node(watcher_, path("link"));
  WatchedNode root(watcher_, "/");
  orlftest::appendToNode(path("a"));
  EXPECT_EQ(flagsAfterPump(node), kNodeWrite | kNodeExtend);
  fs::remove(path("link"));
  EXPECT_EQ(flagsAfterPump(node), 0U) << "the link is another file";
}

TEST_F(NodeWatcherTest, TellsWhenWritersHaveFinished) {
  WatchedNode node(watcher_, path("a"), kNodeWrite | kNodeSettled);
  std::ofstream first(path("a"), std::ios::app);
  std::ofstream second(path("a"), std::ios::app);
  first << "1" << std::flush;
  second << "2" << std::flush;
  EXPECT_EQ(flagsAfterPump(node), kNodeWrite);
  first.close();
  EXPECT_EQ(flagsAfterPump(node), kNodeSettled);
  second.close();
  EXPECT_EQ(flagsAfterPump(node), kNodeSettled);
  std::ofstream(path("a"), std::ios::app).close();
  std::ifstream(path("a")).close();
  EXPECT_EQ(flagsAfterPump(node), 0U) << "nobody wrote";
  orlftest::appendToNode(path("a"));
  EXPECT_EQ(flagsAfterPump(node), kNodeWrite | kNodeSettled);
}

/// Ends the process with 0 when threads that have nothing left to wait for take no time.
[[noreturn]] void closeWhatThreadsWaitFor(const std::string& file) {
  NodeWatcher* const watcher = NodeWatcher::shared();
  if (watcher == nullptr) std::_Exit(2);
  WatchedNode node(*watcher, file);
  for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
    std::error_code code;
    if (fs::read_symlink(entry.path(), code) == "anon_inode:[eventpoll]")
      // Behind the sanitizers' backs.
      ::syscall(SYS_dup3, node.descriptor(), std::stoi(entry.path().filename()), O_CLOEXEC);
  }
  for (int threads = 0; threads < 2; ++threads) {
    orlftest::appendToNode(file);  // wakes one
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  const std::clock_t before = std::clock();
  std::this_thread::sleep_for(std::chrono::milliseconds(80));
  const std::clock_t spent = std::clock() - before;
  watcher->pump();
  std::_Exit(spent < CLOCKS_PER_SEC / 25 && node.flags() != 0 ? 0 : 1);
}

TEST_F(NodeWatcherTest, HasThreadsThatRestWhenTheirDescriptorIsClosed) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(closeWhatThreadsWaitFor(path("a")), testing::ExitedWithCode(0), "");
}

/// The watch that is left when its owners come and go in any order tells what its flags ask.
TEST_F(NodeWatcherTest, KeepsMasksThroughRandomComingAndGoing) {
  std::mt19937 random(7);
  std::deque<std::unique_ptr<WatchedNode>> users;
  std::deque<std::uint64_t> asked;
  for (int round = 0; round < 500; ++round) {
    if (users.empty() || random() % 2 == 0) {
      asked.push_back(random() % 2 == 0 ? kNodeWrite : kNodeAttribute);
      users.push_back(std::make_unique<WatchedNode>(watcher_, path("a"), asked.back()));
    } else {
      const auto at = static_cast<std::ptrdiff_t>(random() % users.size());
      users.erase(users.begin() + at);
      asked.erase(asked.begin() + at);
    }
    orlftest::appendToNode(path("a"), "x");
    fs::permissions(path("a"), round % 2 == 0 ? fs::perms::owner_all : fs::perms::owner_read);
    watcher_.pump();
    for (std::size_t i = 0; i < users.size(); ++i) ASSERT_EQ(users[i]->flags(), asked[i]) << round;
    ASSERT_EQ(watcher_.nodes(), users.empty() ? 0U : 1U);
  }
}

}  // namespace
}  // namespace ORLFoundation::internal::events
