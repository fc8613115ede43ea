
#include <ORLFoundation/platform/object/Id.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <string>
#include <unordered_set>
#include <vector>

namespace ORLFoundation {
namespace {

enum Signed : std::int64_t { kSignedCode = -4 };
enum class Scoped : std::uint8_t { Code = 200 };

std::vector<std::pair<const char*, id>> valuesOfAllKinds() {
  return {{"nil", nullptr},
          {"null", NSNull()},
          {"number", 12},
          {"text", "12"},
          {"date", NSDate()},
          {"data", NSData("12")},
          {"address", *NSURL::URLWithString("12")},
          {"identifier", NSUUID()},
          {"range", NSRange{1, 2}},
          {"point", CGPoint{1, 2}},
          {"rectangle", CGRect{{1, 2}, {3, 4}}},
          {"object", std::make_shared<NSObject>()},
          {"array", NSArray::arrayWithObjects({1})},
          {"dictionary", NSDictionary::dictionaryWithEntries({{"a", 1}})},
          {"set", NSSet::setWithObjects({1})}};
}

TEST(Id, EqualsOnlyItsOwnKind) {
  const auto values = valuesOfAllKinds();
  for (std::size_t i = 0; i < values.size(); ++i)
    for (std::size_t j = 0; j < values.size(); ++j)
      EXPECT_EQ(values[i].second == values[j].second, i == j)
          << values[i].first << " and " << values[j].first;
}

TEST(Id, HashesEqualValuesAlike) {
  const auto values = valuesOfAllKinds();
  std::unordered_set<id> set;
  for (const auto& [name, value] : values) {
    const id copy = value;
    EXPECT_EQ(copy.hash(), value.hash()) << name;
    set.insert(value);
    set.insert(copy);
  }
  EXPECT_EQ(set.size(), values.size());
}

TEST(Id, IsNilForNothing) {
  EXPECT_TRUE(id().isNil());
  EXPECT_TRUE(id(nullptr).isNil());
  EXPECT_TRUE(id(std::nullopt).isNil());
  EXPECT_TRUE(id(std::shared_ptr<NSArray>()).isNil());
  EXPECT_TRUE(id(std::optional<NSDate>()).isNil());
  EXPECT_FALSE(id(NSNull()).isNil());
  EXPECT_TRUE(id(NSNull()).isNull());
  EXPECT_FALSE(id(false).isNil());
  EXPECT_EQ(id(), id());
}

TEST(Id, BoxesEveryKindOfNumber) {
  EXPECT_EQ(id(true).get<NSNumber>()->kind(), NSNumber::Kind::Boolean);
  EXPECT_EQ(id(1).get<NSNumber>()->kind(), NSNumber::Kind::Integer);
  EXPECT_EQ(id(1U).get<NSNumber>()->kind(), NSNumber::Kind::UnsignedInteger);
  EXPECT_EQ(id(1.0F).get<NSNumber>()->kind(), NSNumber::Kind::Double);
  EXPECT_EQ(id(NSDecimal::one()).get<NSNumber>()->kind(), NSNumber::Kind::Decimal);
  EXPECT_EQ(id(kSignedCode), id(-4));
  EXPECT_EQ(id(Scoped::Code), id(200));
  EXPECT_EQ(id(1), id(1.0));
  EXPECT_EQ(id(std::optional<int>(3)), id(3));
}

TEST(Id, GivesTypedAccess) {
  const id number = 12.75;
  EXPECT_EQ(number.as<double>(), 12.75);
  EXPECT_EQ(number.as<int>(), 12);
  EXPECT_EQ(number.as<bool>(), true);
  EXPECT_EQ(number.as<NSUInteger>(), 12U);
  EXPECT_EQ(number.as<NSDecimal>(), NSDecimal::parse("12.75"));
  EXPECT_EQ(id(-4).as<Signed>(), kSignedCode);
  EXPECT_EQ(number.as<std::string>(), std::nullopt);
  EXPECT_EQ(id("12").as<int>(), std::nullopt);
  EXPECT_EQ(id("12").as<std::string>(), "12");
  EXPECT_EQ(id(NSRange{1, 2}).as<NSRange>(), (NSRange{1, 2}));
  EXPECT_EQ(id(NSRange{1, 2}).as<CGPoint>(), std::nullopt);
  EXPECT_EQ(id(CGPoint{1, 2}).as<CGPoint>(), (CGPoint{1, 2}));
  EXPECT_EQ(id().as<NSDate>(), std::nullopt);
  EXPECT_EQ(id(NSDate()).as<NSDate>(), NSDate());
}

TEST(Id, GivesObjectsUnderTheirClass) {
  const auto array = std::make_shared<NSMutableArray>();
  const id value = array;
  EXPECT_EQ(value.as<NSMutableArray>(), array);
  EXPECT_EQ(value.as<NSArray>(), array);
  EXPECT_EQ(value.as<NSObject>(), array);
  EXPECT_EQ(value.as<NSDictionary>(), nullptr);
  EXPECT_EQ(id("text").as<NSArray>(), nullptr);
  EXPECT_EQ(id(std::shared_ptr<const NSArray>(array)).as<NSArray>(), array);
}

struct DescriptionCase {
  const char* name;
  id value;
  const char* text;
};
const DescriptionCase kDescriptions[] = {
    {"Nil", nullptr, "(null)"},
    {"Null", NSNull(), "<null>"},
    {"TextIsNotQuoted", "a \"b\"", "a \"b\""},
    {"Number", 1.5, "1.5"},
    {"Boolean", true, "1"},
    {"Date", NSDate(), "2001-01-01 00:00:00 +0000"},
    {"Range", NSRange{1, 2}, "NSRange: {1, 2}"},
    {"Point", CGPoint{1, 2.5}, "NSPoint: {1, 2.5}"},
    {"Rectangle", CGRect{{0, -1}, {3, 4}}, "NSRect: {{0, -1}, {3, 4}}"},
    {"Address", *NSURL::URLWithString("https://a/b"), "https://a/b"},
};

TEST(Id, DescribesPlainValues) {
  for (const auto& row : kDescriptions) EXPECT_EQ(row.value.description(), row.text) << row.name;
}

TEST(Id, NamesItsClass) {
  const std::vector<std::string> names = {
      "",        "NSNull",  "NSNumber", "NSString", "NSDate",  "NSData",       "NSURL", "NSUUID",
      "NSValue", "NSValue", "NSValue",  "NSObject", "NSArray", "NSDictionary", "NSSet"};
  const auto values = valuesOfAllKinds();
  for (std::size_t i = 0; i < values.size(); ++i)
    EXPECT_EQ(values[i].second.className(), names[i]) << values[i].first;
}

TEST(Id, KnowsWhatFitsAPropertyList) {
  const id good = NSDictionary::dictionaryWithEntries(
      {{"list", NSArray::arrayWithObjects({1, "two", NSDate(), NSData("x"), true})}});
  EXPECT_TRUE(good.isPropertyList());
  for (const id& bad :
       {id(), id(NSNull()), id(NSUUID()), id(*NSURL::URLWithString("a")), id(NSRange{1, 2}),
        id(std::make_shared<NSObject>()), id(NSSet::setWithObjects({1})),
        id(NSArray::arrayWithObjects({1, NSNull()})),
        id(NSDictionary::dictionaryWithEntries({{1, "number as key"}})),
        id(NSDictionary::dictionaryWithEntries({{"a", NSUUID()}}))})
    EXPECT_FALSE(bad.isPropertyList()) << bad.description();
}

TEST(Id, AnswersKeysOfNilAndPlainValues) {
  EXPECT_TRUE(id().valueForKey("anything").isNil());
  EXPECT_TRUE(id().valueForKeyPath("any.thing").isNil());
  EXPECT_EQ(id(3).valueForKey("self"), id(3));
  EXPECT_EQ(id(3).valueForKeyPath("self.self"), id(3));
  try {
    static_cast<void>(id(3).valueForKey("name"));
    FAIL() << "nothing raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSUndefinedKeyException);
  }
}

}  // namespace
}  // namespace ORLFoundation
