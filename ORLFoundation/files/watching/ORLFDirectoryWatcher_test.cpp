#include <ORLFoundation/files/watching/ORLFDirectoryWatcher.h>

#include <ORLFoundation/files/watching/ORLFFileSystemObserver_testing.h>
#include <gmock/gmock.h>
#include <poll.h>

#include <stdexcept>
#include <thread>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;

struct Ledger : NSObject {
  void folderChanged(const std::shared_ptr<ORLFDirectoryWatcher>& watcher) {
    ++changes;
    last = watcher;
    if (onChange) onChange();
  }
  int changes = 0;
  std::weak_ptr<ORLFDirectoryWatcher> last;
  std::function<void()> onChange;
};

/// Lets this thread's loop do what is ready.
void turn(const std::string& mode = NSDefaultRunLoopMode) {
  internal::events::NodeWatcher::shared()->pump();
  NSRunLoop::currentRunLoop()->runMode(mode, NSDate::date());
}

class DirectoryWatcher : public orlftest::TemporaryFolderTest {
 protected:
  DirectoryWatcher() : TemporaryFolderTest(orlftest::parentInMemory()) { write("file", "content"); }
  std::shared_ptr<ORLFDirectoryWatcher> watch(const std::shared_ptr<NSObject>& target) {
    return ORLFDirectoryWatcher::watchFolderWithPath(
        folder_, target, NSSelectorOf<&Ledger::folderChanged>("folderChanged:"));
  }
  /// How many actions come of a change.
  template <class Change>
  int actionsOf(const Change& change) {
    change();
    const int before = ledger_->changes;
    for (int turns = 0; turns < 3; ++turns) turn();
    return ledger_->changes - before;
  }

  const std::shared_ptr<Ledger> ledger_ = std::make_shared<Ledger>();
  std::shared_ptr<ORLFDirectoryWatcher> watcher_ = watch(ledger_);
};

TEST_F(DirectoryWatcher, TellsOfNamesThatComeAndGo) {
  ASSERT_NE(watcher_, nullptr);
  EXPECT_EQ(actionsOf([&] { write("made", ""); }), 1);
  EXPECT_EQ(actionsOf([&] { fs::rename(path("made"), path("renamed")); }), 1);
  EXPECT_EQ(actionsOf([&] { fs::remove(path("renamed")); }), 1);
  EXPECT_EQ(actionsOf([&] { fs::create_directory(path("inner")); }), 1);
  EXPECT_EQ(actionsOf([&] { fs::rename(path("file"), path("inner/file")); }), 1);
  EXPECT_EQ(ledger_->last.lock(), watcher_);
  EXPECT_EQ(actionsOf([] {}), 0);
}

TEST_F(DirectoryWatcher, TellsNothingOfWhatIsWrittenInside) {
  fs::create_directory(path("inner"));
  EXPECT_EQ(actionsOf([] {}), 1);
  EXPECT_EQ(actionsOf([&] { orlftest::appendTo(path("file")); }), 0);
  EXPECT_EQ(actionsOf([&] { fs::permissions(path("file"), fs::perms::owner_all); }), 0);
  EXPECT_EQ(actionsOf([&] { write("inner/deeper", ""); }), 0);
}

TEST_F(DirectoryWatcher, TakesABurstForOneChange) {
  EXPECT_EQ(actionsOf([&] {
              for (int i = 0; i < 200; ++i) write(std::to_string(i), "");
            }),
            1);
}

TEST_F(DirectoryWatcher, CallsInTheDefaultModeAlone) {
  write("made", "");
  for (int turns = 0; turns < 3; ++turns) turn("another mode");
  EXPECT_EQ(ledger_->changes, 0);
  EXPECT_EQ(actionsOf([] {}), 1);
}

TEST_F(DirectoryWatcher, LivesOnTheLoopOfItsThread) {
  const auto other = std::make_shared<Ledger>();
  std::thread([&] {
    const auto watcher = watch(other);
    write("made", "");
    turn();
    EXPECT_EQ(other->changes, 1);
  }).join();
  EXPECT_EQ(actionsOf([] {}), 1);
  EXPECT_EQ(other->changes, 1);
}

TEST_F(DirectoryWatcher, GoesOnWithoutItsTarget) {
  auto target = std::make_shared<Ledger>();
  const auto watcher = watch(target);
  const std::weak_ptr<Ledger> weak = target;
  target = nullptr;
  EXPECT_TRUE(weak.expired()) << "not held";
  EXPECT_EQ(watcher->target(), nullptr);
  write("made", "");
  turn();
  EXPECT_NE(watcher->dirKQRef(), nullptr);
  pollfd queue{watcher->kq(), POLLIN, 0};
  EXPECT_EQ(::poll(&queue, 1, 0), 0) << "what came was taken";
  write("another", "");
  internal::events::NodeWatcher::shared()->pump();
  EXPECT_EQ(::poll(&queue, 1, 0), 1) << "and more comes";
}

TEST_F(DirectoryWatcher, StopsForGood) {
  EXPECT_GE(watcher_->dirFD(), 0);
  EXPECT_GE(watcher_->kq(), 0);
  watcher_->invalidate();
  watcher_->invalidate();
  EXPECT_EQ(watcher_->dirFD(), -1);
  EXPECT_EQ(watcher_->kq(), -1);
  EXPECT_EQ(watcher_->dirKQRef(), nullptr);
  EXPECT_EQ(actionsOf([&] { write("made", ""); }), 0);
}

TEST_F(DirectoryWatcher, StopsWithItsLastReference) {
  write("made", "");
  watcher_ = nullptr;
  EXPECT_EQ(actionsOf([&] { write("another", ""); }), 0);
}

TEST_F(DirectoryWatcher, MayBeStoppedAndDroppedByItsAction) {
  ledger_->onChange = [&] { watcher_->invalidate(); };
  EXPECT_EQ(actionsOf([&] { write("made", ""); }), 1);
  EXPECT_EQ(actionsOf([&] { write("another", ""); }), 0);
  watcher_ = watch(ledger_);
  ledger_->onChange = [&] { watcher_ = nullptr; };
  EXPECT_EQ(actionsOf([&] { write("third", ""); }), 1);
  EXPECT_TRUE(ledger_->last.expired());
}

TEST_F(DirectoryWatcher, GoesOnWhenItsActionThrows) {
  ledger_->onChange = [] { throw std::runtime_error("refused"); };
  write("made", "");
  EXPECT_THROW(turn(), std::runtime_error);
  EXPECT_EQ(ledger_->changes, 1);
  ledger_->onChange = nullptr;
  EXPECT_EQ(actionsOf([&] { write("another", ""); }), 1);
}

TEST_F(DirectoryWatcher, LeavesTargetsAloneThatHaveNoSuchOperation) {
  const auto watcher = watch(std::make_shared<NSObject>());
  ASSERT_NE(watcher, nullptr);
  EXPECT_EQ(actionsOf([&] { write("made", ""); }), 1) << "of the other watcher";
}

TEST_F(DirectoryWatcher, NeedsAllItsArguments) {
  const auto action = NSSelectorOf<&Ledger::folderChanged>("folderChanged:");
  const std::string path = folder_;
  EXPECT_NE(ORLFDirectoryWatcher::watchFolderWithPath(path, ledger_, action), nullptr);
  EXPECT_EQ(ORLFDirectoryWatcher::watchFolderWithPath(path, ledger_, std::nullopt), nullptr);
  EXPECT_EQ(ORLFDirectoryWatcher::watchFolderWithPath(path, nullptr, action), nullptr);
  EXPECT_EQ(ORLFDirectoryWatcher::watchFolderWithPath(std::nullopt, ledger_, action), nullptr);
  for (const std::string& nowhere : {std::string(), path + "/nothing", path + "/file/below",
                                     path + std::string("\0x", 2), "/" + std::string(4096, 'a')})
    EXPECT_EQ(ORLFDirectoryWatcher::watchFolderWithPath(nowhere, ledger_, action), nullptr);
}

TEST_F(DirectoryWatcher, SharesItsDirectoryWithObservers) {
  orlftest::ObservedFile observed(folder_);
  ASSERT_TRUE(observed.observer->startObserving());
  EXPECT_EQ(actionsOf([&] { write("made", ""); }), 1);
  EXPECT_EQ(observed.numbers().back(), 2);
  observed.observer->stopObserving();
  EXPECT_EQ(actionsOf([&] { write("another", ""); }), 1);
  const auto second = watch(ledger_);
  watcher_ = nullptr;
  EXPECT_EQ(actionsOf([&] { write("third", ""); }), 1);
}

}  // namespace
}  // namespace ORLFoundation
