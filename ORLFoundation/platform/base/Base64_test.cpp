#include <ORLFoundation/platform/base/Base64.h>

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>

namespace ORLFoundation::internal::base {
namespace {

// The examples of RFC 4648, section 10.
TEST(Base64, WritesAndReadsTheExamplesOfItsStandard) {
  const std::pair<std::string, std::string> rows[] = {
      {"", ""},
      {"f", "Zg=="},
      {"fo", "Zm8="},
      {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="},
      {"fooba", "Zm9vYmE="},
      {"foobar", "Zm9vYmFy"},
  };
  for (const auto& [bytes, text] : rows) {
    EXPECT_EQ(base64Text(bytes), text);
    EXPECT_EQ(bytesOfBase64Text(text), bytes);
  }
  EXPECT_EQ(base64Text("\xFB\xEF\xFF"), "++//");
}

TEST(Base64, BytesOfEachLengthComeBack) {
  std::mt19937 random(10);
  std::string bytes;
  for (int length = 0; length < 400; ++length) {
    EXPECT_EQ(bytesOfBase64Text(base64Text(bytes)), bytes);
    EXPECT_EQ(bytesOfLooseBase64Text(base64Text(bytes)), bytes);
    bytes += static_cast<char>(random());
  }
}

TEST(Base64, ReadsNoTextButItsOwn) {
  const std::string_view rows[] = {
      "Z",    "Zg",    "Zg=",      "Zm8",  "Zm9vYg",  "=",        "====",
      "=Zg=", "Zg===", "Zg==Zg==", "Z===", "Z g=",    "Zm9v\n",   "Zm9v YmFy",
      "Zm9-", "Zm9_",  "Zh==",     "Zm9=", "\xC3m9v", "Zm9v====",
  };
  for (const std::string_view text : rows) EXPECT_EQ(bytesOfBase64Text(text), std::nullopt) << text;
}

// By its definition, over short texts of few characters.
TEST(Base64, ReadsWhatIsWrittenAgainAsItStands) {
  std::mt19937 random(11);
  const std::string_view some = "AQgwZ8/=\n";
  int taken = 0;
  for (int round = 0; round < 20000; ++round) {
    std::string text(random() % 13, '\0');
    for (char& c : text) c = some[random() % some.size()];
    const std::string loose = bytesOfLooseBase64Text(text);
    const bool isOwn = base64Text(loose) == text;
    EXPECT_EQ(bytesOfBase64Text(text), isOwn ? std::optional(loose) : std::nullopt) << text;
    taken += isOwn ? 1 : 0;
  }
  EXPECT_GT(taken, 1000);
}

TEST(Base64, ACharacterOfTheAlphabetHasItsPlaceAsItsValue) {
  int known = 0;
  for (int byte = 0; byte < 256; ++byte) known += base64DigitValue(static_cast<char>(byte)) >= 0;
  EXPECT_EQ(known, 64);
  EXPECT_EQ(base64DigitValue('A'), 0);
  EXPECT_EQ(base64DigitValue('a'), 26);
  EXPECT_EQ(base64DigitValue('9'), 61);
  EXPECT_EQ(base64DigitValue('+'), 62);
  EXPECT_EQ(base64DigitValue('/'), 63);
  EXPECT_EQ(base64DigitValue('='), -1);
}

TEST(Base64, ALooseReaderPassesOverWhatIsNotOfTheAlphabet) {
  EXPECT_EQ(bytesOfLooseBase64Text(" Zm\t9v\nYm Fy-"), "foobar");
  EXPECT_EQ(bytesOfLooseBase64Text("Zm9vYg"), "foob");
  EXPECT_EQ(bytesOfLooseBase64Text("Zm9v=YmFy"), "foo");
  EXPECT_EQ(bytesOfLooseBase64Text("Z"), "");
}

}  // namespace
}  // namespace ORLFoundation::internal::base
