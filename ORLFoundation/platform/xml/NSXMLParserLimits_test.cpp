#include <ORLFoundation/platform/xml/NSXMLParserLimits.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/stream/NSInputStream.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/platform/xml/NSXMLParser_testing.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <tests/support/ProcessorTime.h>

#include <algorithm>
#include <string>

namespace ORLFoundation {
namespace {

std::string nested(std::size_t depth) { return times("<a>", depth) + times("</a>", depth); }

TEST(NSXMLParserLimits, CountOpenElements) {
  EXPECT_EQ(codeUnder({}, nested(2048)), 0);
  EXPECT_EQ(codeUnder({}, nested(2049)), NSXMLParserInternalError);
  EXPECT_EQ(codeUnder({.elementDepth = 3}, "<a><b><c/></b><b><c/></b></a>"), 0);
  EXPECT_EQ(codeUnder({.elementDepth = 2}, "<a><b/><b><c/></b></a>"), NSXMLParserInternalError);
  EXPECT_EQ(codeUnder({.elementDepth = 0}, "<a/>"), NSXMLParserInternalError);
  EXPECT_EQ(codeUnder({.elementDepth = 100'000}, nested(100'000)), 0);
  EXPECT_EQ(errorOf("\n" + times("<a>", 2049)), "1 at 2:6147");
}

TEST(NSXMLParserLimits, CountOpenElementsOfEntities) {
  const std::string document = "<!DOCTYPE a [<!ENTITY e '<b><c/></b>'>]><a>&e;</a>";
  EXPECT_EQ(codeUnder({.elementDepth = 3}, document), 0);
  EXPECT_EQ(codeUnder({.elementDepth = 2}, document), NSXMLParserInternalError);
}

TEST(NSXMLParserLimits, CountWhatEntitiesExpandTo) {
  const std::string text(100, 'x');
  const std::string head = "<!DOCTYPE a [<!ENTITY e '" + text + "'>]>";
  // A declaration counts once, and each reference again, with 16 for itself.
  EXPECT_EQ(codeUnder({.entityExpansion = 10 * 116}, head + "<a>" + times("&e;", 9) + "</a>"), 0);
  EXPECT_EQ(codeUnder({.entityExpansion = 10 * 116}, head + "<a>" + times("&e;", 10) + "</a>"),
            NSXMLParserEntityRefLoopError);
  EXPECT_EQ(codeUnder({.entityExpansion = 0}, "<a>&amp;&#65;</a>"), 0) << "these are no entities";
}

TEST(NSXMLParserLimits, CountEmptyEntities) {
  const std::string head = "<!DOCTYPE a [<!ENTITY e ''>]><a>";
  EXPECT_EQ(codeUnder({}, head + times("&e;", 1000) + "</a>"), 0);
  EXPECT_EQ(codeUnder({}, head + times("&e;", 100'000) + "</a>"), NSXMLParserEntityRefLoopError);
}

TEST(NSXMLParserLimits, CountTheBytesOfTexts) {
  const NSXMLParserLimits limits{.textLength = 1000};
  const std::string fits(1000, 'x');
  const std::string tooLong(1001, 'x');
  EXPECT_EQ(codeUnder(limits, "<a>" + fits + "<b/>" + fits + "</a>"), 0);
  EXPECT_EQ(codeUnder(limits, "<a>" + tooLong + "</a>"), NSXMLParserInternalError);
  EXPECT_EQ(codeUnder(limits, "<a>" + fits + "<!-- -->x</a>"), NSXMLParserInternalError);
  EXPECT_EQ(codeUnder(limits, "<a><![CDATA[" + tooLong + "]]></a>"), NSXMLParserInternalError);
  EXPECT_EQ(codeUnder(limits, "<a b='" + fits + "'/>"), 0);
  EXPECT_EQ(codeUnder(limits, "<a b='" + tooLong + "'/>"), NSXMLParserInternalError);
}

TEST(NSXMLParserLimits, ArePassedByWhoRaisesThem) {
  const std::string large(20'000'000, 'x');
  const NSXMLParserLimits raised{.textLength = 30'000'000};
  EXPECT_EQ(codeUnder(raised, "<a>" + large + "</a>"), 0);
  EXPECT_EQ(codeUnder(raised, "<a b='" + large + "'/>"), 0);
  EXPECT_EQ(codeUnder({}, "<a>" + large + "</a>"), NSXMLParserInternalError);
  EXPECT_EQ(codeUnder({}, "<a b='" + large + "'/>"), NSXMLParserInternalError);
}

TEST(NSXMLParserLimits, OfTheProcessHoldForNewParsers) {
  EXPECT_EQ(NSXMLParserCurrentLimits().elementDepth, 2048U);
  EXPECT_EQ(NSXMLParserCurrentLimits().entityExpansion, 1'000'000U);
  EXPECT_EQ(NSXMLParserCurrentLimits().textLength, 10'000'000U);
  EXPECT_EQ(NSXMLParserCurrentLimits().namesLength, 1'000'000U);
  NSXMLParser before(NSData(std::string_view("<a><b/></a>")));
  const Replaced limits(NSSetXMLParserLimits, NSXMLParserLimits{.elementDepth = 1});
  NSXMLParser after(NSData(std::string_view("<a><b/></a>")));
  EXPECT_EQ(NSXMLParserCurrentLimits().elementDepth, 1U);
  EXPECT_EQ(before.limits().elementDepth, 2048U);
  EXPECT_EQ(after.limits().elementDepth, 1U);
  EXPECT_TRUE(before.parse());
  EXPECT_FALSE(after.parse());
}

/// Gives an opening and then one text for ever.
class Endless : public NSInputStream {
 public:
  Endless(std::string opening, std::string text)
      : opening_(std::move(opening)), text_(std::move(text)) {}
  NSInteger read(std::span<std::uint8_t> buffer) override {
    const std::string& from = isOpen_ ? text_ : opening_;
    isOpen_ = true;
    const std::size_t count = std::min(from.size(), buffer.size());
    std::copy_n(from.begin(), count, buffer.begin());
    return static_cast<NSInteger>(count);
  }

 private:
  std::string opening_;
  std::string text_;
  bool isOpen_ = false;
};

struct BombCase {
  const char* name;
  std::shared_ptr<NSInputStream> stream;
  NSInteger code;
};

std::shared_ptr<NSInputStream> over(const std::string& document) {
  return NSInputStream::initWithData(NSData(std::string_view(document)));
}

std::string laughs(std::string_view reference, std::string_view mark) {
  std::string text = "<!DOCTYPE a [<!ENTITY " + std::string(mark) + "l0 'ha'>";
  for (int i = 1; i < 30; ++i) {
    const std::string inner = std::string(reference) + "l" + std::to_string(i - 1) + ";";
    text += "<!ENTITY " + std::string(mark) + "l" + std::to_string(i) + " '" + times(inner, 10) +
            "'>\n";
  }
  return text;
}

/// Kilobytes of memory that the process has held at most.
long peak() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

TEST(NSXMLParserLimits, EndBombsSoonAndInLittleMemory) {
  const std::string quadratic = "<!DOCTYPE a [<!ENTITY e '" + std::string(50'000, 'x') + "'>]>";
  std::string names = "<a>";
  for (int i = 0; i < 500'000; ++i) names += "<n" + std::to_string(i) + "/>";
  const BombCase rows[] = {
      {"Laughs", over(laughs("&", "") + "]><a>&l29;</a>"), NSXMLParserEntityRefLoopError},
      {"LaughsInAttribute", over(laughs("&", "") + "]><a b='&l29;'/>"),
       NSXMLParserEntityRefLoopError},
      {"LaughsInDefault", over(laughs("&", "") + "<!ATTLIST a b CDATA '&l29;'>]><a/>"),
       NSXMLParserEntityRefLoopError},
      {"LaughsInTheSmall",
       over("<!DOCTYPE a [<!ENTITY e '&f;&f;'><!ENTITY f '&g;&g;'><!ENTITY g ''>]><a>" +
            times("&e;", 100'000) + "</a>"),
       NSXMLParserEntityRefLoopError},
      {"Quadratic", over(quadratic + "<a>" + times("&e;", 100'000) + "</a>"),
       NSXMLParserEntityRefLoopError},
      {"QuadraticInAttributes", over(quadratic + "<a b='" + times("&e;", 100'000) + "'/>"),
       NSXMLParserEntityRefLoopError},
      {"Depth", std::make_shared<Endless>("<a>", times("<b>", 1000)), NSXMLParserInternalError},
      {"Text", std::make_shared<Endless>("<a>", std::string(32'768, 'x')),
       NSXMLParserInternalError},
      {"Quoted", std::make_shared<Endless>("<a><![CDATA[", std::string(32'768, 'x')),
       NSXMLParserInternalError},
      {"Attribute", std::make_shared<Endless>("<a b='", std::string(32'768, 'x')),
       NSXMLParserInternalError},
      {"Comment", std::make_shared<Endless>("<a><!-- ", std::string(32'768, 'x')),
       NSXMLParserInternalError},
      {"Instruction", std::make_shared<Endless>("<a><?p ", std::string(32'768, 'x')),
       NSXMLParserInternalError},
      {"Subset", std::make_shared<Endless>("<!DOCTYPE a [", std::string(32'768, ' ')),
       NSXMLParserInternalError},
      {"Names", over(names), 2},
      {"Name", std::make_shared<Endless>("<a", std::string(32'768, 'x')), NSXMLParserInternalError},
  };
  const long before = peak();
  for (const BombCase& row : rows) {
    NSXMLParser parser(row.stream);
    const double seconds =
        orlftest::processorSecondsOf([&] { EXPECT_FALSE(parser.parse()) << row.name; });
    ASSERT_NE(parser.parserError(), nullptr) << row.name;
    EXPECT_EQ(parser.parserError()->code(), row.code)
        << row.name << ": " << parser.parserError()->localizedDescription();
    EXPECT_LT(seconds, 5) << row.name;
  }
  // A sanitizer holds on to memory that was given back.
  EXPECT_LT(peak() - before, orlftest::kSlowdown > 1 ? 800'000 : 200'000);
}

}  // namespace
}  // namespace ORLFoundation
