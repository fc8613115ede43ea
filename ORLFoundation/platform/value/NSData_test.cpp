
#include <ORLFoundation/platform/value/NSData.h>

#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

TEST(NSData, IsEmptyUntilItIsGivenBytes) {
  EXPECT_EQ(NSData().length(), 0U);
  EXPECT_EQ(NSData(), NSData(std::string_view()));
  EXPECT_EQ(NSData().text(), "");
}

TEST(NSData, ComparesByContent) {
  EXPECT_EQ(NSData("abc"), NSData("abc"));
  EXPECT_EQ(NSData("abc").hash(), NSData("abc").hash());
  EXPECT_NE(NSData("abc"), NSData("abd"));
  EXPECT_NE(NSData("abc"), NSData("ab"));
}

TEST(NSData, SharesItsBytesWithItsCopies) {
  const NSData data("abc");
  const NSData copy = data;
  EXPECT_EQ(copy.bytes().data(), data.bytes().data());
}

TEST(NSData, KeepsZeroBytes) {
  const NSData data(std::string_view("a\0b", 3));
  EXPECT_EQ(data.length(), 3U);
  EXPECT_EQ(data.bytes()[1], 0);
}

TEST(NSData, DescribesShortDataWhole) {
  EXPECT_EQ(NSData("hello").description(), "{length = 5, bytes = 0x68656c6c6f}");
  EXPECT_EQ(NSData().description(), "{length = 0, bytes = 0x}");
}

TEST(NSData, DescribesTheEndsOfLongData) {
  EXPECT_EQ(NSData(std::string(32, 'a')).description(),
            "{length = 32, bytes = 0x61616161 61616161 61616161 61616161 ... 61616161 61616161 }");
}

}  // namespace
}  // namespace ORLFoundation
