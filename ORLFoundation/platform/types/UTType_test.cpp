
#include <ORLFoundation/platform/types/UTType.h>

#include <ORLFoundation/platform/base/Replaced.h>

#include <ORLFoundation/platform/object/NSObject_testing.h>
#include <gtest/gtest.h>

#include <memory>

namespace ORLFoundation {
namespace {

/// Types in a small world, for as long as it lives.
class UTTypeTest : public testing::Test {
 protected:
  const Replaced<std::shared_ptr<const UTTypeCatalog>> catalog_{
      UTType::setCatalog, std::make_shared<UTTypeTable>(std::vector<UTTypeRecord>{
                              {"a.top", {}, {}, {}},
                              {"a.middle", {}, {}, {"a.missing", "a.top"}},
                              {"a.leaf", {"leaf", "lf"}, {"x/leaf"}, {"a.middle"}},
                              {"a.circle", {}, {}, {"a.round"}},
                              {"a.round", {}, {}, {"a.circle"}},
                          })};
};

TEST_F(UTTypeTest, IsFoundByIdentifierExtensionAndMIMEType) {
  const auto leaf = UTType::typeWithIdentifier("a.leaf");
  ASSERT_TRUE(leaf);
  EXPECT_TRUE(leaf->isEqual(UTType::typeWithFilenameExtension("LF").get()));
  EXPECT_TRUE(leaf->isEqual(UTType::typeWithMIMEType("X/Leaf").get()));
  EXPECT_EQ(leaf->hash(), UTType::typeWithMIMEType("x/leaf")->hash());
  EXPECT_EQ(leaf->preferredFilenameExtension(), "leaf");
  EXPECT_EQ(leaf->preferredMIMEType(), "x/leaf");
  EXPECT_EQ(leaf->description(), "a.leaf");
  EXPECT_EQ(leaf->copy(), leaf);
}

TEST_F(UTTypeTest, IsNilWhenNothingIsKnown) {
  EXPECT_FALSE(UTType::typeWithIdentifier("b"));
  EXPECT_FALSE(UTType::typeWithFilenameExtension("b"));
  EXPECT_FALSE(UTType::typeWithFilenameExtension(""));
  EXPECT_FALSE(UTType::typeWithMIMEType("b"));
  EXPECT_EQ(UTType::typeWithIdentifier("a.top")->preferredFilenameExtension(), std::nullopt);
  EXPECT_EQ(UTType::typeWithIdentifier("a.top")->preferredMIMEType(), std::nullopt);
}

TEST_F(UTTypeTest, ConformsToItselfAndAllAboveIt) {
  const auto conforms = [](const char* type, const char* to) {
    return UTType::typeWithIdentifier(type)->conformsToType(*UTType::typeWithIdentifier(to));
  };
  EXPECT_TRUE(conforms("a.leaf", "a.leaf"));
  EXPECT_TRUE(conforms("a.leaf", "a.middle"));
  EXPECT_TRUE(conforms("a.leaf", "a.top"));
  EXPECT_FALSE(conforms("a.top", "a.leaf"));
  EXPECT_TRUE(conforms("a.circle", "a.round"));
  EXPECT_FALSE(conforms("a.circle", "a.top"));
}

TEST_F(UTTypeTest, MayBeDefinedByTheCaller) {
  const auto own = UTType::exportedTypeWithIdentifier("my.own", "a.middle");
  EXPECT_EQ(own->identifier(), "my.own");
  EXPECT_TRUE(own->conformsToType(*UTType::typeWithIdentifier("a.top")));
  EXPECT_FALSE(UTType::typeWithIdentifier("my.own"));
}

TEST(UTType, KnowsTheTypesOfTheSystem) {
  const auto csv = UTType::typeWithFilenameExtension("csv");
  ASSERT_TRUE(csv);
  EXPECT_EQ(csv->identifier(), "public.comma-separated-values-text");
  EXPECT_EQ(csv->preferredMIMEType(), "text/csv");
  for (const char* above : {"public.text", "public.data", "public.content", "public.item"})
    EXPECT_TRUE(csv->conformsToType(*UTType::typeWithIdentifier(above))) << above;
  EXPECT_FALSE(csv->conformsToType(*UTType::typeWithIdentifier("public.image")));
  EXPECT_FALSE(UTType::typeWithFilenameExtension("no such extension"));
}

TEST(UTType, CopiesOneOnTheStackToAnEqualOne) {
  UTType type({}, {"a.leaf", {"leaf"}, {"x/leaf"}, {}}, nullptr);
  orlftest::expectEqualCopyOfUnowned(type);
  const auto copy = std::static_pointer_cast<UTType>(type.copy());
  EXPECT_EQ(copy->preferredMIMEType(), "x/leaf");
}

}  // namespace
}  // namespace ORLFoundation
