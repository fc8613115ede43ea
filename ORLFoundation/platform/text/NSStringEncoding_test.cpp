
#include <ORLFoundation/platform/text/NSStringEncoding.h>

#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

struct EncodingCase {
  std::string_view name, bytes;
  NSUInteger encoding;
  std::optional<std::string> text;
};
const EncodingCase kEncodingCases[] = {
    {"UTF8", "\xC3\xA9\xF0\x9F\x98\x80", NSUTF8StringEncoding, "é😀"},
    {"UTF8Empty", "", NSUTF8StringEncoding, ""},
    {"UTF8WithoutItsMark",
     "\xEF\xBB\xBF"
     "a",
     NSUTF8StringEncoding, "a"},
    {"UTF8CutOff", "a\xC3", NSUTF8StringEncoding, std::nullopt},
    {"UTF8Overlong", "\xC0\x80", NSUTF8StringEncoding, std::nullopt},
    {"UTF8Surrogate", "\xED\xA0\x80", NSUTF8StringEncoding, std::nullopt},
    {"UTF8BeyondTheLast", "\xF4\x90\x80\x80", NSUTF8StringEncoding, std::nullopt},
    {"UTF8Null", std::string_view("a\0b", 3), NSUTF8StringEncoding, std::string("a\0b", 3)},
    {"ASCII", "abc\x7F", NSASCIIStringEncoding, "abc\x7F"},
    {"ASCIIHighByte", "\x80", NSASCIIStringEncoding, std::nullopt},
    {"WindowsLatin1", "\x80\xE9\x9F", NSWindowsCP1252StringEncoding, "€éŸ"},
    {"WindowsLatin1WithoutCharacter", "\x81", NSWindowsCP1252StringEncoding, std::nullopt},
    {"MacRoman", "\x80\x8E\xDB\xE9", NSMacOSRomanStringEncoding, "Äé€È"},
    {"Unknown", "a", 10, std::nullopt},
};

TEST(NSStringEncoding, ReadsBytes) {
  for (const EncodingCase& row : kEncodingCases)
    EXPECT_EQ(stringWithData(NSData(row.bytes), row.encoding), row.text) << row.name;
}

/// The bytes of an encoding that stand for no character.
std::string refusedBytes(NSUInteger encoding) {
  std::string refused;
  for (int byte = 0; byte < 256; ++byte) {
    const std::string bytes(1, static_cast<char>(byte));
    if (!stringWithData(NSData(bytes), encoding)) refused += bytes;
  }
  return refused;
}

TEST(NSStringEncoding, KnowsWhichBytesFit) {
  EXPECT_EQ(refusedBytes(NSMacOSRomanStringEncoding), "");
  EXPECT_EQ(refusedBytes(NSWindowsCP1252StringEncoding), "\x81\x8D\x8F\x90\x9D");
  EXPECT_EQ(refusedBytes(NSASCIIStringEncoding).size(), 128U);
  EXPECT_EQ(refusedBytes(NSUTF8StringEncoding).size(), 128U);
}

}  // namespace
}  // namespace ORLFoundation
