#include <ORLFoundation/platform/format/NSLocale.h>

#include <ORLFoundation/platform/object/NSObject_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

TEST(NSLocale, CopiesToItselfAndOneOnTheStackToAnEqualOne) {
  const auto owned = std::make_shared<NSLocale>("de_DE");
  EXPECT_EQ(owned->copy(), owned);
  NSLocale locale("de_DE");
  orlftest::expectEqualCopyOfUnowned(locale);
}

}  // namespace
}  // namespace ORLFoundation
