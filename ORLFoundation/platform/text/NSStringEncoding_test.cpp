
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
    {"ISOLatin1", "a\x80\xE9\xFF", NSISOLatin1StringEncoding, "a\u0080éÿ"},
    {"UTF16MarkedLittle",
     std::string_view("\xFF\xFE"
                      "a\0\x3D\xD8\x00\xDE",
                      8),
     NSUTF16StringEncoding, "a😀"},
    {"UTF16MarkedBig", std::string_view("\xFE\xFF\0a\x20\xAC", 6), NSUTF16StringEncoding, "a€"},
    {"UTF16WithoutAMarkIsBig", std::string_view("\0a\0b", 4), NSUTF16StringEncoding, "ab"},
    {"UTF16Empty", "", NSUTF16StringEncoding, ""},
    {"UTF16MarkAlone", "\xFF\xFE", NSUTF16StringEncoding, ""},
    {"UTF16Big", std::string_view("\0a\0b", 4), NSUTF16BigEndianStringEncoding, "ab"},
    {"UTF16Little", std::string_view("a\0b\0", 4), NSUTF16LittleEndianStringEncoding, "ab"},
    {"UTF16LittleKeepsAMark",
     std::string_view("\xFF\xFE"
                      "a\0",
                      4),
     NSUTF16LittleEndianStringEncoding, "\uFEFFa"},
    {"UTF16HalfAUnit", std::string_view("\0a\0", 3), NSUTF16StringEncoding, std::nullopt},
    {"UTF16HalfAPair", "\xD8\x3D", NSUTF16StringEncoding, std::nullopt},
    {"UTF16HalvesTurnedRound", std::string_view("\xDE\0\xD8\x3D", 4), NSUTF16StringEncoding,
     std::nullopt},
    {"Unknown", "a", 11, std::nullopt},
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
  EXPECT_EQ(refusedBytes(NSISOLatin1StringEncoding), "");
  EXPECT_EQ(refusedBytes(NSASCIIStringEncoding).size(), 128U);
  EXPECT_EQ(refusedBytes(NSUTF8StringEncoding).size(), 128U);
}

}  // namespace
}  // namespace ORLFoundation
