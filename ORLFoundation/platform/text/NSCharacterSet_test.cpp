
#include <ORLFoundation/platform/text/NSCharacterSet.h>

#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using NamedSet = const std::shared_ptr<NSCharacterSet>& (*)();

struct SetCase {
  std::string_view name;
  NamedSet set;
  std::u32string_view members, strangers;
};
const SetCase kSetCases[] = {
    {"Whitespace", NSCharacterSet::whitespaceCharacterSet, U"\t \u00A0\u2003\u200B\u3000",
     U"\n\r\u2028a"},
    {"Newline", NSCharacterSet::newlineCharacterSet, U"\n\v\f\r\u0085\u2028\u2029", U"\t a"},
    {"WhitespaceAndNewline", NSCharacterSet::whitespaceAndNewlineCharacterSet, U"\t\n \u3000",
     U"a_"},
    {"DecimalDigit", NSCharacterSet::decimalDigitCharacterSet, U"09\u0661\U0001D7D9",
     U"a\u00B2\u2160"},
    {"Letter", NSCharacterSet::letterCharacterSet, U"a\u00C9\u65E5\u0301\U00010428", U"1 _"},
    {"LowercaseLetter", NSCharacterSet::lowercaseLetterCharacterSet, U"a\u00E9\u00DF", U"A\u01C51"},
    {"UppercaseLetter", NSCharacterSet::uppercaseLetterCharacterSet, U"A\u00C9\u01C5", U"a1"},
    {"CapitalizedLetter", NSCharacterSet::capitalizedLetterCharacterSet, U"\u01C5", U"Aa"},
    {"Alphanumeric", NSCharacterSet::alphanumericCharacterSet, U"a1\u00B2\u2160\u0301", U" -"},
    {"NonBase", NSCharacterSet::nonBaseCharacterSet, U"\u0301\u20DD\u093E", U"a1"},
    {"Decomposable", NSCharacterSet::decomposableCharacterSet, U"\u00E9\uAC00", U"e\uFB01"},
    {"Punctuation", NSCharacterSet::punctuationCharacterSet, U"!-\u201C", U"$+a"},
    {"Symbol", NSCharacterSet::symbolCharacterSet, U"$+\u20AC", U"!a"},
    {"Control", NSCharacterSet::controlCharacterSet, U"\0\x7F\u00AD\u200D", U" a"},
    {"Illegal", NSCharacterSet::illegalCharacterSet, U"\u0378\uFFFF\U0010FFFF",
     U"a\U0001F600\uE000"},
};

TEST(NSCharacterSet, NamedSetsHoldTheirCharacters) {
  for (const SetCase& row : kSetCases) {
    for (const char32_t member : row.members)
      EXPECT_TRUE(row.set()->longCharacterIsMember(member))
          << row.name << std::hex << ' ' << +member;
    for (const char32_t stranger : row.strangers)
      EXPECT_FALSE(row.set()->longCharacterIsMember(stranger))
          << row.name << std::hex << ' ' << +stranger;
  }
}

TEST(NSCharacterSet, HoldsEachCharacterOfASCIIThatItWasMadeOf) {
  for (char32_t member = 0; member < 0x80; ++member) {
    const std::string text(1, static_cast<char>(member));
    const auto set = NSCharacterSet::characterSetWithCharactersInString(text);
    const auto inverted = set->invertedSet();
    for (char32_t character = 0; character <= 0x80; ++character) {
      ASSERT_EQ(set->longCharacterIsMember(character), character == member);
      ASSERT_EQ(inverted->longCharacterIsMember(character), character != member);
    }
  }
}

TEST(NSCharacterSet, HoldsNothingBeyondTheLastCodePoint) {
  EXPECT_FALSE(NSCharacterSet::illegalCharacterSet()->longCharacterIsMember(0x110000));
  EXPECT_FALSE(
      NSCharacterSet::letterCharacterSet()->invertedSet()->longCharacterIsMember(0xFFFFFFFF));
}

TEST(NSCharacterSet, IsMadeOfTheCharactersOfAText) {
  const auto set = NSCharacterSet::characterSetWithCharactersInString("aé😀\xFF");
  for (const char32_t member : {U'a', U'\u00E9', U'\U0001F600', U'\uFFFD'})
    EXPECT_TRUE(set->longCharacterIsMember(member));
  EXPECT_FALSE(set->longCharacterIsMember(U'b'));
  EXPECT_FALSE(NSCharacterSet::characterSetWithCharactersInString("")->longCharacterIsMember(0));
}

TEST(NSCharacterSet, TakesInTheMembersOfAnother) {
  const auto set = NSCharacterSet::characterSetWithCharactersInString("ab");
  const auto other = NSCharacterSet::characterSetWithCharactersInString("b😀");
  EXPECT_TRUE(set->setByAddingCharactersOfSet(other.get())
                  ->isEqual(NSCharacterSet::characterSetWithCharactersInString("ab😀").get()));
  EXPECT_TRUE(set->setByAddingCharactersOfSet(nullptr)->isEqual(set.get()));
  EXPECT_FALSE(set->longCharacterIsMember(U'\U0001F600'));
}

TEST(NSCharacterSet, IsInverted) {
  const auto inverted = NSCharacterSet::characterSetWithCharactersInString("a")->invertedSet();
  EXPECT_FALSE(inverted->longCharacterIsMember(U'a'));
  EXPECT_TRUE(inverted->longCharacterIsMember(U'b'));
  EXPECT_TRUE(inverted->invertedSet()->isEqual(
      NSCharacterSet::characterSetWithCharactersInString("a").get()));
}

TEST(NSCharacterSet, EqualsBySameMembers) {
  const auto set = NSCharacterSet::characterSetWithCharactersInString("ab");
  const auto same = NSCharacterSet::characterSetWithCharactersInString("bab");
  EXPECT_TRUE(set->isEqual(same.get()));
  EXPECT_EQ(set->hash(), same->hash());
  EXPECT_FALSE(set->isEqual(NSCharacterSet::letterCharacterSet().get()));
  EXPECT_FALSE(set->isEqual(nullptr));
  EXPECT_EQ(set->copy(), set);
}

}  // namespace
}  // namespace ORLFoundation
