// Where start tags begin.
#include <ORLFoundation/platform/xml/NSXMLParser.h>

#include <ORLFoundation/platform/xml/internal/TagPlace.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using Lines = std::vector<std::string>;

/// "a 1:1" for each start tag.
class TagPlaces final : public NSXMLParserDelegate {
 public:
  Lines places;

  void parserDidStartElement(NSXMLParser& parser, const NSXMLStartTag& tag) override {
    places.push_back(std::string(tag.didStartElement) + " " +
                     std::to_string(parser.startTagLineNumber()) + ":" +
                     std::to_string(parser.startTagColumnNumber()));
  }
};

Lines placesIn(const std::string& document) {
  const auto places = std::make_shared<TagPlaces>();
  NSXMLParser parser{NSData(std::string_view(document))};
  parser.setDelegate(places);
  EXPECT_TRUE(parser.parse()) << document;
  return places->places;
}

TEST(NSXMLParserStartTag, IsToldOfWithItsBeginning) {
  EXPECT_EQ(placesIn("<a/>"), Lines{"a 1:1"});
  EXPECT_EQ(placesIn("<?xml version='1.0'?>\n<a>\n  <b x='1'/><b\n y='2'\n></b> <c/>\n</a>"),
            (Lines{"a 2:1", "b 3:3", "b 3:13", "c 5:7"}));
  EXPECT_EQ(placesIn("<a><!-- <b> --><b t='>/>'/></a>"), (Lines{"a 1:1", "b 1:16"}));
}

TEST(NSXMLParserStartTag, OfAnEntityStandsBehindTheReference) {
  EXPECT_EQ(placesIn("<!DOCTYPE a [<!ENTITY e '<b/><b/>'>]>\n<a>\n<c/>&e;</a>"),
            (Lines{"a 2:1", "c 3:1", "b 3:8", "b 3:8"}));
}

TEST(NSXMLParserStartTag, HasItsPlaceInLongDocumentsOfOneLineAndOfMany) {
  for (const std::string between : {"", "\n", "\n   "}) {
    std::string document = "<a>";
    Lines expected = {"a 1:1"};
    std::size_t line = 1;
    std::size_t lineBegin = 0;
    for (int i = 0; i < 20'000; ++i) {
      document += between;
      if (!between.empty()) {
        ++line;
        lineBegin = document.size() - between.size() + 1;
      }
      expected.push_back("b " + std::to_string(line) + ":" +
                         std::to_string(document.size() - lineBegin + 1));
      document += "<b name='" + std::to_string(i) + "'/>";
    }
    EXPECT_EQ(placesIn(document + "</a>"), expected);
  }
}

TEST(NSXMLParserStartTag, MeansNothingOutsideOfAnEventAndDoesNoHarm) {
  NSXMLParser parser{NSData(std::string_view("<a/>"))};
  EXPECT_EQ(parser.startTagLineNumber(), 0);
  EXPECT_TRUE(parser.parse());
  EXPECT_EQ(parser.startTagLineNumber(), parser.lineNumber());
  EXPECT_EQ(parser.startTagColumnNumber(), parser.columnNumber());
}

std::string beginning(std::string_view read, bool whole, internal::xml::TagPlace end) {
  const internal::xml::TagPlace place = internal::xml::beginningOfTag(read, whole, end);
  return std::to_string(place.line) + ":" + std::to_string(place.column);
}

TEST(NSXMLParserStartTag, IsFoundInWhatIsLeftOfTheDocument) {
  EXPECT_EQ(beginning("<a", true, {1, 3}), "1:1");
  EXPECT_EQ(beginning("x>\n <a\n", false, {9, 1}), "8:2");
  EXPECT_EQ(beginning("x> <a", false, {9, 105}), "9:103");
  EXPECT_EQ(beginning("x> <a\n", false, {9, 1}), "8:1") << "the line's beginning is lost";
  EXPECT_EQ(beginning("x> <a", false, {9, 1}), "9:1");
  EXPECT_EQ(beginning("\n" + std::string(1000, 'x') + "<a", false, {9, 33}), "9:31")
      << "from the end";
  EXPECT_EQ(beginning("\n" + std::string(1000, 'x') + "<a\n", false, {9, 1}), "8:1001");
  EXPECT_EQ(beginning("a", true, {9, 7}), "9:7") << "there is no tag";
  EXPECT_EQ(beginning("", true, {9, 7}), "9:7");
  EXPECT_EQ(beginning("<a>&e;", true, {9, 7}), "9:7");
}

}  // namespace
}  // namespace ORLFoundation
