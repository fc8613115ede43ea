
#include <ORLFoundation/platform/image/CGColor.h>

#include <ORLFoundation/platform/object/NSObject_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

TEST(CGColor, HasItsComponentsAndThenTheOpacity) {
  EXPECT_EQ(CGColor::colorWithGray(0.5, 1)->components(), (std::vector<double>{0.5, 1}));
  EXPECT_EQ(CGColor::colorWithRed(1, 0, 0.25, 0.5)->components(),
            (std::vector<double>{1, 0, 0.25, 0.5}));
  EXPECT_TRUE(CGColor({}).components().empty());
}

TEST(CGColor, EqualsByItsComponents) {
  const CGColorRef color = CGColor::colorWithGray(0, 1);
  EXPECT_TRUE(color->isEqual(CGColor::colorWithGray(-0.0, 1).get()));
  EXPECT_EQ(color->hash(), CGColor::colorWithGray(-0.0, 1)->hash());
  EXPECT_FALSE(color->isEqual(CGColor::colorWithGray(0, 0.5).get()));
  EXPECT_FALSE(color->isEqual(CGColor::colorWithRed(0, 0, 0, 1).get()));
  EXPECT_FALSE(color->isEqual(nullptr));
}

TEST(CGColor, CopiesOneOnTheStackToAnEqualOne) {
  CGColor color({0.5, 1});
  orlftest::expectEqualCopyOfUnowned(color);
}

}  // namespace
}  // namespace ORLFoundation
