
#include <ORLFoundation/platform/object/NSDictionary.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <random>
#include <unordered_map>

namespace ORLFoundation {
namespace {

using Dictionary = std::shared_ptr<NSDictionary>;

Dictionary dictionary(std::initializer_list<std::pair<id, id>> entries) {
  return NSDictionary::dictionaryWithEntries(entries);
}

template <class Action>
std::string nameOfException(Action action) {
  try {
    action();
  } catch (const NSException& exception) {
    return exception.name();
  }
  return "";
}

TEST(NSDictionary, FindsValuesByEqualKeys) {
  const Dictionary values = dictionary({{"a", 1}, {2, "two"}});
  EXPECT_EQ(values->objectForKey("a"), id(1));
  EXPECT_EQ(values->objectForKey(2.0), id("two"));
  EXPECT_TRUE(values->objectForKey("b").isNil());
  EXPECT_TRUE(values->objectForKey(nullptr).isNil());
  EXPECT_TRUE(dictionary({})->objectForKey("a").isNil());
  EXPECT_EQ(values->count(), 2U);
}

TEST(NSDictionary, KeepsTheLastOfEqualKeysInTheFirstPlace) {
  const Dictionary values = dictionary({{"a", 1}, {"b", 2}, {"a", 3}});
  EXPECT_EQ(values->allKeys(), (std::vector<id>{"a", "b"}));
  EXPECT_EQ(values->allValues(), (std::vector<id>{3, 2}));
}

TEST(NSDictionary, RefusesNil) {
  const auto values = std::make_shared<NSMutableDictionary>();
  EXPECT_EQ(nameOfException([&] { values->setObject(nullptr, "a"); }), NSInvalidArgumentException);
  EXPECT_EQ(nameOfException([&] { values->setObject(1, nullptr); }), NSInvalidArgumentException);
  EXPECT_EQ(nameOfException([] { dictionary({{"a", nullptr}}); }), NSInvalidArgumentException);
  EXPECT_EQ(values->count(), 0U);
}

TEST(NSDictionary, EqualsByContentWhateverTheOrder) {
  EXPECT_EQ(id(dictionary({{"a", 1}, {"b", 2}})), id(dictionary({{"b", 2.0}, {"a", 1}})));
  EXPECT_EQ(dictionary({{"a", 1}, {"b", 2}})->hash(), dictionary({{"b", 2}, {"a", 1}})->hash());
  EXPECT_NE(id(dictionary({{"a", 1}})), id(dictionary({{"a", 2}})));
  EXPECT_NE(id(dictionary({{"a", 1}})), id(dictionary({{"b", 1}})));
  EXPECT_NE(id(dictionary({{"a", 1}})), id(dictionary({})));
}

TEST(NSDictionary, DescribesTextKeysInOrder) {
  EXPECT_EQ(dictionary({{"key", "value"}})->description(), "{\n    key = value;\n}");
  EXPECT_EQ(dictionary({})->description(), "{\n}");
  EXPECT_EQ(dictionary({{"b c", 1}, {"a", NSArray::arrayWithObjects({1, "x y"})}})->description(),
            "{\n    a =     (\n        1,\n        \"x y\"\n    );\n    \"b c\" = 1;\n}");
  EXPECT_EQ(dictionary({{2, "b"}, {1, "a"}})->description(), "{\n    2 = b;\n    1 = a;\n}");
}

TEST(NSDictionary, CopiesToItselfAndAMutableOneToASnapshot) {
  const Dictionary values = dictionary({{"a", 1}});
  EXPECT_EQ(values->copy(), values);
  const id copy = values->mutableCopy();
  const auto changing = copy.as<NSMutableDictionary>();
  const id snapshot = changing->copy();
  changing->setObject(2, "b");
  EXPECT_EQ(snapshot.as<NSDictionary>()->count(), 1U);
  EXPECT_EQ(snapshot.as<NSMutableDictionary>(), nullptr);
}

TEST(NSDictionary, AnswersKeysAndKeyPaths) {
  const Dictionary values = dictionary(
      {{"owner", dictionary({{"name", "Ada"}})}, {"list", NSArray::arrayWithObjects({1, 2})}});
  EXPECT_EQ(values->valueForKeyPath("owner.name"), id("Ada"));
  EXPECT_TRUE(values->valueForKeyPath("nobody.name").isNil());
  EXPECT_EQ(values->valueForKeyPath("list.@sum.self"), id(3));
  EXPECT_EQ(values->valueForKey("@count"), id(2));
}

TEST(NSDictionary, SetsAndRemovesThroughKeyValueAccess) {
  const auto values = std::make_shared<NSMutableDictionary>();
  values->setValueForKey(std::make_shared<NSMutableDictionary>(), "owner");
  values->setValueForKeyPath("Ada", "owner.name");
  EXPECT_EQ(values->valueForKeyPath("owner.name"), id("Ada"));
  values->setValueForKeyPath(nullptr, "owner.name");
  EXPECT_TRUE(values->valueForKeyPath("owner.name").isNil());
  values->setValueForKeyPath(1, "nobody.name");
  EXPECT_EQ(values->count(), 1U);
  EXPECT_EQ(nameOfException([] { dictionary({})->setValueForKey(1, "a"); }),
            NSUndefinedKeyException);
}

TEST(NSDictionary, AgreesWithAReferenceOverManyChanges) {
  const auto values = std::make_shared<NSMutableDictionary>();
  std::unordered_map<int, int> reference;
  std::mt19937 random(7);
  for (int i = 0; i < 20000; ++i) {
    const int key = static_cast<int>(random() % 500);
    if (random() % 3 == 0) {
      values->removeObjectForKey(key);
      reference.erase(key);
    } else {
      values->setObject(i, key);
      reference[key] = i;
    }
    if (i % 5000 == 4999) values->removeAllObjects(), reference.clear();
    ASSERT_EQ(values->count(), reference.size());
  }
  for (int key = 0; key < 500; ++key) {
    const auto expected = reference.find(key);
    EXPECT_EQ(values->objectForKey(key), expected == reference.end() ? id() : id(expected->second));
  }
}

}  // namespace
}  // namespace ORLFoundation
