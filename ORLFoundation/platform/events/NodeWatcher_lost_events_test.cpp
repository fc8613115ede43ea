#include <ORLFoundation/platform/events/NodeWatcher_testing.h>
#include <tests/support/TemporaryFolder.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

namespace ORLFoundation::internal::events {
namespace {

namespace fs = std::filesystem;
using orlftest::kAllNodeFlags;
using orlftest::LossyQueue;
using orlftest::WatchedNode;

struct LossCase {
  std::string name;
  std::function<void(const fs::path& folder)> act;
  std::uint64_t flags;
};

const LossCase kLossCases[] = {
    {"Nothing", [](const fs::path&) {}, 0},
    {"Append", [](const fs::path& at) { std::ofstream(at / "a", std::ios::app) << "more"; },
     kNodeWrite | kNodeExtend},
    {"Overwrite",
     [](const fs::path& at) { std::fstream(at / "a", std::ios::in | std::ios::out) << "T"; },
     kNodeWrite},
    {"Truncate", [](const fs::path& at) { fs::resize_file(at / "a", 1); }, kNodeWrite},
    {"Rights", [](const fs::path& at) { fs::permissions(at / "a", fs::perms::owner_read); },
     kNodeAttribute},
    {"SecondName", [](const fs::path& at) { fs::create_hard_link(at / "a", at / "b"); }, kNodeLink},
    {"Rename", [](const fs::path& at) { fs::rename(at / "a", at / "b"); }, kNodeRename},
    {"Delete", [](const fs::path& at) { fs::remove(at / "a"); }, kNodeDelete | kNodeLink},
    {"AtomicSave",
     [](const fs::path& at) {
       std::ofstream(at / "new") << "new";
       fs::rename(at / "new", at / "a");
     },
     kNodeDelete | kNodeLink},
};

class LostEvents : public orlftest::TemporaryFolderTest {
 protected:
  LostEvents() {
    write("a", "text");
    fs::create_directory(path("d"));
    // What was stamped a moment ago cannot be told from what is stamped now.
    std::this_thread::sleep_for(std::chrono::milliseconds(45));
  }

  LossyQueue* const queue_ = new LossyQueue;  // the watcher's
  NodeWatcher watcher_{std::unique_ptr<KernelQueue>(queue_), MountTable::make()};
};

class LostEventsOfAFile : public LostEvents, public testing::WithParamInterface<LossCase> {};

TEST_P(LostEventsOfAFile, AreFoundByComparing) {
  WatchedNode node(watcher_, path("a"));
  GetParam().act(folder_);
  queue_->loseNext();
  watcher_.pump();
  EXPECT_EQ(node.flags(), GetParam().flags);
  watcher_.pump();
  EXPECT_EQ(node.flags(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Acts, LostEventsOfAFile, testing::ValuesIn(kLossCases),
                         [](const auto& row) { return row.param.name; });

TEST_F(LostEvents, AreFoundInFolders) {
  WatchedNode folder(watcher_, path("d"));
  write("d/x", "");
  queue_->loseNext();
  watcher_.pump();
  EXPECT_EQ(folder.flags() & ~std::uint64_t{kNodeExtend}, kNodeWrite);
  fs::remove(path("d/x"));
  fs::remove(path("d"));
  queue_->loseNext();
  watcher_.pump();
  EXPECT_EQ(folder.flags() & kNodeDelete, kNodeDelete);
}

TEST_F(LostEvents, OfTheMoveOfAFolderLeaveItsEndToBeTold) {
  fs::create_directory(path("e"));
  WatchedNode folder(watcher_, path("d"));
  fs::rename(path("d"), path("e/d"));
  queue_->loseNext();
  watcher_.pump();
  EXPECT_EQ(folder.flags() & kNodeRename, kNodeRename);
  fs::remove(path("e/d"));
  watcher_.pump();
  EXPECT_EQ(folder.flags() & kNodeDelete, kNodeDelete);
}

TEST_F(LostEvents, CountAsAWriteWhereTheClockCannotTell) {
  WatchedNode node(watcher_, write("fresh", "text"));
  queue_->loseNext();
  watcher_.pump();
  EXPECT_EQ(node.flags(), kNodeWrite);
}

TEST_F(LostEvents, CountAsClosedByTheirWriter) {
  WatchedNode node(watcher_, path("a"), kNodeSettled);
  std::ofstream(path("a"), std::ios::app) << "more";
  queue_->loseNext();
  watcher_.pump();
  EXPECT_EQ(node.flags(), kNodeSettled);
}

TEST_F(LostEvents, OfTheKernelItselfAreFound) {
  std::size_t most = 0;
  std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> most;
  ASSERT_GT(most, 0U);
  write("b", "");
  WatchedNode first(watcher_, path("a"), kNodeWrite);
  WatchedNode second(watcher_, path("b"), kNodeWrite);
  WatchedNode quiet(watcher_, path("d"), kAllNodeFlags);
  std::ofstream a(path("a"));
  std::ofstream b(path("b"));
  for (std::size_t i = 0; i <= most / 2; ++i) {
    a << '.' << std::flush;
    b << '.' << std::flush;
  }
  fs::rename(path("d"), path("e"));  // no place in the queue
  watcher_.pump();
  EXPECT_EQ(first.flags(), kNodeWrite);
  EXPECT_EQ(second.flags(), kNodeWrite);
  EXPECT_EQ(quiet.flags(), kNodeRename);
}

}  // namespace
}  // namespace ORLFoundation::internal::events
