// What we write is read by another library, and the reverse.

#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <gtest/gtest.h>
#include <plist/plist.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace {

using namespace ORLFoundation;

using Node = std::unique_ptr<void, decltype(&plist_free)>;

/// The list read by the peer and written again in the other form.
NSData throughPeer(const NSData& data, bool toXML) {
  const std::string bytes(data.text());
  plist_t read = nullptr;
  plist_from_memory(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &read);
  const Node node(read, plist_free);
  char* text = nullptr;
  std::uint32_t length = 0;
  toXML ? plist_to_xml(read, &text, &length) : plist_to_bin(read, &text, &length);
  const std::unique_ptr<char, decltype(&std::free)> owned(text, std::free);
  EXPECT_NE(text, nullptr) << "the peer cannot read the list";
  return text == nullptr ? NSData() : NSData(std::string_view(text, length));
}

// Without what the peer changes: unsigned integers from 2^63 on, dates before 1933 and after 2069.
id sample() {
  const id scalars =
      NSArray::arrayWithObjects({true,
                                 false,
                                 0,
                                 255,
                                 256,
                                 65536,
                                 4294967296,
                                 -1,
                                 NSIntegerMax,
                                 NSIntegerMin,
                                 1.5,
                                 0.1,
                                 -1e300,
                                 "",
                                 "text",
                                 "Café 日本 😀",
                                 "x<&>\"'",
                                 NSData(),
                                 NSData(std::string_view("\0\xFF", 2)),
                                 NSDate::dateWithTimeIntervalSinceReferenceDate(725857445),
                                 NSDate::dateWithTimeIntervalSinceReferenceDate(-86400)});
  return NSDictionary::dictionaryWithEntries(
      {{"scalars", scalars},
       {"empty", NSDictionary::dictionaryWithEntries({{"array", std::make_shared<NSArray>()}})},
       {"data", NSData(std::vector<std::uint8_t>(300, 7))},
       {"clé", "a text that is longer than fourteen characters"}});
}

TEST(NSPropertyListSerialization, IsReadByAnotherLibraryAndReadsWhatThatWrites) {
  for (const auto format : {NSPropertyListBinaryFormat_v1_0, NSPropertyListXMLFormat_v1_0}) {
    for (const bool toXML : {false, true}) {
      const auto data = NSPropertyListSerialization::dataWithPropertyList(sample(), format, 0);
      ASSERT_TRUE(data);
      const id back =
          NSPropertyListSerialization::propertyListWithData(throughPeer(*data, toXML), 0);
      EXPECT_EQ(back, sample()) << format << " " << toXML;
    }
  }
}

}  // namespace
