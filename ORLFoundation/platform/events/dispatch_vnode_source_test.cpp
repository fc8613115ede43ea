#include <ORLFoundation/platform/events/dispatch_vnode_source.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/events/EventDescriptor.h>
#include <ORLFoundation/platform/events/NodeWatcher.h>
#include <ORLFoundation/platform/events/VNodeSource.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <tests/support/TemporaryFolder.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using internal::events::kNodeSettled;
using internal::events::NodeWatcher;
using internal::events::openForEvents;
using testing::ElementsAre;
using testing::IsEmpty;

void append(const std::string& path) { std::ofstream(path, std::ios::app) << "more"; }

class DispatchVNodeSourceTest : public orlftest::TemporaryFolderTest {
 protected:
  DispatchVNodeSourceTest() : descriptor_(openForEvents(write("file", "content"))) {}
  /// The last words of sources that were cancelled come on the queue.
  ~DispatchVNodeSourceTest() override {
    dispatch_sync(queue_, [] {});
  }

  dispatch_vnode_source_t make(std::uint64_t mask) {
    auto source = dispatch_source_create(DISPATCH_SOURCE_TYPE_VNODE, descriptor_, mask, queue_);
    set(source);
    return source;
  }
  void set(const dispatch_vnode_source_t& source) {
    dispatch_source_set_event_handler(source, [this, weak = std::weak_ptr(source), held = held_] {
      words_.push_back(dispatch_source_get_data(weak.lock()));
    });
    dispatch_source_set_cancel_handler(source, [this, held = held_] {
      ++cancels_;
      ::close(descriptor_);
    });
  }
  std::vector<std::uint64_t> words() {
    for (int rounds = 0; rounds < 3; ++rounds) {
      NodeWatcher::shared()->pump();
      dispatch_sync(queue_, [] {});
    }
    return dispatch_sync(queue_, [this] { return std::exchange(words_, {}); });
  }

  const int descriptor_;
  const dispatch_queue_t queue_ = dispatch_queue_create("source", DISPATCH_QUEUE_SERIAL);
  const std::shared_ptr<int> held_ = std::make_shared<int>(0);
  std::vector<std::uint64_t> words_;
  int cancels_ = 0;
};

TEST_F(DispatchVNodeSourceTest, GoesOnWhenItsHandlerThrowsOutOfTheMainQueue) {
  while (pumpMainQueue(0)) continue;
  const auto source = dispatch_source_create(DISPATCH_SOURCE_TYPE_VNODE, descriptor_,
                                             DISPATCH_VNODE_WRITE, dispatch_get_main_queue());
  int events = 0;
  bool isCancelled = false;
  dispatch_source_set_event_handler(source, [&] {
    if (++events == 2) dispatch_source_cancel(source);
    throw std::runtime_error("refused");
  });
  dispatch_source_set_cancel_handler(source, [&] {
    isCancelled = true;
    ::close(descriptor_);
  });
  dispatch_resume(source);
  for (int writing = 0; writing < 2; ++writing) {
    append(path("file"));
    EXPECT_THROW(pumpMainQueue(20), std::runtime_error);
  }
  EXPECT_EQ(events, 2);
  EXPECT_TRUE(isCancelled);
}

TEST_F(DispatchVNodeSourceTest, JoinsTheFlagsThatCameWhileItsQueueWasBusy) {
  const auto source = make(DISPATCH_VNODE_WRITE | DISPATCH_VNODE_ATTRIB | DISPATCH_VNODE_RENAME);
  dispatch_resume(source);
  dispatch_sync(queue_, [&] {
    append(path("file"));
    NodeWatcher::shared()->pump();
    fs::permissions(path("file"), fs::perms::owner_all);
    NodeWatcher::shared()->pump();
    fs::rename(path("file"), path("moved"));
    NodeWatcher::shared()->pump();
  });
  EXPECT_THAT(words(),
              ElementsAre(DISPATCH_VNODE_WRITE | DISPATCH_VNODE_ATTRIB | DISPATCH_VNODE_RENAME));
  append(path("moved"));
  EXPECT_THAT(words(), ElementsAre(DISPATCH_VNODE_WRITE));
  dispatch_source_cancel(source);
}

TEST_F(DispatchVNodeSourceTest, IsStillUntilItIsResumed) {
  const auto source = make(DISPATCH_VNODE_WRITE);
  append(path("file"));
  EXPECT_THAT(words(), IsEmpty());
  dispatch_resume(source);
  EXPECT_THAT(words(), ElementsAre(DISPATCH_VNODE_WRITE));
  dispatch_source_cancel(source);
}

TEST_F(DispatchVNodeSourceTest, EndsWithItsCancelHandlerAndDropsItsBlocks) {
  const auto source = make(DISPATCH_VNODE_WRITE);
  dispatch_resume(source);
  EXPECT_EQ(held_.use_count(), 3);
  dispatch_sync(queue_, [&] {
    append(path("file"));
    NodeWatcher::shared()->pump();
    dispatch_source_cancel(source);
    dispatch_source_cancel(source);
    EXPECT_EQ(cancels_, 0) << "later, on the queue";
  });
  EXPECT_THAT(words(), IsEmpty()) << "what came before the end is not told after it";
  EXPECT_EQ(cancels_, 1);
  EXPECT_EQ(held_.use_count(), 1);
  EXPECT_EQ(::fcntl(descriptor_, F_GETFD), -1);
  append(path("file"));
  EXPECT_THAT(words(), IsEmpty());
}

TEST_F(DispatchVNodeSourceTest, MayBeCancelledBeforeItIsResumedAndByItsHandler) {
  const auto source = make(DISPATCH_VNODE_WRITE);
  dispatch_source_cancel(source);
  EXPECT_THAT(words(), IsEmpty());
  EXPECT_EQ(cancels_, 1);

  const int other = openForEvents(path("file"));
  const auto second = dispatch_source_create(DISPATCH_SOURCE_TYPE_VNODE, other, 2, queue_);
  int calls = 0;
  dispatch_source_set_event_handler(second, [&] {
    ++calls;
    append(path("file"));
    dispatch_source_cancel(second);
  });
  dispatch_source_set_cancel_handler(second, [&] {
    EXPECT_EQ(calls, 1);
    ::close(other);
  });
  dispatch_resume(second);
  append(path("file"));
  EXPECT_THAT(words(), IsEmpty());
  EXPECT_EQ(::fcntl(other, F_GETFD), -1);
}

TEST_F(DispatchVNodeSourceTest, WorksWithoutHandlers) {
  const auto source =
      dispatch_source_create(DISPATCH_SOURCE_TYPE_VNODE, descriptor_, DISPATCH_VNODE_WRITE, queue_);
  dispatch_resume(source);
  append(path("file"));
  EXPECT_THAT(words(), IsEmpty());
  EXPECT_EQ(dispatch_source_get_data(source), DISPATCH_VNODE_WRITE);
  dispatch_source_cancel(source);
  EXPECT_THAT(words(), IsEmpty());
  ::close(descriptor_);
}

TEST_F(DispatchVNodeSourceTest, RunsOneHandlerAtATimeOnAConcurrentQueue) {
  const auto source =
      dispatch_source_create(DISPATCH_SOURCE_TYPE_VNODE, descriptor_, DISPATCH_VNODE_WRITE,
                             dispatch_queue_create("side by side", DISPATCH_QUEUE_CONCURRENT));
  std::atomic<int> running{0};
  std::atomic<int> calls{0};
  std::atomic<bool> isEnded{false};
  dispatch_source_set_event_handler(source, [&] {
    EXPECT_EQ(++running, 1);
    std::this_thread::yield();
    ++calls;
    --running;
  });
  dispatch_source_set_cancel_handler(source, [&] {
    EXPECT_EQ(running, 0);
    isEnded = true;
  });
  dispatch_resume(source);
  for (int i = 0; i < 2000; ++i) append(path("file"));
  while (calls == 0) std::this_thread::yield();
  dispatch_source_cancel(source);
  while (!isEnded) std::this_thread::yield();
  ::close(descriptor_);
}

TEST_F(DispatchVNodeSourceTest, TellsAtOnceOfAnEndThatCameBefore) {
  fs::remove(path("file"));
  const auto source = make(DISPATCH_VNODE_DELETE);
  dispatch_resume(source);
  EXPECT_THAT(words(), ElementsAre(DISPATCH_VNODE_DELETE));
  dispatch_source_cancel(source);
}

TEST_F(DispatchVNodeSourceTest, KnowsThePathOfADescriptorForTheHouse) {
  const std::string place = path("file");
  fs::rename(path("file"), path("moved"));
  const auto source = internal::events::makeVNodeSource(
      descriptor_, DISPATCH_VNODE_RENAME | kNodeSettled, queue_, place);
  set(source);
  dispatch_resume(source);
  append(path("moved"));
  EXPECT_THAT(words(), testing::AnyOf(ElementsAre(DISPATCH_VNODE_RENAME | kNodeSettled),
                                      ElementsAre(DISPATCH_VNODE_RENAME, kNodeSettled)));
  dispatch_source_cancel(source);
}

TEST_F(DispatchVNodeSourceTest, IsNilForWhatCannotBeWatched) {
  errno = 0;
  EXPECT_EQ(dispatch_source_create(DISPATCH_SOURCE_TYPE_VNODE, -1, 2, queue_), nullptr);
  EXPECT_EQ(errno, EBADF);
  EXPECT_EQ(dispatch_source_create(DISPATCH_SOURCE_TYPE_VNODE, 1'000'000, 2, nullptr), nullptr);
  ::close(descriptor_);
}

TEST_F(DispatchVNodeSourceTest, DiesWithoutACancelHandlerWhenItIsDropped) {
  make(DISPATCH_VNODE_WRITE);
  EXPECT_EQ(held_.use_count(), 1);
  append(path("file"));
  EXPECT_THAT(words(), IsEmpty());
  EXPECT_EQ(cancels_, 0);
  ::close(descriptor_);
}

}  // namespace
}  // namespace ORLFoundation
