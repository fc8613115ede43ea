#include <ORLFoundation/xmlparsing/builders/ORLFXMLParserPropertyBuilder.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/xmlparsing/builders/ORLFXMLParserObjectBuilder.h>
#include <ORLFoundation/xmlparsing/builders/ORLFXMLParserPropertyBuilder_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST_F(Properties, CollectionsAreFilledByTheirElements) {
  EXPECT_TRUE(
      parse("<p key='list' collection='array'><p key='element' string='a'/>"
            "<p key='element' integer='2'/></p>"));
  EXPECT_EQ(built("list"), id(NSArray::arrayWithObjects({"a", 2})));
  EXPECT_TRUE(
      parse("<p key='s' collection='Set'><p key='element' string='a'/>"
            "<p key='element' string='a'/></p>"));
  EXPECT_EQ(built("s").as<NSSet>()->count(), 1U);
  EXPECT_TRUE(parse("<p key='map' collection='dictionary'><p key='x' bool='YES'/></p>"));
  EXPECT_EQ(built("map").valueForKey("x"), id(true));
}

TEST_F(Properties, ADictionaryTakesNoElements) {
  EXPECT_FALSE(parse("<p key='map' collection='dictionary'><p key='element' bool='YES'/></p>"));
  EXPECT_TRUE(isRefused());
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("property tag exception:"),
                                        HasSubstr("fragementErrorOccurred: ")));
}

TEST_F(Properties, ACollectionThatIsNoneAnyMoreTakesNoElements) {
  // The inner property "value" replaces the list by a text, which has no such operation.
  EXPECT_FALSE(
      parse("<p key='l' collection='array'><p key='value' string='v'/>"
            "<p key='element' string='x'/></p>"));
  EXPECT_TRUE(isRefused());
  EXPECT_THAT(log_.lines().front(), HasSubstr("property tag exception:"));
  while (parser_->popFragmentHandler()) {
  }
  EXPECT_FALSE(
      parse("<p key='s' collection='set'><p key='value' integer='1'/>"
            "<p key='element' string='x'/></p>"));
  EXPECT_TRUE(isRefused());
}

TEST_F(Properties, AddersTakeWhateverTakesObjects) {
  EXPECT_TRUE(
      parse("<p key='l' collection='array'><p key='type' string='set'/>"
            "<p key='element' string='x'/><p key='element' string='x'/></p>"));
  EXPECT_EQ(built("l"), id(NSArray::arrayWithObjects({"x", "x"})));
  EXPECT_TRUE(
      parse("<p key='s' collection='set'><p key='type' string='Array'/>"
            "<p key='element' string='x'/><p key='element' string='x'/></p>"));
  EXPECT_EQ(built("s").as<NSSet>()->count(), 1U);
  EXPECT_FALSE(
      parse("<p key='l' collection='array'><p key='type' string='none'/>"
            "<p key='element' string='x'/></p>"))
      << "a list has no setElement: of its own";
  EXPECT_TRUE(isRefused());
}

TEST_F(Properties, ABasicValueTakesNoElements) {
  EXPECT_FALSE(parse("<p key='s' string='a'><p key='element' bool='YES'/></p>"));
  EXPECT_TRUE(isRefused());
}

TEST_F(Properties, KeysOfTheBuilderComeBeforeThoseOfItsValue) {
  // The inner property replaces the dictionary that is under construction.
  EXPECT_TRUE(parse("<p key='map' collection='dictionary'><p key='value' string='v'/></p>"));
  EXPECT_EQ(built("map"), id("v"));
  EXPECT_TRUE(parse("<p key='map' collection='dictionary'><p key='key' string='other'/></p>"));
  EXPECT_EQ(built("other").as<NSDictionary>()->count(), 0U);
  EXPECT_TRUE(
      parse("<p key='m2' collection='dictionary'><p key='content' string='c'/>"
            "<p key='kind' integer='7'/><p key='type' string='t'/>"
            "<p key='includeIgnorableWhitespace' bool='YES'/>"
            "<p key='includeUnhandledSubElementContent' bool='YES'/></p>"));
  EXPECT_EQ(built("m2").as<NSDictionary>()->count(), 0U);
  EXPECT_TRUE(parse("<p key='m3' collection='dictionary'><p key='parentObject' string='c'/></p>"));
  EXPECT_EQ(built("m3").valueForKey("parentObject"), id("c")) << "it cannot be set";
  for (const std::string key : {"parser", "parent", "kind"}) {
    EXPECT_FALSE(parse("<p key='m' collection='dictionary'><p key='" + key + "' string='c'/></p>"))
        << key << " is of another kind";
    EXPECT_TRUE(isRefused()) << key;
    while (parser_->popFragmentHandler()) {
    }
  }
}

TEST_F(Properties, KeysOfTheObjectBuilderComeBeforeThoseOfItsObject) {
  EXPECT_TRUE(parse("<p key='content' string='c'/><p key='a' string='b'/>"));
  EXPECT_TRUE(built("content").isNil());
  EXPECT_EQ(built("a"), id("b"));
  EXPECT_EQ(parser_->object->valueForKey("a"), id("b"));
  parser_->object->made = nullptr;
  parser_->setUnhandledElementBehavior(1);
  EXPECT_FALSE(parse("<p key='a' string='b'/>")) << "nobody knows the key";
  EXPECT_TRUE(isRefused());
  EXPECT_THROW(static_cast<void>(parser_->object->valueForKey("a")), NSException);
}

TEST_F(Properties, AnUnknownKeyOfAStrictTargetIsRefused) {
  const auto strict = std::make_shared<StrictTarget>();
  parser_->object->made = strict;
  EXPECT_TRUE(parse("<p key='limit' integer='3'/>"));
  EXPECT_EQ(strict->limit(), 3);
  EXPECT_FALSE(parse("<p key='unknown' integer='3'/>"));
  EXPECT_TRUE(isRefused());
  EXPECT_THAT(log_.lines().front(), HasSubstr("property tag exception:"));
  while (parser_->popFragmentHandler()) {
  }
  EXPECT_FALSE(parse("<p key='limit' string='x'/>")) << "a value of another kind";
  EXPECT_TRUE(isRefused());
}

TEST_F(Properties, AreSetEvenWhenTheContentIsRefused) {
  class Refusing : public ORLFXMLParserPropertyBuilder {
    bool finalizeContent(std::string_view, std::string_view) override { return false; }
  };
  parser_->makeProperty = [] { return std::make_shared<Refusing>(); };
  EXPECT_FALSE(parse("<p key='a' string='x'/>"));
  EXPECT_TRUE(isRefused());
  EXPECT_EQ(built("a"), id("x"));
}

TEST_F(Properties, OfBuildersWithoutAParserAreNil) {
  ORLFXMLParserPropertyBuilder builder;
  EXPECT_TRUE(builder.makeIntegerTypeWithValue("1").isNil());
  EXPECT_TRUE(builder.makeIntTypeWithValue("1").isNil());
  EXPECT_TRUE(builder.makeBoolTypeWithValue("YES").isNil());
  EXPECT_EQ(builder.makeStringTypeWithValue("x"), id("x"));
  EXPECT_TRUE(builder.makeStringTypeWithValue(std::nullopt).isNil());
  EXPECT_NE(builder.startElement("p", NSDictionary::dictionaryWithEntries({})), nullptr);
  builder.setElement("x");
  EXPECT_EQ(builder.endElement("p"), nullptr);
  EXPECT_THROW(builder.setValueForKey("x", "unknown"), NSException);
  EXPECT_THROW(static_cast<void>(builder.valueForKey("element")), NSException);
  builder.setValue(NSDictionary::dictionaryWithEntries({{"element", "e"}}));
  EXPECT_EQ(builder.valueForKey("element"), id("e"));
}

TEST_F(Properties, ObjectsAreFinalizedOrRefused) {
  EXPECT_TRUE(parse(""));
  EXPECT_THAT(parser_->object->finalized, ElementsAre("o"));
  parser_->object->isAccepted = false;
  EXPECT_FALSE(parse(""));
  EXPECT_TRUE(isRefused());
  parser_->object->made = nullptr;
  while (parser_->popFragmentHandler()) {
  }
  EXPECT_FALSE(parse(""));
  EXPECT_TRUE(isRefused());
  EXPECT_EQ(parser_->object->finalized.size(), 2U) << "nothing to finalize";
  parser_->setUnhandledElementBehavior(1);
  while (parser_->popFragmentHandler()) {
  }
  EXPECT_TRUE(parse(""));
  EXPECT_EQ(parser_->object->finalized.size(), 2U);
}

TEST_F(Properties, ObjectBuildersMakeNothingOfTheirOwn) {
  ORLFXMLParserObjectBuilder builder;
  EXPECT_TRUE(builder.makeBuiltObjectForElement("o", nullptr).isNil());
  EXPECT_TRUE(builder.finalizeBuiltObject(nullptr, "o"));
  EXPECT_NE(builder.startElement("o", nullptr), nullptr);
  EXPECT_EQ(builder.endElement("o"), nullptr);
}

TEST_F(Properties, HandlersBeneathFindTheNearestObject) {
  class Asking : public ORLFXMLParserPropertyBuilder {
   public:
    id* seen = nullptr;
    Error endElement(std::string_view name) override {
      *seen = parentObject();
      return ORLFXMLParserPropertyBuilder::endElement(name);
    }
  };
  id seen;
  parser_->makeProperty = [&] {
    const auto builder = std::make_shared<Asking>();
    builder->seen = &seen;
    return builder;
  };
  EXPECT_TRUE(parse("<p key='l' collection='array'><p key='element' string='x'/></p>"));
  EXPECT_TRUE(seen.isIdenticalTo(parser_->object->made));
}

}  // namespace
}  // namespace ORLFoundation
