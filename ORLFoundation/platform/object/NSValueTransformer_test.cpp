
#include <ORLFoundation/platform/object/NSValueTransformer.h>

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

class Doubler : public NSValueTransformer {
 public:
  explicit Doubler(bool reversible) : reversible_(reversible) {}
  [[nodiscard]] std::string transformedValueClass() const override { return "NSNumber"; }
  [[nodiscard]] bool allowsReverseTransformation() const override { return reversible_; }
  [[nodiscard]] id transformedValue(const id& value) const override {
    return 2 * value.as<NSInteger>().value_or(0);
  }

 private:
  bool reversible_;
};

TEST(NSValueTransformer, IsFoundByItsName) {
  const auto doubler = std::make_shared<Doubler>(false);
  EXPECT_EQ(NSValueTransformer::valueTransformerForName("Doubler"), nullptr);
  NSValueTransformer::setValueTransformer(doubler, "Doubler");
  EXPECT_EQ(NSValueTransformer::valueTransformerForName("Doubler"), doubler);
  EXPECT_EQ(doubler->transformedValue(4), id(8));
  NSValueTransformer::setValueTransformer(nullptr, "Doubler");
  EXPECT_EQ(NSValueTransformer::valueTransformerForName("Doubler"), nullptr);
}

TEST(NSValueTransformer, RefusesAWayBackUnlessThereIsOne) {
  EXPECT_THROW(static_cast<void>(Doubler(false).reverseTransformedValue(1)), NSException);
  EXPECT_EQ(Doubler(true).reverseTransformedValue(1), id(2));
}

}  // namespace
}  // namespace ORLFoundation
