
#include <ORLFoundation/platform/language/NLTagger.h>

#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using Tokens = std::vector<std::string>;

/// "text/tag" of each token.
Tokens tokensOf(std::string_view text, NSUInteger options = 0,
                std::optional<NSRange> range = std::nullopt) {
  NLTagger tagger({std::string(NLTagSchemeLexicalClass)});
  tagger.setString(text);
  Tokens tokens;
  tagger.enumerateTagsInRange(
      {.inRange = range, .options = options, .usingBlock = [&](const NLToken& token, bool&) {
         tokens.push_back(std::string(token.text) + "/" + std::string(token.tag));
       }});
  return tokens;
}

constexpr NSUInteger kWordsOnly =
    NLTaggerOmitWhitespace | NLTaggerOmitPunctuation | NLTaggerOmitOther;

TEST(NLTagger, CutsATextIntoAllItsParts) {
  EXPECT_EQ(tokensOf("a, 12€"),
            (Tokens{"a/OtherWord", ",/Punctuation", " /Whitespace", "12/Number", "€/Other"}));
  EXPECT_EQ(tokensOf(""), Tokens());
}

TEST(NLTagger, KnowsTheClosedClasses) {
  EXPECT_EQ(tokensOf("of And up WITH although house", kWordsOnly),
            (Tokens{"of/Preposition", "And/Conjunction", "up/Particle", "WITH/Preposition",
                    "although/Conjunction", "house/OtherWord"}));
}

TEST(NLTagger, JoinsContractions) {
  EXPECT_EQ(tokensOf("don't can’t", kWordsOnly | NLTaggerJoinContractions),
            (Tokens{"don't/OtherWord", "can’t/OtherWord"}));
}

TEST(NLTagger, LeavesOutWhatItIsToldTo) {
  EXPECT_EQ(tokensOf("a, b", NLTaggerOmitWords), (Tokens{",/Punctuation", " /Whitespace"}));
  EXPECT_EQ(tokensOf("a, b", NLTaggerOmitPunctuation | NLTaggerOmitWhitespace),
            (Tokens{"a/OtherWord", "b/OtherWord"}));
}

TEST(NLTagger, StaysInsideARange) {
  EXPECT_EQ(tokensOf("one two three", kWordsOnly, NSRange{5, 3}), (Tokens{"two/OtherWord"}));
  EXPECT_EQ(tokensOf("one two three", kWordsOnly, NSRange{5, 4}),
            (Tokens{"two/OtherWord", "three/OtherWord"}));
  EXPECT_EQ(tokensOf("one", 0, NSRange{3, 0}), Tokens());
  EXPECT_EQ(tokensOf("é😀 two", kWordsOnly, NSRange{4, 3}), (Tokens{"two/OtherWord"}));
}

TEST(NLTagger, TellsRangesInUnits) {
  NLTagger tagger({});
  tagger.setString("😀é b\xFF");
  EXPECT_EQ(tagger.string(), "😀é b\uFFFD");
  std::vector<NSRange> ranges;
  tagger.enumerateTagsInRange(
      {.usingBlock = [&](const NLToken& token, bool&) { ranges.push_back(token.range); }});
  EXPECT_EQ(ranges, (std::vector<NSRange>{{0, 2}, {2, 1}, {3, 1}, {4, 1}, {5, 1}}));
}

TEST(NLTagger, StopsWhenToldTo) {
  NLTagger tagger({});
  tagger.setString("a b c");
  int tokens = 0;
  tagger.enumerateTagsInRange(
      {.usingBlock = [&](const NLToken&, bool& stop) { stop = ++tokens == 2; }});
  EXPECT_EQ(tokens, 2);
}

TEST(NLTagger, WalksInsideAWalk) {
  NLTagger outer({}), inner({});
  outer.setString("a b");
  inner.setString("c d");
  std::string texts;
  outer.enumerateTagsInRange({.usingBlock = [&](const NLToken& token, bool&) {
    texts += token.text;
    inner.enumerateTagsInRange(
        {.usingBlock = [&](const NLToken& other, bool&) { texts += other.text; }});
  }});
  EXPECT_EQ(texts, "ac d c dbc d");
}

TEST(NLTagger, RaisesForWhatItDoesNotKnow) {
  EXPECT_THROW(NLTagger({"Language"}), NSException);
  NLTagger tagger({});
  tagger.setString("abc");
  const auto ignore = [](const NLToken&, bool&) {};
  EXPECT_THROW(tagger.enumerateTagsInRange({.inRange = NSRange{1, 3}, .usingBlock = ignore}),
               NSException);
  EXPECT_THROW(tagger.enumerateTagsInRange({.inRange = NSRange{4, 0}, .usingBlock = ignore}),
               NSException);
  EXPECT_THROW(tagger.enumerateTagsInRange({.scheme = "Lemma", .usingBlock = ignore}), NSException);
}

}  // namespace
}  // namespace ORLFoundation
