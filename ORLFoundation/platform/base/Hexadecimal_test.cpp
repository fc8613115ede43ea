#include <ORLFoundation/platform/base/Hexadecimal.h>

#include <gtest/gtest.h>

#include <cctype>
#include <optional>
#include <string>

namespace ORLFoundation::internal::base {
namespace {

std::string everyByte() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

TEST(Hexadecimal, DigitsOfEitherCaseHaveAValueAndNoOtherByteHas) {
  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    const bool isDigit = std::isxdigit(byte) != 0;
    EXPECT_EQ(isHexDigit(c), isDigit) << byte;
    EXPECT_EQ(hexDigitValue(c), isDigit ? std::stoi(std::string(1, c), nullptr, 16) : -1) << byte;
  }
}

TEST(Hexadecimal, ReadsTheByteAtAnIndex) {
  EXPECT_EQ(hexByteAt("%2Fx", 1), 0x2F);
  EXPECT_EQ(hexByteAt("ff", 0), 0xFF);
  EXPECT_EQ(hexByteAt("f", 0), std::nullopt);
  EXPECT_EQ(hexByteAt("ff", 1), std::nullopt);
  EXPECT_EQ(hexByteAt("ff", 9), std::nullopt);
  EXPECT_EQ(hexByteAt("fg", 0), std::nullopt);
  EXPECT_EQ(hexByteAt("+f", 0), std::nullopt);
}

TEST(Hexadecimal, EachByteComesBack) {
  const std::string bytes = everyByte();
  EXPECT_EQ(hexText("\x01\xAB\xFF"), "01abff");
  EXPECT_EQ(hexText("\x01\xAB\xFF", kUpperHexDigits), "01ABFF");
  EXPECT_EQ(bytesOfHexText(hexText(bytes)), bytes);
  EXPECT_EQ(bytesOfHexText(hexText(bytes, kUpperHexDigits)), bytes);
  EXPECT_EQ(bytesOfHexText(""), "");
}

TEST(Hexadecimal, RefusesHalfBytesAndOtherCharacters) {
  for (const char* text : {"a", "abc", "a b0", "0x41", "4g", "-1", "\xEF\xBC\x91"})
    EXPECT_EQ(bytesOfHexText(text), std::nullopt) << text;
}

}  // namespace
}  // namespace ORLFoundation::internal::base
