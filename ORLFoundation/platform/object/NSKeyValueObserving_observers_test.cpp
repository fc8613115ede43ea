#include <ORLFoundation/platform/object/NSKeyValueObserving_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace ORLFoundation {
namespace {

using namespace observing;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(NSKeyValueObserving, CallsInOrderOfRegistrationAlsoAfterMoves) {
  const auto plan = std::make_shared<Plan>();
  std::string order;
  const auto note = [&](char name) {
    return [&order, name](const NSKeyValueChange&) { order += name; };
  };
  const auto a = plan->addObserver("first.start", 0, note('a'));
  const auto b = plan->addObserver("segments", 0, note('b'));
  const auto c = plan->addObserver("planStart", 0, note('c'));
  plan->setSegments({segment(1)});
  plan->setSegments({segment(2)});
  EXPECT_EQ(order, "abcabc");
}

TEST(NSKeyValueObserving, LetsABlockEndItsOwnObservation) {
  const auto one = segment(1);
  int calls = 0;
  std::shared_ptr<NSKeyValueObservation> token;
  token = one->addObserver("start", 0, [&](const NSKeyValueChange&) {
    ++calls;
    token.reset();
  });
  one->setStart(2);
  one->setStart(3);
  EXPECT_EQ(calls, 1);
}

TEST(NSKeyValueObserving, PassesOverABlockThatAnEarlierOneRemoved) {
  const auto one = segment(1);
  int calls = 0;
  std::shared_ptr<NSKeyValueObservation> second;
  const auto first =
      one->addObserver("start", 0, [&](const NSKeyValueChange&) { second->invalidate(); });
  second = one->addObserver("start", 0, [&](const NSKeyValueChange&) { ++calls; });
  one->setStart(2);
  EXPECT_EQ(calls, 0);
}

TEST(NSKeyValueObserving, LetsABlockAddAnObservationAndMakeAChange) {
  const auto one = segment(1);
  std::vector<std::string> heard;
  std::shared_ptr<NSKeyValueObservation> added;
  const auto token = one->addObserver("start", kNew, [&](const NSKeyValueChange& change) {
    heard.push_back("outer " + change.newValue.description());
    if (added) return;
    added = one->addObserver("start", kNew, [&](const NSKeyValueChange& inner) {
      heard.push_back("inner " + inner.newValue.description());
    });
    one->setStart(3);
  });
  one->setStart(2);
  EXPECT_THAT(heard, ElementsAre("outer 2", "outer 3", "inner 3"));
}

TEST(NSKeyValueObserving, OutlivesTheObservedObject) {
  auto one = segment(1);
  Listener listener(*one, "start");
  one.reset();
  listener.invalidate();
  EXPECT_THAT(listener.heard(), IsEmpty());
}

TEST(NSKeyValueObserving, LetsABlockDropTheLastReferenceToTheObservedObject) {
  auto one = segment(1);
  Segment* bare = one.get();
  const auto token = one->addObserver("start", 0, [&](const NSKeyValueChange&) { one.reset(); });
  const std::shared_ptr<NSObject> kept = one;
  bare->setStart(2);
  EXPECT_EQ(one, nullptr);
}

TEST(NSKeyValueObserving, RefusesObjectsThatNobodyHolds) {
  Segment bare(1);
  EXPECT_THROW(Listener(bare, "start"), NSException);
}

TEST(NSKeyValueObserving, RaisesForAPathThroughAnUnknownKey) {
  const auto plan = std::make_shared<Plan>();
  EXPECT_THROW(Listener(*plan, "nobody.start"), NSException);
}

// ---- observing objects ----

class Watcher : public NSObject {
 public:
  void observeValueForKeyPath(std::string_view keyPath, NSObject& /*ofObject*/,
                              const NSKeyValueChange& change, const void* context) override {
    heard.push_back(std::string(keyPath) + " " + change.newValue.description() +
                    (context == &kContext ? " mine" : ""));
  }
  static constexpr int kContext = 0;
  std::vector<std::string> heard;
};

TEST(NSKeyValueObserving, CallsObservingObjects) {
  const auto watcher = std::make_shared<Watcher>();
  const auto one = segment(1);
  one->addObserver(watcher, "start", kNew | kInitial, &Watcher::kContext);
  one->setStart(2);
  EXPECT_THAT(watcher->heard, ElementsAre("start 1 mine", "start 2 mine"));
}

TEST(NSKeyValueObserving, RemovesTheObservationOfAContext) {
  const auto watcher = std::make_shared<Watcher>();
  const auto one = segment(1);
  one->addObserver(watcher, "start", kNew);
  one->addObserver(watcher, "start", kNew, &Watcher::kContext);
  one->removeObserver(*watcher, "start", &Watcher::kContext);
  one->setStart(2);
  EXPECT_THAT(watcher->heard, ElementsAre("start 2"));
  one->removeObserver(*watcher, "start");
  EXPECT_THROW(one->removeObserver(*watcher, "start"), NSException);
  EXPECT_THROW(segment(1)->removeObserver(*watcher, "start"), NSException);
}

TEST(NSKeyValueObserving, ForgetsDeadObservers) {
  auto watcher = std::make_shared<Watcher>();
  const auto one = segment(1);
  one->addObserver(watcher, "start", kNew);
  const std::weak_ptr<Watcher> weak = watcher;
  watcher.reset();
  EXPECT_TRUE(weak.expired());
  one->setStart(2);
  one->addObserver(std::make_shared<Watcher>(), "start", kNew);
  one->setStart(3);
}

TEST(NSKeyValueObserving, LetsObserverAndObservedObserveEachOther) {
  class Pair : public Watcher {};
  const auto left = std::make_shared<Pair>();
  auto right = std::make_shared<Pair>();
  left->addObserver(right, "description", 0);
  right->addObserver(left, "description", 0);
  const std::weak_ptr<Pair> weak = right;
  right.reset();
  EXPECT_TRUE(weak.expired());
}

// ---- threads ----

TEST(NSKeyValueObserving, MovesBetweenObjectsWhileOthersChangeThem) {
  const auto plan = std::make_shared<Plan>();
  const auto one = segment(1);
  const auto other = segment(2);
  std::atomic<int> calls{0};
  const auto token = plan->addObserver("favorite", 0, [&](const NSKeyValueChange&) { ++calls; });
  std::vector<std::thread> threads;
  for (int t = 0; t < 3; ++t)
    threads.emplace_back([&] {
      for (int i = 0; i < 200; ++i) {
        plan->willChangeValueForKey("favorite");
        plan->didChangeValueForKey("favorite");
        const auto own = one->addObserver("start", 0, [](const NSKeyValueChange&) {});
        const auto theirs = other->addObserver("start", 0, [](const NSKeyValueChange&) {});
      }
    });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(calls, 600);
}

}  // namespace
}  // namespace ORLFoundation
