#include <ORLFoundation/security/primitives/ORLFMD5.h>

#include <ORLFoundation/platform/base/Hexadecimal_testing.h>
#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>

extern "C" int orlf_test_md5_from_c(void);

namespace ORLFoundation {
namespace {

using orlftest::hexOf;
using orlftest::spanOf;
using Digest = std::array<std::uint8_t, 16>;

std::string md5Of(std::string_view text) {
  Digest digest{};
  ORLFMD5(spanOf(text).data(), static_cast<std::uint32_t>(text.size()), digest.data());
  return hexOf(digest);
}

TEST(ORLFMD5, GivesThePublishedDigests) {
  EXPECT_EQ(md5Of(""), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(md5Of("a"), "0cc175b9c0f1b6a831c399e269772661");
  EXPECT_EQ(md5Of("abc"), "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ(md5Of("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
  EXPECT_EQ(md5Of("abcdefghijklmnopqrstuvwxyz"), "c3fcd3d76192e4007dfb496cca67e13b");
  EXPECT_EQ(md5Of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
            "d174ab98d277d9f5a5611c2c9f419d9f");
  EXPECT_EQ(md5Of("1234567890123456789012345678901234567890123456789012345678901234567890123456789"
                  "0"),
            "57edf4a22be3c955ac49da2e2107b67a");
  EXPECT_EQ(orlf_test_md5_from_c(), 0x90);
}

TEST(ORLFMD5, AgreesWithAnotherImplementationHoweverTheBytesAreCut) {
  std::mt19937 random(17);
  for (int round = 0; round < 500; ++round) {
    std::string text(random() % 300, '\0');
    for (char& c : text) c = static_cast<char>(random());
    ORLFMD5Context context;
    ORLFMD5Init(&context);
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t piece = std::min<std::size_t>(text.size() - at, random() % 130);
      ORLFMD5Update(&context, spanOf(text).data() + at, static_cast<std::uint32_t>(piece));
      at += piece;
    }
    Digest digest{};
    ORLFMD5Final(digest.data(), &context);
    Digest expected{};
    ASSERT_EQ(EVP_Digest(text.data(), text.size(), expected.data(), nullptr, EVP_md5(), nullptr),
              1);
    ASSERT_EQ(hexOf(digest), hexOf(expected)) << text.size();
  }
}

TEST(ORLFMD5, CountsBitsBeyond32) {
  const std::string piece(std::size_t{1} << 26, 'x');
  ORLFMD5Context context;
  ORLFMD5Init(&context);
  for (int i = 0; i < 9; ++i)
    ORLFMD5Update(&context, spanOf(piece).data(), static_cast<std::uint32_t>(piece.size()));
  EXPECT_EQ(context.bits[0], std::uint32_t{1} << 29);
  EXPECT_EQ(context.bits[1], 1U);
}

TEST(ORLFMD5, WipesTheWholeContextAtTheEnd) {
  ORLFMD5Context context;
  ORLFMD5Init(&context);
  ORLFMD5Update(&context, spanOf("secret").data(), 6);
  Digest digest{};
  ORLFMD5Final(digest.data(), &context);
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&context);
  EXPECT_TRUE(
      std::all_of(bytes, bytes + sizeof context, [](std::uint8_t byte) { return byte == 0; }));
}

TEST(ORLFMD5, MixesOneBlockOfWords) {
  // A block with the padding of an empty text.
  ORLFMD5Context context;
  ORLFMD5Init(&context);
  std::array<std::uint32_t, 16> block{0x80};
  ORLFMD5Transform(context.state, block.data());
  EXPECT_EQ(context.state[0], 0xd98c1dd4U);
  EXPECT_EQ(context.state[3], 0x7e42f8ecU);
}

TEST(ORLFMD5, TakesNoBytesFromNowhere) {
  Digest digest{};
  ORLFMD5(nullptr, 0, digest.data());
  EXPECT_EQ(hexOf(digest), "d41d8cd98f00b204e9800998ecf8427e");
}

}  // namespace
}  // namespace ORLFoundation
