
#include <ORLFoundation/platform/value/NSURLComponents.h>

#include <ORLFoundation/platform/value/internal/PercentEscapes.h>
#include <gtest/gtest.h>

#include <string_view>

namespace ORLFoundation {
namespace {

struct PathCase {
  const char* text;
  std::optional<std::string> path;
  std::string encoded;
};
const PathCase kPaths[] = {
    {"https://x.org", "", ""},
    {"https://x.org?q", "", ""},
    {"https://x.org/", "/", "/"},
    {"https://x.org/a/", "/a/", "/a/"},
    {"https://x.org//a//b?q=1#f", "//a//b", "//a//b"},
    {"https://x.org/a%20b/%C3%A9", "/a b/é", "/a%20b/%C3%A9"},
    {"https://x.org/%2F%25", "//%", "/%2F%25"},
    {"https://x.org/%FF", std::nullopt, "/%FF"},
    {"mailto:a@x.org", "a@x.org", "a@x.org"},
    {"a/b", "a/b", "a/b"},
};

TEST(NSURLComponents, GivesThePathWithItsSlashes) {
  for (const PathCase& row : kPaths) {
    for (const bool resolving : {true, false}) {
      const auto url = NSURL::URLWithString(row.text);
      ASSERT_TRUE(url) << row.text;
      const auto components = NSURLComponents::componentsWithURL(url, resolving);
      ASSERT_TRUE(components) << row.text;
      EXPECT_EQ(components->path(), row.path) << row.text;
      EXPECT_EQ(components->percentEncodedPath(), row.encoded) << row.text;
    }
  }
}

TEST(NSURLComponents, GivesTheOtherParts) {
  const auto url = NSURL::URLWithString("https://x.org:81/a?q=%201#f");
  const auto components = NSURLComponents::componentsWithURL(url, true);
  EXPECT_EQ(components->scheme(), "https");
  EXPECT_EQ(components->host(), "x.org");
  EXPECT_EQ(components->port(), 81);
  EXPECT_EQ(components->percentEncodedQuery(), "q=%201");
  EXPECT_EQ(components->percentEncodedFragment(), "f");
  EXPECT_EQ(components->URL(), *url);
}

TEST(NSURLComponents, IsNilForNil) {
  EXPECT_FALSE(NSURLComponents::componentsWithURL(std::nullopt, true));
}

}  // namespace
}  // namespace ORLFoundation
