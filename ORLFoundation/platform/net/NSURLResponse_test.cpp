#include <ORLFoundation/platform/net/NSURLResponse.h>

#include <ORLFoundation/platform/object/NSURLErrors.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace {

using namespace ORLFoundation;

const NSURL kAnswered = NSURL::URLWithString("http://x.org/a?key=hidden").value();

std::shared_ptr<NSHTTPURLResponse> responseWith(const char* name, const char* value) {
  return std::make_shared<NSHTTPURLResponse>(kAnswered, 200, "HTTP/1.1",
                                             NSHTTPHeaderFields{{name, value}});
}

TEST(NSURLResponse, TellsWhatItWasMadeWith) {
  const auto response = std::make_shared<NSURLResponse>(kAnswered, "text/csv", 12, "utf-8");
  EXPECT_EQ(response->URL(), kAnswered);
  EXPECT_EQ(response->MIMEType(), "text/csv");
  EXPECT_EQ(response->expectedContentLength(), 12);
  EXPECT_EQ(response->textEncodingName(), "utf-8");
  EXPECT_EQ(response->copy(), response);
  const NSURLResponse bare(std::nullopt);
  EXPECT_EQ(bare.URL(), std::nullopt);
  EXPECT_EQ(bare.MIMEType(), std::nullopt);
  EXPECT_EQ(bare.expectedContentLength(), NSURLResponseUnknownLength);
  EXPECT_EQ(bare.textEncodingName(), std::nullopt);
}

TEST(NSHTTPURLResponse, FindsFieldsInAnyCase) {
  const auto response = responseWith("last-modified", "then");
  EXPECT_EQ(response->statusCode(), 200);
  EXPECT_EQ(response->valueForHTTPHeaderField("Last-Modified"), "then");
  EXPECT_EQ(response->valueForHTTPHeaderField("Date"), std::nullopt);
  EXPECT_EQ(response->allHeaderFields().size(), 1U);
  EXPECT_EQ(response->copy(), response);
}

TEST(NSHTTPURLResponse, ReadsTheContentType) {
  struct Row {
    const char* field;
    std::optional<std::string> type, charset;
  };
  const Row rows[] = {
      {"Text/CSV; charset=utf-8", "text/csv", "utf-8"},
      {"text/plain", "text/plain", std::nullopt},
      {" text/plain ; a=b ;\tCharset = \"ISO-8859-1\" ", "text/plain", "ISO-8859-1"},
      {"text/plain; charset=", "text/plain", std::nullopt},
      {"text/plain; charset=\"", "text/plain", "\""},
      {"; charset=x", std::nullopt, "x"},
      {"", std::nullopt, std::nullopt},
  };
  for (const Row& row : rows) {
    const auto response = responseWith("Content-Type", row.field);
    EXPECT_EQ(response->MIMEType(), row.type) << row.field;
    EXPECT_EQ(response->textEncodingName(), row.charset) << row.field;
  }
  EXPECT_EQ(responseWith("X", "y")->MIMEType(), std::nullopt);
}

TEST(NSHTTPURLResponse, ReadsTheLengthOfBodiesThatAreNotEncoded) {
  const std::pair<const char*, std::int64_t> rows[] = {
      {"0", 0},
      {" 12 ", 12},
      {"9223372036854775807", INT64_MAX},
      {"9223372036854775808", -1},
      {"-1", -1},
      {"+1", -1},
      {"1x", -1},
      {"", -1},
      {"5, 5", -1},
  };
  for (const auto& [field, length] : rows)
    EXPECT_EQ(responseWith("Content-Length", field)->expectedContentLength(), length) << field;
  EXPECT_EQ(responseWith("X", "y")->expectedContentLength(), -1);
  const auto lengthWith = [](const char* encoding) {
    return NSHTTPURLResponse(
               kAnswered, 200, std::nullopt,
               NSHTTPHeaderFields{{"Content-Length", "7"}, {"content-encoding", encoding}})
        .expectedContentLength();
  };
  EXPECT_EQ(lengthWith("gzip"), -1);
  EXPECT_EQ(lengthWith("Identity"), 7);
  EXPECT_EQ(lengthWith(""), 7);
}

TEST(NSHTTPURLResponse, NamesStatuses) {
  const std::pair<NSInteger, std::string_view> rows[] = {
      {100, "continue"},
      {101, "switching protocols"},
      {150, "informational"},
      {200, "no error"},
      {201, "created"},
      {206, "partial content"},
      {299, "success"},
      {304, "not modified"},
      {399, "redirected"},
      {400, "bad request"},
      {401, "unauthorized"},
      {403, "forbidden"},
      {404, "not found"},
      {418, "client error"},
      {500, "internal server error"},
      {503, "service unavailable"},
      {599, "server error"},
      {600, "unknown"},
      {99, "unknown"},
      {0, "unknown"},
      {-200, "unknown"},
      {INT64_MIN, "unknown"},
      {INT64_MAX, "unknown"},
  };
  for (const auto& [status, text] : rows)
    EXPECT_EQ(NSHTTPURLResponse::localizedStringForStatusCode(status), text);
}

TEST(NSHTTPURLResponse, DescribesItselfWithoutSecrets) {
  const std::string text = responseWith("Set-Cookie", "hidden")->description();
  EXPECT_TRUE(text.starts_with("<NSHTTPURLResponse: 0x")) << text;
  EXPECT_TRUE(text.ends_with("> { URL: http://x.org/a, status code: 200 }")) << text;
  const std::string plain = NSURLResponse(kAnswered).description();
  EXPECT_TRUE(plain.ends_with("> { URL: http://x.org/a }")) << plain;
}

// Callers compare with numbers, which therefore never change.
TEST(NSURLError, HasThePlatformsNumbers) {
  EXPECT_EQ(NSURLErrorUnknown, -1);
  EXPECT_EQ(NSURLErrorCancelled, -999);
  EXPECT_EQ(NSURLErrorTimedOut, -1001);
  EXPECT_EQ(NSURLErrorHTTPTooManyRedirects, -1007);
  EXPECT_EQ(NSURLErrorResourceUnavailable, -1008);
  EXPECT_EQ(NSURLErrorUserAuthenticationRequired, -1013);
  EXPECT_EQ(NSURLErrorFileDoesNotExist, -1100);
  EXPECT_EQ(NSURLErrorDataLengthExceedsMaximum, -1103);
}

}  // namespace
