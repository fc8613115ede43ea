#include <ORLFoundation/platform/base/UTF8.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <ostream>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::base {
namespace {

constexpr bool isScalar(char32_t code) {
  return code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

std::string bytesOf(std::initializer_list<int> bytes) {
  std::string text;
  for (const int byte : bytes) text += static_cast<char>(byte);
  return text;
}

TEST(UTF8, EachCharacterComesBackWithItsLength) {
  for (char32_t code = 0; code <= 0x10FFFF; ++code) {
    if (!isScalar(code)) continue;
    std::string text;
    appendUTF8(text, code);
    const UTF8Character first = firstUTF8Character(text + "\x80");
    ASSERT_FALSE(first.isBroken) << std::hex << static_cast<unsigned>(code);
    ASSERT_EQ(first.codePoint, code);
    ASSERT_EQ(first.length, text.size());
    ASSERT_TRUE(isUTF8(text));
    ASSERT_EQ(unitsInUTF16(code), code < 0x10000 ? 1U : 2U);
  }
}

TEST(UTF8, TellsTheBytesThatGoOnWithACharacter) {
  for (int byte = 0; byte < 256; ++byte)
    EXPECT_EQ(continuesUTF8Character(static_cast<char>(byte)), byte >= 0x80 && byte < 0xC0) << byte;
}

TEST(UTF8, WritesTheReplacementCharacterForWhatIsNoCharacter) {
  for (const char32_t code : {0xD800U, 0xDBFFU, 0xDC00U, 0xDFFFU, 0x110000U, 0xFFFFFFFFU}) {
    std::string text;
    appendUTF8(text, code);
    EXPECT_EQ(text, "\xEF\xBF\xBD") << static_cast<unsigned>(code);
  }
}

// Every text of up to three bytes, and of four with the edges of what a byte may be, against a
// reading by the definition: the bits taken together, then written again.
UTF8Character byDefinition(const std::string& text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  const std::size_t length = lead < 0x80             ? 1
                             : (lead & 0xE0) == 0xC0 ? 2
                             : (lead & 0xF0) == 0xE0 ? 3
                             : (lead & 0xF8) == 0xF0 ? 4
                                                     : 0;
  if (length == 0 || length > text.size()) return {};
  char32_t code = length == 1 ? lead : lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xC0) != 0x80) return {};
    code = code << 6 | (byte & 0x3FU);
  }
  std::string again;
  appendUTF8(again, code);
  if (again != text.substr(0, length)) return {};
  return {code, static_cast<std::uint8_t>(length), false};
}

void expectAsDefined(const std::string& text) {
  const UTF8Character expected = byDefinition(text);
  const UTF8Character first = firstUTF8Character(text);
  ASSERT_EQ(first.isBroken, expected.isBroken) << testing::PrintToString(text);
  ASSERT_EQ(first.codePoint, expected.codePoint) << testing::PrintToString(text);
  if (expected.isBroken) return;
  ASSERT_EQ(first.length, expected.length) << testing::PrintToString(text);
}

TEST(UTF8, TakesWhatTheDefinitionTakesOfAllShortTexts) {
  constexpr int kEdges[] = {0x00, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0,
                            0xC2, 0xDF, 0xE0, 0xED, 0xEF, 0xF0, 0xF4, 0xF5, 0xF8, 0xFF};
  for (int lead = 0; lead < 256; ++lead) {
    expectAsDefined(bytesOf({lead}));
    for (int second = 0; second < 256; ++second) {
      expectAsDefined(bytesOf({lead, second}));
      for (const int third : kEdges) {
        expectAsDefined(bytesOf({lead, second, third}));
        for (const int fourth : kEdges) expectAsDefined(bytesOf({lead, second, third, fourth}));
      }
    }
  }
}

struct BrokenText {
  std::string_view name, text;
  std::size_t length;
};
void PrintTo(const BrokenText& row, std::ostream* out) { *out << row.name; }

class UTF8Broken : public testing::TestWithParam<BrokenText> {};

TEST_P(UTF8Broken, IsAsLongAsWhatCouldHaveBegunACharacter) {
  const UTF8Character first = firstUTF8Character(GetParam().text);
  EXPECT_TRUE(first.isBroken);
  EXPECT_EQ(first.codePoint, U'\uFFFD');
  EXPECT_EQ(first.length, GetParam().length);
  EXPECT_FALSE(isUTF8(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(Rows, UTF8Broken,
                         testing::ValuesIn(std::initializer_list<BrokenText>{
                             {"LoneContinuation", "\x80", 1},
                             {"OverlongOfTwo", "\xC0\x80", 1},
                             {"OverlongOfTwoLast", "\xC1\xBF", 1},
                             {"OverlongOfThree", "\xE0\x9F\xBF", 1},
                             {"OverlongOfFour", "\xF0\x8F\xBF\xBF", 1},
                             {"FirstSurrogate", "\xED\xA0\x80", 1},
                             {"LastSurrogate", "\xED\xBF\xBF", 1},
                             {"BeyondTheLast", "\xF4\x90\x80\x80", 1},
                             {"LeadOfFive", "\xF8\x88\x80\x80\x80", 1},
                             {"NoByteAtAll", "\xFF", 1},
                             {"TwoCutShort", "\xC3", 1},
                             {"ThreeCutAfterOne", "\xE2", 1},
                             {"ThreeCutAfterTwo", "\xE2\x82", 2},
                             {"FourCutAfterThree", "\xF0\x9F\x98", 3},
                             {"TwoGoneOn", "\xC3\x41", 1},
                             {"ThreeGoneOn", "\xE2\x82\x41", 2},
                             {"FourGoneOn", "\xF0\x9F\x41\x80", 2},
                             {"AnotherLeadWithin", "\xE2\xE2\x82\xAC", 1}}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(UTF8, ATextIsWellFormedWhenEachCharacterIs) {
  EXPECT_TRUE(isUTF8(""));
  EXPECT_TRUE(isUTF8("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"));
  EXPECT_TRUE(isUTF8(std::string_view("\0", 1)));
  EXPECT_FALSE(isUTF8("a\xC3\xA9\xE2\x82"));
}

}  // namespace
}  // namespace ORLFoundation::internal::base
