#include <ORLFoundation/interchange/sgml/ORLFSGMLConversion.h>

#include <ORLFoundation/interchange/sgml/ORLFXMLEntities.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>
#include <ORLFoundation/platform/text/NSScanner.h>
#include <ORLFoundation/platform/text/NSStringEncoding.h>
#include <gtest/gtest.h>
#include <tests/support/ProcessorTime.h>
#include <tests/support/VectorFile.h>

#include <array>
#include <random>
#include <string>

namespace ORLFoundation {
namespace {

using orlftest::disagreement;
using orlftest::Json;

std::string converted(std::string_view text) { return orlfXMLStringConvertedFromSGMLString(text); }
ORLFTagNames orphansOf(std::string_view text) {
  return orlfXMLStringConvertBuildOrphanedTagSet(text);
}
std::optional<std::string> dataTextOf(std::optional<std::string_view> text) {
  const auto data = orlfXMLDataWithSGMLString(text);
  return data ? std::optional(std::string(data->text())) : std::nullopt;
}

std::string checkConversion(const Json& in, const Json& out) {
  const std::string text = in.get<std::string>();
  const auto data = dataTextOf(text);
  const Json got{
      {"orphans", orphansOf(text)}, {"xml", converted(text)}, {"data", orlftest::jsonOrNull(data)}};
  return disagreement(out, got);
}

TEST(SGMLConversion, AgreesWithVectors) {
  orlftest::runJsonVectors("interchange_sgml", {{"sgml", checkConversion}});
}

TEST(SGMLConversion, AgreesWithVectorsOfFiles) {
  orlftest::runJsonVectors("interchange_sgml_files", {{"sgml", checkConversion}});
}

/// The scan for orphans step by step, on the platform's scanner.
ORLFTagNames plainOrphansOf(const std::string& text) {
  const auto& endOfName = *orlfXMLStringConvertEndTagNameCharacterSet();
  const auto nameStart = NSCharacterSet::letterCharacterSet()->setByAddingCharactersInString(":_");
  NSScanner scanner(text);
  ORLFTagNames names;
  while (!scanner.isAtEnd()) {
    scanner.scanUpToString("<");
    scanner.scanString("<");
    const bool isEnd = scanner.scanString("/");
    std::string_view name;
    if (!scanner.scanUpToCharactersFromSet(endOfName, &name)) continue;
    std::string_view tag = name;
    if (!scanner.scanString(">")) {
      tag = {};
      scanner.scanUpToString(">", &tag);
    }
    NSScanner first{std::string(name)};
    first.setCharactersToBeSkipped(nullptr);
    if (tag.ends_with('/') || isEnd)
      names.erase(std::string(name));
    else if (first.scanCharactersFromSet(*nameStart))
      names.emplace(name);
  }
  return names;
}

/// The repair of orphans step by step, on the platform's scanner.
std::string plainlyFixed(const std::string& text, const ORLFTagNames& orphans) {
  const auto& endOfName = *orlfXMLStringConvertEndTagNameCharacterSet();
  NSScanner scanner(text);
  scanner.setCharactersToBeSkipped(nullptr);
  std::string result;
  std::optional<std::string> open;
  for (bool isFirst = true; !scanner.isAtEnd(); isFirst = false) {
    std::string_view found;
    if (scanner.scanUpToString("<", &found))
      result += isFirst ? std::string(found)
                        : orlfStringByEscapingStandardXMLEntities(
                              orlfStringByUnescapingStandardXMLEntities(found));
    if (open) {
      const std::string endTag = "</" + *open + ">";
      scanner.scanString(endTag);
      std::size_t place = result.size();
      for (bool isMoving = true; isMoving;) {
        isMoving = false;
        for (const std::string_view end :
             {"\n", "\v", "\f", "\r", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"}) {
          if (!std::string_view(result).substr(0, place).ends_with(end)) continue;
          place -= end.size();
          isMoving = true;
        }
      }
      result.insert(place, endTag);
      open.reset();
    }
    if (!scanner.scanString("<")) {
      open.reset();
      continue;
    }
    result += '<';
    if (scanner.scanString("/")) {
      result += '/';
      open.reset();
    } else if (scanner.scanUpToCharactersFromSet(endOfName, &found)) {
      result += found;
      open = orphans.contains(found) ? std::optional(std::string(found)) : std::nullopt;
    } else {
      open.reset();
    }
    if (scanner.scanUpToString(">", &found)) result += found;
    result += '>';
    scanner.scanString(">");
  }
  return result;
}

TEST(SGMLConversion, AgreesWithTheStepsOnRandomTexts) {
  constexpr std::array<std::string_view, 30> kPieces{
      "<A>",      "<B>",        "<C>",  "</A>",
      "</B>",     "</C>",       "<A/>", "<B />",
      "<",        ">",          "/",    "</",
      "<?xml ",   "<!-- x -->", "\n",   "\r\n",
      " ",        "\t",         "text", "&",
      "&amp;",    "AT&T",       "é",    "\xE2\x80\xA8",
      "\xC2\x85", "<É>",        "<:x>", "<_y a=\"1\">",
      "\"",       "\xCC\xB8"};
  std::mt19937 random(31);
  std::uniform_int_distribution<std::size_t> piece(0, kPieces.size() - 1);
  std::uniform_int_distribution<int> length(0, 40);
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (int left = length(random); left > 0; --left) text += kPieces[piece(random)];
    const ORLFTagNames orphans = plainOrphansOf(text);
    ASSERT_EQ(orphansOf(text), orphans) << Json(text);
    ASSERT_EQ(converted(text), plainlyFixed(text, orphans)) << Json(text);
  }
}

TEST(SGMLConversion, ClosesOrphansBeforeTheirLineBreaks) {
  EXPECT_EQ(orphansOf("<A><B>1\n<C>2\n</A>"), (ORLFTagNames{"B", "C"}));
  EXPECT_EQ(converted("<A><B>1\n<C>2\n</A>"), "<A><B>1</B><C>2</C></A>");
}

TEST(SGMLConversion, NeverClosesATagWithoutAName) {
  EXPECT_EQ(orlfXMLStringFromSGMLStringByFixingOrphanTags("<>x<A>y<>", {"", "A"}), "<>x<A>y</A><>");
}

TEST(SGMLConversion, KeepsTheOneEndTagOfAnEarlierInstance) {
  EXPECT_EQ(orphansOf("<A>x</A><A>y"), (ORLFTagNames{"A"}));
  EXPECT_EQ(converted("<A>x</A><A>y"), "<A>x</A><A>y</A>");
  EXPECT_EQ(converted("<A>x</A><A>"), "<A>x</A><A>");
  EXPECT_EQ(converted("<A>x</A><A>y<B/>"), "<A>x</A><A>y</A><B/>");
}

TEST(SGMLConversion, KnowsNoOrphansAmongClosedTagsAndDeclarations) {
  EXPECT_TRUE(orphansOf("<B/>").empty());
  EXPECT_TRUE(orphansOf("<B x=\"1\" />").empty());
  EXPECT_TRUE(orphansOf("<?xml version=\"1.0\"?><!DOCTYPE x><1a>").empty());
  EXPECT_EQ(converted("<?xml version=\"1.0\"?><A>1<B/>"), "<?xml version=\"1.0\"?><A>1</A><B/>");
}

TEST(SGMLConversion, EscapesBareAmpersandsAndDropsTabsButBeforeTheFirstTag) {
  EXPECT_EQ(converted("\t&\n<A>AT&T &amp; \t co</A>\t"), "\t&\n<A>AT&amp;T &amp;  co</A>");
}

TEST(SGMLConversion, ClosesATagThatTheEndCutsOff) {
  EXPECT_EQ(converted("<A>x</A"), "<A>x</A>");
  EXPECT_EQ(converted("<"), "<>");
  EXPECT_EQ(converted("a<>b"), "a<>b");
}

TEST(SGMLConversion, EndsWhateverTheTextHolds) {
  for (const std::string_view text : {"<\xCC\xB8", "<\xCC\xB8>", "<>", "<<<", "</>", "< >", "<"})
    EXPECT_EQ(converted(text), plainlyFixed(std::string(text), plainOrphansOf(std::string(text))));
}

TEST(SGMLConversion, GivesDataFromTheFirstTagOn) {
  EXPECT_EQ(dataTextOf("OFXHEADER:100\n\n<OFX><A>1\n</OFX>"), "<OFX><A>1</A></OFX>");
  EXPECT_EQ(dataTextOf("no tag"), std::nullopt);
  EXPECT_EQ(dataTextOf(std::nullopt), std::nullopt);
  EXPECT_EQ(dataTextOf("<A>\xFF</A>"), "<A>\uFFFD</A>");
}

TEST(SGMLConversion, ReadsDataInItsEncoding) {
  std::shared_ptr<const NSError> error;
  const NSData latin(std::string_view("x<A>caf\xE9</A>"));
  const auto xml =
      orlfXMLDataConvertedFromSGMLEncoding(latin, NSWindowsCP1252StringEncoding, &error);
  ASSERT_TRUE(xml.has_value());
  EXPECT_EQ(xml->text(), "<A>café</A>");
  EXPECT_EQ(orlfXMLDataConvertedFromSGMLEncoding(latin, NSUTF8StringEncoding, &error),
            std::nullopt);
  EXPECT_EQ(orlfXMLDataConvertedFromSGMLEncoding(latin, 9999, &error), std::nullopt);
  EXPECT_EQ(error, nullptr);
}

TEST(SGMLConversion, EndsNamesAtWhiteSpaceLineEndsAndTheTagsEnd) {
  const auto& set = *orlfXMLStringConvertEndTagNameCharacterSet();
  for (const char32_t character : {U'>', U' ', U'\n', U'\u00A0', U'\u2028'})
    EXPECT_TRUE(set.longCharacterIsMember(character));
  for (const char32_t character : {U'/', U'<', U'a'})
    EXPECT_FALSE(set.longCharacterIsMember(character));
}

TEST(SGMLConversion, TakesAMillionTagsInTimeThatGrowsWithThem) {
  std::string text;
  for (int i = 0; i < 1'000'000; ++i) text += "<A>";
  const double seconds =
      orlftest::processorSecondsOf([&] { EXPECT_EQ(converted(text).size(), 1'000'000U * 7 - 4); });
  EXPECT_LT(seconds, 10);
}

}  // namespace
}  // namespace ORLFoundation
