#include <ORLFoundation/platform/operation/NSProgress.h>

#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <ORLFoundation/platform/operation/NSProgress_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gmock/gmock.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::progressOf;
using testing::ElementsAre;
using testing::IsEmpty;

/// Hears of the keys of one progress.
class Listener {
 public:
  explicit Listener(NSProgress& progress, std::string prefix = "") : prefix_(std::move(prefix)) {
    for (const NSKey& key : progress.keyTable().keys())
      tokens_.push_back(progress.addObserver(
          key.name, NSKeyValueObservingOptionNew | NSKeyValueObservingOptionOld,
          [this](const NSKeyValueChange& change) {
            heard.push_back(prefix_ + std::string(change.keyPath) + " " +
                            change.oldValue.description() + "->" + change.newValue.description());
          }));
  }
  std::vector<std::string> take() { return std::exchange(heard, {}); }

  std::vector<std::string> heard;

 private:
  std::string prefix_;
  std::vector<std::shared_ptr<NSKeyValueObservation>> tokens_;
};

TEST(NSProgress, TellsObserversOfWhatChanged) {
  const auto progress = progressOf(4);
  Listener listener(*progress);
  progress->setCompletedUnitCount(1);
  EXPECT_THAT(listener.take(), testing::UnorderedElementsAre("completedUnitCount 0->1",
                                                             "fractionCompleted 0->0.25"));
  progress->setCompletedUnitCount(1);
  progress->setTotalUnitCount(4);
  EXPECT_THAT(listener.take(), IsEmpty());
  progress->setTotalUnitCount(-1);
  EXPECT_THAT(listener.take(),
              testing::UnorderedElementsAre("totalUnitCount 4->-1", "indeterminate 0->1",
                                            "fractionCompleted 0.25->0"));
  progress->setCompletedUnitCount(4);
  EXPECT_THAT(listener.take(), ElementsAre("completedUnitCount 1->4"));
  progress->setTotalUnitCount(4);
  EXPECT_THAT(listener.take(),
              testing::UnorderedElementsAre("totalUnitCount -1->4", "indeterminate 1->0",
                                            "finished 0->1", "fractionCompleted 0->1"));
}

TEST(NSProgress, TellsObserversOfTheDescription) {
  const auto progress = progressOf(4);
  Listener listener(*progress);
  progress->setLocalizedDescription("Reading");
  progress->setLocalizedDescription("Reading");
  EXPECT_EQ(progress->localizedDescription(), "Reading");
  progress->setLocalizedDescription(std::nullopt);
  progress->setLocalizedDescription(std::nullopt);
  EXPECT_EQ(listener.heard.size(), 2U);
  EXPECT_EQ(listener.heard[0].substr(0, 20), "localizedDescription");
}

TEST(NSProgress, TellsObserversOfAncestors) {
  const auto root = progressOf(10);
  const auto middle = progressOf(10);
  const auto leaf = progressOf(2);
  root->addChild(middle, 5);
  Listener listener(*root);
  middle->addChild(leaf, 10);
  EXPECT_THAT(listener.take(), IsEmpty());
  leaf->setCompletedUnitCount(1);
  EXPECT_THAT(listener.take(), ElementsAre("fractionCompleted 0->0.25"));
  leaf->setCompletedUnitCount(2);
  EXPECT_THAT(listener.take(), testing::UnorderedElementsAre("completedUnitCount 0->5",
                                                             "fractionCompleted 0.25->0.5"));
  middle->addChild(progressOf(2, 1), 0);
  EXPECT_THAT(listener.take(), IsEmpty());
  root->addChild(progressOf(2, 1), 5);
  EXPECT_THAT(listener.take(), ElementsAre("fractionCompleted 0.5->0.75"));
}

TEST(NSProgress, LetsObserversChangeAndReadAnyProgress) {
  const auto root = progressOf(10);
  const auto part = progressOf(10);
  root->addChild(part, 10);
  double seen = -1;
  const auto token = part->addObserver(
      "completedUnitCount", NSKeyValueObservingOptionNew, [&](const NSKeyValueChange&) {
        if (part->completedUnitCount() < 5)
          part->setCompletedUnitCount(part->completedUnitCount() + 1);
        seen = root->fractionCompleted();
      });
  part->setCompletedUnitCount(1);
  EXPECT_EQ(part->completedUnitCount(), 5);
  EXPECT_EQ(seen, 0.5);
}

TEST(NSProgress, TellsPriorObserversWhileTheOldValueHolds) {
  const auto progress = progressOf(4, 1);
  std::vector<double> seen;
  const auto token = progress->addObserver(
      "fractionCompleted", NSKeyValueObservingOptionPrior,
      [&](const NSKeyValueChange&) { seen.push_back(progress->fractionCompleted()); });
  progress->setCompletedUnitCount(3);
  EXPECT_THAT(seen, ElementsAre(0.25, 0.75));
}

TEST(NSProgress, MayBeLetGoOfByItsObservers) {
  for (const NSUInteger options : {NSKeyValueObservingOptionNew, NSKeyValueObservingOptionPrior}) {
    auto progress = progressOf(4);
    const std::weak_ptr<NSProgress> weak = progress;
    std::vector<std::string> heard;
    std::vector<std::shared_ptr<NSKeyValueObservation>> tokens;
    for (const char* key : {"completedUnitCount", "finished", "fractionCompleted"})
      tokens.push_back(progress->addObserver(key, options, [&](const NSKeyValueChange& change) {
        if (!change.isPrior) heard.emplace_back(change.keyPath);
        progress = nullptr;
      }));
    NSProgress& changed = *progress;
    changed.setCompletedUnitCount(4);
    EXPECT_THAT(heard, testing::UnorderedElementsAre("completedUnitCount", "finished",
                                                     "fractionCompleted"));
    EXPECT_TRUE(weak.expired());
  }
  auto progress = progressOf(4);
  const auto token = progress->addObserver("localizedDescription", NSKeyValueObservingOptionPrior,
                                           [&](const NSKeyValueChange&) { progress = nullptr; });
  NSProgress& changed = *progress;
  changed.setLocalizedDescription("Reading");
  EXPECT_EQ(progress, nullptr);
}

TEST(NSProgress, AddsUpWhatManyThreadsDo) {
  constexpr int kThreads = 4;
  constexpr int kSteps = 2000;
  const auto root = progressOf(kThreads);
  std::atomic<int> heard{0};
  const auto token = root->addObserver("fractionCompleted", NSKeyValueObservingOptionNew,
                                       [&](const NSKeyValueChange&) { ++heard; });
  std::vector<std::shared_ptr<NSProgress>> parts;
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) parts.push_back(progressOf(kSteps));
  for (int i = 0; i < kThreads; ++i)
    threads.emplace_back([&, i] {
      root->addChild(parts[static_cast<std::size_t>(i)], 1);
      for (int step = 1; step <= kSteps; ++step)
        parts[static_cast<std::size_t>(i)]->setCompletedUnitCount(step);
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(root->fractionCompleted(), 1);
  EXPECT_EQ(root->completedUnitCount(), kThreads);
  EXPECT_GE(heard.load(), kThreads * (kSteps - 1));
}

TEST(NSProgress, LetsOneOfTwoThreadsTieACircle) {
  for (int round = 0; round < 50; ++round) {
    const auto left = progressOf(10);
    const auto right = progressOf(10);
    std::atomic<int> refused{0};
    const auto tie = [&](const auto& parent, const auto& child) {
      try {
        parent->addChild(child, 10);
      } catch (const NSException&) {
        ++refused;
      }
    };
    std::thread other([&] { tie(left, right); });
    tie(right, left);
    other.join();
    EXPECT_EQ(refused, 1);
    left->setCompletedUnitCount(3);
    right->setCompletedUnitCount(4);
  }
}

}  // namespace
}  // namespace ORLFoundation
