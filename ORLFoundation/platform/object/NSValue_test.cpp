#include <ORLFoundation/platform/object/NSValue.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

TEST(NSValue, GivesBackItsRecord) {
  EXPECT_EQ(orlfCGPointValue(orlfValueWithCGPoint({1.5, -2})), (CGPoint{1.5, -2}));
  const CGRect rect{{1, 2}, {3, 4}};
  EXPECT_EQ(orlfCGRectValue(NSValue::valueWithRect(rect)), rect);
  EXPECT_EQ(NSValue::valueWithRange({1, 2}).rangeValue(), (NSRange{1, 2}));
}

TEST(NSValue, GivesZerosForAnotherKindOfRecord) {
  EXPECT_EQ(orlfCGRectValue(orlfValueWithCGPoint({1, 2})), CGRect());
  EXPECT_EQ(orlfCGPointValue(NSValue::valueWithRange({1, 2})), CGPoint());
}

TEST(NSValue, EqualsAndHashesByRecord) {
  EXPECT_EQ(orlfValueWithCGPoint({0.0, 2}), orlfValueWithCGPoint({-0.0, 2}));
  EXPECT_EQ(orlfValueWithCGPoint({0.0, 2}).hash(), orlfValueWithCGPoint({-0.0, 2}).hash());
  EXPECT_NE(orlfValueWithCGPoint({1, 2}), orlfValueWithCGPoint({2, 1}));
  EXPECT_NE(orlfValueWithCGPoint({0, 0}), NSValue::valueWithRange({0, 0}));
}

}  // namespace
}  // namespace ORLFoundation
