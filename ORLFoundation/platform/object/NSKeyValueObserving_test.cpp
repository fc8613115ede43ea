#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr NSUInteger kNew = NSKeyValueObservingOptionNew;
constexpr NSUInteger kOld = NSKeyValueObservingOptionOld;
constexpr NSUInteger kInitial = NSKeyValueObservingOptionInitial;
constexpr NSUInteger kPrior = NSKeyValueObservingOptionPrior;

class Segment : public NSObject {
 public:
  explicit Segment(NSInteger start = 0) : start_(start) {}
  [[nodiscard]] NSInteger start() const { return start_; }
  void setStart(NSInteger start) {
    changeValue("start", [&] { start_ = start; });
  }
  /// Tells nobody.
  [[nodiscard]] NSInteger quiet() const { return quiet_; }
  void setQuiet(NSInteger quiet) { quiet_ = quiet; }
  void failToSetStart() {
    changeValue("start", [] { throw std::runtime_error("refused"); });
  }

  [[nodiscard]] const NSKeyTable& keyTable() const override {
    static const NSKeyTable table(NSObject::keyTable(),
                                  {NSKey::readWrite<&Segment::start, &Segment::setStart>("start"),
                                   NSKey::readWrite<&Segment::quiet, &Segment::setQuiet>("quiet")});
    return table;
  }

 private:
  NSInteger start_;
  NSInteger quiet_ = 0;
};

class Plan : public NSObject {
 public:
  using Segments = std::vector<std::shared_ptr<Segment>>;

  [[nodiscard]] const Segments& segments() const { return segments_; }
  void setSegments(Segments segments) {
    changeValue("segments", [&] { segments_ = std::move(segments); });
  }
  [[nodiscard]] NSInteger end() const { return end_; }
  void setEnd(NSInteger end) {
    changeValue("end", [&] { end_ = end; });
  }
  [[nodiscard]] std::shared_ptr<Segment> first() const {
    return segments_.empty() ? nullptr : segments_.front();
  }
  [[nodiscard]] std::shared_ptr<Segment> last() const {
    return segments_.empty() ? nullptr : segments_.back();
  }
  [[nodiscard]] std::optional<NSInteger> planStart() const {
    return first() ? std::optional(first()->start()) : std::nullopt;
  }
  [[nodiscard]] std::optional<NSInteger> lastDate() const {
    if (end_ != 0) return end_;
    return last() ? std::optional(last()->start()) : std::nullopt;
  }
  [[nodiscard]] std::shared_ptr<Segment> favorite() const { return favorite_.lock(); }
  void setFavorite(const std::shared_ptr<Segment>& favorite) {
    changeValue("favorite", [&] { favorite_ = favorite; });
  }

  [[nodiscard]] const NSKeyTable& keyTable() const override {
    static const NSKeyTable table(
        NSObject::keyTable(),
        {NSKey::readWrite<&Plan::segments, &Plan::setSegments>("segments"),
         NSKey::readWrite<&Plan::end, &Plan::setEnd>("end"),
         NSKey::readWrite<&Plan::favorite, &Plan::setFavorite>("favorite"),
         NSKey::readOnly<&Plan::first>("first", {"segments"}),
         NSKey::readOnly<&Plan::last>("last", {"segments"}),
         NSKey::readOnly<&Plan::planStart>("planStart", {"first.start"}),
         NSKey::readOnly<&Plan::lastDate>("lastDate", {"end", "last.start"})});
    return table;
  }

 private:
  Segments segments_;
  NSInteger end_ = 0;
  std::weak_ptr<Segment> favorite_;
};

/// Writes down what it hears: "old>new".
class Listener {
 public:
  Listener(NSObject& object, std::string_view keyPath, NSUInteger options = kOld | kNew)
      : token_(object.addObserver(keyPath, options, [this](const NSKeyValueChange& change) {
          heard_.push_back((change.isPrior ? "prior " : "") + change.oldValue.description() + ">" +
                           change.newValue.description());
        })) {}

  [[nodiscard]] std::vector<std::string> heard() { return std::exchange(heard_, {}); }
  void stop() { token_.reset(); }
  void invalidate() { token_->invalidate(); }

 private:
  std::vector<std::string> heard_;
  std::shared_ptr<NSKeyValueObservation> token_;
};

std::shared_ptr<Segment> segment(NSInteger start) { return std::make_shared<Segment>(start); }

TEST(NSKeyValueObserving, TellsOldAndNewValues) {
  const auto one = segment(1);
  Listener listener(*one, "start");
  one->setStart(2);
  one->setStart(3);
  EXPECT_THAT(listener.heard(), ElementsAre("1>2", "2>3"));
}

TEST(NSKeyValueObserving, TellsOnlyWhatTheOptionsAskFor) {
  const auto one = segment(1);
  Listener none(*one, "start", 0);
  Listener onlyNew(*one, "start", kNew);
  Listener onlyOld(*one, "start", kOld);
  one->setStart(2);
  EXPECT_THAT(none.heard(), ElementsAre("(null)>(null)"));
  EXPECT_THAT(onlyNew.heard(), ElementsAre("(null)>2"));
  EXPECT_THAT(onlyOld.heard(), ElementsAre("1>(null)"));
}

TEST(NSKeyValueObserving, CallsAtRegistrationForInitial) {
  const auto one = segment(1);
  Listener listener(*one, "start", kInitial | kNew | kOld);
  EXPECT_THAT(listener.heard(), ElementsAre("(null)>1"));
}

TEST(NSKeyValueObserving, CallsBeforeTheChangeForPrior) {
  const auto one = segment(1);
  Listener listener(*one, "start", kPrior | kNew | kOld);
  one->setStart(2);
  EXPECT_THAT(listener.heard(), ElementsAre("prior 1>(null)", "1>2"));
}

TEST(NSKeyValueObserving, StopsWithItsToken) {
  const auto one = segment(1);
  Listener listener(*one, "start");
  Listener other(*one, "start");
  listener.stop();
  other.invalidate();
  one->setStart(2);
  EXPECT_THAT(listener.heard(), IsEmpty());
  EXPECT_THAT(other.heard(), IsEmpty());
  other.invalidate();
}

TEST(NSKeyValueObserving, TellsOfOtherKeysToNobody) {
  const auto plan = std::make_shared<Plan>();
  Listener listener(*plan, "segments");
  plan->setEnd(3);
  EXPECT_THAT(listener.heard(), IsEmpty());
}

TEST(NSKeyValueObserving, TellsOfSettersThroughKeyValueAccessOnce) {
  const auto one = segment(1);
  Listener loud(*one, "start");
  Listener quiet(*one, "quiet");
  one->setValueForKey(2, "start");
  EXPECT_THAT(loud.heard(), ElementsAre("1>2"));
  one->setQuiet(4);
  EXPECT_THAT(quiet.heard(), IsEmpty());
  one->setValueForKey(5, "quiet");
  EXPECT_THAT(quiet.heard(), ElementsAre("4>5"));
}

TEST(NSKeyValueObserving, TellsNothingOfAChangeThatFails) {
  const auto one = segment(1);
  Listener listener(*one, "start");
  EXPECT_THROW(one->failToSetStart(), std::runtime_error);
  EXPECT_THROW(one->setValueForKey("text", "start"), NSException);
  EXPECT_THAT(listener.heard(), IsEmpty());
  one->setStart(2);
  EXPECT_THAT(listener.heard(), ElementsAre("1>2"));
}

TEST(NSKeyValueObserving, TellsEachOfNestedNotices) {
  const auto one = segment(1);
  Listener listener(*one, "start");
  one->willChangeValueForKey("start");
  one->setStart(2);
  one->didChangeValueForKey("start");
  EXPECT_THAT(listener.heard(), ElementsAre("1>2", "1>2"));
  one->didChangeValueForKey("start");  // without its beginning
  EXPECT_THAT(listener.heard(), IsEmpty());
}

// ---- key paths ----

TEST(NSKeyValueObserving, FollowsAKeyPathToItsEnd) {
  const auto plan = std::make_shared<Plan>();
  plan->setSegments({segment(1), segment(5)});
  Listener listener(*plan, "first.start");
  plan->first()->setStart(2);
  EXPECT_THAT(listener.heard(), ElementsAre("1>2"));
  plan->last()->setStart(6);
  EXPECT_THAT(listener.heard(), IsEmpty());
}

TEST(NSKeyValueObserving, MovesToTheSuccessorOfAnObjectOnTheWay) {
  const auto plan = std::make_shared<Plan>();
  const auto before = segment(1);
  const auto after = segment(5);
  plan->setSegments({before});
  Listener listener(*plan, "first.start");
  plan->setSegments({after});
  EXPECT_THAT(listener.heard(), ElementsAre("1>5"));
  before->setStart(2);
  EXPECT_THAT(listener.heard(), IsEmpty());
  after->setStart(6);
  EXPECT_THAT(listener.heard(), ElementsAre("5>6"));
  plan->setSegments({});
  after->setStart(7);
  EXPECT_THAT(listener.heard(), ElementsAre("6>(null)"));
}

TEST(NSKeyValueObserving, BeginsWithNothingOnTheWay) {
  const auto plan = std::make_shared<Plan>();
  Listener listener(*plan, "favorite.start");
  const auto favorite = segment(1);
  plan->setFavorite(favorite);
  favorite->setStart(2);
  EXPECT_THAT(listener.heard(), ElementsAre("(null)>1", "1>2"));
}

TEST(NSKeyValueObserving, GoesOnWhenAWeaklyHeldObjectOnTheWayDies) {
  const auto plan = std::make_shared<Plan>();
  auto favorite = segment(1);
  plan->setFavorite(favorite);
  Listener listener(*plan, "favorite.start");
  favorite.reset();
  EXPECT_THAT(listener.heard(), IsEmpty());
  const auto next = segment(3);
  plan->setFavorite(next);
  next->setStart(4);
  EXPECT_THAT(listener.heard(), ElementsAre("(null)>3", "3>4"));
}

// ---- derived values ----

TEST(NSKeyValueObserving, TellsOfDerivedValues) {
  const auto plan = std::make_shared<Plan>();
  Listener count(*plan, "first", kNew);
  plan->setSegments({segment(1)});
  EXPECT_EQ(count.heard().size(), 1U);
}

TEST(NSKeyValueObserving, TellsOfValuesDerivedAlongKeyPaths) {
  const auto plan = std::make_shared<Plan>();
  Listener start(*plan, "planStart");
  plan->setSegments({segment(1), segment(5)});
  plan->first()->setStart(2);
  const auto removed = plan->first();
  plan->setSegments({plan->last()});
  removed->setStart(3);
  plan->first()->setStart(6);
  EXPECT_THAT(start.heard(), ElementsAre("(null)>1", "1>2", "2>5", "5>6"));
}

TEST(NSKeyValueObserving, TellsOnceOfAChangeThatComesAlongSeveralWays) {
  const auto plan = std::make_shared<Plan>();
  const auto one = segment(1);
  plan->setSegments({one});
  Listener last(*plan, "lastDate");
  plan->setEnd(9);
  one->setStart(2);
  plan->setEnd(0);
  plan->setSegments({one, one});
  EXPECT_THAT(last.heard(), ElementsAre("1>9", "9>9", "9>2", "2>2"));
}

class Ring : public NSObject {
 public:
  [[nodiscard]] NSInteger a() const { return 1; }
  void setA(NSInteger /*a*/) {}
  [[nodiscard]] const NSKeyTable& keyTable() const override {
    static const NSKeyTable table(NSObject::keyTable(),
                                  {NSKey::readWrite<&Ring::a, &Ring::setA>("a", {"b"}),
                                   NSKey::readWrite<&Ring::a, &Ring::setA>("b", {"a"})});
    return table;
  }
};

TEST(NSKeyValueObserving, StandsKeysThatDependOnEachOther) {
  const auto ring = std::make_shared<Ring>();
  Listener listener(*ring, "a");
  ring->setValueForKey(1, "b");
  EXPECT_THAT(listener.heard(), ElementsAre("1>1"));
}

TEST(NSKeyValueObserving, ObservesDictionaries) {
  const auto values = std::make_shared<NSMutableDictionary>();
  Listener listener(*values, "a");
  values->setValueForKey(1, "a");
  values->setValueForKey(nullptr, "a");
  EXPECT_THAT(listener.heard(), ElementsAre("(null)>1", "1>(null)"));
}

// ---- order and changes of the observers ----

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
