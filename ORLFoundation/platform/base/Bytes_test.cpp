#include <ORLFoundation/platform/base/Bytes.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace ORLFoundation::internal::base {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Bytes, OfATextAreItsOwn) {
  EXPECT_THAT(bytesOf("a\xFF"), ElementsAre(0x61, 0xFF));
  EXPECT_THAT(bytesOf(""), IsEmpty());
}

TEST(Bytes, HoldNumbersInEitherOrder) {
  std::vector<std::uint8_t> bytes;
  appendLittle(bytes, 0x1122334455667788, 3);
  appendBig(bytes, 0x1122334455667788, 3);
  appendLittle(bytes, 1, 0);
  EXPECT_THAT(bytes, ElementsAre(0x88, 0x77, 0x66, 0x66, 0x77, 0x88));
  bytes.clear();
  appendLittle(bytes, 0x1122334455667788, 8);
  appendBig(bytes, 0x1122334455667788, 8);
  EXPECT_THAT(bytes, ElementsAre(0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0x11,  //
                                 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88));
}

TEST(Bytes, GiveNumbersOfAnyWidthFromAnyPlace) {
  const std::array<std::uint8_t, 9> bytes{0xFF, 0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0x91};
  EXPECT_EQ(littleAt(bytes, 1, 8), 0x9122334455667788U);
  EXPECT_EQ(bigAt(bytes, 1, 8), 0x8877665544332291U);
  EXPECT_EQ(littleAt(bytes, 2, 3), 0x556677U);
  EXPECT_EQ(bigAt(bytes, 2, 3), 0x776655U);
  EXPECT_EQ(littleAt(bytes, 0, 1), 0xFFU);
  EXPECT_EQ(bigAt(bytes, 0, 0), 0U);
}

TEST(Bytes, HoldAWordOfFour) {
  std::array<std::uint8_t, 6> bytes{1, 1, 1, 1, 1, 1};
  storeLittle(0xFF223344, bytes.data() + 1);
  EXPECT_THAT(bytes, ElementsAre(1, 0x44, 0x33, 0x22, 0xFF, 1));
}

}  // namespace
}  // namespace ORLFoundation::internal::base
