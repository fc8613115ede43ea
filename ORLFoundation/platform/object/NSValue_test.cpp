
#include <ORLFoundation/platform/object/NSValue.h>

#include <ORLFoundation/platform/object/NSObject.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

TEST(NSValue, GivesBackItsRecord) {
  EXPECT_EQ(NSValue::valueWithPoint({1.5, -2}).pointValue(), (CGPoint{1.5, -2}));
  const CGRect rect{{1, 2}, {3, 4}};
  EXPECT_EQ(NSValue::valueWithRect(rect).rectValue(), rect);
  EXPECT_EQ(NSValue::valueWithRange({1, 2}).rangeValue(), (NSRange{1, 2}));
}

TEST(NSValue, GivesZerosForAnotherKindOfRecord) {
  EXPECT_EQ(NSValue::valueWithPoint({1, 2}).rectValue(), CGRect());
  EXPECT_EQ(NSValue::valueWithRange({1, 2}).pointValue(), CGPoint());
}

TEST(NSValue, EqualsAndHashesByRecord) {
  EXPECT_EQ(NSValue::valueWithPoint({0.0, 2}), NSValue::valueWithPoint({-0.0, 2}));
  EXPECT_EQ(NSValue::valueWithPoint({0.0, 2}).hash(), NSValue::valueWithPoint({-0.0, 2}).hash());
  EXPECT_NE(NSValue::valueWithPoint({1, 2}), NSValue::valueWithPoint({2, 1}));
  EXPECT_NE(NSValue::valueWithPoint({0, 0}), NSValue::valueWithRange({0, 0}));
}

TEST(NSValue, RefersToAnObjectWithoutOwningIt) {
  auto object = std::make_shared<NSObject>();
  const auto other = std::make_shared<NSObject>();
  const NSValue value = NSValue::valueWithNonretainedObject(object.get());
  EXPECT_EQ(value.nonretainedObjectValue(), object);
  EXPECT_EQ(value, NSValue::valueWithNonretainedObject(object.get()));
  EXPECT_EQ(value.hash(), NSValue::valueWithNonretainedObject(object.get()).hash());
  EXPECT_NE(value, NSValue::valueWithNonretainedObject(other.get()));
  EXPECT_TRUE(value.description().starts_with("<NSValue: 0x")) << value.description();
  object.reset();
  EXPECT_EQ(value.nonretainedObjectValue(), nullptr);
  EXPECT_EQ(NSValue::valueWithNonretainedObject(nullptr).nonretainedObjectValue(), nullptr);
  EXPECT_EQ(NSValue::valueWithPoint({1, 2}).nonretainedObjectValue(), nullptr);
}

}  // namespace
}  // namespace ORLFoundation
