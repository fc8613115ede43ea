#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser.h>

#include <ORLFoundation/platform/defaults/NSUserDefaults.h>
#include <ORLFoundation/platform/defaults/NSUserDefaultsStore.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserIgnoreFragmentHandler.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;

TEST_F(Fragments, RefuseAnUnknownElementWithoutAWordMore) {
  EXPECT_FALSE(parse("<x/>"));
  EXPECT_EQ(error_->domain(), NSXMLParserErrorDomain);
  EXPECT_EQ(code(), 86);
  EXPECT_EQ(error_->userInfo()->count(), 0U);
  EXPECT_TRUE(parser_->fragmentHandlerStack().empty());
  EXPECT_THAT(log_.lines(), ElementsAre("fragementErrorOccurred: " + error_->description()));
}

TEST_F(Fragments, LogSkippedElementsWhereADefaultAsksForIt) {
  parser_->setUnhandledElementBehavior(1);
  EXPECT_TRUE(parse("<r><x/></r>"));
  EXPECT_TRUE(log_.lines().empty());
  const NSStandardUserDefaultsInMemory defaults;
  NSUserDefaults::standardUserDefaults()->setBool(true, "ORLFXMLParserLogging");
  EXPECT_TRUE(parse("<r><x><y/></x></r>"));
  EXPECT_THAT(log_.lines(), ElementsAre("Unhandled element: x")) << "y is the skipping one's";
}

TEST_F(Fragments, SkipWholeElements) {
  for (const std::int32_t behavior : {1, 3, -1, 77}) {
    root_->unhandled.clear();
    root_->claims["b"] = inner_;
    parser_->setUnhandledElementBehavior(behavior);
    std::shared_ptr<ORLFXMLParserFragmentHandler> above;
    EXPECT_TRUE(parse("<r><x>1<b>2</b>3</x></r>")) << behavior;
    EXPECT_THAT(root_->unhandled, ElementsAre("x:1", "b:2", "x:3")) << behavior;
  }
}

TEST_F(Fragments, SkipTagsAlone) {
  root_->claims["b"] = inner_;
  parser_->setUnhandledElementBehavior(2);
  std::shared_ptr<ORLFXMLParserFragmentHandler> above;
  inner_->onStart = [&](std::string_view) {
    above = inner_->parent();
    EXPECT_EQ(parser_->fragmentHandlerStack().size(), 4U);
    const auto& skipping = parser_->fragmentHandlerStack()[2];
    EXPECT_EQ(skipping->className(), "ORLFXMLParserIgnoreFragmentHandler");
    EXPECT_EQ(parser_->parentFragmentHandlerForHandler(skipping), root_);
    EXPECT_EQ(parser_->parentFragmentHandlerForHandler(inner_), root_);
    return nullptr;
  };
  EXPECT_TRUE(parse("<r><x><y><b>2</b></y></x></r>"));
  EXPECT_EQ(above, root_);
  EXPECT_EQ(inner_->lastContent, "2");
}

TEST_F(Fragments, SkipRootsWithoutAParent) {
  parser_->setUnhandledElementBehavior(1);
  EXPECT_TRUE(parse("<x>1<y>2</y></x>"));
  parser_->setUnhandledElementBehavior(2);
  EXPECT_TRUE(parse("<x>1<r>2</r></x>"));
  EXPECT_EQ(root_->lastContent, "2");
}

struct WhitespaceCase {
  const char* name;
  bool ignorable;
  bool unhandled;
  std::string own;      // of an element's own whitespace
  std::string skipped;  // of a skipped sub-element's
};
const WhitespaceCase kWhitespace[] = {
    {"Neither", false, false, "", ""},
    {"Ignorable", true, false, "\n", ""},
    // Whitespace of a skipped element crosses over to characters.
    {"Unhandled", false, true, "", "\t"},
    {"Both", true, true, "\n", "\t"},
};

TEST_F(Fragments, TellWhitespaceAndItsCrossing) {
  constexpr std::string_view own = "<!DOCTYPE r [<!ELEMENT r (b)>]><r>\n</r>";
  constexpr std::string_view skipped =
      "<!DOCTYPE r [<!ELEMENT r (x)><!ELEMENT x (y)>]><r><x>\t<y/></x></r>";
  parser_->setUnhandledElementBehavior(1);
  for (const WhitespaceCase& row : kWhitespace) {
    root_->setIncludeIgnorableWhitespace(row.ignorable);
    root_->setIncludeUnhandledSubElementContent(row.unhandled);
    EXPECT_TRUE(parse(own));
    EXPECT_EQ(root_->lastContent, row.own) << row.name;
    root_->unhandled.clear();
    EXPECT_TRUE(parse(skipped));
    EXPECT_EQ(root_->lastContent, row.skipped) << row.name;
    EXPECT_THAT(root_->unhandled, ElementsAre("x:\t")) << row.name;
  }
}

TEST_F(Fragments, WhitespaceOperationOfAContentHandlerNeedsBothFlags) {
  for (const WhitespaceCase& row : kWhitespace) {
    ORLFXMLParserContentHandler handler;
    handler.setIncludeIgnorableWhitespace(row.ignorable);
    handler.setIncludeUnhandledSubElementContent(row.unhandled);
    handler.beginFragmentWithParent(nullptr, nullptr);
    handler.unhandledSubElementFoundIgnorableWhitespace("x", "\t");
    EXPECT_EQ(handler.content(), row.ignorable && row.unhandled ? "\t" : "") << row.name;
  }
}

TEST_F(Fragments, ASkippingHandlerIsNobodysParent) {
  const auto skipping = std::make_shared<ORLFXMLParserIgnoreFragmentHandler>(true);
  skipping->beginFragmentWithParent(root_, parser_);
  const auto second = std::make_shared<ORLFXMLParserIgnoreFragmentHandler>(true);
  second->beginFragmentWithParent(skipping, parser_);
  EXPECT_EQ(second->logicalParent(), root_);
  parser_->pushFragmentHandler(root_);
  parser_->pushFragmentHandler(skipping);
  EXPECT_EQ(parser_->parentFragmentHandlerForHandler(inner_), root_);
  EXPECT_EQ(parser_->parentFragmentHandlerForHandler(skipping), root_);
  skipping->endFragment();
  EXPECT_EQ(skipping->logicalParent(), nullptr);
  EXPECT_EQ(parser_->parentFragmentHandlerForHandler(skipping), root_) << "by its place then";
  EXPECT_EQ(parser_->parentFragmentHandlerForHandler(inner_), nullptr);
  EXPECT_EQ(skipping->subFragmentHandlerForElementName("b"), nullptr);
  EXPECT_EQ(skipping->foundCharacters("x"), nullptr);
  EXPECT_EQ(skipping->foundIgnorableWhitespace(" "), nullptr);
}

TEST_F(Fragments, ASkippingHandlerAsksWhatItsParentTakes) {
  class Deaf : public ORLFXMLParserFragmentHandlerBase {
   public:
    bool hears = false;
    std::vector<std::string> texts;
    [[nodiscard]] bool takesUnhandledCharacters() const override { return hears; }
    void unhandledSubElementFoundCharacters(std::string_view, std::string_view text) override {
      texts.emplace_back(text);
    }
  };
  const auto deaf = std::make_shared<Deaf>();
  parser_->handlers["d"] = deaf;
  parser_->setUnhandledElementBehavior(1);
  constexpr std::string_view document = "<!DOCTYPE d [<!ELEMENT x (y)>]><d><x> <y/>1</x></d>";
  EXPECT_TRUE(parse(document));
  EXPECT_TRUE(deaf->texts.empty());
  deaf->hears = true;
  EXPECT_TRUE(parse(document));
  EXPECT_THAT(deaf->texts, ElementsAre("1")) << "no whitespace without its own operation";
}

}  // namespace
}  // namespace ORLFoundation
