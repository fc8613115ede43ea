#include <ORLFoundation/security/primitives/NewBase64.h>

#include <ORLFoundation/security/primitives/ORLFDataBase64.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" int orlf_test_base64_from_c(void);

namespace ORLFoundation {
namespace {

struct Free {
  void operator()(void* bytes) const { std::free(bytes); }
};

std::string encoded(std::string_view bytes, bool lines) {
  std::size_t length = 0;
  const std::unique_ptr<char, Free> text(
      NewBase64Encode(bytes.data(), bytes.size(), lines ? 1 : 0, &length));
  EXPECT_EQ(text.get()[length], '\0');
  return {text.get(), length};
}

std::string decodedCharacters(std::string_view text, std::size_t length) {
  std::size_t count = 0;
  const std::unique_ptr<void, Free> bytes(NewBase64Decode(text.data(), length, &count));
  return {static_cast<const char*>(bytes.get()), count};
}

std::string decoded(std::string_view text) { return decodedCharacters(text, text.size()); }

/// The steps of the reader, one by one.
std::string decodedPlainly(const std::string& text) {
  const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::vector<std::uint8_t> out(text.size() / 4 * 3 + 3);
  std::ptrdiff_t position = 0;
  for (std::size_t at = 0; at < text.size();) {
    std::array<std::size_t, 4> digits{};
    std::ptrdiff_t count = 0;
    while (at < text.size() && count < 4) {
      const std::size_t digit = alphabet.find(text[at++]);
      if (digit != alphabet.npos) digits.at(static_cast<std::size_t>(count++)) = digit;
    }
    const auto place = static_cast<std::size_t>(position);
    out.at(place) = static_cast<std::uint8_t>(digits[0] << 2 | digits[1] >> 4);
    out.at(place + 1) = static_cast<std::uint8_t>(digits[1] << 4 | digits[2] >> 2);
    out.at(place + 2) = static_cast<std::uint8_t>(digits[2] << 6 | digits[3]);
    position = std::max<std::ptrdiff_t>(position + count - 1, 0);
  }
  return {out.begin(), out.begin() + position};
}

TEST(NewBase64, GivesThePublishedTexts) {
  const std::array<std::array<const char*, 2>, 7> rows{{{"", ""},
                                                        {"f", "Zg=="},
                                                        {"fo", "Zm8="},
                                                        {"foo", "Zm9v"},
                                                        {"foob", "Zm9vYg=="},
                                                        {"fooba", "Zm9vYmE="},
                                                        {"foobar", "Zm9vYmFy"}}};
  for (const auto& [bytes, text] : rows) {
    EXPECT_EQ(encoded(bytes, false), text);
    EXPECT_EQ(encoded(bytes, true), text);
  }
  EXPECT_EQ(encoded("\xFB\xFF", false), "+/8=");
  EXPECT_EQ(orlf_test_base64_from_c(), 1);
}

TEST(NewBase64, BreaksLinesBetween48BytesOnly) {
  const std::string line(64, 'Q');
  const auto bytes = [](std::size_t count) {
    std::string made;
    for (std::size_t i = 0; i < count; ++i) made += "\x41\x04\x10"[i % 3];
    return made;
  };
  EXPECT_EQ(encoded(bytes(48), true), line);
  EXPECT_EQ(encoded(bytes(49), true), line + "\r\nQQ==");
  EXPECT_EQ(encoded(bytes(96), true), line + "\r\n" + line);
  EXPECT_EQ(encoded(bytes(97), true), line + "\r\n" + line + "\r\nQQ==");
  EXPECT_EQ(encoded(bytes(97), false), line + line + "QQ==");
}

TEST(NewBase64, TakesTheLastByteBackForWhatIsPassedOverBehindAFullGroup) {
  EXPECT_EQ(decoded("QUJD"), "ABC");
  EXPECT_EQ(decoded("QUJD\n"), "AB");
  EXPECT_EQ(decoded("QUJD\r\n\r\n"), "AB");
  EXPECT_EQ(decoded("\r\nQUJD"), "ABC");
  EXPECT_EQ(decoded("QU\r\nJD"), "ABC");
  EXPECT_EQ(decoded("QQ=="), "A");
  EXPECT_EQ(decoded("QUI="), "AB");
  EXPECT_EQ(decoded("QUJDQ"), "ABC");
  EXPECT_EQ(decoded("Q"), "");
}

TEST(NewBase64, GivesNoBytesForATextWithoutItsCharacters) {
  for (const char* text : {"", "=", "====", "\n", " \t-_.", "\xC3\xA4"})
    EXPECT_EQ(decoded(text), "") << text;
}

TEST(NewBase64, EndsAtTheZeroByteForTwoLengths) {
  EXPECT_EQ(decodedCharacters("QUJD", static_cast<std::size_t>(-1)), "ABC");
  EXPECT_EQ(decodedCharacters("QUI=", static_cast<std::size_t>(-2)), "AB");
  EXPECT_EQ(decoded(std::string_view("QUJD\0QUJD", 9)), "ABCABC");
}

TEST(NewBase64, GivesNothingForLengthsThatNoMemoryHolds) {
  std::size_t length = 7;
  EXPECT_EQ(NewBase64Encode("", SIZE_MAX / 2, 1, &length), nullptr);
  EXPECT_EQ(length, 0U);
  length = 7;
  EXPECT_EQ(NewBase64Decode("", SIZE_MAX - 2, &length), nullptr);
  EXPECT_EQ(length, 0U);
}

TEST(NewBase64, NeedsNoPlaceForTheLength) {
  const std::unique_ptr<char, Free> text(NewBase64Encode("foo", 3, 0, nullptr));
  EXPECT_STREQ(text.get(), "Zm9v");
  const std::unique_ptr<void, Free> bytes(NewBase64Decode("Zm9v", 4, nullptr));
  EXPECT_EQ(std::string_view(static_cast<const char*>(bytes.get()), 3), "foo");
}

TEST(NewBase64, ReadsEveryTextByItsSteps) {
  std::mt19937 random(5);
  const std::string_view some = "ABCDwxyz0189+/=\r\n -_";
  for (int round = 0; round < 20'000; ++round) {
    std::string text(random() % 40, '\0');
    for (char& c : text)
      c = random() % 16 == 0 ? static_cast<char>(random()) : some[random() % some.size()];
    ASSERT_EQ(decoded(text), decodedPlainly(text)) << text;
  }
}

TEST(NewBase64, ReadsBackWhatItWrites) {
  std::mt19937 random(6);
  for (std::size_t size = 0; size < 300; ++size) {
    std::string bytes(size, '\0');
    for (char& c : bytes) c = static_cast<char>(random());
    EXPECT_EQ(decoded(encoded(bytes, false)), bytes);
    EXPECT_EQ(decoded(encoded(bytes, true)), bytes);
  }
}

TEST(DataBase64, WritesLinesUnlessToldOtherwise) {
  const NSData data(std::string_view("\x41\x04\x10"));
  const NSData many(std::vector<std::uint8_t>(49, 0));
  EXPECT_EQ(base64EncodedString(data), "QQQQ");
  EXPECT_EQ(base64EncodedString(many), std::string(64, 'A') + "\r\nAA==");
  EXPECT_EQ(base64EncodedStringWithLineBreaks(many, true), base64EncodedString(many));
  EXPECT_EQ(base64EncodedStringWithLineBreaks(many, false), std::string(64, 'A') + "AA==");
}

TEST(DataBase64, FindsNothingInATextThatIsNotASCII) {
  EXPECT_EQ(dataFromBase64String("QUJD").text(), "ABC");
  EXPECT_EQ(dataFromBase64String("QUJD\xC3\xA4").length(), 0U);
  EXPECT_EQ(dataFromBase64String("").length(), 0U);
}

}  // namespace
}  // namespace ORLFoundation
