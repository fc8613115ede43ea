
#include <ORLFoundation/platform/dispatch/NSRunLoop.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <ORLFoundation/platform/dispatch/NSTimer.h>
#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

NSDate inSeconds(double seconds) { return NSDate::date().dateByAddingTimeInterval(seconds); }

class Notebook : public NSObject {
 public:
  void note(const id& text) { texts.push_back(text.description()); }
  std::vector<std::string> texts;
};

NSSelector notingSelector() { return NSSelectorOf<&Notebook::note>("note:"); }

class NSRunLoopTest : public testing::Test {
 protected:
  void perform(const char* text, NSUInteger order, std::vector<std::string> modes) {
    loop_->performSelector({.selector = notingSelector(),
                            .target = notes_,
                            .argument = text,
                            .order = order,
                            .modes = std::move(modes)});
  }

  orlftest::VirtualMainLoop clock_;
  std::shared_ptr<NSRunLoop> loop_ = NSRunLoop::mainRunLoop();
  std::shared_ptr<Notebook> notes_ = std::make_shared<Notebook>();
};

TEST_F(NSRunLoopTest, IsOneForEachThread) {
  EXPECT_EQ(NSRunLoop::currentRunLoop(), NSRunLoop::mainRunLoop());
  std::thread([] {
    const auto own = NSRunLoop::currentRunLoop();
    EXPECT_NE(own, NSRunLoop::mainRunLoop());
    EXPECT_EQ(NSRunLoop::currentRunLoop(), own);
  }).join();
}

TEST_F(NSRunLoopTest, PerformsOnceInTheOrderOfTheirNumbersAndThenOfTheirComing) {
  perform("b", 5, {NSRunLoopCommonModes});
  perform("c", 5, {NSDefaultRunLoopMode});
  perform("a", 0, {NSRunLoopCommonModes});
  perform("d", NSUInteger{0} - 1, {NSRunLoopCommonModes, NSDefaultRunLoopMode});
  EXPECT_THAT(notes_->texts, IsEmpty());
  clock_.runReady();
  EXPECT_THAT(notes_->texts, ElementsAre("a", "b", "c", "d"));
}

class Adding : public NSObject {
 public:
  void add() {
    ++added;
    NSRunLoop::mainRunLoop()->performSelector({.selector = NSSelectorOf<&Adding::add>("add"),
                                               .target = shared_from_this(),
                                               .modes = {NSRunLoopCommonModes}});
  }
  int added = 0;
};

TEST_F(NSRunLoopTest, LeavesWhatPerformsAddToTheNextTurn) {
  const auto adding = std::make_shared<Adding>();
  adding->add();
  for (int turn = 2; turn < 5; ++turn) {
    EXPECT_TRUE(pumpMainQueue(0));
    EXPECT_EQ(adding->added, turn);
  }
  loop_->cancelPerformSelectorsWithTarget(adding);
  EXPECT_FALSE(pumpMainQueue(0));
}

TEST_F(NSRunLoopTest, CancelsPerformsByOperationTargetAndArgument) {
  const auto other = std::make_shared<Notebook>();
  for (const char* text : {"a", "b", "a"}) perform(text, 0, {NSRunLoopCommonModes});
  loop_->performSelector({.selector = notingSelector(),
                          .target = other,
                          .argument = "a",
                          .modes = {NSRunLoopCommonModes}});
  loop_->cancelPerformSelector(NSSelector("other:", {}), notes_, "b");
  loop_->cancelPerformSelector(notingSelector(), notes_, "a");
  clock_.runReady();
  EXPECT_THAT(notes_->texts, ElementsAre("b"));
  EXPECT_THAT(other->texts, ElementsAre("a"));
}

class Cancelling : public NSObject {
 public:
  void cancel(const std::shared_ptr<Notebook>& target) {
    NSRunLoop::mainRunLoop()->cancelPerformSelectorsWithTarget(target);
  }
};

TEST_F(NSRunLoopTest, APerformMayCancelALaterOneOfItsTurn) {
  loop_->performSelector({.selector = NSSelectorOf<&Cancelling::cancel>("cancel:"),
                          .target = std::make_shared<Cancelling>(),
                          .argument = notes_,
                          .modes = {NSRunLoopCommonModes}});
  perform("a", 1, {NSRunLoopCommonModes});
  clock_.runReady();
  EXPECT_THAT(notes_->texts, IsEmpty());
}

TEST_F(NSRunLoopTest, LetsGoOfTheTargetAfterThePerform) {
  const std::weak_ptr<Notebook> weak = notes_;
  perform("a", 0, {NSRunLoopCommonModes});
  notes_ = nullptr;
  EXPECT_FALSE(weak.expired());
  clock_.runReady();
  EXPECT_TRUE(weak.expired());
}

TEST_F(NSRunLoopTest, ServesWhatBelongsToItsMode) {
  const std::string modal = "modal";
  perform("modal", 0, {modal});
  perform("default", 0, {NSDefaultRunLoopMode});
  perform("common", 0, {NSRunLoopCommonModes});
  std::vector<std::string> fired;
  const auto timer = [&](const char* name, const std::string& mode) {
    const auto made = NSTimer::timerWithTimeInterval(
        0.001, false, [&fired, name](NSTimer&) { fired.emplace_back(name); });
    loop_->addTimer(made, mode);
  };
  timer("modal", modal);
  timer("default", NSDefaultRunLoopMode);
  timer("common", NSRunLoopCommonModes);
  bool ranItem = false;
  dispatch_async(dispatch_get_main_queue(), [&] { ranItem = true; });
  clock_.stayBusy(1'000'000);
  EXPECT_TRUE(loop_->runMode(modal, inSeconds(0)));
  EXPECT_THAT(notes_->texts, ElementsAre("modal"));
  EXPECT_THAT(fired, ElementsAre("modal"));
  EXPECT_FALSE(ranItem) << "the mode is not a common one yet";
  loop_->addCommonMode(modal);
  loop_->addCommonMode(modal);
  EXPECT_TRUE(loop_->runMode(modal, inSeconds(0)));
  EXPECT_THAT(notes_->texts, ElementsAre("modal", "common"));
  EXPECT_THAT(fired, ElementsAre("modal", "common"));
  EXPECT_TRUE(ranItem);
  clock_.runReady();
  EXPECT_THAT(notes_->texts, ElementsAre("modal", "common", "default"));
  EXPECT_THAT(fired, ElementsAre("modal", "common", "default"));
}

TEST_F(NSRunLoopTest, ATimerMayHaveSeveralModes) {
  int fired = 0;
  const auto timer = NSTimer::timerWithTimeInterval(0.001, true, [&](NSTimer&) { ++fired; });
  loop_->addTimer(timer, "first");
  loop_->addTimer(timer, "second");
  for (const char* mode : {"first", "second", "third"}) {
    clock_.stayBusy(1'000'000);
    loop_->runMode(mode, inSeconds(0));
  }
  EXPECT_EQ(fired, 2);
  timer->invalidate();
}

TEST_F(NSRunLoopTest, TellsItsModeWhileItRuns) {
  EXPECT_EQ(loop_->currentMode(), std::nullopt);
  std::vector<std::string> modes;
  const auto note = [&](NSTimer&) { modes.push_back(loop_->currentMode().value_or("none")); };
  const auto inner = NSTimer::timerWithTimeInterval(0.001, false, note);
  loop_->addTimer(inner, "inner");
  const auto outer = NSTimer::timerWithTimeInterval(0.001, false, [&](NSTimer& timer) {
    loop_->runMode("inner", inSeconds(0));
    note(timer);
  });
  loop_->addTimer(outer, NSDefaultRunLoopMode);
  clock_.stayBusy(1'000'000);
  clock_.runReady();
  EXPECT_THAT(modes, ElementsAre("inner", NSDefaultRunLoopMode));
  EXPECT_EQ(loop_->currentMode(), std::nullopt);
}

TEST_F(NSRunLoopTest, EndsAtOnceWithNothingToWaitFor) {
  std::thread([] {
    const auto loop = NSRunLoop::currentRunLoop();
    EXPECT_FALSE(loop->runMode(NSDefaultRunLoopMode, NSDate::distantFuture()));
    loop->runUntilDate(NSDate::distantFuture());
    loop->run();
  }).join();
}

TEST(NSRunLoopOnTheSystemsClock, RunsUntilItsTimersAreDone) {
  std::thread([] {
    const auto loop = NSRunLoop::currentRunLoop();
    int fired = 0;
    NSTimer::scheduledTimerWithTimeInterval(0.001, true, [&](NSTimer& timer) {
      if (++fired == 3) timer.invalidate();
    });
    loop->run();
    EXPECT_EQ(fired, 3);
    const auto timer = NSTimer::scheduledTimerWithTimeInterval(100, false, {});
    loop->runUntilDate(inSeconds(0.01));
    EXPECT_TRUE(loop->runMode(NSDefaultRunLoopMode, inSeconds(0.01)));
    EXPECT_TRUE(timer->isValid());
  }).join();
}

TEST(NSRunLoopOnTheSystemsClock, WakesForAPerformOfAnotherThread) {
  const auto notes = std::make_shared<Notebook>();
  std::shared_ptr<NSRunLoop> loop;
  std::atomic<bool> isThere = false;
  std::thread waiting([&] {
    loop = NSRunLoop::currentRunLoop();
    const auto keep = NSTimer::scheduledTimerWithTimeInterval(100, false, {});
    isThere = true;
    EXPECT_TRUE(loop->runMode(NSDefaultRunLoopMode, inSeconds(50)));
  });
  while (!isThere) std::this_thread::yield();
  loop->performSelector({.selector = notingSelector(),
                         .target = notes,
                         .argument = "a",
                         .modes = {NSDefaultRunLoopMode}});
  waiting.join();
  EXPECT_THAT(notes->texts, ElementsAre("a"));
}

/// Two ends of a pipe.
struct Pipe {
  Pipe() { EXPECT_EQ(::pipe(ends.data()), 0); }
  ~Pipe() {
    ::close(ends[0]);
    ::close(ends[1]);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  void write() const { EXPECT_EQ(::write(ends[1], "a", 1), 1); }
  void read() const {
    char byte = 0;
    EXPECT_EQ(::read(ends[0], &byte, 1), 1);
  }
  std::array<int, 2> ends{};
};

TEST_F(NSRunLoopTest, TellsOfDescriptorsThatAreReady) {
  const Pipe pipe;
  int readable = 0;
  int writable = 0;
  const auto reading = loop_->addDescriptor(pipe.ends[0], NSRunLoopDescriptorRead,
                                            NSDefaultRunLoopMode, [&](short events) {
                                              EXPECT_EQ(events, NSRunLoopDescriptorRead);
                                              if (++readable == 2) pipe.read();
                                            });
  EXPECT_FALSE(pumpMainQueue(0));
  pipe.write();
  EXPECT_TRUE(pumpMainQueue(0));
  EXPECT_TRUE(pumpMainQueue(0)) << "again, while there is something to read";
  EXPECT_FALSE(pumpMainQueue(0));
  EXPECT_EQ(readable, 2);
  pipe.write();
  loop_->runMode("other", inSeconds(0));
  EXPECT_EQ(readable, 2) << "it is for another mode";
  reading->invalidate();
  EXPECT_FALSE(reading->isValid());
  EXPECT_FALSE(pumpMainQueue(0));
  {
    const auto writing = loop_->addDescriptor(pipe.ends[1], NSRunLoopDescriptorWrite,
                                              NSRunLoopCommonModes, [&](short events) {
                                                EXPECT_EQ(events, NSRunLoopDescriptorWrite);
                                                ++writable;
                                              });
    EXPECT_TRUE(writing->isValid());
    EXPECT_TRUE(pumpMainQueue(0));
  }
  EXPECT_FALSE(pumpMainQueue(0)) << "dropped";
  EXPECT_EQ(writable, 1);
}

TEST_F(NSRunLoopTest, ADescriptorMayTakeAwayAnotherOneOrItself) {
  const Pipe pipe;
  pipe.write();
  std::array<std::shared_ptr<NSRunLoopDescriptor>, 2> both;
  int called = 0;
  for (auto& one : both)
    one = loop_->addDescriptor(pipe.ends[0], NSRunLoopDescriptorRead, NSDefaultRunLoopMode,
                               [&](short) {
                                 ++called;
                                 both = {};
                               });
  EXPECT_TRUE(pumpMainQueue(0));
  EXPECT_FALSE(pumpMainQueue(0));
  EXPECT_EQ(called, 1);
}

TEST_F(NSRunLoopTest, ALoopWithinADescriptorsCallLeavesItAlone) {
  const Pipe pipe;
  pipe.write();
  int depth = 0;
  const auto descriptor =
      loop_->addDescriptor(pipe.ends[0], NSRunLoopDescriptorRead, NSDefaultRunLoopMode, [&](short) {
        EXPECT_EQ(++depth, 1);
        EXPECT_FALSE(pumpMainQueue(0));
        --depth;
        throw std::runtime_error("out");
      });
  EXPECT_THROW(pumpMainQueue(0), std::runtime_error);
  EXPECT_THROW(pumpMainQueue(0), std::runtime_error) << "it is served again";
}

TEST_F(NSRunLoopTest, ADescriptorOutlivesItsLoop) {
  const Pipe pipe;
  std::shared_ptr<NSRunLoopDescriptor> descriptor;
  std::thread([&] {
    descriptor = NSRunLoop::currentRunLoop()->addDescriptor(pipe.ends[0], NSRunLoopDescriptorRead,
                                                            NSDefaultRunLoopMode, [](short) {});
  }).join();
  descriptor->invalidate();
}

TEST(NSRunLoopOnTheSystemsClock, WaitsForADescriptor) {
  std::thread([] {
    const Pipe pipe;
    int called = 0;
    const auto loop = NSRunLoop::currentRunLoop();
    const auto descriptor = loop->addDescriptor(pipe.ends[0], NSRunLoopDescriptorRead,
                                                NSDefaultRunLoopMode, [&](short) { ++called; });
    std::thread writing([&] { pipe.write(); });
    EXPECT_TRUE(loop->runMode(NSDefaultRunLoopMode, inSeconds(50)));
    EXPECT_EQ(called, 1);
    writing.join();
  }).join();
}

/// Runs a loop without an end on a thread of its own, while what it waits for is taken away on
/// this one; it ends then.
void runWhileItsOnlySourceGoes(bool isTimer) {
  const Pipe pipe;
  std::atomic<bool> isThere = false;
  std::shared_ptr<NSTimer> timer;
  std::shared_ptr<NSRunLoopDescriptor> descriptor;
  std::thread running([&] {
    const auto loop = NSRunLoop::currentRunLoop();
    if (isTimer) {
      timer = NSTimer::scheduledTimerWithTimeInterval(1000, true, {});
    } else {
      descriptor = loop->addDescriptor(pipe.ends[0], NSRunLoopDescriptorRead, NSDefaultRunLoopMode,
                                       [](short) {});
    }
    isThere = true;
    loop->run();
  });
  while (!isThere) std::this_thread::yield();
  isTimer ? timer->invalidate() : descriptor->invalidate();
  running.join();
}

TEST(NSRunLoopOnTheSystemsClock, EndsWhenAnotherThreadTakesItsLastSourceAway) {
  for (int i = 0; i < 200; ++i) runWhileItsOnlySourceGoes(i % 2 == 0);
}

TEST(NSRunLoopOnTheSystemsClock, LooksAtATimerThatGetsItsModeWhileItWaits) {
  bool fired = false;
  std::shared_ptr<NSRunLoop> loop;
  std::shared_ptr<NSTimer> timer;
  std::atomic<bool> isThere = false;
  std::thread running([&] {
    loop = NSRunLoop::currentRunLoop();
    timer = NSTimer::timerWithTimeInterval(0.03, false, [&](NSTimer&) { fired = true; });
    loop->addTimer(timer, "other");
    const auto keep = NSTimer::scheduledTimerWithTimeInterval(100, false, {});
    isThere = true;
    EXPECT_TRUE(loop->runMode(NSDefaultRunLoopMode, inSeconds(15)));
  });
  while (!isThere) std::this_thread::yield();
  std::this_thread::sleep_for(std::chrono::milliseconds(10));
  loop->addTimer(timer, NSDefaultRunLoopMode);
  running.join();
  EXPECT_TRUE(fired);
}

}  // namespace
}  // namespace ORLFoundation
