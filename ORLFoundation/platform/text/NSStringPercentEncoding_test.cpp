
#include <ORLFoundation/platform/text/NSStringPercentEncoding.h>

#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

TEST(NSStringPercentEncoding, TellsEveryCharacterOfAQuery) {
  const std::string_view allowed =
      "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz!$&'()*+,-./:;=?@_~";
  for (char32_t c = 0; c < 0x300; ++c)
    EXPECT_EQ(URLQueryAllowedCharacterSet()->longCharacterIsMember(c),
              c < 0x80 && allowed.find(static_cast<char>(c)) != std::string_view::npos)
        << static_cast<unsigned>(c);
}

struct EscapeCase {
  std::string_view name, plain, encoded;
};
const EscapeCase kEncodings[] = {
    {"Nothing", "", ""},
    {"Allowed", "aZ09-._~!$&'()*+,;=:@/?", "aZ09-._~!$&'()*+,;=:@/?"},
    {"Escaped", "a b%\"<>#[]", "a%20b%25%22%3C%3E%23%5B%5D"},
    {"Controls", std::string_view("\n\0\x7F", 3), "%0A%00%7F"},
    {"Characters", "é日😀", "%C3%A9%E6%97%A5%F0%9F%98%80"},
};

TEST(NSStringPercentEncoding, EscapesAndResolves) {
  const NSCharacterSet& allowed = *URLQueryAllowedCharacterSet();
  for (const EscapeCase& row : kEncodings) {
    EXPECT_EQ(stringByAddingPercentEncodingWithAllowedCharacters(row.plain, allowed), row.encoded)
        << row.name;
    EXPECT_EQ(stringByRemovingPercentEncoding(row.encoded), row.plain) << row.name;
  }
}

TEST(NSStringPercentEncoding, EscapesWhatIsNotASCIIWhateverTheSet) {
  const auto all = NSCharacterSet::characterSetWithCharactersInString("")->invertedSet();
  EXPECT_EQ(stringByAddingPercentEncodingWithAllowedCharacters("a %é", *all), "a %%C3%A9");
  EXPECT_EQ(stringByAddingPercentEncodingWithAllowedCharacters("a\xFF", *all), "a%EF%BF%BD");
}

TEST(NSStringPercentEncoding, LeavesAPlusAndTakesDigitsOfEitherCase) {
  EXPECT_EQ(stringByRemovingPercentEncoding("a+b%2b%2B"), "a+b++");
}

TEST(NSStringPercentEncoding, RefusesWhatIsNoEscapeAndNoUTF8) {
  for (const std::string_view text :
       {"%", "%4", "a%", "%zz", "%4z", "%FF", "%C3", "%C3x", "%ED%A0%80"})
    EXPECT_EQ(stringByRemovingPercentEncoding(text), std::nullopt) << text;
  EXPECT_EQ(stringByRemovingPercentEncoding("\xFF"), std::nullopt);
}

}  // namespace
}  // namespace ORLFoundation
