#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>

#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <ORLFoundation/tasks/progress/ORLFProgressIndicator.h>
#include <gmock/gmock.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

std::shared_ptr<NSProgress> halfDone() {
  auto progress = NSProgress::discreteProgressWithTotalUnitCount(10);
  progress->setCompletedUnitCount(5);
  progress->setLocalizedDescription("Copying");
  return progress;
}

TEST(ORLFProgressItemBinding, WaitsForTheNextChange) {
  const auto item = std::make_shared<ORLFProgressItem>();
  item->updateValue(3, 7);
  item->setMessage("before");
  item->setIndeterminate(true);
  const auto progress = halfDone();
  item->bindToProgress(progress);
  EXPECT_EQ(item->boundProgress(), progress);
  EXPECT_EQ(item->value(), 0);
  EXPECT_EQ(item->maxValue(), 1);
  EXPECT_EQ(item->message(), std::nullopt);
  EXPECT_FALSE(item->isIndeterminate());
  progress->setCompletedUnitCount(6);
  EXPECT_EQ(item->value(), 0.6);
  EXPECT_EQ(item->maxValue(), 1);
  EXPECT_EQ(item->message(), "Copying");
  item->unbindFromProgress(progress);
}

TEST(ORLFProgressItemBinding, FollowsAllThreeValuesWhicheverChanges) {
  const auto item = std::make_shared<ORLFProgressItem>();
  const auto progress = halfDone();
  item->bindToProgress(progress);
  progress->setLocalizedDescription("Moving");
  EXPECT_EQ(item->value(), 0.5);
  EXPECT_EQ(item->message(), "Moving");
  progress->setTotalUnitCount(-1);
  EXPECT_TRUE(item->isIndeterminate());
  EXPECT_EQ(item->value(), 0);
  progress->setTotalUnitCount(20);
  EXPECT_FALSE(item->isIndeterminate());
  EXPECT_EQ(item->value(), 0.25);
  const auto part = NSProgress::discreteProgressWithTotalUnitCount(2);
  progress->addChild(part, 10);
  part->setCompletedUnitCount(1);
  EXPECT_EQ(item->value(), 0.5);
  item->unbindFromProgress(progress);
}

TEST(ORLFProgressItemBinding, KeepsToItsFirstProgress) {
  const auto item = std::make_shared<ORLFProgressItem>();
  const auto first = halfDone();
  const auto second = halfDone();
  item->bindToProgress(nullptr);
  item->bindToProgress(first);
  item->bindToProgress(second);
  item->bindToProgress(first);
  EXPECT_EQ(item->boundProgress(), first);
  second->setCompletedUnitCount(9);
  EXPECT_EQ(item->value(), 0);
  item->unbindFromProgress(second);
  item->unbindFromProgress(nullptr);
  first->setCompletedUnitCount(8);
  EXPECT_EQ(item->value(), 0.8);
  item->unbindFromProgress(first);
  EXPECT_EQ(item->boundProgress(), nullptr);
  first->setCompletedUnitCount(9);
  EXPECT_EQ(item->value(), 0.8);
  item->unbindFromProgress(first);
  item->bindToProgress(second);
  second->setCompletedUnitCount(1);
  EXPECT_EQ(item->value(), 0.1);
  item->unbindFromProgress(second);
}

TEST(ORLFProgressItemBinding, MaySeeItsItemGo) {
  const auto progress = halfDone();
  std::make_shared<ORLFProgressItem>()->bindToProgress(progress);
  progress->setCompletedUnitCount(7);
  EXPECT_EQ(progress->completedUnitCount(), 7);
}

TEST(ORLFProgressItemBinding, LeavesOtherObservationsToTheBaseClass) {
  struct WatchingItem final : ORLFProgressItem {
    void observeValueForKeyPath(std::string_view keyPath, NSObject& ofObject,
                                const NSKeyValueChange& change, const void* context) override {
      if (context == this) seen.emplace_back(keyPath);
      ORLFProgressItem::observeValueForKeyPath(keyPath, ofObject, change, context);
    }
    std::vector<std::string> seen;
  };
  const auto item = std::make_shared<WatchingItem>();
  const auto other = halfDone();
  other->addObserver(item, "fractionCompleted", NSKeyValueObservingOptionNew, item.get());
  other->setCompletedUnitCount(6);
  EXPECT_THAT(item->seen, ElementsAre("fractionCompleted"));
  EXPECT_EQ(item->maxValue(), 0);
}

TEST(ORLFProgressItemKeys, AreDeclaredInPairs) {
  EXPECT_THAT(ORLFProgressItem::keyPathsForValuesAffectingCurrentMessage(),
              ElementsAre("currentChild", "message"));
  EXPECT_THAT(ORLFProgressItem::keyPathsForValuesAffectingCurrentIndeterminate(),
              ElementsAre("currentChild", "indeterminate"));
  EXPECT_THAT(ORLFProgressItem::keyPathsForValuesAffectingValue(),
              ElementsAre("currentChild", "value"));
  EXPECT_THAT(ORLFProgressItem::keyPathsForValuesAffectingMinValue(),
              ElementsAre("currentChild", "minValue"));
  EXPECT_THAT(ORLFProgressItem::keyPathsForValuesAffectingMaxValue(),
              ElementsAre("currentChild", "maxValue"));
}

/// The keys that an item tells of, each once for each call.
class Heard {
 public:
  explicit Heard(ORLFProgressItem& item) {
    for (const char* key :
         {"currentMessage", "currentIndeterminate", "value", "minValue", "maxValue", "message",
          "indeterminate", "currentValue", "currentMinValue", "currentMaxValue", "children",
          "currentChild", "currentIndicator", "boundProgress"})
      tokens_.push_back(item.addObserver(
          key, NSKeyValueObservingOptionNew,
          [this](const NSKeyValueChange& change) { heard_.emplace_back(change.keyPath); }));
  }
  std::vector<std::string> take() { return std::exchange(heard_, {}); }

 private:
  std::vector<std::string> heard_;
  std::vector<std::shared_ptr<NSKeyValueObservation>> tokens_;
};

TEST(ORLFProgressItemKeys, TellOfWhatDependsOnThem) {
  const auto item = std::make_shared<ORLFProgressItem>();
  Heard heard(*item);
  item->setMessage("text");
  EXPECT_THAT(heard.take(), UnorderedElementsAre("message", "currentMessage"));
  item->setIndeterminate(true);
  EXPECT_THAT(heard.take(), UnorderedElementsAre("indeterminate", "currentIndeterminate"));
  item->updateValue(3, 10);
  EXPECT_THAT(heard.take(), ElementsAre("maxValue", "value"));
  item->updateValue(4);
  EXPECT_THAT(heard.take(), ElementsAre("value"));
  item->setMinValue(4);
  EXPECT_THAT(heard.take(), ElementsAre("minValue"));
  const auto child = item->childProgressItemWithTotalCount(3);
  EXPECT_THAT(heard.take(), ElementsAre("children"));
  item->makeChildCurrent(child);
  EXPECT_THAT(heard.take(),
              UnorderedElementsAre("currentChild", "currentMessage", "currentIndeterminate",
                                   "value", "minValue", "maxValue"));
  child->updateValue(1);
  EXPECT_THAT(heard.take(), IsEmpty());
  const auto progress = halfDone();
  item->bindToProgress(progress);
  EXPECT_THAT(heard.take(), testing::Contains("boundProgress"));
  item->unbindFromProgress(progress);
  EXPECT_THAT(heard.take(), ElementsAre("boundProgress"));
}

TEST(ORLFProgressItemKeys, AreReadAndSetByName) {
  const auto item = std::make_shared<ORLFProgressItem>();
  item->setValueForKey(10.0, "maxValue");
  item->setValueForKey(4.0, "value");
  item->setValueForKey("text", "message");
  item->setValueForKey(true, "indeterminate");
  EXPECT_EQ(item->valueForKey("currentValue"), id(4.0));
  EXPECT_EQ(item->valueForKey("currentMessage"), id("text"));
  EXPECT_EQ(item->valueForKey("currentIndeterminate"), id(true));
  EXPECT_EQ(item->valueForKeyPath("observerProgress.totalUnitCount"), id(-1));
  EXPECT_EQ(item->className(), "ORLFProgressItem");
}

}  // namespace
}  // namespace ORLFoundation
