
#include <ORLFoundation/platform/object/NSEnumerator.h>

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <array>
#include <span>
#include <vector>

namespace ORLFoundation {
namespace {

TEST(NSEnumerator, WalksEachMemberOnceAndEndsInNil) {
  const auto members = NSSet::setWithObjects({3, 1, "a"})->objectEnumerator();
  EXPECT_EQ(members->nextObject(), id(3));
  EXPECT_EQ(members->allObjects()->members(), (std::vector<id>{1, "a"}));
  EXPECT_TRUE(members->nextObject().isNil());
  EXPECT_TRUE(members->nextObject().isNil());
  EXPECT_EQ(members->allObjects()->count(), 0U);
}

TEST(NSEnumerator, WalksTheMembersOfTheMomentInWhichItWasMade) {
  NSMutableDictionary table;
  table.setObject(1, "a");
  table.setObject(2, "b");
  const auto keys = table.keyEnumerator();
  table.removeAllObjects();
  EXPECT_EQ(keys->allObjects()->members(), (std::vector<id>{"a", "b"}));
}

/// The batches of a whole walk.
template <std::size_t size>
std::vector<std::vector<id>> batchesOf(const auto& collection) {
  NSFastEnumerationState state;
  std::array<id, size> batch;
  std::vector<std::vector<id>> batches;
  while (const NSUInteger count = collection.countByEnumeratingWithState(state, batch)) {
    const auto filled = std::span(batch).first(count);
    batches.emplace_back(filled.begin(), filled.end());
  }
  return batches;
}

TEST(NSFastEnumeration, GivesBatchesUntilTheEnd) {
  NSMutableSet set(std::vector<id>{1, 2, 3, 4, 5});
  set.removeObject(2);
  EXPECT_EQ(batchesOf<3>(set), (std::vector<std::vector<id>>{{1, 3, 4}, {5}}));
  EXPECT_EQ(batchesOf<4>(set), (std::vector<std::vector<id>>{{1, 3, 4, 5}}));
  EXPECT_TRUE(batchesOf<4>(NSSet()).empty());
  const NSDictionary table(NSDictionary::Entries{{"a", 1}, {"b", 2}});
  EXPECT_EQ(batchesOf<1>(table), (std::vector<std::vector<id>>{{"a"}, {"b"}}));
}

TEST(NSFastEnumeration, RaisesWhenTheCollectionChangedOnTheWay) {
  NSMutableSet set(std::vector<id>{1, 2, 3});
  NSFastEnumerationState state;
  std::array<id, 1> batch;
  EXPECT_EQ(set.countByEnumeratingWithState(state, batch), 1U);
  set.addObject(2);  // is there already
  EXPECT_EQ(set.countByEnumeratingWithState(state, batch), 1U);
  set.addObject(4);
  try {
    set.countByEnumeratingWithState(state, batch);
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSGenericException);
    EXPECT_EQ(exception.reason(),
              "*** Collection <NSMutableSet> was mutated while being enumerated.");
  }
}

}  // namespace
}  // namespace ORLFoundation
