
#include <ORLFoundation/decimal/ORLFNegateDecimalNumberTransformer.h>

#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/object/Id.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

constexpr const char* kName = "ORLFNegateDecimalNumberTransformer";

TEST(ORLFNegateDecimalNumberTransformer, IsRegisteredUnderItsName) {
  const auto found = NSValueTransformer::valueTransformerForName(kName);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->className(), kName);
  EXPECT_TRUE(ORLFNegateDecimalNumberTransformer::initialize());
  EXPECT_EQ(NSValueTransformer::valueTransformerForName(kName), found) << "registered once";
}

TEST(ORLFNegateDecimalNumberTransformer, NegatesInBothDirections) {
  const ORLFNegateDecimalNumberTransformer transformer;
  EXPECT_EQ(transformer.transformedValueClass(), "NSDecimalNumber");
  EXPECT_TRUE(transformer.allowsReverseTransformation());
  const char* const pairs[][2] = {{"5", "-5"}, {"-5", "5"}, {"0", "0"}, {"-0.05", "0.05"}};
  for (const auto& pair : pairs) {
    const id value = NSDecimalNumber(pair[0]);
    const id negated = NSDecimalNumber(pair[1]);
    EXPECT_EQ(transformer.transformedValue(value), negated) << pair[0];
    EXPECT_EQ(transformer.reverseTransformedValue(value), negated) << pair[0];
  }
}

TEST(ORLFNegateDecimalNumberTransformer, GivesNilForNilAndForWhatIsNoNumber) {
  const ORLFNegateDecimalNumberTransformer transformer;
  EXPECT_TRUE(transformer.transformedValue(nullptr).isNil());
  EXPECT_TRUE(transformer.reverseTransformedValue(nullptr).isNil());
  EXPECT_TRUE(transformer.transformedValue("5").isNil());
}

}  // namespace
}  // namespace ORLFoundation
