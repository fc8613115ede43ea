#include <ORLFoundation/xmlparsing/builders/ORLFXMLParserPropertyBuilder.h>

#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/xmlparsing/builders/ORLFXMLParserObjectBuilder.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// A target with one number under a key, and a refusal of all others.
class Strict : public NSObject {
 public:
  [[nodiscard]] NSInteger limit() const { return limit_; }
  void setLimit(NSInteger limit) { limit_ = limit; }
  [[nodiscard]] std::vector<id> elements() const { return elements_; }
  void addElement(const id& element) { elements_.push_back(element); }
  [[nodiscard]] const id& lastElement() const { return elements_.back(); }
  [[nodiscard]] const NSKeyTable& keyTable() const override {
    static const NSKeyTable table(
        NSObject::keyTable(),
        {NSKey::readWrite<&Strict::limit, &Strict::setLimit>("limit"),
         NSKey::readWrite<&Strict::lastElement, &Strict::addElement>("element")});
    return table;
  }

 private:
  NSInteger limit_ = 0;
  std::vector<id> elements_;
};

/// A vocabulary of one's own: a word of each family, and one that means another thing here.
class WiderBuilder : public ORLFXMLParserPropertyBuilder {
 public:
  [[nodiscard]] id makeTwiceTypeWithValue(const std::optional<std::string>& value) {
    return value ? id(*value + *value) : id();
  }
  [[nodiscard]] const ORLFXMLPropertyVocabulary& vocabulary() const override {
    static const auto words = ORLFXMLParserPropertyBuilder::vocabulary().extendedBy(
        {.basicTypes = {{"Twice", ORLFXMLCall<&WiderBuilder::makeTwiceTypeWithValue>()},
                        {"Null", [](Builder&, const auto&) { return id(NSNull()); }},
                        {"Int", [](Builder&, const auto&) { return id("another"); }}},
         .collections = {{"Stack", [](Builder& b) { return b.makeCollectionOfType("array"); }}},
         .texts = {{"Note", [](Builder&) { return id("a note"); }}},
         .objects = {{"Strict", [](Builder&) { return id(std::make_shared<Strict>()); }}},
         .elementAdders = {{"Stack", [](Builder&, const id& element, const id& collection) {
                              collection.as<NSMutableArray>()->insertObject(element, 0);
                            }}}});
    return words;
  }
  using Builder = ORLFXMLParserPropertyBuilder;
};

class Object : public ORLFXMLParserObjectBuilder {
 public:
  id made = std::make_shared<NSMutableDictionary>();
  bool isAccepted = true;
  std::vector<std::string> finalized;
  id makeBuiltObjectForElement(std::string_view, const std::shared_ptr<NSDictionary>&) override {
    return made;
  }
  bool finalizeBuiltObject(const id& object, std::string_view forElement) override {
    EXPECT_TRUE(object.isIdenticalTo(made));
    finalized.emplace_back(forElement);
    return isAccepted;
  }
};

class Parser : public ORLFXMLParser {
 public:
  const std::shared_ptr<Object> object = std::make_shared<Object>();
  std::function<Handler()> makeProperty = [] {
    return std::make_shared<ORLFXMLParserPropertyBuilder>();
  };
  Handler fragmentHandlerForElementName(std::string_view name) override {
    if (name == "o") return object;
    if (name == "p") return makeProperty();
    return nullptr;
  }
};

class Properties : public testing::Test {
 protected:
  const std::shared_ptr<Parser> parser_ = std::make_shared<Parser>();
  std::shared_ptr<const NSError> error_;
  LogCapture log_;

  void useWiderBuilder() {
    parser_->makeProperty = [] { return std::make_shared<WiderBuilder>(); };
  }
  bool parse(std::string_view inside) {
    error_ = nullptr;
    const std::string text = "<o>" + std::string(inside) + "</o>";
    return parser_->parseData(NSData(std::string_view(text)), &error_);
  }
  [[nodiscard]] id built(std::string_view key) const {
    return parser_->object->made.valueForKey(key);
  }
  /// Code 86 of the domain, without user information.
  [[nodiscard]] bool isRefused() const {
    return error_ && error_->domain() == NSXMLParserErrorDomain && error_->code() == 86 &&
           error_->userInfo()->count() == 0;
  }
};

TEST_F(Properties, TypesAreMadeByName) {
  struct Row {
    std::string_view attributes;
    id value;
  };
  const Row rows[] = {
      {"type='integer' value='3'", 3},
      {"integer='3'", 3},
      {"type='int' value='-4x'", -4},
      {"Integer='12abc'", 12},
      {"integer='abc'", 0},
      {"string='a b'", "a b"},
      {"string=''", ""},
      {"type='string' value='v' text='x'", "v"},
      {"bool='yes'", true},
      {"bool='No'", false},
      {"type='bool' value='NO' object='x' collection='array'", false},
  };
  for (const Row& row : rows) {
    EXPECT_TRUE(parse("<p key='k' " + std::string(row.attributes) + "/>")) << row.attributes;
    EXPECT_EQ(built("k"), row.value) << row.attributes;
  }
}

const std::string_view kUnmade[] = {
    "key='k' type='bogus' value='1'",
    "key='k' x='1' y='2'",
    "key='k'",
    "key='k' bool='maybe'",
    "integer='1'",
    "",
    "key='k' INTEGER='1'",
    "key='k' collection='ARRAY'",
    "key='k' text='any'",
    "key='k' object='any'",
    "key='k' type='integer'",
    "key='k' type='string'",
    "key='k' type='bogus' collection='array'",
    "key='k' value='1' other='2'",
};

TEST_F(Properties, OfWhichNothingIsMadeAreRefused) {
  for (const std::string_view attributes : kUnmade) {
    EXPECT_FALSE(parse("<p " + std::string(attributes) + "/>")) << attributes;
    EXPECT_TRUE(isRefused()) << attributes;
    while (parser_->popFragmentHandler()) {
    }
  }
}

TEST_F(Properties, OfWhichNothingIsMadeAreDroppedUnderOtherBehaviors) {
  for (const std::int32_t behavior : {1, 2, 9}) {
    parser_->setUnhandledElementBehavior(behavior);
    for (const std::string_view attributes : kUnmade) {
      EXPECT_TRUE(parse("<p " + std::string(attributes) + "/>")) << attributes;
      EXPECT_EQ(parser_->object->made.as<NSDictionary>()->count(), 0U) << attributes;
    }
  }
  EXPECT_TRUE(log_.lines().empty());
}

TEST_F(Properties, ATypeWithoutANameRaises) {
  for (const std::string_view attribute : {"type", "collection", "text", "object"}) {
    EXPECT_THROW(parse("<p key='k' " + std::string(attribute) + "=''/>"), NSException) << attribute;
    while (parser_->popFragmentHandler()) {
    }
  }
  ORLFXMLParserPropertyBuilder builder;
  try {
    static_cast<void>(builder.convertToCamelCase(""));
    FAIL();
  } catch (const NSException& raised) {
    EXPECT_EQ(raised.name(), NSRangeException);
  }
}

TEST_F(Properties, NamesOfTypesGetACapital) {
  struct Row {
    std::string_view name;
    std::string_view camel;
  };
  const Row rows[] = {{"integer", "Integer"},
                      {"integerX", "IntegerX"},
                      {"ARRAY", "ARRAY"},
                      {"a", "A"},
                      {"\u00E9t\u00E9", "\u00C9t\u00E9"},
                      {"\u00DFx", "Ssx"},
                      {"1x", "1x"},
                      {"\U00010428x", "\U00010428x"},
                      {"a b", "A b"}};
  const ORLFXMLParserPropertyBuilder builder;
  for (const Row& row : rows) EXPECT_EQ(builder.convertToCamelCase(row.name), row.camel);
}

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
  EXPECT_FALSE(parse("<p key='m' collection='dictionary'><p key='parser' string='c'/></p>"));
  EXPECT_TRUE(isRefused());
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
  const auto strict = std::make_shared<Strict>();
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

TEST_F(Properties, AVocabularyIsWidened) {
  useWiderBuilder();
  EXPECT_TRUE(
      parse("<p key='a' twice='ab'/><p key='b' int='1'/><p key='c' integer='1'/>"
            "<p key='d' text='note'/><p key='e' object='strict'><p key='limit' integer='5'/>"
            "<p key='element' string='x'/></p>"
            "<p key='f' collection='stack'><p key='element' string='1'/>"
            "<p key='element' string='2'/></p>"));
  EXPECT_EQ(built("a"), id("abab"));
  EXPECT_EQ(built("b"), id("another"));
  EXPECT_EQ(built("c"), id(1));
  EXPECT_EQ(built("d"), id("a note"));
  EXPECT_EQ(built("e").valueForKey("limit"), id(5));
  EXPECT_EQ(built("e").as<Strict>()->elements(), std::vector<id>{"x"});
  EXPECT_EQ(built("f"), id(NSArray::arrayWithObjects({"2", "1"})));
}

TEST_F(Properties, NullDeclaresAValueThatStaysNil) {
  useWiderBuilder();
  EXPECT_TRUE(parse("<p key='a' string='x'/><p key='a' null='1'/>"));
  EXPECT_TRUE(built("a").isNil()) << "nil took the entry away";
  EXPECT_FALSE(parse("<p key='l' collection='array'><p key='element' null='1'/></p>"))
      << "a list takes no nil";
  EXPECT_TRUE(isRefused());
}

TEST_F(Properties, KnowWhatTheyDeclared) {
  class Watching : public WiderBuilder {
   public:
    std::vector<std::string>* seen = nullptr;
    Error endElement(std::string_view name) override {
      seen->push_back(std::to_string(kind()) + " " + type().value_or("nil") + " " +
                      key().value_or("nil") + " " + value().description());
      return WiderBuilder::endElement(name);
    }
  };
  std::vector<std::string> seen;
  parser_->makeProperty = [&] {
    const auto builder = std::make_shared<Watching>();
    builder->seen = &seen;
    return builder;
  };
  parser_->setUnhandledElementBehavior(1);
  EXPECT_TRUE(
      parse("<p key='a' type='string' value='v'/><p key='b' string='w'/>"
            "<p key='c' text='note'/><p key='d' Null='1'/><p key='e'/>"));
  EXPECT_THAT(seen, ElementsAre("1 string a v", "1 string b w", "3 note c a note",
                                "1 Null d (null)", "0 nil nil (null)"));
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
