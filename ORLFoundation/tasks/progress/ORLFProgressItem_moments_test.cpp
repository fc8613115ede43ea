// What can be seen at each moment of a change: before it, in it and after it.
#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <ORLFoundation/tasks/progress/ORLFProgress_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::RecordingIndicator;
using testing::ElementsAre;
using testing::IsEmpty;

/// A root on an indicator, and what a block sees of it at each notice.
class ORLFProgressItemMoments : public testing::Test {
 protected:
  ORLFProgressItemMoments() {
    indicator->displayProgressItem(root);
    seen.clear();
  }
  ~ORLFProgressItemMoments() override {
    // What a test looks at has gone with it.
    look = [] { return std::string(); };
    root->setCurrentIndicator(nullptr);
  }

  std::vector<std::string> take() { return std::exchange(seen, {}); }
  /// Value, maximum and units.
  [[nodiscard]] std::string numbers() const {
    std::ostringstream text;
    text << root->value() << "/" << root->maxValue() << " "
         << root->observerProgress()->completedUnitCount() << "/"
         << root->observerProgress()->totalUnitCount();
    return text.str();
  }

  orlftest::VirtualMainLoop loop;
  std::vector<std::string> seen;
  std::function<std::string()> look = [this] { return numbers(); };
  std::shared_ptr<RecordingIndicator> indicator = std::make_shared<RecordingIndicator>(
      [this](RecordingIndicator&, const std::string& operation, const auto&) {
        seen.push_back((operation.find("Will") != operation.npos ? "will: " : "did: ") + look());
      });
  std::shared_ptr<ORLFProgressItem> root = std::make_shared<ORLFProgressItem>();
};

TEST_F(ORLFProgressItemMoments, AnUpdateIsWholeBetweenItsNotices) {
  root->updateValue(50, 100);
  EXPECT_THAT(take(), ElementsAre("will: 0/0 0/1000", "did: 50/100 500/1000"));
  root->updateValue(25);
  EXPECT_THAT(take(), ElementsAre("will: 50/100 500/1000", "did: 25/100 250/1000"));
  root->updateValueByIncrement(100);
  EXPECT_THAT(take(), ElementsAre("will: 25/100 250/1000", "did: 100/100 1000/1000"));
  root->setIndeterminate(true);
  EXPECT_THAT(take(), ElementsAre("will: 100/100 1000/1000", "did: 100/100 1000/-1"));
  root->updateValue(10);
  EXPECT_THAT(take(), ElementsAre("will: 100/100 1000/-1", "did: 10/100 100/1000"));
}

TEST_F(ORLFProgressItemMoments, AnUpdateSetsTheUnitsThenTheirTotal) {
  root->updateValue(50, 100);
  root->setIndeterminate(true);
  const auto progress = root->observerProgress();
  std::vector<std::shared_ptr<NSKeyValueObservation>> tokens;
  for (const char* key : {"totalUnitCount", "completedUnitCount"})
    tokens.push_back(progress->addObserver(
        key, NSKeyValueObservingOptionNew,
        [this](const NSKeyValueChange& change) { seen.emplace_back(change.keyPath); }));
  look = [] { return ""; };
  take();
  root->updateValue(10);
  EXPECT_THAT(take(), ElementsAre("will: ", "completedUnitCount", "totalUnitCount", "did: "));
  root->setIndeterminate(false);
  EXPECT_THAT(take(), ElementsAre("will: ", "did: "));
  root->setIndeterminate(true);
  EXPECT_THAT(take(), ElementsAre("will: ", "totalUnitCount", "did: "));
}

TEST_F(ORLFProgressItemMoments, AMessageAndItsCopyBelowChangeTogether) {
  look = [this] {
    return root->message().value_or("nil") + " " +
           root->observerProgress()->localizedDescription().value_or("nil");
  };
  root->setMessage("Reading");
  EXPECT_THAT(take(), ElementsAre("will: nil nil", "did: Reading Reading"));
  root->setMessage(std::nullopt);
  EXPECT_THAT(take(), ElementsAre("will: Reading Reading", "did: nil nil"));
}

TEST_F(ORLFProgressItemMoments, AFlagChangesBetweenItsNotices) {
  look = [this] { return root->currentIndeterminate() ? "yes" : "no"; };
  root->setIndeterminate(true);
  EXPECT_THAT(take(), ElementsAre("will: no", "did: yes"));
}

TEST_F(ORLFProgressItemMoments, AChildIsCurrentBetweenItsNoticesAndLeavesTheListAfterThem) {
  const auto child = root->childProgressItemWithTotalCount(7);
  EXPECT_THAT(take(), IsEmpty());
  look = [this] {
    return std::string(root->currentChild() ? "child" : "none") + " of " +
           std::to_string(root->children().size());
  };
  child->addToIndicator();
  EXPECT_THAT(take(), ElementsAre("will: none of 1", "did: child of 1"));
  child->removeFromIndicator();
  EXPECT_THAT(take(), ElementsAre("will: child of 1", "did: none of 1"));
  EXPECT_THAT(root->children(), IsEmpty());
}

TEST_F(ORLFProgressItemMoments, AnIndicatorIsLeftBetweenItsNotices) {
  look = [this] { return root->currentIndicator() == indicator ? "here" : "gone"; };
  root->setCurrentIndicator(nullptr);
  EXPECT_THAT(take(), ElementsAre("will: here"));
  root->setCurrentIndicator(indicator);
  EXPECT_THAT(take(), ElementsAre("did: here"));
}

TEST_F(ORLFProgressItemMoments, AChildHasItsParentAndItsMaximumBeforeItIsListed) {
  std::string atList;
  const auto token =
      root->addObserver("children", NSKeyValueObservingOptionNew, [&](const NSKeyValueChange&) {
        const auto child = root->children().back();
        atList = child->parent() == root ? "parent " : "orphan ";
        atList += std::to_string(static_cast<int>(child->maxValue()));
        // Tied already: it is counted.
        child->updateValue(7);
        atList += " " + std::to_string(root->observerProgress()->completedUnitCount());
      });
  static_cast<void>(root->childProgressItemWithTotalCount(7));
  EXPECT_EQ(atList, "parent 7 1000");
}

TEST_F(ORLFProgressItemMoments, WhatIsShownWaitsForTheTreesLockAndPlainNumbersDoNot) {
  const auto child = root->childProgressItemWithTotalCount(3);
  const auto stranger = std::make_shared<ORLFProgressItem>();
  const auto empty = std::make_shared<ORLFProgressIndicator>();
  const std::function<void()> reads[] = {
      [&] { static_cast<void>(root->currentValue()); },
      [&] { static_cast<void>(root->currentMinValue()); },
      [&] { static_cast<void>(root->currentMaxValue()); },
      [&] { static_cast<void>(root->currentMessage()); },
      [&] { static_cast<void>(root->currentIndeterminate()); },
      [&] { static_cast<void>(root->children()); },
      [&] { static_cast<void>(root->currentIndicator()); },
      [&] { static_cast<void>(root->message()); },
      [&] { static_cast<void>(root->isIndeterminate()); },
      [&] { static_cast<void>(indicator->isDisplayingProgressItem(root)); },
      [&] { static_cast<void>(indicator->isProgressItemVisible(nullptr)); },
      [&] { child->progressValuesDidChange(); },
      [&] { root->currentProgressDidChangeForItem(child); },
      // One lock serves all trees.
      [&] { static_cast<void>(stranger->parent()); },
      [&] { static_cast<void>(stranger->currentChild()); }, [&] { stranger->addToIndicator(); },
      [&] { stranger->removeFromIndicator(); },
      [&] { stranger->progressValuesWillChangeForItem(nullptr); },
      [&] { stranger->progressValuesDidChangeForItem(nullptr); },
      [&] { stranger->currentProgressWillChangeForItem(nullptr); },
      [&] { stranger->currentProgressDidChangeForItem(nullptr); },
      [&] { empty->displayProgressItem(nullptr); }, [&] { empty->removeProgressItem(nullptr); },
      [&] { empty->progressValuesDidChangeForItem(nullptr); },
      [&] { empty->currentProgressWillChangeForItem(nullptr); }};
  std::vector<std::thread> threads;
  std::atomic<std::size_t> returned{0};
  std::size_t returnedInside = 0;
  look = [&] {
    if (!threads.empty()) return "";
    // Would wait for ever if it waited.
    std::thread([&] {
      EXPECT_EQ(child->value() + child->minValue() + child->maxValue(), 3);
      child->setMinValue(1);
    }).join();
    for (const auto& read : reads)
      threads.emplace_back([&] {
        read();
        ++returned;
      });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    returnedInside = returned;
    return "";
  };
  root->updateValue(1, 2);
  for (std::thread& each : threads) each.join();
  EXPECT_EQ(returnedInside, 0U);
  EXPECT_EQ(returned, std::size(reads));
}

TEST_F(ORLFProgressItemMoments, BindingWaitsWhileTheOutsideProgressReports) {
  const auto progress = NSProgress::discreteProgressWithTotalUnitCount(4);
  const auto other = NSProgress::discreteProgressWithTotalUnitCount(4);
  const auto item = std::make_shared<ORLFProgressItem>();
  item->bindToProgress(progress);
  std::vector<std::thread> threads;
  std::atomic<int> returned{0};
  int returnedInside = -1;
  const auto token =
      item->addObserver("message", NSKeyValueObservingOptionNew, [&](const NSKeyValueChange&) {
        threads.emplace_back([&] {
          item->bindToProgress(other);
          ++returned;
        });
        threads.emplace_back([&] {
          item->unbindFromProgress(other);
          ++returned;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        returnedInside = returned;
      });
  progress->setLocalizedDescription("Copying");
  for (std::thread& each : threads) each.join();
  EXPECT_EQ(returnedInside, 0);
  EXPECT_EQ(returned, 2);
  EXPECT_EQ(item->boundProgress(), progress);
  item->unbindFromProgress(progress);
}

/// Writes down that it dies.
struct MortalItem final : ORLFProgressItem {
  explicit MortalItem(std::vector<std::string>& told) : seen(told) {}
  MortalItem(const MortalItem&) = delete;
  MortalItem& operator=(const MortalItem&) = delete;
  ~MortalItem() override { seen.emplace_back("gone"); }
  std::vector<std::string>& seen;
};

TEST_F(ORLFProgressItemMoments, WhoIsToldMayLetGoOfTheItem) {
  using Change = void (*)(ORLFProgressItem & item);
  const std::pair<Change, std::vector<std::string>> rows[] = {
      {[](ORLFProgressItem& item) { item.updateValue(1, 2); }, {"will: ", "did: ", "gone"}},
      {[](ORLFProgressItem& item) { item.updateValue(1); }, {"will: ", "did: ", "gone"}},
      {[](ORLFProgressItem& item) { item.updateValueByIncrement(1); }, {"will: ", "did: ", "gone"}},
      {[](ORLFProgressItem& item) { item.setMessage("Reading"); }, {"will: ", "did: ", "gone"}},
      {[](ORLFProgressItem& item) { item.setIndeterminate(true); }, {"will: ", "did: ", "gone"}},
      {[](ORLFProgressItem& item) { item.makeChildCurrent(item.children().front()); },
       {"will: ", "did: ", "gone"}},
      {[](ORLFProgressItem& item) { item.progressValuesWillChange(); }, {"will: ", "gone"}},
      {[](ORLFProgressItem& item) { item.currentProgressDidChange(); }, {"did: ", "gone"}},
      {[](ORLFProgressItem& item) { item.setCurrentIndicator(nullptr); }, {"will: ", "gone"}}};
  for (const auto& [change, expected] : rows) {
    auto item = std::make_shared<MortalItem>(seen);
    static_cast<void>(item->childProgressItemWithTotalCount(1));
    look = [] { return ""; };
    item->setCurrentIndicator(indicator);
    look = [&item = item] {
      item = nullptr;
      return "";
    };
    take();
    change(*item);
    EXPECT_EQ(take(), expected);
  }
  look = [] { return ""; };
}

TEST_F(ORLFProgressItemMoments, WhoObservesMayLetGoOfTheItemAndOfItsProgress) {
  for (const char* key : {"value", "maxValue", "observerProgress.completedUnitCount"}) {
    auto item = std::make_shared<MortalItem>(seen);
    item->setIndeterminate(true);
    take();
    const auto token = item->addObserver(key, NSKeyValueObservingOptionPrior,
                                         [&](const NSKeyValueChange&) { item = nullptr; });
    ORLFProgressItem& changed = *item;
    changed.updateValue(1, 2);
    EXPECT_THAT(take(), ElementsAre("gone")) << key;
  }
}

/// Writes down what it observes, and whether the item was bound then.
struct ObservingItem final : ORLFProgressItem {
  void observeValueForKeyPath(std::string_view keyPath, NSObject& ofObject,
                              const NSKeyValueChange& change, const void* context) override {
    seen.push_back(std::string(keyPath) + " " + change.newValue.description() +
                   (boundProgress() ? " bound" : " not bound"));
    contexts.push_back(static_cast<const char*>(context));
    ORLFProgressItem::observeValueForKeyPath(keyPath, ofObject, change, context);
  }
  std::vector<std::string> seen;
  std::vector<std::string> contexts;
};

TEST_F(ORLFProgressItemMoments, BindingObservesThreeKeysInOrderEachToldAtOnceWithItsValue) {
  const auto progress = NSProgress::discreteProgressWithTotalUnitCount(4);
  progress->setCompletedUnitCount(1);
  progress->setLocalizedDescription("Copying");
  const auto item = std::make_shared<ObservingItem>();
  item->bindToProgress(progress);
  EXPECT_THAT(item->seen,
              ElementsAre("fractionCompleted 0.25 not bound",
                          "localizedDescription Copying not bound", "indeterminate 0 not bound"));
  EXPECT_THAT(item->contexts, testing::Each(std::string("NSBoundProgressContext")));
  item->seen.clear();
  progress->setCompletedUnitCount(2);
  EXPECT_THAT(item->seen, ElementsAre("fractionCompleted 0.5 bound"));
  item->unbindFromProgress(progress);
  EXPECT_THAT(item->seen, testing::SizeIs(1));
}

TEST_F(ORLFProgressItemMoments, ABoundItemTakesTheValueThenTheMessageThenTheFlag) {
  const auto progress = NSProgress::discreteProgressWithTotalUnitCount(4);
  root->updateValue(3, 7);
  root->setMessage("before");
  root->setIndeterminate(true);
  look = [this] {
    return numbers() + " " + root->message().value_or("nil") + " " +
           (root->isIndeterminate() ? "yes" : "no");
  };
  take();
  root->bindToProgress(progress);
  EXPECT_THAT(take(), ElementsAre("will: 3/7 428/-1 before yes", "did: 0/1 0/1000 before yes",
                                  "will: 0/1 0/1000 before yes", "did: 0/1 0/1000 nil yes",
                                  "will: 0/1 0/1000 nil yes", "did: 0/1 0/1000 nil no"));
  root->unbindFromProgress(progress);
}

}  // namespace
}  // namespace ORLFoundation
