
#include <ORLFoundation/platform/object/NSDictionary.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSObject_testing.h>
#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/platform/value/NSException_testing.h>
#include <gtest/gtest.h>

#include <random>
#include <unordered_map>

namespace ORLFoundation {
namespace {

using orlftest::nameOfException;

using Dictionary = std::shared_ptr<NSDictionary>;

Dictionary dictionary(std::initializer_list<std::pair<id, id>> entries) {
  return NSDictionary::dictionaryWithEntries(entries);
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

TEST(NSDictionary, KeepsCopiesOfItsKeys) {
  const auto key = std::make_shared<NSMutableArray>(std::vector<id>{1});
  const auto made = NSDictionary::dictionaryWithEntries({{key, "a"}});
  const auto set = std::make_shared<NSMutableDictionary>();
  set->setObject("a", key);
  key->addObject(2);
  for (const auto& each : {made, std::static_pointer_cast<NSDictionary>(set)}) {
    EXPECT_EQ(each->objectForKey(NSArray::arrayWithObjects({1})), id("a"));
    EXPECT_TRUE(each->objectForKey(key).isNil());
    EXPECT_EQ(each->allKeys().front().className(), "NSArray");
  }
}

TEST(NSDictionary, RefusesAKeyThatCannotBeCopied) {
  const auto key = std::make_shared<NSObject>();
  EXPECT_THROW(static_cast<void>(NSDictionary::dictionaryWithEntries({{key, 1}})), NSException);
  NSMutableDictionary held;
  EXPECT_THROW(held.setObject(1, key), NSException);
  EXPECT_EQ(held.count(), 0U);
}

/// Looks into the dictionary and the set that hold it when it is destroyed.
class Leaver final : public NSObject {
 public:
  Leaver(const NSMutableDictionary& values, const NSMutableSet& set)
      : dictionary_(values), set_(set) {}
  ~Leaver() override {
    for (const auto& [key, value] : dictionary_.entries())
      EXPECT_FALSE(key.isNil() || value.isNil() || value.description().empty());
    for (const id& member : set_.allObjects()) EXPECT_FALSE(member.description().empty());
    EXPECT_EQ(dictionary_.entries().size(), dictionary_.count());
    EXPECT_EQ(set_.allObjects().size(), set_.count());
    ++departures;
  }
  static inline int departures = 0;

 private:
  const NSMutableDictionary& dictionary_;
  const NSMutableSet& set_;
};

TEST(NSDictionary, IsWholeWhileAValueIsDestroyed) {
  Leaver::departures = 0;
  NSMutableDictionary held(NSDictionary::Entries{{"a", 1}});
  NSMutableSet set({"a"});
  const auto fresh = [&] { return std::make_shared<Leaver>(held, set); };
  held.setObject(fresh(), "b");
  held.setObject(2, "b");
  held.setObject(fresh(), "b");
  held.removeObjectForKey("b");
  held.setObject(fresh(), "c");
  held.removeAllObjects();
  set.addObject(fresh());
  set.removeObject(set.allObjects().back());
  set.addObject(fresh());
  set.removeAllObjects();
  EXPECT_EQ(Leaver::departures, 5);
}

TEST(NSDictionary, CopiesOneOnTheStackToAnEqualOne) {
  NSDictionary values({{"one", 1}, {2, "two"}});
  orlftest::expectEqualCopyOfUnowned(values);
}

}  // namespace
}  // namespace ORLFoundation
