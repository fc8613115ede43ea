
#include <ORLFoundation/support/collections/ORLFNonretainingMutableCollection.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/support/collections/ORLFNonretainingMutableCollectionEnumerator.h>
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <vector>

namespace ORLFoundation {
namespace {

/// Equal to every other of its text.
std::shared_ptr<NSObject> textObject(const char* text) { return NSArray::arrayWithObjects({text}); }

TEST(ORLFNonretainingMutableCollection, DoesNotOwnItsMembers) {
  ORLFNonretainingMutableCollection set;
  auto object = textObject("a");
  set.addObject(object);
  EXPECT_EQ(object.use_count(), 1);
  set.removeObject(object);
  EXPECT_EQ(set.count(), 0U);
  EXPECT_EQ(object.use_count(), 1);
}

TEST(ORLFNonretainingMutableCollection, TakesTwoEqualObjectsAsTwoMembers) {
  ORLFNonretainingMutableCollection set;
  const auto first = textObject("a"), second = textObject("a"), third = textObject("a");
  ASSERT_TRUE(first->isEqual(second.get()));
  set.addObject(first);
  set.addObject(second);
  set.addObject(first);
  EXPECT_EQ(set.count(), 2U);
  EXPECT_TRUE(set.member(second).isIdenticalTo(second));
  EXPECT_TRUE(set.containsObject(first));
  EXPECT_FALSE(set.containsObject(third));
  EXPECT_TRUE(set.member(third).isNil());
  set.removeObject(third);
  EXPECT_EQ(set.count(), 2U);
  set.removeObject(first);
  EXPECT_TRUE(set.allObjects().front().isIdenticalTo(second));
}

TEST(ORLFNonretainingMutableCollection, IsAMutableSet) {
  const auto set = std::make_shared<ORLFNonretainingMutableCollection>(NSUIntegerMax);
  const std::shared_ptr<NSMutableSet> base = set;
  const auto object = textObject("a");
  base->addObject(object);
  EXPECT_EQ(base->count(), 1U);
  EXPECT_TRUE(base->anyObject().isIdenticalTo(object));
  EXPECT_EQ(base->className(), "ORLFNonretainingMutableCollection");
  EXPECT_NE(base->description().find("a"), std::string::npos);
  EXPECT_TRUE(base->isEqual(NSSet::setWithObjects({object}).get()));
  EXPECT_EQ(base->valueForKey("@count"), id(1));
  // A copy is an ordinary set, which owns.
  const auto copy = copyOf<NSSet>(base);
  EXPECT_EQ(copy->className(), "NSSet");
  EXPECT_GT(object.use_count(), 1);
  base->removeAllObjects();
  EXPECT_EQ(base->count(), 0U);
  EXPECT_EQ(copy->count(), 1U);
}

TEST(ORLFNonretainingMutableCollection, IsEmptyBeforeItsSetIsMade) {
  const ORLFNonretainingMutableCollection set;
  EXPECT_EQ(set.count(), 0U);
  EXPECT_TRUE(set.anyObject().isNil());
  EXPECT_TRUE(set.allObjects().empty());
  EXPECT_EQ(set.description(), "{(\n)}");
}

TEST(ORLFNonretainingMutableCollection, RefusesWhatHasNoIdentity) {
  ORLFNonretainingMutableCollection set;
  for (const id& plain : {id("text"), id(1), id(NSNull()), id()}) {
    EXPECT_THROW(set.addObject(plain), NSException);
    EXPECT_FALSE(set.containsObject(plain));
    set.removeObject(plain);
  }
  EXPECT_EQ(set.count(), 0U);
}

TEST(ORLFNonretainingMutableCollection, IsWalkedObjectByObject) {
  ORLFNonretainingMutableCollection set;
  const auto first = textObject("a"), second = textObject("b"), third = textObject("c");
  for (const auto& object : {first, second, third}) set.addObject(object);
  const auto members = set.objectEnumerator();
  EXPECT_EQ(members->className(), "ORLFNonretainingMutableCollectionEnumerator");
  EXPECT_TRUE(members->nextObject().isIdenticalTo(first));
  const auto rest = members->allObjects();
  ASSERT_EQ(rest->count(), 2U);
  EXPECT_TRUE(rest->objectAtIndex(0).isIdenticalTo(second));
  EXPECT_TRUE(rest->objectAtIndex(1).isIdenticalTo(third));
  EXPECT_TRUE(members->nextObject().isNil());
}

TEST(ORLFNonretainingMutableCollection, IsWalkedInBatches) {
  ORLFNonretainingMutableCollection set;
  const auto first = textObject("a"), second = textObject("b"), third = textObject("c");
  for (const auto& object : {first, second, third}) set.addObject(object);
  NSFastEnumerationState state;
  std::array<id, 2> batch;
  ASSERT_EQ(set.countByEnumeratingWithState(state, batch), 2U);
  EXPECT_TRUE(batch[0].isIdenticalTo(first));
  EXPECT_TRUE(batch[1].isIdenticalTo(second));
  ASSERT_EQ(set.countByEnumeratingWithState(state, batch), 1U);
  EXPECT_TRUE(batch[0].isIdenticalTo(third));
  EXPECT_EQ(set.countByEnumeratingWithState(state, batch), 0U);
  set.removeObject(first);
  EXPECT_THROW(set.countByEnumeratingWithState(state, batch), NSException);
}

/// Takes itself out while it is destroyed.
class Member : public NSObject {
 public:
  explicit Member(ORLFNonretainingMutableCollection& set) : set_(set) {}
  ~Member() override { set_.removeObject(this); }

 private:
  ORLFNonretainingMutableCollection& set_;
};

TEST(ORLFNonretainingMutableCollection, LetsAMemberGoInItsDestructor) {
  ORLFNonretainingMutableCollection set;
  auto object = std::make_shared<Member>(set);
  set.addObject(object);
  object.reset();
  EXPECT_EQ(set.count(), 0U);
}

TEST(ORLFNonretainingMutableCollection, DoesNotGiveOutAMemberThatWasDestroyedInIt) {
  ORLFNonretainingMutableCollection set;
  auto gone = textObject("a");
  const auto kept = textObject("b");
  set.addObject(gone);
  set.addObject(kept);
  gone.reset();
  EXPECT_EQ(set.count(), 2U);
  ASSERT_EQ(set.allObjects().size(), 1U);
  EXPECT_TRUE(set.anyObject().isIdenticalTo(kept));
  NSFastEnumerationState state;
  std::array<id, 1> batch;
  EXPECT_EQ(set.countByEnumeratingWithState(state, batch), 1U);
  EXPECT_TRUE(batch[0].isIdenticalTo(kept));
  set.removeAllObjects();
  EXPECT_EQ(set.count(), 0U);
}

}  // namespace
}  // namespace ORLFoundation
