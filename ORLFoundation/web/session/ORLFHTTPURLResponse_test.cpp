#include <ORLFoundation/web/session/ORLFHTTPURLResponse.h>

#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

TEST(ORLFHTTPURLResponse, IsTheResponseItselfWhereItIsOneOfHTTP) {
  const auto http = std::make_shared<NSHTTPURLResponse>(std::nullopt, 200);
  EXPECT_EQ(orlfHTTPURLResponse(http), http);
  EXPECT_EQ(orlfHTTPURLResponse(std::make_shared<NSURLResponse>(std::nullopt)), nullptr);
  EXPECT_EQ(orlfHTTPURLResponse(nullptr), nullptr);
}

std::optional<NSDate> dateUnder(const char* name, const char* text) {
  return orlfLastModifiedDate(NSHTTPURLResponse(std::nullopt, 200, "HTTP/1.1", {{name, text}}));
}

TEST(ORLFHTTPURLResponse, ReadsTheDateWhateverTheCaseOfItsName) {
  for (const char* name : {"Last-Modified", "last-modified", "LAST-MODIFIED"})
    EXPECT_EQ(dateUnder(name, "Sun, 06 Nov 1994 08:49:37 GMT"),
              orlftest::dateFromVector("1994-11-06T08:49:37Z"));
  EXPECT_FALSE(dateUnder("Date", "Sun, 06 Nov 1994 08:49:37 GMT"));
  EXPECT_FALSE(orlfLastModifiedDate(NSHTTPURLResponse(std::nullopt, 200)));
}

TEST(ORLFHTTPURLResponse, HasNoDateForATextThatIsNone) {
  for (const char* text :
       {"", "yesterday", "Wed, 29 Feb 2023 00:00:00 GMT", "GMT", "Sun, 06 Nov 1994 24:00:00 GMT",
        "Sun, 06 Nov 1994 08:49:37 +0100", "\xff\xfe"})
    EXPECT_FALSE(dateUnder("Last-Modified", text)) << text;
}

}  // namespace
}  // namespace ORLFoundation
