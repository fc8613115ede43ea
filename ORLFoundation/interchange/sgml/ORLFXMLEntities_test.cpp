#include <ORLFoundation/interchange/sgml/ORLFXMLEntities.h>

#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <array>
#include <random>
#include <string>
#include <string_view>

namespace ORLFoundation {
namespace {

using orlftest::disagreement;
using orlftest::Json;

std::string escaped(std::string_view text) { return orlfStringByEscapingStandardXMLEntities(text); }
std::string unescaped(std::string_view text) {
  return orlfStringByUnescapingStandardXMLEntities(text);
}

TEST(XMLEntities, AgreeWithVectors) {
  orlftest::runJsonVectors(
      "interchange_entities",
      {{"escape",
        [](const Json& in, const Json& out) {
          return disagreement(out.get<std::string>(), escaped(in.get<std::string>()));
        }},
       {"unescape", [](const Json& in, const Json& out) {
          return disagreement(out.get<std::string>(), unescaped(in.get<std::string>()));
        }}});
}

TEST(XMLEntities, StandForFourCharactersAndNotForTheApostrophe) {
  EXPECT_EQ(escaped("&<>\"'"), "&amp;&lt;&gt;&quot;'");
  EXPECT_EQ(unescaped("&amp;&lt;&gt;&quot;&apos;&#38;"), "&<>\"&apos;&#38;");
}

TEST(XMLEntities, LoseControlAndUnassignedCharactersAndNoOthers) {
  const auto controls = NSCharacterSet::controlCharacterSet();
  const auto illegal = NSCharacterSet::illegalCharacterSet();
  for (char32_t character = 0; character <= 0x10FFFF; ++character) {
    if (character >= 0xD800 && character <= 0xDFFF) continue;
    if (character < 0x80 &&
        std::string_view("&<>\"").find(static_cast<char>(character)) != std::string_view::npos)
      continue;
    const bool isRemoved =
        controls->longCharacterIsMember(character) || illegal->longCharacterIsMember(character);
    std::string text("a");
    internal::base::appendUTF8(text, character);
    text += 'b';
    ASSERT_EQ(escaped(text), isRemoved ? "ab" : text) << static_cast<std::uint32_t>(character);
  }
}

TEST(XMLEntities, TakeBrokenBytesForTheReplacementCharacter) {
  EXPECT_EQ(escaped("a\xFF<\xE2\x82"), "a\uFFFD&lt;\uFFFD");
}

TEST(XMLEntities, AreFoundBeforeCombiningMarks) {
  EXPECT_EQ(escaped("<\u0338"), "&lt;\u0338");
  EXPECT_EQ(unescaped("&lt;\u0338"), "<\u0338");
}

TEST(XMLEntities, TakeFurtherEntries) {
  const auto more =
      NSDictionary::dictionaryWithEntries({{"'", "&apos;"}, {"<", "&#60;"}, {"", "x"}});
  EXPECT_EQ(orlfStringByEscapingEntities("'<&\t>", more), "&apos;&#60;&amp;&gt;");
  EXPECT_EQ(orlfStringByUnescapingEntities("&apos;&#60;&lt;&gt;", more), "'<&lt;>");
}

TEST(XMLEntities, EscapeTheAmpersandBeforeAllOtherKeys) {
  const auto more = NSDictionary::dictionaryWithEntries({{"a", "&a;"}, {"&", "&#38;"}});
  EXPECT_EQ(orlfStringByEscapingEntities("a&", more), "&a;&#38;");
}

TEST(XMLEntities, TurnAmpersandsBackOnceMoreAtTheEnd) {
  const auto more = NSDictionary::dictionaryWithEntries({{"&", "&#38;"}, {"x&amp;", "&x;"}});
  EXPECT_EQ(orlfStringByUnescapingEntities("&amp;&#38;&x;", more), "&&x&");
}

TEST(XMLEntities, RefuseEntriesThatAreNoTexts) {
  const auto numbers = NSDictionary::dictionaryWithEntries({{"a", 1}});
  EXPECT_THROW(static_cast<void>(orlfStringByEscapingEntities("a", numbers)), NSException);
  EXPECT_THROW(static_cast<void>(orlfStringByUnescapingEntities("a", numbers)), NSException);
}

// Standard texts have a way of their own; an empty table of further entries goes entry by entry.
TEST(XMLEntities, AgreeWithAndWithoutATableOnRandomTexts) {
  constexpr std::array<std::string_view, 18> kPieces{
      "&",  "amp;", "&amp;", "&lt;", "lt;", "&gt;", "&quot;", "quot;", "<",
      "\"", ">",    "x",     "\n",   "é",   "\xE2", "\x7F",   "&am",   "plain text"};
  const auto none = NSDictionary::dictionaryWithEntries({});
  std::mt19937 random(4);
  std::uniform_int_distribution<std::size_t> piece(0, kPieces.size() - 1);
  std::uniform_int_distribution<int> length(0, 12);
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (int left = length(random); left > 0; --left) text += kPieces[piece(random)];
    ASSERT_EQ(unescaped(text), orlfStringByUnescapingEntities(text, none)) << Json(text);
    ASSERT_EQ(escaped(text), orlfStringByEscapingEntities(text, none)) << Json(text);
  }
}

TEST(XMLEntities, WithoutFurtherEntriesAreTheStandardOnes) {
  EXPECT_EQ(orlfStringByEscapingEntities("<", nullptr), "&lt;");
  EXPECT_EQ(orlfStringByUnescapingEntities("&lt;", nullptr), "<");
}

}  // namespace
}  // namespace ORLFoundation
