#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserContentHandler.h>

#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserStringPropertyHandler.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

TEST(ORLFXMLParserContentHandler, CollectsOnlyWhileItHasAnElement) {
  ORLFXMLParserContentHandler handler;
  EXPECT_EQ(handler.content(), std::nullopt);
  EXPECT_EQ(handler.foundCharacters("lost"), nullptr);
  EXPECT_EQ(handler.willStartSubElement("b"), nullptr);
  EXPECT_EQ(handler.content(), std::nullopt);
  handler.beginFragmentWithParent(nullptr, nullptr);
  EXPECT_EQ(handler.content(), "");
  EXPECT_EQ(handler.foundCharacters("a"), nullptr);
  EXPECT_EQ(handler.foundCharacters("b"), nullptr);
  EXPECT_EQ(handler.content(), "ab");
  EXPECT_EQ(handler.willStartSubElement("b"), nullptr);
  EXPECT_EQ(handler.content(), "") << "the checkpoint answers true";
  EXPECT_EQ(handler.endElement("a"), nullptr);
  handler.endFragment();
  EXPECT_EQ(handler.content(), std::nullopt);
}

TEST(ORLFXMLParserContentHandler, ItsBaseSucceedsInEverything) {
  ORLFXMLParserFragmentHandlerBase base;
  EXPECT_EQ(base.subFragmentHandlerForElementName("a"), nullptr);
  EXPECT_EQ(base.willStartSubElement("a"), nullptr);
  EXPECT_EQ(base.didFinishSubElement("a"), nullptr);
  EXPECT_EQ(base.startElement("a", nullptr), nullptr);
  EXPECT_EQ(base.endElement("a"), nullptr);
  EXPECT_EQ(base.foundCharacters("a"), nullptr);
  EXPECT_EQ(base.foundIgnorableWhitespace("a"), nullptr);
  EXPECT_FALSE(base.takesUnhandledCharacters());
  EXPECT_FALSE(base.takesUnhandledIgnorableWhitespace());
  base.unhandledSubElementFoundCharacters("a", "b");
  base.unhandledSubElementFoundIgnorableWhitespace("a", "b");
  EXPECT_TRUE(base.parentObject().isNil());
}

/// A handler of "r" that keeps what sub-elements give it.
class Keeper : public ORLFXMLParserContentHandler {
 public:
  std::optional<std::string> memo;
  std::optional<std::string> keyOfSubElements = "memo";

  [[nodiscard]] const std::optional<std::string>& memoText() const { return memo; }
  void setMemoText(std::optional<std::string> text) { memo = std::move(text); }
  std::shared_ptr<ORLFXMLParserFragmentHandler> subFragmentHandlerForElementName(
      std::string_view) override {
    const auto handler = std::make_shared<ORLFXMLParserStringPropertyHandler>();
    handler->setPropertyName(keyOfSubElements);
    return handler;
  }
  [[nodiscard]] const NSKeyTable& keyTable() const override {
    static const NSKeyTable table(
        ORLFXMLParserContentHandler::keyTable(),
        {NSKey::readWrite<&Keeper::memoText, &Keeper::setMemoText>("memo")});
    return table;
  }
};

class KeeperParser : public ORLFXMLParser {
 public:
  const std::shared_ptr<Keeper> keeper = std::make_shared<Keeper>();
  Handler fragmentHandlerForElementName(std::string_view name) override {
    if (name == "r") return keeper;
    return std::make_shared<ORLFXMLParserStringPropertyHandler>();
  }
};

const NSData kDocument(std::string_view("<r><memo>a&amp;b<![CDATA[c]]></memo></r>"));

TEST(ORLFXMLParserStringPropertyHandler, GivesItsTextToTheParent) {
  const auto parser = std::make_shared<KeeperParser>();
  EXPECT_TRUE(parser->parseData(kDocument));
  EXPECT_EQ(parser->keeper->memo, "a&bc");
}

TEST(ORLFXMLParserStringPropertyHandler, WithoutANameGivesNothing) {
  const auto parser = std::make_shared<KeeperParser>();
  parser->keeper->keyOfSubElements = std::nullopt;
  EXPECT_TRUE(parser->parseData(kDocument));
  EXPECT_EQ(parser->keeper->memo, std::nullopt);
}

TEST(ORLFXMLParserStringPropertyHandler, WithoutAParentGivesNothing) {
  ORLFXMLParserStringPropertyHandler handler;
  handler.setValueForKey("memo", "propertyName");
  EXPECT_EQ(handler.propertyName(), "memo");
  EXPECT_TRUE(handler.finalizeContent("text", "memo"));
}

TEST(ORLFXMLParserStringPropertyHandler, RaisesThroughTheParseForAnUnknownKey) {
  const auto parser = std::make_shared<KeeperParser>();
  parser->keeper->keyOfSubElements = "unknown";
  EXPECT_THROW(parser->parseData(kDocument), NSException);
}

}  // namespace
}  // namespace ORLFoundation
