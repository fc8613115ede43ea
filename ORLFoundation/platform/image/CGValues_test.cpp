#include <ORLFoundation/platform/image/CGValues.h>

#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

TEST(CGValues, GiveBackTheirRecord) {
  EXPECT_EQ(orlfCGPointValue(orlfValueWithCGPoint({1.5, -2})), (CGPoint{1.5, -2}));
  const CGRect rect{{1, 2}, {3, 4}};
  EXPECT_EQ(orlfCGRectValue(NSValue::valueWithRect(rect)), rect);
}

TEST(CGValues, AreZerosForAnotherKindOfRecord) {
  EXPECT_EQ(orlfCGRectValue(orlfValueWithCGPoint({1, 2})), CGRect());
  EXPECT_EQ(orlfCGPointValue(NSValue::valueWithRange({1, 2})), CGPoint());
}

}  // namespace
}  // namespace ORLFoundation
