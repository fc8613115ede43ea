
#include <ORLFoundation/platform/dispatch/NSDelayedPerforming.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t kOneSecond = 1'000'000'000;

class Notes : public NSObject {
 public:
  void note(const id& text) { texts.push_back(text.description()); }
  void clear() { texts.clear(); }
  std::vector<std::string> texts;
};

const NSSelector& noteSelector() {
  static const NSSelector selector = NSSelectorOf<&Notes::note>("note:");
  return selector;
}

class NSDelayedPerformingTest : public testing::Test {
 protected:
  orlftest::VirtualMainLoop loop_;
  std::shared_ptr<Notes> notes_ = std::make_shared<Notes>();
};

TEST_F(NSDelayedPerformingTest, CallsOnceAfterTheDelay) {
  performSelector(notes_, noteSelector(), "two", 2);
  performSelector(notes_, noteSelector(), "one", 1);
  performSelector(notes_, noteSelector(), "now", 0);
  performSelector(notes_, noteSelector(), "late", -1);
  performSelector(notes_, noteSelector(), "no number", std::numeric_limits<double>::quiet_NaN());
  performSelector(notes_, noteSelector(), "never", std::numeric_limits<double>::infinity());
  EXPECT_THAT(notes_->texts, IsEmpty());
  loop_.runReady();
  EXPECT_THAT(notes_->texts, ElementsAre("now", "late", "no number"));
  notes_->clear();
  loop_.advance(2 * kOneSecond);
  EXPECT_THAT(notes_->texts, ElementsAre("one", "two"));
  cancelPreviousPerformRequestsWithTarget(notes_);
}

TEST_F(NSDelayedPerformingTest, IsNeitherATimerNorAnItem) {
  performSelector(notes_, noteSelector(), "a", 1);
  EXPECT_THAT(loop_.timers(), IsEmpty());
  EXPECT_THAT(loop_.later(), IsEmpty());
  NSRunLoop::mainRunLoop()->runMode("other", NSDate::date());
  loop_.stayBusy(kOneSecond);
  NSRunLoop::mainRunLoop()->runMode("other", NSDate::date());
  EXPECT_THAT(notes_->texts, IsEmpty()) << "it waits for the default mode";
  loop_.runReady();
  EXPECT_THAT(notes_->texts, ElementsAre("a"));
}

TEST_F(NSDelayedPerformingTest, IsCancelledByTargetOperationAndEqualArgument) {
  const auto other = std::make_shared<Notes>();
  for (const char* text : {"a", "b", "a"}) performSelector(notes_, noteSelector(), text, 1);
  performSelector(other, noteSelector(), "a", 1);
  performSelector(notes_, noteSelector(), nullptr, 1);
  cancelPreviousPerformRequestsWithTarget(notes_, NSSelectorOf<&Notes::clear>("clear"), "b");
  cancelPreviousPerformRequestsWithTarget(notes_, noteSelector(), std::string("a"));
  cancelPreviousPerformRequestsWithTarget(notes_, noteSelector(), nullptr);
  loop_.advance(kOneSecond);
  EXPECT_THAT(notes_->texts, ElementsAre("b"));
  EXPECT_THAT(other->texts, ElementsAre("a"));
}

TEST_F(NSDelayedPerformingTest, IsCancelledForATarget) {
  const auto other = std::make_shared<Notes>();
  performSelector(notes_, noteSelector(), "a", 1);
  performSelector(notes_, NSSelectorOf<&Notes::clear>("clear"), nullptr, 0);
  performSelector(other, noteSelector(), "a", 1);
  cancelPreviousPerformRequestsWithTarget(notes_);
  cancelPreviousPerformRequestsWithTarget(nullptr);
  loop_.advance(kOneSecond);
  EXPECT_THAT(notes_->texts, IsEmpty());
  EXPECT_THAT(other->texts, ElementsAre("a"));
}

TEST_F(NSDelayedPerformingTest, HoldsItsTargetUntilItHasRunOrIsCancelled) {
  for (const bool isCancelled : {false, true}) {
    auto target = std::make_shared<Notes>();
    auto argument = std::make_shared<Notes>();
    const std::weak_ptr<Notes> weakTarget = target;
    const std::weak_ptr<Notes> weakArgument = argument;
    performSelector(target, noteSelector(), argument, 1);
    argument = nullptr;
    EXPECT_FALSE(weakArgument.expired());
    if (isCancelled) cancelPreviousPerformRequestsWithTarget(target);
    target = nullptr;
    EXPECT_EQ(weakTarget.expired(), isCancelled);
    loop_.advance(kOneSecond);
    EXPECT_TRUE(weakTarget.expired());
    EXPECT_TRUE(weakArgument.expired());
  }
}

TEST_F(NSDelayedPerformingTest, BelongsToTheThreadThatAsks) {
  std::thread([&] {
    performSelector(notes_, noteSelector(), "theirs", 0);
    performSelector(notes_, noteSelector(), "cancelled", 0);
    std::thread([&] { cancelPreviousPerformRequestsWithTarget(notes_); }).join();
    cancelPreviousPerformRequestsWithTarget(notes_, noteSelector(), "cancelled");
    NSRunLoop::currentRunLoop()->run();
  }).join();
  loop_.advance(kOneSecond);
  EXPECT_THAT(notes_->texts, ElementsAre("theirs"));
}

class Again : public NSObject {
 public:
  void again() {
    ++called;
    performSelector(shared_from_this(), NSSelectorOf<&Again::again>("again"), nullptr, 0);
  }
  int called = 0;
};

TEST_F(NSDelayedPerformingTest, LeavesWhatACallAddsToTheNextTurn) {
  const auto again = std::make_shared<Again>();
  again->again();
  EXPECT_TRUE(pumpMainQueue(0));
  EXPECT_EQ(again->called, 2);
  cancelPreviousPerformRequestsWithTarget(again);
}

TEST(NSSelector, IsEqualByName) {
  EXPECT_EQ(NSSelectorOf<&Notes::note>("note:"), NSSelector("note:", {}));
  EXPECT_FALSE(NSSelectorOf<&Notes::note>("note:") == NSSelectorOf<&Notes::note>("note"));
  EXPECT_EQ(noteSelector().name(), "note:");
}

TEST(NSSelector, CallsWhatTheTargetHas) {
  const auto notes = std::make_shared<Notes>();
  noteSelector().perform(notes, "a");
  noteSelector().perform(nullptr, "a");
  noteSelector().perform(std::make_shared<Again>(), "a");
  NSSelector("nothing", {}).perform(notes, "a");
  EXPECT_THAT(notes->texts, ElementsAre("a"));
  NSSelectorOf<&Notes::clear>("clear").perform(notes, "a");
  EXPECT_THAT(notes->texts, IsEmpty());
}

}  // namespace
}  // namespace ORLFoundation
