#include <ORLFoundation/platform/text/NSStringBytes.h>

#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

std::optional<std::string> bytesOf(std::string_view text, NSUInteger encoding,
                                   bool isLossy = false) {
  const auto data = dataUsingEncoding(text, encoding, isLossy);
  return data ? std::optional(std::string(data->text())) : std::nullopt;
}

std::string textOf(char32_t character) {
  std::string text;
  internal::base::appendUTF8(text, character);
  return text;
}

struct ExactCase {
  std::string_view name;
  NSUInteger encoding;
  std::string_view text;
  std::optional<std::string_view> bytes;
};

const ExactCase kExactCases[] = {
    {"ASCII", NSASCIIStringEncoding, "a~\x7F", "a~\x7F"},
    {"ASCIILacksAccents", NSASCIIStringEncoding, "é", std::nullopt},
    {"UTF8", NSUTF8StringEncoding, "é日😀", "é日😀"},
    {"Latin1", NSISOLatin1StringEncoding, "é\u0080", "\xE9\x80"},
    {"Latin1LacksTheEuro", NSISOLatin1StringEncoding, "€", std::nullopt},
    {"WindowsLatin1", NSWindowsCP1252StringEncoding, "€é’", "\x80\xE9\x92"},
    {"WindowsLatin1LacksControls", NSWindowsCP1252StringEncoding, "\u0081", std::nullopt},
    {"MacRoman", NSMacOSRomanStringEncoding, "é€", "\x8E\xDB"},
    {"MacRomanLacksKanji", NSMacOSRomanStringEncoding, "日", std::nullopt},
    {"BigEndian", NSUTF16BigEndianStringEncoding, "a😀", std::string_view("\0a\xD8\x3D\xDE\0", 6)},
    {"LittleEndian", NSUTF16LittleEndianStringEncoding, "a😀",
     std::string_view("a\0\x3D\xD8\0\xDE", 6)},
};

TEST(NSStringBytes, WritesEachEncoding) {
  for (const ExactCase& each : kExactCases)
    EXPECT_EQ(bytesOf(each.text, each.encoding), each.bytes) << each.name;
}

TEST(NSStringBytes, AreReadBackAsTheyWereInEachEncoding) {
  for (const NSUInteger encoding :
       {NSASCIIStringEncoding, NSUTF8StringEncoding, NSISOLatin1StringEncoding,
        NSUTF16StringEncoding, NSWindowsCP1252StringEncoding, NSMacOSRomanStringEncoding,
        NSUTF16BigEndianStringEncoding, NSUTF16LittleEndianStringEncoding}) {
    std::size_t written = 0;
    for (char32_t character = 0; character < 0x30000; ++character) {
      if (character >= 0xD800 && character <= 0xDFFF) continue;
      const std::string text = "x" + textOf(character);
      const auto data = dataUsingEncoding(text, encoding);
      if (!data) continue;
      ++written;
      ASSERT_EQ(stringWithData(*data, encoding), text)
          << encoding << " " << static_cast<std::uint32_t>(character);
    }
    EXPECT_GE(written, 128U) << encoding;
  }
}

TEST(NSStringBytes, GivesLookAlikesWhereAsked) {
  EXPECT_EQ(bytesOf("éﬁ“–”…日", NSASCIIStringEncoding, true), "efi\"-\"...?");
  EXPECT_EQ(bytesOf("€ő", NSISOLatin1StringEncoding, true), "?o");
}

TEST(NSStringBytes, MarksTheOrderOfUTF16) {
  const auto data = dataUsingEncoding("a", NSUTF16StringEncoding);
  ASSERT_TRUE(data.has_value());
  EXPECT_EQ(data->length(), 4U);
  EXPECT_EQ(stringWithData(*data, NSUTF16StringEncoding), "a");
  EXPECT_EQ(bytesOf("a", NSUTF16BigEndianStringEncoding), std::string("\0a", 2));
}

TEST(NSStringBytes, TakesBrokenBytesForTheReplacementCharacter) {
  EXPECT_EQ(bytesOf("a\xFF", NSUTF8StringEncoding), "a\uFFFD");
  EXPECT_EQ(bytesOf("a\xFF", NSASCIIStringEncoding), std::nullopt);
}

TEST(NSStringBytes, FillsBuffersWithWholeCharacters) {
  const std::string text = std::string(63, 'a') + "日b";
  NSStringBytes pieces(text, NSUTF8StringEncoding);
  std::array<std::uint8_t, NSStringBytes::kLeastSpace> buffer{};
  EXPECT_EQ(pieces.getBytes(buffer), 63U);
  EXPECT_EQ(pieces.remaining(), "日b");
  EXPECT_EQ(pieces.getBytes(buffer), 4U);
  EXPECT_EQ(pieces.remaining(), "");
}

TEST(NSStringBytes, StopsBeforeWhatTheEncodingLacksAndThenFails) {
  NSStringBytes pieces("ab日c", NSASCIIStringEncoding);
  std::array<std::uint8_t, 64> buffer{};
  EXPECT_EQ(pieces.getBytes(buffer), 2U);
  EXPECT_EQ(pieces.remaining(), "日c");
  EXPECT_EQ(pieces.getBytes(buffer), std::nullopt);
  EXPECT_EQ(pieces.remaining(), "日c");
}

/// All that the pieces of one buffer's size give, and what was left where they failed.
std::pair<std::string, std::string> piecewise(std::string_view text, NSUInteger encoding,
                                              NSUInteger options, std::size_t space) {
  NSStringBytes pieces(text, encoding, options);
  std::vector<std::uint8_t> buffer(space);
  std::string bytes;
  while (!pieces.remaining().empty()) {
    const auto used = pieces.getBytes(buffer);
    if (!used) break;
    EXPECT_LE(*used, space);
    bytes.append(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(*used));
  }
  return {bytes, std::string(pieces.remaining())};
}

TEST(NSStringBytes, AreTheSameInPiecesOfEverySize) {
  const std::string_view texts[] = {"é", "日", "😀", "\xFF", "ﬁ", "€"};
  for (const NSUInteger encoding :
       {NSASCIIStringEncoding, NSUTF8StringEncoding, NSISOLatin1StringEncoding,
        NSUTF16StringEncoding, NSWindowsCP1252StringEncoding, NSMacOSRomanStringEncoding,
        NSUTF16BigEndianStringEncoding, NSUTF16LittleEndianStringEncoding}) {
    for (const NSUInteger options : {0U, 1U, 2U, 3U}) {
      for (const std::string_view middle : texts) {
        for (std::size_t lead = 56; lead <= 66; ++lead) {
          const std::string text = std::string(lead, 'a') + std::string(middle) + "éb";
          const auto whole = piecewise(text, encoding, options, 1024);
          for (const std::size_t space : {64U, 65U, 67U, 128U})
            ASSERT_EQ(piecewise(text, encoding, options, space), whole)
                << encoding << ' ' << options << ' ' << middle << ' ' << lead << ' ' << space;
        }
      }
    }
  }
}

TEST(NSStringBytes, TellsWhatAnEncodingKeeps) {
  const std::string_view text =
      "abcdefgh\xC3\xA9日b\xFF"
      "c";
  EXPECT_EQ(orlfLengthOfKeptBytes(text, NSUTF8StringEncoding), 14U);
  EXPECT_EQ(orlfLengthOfKeptBytes(text.substr(15), NSUTF8StringEncoding), 1U);
  for (const NSUInteger encoding :
       {NSUInteger{NSASCIIStringEncoding}, NSUInteger{NSISOLatin1StringEncoding},
        NSUInteger{NSWindowsCP1252StringEncoding}, NSUInteger{NSMacOSRomanStringEncoding}})
    EXPECT_EQ(orlfLengthOfKeptBytes(text, encoding), 8U) << encoding;
  for (const NSUInteger encoding :
       {NSUInteger{NSUTF16StringEncoding}, NSUInteger{NSUTF16BigEndianStringEncoding},
        NSUInteger{NSUTF16LittleEndianStringEncoding}, NSUInteger{9999}})
    EXPECT_EQ(orlfLengthOfKeptBytes("a", encoding), 0U) << encoding;
  EXPECT_EQ(orlfLengthOfKeptBytes("", NSUTF8StringEncoding), 0U);
}

TEST(NSStringBytes, ConvertsNothingOfNothing) {
  NSStringBytes pieces("", NSASCIIStringEncoding);
  std::array<std::uint8_t, 64> buffer{};
  EXPECT_EQ(pieces.getBytes(buffer), 0U);
  EXPECT_EQ(bytesOf("", NSASCIIStringEncoding), "");
}

TEST(NSStringBytes, ConvertsNothingIntoUnknownEncodings) {
  std::array<std::uint8_t, 64> buffer{};
  for (const NSUInteger encoding : {NSUInteger{0}, NSUInteger{2}, NSUInteger{9999}}) {
    NSStringBytes pieces("a", encoding);
    EXPECT_EQ(pieces.getBytes(buffer), std::nullopt);
    EXPECT_EQ(pieces.remaining(), "a");
    EXPECT_EQ(NSStringBytes("", encoding).getBytes(buffer), 0U);
  }
}

TEST(NSStringBytes, RefusesSmallBuffers) {
  NSStringBytes pieces("a", NSASCIIStringEncoding);
  std::array<std::uint8_t, NSStringBytes::kLeastSpace - 1> small{};
  EXPECT_THROW(pieces.getBytes(small), NSException);
}

}  // namespace
}  // namespace ORLFoundation
