
#include <ORLFoundation/platform/types/UTTypeCatalog.h>

#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

const UTTypeTable kTable({{"a.first", {"one", "uno"}, {"x/one"}, {}},
                          {"a.second", {"two", "one"}, {"x/two"}, {"a.first"}}});

TEST(UTTypeTable, TakesTheFirstThatFits) {
  EXPECT_EQ(kTable.recordWithIdentifier("a.second")->conformsTo.front(), "a.first");
  EXPECT_EQ(kTable.recordWithFilenameExtension("one")->identifier, "a.first");
  EXPECT_EQ(kTable.recordWithFilenameExtension("two")->identifier, "a.second");
  EXPECT_EQ(kTable.recordWithMIMEType("x/two")->identifier, "a.second");
}

TEST(UTTypeTable, AnswersNilForTheRest) {
  EXPECT_FALSE(kTable.recordWithIdentifier("a"));
  EXPECT_FALSE(kTable.recordWithFilenameExtension(""));
  EXPECT_FALSE(kTable.recordWithMIMEType("x/three"));
  EXPECT_FALSE(UTTypeTable({}).recordWithIdentifier("a.first"));
}

}  // namespace
}  // namespace ORLFoundation
