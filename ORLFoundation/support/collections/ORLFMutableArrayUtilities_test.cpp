
#include <ORLFoundation/support/collections/ORLFMutableArrayUtilities.h>

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

namespace ORLFoundation {
namespace {

using Members = std::vector<id>;
constexpr auto kNotFound = static_cast<NSUInteger>(NSNotFound);

struct MoveCase {
  std::string_view name;
  NSUInteger from, to;
  Members moved;
};
const MoveCase kMoveCases[] = {
    {"Up", 0, 2, {"b", "c", "a"}},
    {"Down", 2, 0, {"c", "a", "b"}},
    {"ToItself", 1, 1, {"a", "b", "c"}},
    {"FromTheCount", 3, 0, {"a", "b", "c"}},
    {"ToTheCount", 0, 3, {"a", "b", "c"}},
    {"FromNotFound", kNotFound, 0, {"a", "b", "c"}},
    {"ToNotFound", 0, kNotFound, {"a", "b", "c"}},
    {"FromTheLargestNumber", NSUIntegerMax, 0, {"a", "b", "c"}},
    {"ToTheLargestNumber", 0, NSUIntegerMax, {"a", "b", "c"}},
};

TEST(ORLFMutableArrayUtilities, MoveAnObjectToAnIndex) {
  for (const MoveCase& row : kMoveCases) {
    NSMutableArray array(Members{"a", "b", "c"});
    orlfMoveObjectAtIndex(array, row.from, row.to);
    EXPECT_EQ(array.members(), row.moved) << row.name;
  }
}

TEST(ORLFMutableArrayUtilities, MovedObjectHasTheIndexAndTheOthersKeepTheirOrder) {
  for (NSUInteger count = 0; count < 6; ++count)
    for (NSUInteger from = 0; from < count; ++from)
      for (NSUInteger to = 0; to < count; ++to) {
        NSMutableArray array;
        Members others;
        for (NSUInteger i = 0; i < count; ++i) {
          array.addObject(i);
          if (i != from) others.emplace_back(i);
        }
        orlfMoveObjectAtIndex(array, from, to);
        EXPECT_EQ(array.objectAtIndex(to), id(from));
        array.removeObjectAtIndex(to);
        EXPECT_EQ(array.members(), others);
      }
}

TEST(ORLFMutableArrayUtilities, FindTheObjectToMoveByEqualityOrByIdentity) {
  const id first = NSArray::arrayWithObjects({1});
  const id second = NSArray::arrayWithObjects({1});
  NSMutableArray array(Members{first, second, "c"});
  orlfMoveObject(array, second, 2);
  EXPECT_TRUE(array.objectAtIndex(2).isIdenticalTo(first));
  orlfMoveObjectIdenticalTo(array, second, 2);
  EXPECT_TRUE(array.objectAtIndex(2).isIdenticalTo(second));
  const Members before = array.members();
  orlfMoveObjectIdenticalTo(array, NSArray::arrayWithObjects({1}), 0);
  orlfMoveObject(array, "absent", 0);
  orlfMoveObject(array, nullptr, 0);
  EXPECT_EQ(array.members(), before);
}

TEST(ORLFMutableArrayUtilities, FilterInPlace) {
  NSMutableArray array(Members{1, 2, 3, 4});
  orlfFilterArrayUsingBlock(array, [](const id& member) { return *member.as<int>() % 2 == 0; });
  EXPECT_EQ(array.members(), (Members{2, 4}));
  orlfFilterArrayUsingBlock(array, nullptr);
  EXPECT_EQ(array.members(), (Members{2, 4}));
  orlfFilterArrayUsingBlock(array, [](const id&) { return false; });
  EXPECT_EQ(array.count(), 0U);
}

}  // namespace
}  // namespace ORLFoundation
