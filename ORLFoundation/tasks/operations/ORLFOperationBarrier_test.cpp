#include <ORLFoundation/tasks/operations/ORLFOperationBarrier.h>

#include <ORLFoundation/platform/object/Id.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

TEST(ORLFOperationBarrier, KeepsGroupAndMarkUnderTheirKeys) {
  NSOperation operation;
  EXPECT_FALSE(orlfIsBarrierOperation(operation));
  EXPECT_EQ(orlfGroupID(operation), std::nullopt);
  orlfSetIsBarrierOperation(operation, true);
  orlfSetGroupID(operation, "G");
  EXPECT_TRUE(orlfIsBarrierOperation(operation));
  EXPECT_EQ(operation.attachedValue("ORLFOperationBarrierKey"), id(true));
  EXPECT_EQ(operation.attachedValue("ORLFOperationGroupIDKey"), id("G"));
  orlfSetIsBarrierOperation(operation, false);
  orlfSetGroupID(operation, std::nullopt);
  EXPECT_TRUE(operation.attachedValue("ORLFOperationBarrierKey").isNil());
  EXPECT_TRUE(operation.attachedValue("ORLFOperationGroupIDKey").isNil());
}

}  // namespace
}  // namespace ORLFoundation
