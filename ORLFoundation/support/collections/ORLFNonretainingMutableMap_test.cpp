
#include <ORLFoundation/support/collections/ORLFNonretainingMutableMap.h>

#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <vector>

namespace ORLFoundation {
namespace {

TEST(ORLFNonretainingMutableMap, DoesNotOwnItsValues) {
  ORLFNonretainingMutableMap map;
  const auto object = std::make_shared<NSObject>();
  map.setObject(object, "a");
  EXPECT_EQ(object.use_count(), 1);
  EXPECT_EQ(map.count(), 1U);
  EXPECT_TRUE(map.objectForKey("a").isIdenticalTo(object));
  EXPECT_TRUE(map.objectForKey("b").isNil());
  map.removeObjectForKey("a");
  EXPECT_EQ(map.count(), 0U);
}

TEST(ORLFNonretainingMutableMap, IsAMutableDictionary) {
  const auto map = std::make_shared<ORLFNonretainingMutableMap>(NSUIntegerMax);
  const std::shared_ptr<NSMutableDictionary> base = map;
  const auto object = std::make_shared<NSObject>();
  base->setValueForKey(object, "a");
  base->setObject(object, 2);
  EXPECT_TRUE(base->valueForKey("a").isIdenticalTo(object));
  EXPECT_EQ(base->allKeys(), (std::vector<id>{"a", 2}));
  EXPECT_TRUE(base->allValues().front().isIdenticalTo(object));
  EXPECT_EQ(base->className(), "ORLFNonretainingMutableMap");
  EXPECT_EQ(base->valueForKey("@count"), id(2));
  EXPECT_TRUE(
      base->isEqual(NSDictionary::dictionaryWithEntries({{"a", object}, {2, object}}).get()));
  EXPECT_EQ(copyOf<NSDictionary>(base)->className(), "NSDictionary");
  base->setValueForKey(nullptr, "a");
  EXPECT_EQ(base->count(), 1U);
  base->removeAllObjects();
  EXPECT_EQ(base->count(), 0U);
}

TEST(ORLFNonretainingMutableMap, GivesItsKeysOneByOneAndInBatches) {
  ORLFNonretainingMutableMap map;
  const auto object = std::make_shared<NSObject>();
  map.setObject(object, "a");
  map.setObject(object, "b");
  EXPECT_EQ(map.keyEnumerator()->allObjects()->members(), (std::vector<id>{"a", "b"}));
  NSFastEnumerationState state;
  std::array<id, 4> batch;
  ASSERT_EQ(map.countByEnumeratingWithState(state, batch), 2U);
  EXPECT_EQ(batch[0], id("a"));
  EXPECT_EQ(batch[1], id("b"));
  EXPECT_EQ(map.countByEnumeratingWithState(state, batch), 0U);
}

TEST(ORLFNonretainingMutableMap, RefusesWhatHasNoIdentity) {
  ORLFNonretainingMutableMap map;
  const auto object = std::make_shared<NSObject>();
  EXPECT_THROW(map.setObject("text", "a"), NSException);
  EXPECT_THROW(map.setObject(nullptr, "a"), NSException);
  EXPECT_THROW(map.setObject(object, nullptr), NSException);
  EXPECT_EQ(map.count(), 0U);
  EXPECT_TRUE(map.allKeys().empty());
}

TEST(ORLFNonretainingMutableMap, ReadsAValueThatWasDestroyedInItAsNil) {
  ORLFNonretainingMutableMap map;
  auto object = std::make_shared<NSObject>();
  map.setObject(object, "a");
  object.reset();
  EXPECT_TRUE(map.objectForKey("a").isNil());
  EXPECT_TRUE(map.entries().empty());
  map.removeObjectForKey("a");
  EXPECT_EQ(map.count(), 0U);
}

}  // namespace
}  // namespace ORLFoundation
