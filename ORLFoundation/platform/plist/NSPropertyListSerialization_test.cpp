
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/platform/plist/NSPropertyListUID.h>
#include <ORLFoundation/platform/plist/NSPropertyList_testing.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace orlftest;

/// Equal in value and in the kind of number.
void expectSame(const id& left, const id& right) {
  EXPECT_EQ(left, right);
  const auto* leftNumber = left.get<NSNumber>();
  const auto* rightNumber = right.get<NSNumber>();
  ASSERT_EQ(leftNumber == nullptr, rightNumber == nullptr);
  if (leftNumber == nullptr) return;
  EXPECT_EQ(leftNumber->kind(), rightNumber->kind());
}

struct ScalarCase {
  std::string_view name;
  id value;
  std::string_view object;   // in the binary form, in hex
  std::string_view element;  // in XML
};
const ScalarCase kScalars[] = {
    {"True", true, "09", "<true/>"},
    {"False", false, "08", "<false/>"},
    {"Zero", 0, "1000", "<integer>0</integer>"},
    {"OneByte", 255, "10ff", "<integer>255</integer>"},
    {"TwoBytes", 256, "110100", "<integer>256</integer>"},
    {"FourBytes", 65536, "1200010000", "<integer>65536</integer>"},
    {"EightBytes", 4294967296, "130000000100000000", "<integer>4294967296</integer>"},
    {"LargestSigned", NSIntegerMax, "137fffffffffffffff", "<integer>9223372036854775807</integer>"},
    {"Negative", -1, "13ffffffffffffffff", "<integer>-1</integer>"},
    {"Smallest", NSIntegerMin, "138000000000000000", "<integer>-9223372036854775808</integer>"},
    {"LargestUnsigned", NSUIntegerMax, "140000000000000000ffffffffffffffff",
     "<integer>18446744073709551615</integer>"},
    {"Real", 1.5, "233ff8000000000000", "<real>1.5</real>"},
    {"RealThatIsWhole", 1.0, "233ff0000000000000", "<real>1</real>"},
    {"RealWithAllItsDigits", 0.1, "233fb999999999999a", "<real>0.10000000000000001</real>"},
    {"RealZero", 0.0, "230000000000000000", "<real>0.0</real>"},
    {"RealInfinity", std::numeric_limits<double>::infinity(), "237ff0000000000000",
     "<real>+infinity</real>"},
    {"Date", NSDate::dateWithTimeIntervalSinceReferenceDate(725857445), "3341c5a1da52800000",
     "<date>2024-01-02T03:04:05Z</date>"},
    {"DateBeforeReference", NSDate::dateWithTimeIntervalSinceReferenceDate(-1),
     "33bff0000000000000", "<date>2000-12-31T23:59:59Z</date>"},
    {"DistantFuture", NSDate::distantFuture(), "33422d6420cf000000", ""},
    {"ASCII", "abc", "53616263", "<string>abc</string>"},
    {"EmptyText", "", "50", "<string></string>"},
    {"Latin", "é", "6100e9", "<string>é</string>"},
    {"BeyondTheBasicPlane", "😀", "62d83dde00", "<string>😀</string>"},
    {"TextOfFifteen", "123456789012345", "5f100f313233343536373839303132333435",
     "<string>123456789012345</string>"},
    {"SpecialCharacters", "x<&>\"'", "56783c263e2227", "<string>x&lt;&amp;&gt;\"'</string>"},
    {"CarriageReturn", "a\r\nb", "54610d0a62", "<string>a&#13;\nb</string>"},
    {"NoData", NSData(), "40", "<data>\n</data>"},
    {"ThreeBytes", NSData(std::string_view("\x01\x02\xff", 3)), "430102ff",
     "<data>\nAQL/\n</data>"},
};

TEST(NSPropertyListSerialization, WritesAndReadsEachScalarInBothForms) {
  for (const ScalarCase& row : kScalars) {
    SCOPED_TRACE(row.name);
    if (row.name != "DistantFuture") {
      const std::string object = textOfHex(row.object);
      const NSData binary = written(row.value, NSPropertyListBinaryFormat_v1_0);
      EXPECT_EQ(binary.text().substr(8, object.size()), object);
      EXPECT_EQ(binary.length(), 8 + object.size() + 1 + 32);
      EXPECT_EQ(xmlOf(row.value), inDocument(std::string(row.element) + "\n"));
      expectSame(read(binaryList({object})), row.value);
    }
    expectSame(read(written(row.value, NSPropertyListBinaryFormat_v1_0)), row.value);
    expectSame(read(written(row.value, NSPropertyListXMLFormat_v1_0)), row.value);
  }
}

TEST(NSPropertyListSerialization, WritesTheSmallestFile) {
  EXPECT_EQ(written(true, NSPropertyListBinaryFormat_v1_0).text(),
            textOfHex("62706c6973743030 09 08 000000000000 01 01 0000000000000001 "
                      "0000000000000000 0000000000000009"));
}

TEST(NSPropertyListSerialization, ReadsABinaryDictionary) {
  const id list = read(textOfHex(
      "62706c6973743030d30102030405085161516251641001a20607096100e913ffffffffffffffff080f111315171a"
      "1b1e0000000000000101000000000000000900000000000000000000000000000027"));
  const id expected = NSDictionary::dictionaryWithEntries(
      {{"a", 1}, {"b", NSArray::arrayWithObjects({true, "é"})}, {"d", -1}});
  EXPECT_EQ(list, expected);
}

TEST(NSPropertyListSerialization, ReadsNarrowRealsAndWideReferences) {
  EXPECT_EQ(read(binaryList({textOfHex("223fc00000")})), id(1.5));
  EXPECT_EQ(read(binaryList({textOfHex("14ffffffffffffffffffffffffffffffff")})), id(-1));
  const auto uid = read(binaryList({textOfHex("83ffffffff")})).as<NSPropertyListUID>();
  ASSERT_TRUE(uid);
  EXPECT_EQ(uid->value(), 0xFFFFFFFFU);
  EXPECT_TRUE(
      read(binaryList({textOfHex("8f000000000000000000000000000001 00")})).as<NSPropertyListUID>());
}

TEST(NSPropertyListSerialization, WritesAndReadsReferencesOfArchives) {
  for (const std::uint32_t value : {0U, 5U, 255U, 256U, 65536U, 0xFFFFFFFFU}) {
    const id uid = std::make_shared<NSPropertyListUID>(value);
    EXPECT_EQ(read(written(uid, NSPropertyListBinaryFormat_v1_0)), uid);
    EXPECT_EQ(read(written(uid, NSPropertyListXMLFormat_v1_0)), uid);
  }
  EXPECT_EQ(xmlOf(std::make_shared<NSPropertyListUID>(7)),
            inDocument("<dict>\n\t<key>CF$UID</key>\n\t<integer>7</integer>\n</dict>\n"));
  // Not one: a number out of range, another kind, another entry beside it.
  for (const char* entries : {"<integer>-1</integer>", "<integer>4294967296</integer>",
                              "<string>1</string>", "<integer>1</integer><key>x</key><true/>"}) {
    const std::string body = "<dict><key>CF$UID</key>" + std::string(entries) + "</dict>";
    EXPECT_TRUE(read(inDocument(body)).as<NSDictionary>()) << entries;
  }
}

TEST(NSPropertyListSerialization, WritesXMLByteForByte) {
  std::vector<std::uint8_t> sixty;
  for (std::uint8_t byte = 0; byte < 60; ++byte) sixty.push_back(byte);
  const id list = NSDictionary::dictionaryWithEntries(
      {{"t", NSDate::dateWithTimeIntervalSinceReferenceDate(725857445.75)},
       {"e", std::make_shared<NSDictionary>()},
       {"d", NSData(sixty)},
       {"a", "x<&>\""},
       {"b", NSArray::arrayWithObjects({1, 2.5, true})},
       {"n", std::make_shared<NSArray>()}});
  EXPECT_EQ(xmlOf(list), inDocument("<dict>\n"
                                    "\t<key>a</key>\n"
                                    "\t<string>x&lt;&amp;&gt;\"</string>\n"
                                    "\t<key>b</key>\n"
                                    "\t<array>\n"
                                    "\t\t<integer>1</integer>\n"
                                    "\t\t<real>2.5</real>\n"
                                    "\t\t<true/>\n"
                                    "\t</array>\n"
                                    "\t<key>d</key>\n"
                                    "\t<data>\n"
                                    "\tAAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8gISIjJCUmJygp"
                                    "KissLS4vMDEy\n"
                                    "\tMzQ1Njc4OTo7\n"
                                    "\t</data>\n"
                                    "\t<key>e</key>\n"
                                    "\t<dict/>\n"
                                    "\t<key>n</key>\n"
                                    "\t<array/>\n"
                                    "\t<key>t</key>\n"
                                    "\t<date>2024-01-02T03:04:05Z</date>\n"
                                    "</dict>\n"));
}

TEST(NSPropertyListSerialization, SortsKeysByUTF16Units) {
  // U+1F600 is a pair of surrogates, which stand before U+FF01 there.
  const std::string text =
      xmlOf(NSDictionary::dictionaryWithEntries({{"！", 1}, {"😀", 2}, {"b", 3}, {"Z", 4}}));
  const std::size_t positions[] = {text.find("<key>Z"), text.find("<key>b"), text.find("<key>😀"),
                                   text.find("<key>！")};
  EXPECT_TRUE(std::is_sorted(std::begin(positions), std::end(positions)));
}

TEST(NSPropertyListSerialization, NarrowsDataWithEachLevelDownToEight) {
  const id data = NSData(std::vector<std::uint8_t>(200));
  id list = data;
  for (std::size_t level = 0; level <= 10; ++level) {
    const std::string text = xmlOf(list);
    const std::string indent(std::min<std::size_t>(level, 8), '\t');
    const std::size_t begin = text.find("<data>\n") + 7 + indent.size();
    EXPECT_EQ(text.find('\n', begin) - begin, 76 - 8 * indent.size()) << level;
    EXPECT_EQ(read(text), list);
    list = NSArray::arrayWithObjects({list});
  }
}

TEST(NSPropertyListSerialization, TellsTheForm) {
  NSPropertyListFormat format = NSPropertyListOpenStepFormat;
  for (const auto wanted : {NSPropertyListXMLFormat_v1_0, NSPropertyListBinaryFormat_v1_0}) {
    const id list =
        Serialization::propertyListWithData(written("text", wanted), 0, &format, nullptr);
    EXPECT_EQ(list, id("text"));
    EXPECT_EQ(format, wanted);
  }
}

TEST(NSPropertyListSerialization, MakesContainersMutableWhereAsked) {
  const NSData data =
      written(NSDictionary::dictionaryWithEntries({{"a", std::make_shared<NSArray>()}}),
              NSPropertyListBinaryFormat_v1_0);
  EXPECT_FALSE(read(data).as<NSMutableDictionary>());
  const auto list = Serialization::propertyListWithData(data, NSPropertyListMutableContainers)
                        .as<NSMutableDictionary>();
  ASSERT_TRUE(list);
  EXPECT_TRUE(list->objectForKey("a").as<NSMutableArray>());
}

TEST(NSPropertyListSerialization, WritesEqualValuesOnceAndSharedContainersOnce) {
  const id list = NSArray::arrayWithObjects({"same text", "same text"});
  const id twice = NSArray::arrayWithObjects({list, list});
  const NSData data = written(twice, NSPropertyListBinaryFormat_v1_0);
  EXPECT_EQ(data.text().find("same text"), data.text().rfind("same text"));
  const auto back = read(data).as<NSArray>();
  EXPECT_EQ(back->objectAtIndex(0).object(), back->objectAtIndex(1).object());
  EXPECT_EQ(read(written(twice, NSPropertyListXMLFormat_v1_0)), twice);
}

TEST(NSPropertyListSerialization, TakesTheLastValueOfAKeyThatComesTwice) {
  EXPECT_EQ(read(textOfHex("62706c6973743030d201010203 5161 1001 1002 080d0f11 000000000000 01 "
                           "01 0000000000000004 0000000000000000 0000000000000013")),
            id(NSDictionary::dictionaryWithEntries({{"a", 2}})));
  EXPECT_EQ(read(inDocument("<dict><key>a</key><true/><key>a</key><false/></dict>")),
            id(NSDictionary::dictionaryWithEntries({{"a", false}})));
}

TEST(NSPropertyListSerialization, ReadsHalfASurrogatePairAsTheReplacementCharacter) {
  EXPECT_EQ(read(binaryList({textOfHex("62d83d0041")})), id("\uFFFDA"));
  EXPECT_EQ(read(binaryList({textOfHex("61de00")})), id("\uFFFD"));
}

struct DocumentCase {
  std::string_view name;
  std::string document;
  id value;  // nil: refused
};
const DocumentCase kDocuments[] = {
    {"WithoutPlist", "<string>bare</string>", "bare"},
    {"BlanksBeforeTheDeclaration", "\n  <?xml version=\"1.0\"?><plist><true/></plist>", true},
    {"ByteOrderMark", "\xEF\xBB\xBF<plist><true/></plist>", true},
    {"UTF16", std::string("\xFF\xFE<\0t\0r\0u\0e\0/\0>\0", 16), true},
    {"DeclaredLatin1", "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><string>\xE9</string>", "é"},
    {"CommentsAndInstructions", "<plist><!-- <false/> --><?x y?><true/></plist>", true},
    {"CharacterData", "<string>a<![CDATA[<&]]>b</string>", "a<&b"},
    {"CommentInsideText", "<string>a<!-- c -->b</string>", "ab"},
    {"References", "<string>&lt;&#65;&#x42;&quot;&apos;</string>", "<AB\"'"},
    {"LongTrue", "<plist><true></true></plist>", true},
    {"EmptyString", "<string/>", ""},
    {"Attributes", "<plist version='2.0' x='y'><true a='b'/></plist>", true},
    {"HexadecimalInteger", "<integer> -0x10 </integer>", -16},
    {"PlusInteger", "<integer>+7</integer>", 7},
    {"NotANumber", "<real>NaN</real>", std::nan("")},
    {"MinusInfinity", "<real>-INF</real>", -std::numeric_limits<double>::infinity()},
    {"ExponentReal", "<real>1e3</real>", 1000.0},
    {"DataWithBlanks", "<data> A Q\n L/ </data>", NSData(std::string_view("\x01\x02\xff", 3))},
    {"OldYear", "<date>0001-01-01T00:00:00Z</date>",
     NSDate::dateWithTimeIntervalSinceReferenceDate(-63113904000)},
    {"DeclaredEntityThatIsNotUsed", "<!DOCTYPE plist [<!ENTITY a \"b\">]><plist><true/></plist>",
     true},
    {"DeclaredEntity",
     "<!DOCTYPE plist [<!ENTITY a \"b\">]><plist><string>&a;</string></plist>",
     {}},
    {"EntityBesideExternalDTD", inDocument("<string>&foo;</string>"), {}},
    {"ExternalEntity",
     "<!DOCTYPE p [<!ENTITY a SYSTEM \"file:///etc/passwd\">]><plist><string>&a;</string></plist>",
     {}},
    {"Laughs",
     "<!DOCTYPE p [<!ENTITY a \"ha\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;\"><!ENTITY c "
     "\"&b;&b;&b;&b;&b;&b;&b;&b;\">]><plist><string>&c;</string></plist>",
     {}},
    {"Empty", "", {}},
    {"OldTextForm", "{ a = b; }", {}},
    {"NoValue", "<plist></plist>", {}},
    {"TwoValues", "<plist><true/><true/></plist>", {}},
    {"TwoRoots", "<true/><true/>", {}},
    {"TextBetween", "<plist>x<true/></plist>", {}},
    {"TextInArray", "<array>x</array>", {}},
    {"TextInTrue", "<true>x</true>", {}},
    {"UnknownElement", "<plist><null/></plist>", {}},
    {"Unclosed", "<plist><array><true/>", {}},
    {"ValueInValue", "<string><true/></string>", {}},
    {"KeyOutside", "<plist><key>a</key></plist>", {}},
    {"KeyInArray", "<array><key>a</key></array>", {}},
    {"KeyWithoutValue", "<dict><key>a</key></dict>", {}},
    {"ValueWithoutKey", "<dict><true/></dict>", {}},
    {"TwoKeys", "<dict><key>a</key><key>b</key></dict>", {}},
    {"PlistInside", "<array><plist><true/></plist></array>", {}},
    {"NotUTF8", "<string>\xFF</string>", {}},
    {"ZeroByte", std::string("<string>a\0b</string>", 20), {}},
    {"ReferenceToZero", "<string>&#0;</string>", {}},
    {"ReferenceToSurrogate", "<string>&#xD800;</string>", {}},
    {"IntegerWithText", "<integer>12x</integer>", {}},
    {"IntegerEmpty", "<integer></integer>", {}},
    {"IntegerTwoSigns", "<integer>--1</integer>", {}},
    {"IntegerTooLarge", "<integer>18446744073709551616</integer>", {}},
    {"IntegerTooSmall", "<integer>-9223372036854775809</integer>", {}},
    {"RealWithComma", "<real>1,5</real>", {}},
    {"RealTwoSigns", "<real>+-1</real>", {}},
    {"DateMonth13", "<date>2024-13-01T00:00:00Z</date>", {}},
    {"DateFebruary30", "<date>2024-02-30T00:00:00Z</date>", {}},
    {"DateWithFraction", "<date>2024-01-01T00:00:00.5Z</date>", {}},
    {"DateWithZone", "<date>2024-01-01T00:00:00+01:00</date>", {}},
    {"DateShort", "<date>2024-01-01</date>", {}},
    {"DateYearTooLarge", "<date>99999-01-01T00:00:00Z</date>", {}},
    {"DataNotASCII", "<data>é</data>", {}},
};

TEST(NSPropertyListSerialization, ReadsDocumentsOrRefusesThem) {
  for (const DocumentCase& row : kDocuments) {
    SCOPED_TRACE(row.name);
    if (row.value.isNil()) {
      expectRefused(row.document);
    } else {
      expectSame(read(row.document), row.value);
    }
  }
}

TEST(NSPropertyListSerialization, RefusesToWriteWhatAListCannotHold) {
  const auto cyclic = std::make_shared<NSMutableArray>();
  cyclic->addObject(id(cyclic));
  const std::pair<std::string_view, id> rows[] = {
      {"nil", {}},
      {"null", NSNull::null()},
      {"set", std::make_shared<NSSet>()},
      {"address", *NSURL::URLWithString("https://example.com")},
      {"identifier", NSUUID()},
      {"object", std::make_shared<NSObject>()},
      {"null in an array", NSArray::arrayWithObjects({NSNull::null()})},
      {"a key that is no text", NSDictionary::dictionaryWithEntries({{1, 2}})},
      {"an array that holds itself", id(cyclic)},
      {"text that is not UTF-8", "\xFF"},
  };
  for (const auto format : {NSPropertyListBinaryFormat_v1_0, NSPropertyListXMLFormat_v1_0}) {
    for (const auto& [name, value] : rows) {
      std::shared_ptr<const NSError> error;
      EXPECT_FALSE(Serialization::dataWithPropertyList(value, format, 0, &error)) << name;
      ASSERT_TRUE(error) << name;
      EXPECT_EQ(error->code(), NSPropertyListWriteInvalidError);
    }
  }
  EXPECT_FALSE(Serialization::propertyListIsValidForFormat("x", NSPropertyListOpenStepFormat));
  cyclic->removeAllObjects();  // else it keeps itself
}

TEST(NSPropertyListSerialization, RefusesInXMLWhatOnlyTheBinaryFormHolds) {
  const id rows[] = {std::string("a\x01z"), std::string("a\0z", 3), "\uFFFE",
                     NSDate::dateWithTimeIntervalSinceReferenceDate(1e15),
                     NSDate::dateWithTimeIntervalSinceReferenceDate(std::nan(""))};
  for (const id& value : rows) {
    EXPECT_FALSE(Serialization::propertyListIsValidForFormat(value, NSPropertyListXMLFormat_v1_0));
    EXPECT_TRUE(
        Serialization::propertyListIsValidForFormat(value, NSPropertyListBinaryFormat_v1_0));
  }
  EXPECT_EQ(read(written(rows[1], NSPropertyListBinaryFormat_v1_0)), rows[1]);
}

TEST(NSPropertyListSerialization, WritesDecimalsAsDoubles) {
  const id decimal = NSDecimal(125, -2, false);
  expectSame(read(written(decimal, NSPropertyListBinaryFormat_v1_0)), 1.25);
}

}  // namespace
