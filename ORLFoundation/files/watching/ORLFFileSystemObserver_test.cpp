#include <ORLFoundation/files/watching/ORLFFileSystemObserver.h>

#include <ORLFoundation/files/watching/ORLFFileSystemObserver_testing.h>
#include <ORLFoundation/platform/events/EventDescriptor.h>
#include <ORLFoundation/platform/events/dispatch_vnode_source.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <future>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using orlftest::appendTo;
using orlftest::ObservedEvent;
using orlftest::ObservedFile;
using orlftest::saveAtomically;
using testing::ElementsAre;
using testing::IsEmpty;

class FileSystemObserver : public orlftest::TemporaryFolderTest {
 protected:
  FileSystemObserver() : TemporaryFolderTest(orlftest::parentInMemory()) {
    write("file", "content");
  }
  /// Started, with event 1 behind it.
  void start() {
    ASSERT_TRUE(observed_.observer->startObserving());
    ASSERT_THAT(observed_.events(), ElementsAre(ObservedEvent{1}));
  }

  const fs::path real_ = fs::canonical(folder_);
  ObservedFile observed_{real_ / "file"};
};

TEST_F(FileSystemObserver, SeesOneAtomicSaveAfterTheOther) {
  start();
  for (int save = 0; save < 5; ++save) {
    saveAtomically(path("file"), "saved");
    EXPECT_THAT(observed_.numbers(), ElementsAre(2));
    EXPECT_TRUE(observed_.observer->isObserving());
  }
  appendTo(path("file"));
  EXPECT_THAT(observed_.numbers(), ElementsAre(2));
}

TEST_F(FileSystemObserver, EndsWithADeletionAndCanBeStartedAgain) {
  start();
  fs::remove(path("file"));
  EXPECT_THAT(observed_.events(), ElementsAre(ObservedEvent{3}));
  EXPECT_FALSE(observed_.observer->isObserving());
  EXPECT_EQ(observed_.observer->dispatchSource(), nullptr);
  write("file", "new");
  EXPECT_THAT(observed_.events(), IsEmpty());
  start();
}

TEST_F(FileSystemObserver, TakesAMoveToTheTrashForADeletion) {
  const fs::path trashed = orlftest::trashFolder() / "file";
  start();
  fs::rename(path("file"), trashed);
  EXPECT_THAT(observed_.events(), ElementsAre(ObservedEvent{3}));
  EXPECT_FALSE(observed_.observer->isObserving());
  fs::remove(trashed);
}

TEST_F(FileSystemObserver, TellsWhereItsFileWasMoved) {
  start();
  const std::string odd = real_ / "odd \xff name (deleted)";
  fs::rename(path("file"), odd);
  EXPECT_THAT(observed_.events(), ElementsAre(ObservedEvent{4, odd}));
  EXPECT_FALSE(observed_.observer->isObserving());
}

TEST_F(FileSystemObserver, DeliversNothingForWhatIsNotThere) {
  fs::remove(path("file"));
  EXPECT_FALSE(observed_.observer->startObserving());
  EXPECT_FALSE(observed_.observer->isObserving());
  EXPECT_THAT(observed_.events(), IsEmpty());
}

TEST_F(FileSystemObserver, StartsOnce) {
  start();
  EXPECT_FALSE(observed_.observer->startObserving());
  EXPECT_THAT(observed_.events(), IsEmpty());
  EXPECT_TRUE(observed_.observer->isObserving());
}

TEST_F(FileSystemObserver, StartsAgainFromItsHandler) {
  observed_.onEvent = [&](NSInteger event) {
    if (event != ORLFFileSystemEventDeleted) return;
    write("file", "restored");
    EXPECT_TRUE(observed_.observer->startObserving());
  };
  start();
  fs::remove(path("file"));
  EXPECT_THAT(observed_.numbers(), ElementsAre(3, 1));
  EXPECT_TRUE(observed_.observer->isObserving());
}

TEST_F(FileSystemObserver, SeesFoldersComeAndGoAtItsPath) {
  start();
  dispatch_sync(observed_.queue, [&] {
    fs::remove(path("file"));
    fs::create_directory(path("file"));
  });
  EXPECT_THAT(observed_.numbers(), ElementsAre(2));
  write("file/inside", "");
  EXPECT_THAT(observed_.numbers(), ElementsAre(2));
  appendTo(path("file/inside"));
  EXPECT_THAT(observed_.numbers(), IsEmpty());
  fs::remove_all(path("file"));
  const auto numbers = observed_.numbers();
  ASSERT_FALSE(numbers.empty());
  EXPECT_EQ(numbers.back(), 3);
}

TEST_F(FileSystemObserver, FollowsLinksToTheirFile) {
  fs::create_symlink(path("file"), path("link"));
  ObservedFile observed(path("link"));
  ASSERT_TRUE(observed.observer->startObserving());
  EXPECT_THAT(observed.numbers(), ElementsAre(1));
  appendTo(path("file"));
  EXPECT_THAT(observed.numbers(), ElementsAre(2));
  saveAtomically(path("file"), "saved");
  EXPECT_THAT(observed.numbers(), ElementsAre(2));
  appendTo(path("file"));
  EXPECT_THAT(observed.numbers(), ElementsAre(2));
  fs::remove(path("file"));
  EXPECT_THAT(observed.numbers(), ElementsAre(3));
}

TEST_F(FileSystemObserver, SeesItsFileGoWithItsFolder) {
  write("a/b/c", "text");
  ObservedFile observed(path("a/b/c"));
  ASSERT_TRUE(observed.observer->startObserving());
  fs::rename(path("a"), path("z"));
  EXPECT_THAT(observed.numbers(), ElementsAre(1));
  fs::remove_all(path("z"));
  EXPECT_THAT(observed.numbers(), ElementsAre(3));
}

TEST_F(FileSystemObserver, JoinsWhatComesWhileItsQueueIsBusy) {
  start();
  dispatch_sync(observed_.queue, [&] {
    appendTo(path("file"));
    appendTo(path("file"));
    fs::rename(path("file"), path("backup"));
    write("file", "written again");
    internal::events::NodeWatcher::shared()->pump();  // its thread may not have come to it
  });
  EXPECT_THAT(observed_.numbers(), ElementsAre(2));
  appendTo(path("backup"));
  EXPECT_THAT(observed_.numbers(), IsEmpty());
  appendTo(path("file"));
  EXPECT_THAT(observed_.numbers(), ElementsAre(2));
}

TEST_F(FileSystemObserver, ObservesADescriptorForTheFlagsThatAreAsked) {
  const int descriptor = internal::events::openForEvents(path("file"));
  ASSERT_TRUE(observed_.observer->startObservingFileDescriptor(descriptor, DISPATCH_VNODE_ATTRIB));
  appendTo(path("file"));
  EXPECT_THAT(observed_.numbers(), IsEmpty());
  fs::permissions(path("file"), fs::perms::owner_all);
  EXPECT_THAT(observed_.numbers(), ElementsAre(2));
  saveAtomically(path("file"), "saved");
  EXPECT_THAT(observed_.numbers(), ElementsAre(2));
  appendTo(path("file"));
  EXPECT_THAT(observed_.numbers(), IsEmpty()) << "the mask outlives the replacement";
  fs::permissions(path("file"), fs::perms::owner_read);
  EXPECT_THAT(observed_.numbers(), ElementsAre(2));
  EXPECT_EQ(::fcntl(descriptor, F_GETFD), -1) << "closed with its source";
}

TEST_F(FileSystemObserver, TakesOneDescriptorInPlaceOfTheOther) {
  start();
  const int other = internal::events::openForEvents(write("other", ""));
  EXPECT_TRUE(observed_.observer->startObservingFileDescriptor(other, DISPATCH_VNODE_WRITE));
  appendTo(path("file"));
  EXPECT_THAT(observed_.numbers(), IsEmpty());
  appendTo(path("other"));
  EXPECT_THAT(observed_.numbers(), ElementsAre(2));
  EXPECT_FALSE(observed_.observer->startObservingFileDescriptor(-1, 2));
  EXPECT_FALSE(observed_.observer->startObservingFileDescriptor(1'000'000, 2));
  appendTo(path("other"));
  EXPECT_THAT(observed_.numbers(), ElementsAre(2)) << "what cannot be observed changes nothing";
}

TEST_F(FileSystemObserver, KeepsTwoObserversOfAFileApart) {
  fs::create_hard_link(path("file"), path("second"));
  ObservedFile second(real_ / "second");
  ObservedFile again(path("file"));
  start();
  ASSERT_TRUE(second.observer->startObserving());
  ASSERT_TRUE(again.observer->startObserving());
  again.observer->stopObserving();
  EXPECT_THAT(second.numbers(), ElementsAre(1));
  appendTo(path("file"));
  EXPECT_THAT(observed_.numbers(), ElementsAre(2));
  EXPECT_THAT(second.numbers(), ElementsAre(2));
  EXPECT_THAT(again.numbers(), ElementsAre(1));
  saveAtomically(path("file"), "another file");
  EXPECT_THAT(observed_.numbers(), ElementsAre(2));
  EXPECT_THAT(second.numbers(), IsEmpty());
  appendTo(path("second"));
  EXPECT_THAT(observed_.numbers(), IsEmpty());
  EXPECT_THAT(second.numbers(), ElementsAre(2));
}

TEST_F(FileSystemObserver, LivesWhileItObserves) {
  std::promise<NSInteger> told;
  auto observer = std::make_shared<ORLFFileSystemObserver>(
      NSURL::fileURLWithPath(path("file")), observed_.queue,
      [&](NSInteger event, const std::optional<NSURL>&) {
        if (event == ORLFFileSystemEventChanged) told.set_value(event);
      });
  const std::weak_ptr<ORLFFileSystemObserver> weak = observer;
  ASSERT_TRUE(observer->startObserving());
  observer = nullptr;
  EXPECT_FALSE(weak.expired());
  appendTo(path("file"));
  EXPECT_EQ(told.get_future().get(), 2);
  weak.lock()->stopObserving();
  orlftest::waitForEvents(observed_.queue);
  EXPECT_TRUE(weak.expired());
}

TEST_F(FileSystemObserver, TakesTheGlobalQueueForNone) {
  std::promise<NSInteger> started;
  const auto observer = std::make_shared<ORLFFileSystemObserver>(
      NSURL::fileURLWithPath(path("file")), nullptr,
      [&](NSInteger event, const std::optional<NSURL>&) { started.set_value(event); });
  EXPECT_EQ(observer->eventQueue(), dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0));
  ASSERT_TRUE(observer->startObserving());
  EXPECT_EQ(started.get_future().get(), 1);
  observer->stopObserving();
}

TEST_F(FileSystemObserver, ObservesWithoutAHandler) {
  const auto observer = std::make_shared<ORLFFileSystemObserver>(
      NSURL::fileURLWithPath(path("file")), observed_.queue, nullptr);
  EXPECT_TRUE(observer->startObserving());
  EXPECT_EQ(observer->eventHandler(), nullptr);
  fs::remove(path("file"));
  orlftest::waitForEvents(observed_.queue);
  EXPECT_FALSE(observer->isObserving());
  EXPECT_EQ(observer->url().lastPathComponent(), "file");
  EXPECT_EQ(observer->className(), "ORLFFileSystemObserver");
}

TEST_F(FileSystemObserver, TellsWhenAWriterHasFinished) {
  int settled = 0;
  observed_.observer->setSettledHandler([&] { ++settled; });
  const auto settledNow = [&] {
    orlftest::waitForEvents(observed_.queue);
    return dispatch_sync(observed_.queue, [&] { return std::exchange(settled, 0); });
  };
  start();
  {
    std::ofstream writer(path("file"), std::ios::app);
    writer << "one" << std::flush;
    EXPECT_EQ(settledNow(), 0);
    writer << "two";
  }
  EXPECT_EQ(settledNow(), 1);
  std::ofstream(path("file"), std::ios::app).close();
  EXPECT_EQ(settledNow(), 0) << "nothing was written";
  EXPECT_THAT(observed_.events(), testing::Each(ObservedEvent{2}));
  saveAtomically(path("file"), "saved");
  EXPECT_EQ(settledNow(), 0) << "closed before it was put in place";
  appendTo(path("file"));
  EXPECT_EQ(settledNow(), 1) << "also after a replacement";
}

TEST_F(FileSystemObserver, TellsOfNoFinishedWriterToWhoHasStopped) {
  int settled = 0;
  observed_.observer->setSettledHandler([&] { ++settled; });
  start();
  observed_.onEvent = [&](NSInteger) { observed_.observer->stopObserving(); };
  dispatch_sync(observed_.queue, [&] {
    appendTo(path("file"));
    internal::events::NodeWatcher::shared()->pump();
  });
  EXPECT_THAT(observed_.numbers(), ElementsAre(2));
  EXPECT_EQ(settled, 0);
}

TEST_F(FileSystemObserver, RefusesPathsThatLeadNowhere) {
  const auto starts = [&](const std::string& at) {
    ObservedFile observed(at);
    const bool result = observed.observer->startObserving();
    EXPECT_EQ(observed.numbers().size(), result ? 1U : 0U);
    return result;
  };
  EXPECT_TRUE(starts("/"));
  EXPECT_FALSE(starts("/" + std::string(4096, 'a')));
  EXPECT_FALSE(starts(path(std::string(256, 'a'))));
  EXPECT_FALSE(starts(path("file") + std::string("\0more", 5)));
  EXPECT_TRUE(starts(write("\xff\xfe", "")));
  fs::create_symlink(path("round"), path("round"));
  EXPECT_FALSE(starts(path("round")));
  EXPECT_FALSE(starts(path("file/below")));
}

/// Exits with 0 when an ordinary user is refused what he may not read.
[[noreturn]] void startAsOrdinaryUser(const std::string& folder) {
  constexpr uid_t kNobody = 65534;
  const bool isRoot = ::geteuid() == 0;
  if (isRoot && ::seteuid(kNobody) != 0) std::_Exit(2);
  const auto starts = [&](const char* name) {
    const auto observer = std::make_shared<ORLFFileSystemObserver>(
        NSURL::fileURLWithPath(folder + name), nullptr, nullptr);
    return observer->startObserving();
  };
  const bool isRight = starts("/open") && !starts("/secret") && !starts("/closed/file");
  if (isRoot && ::seteuid(0) != 0) std::_Exit(2);
  fs::permissions(folder + "/closed", fs::perms(0700));
  fs::remove_all(folder);
  std::_Exit(isRight ? 0 : 1);
}

TEST_F(FileSystemObserver, RefusesWhatTheUserMayNotRead) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  fs::permissions(folder_, fs::perms(0755));
  fs::permissions(write("open", ""), fs::perms(0644));
  fs::permissions(write("secret", ""), fs::perms(0));
  write("closed/file", "");
  fs::permissions(path("closed"), fs::perms(0));
  EXPECT_EXIT(startAsOrdinaryUser(folder_), testing::ExitedWithCode(0), "");
  fs::permissions(path("closed"), fs::perms(0700));
}

}  // namespace
}  // namespace ORLFoundation
