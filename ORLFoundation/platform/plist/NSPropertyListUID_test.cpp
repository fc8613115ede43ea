#include <ORLFoundation/platform/plist/NSPropertyListUID.h>

#include <ORLFoundation/platform/object/NSObject_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

TEST(NSPropertyListUID, CopiesToItselfAndOneOnTheStackToAnEqualOne) {
  const auto owned = std::make_shared<NSPropertyListUID>(7);
  EXPECT_EQ(owned->copy(), owned);
  NSPropertyListUID uid(7);
  orlftest::expectEqualCopyOfUnowned(uid);
}

}  // namespace
}  // namespace ORLFoundation
