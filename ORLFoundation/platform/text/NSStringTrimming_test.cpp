#include <ORLFoundation/platform/text/NSStringTrimming.h>

#include <ORLFoundation/platform/base/UTF8.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using internal::base::firstUTF8Character;
using internal::base::UTF8Character;

struct TrimmingCase {
  std::string_view text, members, trimmed;
};
const TrimmingCase kTrimmingCases[] = {
    {"", " ", ""},
    {"   ", " ", ""},
    {" a b ", " ", "a b"},
    {"a", "", "a"},
    {"/-1/2-/", "/-", "1/2"},
    {"é€😀a😀€é", "é€😀", "a"},
    {"ab", "ab", ""},
    // Broken bytes are members where U+FFFD is one, as many as a reading from the front finds.
    {"\xE2\x82"
     "a\xE2\x82",
     "\uFFFD", "a"},
    {"a\xC0\x80", "\uFFFD", "a"},
    {"a\xC0\x80", " ", "a\xC0\x80"},
    {"a\x80\x80\x80\x80\x80", "\uFFFD", "a"},
    {"\xF0\x9F\x98\x80\x80", "\uFFFD", "😀"},
};

TEST(NSStringTrimming, TakesMembersFromBothEnds) {
  for (const TrimmingCase& row : kTrimmingCases) {
    const auto set = NSCharacterSet::characterSetWithCharactersInString(row.members);
    EXPECT_EQ(stringByTrimmingCharactersInSet(row.text, *set), row.trimmed) << row.text;
  }
}

/// All of the text read from its front, then cut.
std::string_view trimmedFromTheFront(std::string_view text, const NSCharacterSet& set) {
  std::size_t begin = text.size(), end = 0;
  for (std::size_t at = 0; at < text.size();) {
    const UTF8Character character = firstUTF8Character(text.substr(at));
    if (!set.longCharacterIsMember(character.codePoint)) {
      begin = std::min(begin, at);
      end = at + character.length;
    }
    at += character.length;
  }
  return begin < end ? text.substr(begin, end - begin) : std::string_view();
}

TEST(NSStringTrimming, EndsWhereAReadingFromTheFrontDoes) {
  constexpr std::string_view kBytes = "a /\x80\xBF\xC2\xA0\xE2\x82\xAC\xF0\x9F\x98\xED\xFF";
  std::mt19937 random(12);
  const auto set = NSCharacterSet::characterSetWithCharactersInString(" /\u00A0€\uFFFD😀");
  for (int round = 0; round < 200'000; ++round) {
    std::string text(random() % 9, ' ');
    for (char& byte : text) byte = kBytes[random() % kBytes.size()];
    ASSERT_EQ(stringByTrimmingCharactersInSet(text, *set), trimmedFromTheFront(text, *set)) << text;
  }
}

}  // namespace
}  // namespace ORLFoundation
