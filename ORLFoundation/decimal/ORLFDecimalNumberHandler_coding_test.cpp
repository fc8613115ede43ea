#include <ORLFoundation/decimal/ORLFDecimalNumberHandler_testing.h>
#include <ORLFoundation/decimal/ORLFMutableDecimalNumberHandler.h>
#include <ORLFoundation/platform/archive/NSKeyedArchive_testing.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <memory>
#include <utility>
#include <vector>

namespace orlftest {
namespace {

/// The objects of an archive of a handler with `kHandlerFields`.
std::vector<id> objectsOfHandler(const id& classEntry) {
  return {dictionary({{"roundingMode", 3},
                      {"decimalScale", -2},
                      {"exactnessBehavior", 11},
                      {"overflowBehavior", 12},
                      {"underflowBehavior", 13},
                      {"divideByZeroBehavior", 14},
                      {"$class", uid(2)}}),
          classEntry};
}

id mutableClassEntry() {
  return dictionary({{"$classname", "ORLFMutableDecimalNumberHandler"},
                     {"$classes", list({"ORLFMutableDecimalNumberHandler",
                                        "ORLFDecimalNumberHandler", "NSObject"})}});
}

void expectWritten(const id& handler, std::vector<id> objects) {
  objects.insert(objects.begin(), "$null");
  const auto root =
      NSPropertyListSerialization::propertyListWithData(archived(handler), 0).as<NSDictionary>();
  ASSERT_TRUE(root);
  EXPECT_EQ(root->objectForKey("$objects"), list(std::move(objects)));
}

TEST(ORLFDecimalNumberHandler, WritesItsSixValuesUnderTheirKeys) {
  expectWritten(std::make_shared<ORLFDecimalNumberHandler>(kHandlerFields),
                objectsOfHandler(classNamed("ORLFDecimalNumberHandler")));
  expectWritten(std::make_shared<ORLFMutableDecimalNumberHandler>(kHandlerFields),
                objectsOfHandler(mutableClassEntry()));
}

TEST(ORLFDecimalNumberHandler, ReadsItsSixValuesBack) {
  const auto handler = NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFDecimalNumberHandler>(
      archiveOf(objectsOfHandler(classNamed("ORLFDecimalNumberHandler"))));
  ASSERT_TRUE(handler);
  expectHandlerFields(*handler);
  const auto changeable =
      NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFMutableDecimalNumberHandler>(
          archiveOf(objectsOfHandler(mutableClassEntry())));
  ASSERT_TRUE(changeable);
  expectHandlerFields(*changeable);
}

// A process of its own, in which nothing has named the subclass yet.
TEST(ORLFDecimalNumberHandlerDeathTest, IsReadAsTheMutableOneWhereOnlyTheBaseIsNamed) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        const auto handler = NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFDecimalNumberHandler>(
            archiveOf(objectsOfHandler(mutableClassEntry())));
        ::_exit(std::dynamic_pointer_cast<ORLFMutableDecimalNumberHandler>(handler) ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace orlftest
