
#include <ORLFoundation/platform/object/NSIndexSet.h>

#include <ORLFoundation/platform/object/NSObject_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

constexpr auto kNotFound = static_cast<NSUInteger>(NSNotFound);

std::vector<NSUInteger> indexesOf(const NSIndexSet& set) {
  std::vector<NSUInteger> indexes;
  set.enumerateIndexesUsingBlock([&](NSUInteger index, bool&) { indexes.push_back(index); });
  return indexes;
}

TEST(NSIndexSet, HoldsTheIndexesOfARange) {
  const NSIndexSet set(NSRange{3, 4});
  EXPECT_EQ(indexesOf(set), (std::vector<NSUInteger>{3, 4, 5, 6}));
  EXPECT_EQ(set.count(), 4U);
  EXPECT_EQ(set.firstIndex(), 3U);
  EXPECT_EQ(set.lastIndex(), 6U);
  EXPECT_FALSE(set.containsIndex(2));
  EXPECT_TRUE(set.containsIndex(3));
  EXPECT_TRUE(set.containsIndex(6));
  EXPECT_FALSE(set.containsIndex(7));
}

TEST(NSIndexSet, OfNothingHasNoFirstIndex) {
  for (const NSIndexSet& set : {NSIndexSet(), NSIndexSet(NSRange{5, 0})}) {
    EXPECT_EQ(set.count(), 0U);
    EXPECT_EQ(set.firstIndex(), kNotFound);
    EXPECT_EQ(set.lastIndex(), kNotFound);
    EXPECT_FALSE(set.containsIndex(0));
    EXPECT_TRUE(set.description().ends_with(">(no indexes)")) << set.description();
  }
}

TEST(NSIndexSet, StopsWhereItsBlockSays) {
  std::vector<NSUInteger> seen;
  NSIndexSet(NSRange{0, kNotFound}).enumerateIndexesUsingBlock([&](NSUInteger index, bool& stop) {
    seen.push_back(index);
    stop = index == 2;
  });
  EXPECT_EQ(seen, (std::vector<NSUInteger>{0, 1, 2}));
}

TEST(NSIndexSet, RefusesIndexesFromNotFoundOn) {
  EXPECT_EQ(NSIndexSet(NSRange{kNotFound - 1, 1}).lastIndex(), kNotFound - 1);
  for (const NSRange range : {NSRange{kNotFound, 1}, NSRange{0, kNotFound + 1},
                              NSRange{NSUIntegerMax, 1}, NSRange{NSUIntegerMax, NSUIntegerMax}}) {
    try {
      NSMutableIndexSet().addIndexesInRange(range);
      FAIL() << range.location << ' ' << range.length;
    } catch (const NSException& exception) {
      EXPECT_EQ(exception.name(), NSRangeException);
    }
  }
}

TEST(NSIndexSet, EqualsByItsIndexes) {
  const auto changing = std::make_shared<NSMutableIndexSet>();
  changing->addIndex(4);
  changing->addIndex(3);
  const NSIndexSet fixed(NSRange{3, 2});
  EXPECT_TRUE(changing->isEqual(&fixed));
  EXPECT_TRUE(fixed.isEqual(changing.get()));
  EXPECT_EQ(changing->hash(), fixed.hash());
  changing->addIndex(9);
  EXPECT_FALSE(fixed.isEqual(changing.get()));
  EXPECT_FALSE(fixed.isEqual(nullptr));
}

TEST(NSIndexSet, DescribesItsRanges) {
  NSMutableIndexSet set(NSRange{3, 3});
  set.addIndex(1);
  EXPECT_TRUE(set.description().starts_with("<NSMutableIndexSet: 0x")) << set.description();
  EXPECT_TRUE(
      set.description().ends_with(">[number of indexes: 4 (in 2 ranges), indexes: (1 3-5)]"))
      << set.description();
}

TEST(NSIndexSet, CopiesToASnapshot) {
  const auto set = std::make_shared<NSMutableIndexSet>(NSRange{0, 2});
  const auto snapshot = copyOf<NSIndexSet>(set);
  set->removeIndex(0);
  EXPECT_EQ(indexesOf(*snapshot), (std::vector<NSUInteger>{0, 1}));
  EXPECT_EQ(snapshot->className(), "NSIndexSet");
  EXPECT_EQ(snapshot->copy(), snapshot);
  EXPECT_EQ(snapshot->mutableCopy()->className(), "NSMutableIndexSet");
  EXPECT_TRUE(snapshot->mutableCopy()->isEqual(snapshot.get()));
}

/// Every pair of changes within a few indexes, beside a plain set.
TEST(NSMutableIndexSet, AddsAndRemovesLikeAPlainSet) {
  constexpr NSUInteger kMost = 7;
  for (NSUInteger code = 0; code < kMost * kMost * kMost * kMost * 4; ++code) {
    NSMutableIndexSet set(NSRange{2, 1});
    set.addIndex(5);
    std::set<NSUInteger> plain{2, 5};
    NSUInteger rest = code;
    for (int step = 0; step < 2; ++step) {
      const NSRange range{rest % kMost, rest / kMost % kMost};
      rest /= kMost * kMost;
      const bool adds = ((code >> step) & 1U) != 0;
      adds ? set.addIndexesInRange(range) : set.removeIndexesInRange(range);
      for (NSUInteger index = range.location; index < NSMaxRange(range); ++index) {
        if (adds)
          plain.insert(index);
        else
          plain.erase(index);
      }
    }
    ASSERT_EQ(indexesOf(set), std::vector<NSUInteger>(plain.begin(), plain.end())) << code;
    const auto& ranges = set.ranges();
    for (std::size_t i = 1; i < ranges.size(); ++i)
      ASSERT_LT(NSMaxRange(ranges[i - 1]), ranges[i].location) << code;
  }
}

TEST(NSMutableIndexSet, RemovesRangesThatReachBeyondTheEnd) {
  NSMutableIndexSet set(NSRange{0, 4});
  set.removeIndexesInRange({NSUIntegerMax, NSUIntegerMax});
  EXPECT_EQ(set.count(), 4U);
  set.removeIndexesInRange({2, NSUIntegerMax});
  EXPECT_EQ(indexesOf(set), (std::vector<NSUInteger>{0, 1}));
}

TEST(NSIndexSet, CopiesOneOnTheStackToAnEqualOne) {
  NSIndexSet set(NSRange{3, 4});
  orlftest::expectEqualCopyOfUnowned(set);
}

}  // namespace
}  // namespace ORLFoundation
