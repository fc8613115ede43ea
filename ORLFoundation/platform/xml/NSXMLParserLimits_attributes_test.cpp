#include <ORLFoundation/platform/xml/NSXMLParserLimits.h>

#include <ORLFoundation/platform/stream/NSInputStream.h>
#include <ORLFoundation/platform/xml/NSXMLParser_testing.h>
#include <ORLFoundation/platform/xml/internal/AttributeCounter.h>
#include <ORLFoundation/platform/xml/internal/UnfinishedTag.h>
#include <gtest/gtest.h>
#include <tests/support/ProcessorTime.h>

#include <string>
#include <string_view>

namespace ORLFoundation {
namespace {

using internal::xml::AttributeCounter;
using internal::xml::UnfinishedTag;

/// " a0=''" and so on, from a first number on.
std::string attributes(std::size_t count, std::string_view name = "a", std::size_t first = 0) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i)
    text += " " + std::string(name) + std::to_string(first + i) + "='u'";
  return text;
}
std::string defaults(std::size_t count, std::string_view value) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i)
    text += "a" + std::to_string(i) + " CDATA '" + std::string(value) + "' ";
  return text;
}

std::string words(std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += "|n" + std::to_string(i);
  return text;
}

TEST(NSXMLParserLimits, CountTheAttributesOfATag) {
  EXPECT_EQ(NSXMLParserLimits().attributeCount, 1000U);
  EXPECT_EQ(codeUnder({}, "<a" + attributes(1000) + "/>"), 0);
  EXPECT_EQ(codeUnder({}, "<a" + attributes(1001) + "/>"), NSXMLParserInternalError);
  EXPECT_EQ(codeUnder({.attributeCount = 5000}, "<a" + attributes(5000) + "/>"), 0);
  EXPECT_EQ(codeUnder({.attributeCount = 0}, "<a/>"), 0);
  EXPECT_EQ(codeUnder({.attributeCount = 0}, "<a b=''/>"), NSXMLParserInternalError);
  EXPECT_EQ(codeUnder({.attributeCount = 2}, "<a b='' c=''><d b='' c=''/></a>"), 0);
  EXPECT_EQ(errorOf("<a>\n<b" + attributes(1001) + "/></a>"), "1 at 2:8903");
}

TEST(NSXMLParserLimits, CountNamespacesOfAllOpenElements) {
  const NSXMLParserLimits two{.attributeCount = 2};
  EXPECT_EQ(codeUnder(two, "<a xmlns='u' xmlns:p='v'/>"), 0);
  EXPECT_EQ(codeUnder(two, "<a xmlns='u' xmlns:p='v' b=''/>"), NSXMLParserInternalError);
  EXPECT_EQ(codeUnder(two, "<a xmlns='u'><b xmlns:p='v'><c/></b><b xmlns:p='v'/></a>"), 0);
  EXPECT_EQ(codeUnder(two, "<a xmlns='u'><b xmlns:p='v'><c d=''/></b></a>"),
            NSXMLParserInternalError);
  EXPECT_EQ(codeUnder(two, "<a xmlns='u' xmlns:p='' b=''/>"), NSXMLParserInternalError)
      << "prefixes bound to nothing count too";
  EXPECT_EQ(codeUnder(two,
                      "<!DOCTYPE a [<!ENTITY e '<b xmlns:p=\"v\"><c d=\"\"/></b>'>]>"
                      "<a xmlns='u'>&e;</a>"),
            NSXMLParserInternalError);
}

TEST(NSXMLParserLimits, CountTheDefaultAttributesOfAnElement) {
  const NSXMLParserLimits three{.attributeCount = 3};
  const auto document = [](std::string_view declarations) {
    return "<!DOCTYPE a [" + std::string(declarations) + "]><b/>";
  };
  EXPECT_EQ(codeUnder(three, document("<!ATTLIST a " + defaults(3, "") + ">")), 0);
  EXPECT_EQ(codeUnder(three, document("<!ATTLIST a " + defaults(4, "") + ">")),
            NSXMLParserInternalError);
  EXPECT_EQ(codeUnder(three, document("<!ATTLIST a " + defaults(2, "") +
                                      "><!ATTLIST a x CDATA #FIXED '' y (q|r) 'q'>")),
            NSXMLParserInternalError);
  EXPECT_EQ(codeUnder(three, document("<!ATTLIST a " + defaults(3, "") + "><!ATTLIST b " +
                                      defaults(3, "") + ">")),
            0);
  EXPECT_EQ(codeUnder(three, document("<!ATTLIST a " + defaults(3, "") +
                                      " x CDATA #IMPLIED y (q|r) #REQUIRED>")),
            0);
}

TEST(NSXMLParserLimits, CountWhatDefaultAttributesAddToTags) {
  const auto document = [](std::size_t valueLength, std::size_t count) {
    return "<!DOCTYPE a [<!ATTLIST b c CDATA '" + std::string(valueLength, 'x') + "'>]><a>" +
           times("<b/>", count) + "</a>";
  };
  EXPECT_EQ(codeUnder({.entityExpansion = 0}, document(64, 10)), 0) << "so much is free";
  EXPECT_EQ(codeUnder({.entityExpansion = 10}, document(65, 10)), 0);
  EXPECT_EQ(codeUnder({.entityExpansion = 10}, document(65, 11)), NSXMLParserEntityRefLoopError);
  const std::string many = "<!DOCTYPE a [<!ATTLIST b " + defaults(80, "") + ">]><a><b/></a>";
  EXPECT_EQ(codeUnder({.entityExpansion = 36}, many), 0) << "80 * 80 / 64 - 64";
  EXPECT_EQ(codeUnder({.entityExpansion = 35}, many), NSXMLParserEntityRefLoopError);
  // Those that the tag itself has are not the default's.
  EXPECT_EQ(codeUnder({.entityExpansion = 0}, "<!DOCTYPE a [<!ATTLIST a c CDATA '" +
                                                  std::string(65, 'x') + "'>]><a c=''/>"),
            0);
}

TEST(NSXMLParserLimits, EndTagsWithTooManyAttributesSoon) {
  const std::string pairs = attributes(100'000);
  const NSXMLParserLimits longer{.declarationsLength = 10'000'000};
  const struct {
    const char* name;
    std::string document;
    NSInteger code;
    NSXMLParserLimits limits = {};
  } rows[] = {
      {"Attributes", "<a" + pairs + "/>", NSXMLParserInternalError},
      {"Unended", "<a" + pairs, NSXMLParserInternalError},
      {"Namespaces", "<a" + attributes(50'000, "xmlns:p") + "/>", NSXMLParserInternalError},
      {"Entity", "<!DOCTYPE a [<!ENTITY e \"<b" + attributes(60'000) + "/>\">]><a>&e;</a>",
       NSXMLParserInternalError, longer},
      {"Defaults", "<!DOCTYPE a [<!ATTLIST a " + defaults(60'000, "") + ">]><a/>",
       NSXMLParserInternalError, longer},
      {"Declarations", "<!DOCTYPE a [<!ATTLIST a b (n" + words(100'000) + ") 'n'>]><a/>",
       NSXMLParserInternalError},
      {"DeclarationsAgainAndAgain",
       "<!DOCTYPE a [<!ENTITY % p '<!ATTLIST a b (n" + words(8000) + ") \"n\">'>" +
           "<!ENTITY % q '<?q?>'>" + times("%p;%q;", 20) + "]><a/>",
       NSXMLParserEntityRefLoopError},
      {"DefaultsAgainAndAgain",
       "<!DOCTYPE a [<!ATTLIST b " + defaults(1000, "") + ">]><a>" + times("<b/>", 100'000) +
           "</a>",
       NSXMLParserEntityRefLoopError},
      {"LongDefaults",
       "<!DOCTYPE a [<!ATTLIST b c CDATA '" + std::string(500'000, 'x') + "'>]><a>" +
           times("<b/>", 100'000) + "</a>",
       NSXMLParserEntityRefLoopError, longer},
      {"DefaultsInAnEntity",
       "<!DOCTYPE a [<!ATTLIST b " + defaults(1000, "") + "><!ENTITY e '" + times("<b/>", 10'000) +
           "'>]><a>&e;</a>",
       NSXMLParserEntityRefLoopError},
  };
  for (const auto& row : rows) {
    NSInteger code = 0;
    EXPECT_LT(orlftest::processorSecondsOf([&] { code = codeUnder(row.limits, row.document); }), 1)
        << row.name;
    EXPECT_EQ(code, row.code) << row.name;
  }
}

TEST(NSXMLParserLimits, TakeLongValuesForWhatTheyAre) {
  // Each in a tag of several pieces, with what looks like attributes inside of a value.
  const std::string quoted = times("b='' ", 40'000);
  EXPECT_EQ(codeUnder({}, "<a c=\"" + quoted + "\" d='>'/>"), 0);
  EXPECT_EQ(codeUnder({}, "<a c='" + times("=\">\"", 40'000) + "'/>"), 0);
  EXPECT_EQ(codeUnder({}, "<a>" + times("<b c=''/>", 40'000) + quoted + "</a>"), 0);
  EXPECT_EQ(codeUnder({.declarationsLength = 300'000},
                      "<!DOCTYPE a [<!ENTITY e \"" + quoted + "<b c=''/>\">]><a>&e;</a>"),
            0);
}

TEST(NSXMLParserLimits, CountTheBytesOfDeclarations) {
  EXPECT_EQ(NSXMLParserLimits().declarationsLength, 100'000U);
  const auto document = [](std::size_t length) {
    return "<!DOCTYPE a [<!--" + std::string(length, ' ') + "-->]><a/>";
  };
  EXPECT_EQ(codeUnder({}, document(99'000)), 0);
  EXPECT_EQ(codeUnder({}, document(200'000)), NSXMLParserInternalError);
  EXPECT_EQ(codeUnder({.declarationsLength = 200'000}, document(199'000)), 0);
  EXPECT_EQ(codeUnder({.declarationsLength = 200'000}, document(300'000)),
            NSXMLParserInternalError);
}

struct CounterCase {
  std::string_view markup;
  std::size_t most;
};

TEST(AttributeCounter, CountsWhatStandsOutsideOfValues) {
  const CounterCase rows[] = {
      {"", 0},
      {"a='' b=''", 0},
      {"<a b='' c = \"\"", 2},
      {"<a b='='/>", 1},
      {"<a b=\"'=\" c='\"='>", 2},
      {"<a b='' c=''>=====<d e=''>", 2},
      {"<a b=''><c d='' e='' f=''/>", 3},
      {"<!-- \" --><a b='' c=''>", 2},
      {"<!-- ' = ' \" = --><a b='>' c=''>", 2},
  };
  for (const CounterCase& row : rows) {
    for (std::size_t size = 1; size <= row.markup.size() + 1; ++size) {
      AttributeCounter counter;
      for (std::size_t at = 0; at < row.markup.size(); at += size)
        counter.read(row.markup.substr(at, size));
      EXPECT_EQ(counter.most(), row.most) << row.markup << " in " << size;
    }
  }
}

TEST(UnfinishedTag, ReadsEachPieceOnce) {
  UnfinishedTag tag;
  EXPECT_EQ(tag.attributes("<a b='", 7), 1U);
  EXPECT_EQ(tag.attributes("<a b=''", 7), 1U);
  EXPECT_EQ(tag.attributes("<? b='' c=''", 7), 2U) << "what was there is not read again";
  EXPECT_EQ(tag.attributes("<a b='' c='' d=''", 8), 3U) << "another tag";
  EXPECT_EQ(tag.attributes("<a b=''", 8), 1U) << "shorter, and therefore another";
}

}  // namespace
}  // namespace ORLFoundation
