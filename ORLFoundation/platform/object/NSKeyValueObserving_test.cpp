#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace ORLFoundation {
namespace {

using namespace observing;
using testing::ElementsAre;
using testing::IsEmpty;

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

}  // namespace
}  // namespace ORLFoundation
