
#include <ORLFoundation/web/logging/ORLFURLSessionSecretMask.h>

#include <ORLFoundation/web/logging/ORLFURLSessionSecretMask_testing.h>
#include <gtest/gtest.h>
#include <tests/support/ProcessorTime.h>

#include <initializer_list>

namespace ORLFoundation {
namespace {

std::string masked(std::initializer_list<std::string_view> secrets, const std::string& text) {
  ORLFURLSessionSecretMask mask;
  for (const std::string_view secret : secrets) EXPECT_TRUE(mask.addSecret(secret));
  return *mask.process(text);
}

struct SpellingCase {
  std::string_view name, secret, text, answer;
};
const SpellingCase kSpellings[] = {
    {"Plain", "hunter2", "a hunter2 b", "a *** b"},
    {"CaseCounts", "hunter2", "HUNTER2", "HUNTER2"},
    {"Twice", "hunter2", "hunter2hunter2", "******"},
    {"PartOfAWord", "hunter2", "xhunter2x", "x***x"},
    {"OneByteShort", "hunter2", "hunter", "hunter"},
    {"Percent", "hun ter", "hun%20ter", "***"},
    {"PlusForABlank", "hun ter", "a=hun+ter&b", "a=***&b"},
    {"PlusAndPercent", "a+b/c d", "a%2Bb%2fc+d", "***"},
    {"PlusAsItIs", "a+b/c d", "a+b%2Fc%20d", "***"},
    {"NeedlessPercent", "hunter2", "%68unte%722", "***"},
    {"NoPercentEscape", "hunter2", "%hunter2%2", "%***%2"},
    {"PercentInTheSecret", "a%20bcd", "a%20bcd a%2520bcd", "*** ***"},
    {"JSON", "a\"b\\c/d", R"({"p":"a\"b\\c\/d"})", R"({"p":"***"})"},
    {"JSONUnits", "hunter2", R"(\u0068unter\u0032)", "***"},
    {"JSONPairs", "pass😀word", R"(pass\uD83D\ude00word)", "***"},
    {"JSONControls", "a\b\f\n\r\tb", R"(a\b\f\n\r\tb)", "***"},
    {"NeedlessBackslash", "don't!", R"(don\'t!)", "***"},
    {"BackslashInTheSecret", R"(a\nbcd)", R"(a\nbcd a\\nbcd)", "*** ***"},
    {"BackslashBefore", "hunter2", R"(\\hunter2\)", R"(\\***\)"},
    {"HalfAUnit", "hunter2", R"(\u00hunter2\u)", R"(\u00***\u)"},
    {"LonePairHalf",
     "a\xEF\xBF\xBD"
     "bc",
     R"(a\uD83Dbc)", "***"},
    {"Hexadecimal", "hunter2", "0x68756e74657232;", "0x***;"},
    {"HexadecimalInCapitals", "hunter2", "68756E74657232", "***"},
    {"HexadecimalInEitherCase", "kkkkkk\x5b", "6b6B6b6B6b6B5b 6B6b6B6b6B6b5B", "*** ***"},
    {"HexadecimalOutOfStep", "hunter2", "168756e746572322", "1***2"},
    {"Base64", "hunter2", "aHVudGVyMg==", "***=="},
    {"Base64Behind", "hunter2", "Basic dTpodW50ZXIy", "Basic dT***"},
    {"Base64BehindTwo", "hunter2", "dXM6aHVudGVyMg==", "dXM6***=="},
    {"Base64BehindOneMore", "hunter2", "dXNyOmh1bnRlcjI=", "dXNyO***="},
    {"PercentWithinJSON", "a\"b c d", R"(a%5C%22b%20c%20d)", "***"},
    {"JSONWithinPercent", "a b/cd", R"(a%20b\u00252Fcd)", "***"},
    {"UnitsOfPercentEscapes", "hunter2", R"(\u0025\u0036\u0038unter2)", "***"},
    {"PercentEscapesOfUnits", "hunter2", "%5C%75%30%30%36%38unter2", "***"},
    {"SlashesInBase64", "\xFB\xFF\xFE\xFF\xFB\xFF", R"(\/++\/\/v\/7\/)", R"(\/++\/\/v\/7\/)"},
};

TEST(ORLFURLSessionSecretMask, MasksEverySpelling) {
  for (const SpellingCase& row : kSpellings)
    EXPECT_EQ(masked({row.secret}, std::string(row.text)), row.answer) << row.name;
}

TEST(ORLFURLSessionSecretMask, MasksBase64WithEitherAlphabetAndWithEscapes) {
  const std::string secret = "\xFB\xFF\xFE\xFF\xFB\xFF\xBF";
  std::mt19937 random(18);
  for (std::size_t before = 0; before < 3; ++before) {
    for (const bool forAddresses : {false, true}) {
      const std::string digits = orlftest::base64Encoded(secret, before, 3, forAddresses);
      for (const std::string& text : {digits, orlftest::percentEncoded(digits, random),
                                      orlftest::jsonEscaped(digits, random)})
        EXPECT_NE(masked({secret}, text).find("***"), std::string::npos) << text;
    }
  }
}

TEST(ORLFURLSessionSecretMask, RefusesSecretsUnderSixBytes) {
  ORLFURLSessionSecretMask mask;
  for (const std::string_view secret : {"", "a", "abcde", "日é"})
    EXPECT_FALSE(mask.addSecret(secret));
  EXPECT_EQ(mask.process("abcde"), "abcde");
  EXPECT_TRUE(mask.addSecret("abcdef"));
  EXPECT_TRUE(mask.addSecret("日本"));
  EXPECT_EQ(mask.process("abcdef abcde 日本"), "*** abcde ***");
}

TEST(ORLFURLSessionSecretMask, MasksWhatIsNamedAfterItHasMasked) {
  ORLFURLSessionSecretMask mask;
  EXPECT_TRUE(mask.addSecret("hunter2"));
  EXPECT_EQ(mask.process("hunter2 sesame"), "*** sesame");
  EXPECT_TRUE(mask.addSecret("sesame"));
  EXPECT_EQ(mask.process("hunter2 sesame"), "*** ***");
}

TEST(ORLFURLSessionSecretMask, MasksSecretsThatOverlapAsOne) {
  EXPECT_EQ(masked({"abcdefgh", "fghijklm"}, "xabcdefghijklmx"), "x***x");
  EXPECT_EQ(masked({"abcdefgh", "cdefgh"}, "abcdefgh cdefgh"), "*** ***");
  EXPECT_EQ(masked({"abcdef", "abcdefgh", "abcdefghij"}, "abcdefghix abcdefx"), "***ix ***x");
  EXPECT_EQ(masked({"aaaaaa"}, std::string(100, 'a')), "***");
  EXPECT_EQ(masked({"abcabc"}, "abcabcabcab"), "***ab");
  EXPECT_EQ(masked({"abcdef", "ghijkl"}, "abcdefghijkl"), "******");
}

TEST(ORLFURLSessionSecretMask, GivesNilAndTextsWithoutSecretsBack) {
  ORLFURLSessionSecretMask mask;
  EXPECT_EQ(mask.process(std::nullopt), std::nullopt);
  EXPECT_EQ(mask.process("text"), "text");
  mask.addSecret("hunter2");
  EXPECT_EQ(mask.process(std::nullopt), std::nullopt);
  for (const std::string text : {"", "%", "\\", "a%2", "\\u", "\xFF\x00%zz\\q", "+"})
    EXPECT_EQ(mask.process(text), text);
}

TEST(ORLFURLSessionSecretMask, HoldsBackNoMoreThanItNeeds) {
  ORLFURLSessionSecretMask mask;
  mask.addSecret("hunter2");
  ORLFURLSessionSecretMask::Pieces pieces(mask);
  const std::string piece(10'000, 'x');
  std::size_t given = 0, come = 0;
  for (int i = 0; i < 200; ++i) {
    come += pieces.append(piece).size();
    given += piece.size();
    EXPECT_LT(given - come, 100'000U);
  }
  come += pieces.finish().size();
  EXPECT_EQ(come, given);
}

TEST(ORLFURLSessionSecretMask, TakesALongRunOfSecretsInBoundedMemory) {
  ORLFURLSessionSecretMask mask;
  mask.addSecret("aaaaaa");
  ORLFURLSessionSecretMask::Pieces pieces(mask);
  std::string come;
  for (int i = 0; i < 50; ++i) come += pieces.append(std::string(10'000, 'a'));
  come += pieces.append("b");
  EXPECT_EQ(come + pieces.finish(), "***b");
  come = pieces.append("aaaaaab");
  EXPECT_EQ(come + pieces.finish(), "***b");
}

TEST(ORLFURLSessionSecretMask, MasksNothingMoreInPiecesThatHaveBegun) {
  ORLFURLSessionSecretMask mask;
  ORLFURLSessionSecretMask::Pieces pieces(mask);
  mask.addSecret("hunter2");
  const std::string come = pieces.append("hunter2");
  EXPECT_EQ(come + pieces.finish(), "hunter2");
}

TEST(ORLFURLSessionSecretMask, TakesLinearTimeWhateverTheText) {
  ORLFURLSessionSecretMask mask;
  for (int i = 0; i < 1000; ++i) mask.addSecret("sk_live_" + std::to_string(1'000'000 + i) + " x");
  constexpr std::size_t size = (orlftest::kIsSanitized ? 1 : 16) << 16;
  const auto repeated = [](std::string_view part) {
    std::string text;
    while (text.size() < size) text += part;
    return text;
  };
  const double seconds = orlftest::processorSecondsOf([&] {
    for (const std::string_view part :
         {"sk_live_", "\\", "%5C", "%41", "\\u0041", "%", "+", "%5Cu0025", "736b5f6c"}) {
      const std::string text = "%5C" + repeated(part);
      EXPECT_EQ(mask.process(text), text);
    }
  });
  EXPECT_LT(seconds, 10);
}

}  // namespace
}  // namespace ORLFoundation
