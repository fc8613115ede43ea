#include <ORLFoundation/platform/object/NSMutableData.h>

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace ORLFoundation {
namespace {

NSData dataOf(std::string_view text) { return NSData(text); }

TEST(NSMutableData, Grows) {
  NSMutableData data(dataOf("ab"));
  data.appendData(dataOf("c"));
  data.appendBytes(dataOf("de").bytes());
  EXPECT_EQ(data.text(), "abcde");
  EXPECT_EQ(data.length(), 5U);
  data.setLength(2);
  data.setLength(3);
  EXPECT_EQ(data.text(), std::string_view("ab\0", 3));
}

TEST(NSMutableData, GivesACopyThatStays) {
  NSMutableData data(dataOf("a"));
  const NSData before = data.data();
  data.appendData(dataOf("b"));
  EXPECT_EQ(before.text(), "a");
}

TEST(NSMutableData, EqualsWhatHoldsTheSameBytes) {
  const auto data = std::make_shared<NSMutableData>(dataOf("ab"));
  const auto same = std::make_shared<NSMutableData>(dataOf("ab"));
  EXPECT_TRUE(data->isEqual(same.get()));
  EXPECT_EQ(data->hash(), same->hash());
  EXPECT_EQ(data->description(), dataOf("ab").description());
  same->appendData(dataOf("c"));
  EXPECT_FALSE(data->isEqual(same.get()));
  EXPECT_FALSE(data->isEqual(nullptr));
}

TEST(NSMutableData, CopiesItsBytes) {
  const auto data = std::make_shared<NSMutableData>(dataOf("ab"));
  const auto copy = std::dynamic_pointer_cast<NSMutableData>(data->mutableCopy());
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy, data);
  copy->appendData(dataOf("c"));
  EXPECT_EQ(data->text(), "ab");
  EXPECT_EQ(copy->text(), "abc");
}

TEST(NSMutableData, AppendsItsOwnBytes) {
  NSMutableData data(dataOf("ab"));
  data.appendBytes(data.bytes());
  EXPECT_EQ(data.text(), "abab");
  std::string expected = "abab";
  for (int round = 0; round < 12; ++round) {
    data.appendBytes(data.bytes().subspan(1, data.length() - 2));
    expected += expected.substr(1, expected.size() - 2);
    ASSERT_EQ(data.text(), expected);
  }
}

TEST(NSMutableData, HoldsWhatManySmallWritesLeave) {
  NSMutableData data;
  EXPECT_EQ(data.text(), "");
  data.appendBytes({});
  EXPECT_EQ(data.length(), 0U);
  std::string expected;
  for (std::size_t round = 0; round < 3000; ++round) {
    const std::string piece(round % 150, static_cast<char>('a' + round % 26));
    data.appendData(dataOf(piece));
    expected += piece;
  }
  EXPECT_EQ(data.text(), expected);
  data.setLength(0);
  EXPECT_EQ(data.text(), "");
}

TEST(NSMutableData, RefusesALengthThatNoMemoryHas) {
  NSMutableData data(dataOf("a"));
  EXPECT_THROW(data.setLength(std::numeric_limits<NSUInteger>::max()), std::length_error);
  EXPECT_EQ(data.text(), "a");
}

}  // namespace
}  // namespace ORLFoundation
