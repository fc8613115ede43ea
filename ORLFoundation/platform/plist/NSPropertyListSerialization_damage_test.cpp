// Lists that are damaged, or made to do damage: refused, in bounded time and memory.
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/plist/NSPropertyListUID.h>
#include <ORLFoundation/platform/plist/NSPropertyList_testing.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace orlftest;

std::string nested(std::size_t levels) {
  std::string text;
  for (std::size_t level = 0; level < levels; ++level) text += "<array>";
  for (std::size_t level = 0; level < levels; ++level) text += "</array>";
  return text;
}
NSData nestedBinary(std::size_t levels) {
  std::vector<std::string> objects;
  for (std::size_t level = 1; level < levels; ++level) objects.push_back(binaryArray({level}));
  objects.push_back(binaryArray({}));
  return binaryList(objects);
}

TEST(NSPropertyListSerialization, Reads512ContainersDeepAndNoMore) {
  EXPECT_FALSE(read(nested(512)).isNil());
  expectRefused(nested(513));
  expectRefused(nested(100000));
  EXPECT_FALSE(read(nestedBinary(512)).isNil());
  expectRefused(nestedBinary(513));
  expectRefused(nestedBinary(50000));

  id list = std::make_shared<NSArray>();
  for (int level = 1; level < 512; ++level) list = NSArray::arrayWithObjects({list});
  EXPECT_EQ(read(written(list, NSPropertyListBinaryFormat_v1_0)), list);
  EXPECT_EQ(read(written(list, NSPropertyListXMLFormat_v1_0)), list);
  list = NSArray::arrayWithObjects({list});
  EXPECT_FALSE(Serialization::propertyListIsValidForFormat(list, NSPropertyListBinaryFormat_v1_0));
}

TEST(NSPropertyListSerialization, RefusesBinaryListsThatHoldThemselves) {
  expectRefused(
      textOfHex("62706c6973743030 a100 08 000000000000 01 01 0000000000000001 "
                "0000000000000000 000000000000000a"));
  expectRefused(binaryList({binaryArray({1, 2}), binaryArray({}), binaryArray({1, 0})}));
  expectRefused(binaryList({textOfHex("d1 0001 0000"), "\x51\x61"}));
}

TEST(NSPropertyListSerialization, KeepsSharedMembersSharedHoweverManyReferences) {
  // 60 levels of two references each: 2^60 values when each reference counted.
  std::vector<std::string> objects;
  for (std::size_t level = 1; level <= 60; ++level) objects.push_back(binaryArray({level, level}));
  objects.push_back("\x09");
  const auto list = read(binaryList(objects)).as<NSArray>();
  ASSERT_TRUE(list);
  EXPECT_EQ(list->objectAtIndex(0).object(), list->objectAtIndex(1).object());
  EXPECT_TRUE(Serialization::propertyListIsValidForFormat(list, NSPropertyListBinaryFormat_v1_0));
  EXPECT_FALSE(Serialization::propertyListIsValidForFormat(list, NSPropertyListXMLFormat_v1_0));
}

TEST(NSPropertyListSerialization, BoundsTextThatIsRepeated) {
  std::string text = "\x5F\x12";
  appendBigEndian(text, 1 << 16, 4);
  text += std::string(1 << 16, 'x');
  expectRefused(binaryList({binaryArray(std::vector<std::size_t>(10000, 1)), text}));
}

TEST(NSPropertyListSerialization, BoundsObjectsThatOverlap) {
  // Every byte after the first is the start of an array that claims all the bytes behind it.
  std::vector<std::string> objects(4000, std::string());
  std::string bytes = "bplist00";
  for (int at = 0; at < 4000; ++at) bytes += std::string("\xAF\x11\x07\xD0", 4);
  const std::size_t table = bytes.size();
  for (std::size_t at = 0; at < 2000; ++at) appendBigEndian(bytes, 8 + 4 * at, 2);
  bytes += std::string("\0\0\0\0\0\0\2\2", 8);
  appendBigEndian(bytes, 2000, 8);
  appendBigEndian(bytes, 0, 8);
  appendBigEndian(bytes, table, 8);
  expectRefused(bytes);
}

struct BrokenBinaryCase {
  std::string_view name;
  std::vector<std::string> objects;
};
const BrokenBinaryCase kBrokenBinaries[] = {
    {"Null", {textOfHex("00")}},
    {"Fill", {textOfHex("0f")}},
    {"Integer32Bytes", {textOfHex("15") + std::string(32, '\0')}},
    {"IntegerPast64Bits", {textOfHex("14 00000000000000010000000000000000")}},
    {"IntegerBelow64Bits", {textOfHex("14 ffffffffffffffff7fffffffffffffff")}},
    {"RealOfTwoBytes", {textOfHex("210000")}},
    {"DateOfFourBytes", {textOfHex("3200000000")}},
    {"UIDPast32Bits", {textOfHex("840100000000")}},
    {"OrderedSet", {textOfHex("b0")}},
    {"Set", {textOfHex("c0")}},
    {"UTF8Text", {textOfHex("7161")}},
    {"UnknownKind", {textOfHex("90")}},
    {"ByteThatIsNotASCII", {textOfHex("5180")}},
    {"DataCutOff", {textOfHex("4e00")}},
    {"UTF16CutOff", {textOfHex("620041")}},
    {"CountIsNoInteger", {textOfHex("5f5161")}},
    {"CountOf16Bytes", {textOfHex("4f14") + std::string(16, '\0')}},
    {"CountIsNegative", {textOfHex("4f13ffffffffffffffff")}},
    {"CountIsHuge", {textOfHex("af137fffffffffffffff")}},
    {"CountThatOverflows", {textOfHex("df132000000000000000")}},
    {"ReferenceOutside", {textOfHex("a1 0001")}},
    {"KeyIsNoText", {textOfHex("d1 0001 0001"), textOfHex("1001")}},
};

TEST(NSPropertyListSerialization, RefusesBrokenBinaryObjects) {
  for (const BrokenBinaryCase& row : kBrokenBinaries) {
    SCOPED_TRACE(row.name);
    expectRefused(binaryList(row.objects));
  }
}

NSData sampleOf(NSPropertyListFormat format) {
  return written(NSDictionary::dictionaryWithEntries(
                     {{"number", 300},
                      {"texts", NSArray::arrayWithObjects({"é", "a longer text than fourteen"})},
                      {"real", 2.5},
                      {"data", NSData(std::string_view("bytes"))},
                      {"date", NSDate::distantPast()},
                      {"uid", std::make_shared<NSPropertyListUID>(3)}}),
                 format);
}

TEST(NSPropertyListSerialization, RefusesAListCutOffAtAnyByte) {
  const NSData binary = sampleOf(NSPropertyListBinaryFormat_v1_0);
  for (std::size_t length = 0; length < binary.length(); ++length)
    expectRefused(binary.text().substr(0, length));
  const NSData xml = sampleOf(NSPropertyListXMLFormat_v1_0);
  for (std::size_t length = 0; length + 1 < xml.length(); ++length)  // the last is a line feed
    expectRefused(xml.text().substr(0, length));
}

TEST(NSPropertyListSerialization, AnswersAListWithAnyBitFlipped) {
  for (const auto format : {NSPropertyListBinaryFormat_v1_0, NSPropertyListXMLFormat_v1_0}) {
    const std::string bytes(sampleOf(format).text());
    for (std::size_t bit = 0; bit < 8 * bytes.size(); ++bit) {
      std::string flipped = bytes;
      flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ 1 << bit % 8);
      std::shared_ptr<const NSError> error;
      const id list = read(flipped, &error);
      EXPECT_EQ(list.isNil(), error != nullptr) << bit;
    }
  }
}

TEST(NSPropertyListSerialization, RefusesATrailerWithAnyOtherByte) {
  // Only the first six bytes, and the top object where it is another one, have no say.
  const std::string bytes(sampleOf(NSPropertyListBinaryFormat_v1_0).text());
  for (std::size_t at = bytes.size() - 26; at < bytes.size(); ++at) {
    if (at == bytes.size() - 9) continue;
    for (int value = 0; value < 256; ++value) {
      if (value == static_cast<unsigned char>(bytes[at])) continue;
      std::string changed = bytes;
      changed[at] = static_cast<char>(value);
      expectRefused(changed);
    }
  }
}

}  // namespace
