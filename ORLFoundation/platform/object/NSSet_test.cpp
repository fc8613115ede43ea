
#include <ORLFoundation/platform/object/NSSet.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSObject_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

TEST(NSSet, HoldsEachValueOnceInOrderOfAddition) {
  const auto set = NSSet::setWithObjects({3, 1, 3.0, "a"});
  EXPECT_EQ(set->allObjects(), (std::vector<id>{3, 1, "a"}));
  EXPECT_TRUE(set->containsObject(1.0));
  EXPECT_FALSE(set->containsObject("b"));
  EXPECT_EQ(set->anyObject(), id(3));
  EXPECT_TRUE(NSSet().anyObject().isNil());
}

TEST(NSSet, EqualsWhateverTheOrder) {
  EXPECT_EQ(id(NSSet::setWithObjects({1, 2})), id(NSSet::setWithObjects({2, 1})));
  EXPECT_EQ(NSSet::setWithObjects({1, 2})->hash(), NSSet::setWithObjects({2, 1})->hash());
  EXPECT_NE(id(NSSet::setWithObjects({1, 2})), id(NSSet::setWithObjects({1, 3})));
  EXPECT_NE(id(NSSet::setWithObjects({1})), id(NSArray::arrayWithObjects({1})));
}

TEST(NSSet, DescribesItsMembers) {
  EXPECT_EQ(NSSet::setWithObjects({1, "two words"})->description(),
            "{(\n    1,\n    \"two words\"\n)}");
  EXPECT_EQ(NSSet().description(), "{(\n)}");
}

TEST(NSSet, ChangesWhenItIsMutableAndCopiesToASnapshot) {
  const auto set = std::make_shared<NSMutableSet>();
  set->addObject(1);
  set->addObject(2);
  const id snapshot = set->copy();
  set->removeObject(1);
  EXPECT_EQ(set->count(), 1U);
  EXPECT_EQ(snapshot.as<NSSet>()->count(), 2U);
  set->removeAllObjects();
  EXPECT_EQ(set->count(), 0U);
  EXPECT_THROW(set->addObject(nullptr), NSException);
  const auto fixed = NSSet::setWithObjects({1});
  EXPECT_EQ(fixed->copy(), fixed);
  EXPECT_EQ(fixed->mutableCopy()->className(), "NSMutableSet");
}

TEST(NSSet, AnswersKeysOfItsMembers) {
  const auto set = NSSet::setWithObjects({1, 2});
  EXPECT_EQ(set->valueForKey("self"), id(set));
  EXPECT_EQ(set->valueForKey("@count"), id(2));
  EXPECT_EQ(set->valueForKeyPath("@sum.self"), id(3));
}

TEST(NSSet, CopiesOneOnTheStackToAnEqualOne) {
  NSSet set({1, "two"});
  orlftest::expectEqualCopyOfUnowned(set);
}

}  // namespace
}  // namespace ORLFoundation
