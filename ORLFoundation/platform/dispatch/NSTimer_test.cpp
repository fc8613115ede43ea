
#include <ORLFoundation/platform/dispatch/NSTimer.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t kMillisecond = 1'000'000;

class NSTimerTest : public testing::Test {
 protected:
  [[nodiscard]] std::shared_ptr<NSTimer> add(NSTimeInterval interval, bool repeats,
                                             NSTimerBlock block) {
    auto timer = NSTimer::timerWithTimeInterval(interval, repeats, std::move(block));
    NSRunLoop::mainRunLoop()->addTimer(timer, NSRunLoopCommonModes);
    return timer;
  }
  [[nodiscard]] NSTimerBlock noting() {
    return [this](NSTimer&) { fired_.push_back(loop_.now() / kMillisecond); };
  }

  orlftest::VirtualMainLoop loop_;
  std::vector<std::int64_t> fired_;  // When, in milliseconds.
};

TEST_F(NSTimerTest, FiresOnceAtItsTime) {
  const auto timer = add(0.01, false, noting());
  EXPECT_TRUE(timer->isValid());
  EXPECT_EQ(timer->timeInterval(), 0);
  EXPECT_THAT(loop_.timers(), ElementsAre(10 * kMillisecond));
  loop_.advance(10 * kMillisecond - 1);
  EXPECT_THAT(fired_, IsEmpty());
  loop_.advance(1);
  EXPECT_THAT(fired_, ElementsAre(10));
  EXPECT_FALSE(timer->isValid());
  EXPECT_THAT(loop_.timers(), IsEmpty());
  loop_.advance(100 * kMillisecond);
  EXPECT_THAT(fired_, ElementsAre(10));
}

TEST_F(NSTimerTest, CountsFromItsMakingAndFiresOnlyOnALoop) {
  const auto timer = NSTimer::timerWithTimeInterval(0.01, false, noting());
  loop_.advance(15 * kMillisecond);
  EXPECT_THAT(fired_, IsEmpty());
  NSRunLoop::mainRunLoop()->addTimer(timer, NSDefaultRunLoopMode);
  loop_.runReady();
  EXPECT_THAT(fired_, ElementsAre(15));
}

TEST_F(NSTimerTest, RepeatsAndKeepsItsBeatWhenTheLoopIsLate) {
  const auto timer = add(0.01, true, noting());
  EXPECT_EQ(timer->timeInterval(), 0.01);
  loop_.advance(35 * kMillisecond);
  EXPECT_THAT(fired_, ElementsAre(10, 20, 30));
  loop_.stayBusy(38 * kMillisecond);  // 40 to 70 are missed.
  loop_.advance(10 * kMillisecond);
  EXPECT_THAT(fired_, ElementsAre(10, 20, 30, 73, 80));
  timer->invalidate();
  loop_.advance(50 * kMillisecond);
  EXPECT_EQ(fired_.size(), 5U);
}

TEST_F(NSTimerTest, FiresInTheOrderOfTheirTimes) {
  std::vector<int> order;
  std::vector<std::shared_ptr<NSTimer>> timers;
  for (const int due : {30, 10, 20, 10})
    timers.push_back(add(due / 1000.0, false, [&order, due, place = timers.size()](NSTimer&) {
      order.push_back(due * 10 + static_cast<int>(place));
    }));
  loop_.stayBusy(50 * kMillisecond);
  loop_.runReady();
  EXPECT_THAT(order, ElementsAre(101, 103, 202, 300));
}

TEST_F(NSTimerTest, IsValidUntilItsOnlyCallHasReturned) {
  std::weak_ptr<NSTimer> weak;
  const auto timer = add(0.01, false, [&](NSTimer& fired) {
    EXPECT_TRUE(fired.isValid());
    EXPECT_EQ(weak.lock().get(), &fired);
    EXPECT_THAT(loop_.timers(), IsEmpty());
  });
  weak = timer;
  loop_.advance(10 * kMillisecond);
  EXPECT_FALSE(timer->isValid());
}

TEST_F(NSTimerTest, LetsGoOfItsTargetWhenItIsDone) {
  auto held = std::make_shared<int>(1);
  const std::weak_ptr<int> weak = held;
  auto once = add(0.01, false, [held](NSTimer&) {});
  auto never = add(10, true, [held](NSTimer&) {});
  held = nullptr;
  loop_.advance(10 * kMillisecond);
  EXPECT_FALSE(weak.expired());
  never->invalidate();
  EXPECT_TRUE(weak.expired());
  EXPECT_FALSE(never->isValid());
  never->invalidate();
}

TEST_F(NSTimerTest, IsOwnedByTheLoop) {
  std::weak_ptr<NSTimer> weak;
  {
    const auto timer = add(0.01, false, noting());
    weak = timer;
  }
  EXPECT_FALSE(weak.expired());
  loop_.advance(10 * kMillisecond);
  EXPECT_TRUE(weak.expired());
  EXPECT_EQ(fired_.size(), 1U);
}

TEST_F(NSTimerTest, MayBeInvalidatedInItsCall) {
  const auto timer = add(0.01, true, [&](NSTimer& fired) {
    fired_.push_back(1);
    fired.invalidate();
    EXPECT_FALSE(fired.isValid());
    EXPECT_TRUE(fired.userInfo().isNil());
  });
  loop_.advance(50 * kMillisecond);
  EXPECT_THAT(fired_, ElementsAre(1));
}

TEST_F(NSTimerTest, FiresByHandWithoutLosingItsBeat) {
  const auto once = add(0.01, false, noting());
  once->fire();
  EXPECT_FALSE(once->isValid());
  once->fire();
  EXPECT_THAT(fired_, ElementsAre(0));
  const auto repeating = add(0.01, true, noting());
  loop_.advance(5 * kMillisecond);
  repeating->fire();
  loop_.advance(5 * kMillisecond);
  EXPECT_THAT(fired_, ElementsAre(0, 5, 10));
  repeating->invalidate();
}

TEST_F(NSTimerTest, TakesAnotherDate) {
  const Replaced today(NSDate::setClock, [this] {
    return NSDate().dateByAddingTimeInterval(static_cast<double>(loop_.now()) / 1e9);
  });
  const auto timer = add(0.01, true, noting());
  EXPECT_EQ(timer->fireDate().timeIntervalSinceReferenceDate(), 0.01);
  timer->setFireDate(NSDate().dateByAddingTimeInterval(0.025));
  EXPECT_EQ(timer->fireDate().timeIntervalSinceReferenceDate(), 0.025);
  loop_.advance(40 * kMillisecond);
  EXPECT_THAT(fired_, ElementsAre(25, 35));
  timer->setFireDate(NSDate::distantPast());
  loop_.runReady();
  EXPECT_THAT(fired_, ElementsAre(25, 35, 40));
  timer->invalidate();
  timer->setFireDate(NSDate());
  EXPECT_THAT(loop_.timers(), IsEmpty());
}

TEST_F(NSTimerTest, KeepsTheDateThatItsCallSets) {
  const Replaced today(NSDate::setClock, [this] {
    return NSDate().dateByAddingTimeInterval(static_cast<double>(loop_.now()) / 1e9);
  });
  const auto timer = add(0.01, true, [&](NSTimer& fired) {
    fired_.push_back(loop_.now() / kMillisecond);
    if (fired_.size() == 1) fired.setFireDate(NSDate().dateByAddingTimeInterval(0.07));
  });
  loop_.advance(85 * kMillisecond);
  EXPECT_THAT(fired_, ElementsAre(10, 70, 80));
  timer->invalidate();
}

class Counter : public NSObject {
 public:
  void count(const std::shared_ptr<NSTimer>& timer) {
    ++counted;
    info = timer->userInfo();
  }
  int counted = 0;
  id info;
};

TEST_F(NSTimerTest, CallsAnOperationOfATargetThatItOwns) {
  auto counter = std::make_shared<Counter>();
  const std::weak_ptr<Counter> weak = counter;
  auto timer = NSTimer::timerWithTimeInterval({.timeInterval = 0.01,
                                               .target = counter,
                                               .selector = NSSelectorOf<&Counter::count>("count:"),
                                               .userInfo = "drafts",
                                               .repeats = true});
  NSRunLoop::mainRunLoop()->addTimer(timer, NSRunLoopCommonModes);
  loop_.advance(20 * kMillisecond);
  EXPECT_EQ(counter->counted, 2);
  EXPECT_EQ(counter->info, id("drafts"));
  counter = nullptr;
  EXPECT_FALSE(weak.expired());
  timer->invalidate();
  EXPECT_TRUE(weak.expired());
}

TEST_F(NSTimerTest, IsScheduledOnTheCallersLoop) {
  const auto timer = NSTimer::scheduledTimerWithTimeInterval(0.01, false, noting());
  const auto counter = std::make_shared<Counter>();
  const auto other = NSTimer::scheduledTimerWithTimeInterval(
      {.timeInterval = 0.02,
       .target = counter,
       .selector = NSSelectorOf<&Counter::count>("count:")});
  EXPECT_THAT(loop_.timers(), ElementsAre(10 * kMillisecond, 20 * kMillisecond));
  loop_.advance(30 * kMillisecond);
  EXPECT_THAT(fired_, ElementsAre(10));
  EXPECT_EQ(counter->counted, 1);
}

struct IntervalCase {
  const char* name;
  double interval;
  std::int64_t nanoseconds;
};

TEST_F(NSTimerTest, BoundsItsInterval) {
  const IntervalCase rows[] = {
      {"Zero", 0, 100'000},
      {"Negative", -5, 100'000},
      {"Small", 0.00001, 100'000},
      {"NotANumber", std::numeric_limits<double>::quiet_NaN(), 100'000},
      {"Least", 0.0001, 100'000},
      {"More", 0.0002, 200'000},
  };
  for (const IntervalCase& row : rows) {
    const auto timer = add(row.interval, true, {});
    EXPECT_THAT(loop_.timers(), ElementsAre(loop_.now() + row.nanoseconds)) << row.name;
    loop_.advance(row.nanoseconds);
    EXPECT_THAT(loop_.timers(), ElementsAre(loop_.now() + row.nanoseconds)) << row.name;
    timer->invalidate();
  }
  const auto never = add(std::numeric_limits<double>::infinity(), true, noting());
  loop_.advance(1000 * kMillisecond);
  EXPECT_TRUE(never->isValid());
  EXPECT_THAT(fired_, IsEmpty());
  never->invalidate();
}

TEST_F(NSTimerTest, StaysOnItsFirstLoop) {
  const auto timer = add(0.01, false, noting());
  std::thread([&] {
    NSRunLoop::currentRunLoop()->addTimer(timer, NSDefaultRunLoopMode);
    EXPECT_FALSE(
        NSRunLoop::currentRunLoop()->runMode(NSDefaultRunLoopMode, NSDate::distantFuture()));
  }).join();
  loop_.advance(10 * kMillisecond);
  EXPECT_THAT(fired_, ElementsAre(10));
  NSRunLoop::mainRunLoop()->addTimer(timer, NSDefaultRunLoopMode);
  NSRunLoop::mainRunLoop()->addTimer(nullptr, NSDefaultRunLoopMode);
  EXPECT_THAT(loop_.timers(), IsEmpty());
}

TEST(NSTimerOnTheSystemsClock, FiresNotBeforeItsTime) {
  const std::int64_t begun = NSMonotonicClock::now();
  bool fired = false;
  const auto timer =
      NSTimer::scheduledTimerWithTimeInterval(0.01, false, [&](NSTimer&) { fired = true; });
  while (!fired && NSMonotonicClock::now() - begun < 20'000 * kMillisecond) pumpMainQueue(1);
  EXPECT_TRUE(fired);
  EXPECT_GE(NSMonotonicClock::now() - begun, 10 * kMillisecond);
}

TEST_F(NSTimerTest, KeepsItsBeatAndItsEndWhenItsCallThrows) {
  const auto repeating = add(0.01, true, [](NSTimer&) { throw std::runtime_error("no"); });
  loop_.stayBusy(25 * kMillisecond);
  EXPECT_THROW(pumpMainQueue(0), std::runtime_error);
  EXPECT_THAT(loop_.timers(), ElementsAre(30 * kMillisecond));
  repeating->invalidate();
  const auto once = add(0.01, false, [](NSTimer&) { throw std::runtime_error("no"); });
  loop_.stayBusy(10 * kMillisecond);
  EXPECT_THROW(pumpMainQueue(0), std::runtime_error);
  EXPECT_FALSE(once->isValid());
  EXPECT_THAT(loop_.timers(), IsEmpty());
}

TEST_F(NSTimerTest, MayBeLetGoOfInItsCallByHand) {
  std::shared_ptr<NSTimer> timer;
  timer = NSTimer::timerWithTimeInterval(10, false, [&](NSTimer&) { timer = nullptr; });
  NSTimer& fired = *timer;
  fired.fire();
  EXPECT_EQ(timer, nullptr);
}

TEST_F(NSTimerTest, GoesToAnotherLoopWhenItsFirstIsGone) {
  std::shared_ptr<NSTimer> timer;
  // Due at one instant, each the first of its loop.
  std::thread([&] {
    timer = NSTimer::scheduledTimerWithTimeInterval(0.01, false, noting());
  }).join();
  std::thread([&] {
    const auto first = NSTimer::scheduledTimerWithTimeInterval(0.01, false, noting());
    const auto loop = NSRunLoop::currentRunLoop();
    loop->addTimer(timer, "other");
    loop_.clock().advance(0.01);
    loop->runMode(NSDefaultRunLoopMode, NSDate::date());
    EXPECT_FALSE(first->isValid());
    EXPECT_TRUE(timer->isValid()) << "the modes of the first loop went with it";
    loop->runMode("other", NSDate::date());
    EXPECT_FALSE(timer->isValid());
  }).join();
  EXPECT_EQ(fired_.size(), 2U);
}

}  // namespace
}  // namespace ORLFoundation
