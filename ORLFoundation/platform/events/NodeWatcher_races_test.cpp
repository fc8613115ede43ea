// What happens between two steps of the watcher itself.
#include <ORLFoundation/platform/events/NodeWatcher_testing.h>
#include <gmock/gmock.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace ORLFoundation::internal::events {
namespace {

namespace fs = std::filesystem;
using orlftest::kAllNodeFlags;
using orlftest::WatchedNode;
using testing::ElementsAre;
using testing::IsEmpty;

/// The kernel's own queue, and what is done once behind an addition or before a wait.
class QueueWithMoments final : public KernelQueue {
 public:
  [[nodiscard]] int descriptor() const override { return -1; }
  [[nodiscard]] int add(const std::string& path, std::uint32_t mask) override {
    if (isFull) errno = ENOSPC;
    const int watch = isFull ? -1 : queue_->add(path, mask);
    doOnce(afterAddition);
    return watch;
  }
  void set(const std::string& path, std::uint32_t mask) override { queue_->set(path, mask); }
  void remove(int watch) override { queue_->remove(watch); }
  [[nodiscard]] std::vector<KernelEvent> read() override { return queue_->read(); }
  void waitForChangesAround(const std::string& path) override {
    places.push_back(path);
    doOnce(beforeWait);
    queue_->waitForChangesAround(path);
  }

  std::function<void()> afterAddition, beforeWait;
  bool isFull = false;
  std::vector<std::string> places;

 private:
  static void doOnce(std::function<void()>& act) {
    if (const auto once = std::exchange(act, nullptr)) once();
  }

  const std::unique_ptr<KernelQueue> queue_ = KernelQueue::make();
};

class NodeRaces : public orlftest::TemporaryFolderTest {
 protected:
  NodeRaces() {
    write("a", "text");
    fs::create_hard_link(path("a"), path("b"));
  }

  QueueWithMoments* const queue_ = new QueueWithMoments;  // the watcher's
  NodeWatcher watcher_{std::unique_ptr<KernelQueue>(queue_), MountTable::make()};
};

/// The kernel tells of one link less before the name is taken away.
TEST_F(NodeRaces, ANameThatIsAboutToGoIsWaitedFor) {
  fs::create_hard_link(path("a"), path("c"));
  WatchedNode node(watcher_, path("b"));
  fs::remove(path("c"));
  queue_->beforeWait = [&] { fs::remove(path("b")); };
  watcher_.pump();
  EXPECT_THAT(node.words(), ElementsAre(kNodeDelete | kNodeLink));
  EXPECT_THAT(queue_->places, ElementsAre((fs::canonical(folder_) / "b").string()));
}

TEST_F(NodeRaces, ANameThatIsGoneIsNotWaitedFor) {
  WatchedNode node(watcher_, path("b"));
  fs::remove(path("b"));
  watcher_.pump();
  EXPECT_THAT(node.words(), ElementsAre(kNodeDelete | kNodeLink));
  EXPECT_THAT(queue_->places, IsEmpty());
}

TEST_F(NodeRaces, ANameThatGoesWhileItsWatchBeginsIsTold) {
  for (const char* removed : {"a", "b"}) {
    SCOPED_TRACE(removed);
    queue_->afterAddition = [&] { fs::remove(path(removed)); };
    WatchedNode node(watcher_, path("b"));
    if (std::string(removed) == "b") {
      EXPECT_THAT(node.words(), ElementsAre(kNodeDelete));
    } else {
      EXPECT_THAT(node.words(), IsEmpty()) << "another's name";
    }
    if (!fs::exists(path("a"))) fs::create_hard_link(path("b"), path("a"));
  }
}

TEST_F(NodeRaces, AReportMayEndItsWatchWhereAnotherIsRefused) {
  const int descriptor = openForEvents(path("a"));
  int reports = 0;
  std::unique_ptr<NodeWatch> watch;
  watch = watcher_.watch({.descriptor = descriptor,
                          .flags = kNodeWrite,
                          .openedAt = std::nullopt,
                          .report = [&](std::uint64_t, NodeTurn&) {
                            ++reports;
                            watch = nullptr;
                          }});
  ASSERT_NE(watch, nullptr);
  orlftest::appendToNode(path("a"));
  queue_->isFull = true;
  errno = 0;
  EXPECT_EQ(watcher_.watch({.descriptor = descriptor,
                            .flags = kNodeWrite,
                            .openedAt = std::nullopt,
                            .report = nullptr}),
            nullptr);
  EXPECT_EQ(errno, ENOSPC);
  EXPECT_EQ(reports, 1);
  EXPECT_EQ(watcher_.nodes(), 0U);
  ::close(descriptor);
}

}  // namespace
}  // namespace ORLFoundation::internal::events
