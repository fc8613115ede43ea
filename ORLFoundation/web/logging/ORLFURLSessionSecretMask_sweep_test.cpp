
#include <ORLFoundation/web/logging/ORLFURLSessionSecretMask.h>
#include <ORLFoundation/web/logging/ORLFURLSessionSecretMask_testing.h>
#include <gtest/gtest.h>
#include <tests/support/ProcessorTime.h>

#include <algorithm>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::Random;

constexpr int kWaysToSpell = 9;

/// One of the spellings of a secret, at random in what it leaves open.
std::string spelled(const std::string& secret, int spelling, Random& random) {
  using namespace orlftest;
  switch (spelling) {
    case 0:
      return secret;
    case 1:
      return percentEncoded(secret, random);
    case 2:
      return percentEncoded(secret, random, true);
    case 3:
      return jsonEscaped(secret, random);
    case 4:
      return hexEncoded(secret, random);
    case 5:
      return base64Encoded(secret, random() % 9, random() % 3, random() % 2 == 0);
    case 6:
      return percentEncoded(jsonEscaped(secret, random), random);
    case 7:
      return jsonEscaped(percentEncoded(secret, random), random);
    default:
      return jsonEscaped(base64Encoded(secret, random() % 9, random() % 3, false), random);
  }
}

/// What no secret is in, and what is not changed by the mask: blanks and small words.
std::string filler(Random& random) {
  constexpr std::string_view words[] = {" {\"a\": 1}, ", "\r\n", " to be ", "; ", "<b>", " 12.50 "};
  std::string text;
  for (std::size_t count = 1 + random() % 3; count > 0; --count)
    text += words[random() % std::size(words)];
  return text;
}

/// The text in pieces of random lengths.
std::string inPieces(const ORLFURLSessionSecretMask& mask, std::string_view text, Random& random) {
  ORLFURLSessionSecretMask::Pieces pieces(mask);
  std::string masked;
  while (!text.empty()) {
    const std::string_view piece = text.substr(0, random() % 40);
    masked += pieces.append(piece);
    text.remove_prefix(piece.size());
  }
  return masked + pieces.finish();
}

TEST(ORLFURLSessionSecretMask, LeavesNoneOfTenThousandSecrets) {
  Random random(1810);
  ORLFURLSessionSecretMask mask;
  std::vector<std::string> secrets;
  for (int i = 0; i < (orlftest::kIsSanitized ? 500 : 10'000); ++i) {
    secrets.push_back(orlftest::randomSecret(random, 8 + random() % 40));
    ASSERT_TRUE(mask.addSecret(secrets.back()));
  }
  std::string text, expected;
  for (std::size_t i = 0; i < secrets.size(); ++i) {
    const std::string between = filler(random);
    const int spelling = static_cast<int>(i) % kWaysToSpell;
    const std::string shown = spelled(secrets[i], spelling, random);
    text += between + shown;
    expected += between;
    // Of Base64 what stands around the secret stays, so each is asked alone.
    const bool isWhole = spelling != 5 && spelling != 8;
    expected += isWhole ? "***" : *mask.process(shown);
    if (!isWhole) {
      ASSERT_NE(mask.process(shown)->find("***"), std::string::npos) << shown;
      ASSERT_LT(mask.process(shown)->size(), 3 + 12 * 6 + 8 + 12) << shown;
    }
  }
  ASSERT_EQ(*mask.process(text), expected);
  ASSERT_EQ(inPieces(mask, text, random), expected);
  for (const std::string& secret : secrets) ASSERT_EQ(expected.find(secret), std::string::npos);
}

/// All places of the secrets as they are, joined where they overlap: a transcription of the rule.
std::string maskedPlainly(const std::vector<std::string>& secrets, const std::string& text) {
  std::vector<bool> isSecret(text.size() + 1), begins(text.size() + 1);
  for (const std::string& secret : secrets) {
    for (std::size_t at = 0; (at = text.find(secret, at)) != std::string::npos; ++at) {
      // A mask of its own, unless one that began before goes on.
      begins[at] = true;
      std::fill_n(isSecret.begin() + static_cast<std::ptrdiff_t>(at), secret.size(), true);
    }
  }
  std::string masked;
  std::size_t covered = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (begins[at]) {
      if (at >= covered) masked += "***";
      for (const std::string& secret : secrets)
        if (text.compare(at, secret.size(), secret) == 0)
          covered = std::max(covered, at + secret.size());
    }
    if (!isSecret[at]) masked += text[at];
  }
  return masked;
}

TEST(ORLFURLSessionSecretMask, JoinsWhatOverlapsInPiecesToo) {
  Random random(7);
  const auto randomText = [&random](std::size_t length) {
    std::string text;
    while (text.size() < length) text += "ab"[random() % 2];
    return text;
  };
  for (int round = 0; round < 300; ++round) {
    ORLFURLSessionSecretMask mask;
    std::vector<std::string> secrets;
    for (std::size_t count = 1 + random() % 5; count > 0; --count) {
      secrets.push_back(randomText(6 + random() % 6));
      mask.addSecret(secrets.back());
    }
    const std::string text = randomText(random() % 300);
    const std::string expected = maskedPlainly(secrets, text);
    ASSERT_EQ(*mask.process(text), expected);
    ASSERT_EQ(inPieces(mask, text, random), expected);
  }
}

TEST(ORLFURLSessionSecretMask, FindsSecretsAtEveryPlaceOfAWindow) {
  Random random(3);
  ORLFURLSessionSecretMask mask;
  mask.addSecret("a b\"c\\d😀");
  const std::string spellings[] = {"a+b%22c%5Cd%F0%9F%98%80", R"(a b\"c\\d\uD83D\uDE00)",
                                   R"(%61 b%5C%22c%5C%5Cd😀)", R"(\u0025\u0036\u0031 b\"c\\d😀)"};
  // Windows end every 64 KB and a little more; one of the texts is cut at each byte of a secret.
  std::string text, expected;
  for (int i = 0; text.size() < 140'000; ++i) {
    const std::string& spelling = spellings[static_cast<std::size_t>(i) % std::size(spellings)];
    const std::string between = "," + std::string(random() % 7, '.');
    text += between + spelling;
    expected += between + "***";
  }
  for (std::size_t cut = 0; cut < 12; ++cut) {
    const std::string moved = std::string(cut, '-');
    ASSERT_EQ(*mask.process(moved + text), moved + expected) << cut;
  }
}

}  // namespace
}  // namespace ORLFoundation
