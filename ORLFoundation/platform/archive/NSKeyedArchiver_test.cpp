#include <ORLFoundation/platform/archive/NSKeyedArchive_testing.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace orlftest;

constexpr std::string_view kTrueArchive =
    "62706c6973743030 d4 01020304 0506070a 58 2476657273696f6e 59 246172636869766572 54 24746f70 "
    "58 "
    "246f626a65637473 12 000186a0 5f100f 4e534b657965644172636869766572 d1 08 09 54 726f6f74 80 01 "
    "a2 0b 0c 55 246e756c6c 09 08111a24293237494c5153565c 000000000000 01 01 000000000000000d "
    "0000000000000000 000000000000005d";

TEST(NSKeyedArchiver, WritesTheBooleanTrueByteForByte) {
  EXPECT_EQ(archived(true).text(), textOfHex(kTrueArchive));
  EXPECT_EQ(unarchived(NSData(std::string_view(textOfHex(kTrueArchive)))), id(true));
}

TEST(NSKeyedArchiver, NumbersObjectsBeforeTheirMembersAndClassesAfter) {
  auto sample = std::make_shared<Sample>();
  sample->label = "x";
  sample->tags = list({"x", 7});
  const auto root =
      NSPropertyListSerialization::propertyListWithData(archived(sample), 0).as<NSDictionary>();
  ASSERT_TRUE(root);
  EXPECT_EQ(root->objectForKey("$archiver"), id("NSKeyedArchiver"));
  EXPECT_EQ(root->objectForKey("$version"), id(100000));
  EXPECT_EQ(root->objectForKey("$top"), dictionary({{"root", uid(1)}}));
  EXPECT_EQ(root->objectForKey("$objects"),
            list({"$null",
                  dictionary({{"label", uid(2)},
                              {"when", uid(0)},
                              {"price", uid(0)},
                              {"tags", uid(3)},
                              {"count", 0},
                              {"small", 0},
                              {"open", false},
                              {"ratio", 0.0},
                              {"next", uid(0)},
                              {"parent", uid(0)},
                              {"$class", uid(6)}}),
                  "x", dictionary({{"NS.objects", list({uid(2), uid(4)})}, {"$class", uid(5)}}), 7,
                  classNamed("NSArray"), classNamed("Sample")}));
}

TEST(NSKeyedArchiver, WritesAndReadsEachPlainValue) {
  const id rows[] = {true,
                     false,
                     0,
                     -7,
                     NSIntegerMin,
                     NSUIntegerMax,
                     1.5,
                     std::numeric_limits<double>::infinity(),
                     "",
                     "Café 日本 😀",
                     "$null",
                     NSDecimal::parse("-1432.25"),
                     NSDate::distantFuture(),
                     NSDate::dateWithTimeIntervalSinceReferenceDate(-0.25),
                     NSData(std::string_view("\0\xFF", 2)),
                     *NSURL::URLWithString("https://example.com/a%20b?c=d#e"),
                     *NSUUID::initWithUUIDString("E621E1F8-C36C-495A-93FC-0C247A3E6E5F"),
                     NSNull::null(),
                     list({}),
                     list({1, "two", list({3, NSNull::null()})}),
                     dictionary({{"a", 1}, {2, "b"}, {list({3}), NSDate()}}),
                     std::make_shared<NSSet>(std::vector<id>{1, "one", list({1})})};
  for (const id& value : rows) {
    std::shared_ptr<const NSError> error;
    const id back = unarchived(archived(value), &error);
    EXPECT_EQ(back, value) << (error ? error->localizedDescription() : "");
    EXPECT_EQ(back.className(), value.className());
    if (const auto* number = value.get<NSNumber>()) {
      EXPECT_EQ(back.get<NSNumber>()->kind(), number->kind());
    }
  }
}

TEST(NSKeyedArchiver, KeepsMutableCollectionsMutable) {
  const id rows[] = {std::make_shared<NSMutableArray>(std::vector<id>{1}),
                     std::make_shared<NSMutableSet>(std::vector<id>{1}),
                     std::make_shared<NSMutableDictionary>(NSDictionary::Entries{{"a", 1}})};
  for (const id& value : rows) {
    const id back = unarchived(archived(value));
    EXPECT_EQ(back, value);
    EXPECT_EQ(back.className(), value.className());
  }
}

TEST(NSKeyedArchiver, KeepsSharedObjectsSharedAndWritesEqualValuesOnce) {
  const id shared = list({"text"});
  const auto back = unarchived(archived(list({shared, shared, list({"text"})}))).as<NSArray>();
  ASSERT_TRUE(back);
  EXPECT_EQ(back->objectAtIndex(0).object(), back->objectAtIndex(1).object());
  EXPECT_NE(back->objectAtIndex(0).object(), back->objectAtIndex(2).object());

  const id date = NSDate::distantPast();
  const id price = NSDecimal::parse("12.50");
  const std::string one(archived(list({date, price, "text", 7})).text());
  EXPECT_LT(
      archived(list({date, price, "text", 7, date, NSDecimal::parse("12.5"), "text", 7})).length(),
      one.size() + 20);
}

TEST(NSKeyedArchiver, WritesObjectsThatReferToEachOther) {
  auto first = std::make_shared<Sample>();
  first->next = std::make_shared<Sample>();
  first->next->parent = first;
  first->next->label = "second";
  const auto back = NSKeyedUnarchiver::unarchivedObjectOfClass<Sample>(archived(first));
  ASSERT_TRUE(back && back->next);
  EXPECT_EQ(back->next->label, id("second"));
  EXPECT_EQ(back->next->parent.lock(), back);

  // An object that is its own member.
  auto own = std::make_shared<Sample>();
  own->next = own;
  const auto ownBack = NSKeyedUnarchiver::unarchivedObjectOfClass<Sample>(archived(own));
  ASSERT_TRUE(ownBack);
  EXPECT_EQ(ownBack->next, ownBack);
  own->next = nullptr;
  ownBack->next = nullptr;
}

TEST(NSKeyedArchiver, RefusesCollectionsThatHoldThemselves) {
  const auto array = std::make_shared<NSMutableArray>();
  array->addObject(list({id(array)}));
  std::shared_ptr<const NSError> error;
  EXPECT_FALSE(NSKeyedArchiver::archivedDataWithRootObject(array, true, &error));
  ASSERT_TRUE(error);
  EXPECT_EQ(error->code(), NSCoderInvalidValueError);
  EXPECT_EQ(error->localizedDescription(), "A collection holds itself.");
  array->removeAllObjects();
}

TEST(NSKeyedArchiver, RefusesWhatCannotBeArchived) {
  const id rows[] = {std::make_shared<NSObject>(), list({std::make_shared<NSObject>()}),
                     NSRange{1, 2}, "\xFF", std::make_shared<Insecure>()};
  for (const id& value : rows) {
    std::shared_ptr<const NSError> error;
    EXPECT_FALSE(NSKeyedArchiver::archivedDataWithRootObject(value, true, &error));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), NSCoderInvalidValueError);
  }
}

TEST(NSKeyedArchiver, WritesNestingOf128ObjectsAndNoMore) {
  id nest = list({});
  for (int level = 1; level < 128; ++level) nest = list({nest});
  EXPECT_EQ(unarchived(archived(nest)), nest);
  EXPECT_FALSE(NSKeyedArchiver::archivedDataWithRootObject(list({nest}), true));
  // A date takes a level of its own, a text does not.
  for (const id& innermost : {id(NSDate()), id("text"), id("$null")}) {
    id around = innermost;
    for (int level = 0; level < 127; ++level) around = list({around});
    EXPECT_EQ(unarchived(archived(around)), around);
    const auto deeper = NSKeyedArchiver::archivedDataWithRootObject(list({around}), true);
    EXPECT_EQ(deeper.has_value(), innermost == id("text"));
  }

  std::vector<id> objects;
  for (std::uint32_t level = 1; level <= 129; ++level)
    objects.push_back(dictionary(
        {{"NS.objects", level < 129 ? list({uid(level + 1)}) : list({})}, {"$class", uid(130)}}));
  objects.push_back(classNamed("NSArray"));
  EXPECT_EQ(refusal(archiveOf(objects)), "The objects are nested too deep.");
}

TEST(NSKeyedArchiver, WritesValuesUnderTheCallersKeys) {
  NSKeyedArchiver archiver(true);
  archiver.encodeInt64(NSIntegerMin, "integer");
  archiver.encodeBool(true, "flag");
  archiver.encodeDouble(0.5, "real");
  archiver.encodeBytes(NSData(std::string_view("bytes")), "bytes");
  archiver.encodeObject("text", "$class");
  archiver.encodeObject(nullptr, "nothing");
  const auto coder = NSKeyedUnarchiver::initForReadingFromData(archiver.encodedData());
  ASSERT_TRUE(coder);
  EXPECT_EQ(coder->decodeInteger("integer"), NSIntegerMin);
  EXPECT_TRUE(coder->decodeBool("flag"));
  EXPECT_EQ(coder->decodeDouble("real"), 0.5);
  EXPECT_EQ(coder->decodeBytes("bytes"), NSData(std::string_view("bytes")));
  EXPECT_EQ(coder->decodeObjectOfClass<std::string>("$class"), "text");
  EXPECT_TRUE(coder->containsValueForKey("nothing"));
  EXPECT_FALSE(coder->decodeObjectOfClass<std::string>("nothing"));
  EXPECT_FALSE(coder->error());

  EXPECT_FALSE(coder->containsValueForKey("missing"));
  EXPECT_EQ(coder->decodeInt64("missing"), 0);
  EXPECT_EQ(coder->decodeInt32("missing"), 0);
  EXPECT_FALSE(coder->decodeBool("missing"));
  EXPECT_EQ(coder->decodeDouble("missing"), 0);
  EXPECT_FALSE(coder->decodeBytes("missing"));
  EXPECT_FALSE(coder->decodeText("missing"));
  EXPECT_FALSE(coder->decodeObjects("missing"));
  EXPECT_FALSE(coder->decodeObjectOfClass<NSDate>("missing"));
  EXPECT_FALSE(coder->error());
}

TEST(NSKeyedArchiver, WritesXMLWhereAsked) {
  auto sample = std::make_shared<Sample>();
  sample->label = "label";
  sample->price = NSDecimal::parse("0.1");
  NSKeyedArchiver archiver(true);
  archiver.setOutputFormat(NSPropertyListXMLFormat_v1_0);
  archiver.encodeObject(sample, NSKeyedArchiveRootObjectKey);
  const NSData data = archiver.encodedData();
  EXPECT_TRUE(data.text().starts_with("<?xml"));
  const auto back = NSKeyedUnarchiver::unarchivedObjectOfClass<Sample>(data);
  ASSERT_TRUE(back);
  EXPECT_EQ(back->label, sample->label);
  EXPECT_EQ(back->price, sample->price);
}

TEST(NSCoder, RaisesForTheOtherDirection) {
  NSKeyedArchiver archiver(true);
  EXPECT_THROW(static_cast<void>(archiver.decodeInt64("a")), NSException);
  EXPECT_THROW(static_cast<void>(archiver.containsValueForKey("a")), NSException);
  const auto coder = NSKeyedUnarchiver::initForReadingFromData(archived("x"));
  EXPECT_THROW(coder->encodeBool(true, "a"), NSException);
}

TEST(NSKeyedArchiver, WritesDecimalsInThePlatformsForm) {
  const auto objectsOf = [](const char* text) {
    const auto root =
        NSPropertyListSerialization::propertyListWithData(archived(NSDecimal::parse(text)), 0)
            .as<NSDictionary>();
    return root->objectForKey("$objects");
  };
  const id described =
      dictionary({{"$classname", "NSDecimalNumberPlaceholder"},
                  {"$classes", list({"NSDecimalNumberPlaceholder", "NSDecimalNumber", "NSNumber",
                                     "NSValue", "NSObject"})}});
  const auto entry = [](int exponent, int length, bool negative, bool compact,
                        std::string_view words) {
    std::string bytes = textOfHex(words);
    bytes.resize(16);
    return dictionary({{"NS.exponent", exponent},
                       {"NS.length", length},
                       {"NS.negative", negative},
                       {"NS.compact", compact},
                       {"NS.mantissa.bo", 1},
                       {"NS.mantissa", NSData(std::string_view(bytes))},
                       {"$class", uid(2)}});
  };
  EXPECT_EQ(objectsOf("-250000"), list({"$null", entry(4, 1, true, true, "19"), described}));
  EXPECT_EQ(objectsOf("65537"), list({"$null", entry(0, 2, false, true, "01000100"), described}));
  EXPECT_EQ(objectsOf("0.00"), list({"$null", entry(0, 0, false, false, ""), described}));
  EXPECT_EQ(objectsOf("NaN"), list({"$null", entry(0, 0, true, false, ""), described}));
}

TEST(NSCodingClass, KeepsTheFirstRecordOfAName) {
  const NSCodingClass& again = NSCodingClass::define<Insecure>("Sample");
  EXPECT_EQ(&again, &Sample::codingClass());
  EXPECT_EQ(NSCodingClass::named("Sample"), &Sample::codingClass());
  EXPECT_EQ(NSCodingClass::named("NobodyDefinedThis"), nullptr);
  EXPECT_TRUE(SpecialSample::codingClass().isSubclassOf(Sample::codingClass()));
  EXPECT_FALSE(Sample::codingClass().isSubclassOf(SpecialSample::codingClass()));
}

}  // namespace
