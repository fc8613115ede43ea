
#include <ORLFoundation/support/diagnostics/ORLFCancelError.h>

#include <gtest/gtest.h>

#include <string_view>

namespace ORLFoundation {
namespace {

TEST(ORLFCancelError, IsMadeWithTheUserInformation) {
  const auto error =
      orlfUserCancelledErrorWithUserInfo(NSDictionary::dictionaryWithEntries({{"key", 1}}));
  EXPECT_EQ(error->domain(), "NSCocoaErrorDomain");
  EXPECT_EQ(error->code(), 3072);
  EXPECT_EQ(error->userInfo()->objectForKey("key"), id(1));
  EXPECT_TRUE(orlfIsUserCanceledError(*error));
  EXPECT_EQ(orlfUserCancelledErrorWithUserInfo(nullptr)->userInfo()->count(), 0U);
}

struct CancelCase {
  std::string_view domain;
  NSInteger code;
  bool isCancel;
};
const CancelCase kCancels[] = {
    {NSCocoaErrorDomain, 3072, true},  {NSURLErrorDomain, -999, true},
    {ORLFErrorDomain, 3072, false},    {NSURLErrorDomain, 3072, false},
    {NSCocoaErrorDomain, -999, false}, {NSPOSIXErrorDomain, -999, false},
    {NSCocoaErrorDomain, 3071, false}, {NSURLErrorDomain, -998, false},
};

TEST(ORLFCancelError, IsTwoCodesInTheirDomains) {
  for (const CancelCase& row : kCancels)
    EXPECT_EQ(orlfIsUserCanceledError(NSError(row.domain, row.code)), row.isCancel)
        << row.domain << " " << row.code;
}

}  // namespace
}  // namespace ORLFoundation
