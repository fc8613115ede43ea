
#include <ORLFoundation/platform/value/NSRange.h>

#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

TEST(NSRange, EndsBehindItsLastValue) {
  EXPECT_EQ(NSMaxRange({3, 4}), 7U);
  EXPECT_EQ(NSMaxRange({3, 0}), 3U);
  EXPECT_EQ((NSRange{1, 2}), (NSRange{1, 2}));
}

TEST(NSException, CarriesItsNameAndReason) {
  const NSException exception(NSRangeException, "beyond the end");
  EXPECT_EQ(exception.name(), "NSRangeException");
  EXPECT_EQ(exception.reason(), "beyond the end");
  EXPECT_STREQ(exception.what(), "beyond the end");
}

}  // namespace
}  // namespace ORLFoundation
