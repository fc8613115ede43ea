/// What the tests of property lists and archives share: lists read and written in a word, and
/// binary lists put together object by object.
#pragma once

#include <ORLFoundation/platform/base/Hexadecimal_testing.h>
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orlftest {

using namespace ORLFoundation;

inline void appendBigEndian(std::string& bytes, std::uint64_t value, unsigned width) {
  for (unsigned at = width; at-- > 0;) bytes += static_cast<char>(value >> (8 * at));
}

/// A binary list of the objects, the first one on top, with references of two bytes.
inline NSData binaryList(const std::vector<std::string>& objects) {
  std::string bytes = "bplist00";
  std::vector<std::size_t> offsets;
  for (const std::string& object : objects) {
    offsets.push_back(bytes.size());
    bytes += object;
  }
  const std::size_t table = bytes.size();
  for (const std::size_t offset : offsets) appendBigEndian(bytes, offset, 4);
  bytes += std::string("\0\0\0\0\0\0\4\2", 8);
  appendBigEndian(bytes, offsets.size(), 8);
  appendBigEndian(bytes, 0, 8);
  appendBigEndian(bytes, table, 8);
  return NSData(std::string_view(bytes));
}

/// The object of an array (0xA0) with references of two bytes.
inline std::string binaryArray(const std::vector<std::size_t>& references) {
  std::string bytes("\xAF\x12", 2);
  appendBigEndian(bytes, references.size(), 4);
  for (const std::size_t reference : references) appendBigEndian(bytes, reference, 2);
  return bytes;
}

using Serialization = NSPropertyListSerialization;

inline id read(const NSData& data, NSErrorSlot error = nullptr) {
  return Serialization::propertyListWithData(data, NSPropertyListImmutable, nullptr, error);
}
inline id read(std::string_view text, NSErrorSlot error = nullptr) {
  return read(NSData(text), error);
}

inline NSData written(const id& list, NSPropertyListFormat format) {
  std::shared_ptr<const NSError> error;
  const auto data = Serialization::dataWithPropertyList(list, format, 0, &error);
  EXPECT_TRUE(data) << (error ? error->localizedDescription() : "no error");
  return data.value_or(NSData());
}
inline std::string xmlOf(const id& list) {
  return std::string(written(list, NSPropertyListXMLFormat_v1_0).text());
}

inline std::string inDocument(std::string_view body) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST "
         "1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist "
         "version=\"1.0\">\n" +
         std::string(body) + "</plist>\n";
}

/// nil with an error that tells something.
inline void expectRefused(const NSData& data) {
  std::shared_ptr<const NSError> error;
  EXPECT_TRUE(read(data, &error).isNil());
  ASSERT_TRUE(error);
  EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(error->code(), NSPropertyListReadCorruptError);
  EXPECT_FALSE(error->localizedDescription().empty());
}
inline void expectRefused(std::string_view text) { expectRefused(NSData(text)); }

}  // namespace orlftest
