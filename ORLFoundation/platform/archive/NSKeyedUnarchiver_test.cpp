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

// Its classes are numbered after all objects: a reader must not depend on the order.
constexpr std::string_view kSampleArchive =
    "62706c6973743030d4010203040506070a582476657273696f6e592461726368697665725424746f7058246f"
    "626a6563747312000186a05f100f4e534b657965644172636869766572d1080954726f6f748001ae0b0c1f20"
    "242a373d444546484b4e55246e756c6cd90d0e0f101112131415161718191a1b1c1d1e556c6162656c547768"
    "656e557072696365547461677355636f756e74546f70656e55726174696f56706172656e745624636c617373"
    "8002800380058007100309233ff80000000000008000800c6400430061006600e9d221152223574e532e7469"
    "6d652341c5a1c4c00000008004d2252627285a24636c6173736e616d655824636c6173736573564e53446174"
    "65a22729584e534f626a656374d72b2c2d2e2f3015313233343235365b4e532e6578706f6e656e74594e532e"
    "6c656e6774685b4e532e6e656761746976655a4e532e636f6d706163745e4e532e6d616e74697373612e626f"
    "5b4e532e6d616e746973736113fffffffffffffffe100108094f1010d2040000000000000000000000000000"
    "8006d2252638395f101a4e53446563696d616c4e756d626572506c616365686f6c646572a5383a3b3c295f10"
    "0f4e53446563696d616c4e756d626572584e534e756d626572574e5356616c7565d23e153f435a4e532e6f62"
    "6a65637473a340414280088009800a800b51611007d11547800dd22526494a574e534172726179a24929d225"
    "264c4d5653616d706c65a24c29d225264f50564e534e756c6ca24f2900080011001a00240029003200370049"
    "004c0051005300620068007b00810086008c00910097009c00a200a900b000b200b400b600b800ba00bb00c4"
    "00c600c800d100d600de00e700e900ee00f901020109010c011501240130013a014601510160016c01750177"
    "01780179018c018e019301b001b601c801d101d901de01e901ed01ef01f101f301f501f701f901fc01fe0203"
    "020b020e0213021a021d02220229000000000000020100000000000000510000000000000000000000000000"
    "022c";

TEST(NSKeyedUnarchiver, ReadsAnObjectWithFieldsOfEachKind) {
  const std::string bytes = textOfHex(kSampleArchive);
  ASSERT_EQ(bytes.size(), 750U);
  std::shared_ptr<const NSError> error;
  const auto sample =
      NSKeyedUnarchiver::unarchivedObjectOfClass<Sample>(NSData(std::string_view(bytes)), &error);
  ASSERT_TRUE(sample) << error->localizedDescription();
  EXPECT_EQ(sample->label, id("Café"));
  EXPECT_EQ(sample->when, id(NSDate::dateWithTimeIntervalSinceReferenceDate(725846400)));
  EXPECT_EQ(sample->price, id(NSDecimal::parse("12.34")));
  EXPECT_EQ(sample->tags, list({"a", 7, NSNull::null()}));
  EXPECT_EQ(sample->count, 3);
  EXPECT_TRUE(sample->open);
  EXPECT_EQ(sample->ratio, 1.5);
  EXPECT_FALSE(sample->parent.lock());
}

/// A coder over one field, to be asked for it in the wrong way.
std::shared_ptr<NSKeyedUnarchiver> coderWith(const id& value) {
  const auto data = NSPropertyListSerialization::dataWithPropertyList(
      dictionary({{"$version", 100000},
                  {"$archiver", "NSKeyedArchiver"},
                  {"$top", dictionary({{"k", value}})},
                  {"$objects", list({"$null", "text", 7})}}),
      NSPropertyListBinaryFormat_v1_0, 0);
  return NSKeyedUnarchiver::initForReadingFromData(*data);
}

TEST(NSKeyedUnarchiver, TakesAWholeNumberForABoolean) {
  EXPECT_TRUE(coderWith(2)->decodeBool("k"));
  EXPECT_FALSE(coderWith(0)->decodeBool("k"));
}

TEST(NSKeyedUnarchiver, FailsForValuesOfAnotherKindAndThenReadsNothing) {
  using Coder = std::shared_ptr<NSKeyedUnarchiver>;
  const std::pair<id, void (*)(const Coder&)> rows[] = {
      {1.5, [](const Coder& coder) { EXPECT_EQ(coder->decodeInt64("k"), 0); }},
      {true, [](const Coder& coder) { EXPECT_EQ(coder->decodeInt64("k"), 0); }},
      {uid(2), [](const Coder& coder) { EXPECT_EQ(coder->decodeInt64("k"), 0); }},
      {NSUIntegerMax, [](const Coder& coder) { EXPECT_EQ(coder->decodeInt64("k"), 0); }},
      {4294967296, [](const Coder& coder) { EXPECT_EQ(coder->decodeInt32("k"), 0); }},
      {-2147483649, [](const Coder& coder) { EXPECT_EQ(coder->decodeInt32("k"), 0); }},
      {1, [](const Coder& coder) { EXPECT_EQ(coder->decodeDouble("k"), 0); }},
      {"x", [](const Coder& coder) { EXPECT_FALSE(coder->decodeBool("k")); }},
      {1.0, [](const Coder& coder) { EXPECT_FALSE(coder->decodeBool("k")); }},
      {"x", [](const Coder& coder) { EXPECT_FALSE(coder->decodeBytes("k")); }},
      {1, [](const Coder& coder) { EXPECT_FALSE(coder->decodeText("k")); }},
      {1, [](const Coder& coder) { EXPECT_FALSE(coder->decodeObjects("k")); }},
      {list({1}), [](const Coder& coder) { EXPECT_FALSE(coder->decodeObjects("k")); }},
      {2, [](const Coder& coder) { EXPECT_FALSE(coder->decodeObjectOfClass<NSNumber>("k")); }},
      {uid(1), [](const Coder& coder) { EXPECT_FALSE(coder->decodeObjectOfClass<NSNumber>("k")); }},
      {uid(3), [](const Coder& coder) { EXPECT_FALSE(coder->decodeObjectOfClass<NSNumber>("k")); }},
  };
  for (const auto& [value, ask] : rows) {
    const auto coder = coderWith(value);
    ask(coder);
    ASSERT_TRUE(coder->error()) << value.description();
    const auto first = coder->error();
    EXPECT_FALSE(coder->decodeBool("k"));
    coder->failWithError("a second failure");
    EXPECT_EQ(coder->error(), first);
  }
}

TEST(NSKeyedUnarchiver, RefusesClassesThatAreNotAllowed) {
  const NSData data = archived(std::make_shared<Sample>());
  std::shared_ptr<const NSError> error;
  EXPECT_TRUE(
      (NSKeyedUnarchiver::unarchivedObjectOfClasses<NSArray, NSDate>(data, &error).isNil()));
  ASSERT_TRUE(error);
  EXPECT_EQ(error->localizedDescription(), "The class Sample is not allowed.");
  EXPECT_FALSE(NSKeyedUnarchiver::unarchivedObjectOfClass<std::string>(archived(7)));
  EXPECT_FALSE(NSKeyedUnarchiver::unarchivedObjectOfClass<NSNumber>(archived("7")));
  EXPECT_FALSE(NSKeyedUnarchiver::unarchivedObjectOfClass<NSNumber>(archived(NSData())));
  // Members must be allowed too, wherever they stand.
  EXPECT_FALSE(NSKeyedUnarchiver::unarchivedObjectOfClass<NSArray>(archived(list({1}))));
  EXPECT_TRUE((NSKeyedUnarchiver::unarchivedObjectOfClasses<NSArray, NSNumber>(
                   archived(list({list({1, "text"})})))
                   .isNil()));
}

TEST(NSKeyedUnarchiver, AllowsSubclassesThatAreKnown) {
  const NSData data = archived(std::make_shared<SpecialSample>());
  EXPECT_TRUE(std::dynamic_pointer_cast<SpecialSample>(
      NSKeyedUnarchiver::unarchivedObjectOfClass<Sample>(data)));
  EXPECT_FALSE(NSKeyedUnarchiver::unarchivedObjectOfClass<SpecialSample>(
      archived(std::make_shared<Sample>())));
  EXPECT_TRUE(NSKeyedUnarchiver::unarchivedObjectOfClass<NSNumber>(archived(NSDecimal::one())));
}

TEST(NSKeyedUnarchiver, TrustsNeitherTheChainNorTheNameOfAClass) {
  const id strange = dictionary(
      {{"$classname", "Stranger"}, {"$classes", list({"Stranger", "Sample", "NSObject"})}});
  EXPECT_EQ(refusal(archiveOf({dictionary({{"$class", uid(2)}}), strange})),
            "The class Stranger is unknown.");
  const id posing = dictionary(
      {{"$classname", "Insecure"}, {"$classes", list({"Insecure", "NSArray", "NSObject"})}});
  static_cast<void>(Insecure::codingClass());
  EXPECT_EQ(refusal(archiveOf({dictionary({{"$class", uid(2)}}), posing})),
            "The class Insecure is not allowed.");
  EXPECT_FALSE(NSKeyedUnarchiver::unarchivedObjectOfClass<Insecure>(
      archiveOf({dictionary({{"$class", uid(2)}}), posing})));
  // The chain of a known class has no say, nor has its absence.
  const id bare = dictionary({{"$classname", "Sample"}});
  EXPECT_FALSE(unarchived(archiveOf({dictionary({{"$class", uid(2)}}), bare})).isNil());
}

TEST(NSKeyedUnarchiver, TriesTheHintsOfAnUnknownClass) {
  const auto archive = [](std::vector<id> hints) {
    return archiveOf(
        {dictionary({{"NS.time", 1.0}, {"$class", uid(2)}}),
         dictionary({{"$classname", "FutureDate"}, {"$classhints", list(std::move(hints))}})});
  };
  EXPECT_EQ(unarchived(archive({"Unknown", 7, "NSDate", "NSArray"})),
            id(NSDate::dateWithTimeIntervalSinceReferenceDate(1)));
  EXPECT_TRUE(unarchived(archive({"Unknown"})).isNil());
}

TEST(NSKeyedUnarchiver, ReadsOtherFormsOfPlainValues) {
  EXPECT_EQ(unarchived(archiveOf({dictionary({{"NS.string", "mutable"}, {"$class", uid(2)}}),
                                  classNamed("NSMutableString")})),
            id("mutable"));
  EXPECT_EQ(unarchived(archiveOf(
                {dictionary({{"NS.data", NSData(std::string_view("b"))}, {"$class", uid(2)}}),
                 classNamed("NSMutableData")})),
            id(NSData(std::string_view("b"))));
  EXPECT_EQ(unarchived(archiveOf({NSDate()})), id(NSDate()));
  EXPECT_EQ(unarchived(archiveOf(
                {dictionary({{"NS.base", uid(2)}, {"NS.relative", uid(4)}, {"$class", uid(5)}}),
                 dictionary({{"NS.base", uid(0)}, {"NS.relative", uid(3)}, {"$class", uid(5)}}),
                 "https://example.com/a/b?c", "../d#e", classNamed("NSURL")})),
            id(*NSURL::URLWithString("https://example.com/d#e")));
  EXPECT_EQ(unarchived(archiveOf({list({}), "x"})), id());
}

struct BrokenCase {
  std::string_view name;
  std::vector<id> objects;
};

TEST(NSKeyedUnarchiver, RefusesDamagedObjects) {
  const id array = classNamed("NSArray");
  const BrokenCase rows[] = {
      {"NoClass", {dictionary({{"NS.objects", list({})}})}},
      {"ClassIsNoReference", {dictionary({{"$class", 2}}), array}},
      {"ClassOutside", {dictionary({{"$class", uid(9)}}), array}},
      {"ClassIsText", {dictionary({{"$class", uid(2)}}), "NSArray"}},
      {"ClassWithoutName", {dictionary({{"$class", uid(2)}}), dictionary({})}},
      {"ClassOfItself", {dictionary({{"$class", uid(1)}})}},
      {"ClassUsedAsObject", {array}},
      {"ArrayAsEntry", {list({1})}},
      {"ReferenceAsEntry", {uid(1)}},
      {"NoMembers", {dictionary({{"$class", uid(2)}}), array}},
      {"MembersAreNoReferences",
       {dictionary({{"NS.objects", list({1})}, {"$class", uid(2)}}), array}},
      {"MemberOutside", {dictionary({{"NS.objects", list({uid(7)})}, {"$class", uid(2)}}), array}},
      {"MemberIsNil", {dictionary({{"NS.objects", list({uid(0)})}, {"$class", uid(2)}}), array}},
      {"MemberIsTheNullText",
       {dictionary({{"NS.objects", list({uid(3)})}, {"$class", uid(2)}}), array, "$null"}},
      {"HoldsItself", {dictionary({{"NS.objects", list({uid(1)})}, {"$class", uid(2)}}), array}},
      {"HoldsItselfThroughAnother",
       {dictionary({{"NS.objects", list({uid(3)})}, {"$class", uid(2)}}), array,
        dictionary({{"NS.objects", list({uid(1)})}, {"$class", uid(2)}})}},
      {"MoreKeysThanValues",
       {dictionary({{"NS.keys", list({uid(3)})}, {"NS.objects", list({})}, {"$class", uid(2)}}),
        classNamed("NSDictionary"), "k"}},
      {"NoKeys",
       {dictionary({{"NS.objects", list({})}, {"$class", uid(2)}}), classNamed("NSDictionary")}},
      {"ShortIdentifier",
       {dictionary({{"NS.uuidbytes", NSData(std::string_view("short"))}, {"$class", uid(2)}}),
        classNamed("NSUUID")}},
      {"DateWithoutTime", {dictionary({{"$class", uid(2)}}), classNamed("NSDate")}},
      {"DateNotANumber",
       {dictionary({{"NS.time", std::nan("")}, {"$class", uid(2)}}), classNamed("NSDate")}},
      {"DateInfinite",
       {dictionary({{"NS.time", std::numeric_limits<double>::infinity()}, {"$class", uid(2)}}),
        classNamed("NSDate")}},
      {"AddressWithoutText", {dictionary({{"$class", uid(2)}}), classNamed("NSURL")}},
      {"AddressThatIsNone",
       {dictionary({{"NS.relative", uid(3)}, {"$class", uid(2)}}), classNamed("NSURL"), "a b"}},
      {"NumberWithFields", {dictionary({{"$class", uid(2)}}), classNamed("NSNumber")}},
      {"RefusesItself", {dictionary({{"mode", 1}, {"$class", uid(2)}}), classNamed("Stubborn")}},
      {"Raises", {dictionary({{"mode", 2}, {"$class", uid(2)}}), classNamed("Stubborn")}},
      {"CycleThatIsNotAnnounced",
       {dictionary({{"member", uid(1)}, {"$class", uid(2)}}), classNamed("Stubborn")}},
  };
  for (const BrokenCase& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_NE(refusal(archiveOf(row.objects)), "no error");
    EXPECT_NE(refusal(archiveOf(row.objects, NSPropertyListXMLFormat_v1_0)), "no error");
  }
}

TEST(NSKeyedUnarchiver, RefusesAListThatIsNoArchive) {
  const id objects = list({"$null", "text"});
  const id top = dictionary({{"root", uid(1)}});
  const id rows[] = {
      5,
      list({}),
      dictionary({}),
      dictionary({{"$archiver", "NSKeyedArchiver"}, {"$top", top}}),
      dictionary({{"$archiver", "NSKeyedArchiver"}, {"$objects", objects}}),
      dictionary({{"$top", top}, {"$objects", objects}}),
      dictionary({{"$archiver", "OtherArchiver"}, {"$top", top}, {"$objects", objects}}),
      dictionary({{"$archiver", "NSKeyedArchiver"}, {"$top", objects}, {"$objects", objects}}),
      dictionary({{"$archiver", "NSKeyedArchiver"}, {"$top", top}, {"$objects", top}}),
      dictionary({{"$archiver", "NSKeyedArchiver"}, {"$top", top}, {"$objects", list({})}}),
      dictionary(
          {{"$archiver", "NSKeyedArchiver"}, {"$top", dictionary({})}, {"$objects", objects}}),
      dictionary({{"$archiver", "NSKeyedArchiver"},
                  {"$top", dictionary({{"root", "text"}})},
                  {"$objects", objects}}),
  };
  for (const id& row : rows) {
    const auto data =
        NSPropertyListSerialization::dataWithPropertyList(row, NSPropertyListBinaryFormat_v1_0, 0);
    EXPECT_NE(refusal(*data), "no error") << row.description();
  }
  EXPECT_NE(refusal(NSData()), "no error");
  EXPECT_NE(refusal(NSData(std::string_view("text"))), "no error");
}

TEST(NSKeyedUnarchiver, PassesOverKeysItDoesNotKnow) {
  const auto data = NSPropertyListSerialization::dataWithPropertyList(
      dictionary({{"$archiver", "NSKeyedArchiver"},
                  {"$top", dictionary({{"root", uid(1)}, {"extra", 1}})},
                  {"$objects", list({"not null", "text"})},
                  {"$more", 1}}),
      NSPropertyListBinaryFormat_v1_0, 0);
  EXPECT_EQ(unarchived(*data), id("text"));
}

TEST(NSKeyedUnarchiver, BoundsTheHashingOfSharedKeys) {
  // A set of one member that is 40 levels of two references each.
  std::vector<id> objects;
  objects.push_back(dictionary({{"NS.objects", list({uid(4)})}, {"$class", uid(2)}}));
  objects.push_back(classNamed("NSSet"));
  objects.push_back(classNamed("NSArray"));
  for (std::uint32_t level = 0; level < 40; ++level)
    objects.push_back(
        dictionary({{"NS.objects", list({uid(5 + level), uid(5 + level)})}, {"$class", uid(3)}}));
  objects.push_back(true);
  EXPECT_EQ(refusal(archiveOf(objects)), "The keys of a collection are too large.");
  // As an array it is read, and its members stay shared.
  objects[0] = dictionary({{"NS.objects", list({uid(4)})}, {"$class", uid(3)}});
  EXPECT_FALSE(unarchived(archiveOf(objects)).isNil());
}

TEST(NSKeyedUnarchiver, BoundsTextThatIsRepeated) {
  std::vector<id> references(5000, uid(3));
  const NSData data = archiveOf({dictionary({{"NS.objects", list(references)}, {"$class", uid(2)}}),
                                 classNamed("NSArray"), std::string(1 << 16, 'x')});
  EXPECT_EQ(refusal(data), "The archive repeats too much text.");
  // What is written here is read here, however often it repeats.
  const id text = std::string(100000, 'x');
  const id repeated = std::make_shared<NSArray>(std::vector<id>(700, text));
  EXPECT_EQ(unarchived(archived(repeated)), repeated);
}

/// A subclass that nothing names but the object below.
class LateSample final : public Sample {
 public:
  static const NSCodingClass& codingClass() {
    static const NSCodingClass& record =
        NSCodingClass::define<LateSample>("LateSample", &Sample::codingClass());
    return record;
  }
  const NSCodingClass& classForCoder() const override { return codingClass(); }
  static std::shared_ptr<LateSample> initWithCoder(NSCoder&) {
    return std::make_shared<LateSample>();
  }
};
const NSKnownCodingClass<LateSample> kLateSamplesAreKnown;

TEST(NSKnownCodingClass, OpensASubclassThroughItsBaseInAProcessThatHasNotNamedIt) {
  const NSData data = archiveOf({dictionary({{"$class", uid(2)}}), classNamed("LateSample")});
  EXPECT_TRUE(std::dynamic_pointer_cast<LateSample>(
      NSKeyedUnarchiver::unarchivedObjectOfClass<Sample>(data)));
}

}  // namespace
