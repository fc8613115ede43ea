#include <ORLFoundation/interchange/txf/internal/ORLFColumnText.h>

#include <gtest/gtest.h>

#include <string>

namespace ORLFoundation::internal::txf {
namespace {

std::string letters(std::size_t count) {
  std::string text;
  for (std::size_t at = 0; at < count; ++at) text += static_cast<char>('a' + at % 26);
  return text;
}

TEST(ORLFColumnText, CountsUnits) {
  EXPECT_EQ(unitCount(""), 0U);
  EXPECT_EQ(unitCount("aé日"), 3U);
  EXPECT_EQ(unitCount("😀a"), 3U);
  EXPECT_EQ(unitCount("a\xFF\xE2\x82"), 3U);
}

TEST(ORLFColumnText, CutsAtUnits) {
  EXPECT_EQ(unitsOf("abc", 0, 2), "ab");
  EXPECT_EQ(unitsOf("abc", 1, 9), "bc");
  EXPECT_EQ(unitsOf("é日x", 1, 2), "日");
  EXPECT_EQ(unitsOf("a😀b", 0, 3), "a😀");
  EXPECT_EQ(unitsOf("abc", 5, 9), "");
}

TEST(ORLFColumnText, CutsNoCharacterInHalf) {
  EXPECT_EQ(unitsOf("a😀b", 0, 2), std::nullopt);
  EXPECT_EQ(unitsOf("a😀b", 2, 4), std::nullopt);
}

TEST(ORLFColumnText, PadsWithBlanks) {
  EXPECT_EQ(padded("", 3), "   ");
  EXPECT_EQ(padded("é", 3), "é  ");
  EXPECT_EQ(padded("😀", 3), "😀 ");
  EXPECT_EQ(padded("abc", 3), "abc");
  EXPECT_EQ(padded("abcd", 3), "abcd");
  EXPECT_EQ(padded("", 0), "");
}

TEST(ORLFColumnText, CutsAccountsAndPadsNone) {
  for (std::size_t length = 0; length <= 30; ++length)
    EXPECT_EQ(accountColumn(letters(length)), letters(length)) << length;
  for (const std::size_t length : {31U, 32U, 40U, 300U})
    EXPECT_EQ(accountColumn(letters(length)), letters(29)) << length;
  EXPECT_EQ(accountColumn(letters(28) + "😀😀"), std::nullopt);
  EXPECT_EQ(accountColumn(letters(28) + "😀"), letters(28) + "😀");
}

TEST(ORLFColumnText, KeepsTheTailOfCheckNumbers) {
  EXPECT_EQ(checkNumberColumn(""), "      ");
  EXPECT_EQ(checkNumberColumn("12"), "12    ");
  EXPECT_EQ(checkNumberColumn("123456"), "123456");
  EXPECT_EQ(checkNumberColumn("1234567"), "67");
  EXPECT_EQ(checkNumberColumn("12345678901"), "678901");
  EXPECT_EQ(checkNumberColumn("1234😀7"), std::nullopt);
  EXPECT_EQ(checkNumberColumn("12345😀"), "😀");
}

TEST(ORLFColumnText, PadsOrCutsTexts) {
  for (const std::size_t width : {15U, 40U}) {
    for (std::size_t length = 0; length <= width; ++length)
      EXPECT_EQ(textColumn(letters(length), width),
                letters(length) + std::string(width - length, ' '))
          << length;
    for (const std::size_t length : {width + 1, width + 2, width * 3})
      EXPECT_EQ(textColumn(letters(length), width), letters(width - 1)) << length;
    EXPECT_EQ(textColumn(letters(width - 2) + "😀x", width), std::nullopt);
    EXPECT_EQ(textColumn(letters(width - 2) + "😀", width), letters(width - 2) + "😀");
  }
}

}  // namespace
}  // namespace ORLFoundation::internal::txf
