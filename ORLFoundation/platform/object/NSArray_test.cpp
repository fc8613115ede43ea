
#include <ORLFoundation/platform/object/NSArray.h>

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSIndexSet.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <ORLFoundation/platform/object/NSObject_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/platform/value/NSException_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using orlftest::nameOfException;

using Array = std::shared_ptr<NSArray>;

Array list(std::initializer_list<id> members) { return NSArray::arrayWithObjects(members); }

TEST(NSArray, KeepsItsMembersInOrder) {
  const Array array = list({1, "two", 1});
  EXPECT_EQ(array->count(), 3U);
  EXPECT_EQ(array->objectAtIndex(1), id("two"));
  EXPECT_EQ(array->firstObject(), id(1));
  EXPECT_EQ(array->lastObject(), id(1));
  EXPECT_EQ(array->indexOfObject(1), 0U);
  EXPECT_EQ(array->indexOfObject(3), static_cast<NSUInteger>(NSNotFound));
  EXPECT_TRUE(array->containsObject(1.0));
  EXPECT_TRUE(list({})->firstObject().isNil());
  EXPECT_TRUE(list({})->lastObject().isNil());
}

TEST(NSArray, RaisesBeyondItsBoundsAndForNil) {
  const auto array = std::make_shared<NSMutableArray>(std::vector<id>{1});
  EXPECT_EQ(nameOfException([&] { static_cast<void>(array->objectAtIndex(1)); }), NSRangeException);
  EXPECT_EQ(nameOfException([&] { array->insertObject(1, 2); }), NSRangeException);
  EXPECT_EQ(nameOfException([&] { array->removeObjectAtIndex(1); }), NSRangeException);
  EXPECT_EQ(nameOfException([&] { array->replaceObjectAtIndex(1, 1); }), NSRangeException);
  EXPECT_EQ(nameOfException([&] { array->addObject(nullptr); }), NSInvalidArgumentException);
  EXPECT_EQ(nameOfException([&] { list({nullptr}); }), NSInvalidArgumentException);
  EXPECT_EQ(array->count(), 1U);
}

TEST(NSArray, ChangesWhenItIsMutable) {
  const auto array = std::make_shared<NSMutableArray>();
  array->addObject(1);
  array->addObject(2);
  array->insertObject(0, 0);
  array->insertObject(3, 3);
  EXPECT_TRUE(array->isEqual(list({0, 1, 2, 3}).get()));
  array->replaceObjectAtIndex(3, 1);
  array->removeObject(array->objectAtIndex(1));
  EXPECT_TRUE(array->isEqual(list({0, 2}).get()));
  array->removeObjectAtIndex(0);
  EXPECT_TRUE(array->isEqual(list({2}).get()));
  array->removeAllObjects();
  EXPECT_EQ(array->count(), 0U);
}

TEST(NSArray, CopiesToItselfAndAMutableOneToASnapshot) {
  const Array array = list({1});
  EXPECT_EQ(array->copy(), array);
  const auto mutableArray = copyOf(std::static_pointer_cast<NSObject>(array->mutableCopy()));
  const auto changing = std::make_shared<NSMutableArray>(std::vector<id>{1});
  const id snapshot = changing->copy();
  changing->addObject(2);
  EXPECT_EQ(snapshot.as<NSArray>()->count(), 1U);
  EXPECT_EQ(snapshot.as<NSMutableArray>(), nullptr);
  EXPECT_EQ(array->mutableCopy()->className(), "NSMutableArray");
  EXPECT_TRUE(mutableArray->isEqual(array.get()));
}

TEST(NSArray, EqualsAndHashesByContent) {
  EXPECT_EQ(id(list({1, "a"})), id(list({1.0, "a"})));
  EXPECT_EQ(list({1, "a"})->hash(), list({1.0, "a"})->hash());
  EXPECT_NE(id(list({1, 2})), id(list({2, 1})));
  EXPECT_NE(id(list({1})), id(list({1, 2})));
  EXPECT_EQ(id(list({list({1})})), id(list({list({1})})));
  EXPECT_EQ(list({list({1})})->hash(), list({list({1})})->hash());
}

TEST(NSArray, DescribesItselfLineByLine) {
  EXPECT_EQ(list({1, 2})->description(), "(\n    1,\n    2\n)");
  EXPECT_EQ(list({})->description(), "(\n)");
}

TEST(NSArray, QuotesMembersThatAreNotPlainWords) {
  const Array array =
      list({"plain1", "two words", "", -1, 1.5, NSNull(), "a_b", "q\"\\\n\t", "é𝄞"});
  EXPECT_EQ(array->description(),
            "(\n    plain1,\n    \"two words\",\n    \"\",\n    \"-1\",\n    \"1.5\",\n"
            "    \"<null>\",\n    \"a_b\",\n    \"q\\\"\\\\\\n\\t\",\n"
            "    \"\\U00e9\\Ud834\\Udd1e\"\n)");
}

TEST(NSArray, DescribesBytesThatAreNoTextAsReplacements) {
  EXPECT_EQ(list({"\xff\xc3"})->description(), "(\n    \"\\Ufffd\\Ufffd\"\n)");
  struct {
    std::string_view name, bytes;
    int replacements;
  } const cases[] = {
      {"Overlong", "\xe0\x80\xaf", 3},
      {"OverlongOfFour", "\xf0\x80\x80\xaf", 4},
      {"Surrogate", "\xed\xa0\x80", 3},
      {"BeyondTheLast", "\xf4\x90\x80\x80", 4},
      {"CutOff", "\xe2\x82", 1},
      {"LoneContinuation", "\x80", 1},
      {"LeadBeforeALetter", "\xe2\x82z", 1},
  };
  for (const auto& row : cases) {
    std::string units = "(\n    \"", text;
    for (int i = 0; i < row.replacements; ++i) {
      units += "\\Ufffd";
      text += "\uFFFD";
    }
    const bool hasLetter = row.bytes.back() == 'z';
    EXPECT_EQ(list({row.bytes})->description(), units + (hasLetter ? "z" : "") + "\"\n)")
        << row.name;
    EXPECT_EQ(id(row.bytes).description(), text + (hasLetter ? "z" : "")) << row.name;
  }
  EXPECT_EQ(id("é€😀\u07FF\uFFFD").description(), "é€😀\u07FF\uFFFD");
}

TEST(NSArray, IndentsCollectionsInside) {
  const Array array = list({list({1}), NSDictionary::dictionaryWithEntries({{"a", list({2})}})});
  EXPECT_EQ(array->description(),
            "(\n        (\n        1\n    ),\n        {\n        a =         (\n            2\n"
            "        );\n    }\n)");
}

TEST(NSArray, DescribesNoDeeperThanAHundredLevels) {
  id nested = 1;
  for (int i = 0; i < 1000; ++i) nested = list({nested});
  EXPECT_NE(nested.description().find("..."), std::string::npos);
}

// ---- key-value access ----

Array accounts() {
  const auto account = [](const char* name, id amount) {
    return id(NSDictionary::dictionaryWithEntries({{"name", name}, {"amount", std::move(amount)}}));
  };
  return list({account("b", NSDecimal::parse("0.10")), account("a", NSDecimal::parse("0.20")),
               account("b", 3), NSDictionary::dictionaryWithEntries({{"name", "c"}})});
}

struct OperatorCase {
  const char* keyPath;
  id value;
};
const OperatorCase kOperators[] = {
    {"@count", 4},
    {"name", list({"b", "a", "b", "c"})},
    {"amount", list({NSDecimal::parse("0.1"), NSDecimal::parse("0.2"), 3, NSNull()})},
    {"@sum.amount", NSDecimal::parse("3.3")},
    {"@avg.amount", NSDecimal::parse("1.1")},
    {"@max.amount", 3},
    {"@min.amount", NSDecimal::parse("0.1")},
    {"@max.name", "c"},
    {"@min.name", "a"},
    {"@unionOfObjects.name", list({"b", "a", "b", "c"})},
    {"@unionOfObjects.amount", list({NSDecimal::parse("0.1"), NSDecimal::parse("0.2"), 3})},
    {"@distinctUnionOfObjects.name", list({"b", "a", "c"})},
    {"@sum.name", 0},
    {"name.@count", 4},
};

TEST(NSArray, AnswersKeyPathsWithOperators) {
  for (const auto& row : kOperators)
    EXPECT_EQ(accounts()->valueForKeyPath(row.keyPath), row.value)
        << row.keyPath << ": " << accounts()->valueForKeyPath(row.keyPath).description();
}

TEST(NSArray, AnswersOperatorsOfAnEmptyList) {
  EXPECT_EQ(list({})->valueForKeyPath("@sum.x"), id(0));
  EXPECT_EQ(list({})->valueForKeyPath("@avg.x"), id(0));
  EXPECT_TRUE(list({})->valueForKeyPath("@max.x").isNil());
  EXPECT_TRUE(list({})->valueForKeyPath("@min.x").isNil());
  EXPECT_EQ(list({})->valueForKeyPath("@unionOfObjects.x"), id(list({})));
}

TEST(NSArray, OrdersDatesAndLeavesUnlikeValuesInTheirOrder) {
  const NSDate early = NSDate::distantPast();
  const NSDate late = NSDate::distantFuture();
  EXPECT_EQ(list({late, early})->valueForKeyPath("@min.self"), id(early));
  EXPECT_EQ(list({early, late})->valueForKeyPath("@max.self"), id(late));
  EXPECT_EQ(list({"text", 1})->valueForKeyPath("@max.self"), id("text"));
}

TEST(NSArray, RaisesForUnknownOperators) {
  for (const char* keyPath : {"@median.amount", "@sum", "@max"})
    EXPECT_EQ(nameOfException([&] { static_cast<void>(accounts()->valueForKeyPath(keyPath)); }),
              NSInvalidArgumentException)
        << keyPath;
  EXPECT_EQ(nameOfException([&] { static_cast<void>(accounts()->valueForKey("@sum")); }),
            NSUndefinedKeyException);
}

TEST(NSArray, SetsAValueOfEveryMember) {
  const auto first = std::make_shared<NSMutableDictionary>();
  const auto second = std::make_shared<NSMutableDictionary>();
  list({first, second, "text"})->setValueForKey(7, "x");
  EXPECT_EQ(first->objectForKey("x"), id(7));
  EXPECT_EQ(second->objectForKey("x"), id(7));
}

TEST(NSArray, FindsObjectsByIdentity) {
  const id first = NSArray::arrayWithObjects({1});
  const id second = NSArray::arrayWithObjects({1});
  const auto list = NSArray::arrayWithObjects({first, second, "text"});
  EXPECT_EQ(list->indexOfObject(second), 0U);
  EXPECT_EQ(list->indexOfObjectIdenticalTo(second), 1U);
  EXPECT_EQ(list->indexOfObjectIdenticalTo("text"), 2U);
  EXPECT_EQ(list->indexOfObjectIdenticalTo(NSArray::arrayWithObjects({1})),
            static_cast<NSUInteger>(NSNotFound));
  EXPECT_EQ(list->indexOfObjectIdenticalTo(nullptr), static_cast<NSUInteger>(NSNotFound));
}

TEST(NSMutableArray, RemovesTheObjectsAtIndexes) {
  NSMutableArray list(std::vector<id>{0, 1, 2, 3, 4, 5});
  NSMutableIndexSet indexes(NSRange{3, 2});
  indexes.addIndex(0);
  list.removeObjectsAtIndexes(indexes);
  EXPECT_EQ(list.members(), (std::vector<id>{1, 2, 5}));
  EXPECT_THROW(list.removeObjectsAtIndexes(indexes), NSException);
  EXPECT_EQ(list.count(), 3U);
  list.removeObjectsAtIndexes(NSIndexSet());
  EXPECT_EQ(list.count(), 3U);
}

/// Looks into the array that holds it when it is destroyed.
class Walker final : public NSObject {
 public:
  Walker(const NSMutableArray& array, std::vector<NSUInteger>& counts)
      : array_(array), counts_(counts) {}
  ~Walker() override {
    NSUInteger objects = 0;
    for (const id& member : array_)
      objects += member.isNil() || member.description().empty() ? 0 : 1;
    counts_.push_back(objects);
    EXPECT_EQ(objects, array_.count());
  }
  /// Equals every object, so that it can be found without being held.
  [[nodiscard]] bool isEqual(const NSObject* other) const override { return other != nullptr; }

 private:
  const NSMutableArray& array_;
  std::vector<NSUInteger>& counts_;
};

struct DepartureCase {
  std::string_view name;
  void (*change)(NSMutableArray& array);
  std::vector<NSUInteger> counts;
};
const DepartureCase kDepartures[] = {
    {"Removed", [](NSMutableArray& array) { array.removeObjectAtIndex(1); }, {3}},
    {"Replaced", [](NSMutableArray& array) { array.replaceObjectAtIndex(1, "x"); }, {4}},
    {"RemovedByEquality",
     [](NSMutableArray& array) { array.removeObject(std::make_shared<NSObject>()); },
     {3}},
    {"AllRemoved", [](NSMutableArray& array) { array.removeAllObjects(); }, {0}},
    {"RemovedByIndexes",
     [](NSMutableArray& array) {
       NSMutableIndexSet indexes;
       indexes.addIndexesInRange({0, 2});
       array.removeObjectsAtIndexes(indexes);
     },
     {2}},
};

TEST(NSMutableArray, IsWholeWhileAMemberIsDestroyed) {
  for (const DepartureCase& row : kDepartures) {
    SCOPED_TRACE(row.name);
    std::vector<NSUInteger> counts;
    NSMutableArray array({"a", "b", "c"});
    array.insertObject(std::make_shared<Walker>(array, counts), 1);
    row.change(array);
    EXPECT_EQ(counts, row.counts);
  }
}

TEST(NSMutableArray, MayBeChangedByASetterOfItsMembers) {
  const auto array = std::make_shared<NSMutableArray>();
  const auto entry = std::make_shared<NSMutableDictionary>();
  array->addObject(entry);
  array->addObject(std::make_shared<NSMutableDictionary>());
  const auto token =
      entry->addObserver("key", NSKeyValueObservingOptionNew,
                         [&](const NSKeyValueChange&) { array->removeAllObjects(); });
  array->setValueForKey(1, "key");
  EXPECT_EQ(array->count(), 0U);
}

TEST(NSArray, CopiesOneOnTheStackToAnEqualOne) {
  NSArray array({1, "two"});
  orlftest::expectEqualCopyOfUnowned(array);
}

}  // namespace
}  // namespace ORLFoundation
