// Observers that are stopped, dropped and ended in the middle of things, and what they leave open.
#include <ORLFoundation/files/watching/ORLFFileSystemObserver_testing.h>
#include <gmock/gmock.h>
#include <sched.h>
#include <sys/mount.h>
#include <tests/support/Files.h>
#include <tests/support/Waiting.h>

#include <array>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using orlftest::appendTo;
using orlftest::ObservedEvent;
using orlftest::ObservedFile;
using orlftest::saveAtomically;
using testing::ElementsAre;
using testing::IsEmpty;

class EndsOfObservation : public orlftest::TemporaryFolderTest {
 protected:
  EndsOfObservation() : TemporaryFolderTest(orlftest::parentInMemory()) {
    write("file", "content");
  }
  /// Started, with event 1 behind it.
  void start() {
    ASSERT_TRUE(observed_.observer->startObserving());
    ASSERT_THAT(observed_.events(), ElementsAre(ObservedEvent{1}));
  }

  ObservedFile observed_{path("file")};
};

std::size_t openDescriptors() { return orlftest::entryCount("/proc/self/fd"); }

TEST_F(EndsOfObservation, MayBeStoppedAndDroppedInTheMiddleOfAnEvent) {
  start();
  const std::size_t before = openDescriptors();
  int events = 0;
  std::shared_ptr<ORLFFileSystemObserver> observer;
  observer = std::make_shared<ORLFFileSystemObserver>(
      NSURL::fileURLWithPath(path("file")), observed_.queue,
      [&](NSInteger event, const std::optional<NSURL>&) {
        if (event != ORLFFileSystemEventChanged) return;
        ++events;
        appendTo(path("file"));
        observer->stopObserving();
        observer = nullptr;
        appendTo(path("file"));
      });
  const std::weak_ptr<ORLFFileSystemObserver> weak = observer;
  ASSERT_TRUE(observer->startObserving());
  appendTo(path("file"));
  EXPECT_THAT(observed_.numbers(), testing::Each(2));
  EXPECT_EQ(events, 1);
  EXPECT_TRUE(weak.expired());
  EXPECT_EQ(openDescriptors(), before);
}

TEST_F(EndsOfObservation, LeavesNothingOpenHoweverItsObservationEnds) {
  start();
  observed_.observer->stopObserving();
  orlftest::waitForEvents(observed_.queue);
  const std::size_t before = openDescriptors();
  const std::array<std::function<void()>, 6> ends{
      [&] { observed_.observer->stopObserving(); },
      [&] { fs::remove(path("file")); },
      [&] { fs::rename(path("file"), path("moved")); },
      [&] {
        saveAtomically(path("file"), "saved");
        observed_.observer->stopObserving();
      },
      [&] {
        fs::remove(path("file"));
        fs::create_directory(path("file"));
        fs::remove(path("file"));
      },
      [&] {
        EXPECT_FALSE(observed_.observer->startObserving());
        EXPECT_FALSE(observed_.observer->startObservingFileDescriptor(1'000'000, 2));
        dispatch_sync(observed_.queue, [&] {
          saveAtomically(path("file"), "saved");
          observed_.observer->stopObserving();
        });
      }};
  for (int round = 0; round < 60; ++round) {
    write("file", "content");
    ASSERT_TRUE(observed_.observer->startObserving());
    if (round % 2 == 0) {
      ASSERT_THAT(observed_.numbers(), ElementsAre(1)) << round;
    }
    ends.at(static_cast<std::size_t>(round) % ends.size())();
    static_cast<void>(observed_.numbers());
    if (observed_.observer->isObserving()) observed_.observer->stopObserving();
    orlftest::waitForEvents(observed_.queue);
  }
  // The last is closed on its queue when its source has ended there.
  EXPECT_TRUE(orlftest::becomes([&] { return openDescriptors() == before; })) << openDescriptors();
}

/// The kernel tells of an end in the middle of it, when the name still leads to the file. These are
/// told many times over, so that the threads meet there.
constexpr int kMeetings = 300;

TEST_F(EndsOfObservation, TellsOfADeletionOnceHoweverEarlyItIsNoticed) {
  for (int round = 0; round < kMeetings; ++round) {
    write("file", "content");
    start();
    fs::remove(path("file"));
    ASSERT_THAT(observed_.numbers(), ElementsAre(3)) << round;
  }
}

TEST_F(EndsOfObservation, TellsOfTheEndOfOneOfTwoNamesHoweverEarlyItIsNoticed) {
  start();
  ObservedFile second(path("second"));
  for (int round = 0; round < kMeetings; ++round) {
    fs::create_hard_link(path("file"), path("second"));
    ASSERT_TRUE(second.observer->startObserving());
    fs::remove(path("second"));
    ASSERT_EQ(second.numbers().back(), 3) << round;
    ASSERT_THAT(observed_.numbers(), IsEmpty()) << round;
  }
}

TEST_F(EndsOfObservation, TellsOfAnAtomicSaveOnceHoweverEarlyItIsNoticed) {
  start();
  for (int round = 0; round < kMeetings; ++round) {
    saveAtomically(path("file"), "saved");
    ASSERT_THAT(observed_.numbers(), ElementsAre(2)) << round;
  }
}

/// Ends the process with 0 when a real unmounting was told as it should be, with 1 when not, and
/// with 77 where the machine lets nobody mount.
[[noreturn]] void observeUnderARealMount(const std::string& place) {
  if (::unshare(CLONE_NEWNS) != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) std::_Exit(77);
  if (::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) std::_Exit(77);
  if (::mount("none", place.c_str(), "tmpfs", 0, nullptr) != 0) std::_Exit(77);
  bool isTold = false;
  {
    std::ofstream(place + "/file") << "text";
    ObservedFile observed(place + "/file");
    const bool isStarted = observed.observer->startObserving();
    const bool isDetached = ::umount2(place.c_str(), MNT_DETACH) == 0;
    isTold = isStarted && isDetached && observed.events() == std::vector<ObservedEvent>{{1}, {5}} &&
             !observed.observer->isObserving();
  }
  fs::remove_all(place);
  std::_Exit(isTold ? 0 : 1);
}

TEST_F(EndsOfObservation, EndsWithTheUnmountingOfItsFileSystem) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto hasEndedWell = [](int status) {
    return testing::ExitedWithCode(0)(status) || testing::ExitedWithCode(77)(status);
  };
  EXPECT_EXIT(observeUnderARealMount(folder_), hasEndedWell, "");
}

}  // namespace
}  // namespace ORLFoundation
