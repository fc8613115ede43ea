#include "io/text_input.h"

#include <gtest/gtest.h>

#include <tests/support/TemporaryFolder.h>
#include <array>

#include "cli/failure.h"

namespace {

using namespace ORLFoundation;
using orlftool::JobFailure;
using orlftool::TextInput;
using Encoding = std::optional<NSStringEncoding>;

class TextInputTest : public orlftest::TemporaryFolderTest {
 protected:
  /// The text, or what a failure says behind the file's name.
  std::string textOf(std::string_view bytes, Encoding encoding = std::nullopt,
                     std::size_t piece = 7) {
    const std::string file = write("a.csv", bytes);
    std::string text;
    try {
      TextInput input(file, encoding);
      std::string buffer(piece, '\0');
      while (const std::size_t count = input.read(buffer)) text.append(buffer, 0, count);
      EXPECT_EQ(input.position(), bytes.size());
      EXPECT_EQ(input.size(), bytes.size());
      EXPECT_EQ(input.read(buffer), 0U);
    } catch (const JobFailure& failure) {
      const std::string message = failure.what();
      EXPECT_EQ(message.substr(0, file.size()), file);
      return message.substr(file.size());
    }
    return text;
  }
};

struct EncodingCase {
  const char* name;
  std::string_view bytes;
  Encoding encoding;
  const char* text;
};
using namespace std::string_view_literals;
const EncodingCase kCases[] = {
    {"Nothing", "", std::nullopt, ""},
    {"PlainUTF8", "aé€😀", std::nullopt, "aé€😀"},
    {"MarkedUTF8",
     "\xEF\xBB\xBF"
     "aé",
     std::nullopt, "aé"},
    {"MarkedUTF8ThatWasNamed",
     "\xEF\xBB\xBF"
     "a",
     NSUTF8StringEncoding, "a"},
    {"MarkAlone", "\xEF\xBB\xBF", std::nullopt, ""},
    {"HalfAMark", "\xEF\xBB", NSISOLatin1StringEncoding, "ï»"},
    {"MarkInLatin1", "\xEF\xBB\xBF", NSISOLatin1StringEncoding, "ï»¿"},
    {"MarkedBigEndian", "\xFE\xFF\0a\x20\xAC"sv, std::nullopt, "a€"},
    {"MarkedLittleEndian", "\xFF\xFE\x61\0\x3D\xD8\0\xDE"sv, std::nullopt, "a😀"},
    {"NamedUTF16WithAMark", "\xFF\xFE\x61\0"sv, NSUTF16StringEncoding, "a"},
    {"NamedUTF16WithoutAMark", "\0a"sv, NSUTF16StringEncoding, "a"},
    {"NamedLittleEndian", "a\0b\0"sv, NSUTF16LittleEndianStringEncoding, "ab"},
    {"WindowsLatin1", "\x80 caf\xE9", NSWindowsCP1252StringEncoding, "€ café"},
    {"MacRoman", "caf\x8E", NSMacOSRomanStringEncoding, "café"},
    {"ASCII", "abc", NSASCIIStringEncoding, "abc"},
};

TEST_F(TextInputTest, ReadsEachEncoding) {
  for (const EncodingCase& each : kCases)
    EXPECT_EQ(textOf(each.bytes, each.encoding), each.text) << each.name;
}

struct FaultCase {
  const char* name;
  std::string_view bytes;
  Encoding encoding;
  const char* message;
};
const FaultCase kFaults[] = {
    {"BrokenUTF8", "a\nb\r\nc\rd\xFF", std::nullopt,
     ":4: expected utf-8, got other bytes; --encoding names another encoding"},
    {"CutOffUTF8", "a\n\xE2\x82", NSUTF8StringEncoding, ":2: expected utf-8, got other bytes"},
    {"BeyondASCII", "a\n\xC3", NSASCIIStringEncoding, ":2: expected ascii, got other bytes"},
    {"UnknownWindowsByte", "\x81", NSWindowsCP1252StringEncoding,
     ":1: expected windows-1252, got other bytes"},
    {"HalfAUnit", "\0a\0"sv, NSUTF16BigEndianStringEncoding,
     ":1: expected utf-16be, got other bytes"},
    {"HalfAPair", "\0\n\xD8\x3D"sv, NSUTF16BigEndianStringEncoding,
     ":2: expected utf-16be, got other bytes"},
};

TEST_F(TextInputTest, TellsTheLineOfBytesThatDoNotFit) {
  for (const FaultCase& each : kFaults)
    EXPECT_EQ(textOf(each.bytes, each.encoding), each.message) << each.name;
}

TEST_F(TextInputTest, CutsNoCharacterBetweenItsPieces) {
  constexpr std::size_t kPiece = std::size_t{64} << 10;
  for (std::size_t lead = kPiece - 4; lead <= kPiece; ++lead) {
    const std::string text = std::string(lead, 'a') + "😀é€\n";
    EXPECT_EQ(textOf(text, std::nullopt, kPiece * 2), text) << lead;
    std::string wide;
    for (std::size_t i = 0; i < lead / 2; ++i) wide += std::string_view("a\0", 2);
    wide += std::string_view("\x3D\xD8\0\xDE", 4);
    EXPECT_EQ(textOf(wide, NSUTF16LittleEndianStringEncoding, kPiece * 2),
              std::string(lead / 2, 'a') + "😀");
  }
}

TEST_F(TextInputTest, CountsLinesThroughItsPieces) {
  std::string text;
  for (int line = 0; line < 40'000; ++line) text += "line\r\n";
  EXPECT_EQ(textOf(text + "\xFF", NSUTF8StringEncoding, 100'000),
            ":40001: expected utf-8, got other bytes");
}

TEST_F(TextInputTest, RefusesWhatIsNoFile) {
  EXPECT_THROW(TextInput(path("missing.csv"), std::nullopt), JobFailure);
  EXPECT_THROW(TextInput(path(""), std::nullopt), JobFailure);
}

TEST(EncodingNamed, KnowsTheNamesOfItsMessage) {
  for (const auto& [name, encoding] :
       {std::pair{"utf-8", NSUTF8StringEncoding}, std::pair{"UTF-16", NSUTF16StringEncoding},
        std::pair{"utf-16be", NSUTF16BigEndianStringEncoding},
        std::pair{"utf-16le", NSUTF16LittleEndianStringEncoding},
        std::pair{"ascii", NSASCIIStringEncoding}, std::pair{"latin-1", NSISOLatin1StringEncoding},
        std::pair{"windows-1252", NSWindowsCP1252StringEncoding},
        std::pair{"mac-roman", NSMacOSRomanStringEncoding}}) {
    EXPECT_EQ(orlftool::encodingNamed(name), encoding) << name;
  }
  for (const auto& [name, shown] :
       {std::pair{"iso-8859-1", "latin-1"}, std::pair{"US-ASCII", "ascii"},
        std::pair{"cp1252", "windows-1252"}, std::pair{"1252", "windows-1252"}})
    EXPECT_EQ(orlftool::nameOfEncoding(*orlftool::encodingNamed(name)), shown);
  EXPECT_EQ(orlftool::encodingNamed("ebcdic"), std::nullopt);
  EXPECT_EQ(orlftool::encodingNamed(""), std::nullopt);
  EXPECT_EQ(orlftool::nameOfEncoding(9999), "an unknown encoding");
  EXPECT_EQ(orlftool::readEncodingOption(std::nullopt), std::nullopt);
  EXPECT_EQ(orlftool::readEncodingOption("latin1"), NSISOLatin1StringEncoding);
  EXPECT_THROW((void)orlftool::readEncodingOption("ebcdic"), orlftool::UsageFailure);
  try {
    (void)orlftool::readEncodingOption("ebcdic", "--to");
    FAIL();
  } catch (const orlftool::UsageFailure& failure) {
    EXPECT_TRUE(std::string_view(failure.what()).starts_with("--to: expected utf-8, "));
  }
}

TEST(LineEndsIn, CountsThreeKinds) {
  EXPECT_EQ(orlftool::lineEndsIn("a\nb\rc\r\n\n"), 4U);
  EXPECT_EQ(orlftool::lineEndsIn("\n", '\r'), 0U);
  EXPECT_EQ(orlftool::lineEndsIn("\n", 'a'), 1U);
}

}  // namespace
