#include <ORLFoundation/platform/net/NSURLSessionConfiguration.h>

#include <ORLFoundation/platform/value/NSException_testing.h>
#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace ORLFoundation;
using orlftest::nameOfException;

TEST(NSURLSessionConfiguration, BeginsWithThePlatformsValues) {
  const auto configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
  EXPECT_EQ(configuration->requestCachePolicy(), NSURLRequestUseProtocolCachePolicy);
  EXPECT_EQ(configuration->timeoutIntervalForRequest(), 60.0);
  EXPECT_EQ(configuration->timeoutIntervalForResource(), 604800.0);
  EXPECT_TRUE(configuration->HTTPAdditionalHeaders().empty());
  EXPECT_EQ(configuration->HTTPMaximumConnectionsPerHost(), 6);
  EXPECT_TRUE(configuration->HTTPShouldSetCookies());
  EXPECT_EQ(configuration->maximumBodyLength(), -1);
  EXPECT_EQ(configuration->additionalTrustedCertificatesFile(), "");
  EXPECT_NE(NSURLSessionConfiguration::defaultSessionConfiguration(), configuration);
}

TEST(NSURLSessionConfiguration, CopiesEverythingAndStaysApart) {
  const auto first = NSURLSessionConfiguration::defaultSessionConfiguration();
  first->setRequestCachePolicy(NSURLRequestReloadIgnoringLocalCacheData);
  first->setTimeoutIntervalForRequest(0.5);
  first->setTimeoutIntervalForResource(9);
  first->setHTTPAdditionalHeaders({{"A", "b"}});
  first->setHTTPMaximumConnectionsPerHost(2);
  first->setHTTPShouldSetCookies(false);
  first->setMaximumBodyLength(10);
  first->setAdditionalTrustedCertificatesFile("/ca.pem");
  const auto second = copyOf(first);
  ASSERT_NE(second, first);
  first->setTimeoutIntervalForRequest(7);
  EXPECT_EQ(second->requestCachePolicy(), NSURLRequestReloadIgnoringLocalCacheData);
  EXPECT_EQ(second->timeoutIntervalForRequest(), 0.5);
  EXPECT_EQ(second->timeoutIntervalForResource(), 9);
  EXPECT_EQ(second->HTTPAdditionalHeaders(), (NSHTTPHeaderFields{{"A", "b"}}));
  EXPECT_EQ(second->HTTPMaximumConnectionsPerHost(), 2);
  EXPECT_FALSE(second->HTTPShouldSetCookies());
  EXPECT_EQ(second->maximumBodyLength(), 10);
  EXPECT_EQ(second->additionalTrustedCertificatesFile(), "/ca.pem");
}

TEST(NSURLSessionConfiguration, RefusesFieldsThatBeginAnotherLine) {
  const auto configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
  EXPECT_EQ(nameOfException([&] {
              configuration->setHTTPAdditionalHeaders({{"A", "b\nc"}});
            }),
            NSInvalidArgumentException);
  EXPECT_EQ(nameOfException([&] {
              configuration->setHTTPAdditionalHeaders({{"A B", "c"}});
            }),
            NSInvalidArgumentException);
  EXPECT_TRUE(configuration->HTTPAdditionalHeaders().empty());
}

}  // namespace
