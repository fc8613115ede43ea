#include <ORLFoundation/tasks/progress/ORLFProgressIndicator.h>

#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/platform/dispatch/NSTimer.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <ORLFoundation/tasks/progress/ORLFProgressIndicator_testing.h>
#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::kMillisecond;
using testing::ElementsAre;
using testing::IsEmpty;

class ORLFProgressIndicatorTest : public orlftest::ProgressIndicatorTest {};

TEST_F(ORLFProgressIndicatorTest, BeginsWithNothing) {
  EXPECT_FALSE(indicator->visible());
  EXPECT_FALSE(indicator->indeterminate());
  EXPECT_EQ(indicator->currentValue(), 0);
  EXPECT_EQ(indicator->minValue(), 0);
  EXPECT_EQ(indicator->maxValue(), 0);
  EXPECT_EQ(indicator->message(), std::nullopt);
  EXPECT_EQ(indicator->displayTimer(), nullptr);
  EXPECT_EQ(indicator->displayTimerCounter(), 0);
  EXPECT_EQ(indicator->progressItems(), std::nullopt);
  EXPECT_EQ(ORLFProgressIndicator().delegate(), nullptr);
}

TEST_F(ORLFProgressIndicatorTest, HasOneQueueForAll) {
  const auto& queue = ORLFProgressIndicator::sharedProgressIndicatorQueue();
  EXPECT_STREQ(dispatch_queue_get_label(queue), "com.orlsoftware.foundation.ORLFProgressIndicator");
  EXPECT_EQ(queue, ORLFProgressIndicator::sharedProgressIndicatorQueue());
}

TEST_F(ORLFProgressIndicatorTest, ShowsTheNewestItemAHundredthOfASecondLater) {
  const Item root = item(3, 10);
  indicator->displayProgressItem(root);
  EXPECT_FALSE(indicator->visible());
  advance(9);
  EXPECT_THAT(delegate->take(), IsEmpty());
  EXPECT_TRUE(indicator->displayTimer());
  advance(1);
  EXPECT_THAT(delegate->take(), ElementsAre(3));
  EXPECT_TRUE(indicator->visible());
  EXPECT_EQ(indicator->maxValue(), 10);
  EXPECT_EQ(indicator->displayTimer(), nullptr);
  advance(1000);
  EXPECT_THAT(delegate->take(), IsEmpty());
}

TEST_F(ORLFProgressIndicatorTest, ShowsAStormOfChangesOnceInAHundredthOfASecond) {
  const Item root = item(0, 1000);
  indicator->displayProgressItem(root);
  for (int millisecond = 0; millisecond < 1000; ++millisecond) {
    root->updateValueByIncrement(0.5);
    root->updateValueByIncrement(0.5);
    advance(1);
  }
  EXPECT_EQ(delegate->shown.size(), 100U);
  EXPECT_EQ(delegate->shown.back(), 1000);
}

TEST_F(ORLFProgressIndicatorTest, CopiesAllThatAnItemShows) {
  const Item root = item(3, 10);
  root->setMinValue(2);
  root->setMessage("Reading");
  root->setIndeterminate(true);
  indicator->displayProgressItem(root);
  advance(10);
  EXPECT_EQ(indicator->currentValue(), 3);
  EXPECT_EQ(indicator->minValue(), 2);
  EXPECT_EQ(indicator->maxValue(), 10);
  EXPECT_EQ(indicator->message(), "Reading");
  EXPECT_TRUE(indicator->indeterminate());
  EXPECT_EQ(indicator->normalizedValue(), 0.375);
}

TEST_F(ORLFProgressIndicatorTest, TellsOutsideOfTheTreesLockAndOfItsQueue) {
  const Item root = item(3, 10);
  const auto updateElsewhere = [&] {
    std::thread([&] { root->updateValueByIncrement(1); }).join();
  };
  const auto token = indicator->addObserver("visible", NSKeyValueObservingOptionNew,
                                            [&](const NSKeyValueChange&) { updateElsewhere(); });
  delegate->then = [&, isFirst = true]() mutable {
    if (!std::exchange(isFirst, false)) return;
    EXPECT_EQ(indicator->currentValue(), 3);
    updateElsewhere();
    EXPECT_TRUE(indicator->displayTimer()) << "what comes in the call is shown next";
  };
  indicator->displayProgressItem(root);
  advance(10);
  EXPECT_THAT(delegate->take(), ElementsAre(3));
  advance(10);
  EXPECT_THAT(delegate->take(), ElementsAre(5));
}

TEST_F(ORLFProgressIndicatorTest, IsIdleAndIndeterminateWithoutAnItem) {
  indicator->setVisible(true);
  indicator->setMessage("left");
  indicator->setMinValue(1);
  indicator->setMaxValue(2);
  indicator->setCurrentValue(3);
  indicator->updateDisplayTimer();
  advance(10);
  EXPECT_THAT(delegate->take(), ElementsAre(-1));
  EXPECT_FALSE(indicator->visible());
  EXPECT_TRUE(indicator->indeterminate());
  EXPECT_EQ(indicator->message(), std::nullopt);
  EXPECT_EQ(indicator->minValue(), 0);
  EXPECT_EQ(indicator->maxValue(), 0);
  EXPECT_EQ(indicator->currentValue(), 0);
  EXPECT_EQ(indicator->progressItems(), std::nullopt);
}

TEST_F(ORLFProgressIndicatorTest, ArmsForTheLastItemOnly) {
  const Item older = item(1, 10);
  const Item newer = item(2, 10);
  indicator->displayProgressItem(older);
  indicator->displayProgressItem(newer);
  EXPECT_THAT(*indicator->progressItems(), ElementsAre(older, newer));
  EXPECT_TRUE(indicator->isProgressItemVisible(newer));
  EXPECT_FALSE(indicator->isProgressItemVisible(older));
  EXPECT_TRUE(indicator->isDisplayingProgressItem(older));
  advance(10);
  EXPECT_THAT(delegate->take(), ElementsAre(2));
  older->updateValue(5);
  EXPECT_EQ(indicator->displayTimer(), nullptr);
  advance(1000);
  EXPECT_THAT(delegate->take(), IsEmpty());
}

TEST_F(ORLFProgressIndicatorTest, FiresInModesAddedToTheCommonOnes) {
  NSRunLoop::mainRunLoop()->addCommonMode("tracking");
  const Item root = item(3, 10);
  indicator->displayProgressItem(root);
  loop.stayBusy(10 * kMillisecond);
  NSRunLoop::mainRunLoop()->runMode("tracking", NSDate::date());
  EXPECT_THAT(delegate->take(), ElementsAre(3));
}

TEST_F(ORLFProgressIndicatorTest, ListsAnItemOnce) {
  const Item root = item(3, 10);
  indicator->displayProgressItem(root);
  indicator->displayProgressItem(root);
  indicator->displayProgressItem(nullptr);
  EXPECT_THAT(*indicator->progressItems(), ElementsAre(root));
}

TEST_F(ORLFProgressIndicatorTest, TakesAnItemFromAnother) {
  const auto other = std::make_shared<ORLFProgressIndicator>();
  const Item root = item(3, 10);
  other->displayProgressItem(root);
  indicator->removeProgressItem(root);
  EXPECT_TRUE(other->isDisplayingProgressItem(root));
  indicator->displayProgressItem(root);
  EXPECT_EQ(root->currentIndicator(), indicator);
  EXPECT_THAT(*other->progressItems(), IsEmpty());
  EXPECT_THAT(*indicator->progressItems(), ElementsAre(root));
}

TEST_F(ORLFProgressIndicatorTest, TakesAnItemFromItsParentToWhichItGoesOnReporting) {
  const Item root = item(3, 10);
  const Item child = root->childProgressItemWithTotalCount(5);
  root->makeChildCurrent(child);
  indicator->displayProgressItem(child);
  EXPECT_THAT(root->children(), IsEmpty());
  EXPECT_EQ(root->currentChild(), nullptr);
  EXPECT_EQ(child->parent(), root);
  advance(10);
  delegate->take();
  child->updateValue(2);
  advance(1000);
  EXPECT_THAT(delegate->take(), IsEmpty());
  child->addToIndicator();
  EXPECT_EQ(root->currentChild(), nullptr);
  indicator->removeProgressItem(child);  // a listed item owns the indicator that lists it
}

TEST_F(ORLFProgressIndicatorTest, AnswersNoForNil) {
  EXPECT_FALSE(indicator->isProgressItemVisible(nullptr));
  EXPECT_FALSE(indicator->isDisplayingProgressItem(nullptr));
  indicator->displayProgressItem(item(1, 2));
  EXPECT_FALSE(indicator->isProgressItemVisible(nullptr));
  EXPECT_FALSE(indicator->isDisplayingProgressItem(nullptr));
  indicator->removeProgressItem(nullptr);
}

TEST_F(ORLFProgressIndicatorTest, NormalizesWithoutTakingTheMinimumOff) {
  indicator->setMinValue(10);
  indicator->setMaxValue(20);
  indicator->setCurrentValue(15);
  EXPECT_EQ(indicator->normalizedValue(), 1.5);
  indicator->setMaxValue(10);
  EXPECT_EQ(indicator->normalizedValue(), 0);
  indicator->setMaxValue(std::nan(""));
  EXPECT_TRUE(std::isnan(indicator->normalizedValue()));
}

TEST_F(ORLFProgressIndicatorTest, ClearsTheIndicatorOfItsItemsWhenItGoes) {
  auto leaving = std::make_shared<ORLFProgressIndicator>();
  const std::weak_ptr<ORLFProgressIndicator> weak = leaving;
  const Item root = item(1, 2);
  leaving->displayProgressItem(root);
  root->setCurrentIndicator(indicator);
  leaving.reset();
  EXPECT_FALSE(weak.expired());  // the armed update holds it
  advance(10);
  EXPECT_TRUE(weak.expired());
  EXPECT_EQ(root->currentIndicator(), nullptr);
}

TEST_F(ORLFProgressIndicatorTest, ClearsItsItemsInTheOrderOfTheList) {
  std::vector<Item> left;
  const auto next = std::make_shared<orlftest::RecordingIndicator>(
      [&](orlftest::RecordingIndicator&, const std::string& operation, const Item& each) {
        if (operation == "progressValuesWillChangeForItem:") left.push_back(each);
      });
  auto leaving = std::make_shared<ORLFProgressIndicator>();
  const Item all[] = {item(1, 2), item(2, 2), item(3, 2)};
  for (const Item& each : all) leaving->displayProgressItem(each);
  for (const Item& each : all) each->setCurrentIndicator(next);
  advance(10);
  leaving.reset();
  EXPECT_THAT(left, testing::ElementsAreArray(all));
  for (const Item& each : all) EXPECT_EQ(each->currentIndicator(), nullptr);
}

TEST_F(ORLFProgressIndicatorTest, DestroysNothingInsideItsQueue) {
  struct Dying final : ORLFProgressItem {
    explicit Dying(int& count) : outside(count) {}
    ~Dying() override {
      const char* label = dispatch_queue_get_label(DISPATCH_CURRENT_QUEUE_LABEL);
      if (label != dispatch_queue_get_label(ORLFProgressIndicator::sharedProgressIndicatorQueue()))
        ++outside;
    }
    int& outside;
  };
  int outside = 0;
  for (int round = 0; round < 3; ++round) {
    auto dying = std::make_shared<Dying>(outside);
    indicator->displayProgressItem(dying);
    if (round == 1) advance(20);
    std::weak_ptr<Dying> weak = dying;
    dying.reset();
    if (const auto held = weak.lock()) indicator->removeProgressItem(held);
    advance(300);
    EXPECT_TRUE(weak.expired());
  }
  EXPECT_EQ(outside, 3);
}

/// Writes down where it dies, and that it is asked for the hold of a removal.
struct MortalIndicator final : ORLFProgressIndicator {
  explicit MortalIndicator(std::vector<std::string>& told) : seen(told) {}
  MortalIndicator(const MortalIndicator&) = delete;
  MortalIndicator& operator=(const MortalIndicator&) = delete;
  ~MortalIndicator() override {
    const char* const label = dispatch_queue_get_label(DISPATCH_CURRENT_QUEUE_LABEL);
    const bool isInside = label == dispatch_queue_get_label(sharedProgressIndicatorQueue());
    seen.emplace_back(isInside ? "gone inside the queue" : "gone");
  }
  void currentProgressDidChangeForItem(const Item&) override { seen.emplace_back("removed"); }
  std::vector<std::string>& seen;
};

TEST_F(ORLFProgressIndicatorTest, LivesThroughTheCallThatLetsGoOfIt) {
  std::vector<std::string> seen;
  auto leaving = std::make_shared<MortalIndicator>(seen);
  auto root = std::make_shared<ORLFProgressItem>();
  leaving->displayProgressItem(root);
  advance(10);
  ORLFProgressIndicator& named = *leaving;
  leaving.reset();
  named.removeProgressItem(root);
  root.reset();
  EXPECT_THAT(std::exchange(seen, {}), ElementsAre("removed", "gone"));

  leaving = std::make_shared<MortalIndicator>(seen);
  leaving->updateDisplayTimer();
  ORLFProgressIndicator& armed = *leaving;
  leaving.reset();
  EXPECT_THAT(seen, IsEmpty());
  armed.stopDisplayTimer();
  EXPECT_THAT(seen, ElementsAre("gone"));
}

TEST_F(ORLFProgressIndicatorTest, CopiesTheValuesOfOneMoment) {
  const Item root = item(3, 10);
  std::thread updating;
  std::atomic<bool> isUpdated{false};
  bool wasUpdatedInside = true;
  const auto token = indicator->addObserver(
      "indeterminate", NSKeyValueObservingOptionNew, [&](const NSKeyValueChange&) {
        updating = std::thread([&] {
          root->updateValue(20, 30);
          isUpdated = true;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        wasUpdatedInside = isUpdated;
      });
  indicator->updateDisplayValuesWithItem(root);
  updating.join();
  EXPECT_FALSE(wasUpdatedInside);
  EXPECT_EQ(indicator->currentValue(), 3);
  EXPECT_EQ(indicator->maxValue(), 10);
}

TEST_F(ORLFProgressIndicatorTest, ReadsAndSetsByName) {
  indicator->setValueForKey(4.0, "maxValue");
  indicator->setValueForKey(1.0, "currentValue");
  indicator->setValueForKey("text", "message");
  EXPECT_EQ(indicator->valueForKey("normalizedValue"), id(0.25));
  EXPECT_EQ(indicator->message(), "text");
  EXPECT_EQ(indicator->className(), "ORLFProgressIndicator");
}

}  // namespace
}  // namespace ORLFoundation
