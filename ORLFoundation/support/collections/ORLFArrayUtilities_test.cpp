
#include <ORLFoundation/support/collections/ORLFArrayUtilities.h>

#include <ORLFoundation/platform/value/NSException_testing.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::raisedBy;
using Members = std::vector<id>;

std::shared_ptr<NSArray> arrayOf(Members members) {
  return std::make_shared<NSArray>(std::move(members));
}

NSComparisonResult byNumber(const id& left, const id& right) {
  return left.get<NSNumber>()->compare(*right.get<NSNumber>());
}

Members indexesOf(const NSIndexSet& set) {
  Members indexes;
  set.enumerateIndexesUsingBlock([&](NSUInteger index, bool&) { indexes.emplace_back(index); });
  return indexes;
}

TEST(ORLFArrayUtilities, EnumerateNeighboursInPairs) {
  Members seen;
  const auto see = [&](const id& previous, const id& object, NSUInteger index, bool&) {
    seen.insert(seen.end(), {previous, object, index});
  };
  orlfEnumerateObjectPairsUsingBlock(*arrayOf({"a", "b", "c"}), see);
  EXPECT_EQ(seen, (Members{"a", "b", 0, "b", "c", 1}));
  seen.clear();
  orlfEnumerateObjectPairsUsingBlock(*arrayOf({"a"}), see);
  orlfEnumerateObjectPairsUsingBlock(NSArray(), see);
  EXPECT_TRUE(seen.empty());
}

TEST(ORLFArrayUtilities, StopEnumeratingPairsWhereTheBlockSays) {
  NSUInteger calls = 0;
  orlfEnumerateObjectPairsUsingBlock(*arrayOf({1, 2, 3, 4}),
                                     [&](const id&, const id&, NSUInteger index, bool& stop) {
                                       ++calls;
                                       stop = index == 1;
                                     });
  EXPECT_EQ(calls, 2U);
}

TEST(ORLFArrayUtilities, EnumerateThePairsOfTheMomentWhenTheBlockChangesTheArray) {
  NSMutableArray array(Members{1, 2, 3});
  NSUInteger calls = 0;
  orlfEnumerateObjectPairsUsingBlock(array, [&](const id&, const id&, NSUInteger, bool&) {
    ++calls;
    array.removeAllObjects();
  });
  EXPECT_EQ(calls, 2U);
}

TEST(ORLFArrayUtilities, TellWhereSortedObjectsGo) {
  const auto indexes = [](Members receiver, Members objects) {
    return indexesOf(
        *insertionIndexesOfSortedObjects(*arrayOf(receiver), *arrayOf(objects), byNumber));
  };
  EXPECT_EQ(indexes({1, 3}, {2, 4}), (Members{1, 3}));
  EXPECT_EQ(indexes({}, {1, 2}), (Members{0, 1}));
  EXPECT_EQ(indexes({1, 2}, {}), Members{});
  EXPECT_EQ(indexes({5}, {1, 2, 3}), (Members{0, 1, 2}));
  EXPECT_EQ(indexes({2, 2, 3}, {2}), (Members{2}));
}

TEST(ORLFArrayUtilities, MergedAtTheirIndexesObjectsAreSortedAfterTheirEquals) {
  for (unsigned code = 0; code < 4096; ++code) {
    Members receiver, objects;
    for (unsigned value = 0; value < 3; ++value) {
      receiver.insert(receiver.end(), (code >> (2 * value)) & 3U, id(value));
      objects.insert(objects.end(), (code >> (6 + 2 * value)) & 3U, id(value));
    }
    const auto set =
        insertionIndexesOfSortedObjects(*arrayOf(receiver), *arrayOf(objects), byNumber);
    ASSERT_EQ(set->count(), objects.size()) << code;
    std::vector<std::pair<double, int>> merged;  // 1 for an object of the argument
    std::size_t nextOwn = 0, nextOther = 0;
    for (std::size_t i = 0; i < receiver.size() + objects.size(); ++i) {
      const bool isOther = set->containsIndex(i);
      const id& member = isOther ? objects[nextOther++] : receiver[nextOwn++];
      merged.emplace_back(*member.as<double>(), isOther);
    }
    ASSERT_TRUE(std::is_sorted(merged.begin(), merged.end())) << code;
  }
}

TEST(ORLFArrayUtilities, FilterToACopy) {
  const auto array = arrayOf({1, 2, 3, 4});
  EXPECT_EQ(orlfFilteredArrayUsingBlock(*array, [](const id& each) { return *each.as<int>() > 2; })
                ->members(),
            (Members{3, 4}));
  EXPECT_EQ(orlfFilteredArrayUsingBlock(*array, nullptr)->members(), array->members());
}

TEST(ORLFArrayUtilities, RemoveEveryEqualObject) {
  const auto array = arrayOf({"a", "b", "a"});
  EXPECT_EQ(orlfArrayByRemovingObject(array, "a")->members(), (Members{"b"}));
  EXPECT_EQ(orlfArrayByRemovingObject(array, "x")->members(), array->members());
  EXPECT_EQ(orlfArrayByRemovingObject(array, nullptr), array);
  EXPECT_EQ(orlfArrayByRemovingFirstObject(array)->members(), (Members{"b"}));
  EXPECT_EQ(orlfArrayByRemovingLastObject(array)->members(), (Members{"b"}));
  EXPECT_EQ(array->count(), 3U);
}

TEST(ORLFArrayUtilities, RemoveNothingFromAnEmptyArray) {
  const auto empty = arrayOf({});
  EXPECT_EQ(orlfArrayByRemovingFirstObject(empty), empty);
  EXPECT_EQ(orlfArrayByRemovingLastObject(empty), empty);
}

TEST(ORLFArrayUtilities, RemoveTheObjectsOfAnArray) {
  const auto array = arrayOf({"a", 1, "b", 1.0});
  EXPECT_EQ(orlfArrayByRemovingObjectsFromArray(array, arrayOf({1, "x"}))->members(),
            (Members{"a", "b"}));
  EXPECT_EQ(orlfArrayByRemovingObjectsFromArray(array, arrayOf({})), array);
  EXPECT_EQ(orlfArrayByRemovingObjectsFromArray(array, nullptr), array);
  EXPECT_EQ(orlfArrayByRemovingObjectsFromArray(array, array)->count(), 0U);
}

TEST(ORLFArrayUtilities, MakeAnIndexSetOfNumbers) {
  EXPECT_EQ(indexesOf(*orlfIndexSet(*arrayOf({3, 1, 3, 2.9}))), (Members{1, 2, 3}));
  EXPECT_EQ(orlfIndexSet(NSArray())->count(), 0U);
  for (const id& member : {id("1"), id(NSNull()), id(NSArray::arrayWithObjects({1}))})
    EXPECT_EQ(raisedBy([&] {
                (void)orlfIndexSet(*arrayOf({1, member}));
              }),
              "NSInvalidArgumentException: Element in NSArray not of type NSNumber");
  EXPECT_NE(raisedBy([&] { (void)orlfIndexSet(*arrayOf({-1})); }), "");
}

TEST(ORLFArrayUtilities, ListTheNumbersOfARange) {
  EXPECT_EQ(orlfArrayWithNumbersInRange({2, 3})->members(), (Members{2, 3, 4}));
  EXPECT_EQ(orlfArrayWithNumbersInRange({5, 0})->count(), 0U);
  EXPECT_EQ(orlfArrayWithNumbersInRange({NSUIntegerMax - 1, 1})->members(),
            (Members{NSUIntegerMax - 1}));
  for (const NSRange range : {NSRange{NSUIntegerMax, 2}, NSRange{0, NSUIntegerMax}})
    EXPECT_NE(raisedBy([range] { (void)orlfArrayWithNumbersInRange(range); }), "");
}

}  // namespace
}  // namespace ORLFoundation
