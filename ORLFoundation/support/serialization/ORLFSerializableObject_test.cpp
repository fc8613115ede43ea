
#include <ORLFoundation/support/serialization/ORLFSerializableObject.h>

#include <ORLFoundation/platform/archive/NSKeyedArchiver_testing.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>
#include <ORLFoundation/platform/plist/NSPropertyListUID.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cinttypes>
#include <cstdio>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::archivedAndRead;

class Preferences final : public ORLFSerializableSubclass<Preferences> {
 public:
  static constexpr std::string_view kClassName = "Preferences";
  using ORLFSerializableSubclass::ORLFSerializableSubclass;

  /// A property of its own.
  [[nodiscard]] NSInteger level() const { return level_; }
  void setLevel(NSInteger level) { level_ = level; }
  [[nodiscard]] const NSKeyTable& keyTable() const override {
    static const NSKeyTable table(
        ORLFSerializableObject::keyTable(),
        {NSKey::readWrite<&Preferences::level, &Preferences::setLevel>("level")});
    return table;
  }

 private:
  NSInteger level_ = 0;
};

class TextsOnly final : public ORLFSerializableSubclass<TextsOnly> {
 public:
  static constexpr std::string_view kClassName = "TextsOnly";
  using ORLFSerializableSubclass::ORLFSerializableSubclass;
  static NSCodingClasses allowedTopLevelClasses() {
    return NSCodingClassesOf<NSDictionary, std::string>();
  }
};

std::shared_ptr<NSDictionary> entries(std::initializer_list<std::pair<id, id>> list) {
  return NSDictionary::dictionaryWithEntries(list);
}

TEST(ORLFSerializableObject, ReadsAndWritesUnknownKeysInItsData) {
  const auto object = std::make_shared<ORLFSerializableObject>();
  EXPECT_TRUE(object->valueForKey("name").isNil());
  object->setValueForKey("a", "name");
  EXPECT_EQ(object->valueForKey("name"), id("a"));
  EXPECT_EQ(object->data()->objectForKey("name"), id("a"));
  object->data()->setObject(entries({{"inner", 1}}), "outer");
  EXPECT_EQ(object->valueForKeyPath("outer.inner"), id(1));
  object->setValueForKey(nullptr, "name");
  EXPECT_TRUE(object->valueForKey("name").isNil());
}

TEST(ORLFSerializableObject, KeepsPropertiesOfItsOwnOutOfItsData) {
  const auto object = std::make_shared<Preferences>();
  object->setValueForKey(3, "level");
  EXPECT_EQ(object->level(), 3);
  EXPECT_TRUE(object->data()->objectForKey("level").isNil());
  object->setValueForKey(3, "depth");
  EXPECT_EQ(object->valueForKey("data"), id(object->data()));
  EXPECT_EQ(object->data()->count(), 1U);
}

TEST(ORLFSerializableObject, TellsObserversOfEntriesOnce) {
  const auto object = std::make_shared<Preferences>();
  int changes = 0;
  const auto token = object->addObserver("name", 0, [&](const NSKeyValueChange&) { ++changes; });
  object->setValueForKey("a", "name");
  EXPECT_EQ(changes, 1);
  object->setValueForKey("b", "other");
  EXPECT_EQ(changes, 1);
}

TEST(ORLFSerializableObject, MakesItsDataWhenFirstAsked) {
  const ORLFSerializableObject object;
  EXPECT_EQ(object.data()->count(), 0U);
  EXPECT_EQ(object.data(), object.data());
  EXPECT_EQ(ORLFSerializableObject(nullptr).data()->count(), 0U);
}

TEST(ORLFSerializableObject, KeepsACopyOfTheDataThatItIsMadeWith) {
  const auto data = std::make_shared<NSMutableDictionary>();
  data->setObject(1, "a");
  const Preferences object(data);
  data->setObject(2, "b");
  EXPECT_EQ(object.data()->count(), 1U);
  EXPECT_EQ(object.data()->className(), "NSMutableDictionary");
}

TEST(ORLFSerializableObject, AllowsClassesInOrder) {
  std::vector<std::string> names;
  for (const NSCodingClass* record : ORLFSerializableObject::allowedTopLevelClasses())
    names.push_back(record->name());
  EXPECT_EQ(names, (std::vector<std::string>{"NSArray", "NSDictionary", "NSSet", "NSString",
                                             "NSNumber", "NSDate", "NSData", "NSURL", "NSUUID",
                                             "NSNull", "ORLFDateRecurrenceRule"}));
  EXPECT_TRUE(ORLFSerializableObject::supportsSecureCoding());
}

TEST(ORLFSerializableObject, IsArchivedWithEveryAllowedClass) {
  const auto rule = std::make_shared<ORLFDateRecurrenceRule>(ORLFDateRecurrenceFrequencyMonthly, 2);
  const auto object = std::make_shared<Preferences>(entries({
      {"array", NSArray::arrayWithObjects({1, "a", rule})},
      {"dictionary", entries({{"x", 1}})},
      {"set", NSSet::setWithObjects({1, 2})},
      {"text", "two words"},
      {"number", 2.5},
      {"date", NSDate::dateWithTimeIntervalSinceReferenceDate(12.5)},
      {"data", NSData(std::string_view("bytes"))},
      {"url", *NSURL::URLWithString("https://example.com/a")},
      {"uuid", NSUUID::UUID()},
      {"null", NSNull()},
      {"rule", rule},
  }));
  const auto back = archivedAndRead<Preferences>(object);
  ASSERT_TRUE(back);
  EXPECT_EQ(back->className(), "Preferences");
  EXPECT_EQ(back->data()->className(), "NSMutableDictionary");
  EXPECT_TRUE(back->isEqual(object.get()));
  const auto readRule = back->valueForKey("rule").as<ORLFDateRecurrenceRule>();
  ASSERT_TRUE(readRule);
  EXPECT_TRUE(readRule->isEqual(rule.get()));
  EXPECT_EQ(readRule->frequency(), ORLFDateRecurrenceFrequencyMonthly);
  EXPECT_EQ(readRule->interval(), 2);
}

TEST(ORLFSerializableObject, WithoutDataIsArchivedAsAnEmptyOne) {
  const auto back =
      archivedAndRead<ORLFSerializableObject>(std::make_shared<ORLFSerializableObject>());
  ASSERT_TRUE(back);
  EXPECT_EQ(back->data()->count(), 0U);
}

TEST(ORLFSerializableObject, InAnotherIsNotAllowed) {
  const auto object = std::make_shared<Preferences>();
  object->setValueForKey(std::make_shared<Preferences>(), "inner");
  EXPECT_EQ(archivedAndRead<Preferences>(object), nullptr);
}

TEST(ORLFSerializableObject, IsReadWithTheClassesOfItsClass) {
  EXPECT_TRUE(archivedAndRead<TextsOnly>(std::make_shared<TextsOnly>(entries({{"a", "b"}}))));
  EXPECT_FALSE(
      archivedAndRead<TextsOnly>(std::make_shared<TextsOnly>(entries({{"a", NSUUID::UUID()}}))));
}

TEST(ORLFSerializableObject, IsReadWhereItsBaseClassIsAllowed) {
  const auto bytes =
      NSKeyedArchiver::archivedDataWithRootObject(std::make_shared<Preferences>(), true);
  const auto back = NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFSerializableObject>(*bytes);
  ASSERT_TRUE(back);
  EXPECT_EQ(back->className(), "Preferences");
  EXPECT_EQ(NSKeyedUnarchiver::unarchivedObjectOfClass<TextsOnly>(*bytes), nullptr);
}

TEST(ORLFSerializableObject, RefusesDataThatIsNoDictionary) {
  for (const id& wrong : {id(NSArray::arrayWithObjects({1})), id("text")}) {
    class Liar : public NSObject, public NSSecureCoding {
     public:
      explicit Liar(id data) : data_(std::move(data)) {}
      void encodeWithCoder(NSCoder& coder) const override { coder.encodeObject(data_, "data"); }
      [[nodiscard]] const NSCodingClass& classForCoder() const override {
        return ORLFSerializableObject::codingClass();
      }

     private:
      id data_;
    };
    const auto bytes =
        NSKeyedArchiver::archivedDataWithRootObject(std::make_shared<Liar>(wrong), true);
    ASSERT_TRUE(bytes);
    std::shared_ptr<const NSError> error;
    EXPECT_EQ(NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFSerializableObject>(*bytes, &error),
              nullptr);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->localizedDescription(), "The data of a serializable object is no dictionary.");
  }
}

TEST(ORLFSerializableObject, EqualsAnObjectOfExactlyTheSameClassWithEqualData) {
  const auto data = entries({{"a", 1}});
  const Preferences first(data), second(data), other(entries({{"a", 2}}));
  const ORLFSerializableObject base(data);
  EXPECT_TRUE(first.isEqual(&first));
  EXPECT_TRUE(first.isEqual(&second));
  EXPECT_EQ(first.hash(), second.hash());
  EXPECT_FALSE(first.isEqual(&other));
  EXPECT_FALSE(first.isEqual(&base));
  EXPECT_FALSE(base.isEqual(&first));
  EXPECT_FALSE(first.isEqual(nullptr));
  EXPECT_TRUE(Preferences().isEqual(std::make_shared<Preferences>(entries({})).get()));
}

TEST(ORLFSerializableObject, CopiesToANewObjectOfItsClassWithDataOfItsOwn) {
  const auto object = std::make_shared<Preferences>(entries({{"a", 1}}));
  object->setLevel(4);
  const auto copy = copyOf(object);
  EXPECT_TRUE(copy->isEqual(object.get()));
  EXPECT_EQ(copy->level(), 0);
  copy->setValueForKey(2, "a");
  EXPECT_EQ(object->valueForKey("a"), id(1));
  EXPECT_EQ(copyOf(std::make_shared<Preferences>())->data()->count(), 0U);
  EXPECT_EQ(copyOf(std::make_shared<ORLFSerializableObject>())->className(),
            "ORLFSerializableObject");
}

/// Derives from the class itself, without the helper.
class Plain final : public ORLFSerializableObject {
 public:
  using ORLFSerializableObject::ORLFSerializableObject;

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override {
    return std::make_shared<Plain>();
  }
};

class Unfinished final : public ORLFSerializableObject {};

TEST(ORLFSerializableObject, CopiesADirectSubclassToItsOwnClass) {
  const auto object = std::make_shared<Plain>(entries({{"a", 1}}));
  const auto copy = std::dynamic_pointer_cast<Plain>(object->copy());
  ASSERT_TRUE(copy);
  EXPECT_TRUE(copy->isEqual(object.get()));
  EXPECT_THROW(static_cast<void>(std::make_shared<Unfinished>()->copy()), NSException);
}

TEST(ORLFSerializableObject, DescribesItsClassAddressAndData) {
  const auto object = std::make_shared<Preferences>(entries({{"locale", "en_US"}}));
  char address[32];
  std::snprintf(address, sizeof address, "0x%" PRIxPTR,
                reinterpret_cast<std::uintptr_t>(static_cast<NSObject*>(object.get())));
  EXPECT_EQ(object->description(),
            "<Preferences: " + std::string(address) + ", data: {\n    locale = \"en_US\";\n}>");
}

/// An archive of `Preferences` that no archiver of this process wrote.
NSData archiveOfPreferences() {
  const auto uid = [](std::uint32_t index) { return std::make_shared<NSPropertyListUID>(index); };
  const id objects =
      NSArray::arrayWithObjects({"$null", entries({{"data", uid(3)}, {"$class", uid(2)}}),
                                 entries({{"$classname", "Preferences"}}),
                                 entries({{"NS.keys", NSArray::arrayWithObjects({uid(5)})},
                                          {"NS.objects", NSArray::arrayWithObjects({uid(6)})},
                                          {"$class", uid(4)}}),
                                 entries({{"$classname", "NSDictionary"}}), "level", 7});
  return *NSPropertyListSerialization::dataWithPropertyList(
      entries({{"$archiver", "NSKeyedArchiver"},
               {"$version", 100000},
               {"$top", entries({{"root", uid(1)}})},
               {"$objects", objects}}),
      NSPropertyListBinaryFormat_v1_0, 0);
}

// A process of its own, in which nothing has named the subclass yet.
TEST(ORLFSerializableObjectDeathTest, OpensArchivesOfASubclassThatTheProcessHasNotNamed) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        const auto object = NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFSerializableObject>(
            archiveOfPreferences());
        const bool isRight = object && dynamic_cast<Preferences*>(object.get()) != nullptr &&
                             object->data()->objectForKey("level") == id(7);
        ::_exit(isRight ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace ORLFoundation
