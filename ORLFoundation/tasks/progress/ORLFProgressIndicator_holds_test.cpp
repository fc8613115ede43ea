// How long what is new on show stays there.
#include <ORLFoundation/platform/dispatch/NSTimer.h>
#include <ORLFoundation/tasks/progress/ORLFProgressIndicator_testing.h>
#include <gmock/gmock.h>

#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>

namespace ORLFoundation {
namespace {

using orlftest::kMillisecond;
using testing::ElementsAre;
using testing::IsEmpty;

class ORLFProgressIndicatorHolds : public orlftest::ProgressIndicatorTest {};

TEST_F(ORLFProgressIndicatorHolds, ShowsTheItemBelowWhenTheHoldAfterTheLastOneEnds) {
  const Item older = item(1, 10);
  const Item newer = item(2, 10);
  indicator->displayProgressItem(older);
  indicator->displayProgressItem(newer);
  advance(10);
  delegate->take();
  indicator->removeProgressItem(newer);
  EXPECT_EQ(indicator->displayTimerCounter(), -1);
  EXPECT_THAT(delegate->take(), IsEmpty());
  advance(0);
  EXPECT_THAT(delegate->take(), ElementsAre(2));  // its last values stay
  older->updateValue(5);
  advance(249);
  EXPECT_THAT(delegate->take(), IsEmpty());
  EXPECT_EQ(indicator->displayTimerCounter(), -1);
  advance(1);
  EXPECT_EQ(indicator->displayTimerCounter(), 0);
  EXPECT_TRUE(indicator->displayTimer());
  advance(9);
  EXPECT_THAT(delegate->take(), IsEmpty());
  advance(1);
  EXPECT_THAT(delegate->take(), ElementsAre(5));
}

TEST_F(ORLFProgressIndicatorHolds, GoesIdleWhenTheHoldAfterTheOnlyItemEnds) {
  const Item root = item(4, 10);
  indicator->displayProgressItem(root);
  advance(10);
  indicator->removeProgressItem(root);
  advance(259);
  EXPECT_THAT(delegate->take(), ElementsAre(4, 4));
  EXPECT_TRUE(indicator->visible());
  advance(1);
  EXPECT_THAT(delegate->take(), ElementsAre(-1));
}

TEST_F(ORLFProgressIndicatorHolds, HoldsNothingForAnItemThatDoesNotShow) {
  const Item older = item(1, 10);
  const Item newer = item(2, 10);
  indicator->displayProgressItem(older);
  indicator->displayProgressItem(newer);
  advance(10);
  delegate->take();
  indicator->removeProgressItem(older);
  EXPECT_EQ(indicator->displayTimerCounter(), 0);
  EXPECT_EQ(loop.waiting(), 0U);
  advance(1000);
  EXPECT_THAT(delegate->take(), IsEmpty());
  EXPECT_THAT(*indicator->progressItems(), ElementsAre(newer));
}

TEST_F(ORLFProgressIndicatorHolds, HoldsWhatIsNewOnShowForAQuarterOfASecond) {
  const Item root = item(1, 10);
  indicator->displayProgressItem(root);
  const Item child = root->childProgressItemWithTotalCount(20);
  child->updateValue(7);
  advance(10);
  delegate->take();
  child->addToIndicator();
  advance(0);
  EXPECT_THAT(delegate->take(), ElementsAre(7));
  for (int value = 8; value < 18; ++value) {
    child->updateValue(value);
    EXPECT_EQ(indicator->displayTimer(), nullptr);
    advance(20);
  }
  advance(49);
  EXPECT_THAT(delegate->take(), IsEmpty());
  advance(11);
  EXPECT_THAT(delegate->take(), ElementsAre(17));
}

TEST_F(ORLFProgressIndicatorHolds, CountsTheHoldFromTheEndOfTheDisplay) {
  const Item root = item(1, 10);
  indicator->displayProgressItem(root);
  advance(10);
  delegate->take();
  delegate->then = [&] { loop.stayBusy(100 * kMillisecond); };
  root->currentProgressWillChange();
  advance(0);
  delegate->then = nullptr;
  EXPECT_THAT(loop.later(), ElementsAre(360 * kMillisecond));
}

TEST_F(ORLFProgressIndicatorHolds, EndsAHoldWhoseDisplayThrows) {
  const Item root = item(1, 10);
  indicator->displayProgressItem(root);
  advance(10);
  delegate->take();
  delegate->then = [] { throw std::runtime_error("no"); };
  root->currentProgressWillChange();
  EXPECT_THROW(advance(0), std::runtime_error);
  delegate->then = nullptr;
  EXPECT_THAT(delegate->take(), ElementsAre(1));
  EXPECT_EQ(indicator->displayTimerCounter(), -1);
  root->updateValue(2);
  advance(260);
  EXPECT_EQ(indicator->displayTimerCounter(), 0);
  EXPECT_THAT(delegate->take(), ElementsAre(2));
}

TEST_F(ORLFProgressIndicatorHolds, ShowsAgainWhenTheLastOfNestedHoldsEnds) {
  indicator->stopDisplayTimer();
  indicator->stopDisplayTimer();
  EXPECT_EQ(indicator->displayTimerCounter(), -2);
  indicator->updateDisplayTimer();
  EXPECT_EQ(indicator->displayTimer(), nullptr);
  indicator->startDisplayTimer();
  EXPECT_EQ(indicator->displayTimerCounter(), -1);
  EXPECT_EQ(indicator->displayTimer(), nullptr);
  indicator->startDisplayTimer();
  EXPECT_EQ(indicator->displayTimerCounter(), 0);
  EXPECT_TRUE(indicator->displayTimer());
}

TEST_F(ORLFProgressIndicatorHolds, NeedsAHoldToEndOne) {
  indicator->startDisplayTimer();
  EXPECT_EQ(indicator->displayTimerCounter(), 0);
  EXPECT_EQ(indicator->displayTimer(), nullptr);
}

TEST_F(ORLFProgressIndicatorHolds, DropsTheArmedUpdateWithAHold) {
  indicator->updateDisplayTimer();
  const auto timer = indicator->displayTimer();
  indicator->stopDisplayTimer();
  EXPECT_FALSE(timer->isValid());
  advance(100);
  EXPECT_THAT(delegate->take(), IsEmpty());
}

TEST_F(ORLFProgressIndicatorHolds, EndsAHoldInSilenceWhenItIsGone) {
  auto leaving = std::make_shared<ORLFProgressIndicator>();
  leaving->setDelegate(delegate);
  const Item root = item(1, 2);
  leaving->displayProgressItem(root);
  leaving->removeProgressItem(root);
  leaving.reset();
  EXPECT_EQ(loop.waiting(), 1U);
  advance(1000);
  EXPECT_THAT(delegate->take(), IsEmpty());
  EXPECT_THAT(loop.later(), IsEmpty());
}

/// On the clock of the world.
TEST(ORLFProgressIndicatorOnTheRealClock, ShowsAHundredthAndHoldsAQuarterOfASecond) {
  using Clock = std::chrono::steady_clock;
  const auto delegate = std::make_shared<orlftest::Watching>();
  const auto indicator = std::make_shared<ORLFProgressIndicator>();
  indicator->setDelegate(delegate);
  const auto root = std::make_shared<ORLFProgressItem>();
  const auto timeUntil = [&](std::size_t count, const std::function<void()>& act) {
    const auto start = Clock::now();
    act();
    while (delegate->shown.size() < count && Clock::now() - start < std::chrono::seconds(20))
      pumpMainQueue(0.05);
    return Clock::now() - start;
  };
  root->updateValue(3, 10);
  EXPECT_GE(timeUntil(1, [&] { indicator->displayProgressItem(root); }),
            std::chrono::milliseconds(10));
  EXPECT_THAT(delegate->shown, ElementsAre(3));
  EXPECT_GE(timeUntil(3, [&] { indicator->removeProgressItem(root); }),
            std::chrono::milliseconds(250));
  EXPECT_THAT(delegate->shown, ElementsAre(3, 3, -1));
}

}  // namespace
}  // namespace ORLFoundation
