#include <ORLFoundation/xmlparsing/builders/ORLFXMLParserPropertyBuilder.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/xmlparsing/builders/ORLFXMLParserPropertyBuilder_testing.h>
#include <ORLFoundation/xmlparsing/builders/ORLFXMLPropertyVocabulary.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;

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
         .objects = {{"Strict", [](Builder&) { return id(std::make_shared<StrictTarget>()); }}},
         .elementAdders = {{"Stack", [](Builder&, const id& element, const id& collection) {
                              collection.as<NSMutableArray>()->insertObject(element, 0);
                            }}}});
    return words;
  }
  using Builder = ORLFXMLParserPropertyBuilder;
};

void useWiderBuilder(TestedParser& parser) {
  parser.makeProperty = [] { return std::make_shared<WiderBuilder>(); };
}

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

TEST_F(Properties, AVocabularyIsWidened) {
  useWiderBuilder(*parser_);
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
  EXPECT_EQ(built("e").as<StrictTarget>()->elements(), std::vector<id>{"x"});
  EXPECT_EQ(built("f"), id(NSArray::arrayWithObjects({"2", "1"})));
}

TEST_F(Properties, NullDeclaresAValueThatStaysNil) {
  useWiderBuilder(*parser_);
  EXPECT_TRUE(parse("<p key='a' string='x'/><p key='a' null='1'/>"));
  EXPECT_TRUE(built("a").isNil()) << "nil took the entry away";
  EXPECT_FALSE(parse("<p key='l' collection='array'><p key='element' null='1'/></p>"))
      << "a list takes no nil";
  EXPECT_TRUE(isRefused());
}

TEST_F(Properties, ACollectionThatIsNullTakesElementsWithoutATrace) {
  class NoneBuilder : public WiderBuilder {
    id makeCollectionOfTypeArray() override { return NSNull(); }
  };
  parser_->makeProperty = [] { return std::make_shared<NoneBuilder>(); };
  EXPECT_TRUE(parse("<p key='l' collection='array'><p key='element' string='x'/></p>"));
  EXPECT_TRUE(built("l").isNil());
  EXPECT_TRUE(log_.lines().empty());
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

}  // namespace
}  // namespace ORLFoundation
